// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/errors.hpp"
#include "store/kinds.hpp"
#include "store/known_references.hpp"
#include "store/mapping-odb.hpp"
#include "store/queries.hpp"
#include "store/reported_operation.hpp"
#include "store/transactions.hpp"

#include <algorithm>
#include <cassert>
#include <utility>
#include <vector>

// The removing operations of a library.

namespace veldra {

namespace {

using Result = std::map<ObjectKey, bool>;

enum class Outcome { Removed, Refused, InUse };

/// Runs a step of a removal; true when a foreign key of the database stops it.
template <class Step>
bool stays_referred_to(Step step) {
  return translating_errors([&step] {
    try {
      step();
      return false;
    } catch (const odb::sqlite::database_exception& error) {
      if (error.error() != SQLITE_CONSTRAINT) throw;
      return true;
    }
  });
}

/// Removes one object in a transaction of its own; `logs` are of what the caller changes in the
/// object then. That something refers to it is told at the statement or at the commit. What the
/// reactor throws is none of the database's errors, so it is called outside of their translation.
template <class T>
Outcome remove_object(Library& library, unsigned id, UndoLogs& logs,
                      KnownReferences* known = nullptr) {
  auto& impl = LibraryAccess::impl(library);
  impl.database->stop_if_interrupted();
  const ObjectKey key(ObjectTraits<T>::type, id);
  std::unique_ptr<WriteTransaction> transaction;
  translating_errors([&] { transaction.reset(new WriteTransaction(*impl.database)); });
  if (impl.reactor->mayRemove(library, key) != 0) return Outcome::Refused;
  translating_errors([&] { transaction->require_running(); });
  assert(impl.database->is_current());
  if (known != nullptr && known->is_referred_to(id)) return Outcome::InUse;
  if (stays_referred_to([&] { impl.database->erase<T>(id); })) return Outcome::InUse;
  impl.reactor->objectRemoved(library, key);
  impl.changed.insert(key.type);
  if (stays_referred_to([&] { transaction->commit(logs); })) return Outcome::InUse;
  if (known != nullptr) known->removed(id);
  return Outcome::Removed;
}

template <class T>
bool remove_or_throw(Library& library, unsigned id, UndoLogs& logs) {
  const Outcome outcome = remove_object<T>(library, id, logs);
  if (outcome == Outcome::InUse) throw ObjectInUse();
  return outcome == Outcome::Removed;
}

/// What is taken back at the end has no result.
void end(KnownReferences& known, const std::vector<ObjectKey>& entered, Result& result) {
  try {
    translating_errors([&known] { known.end(); });
  } catch (...) {
    for (const ObjectKey& key : entered) result.erase(key);
    throw;
  }
}

/// Takes the ids by value, since the reactor may change those of the host.
template <class T, class Ids>
void remove_objects(Library& library, const Ids ids, Result& result) {
  UndoLogs none;
  Database& database = LibraryAccess::database(library);
  const auto known =
      translating_errors([&] { return KnownReferences::of<T>(database, ids.size()); });
  std::vector<ObjectKey> entered;
  for (const unsigned id : ids) {
    const bool removed = remove_object<T>(library, id, none, known.get()) == Outcome::Removed;
    const ObjectKey key(ObjectTraits<T>::type, id);
    const bool is_new = result.emplace(key, removed).second;
    if (known != nullptr && is_new) entered.push_back(key);
  }
  if (known != nullptr) end(*known, entered, result);
}

template <class T>
void purge_kind(Library& library, Result& result) {
  Database& database = LibraryAccess::database(library);
  auto ids = translating_errors([&database] {
    ReadTransaction transaction(database);
    return all_ids<T>(database);
  });
  std::sort(ids.begin(), ids.end());
  remove_objects<T>(library, std::move(ids), result);
}

}  // namespace

template <class T>
bool Library::remove(const std::shared_ptr<T>& object) {
  if (object == nullptr) return false;
  // The reactor may let go what the host holds.
  const std::shared_ptr<const void> held = object;
  const auto bound = object->library();
  if (bound != nullptr && bound.get() != this) throw ObjectNotFound();
  auto& record = ObjectAccess::impl(*object);
  bool removed = false;
  run_operation(*this, [&] {
    UndoLogs logs(1);
    logs.front().remember(held, record);
    removed = remove_or_throw<T>(*this, record.id, logs);
    if (removed) {
      record.library.reset();
    } else {
      logs.front().keep_changes();
    }
  });
  return removed;
}

template <class T>
bool Library::remove(unsigned id) {
  bool removed = false;
  run_operation(*this, [&] {
    UndoLogs none;
    removed = remove_or_throw<T>(*this, id, none);
  });
  return removed;
}

template <class T>
void Library::remove(const std::set<unsigned>& ids, Result& result) {
  run_operation(*this, [&] { remove_objects<T>(*this, ids, result); });
}

template <class T>
void Library::remove(const std::set<unsigned>& ids) {
  Result discarded;
  remove<T>(ids, discarded);
}

void Library::remove(const std::set<ObjectKey>& keys, Result& result) {
  const auto wanted = keys;  // the reactor may change those of the host
  run_operation(*this, [&] {
    for_each_kind([&](auto kind) {
      using T = typename decltype(kind)::type;
      remove_objects<T>(*this, ids_of_kind(wanted, ObjectTraits<T>::type), result);
    });
  });
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
  const auto wanted = kinds;  // as above
  run_operation(*this, [&] {
    for_each_kind([&](auto kind) {
      using T = typename decltype(kind)::type;
      if (wanted.count(ObjectTraits<T>::type) != 0) {
        purge_kind<T>(*this, result);
      }
    });
  });
}

void Library::purge(const std::set<ObjectType>& kinds) {
  Result discarded;
  purge(kinds, discarded);
}

void Library::purge(Result& result) { purge(all_kinds(), result); }

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
