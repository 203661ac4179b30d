// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_LAST_RESORT_HPP
#define VELDRA_TOOL_PROCESS_LAST_RESORT_HPP

namespace veldra_tool {

// What is said where nothing else can be done. A program of which this is a part also says it when
// an exception finds nobody who handles it, be it before `main`.

constexpr const char* no_memory = "veldra: there is not enough memory\n";
constexpr const char* unexpected = "veldra: something went wrong that was not to be expected\n";

}  // namespace veldra_tool

#endif
