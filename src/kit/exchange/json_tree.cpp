// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/json_tree.hpp"

#include "kit/exchange/problem.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>

namespace veldra::kit {

namespace {

/// Longer than the texts that people write; the parser keeps several copies of each.
constexpr std::size_t longest_value = 32 << 20;

/// Where the parser is in a text.
class Reached {
 public:
  explicit Reached(const std::string& file) : file_(file) {}

  const std::string& file() const { return file_; }
  unsigned line() const { return line_; }

  void pass(char character) {
    if (character == '\n') ++line_;
    if (!within_text_ && stands_between_values(character)) {
      left_ = longest_value;
    } else if (--left_ == 0) {
      fail_at(file_, line_, "a value is longer than 32 MiB");
    }
    if (character == '"' && !escaped_) within_text_ = !within_text_;
    escaped_ = within_text_ && character == '\\' && !escaped_;
  }

 private:
  static bool stands_between_values(char character) {
    return std::string_view(" \t\r\n,:[]{}").find(character) != std::string_view::npos;
  }

  const std::string& file_;
  unsigned line_ = 1;
  std::size_t left_ = longest_value;  ///< so far the value at hand may go on
  bool within_text_ = false;
  bool escaped_ = false;  ///< the next character is
};

/// Goes through a text and counts its lines, for the parser tells no places but those of errors.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* position, Reached* reached)
      : position_(position), reached_(reached) {}

  reference operator*() const { return *position_; }
  CountingIterator& operator++() {
    reached_->pass(*position_);
    ++position_;
    return *this;
  }
  CountingIterator operator++(int) {
    auto former = *this;
    ++*this;
    return former;
  }
  bool operator==(const CountingIterator& other) const { return position_ == other.position_; }
  bool operator!=(const CountingIterator& other) const { return position_ != other.position_; }

 private:
  const char* position_;
  Reached* reached_;
};

/// Each value takes memory, however short it is: 64 bytes as a member. A large document may have
/// more of them, as long as they take no more than eight times its size.
constexpr std::size_t most_values_of_small = 2'000'000;
constexpr std::size_t fewest_bytes_of_value = 16;

/// Builds the tree from what the parser meets.
class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
 public:
  TreeBuilder(const std::string& text, const Reached& reached)
      : reached_(reached),
        most_values_(std::max(most_values_of_small, text.size() / fewest_bytes_of_value)) {}

  JsonNode root;

  bool null() override { return add(JsonNode()); }
  bool boolean(bool value) override { return add(JsonNode(value)); }

  bool number_integer(number_integer_t value) override {
    return add(JsonNode(static_cast<double>(value)));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return add(JsonNode(static_cast<double>(value)));
  }
  bool number_float(number_float_t value, const string_t&) override { return add(JsonNode(value)); }

  bool string(string_t& value) override {
    return add(JsonNode(std::string(value)));  // the parser's own has room for longer ones
  }

  bool binary(binary_t&) override { return false; }

  bool start_object(std::size_t) override { return open(JsonNode(JsonNode::Members())); }
  bool start_array(std::size_t) override { return open(JsonNode(JsonNode::Elements())); }
  bool end_object() override {
    open_.back().own_members()->shrink_to_fit();
    return close();
  }
  bool end_array() override {
    open_.back().own_elements()->shrink_to_fit();
    return close();
  }

  bool key(string_t& name) override {
    names_.back() = shared(name);
    lines_.back() = reached_.line();
    return true;
  }

  bool parse_error(std::size_t, const std::string&,
                   const nlohmann::detail::exception& error) override {
    fail_here("this is no proper JSON" + reason_in(error.what()));
  }

 private:
  static constexpr std::size_t deepest = 64;

  [[noreturn]] void fail_here(const std::string& sentence) const {
    fail_at(reached_.file(), reached_.line(), sentence);
  }

  /// What the parser says, without the name and number of its exception and without the place. It
  /// quotes what it has read, however long that is.
  static std::string reason_in(const std::string& message) {
    constexpr std::size_t longest = 200;
    const auto start = message.find("- ");
    if (start == std::string::npos) return "";
    const auto reason = message.substr(start + 2);
    if (reason.size() <= longest) return " (" + in_utf8(reason) + ")";
    auto end = longest;
    while (end > 0 && is_within_character(reason[end])) --end;
    return " (" + in_utf8(reason.substr(0, end)) + "...)";
  }

