// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_PATH_HPP
#define VELDRA_TOOL_FILES_PATH_HPP

#include <string>

namespace veldra_tool {

/// The path of a file from the root, as the program and the library take it: the current folder
/// is put in front, repeated slashes become one, and `.`, `..` and links stay, because what `..`
/// means behind a link is known to the file system only. No path means anything but a file then.
/// Throws `Failure` for an empty name.
std::string absolute_path(const std::string& file);

/// The same for a library, whose path must be UTF-8, and not as long as those of other files.
/// Throws `Failure` for names that only folders have, too.
std::string library_path(const std::string& file);

/// Throws `Failure`, which names `file`, when a path is too long for a library.
void require_short_path(const std::string& file, const std::string& path);

/// The folder of an absolute path, and the name in it.
std::string folder_of(const std::string& path);
std::string name_in_folder(const std::string& path);

/// What a name has behind its last point, in lower case, if that is a letter and up to seven more
/// letters or digits; else empty.
std::string ending_of(const std::string& file);

}  // namespace veldra_tool

#endif
