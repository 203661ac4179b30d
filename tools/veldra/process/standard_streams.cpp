// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/standard_streams.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace veldra_tool {

void occupy_standard_streams() noexcept {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest free number is taken. A folder that is only pointed at is there in every system.
    [[maybe_unused]] const int taken = ::open("/", O_PATH | O_DIRECTORY);
  }
}

std::size_t terminal_width() noexcept {
  winsize size{};
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace veldra_tool
