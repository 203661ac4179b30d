// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/joined_operation.hpp"

#include <thread>

namespace veldra {

JoinedOperation::JoinedOperation(Database& running, Database& other) noexcept : running_(running) {
  running_.joined_ = &other;
}

JoinedOperation::~JoinedOperation() {
  running_.joined_ = nullptr;
  // Another thread may have read it before. A lock would not do: signal handlers interrupt too.
  while (running_.interrupting_ != 0) std::this_thread::yield();
}

}  // namespace veldra
