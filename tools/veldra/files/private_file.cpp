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
#include <new>

namespace veldra_tool {

namespace {

/// The file goes without memory, and where its folder cannot be read; what an editor has put beside
/// it may need both.
void remove_with_folder(const std::string& path, const std::string& folder) noexcept {
  ::unlink(path.c_str());
  if (::rmdir(folder.c_str()) == 0) return;
  try {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

PrivateFile::PrivateFile(const std::string& name, const std::string& text) {
  make_folder();
  path_ = folder_ + "/" + name;
  try {
    fill(text);
  } catch (...) {
    remove_with_folder(path_, folder_);
    throw;
  }
}

PrivateFile::~PrivateFile() {
  if (!is_kept_) remove_with_folder(path_, folder_);
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
