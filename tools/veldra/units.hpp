#ifndef VELDRA_TOOL_UNITS_HPP
#define VELDRA_TOOL_UNITS_HPP

#include <veldra/veldra.hpp>

namespace veldra_tool {

/// A length in another unit, by the factors that the library uses.
double converted(double length, veldra::Unit from, veldra::Unit to);

/// A length in metres in a unit.
double from_metres(double length, veldra::Unit unit);

/// Whether two lengths are the same. One of them may have come through other units and back.
bool same_length(double left, double right);

/// Gives the lengths of `object` that are the same as those of `other` the very values of those.
void align_lengths(veldra::Material& object, const veldra::Material& other);
void align_lengths(veldra::Composition& object, veldra::Composition& other);

}  // namespace veldra_tool

#endif
