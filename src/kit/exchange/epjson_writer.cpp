// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/json_objects.hpp"
#include "kit/exchange/model_writer.hpp"
#include "kit/exchange/writers.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

/// Readers take the blanks around a text off.
bool can_be_value(const std::string& value) { return !value.empty() && trimmed(value) == value; }

bool begins_with(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

/// A field that has a number in place of a name came from IDF; the key of the order is no field.
bool can_be_key(const std::string& key) {
  return !key.empty() && !begins_with(key, "field ") && !begins_with(key, "idf_");
}

bool is_implied(const MaterialClass& described, const std::string& key) {
  return std::any_of(described.fields.begin(), described.fields.end(), [&](const auto& field) {
    return field.key == key && field.kind == FieldKind::Implied;
  });
}

bool holds(const MaterialClass& described, const std::string& key, const std::string& value) {
  return can_be_value(value) && can_be_key(key) && !is_implied(described, key);
}

bool holds_of_construction(const ConstructionClass&, const std::string& key,
                           const std::string& value) {
  return can_be_value(value) && can_be_key(key) && key != "outside_layer" &&
         !begins_with(key, "layer_");
}

/// Names keep their blanks, as they are keys and not values; but references are values.
std::string name_in_epjson(const std::string& name) { return trimmed(name); }

/// A number where the text is one that reads back to the same text.
Json json_of_value(const std::string& value) {
  const auto number = number_in(value);
  if (number && exact_number(*number) == value) return *number;
  return value;
}

Json json_of_object(const SourceMaterial& material) {
  Json json = Json::object();
  int gases = 0;
  for (const auto& field : material.described->fields) {
    const auto value = material.values.find(field.key);
    if (field.kind == FieldKind::Implied) json[field.key] = 0;
    if (value == material.values.end()) continue;
    const bool number = field.kind == FieldKind::Number || field.kind == FieldKind::Thickness;
    json[field.key] = number ? json_of_value(value->second) : Json(value->second);
    if (field.key == fmt::format("gas_{}_type", gases + 1)) ++gases;
  }
  for (const auto& field : material.described->fields) {
    if (field.kind != FieldKind::Implied) continue;
    if (gases > 0) json[field.key] = gases;
    if (gases == 0) json.erase(field.key);
  }
  for (const auto& [key, value] : material.not_kept) json[key] = json_of_value(value);
  return json;
}

Json json_of_object(const SourceConstruction& construction) {
  Json json = Json::object();
  for (const auto& [key, value] : construction.not_kept) json[key] = json_of_value(value);
  for (std::size_t i = 0; i < construction.layers.size(); ++i) {
    json[i == 0 ? "outside_layer" : fmt::format("layer_{}", i + 1)] = construction.layers[i];
  }
  return json;
}

/// Writes objects below their classes, one after the other.
class ClassWriter {
 public:
  explicit ClassWriter(const TextSink& sink) : sink_(sink) {
    sink_("{\n  \"Version\": {\"Version 1\": {\"version_identifier\": \"9.4\"}}");
  }

  template <class Object>
  void write(const Object& object) {
    const std::string name = object.described->name;
    const bool first = name != class_;
    if (first) begin(name);
    const auto key = without_controls_in_json(Json(object.name).dump());
    const auto value = without_controls_in_json(json_of_object(object).dump());
    sink_(fmt::format("{}\n    {}: {}", first ? "" : ",", key, value));
  }

  void end() { sink_(class_.empty() ? "\n}\n" : "\n  }\n}\n"); }

 private:
  void begin(const std::string& name) {
    sink_(fmt::format("{},\n  \"{}\": {{", class_.empty() ? "" : "\n  }", name));
    class_ = name;
  }

  const TextSink& sink_;
  std::string class_;
};

}  // namespace

WriteReport write_epjson(const Library& library, const TextSink& sink, const WriteRules& rules) {
  static const ModelFormat format{"epJSON", material_classes(), true,  false,
                                  10,       name_in_epjson,     holds, holds_of_construction};
  ClassWriter writer(sink);
  return write_model_to(writer, library, format, rules.progress);
}

}  // namespace veldra::kit
