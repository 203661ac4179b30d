// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/sweep.hpp"

#include <gtest/gtest.h>

namespace veldra_tests {

namespace {

constexpr unsigned sample = 8;
constexpr bool from_there_on = true;

TEST(ProgramMemory, that_is_missing_once_leaves_everything_whole) {
  sweep(commands(), {Trouble::NoMemory}, sample, "program: failed allocations");
}

TEST(ProgramMemory, that_has_run_out_leaves_everything_whole) {
  sweep(commands(), {Trouble::NoMemory, 0, from_there_on}, sample,
        "program: failed allocations from one on");
}

}  // namespace

}  // namespace veldra_tests
