// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/host_transaction.hpp"

#include <sqlite3.h>
#include <odb/sqlite/database.hxx>
#include <odb/transaction.hxx>

namespace veldra_tests {

class HostTransaction::Impl {
 public:
  odb::sqlite::database database{":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE};
  odb::transaction transaction{database.begin()};
};

HostTransaction::HostTransaction() : impl_(new Impl) {}

HostTransaction::~HostTransaction() = default;

bool HostTransaction::is_current() const {
  return odb::transaction::has_current() && &odb::transaction::current() == &impl_->transaction;
}

void HostTransaction::commit() { impl_->transaction.commit(); }

}  // namespace veldra_tests
