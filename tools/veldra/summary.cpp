// SPDX-License-Identifier: GPL-2.0-or-later
#include "summary.hpp"

#include "kinds.hpp"
#include "text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

template <class Named>
Json with_id(const Named& object, const Json& rest = Json::object()) {
  Json json = Json::object();
  json["id"] = object.id();
  json["name"] = object.name().utf8();
  json.update(rest);
  return json;
}

}  // namespace

Json facts_of(const veldra::Library& library) {
  Json facts = Json::object();
  facts["guid"] = library.guid().utf8();
  facts.update(settings_to_json(library));
  facts["schema_version"] = library.version();
  facts["counts"] = counts_of(library);
  return facts;
}

Json counts_of(const veldra::Library& library) {
  Json counts = Json::object();
  for (const auto kind : all_kinds()) {
    with_class_of(kind, [&](auto of) {
      counts[plural_of(kind)] = library.count<typename decltype(of)::type>();
    });
  }
  return counts;
}

Json summary_of(const veldra::Tag& tag) { return with_id(tag); }

Json summary_of(const veldra::Layer& layer) { return with_id(layer); }

Json summary_of(const veldra::MaterialType& type) { return with_id(type); }

Json summary_of(const veldra::CustomProperty& property) {
  return with_id(property, to_json(property));
}

Json summary_of(const veldra::Material& material) { return with_id(material, to_json(material)); }

Json summary_of(const veldra::Composition& composition) {
  return with_id(composition, to_json(composition));
}

std::string thicknesses_text(const veldra::Material& material, veldra::Unit unit) {
  std::string text;
  for (const double thickness : material.thicknesses()) {
    text += (text.empty() ? "" : ", ") + length_text(thickness, unit);
  }
  return text;
}

std::string length_text(double length, veldra::Unit unit) {
  return rounded_number(length, unit == veldra::Unit::Inches ? 3 : 2);
}

std::string resistance_text(const kit::Transmission& transmission, std::size_t layer) {
  const auto resistance = transmission.counted_resistance(layer);
  return resistance ? fixed_number(*resistance, 3) : "–";
}

}  // namespace veldra_tool
