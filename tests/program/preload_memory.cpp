// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload.hpp"

#include <cerrno>
#include <cstddef>

// What every `new` and every allocation of C code asks, in place of the C library's own. What it
// gives goes back by the C library's own `free`.

#define VELDRA_REPLACES_ALLOCATION extern "C" __attribute__((visibility("default")))

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

bool fails() {
  veldra_tests::FaultPlan* const plan = veldra_tests::plan();
  if (plan == nullptr || plan->trouble != veldra_tests::Trouble::NoMemory) return false;
  if (!veldra_tests::is_due(*plan)) return false;
  plan->fired = true;
  errno = ENOMEM;
  return true;
}

}  // namespace

VELDRA_REPLACES_ALLOCATION void* malloc(std::size_t size) {
  return fails() ? nullptr : __libc_malloc(size);
}

VELDRA_REPLACES_ALLOCATION void* calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __libc_calloc(count, size);
}

VELDRA_REPLACES_ALLOCATION void* realloc(void* memory, std::size_t size) {
  return fails() ? nullptr : __libc_realloc(memory, size);
}

VELDRA_REPLACES_ALLOCATION void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}

VELDRA_REPLACES_ALLOCATION void* memalign(std::size_t alignment, std::size_t size) {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}

VELDRA_REPLACES_ALLOCATION int posix_memalign(void** memory, std::size_t alignment,
                                              std::size_t size) {
  void* const block = fails() ? nullptr : __libc_memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *memory = block;
  return 0;
}
