// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_STEP_SCAN_HPP
#define VELDRA_KIT_EXCHANGE_STEP_SCAN_HPP

#include <cstddef>
#include <string_view>

namespace veldra::kit::step_scan {

// The smallest parts of a STEP file. Each function goes through a text once.

/// The place behind the string that begins at a place; `npos` if it does not end.
std::size_t behind_string(std::string_view text, std::size_t begin);

/// The place behind the comment that begins at a place; `npos` if it does not end.
std::size_t behind_comment(std::string_view text, std::size_t begin);

/// The place of the first character that is neither blank nor in a comment; `npos` if a comment
/// does not end.
std::size_t behind_margin(std::string_view text, std::size_t begin);

/// The text without blanks and comments around it.
std::string_view without_margins(std::string_view text);

/// The word of letters, digits and underscores that the text begins with; empty for none.
std::string_view word_at(std::string_view text);

/// How far the first value of a list goes: to the comma behind it, or to the end. Strings and
/// comments must be closed.
std::size_t size_of_value(std::string_view list);

}  // namespace veldra::kit::step_scan

#endif
