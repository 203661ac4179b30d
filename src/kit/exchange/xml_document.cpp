// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/xml_document.hpp"

#include "kit/exchange/problem.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace veldra::kit {

namespace {

constexpr std::size_t step = 1 << 10;
constexpr std::size_t longest_text = 1 << 20;

/// At least as many parts as the parser makes of a text.
std::size_t parts_in(const std::string& text) {
  std::size_t parts = 0;
  bool behind_tag = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    const bool blank = std::string_view(" \t\r\n").find(character) != std::string_view::npos;
    const bool opens = character == '<' && text.compare(i, 2, "</") != 0;
    const bool begins_text = behind_tag && !blank && character != '<';
    if (opens || begins_text || character == '=') ++parts;
    behind_tag = character == '>' || (behind_tag && blank);
  }
  return parts;
}

std::string without_capital(std::string sentence) {
  if (!sentence.empty()) sentence.front() = lower_case(sentence.substr(0, 1)).front();
  return sentence;
}

}  // namespace

Lines::Lines(const std::string& text) : text_(text) {
  unsigned count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i % step == 0) counts_.push_back(count);
    if (text[i] == '\n') ++count;
  }
}

unsigned Lines::at(std::size_t place) const {
  if (counts_.empty()) return 1;
  const auto part = std::min(place / step, counts_.size() - 1);
  const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(part * step);
  const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(place, text_.size()));
  return counts_[part] + static_cast<unsigned>(std::count(begin, end, '\n')) + 1;
}

std::size_t XmlDocument::most_parts_of(std::size_t bytes_of_source) {
  constexpr std::size_t fewest_bytes_of_part = 16;
  return std::max(most_parts_of_small, bytes_of_source / fewest_bytes_of_part);
}

XmlDocument::XmlDocument(const std::string& text, const std::string& file, std::size_t most_parts,
                         const std::string& what)
    : file_(file), lines_(text) {
  if (parts_in(text) > most_parts) {
    fail_at(file, 0,
            fmt::format("{} has more than {} elements, attributes and texts", what, most_parts));
  }
  const auto result =
      document_.load_buffer(text.data(), text.size(),
                            pugi::parse_default | pugi::parse_doctype | pugi::parse_embed_pcdata |
                                pugi::parse_ws_pcdata_single,
                            pugi::encoding_utf8);
  if (!result) {
    fail_at(file, lines_.at(static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0))),
            fmt::format("this is no well-formed XML: {}", without_capital(result.description())));
  }
  for (const auto& node : document_.children()) {
    if (node.type() != pugi::node_doctype) continue;
    fail_at(file, 0,
            "this has a document type (<!DOCTYPE>), in which entities may be defined; such a "
            "document is not read");
  }
}

unsigned XmlDocument::line_of(const pugi::xml_node& element) const {
  return lines_.at(static_cast<std::size_t>(std::max<std::ptrdiff_t>(element.offset_debug(), 0)));
}

std::string XmlDocument::text_of(const pugi::xml_node& element) const {
  return trimmed(whole_text_of(element));
}

std::string XmlDocument::whole_text_of(const pugi::xml_node& element) const {
  std::string text = element.value();
  for (const auto& part : element.children()) {
    if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) text += part.value();
  }
  return checked(element, std::move(text));
}

std::string XmlDocument::text_of(const pugi::xml_node& element,
                                 const pugi::xml_attribute& attribute) const {
  return trimmed(checked(element, attribute.value()));
}

std::string XmlDocument::checked(const pugi::xml_node& element, std::string text) const {
  const auto refuse = [&](const char* what) {
    fail_at(file_, line_of(element), fmt::format("a text of <{}> {}", element.name(), what));
  };
  if (text.size() > longest_text) refuse("is longer than 1 MiB");
  if (!is_utf8(text)) refuse("has characters that there are not");
  return text;
}

std::string local_name(const char* name) {
  const std::string whole = name;
  const auto colon = whole.find(':');
  return colon == std::string::npos ? whole : whole.substr(colon + 1);
}

}  // namespace veldra::kit
