// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/path.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "opening.hpp"
#include "removal.hpp"
#include "summary.hpp"
#include "text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::string backup;
  bool force = false;
  bool dry_run = false;
  bool json = false;
};

[[noreturn]] void refuse_other_library(const Arguments& arguments) {
  throw failure_of(arguments.backup,
                   fmt::format("this is a backup of another library than {}; --force takes its "
                               "contents all the same",
                               in_quotes(arguments.file)));
}

/// An older library is left alone: to open it is to bring it up to date.
void require_backup(const Arguments& arguments, const veldra::Library& library) {
  using Kind = veldra::Library::Recognition::Kind;
  const auto kind = recognised(arguments.backup);
  if (kind == Kind::OlderLibrary) return;
  const auto backup = open_library(arguments.backup, Access::Read);
  if (!arguments.force && backup->guid() != library.guid()) refuse_other_library(arguments);
}

/// The library says of what it has read where the name of the file is in the text of the error.
bool lies_in_the_backup(const std::string& path) {
  return veldra::error_text().find(path) != std::string::npos;
}

void replace_contents(veldra::Library& library, const Arguments& arguments) {
  const auto path = library_path(arguments.backup);
  try {
    library.restoreFrom(library_text(path), arguments.force);
  } catch (const veldra::OtherLibrary&) {
    refuse_other_library(arguments);
  } catch (const veldra::NotALibrary&) {
    throw failure_of(arguments.backup, "this is not a veldra library");
  } catch (...) {
    if (lies_in_the_backup(path)) rethrow_for(arguments.backup);
    throw;
  }
}

RemovalCounts counts_in(const veldra::Library& library) {
  RemovalCounts counts;
  for (const auto kind : all_kinds()) {
    with_class_of(kind, [&](auto of) {
      const auto count = library.count<typename decltype(of)::type>();
      if (count > 0) counts[kind] = count;
    });
  }
  return counts;
}

void print(const Arguments& arguments, const veldra::Library& library, Spool& output) {
  if (arguments.json) {
    Json facts = facts_of(library);
    facts["read_only"] = false;
    return print_json(output, facts);
  }
  const auto counts = text_of(counts_in(library));
  if (!arguments.dry_run) {
    return output.print("{} has the contents of {} now: {}\n", in_quotes(arguments.file),
                        in_quotes(arguments.backup), counts);
  }
  output.print("{} would have the contents of {}: {}\n", in_quotes(arguments.file),
               in_quotes(arguments.backup), counts);
  output.print("Nothing was written, because this was a dry run.\n");
}

/// Does it with a library in memory, so that all is found that would keep it from being done.
void restore_tentatively(const Arguments& arguments, Host& host) {
  working_on(arguments.file, [&] {
    const auto library = open_library(arguments.file, Access::Read);
    require_backup(arguments, *library);
    const auto tentative = create_staging_library(library->unit());
    Arguments of_any = arguments;
    of_any.force = true;
    replace_contents(*tentative, of_any);
    if (!arguments.force && tentative->guid() != library->guid()) refuse_other_library(arguments);
    print(arguments, *tentative, host.output);
  });
}

void restore(const Arguments& arguments, Host& host) {
  if (same_file(arguments.file, arguments.backup)) {
    throw Failure("the library and the backup are the same file");
  }
  tell_as_it_was(arguments.file);
  if (arguments.dry_run) return restore_tentatively(arguments, host);
  working_on(arguments.file, [&] {
    const auto library = open_to_change(host, arguments.file);
    require_backup(arguments, *library);
    host.backup.make(*library);
    stop_if_asked();
    forbid_sudden_end();
    host.backup.put_into_place();
    replace_contents(*library, arguments);
    host.done = true;
    print(arguments, *library, host.output);
  });
}

}  // namespace

void add_restore(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "restore", "Replace all contents of a library by those of a backup, or of another library");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command.add_option("BACKUP", arguments->backup, "The library whose contents it gets")
      ->required()
      ->type_name("");
  command.add_flag("--force", arguments->force,
                   "Also from another library, whose GUID, unit, locale and region it then has");
  command.add_flag(
      "--dry-run", arguments->dry_run,
      "Look through the backup and tell what the library would have, and write nothing");
  add_backup(command, host);
  add_json(command, arguments->json);
  add_example(command, "veldra restore office.lib before-import.lib --backup before-restore.lib");
  command.callback([arguments, &host] { restore(*arguments, host); });
}

}  // namespace veldra_tool
