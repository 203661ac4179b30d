// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/writing.hpp"

#include "process/interruption.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
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
  for (;;) {
    const auto written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EAGAIN) wait_for(descriptor);
    if (written < 0 && errno != EAGAIN && errno != EINTR) return errno;
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    if (bytes.empty()) return 0;
    if (stop_asked()) return EINTR;
  }
}

const char* text_of_error(int error) noexcept { return std::strerror(error != 0 ? error : EIO); }

void say(std::string_view text) noexcept { write_all(STDERR_FILENO, text); }

}  // namespace veldra_tool
