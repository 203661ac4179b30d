// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_TRANSACTIONS_HPP
#define VELDRA_STORE_TRANSACTIONS_HPP

#include "store/database.hpp"
#include "store/undo_log.hpp"

#include <odb/sqlite/exceptions.hxx>
#include <odb/sqlite/transaction.hxx>

#include <memory>

namespace veldra {

/// Whether the changes of a transaction are in the file, although its end has failed: they are
/// before the lock on the file is given back.
bool is_of_a_lock_given_back(const odb::sqlite::database_exception& error);

/// Whether the running transaction has violated foreign keys, of which else only its end would
/// tell.
bool has_violated_keys(const Database& database);

/// Sets the current transaction of the thread aside, be it of another library or of the host, and
/// puts it back at the end. The runtime does all its work on the connection of the current one.
class SetAsideTransaction {
 public:
  SetAsideTransaction();
  SetAsideTransaction(const SetAsideTransaction&) = delete;
  SetAsideTransaction& operator=(const SetAsideTransaction&) = delete;
  ~SetAsideTransaction();

 private:
  odb::transaction* former_;
};

/// Rolls back what the runtime could not. SQLite prepares the statement for it when it is first
/// needed and whenever the schema was read anew; that may fail, and the connection would remain
/// within the transaction for ever.
void end_what_is_left(Database& database) noexcept;

/// The same, and throws what SQLite says when even that fails.
void require_ended(Database& database);

/// A transaction that the host holds over several operations: what reads is a part of it, what
/// writes is nested in it. Rolled back at the end unless committed.
class HeldTransaction {
 public:
  /// Throws `odb::already_in_transaction` when the database has one or a snapshot, or is being
  /// written.
  explicit HeldTransaction(Database& database);
  HeldTransaction(const HeldTransaction&) = delete;
  HeldTransaction& operator=(const HeldTransaction&) = delete;
  ~HeldTransaction();

  void commit();

  /// The transaction itself. Throws `odb::transaction_already_finalized` when a failure ended it.
  odb::sqlite::transaction& running();

  /// What follows can be taken back alone, until it is released.
  void set_savepoint();
  void release_savepoint();
  void roll_back_to_savepoint() noexcept;

  /// Takes over what an operation changed in the host's objects.
  void keep(UndoLogs& logs) noexcept;

 private:
  Database& database_;
  odb::sqlite::transaction transaction_;
  bool broken_ = false;  // something of a failed operation is left in it
  UndoLogs logs_;
};

/// A transaction that a host holds over several reads, which are a part of it. Where the database
/// is being written, or the host holds a transaction that writes, it is nothing but a part of that.
class SnapshotTransaction {
 public:
  /// Throws `odb::already_in_transaction` when the database has one.
  explicit SnapshotTransaction(Database& database);
  SnapshotTransaction(const SnapshotTransaction&) = delete;
  SnapshotTransaction& operator=(const SnapshotTransaction&) = delete;
  ~SnapshotTransaction();

  /// The transaction itself. Throws `odb::transaction_already_finalized` when a failure ended it.
  odb::sqlite::transaction& running();

 private:
  Database& database_;
  bool is_part_of_another_;
  odb::sqlite::transaction transaction_;
};

/// Lets all reads see one state: that of the transaction which the host holds, or one of its own.
class OneState {
 public:
  explicit OneState(Database& database);

 private:
  std::unique_ptr<SnapshotTransaction> own_;
};

/// A transaction that writes. Rolled back at the end unless committed.
///
/// It begins with the lock for writing, so that two writers wait for each other instead of failing
/// half-way; within the transaction that the host holds, it is what can be taken back alone.
class WriteTransaction {
 public:
  /// Throws `odb::already_in_transaction` when the database is being written already, or the host
  /// holds a snapshot.
  explicit WriteTransaction(Database& database);
  WriteTransaction(const WriteTransaction&) = delete;
  WriteTransaction& operator=(const WriteTransaction&) = delete;
  ~WriteTransaction();

  /// Throws `odb::transaction_already_finalized` when a failure that nobody told of has ended it:
  /// what is written from then on would stay.
  void require_running() const;

  void commit();

  /// The same for an operation that changes objects of the host: they stay as they are now, unless
  /// the transaction that the host holds is rolled back.
  void commit(UndoLogs& logs);

 private:
  class Part;
  class OwnTransaction;
  class NestedTransaction;

  static std::unique_ptr<Part> begin(Database& database);

  Database& database_;
  SetAsideTransaction aside_;  // before what it begins, so that it restores after its end
  std::unique_ptr<Part> part_;
};

/// A transaction that reads; a part of the running one where the database is being written or the
/// host holds one or a snapshot.
class ReadTransaction {
 public:
  explicit ReadTransaction(Database& database);
  ReadTransaction(const ReadTransaction&) = delete;
  ReadTransaction& operator=(const ReadTransaction&) = delete;
  ~ReadTransaction();

 private:
  Database& database_;
  SetAsideTransaction aside_;
  odb::sqlite::transaction transaction_;  // finalized while it is a part of another one
};

}  // namespace veldra

#endif
