// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/library_impl.hpp"
#include "store/reported_operation.hpp"
#include "store/transactions.hpp"

#include <odb/exceptions.hxx>

#include <utility>

// The transactions that hosts hold over several operations.

namespace veldra {

class Library::Transaction::Impl {
 public:
  explicit Impl(Library& library);
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  ~Impl();

  void require_endable() const { library_->impl_->database->transactions().require_endable(); }

  void commit();

 private:
  std::shared_ptr<Library> library_;  // stays open
  ReportedOperation operation_;
  Meta former_meta_;
  std::unique_ptr<HeldTransaction> held_;  // ends before the reactor is told
  bool committed_ = false;
};

Library::Transaction::Impl::Impl(Library& library)
    : library_(library.shared_from_this()),
      operation_(library),
      former_meta_(library.impl_->meta),
      held_(interruptibly(*library.impl_->database, [&library] {
        return std::unique_ptr<HeldTransaction>(new HeldTransaction(*library.impl_->database));
      })) {}

Library::Transaction::Impl::~Impl() {
  if (!committed_) std::swap(library_->impl_->meta, former_meta_);
}

void Library::Transaction::Impl::commit() {
  interruptibly(*library_->impl_->database, [&] { held_->commit(); });
  committed_ = true;
  held_.reset();
  operation_.report();
}

Library::Transaction::Transaction(Library& library) {
  if (library.readOnly()) throw LibraryReadOnly();
  impl_.reset(new Impl(library));
}

Library::Transaction::~Transaction() = default;

void Library::Transaction::commit() {
  if (impl_ == nullptr) throw odb::transaction_already_finalized();
  impl_->require_endable();
  const auto ending = std::move(impl_);  // rolled back at the end of this call if it fails
  ending->commit();
}

}  // namespace veldra
