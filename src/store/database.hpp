// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_DATABASE_HPP
#define VELDRA_STORE_DATABASE_HPP

#include "store/open_transactions.hpp"
#include "store/reference_cache.hpp"

#include <odb/sqlite/connection-factory.hxx>
#include <odb/sqlite/connection.hxx>
#include <odb/sqlite/database.hxx>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <string>

namespace veldra {

/// Where a library lies.
struct FileName {
  std::string vfs;  ///< the name of the SQLite VFS; empty for the usual one
  std::string path;
};

/// What a name means: a path, or the name of a VFS, "://" and a path. Throws
/// `odb::sqlite::database_exception` when the path is empty: SQLite would open a temporary
/// database, whose contents go with it.
FileName parse_file_name(const std::string& name);

/// The database of an open library file, with one connection that lives as long as it does.
class Database : public odb::sqlite::database {
 public:
  /// `flags` are those of `sqlite3_open_v2`. Throws `odb::sqlite::database_exception`.
  Database(const FileName& file, int flags);

  odb::sqlite::connection& only_connection();

  /// SQLite's own handle of it.
  sqlite3* handle() const noexcept { return handle_; }

  OpenTransactions& transactions() noexcept { return transactions_; }
  const OpenTransactions& transactions() const noexcept { return transactions_; }

  /// Whether this thread works in a transaction of this database, which is what all that reads and
  /// writes rows takes for granted.
  bool is_current();

  /// Where reading looks for what it has met already.
  ReferenceCache& references() noexcept { return references_; }

  /// What reading objects of a kind leaves with the connection for the next time; null at first.
  std::shared_ptr<void>& kept_for(ObjectType type) { return kept_[type]; }

  /// Lets the running operation end, if there is one: what waits or reads in SQLite gives up, and
  /// the next `stop_if_interrupted` throws. For other threads and signal handlers.
  void interrupt() noexcept;

  /// Throws `Interrupted` when the running operation is to end.
  void stop_if_interrupted();

  /// Whether the running operation is to end. Asked once: what runs because it ends is let run.
  bool take_interruption() noexcept;

 private:
  friend class JoinedOperation;
  friend class RunningOperation;

  void stop_what_runs() noexcept;
  static int wait_for_others(void* database, int attempt) noexcept;

  sqlite3* handle_;
  OpenTransactions transactions_;
  ReferenceCache references_;
  std::atomic<unsigned> operations_{0};  // that run, each within the one before
  std::atomic<bool> interrupted_{false};
  std::atomic<Database*> joined_{nullptr};  // what is interrupted together with this one
  std::atomic<unsigned> interrupting_{0};   // who may be using it
  std::chrono::steady_clock::time_point waiting_since_;
  std::map<ObjectType, std::shared_ptr<void>> kept_;  // goes before the connection
};

}  // namespace veldra

#endif
