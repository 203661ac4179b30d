// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/spool.hpp"

#include "failure.hpp"
#include "process/interruption.hpp"
#include "process/writing.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace veldra_tool {

namespace {

std::string temporary_folder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

Failure failure(int error) {
  return Failure(fmt::format("the output cannot be kept in the folder {}: {}",
                             in_quotes(temporary_folder()), text_of_error(error)));
}

/// A file that no name leads to, so that it goes with the program, however that ends.
int open_unnamed_file() {
  const std::string folder = temporary_folder();
  const int file = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC | O_EXCL, 0600);
  if (file >= 0) return file;
  std::string name = folder + "/.veldra-XXXXXX";
  const int named = ::mkostemp(name.data(), O_CLOEXEC);
  if (named < 0) throw failure(errno);
  ::unlink(name.c_str());
  return named;
}

int copy_file(int from, int to) noexcept {
  char block[1 << 16];
  for (off_t position = 0;;) {
    if (stop_asked()) return EINTR;
    const auto count = ::pread(from, block, sizeof block, position);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) return 0;
    const int error = write_all(to, {block, static_cast<std::size_t>(count)});
    if (error != 0) return error;
    position += count;
  }
}

}  // namespace

Spool::~Spool() { clear(); }

void Spool::clear() noexcept {
  kept_.clear();
  if (file_ >= 0) ::close(std::exchange(file_, -1));
}

void Spool::write(std::string_view text) {
  if (kept_.size() + text.size() <= memory_) {
    kept_ += text;
    return;
  }
  move_to_file();
  if (const int error = write_all(file_, text)) throw failure(error);
}

/// What is kept in memory comes after what is in the file.
void Spool::move_to_file() {
  if (file_ < 0) file_ = open_unnamed_file();
  if (const int error = write_all(file_, kept_)) throw failure(error);
  kept_.clear();
}

int Spool::copy_to(int descriptor) const noexcept {
  const int error = file_ >= 0 ? copy_file(file_, descriptor) : 0;
  return error != 0 ? error : write_all(descriptor, kept_);
}

}  // namespace veldra_tool
