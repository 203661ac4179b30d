// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <cmath>

namespace veldra::kit {

namespace {

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

}  // namespace veldra::kit
