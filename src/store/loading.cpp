// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/loading.hpp"

#include "objects/references.hpp"
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/mapping-odb.hpp"
#include "store/queries.hpp"

#include <odb/exceptions.hxx>

#include <algorithm>
#include <cassert>
#include <numeric>

namespace veldra {

namespace {

bool same_owner(const std::weak_ptr<Library>& left, const std::weak_ptr<Library>& right) {
  return !left.owner_before(right) && !right.owner_before(left);
}

/// Links an object and all that it refers to.
struct Linker {
  const std::weak_ptr<Library>& library;

  template <class T>
  void operator()(const std::shared_ptr<T>& reference) const {
    if (reference != nullptr) link_object(const_cast<std::remove_const_t<T>&>(*reference));
  }

  template <class T>
  void link_object(T& object) const {
    ObjectRecord& record = ObjectAccess::impl(object);
    // Replicas are linked already, and counting references of a pointer takes its time.
    if (!same_owner(record.library, library)) record.library = library;
    for_each_reference(ObjectAccess::impl(object), *this);
  }
};

/// The object with that id as the mapping gives it, not linked.
template <class T>
std::shared_ptr<T> find(Database& database, unsigned id) {
  try {
    return database.find<T>(id);
  } catch (const odb::object_not_persistent&) {
    return nullptr;  // something that the object refers to is missing
  }
}

/// The places of a list in the order in which its objects lie in the file.
std::vector<std::size_t> places_by_id(const std::vector<unsigned>& ids) {
  std::vector<std::size_t> places(ids.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  if (!std::is_sorted(ids.begin(), ids.end())) {
    std::sort(places.begin(), places.end(),
              [&ids](std::size_t a, std::size_t b) { return ids[a] < ids[b]; });
  }
  return places;
}

}  // namespace

template <class T>
void link(T& object, const std::weak_ptr<Library>& library) {
  Linker{library}.link_object(object);
}

template <class T>
std::shared_ptr<T> load(const Library& library, unsigned id) {
  const auto& impl = LibraryAccess::impl(library);
  assert(impl.database->is_current());
  const auto object = find<T>(*impl.database, id);
  if (object != nullptr) link(*object, impl.self);
  return object;
}

namespace {

template <class T, class Cache>
void fetch_references(OfKind<T>, Database&, const std::vector<unsigned>&, Cache&) {}

/// Fetches the materials of the layers in the order in which they lie in the file. In the order of
/// the layers, reading would jump through it.
template <class Cache>
void fetch_references(OfKind<Composition>, Database& database, const std::vector<unsigned>& ids,
                      Cache& cache) {
  if (ids.size() < 2) return;
  for (const unsigned id : layer_material_ids(database, ids)) {
    database.stop_if_interrupted();
    if (find<Material>(database, id) != nullptr) cache.offer(id);
  }
}

}  // namespace

template <class T, class Cache>
std::vector<std::shared_ptr<T>> load_all(const Library& library, const std::vector<unsigned>& ids,
                                         Cache& cache) {
  Database& database = LibraryAccess::database(library);
  const CacheScope scope(database.references(), cache);
  fetch_references(OfKind<T>(), database, ids, cache);
  std::vector<std::shared_ptr<T>> objects(ids.size());
  for (const std::size_t place : places_by_id(ids)) {
    database.stop_if_interrupted();
    objects[place] = load<T>(library, ids[place]);
  }
  objects.erase(std::remove(objects.begin(), objects.end(), nullptr), objects.end());
  return objects;
}

#define VELDRA_INSTANTIATE(T)                                       \
  template void link<T>(T&, const std::weak_ptr<Library>&);         \
  template std::shared_ptr<T> load<T>(const Library&, unsigned);    \
  template std::vector<std::shared_ptr<T>> load_all<T>(             \
      const Library&, const std::vector<unsigned>&, ReplicaCache&); \
  template std::vector<std::shared_ptr<T>> load_all<T>(             \
      const Library&, const std::vector<unsigned>&, SharingCache&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
