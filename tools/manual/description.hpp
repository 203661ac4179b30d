// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_MANUAL_DESCRIPTION_HPP
#define VELDRA_MANUAL_DESCRIPTION_HPP

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace veldra_manual {

/// What a command takes.
struct Argument {
  std::vector<std::string> names;    ///< "-o", "--output"; of one without a dash its place, "FILE"
  std::string value;                 ///< what follows an option, such as "UNIT"; empty for none
  std::string text;                  ///< what it is for
  std::vector<std::string> choices;  ///< the words that it may be; empty: any
  bool is_required = false;
  bool is_repeated = false;

  bool is_option() const { return names.front().front() == '-'; }
};

struct Command {
  std::string name;
  std::string summary;
  std::vector<Argument> arguments;
  std::string example;
  std::string status;  ///< when its exit status is another one than usual
};

/// What the program says of itself in its help.
struct Description {
  std::string name;
  std::string version;
  std::string summary;
  std::vector<Argument> options;  ///< without a command
  std::vector<Command> commands;
  std::vector<std::pair<std::string, std::string>> statuses;    ///< numbers and their meanings
  std::vector<std::pair<std::string, std::string>> notes = {};  ///< titles and what stands below
};

Description describe(const CLI::App& program, const std::string& version);

/// How a command is called: "veldra list [OPTIONS] FILE KIND".
std::string synopsis(const Description& program, const Command& command);

}  // namespace veldra_manual

#endif
