// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/kinds.hpp"
#include "store/queries.hpp"
#include "store/read_operation.hpp"

// What refers to objects, as the tables say.

namespace veldra {

std::set<ObjectKey> Library::referrers(const ObjectKey& key) const {
  Database& database = *impl_->database;
  return reading(database, [&] {
    std::set<ObjectKey> keys;
    for (const ReferenceColumn& column : reference_columns()) {
      if (column.to != key.type) continue;
      for (const unsigned id : referring_ids(database, column, key.id)) {
        keys.insert({column.from, id});
      }
    }
    return keys;
  });
}

template <class T>
std::set<unsigned> Library::unreferenced() const {
  return reading(*impl_->database, [&] { return as_set(unreferenced_ids<T>(*impl_->database)); });
}

#define VELDRA_INSTANTIATE(T) \
  template VELDRA_EXPORT std::set<unsigned> Library::unreferenced<T>() const;

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
