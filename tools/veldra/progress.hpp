#ifndef VELDRA_TOOL_PROGRESS_HPP
#define VELDRA_TOOL_PROGRESS_HPP

#include <chrono>
#include <cstddef>
#include <string>

namespace veldra_tool {

/// A line on standard error that tells how far a work is. It shows only on a terminal, and only
/// when the work takes over half a second.
class Progress {
 public:
  explicit Progress(std::string what);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();  ///< wipes the line

  /// One more is done, of `total` if that is known.
  void step(std::size_t total = 0);

 private:
  using Clock = std::chrono::steady_clock;

  void draw(std::size_t total);

  std::string what_;
  bool on_terminal_;
  bool drawn_ = false;
  std::size_t done_ = 0;
  Clock::time_point next_;
};

}  // namespace veldra_tool

#endif
