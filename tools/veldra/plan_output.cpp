// SPDX-License-Identifier: GPL-2.0-or-later
#include "plan_output.hpp"

#include "failure.hpp"
#include "files/path.hpp"
#include "opening.hpp"
#include "progress.hpp"

#include <string_view>

namespace veldra_tool {

PlanOutput::PlanOutput(const PlanArguments& arguments, const std::string& library,
                       const std::vector<std::string>& sources, Host& host)
    : library_(library), host_(host) {
  const auto& file = arguments.plan_file;
  if (file.empty()) return;
  if (!file_exists(library)) {
    throw failure_of(library, "there is no such file, and a plan is for a library that is there");
  }
  for (const auto& source : sources) {
    if (same_file(file, source)) throw failure_of(file, "this is a source of the plan");
  }
  file_.emplace(file, library, arguments.replaces);
}

void PlanOutput::take_from(PlannedChange& change, const veldra::Library& library) {
  if (!file_) return;
  change.keep_by([this, &library](const kit::Plan& plan) { keep(plan, library); });
}

void PlanOutput::keep(const kit::Plan& plan, const veldra::Library& library) {
  Progress progress("writing the plan");
  text_.clear();
  kit::write_plan(
      plan, library, library_path(library_), [this](std::string_view part) { text_.write(part); },
      [&progress] { progress.step(); });
}

void PlanOutput::write() const {
  if (file_ && !text_.empty()) file_->write(host_, text_);
}

}  // namespace veldra_tool
