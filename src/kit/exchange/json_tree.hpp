// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_JSON_TREE_HPP
#define VELDRA_KIT_EXCHANGE_JSON_TREE_HPP

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace veldra::kit {

struct JsonMember;

/// A value of a JSON document that knows its line. Members stay in their order, also those of the
/// same name.
///
/// Large documents have millions of values, so each takes no more room than what it is.
struct JsonNode {
  enum class Kind : unsigned char { Null, Boolean, Number, Text, Array, Object };
  using Elements = std::vector<JsonNode>;
  using Members = std::vector<JsonMember>;

  JsonNode() = default;
  explicit JsonNode(bool value) : kind(Kind::Boolean), boolean(value) {}
  explicit JsonNode(double value) : kind(Kind::Number), content_(value) {}
  explicit JsonNode(std::string value) : kind(Kind::Text), content_(std::move(value)) {}
  explicit JsonNode(Elements value) : kind(Kind::Array), content_(std::move(value)) {}
  explicit JsonNode(Members value);

  Kind kind = Kind::Null;
  bool boolean = false;
  unsigned line = 0;

  // What a value of another kind has none of is 0 or empty.
  double number() const;
  const std::string& text() const;
  const Elements& elements() const;
  const Members& members() const;

  /// The lists, for what takes values out of them; null for other kinds.
  Elements* own_elements() { return std::get_if<Elements>(&content_); }
  Members* own_members() { return std::get_if<Members>(&content_); }

  /// The first member of that name; null when there is none.
  const JsonNode* member(const std::string& name) const;

 private:
  std::variant<std::monostate, double, std::string, Elements, Members> content_;
};

/// The name of a member. Objects of a document have the same names again and again, so they share
/// them.
class JsonName {
 public:
  JsonName() = default;
  explicit JsonName(std::string text)
      : text_(std::make_shared<const std::string>(std::move(text))) {}

  const std::string& text() const { return *text_; }
  operator const std::string&() const { return *text_; }

 private:
  std::shared_ptr<const std::string> text_;
};

inline bool operator==(const JsonName& left, const char* right) { return left.text() == right; }
inline bool operator!=(const JsonName& left, const char* right) { return left.text() != right; }

struct JsonMember {
  JsonName name;
  JsonNode value;
};

inline JsonNode::JsonNode(Members value) : kind(Kind::Object), content_(std::move(value)) {}

/// A value as a text: a text as it is, all else as JSON without blanks.
std::string text_of_any(const JsonNode& node);

/// A number, a text, or yes or no, as a text without blanks around it; empty for null. All else is
/// a `fault` of the object, which is told unless it has another one, and empty.
std::string scalar_text(const JsonNode& node, const std::string& key, std::string& fault);

/// Reads a JSON text; `file` is for messages. Throws `SourceError`.
JsonNode parse_json(const std::string& text, const std::string& file);

}  // namespace veldra::kit

#endif
