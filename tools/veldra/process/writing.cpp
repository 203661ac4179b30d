// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/writing.hpp"

#include "process/interruption.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace veldra_tool {

namespace {

/// Waits until a descriptor that does not wait by itself can be written.
void wait_for(int descriptor) noexcept {
  pollfd waiting{descriptor, POLLOUT, 0};
  ::poll(&waiting, 1, -1);
}

}  // namespace

int write_all(int descriptor, std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const auto written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EAGAIN) wait_for(descriptor);
    if (written < 0 && errno != EAGAIN && errno != EINTR) return errno;
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    if (!bytes.empty() && stop_asked()) return EINTR;
  }
  return 0;
}

const char* text_of_error(int error) noexcept { return std::strerror(error != 0 ? error : EIO); }

namespace {

bool is_set(const char* variable) noexcept {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool shows_colours(int descriptor) noexcept {
  if (::isatty(descriptor) != 1 || is_set("NO_COLOR") || !is_set("TERM")) return false;
  return std::string_view(std::getenv("TERM")) != "dumb";
}

}  // namespace

std::string_view error_mark() noexcept {
  return shows_colours(STDERR_FILENO) ? "\x1b[1;31mveldra:\x1b[0m " : "veldra: ";
}

std::string muted(std::string line) {
  if (line.empty() || !shows_colours(STDOUT_FILENO)) return line;
  return "\x1b[2m" + line + "\x1b[22m";
}

void say(std::string_view text) noexcept { write_all(STDERR_FILENO, text); }

}  // namespace veldra_tool
