// SPDX-License-Identifier: GPL-2.0-or-later
#include "same_values.hpp"

#include "kit.hpp"

#include <algorithm>
#include <cmath>

namespace veldra_tool {

namespace {

/// Equality of numbers does not hold for NaN, which stands for a length that nobody knows.
void align_unknown(veldra::Composition::Layer& left, veldra::Composition::Layer& right) {
  if (!std::isnan(left.thickness()) || !std::isnan(right.thickness())) return;
  left.thickness(0);
  right.thickness(0);
}

void align_minimum(veldra::Composition& object, veldra::Composition& other) {
  const double left = object.variable_layer_min_thickness();
  const double right = other.variable_layer_min_thickness();
  if (!kit::same_length(left, right)) return;
  object.variable_layer_min_thickness(std::isnan(left) ? 0 : right);
  if (std::isnan(left)) other.variable_layer_min_thickness(0);
}

void align_lengths(veldra::Material& object, const veldra::Material& other) {
  const auto& left = object.thicknesses();
  const auto& right = other.thicknesses();
  if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), kit::same_length)) return;
  object.thicknesses(veldra::toModify) = std::set<double>(right);
}

void align_lengths(veldra::Composition& object, veldra::Composition& other) {
  const std::size_t count = std::min(object.layers().size(), other.layers().size());
  for (std::size_t i = 0; i < count; ++i) {
    auto& left = object.layer(i, veldra::toModify);
    auto& right = other.layer(i, veldra::toModify);
    align_unknown(left, right);
    if (kit::same_length(left.thickness(), right.thickness())) left.thickness(right.thickness());
  }
  align_minimum(object, other);
}

bool same_variable_layer(const veldra::Composition& left, const veldra::Composition& right) {
  return left.variable_layer() == right.variable_layer() &&
         kit::same_length(left.variable_layer_max_thickness(),
                          right.variable_layer_max_thickness());
}

}  // namespace

bool same_values(veldra::Material& object, veldra::Material& other) {
  align_lengths(object, other);
  return object.code() == other.code() && object == other;
}

bool same_values(veldra::Composition& object, veldra::Composition& other) {
  align_lengths(object, other);
  return same_variable_layer(object, other) && object == other;
}

}  // namespace veldra_tool
