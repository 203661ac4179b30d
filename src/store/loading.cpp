// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/loading.hpp"

#include "objects/references.hpp"
#include "store/bulk_reading.hpp"
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/mapping-odb.hpp"
#include "store/queries.hpp"
#include "store/rows_of_many.hpp"

#include <odb/exceptions.hxx>

#include <algorithm>
#include <cassert>
#include <iterator>
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

/// The same for several, one after another.
template <class T>
std::vector<std::shared_ptr<T>> find_each(Database& database, const std::vector<unsigned>& ids) {
  std::vector<std::shared_ptr<T>> objects;
  objects.reserve(ids.size());
  for (const unsigned id : ids) {
    database.stop_if_interrupted();
    objects.push_back(find<T>(database, id));
  }
  return objects;
}

template <class T>
BulkReading<T>& bulk_reading(Database& database) {
  std::shared_ptr<void>& kept = database.kept_for(ObjectTraits<T>::type);
  if (kept == nullptr) kept = std::make_shared<BulkReading<T>>(database);
  return *static_cast<BulkReading<T>*>(kept.get());
}

/// The objects with those ids, which ascend, as `find` gives them.
template <class T>
std::vector<std::shared_ptr<T>> find_all(Database& database, const std::vector<unsigned>& ids) {
  BulkReading<T>& bulk = bulk_reading<T>(database);
  std::vector<std::shared_ptr<T>> objects;
  objects.reserve(ids.size());
  for (auto begin = ids.begin(); begin != ids.end();) {
    const auto end = begin + std::min<std::ptrdiff_t>(ids.end() - begin, most_at_once);
    const std::vector<unsigned> part(begin, end);
    begin = end;
    auto found = bulk.read(part);
    if (found.empty()) found = find_each<T>(database, part);
    objects.insert(objects.end(), std::make_move_iterator(found.begin()),
                   std::make_move_iterator(found.end()));
  }
  return objects;
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
/// the layers, reading would jump through it. What cannot be fetched is told of when a composition
/// that can be read so far asks for it.
template <class Cache>
void fetch_references(OfKind<Composition>, Database& database, const std::vector<unsigned>& ids,
                      Cache& cache) {
  if (ids.size() < 2) return;
  as_far_as_sound([&] {
    std::vector<unsigned> unmet;
    for (const unsigned id : layer_material_ids(database, ids)) {
      if (cache.template find<Material>(id) == nullptr) unmet.push_back(id);
    }
    for (const auto& material : find_all<Material>(database, unmet)) {
      if (material == nullptr) continue;
      cache.insert(material);
      cache.offer(material->id());
    }
  });
}

}  // namespace

template <class T, class Cache>
std::vector<std::shared_ptr<T>> load_all(const Library& library, const std::vector<unsigned>& ids,
                                         Cache& cache) {
  Database& database = LibraryAccess::database(library);
  const CacheScope scope(database.references(), cache);
  fetch_references(OfKind<T>(), database, ids, cache);
  const std::vector<std::size_t> places = places_by_id(ids);
  std::vector<unsigned> ascending;
  ascending.reserve(ids.size());
  for (const std::size_t place : places) ascending.push_back(ids[place]);

  std::vector<std::shared_ptr<T>> objects(ids.size());
  auto place = places.begin();
  for (auto& object : find_all<T>(database, ascending)) {
    if (object != nullptr) link(*object, LibraryAccess::impl(library).self);
    objects[*place++] = std::move(object);
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
