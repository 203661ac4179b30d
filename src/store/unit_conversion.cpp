// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/unit_conversion.hpp"

namespace veldra {

double length_factor(Unit from, Unit to) {
  if (from == Unit::Inches && to == Unit::Millimetres) return 25.4;
  if (from == Unit::Millimetres && to == Unit::Inches) return 0.03937007874015748;
  return 1.0;
}

}  // namespace veldra
