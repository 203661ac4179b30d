// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/select/comparison.hpp"

#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <algorithm>

namespace veldra::kit {

namespace {

std::vector<std::string> texts_of(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Texts:
      return value.as<Value::Texts>();
    case Value::Kind::Pattern:
      return {value.as<Pattern>().name.utf8()};
    case Value::Kind::Layers: {
      std::vector<std::string> names;
      for (const LayerValue& layer : value.as<Value::Layers>()) names.push_back(layer.material);
      return names;
    }
    default:
      return {value_text(value)};
  }
}

std::vector<double> numbers_of(const Value& value) {
  if (value.kind() == Value::Kind::Numbers) return value.as<Value::Numbers>();
  const auto number = number_of(value);
  return number ? std::vector<double>{*number} : std::vector<double>();
}

/// By an operator that orders; `order` is less than 0, 0 or greater.
bool is_in_order(Operator by, int order) {
  switch (by) {
    case Operator::Less:
      return order < 0;
    case Operator::LessOrEqual:
      return order <= 0;
    case Operator::Greater:
      return order > 0;
    case Operator::GreaterOrEqual:
      return order >= 0;
    default:
      return order == 0;
  }
}

bool text_does(const Comparison& comparison, const std::string& text) {
  switch (comparison.by) {
    case Operator::SameExactly:
      return text == comparison.text;
    case Operator::ContainsExactly:
      return text.find(comparison.text) != std::string::npos;
    case Operator::Contains:
      return folded(text).find(comparison.text) != std::string::npos;
    default:
      return is_in_order(comparison.by, folded(text).compare(comparison.text));
  }
}

bool number_does(const Comparison& comparison, double number) {
  if (comparison.by == Operator::SameExactly) return number == comparison.number;
  const bool same = same_length(number, comparison.number);
  return is_in_order(comparison.by, same ? 0 : number < comparison.number ? -1 : 1);
}

template <class List, class Does>
bool list_does(const Comparison& comparison, const List& list, Does does) {
  if (comparison.by != Operator::Unequal) {
    return std::any_of(list.begin(), list.end(),
                       [&](const auto& each) { return does(comparison, each); });
  }
  return std::none_of(list.begin(), list.end(),
                      [&](const auto& each) { return does(comparison, each); });
}

}  // namespace

Comparing comparing_of(const FieldDescription& field) {
  switch (field.kind) {
    case Value::Kind::Text:
    case Value::Kind::Texts:
    case Value::Kind::Pattern:
    case Value::Kind::Layers:
      return Comparing::Texts;
    case Value::Kind::WholeNumber:
    case Value::Kind::Number:
    case Value::Kind::Numbers:
      return Comparing::Numbers;
    case Value::Kind::YesNo:
      return Comparing::YesNo;
    default:
      return Comparing::Presence;
  }
}

std::optional<double> number_of(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::WholeNumber:
      return static_cast<double>(value.as<long long>());
    case Value::Kind::Number:
      return value.as<double>();
    case Value::Kind::Text:
      return number_in(value.as<std::string>());
    default:
      return std::nullopt;
  }
}

bool Comparison::holds(const Value& value) const {
  if (by == Operator::IsEmpty) return value.is_empty();
  if (value.is_empty()) return false;
  switch (as) {
    case Comparing::Texts:
      return list_does(*this, texts_of(value), text_does);
    case Comparing::Numbers: {
      const auto numbers = numbers_of(value);
      return !numbers.empty() && list_does(*this, numbers, number_does);
    }
    case Comparing::YesNo:
      return (value.as<bool>() == yes) == (by != Operator::Unequal);
    case Comparing::Presence:
      break;
  }
  return true;
}

}  // namespace veldra::kit
