#ifndef VELDRA_STORE_LOADING_HPP
#define VELDRA_STORE_LOADING_HPP

#include "store/database.hpp"

#include <veldra/library.hpp>

#include <memory>
#include <vector>

namespace veldra {

// A transaction must be current.

/// Links an object, and all that was loaded with it, to the library that it was loaded from.
template <class T>
void link(T& object, const std::weak_ptr<Library>& library);

/// The object with that id; null when it, or something that it refers to, is not there.
template <class T>
std::shared_ptr<T> load(const Library& library, unsigned id);

/// Fetches what several objects of a list refer to only once, for as long as it lives.
class CacheScope {
 public:
  CacheScope(Database& database, ObjectCache& cache);
  CacheScope(const CacheScope&) = delete;
  CacheScope& operator=(const CacheScope&) = delete;
  ~CacheScope();

 private:
  Database& database_;
  ObjectCache* former_;
};

/// The objects with those ids, in their order, without those that are not there.
template <class T>
std::vector<std::shared_ptr<T>> load_all(const Library& library, const std::vector<unsigned>& ids);

}  // namespace veldra

#endif
