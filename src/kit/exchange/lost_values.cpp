// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/lost_values.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <algorithm>

namespace veldra::kit {

namespace {

/// Whether two texts say the same, maybe as numbers that are written otherwise.
bool say_the_same(const std::string& left, const std::string& right) {
  if (left == right) return true;
  const auto number = number_in(left);
  return number && number == number_in(right);
}

}  // namespace

void FieldCounts::add(const std::string& object_class, const std::string& field,
                      std::size_t count) {
  if (count > 0) counts_[{object_class, field}] += count;
}

std::vector<FieldNotKept> FieldCounts::fields() const {
  std::vector<FieldNotKept> fields;
  fields.reserve(counts_.size());
  for (const auto& [field, count] : counts_) fields.push_back({field.first, field.second, count});
  return fields;
}

template <class T>
void LostValues::compare_fields(const T& written, const T& read) {
  const auto kind = singular_of(ObjectTraits<T>::type);
  for (const auto& field : built_in_fields<T>()) {
    if (field.origin != Origin::Stored && field.origin != Origin::Asset) continue;
    if (field.kind == Value::Kind::Layers) continue;
    if (field.get(written) != field.get(read)) counts_.add(kind, field.name());
  }
}

template <class T>
void LostValues::compare_custom_values(const T& written, const T& read) {
  const auto kind = singular_of(ObjectTraits<T>::type);
  for (const auto& [property, value] : written.custom_values()) {
    const auto found = read.custom_value(property->name());
    if (!found.null() && say_the_same(value.utf8(), found.get().utf8())) continue;
    counts_.add(kind, "property:" + property->name().utf8());
  }
}

/// The layers are written; what may be lost is a part of each.
void LostValues::compare_layers(const Composition& written, const Composition& read) {
  const auto kind = singular_of(ObjectType::Composition);
  const auto count = std::min(written.layers().size(), read.layers().size());
  for (std::size_t i = 0; i < count; ++i) {
    const auto& one = written.layers()[i];
    const auto& other = read.layers()[i];
    if (one.function() != other.function()) counts_.add(kind, "layers.function");
    if (Value(one.thickness()) != Value(other.thickness())) counts_.add(kind, "layers.thickness");
  }
}

void LostValues::compare(const Material& written, const Material& read) {
  compare_fields(written, read);
  compare_custom_values(written, read);
}

void LostValues::compare(const Composition& written, const Composition& read) {
  compare_fields(written, read);
  compare_custom_values(written, read);
  compare_layers(written, read);
}

}  // namespace veldra::kit
