// SPDX-License-Identifier: GPL-2.0-or-later
//
// The input decides about the steps of a walk over two libraries, which are compared with a model
// in memory after each of them, and about the values of all objects on the way.

#include "store/model_walk.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

/// A difference is to end the program where it is found.
bool set_up() {
  veldra_tests::keep_files_in_memory();
  GTEST_FLAG_SET(break_on_failure, true);
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool kReady = set_up();
  (void)kReady;
  veldra_tests::RandomWalk walk{veldra_tests::Random(std::vector<std::uint8_t>(data, data + size))};
  while (walk.has_bytes()) {
    walk.step();
    walk.compare();
  }
  walk.expect_laws();
  walk.expect_sound_files();
  return 0;
}
