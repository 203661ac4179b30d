// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_LIBRARY_FIXTURE_HPP
#define VELDRA_TESTS_SUPPORT_LIBRARY_FIXTURE_HPP

#include "support/database.hpp"
#include "support/names.hpp"
#include "support/temporary.hpp"

#include <sys/stat.h>

#include <memory>
#include <string>

namespace veldra_tests {

/// A test with the path of a library file, which does not exist yet, in a folder of its own.
class LibraryFixture : public Test {
 protected:
  std::shared_ptr<Library> create(Unit unit = Unit::Millimetres,
                                  const String& guid = String()) const {
    return Library::create(path.c_str(), unit, guid);
  }

  /// Another library in the same folder.
  std::shared_ptr<Library> create(const std::string& name, Unit unit = Unit::Millimetres) const {
    return Library::create((folder / name).c_str(), unit, "");
  }

  std::shared_ptr<Library> open() const { return Library::open(path.c_str(), false); }
  std::shared_ptr<Library> open_read_only() const { return Library::open(path.c_str(), true); }

  /// Creates the library and closes it.
  void create_and_close() const { create(); }

  /// Makes the file one that others than the superuser can only read.
  void protect_the_file() const {
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  }

  /// All rows of the file.
  std::string rows() const { return dump(path); }

  // The file as plain SQLite sees it.

  void execute(const std::string& statements) const { PlainDatabase(path).execute(statements); }
  Rows query(const std::string& statement) const { return PlainDatabase(path).query(statement); }
  std::string value(const std::string& query) const { return PlainDatabase(path).value(query); }

  TemporaryFolder folder;
  const std::string path = folder / "walls.lib";
};

}  // namespace veldra_tests

#endif
