// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/comparing.hpp"

#include "kit/fields/compare.hpp"

#include <veldra/kit/physics.hpp>

#include <algorithm>

namespace veldra::kit {

namespace {

Value with_names(Value value, const std::map<std::string, std::string>& names) {
  if (names.empty() || value.kind() != Value::Kind::Layers) return value;
  auto layers = value.as<Value::Layers>();
  for (auto& layer : layers) {
    const auto found = names.find(layer.material);
    if (found != names.end()) layer.material = found->second;
  }
  return layers;
}

// Whether two objects of libraries in one unit are the same for certain, which is found out without
// making values of their fields. Most objects that come again are.

bool are_alike(const Material& left, const Material& right) {
  return left.code() == right.code() && left == right;
}

bool are_alike(const Composition& left, const Composition& right) {
  return left.variable_layer() == right.variable_layer() &&
         left.variable_layer_min_thickness() == right.variable_layer_min_thickness() &&
         left.variable_layer_max_thickness() == right.variable_layer_max_thickness() &&
         left == right;
}

bool is_identity(const FieldDescription& field) {
  return is_tags(field) || (field.group.empty() && field.key == "name");
}

}  // namespace

template <class T>
Comparing<T>::Comparing(const Library& source, const Library& destination)
    : source_(source), destination_(destination) {
  for (const auto& field : source_) {
    if (is_copied(field)) (is_identity(field) ? identity_ : content_).push_back(&field);
  }
  for (auto field = destination_.custom_begin(); field != destination_.end(); ++field) {
    const auto has_name = [&](const Field<T>* other) { return other->name() == field->name(); };
    if (field->origin != Origin::Custom) continue;
    if (std::none_of(content_.begin(), content_.end(), has_name)) content_.push_back(&*field);
  }
}

template <class T>
std::vector<FieldChange> Comparing<T>::differences(const T& incoming, const T& stored,
                                                   const NewNames& materials) const {
  std::vector<FieldChange> changes;
  const bool has_new_names = !materials.incoming.empty() || !materials.stored.empty();
  const bool is_direct = source_.unit() == destination_.unit() && !has_new_names;
  if (is_direct && are_alike(incoming, stored)) return changes;
  for (const auto* field : content_) {
    add_if_different(changes, *field, incoming, stored, materials);
  }
  return changes;
}

template <class T>
std::vector<FieldChange> Comparing<T>::all_differences(const T& incoming, const T& stored,
                                                       const NewNames& materials) const {
  std::vector<FieldChange> changes;
  for (const auto* field : identity_) {
    add_if_different(changes, *field, incoming, stored, materials);
  }
  auto others = differences(incoming, stored, materials);
  std::move(others.begin(), others.end(), std::back_inserter(changes));
  return changes;
}

template <class T>
void Comparing<T>::add_if_different(std::vector<FieldChange>& changes, const Field<T>& field,
                                    const T& incoming, const T& stored,
                                    const NewNames& materials) const {
  Value before = with_names(field.get(stored), materials.stored);
  Value after = with_names(converted(field.get(incoming), field), materials.incoming);
  if (same_value(before, after, field.measure)) return;
  changes.push_back({field.name(), std::move(before), std::move(after)});
}

template <class T>
Value Comparing<T>::converted(Value value, const FieldDescription& field) const {
  if (field.measure != Measure::Length) return value;
  const auto length = [this](double number) {
    return converted_length(number, source_.unit(), destination_.unit());
  };
  switch (value.kind()) {
    case Value::Kind::Number:
      return length(value.as<double>());
    case Value::Kind::Numbers: {
      auto numbers = value.as<Value::Numbers>();
      std::transform(numbers.begin(), numbers.end(), numbers.begin(), length);
      return numbers;
    }
    case Value::Kind::Layers: {
      auto layers = value.as<Value::Layers>();
      for (auto& layer : layers) layer.thickness = length(layer.thickness);
      return layers;
    }
    default:
      return value;
  }
}

template class Comparing<Material>;
template class Comparing<Composition>;

}  // namespace veldra::kit
