// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/file_state.hpp"

#include "support/temporary.hpp"

#include <sys/stat.h>

#include <stdexcept>

namespace veldra_tests {

namespace {

long long modification_time(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) throw std::runtime_error("no status of " + path);
  return status.st_mtim.tv_sec * 1000000000LL + status.st_mtim.tv_nsec;
}

}  // namespace

FileState::FileState(const std::string& path)
    : bytes_(read_file(path)), written_(modification_time(path)) {}

bool FileState::operator==(const FileState& other) const {
  return bytes_ == other.bytes_ && written_ == other.written_;
}

}  // namespace veldra_tests
