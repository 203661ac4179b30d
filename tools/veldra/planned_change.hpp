// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PLANNED_CHANGE_HPP
#define VELDRA_TOOL_PLANNED_CHANGE_HPP

#include "host.hpp"
#include "plan_report.hpp"

#include <veldra/veldra.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tool {

/// How a command that plans its changes shows them.
struct PlanArguments {
  bool dry_run = false;
  bool verbose = false;
  bool json = false;
  std::string plan_file;  ///< where the plan is written in place of being carried out; or empty
  bool replaces = false;  ///< also where there is a file of that name

  /// Whether the library stays as it is.
  bool only_tells() const { return dry_run || !plan_file.empty(); }
};

void add_plan_arguments(CLI::App& command, PlanArguments& arguments);

/// Adds what has a plan written into a file.
void add_plan_file(CLI::App& command, PlanArguments& arguments);

/// What is to become of clashes: POLICY, KIND=POLICY or KIND:OBJECT=POLICY.
void add_on_conflict(CLI::App& command, std::vector<std::string>& policies);

/// The rules that such texts give for the objects of a source. Throws `Failure`.
kit::PlanRules rules_of(const std::vector<std::string>& policies, const veldra::Library& source);

/// The rule for objects of which nothing more is said.
kit::OnClash general_rule(const std::vector<std::string>& policies);

/// Says why the library is as it was, where only told was what would happen.
void tell_nothing_written(const PlanArguments& arguments, Host& host);

/// So many conflicts keep something from being done.
std::string clashes_text(std::size_t count);

/// Plans what is to become of the objects of a source in a library, tells it, and does it unless it
/// is a dry run. The caller holds the transaction of the library, and commits it where this gives
/// true.
class PlannedChange {
 public:
  /// Says what else is to be said of a plan that is carried out.
  using Remark = std::function<void(const kit::Plan&)>;

  /// Reports in another way than the usual one.
  using Tell = std::function<void(const kit::Plan&, const veldra::IdMapping&)>;

  /// `what` is for the line that tells how far the work is.
  PlannedChange(const PlanArguments& arguments, Host& host, std::string what);

  void report_by(Tell tell) { tell_ = std::move(tell); }

  /// Says something else, or nothing, about what could be done about clashes.
  void advise(std::string advice) { advice_ = std::move(advice); }

  /// Does something with each plan before it is carried out.
  void keep_by(Remark keep) { keep_ = std::move(keep); }

  /// The same with a plan that was made already.
  bool carry_out(const kit::Plan& plan, veldra::Library& library, const Remark& remark = {});

  bool carry_out(const std::shared_ptr<const veldra::Library>& source, veldra::Library& library,
                 kit::PlanRules rules, const Remark& remark = {});

 private:
  void tell_usually(const kit::Plan& plan, const veldra::IdMapping& mapping);
  void refuse_clashes(const kit::Plan& plan);

  const PlanArguments& arguments_;
  Host& host_;
  std::string what_;
  Tell tell_;
  Remark keep_;
  std::string advice_ = "; --on-conflict says what to do";
};

}  // namespace veldra_tool

#endif
