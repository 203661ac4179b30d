// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/compare.hpp>

#include "kit/fields/compare.hpp"

#include <veldra/kit/physics.hpp>

#include <algorithm>
#include <map>
#include <utility>

namespace veldra::kit {

namespace {

bool same_lengths(const Value::Numbers& left, const Value::Numbers& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same_length);
}

bool same_layers(const Value::Layers& left, const Value::Layers& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const LayerValue& one, const LayerValue& other) {
                      return one.material == other.material && one.function == other.function &&
                             same_length(one.thickness, other.thickness);
                    });
}

/// The custom values of both, by the names of their fields; nothing where one has none.
template <class T>
std::map<std::string, std::pair<Value, Value>> custom_values(const T& object, const T& other) {
  std::map<std::string, std::pair<Value, Value>> values;
  const auto name_of = [](const CustomProperty& property) {
    const bool common = property.object_type() == ObjectType{};
    return (common ? "common_custom_values." : "custom_values.") + property.name().utf8();
  };
  for (const auto& [property, value] : object.custom_values()) {
    values[name_of(*property)].first = value.utf8();
  }
  for (const auto& [property, value] : other.custom_values()) {
    values[name_of(*property)].second = value.utf8();
  }
  return values;
}

template <class T>
void add_custom_differences(const T& object, const T& other, std::vector<FieldChange>& changes) {
  for (auto& [name, both] : custom_values(object, other)) {
    if (both.first == both.second) continue;
    changes.push_back({name, std::move(both.first), std::move(both.second)});
  }
}

template <class T>
std::vector<FieldChange> differences_of(const T& object, const T& other) {
  std::vector<FieldChange> changes;
  const auto& fields = built_in_fields<T>();
  for (auto field = fields.begin(); field != fields.end(); ++field) {
    if (field == fields.custom_begin()) add_custom_differences(object, other, changes);
    if (!is_copied(*field) || is_tags(*field)) continue;
    Value before = field->get(object);
    Value after = field->get(other);
    if (same_value(before, after, field->measure)) continue;
    changes.push_back({field->name(), std::move(before), std::move(after)});
  }
  return changes;
}

}  // namespace

bool same_value(const Value& left, const Value& right, Measure measure) {
  if (measure != Measure::Length || left.kind() != right.kind()) return left == right;
  switch (left.kind()) {
    case Value::Kind::Number:
      return same_length(left.as<double>(), right.as<double>());
    case Value::Kind::Numbers:
      return same_lengths(left.as<Value::Numbers>(), right.as<Value::Numbers>());
    case Value::Kind::Layers:
      return same_layers(left.as<Value::Layers>(), right.as<Value::Layers>());
    default:
      return left == right;
  }
}

bool is_copied(const FieldDescription& field) {
  return field.origin == Origin::Stored || field.origin == Origin::Custom;
}

bool is_tags(const FieldDescription& field) { return field.group.empty() && field.key == "tags"; }

std::vector<FieldChange> differences(const Material& material, const Material& other) {
  return differences_of(material, other);
}

std::vector<FieldChange> differences(const Composition& composition, const Composition& other) {
  return differences_of(composition, other);
}

bool same_values(const Material& material, const Material& other) {
  return differences(material, other).empty();
}

bool same_values(const Composition& composition, const Composition& other) {
  return differences(composition, other).empty();
}

}  // namespace veldra::kit
