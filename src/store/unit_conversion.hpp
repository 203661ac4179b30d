#ifndef VELDRA_STORE_UNIT_CONVERSION_HPP
#define VELDRA_STORE_UNIT_CONVERSION_HPP

#include <veldra/composition.hpp>

namespace veldra {

/// Converts the lengths of an object from one unit to another. Kinds without lengths stay.
template <class T>
void convert_lengths(T&, Unit, Unit) {}

void convert_lengths(Material& material, Unit from, Unit to);
void convert_lengths(Composition& composition, Unit from, Unit to);

}  // namespace veldra

#endif
