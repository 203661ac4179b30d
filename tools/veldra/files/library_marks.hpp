// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_LIBRARY_MARKS_HPP
#define VELDRA_TOOL_FILES_LIBRARY_MARKS_HPP

#include <string>

namespace veldra_tool {

// What tells that a file must not be written over.

/// Whether a name is one of what a database keeps beside its file, such as its journal.
bool is_companion_name(const std::string& name);

/// Whether a regular file, open or by its path, begins as a database does. Gives -1 where it cannot
/// be read, and then leaves the reason in errno. No library may be open in that file.
int begins_as_database(int descriptor) noexcept;
int begins_as_database(const std::string& path) noexcept;

/// Whether a file begins as a database that keeps a write-ahead log. No library may be open in it.
bool begins_as_database_with_log(const std::string& path) noexcept;

}  // namespace veldra_tool

#endif
