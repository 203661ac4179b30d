// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROGRESS_HPP
#define VELDRA_TOOL_PROGRESS_HPP

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace veldra_tool {

/// A line on standard error that tells how far a work is. It shows only on a terminal, and only
/// when the work takes over half a second. It never makes the work wait or fail.
class Progress {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit Progress(std::string what);

  /// The same on another descriptor and with another clock.
  Progress(std::string what, int descriptor, std::function<Time()> now);

  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();  ///< wipes the line

  /// One more is done. Throws `Stopped` when the program was asked to stop.
  void step();

 private:
  void draw() noexcept;
  void show(std::string_view text) const noexcept;

  std::string what_;
  int descriptor_;
  std::function<Time()> now_;
  bool on_terminal_;
  bool drawn_ = false;
  std::size_t done_ = 0;
  Time next_;
};

}  // namespace veldra_tool

#endif
