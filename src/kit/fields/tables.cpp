// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/tables.hpp"

#include <algorithm>
#include <limits>

namespace veldra::kit {

FieldDescription described(const std::string& key, Value::Kind kind, const Value& initial) {
  FieldDescription description;
  description.key = key;
  description.label = key;
  std::replace(description.label.begin(), description.label.end(), '_', ' ');
  description.kind = kind;
  description.initial = initial;
  return description;
}

std::vector<std::pair<std::string, int>> function_words() {
  return {{"none", static_cast<int>(Material::Function::None)},
          {"structure", static_cast<int>(Material::Function::Structure)}};
}

FieldDescription derived(const std::string& key, const std::string& label, Value::Kind kind) {
  auto description = described(key, kind);
  description.label = label;
  description.origin = Origin::Derived;
  return description;
}

FieldDescription described_name() {
  auto description = described("name", Value::Kind::Text);
  description.unique = true;
  description.required = true;
  return description;
}

FieldDescription described(const CustomProperty& property) {
  auto description = described(property.name().utf8(), Value::Kind::Text);
  description.label = description.key;  // as its users write it
  const bool common = property.object_type() == ObjectType{};
  description.group = common ? "common_custom_values" : "custom_values";
  description.origin = Origin::Custom;
  return description;
}

std::vector<std::shared_ptr<const CustomProperty>> properties_for(ObjectType kind,
                                                                  const Context& context) {
  std::vector<std::shared_ptr<const CustomProperty>> result;
  if (context.library == nullptr) return result;
  std::vector<std::shared_ptr<CustomProperty>> all;
  context.library->get(all);
  std::copy_if(all.begin(), all.end(), std::back_inserter(result), [&](const auto& property) {
    return property->object_type() == kind || property->object_type() == ObjectType{};
  });
  return result;
}

int int_of(const FieldDescription& field, const Value& value) {
  const long long number = value.as<long long>();
  using Limits = std::numeric_limits<int>;
  if (number < Limits::min() || number > Limits::max()) {
    throw FieldError(field.name(), value_text(value), "the number is out of range");
  }
  return static_cast<int>(number);
}

unsigned index_of(const FieldDescription& field, const Value& value) {
  const long long number = value.as<long long>();
  if (number < 0 || number > std::numeric_limits<unsigned>::max()) {
    throw FieldError(field.name(), counted_text(field, value), positions_allowed);
  }
  return static_cast<unsigned>(number);
}

}  // namespace veldra::kit
