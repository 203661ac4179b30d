// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_REPORT_HPP
#define VELDRA_TOOL_IMPORT_REPORT_HPP

#include "conflicts.hpp"
#include "json.hpp"

#include <map>
#include <string>
#include <vector>

namespace veldra_tool {

/// What an import did with one source.
struct ImportedSource {
  kit::SourceReport found;
  std::map<Outcome, unsigned> materials;
  std::map<Outcome, unsigned> compositions;
};

using ImportReport = std::vector<ImportedSource>;

/// What the objects of a source had besides that no library has a place for, by what it is.
std::map<std::string, unsigned> dropped_in(const kit::SourceReport& source);

std::string name_of(Outcome outcome);

Json to_json(const ImportReport& report);

/// The report for people.
std::string text_of(const ImportReport& report);

}  // namespace veldra_tool

#endif
