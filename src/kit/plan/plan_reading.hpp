// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_PLAN_READING_HPP
#define VELDRA_KIT_PLAN_PLAN_READING_HPP

#include "kit/exchange/json_tree.hpp"
#include "kit/exchange/object_reader.hpp"

#include <veldra/kit/exchange.hpp>
#include <veldra/kit/plan_file.hpp>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace veldra::kit {

/// Reads a plan file, which may say anything.
class PlanReading {
 public:
  PlanReading(const std::string& file, std::string content);

  /// Throws `SourceError`.
  void read();

  std::string path;
  String guid;
  std::vector<PlanFileEntry> entries;
  std::shared_ptr<const Library> source() const { return sources_.library; }

 private:
  using Keys = std::map<std::pair<ObjectType, std::string>, unsigned>;  ///< ids by kinds and names

  JsonNode parsed(std::string content) const;
  JsonNode taken(const std::string& name);
  void read_library(ObjectReader& reader);
  void read_entry(const JsonNode& node);
  static void require_sense(const PlanFileEntry& entry, const ObjectReader& reader,
                            const JsonNode& node);
  void read_objects(JsonNode node);
  void require_all_objects() const;
  void find_objects();
  static bool is_before(const PlanFileEntry& left, const PlanFileEntry& right);
  Keys object_keys() const;

  const std::string& file_;
  JsonNode document_;
  Sources sources_;
};

}  // namespace veldra::kit

#endif
