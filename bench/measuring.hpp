// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_MEASURING_HPP
#define VELDRA_BENCH_MEASURING_HPP

#include "table.hpp"
#include "work.hpp"

namespace veldra_bench {

/// Has all sides do the work once and compares what they did; then they take turns for that many
/// rounds. Throws if they did not do the same.
Figures measure(const TimedWork& timed, int rounds, Workshop& workshop);
Figures measure(const MemoryWork& work, int rounds, Workshop& workshop);

}  // namespace veldra_bench

#endif
