// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_COPYING_EVERYTHING_HPP
#define VELDRA_TOOL_COPYING_EVERYTHING_HPP

#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <vector>

namespace veldra_tool {

/// Whether a library has no object whose name may be taken by another one that differs.
bool has_no_names(const veldra::Library& library);

/// Copies all objects into a library that `has_no_names`, within a transaction of its caller.
/// Nothing need be planned for that, which would take about as long. Returns what became of each,
/// as a plan would have it, but without the names.
std::vector<kit::PlanEntry> copy_everything(const std::shared_ptr<const veldra::Library>& source,
                                            veldra::Library& destination);

}  // namespace veldra_tool

#endif
