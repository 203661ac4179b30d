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
  if (rows.empty()) return "";
  return fmt::format("\n## {}\n\n| {} | what it is for |\n|---|---|\n{}", title,
                     options ? "option" : "argument", rows);
}

std::string statuses_table(const Description& program) {
  std::string text = "\n## Exit status\n\n| status | what it says |\n|---|---|\n";
  for (const auto& [number, meaning] : program.statuses) {
    text += fmt::format("| {} | {} |\n", number, meaning);
  }
  return text;
}

}  // namespace

std::string markdown_page(const Description& program) {
  std::string text = fmt::format("# Commands\n\n{}.\n\n```text\n{} COMMAND [ARGUMENTS]\n```\n\n",
                                 program.summary, program.name);
  text += "| command | what it does |\n|---|---|\n";
  for (const auto& command : program.commands) {
    text += fmt::format("| [{0}]({0}.md) | {1} |\n", command.name, command.summary);
  }
  text += arguments_table("Options", program.options, true) + statuses_table(program);
  for (const auto& [title, note] : program.notes) {
    text += fmt::format("\n## {}\n\n{}\n", title, note);
  }
  return text;
}

std::string markdown_page(const Description& program, const Command& command) {
  std::string text = fmt::format("# {} {}\n\n{}.\n\n```text\n{}\n```\n", program.name, command.name,
                                 command.summary, synopsis(program, command));
  text += arguments_table("Arguments", command.arguments, false);
  text += arguments_table("Options", command.arguments, true);
  if (!command.example.empty()) text += "\n## Example\n\n```text\n" + command.example + "\n```\n";
  text += statuses_table(program);
  return command.status.empty() ? text : text + "\n" + command.status + "\n";
}

}  // namespace veldra_manual
