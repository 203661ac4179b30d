// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_STAGING_HPP
#define VELDRA_TOOL_IMPORT_STAGING_HPP

#include "conflicts.hpp"
#include "import/report.hpp"
#include "transfer.hpp"

#include <veldra/veldra.hpp>

#include <memory>

namespace veldra_tool {

/// How an import brings sources into a library.
struct ImportRules {
  OnConflict on_conflict;
  bool tagged_by_origin;  ///< the tags of formats that are no library's say where objects come from
};

/// Brings all objects of sources into a library of the same unit, of which the caller holds a
/// transaction, and tells of each source what became of its objects.
ImportReport transfer_sources(const kit::Sources& sources,
                              const std::shared_ptr<veldra::Library>& library,
                              const ImportRules& rules, Progress& progress);

}  // namespace veldra_tool

#endif
