// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

/// What `--help` of the command prints; of the program when none is named.
std::string help_of(const Host& host, const std::string& command) {
  const auto& program = host.arguments;
  if (command.empty()) {  // its own `help` would be that of the command that is being parsed
    return program.get_formatter()->make_help(&program, program.get_name(),
                                              CLI::AppFormatMode::Normal);
  }
  return host.arguments.get_subcommand(command)->help(host.arguments.get_name());
}

}  // namespace

void add_help(Host& host) {
  auto& command = *host.arguments.add_subcommand("help", "Tell more about a command");
  const auto name = std::make_shared<std::string>();
  const auto known = [&host](const std::string& text) {
    if (host.has_command(text)) return std::string();
    return fmt::format("there is no command {}", in_quotes(text));
  };
  std::string names;
  for (const CLI::App* other : host.arguments.get_subcommands({})) {
    names += (names.empty() ? "" : ", ") + other->get_name();
  }
  command.add_option("COMMAND", *name, "The command; all are listed by default")
      ->check(CLI::Validator(known, "", names))
      ->type_name("");
  add_example(command, "veldra help import");
  command.callback([name, &host] { host.output.write(help_of(host, *name)); });
}

}  // namespace veldra_tool
