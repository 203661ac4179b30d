#ifndef VELDRA_TESTS_RELIABILITY_FAILING_ALLOCATION_HPP
#define VELDRA_TESTS_RELIABILITY_FAILING_ALLOCATION_HPP

namespace veldra_tests {

/// Counts allocations while it is armed, and fails one of them.
struct FailingAllocation {
  bool armed = false;
  bool fired = false;
  unsigned count = 0;
  unsigned point = 0;

  void arm(unsigned failing) { *this = {true, false, 0, failing}; }
  void disarm() { armed = false; }

  bool fails() {
    if (!armed || ++count != point) return false;
    fired = true;
    return true;
  }
};

/// What every `new` of the program asks, those of the libraries included.
extern FailingAllocation failing_new;

}  // namespace veldra_tests

#endif
