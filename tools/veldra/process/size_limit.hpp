// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_SIZE_LIMIT_HPP
#define VELDRA_TOOL_PROCESS_SIZE_LIMIT_HPP

namespace veldra_tool {

/// From now on a write beyond the size that the program's files may have fails, and is remembered.
/// Without this it would end the program.
void notice_size_limit() noexcept;

/// Whether such a write has failed. SQLite tells of it as of a disk that has failed.
bool size_limit_was_met() noexcept;

}  // namespace veldra_tool

#endif
