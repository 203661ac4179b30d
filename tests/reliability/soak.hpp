// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_SOAK_HPP
#define VELDRA_TESTS_RELIABILITY_SOAK_HPP

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

namespace veldra_tests {

/// Whether everything is to be run, which takes long, instead of a sample: the environment has
/// VELDRA_SOAK. Its number n makes it every n-th point; 1 is everything. See scripts/soak.
inline bool soaking() { return std::getenv("VELDRA_SOAK") != nullptr; }

/// How far apart the points of a run are: `sample`, or what a long run wants.
inline unsigned stride_or(unsigned sample) {
  if (!soaking()) return sample;
  return std::max(1u, static_cast<unsigned>(std::strtoul(std::getenv("VELDRA_SOAK"), nullptr, 10)));
}

/// How often something random is tried: `sample`, or `everything` in a long run.
inline unsigned number_or(unsigned sample, unsigned everything) {
  return soaking() ? std::max(1u, everything / stride_or(1)) : sample;
}

/// A number from the environment, such as a seed.
inline unsigned number_from_environment(const char* name, unsigned otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

/// Writes a figure of a run: "figure: <what>: <number>".
inline void report_figure(const std::string& what, unsigned long number) {
  std::cout << "figure: " << what << ": " << number << std::endl;
}

}  // namespace veldra_tests

#endif
