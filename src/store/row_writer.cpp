// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/row_writer.hpp"

#include "store/kinds.hpp"
#include "store/mapping-odb.hpp"
#include "store/statement.hpp"

#include <veldra/exceptions.hpp>

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <cassert>
#include <limits>

namespace veldra {

namespace {

/// Whether a unique value is taken. Told by the code: texts may come from triggers in the file, and
/// other violated constraints are no conflicts.
bool is_conflict(const odb::sqlite::database_exception& error) {
  return error.extended_error() == SQLITE_CONSTRAINT_UNIQUE ||
         error.extended_error() == SQLITE_CONSTRAINT_PRIMARYKEY;
}

bool ids_are_left(Database& database, const char* table) {
  Statement row(database.only_connection(), "SELECT seq FROM sqlite_sequence WHERE name = ?1");
  row.bind(1, table);
  return !row.next() || row.integer(0) != std::numeric_limits<long long>::max();
}

}  // namespace

/// The largest id is given to nobody, so that the end of the ids is noticed before a wider one is
/// given, also by what an object has in other tables, which fails then. SQLite says of the end of
/// its own, larger range what it says of a full disk.
/// All is caught here, once: where many names are taken, exceptions are what takes the time.
template <class T>
RowWriter::Attempt RowWriter::write(T& object) {
  assert(database_.is_current());
  const bool is_new = object.id() == 0;
  const auto got_none = [&object, is_new] {
    return is_new && object.id() == std::numeric_limits<unsigned>::max();
  };
  try {
    const IdMapping::Status status = is_new ? insert(object) : update(object);
    if (!got_none()) return {false, status, {}};
  } catch (const odb::object_already_persistent&) {
    if (!got_none()) throw;
  } catch (const odb::object_not_persistent&) {
    throw ObjectNotFound();
  } catch (const odb::sqlite::database_exception& error) {
    const bool full =
        is_new && error.error() == SQLITE_FULL && !ids_are_left(database_, Kind<T>::table);
    if (!got_none() && !full) {
      if (!is_conflict(error)) throw;
      return {true, IdMapping::Existing, error.message()};
    }
  }
  throw odb::sqlite::database_exception(SQLITE_FULL, SQLITE_FULL, "no id is left");
}

template <class T>
IdMapping::Status RowWriter::insert(T& object) {
  database_.persist(object);
  return IdMapping::Inserted;
}

template <class T>
IdMapping::Status RowWriter::update(T& object) {
  database_.update(object);
  return IdMapping::Updated;
}

/// A tag that has a row is never written again.
IdMapping::Status RowWriter::update(Tag&) { return IdMapping::Existing; }

#define VELDRA_INSTANTIATE(T) template RowWriter::Attempt RowWriter::write<T>(T&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
