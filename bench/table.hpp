// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_TABLE_HPP
#define VELDRA_BENCH_TABLE_HPP

#include <string>

namespace veldra_bench {

/// What came of one work. What is 0 from `processor_ratio` on was not measured.
struct Figures {
  const char* unit;
  double veldra;
  double plain;
  double ratio;
  double target;
  double processor_ratio = 0;
  double veldra_syncs = 0;
  double plain_syncs = 0;
};

/// Prints a line for each work: what the library took, what the plain program took, how many times
/// as much that is, and how often they waited for the disk.
class Table {
 public:
  Table();

  void add(const std::string& work, const Figures& figures);
  void add_failure(const std::string& work, const std::string& reason);

  /// Whether each work ran and gave both sides the same.
  bool all_sound() const { return all_sound_; }

 private:
  bool all_sound_ = true;
};

}  // namespace veldra_bench

#endif
