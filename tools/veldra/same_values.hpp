// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_SAME_VALUES_HPP
#define VELDRA_TOOL_SAME_VALUES_HPP

#include <veldra/veldra.hpp>

namespace veldra_tool {

/// Whether two objects have the same values, among them codes and variable layers, of which the
/// library's own comparison sees the presence only. Lengths that are the same become the very same
/// in both.
bool same_values(veldra::Material& object, veldra::Material& other);
bool same_values(veldra::Composition& object, veldra::Composition& other);

}  // namespace veldra_tool

#endif
