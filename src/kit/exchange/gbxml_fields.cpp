// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/gbxml_fields.hpp"

#include "kit/exchange/gbxml_model.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace veldra::kit {

namespace {

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return c >= 'a' && c <= 'z'; }

bool is_word(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) {
    return is_upper(c) || is_lower(c) || (c >= '0' && c <= '9') || c == '-';
  });
}

/// Elements begin with a capital, unlike fields of other formats.
bool is_element(const std::string& text) {
  return !text.empty() && is_upper(text.front()) && is_word(text);
}

bool is_attribute(const std::string& text) {
  return !text.empty() && (is_upper(text.front()) || is_lower(text.front())) && is_word(text);
}

/// A number from 2, written as `key_of` writes it; 0 for none.
unsigned number_of(const std::string& text) {
  unsigned number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  const bool whole = result.ec == std::errc() && result.ptr == end && text.front() != '0';
  return whole && number >= 2 ? number : 0;
}

}  // namespace

std::string key_of(const GbxmlField& field) {
  std::string key = field.element;
  if (field.number > 1) key += fmt::format(" {}", field.number);
  return field.attribute.empty() ? key : key + "@" + field.attribute;
}

std::optional<GbxmlField> gbxml_field(const std::string& key) {
  GbxmlField field;
  const auto at = key.find('@');
  if (at != std::string::npos) {
    field.attribute = key.substr(at + 1);
    if (!is_attribute(field.attribute)) return std::nullopt;
  }
  field.element = key.substr(0, at);
  const auto blank = field.element.find(' ');
  if (blank != std::string::npos) {
    field.number = number_of(field.element.substr(blank + 1));
    field.element.erase(blank);
    if (field.number == 0) return std::nullopt;
  }
  const bool is_description =
      field.element == "Description" && field.number == 1 && field.attribute.empty();
  const bool is_own = is_description || field.element == "Name" || field.element == "LayerId" ||
                      gbxml_has_unit(field.element);
  if (is_own || !is_element(field.element)) return std::nullopt;
  return field;
}

}  // namespace veldra::kit