  /// Whether a byte of UTF-8 is none that begins a character.
  static bool is_within_character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
  }

  /// Names that are met when there are many already are those of objects, and have no likes.
  JsonName shared(const std::string& name) {
    constexpr std::size_t most = 10'000;
    const auto found = known_names_.find(name);
    if (found != known_names_.end()) return found->second;
    JsonName own(name);
    if (known_names_.size() < most) known_names_.emplace(name, own);
    return own;
  }

  bool open(JsonNode node) {
    if (open_.size() == deepest) {
      fail_here("the values are nested too deep");
    }
    node.line = reached_.line();
    open_.push_back(std::move(node));
    names_.emplace_back();
    lines_.push_back(reached_.line());
    return true;
  }

  bool close() {
    JsonNode node = std::move(open_.back());
    open_.pop_back();
    names_.pop_back();
    lines_.pop_back();
    return place_node(std::move(node));
  }

  bool add(JsonNode node) {
    node.line = reached_.line();
    return place_node(std::move(node));
  }

  bool place_node(JsonNode node) {
    if (++values_ > most_values_) {
      fail_at(reached_.file(), 0, fmt::format("this has more than {} values", most_values_));
    }
    if (open_.empty()) {
      root = std::move(node);
    } else if (auto* elements = open_.back().own_elements()) {
      elements->push_back(std::move(node));
    } else {
      node.line = lines_.back();
      open_.back().own_members()->push_back({std::move(names_.back()), std::move(node)});
    }
    return true;
  }

  const Reached& reached_;
  std::size_t most_values_;
  std::size_t values_ = 0;
  std::vector<JsonNode> open_;
  std::vector<JsonName> names_;  ///< of the members that are being read, one a level
  std::vector<unsigned> lines_;  ///< of those names
  std::unordered_map<std::string, JsonName> known_names_;
};

template <class T, class Content>
const T& content_or_nothing(const Content& content) {
  static const T nothing;
  const auto* found = std::get_if<T>(&content);
  return found != nullptr ? *found : nothing;
}

nlohmann::ordered_json json_of(const JsonNode& node) {
  switch (node.kind) {
    case JsonNode::Kind::Null:
      return nullptr;
    case JsonNode::Kind::Boolean:
      return node.boolean;
    case JsonNode::Kind::Number:
      return node.number();
    case JsonNode::Kind::Text:
      return node.text();
    case JsonNode::Kind::Array: {
      auto list = nlohmann::ordered_json::array();
      for (const auto& element : node.elements()) list.push_back(json_of(element));
      return list;
    }
    case JsonNode::Kind::Object: {
      auto object = nlohmann::ordered_json::object();
      for (const auto& [name, value] : node.members()) object[name.text()] = json_of(value);
      return object;
    }
  }
  return nullptr;
}

}  // namespace

std::string text_of_any(const JsonNode& node) {
  if (node.kind == JsonNode::Kind::Text) return node.text();
  if (node.kind == JsonNode::Kind::Number) return exact_number(node.number());
  return json_of(node).dump();
}

std::string scalar_text(const JsonNode& node, const std::string& key, std::string& fault) {
  switch (node.kind) {
    case JsonNode::Kind::Null:
      return "";
    case JsonNode::Kind::Number:
      return exact_number(node.number());
    case JsonNode::Kind::Text:
      return trimmed(node.text());
    case JsonNode::Kind::Boolean:
      return node.boolean ? "Yes" : "No";
    default:
      if (fault.empty()) fault = fmt::format("{} is neither a number nor a text", quoted(key));
      return "";
  }
}

double JsonNode::number() const {
  const auto* number = std::get_if<double>(&content_);
  return number != nullptr ? *number : 0;
}

const std::string& JsonNode::text() const { return content_or_nothing<std::string>(content_); }

const JsonNode::Elements& JsonNode::elements() const {
  return content_or_nothing<Elements>(content_);
}

const JsonNode::Members& JsonNode::members() const { return content_or_nothing<Members>(content_); }

const JsonNode* JsonNode::member(const std::string& name) const {
  for (const auto& [key, value] : members()) {
    if (key.text() == name) return &value;
  }
  return nullptr;
}

JsonNode parse_json(const std::string& text, const std::string& file) {
  Reached reached(file);
  TreeBuilder builder(text, reached);
  const char* begin = text.data();
  nlohmann::json::sax_parse(CountingIterator(begin, &reached),
                            CountingIterator(begin + text.size(), &reached), &builder);
  return std::move(builder.root);
}

}  // namespace veldra::kit
