// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/reading.hpp"

#include "failure.hpp"
#include "files/opened.hpp"
#include "process/interruption.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

namespace veldra_tool {

namespace {

[[noreturn]] void fail(const std::string& file, int error) {
  if (error == ENOENT) throw failure_of(file, "there is no such file");
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

[[noreturn]] void fail_for_size(const std::string& file, std::size_t most) {
  throw failure_of(file, most == most_bytes_of_source
                             ? "it is larger than 1 GiB"
                             : fmt::format("it is larger than {} bytes", most));
}

/// What need not be read to be known; 0 for what is no file, such as a pipe.
std::size_t size_of(int descriptor) {
  struct stat status {};
  const bool is_file = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  return is_file ? static_cast<std::size_t>(status.st_size) : 0;
}

/// How long the last line is, of which `block` is the continuation.
std::size_t length_of_line(std::size_t before, std::string_view block) {
  const auto end = block.find_last_of("\n\r");
  return end == std::string_view::npos ? before + block.size() : block.size() - end - 1;
}

std::string content_behind(int descriptor, const std::string& file, std::size_t most) {
  const auto known = size_of(descriptor);
  if (known > most) fail_for_size(file, most);
  std::string content;
  content.reserve(known);
  std::size_t line = 0;
  std::vector<char> block(1 << 16);
  for (;;) {
    const auto size = ::read(descriptor, block.data(), block.size());
    if (size == 0) return content;
    if (size < 0 && errno != EINTR) fail(file, errno);
    const auto taken = static_cast<std::size_t>(std::max<ssize_t>(size, 0));
    if (taken > most - content.size()) fail_for_size(file, most);
    line = length_of_line(line, {block.data(), taken});
    if (line > most_bytes_of_line) throw failure_of(file, "it has a line of more than 256 MiB");
    content.append(block.data(), taken);
    stop_if_asked();
  }
}

}  // namespace

std::string content_of(const std::string& file, std::size_t most) {
  const Opened opened(open_for_reading(file));
  if (opened.get() < 0) fail(file, errno);
  return content_behind(opened.get(), file, most);
}

std::string content_of_standard_input(std::size_t most) {
  return content_behind(STDIN_FILENO, "standard input", most);
}

}  // namespace veldra_tool
