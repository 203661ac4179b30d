// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/destination.hpp"
#include "host.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
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

/// How many assets the materials of a library have, by their names.
using AssetCounts = std::map<std::string, unsigned>;

AssetCounts assets_in(const veldra::Library& library) {
  AssetCounts counts;
  library.for_each<veldra::Material>([&](const std::shared_ptr<veldra::Material>& material) {
    const unsigned count =
        (material->structuralAsset() ? 1U : 0U) + (material->thermalAsset() ? 1U : 0U);
    if (count > 0) counts[material->name().utf8()] = count;
    return true;
  });
  return counts;
}

/// What is to be copied, in a library in memory, so that nobody waits for the source.
struct Staged {
  std::shared_ptr<veldra::Library> library;
  AssetCounts assets;  ///< which stay behind, of all materials of the source
  veldra::String locale;
  veldra::String region;
};

Staged staged(const Arguments& arguments, const std::vector<NamedObject>& wanted) {
  Staged result;
  reading_one_state(arguments.source, [&](const veldra::Library& source) {
    result.library = create_staging_library(source.unit());
    if (arguments.all) {
      result.library->copyAll(source.shared_from_this());
    } else {
      result.library->copy(source.shared_from_this(), keys_of(source, wanted));
    }
    result.assets = assets_in(source);
    result.locale = source.locale();
    result.region = source.region();
  });
  return result;
}

/// An empty library takes over the language of what comes into it, as by an import.
void adopt_settings(veldra::Library& library, const Staged& staging) {
  if (library.count<veldra::Material>() + library.count<veldra::Composition>() != 0) return;
  if (library.locale().empty() && staging.locale) library.locale(staging.locale);
  if (library.region().empty() && staging.region) library.region(staging.region);
}

bool is_written(const kit::PlanEntry& entry) {
  return entry.decision == kit::Decision::Add || entry.decision == kit::Decision::Rename ||
         entry.decision == kit::Decision::Change;
}

/// A material that is taken as it is in the destination loses nothing.
unsigned lost_assets(const kit::Plan& plan, const AssetCounts& assets) {
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
  const auto staging = staged(arguments, wanted);
  const auto unit = arguments.unit_given ? arguments.unit : staging.library->unit();
  working_on(arguments.destination, [&] {
    const auto rules = rules_of(arguments.on_conflict, *staging.library);
    PlannedChange change(arguments.plan, host, "copying");
    Destination place(arguments.destination, arguments.plan.only_tells(), host);
    if (arguments.unit_given) place.demand(arguments.unit);
    place.take(unit, true, [&](const std::shared_ptr<veldra::Library>& destination) {
      adopt_settings(*destination, staging);
      output.take_from(change, *destination);
      return change.carry_out(staging.library, *destination, rules, [&](const kit::Plan& plan) {
        tell_lost_assets(lost_assets(plan, staging.assets), host);
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
      .add_option(
          "OBJECT", arguments->objects,
          fmt::format("What to copy, as KIND:OBJECT, which is {}; the kinds are {}, also in "
                      "the singular",
                      naming_help, kind_choices()))
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
