// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/text.hpp>
#include <veldra/kit/value.hpp>

#include "kit/fields/parts.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

namespace {

bool same(double left, double right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

bool same(const Value::Numbers& left, const Value::Numbers& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](double one, double other) { return same(one, other); });
}

template <class T>
bool same(const T& left, const T& right) {
  return left == right;
}

std::string text_of(bool yes) { return yes ? "yes" : "no"; }
std::string text_of(long long number) { return fmt::format("{}", number); }
std::string text_of(double number) { return std::isnan(number) ? "" : exact_number(number); }
std::string text_of(const std::string& text) { return text; }
std::string text_of(const Value::Texts& texts) { return joined(texts, list_separator); }

std::string text_of(const Value::Numbers& numbers) {
  Value::Texts texts;
  for (const double number : numbers) texts.push_back(exact_number(number));
  return joined(texts, list_separator);
}

std::string text_of(const Color& color) {
  return text_of(Value::Numbers{color.red, color.green, color.blue, color.alpha});
}

std::string text_of(const Pattern& pattern) {
  if (pattern == Pattern()) return {};
  return joined({fmt::format("{}", static_cast<int>(pattern.type)), pattern.name.utf8(),
                 exact_number(pattern.scale), exact_number(pattern.angle), text_of(pattern.cross)},
                list_separator);
}

std::string text_of(const Point2d& point) { return text_of(Value::Numbers{point.x, point.y}); }

std::string text_of(const Value::Layers& layers) {
  std::string text;
  for (const LayerValue& layer : layers) {
    if (!text.empty()) text += "; ";
    text +=
        joined({layer.material, exact_number(layer.thickness), fmt::format("{}", layer.function)},
               layer_separator);
  }
  return text;
}

bool is_empty_value(std::monostate) { return true; }
bool is_empty_value(double number) { return std::isnan(number); }
bool is_empty_value(const Color& color) { return color == Color(); }
bool is_empty_value(const Pattern& pattern) { return pattern == Pattern(); }
bool is_empty_value(bool) { return false; }
bool is_empty_value(long long) { return false; }
bool is_empty_value(const Point2d&) { return false; }

template <class List>
bool is_empty_value(const List& list) {
  return list.empty();
}

}  // namespace

bool LayerValue::operator==(const LayerValue& other) const {
  return material == other.material && function == other.function &&
         same(thickness, other.thickness);
}

bool Value::is_empty() const {
  return std::visit([](const auto& data) { return is_empty_value(data); }, data_);
}

bool Value::operator==(const Value& other) const {
  if (kind() != other.kind()) return false;
  return std::visit(
      [&](const auto& data) {
        return same(data, std::get<std::decay_t<decltype(data)>>(other.data_));
      },
      data_);
}

std::string name_of(Value::Kind kind) {
  switch (kind) {
    case Value::Kind::Nothing:
      return "nothing";
    case Value::Kind::YesNo:
      return "yes or no";
    case Value::Kind::WholeNumber:
      return "a whole number";
    case Value::Kind::Number:
      return "a number";
    case Value::Kind::Text:
      return "a text";
    case Value::Kind::Texts:
      return "a list of texts, with ; between them";
    case Value::Kind::Numbers:
      return "a list of numbers, with ; between them";
    case Value::Kind::Color:
      return "a colour: red; green; blue; alpha, each from 0 to 1, or #rrggbb";
    case Value::Kind::Pattern:
      return "a hatch: type; name; scale; angle; yes or no for crossed";
    case Value::Kind::Point:
      return "a point: two numbers with ; between them";
    case Value::Kind::Layers:
      return "layers: material | thickness | function, with ; between them";
  }
  return "a value";
}

std::string value_text(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Nothing:
      return {};
    case Value::Kind::YesNo:
      return text_of(value.as<bool>());
    case Value::Kind::WholeNumber:
      return text_of(value.as<long long>());
    case Value::Kind::Number:
      return text_of(value.as<double>());
    case Value::Kind::Text:
      return text_of(value.as<std::string>());
    case Value::Kind::Texts:
      return text_of(value.as<Value::Texts>());
    case Value::Kind::Numbers:
      return text_of(value.as<Value::Numbers>());
    case Value::Kind::Color:
      return text_of(value.as<Color>());
    case Value::Kind::Pattern:
      return text_of(value.as<Pattern>());
    case Value::Kind::Point:
      return text_of(value.as<Point2d>());
    case Value::Kind::Layers:
      return text_of(value.as<Value::Layers>());
  }
  return {};
}

}  // namespace veldra::kit
