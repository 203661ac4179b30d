#ifndef VELDRA_STORE_TRANSACTIONS_HPP
#define VELDRA_STORE_TRANSACTIONS_HPP

#include "store/database.hpp"

#include <odb/sqlite/transaction.hxx>

namespace veldra {

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

/// A transaction that writes. It begins with the lock for writing, so that two writers wait for
/// each other instead of failing half-way. Rolled back at the end unless committed.
class WriteTransaction {
 public:
  /// Throws `odb::already_in_transaction` when the database is being written already.
  explicit WriteTransaction(Database& database);
  WriteTransaction(const WriteTransaction&) = delete;
  WriteTransaction& operator=(const WriteTransaction&) = delete;
  ~WriteTransaction();

  void commit();

 private:
  Database& database_;
  SetAsideTransaction aside_;  // before the transaction, so that it restores after its end
  odb::sqlite::transaction transaction_;
};

/// A transaction that reads; a part of the running one where the database is being written.
class ReadTransaction {
 public:
  explicit ReadTransaction(Database& database);
  ReadTransaction(const ReadTransaction&) = delete;
  ReadTransaction& operator=(const ReadTransaction&) = delete;
  ~ReadTransaction();

 private:
  Database& database_;
  bool part_of_writing_;
  SetAsideTransaction aside_;
  odb::sqlite::transaction transaction_;
};

}  // namespace veldra

#endif
