// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_UNITS_HPP
#define VELDRA_TOOL_UNITS_HPP

#include <veldra/veldra.hpp>

namespace veldra_tool {

/// A length in metres in a unit, and the other way round.
double from_metres(double length, veldra::Unit unit);
double in_metres(double length, veldra::Unit unit);

/// Whether two lengths are the same. One of them may have come through other units and back.
bool same_length(double left, double right);

/// Whether two objects have the same values, among them codes and variable layers, of which the
/// library's own comparison sees the presence only. Lengths that are the same become the very same
/// in both.
bool same_values(veldra::Material& object, veldra::Material& other);
bool same_values(veldra::Composition& object, veldra::Composition& other);

}  // namespace veldra_tool

#endif
