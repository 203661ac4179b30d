#include "store/errors.hpp"
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/notifications.hpp"
#include "store/queries.hpp"
#include "store/transactions.hpp"

#include <algorithm>

// The removing operations of a library.

namespace veldra {

namespace {

using Result = std::map<ObjectKey, bool>;

/// Removes one object in a transaction of its own; false when the reactor refuses. What refers to
/// the object is told by the foreign keys of the database, at the statement or at the commit.
template <class T>
bool remove_object(Library& library, unsigned id) {
  auto& impl = LibraryAccess::impl(library);
  const ObjectKey key(ObjectTraits<T>::type, id);
  std::unique_ptr<WriteTransaction> transaction;
  // What the reactor throws is none of the database's errors, so it is called outside.
  translating_errors([&] { transaction.reset(new WriteTransaction(*impl.database)); });
  if (impl.reactor->mayRemove(library, key) != 0) return false;
  translating_errors([&] { impl.database->erase<T>(id); });
  impl.reactor->objectRemoved(library, key);
  impl.changed.insert(key.type);
  translating_errors([&] { transaction->commit(); });
  return true;
}

template <class T>
bool removed_unless_in_use(Library& library, unsigned id) {
  try {
    return remove_object<T>(library, id);
  } catch (const ObjectInUse&) {
    return false;
  }
}

template <class T, class Ids>
void remove_objects(Library& library, const Ids& ids, Result& result) {
  for (const unsigned id : ids) {
    result.emplace(ObjectKey(ObjectTraits<T>::type, id), removed_unless_in_use<T>(library, id));
  }
}

template <class T>
void purge_kind(Library& library, Result& result) {
  Database& database = LibraryAccess::database(library);
  auto ids = translating_errors([&database] {
    ReadTransaction transaction(database);
    return all_ids<T>(database);
  });
  std::sort(ids.begin(), ids.end());
  remove_objects<T>(library, ids, result);
}

const std::set<ObjectType>& saveable_kinds() {
  static const std::set<ObjectType> kinds = {ObjectType::Composition,    ObjectType::Material,
                                             ObjectType::MaterialType,   ObjectType::Layer,
                                             ObjectType::CustomProperty, ObjectType::Tag};
  return kinds;
}

}  // namespace

template <class T>
bool Library::remove(const std::shared_ptr<T>& object) {
  if (object == nullptr) return false;
  const auto bound = object->library();
  if (bound != nullptr && bound.get() != this) throw ObjectNotFound();
  Notifications notifications(*this);
  const bool removed = remove_object<T>(*this, object->id());
  if (removed) ObjectAccess::impl(*object).library.reset();
  notifications.deliver();
  return removed;
}

template <class T>
bool Library::remove(unsigned id) {
  Notifications notifications(*this);
  const bool removed = remove_object<T>(*this, id);
  notifications.deliver();
  return removed;
}

template <class T>
void Library::remove(const std::set<unsigned>& ids, Result& result) {
  Notifications notifications(*this);
  remove_objects<T>(*this, ids, result);
  notifications.deliver();
}

template <class T>
void Library::remove(const std::set<unsigned>& ids) {
  Result discarded;
  remove<T>(ids, discarded);
}

void Library::remove(const std::set<ObjectKey>& keys, Result& result) {
  Notifications notifications(*this);
  for_each_kind([&](auto kind) {
    using T = typename decltype(kind)::type;
    remove_objects<T>(*this, ids_of_kind(keys, ObjectTraits<T>::type), result);
  });
  notifications.deliver();
}

void Library::remove(const std::set<ObjectKey>& keys) {
  Result discarded;
  remove(keys, discarded);
}

template <class T>
void Library::purge(Result& result) {
  purge(std::set<ObjectType>{ObjectTraits<T>::type}, result);
}

template <class T>
void Library::purge() {
  Result discarded;
  purge<T>(discarded);
}

void Library::purge(const std::set<ObjectType>& kinds, Result& result) {
  Notifications notifications(*this);
  for_each_kind([&](auto kind) {
    using T = typename decltype(kind)::type;
    if (kinds.count(ObjectTraits<T>::type) != 0) {
      purge_kind<T>(*this, result);
    }
  });
  notifications.deliver();
}

void Library::purge(const std::set<ObjectType>& kinds) {
  Result discarded;
  purge(kinds, discarded);
}

void Library::purge(Result& result) { purge(saveable_kinds(), result); }

void Library::purge() {
  Result discarded;
  purge(discarded);
}

#define VELDRA_INSTANTIATE(T)                                                         \
  template VELDRA_EXPORT bool Library::remove<T>(const std::shared_ptr<T>&);          \
  template VELDRA_EXPORT bool Library::remove<T>(unsigned);                           \
  template VELDRA_EXPORT void Library::remove<T>(const std::set<unsigned>&, Result&); \
  template VELDRA_EXPORT void Library::remove<T>(const std::set<unsigned>&);          \
  template VELDRA_EXPORT void Library::purge<T>(Result&);                             \
  template VELDRA_EXPORT void Library::purge<T>();

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
