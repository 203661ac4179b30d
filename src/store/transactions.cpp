// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/transactions.hpp"

#include "store/statement.hpp"

#include <odb/exceptions.hxx>
#include <odb/sqlite/error.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

namespace veldra {

// The lock that keeps readers away is given back first, and then what is left of it.
bool is_of_a_lock_given_back(const odb::sqlite::database_exception& error) {
  return error.extended_error() == SQLITE_IOERR_RDLOCK ||
         error.extended_error() == SQLITE_IOERR_UNLOCK;
}

bool has_violated_keys(const Database& database) {
  int violated = 0;
  int unused = 0;
  sqlite3_db_status(database.handle(), SQLITE_DBSTATUS_DEFERRED_FKS, &violated, &unused, 0);
  return violated != 0;
}

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
bool is_running(const Database& database) { return sqlite3_get_autocommit(database.handle()) == 0; }

int run(const Database& database, const char* statements) noexcept {
  return sqlite3_exec(database.handle(), statements, nullptr, nullptr, nullptr);
}

}  // namespace

void end_what_is_left(Database& database) noexcept {
  if (is_running(database)) run(database, "ROLLBACK");
}

void require_ended(Database& database) {
  if (!is_running(database)) return;
  const int result = run(database, "ROLLBACK");
  if (result != SQLITE_OK) odb::sqlite::translate_error(result, database.only_connection());
}

namespace {

void roll_back(Database& database, odb::sqlite::transaction& transaction) noexcept {
  try {
    if (!transaction.finalized()) transaction.rollback();
  } catch (...) {
  }
  end_what_is_left(database);
}

/// Begins with what `make` gives.
template <class Make>
void begin(Database& database, odb::sqlite::transaction& transaction, Make make) {
  end_what_is_left(database);  // the memory that was lacking then may be there now
  try {
    transaction.reset(make());
  } catch (...) {
    roll_back(database, transaction);
    throw;
  }
}

void begin_writing(Database& database, odb::sqlite::transaction& transaction) {
  begin(database, transaction, [&database] { return database.begin_immediate(); });
}

void begin_reading(Database& database, odb::sqlite::transaction& transaction) {
  begin(database, transaction, [&database] { return database.begin(); });
}

void commit_changes(odb::sqlite::transaction& transaction) {
  try {
    transaction.commit();
  } catch (const odb::sqlite::database_exception& error) {
    if (!is_of_a_lock_given_back(error)) throw;
  }
}

void require_intact_references(const Database& database) {
  if (!has_violated_keys(database)) return;
  throw odb::sqlite::database_exception(SQLITE_CONSTRAINT, SQLITE_CONSTRAINT_FOREIGNKEY,
                                        "FOREIGN KEY constraint failed");
}

void keep_changes(UndoLogs& logs) noexcept {
  for (UndoLog& log : logs) log.keep_changes();
}

}  // namespace

HeldTransaction::HeldTransaction(Database& database) : database_(database) {
  database.transactions().require_holdable();
  const SetAsideTransaction aside;
  begin_writing(database, transaction_);
  database.transactions().began_holding(*this);
}

HeldTransaction::~HeldTransaction() {
  roll_back(database_, transaction_);
  database_.transactions().end_holding();
  while (!logs_.empty()) logs_.pop_front();
}

void HeldTransaction::commit() {
  commit_changes(running());
  keep_changes(logs_);
}

odb::sqlite::transaction& HeldTransaction::running() {
  if (broken_ || !is_running(database_)) throw odb::transaction_already_finalized();
  return transaction_;
}

void HeldTransaction::set_savepoint() {
  database_.only_connection().execute("SAVEPOINT operation");
}

void HeldTransaction::release_savepoint() {
  require_intact_references(database_);
  database_.only_connection().execute("RELEASE operation");
}

void HeldTransaction::roll_back_to_savepoint() noexcept {
  const int result = run(database_, "ROLLBACK TO operation; RELEASE operation");
  if (result != SQLITE_OK) broken_ = true;
}

