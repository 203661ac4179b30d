// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_INCH_POUND_HPP
#define VELDRA_KIT_EXCHANGE_INCH_POUND_HPP

namespace veldra::kit::inch_pound {

// Units of inch and pound, exact in those of SI. The British thermal unit is that of the
// international table.
constexpr double inch = 0.0254;                                     // m
constexpr double foot = 0.3048;                                     // m
constexpr double pound = 0.45359237;                                // kg
constexpr double btu = 1055.05585262;                               // J
constexpr double hour = 3600;                                       // s
constexpr double fahrenheit = 5.0 / 9.0;                            // K
constexpr double u_unit = btu / (hour * foot * foot * fahrenheit);  // W/(m2 K)

}  // namespace veldra::kit::inch_pound

#endif
