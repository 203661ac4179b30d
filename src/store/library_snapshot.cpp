// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/running_operation.hpp"
#include "store/transactions.hpp"

// The states of a library that hosts hold over several reads.

namespace veldra {

class Library::Snapshot::Impl {
 public:
  explicit Impl(const Library& library)
      : library_(library.shared_from_this()),
        transaction_(interruptibly(*library.impl_->database, [&library] {
          return std::unique_ptr<SnapshotTransaction>(
              new SnapshotTransaction(*library.impl_->database));
        })) {}

 private:
  std::shared_ptr<const Library> library_;  // stays open
  std::unique_ptr<SnapshotTransaction> transaction_;
};

Library::Snapshot::Snapshot(const Library& library) : impl_(new Impl(library)) {}
Library::Snapshot::~Snapshot() = default;

}  // namespace veldra
