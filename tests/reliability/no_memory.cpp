// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/no_memory.hpp"

#include "reliability/fault_vfs.hpp"

#include <sqlite3.h>

namespace veldra_tests {

FailingAllocation failing_sqlite;

namespace {

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

}  // namespace

bool allocator_of_sqlite_is_replaced() { return allocator_of_sqlite == SQLITE_OK; }

std::string NoMemory::vfs() const { return FaultVfs::name_of(""); }

long long NoMemory::memory_taken() const { return failing_new.blocks + sqlite3_memory_used(); }

}  // namespace veldra_tests
