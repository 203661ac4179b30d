// SPDX-License-Identifier: GPL-2.0-or-later
#include "summary.hpp"

#include "kinds.hpp"
#include "text.hpp"
#include "thermal.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

template <class Named>
std::vector<std::string> named_cells(const Named& object) {
  return {fmt::format("{}", object.id()), object.name().utf8()};
}

template <class Named>
Json with_id(const Named& object, const Json& rest = Json::object()) {
  Json json = Json::object();
  json["id"] = object.id();
  json["name"] = object.name().utf8();
  json.update(rest);
  return json;
}

std::string owner_kind_text(veldra::ObjectType kind) {
  const Json json = owner_kind_to_json(kind);
  return json.is_string() ? json.get<std::string>() : json.dump();
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

template <>
std::vector<Table::Column> summary_columns<veldra::CustomProperty>(veldra::Unit) {
  return {{"id", Align::Right}, {"name"}, {"for"}};
}

template <>
std::vector<Table::Column> summary_columns<veldra::Material>(veldra::Unit unit) {
  return {{"id", Align::Right},
          {"name"},
          {"type"},
          {"code"},
          {fmt::format("thicknesses [{}]", name_of(unit))},
          {"tags"}};
}

template <>
std::vector<Table::Column> summary_columns<veldra::Composition>(veldra::Unit unit) {
  return {{"id", Align::Right},
          {"name"},
          {"type"},
          {"layers", Align::Right},
          {fmt::format("total [{}]", name_of(unit)), Align::Right},
          {"U [W/(m²K)]", Align::Right},
          {"tags"}};
}

std::vector<std::string> summary_cells(const veldra::Tag& tag, veldra::Unit) {
  return named_cells(tag);
}

std::vector<std::string> summary_cells(const veldra::Layer& layer, veldra::Unit) {
  return named_cells(layer);
}

std::vector<std::string> summary_cells(const veldra::MaterialType& type, veldra::Unit) {
  return named_cells(type);
}

std::vector<std::string> summary_cells(const veldra::CustomProperty& property, veldra::Unit) {
  auto cells = named_cells(property);
  cells.push_back(owner_kind_text(property.object_type()));
  return cells;
}

std::vector<std::string> summary_cells(const veldra::Material& material, veldra::Unit unit) {
  auto cells = named_cells(material);
  cells.push_back(material.type() ? material.type()->name().utf8() : "");
  cells.push_back(material.code().utf8());
  cells.push_back(thicknesses_text(material, unit));
  cells.push_back(tags_text(material));
  return cells;
}

std::vector<std::string> summary_cells(const veldra::Composition& composition, veldra::Unit unit) {
  auto cells = named_cells(composition);
  cells.push_back(name_of(composition.type()));
  cells.push_back(fmt::format("{}", composition.layers().size()));
  cells.push_back(length_text(total_thickness(composition), unit));
  const auto transmittance = transmission_of(composition, unit).transmittance();
  cells.push_back(transmittance ? fmt::format("{:.2f}", *transmittance) : "–");
  cells.push_back(tags_text(composition));
  return cells;
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

}  // namespace veldra_tool
