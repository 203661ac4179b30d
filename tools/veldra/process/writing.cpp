#include "process/writing.hpp"

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
  while (!bytes.empty()) {
    const auto written = ::write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      wait_for(descriptor);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

std::string text_of_error(int error) { return std::strerror(error != 0 ? error : EIO); }

void say(std::string_view text) noexcept { write_all(STDERR_FILENO, text); }

}  // namespace veldra_tool
