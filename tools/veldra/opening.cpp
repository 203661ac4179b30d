// SPDX-License-Identifier: GPL-2.0-or-later
#include "opening.hpp"

#include "files/library_marks.hpp"
#include "files/opened.hpp"
#include "files/path.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

namespace veldra_tool {

namespace {

using Kind = veldra::Library::Recognition::Kind;

/// Whether a file without size is one of those whose content the system makes up when it is read.
/// One that somebody has filled meanwhile has a size.
bool has_content_without_size(const std::string& path) {
  const Opened opened(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  char byte = 0;
  struct stat status {};
  return opened.get() >= 0 && ::read(opened.get(), &byte, 1) != 0 &&
         ::fstat(opened.get(), &status) == 0 && status.st_size == 0;
}

/// What the library need not be asked for.
void require_readable_file(const std::string& file, const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) throw failure_of(file, "there is no such file");
    throw failure_of(file, fmt::format("it cannot be opened: {}", text_of_error(errno)));
  }
  if (S_ISDIR(status.st_mode)) throw failure_of(file, "this is a folder");
  if (!S_ISREG(status.st_mode)) throw failure_of(file, "this is not a file");
  if (::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
    throw failure_of(file, fmt::format("it cannot be read: {}", text_of_error(errno)));
  }
  if (status.st_size == 0 && has_content_without_size(path)) {
    throw failure_of(file, "this is not a veldra library");
  }
}

/// SQLite takes what lies beside a library under the name of its journal or log for that, and
/// deletes it when it makes no sense; even if it is a library that somebody has given this name.
void require_no_library_beside(const std::string& file, const std::string& path) {
  for (const char* suffix : {"-journal", "-wal"}) {
    if (begins_as_database(path + suffix) != 1) continue;
    throw failure_of(file, fmt::format("beside it lies {}, which is a library or another database "
                                       "and would be deleted; give that one another name",
                                       in_quotes(file + suffix)));
  }
}

/// What keeps a file that needs to be put in order from that. A journal is only left behind by what
/// went wrong; a log is in order, and still cannot be used where nothing can be written.
void require_no_log(const std::string& file, const std::string& path, Kind kind) {
  if (kind != Kind::NeedsRecovery || !begins_as_database_with_log(path)) return;
  throw failure_of(file,
                   "it has a write-ahead log, which can only be used where its folder may be "
                   "written");
}

/// What opening has refused. That it is a library is left to what opening said.
void require_library(const std::string& file, const std::string& path) {
  const auto kind = veldra::Library::recognise(library_text(path)).kind;
  require_no_log(file, path, kind);
  const std::string sentence = why_not_a_library(kind);
  if (!sentence.empty()) throw failure_of(file, sentence);
}

std::shared_ptr<veldra::Library> open_existing(const std::string& file, bool read_only) {
  const auto path = library_path(file);
  require_readable_file(file, path);
  require_no_library_beside(file, path);
  try {
    return veldra::Library::openExisting(library_text(path), read_only);
  } catch (const veldra::NotALibrary&) {
    require_library(file, path);
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    if (!is_held_by_others()) require_library(file, path);
    throw;
  }
}

}  // namespace

Kind recognised(const std::string& file) {
  return working_on(file, [&] {
    const auto path = library_path(file);
    require_readable_file(file, path);
    require_no_library_beside(file, path);
    return veldra::Library::recognise(library_text(path)).kind;
  });
}

std::shared_ptr<veldra::Library> open_library(const std::string& file, Access access) {
  return working_on(file, [&] {
    const auto library = watched(open_existing(file, access == Access::Read));
    if (access == Access::Write && library->readOnly()) {
      throw failure_of(file, "the library can only be read");
    }
    stop_if_asked();
    return library;
  });
}

std::shared_ptr<veldra::Library> open_to_change(Host& host, const std::string& file) {
  host.backup.is_of(file);
  return open_library(file, Access::Write);
}

std::shared_ptr<veldra::Library> watched(std::shared_ptr<veldra::Library> library) {
  struct Watched {
    explicit Watched(std::shared_ptr<veldra::Library> opened)
        : library(std::move(opened)), interruptible(*library) {}

    std::shared_ptr<veldra::Library> library;
    Interruptible interruptible;
  };
  const auto both = std::make_shared<Watched>(std::move(library));
  return {both, both->library.get()};
}

std::shared_ptr<veldra::Library> create_staging_library(veldra::Unit unit) {
  auto library = watched(veldra::Library::create(":memory:", unit, ""));
  library->purge<veldra::MaterialType>();
  return library;
}

std::string why_not_a_library(Kind kind) {
  switch (kind) {
    case Kind::Library:
    case Kind::OlderLibrary:
      return "";
    case Kind::Missing:
      return "there is no such file";
    case Kind::Empty:
      return "the file is empty, and not a veldra library";
    case Kind::NewerLibrary:
      return "the library was made by a newer version of veldra";
    case Kind::UnknownVersion:
      return "the library was made by a version that is not known here";
    case Kind::WithoutVersion:
      return "the library does not say its version any more; 'veldra check' tells more";
    case Kind::WithoutIdentity:
      return "the library does not say what library it is; 'veldra check' tells more";
    case Kind::OtherDatabase:
      return "this is a database of another program, and not a veldra library";
    case Kind::Damaged:
      return "the library is damaged";
    case Kind::NeedsRecovery:
      return "a program did not finish its work on the library, which can only be put in order "
             "where it may be written";
    default:
      return "this is not a veldra library";
  }
}

bool same_file(const std::string& left, const std::string& right) {
  struct stat one {};
  struct stat other {};
  return ::stat(absolute_path(left).c_str(), &one) == 0 &&
         ::stat(absolute_path(right).c_str(), &other) == 0 && one.st_dev == other.st_dev &&
         one.st_ino == other.st_ino;
}

bool file_exists(const std::string& file) {
  struct stat status {};
  return ::lstat(absolute_path(file).c_str(), &status) == 0;
}

void refuse_as_there(const std::string& file) {
  struct stat there {};
  const bool is_folder = ::stat(absolute_path(file).c_str(), &there) == 0 && S_ISDIR(there.st_mode);
  throw failure_of(file, is_folder ? "this is a folder" : "there is a file of that name already");
}

void tell_as_it_was(const std::string& file) {
  tell_when_stopped(fmt::format("{} is as it was", in_quotes(file)));
}

void tell_as_they_were(const std::string& file, const std::string& other) {
  tell_when_stopped(fmt::format("{} and {} are as they were", in_quotes(file), in_quotes(other)));
}

}  // namespace veldra_tool
