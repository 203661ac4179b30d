// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_REPORT_HPP
#define VELDRA_TOOL_IMPORT_REPORT_HPP

#include "json.hpp"
#include "plan_report.hpp"

#include <map>
#include <string>
#include <vector>

namespace veldra_tool {

/// What an import does with each of several sources: what was found in them, and what is planned
/// for their objects. Both must outlive it.
class ImportReport {
 public:
  ImportReport(const kit::Sources& sources, const kit::Plan& plan);

  Json json(const veldra::IdMapping& mapping) const;

  /// For people; more than 20 objects are counted unless `verbose`.
  std::string text(bool verbose) const;

 private:
  using Counts = std::map<kit::Decision, unsigned>;

  /// What became of the objects of one source.
  struct OfSource {
    const kit::SourceReport* found;
    Counts materials;
    Counts compositions;
    PlanEntries entries;
  };

  static Counts& counts_of(veldra::ObjectType kind, OfSource& source);
  void count_repeated();
  void count(const kit::PlanEntry& entry);
  Json json_of_source(const OfSource& source, const veldra::IdMapping& mapping) const;
  static std::string text_of_source(const OfSource& source);
  std::string text_of_made(bool verbose) const;

  const kit::Sources& sources_;
  const kit::Plan& plan_;
  std::vector<OfSource> of_sources_;
  PlanEntries made_;  ///< tags, types, drawing layers and properties that the library lacked
};

}  // namespace veldra_tool

#endif
