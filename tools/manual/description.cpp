// SPDX-License-Identifier: GPL-2.0-or-later
#include "description.hpp"

#include <algorithm>
#include <sstream>

namespace veldra_manual {

namespace {

std::vector<std::string> split(const std::string& text, const std::string& separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const auto end = std::min(text.find(separator, begin), text.size());
    parts.push_back(text.substr(begin, end - begin));
    begin = end + separator.size();
  }
  return parts;
}

/// What checks an option has the words for its name.
std::vector<std::string> choices_of(const CLI::Option& option) {
  try {
    return split(const_cast<CLI::Option&>(option).get_validator(0)->get_name(), ", ");
  } catch (const CLI::OptionNotFound&) {
    return {};
  }
}

std::vector<std::string> names_of(const CLI::Option& option) {
  if (option.get_positional()) return {option.get_name(true, false)};
  std::vector<std::string> names;
  for (const auto& name : option.get_snames()) names.push_back("-" + name);
  for (const auto& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

Argument describe(const CLI::Option& option) {
  Argument argument;
  argument.names = names_of(option);
  argument.text = option.get_description();
  argument.choices = choices_of(option);
  argument.is_required = option.get_required();
  argument.is_repeated = option.get_items_expected_max() > 1 ||
                         option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  const bool is_flag = option.get_items_expected_max() == 0;
  if (argument.is_option() && !is_flag) argument.value = option.get_type_name();
  return argument;
}

std::vector<Argument> arguments_of(const CLI::App& command) {
  std::vector<Argument> arguments;
  for (const auto* const option : command.get_options()) arguments.push_back(describe(*option));
  // Help comes first as it is added first, and is what is looked for last.
  const auto is_help = [](const Argument& argument) { return argument.names.back() == "--help"; };
  std::stable_partition(arguments.begin(), arguments.end(),
                        [&](const Argument& argument) { return !is_help(argument); });
  return arguments;
}

/// The part of a footer that begins with `head`, up to an empty line.
std::string part_of(const std::string& footer, const std::string& head) {
  const auto begin = footer.find(head);
  if (begin == std::string::npos) return {};
  const auto text = begin + head.size();
  return footer.substr(text, footer.find("\n\n", text) - text);
}

Command describe(const CLI::App& command) {
  const std::string footer = command.get_footer();
  const std::string status = "The exit status";
  const std::string rest = part_of(footer, status);
  return {command.get_name(), command.get_description(), arguments_of(command),
          part_of(footer, "Example:\n  "), rest.empty() ? "" : status + rest};
}

std::string joined(const std::string& lines) {
  std::string text;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) {
    text += (text.empty() ? "" : " ") + line.substr(line.find_first_not_of(' '));
  }
  return text;
}

/// Lines such as "  0  done", some of which go on in the next one.
std::vector<std::pair<std::string, std::string>> statuses_in(const std::string& lines) {
  std::vector<std::pair<std::string, std::string>> statuses;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) {
    const auto begin = line.find_first_not_of(' ');
    const std::string text = line.substr(line.find_first_not_of(' ', begin + 1));
    if (begin == 2) {
      statuses.emplace_back(line.substr(begin, 1), text);
    } else {
      statuses.back().second += " " + line.substr(begin);
    }
  }
  return statuses;
}

}  // namespace

Description describe(const CLI::App& program, const std::string& version) {
  Description description;
  description.name = program.get_name();
  description.version = version;
  description.summary = program.get_description();
  description.options = arguments_of(program);
  for (const auto* const command : program.get_subcommands({})) {
    description.commands.push_back(describe(*command));
  }
  description.statuses = statuses_in(part_of(program.get_footer(), "Exit status:\n"));
  for (const char* title : {"Configuration", "Language"}) {
    const auto head = std::string(title) + ":\n";
    description.notes.emplace_back(title, joined(part_of(program.get_footer(), head)));
  }
  return description;
}

std::string synopsis(const Description& program, const Command& command) {
  std::string line = program.name + " " + command.name + " [OPTIONS]";
  for (const auto& argument : command.arguments) {
    if (argument.is_option()) continue;
    const std::string name = argument.names.front() + (argument.is_repeated ? "..." : "");
    line += argument.is_required ? " " + name : " [" + name + "]";
  }
  return line;
}

}  // namespace veldra_manual
