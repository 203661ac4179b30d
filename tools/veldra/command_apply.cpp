// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "edit_commands.hpp"
#include "failure.hpp"
#include "files/destination.hpp"
#include "files/reading.hpp"
#include "host.hpp"
#include "opening.hpp"
#include "planned_change.hpp"
#include "progress.hpp"
#include "text.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/numbers.hpp>

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string plan_file;
  std::string library;
  PlanArguments plan;
};

kit::Plan plan_in(const kit::PlanFile& file, const veldra::Library& library) {
  Progress progress("planning");
  return file.plan(library, [&progress] { progress.step(); });
}

bool is_written(kit::Decision decision) {
  return decision == kit::Decision::Add || decision == kit::Decision::Change ||
         decision == kit::Decision::Rename;
}

template <class T>
void tell_faults(const kit::Plan& plan, const kit::PlanEntry& entry, Host& host) {
  const auto object = plan.source()->get<T>(entry.source.id);
  for (const auto& fault : kit::wrong_numbers(*object)) {
    host.notes += fmt::format("veldra: {} {}: {}\n", kit::singular_of(entry.source.type),
                              in_quotes(entry.name), printable(fault));
    if (host.status == Status::Done) host.status = Status::Findings;
  }
}

/// The objects of a plan are edited by hand, and their numbers are doubtful as those of any file.
void tell_doubtful_numbers(const kit::Plan& plan, Host& host) {
  for (const auto& entry : plan.entries()) {
    if (!is_written(entry.decision)) continue;
    if (entry.source.type == veldra::ObjectType::Material) {
      tell_faults<veldra::Material>(plan, entry, host);
    }
    if (entry.source.type == veldra::ObjectType::Composition) {
      tell_faults<veldra::Composition>(plan, entry, host);
    }
  }
}

void apply(const Arguments& arguments, Host& host) {
  const auto file = working_on(arguments.plan_file, [&] {
    return kit::PlanFile(arguments.plan_file, content_of(arguments.plan_file));
  });
  const auto& path = arguments.library.empty() ? file.path() : arguments.library;
  tell_as_it_was(path);
  working_on(path, [&] {
    PlannedChange change(arguments.plan, host, "applying");
    change.advise(fmt::format("; the decisions are in {}", in_quotes(arguments.plan_file)));
    Destination(path, arguments.plan.dry_run, host)
        .take_existing([&](const std::shared_ptr<veldra::Library>& library) {
          return change.carry_out(plan_in(file, *library), *library,
                                  [&host](const auto& plan) { tell_doubtful_numbers(plan, host); });
        });
  });
}

}  // namespace

void add_apply(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "apply", "Do what a plan says that 'import' or 'copy' has written with --plan");
  const auto arguments = std::make_shared<Arguments>();
  command.add_option("PLAN", arguments->plan_file, "The file of the plan")
      ->required()
      ->type_name("");
  command
      .add_option("LIBRARY", arguments->library,
                  "Where the library of the plan is now; usually the plan says that")
      ->check(some_value())
      ->type_name("");
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  add_example(command, "veldra apply plan.json");
  command.callback([arguments, &host] { apply(*arguments, host); });
}

}  // namespace veldra_tool
