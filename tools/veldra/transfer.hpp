// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_TRANSFER_HPP
#define VELDRA_TOOL_TRANSFER_HPP

#include "conflicts.hpp"
#include "progress.hpp"

#include <veldra/veldra.hpp>

#include <memory>

namespace veldra_tool {

/// Copies all objects of a staging library into a library of the same unit. The caller holds a
/// transaction, since it is more than one operation.
void transfer(const std::shared_ptr<veldra::Library>& staging,
              const std::shared_ptr<veldra::Library>& library, ConflictReactor& reactor,
              veldra::IdMapping& mapping, Progress& progress);

}  // namespace veldra_tool

#endif
