// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/step_scan.hpp"

#include <algorithm>

namespace veldra::kit::step_scan {

namespace {

constexpr auto npos = std::string_view::npos;

bool is_blank(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\v' || c == '\f';
}

bool is_comment(std::string_view text, std::size_t place) {
  return place + 1 < text.size() && text[place] == '/' && text[place + 1] == '*';
}

bool is_of_word(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

std::size_t behind_string(std::string_view text, std::size_t begin) {
  for (auto end = text.find('\'', begin + 1); end != npos; end = text.find('\'', end + 2)) {
    if (end + 1 >= text.size() || text[end + 1] != '\'') return end + 1;
  }
  return npos;
}

std::size_t behind_comment(std::string_view text, std::size_t begin) {
  const auto end = text.find("*/", begin + 2);
  return end == npos ? npos : end + 2;
}

std::size_t behind_margin(std::string_view text, std::size_t begin) {
  auto place = begin;
  while (place < text.size()) {
    if (is_blank(text[place])) {
      ++place;
    } else if (is_comment(text, place)) {
      place = behind_comment(text, place);
    } else {
      break;
    }
  }
  return place;
}

/// A comment at the end is found from the beginning only, as its marks mean nothing in a string.
std::string_view without_margins(std::string_view text) {
  text.remove_prefix(std::min(behind_margin(text, 0), text.size()));
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  if (text.size() < 4 || text.substr(text.size() - 2) != "*/") return text;
  std::size_t end = 0;
  for (std::size_t place = 0; place < text.size();) {
    if (is_comment(text, place)) {
      place = behind_comment(text, place);
      continue;
    }
    const bool blank = is_blank(text[place]);
    place = text[place] == '\'' ? behind_string(text, place) : place + 1;
    if (!blank) end = std::min(place, text.size());
  }
  return text.substr(0, end);
}

std::string_view word_at(std::string_view text) {
  if (text.empty() || !is_of_word(text[0]) || (text[0] >= '0' && text[0] <= '9')) return {};
  const auto* const end = std::find_if_not(text.begin(), text.end(), is_of_word);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

std::size_t size_of_value(std::string_view list) {
  unsigned depth = 0;
  std::size_t place = 0;
  while (place < list.size()) {
    const char c = list[place];
    if (c == '\'') {
      place = behind_string(list, place);
    } else if (is_comment(list, place)) {
      place = behind_comment(list, place);
    } else if (c == ',' && depth == 0) {
      return place;
    } else {
      depth += c == '(' ? 1 : 0;
      depth -= c == ')' ? 1 : 0;
      ++place;
    }
  }
  return list.size();
}

}  // namespace veldra::kit::step_scan
