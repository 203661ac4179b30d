// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PLAN_OUTPUT_HPP
#define VELDRA_TOOL_PLAN_OUTPUT_HPP

#include "files/output_file.hpp"
#include "planned_change.hpp"
#include "process/spool.hpp"

#include <veldra/veldra.hpp>

#include <optional>
#include <string>
#include <vector>

namespace veldra_tool {

/// The file of a plan that is not carried out, if there is to be one.
class PlanOutput {
 public:
  /// `library` is the file for which the plan is, and `sources` are those that are read for it.
  /// Throws `Failure` when the file must not be written, or when there is no such library.
  PlanOutput(const PlanArguments& arguments, const std::string& library,
             const std::vector<std::string>& sources, Host& host);

  /// Has a change keep its plan here.
  void take_from(PlannedChange& change, const veldra::Library& library);

  /// Writes the plan. No library may be open.
  void write() const;

 private:
  void keep(const kit::Plan& plan, const veldra::Library& library);

  const std::string& library_;
  Host& host_;
  Spool text_;
  std::optional<OutputFile> file_;
};

}  // namespace veldra_tool

#endif
