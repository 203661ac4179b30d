// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "conflicts.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "progress.hpp"
#include "table.hpp"
#include "transfer.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string source;
  std::string destination;
  std::vector<std::string> objects;
  bool all = false;
  OnConflict on_conflict = OnConflict::Fail;
  bool json = false;
};

/// What became of an object of the source.
struct Copied {
  veldra::ObjectType kind;
  std::string name;    ///< in the source
  std::string result;  ///< name in the destination
  unsigned id;         ///< in the destination
  Outcome outcome;
};

/// What "KIND:OBJECT" says.
struct Wanted {
  veldra::ObjectType kind;
  std::string object;
};

std::vector<Wanted> wanted_objects(const Arguments& arguments) {
  std::vector<Wanted> wanted;
  for (const auto& text : arguments.objects) {
    const auto colon = text.find(':');
    const auto kind = kinds_by_name().find(text.substr(0, colon));
    if (colon == std::string::npos || kind == kinds_by_name().end()) {
      throw CLI::ValidationError(
          "OBJECT",
          fmt::format("{} is not KIND:OBJECT, such as composition:Roof", in_quotes(text)));
    }
    wanted.push_back({kind->second, text.substr(colon + 1)});
  }
  return wanted;
}

std::set<veldra::ObjectKey> keys_of(const veldra::Library& library,
                                    const std::vector<Wanted>& wanted) {
  std::set<veldra::ObjectKey> keys;
  for (const auto& object : wanted) {
    with_class_of(object.kind, [&](auto of) {
      using T = typename decltype(of)::type;
      keys.insert({object.kind, find_object<T>(library, object.object)->id()});
    });
  }
  return keys;
}

template <class T>
Copied copied_of(const veldra::Library& source, const veldra::Library& destination, unsigned id,
                 const veldra::IdMapping::Value& value, const ConflictReactor& reactor) {
  constexpr auto kind = veldra::ObjectTraits<T>::type;
  const auto from = source.get<T>(id);
  const auto to = destination.get<T>(value.id);
  const veldra::String name = from ? from->name() : veldra::String();
  return {kind, name.utf8(), to ? to->name().utf8() : "", value.id,
          reactor.outcome(kind, name, value.status)};
}

std::vector<Copied> copied_objects(const veldra::Library& source,
                                   const veldra::Library& destination,
                                   const veldra::IdMapping& mapping,
                                   const ConflictReactor& reactor) {
  std::vector<Copied> objects;
  for (const auto& [key, value] : mapping) {
    const unsigned id = key.key.id;
    // Without an id it is the type that a material without one is given on the way.
    if (id == 0) continue;
    with_class_of(key.key.type, [&, value = value](auto of) {
      using T = typename decltype(of)::type;
      objects.push_back(copied_of<T>(source, destination, id, value, reactor));
    });
  }
  return objects;
}

/// Tags, types, layers and properties of the same name are one and the same.
std::string status_text(const Copied& copied) {
  switch (copied.outcome) {
    case Outcome::Added:
      return "inserted";
    case Outcome::Renamed:
      return "inserted as " + copied.result;
    case Outcome::Changed:
      return "updated";
    default:
      return "taken as it is";
  }
}

const char* outcome_text(Outcome outcome) {
  switch (outcome) {
    case Outcome::Added:
    case Outcome::Renamed:
      return "inserted";
    case Outcome::Changed:
      return "updated";
    default:
      return "existing";
  }
}

/// The name is the one in the source, the id the one in the destination.
void print(Spool& output, const std::vector<Copied>& objects, bool json) {
  if (json) {
    return print_json_list(output, objects, [](const Copied& copied) {
      Json entry = key_to_json({copied.kind, copied.id}, copied.name);
      entry["outcome"] = outcome_text(copied.outcome);
      entry["name_in_destination"] = copied.result;
      return entry;
    });
  }
  Table table = object_table("what became of it");
  for (const auto& copied : objects) {
    table.add(
        {singular_of(copied.kind), fmt::format("{}", copied.id), copied.name, status_text(copied)});
  }
  print_table(output, table, "There was nothing to copy.");
}

