#ifndef VELDRA_TESTS_RELIABILITY_SOAK_HPP
#define VELDRA_TESTS_RELIABILITY_SOAK_HPP

#include <cstdlib>
#include <iostream>
#include <string>

namespace veldra_tests {

/// Whether everything is to be run, which takes long, instead of a sample: the environment has
/// VELDRA_SOAK. See scripts/soak.
inline bool soaking() { return std::getenv("VELDRA_SOAK") != nullptr; }

/// `sample` when a sample is run, and `everything` in a long run.
inline unsigned sample_or_all(unsigned sample, unsigned everything) {
  return soaking() ? everything : sample;
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
