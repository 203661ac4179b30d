#include "progress.hpp"

#include <fmt/format.h>

#include <unistd.h>

#include <utility>

namespace veldra_tool {

namespace {

constexpr auto patience = std::chrono::milliseconds(500);
constexpr auto interval = std::chrono::milliseconds(100);
constexpr const char* wipe = "\r\x1b[K";

}  // namespace

Progress::Progress(std::string what)
    : Progress(std::move(what), stderr, &std::chrono::steady_clock::now) {}

Progress::Progress(std::string what, std::FILE* stream, std::function<Time()> now)
    : what_(std::move(what)),
      stream_(stream),
      now_(std::move(now)),
      on_terminal_(::isatty(::fileno(stream)) == 1),
      next_(now_() + patience) {}

Progress::~Progress() {
  if (!drawn_) return;
  std::fputs(wipe, stream_);
  std::fflush(stream_);
}

void Progress::step() {
  ++done_;
  if (!on_terminal_) return;
  const Time now = now_();
  if (now <= next_) return;
  draw();
  next_ = now + interval;
}

void Progress::draw() {
  drawn_ = true;
  fmt::print(stream_, "{}{}: {}", wipe, what_, done_);
  std::fflush(stream_);
}

}  // namespace veldra_tool
