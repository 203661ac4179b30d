// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/json_objects.hpp"

#include <veldra/kit/exchange.hpp>

#include <cmath>

namespace veldra::kit {

namespace {

/// Null for NaN, and a text for what else JSON has no number for.
Json json_of_number(double number) {
  if (std::isnan(number)) return nullptr;
  if (std::isinf(number)) return number > 0 ? "Infinity" : "-Infinity";
  return number;
}

Json json_of_color(const Color& color) {
  return Json::array({json_of_number(color.red), json_of_number(color.green),
                      json_of_number(color.blue), json_of_number(color.alpha)});
}

Json json_of_pattern(const Pattern& pattern) {
  Json json = Json::object();
  json["type"] = static_cast<int>(pattern.type);
  if (pattern.name) json["name"] = pattern.name.utf8();
  json["scale"] = json_of_number(pattern.scale);
  json["angle"] = json_of_number(pattern.angle);
  if (pattern.cross) json["cross"] = true;
  return json;
}

Json json_of_layer(const LayerValue& layer) {
  Json json = Json::object();
  json["material"] = layer.material;
  json["thickness"] = json_of_number(layer.thickness);
  if (layer.function != 0) json["function"] = layer.function;
  return json;
}

template <class List, class JsonOf>
Json json_of_list(const List& list, JsonOf json_of) {
  Json json = Json::array();
  for (const auto& each : list) json.push_back(json_of(each));
  return json;
}

}  // namespace

Json json_from(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Nothing:
      return nullptr;
    case Value::Kind::YesNo:
      return value.as<bool>();
    case Value::Kind::WholeNumber:
      return value.as<long long>();
    case Value::Kind::Number:
      return json_of_number(value.as<double>());
    case Value::Kind::Text:
      return value.as<std::string>();
    case Value::Kind::Texts:
      return value.as<Value::Texts>();
    case Value::Kind::Numbers:
      return json_of_list(value.as<Value::Numbers>(), json_of_number);
    case Value::Kind::Color:
      return json_of_color(value.as<Color>());
    case Value::Kind::Pattern:
      return json_of_pattern(value.as<Pattern>());
    case Value::Kind::Point: {
      const auto& point = value.as<Point2d>();
      return json_of_list(Value::Numbers{point.x, point.y}, json_of_number);
    }
    case Value::Kind::Layers:
      return json_of_list(value.as<Value::Layers>(), json_of_layer);
  }
  return nullptr;
}

std::string json_of(const Value& value) { return json_from(value).dump(); }
std::string json_of(const Material& material) { return json_from(material).dump(); }
std::string json_of(const Composition& composition) { return json_from(composition).dump(); }
std::string json_of(const CustomProperty& property) { return json_from(property).dump(); }

}  // namespace veldra::kit
