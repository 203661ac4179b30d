// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_COUNTERS_HPP
#define VELDRA_BENCH_COUNTERS_HPP

#include <cstddef>

// What this process does besides taking time: it waits for the disk and holds memory.

namespace veldra_bench {

/// How often the process has waited for the disk (fsync and fdatasync) so far.
unsigned long syncs() noexcept;

/// Counts what goes through operator new while it exists. There is one at a time.
class CountedHeap {
 public:
  CountedHeap() noexcept;
  CountedHeap(const CountedHeap&) = delete;
  CountedHeap& operator=(const CountedHeap&) = delete;
  ~CountedHeap();

  /// The bytes that were allocated and not freed since then, now and at most.
  std::size_t live() const noexcept;
  std::size_t peak() const noexcept;
  /// How many blocks were allocated and not freed.
  std::size_t blocks() const noexcept;
};

/// The bytes that the C library's heap has handed out.
std::size_t heap_bytes() noexcept;

/// Memory of the process in main memory, now and at most since `forget_peak`.
std::size_t resident_bytes();
std::size_t peak_resident_bytes();
void forget_peak();

}  // namespace veldra_bench

#endif
