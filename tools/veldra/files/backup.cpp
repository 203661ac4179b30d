// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/backup.hpp"

#include "configuration.hpp"
#include "failure.hpp"
#include "files/new_library.hpp"
#include "files/path.hpp"
#include "opening.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace veldra_tool {

namespace {

constexpr int first_number = 1;

/// The time of the clock, which is the same everywhere, as part of a file name.
std::string time_text() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::gmtime_r(&now, &parts);
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H-%M-%SZ", &parts));
}

/// Its parents must be there.
void make_folder(const std::string& folder) {
  if (::mkdir(folder.c_str(), 0777) == 0 || errno == EEXIST) return;
  throw failure_of(folder,
                   fmt::format("the folder for backups cannot be made: {}", text_of_error(errno)));
}

}  // namespace

bool Backup::is_wanted() const { return !library_.empty() && (!file_.empty() || !folder_.empty()); }

void Backup::require_place() const {
  if (file_.empty()) return;
  require_place_for_library(file_);
  if (file_exists(file_)) refuse_as_there(file_);
}

std::string Backup::folder() const {
  const std::string folder = with_home(folder_);
  if (folder.front() == '/') return folder;
  return folder_of(library_path(library_)) + "/" + folder;
}

/// What comes first in the name is that of the library, and last its ending.
std::string Backup::candidate(int number) const {
  const std::string library = name_in_folder(library_path(library_));
  const auto point = library.rfind('.');
  const auto end = point == std::string::npos || point == 0 ? library.size() : point;
  return fmt::format("{}/{}-{}{}{}", folder(), library.substr(0, end), time_text(),
                     number == first_number ? "" : fmt::format("-{}", number), library.substr(end));
}

void Backup::make() {
  if (!is_wanted()) return;
  begin();
  write(*open_library(library_, Access::Read));
}

void Backup::make(const veldra::Library& library) {
  if (!is_wanted()) return;
  begin();
  write(library);
}

void Backup::begin() {
  if (file_.empty()) make_folder(folder());
  name_ = file_.empty() ? candidate(first_number) : file_;
  require_place();
  const std::string place = library_path(name_);
  temporary_.emplace(name_, folder_of(place));
  require_short_path(name_, temporary_->path());
  temporary_->close();
}

/// The library wants to make the file itself.
void Backup::write(const veldra::Library& library) {
  working_on(name_, [&] {
    ::unlink(temporary_->path().c_str());
    library.backup(library_text(temporary_->path()));
  });
}

void Backup::put_into_place() {
  if (!temporary_) return;
  if (!file_.empty()) {
    require_place();
    if (!temporary_->place(library_path(file_))) refuse_as_there(file_);
  } else {
    // Another library of that name may have got a backup in the same second.
    for (int number = first_number; !temporary_->place(candidate(number)); ++number) {
    }
  }
  if (temporary_->folder_error() != 0) {
    throw failure_of(name_, fmt::format("it may be gone after a power failure: {}",
                                        text_of_error(temporary_->folder_error())));
  }
  temporary_.reset();
}

}  // namespace veldra_tool
