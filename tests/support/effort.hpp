// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_EFFORT_HPP
#define VELDRA_TESTS_SUPPORT_EFFORT_HPP

#include "support/sanitized.hpp"
#include "support/valgrind.hpp"

#include <ctime>

namespace veldra_tests {

/// How long this process has worked since this was made. It is the processor's time, as that of the
/// clock depends on what else the machine does.
class Effort {
 public:
  /// Whether it is below so many seconds, or more under valgrind and the sanitizers.
  bool is_below(int seconds) const {
    return (std::clock() - begin_) / CLOCKS_PER_SEC < seconds_with_valgrind(seconds) * slowness;
  }

 private:
#ifdef VELDRA_KEEPS_FREED_MEMORY
  static constexpr int slowness = 5;
#else
  static constexpr int slowness = 1;
#endif

  std::clock_t begin_ = std::clock();
};

}  // namespace veldra_tests

#endif
