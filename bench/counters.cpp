// SPDX-License-Identifier: GPL-2.0-or-later
#include "counters.hpp"

#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

namespace veldra_bench {

namespace {

unsigned long sync_count = 0;

bool counting = false;
long live_bytes = 0;
long live_blocks = 0;
long peak_bytes = 0;

void* allocate(std::size_t size) {
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  if (counting) {
    ++live_blocks;
    live_bytes += static_cast<long>(malloc_usable_size(memory));
    peak_bytes = std::max(peak_bytes, live_bytes);
  }
  return memory;
}

void release(void* memory) noexcept {
  if (counting && memory != nullptr) {
    --live_blocks;
    live_bytes -= static_cast<long>(malloc_usable_size(memory));
  }
  std::free(memory);
}

std::size_t status(const std::string& field) {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, field.size(), field) != 0) continue;
    std::istringstream rest(line.substr(field.size() + 1));
    std::size_t kibibytes = 0;
    rest >> kibibytes;
    return kibibytes * 1024;
  }
  throw std::runtime_error("the system does not tell " + field);
}

std::size_t positive(long count) { return count > 0 ? static_cast<std::size_t>(count) : 0; }

}  // namespace

unsigned long syncs() noexcept { return sync_count; }

CountedHeap::CountedHeap() noexcept {
  live_bytes = peak_bytes = live_blocks = 0;
  counting = true;
}

CountedHeap::~CountedHeap() { counting = false; }

std::size_t CountedHeap::live() const noexcept { return positive(live_bytes); }
std::size_t CountedHeap::blocks() const noexcept { return positive(live_blocks); }
std::size_t CountedHeap::peak() const noexcept { return positive(peak_bytes); }

std::size_t heap_bytes() noexcept {
  const auto heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

std::size_t resident_bytes() { return status("VmRSS"); }
std::size_t peak_resident_bytes() { return status("VmHWM"); }
void forget_peak() { std::ofstream("/proc/self/clear_refs") << "5"; }

}  // namespace veldra_bench

// These stand before the C library's, also for SQLite.

extern "C" int fsync(int file) {
  ++veldra_bench::sync_count;
  return static_cast<int>(syscall(SYS_fsync, file));
}

extern "C" int fdatasync(int file) {
  ++veldra_bench::sync_count;
  return static_cast<int>(syscall(SYS_fdatasync, file));
}

void* operator new(std::size_t size) { return veldra_bench::allocate(size); }
void* operator new[](std::size_t size) { return veldra_bench::allocate(size); }
void operator delete(void* memory) noexcept { veldra_bench::release(memory); }
void operator delete[](void* memory) noexcept { veldra_bench::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { veldra_bench::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { veldra_bench::release(memory); }
