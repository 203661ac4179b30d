// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/failing_allocation.hpp"

#include <cstdlib>
#include <new>

// Replaces the operators of the whole program.

namespace veldra_tests {

FailingAllocation failing_new;

}  // namespace veldra_tests

void* operator new(std::size_t size) {
  const bool fails = veldra_tests::failing_new.fails();
  void* const memory = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++veldra_tests::failing_new.blocks;
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) --veldra_tests::failing_new.blocks;
  std::free(memory);
}

void* operator new[](std::size_t size) { return operator new(size); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }
