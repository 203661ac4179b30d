// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_VALGRIND_HPP
#define VELDRA_TESTS_SUPPORT_VALGRIND_HPP

#include <cstdlib>
#include <cstring>

namespace veldra_tests {

/// Valgrind puts its own allocation in the place of any other, and takes fifty times as long.
inline bool runs_under_valgrind() {
  const char* const preloaded = std::getenv("LD_PRELOAD");
  return preloaded != nullptr && std::strstr(preloaded, "vgpreload") != nullptr;
}

/// So many seconds, or as many as valgrind may take for the same.
inline int seconds_with_valgrind(int seconds) { return seconds * (runs_under_valgrind() ? 60 : 1); }

}  // namespace veldra_tests

#endif
