// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_UNITS_HPP
#define VELDRA_TESTS_SUPPORT_UNITS_HPP

namespace veldra_tests {

// What lengths are multiplied by when they go from a library of one unit to one of the other.
constexpr double kMillimetresPerInch = 25.4;
constexpr double kInchesPerMillimetre = 0.03937007874015748;

}  // namespace veldra_tests

#endif
