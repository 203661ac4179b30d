// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/object_reader.hpp"

#include "kit/exchange/problem.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/fields.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string_view>

namespace veldra::kit {

ObjectReader::ObjectReader(const JsonNode& node, const std::string& what, const std::string& file)
    : ObjectReader(node, what, false, file) {}

ObjectReader ObjectReader::of_kind(const JsonNode& node, const std::string& kind,
                                   const std::string& file) {
  return {node, kind, true, file};
}

ObjectReader::ObjectReader(const JsonNode& node, const std::string& what, bool by_name,
                           const std::string& file)
    : node_(node),
      what_(what),
      by_name_(by_name),
      file_(file),
      is_known_(node.members().size(), false) {
  if (node.kind != JsonNode::Kind::Object) fail(node, "it must be a JSON object");
  require_own_names();
}

void ObjectReader::require_own_names() const {
  std::vector<std::string_view> names;
  names.reserve(node_.members().size());
  for (const auto& member : node_.members()) names.emplace_back(member.name.text());
  std::sort(names.begin(), names.end());
  if (std::adjacent_find(names.begin(), names.end()) == names.end()) return;
  std::set<std::string> seen;
  for (const auto& [key, value] : node_.members()) {
    if (!seen.insert(key).second) fail(value, fmt::format("{} is there twice", quoted(key)));
  }
}

void ObjectReader::fail(const JsonNode& node, const std::string& sentence) const {
  fail_at(file_, node.line, fmt::format("{}: {}", what(), sentence), name());
}

std::string ObjectReader::what() const {
  if (!by_name_) return what_;
  return is_named() ? fmt::format("{} {}", what_, quoted(name())) : "a " + what_;
}

bool ObjectReader::is_named() const {
  const JsonNode* name = node_.member("name");
  return by_name_ && name != nullptr && name->kind == JsonNode::Kind::Text;
}

std::string ObjectReader::name() const { return is_named() ? node_.member("name")->text() : ""; }

const JsonNode* ObjectReader::find(const std::string& key) {
  const auto& members = node_.members();
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const auto& member) { return member.name.text() == key; });
  if (found == members.end()) return nullptr;
  is_known_[static_cast<std::size_t>(found - members.begin())] = true;
  return &found->value;
}

const JsonNode& ObjectReader::required(const std::string& key) {
  const JsonNode* node = find(key);
  if (node == nullptr) fail(node_, fmt::format("{} is missing", quoted(key)));
  return *node;
}

String ObjectReader::required_text(const std::string& key) {
  const JsonNode& node = required(key);
  auto text = text_of(node);
  if (text.empty()) fail(node, fmt::format("{} is empty", quoted(key)));
  return text;
}

unsigned ObjectReader::required_index(const std::string& key) { return index_of(required(key)); }

String ObjectReader::text(const std::string& key) {
  const JsonNode* node = find(key);
  return node ? text_of(*node) : String();
}

bool ObjectReader::boolean(const std::string& key, bool otherwise) {
  const JsonNode* node = find(key);
  if (node == nullptr) return otherwise;
  if (node->kind != JsonNode::Kind::Boolean) {
    fail(*node, fmt::format("{} must be true or false", quoted(key)));
  }
  return node->boolean;
}

int ObjectReader::integer(const std::string& key, int otherwise) {
  const JsonNode* node = find(key);
  if (node == nullptr) return otherwise;
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(integer_of(*node, Limits::min(), Limits::max()));
}

double ObjectReader::number(const std::string& key, double otherwise) {
  const JsonNode* node = find(key);
  return node ? number_of(*node) : otherwise;
}

const std::vector<JsonNode>& ObjectReader::list(const std::string& key) {
  static const std::vector<JsonNode> nothing;
  const JsonNode* node = find(key);
  if (node == nullptr) return nothing;
  if (node->kind != JsonNode::Kind::Array) {
    fail(*node, fmt::format("{} must be a list", quoted(key)));
  }
  return node->elements();
}

void ObjectReader::finish() const {
  const auto unknown = std::find(is_known_.begin(), is_known_.end(), false) - is_known_.begin();
  const auto& members = node_.members();
  if (unknown == static_cast<std::ptrdiff_t>(members.size())) return;
  const auto& [key, value] = members[static_cast<std::size_t>(unknown)];
  fail(value, fmt::format("{} is not known", quoted(key)));
}

String ObjectReader::text_of(const JsonNode& node) const {
  if (node.kind != JsonNode::Kind::Text) fail(node, "a text is expected");
  try {
    return library_text(node.text());
  } catch (const Error& error) {
    fail(node, error.what());
  }
}

double ObjectReader::number_of(const JsonNode& node) const {
  if (node.kind == JsonNode::Kind::Number) return node.number();
  if (node.kind == JsonNode::Kind::Null) return std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if (node.kind == JsonNode::Kind::Text && node.text() == "Infinity") return infinity;
  if (node.kind == JsonNode::Kind::Text && node.text() == "-Infinity") return -infinity;
  fail(node, "a number is expected");
}

unsigned ObjectReader::index_of(const JsonNode& node) const {
  return static_cast<unsigned>(integer_of(node, 0, std::numeric_limits<unsigned>::max()));
}

long long ObjectReader::integer_of(const JsonNode& node, long long least,
                                   long long greatest) const {
  const double number = node.kind == JsonNode::Kind::Number ? node.number() : 0.5;
  if (number != std::floor(number)) fail(node, "a whole number is expected");
  if (number < static_cast<double>(least) || number > static_cast<double>(greatest)) {
    fail(node, "the number is out of range");
  }
  return static_cast<long long>(number);
}

}  // namespace veldra::kit
