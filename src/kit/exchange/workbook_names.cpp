// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/workbook_names.hpp"

#include "kit/text/characters.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace veldra::kit {

namespace {

constexpr std::size_t longest_name = 31;

bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xc0) == 0x80; }

/// As much of a text as has so many code units in UTF-16.
std::string shortened(const std::string& text, std::size_t most) {
  std::size_t end = 0;
  std::size_t units = 0;
  while (end < text.size()) {
    std::size_t next = end + 1;
    while (next < text.size() && is_continuation(text[next])) ++next;
    units += next - end == 4 ? 2 : 1;
    if (units > most) break;
    end = next;
  }
  return text.substr(0, end);
}

std::string allowed_name(const std::string& wanted) {
  constexpr std::string_view forbidden = "[]:*?/\\'";
  std::string name = wanted;
  std::replace_if(
      name.begin(), name.end(),
      [&](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7f ||
               forbidden.find(c) != std::string_view::npos;
      },
      '_');
  name = trimmed(shortened(trimmed(name), longest_name));
  return name.empty() ? "unnamed" : name;
}

/// Whether an escape stands at a place: _x and four hexadecimal digits and _.
bool is_escape(const std::string& text, std::size_t place) {
  constexpr std::size_t size = 7;
  if (place + size > text.size() || text.compare(place, 2, "_x") != 0) return false;
  const auto digit = [](char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; };
  const auto begin = text.begin() + static_cast<std::ptrdiff_t>(place);
  return text[place + size - 1] == '_' && std::all_of(begin + 2, begin + 6, digit);
}

/// Whether XML has no way to write the character at a place, or readers change it.
bool needs_escape(const std::string& text, std::size_t place) {
  const auto byte = static_cast<unsigned char>(text[place]);
  if (byte < 0x20) return byte != '\t' && byte != '\n';
  return text.compare(place, 3, "\xEF\xBF\xBE") == 0 || text.compare(place, 3, "\xEF\xBF\xBF") == 0;
}

}  // namespace

SheetNames::SheetNames() : taken_{"materials", "compositions", "layers", "history", lists_sheet} {}

std::string SheetNames::take(const std::string& wanted) {
  const auto name = allowed_name(wanted);
  auto free = name;
  for (unsigned number = 2; !taken_.insert(lower_case(free)).second; ++number) {
    const auto ending = fmt::format(" ({})", number);
    free = shortened(name, longest_name - ending.size()) + ending;
  }
  return free;
}

std::string column_letters(std::size_t column) {
  std::string letters;
  for (std::size_t rest = column + 1; rest > 0; rest = (rest - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
  }
  return letters;
}

std::string cell_address(const std::string& sheet, std::size_t column, unsigned row) {
  const bool plain = std::all_of(sheet.begin(), sheet.end(), [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '_' || c >= 0x80;
  });
  const auto name = plain ? sheet : "'" + sheet + "'";
  return fmt::format("{}!{}{}", name, column_letters(column), row);
}

std::size_t utf16_size(const std::string& text) {
  std::size_t size = 0;
  for (const char byte : text) {
    if (!is_continuation(byte)) size += static_cast<unsigned char>(byte) >= 0xf0 ? 2 : 1;
  }
  return size;
}

std::string with_cell_escapes(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (is_escape(text, i)) {
      result += "_x005F_";
    } else if (needs_escape(text, i)) {
      const bool one_byte = static_cast<unsigned char>(text[i]) < 0x80;
      result += one_byte ? fmt::format("_x{:04X}_", static_cast<unsigned>(text[i]))
                         : (text[i + 2] == '\xBE' ? "_xFFFE_" : "_xFFFF_");
      if (!one_byte) i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string without_cell_escapes(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!is_escape(text, i)) {
      result += text[i];
      continue;
    }
    const auto code = std::stoul(text.substr(i + 2, 4), nullptr, 16);
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    append_character(result, surrogate || code == 0 ? U'\uFFFD' : static_cast<char32_t>(code));
    i += 6;
  }
  return result;
}

}  // namespace veldra::kit
