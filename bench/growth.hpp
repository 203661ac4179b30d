// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_GROWTH_HPP
#define VELDRA_BENCH_GROWTH_HPP

#include "work.hpp"

#include <string>
#include <vector>

namespace veldra_bench {

/// Two sizes of libraries, in materials, and how many rounds each work has.
struct Growth {
  unsigned from;
  unsigned to;
  int rounds;
};

/// Measures the works that a library must do at any size, at both sizes, and prints by how much
/// their ratios to the plain program change. Returns whether each work ran.
bool measure_growth(const std::vector<TimedWork>& works, const Growth& growth,
                    const std::string& folder);

/// The works of which `measure_growth` is about.
std::vector<TimedWork> growing_works(const std::vector<TimedWork>& works);

}  // namespace veldra_bench

#endif
