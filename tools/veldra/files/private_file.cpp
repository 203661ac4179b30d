// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/private_file.hpp"

#include "failure.hpp"
#include "files/opened.hpp"
#include "process/spool.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

namespace veldra_tool {

namespace {

void remove_all(const std::string& folder) noexcept {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

}  // namespace

PrivateFile::PrivateFile(const std::string& name, const std::string& text) {
  make_folder();
  path_ = folder_ + "/" + name;
  try {
    fill(text);
  } catch (...) {
    remove_all(folder_);
    throw;
  }
}

PrivateFile::~PrivateFile() {
  if (is_kept_) return;
  // Before all else, as the folder may not let itself be read.
  ::unlink(path_.c_str());
  remove_all(folder_);
}

/// Such a folder has the rights 0700.
void PrivateFile::make_folder() {
  const char* place = std::getenv("TMPDIR");
  std::string folder = (place != nullptr && *place == '/' ? place : "/tmp");
  folder += "/veldra-XXXXXX";
  if (::mkdtemp(folder.data()) == nullptr) {
    throw failure_of(folder, fmt::format("it cannot be made: {}", text_of_error(errno)));
  }
  folder_ = folder;
}

void PrivateFile::fill(const std::string& text) const {
  Opened opened(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  int error = opened.get() < 0 ? errno : 0;
  Spool spool(text.size());
  spool.write(text);
  if (error == 0) error = spool.copy_to(opened.get());
  if (error == 0) error = opened.close();
  if (error != 0) {
    throw failure_of(path_, fmt::format("it cannot be written: {}", text_of_error(error)));
  }
}

}  // namespace veldra_tool
