// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_LIBRARY_PART_HPP
#define VELDRA_KIT_EXCHANGE_LIBRARY_PART_HPP

#include <veldra/kit/exchange.hpp>

#include <memory>
#include <set>
#include <vector>

namespace veldra::kit {

/// A library in memory with objects of another one and those to which they refer, and which of that
/// these are.
class LibraryPart {
 public:
  /// Keys of no objects are skipped.
  LibraryPart(const Library& whole, const std::set<ObjectKey>& keys);

  const Library& library() const { return *part_; }
  const WholeLibrary& whole() const { return whole_; }

  /// The values of assets, which no copy has.
  std::vector<FieldNotKept> left_behind() const { return left_behind_; }

 private:
  std::shared_ptr<Library> part_;
  WholeLibrary whole_;
  std::vector<FieldNotKept> left_behind_;
};

}  // namespace veldra::kit

#endif
