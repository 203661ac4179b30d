// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_SESSION_HPP
#define VELDRA_STORE_SESSION_HPP

#include "store/database.hpp"

#include <odb/exceptions.hxx>

#include <limits>
#include <memory>

namespace veldra {

/// What the mapping asks before it loads an object that another one refers to, and tells when it
/// has loaded one. While a list is read, an object that several others refer to is fetched once;
/// how, the caches of `object_cache.hpp` decide.
class Session {
 public:
  template <class T>
  struct cache_position {
    ReferenceCache* references = nullptr;
    std::shared_ptr<T> object;
  };

  template <class T>
  static cache_position<T> _cache_insert(odb::database& database, unsigned long long,
                                         const std::shared_ptr<T>& object) {
    cache_position<T> position;
    ReferenceCache& references = references_of(database);
    if (!references.is_used()) return position;
    position.references = &references;
    position.object = object;
    return position;
  }

  /// The ids in a file may be wider than those of objects. What has such an id is nobody's, and a
  /// reference to it leads nowhere.
  template <class T>
  static std::shared_ptr<T> _cache_find(odb::database& database, unsigned long long id) {
    if (id > std::numeric_limits<unsigned>::max()) throw odb::object_not_persistent();
    return references_of(database).find<T>(static_cast<unsigned>(id));
  }

  template <class T>
  static void _cache_load(const cache_position<T>& position) {
    if (position.references != nullptr) position.references->insert(position.object);
  }

  // Objects enter the cache when they are complete, so there is nothing to take back, and nothing
  // is written while a list is read.
  template <class T>
  static void _cache_erase(const cache_position<T>&) {}
  template <class T>
  static void _cache_persist(const cache_position<T>&) {}
  template <class T>
  static void _cache_update(odb::database&, const T&) {}
  template <class T>
  static void _cache_erase(odb::database&, unsigned long long) {}

 private:
  static ReferenceCache& references_of(odb::database& database) {
    return static_cast<Database&>(database).references();
  }
};

}  // namespace veldra

#endif
