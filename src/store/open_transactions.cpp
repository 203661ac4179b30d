// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/open_transactions.hpp"

#include "store/transactions.hpp"

#include <odb/exceptions.hxx>

#include <cassert>

namespace veldra {

namespace {

void require(bool may_begin) {
  if (!may_begin) throw odb::already_in_transaction();
}

}  // namespace

void OpenTransactions::require_holdable() const {
  require(!is_changing() && snapshot_ == nullptr && visits_ == 0);
}

void OpenTransactions::require_writable() const {
  require(!is_writing() && snapshot_ == nullptr && visits_ == 0);
}

void OpenTransactions::require_snapshot() const { require(snapshot_ == nullptr && visits_ == 0); }

void OpenTransactions::require_endable() const { require(!is_writing() && visits_ == 0); }

void OpenTransactions::began_holding(HeldTransaction& transaction) noexcept {
  assert(!is_changing() && snapshot_ == nullptr);
  held_ = &transaction;
}

void OpenTransactions::end_holding() noexcept {
  assert(held_ != nullptr);
  held_ = nullptr;
}

void OpenTransactions::began_writing(odb::sqlite::transaction& transaction) noexcept {
  assert(!is_writing() && snapshot_ == nullptr);
  writing_ = &transaction;
}

void OpenTransactions::end_writing() noexcept {
  assert(is_writing());
  writing_ = nullptr;
}

void OpenTransactions::began_snapshot(SnapshotTransaction& transaction) noexcept {
  assert(!is_changing() && snapshot_ == nullptr);
  snapshot_ = &transaction;
}

void OpenTransactions::end_snapshot() noexcept {
  assert(snapshot_ != nullptr);
  snapshot_ = nullptr;
}

odb::sqlite::transaction* OpenTransactions::shared_with_readers() const {
  if (is_writing()) return writing_;
  if (held_ != nullptr) return &held_->running();
  return snapshot_ == nullptr ? nullptr : &snapshot_->running();
}

}  // namespace veldra
