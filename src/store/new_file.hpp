// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_NEW_FILE_HPP
#define VELDRA_STORE_NEW_FILE_HPP

#include "store/database.hpp"

#include <veldra/string.hpp>

struct sqlite3_vfs;

namespace veldra {

/// A file that this process has made, empty at first; removed at the end unless it is kept.
class NewFile {
 public:
  /// `like` is the database whose rights of access it gets. Throws `FileExists` with `given` when
  /// there is a file of that name, and `odb::sqlite::database_exception`.
  NewFile(const String& given, const FileName& name, const Database& like);
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile();

  void keep() noexcept { kept_ = true; }

 private:
  sqlite3_vfs* vfs_;
  std::string path_;
  std::string journal_;
  bool kept_ = false;
};

}  // namespace veldra

#endif