/// How many assets the materials of a library have, by their names.
using AssetCounts = std::map<std::string, unsigned>;

AssetCounts assets_in(const veldra::Library& library) {
  AssetCounts counts;
  for (const auto& material : all_objects<veldra::Material>(library)) {
    const unsigned count =
        (material->structuralAsset() ? 1U : 0U) + (material->thermalAsset() ? 1U : 0U);
    if (count > 0) counts[material->name().utf8()] = count;
  }
  return counts;
}

/// What is to be copied, in a library in memory, so that it is there to be compared in the unit of
/// the destination, and nobody waits for the source.
struct Staged {
  std::shared_ptr<veldra::Library> library;
  AssetCounts assets;  ///< which stay behind, of all materials of the source
};

Staged staged(const Arguments& arguments, const std::vector<Wanted>& wanted, veldra::Unit unit) {
  Staged result;
  result.library = create_staging_library(unit);
  reading_one_state(arguments.source, [&](const veldra::Library& source) {
    if (arguments.all) {
      result.library->copyAll(source.shared_from_this());
    } else {
      result.library->copy(source.shared_from_this(), keys_of(source, wanted));
    }
    result.assets = assets_in(source);
  });
  return result;
}

/// A material that is taken as it is in the destination loses nothing.
unsigned lost_assets(const std::vector<Copied>& objects, const AssetCounts& assets) {
  unsigned lost = 0;
  for (const auto& copied : objects) {
    const bool written = copied.outcome != Outcome::Equal && copied.outcome != Outcome::Kept;
    const auto found = assets.find(copied.name);
    if (copied.kind != veldra::ObjectType::Material || !written || found == assets.end()) continue;
    lost += found->second;
  }
  return lost;
}

void tell_lost_assets(unsigned lost, Host& host) {
  if (lost == 0) return;
  host.status = Status::Findings;
  host.notes +=
      fmt::format("veldra: {} of the materials {} left behind, as a copy has none\n",
                  lost == 1 ? "1 asset" : fmt::format("{} assets", lost), lost == 1 ? "is" : "are");
}

void copy_objects(const Staged& staging, const std::shared_ptr<veldra::Library>& destination,
                  const Arguments& arguments, Host& host) {
  Progress progress("copying");
  veldra::IdMapping mapping(destination.get());
  ConflictReactor reactor(arguments.on_conflict, *staging.library, mapping);
  change_as_a_whole(host, *destination, [&] {
    transfer(staging.library, destination, reactor, mapping, progress);
    const auto objects = copied_objects(*staging.library, *destination, mapping, reactor);
    print(host.output, objects, arguments.json);
    tell_lost_assets(lost_assets(objects, staging.assets), host);
  });
}

void copy(const Arguments& arguments, Host& host) {
  if (arguments.all != arguments.objects.empty()) {
    throw CLI::ValidationError("OBJECT", "say which objects to copy, or --all");
  }
  const auto wanted = wanted_objects(arguments);
  if (same_file(arguments.source, arguments.destination)) {
    throw Failure("the source and the destination are the same file");
  }
  tell_as_they_were(arguments.source, arguments.destination);
  working_on(arguments.destination, [&] {
    const auto destination = open_to_change(host, arguments.destination);
    const auto staging = staged(arguments, wanted, destination->unit());
    copy_objects(staging, destination, arguments, host);
  });
}

}  // namespace

void add_copy(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "copy", "Copy objects, and what they refer to, from one library into another");
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
  add_json(command, arguments->json);
  add_example(command, "veldra copy office.lib site.lib 'composition:Flat roof' material:17",
              "materials had assets, which are not copied");
  command.callback([arguments, &host] { copy(*arguments, host); });
}

}  // namespace veldra_tool
