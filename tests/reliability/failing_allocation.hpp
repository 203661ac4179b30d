// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_FAILING_ALLOCATION_HPP
#define VELDRA_TESTS_RELIABILITY_FAILING_ALLOCATION_HPP

namespace veldra_tests {

/// Counts allocations while it is armed, and fails one of them, or all from that one on.
struct FailingAllocation {
  long long blocks = 0;  ///< that are taken and not given back, armed or not
  bool armed = false;
  bool fired = false;
  unsigned count = 0;
  unsigned point = 0;
  bool persistent = false;

  void arm(unsigned failing, bool all_from_there) {
    armed = true;
    fired = false;
    count = 0;
    point = failing;
    persistent = all_from_there;
  }
  void disarm() { armed = false; }

  bool fails() {
    if (!armed) return false;
    ++count;
    const bool due = persistent ? count >= point : count == point;
    fired = fired || due;
    return due;
  }
};

/// What every `new` of the program asks, those of the libraries included.
extern FailingAllocation failing_new;

}  // namespace veldra_tests

#endif
