// SPDX-License-Identifier: GPL-2.0-or-later
#include "editing.hpp"

#include "files/destination.hpp"
#include "opening.hpp"

#include <algorithm>

namespace veldra_tool {

void tell_edited(const kit::Plan& plan, const veldra::IdMapping& mapping,
                 const std::vector<kit::PlanEntry>& made, const PlanArguments& arguments,
                 Host& host) {
  PlanEntries entries;
  for (const auto* entry : entries_of(plan)) {
    const bool is_edited = plan.rules().states_of.count(entry->source) != 0;
    if (is_edited || entry->decision != kit::Decision::Equal) entries.push_back(entry);
  }
  for (const auto& entry : made) entries.push_back(&entry);
  if (arguments.json) return print_json(host.output, json_of(entries, mapping, *plan.source()));
  host.output.write(text_of(entries, arguments.verbose));
}

Editing::Editing(std::shared_ptr<veldra::Library> library, const PlanArguments& arguments,
                 Host& host)
    : library_(std::move(library)),
      states_(create_staging_library(library_->unit())),
      mapping_(states_.get()),
      arguments_(arguments),
      host_(host) {}

bool Editing::carry_out(const std::function<void()>& remark) {
  PlannedChange change(arguments_, host_, "editing");
  change.advise("");
  change.report_by([this](const auto& plan, const auto& mapping) {
    tell_edited(plan, mapping, made_, arguments_, host_);
  });
  const bool is_changed = change.carry_out(states_, *library_, rules_);
  const bool is_made = std::any_of(made_.begin(), made_.end(), [](const auto& entry) {
    return entry.decision != kit::Decision::Equal;
  });
  if (!arguments_.json) {
    if (remark) remark();
    if (arguments_.dry_run) tell_nothing_written(arguments_, host_);
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
