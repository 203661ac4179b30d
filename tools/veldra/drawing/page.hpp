// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_DRAWING_PAGE_HPP
#define VELDRA_TOOL_DRAWING_PAGE_HPP

#include "drawing/words.hpp"

#include <string>

namespace veldra_tool {

/// A drawing in an HTML page that needs and loads nothing else. `title` is plain text.
std::string page_of(const std::string& svg, const std::string& title, const Words& words);

}  // namespace veldra_tool

#endif
