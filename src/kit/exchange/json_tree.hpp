// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_JSON_TREE_HPP
#define VELDRA_KIT_EXCHANGE_JSON_TREE_HPP

#include <string>
#include <utility>
#include <vector>

namespace veldra::kit {

/// A value of a JSON document that knows its line. Members stay in their order, also those of the
/// same name.
struct JsonNode {
  enum class Kind : unsigned char { Null, Boolean, Number, Text, Array, Object };

  Kind kind = Kind::Null;
  bool boolean = false;
  unsigned line = 0;
  double number = 0;
  std::string text;
  std::vector<JsonNode> elements;
  std::vector<std::pair<std::string, JsonNode>> members;

  /// The first member of that name; null when there is none.
  const JsonNode* member(const std::string& name) const;
};

/// A value as a text: a text as it is, all else as JSON without blanks.
std::string text_of_any(const JsonNode& node);

/// A number, a text, or yes or no, as a text without blanks around it; empty for null. Throws
/// `SourceError` for all else.
std::string scalar_text(const JsonNode& node, const std::string& file);

/// Reads a JSON text; `file` is for messages. Throws `SourceError`.
JsonNode parse_json(const std::string& text, const std::string& file);

}  // namespace veldra::kit

#endif
