// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_PATH_HPP
#define VELDRA_TOOL_FILES_PATH_HPP

#include <string>

namespace veldra_tool {

/// The path of a file from the root, as the program and the library take it: the current folder
/// is put in front, repeated slashes become one, and `.`, `..` and links stay, because what `..`
/// means behind a link is known to the file system only. No path means anything but a file then.
/// Throws `Failure` for an empty name and one that is not UTF-8.
std::string absolute_path(const std::string& file);

/// The same for a library, whose path must not be as long as those of other files. Throws `Failure`
/// for names that only folders have, too.
std::string library_path(const std::string& file);

/// Throws `Failure`, which names `file`, when a path is too long for a library.
void require_short_path(const std::string& file, const std::string& path);

/// The folder of an absolute path, and the name in it.
std::string folder_of(const std::string& path);
std::string name_in_folder(const std::string& path);

}  // namespace veldra_tool

#endif
