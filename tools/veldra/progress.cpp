#include "progress.hpp"

#include <fmt/format.h>

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace veldra_tool {

namespace {

constexpr auto patience = std::chrono::milliseconds(500);
constexpr auto interval = std::chrono::milliseconds(100);
constexpr const char* wipe = "\r\x1b[K";

}  // namespace

Progress::Progress(std::string what)
    : what_(std::move(what)),
      on_terminal_(::isatty(STDERR_FILENO) == 1),
      next_(Clock::now() + patience) {}

Progress::~Progress() {
  if (drawn_) std::fputs(wipe, stderr);
}

void Progress::step(std::size_t total) {
  ++done_;
  if (!on_terminal_ || Clock::now() < next_) return;
  draw(total);
  next_ = Clock::now() + interval;
}

void Progress::draw(std::size_t total) {
  drawn_ = true;
  if (total == 0) return fmt::print(stderr, "{}{}: {}", wipe, what_, done_);
  fmt::print(stderr, "{}{}: {} of {}", wipe, what_, done_, total);
}

}  // namespace veldra_tool
