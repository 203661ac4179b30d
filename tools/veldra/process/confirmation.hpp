// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_CONFIRMATION_HPP
#define VELDRA_TOOL_PROCESS_CONFIRMATION_HPP

#include <string>

namespace veldra_tool {

/// Whether somebody can be asked: standard input and standard error are terminals.
bool somebody_can_be_asked() noexcept;

/// Asks a question on standard error; true when the answer is "y" or "yes". That may take its time,
/// so no library may be open. Throws `Stopped` when the program is asked to stop meanwhile.
bool confirmed(const std::string& question);

}  // namespace veldra_tool

#endif
