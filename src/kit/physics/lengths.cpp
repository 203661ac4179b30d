// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics.hpp>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

double from_metres(double length, Unit unit) {
  return length * 1000.0 / length_factor(unit, Unit::Millimetres);
}

double in_metres(double length, Unit unit) {
  return converted_length(length, unit, Unit::Millimetres) / 1000.0;
}

bool same_length(double left, double right) {
  if (std::isnan(left) || std::isnan(right)) return std::isnan(left) && std::isnan(right);
  if (left == right) return true;
  return std::abs(left - right) <= 1e-12 * std::max(std::abs(left), std::abs(right));
}

}  // namespace veldra::kit
