// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_BOTH_WAYS_HPP
#define VELDRA_TESTS_RELIABILITY_BOTH_WAYS_HPP

#include <veldra/veldra.hpp>

#include <string>
#include <vector>

namespace veldra_tests {

/// What a list of each kind says, and what its objects say when each is read alone, in the order of
/// their ids: the values, or the first exception.
struct BothWays {
  std::string kind;
  std::string listed;
  std::string one_by_one;
};

std::vector<BothWays> read_both_ways(const veldra::Library& library);

}  // namespace veldra_tests

#endif
