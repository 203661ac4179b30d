// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_RUNNING_OPERATION_HPP
#define VELDRA_STORE_RUNNING_OPERATION_HPP

#include "store/library_impl.hpp"

#include <veldra/exceptions.hpp>

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

namespace veldra {

/// The time in which a public operation on a library can be interrupted. Those within it are a part
/// of it.
class RunningOperation {
 public:
  explicit RunningOperation(Database& database) : database_(database) {
    // What was meant for an operation that has ended is not for this one.
    if (database.operations_ == 0) database.interrupted_ = false;
    ++database.operations_;
  }
  RunningOperation(const RunningOperation&) = delete;
  RunningOperation& operator=(const RunningOperation&) = delete;
  ~RunningOperation() { --database_.operations_; }

 private:
  Database& database_;
};

/// Runs `work` as an operation that can be interrupted: what SQLite says of it then, also that it
/// has waited in vain, is thrown as `Interrupted`.
template <class Work>
auto interruptibly(Database& database, Work work) {
  const RunningOperation running(database);
  try {
    return work();
  } catch (const odb::sqlite::database_exception& error) {
    if (error.error() != SQLITE_INTERRUPT) throw;
    database.take_interruption();
    throw Interrupted();
  } catch (const odb::timeout&) {
    database.stop_if_interrupted();
    throw;
  } catch (const DatabaseError& error) {
    if (error.code() == SQLITE_BUSY) database.stop_if_interrupted();
    throw;
  }
}

/// The same for an operation that calls the reactor, which may let the library go.
template <class Work>
auto interruptibly(Library& library, Work work) {
  const auto keep = LibraryAccess::impl(library).self.lock();
  return interruptibly(LibraryAccess::database(library), work);
}

}  // namespace veldra

#endif
