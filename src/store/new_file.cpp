// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/new_file.hpp"

#include <veldra/exceptions.hpp>

#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>
#include <sys/stat.h>

#include <memory>
#include <new>
#include <vector>

// By way of SQLite's VFS, so that a name means the same file to it.

namespace veldra {

namespace {

[[noreturn]] void fail(int result) {
  if (result == SQLITE_NOMEM || result == SQLITE_IOERR_NOMEM) throw std::bad_alloc();
  throw odb::sqlite::database_exception(result & 0xFF, result, sqlite3_errstr(result));
}

void require(int result) {
  if (result != SQLITE_OK) fail(result);
}

sqlite3_vfs* vfs_of(const FileName& name) {
  sqlite3_vfs* const vfs = sqlite3_vfs_find(name.vfs.empty() ? nullptr : name.vfs.c_str());
  if (vfs == nullptr) fail(SQLITE_ERROR);
  // One in memory cannot keep others from using the name meanwhile.
  if (vfs->xDelete == nullptr) fail(SQLITE_CANTOPEN);
  return vfs;
}

std::string full_path(sqlite3_vfs* vfs, const std::string& path) {
  std::vector<char> full(static_cast<std::size_t>(vfs->mxPathname) + 1);
  const int result = vfs->xFullPathname(vfs, path.c_str(), vfs->mxPathname, full.data());
  // That it went through a symbolic link is no error.
  if ((result & 0xFF) != SQLITE_OK) fail(result);
  return full.data();
}

/// The name of a file as a VFS wants it, with the file whose rights of access a new one gets.
class NameForVfs {
 public:
  NameForVfs(const std::string& path, const Database& like) {
    const char* const other = sqlite3_db_filename(like.handle(), "main");
    struct stat status;
    const bool known = other != nullptr && *other != '\0' && ::stat(other, &status) == 0;
    const char* parameters[] = {"modeof", other};
    name_ = sqlite3_create_filename(path.c_str(), "", "", known ? 1 : 0, parameters);
    if (name_ == nullptr) throw std::bad_alloc();
  }
  NameForVfs(const NameForVfs&) = delete;
  NameForVfs& operator=(const NameForVfs&) = delete;
  ~NameForVfs() { sqlite3_free_filename(name_); }

  const char* get() const noexcept { return name_; }

 private:
  decltype(sqlite3_create_filename(nullptr, nullptr, nullptr, 0, nullptr)) name_;
};

/// Makes an empty file of a name that nobody has; SQLITE_CANTOPEN where that cannot be done.
int make(sqlite3_vfs* vfs, const char* name) {
  const std::unique_ptr<char[]> memory(new char[static_cast<std::size_t>(vfs->szOsFile)]());
  auto* const file = reinterpret_cast<sqlite3_file*>(memory.get());
  // Parameters are only looked at with the flag of addresses.
  constexpr int flags = SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_URI | SQLITE_OPEN_READWRITE |
                        SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE;
  int given = 0;
  const int result = vfs->xOpen(vfs, name, file, flags, &given);
  if (file->pMethods != nullptr) file->pMethods->xClose(file);
  // What cannot be made is opened for reading instead.
  return (given & SQLITE_OPEN_READONLY) != 0 ? SQLITE_CANTOPEN : result;
}

/// Also of an empty file, which SQLite does not count.
bool is_there(sqlite3_vfs* vfs, const std::string& path) {
  struct stat status;
  if (::lstat(path.c_str(), &status) == 0) return true;
  int there = 0;
  require(vfs->xAccess(vfs, path.c_str(), SQLITE_ACCESS_EXISTS, &there));
  return there != 0;
}

}  // namespace

NewFile::NewFile(const String& given, const FileName& name, const Database& like)
    : vfs_(vfs_of(name)), path_(full_path(vfs_, name.path)), journal_(path_ + "-journal") {
  // What is written there would go with its connection.
  if (name.path == ":memory:") fail(SQLITE_CANTOPEN);
  const NameForVfs vfs_name(path_, like);
  if (is_there(vfs_, path_)) throw FileExists(given);
  const int result = make(vfs_, vfs_name.get());
  // Somebody else may have been faster.
  if (result == SQLITE_CANTOPEN && is_there(vfs_, path_)) throw FileExists(given);
  require(result);
}

NewFile::~NewFile() {
  if (kept_) return;
  vfs_->xDelete(vfs_, path_.c_str(), 0);
  // What is left of it would be applied to a later file of that name.
  vfs_->xDelete(vfs_, journal_.c_str(), 0);
}

}  // namespace veldra
