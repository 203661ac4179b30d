// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_ERRORS_HPP
#define VELDRA_STORE_ERRORS_HPP

#include <veldra/exceptions.hpp>

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <string>

namespace veldra {

/// Runs `work`, and puts the name of the file in front of what the database says.
template <class Work>
auto naming_file(const std::string& name, Work work) {
  try {
    return work();
  } catch (const odb::sqlite::database_exception& error) {
    throw odb::sqlite::database_exception(error.error(), error.extended_error(),
                                          name + ": " + error.message());
  }
}

/// Runs `work`, and throws what fails in the database as the library's own exceptions. A write that
/// was started within another one of the same library is no failure of the database and passes; so
/// does an interruption, which the whole operation knows of.
template <class Work>
auto translating_errors(Work work) {
  try {
    return work();
  } catch (const odb::sqlite::database_exception& error) {
    if (error.error() == SQLITE_READONLY) throw LibraryReadOnly();
    if (error.error() == SQLITE_CONSTRAINT) throw ObjectInUse();
    if (error.error() == SQLITE_INTERRUPT) throw;
    throw DatabaseError(error.error());
  } catch (const odb::object_not_persistent&) {
    throw ObjectNotFound();
  } catch (const odb::already_in_transaction&) {
    throw;
  } catch (const odb::timeout&) {
    throw DatabaseError(SQLITE_BUSY);
  } catch (const odb::exception&) {
    throw UnknownError();
  }
}

}  // namespace veldra

#endif
