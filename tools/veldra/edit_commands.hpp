// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_EDIT_COMMANDS_HPP
#define VELDRA_TOOL_EDIT_COMMANDS_HPP

namespace veldra_tool {

struct Host;

// The commands that change objects by hand, or by a plan, each added as those in `host.hpp`.
void add_new(Host& host);
void add_set(Host& host);
void add_rename(Host& host);
void add_duplicate(Host& host);
void add_layers(Host& host);
void add_tag(Host& host);
void add_untag(Host& host);
void add_edit(Host& host);
void add_apply(Host& host);

}  // namespace veldra_tool

#endif
