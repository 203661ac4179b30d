// SPDX-License-Identifier: GPL-2.0-or-later
#include "pages.hpp"

#include <fmt/format.h>

namespace veldra_manual {

namespace {

std::string names_with_value(const Argument& argument) {
  std::string names;
  for (const auto& name : argument.names) {
    const std::string value = argument.value.empty() ? "" : " " + argument.value;
    names += (names.empty() ? "`" : ", `") + name + value + "`";
  }
  return names;
}

std::string arguments_table(const std::string& title, const std::vector<Argument>& arguments,
                            bool options) {
  std::string rows;
  for (const auto& argument : arguments) {
    if (argument.is_option() != options) continue;
    rows += fmt::format("| {} | {} |\n", names_with_value(argument), argument.text);
  }
  return rows.empty() ? "" : fmt::format("\n## {}\n\n| | |\n|---|---|\n{}", title, rows);
}

}  // namespace

std::string markdown_page(const Description& program, const Command& command) {
  std::string text = fmt::format("# {} {}\n\n{}.\n\n```\n{}\n```\n", program.name, command.name,
                                 command.summary, synopsis(program, command));
  text += arguments_table("Arguments", command.arguments, false);
  text += arguments_table("Options", command.arguments, true);
  if (!command.example.empty()) text += "\n## Example\n\n```\n" + command.example + "\n```\n";
  text += "\n## Exit status\n\n| | |\n|---|---|\n";
  for (const auto& [number, meaning] : program.statuses) {
    text += fmt::format("| {} | {} |\n", number, meaning);
  }
  return command.status.empty() ? text : text + "\n" + command.status + "\n";
}

}  // namespace veldra_manual
