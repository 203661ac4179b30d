// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/signals.hpp"
#include "program/sweep.hpp"
#include "reliability/soak.hpp"

#include <gtest/gtest.h>
#include <signal.h>

namespace veldra_tests {

namespace {

constexpr unsigned sample = 6;

TEST(KilledProgram, leaves_everything_whole_at_any_call) {
  sweep(writing_commands(), {Trouble::Kill}, sample, "program: killed at a call");
}

TEST(KilledProgram, leaves_everything_whole_at_any_time) {
  send_at_random(writing_commands(), SIGKILL, number_or(60, 5000), "program: killed at a moment");
}

}  // namespace

}  // namespace veldra_tests
