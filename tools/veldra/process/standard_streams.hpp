// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_STANDARD_STREAMS_HPP
#define VELDRA_TOOL_PROCESS_STANDARD_STREAMS_HPP

namespace veldra_tool {

/// Fills the places of standard streams that the starter has closed, so that no file of the program
/// takes them. What is written there fails, as what is read.
void occupy_standard_streams() noexcept;

}  // namespace veldra_tool

#endif
