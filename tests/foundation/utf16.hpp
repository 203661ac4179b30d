// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_FOUNDATION_UTF16_HPP
#define VELDRA_TESTS_FOUNDATION_UTF16_HPP

#include <veldra/string.hpp>

#include <vector>

namespace veldra_tests {

/// Code units without the 0 at the end.
using Units = std::vector<unsigned short>;

/// The code units of a text that ends with 0.
inline Units units_of(const unsigned short* text) {
  Units units;
  while (*text != 0) units.push_back(*text++);
  return units;
}

inline Units units_of(const veldra::String& text) { return units_of(text.c_str()); }

/// A text of those code units, whatever they are.
inline veldra::String string_of(Units units) {
  units.push_back(0);
  return veldra::String(units.data());
}

}  // namespace veldra_tests

#endif
