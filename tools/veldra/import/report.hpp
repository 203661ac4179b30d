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
struct SourceReport {
  std::string file;
  std::string format;
  std::map<std::string, unsigned> read;     ///< objects, by class
  std::map<std::string, unsigned> skipped;  ///< objects, by class
  std::map<std::string, unsigned> dropped;  ///< what imported objects had besides, by what it is
  std::map<Outcome, unsigned> materials;
  std::map<Outcome, unsigned> compositions;
  unsigned layers = 0;
  unsigned layers_without_thickness = 0;
  unsigned references_not_found = 0;
  std::vector<std::string> problems;  ///< one sentence each
};

using ImportReport = std::vector<SourceReport>;

std::string name_of(Outcome outcome);

Json to_json(const ImportReport& report);

/// The report for people.
std::string text_of(const ImportReport& report);

}  // namespace veldra_tool

#endif
