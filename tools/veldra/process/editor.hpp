// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_EDITOR_HPP
#define VELDRA_TOOL_PROCESS_EDITOR_HPP

#include <string>

namespace veldra_tool {

/// Has the user edit a file, in the editor that $VISUAL names, or else $EDITOR: a program and its
/// arguments with blanks between. No shell reads them. Gives when the editor has ended.
///
/// Throws `Failure`: no editor is named, it cannot be started, or its status is not 0; and
/// `Stopped` where the program was asked to stop meanwhile.
void edit_file(const std::string& path);

}  // namespace veldra_tool

#endif
