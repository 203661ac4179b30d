// SPDX-License-Identifier: GPL-2.0-or-later
#include "progress.hpp"

#include "process/interruption.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace veldra_tool {

namespace {

constexpr auto patience = std::chrono::milliseconds(500);
constexpr auto interval = std::chrono::milliseconds(100);
constexpr const char* wipe = "\r\x1b[K";

}  // namespace

Progress::Progress(std::string what)
    : Progress(std::move(what), STDERR_FILENO, &std::chrono::steady_clock::now) {}

Progress::Progress(std::string what, int descriptor, std::function<Time()> now)
    : what_(std::move(what)),
      descriptor_(descriptor),
      now_(std::move(now)),
      on_terminal_(::isatty(descriptor) == 1),
      next_(now_() + patience) {}

Progress::~Progress() {
  if (drawn_) show(wipe);
}

void Progress::step() {
  stop_if_asked();
  ++done_;
  if (!on_terminal_) return;
  const Time now = now_();
  if (now <= next_) return;
  draw();
  next_ = now + interval;
}

void Progress::draw() noexcept {
  drawn_ = true;
  char line[256];
  const auto end = fmt::format_to_n(line, sizeof line, "{}{}: {}", wipe, what_, done_).size;
  show({line, std::min(end, sizeof line)});
}

/// Somebody may have stopped the terminal, and the work holds libraries.
void Progress::show(std::string_view text) const noexcept {
  pollfd ready{descriptor_, POLLOUT, 0};
  if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return;
  write_all(descriptor_, text);
}

}  // namespace veldra_tool
