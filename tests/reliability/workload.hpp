// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_WORKLOAD_HPP
#define VELDRA_TESTS_RELIABILITY_WORKLOAD_HPP

#include <veldra/veldra.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

/// A long mixture of operations on one library, always the same one for the same seed: step n
/// does the same on the same state, in whichever process.
class Workload {
 public:
  /// `source` is a library to copy from.
  Workload(std::shared_ptr<veldra::Library> library, std::shared_ptr<const veldra::Library> source,
           unsigned seed);

  /// Does step `n`; the steps before it must have been done.
  void step(unsigned n);

 private:
  void save_new(unsigned n);
  void change(unsigned n);
  void remove(unsigned n);
  void copy(unsigned n);

  std::shared_ptr<veldra::Library> library_;
  std::shared_ptr<const veldra::Library> source_;
  unsigned seed_;
};

/// The rows of the library's file in all the states that it goes through during `steps` steps:
/// for each step those before it, between its transactions and after it.
std::vector<std::vector<std::string>> states_of(const std::string& path,
                                                const std::string& source_path, unsigned seed,
                                                unsigned steps);

}  // namespace veldra_tests

#endif
