// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_OUTPUT_PLACE_HPP
#define VELDRA_TOOL_FILES_OUTPUT_PLACE_HPP

#include <string>
#include <vector>

namespace veldra_tool {

/// Where the name of an output leads.
struct OutputPlace {
  /// The path behind all links, with the folder as the system knows it.
  std::string path;

  /// All names on the way there.
  std::vector<std::string> names;

  /// It lies in /dev or /proc, or is reached through them: what is there is not the file system's,
  /// or somebody has it open.
  bool special = false;

  /// The descriptor of this program that it stands for, as /dev/stdout does; else -1.
  int descriptor = -1;
};

/// Follows a name. What it leads to need not be there, but its folder. Throws `Failure`.
OutputPlace place_of_output(const std::string& file);

}  // namespace veldra_tool

#endif
