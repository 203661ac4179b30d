// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_OPEN_TRANSACTIONS_HPP
#define VELDRA_STORE_OPEN_TRANSACTIONS_HPP

#include <odb/sqlite/forward.hxx>

#include <atomic>

namespace veldra {

class HeldTransaction;
class SnapshotTransaction;

/// Which transactions are open on a database. There is at most one of each: that of an operation
/// which writes, one that the host holds over several operations, and a snapshot that it reads in.
/// Holding and a snapshot exclude each other, and so do a snapshot and writing.
class OpenTransactions {
 public:
  OpenTransactions() = default;
  OpenTransactions(const OpenTransactions&) = delete;
  OpenTransactions& operator=(const OpenTransactions&) = delete;

  /// Also for other threads and signal handlers.
  bool is_writing() const noexcept { return writing_ != nullptr; }

  /// The one that the host holds; null while there is none.
  HeldTransaction* held() const noexcept { return held_; }

  /// Whether what reads sees what has not been committed yet.
  bool is_changing() const noexcept { return is_writing() || held_ != nullptr; }

  // Each throws `odb::already_in_transaction` when it must not begin now.
  void require_holdable() const;
  void require_writable() const;
  void require_snapshot() const;

  /// The same when the one that the host holds must not end now: an operation would go on in a
  /// transaction that is gone.
  void require_endable() const;

  void began_holding(HeldTransaction& transaction) noexcept;
  void end_holding() noexcept;
  void began_writing(odb::sqlite::transaction& transaction) noexcept;
  void end_writing() noexcept;
  void began_snapshot(SnapshotTransaction& transaction) noexcept;
  void end_snapshot() noexcept;

  // While the host is shown one object after another, it only reads.
  void began_visit() noexcept { ++visits_; }
  void end_visit() noexcept { --visits_; }

  /// The one that what reads is a part of; null when it takes one of its own. Throws
  /// `odb::transaction_already_finalized` when a failure has ended it.
  odb::sqlite::transaction* shared_with_readers() const;

 private:
  std::atomic<odb::sqlite::transaction*> writing_{nullptr};
  HeldTransaction* held_ = nullptr;
  SnapshotTransaction* snapshot_ = nullptr;
  unsigned visits_ = 0;  // each within the one before
};

}  // namespace veldra

#endif
