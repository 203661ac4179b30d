// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_OBJECT_READER_HPP
#define VELDRA_KIT_EXCHANGE_OBJECT_READER_HPP

#include "kit/exchange/json_tree.hpp"

#include <veldra/library.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

/// Reads the members of a JSON object of this program's own format. What is not as it must be
/// becomes a `SourceError` that names the file and the line; so do members that nobody asked for,
/// when the reading is `finish`ed.
class ObjectReader {
 public:
  /// What messages call the object: `what`, or as one of a kind by the name that it has.
  ObjectReader(const JsonNode& node, const std::string& what, const std::string& file);
  static ObjectReader of_kind(const JsonNode& node, const std::string& kind,
                              const std::string& file);

  /// The member of that name; null when there is none.
  const JsonNode* find(const std::string& key);

  /// Members that must be there.
  String required_text(const std::string& key);
  unsigned required_index(const std::string& key);

  /// Members that need not be there.
  String text(const std::string& key);
  bool boolean(const std::string& key, bool otherwise);
  int integer(const std::string& key, int otherwise);
  double number(const std::string& key, double otherwise);
  const std::vector<JsonNode>& list(const std::string& key);

  void finish() const;

  // The values of nodes.
  String text_of(const JsonNode& node) const;
  double number_of(const JsonNode& node) const;
  unsigned index_of(const JsonNode& node) const;

  [[noreturn]] void fail(const JsonNode& node, const std::string& sentence) const;

 private:
  ObjectReader(const JsonNode& node, const std::string& what, bool by_name,
               const std::string& file);

  void require_own_names() const;
  bool is_named() const;
  std::string name() const;
  std::string what() const;
  const JsonNode& required(const std::string& key);
  long long integer_of(const JsonNode& node, long long least, long long greatest) const;

  const JsonNode& node_;
  std::string what_;
  bool by_name_;
  const std::string& file_;
  std::vector<bool> is_known_;  ///< whether somebody asked for the member at that place
};

}  // namespace veldra::kit

#endif
