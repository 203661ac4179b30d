// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_TABLE_HPP
#define VELDRA_BENCH_TABLE_HPP

#include <benchmark/benchmark.h>

namespace veldra_bench {

/// Prints a line for each work: what the library took, what the plain program took, how many times
/// as much that is, and how often they waited for the disk.
class Table : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Whether each work ran and gave both sides the same.
  bool all_sound() const { return all_sound_; }

 private:
  bool all_sound_ = true;
};

}  // namespace veldra_bench

#endif
