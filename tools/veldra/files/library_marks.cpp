// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/library_marks.hpp"

#include "files/opened.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string_view>

namespace veldra_tool {

namespace {

constexpr std::string_view database_mark{"SQLite format 3\0", 16};
constexpr std::string_view companions[] = {"-journal", "-wal", "-shm"};

bool ends_with(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

int open_to_look(const std::string& path) noexcept {
  return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

}  // namespace

bool is_companion_name(const std::string& name) {
  return std::any_of(std::begin(companions), std::end(companions),
                     [&](std::string_view companion) { return ends_with(name, companion); });
}

int begins_as_database(int descriptor) noexcept {
  char head[database_mark.size()];
  const auto count = ::pread(descriptor, head, sizeof head, 0);
  if (count < 0) return -1;
  return std::string_view(head, static_cast<std::size_t>(count)) == database_mark ? 1 : 0;
}

int begins_as_database(const std::string& path) noexcept {
  const int descriptor = open_to_look(path);
  if (descriptor < 0) return -1;
  const int begins = begins_as_database(descriptor);
  const int error = errno;
  ::close(descriptor);
  errno = error;
  return begins;
}

bool begins_as_database_with_log(const std::string& path) noexcept {
  constexpr off_t place_of_format = 18;  // how the file is written, and how it is read
  constexpr char with_log = 2;
  const Opened file(open_to_look(path));
  char format = 0;
  return file.get() >= 0 && begins_as_database(file.get()) == 1 &&
         ::pread(file.get(), &format, 1, place_of_format) == 1 && format == with_log;
}

}  // namespace veldra_tool
