// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_STATUS_HPP
#define VELDRA_TOOL_PROCESS_STATUS_HPP

namespace veldra_tool {

/// What the exit status of the program says, the same for every command.
enum class Status : int {
  Done = 0,
  Failed = 1,    ///< and nothing was done
  WrongUse = 2,  ///< of the arguments; nothing was done
  Findings = 3   ///< done, but not all of it went as one might expect
};

}  // namespace veldra_tool

#endif
