// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_BULK_READING_HPP
#define VELDRA_STORE_BULK_READING_HPP

#include "store/database.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace veldra {

/// Runs what reads several objects at once. It ends without an exception where anything is not as
/// it should be, such as a reference that leads nowhere or a text that is none: reading the objects
/// one by one tells which of them is concerned.
void as_far_as_sound(const std::function<void()>& read);

/// Reads many objects by a few statements: one for their own rows, and one for those of each of
/// their containers. Where anything is not as it should be it reads nothing.
template <class T>
class BulkReading {
 public:
  explicit BulkReading(Database& database);
  ~BulkReading();

  /// The objects with those ids, at most `most_at_once`, which ascend, as the mapping gives them.
  /// None when they are to be read one by one: also where that is as fast, since they are few or
  /// far from one another, and where an id comes again.
  std::vector<std::shared_ptr<T>> read(const std::vector<unsigned>& ids);

 private:
  static bool is_worth_it(const std::vector<unsigned>& ids);

  class Statements;

  Database& database_;
  std::unique_ptr<Statements> statements_;
};

}  // namespace veldra

#endif
