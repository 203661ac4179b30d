// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_TEXT_HPP
#define VELDRA_TOOL_TEXT_HPP

#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <string>
#include <string_view>

namespace veldra_tool {

using kit::exact_number;
using kit::in_utf8;
using kit::is_utf8;
using kit::trimmed;
using kit::without_controls;

// Texts are UTF-8 on this side of the library. All of this needs the locale that
// `use_unicode()` sets.

/// Makes the functions for wide characters of the C library know Unicode.
void use_unicode();

/// The number of columns that a text takes on a terminal.
std::size_t display_width(std::string_view text);

/// As much of the beginning of a text as takes no more than so many columns.
std::string leading_columns(std::string_view text, std::size_t columns);

/// The text with characters that can steer a terminal or turn the text around them written as
/// escapes, so that it can neither break a table nor steer a terminal. What is not UTF-8 is taken
/// byte for byte.
std::string printable(std::string_view text);

/// The text as one of the library's. Throws `Failure` when it is not UTF-8 or has a zero byte,
/// which the library takes for the end.
veldra::String library_text(const std::string& text);

/// A number for people: at most that many decimals, no trailing zeros.
std::string rounded_number(double number, int decimals);

// Numbers for places of limited width: what would take more than seven digits there becomes two
// digits and a power of ten, such as 1.5·10⁹.

/// With at most that many decimals.
std::string short_number(double number, int decimals);

/// With just that many decimals.
std::string fixed_number(double number, int decimals);

}  // namespace veldra_tool

#endif
