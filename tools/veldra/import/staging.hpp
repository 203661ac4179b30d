// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_STAGING_HPP
#define VELDRA_TOOL_IMPORT_STAGING_HPP

#include "conflicts.hpp"
#include "import/import_set.hpp"
#include "import/report.hpp"
#include "transfer.hpp"

#include <veldra/veldra.hpp>

#include <memory>

namespace veldra_tool {

/// All objects of a set in a library in memory.
std::shared_ptr<veldra::Library> staged(const ImportSet& set, veldra::Unit unit,
                                        Progress& progress);

/// Brings them from there into a library of the same unit, of which the caller holds a transaction,
/// and enters into the report what became of each.
void transfer_set(const ImportSet& set, const std::shared_ptr<veldra::Library>& staging,
                  const std::shared_ptr<veldra::Library>& library, OnConflict policy,
                  ImportReport& report, Progress& progress);

}  // namespace veldra_tool

#endif
