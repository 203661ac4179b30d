// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/signals.hpp"
#include "program/sweep.hpp"
#include "reliability/soak.hpp"

#include <gtest/gtest.h>
#include <signal.h>

namespace veldra_tests {

namespace {

constexpr unsigned sample = 4;

TEST(InterruptedProgram, says_what_it_did_at_any_call) {
  sweep(commands(), {Trouble::Interrupt}, sample, "program: interrupted at a call");
}

TEST(InterruptedProgram, says_what_it_did_at_any_time) {
  send_at_random(commands(), SIGINT, number_or(60, 5000), "program: interrupted at a moment");
}

TEST(InterruptedProgram, ends_as_well_when_it_is_told_to_terminate) {
  send_at_random(writing_commands(), SIGTERM, number_or(20, 1000),
                 "program: terminated at a moment");
}

}  // namespace

}  // namespace veldra_tests
