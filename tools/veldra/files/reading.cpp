#include "files/reading.hpp"

#include "failure.hpp"
#include "files/opened.hpp"
#include "process/interruption.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace veldra_tool {

namespace {

[[noreturn]] void fail(const std::string& file, int error) {
  if (error == EISDIR) throw failure_of(file, "this is a folder");
  throw failure_of(file, fmt::format("it cannot be read: {}", text_of_error(error)));
}

/// A pipe waits here for somebody who writes into it.
int open_for_reading(const std::string& file) {
  for (;;) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
    if (descriptor >= 0 || errno != EINTR) return descriptor;
    stop_if_asked();
  }
}

/// Such as a device that never ends.
constexpr std::size_t most_bytes = std::size_t{1} << 30;

}  // namespace

std::string content_of(const std::string& file) {
  const Opened opened(open_for_reading(file));
  if (opened.get() < 0) fail(file, errno);
  std::string content;
  std::vector<char> block(1 << 16);
  for (;;) {
    const auto size = ::read(opened.get(), block.data(), block.size());
    if (size == 0) return content;
    if (size > 0) content.append(block.data(), static_cast<std::size_t>(size));
    if (content.size() > most_bytes) throw failure_of(file, "it is larger than 1 GiB");
    if (size < 0 && errno != EINTR) fail(file, errno);
    stop_if_asked();
  }
}

}  // namespace veldra_tool
