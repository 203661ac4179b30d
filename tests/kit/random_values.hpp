// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_KIT_RANDOM_VALUES_HPP
#define VELDRA_TESTS_KIT_RANDOM_VALUES_HPP

#include <cmath>
#include <random>
#include <sstream>
#include <string>

namespace veldra_tests {

/// Values as people might write them, by chance.
class RandomValues {
 public:
  explicit RandomValues(unsigned seed) : random_(seed) {}

  unsigned number(unsigned below) { return static_cast<unsigned>(random_() % below); }

  /// A number above 0, of any size and with any count of digits.
  std::string value() {
    std::ostringstream text;
    text.precision(1 + number(17));
    text << std::uniform_real_distribution<>(0.001, 1)(random_) * std::pow(10.0, number(5));
    return text.str();
  }

 private:
  std::mt19937 random_;
};

}  // namespace veldra_tests

#endif
