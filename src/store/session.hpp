#ifndef VELDRA_STORE_SESSION_HPP
#define VELDRA_STORE_SESSION_HPP

#include "store/database.hpp"
#include "store/object_cache.hpp"

#include <memory>

namespace veldra {

/// What the mapping asks before it loads an object that another one refers to, and tells when it
/// has loaded one. While a list is read, an object that several others refer to is fetched once;
/// everybody who asks for it again gets a copy.
class Session {
 public:
  template <class T>
  struct cache_position {
    ObjectCache* cache = nullptr;
    std::shared_ptr<T> object;
  };

  template <class T>
  static cache_position<T> _cache_insert(odb::database& database, const unsigned&,
                                         const std::shared_ptr<T>& object) {
    cache_position<T> position;
    position.cache = cache_of(database);
    if (position.cache != nullptr) position.object = object;
    return position;
  }

  template <class T>
  static std::shared_ptr<T> _cache_find(odb::database& database, const unsigned& id) {
    ObjectCache* cache = cache_of(database);
    return cache == nullptr ? nullptr : cache->find<T>(id);
  }

  template <class T>
  static void _cache_load(const cache_position<T>& position) {
    if (position.cache != nullptr) position.cache->insert(position.object);
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
  static void _cache_erase(odb::database&, const unsigned&) {}

 private:
  static ObjectCache* cache_of(odb::database& database) {
    return static_cast<Database&>(database).cache;
  }
};

}  // namespace veldra

#endif
