// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_CONFIGURATION_HPP
#define VELDRA_TOOL_CONFIGURATION_HPP

#include <string>

namespace veldra_tool {

/// What somebody wishes for every run of the program.
struct Configuration {
  std::string backup;  ///< the folder for backups, as it is written there; empty for none
};

/// The configuration in a text whose lines are `key = value`, comments after `#`, or empty. `file`
/// is for messages. Throws `Failure`, which names file and line.
Configuration configuration_in(const std::string& text, const std::string& file);

/// That of the user: of `veldra/config` in $XDG_CONFIG_HOME, or else in ~/.config. Without the file
/// it is empty. Throws `Failure`.
Configuration read_configuration();

/// A path in which `~` at the beginning stands for the home of the user. Throws `Failure` where
/// nobody knows that.
std::string with_home(const std::string& path);

}  // namespace veldra_tool

#endif
