// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/parts.hpp"

#include <veldra/kit/text.hpp>

namespace veldra::kit {

namespace {

std::string quoted_if_needed(const std::string& part) {
  const bool plain =
      !part.empty() && part.find_first_of(";|\"") == std::string::npos && trimmed(part) == part;
  if (plain) return part;
  std::string result = "\"";
  for (const char character : part) {
    if (character == '"') result += '"';
    result += character;
  }
  return result + "\"";
}

}  // namespace

std::string joined(const std::vector<std::string>& parts, char separator) {
  const std::string between = separator == list_separator ? "; " : " | ";
  std::string text;
  for (const std::string& part : parts) {
    text += (text.empty() ? "" : between) + quoted_if_needed(part);
  }
  return text;
}

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  if (trimmed(text).empty()) return parts;
  bool in_quotes = false;
  std::string part;
  for (const char character : text) {
    if (character == '"') in_quotes = !in_quotes;
    if (character == separator && !in_quotes) {
      parts.push_back(trimmed(part));
      part.clear();
    } else {
      part += character;
    }
  }
  parts.push_back(trimmed(part));
  return parts;
}

std::optional<std::string> unquoted(const std::string& part) {
  if (part.find('"') == std::string::npos) return part;
  if (part.size() < 2 || part.front() != '"' || part.back() != '"') return std::nullopt;
  std::string text;
  for (std::size_t i = 1; i + 1 < part.size(); ++i) {
    if (part[i] == '"' && (++i + 1 >= part.size() || part[i] != '"')) return std::nullopt;
    text += part[i];
  }
  return text;
}

}  // namespace veldra::kit
