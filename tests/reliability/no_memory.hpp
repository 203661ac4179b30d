// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_NO_MEMORY_HPP
#define VELDRA_TESTS_RELIABILITY_NO_MEMORY_HPP

#include "reliability/failing_allocation.hpp"
#include "reliability/sweep.hpp"

namespace veldra_tests {

/// What SQLite asks for every allocation of its own, if its allocator could be replaced.
extern FailingAllocation failing_sqlite;
bool allocator_of_sqlite_is_replaced();

/// Faults of allocations: of `failing_new` or `failing_sqlite`.
class NoMemory : public Faults {
 public:
  enum class Lack { Once, Persistent };

  NoMemory(FailingAllocation& allocation, Lack lack)
      : allocation_(allocation), persistent_(lack == Lack::Persistent) {}

  void arm(unsigned point) override { allocation_.arm(point, persistent_); }
  void disarm() override { allocation_.disarm(); }
  bool fired() const override { return allocation_.fired; }
  unsigned points() const override { return allocation_.count; }
  std::string vfs() const override;
  bool of_memory() const override { return true; }
  long long memory_taken() const override;

 private:
  FailingAllocation& allocation_;
  bool persistent_;
};

}  // namespace veldra_tests

#endif
