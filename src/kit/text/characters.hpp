// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_CHARACTERS_HPP
#define VELDRA_KIT_TEXT_CHARACTERS_HPP

#include <optional>
#include <string>
#include <string_view>

namespace veldra::kit {

/// The characters of the folded form of a text; empty if the text is not UTF-8.
std::optional<std::u32string> folded_characters(std::string_view text);

void append_character(std::string& text, char32_t character);

}  // namespace veldra::kit

#endif
