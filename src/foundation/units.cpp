// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/values.hpp>

namespace veldra {

double length_factor(Unit from, Unit to) noexcept {
  if (from == Unit::Inches && to == Unit::Millimetres) return 25.4;
  if (from == Unit::Millimetres && to == Unit::Inches) return 0.03937007874015748;
  return 1.0;
}

double converted_length(double length, Unit from, Unit to) noexcept {
  return length * length_factor(from, to);
}

}  // namespace veldra
