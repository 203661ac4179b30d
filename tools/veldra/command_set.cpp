// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "assignments.hpp"
#include "edit_commands.hpp"
#include "editing.hpp"
#include "host.hpp"
#include "object_arguments.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> texts;
  std::vector<std::string> properties;
  Selection selection;
  PlanArguments plan;
};

void set(Arguments& arguments, Host& host) {
  take_selection(arguments.texts, arguments.selection);
  const Assigned assigned{assignments_in(arguments.texts, "FIELD=VALUE"),
                          assignments_in(arguments.properties, "--property")};
  if (assigned.fields.empty() && assigned.properties.empty()) {
    throw CLI::ValidationError("FIELD=VALUE", "say what to set");
  }
  edit_library(arguments.file, arguments.plan, host, [&](Editing& editing) {
    const auto keys = keys_of(editing.library(), arguments.selection);
    editing.change_each(keys, [&](auto of) {
      return Setter<typename decltype(of)::type>(editing.library(), assigned, keys.size());
    });
    return editing.carry_out();
  });
}

}  // namespace

void add_set(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "set", "Set fields of one object, of several, or of all that a filter selects");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option(
          "ARGUMENT", arguments->texts,
          fmt::format("What to change, {}; or KIND with --where; and behind it what to set, "
                      "each as FIELD=VALUE. An empty value clears the field; back-quotes "
                      "delimit a name with \"=\" in it. What begins with a kind and a "
                      "colon is an object",
                      objects_help()))
      ->required()
      ->type_name("");
  const auto* where = add_selection(command, arguments->selection);
  add_properties(command, arguments->properties);
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  add_example(command, "veldra set office.lib material:Brick conductivity=0.81 manufacturer=Smith");
  command.callback([arguments, where, &host] {
    arguments->selection.filtered = where->count() > 0;
    set(*arguments, host);
  });
}

}  // namespace veldra_tool
