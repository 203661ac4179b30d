#include "store/transactions.hpp"

#include <odb/exceptions.hxx>

#include <sqlite3.h>

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

/// Rolls back what the runtime could not. SQLite prepares the statement for it when it is first
/// needed and whenever the schema was read anew; that may fail, and the connection would remain
/// within the transaction for ever.
void end_what_is_left(Database& database) {
  sqlite3* connection = database.connection_in_use().handle();
  if (sqlite3_get_autocommit(connection) != 0) return;
  sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
}

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

}  // namespace

WriteTransaction::WriteTransaction(Database& database) : database_(database) {
  if (database.writing != nullptr) throw odb::already_in_transaction();
  begin(database, transaction_, [&database] { return database.begin_immediate(); });
  database.writing = &transaction_;
}

WriteTransaction::~WriteTransaction() {
  end(database_, transaction_);
  database_.writing = nullptr;
}

void WriteTransaction::commit() { transaction_.commit(); }

ReadTransaction::ReadTransaction(Database& database)
    : database_(database), part_of_writing_(database.writing != nullptr) {
  if (part_of_writing_) {
    odb::transaction::current(*database.writing);
  } else {
    begin(database, transaction_, [&database] { return database.begin(); });
  }
}

ReadTransaction::~ReadTransaction() {
  if (!part_of_writing_) end(database_, transaction_);
}

}  // namespace veldra
