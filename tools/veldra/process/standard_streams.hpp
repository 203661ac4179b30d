// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_STANDARD_STREAMS_HPP
#define VELDRA_TOOL_PROCESS_STANDARD_STREAMS_HPP

#include <cstddef>

namespace veldra_tool {

/// Fills the places of standard streams that the starter has closed, so that no file of the program
/// takes them. What is written there fails, as what is read.
void occupy_standard_streams() noexcept;

/// How many columns standard output has, if it is a terminal that says so; else 0.
std::size_t terminal_width() noexcept;

}  // namespace veldra_tool

#endif
