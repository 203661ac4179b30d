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
  std::string plan_file;
};

void add_plan_arguments(CLI::App& command, PlanArguments& arguments);

/// What is to become of clashes: POLICY, KIND=POLICY or KIND:OBJECT=POLICY.
void add_on_conflict(CLI::App& command, std::vector<std::string>& policies);

/// The rules that such texts give for the objects of a source. Throws `Failure`.
kit::PlanRules rules_of(const std::vector<std::string>& policies, const veldra::Library& source);

/// The rule for objects of which nothing more is said.
kit::OnClash general_rule(const std::vector<std::string>& policies);

/// Says of a dry run that it was one.
void tell_dry_run(Host& host);

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

  /// Says nothing about what could be done about clashes.
  void leave_no_choice() { has_choice_ = false; }

  bool carry_out(const std::shared_ptr<const veldra::Library>& source, veldra::Library& library,
                 kit::PlanRules rules, const Remark& remark = {});

 private:
  void tell_usually(const kit::Plan& plan, const veldra::IdMapping& mapping);
  void refuse_clashes(const kit::Plan& plan);

  const PlanArguments& arguments_;
  Host& host_;
  std::string what_;
  Tell tell_;
  bool has_choice_ = true;
};

}  // namespace veldra_tool

#endif
