// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/no_memory.hpp"

#include <gtest/gtest.h>

namespace veldra_tests {

namespace {

TEST(NoMemory, for_the_library_leaves_the_old_state) {
  NoMemory faults(failing_new, NoMemory::Lack::Once);
  sweep(operations(), faults, 4, "failed allocations of C++");
}

TEST(NoMemory, for_sqlite_leaves_the_old_state_or_the_new_one) {
  ASSERT_TRUE(allocator_of_sqlite_is_replaced());
  NoMemory faults(failing_sqlite, NoMemory::Lack::Once);
  sweep(operations(), faults, 4, "failed allocations of SQLite");
}

TEST(NoMemory, for_the_library_from_some_moment_on_leaves_the_old_state) {
  NoMemory faults(failing_new, NoMemory::Lack::Persistent);
  sweep(operations(), faults, 2, "failed allocations of C++ from one on");
}

TEST(NoMemory, for_sqlite_from_some_moment_on_leaves_the_old_state_or_the_new_one) {
  NoMemory faults(failing_sqlite, NoMemory::Lack::Persistent);
  sweep(operations(), faults, 2, "failed allocations of SQLite from one on");
}

// A transaction that could not be ended would keep its lock, and the handle would begin no other.
void run_out_at_the_end_of(const char* operation) {
  for (const auto lack : {NoMemory::Lack::Once, NoMemory::Lack::Persistent}) {
    NoMemory faults(failing_sqlite, lack);
    EXPECT_EQ(Sweep(operation_named(operation), faults).run_last(30), 30u);
  }
}

TEST(NoMemory, at_the_end_of_making_a_file_leaves_no_transaction_open) {
  run_out_at_the_end_of("create a missing file");
}

TEST(NoMemory, at_the_end_of_opening_a_file_leaves_no_transaction_open) {
  run_out_at_the_end_of("open");
  run_out_at_the_end_of("open read-only");
}

}  // namespace

}  // namespace veldra_tests
