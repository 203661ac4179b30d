#ifndef VELDRA_TOOL_IMPORT_STAGING_HPP
#define VELDRA_TOOL_IMPORT_STAGING_HPP

#include "conflicts.hpp"
#include "import/import_set.hpp"
#include "import/report.hpp"
#include "transfer.hpp"

#include <veldra/veldra.hpp>

#include <memory>

namespace veldra_tool {

/// Brings all objects of a set into a library, of which the caller holds a transaction, and enters
/// into the report what became of each.
void transfer_set(const ImportSet& set, const std::shared_ptr<veldra::Library>& library,
                  OnConflict policy, ImportReport& report, Progress& progress);

}  // namespace veldra_tool

#endif
