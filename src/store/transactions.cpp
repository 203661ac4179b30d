#include "store/transactions.hpp"

#include <odb/exceptions.hxx>

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

WriteTransaction::WriteTransaction(Database& database) : database_(database) {
  if (database.writing != nullptr) throw odb::already_in_transaction();
  transaction_.reset(database.begin_immediate());
  database.writing = &transaction_;
}

WriteTransaction::~WriteTransaction() { database_.writing = nullptr; }

void WriteTransaction::commit() { transaction_.commit(); }

ReadTransaction::ReadTransaction(Database& database) {
  if (database.writing != nullptr) {
    odb::transaction::current(*database.writing);
  } else {
    transaction_.reset(database.begin());
  }
}

}  // namespace veldra
