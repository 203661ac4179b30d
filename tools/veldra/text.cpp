// SPDX-License-Identifier: GPL-2.0-or-later
#include "text.hpp"

#include "failure.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cwchar>

namespace veldra_tool {

namespace {

/// Calls `visit(character, bytes)` for each character; returns false at the first that is
/// malformed.
template <class Visit>
bool for_each_character(std::string_view text, Visit visit) {
  std::mbstate_t state{};
  while (!text.empty()) {
    wchar_t character = 0;
    if (static_cast<unsigned char>(text[0]) < 0x80) {  // most are, and this is faster
      visit(static_cast<wchar_t>(text[0]), text.substr(0, 1));
      text.remove_prefix(1);
      continue;
    }
    const std::size_t read = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (read == static_cast<std::size_t>(-1) || read == static_cast<std::size_t>(-2)) return false;
    visit(character, text.substr(0, read));
    text.remove_prefix(read);
  }
  return true;
}

std::string escape_of(char32_t character) {
  switch (character) {
    case U'\n':
      return "\\n";
    case U'\r':
      return "\\r";
    case U'\t':
      return "\\t";
  }
  return fmt::format(character < 0x100 ? "\\x{:02x}" : "\\u{:04x}",
                     static_cast<unsigned>(character));
}

constexpr double greatest_short_number = 1e7;

std::string superscript(int number) {
  constexpr const char* digits[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
  std::string text;
  for (const char digit : std::to_string(number)) {
    text += digit == '-' ? "⁻" : digits[digit - '0'];
  }
  return text;
}

std::string power_text(double number) {
  const std::string text = fmt::format("{:.1e}", number);
  const auto e = text.find('e');
  std::string leading = text.substr(0, e);
  if (leading.compare(leading.size() - 2, 2, ".0") == 0) leading.resize(leading.size() - 2);
  return leading + "·10" + superscript(std::stoi(text.substr(e + 1)));
}

/// The text of a number that takes little room in no form with its digits; else empty.
std::string special_text(double number) {
  if (std::isnan(number)) return "?";
  if (std::isinf(number)) return number > 0 ? "∞" : "-∞";
  return std::abs(number) >= greatest_short_number ? power_text(number) : "";
}

}  // namespace

void use_unicode() { std::setlocale(LC_CTYPE, "C.UTF-8"); }

std::size_t display_width(std::string_view text) {
  std::size_t width = 0;
  for_each_character(text, [&](wchar_t character, std::string_view) {
    const int columns = ::wcwidth(character);
    if (columns > 0) width += static_cast<std::size_t>(columns);
  });
  return width;
}

std::string leading_columns(std::string_view text, std::size_t columns) {
  std::size_t width = 0;
  std::size_t bytes = 0;
  for_each_character(text, [&](wchar_t character, std::string_view encoded) {
    width += static_cast<std::size_t>(std::max(::wcwidth(character), 0));
    if (width <= columns) bytes += encoded.size();
  });
  return std::string(text.substr(0, bytes));
}

std::string printable(std::string_view text) {
  return is_utf8(text) ? without_controls(text, escape_of)
                       : without_controls(kit::from_latin1(text), escape_of);
}

veldra::String library_text(const std::string& text) {
  try {
    return kit::library_text(text);
  } catch (const kit::Error& error) {
    throw Failure(error.what());
  }
}

std::string rounded_number(double number, int decimals) {
  if (!std::isfinite(number)) return std::isnan(number) ? "?" : fmt::format("{}", number);
  std::string text = fmt::format("{:.{}f}", number, decimals);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  if (text == "-0" || text == "0") return number == 0 ? "0" : fmt::format("{:.2g}", number);
  return text;
}

std::string short_number(double number, int decimals) {
  const std::string special = special_text(number);
  if (!special.empty()) return special;
  const bool vanishing = number != 0 && std::abs(number) < 1e-4;
  return vanishing ? power_text(number) : rounded_number(number, decimals);
}

std::string fixed_number(double number, int decimals) {
  const std::string special = special_text(number);
  return special.empty() ? fmt::format("{:.{}f}", number, decimals) : special;
}

}  // namespace veldra_tool
