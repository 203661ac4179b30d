// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_COMMANDS_HPP
#define VELDRA_TESTS_PROGRAM_COMMANDS_HPP

#include "program/scene.hpp"

#include <string>
#include <vector>

namespace veldra_tests {

/// A command as it is given in a scene.
struct Command {
  std::string name;
  Arguments arguments;
  std::string writes = {};  ///< the file, besides standard output
  int status = 0;           ///< when nothing goes wrong
  std::string backup = {};  ///< the file of the backup, if one is made of what it writes
};

/// Each command in each of its forms; those of the second list write a file.
const std::vector<Command>& commands();
const std::vector<Command>& writing_commands();

/// The one with this name.
const Command& command_named(const std::string& name);

}  // namespace veldra_tests

#endif
