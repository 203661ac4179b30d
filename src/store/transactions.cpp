#include "store/transactions.hpp"

#include "store/statement.hpp"

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <new>

namespace veldra {

SetAsideTransaction::SetAsideTransaction()
    : former_(odb::transaction::has_current() ? &odb::transaction::current() : nullptr) {
  odb::transaction::reset_current();
}

SetAsideTransaction::~SetAsideTransaction() {
  if (former_ != nullptr) {
    odb::transaction::current(*former_);
  } else {
    odb::transaction::reset_current();
  }
}

namespace {

/// SQLite ends a transaction by itself when the disk is full or cannot be read, or memory runs out.
bool is_running(Database& database) {
  return sqlite3_get_autocommit(database.connection_in_use().handle()) == 0;
}

}  // namespace

void end_what_is_left(Database& database) noexcept {
  if (!is_running(database)) return;
  sqlite3_exec(database.connection_in_use().handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void require_ended(Database& database) {
  if (is_running(database)) throw std::bad_alloc();
}

namespace {

void end(Database& database, odb::sqlite::transaction& transaction) noexcept {
  try {
    if (!transaction.finalized()) transaction.rollback();
  } catch (...) {
  }
  end_what_is_left(database);
}

template <class Begin>
void begin(Database& database, odb::sqlite::transaction& transaction, Begin begin) {
  end_what_is_left(database);  // the memory that was lacking then may be there now
  try {
    transaction.reset(begin());
  } catch (...) {
    end(database, transaction);
    throw;
  }
}

void begin_writing(Database& database, odb::sqlite::transaction& transaction) {
  begin(database, transaction, [&database] { return database.begin_immediate(); });
}

/// The lock that keeps readers away is given back first, and then what is left of it.
bool is_of_a_lock_given_back(const odb::sqlite::database_exception& error) {
  return error.extended_error() == SQLITE_IOERR_RDLOCK ||
         error.extended_error() == SQLITE_IOERR_UNLOCK;
}

/// The changes are in the file before the lock is given back, so that they stay when that fails.
void commit_changes(odb::sqlite::transaction& transaction) {
  try {
    transaction.commit();
  } catch (const odb::sqlite::database_exception& error) {
    if (!is_of_a_lock_given_back(error)) throw;
  }
}

/// Only the end of the whole transaction would tell.
void require_intact_references(Database& database) {
  int broken = 0;
  int unused = 0;
  sqlite3_db_status(database.connection_in_use().handle(), SQLITE_DBSTATUS_DEFERRED_FKS, &broken,
                    &unused, 0);
  if (broken == 0) return;
  throw odb::sqlite::database_exception(SQLITE_CONSTRAINT, SQLITE_CONSTRAINT_FOREIGNKEY,
                                        "FOREIGN KEY constraint failed");
}

void keep_changes(UndoLogs& logs) noexcept {
  for (UndoLog& log : logs) log.keep_changes();
}

}  // namespace

HeldTransaction::HeldTransaction(Database& database) : database_(database) {
  if (database.writing != nullptr || database.held != nullptr || database.snapshot != nullptr) {
    throw odb::already_in_transaction();
  }
  const SetAsideTransaction aside;
  begin_writing(database, transaction_);
  database.held = this;
}

HeldTransaction::~HeldTransaction() {
  end(database_, transaction_);
  database_.held = nullptr;
  while (!logs_.empty()) logs_.pop_front();
}

void HeldTransaction::commit() {
  commit_changes(get());
  keep_changes(logs_);
}

odb::sqlite::transaction& HeldTransaction::get() {
  if (broken_ || !is_running(database_)) throw odb::transaction_already_finalized();
  return transaction_;
}

void HeldTransaction::set_savepoint() {
  database_.connection_in_use().execute("SAVEPOINT operation");
}

void HeldTransaction::release_savepoint() {
  require_intact_references(database_);
  database_.connection_in_use().execute("RELEASE operation");
}

void HeldTransaction::roll_back_to_savepoint() noexcept {
  sqlite3* connection = database_.connection_in_use().handle();
  const int result = sqlite3_exec(connection, "ROLLBACK TO operation; RELEASE operation", nullptr,
                                  nullptr, nullptr);
  if (result != SQLITE_OK) broken_ = true;
}

void HeldTransaction::keep(UndoLogs& logs) noexcept { logs_.splice(logs_.begin(), logs); }

SnapshotTransaction::SnapshotTransaction(Database& database) : database_(database) {
  if (database.writing != nullptr || database.held != nullptr) return;
  if (database.snapshot != nullptr) throw odb::already_in_transaction();
  const SetAsideTransaction aside;
  begin(database, transaction_, [&database] { return database.begin(); });
  try {
    // The state is that of the first read.
    Statement(database.connection_in_use(), "SELECT 1 FROM sqlite_master LIMIT 1").next();
  } catch (...) {
    end(database, transaction_);
    throw;
  }
  database.snapshot = this;
}

SnapshotTransaction::~SnapshotTransaction() {
  if (database_.snapshot != this) return;
  database_.snapshot = nullptr;
  end(database_, transaction_);
}

odb::sqlite::transaction& SnapshotTransaction::get() {
  if (!is_running(database_)) throw odb::transaction_already_finalized();
  return transaction_;
}

WriteTransaction::WriteTransaction(Database& database)
    : database_(database), outer_(database.held) {
  if (database.writing != nullptr || database.snapshot != nullptr) {
    throw odb::already_in_transaction();
  }
  if (outer_ == nullptr) {
    begin_writing(database, transaction_);
    database.writing = &transaction_;
  } else {
    odb::transaction::current(outer_->get());
    outer_->set_savepoint();
    database.writing = &outer_->get();
  }
}

WriteTransaction::~WriteTransaction() {
  if (outer_ == nullptr) {
    end(database_, transaction_);
  } else if (!released_) {
    outer_->roll_back_to_savepoint();
  }
  database_.writing = nullptr;
}

void WriteTransaction::require_running() const {
  if (!is_running(database_)) throw odb::transaction_already_finalized();
}

void WriteTransaction::commit() {
  if (outer_ == nullptr) return commit_changes(transaction_);
  outer_->release_savepoint();
  released_ = true;
}

void WriteTransaction::commit(UndoLogs& logs) {
  commit();
  if (outer_ == nullptr) {
    keep_changes(logs);
  } else {
    outer_->keep(logs);
  }
}

ReadTransaction::ReadTransaction(Database& database) : database_(database) {
  if (database.writing != nullptr) {
    odb::transaction::current(*database.writing.load());
  } else if (database.held != nullptr) {
    odb::transaction::current(database.held->get());
  } else if (database.snapshot != nullptr) {
    odb::transaction::current(database.snapshot->get());
  } else {
    begin(database, transaction_, [&database] { return database.begin(); });
  }
}

ReadTransaction::~ReadTransaction() {
  if (!transaction_.finalized()) end(database_, transaction_);
}

}  // namespace veldra
