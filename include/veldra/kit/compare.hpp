// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_COMPARE_HPP
#define VELDRA_KIT_COMPARE_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>

namespace veldra::kit {

/// Whether two materials have the same values, code and name among them. Lengths of which one has
/// come through other units are the same (`same_length`). Objects to which they refer are compared
/// as the library compares them.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT bool same_values(const Material& material, const Material& other);

/// Whether two compositions have the same values, the name and the variable layer among them, by
/// the same rules. A thickness that is not known is the same as another one.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT bool same_values(const Composition& composition, const Composition& other);

}  // namespace veldra::kit

#endif
