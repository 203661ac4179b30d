// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_WRITING_HPP
#define VELDRA_TOOL_PROCESS_WRITING_HPP

#include <string>
#include <string_view>

namespace veldra_tool {

/// Writes all bytes to a descriptor. Gives 0, or the number of the error that ended it; EINTR when
/// the program was asked to stop and not all went at once.
int write_all(int descriptor, std::string_view bytes) noexcept;

/// What an error number means, for people.
const char* text_of_error(int error) noexcept;

/// Says something on standard error, if that is possible; what cannot be said changes nothing.
void say(std::string_view text) noexcept;

/// What stands before the sentence of an error on standard error: the name of the program, in
/// colour where that is a terminal that shows some and nobody has set NO_COLOR.
std::string_view error_mark() noexcept;

/// A line of standard output that is not the first to be read: dim, where a terminal shows that and
/// nobody has set NO_COLOR.
std::string muted(std::string line);

}  // namespace veldra_tool

#endif
