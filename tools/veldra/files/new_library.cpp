// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/new_library.hpp"

#include "failure.hpp"
#include "files/library_marks.hpp"
#include "files/path.hpp"
#include "opening.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <sys/stat.h>

namespace veldra_tool {

namespace {

/// SQLite would take the library for what belongs to another one, and delete it when that one is
/// opened.
void require_name_of_its_own(const std::string& file, const std::string& path) {
  if (!is_companion_name(path)) return;
  throw failure_of(file, "this is the name of what a library keeps beside it");
}

/// SQLite would take what lies there for the new library's own, and play it back into it. It is in
/// order beside a library that somebody else has made meanwhile.
void require_no_companions(const std::string& file, const std::string& path) {
  for (const char* suffix : {"-journal", "-wal"}) {
    if (!file_exists(path + suffix) || file_exists(path)) continue;
    throw failure_of(file, fmt::format("beside it lies {}, of a library that is not there any more",
                                       in_quotes(file + suffix)));
  }
}

}  // namespace

void require_place_for_library(const std::string& file) {
  const auto path = library_path(file);
  require_name_of_its_own(file, path);
  require_no_companions(file, path);
}

NewLibrary::NewLibrary(const std::string& file, veldra::Unit unit, const std::string& guid)
    : file_(file), path_(library_path(file)), temporary_(file, folder_of(path_)) {
  require_place_for_library(file_);
  require_short_path(file_, temporary_.path());
  tell_when_stopped("no library was made");
  // As SQLite makes its files. The library's journal gets the rights of the library.
  ::fchmod(temporary_.descriptor(), rights_of_new_file(0644));
  temporary_.close();
  library_ = working_on(file_, [&] {
    return watched(
        veldra::Library::create(library_text(temporary_.path()), unit, library_text(guid)));
  });
}

bool NewLibrary::put_into_place(Host& host) {
  library_.reset();
  stop_if_asked();
  require_no_companions(file_, path_);
  if (!temporary_.place(path_)) return false;
  host.done = true;
  if (temporary_.folder_error() != 0) host.doubt(file_, temporary_.folder_error());
  return true;
}

}  // namespace veldra_tool
