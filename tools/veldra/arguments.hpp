// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_ARGUMENTS_HPP
#define VELDRA_TOOL_ARGUMENTS_HPP

#include "host.hpp"

#include <veldra/veldra.hpp>

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace veldra_tool {

/// The names of all kinds, for people.
std::string kind_choices();

/// What is said of arguments that are wrong.
std::string sentence_of(const CLI::App& program, const CLI::ParseError& error);

/// Has the flags of a command refuse values, such as in `--json=no`.
void forbid_values_of_flags(CLI::App& command);

/// What an option checks that is not to be empty.
CLI::Validator some_value();

/// What an option checks that is one of a few words.
CLI::Validator one_of(std::vector<std::string> words);

// Arguments that several commands have, and that they name alike.

/// How an object is named, for the help of commands.
extern const char* const naming_help;

void add_file(CLI::App& command, std::string& file);
void add_kind(CLI::App& command, veldra::ObjectType& kind);
void add_kinds(CLI::App& command, std::vector<veldra::ObjectType>& kinds);
void add_yes(CLI::App& command, bool& yes, const std::string& description);
void add_tags(CLI::App& command, std::vector<std::string>& tags, const std::string& description);
void add_output(CLI::App& command, std::string& output, bool& force);

/// Throws a `CLI::ParseError` when the name of an output has the ending of another format than
/// `format`, which is one of the endings that there are, without the point.
void require_ending(const std::string& output, const std::string& format);
void add_json(CLI::App& command, bool& json);
void add_backup(CLI::App& command, Host& host);

/// The same for commands whose result goes to a file.
void add_json_of_file(CLI::App& command, bool& json);

void add_unit(CLI::App& command, veldra::Unit& unit);

/// Ends the help of a command: with an example, and with when its exit status is 3, if it can be.
void add_example(CLI::App& command, const std::string& example, const std::string& findings = "");

}  // namespace veldra_tool

#endif
