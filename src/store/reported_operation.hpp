// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_REPORTED_OPERATION_HPP
#define VELDRA_STORE_REPORTED_OPERATION_HPP

#include "store/running_operation.hpp"

namespace veldra {

/// One public operation, as the reactor is told of it: at its end, also when it failed, each kind
/// that it changed is notified once, and then the library. Operations within it tell nothing of
/// their own. The library stays open for as long, whatever the reactor lets go.
class ReportedOperation {
 public:
  explicit ReportedOperation(Library& library);
  ReportedOperation(const ReportedOperation&) = delete;
  ReportedOperation& operator=(const ReportedOperation&) = delete;

  /// Ends a failed operation: what the reactor throws now would hide why it failed.
  ~ReportedOperation();

  /// Ends a successful operation; what the reactor throws reaches the host.
  void report();

 private:
  std::shared_ptr<Library> keep_;
  Library& library_;
  bool reported_ = false;
};

/// Runs `work` as one public operation, which can be interrupted and is reported.
template <class Work>
void run_operation(Library& library, Work work) {
  interruptibly(library, [&] {
    ReportedOperation operation(library);
    work();
    operation.report();
  });
}

}  // namespace veldra

#endif
