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
  while (!text.empty()) {
    utf8proc_int32_t character = 0;
    const auto read = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &character);
    if (read < 0) break;
    append_character(result, static_cast<char32_t>(utf8proc_tolower(character)));
    text.remove_prefix(static_cast<std::size_t>(read));
  }
  return result;
}

std::string trimmed(std::string_view text) {
  constexpr const char* blanks = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
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