void HeldTransaction::keep(UndoLogs& logs) noexcept { logs_.splice(logs_.begin(), logs); }

SnapshotTransaction::SnapshotTransaction(Database& database)
    : database_(database), is_part_of_another_(database.transactions().is_changing()) {
  database.transactions().require_snapshot();
  if (is_part_of_another_) return;
  const SetAsideTransaction aside;
  begin_reading(database, transaction_);
  try {
    // The state is that of the first read.
    Statement(database.only_connection(), "SELECT 1 FROM sqlite_master LIMIT 1").next();
  } catch (...) {
    roll_back(database, transaction_);
    throw;
  }
  database.transactions().began_snapshot(*this);
}

SnapshotTransaction::~SnapshotTransaction() {
  if (is_part_of_another_) return;
  database_.transactions().end_snapshot();
  roll_back(database_, transaction_);
}

odb::sqlite::transaction& SnapshotTransaction::running() {
  if (!is_running(database_)) throw odb::transaction_already_finalized();
  return transaction_;
}

OneState::OneState(Database& database) {
  if (database.transactions().shared_with_readers() != nullptr) return;
  own_.reset(new SnapshotTransaction(database));
}

/// What a transaction that writes is, alone or within another one.
class WriteTransaction::Part {
 public:
  Part() = default;
  Part(const Part&) = delete;
  Part& operator=(const Part&) = delete;
  virtual ~Part() = default;

  virtual void commit() = 0;

  /// What becomes of the changes in memory once it is committed.
  virtual void keep(UndoLogs& logs) noexcept = 0;
};

class WriteTransaction::OwnTransaction : public Part {
 public:
  explicit OwnTransaction(Database& database) : database_(database) {
    begin_writing(database, transaction_);
    database.transactions().began_writing(transaction_);
  }

  ~OwnTransaction() override {
    roll_back(database_, transaction_);
    database_.transactions().end_writing();
  }

  void commit() override { commit_changes(transaction_); }
  void keep(UndoLogs& logs) noexcept override { keep_changes(logs); }

 private:
  Database& database_;
  odb::sqlite::transaction transaction_;
};

class WriteTransaction::NestedTransaction : public Part {
 public:
  NestedTransaction(Database& database, HeldTransaction& held) : database_(database), held_(held) {
    odb::transaction::current(held.running());
    held.set_savepoint();
    database.transactions().began_writing(held.running());
  }

  ~NestedTransaction() override {
    if (!committed_) held_.roll_back_to_savepoint();
    database_.transactions().end_writing();
  }

  void commit() override {
    held_.release_savepoint();
    committed_ = true;
  }

  void keep(UndoLogs& logs) noexcept override { held_.keep(logs); }

 private:
  Database& database_;
  HeldTransaction& held_;
  bool committed_ = false;
};

std::unique_ptr<WriteTransaction::Part> WriteTransaction::begin(Database& database) {
  database.transactions().require_writable();
  HeldTransaction* const held = database.transactions().held();
  if (held != nullptr) return std::unique_ptr<Part>(new NestedTransaction(database, *held));
  return std::unique_ptr<Part>(new OwnTransaction(database));
}

WriteTransaction::WriteTransaction(Database& database)
    : database_(database), part_(begin(database)) {}

WriteTransaction::~WriteTransaction() = default;

void WriteTransaction::require_running() const {
  if (!is_running(database_)) throw odb::transaction_already_finalized();
}

void WriteTransaction::commit() { part_->commit(); }

void WriteTransaction::commit(UndoLogs& logs) {
  part_->commit();
  part_->keep(logs);
}

ReadTransaction::ReadTransaction(Database& database) : database_(database) {
  odb::sqlite::transaction* const other = database.transactions().shared_with_readers();
  if (other != nullptr) {
    odb::transaction::current(*other);
  } else {
    begin_reading(database, transaction_);
  }
}

ReadTransaction::~ReadTransaction() {
  if (!transaction_.finalized()) roll_back(database_, transaction_);
}

}  // namespace veldra
