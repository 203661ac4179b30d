#ifndef VELDRA_STORE_DATABASE_HPP
#define VELDRA_STORE_DATABASE_HPP

#include <odb/sqlite/connection-factory.hxx>
#include <odb/sqlite/connection.hxx>
#include <odb/sqlite/database.hxx>
#include <odb/sqlite/transaction.hxx>

#include <atomic>
#include <chrono>
#include <string>

namespace veldra {

class HeldTransaction;
class ObjectCache;
class SnapshotTransaction;

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

  odb::sqlite::connection& connection_in_use();

  /// Lets the running operation end, if there is one: what waits or reads in SQLite gives up, and
  /// the next `stop_if_interrupted` throws. For other threads and signal handlers.
  void interrupt() noexcept;

  /// Throws `Interrupted` when the running operation is to end.
  void stop_if_interrupted();

  /// Whether the running operation is to end. Asked once: what runs because it ends is let run.
  bool take_interruption() noexcept;

  /// The transaction that is writing; null while none is.
  std::atomic<odb::sqlite::transaction*> writing{nullptr};

  /// The transaction that the host holds over several operations; null while there is none.
  HeldTransaction* held = nullptr;

  /// The transaction that a snapshot of the host reads in; null while there is none.
  SnapshotTransaction* snapshot = nullptr;

  /// What list reads fetched already; null while none is running.
  ObjectCache* cache = nullptr;

 private:
  friend class RunningOperation;

  static int wait_for_others(void* database, int attempt) noexcept;

  sqlite3* handle_;
  std::atomic<unsigned> operations_{0};  // that run, each within the one before
  std::atomic<bool> interrupted_{false};
  std::chrono::steady_clock::time_point waiting_since_;
};

}  // namespace veldra

#endif
