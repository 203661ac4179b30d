// SPDX-License-Identifier: GPL-2.0-or-later
#include "editing.hpp"

#include "files/destination.hpp"
#include "opening.hpp"

#include <algorithm>

namespace veldra_tool {

Editing::Editing(std::shared_ptr<veldra::Library> library, const PlanArguments& arguments,
                 Host& host)
    : library_(std::move(library)),
      states_(create_staging_library(library_->unit())),
      mapping_(states_.get()),
      arguments_(arguments),
      host_(host) {}

/// What edited objects refer to comes along, and is the same.
bool Editing::is_shown(const kit::PlanEntry& entry) const {
  return entry.decision != kit::Decision::Equal || rules_.states_of.count(entry.source) != 0;
}

void Editing::tell(const kit::Plan& plan, const veldra::IdMapping& mapping) const {
  PlanEntries entries;
  for (const auto* entry : entries_of(plan)) {
    if (is_shown(*entry)) entries.push_back(entry);
  }
  for (const auto& entry : made_) entries.push_back(&entry);
  if (arguments_.json) return print_json(host_.output, json_of(entries, mapping, *plan.source()));
  host_.output.write(text_of(entries, arguments_.verbose));
}

bool Editing::carry_out(const std::function<void()>& remark) {
  PlannedChange change(arguments_, host_, "editing");
  change.leave_no_choice();
  change.report_by([this](const auto& plan, const auto& mapping) { tell(plan, mapping); });
  const bool is_changed = change.carry_out(states_, *library_, rules_);
  const bool is_made = std::any_of(made_.begin(), made_.end(), [](const auto& entry) {
    return entry.decision != kit::Decision::Equal;
  });
  if (!arguments_.json) {
    if (remark) remark();
    if (arguments_.dry_run) tell_dry_run(host_);
  }
  return (is_changed || is_made) && !arguments_.dry_run;
}

void edit_library(const std::string& file, const PlanArguments& arguments, Host& host,
                  const std::function<bool(Editing&)>& edit) {
  tell_as_it_was(file);
  working_on(file, [&] {
    Destination(file, arguments.dry_run, host)
        .take_existing([&](const std::shared_ptr<veldra::Library>& library) {
          Editing editing(library, arguments, host);
          return edit(editing);
        });
  });
}

}  // namespace veldra_tool
