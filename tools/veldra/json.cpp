// SPDX-License-Identifier: GPL-2.0-or-later
#include "json.hpp"

#include "kinds.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <type_traits>

namespace veldra_tool {

namespace {

Json color_to_json(const veldra::Color& color) {
  return Json::array({number_to_json(color.red), number_to_json(color.green),
                      number_to_json(color.blue), number_to_json(color.alpha)});
}

Json pattern_to_json(const veldra::Pattern& pattern) {
  Json json = Json::object();
  json["type"] = static_cast<int>(pattern.type);
  if (pattern.name) json["name"] = pattern.name.utf8();
  json["scale"] = number_to_json(pattern.scale);
  json["angle"] = number_to_json(pattern.angle);
  if (pattern.cross) json["cross"] = true;
  return json;
}

Json layer_to_json(const kit::LayerValue& layer) {
  Json json = Json::object();
  json["material"] = layer.material;
  json["thickness"] = number_to_json(layer.thickness);
  if (layer.function != 0) json["function"] = layer.function;
  return json;
}

template <class List, class JsonOf>
Json list_to_json(const List& list, JsonOf json_of) {
  Json json = Json::array();
  for (const auto& each : list) json.push_back(json_of(each));
  return json;
}

/// Values of properties for all kinds of objects stand apart, because their properties are others
/// than those of the same names for one kind.
template <class Owner>
void add_custom_values(Json& json, const Owner& object) {
  for (const auto& [property, value] : object.custom_values()) {
    const bool common = property->object_type() == veldra::ObjectType{};
    json[common ? "common_custom_values" : "custom_values"][property->name().utf8()] = value.utf8();
  }
}

/// What an object stores, each field that is not as in a new object. The custom values are those of
/// the object, whichever properties a library has.
template <class T>
Json stored_fields_to_json(const T& object) {
  const auto& fields = kit::built_in_fields<T>();
  Json json = Json::object();
  for (auto field = fields.begin(); field != fields.end(); ++field) {
    if constexpr (std::is_base_of_v<veldra::CustomValued<T>, T>) {
      if (field == fields.custom_begin()) add_custom_values(json, object);
    }
    if (field->origin != kit::Origin::Stored && field->origin != kit::Origin::Asset) continue;
    const auto value = field->get(object);
    if (value.is_nothing() || value == field->initial) continue;
    Json& member = field->group.empty() ? json : json[field->group];
    member[field->key] = value_to_json(value);
  }
  return json;
}

}  // namespace

Json number_to_json(double number) {
  if (std::isnan(number)) return nullptr;
  if (std::isinf(number)) return number > 0 ? "Infinity" : "-Infinity";
  return number;
}

Json value_to_json(const kit::Value& value) {
  switch (value.kind()) {
    case kit::Value::Kind::Nothing:
      return nullptr;
    case kit::Value::Kind::YesNo:
      return value.as<bool>();
    case kit::Value::Kind::WholeNumber:
      return value.as<long long>();
    case kit::Value::Kind::Number:
      return number_to_json(value.as<double>());
    case kit::Value::Kind::Text:
      return value.as<std::string>();
    case kit::Value::Kind::Texts:
      return value.as<kit::Value::Texts>();
    case kit::Value::Kind::Numbers:
      return list_to_json(value.as<kit::Value::Numbers>(), number_to_json);
    case kit::Value::Kind::Color:
      return color_to_json(value.as<veldra::Color>());
    case kit::Value::Kind::Pattern:
      return pattern_to_json(value.as<veldra::Pattern>());
    case kit::Value::Kind::Point: {
      const auto& point = value.as<veldra::Point2d>();
      return list_to_json(std::vector<double>{point.x, point.y}, number_to_json);
    }
    case kit::Value::Kind::Layers:
      return list_to_json(value.as<kit::Value::Layers>(), layer_to_json);
  }
  return nullptr;
}

Json to_json(const veldra::Material& material) { return stored_fields_to_json(material); }

Json to_json(const veldra::Composition& composition) { return stored_fields_to_json(composition); }

Json to_json(const veldra::CustomProperty& property) { return stored_fields_to_json(property); }

Json settings_to_json(const veldra::Library& library) {
  Json json = Json::object();
  json["unit"] = name_of(library.unit());
  json["locale"] = library.locale().utf8();
  json["region"] = library.region().utf8();
  return json;
}

Json key_to_json(const veldra::ObjectKey& key, const std::string& name) {
  Json json = Json::object();
  json["kind"] = singular_of(key.type);
  json["id"] = key.id;
  json["name"] = name;
  return json;
}

std::string json_text(const Json& json) {
  const auto escape = [](char32_t character) {
    if (character == U'\n') return std::string("\n");  // between the values
    return fmt::format("\\u{:04x}", static_cast<unsigned>(character));
  };
  return without_controls(json.dump(2), escape) + "\n";
}

void print_json(Spool& output, const Json& json) { output.write(json_text(json)); }

}  // namespace veldra_tool
