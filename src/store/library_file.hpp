// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_LIBRARY_FILE_HPP
#define VELDRA_STORE_LIBRARY_FILE_HPP

#include "store/database.hpp"
#include "store/meta.hpp"
#include "store/new_library.hpp"

#include <memory>

namespace veldra {

/// An open file that holds a library of the current version.
struct LibraryFile {
  std::unique_ptr<Database> database;
  unsigned long long version;
  Meta meta;
};

enum class FileAccess { Create, ReadWrite, ReadOnly };

/// Opens the file and makes it a library of the current version: one that is older is migrated,
/// one that is empty gets the contents of a new one.
LibraryFile open_library_file(const String& filename, FileAccess access,
                              const NewLibrary& contents);

/// The same for a file that holds a library already. Throws `NotALibrary` for any other, on the
/// connection that opens it and under the same lock.
LibraryFile open_existing_file(const String& filename, FileAccess access);

}  // namespace veldra

#endif
