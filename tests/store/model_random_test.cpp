// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_walk.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace veldra_tests {
namespace {

constexpr int kSteps = 600;
constexpr int kStepsBetweenLaws = 60;

/// The seeds of the run, or the one that the environment asks for.
std::vector<unsigned> seeds() {
  if (const char* seed = std::getenv("VELDRA_TEST_SEED"))
    return {static_cast<unsigned>(std::strtoul(seed, nullptr, 10))};
  return {1, 2, 3, 4, 5, 6};
}

void walk(unsigned seed) {
  RandomWalk walk{Random(seed)};
  for (int step = 0; step != kSteps; ++step) {
    SCOPED_TRACE("VELDRA_TEST_SEED=" + std::to_string(seed) + ", step " + std::to_string(step));
    walk.step();
    walk.compare();
    if (step % kStepsBetweenLaws == 0) walk.expect_laws();
    if (testing::Test::HasFailure()) return;
  }
  walk.expect_sound_files();
}

TEST(ModelRandom, libraries_do_what_their_models_do) {
  keep_files_in_memory();
  for (const unsigned seed : seeds()) {
    walk(seed);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace veldra_tests
