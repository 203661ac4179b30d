// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_DISTINCT_NAMES_HPP
#define VELDRA_KIT_EXCHANGE_DISTINCT_NAMES_HPP

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace veldra::kit {

/// Names for the objects of a source that tells them apart by identifiers. A library has each name
/// once: of objects of one name that differ, the second has its identifier behind the name, or a
/// number. Whatever refers to it would get the first one otherwise.
class DistinctNames {
 public:
  struct Name {
    std::string text;
    bool is_new;  ///< no equal object has it
  };

  /// The name of the object at a place of a list, of which `is_same(place)` tells whether that at
  /// another place is equal. The identifier may be empty.
  template <class IsSame>
  Name name_for(const std::string& name, const std::string& identifier, std::size_t place,
                IsSame is_same) {
    auto& others = by_name_[name];
    for (const auto& other : others) {
      if (is_same(other.place)) return {other.name, false};
    }
    others.push_back({place, free_name(name, identifier, others.size() + 1)});
    return {others.back().name, true};
  }

 private:
  struct Taken {
    std::size_t place;
    std::string name;
  };

  std::string free_name(const std::string& name, const std::string& identifier,
                        std::size_t number) {
    if (given_.insert(name).second) return name;
    auto candidate = fmt::format("{} ({})", name, identifier);
    bool is_free = !identifier.empty() && given_.insert(candidate).second;
    for (number = std::max(number, std::size_t{2}); !is_free; ++number) {
      candidate = fmt::format("{} ({})", name, number);
      is_free = given_.insert(candidate).second;
    }
    return candidate;
  }

  std::map<std::string, std::vector<Taken>> by_name_;
  std::set<std::string> given_;
};

}  // namespace veldra::kit

#endif
