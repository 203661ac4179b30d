// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/temporary.hpp"

#include <ftw.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace veldra_tests {

namespace {

int remove_entry(const char* path, const struct stat*, int, struct FTW*) { return ::remove(path); }

}  // namespace

TemporaryFolder::TemporaryFolder() {
  const char* base = ::getenv("TMPDIR");
  path_ = std::string(base != nullptr ? base : "/tmp") + "/veldra-XXXXXX";
  if (::mkdtemp(&path_[0]) == nullptr) throw std::runtime_error("no temporary folder " + path_);
}

TemporaryFolder::~TemporaryFolder() {
  ::nftw(path_.c_str(), remove_entry, 16, FTW_DEPTH | FTW_PHYS);
}

bool file_exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace veldra_tests
