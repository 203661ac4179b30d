// SPDX-License-Identifier: GPL-2.0-or-later
#include "host.hpp"

#include "arguments.hpp"
#include "configuration.hpp"
#include "edit_commands.hpp"
#include "failure.hpp"
#include "process/writing.hpp"

#include <veldra/version.hpp>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>

namespace veldra_tool {

namespace {

std::string versions() {
  return fmt::format("veldra {} (SQLite {})", veldra::version_text(),
                     veldra::sqlite_version_text());
}

}  // namespace

Host::Host()
    : app_(new CLI::App("Catalogues of building materials and build-ups in library files")),
      arguments(*app_) {
  arguments.name("veldra");
  arguments.set_version_flag("--version", versions(), "Print the release of the program and exit");
  arguments.add_flag("--no-config", without_configuration_, "Ignore the configuration file");
  arguments.require_subcommand(1);
  arguments.parse_complete_callback([this] { configure(); });
  arguments.get_formatter()->label("SUBCOMMAND", "COMMAND");
  arguments.get_formatter()->label("Positionals", "Arguments");
  arguments.get_formatter()->label("REQUIRED", "(required)");
  arguments.footer(
      "'veldra COMMAND --help' tells more about a command.\n\n"
      "Exit status:\n"
      "  0  done\n"
      "  1  an error: nothing was done\n"
      "  2  wrong use: nothing was done\n"
      "  3  done, with findings: 'check' has found something, objects stay because they are in\n"
      "     use, something did not come along, or the report could not be written\n\n"
      "Configuration:\n"
      "  The file veldra/config in $XDG_CONFIG_HOME, or else ~/.config/veldra/config, has lines "
      "such\n"
      "  as 'backup = FOLDER', which has each command that changes a library write a backup of it\n"
      "  into that folder before; # begins a comment.\n\n"
      "Language:\n"
      "  All texts are English, and numbers have a point and nothing between thousands, whatever\n"
      "  the locale of the system. Names may be any UTF-8. Colours are shown on terminals only, "
      "and\n"
      "  nowhere when NO_COLOR is set.");
  for (const auto add :
       {add_create, add_info,      add_list,   add_show, add_where_used, add_import,
        add_export, add_copy,      add_apply,  add_new,  add_set,        add_edit,
        add_rename, add_duplicate, add_layers, add_tag,  add_untag,      add_remove,
        add_purge,  add_restore,   add_draw,   add_calc, add_check,      add_help})
    add(*this);
  for (CLI::App* command : arguments.get_subcommands({})) {
    command->group("Commands")->fallthrough();
    forbid_values_of_flags(*command);
  }
}

Host::~Host() = default;

bool Host::has_command(const std::string& name) const {
  const auto commands = arguments.get_subcommands({});
  return std::any_of(commands.begin(), commands.end(),
                     [&](const CLI::App* command) { return command->get_name() == name; });
}

void Host::configure() {
  const auto commands = arguments.get_subcommands();
  const bool is_help = !commands.empty() && commands.front()->get_name() == "help";
  if (!without_configuration_ && !is_help) backup.go_to_folder(read_configuration().backup);
  backup.require_place();
}

void Host::doubt(const std::string& file, int error) {
  notes += fmt::format("veldra: {}: it is done, but may be gone after a power failure: {}\n",
                       in_quotes(file), text_of_error(error));
  status = Status::Findings;
}

}  // namespace veldra_tool
