#include "reliability/failing_allocation.hpp"
#include "reliability/fault_vfs.hpp"
#include "reliability/sweep.hpp"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace veldra_tests {

namespace {

FailingAllocation failing_sqlite;

sqlite3_mem_methods real_sqlite;

void* allocate(int size) { return failing_sqlite.fails() ? nullptr : real_sqlite.xMalloc(size); }

void* reallocate(void* memory, int size) {
  return failing_sqlite.fails() ? nullptr : real_sqlite.xRealloc(memory, size);
}

// Before SQLite is used for the first time; then it takes no other allocator any more.
int replace_allocator_of_sqlite() {
  int result = sqlite3_config(SQLITE_CONFIG_GETMALLOC, &real_sqlite);
  if (result != SQLITE_OK) return result;
  sqlite3_mem_methods failing = real_sqlite;
  failing.xMalloc = allocate;
  failing.xRealloc = reallocate;
  result = sqlite3_config(SQLITE_CONFIG_MALLOC, &failing);
  // Small blocks come from a pool otherwise and are not counted.
  return result != SQLITE_OK ? result : sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0);
}

const int allocator_of_sqlite = replace_allocator_of_sqlite();

class NoMemory : public Faults {
 public:
  enum class Lack { Once, Persistent };

  NoMemory(FailingAllocation& allocation, Lack lack)
      : allocation_(allocation), persistent_(lack == Lack::Persistent) {}

  void arm(unsigned point) override { allocation_.arm(point, persistent_); }
  void disarm() override { allocation_.disarm(); }
  bool fired() const override { return allocation_.fired; }
  unsigned points() const override { return allocation_.count; }
  std::string vfs() const override { return FaultVfs::name_of(""); }
  bool of_memory() const override { return true; }

 private:
  FailingAllocation& allocation_;
  bool persistent_;
};

TEST(NoMemory, for_the_library_leaves_the_old_state) {
  NoMemory faults(failing_new, NoMemory::Lack::Once);
  sweep(operations(), faults, 4, "failed allocations of C++");
}

TEST(NoMemory, for_sqlite_leaves_the_old_state_or_the_new_one) {
  ASSERT_EQ(allocator_of_sqlite, SQLITE_OK);
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
