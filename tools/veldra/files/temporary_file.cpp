// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/temporary_file.hpp"

#include "failure.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace veldra_tool {

namespace {

constexpr int suffix_size = 4;  // of ".tmp"

/// Renames a file to a name that nothing has. Gives 0 or the number of the error.
int rename_to_free_name(const char* from, const char* to) noexcept {
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOSYS && errno != EINVAL && errno != EPERM) return errno;
  // The kernel or the file system cannot. A second name can be given to nothing but a free one.
  if (::link(from, to) != 0) return errno;
  if (::unlink(from) == 0) return 0;
  // Two names of one library are a danger after a crash, as its journal has but one of them.
  const int error = errno;
  ::unlink(to);
  return error;
}

/// Not every file system can bring a file to the disk by order.
bool is_no_answer(int error) { return error == EINVAL || error == EROFS || error == ENOTSUP; }

int sync_folder(const std::string& folder) noexcept {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return 0;  // a folder that cannot be read
  const int error = ::fsync(descriptor) == 0 || is_no_answer(errno) ? 0 : errno;
  ::close(descriptor);
  return error;
}

}  // namespace

mode_t rights_of_new_file(mode_t asked) noexcept {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return asked & ~mask;
}

TemporaryFile::TemporaryFile(std::string file, std::string folder)
    : file_(std::move(file)), folder_(std::move(folder)) {
  std::string name = folder_ + "/.veldra-XXXXXX.tmp";
  const SignalPause pause;
  descriptor_ = ::mkostemps(name.data(), suffix_size, O_CLOEXEC);
  if (descriptor_ < 0) fail("it cannot be made in its folder", errno);
  leftover_.emplace(std::move(name));
}

TemporaryFile::~TemporaryFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

void TemporaryFile::close() {
  const int descriptor = std::exchange(descriptor_, -1);
  int error = ::fsync(descriptor) == 0 || is_no_answer(errno) ? 0 : errno;
  if (::close(descriptor) != 0 && errno != EINTR && error == 0) error = errno;
  if (error != 0) fail("it cannot be written", error);
}

bool TemporaryFile::place(const std::string& path) {
  const SignalPause pause;
  const int error = rename_to_free_name(leftover_->path().c_str(), path.c_str());
  if (error == EEXIST) return false;
  if (error != 0) fail("it cannot be put into its folder without danger for others", error);
  settle();
  return true;
}

void TemporaryFile::replace(const std::string& path) {
  const SignalPause pause;
  if (std::rename(leftover_->path().c_str(), path.c_str()) != 0) {
    fail("it cannot be put into its folder", errno);
  }
  settle();
}

/// It is done from here on.
void TemporaryFile::settle() noexcept {
  forbid_sudden_end();
  leftover_->forget();
  folder_error_ = sync_folder(folder_);
}

void TemporaryFile::fail(const char* sentence, int error) const {
  throw failure_of(file_, fmt::format("{}: {}", sentence, text_of_error(error)));
}

}  // namespace veldra_tool
