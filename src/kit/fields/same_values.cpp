// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/compare.hpp>
#include <veldra/kit/physics.hpp>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

namespace {

/// Equality of numbers does not hold for NaN, which stands for a length that nobody knows.
void align_unknown(Composition::Layer& left, Composition::Layer& right) {
  if (!std::isnan(left.thickness()) || !std::isnan(right.thickness())) return;
  left.thickness(0);
  right.thickness(0);
}

void align_minimum(Composition& object, Composition& other) {
  const double left = object.variable_layer_min_thickness();
  const double right = other.variable_layer_min_thickness();
  if (!same_length(left, right)) return;
  object.variable_layer_min_thickness(std::isnan(left) ? 0 : right);
  if (std::isnan(left)) other.variable_layer_min_thickness(0);
}

void align_lengths(Material& object, const Material& other) {
  const auto& left = object.thicknesses();
  const auto& right = other.thicknesses();
  if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), same_length)) return;
  object.thicknesses(toModify) = std::set<double>(right);
}

void align_lengths(Composition& object, Composition& other) {
  const std::size_t count = std::min(object.layers().size(), other.layers().size());
  for (std::size_t i = 0; i < count; ++i) {
    auto& left = object.layer(i, toModify);
    auto& right = other.layer(i, toModify);
    align_unknown(left, right);
    if (same_length(left.thickness(), right.thickness())) left.thickness(right.thickness());
  }
  align_minimum(object, other);
}

bool same_variable_layer(const Composition& left, const Composition& right) {
  return left.variable_layer() == right.variable_layer() &&
         same_length(left.variable_layer_max_thickness(), right.variable_layer_max_thickness());
}

}  // namespace

bool same_values(const Material& material, const Material& other) {
  if (material.code() != other.code()) return false;
  const auto left = material.clone();
  align_lengths(*left, other);
  return *left == other;
}

bool same_values(const Composition& composition, const Composition& other) {
  if (!same_variable_layer(composition, other)) return false;
  const auto left = composition.clone();
  const auto right = other.clone();
  align_lengths(*left, *right);
  return *left == *right;
}

}  // namespace veldra::kit
