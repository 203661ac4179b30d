// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_LIBRARY_FILE_HPP
#define VELDRA_STORE_LIBRARY_FILE_HPP

#include "store/database.hpp"
#include "store/joined_operation.hpp"
#include "store/meta.hpp"
#include "store/new_library.hpp"
#include "store/transactions.hpp"

#include <memory>

namespace veldra {

/// An open file that holds a library of the current version.
struct LibraryFile {
  std::unique_ptr<Database> database;
  unsigned long long version;
  Meta meta;
};

/// What the file says of itself now.
Meta load_meta(Database& database);

enum class FileAccess { Create, ReadWrite, ReadOnly };

/// Opens the file and makes it a library of the current version: one that is older is migrated,
/// one that is empty gets the contents of a new one.
LibraryFile open_library_file(const String& filename, FileAccess access,
                              const NewLibrary& contents);

/// The same for a file that holds a library already. Throws `NotALibrary` for any other, on the
/// connection that opens it and under the same lock.
LibraryFile open_existing_file(const String& filename, FileAccess access);

/// One state of the library in a file, which is only read. That of an older version is a copy, in a
/// temporary database, that was brought to the current one.
class LibraryState {
 public:
  /// A part of the operation on `running`, for as long as the state is there. Throws as
  /// `open_existing_file` does, and `Interrupted`.
  LibraryState(const String& filename, Database& running);

  Database& database() noexcept { return *database_; }
  Meta& meta() noexcept { return meta_; }

 private:
  void join(Database& running);

  std::unique_ptr<Database> database_;
  std::unique_ptr<OneState> state_;
  std::unique_ptr<JoinedOperation> joined_;
  Meta meta_;
};

}  // namespace veldra

#endif
