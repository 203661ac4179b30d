// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_HOST_TRANSACTION_HPP
#define VELDRA_TESTS_SUPPORT_HOST_TRANSACTION_HPP

#include <memory>

namespace veldra_tests {

/// A transaction of the runtime that a host has begun on a database of its own, and which is the
/// current one of the thread.
class HostTransaction {
 public:
  HostTransaction();
  HostTransaction(const HostTransaction&) = delete;
  HostTransaction& operator=(const HostTransaction&) = delete;

  /// Rolls back, unless it was committed.
  ~HostTransaction();

  bool is_current() const;
  void commit();

 private:
  class Impl;

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra_tests

#endif
