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

template <class T>
RowWriter::Attempt RowWriter::write(T& object) {
  assert(database_.is_current());
  try {
    return {false, write_row(object), {}};
  } catch (const odb::sqlite::database_exception& error) {
    if (!is_conflict(error)) throw;
    return {true, IdMapping::Existing, error.message()};
  }
}

template <class T>
IdMapping::Status RowWriter::write_row(T& object) {
  if (object.id() != 0) return update(object);
  insert(object);
  return IdMapping::Inserted;
}

/// The largest id is given to nobody, so that the end of the ids is noticed before a wider one is
/// given, also by what an object has in other tables, which fails then. SQLite says of the end of
/// its own, larger range what it says of a full disk.
template <class T>
void RowWriter::insert(T& object) {
  const auto got_none = [&object] { return object.id() == std::numeric_limits<unsigned>::max(); };
  try {
    database_.persist(object);
    if (!got_none()) return;
  } catch (const odb::object_already_persistent&) {
    if (!got_none()) throw;
  } catch (const odb::sqlite::database_exception& error) {
    const bool full = error.error() == SQLITE_FULL && !ids_are_left(database_, Kind<T>::table);
    if (!got_none() && !full) throw;
  }
  throw odb::sqlite::database_exception(SQLITE_FULL, SQLITE_FULL, "no id is left");
}

template <class T>
IdMapping::Status RowWriter::update(T& object) {
  try {
    database_.update(object);
  } catch (const odb::object_not_persistent&) {
    throw ObjectNotFound();
  }
  return IdMapping::Updated;
}

/// A tag that has a row is never written again.
IdMapping::Status RowWriter::update(Tag&) { return IdMapping::Existing; }

#define VELDRA_INSTANTIATE(T) template RowWriter::Attempt RowWriter::write<T>(T&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
