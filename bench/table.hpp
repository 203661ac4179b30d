// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_TABLE_HPP
#define VELDRA_BENCH_TABLE_HPP

#include "work.hpp"

#include <string>
#include <vector>

namespace veldra_bench {

/// What another side took, and how many times as much the library took.
struct Compared {
  bool exists = false;
  double taken = 0;
  double ratio = 0;
  double spread = 0;           ///< half of the middle half of the rounds' ratios
  double processor_ratio = 0;  ///< 0: not measured
};

/// What came of one work.
struct Figures {
  const char* unit = "us";
  double veldra = 0;
  double veldra_processor = 0;  ///< 0: not measured
  Compared plain = {};
  Compared fewest = {};
  Compared shared = {};
  Compared otherwise = {};
  std::string otherwise_name = {};
  double veldra_syncs = 0;
  double plain_syncs = 0;
};

/// Prints a line for each work: what the library took, what the other sides took and how many times
/// as much that is, and how often the library and the plain program waited for the disk.
class Table {
 public:
  Table();

  void add(const std::string& work, const Figures& figures, const Target& target);
  void add_failure(const std::string& work, const std::string& reason);

  /// Whether each work ran and gave all sides the same.
  bool all_sound() const { return all_sound_; }

 private:
  bool all_sound_ = true;
};

/// The comparison that a target is about.
const Compared& compared(const Figures& figures, Against against);

/// A ratio as text, empty for 0.
std::string ratio_text(double ratio);

}  // namespace veldra_bench

#endif
