// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/text.hpp>

#include "kit/text/characters.hpp"

#include <fmt/format.h>
#include <utf8proc.h>

#include <charconv>
#include <cmath>
#include <memory>

namespace veldra::kit {

namespace {

/// Marks that are accents, wherever they stand. Those of other blocks are letters in their scripts.
bool is_accent(char32_t character) {
  return (character >= 0x0300 && character <= 0x036f) ||
         (character >= 0x1ab0 && character <= 0x1aff) ||
         (character >= 0x1dc0 && character <= 0x1dff) ||
         (character >= 0x20d0 && character <= 0x20ff) ||
         (character >= 0xfe20 && character <= 0xfe2f);
}

bool is_ascii(std::string_view text) {
  for (const char byte : text) {
    if (static_cast<unsigned char>(byte) >= 0x80) return false;
  }
  return true;
}

/// Calls `visit(character, bytes)` for each character; returns false at the first that is
/// malformed.
template <class Visit>
bool for_each_character(std::string_view text, Visit visit) {
  while (!text.empty()) {
    utf8proc_int32_t character = static_cast<unsigned char>(text[0]);
    utf8proc_ssize_t size = 1;
    if (character >= 0x80) {  // most are below, and this is faster
      size = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                              static_cast<utf8proc_ssize_t>(text.size()), &character);
      if (size < 0) return false;
    }
    const auto bytes = static_cast<std::size_t>(size);
    visit(static_cast<char32_t>(character), text.substr(0, bytes));
    text.remove_prefix(bytes);
  }
  return true;
}

bool is_control(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0) || character == 0x2028 ||
         character == 0x2029;
}

/// Characters that turn the direction of the text around them.
bool is_direction_mark(char32_t character) {
  return character == 0x061c || character == 0x200e || character == 0x200f ||
         (character >= 0x202a && character <= 0x202e) ||
         (character >= 0x2066 && character <= 0x2069);
}

/// The two that no XML may have.
bool is_noncharacter(char32_t character) { return character == 0xfffe || character == 0xffff; }

std::size_t columns_of(char32_t character) {
  return static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(character)));
}

std::string ascii_lower_case(std::string_view text) {
  std::string result(text);
  for (char& letter : result) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return result;
}

}  // namespace

void append_character(std::string& text, char32_t character) {
  utf8proc_uint8_t bytes[4];
  const auto count = utf8proc_encode_char(static_cast<utf8proc_int32_t>(character), bytes);
  text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
}

std::optional<std::u32string> folded_characters(std::string_view text) {
  constexpr auto options =
      static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD | UTF8PROC_STABLE);
  const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const auto size = static_cast<utf8proc_ssize_t>(text.size());
  const auto count = utf8proc_decompose(bytes, size, nullptr, 0, options);
  if (count < 0) return std::nullopt;
  std::vector<utf8proc_int32_t> characters(static_cast<std::size_t>(count));
  if (utf8proc_decompose(bytes, size, characters.data(), count, options) < 0) return std::nullopt;
  std::u32string result;
  for (const auto character : characters) {
    if (!is_accent(static_cast<char32_t>(character))) result += static_cast<char32_t>(character);
  }
  return result;
}

std::string folded(std::string_view text) {
  if (is_ascii(text)) return ascii_lower_case(text);  // most are, and this is faster
  const auto characters = folded_characters(text);
  if (!characters) return std::string(text);
  std::string result;
  for (const char32_t character : *characters) append_character(result, character);
  return result;
}

std::string lower_case(std::string_view text) {
  if (is_ascii(text)) return ascii_lower_case(text);
  std::string result;
  for_each_character(text, [&](char32_t character, std::string_view) {
    const auto lower = utf8proc_tolower(static_cast<utf8proc_int32_t>(character));
    append_character(result, static_cast<char32_t>(lower));
  });
  return result;
}

std::string trimmed(std::string_view text) {
  constexpr const char* blanks = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

bool is_utf8(std::string_view text) {
  return for_each_character(text, [](char32_t, std::string_view) {});
}

std::string from_latin1(std::string_view text) {
  std::string result;
  for (const char byte : text) append_character(result, static_cast<unsigned char>(byte));
  return result;
}

std::string in_utf8(const std::string& text) { return is_utf8(text) ? text : from_latin1(text); }

std::string without_controls(std::string_view text, std::string (*replacement)(char32_t)) {
  std::string result;
  result.reserve(text.size());
  for_each_character(text, [&](char32_t character, std::string_view bytes) {
    if (is_control(character) || is_direction_mark(character) || is_noncharacter(character)) {
      result += replacement(character);
    } else {
      result += bytes;
    }
  });
  return result;
}

std::string without_controls_in_json(std::string_view json) {
  return without_controls(json, [](char32_t character) {
    if (character == U'\n') return std::string("\n");
    return fmt::format("\\u{:04x}", static_cast<unsigned>(character));
  });
}

std::size_t display_width(std::string_view text) {
  std::size_t width = 0;
  for_each_character(text,
                     [&](char32_t character, std::string_view) { width += columns_of(character); });
  return width;
}

std::string leading_columns(std::string_view text, std::size_t columns) {
  std::size_t width = 0;
  std::size_t bytes = 0;
  for_each_character(text, [&](char32_t character, std::string_view encoded) {
    width += columns_of(character);
    if (width <= columns) bytes += encoded.size();
  });
  return std::string(text.substr(0, bytes));
}

std::string exact_number(double number) { return fmt::format("{}", number); }

std::optional<double> number_in(std::string_view text) {
  const std::string digits = trimmed(text);
  const char* const end = digits.data() + digits.size();
  double number = 0;
  const auto result = std::from_chars(digits.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(number)) return std::nullopt;
  return number;
}

}  // namespace veldra::kit
