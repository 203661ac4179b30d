// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_JOINED_OPERATION_HPP
#define VELDRA_STORE_JOINED_OPERATION_HPP

#include "store/database.hpp"

namespace veldra {

/// Work on another database as a part of the operation that runs on a database: who interrupts the
/// operation interrupts that work. One at a time.
class JoinedOperation {
 public:
  /// An interruption before is not told to `other`.
  JoinedOperation(Database& running, Database& other) noexcept;
  JoinedOperation(const JoinedOperation&) = delete;
  JoinedOperation& operator=(const JoinedOperation&) = delete;

  /// Nobody touches the other database from now on.
  ~JoinedOperation();

 private:
  Database& running_;
};

}  // namespace veldra

#endif
