// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/reported_operation.hpp"

namespace veldra {

ReportedOperation::ReportedOperation(Library& library)
    : keep_(LibraryAccess::impl(library).self.lock()), library_(library) {
  ++LibraryAccess::impl(library_).operations;
}

ReportedOperation::~ReportedOperation() {
  if (reported_) return;
  try {
    report();
  } catch (...) {
  }
}

void ReportedOperation::report() {
  reported_ = true;
  auto& impl = LibraryAccess::impl(library_);
  if (--impl.operations != 0) return;

  // The reactor may start operations of its own now, which collect and deliver anew.
  std::set<ObjectType> changed;
  changed.swap(impl.changed);
  for (const ObjectType type : changed) impl.reactor->typeChanged(library_, type);
  if (!changed.empty()) impl.reactor->libraryChanged(library_);
}

}  // namespace veldra
