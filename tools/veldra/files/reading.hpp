// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_READING_HPP
#define VELDRA_TOOL_FILES_READING_HPP

#include <cstddef>
#include <string>

namespace veldra_tool {

/// More than this is read of no source, as a device may never end.
constexpr std::size_t most_bytes_of_source = std::size_t{1} << 30;

/// Longer is no line of any text, however long all of it is; it is known before all of it has taken
/// memory.
constexpr std::size_t most_bytes_of_line = std::size_t{1} << 28;

/// All bytes of a file, a pipe or whatever else can be read. Throws `Failure`, also when there are
/// more than so many or a line is longer than `most_bytes_of_line`, and `Stopped` where the program
/// is asked to stop while it waits for them.
std::string content_of(const std::string& file, std::size_t most = most_bytes_of_source);

/// The same of standard input.
std::string content_of_standard_input(std::size_t most = most_bytes_of_source);

}  // namespace veldra_tool

#endif
