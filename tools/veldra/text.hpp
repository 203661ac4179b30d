// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_TEXT_HPP
#define VELDRA_TOOL_TEXT_HPP

#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <string>
#include <string_view>

namespace veldra_tool {

using kit::display_width;
using kit::exact_number;
using kit::fixed_number;
using kit::in_utf8;
using kit::is_utf8;
using kit::leading_columns;
using kit::rounded_number;
using kit::trimmed;
using kit::without_controls;

// Texts are UTF-8 on this side of the library.

/// The text with characters that can steer a terminal or turn the text around them written as
/// escapes, so that it can neither break a table nor steer a terminal. What is not UTF-8 is taken
/// byte for byte.
std::string printable(std::string_view text);

/// The text as one of the library's. Throws `Failure` when it is not UTF-8 or has a zero byte,
/// which the library takes for the end.
veldra::String library_text(const std::string& text);

}  // namespace veldra_tool

#endif
