// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/honeybee_model.hpp"
#include "kit/exchange/json_objects.hpp"
#include "kit/exchange/model_writer.hpp"
#include "kit/exchange/writers.hpp"

#include <veldra/kit/text.hpp>

#include <algorithm>
#include <limits>
#include <set>

namespace veldra::kit {

namespace {

bool is_gas_of_mixture(const std::string& key) { return key.compare(0, 4, "gas_") == 0; }

/// Readers take the blanks around a text off, and know some texts as yes and no.
bool holds(const MaterialClass& described, const std::string& key, const std::string& value) {
  if (value.empty() || trimmed(value) != value || key.empty()) return false;
  if (key == "solar_diffusing") return value == "Yes" || value == "No";
  const auto& fields = described.fields;
  const bool known = std::any_of(fields.begin(), fields.end(),
                                 [&](const auto& field) { return field.key == key; });
  return known || !is_gas_of_mixture(key);
}

bool holds_of_construction(const ConstructionClass&, const std::string&, const std::string&) {
  return false;
}

std::string name_in_honeybee(const std::string& name) { return trimmed(name); }

Json json_of_value(const std::string& value) {
  const auto number = number_in(value);
  if (number && exact_number(*number) == value) return *number;
  return value;
}

template <class Object>
Json json_of_name(const std::string& type, const Object& object) {
  Json json = Json::object();
  json["type"] = type;
  json["identifier"] = object.identifier.empty() ? object.name : object.identifier;
  if (!object.identifier.empty()) json["display_name"] = object.name;
  return json;
}

void add_gases(const SourceMaterial& material, Json& json) {
  for (int gas = 1; gas <= most_gases; ++gas) {
    const auto type = material.values.find(gas_type_key(gas));
    const auto fraction = material.values.find(gas_fraction_key(gas));
    if (type == material.values.end() || fraction == material.values.end()) return;
    json["gas_types"].push_back(type->second);
    json["gas_fractions"].push_back(json_of_value(fraction->second));
  }
}

Json json_of_material(const SourceMaterial& material) {
  Json json = json_of_name(material.described->name, material);
  const bool is_mixture = material.described->type == std::string("Gas mixture");
  for (const auto& field : material.described->fields) {
    const auto value = material.values.find(field.key);
    if (value == material.values.end() || (is_mixture && is_gas_of_mixture(field.key))) continue;
    const bool number = field.kind == FieldKind::Number || field.kind == FieldKind::Thickness;
    json[field.key] = number ? json_of_value(value->second) : Json(value->second);
    if (field.key == std::string("solar_diffusing")) json[field.key] = value->second == "Yes";
  }
  if (is_mixture) add_gases(material, json);
  for (const auto& [key, value] : material.not_kept) json[key] = json_of_value(value);
  return json;
}

/// Writes a list of objects.
class ListWriter {
 public:
  explicit ListWriter(const TextSink& sink) : sink_(sink) { sink_("["); }

  void write(const SourceMaterial& material) {
    const auto json = json_of_material(material);
    identifiers_[material.name] = json["identifier"].get<std::string>();
    if (is_of_windows(*material.described)) of_windows_.insert(material.name);
    write(json);
  }

  /// The first layer tells whether it is a window.
  void write(const SourceConstruction& construction) {
    const bool window = of_windows_.count(construction.layers.front()) > 0;
    const char* type = window ? "WindowConstructionAbridged" : "OpaqueConstructionAbridged";
    Json json = json_of_name(type, construction);
    json["materials"] = Json::array();
    for (const auto& layer : construction.layers) {
      json["materials"].push_back(identifiers_.at(layer));
    }
    ++written_[type];
    write(json);
  }

  void end() { sink_(first_ ? "]\n" : "\n]\n"); }

  const std::map<std::string, std::size_t>& written() const { return written_; }

 private:
  void write(const Json& json) {
    sink_((first_ ? "\n  " : ",\n  ") + without_controls_in_json(json.dump()));
    first_ = false;
  }

  const TextSink& sink_;
  bool first_ = true;
  std::map<std::string, std::string> identifiers_;  ///< of materials, by name
  std::set<std::string> of_windows_;
  std::map<std::string, std::size_t> written_;  ///< constructions, by type
};

}  // namespace

WriteReport write_honeybee(const Library& library, const TextSink& sink, const WriteRules& rules) {
  static const ModelFormat format{"honeybee",
                                  honeybee_classes(),
                                  false,
                                  true,
                                  std::numeric_limits<std::size_t>::max(),
                                  name_in_honeybee,
                                  holds,
                                  holds_of_construction};
  ListWriter writer(sink);
  auto report = write_model_to(writer, library, format, rules.progress);
  report.written.erase("Construction");
  report.written.insert(writer.written().begin(), writer.written().end());
  return report;
}

}  // namespace veldra::kit
