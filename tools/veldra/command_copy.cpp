// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "copying/everything.hpp"
#include "copying/staging.hpp"
#include "failure.hpp"
#include "files/destination.hpp"
#include "host.hpp"
#include "kinds.hpp"
#include "object_arguments.hpp"
#include "opening.hpp"
#include "plan_output.hpp"
#include "planned_change.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string source;
  std::string destination;
  std::vector<std::string> objects;
  bool all = false;
  std::vector<std::string> on_conflict;
  veldra::Unit unit = veldra::Unit::Millimetres;
  bool unit_given = false;
  PlanArguments plan;
};

/// An empty library takes over the language of what comes into it, as by an import.
void adopt_settings(veldra::Library& library, const veldra::Library& source) {
  if (!has_no_names(library)) return;
  if (library.locale().empty() && source.locale()) library.locale(source.locale());
  if (library.region().empty() && source.region()) library.region(source.region());
}

bool is_written(const kit::PlanEntry& entry) {
  return entry.decision == kit::Decision::Add || entry.decision == kit::Decision::Rename ||
         entry.decision == kit::Decision::Change;
}

/// A material that is taken as it is in the destination loses nothing.
unsigned lost_assets(const kit::Plan& plan, const AssetCounts& assets) {
  if (assets.empty()) return 0;
  unsigned lost = 0;
  for (const auto& entry : plan.entries()) {
    const auto found = assets.find(entry.name);
    const bool is_material = entry.source.type == veldra::ObjectType::Material;
    if (is_material && is_written(entry) && found != assets.end()) lost += found->second;
  }
  return lost;
}

void tell_lost_assets(unsigned lost, Host& host) {
  if (lost == 0 || host.status == Status::Failed) return;
  host.status = Status::Findings;
  host.notes +=
      fmt::format("veldra: {} of the materials {} left behind, as a copy has none\n",
                  lost == 1 ? "1 asset" : fmt::format("{} assets", lost), lost == 1 ? "is" : "are");
}

/// Whether the report has no names, so that none need be known.
bool is_counted(const Arguments& arguments, const veldra::Library& source) {
  const auto& plan = arguments.plan;
  if (!arguments.all || plan.verbose || plan.json || !plan.plan_file.empty()) return false;
  return source.count<veldra::Material>() + source.count<veldra::Composition>() > few_objects;
}

/// Copies without a plan. Gives whether there is anything to keep.
bool copy_at_once(const Arguments& arguments, const Staging& staging, veldra::Library& destination,
                  Host& host) {
  host.output.write(counted_text(copy_everything(staging.library(), destination)));
  if (arguments.plan.only_tells()) tell_nothing_written(arguments.plan, host);
  unsigned lost = 0;
  for (const auto& material : staging.assets()) lost += material.second;
  tell_lost_assets(lost, host);
  return !arguments.plan.only_tells();
}

bool copy_by_plan(const Arguments& arguments, const Staging& staging, veldra::Library& destination,
                  const kit::PlanRules& rules, PlanOutput& output, Host& host) {
  PlannedChange change(arguments.plan, host, "copying");
  output.take_from(change, destination);
  return change.carry_out(staging.library(), destination, rules, [&](const kit::Plan& plan) {
    tell_lost_assets(lost_assets(plan, staging.assets()), host);
  });
}

void copy(const Arguments& arguments, Host& host) {
  if (arguments.all != arguments.objects.empty()) {
    throw CLI::ValidationError("OBJECT", "say which objects to copy, or --all");
  }
  const auto wanted = named_objects(arguments.objects);
  if (same_file(arguments.source, arguments.destination)) {
    throw Failure("the source and the destination are the same file");
  }
  tell_as_they_were(arguments.source, arguments.destination);
  PlanOutput output(arguments.plan, arguments.destination, {arguments.source}, host);
  const auto staging = arguments.all ? Staging::of_everything(arguments.source)
                                     : Staging::of(arguments.source, wanted);
  const auto& source = *staging.library();
  const auto unit = arguments.unit_given ? arguments.unit : source.unit();
  working_on(arguments.destination, [&] {
    const auto rules = rules_of(arguments.on_conflict, source);
    Destination place(arguments.destination, arguments.plan.only_tells(), host);
    if (arguments.unit_given) place.demand(arguments.unit);
    place.take(unit, true, [&](const std::shared_ptr<veldra::Library>& destination) {
      const bool is_free = has_no_names(*destination);
      adopt_settings(*destination, source);
      return staging.reading([&] {
        return is_free && is_counted(arguments, source)
                   ? copy_at_once(arguments, staging, *destination, host)
                   : copy_by_plan(arguments, staging, *destination, rules, output, host);
      });
    });
  });
  output.write();
}

}  // namespace

void add_copy(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "copy", "Copy objects, and what they refer to, into another library, making it if missing");
  const auto arguments = std::make_shared<Arguments>();
  command.add_option("SOURCE", arguments->source, "The library to copy from")
      ->required()
      ->type_name("");
  command.add_option("DEST", arguments->destination, "The library to copy into")
      ->required()
      ->type_name("");
  command
      .add_option("OBJECT", arguments->objects,
                  fmt::format("What to copy, {}; the kinds are {}, also in the singular",
                              objects_help(), kind_choices()))
      ->type_name("");
  command.add_flag("--all", arguments->all, "Copy everything");
  add_on_conflict(command, arguments->on_conflict);
  add_backup(command, host);
  add_unit(command, arguments->unit);
  add_plan_arguments(command, arguments->plan);
  add_plan_file(command, arguments->plan);
  add_example(command, "veldra copy office.lib site.lib 'composition:Flat roof' material:17",
              "materials had assets, which are not copied");
  command.callback([arguments, &command, &host] {
    arguments->unit_given = command.count("--unit") > 0;
    copy(*arguments, host);
  });
}

}  // namespace veldra_tool
