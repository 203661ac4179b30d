// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/json_tree.hpp"

#include "kit/exchange/problem.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace veldra::kit {

namespace {

/// Goes through a text and counts its lines, for the parser tells no places but those of errors.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* position, unsigned* line) : position_(position), line_(line) {}

  reference operator*() const { return *position_; }
  CountingIterator& operator++() {
    if (*position_ == '\n') ++*line_;
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
  unsigned* line_;
};

/// Each value takes memory, however short it is: 64 bytes as a member. A large document may have
/// more of them, as long as they take no more than eight times its size.
constexpr std::size_t most_values_of_small = 2'000'000;
constexpr std::size_t fewest_bytes_of_value = 16;

/// Builds the tree from what the parser meets.
class TreeBuilder : public nlohmann::json_sax<nlohmann::json> {
 public:
  TreeBuilder(const std::string& file, const std::string& text, const unsigned& line)
      : file_(file),
        line_(line),
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
    lines_.back() = line_;
    return true;
  }

  bool parse_error(std::size_t, const std::string&,
                   const nlohmann::detail::exception& error) override {
    fail_at(file_, line_, "this is no proper JSON" + reason_in(error.what()));
  }

 private:
  static constexpr std::size_t deepest = 64;

  /// What the parser says, without the name and number of its exception and without the place.
  static std::string reason_in(const std::string& message) {
    const auto start = message.find("- ");
    return start == std::string::npos ? "" : " (" + in_utf8(message.substr(start + 2)) + ")";
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
      fail_at(file_, line_, "the values are nested too deep");
    }
    node.line = line_;
    open_.push_back(std::move(node));
    names_.emplace_back();
    lines_.push_back(line_);
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
    node.line = line_;
    return place_node(std::move(node));
  }

  bool place_node(JsonNode node) {
    if (++values_ > most_values_) {
      fail_at(file_, 0, fmt::format("this has more than {} values", most_values_));
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

  const std::string& file_;
  const unsigned& line_;
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

std::string scalar_text(const JsonNode& node, const std::string& file) {
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
      fail_at(file, node.line, "a number or a text is expected");
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
  unsigned line = 1;
  TreeBuilder builder(file, text, line);
  const char* begin = text.data();
  nlohmann::json::sax_parse(CountingIterator(begin, &line),
                            CountingIterator(begin + text.size(), &line), &builder);
  return std::move(builder.root);
}

}  // namespace veldra::kit
