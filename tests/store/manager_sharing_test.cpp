// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/database.hpp"
#include "support/file_state.hpp"
#include "support/library_fixture.hpp"
#include "support/thrown.hpp"

#include <unistd.h>

namespace veldra_tests {
namespace {

// The library of a manager, and the file as `LibraryFixture` makes it without one.
class ManagerSharing : public LibraryFixture {
 protected:
  std::shared_ptr<Library> created(Unit unit = Unit::Inches, const String& guid = "abc") {
    return manager_.create(name(), unit, guid);
  }

  std::shared_ptr<Library> opened(bool read_only = false) {
    return manager_.open(name(), read_only);
  }

  String name() const { return path.c_str(); }

  LibraryManager& manager() { return manager_; }

 private:
  LibraryManager manager_;
};

TEST_F(ManagerSharing, creates_a_library) {
  const auto library = created(Unit::Inches, "abc");
  ASSERT_NE(library, nullptr);
  EXPECT_EQ(library->filename(), name());
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_EQ(library->guid().utf8(), "25289ef0-812b-50f0-9943-5518cb168039");
}

TEST_F(ManagerSharing, opens_a_library) {
  create_and_close();
  EXPECT_FALSE(opened()->readOnly());
  EXPECT_TRUE(opened(true)->readOnly());
}

TEST_F(ManagerSharing, gives_one_handle_while_it_is_held) {
  const auto library = created();
  EXPECT_EQ(opened(), library);
  EXPECT_EQ(opened(), library);
  EXPECT_EQ(created(), library);
}

TEST_F(ManagerSharing, gives_one_handle_to_all_who_open) {
  create_and_close();
  const auto library = opened();
  EXPECT_EQ(opened(), library);
  EXPECT_EQ(created(), library);
}

TEST_F(ManagerSharing, creating_an_open_library_ignores_the_arguments_and_writes_nothing) {
  const auto library = created(Unit::Inches, "abc");
  const FileState before(path);
  EXPECT_EQ(created(Unit::Millimetres, "other"), library);
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_EQ(library->guid().utf8(), "25289ef0-812b-50f0-9943-5518cb168039");
  EXPECT_TRUE(before == FileState(path));
}

// Even where creating afresh would be needed, the open handle is given.
TEST_F(ManagerSharing, an_open_library_is_not_looked_for_in_the_folder) {
  const auto library = created();
  ASSERT_EQ(::unlink(path.c_str()), 0);
  EXPECT_EQ(created(), library);
  EXPECT_EQ(opened(), library);
  EXPECT_FALSE(file_exists(path));
}

TEST_F(ManagerSharing, a_library_that_writes_stays_so_for_who_wants_to_read_only) {
  const auto library = created();
  EXPECT_EQ(opened(true), library);
  EXPECT_FALSE(library->readOnly());
}

TEST_F(ManagerSharing, a_library_for_reading_only_stays_so_for_who_wants_to_write) {
  create_and_close();
  const auto library = opened(true);
  EXPECT_EQ(opened(false), library);
  EXPECT_EQ(created(), library);
  EXPECT_TRUE(library->readOnly());
}

TEST_F(ManagerSharing, holds_no_library) {
  auto library = created();
  const std::weak_ptr<Library> watched = library;
  library.reset();
  EXPECT_TRUE(watched.expired());
}

TEST_F(ManagerSharing, a_released_library_is_opened_anew) {
  created()->locale("de-CH");
  const auto library = opened(true);
  EXPECT_TRUE(library->readOnly());
  EXPECT_EQ(library->locale().utf8(), "de-CH");
  EXPECT_EQ(opened(), library);
}

TEST_F(ManagerSharing, a_released_library_is_created_anew) {
  created(Unit::Inches, "abc");
  ASSERT_EQ(::unlink(path.c_str()), 0);
  const auto library = created(Unit::Millimetres, "ABC");
  EXPECT_EQ(library->unit(), Unit::Millimetres);
  EXPECT_EQ(library->guid().utf8(), "ab8b63b1-08b4-5b15-86d1-e18bb6918a43");
}

TEST_F(ManagerSharing, other_handles_on_the_file_do_not_count) {
  const auto apart = create();
  const auto library = opened();
  EXPECT_NE(library, apart);
  EXPECT_EQ(opened(), library);
}

// Names.

TEST_F(ManagerSharing, another_spelling_is_another_handle_on_the_file) {
  const auto library = created();
  const std::string spelling = folder / "./walls.lib";
  const auto other = manager().open(spelling.c_str(), false);
  EXPECT_NE(other, library);
  EXPECT_EQ(other->guid(), library->guid());
  EXPECT_EQ(other->filename().utf8(), spelling);
  EXPECT_EQ(manager().open(spelling.c_str(), false), other);
  EXPECT_EQ(opened(), library);
}

TEST_F(ManagerSharing, a_name_with_a_vfs_is_another_spelling) {
  const auto library = created();
  const auto other = manager().open(("unix://" + path).c_str(), false);
  EXPECT_NE(other, library);
  EXPECT_EQ(other->guid(), library->guid());
}

TEST_F(ManagerSharing, the_case_of_a_name_counts) {
  const auto library = created();
  const std::string spelling = folder / "WALLS.lib";
  EXPECT_EQ(thrown_by([&] { manager().open(spelling.c_str(), false); }).type,
            "odb::sqlite::database_exception");
  ASSERT_EQ(::symlink(path.c_str(), spelling.c_str()), 0);
  EXPECT_NE(manager().open(spelling.c_str(), false), library);
}

TEST_F(ManagerSharing, different_files_are_different_libraries) {
  const auto walls = created();
  const auto floors = manager().create((folder / "floors.lib").c_str(), Unit::Inches, String());
  EXPECT_NE(walls, floors);
  EXPECT_NE(walls->guid(), floors->guid());
}

// Errors pass and leave the registry as it was.

TEST_F(ManagerSharing, errors_of_opening_pass) {
  EXPECT_EQ(thrown_by([&] { opened(); }).type, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown_by([&] {
              manager().create((folder / "no/walls.lib").c_str(), Unit::Inches, String());
            }).type,
            "odb::sqlite::database_exception");
}

TEST_F(ManagerSharing, a_name_that_failed_can_be_used_afterwards) {
  EXPECT_EQ(thrown_by([&] { opened(); }).type, "odb::sqlite::database_exception");
  const auto library = created();
  EXPECT_EQ(opened(), library);
}

TEST_F(ManagerSharing, an_error_of_one_name_leaves_the_others) {
  const auto library = created();
  const std::string missing = folder / "missing.lib";
  EXPECT_EQ(thrown_by([&] { manager().open(missing.c_str(), false); }).type,
            "odb::sqlite::database_exception");
  EXPECT_EQ(opened(), library);
}

TEST_F(ManagerSharing, an_error_leaves_a_released_name_as_it_was) {
  created();
  PlainDatabase(path).execute("UPDATE schema_version SET version = 1");
  EXPECT_EQ(thrown_by([&] { opened(); }).type, "odb::unknown_schema_version");
  PlainDatabase(path).execute("UPDATE schema_version SET version = 150302");
  const auto library = opened();
  EXPECT_EQ(created(), library);
}

// Managers.

TEST_F(ManagerSharing, managers_share_nothing) {
  LibraryManager other;
  const auto library = created();
  EXPECT_NE(other.open(name(), false), library);
}

TEST_F(ManagerSharing, libraries_outlive_their_manager) {
  std::shared_ptr<Library> library;
  {
    LibraryManager short_lived;
    library = short_lived.create(name(), Unit::Inches, String());
  }
  library->locale("de-CH");
  EXPECT_EQ(open()->locale().utf8(), "de-CH");
}

TEST_F(ManagerSharing, the_process_has_one_manager) {
  LibraryManager& instance = LibraryManager::instance();
  EXPECT_EQ(&instance, &LibraryManager::instance());
  const auto library = instance.create(name(), Unit::Inches, String());
  EXPECT_EQ(LibraryManager::instance().open(name(), false), library);
  EXPECT_NE(opened(), library);
}

}  // namespace
}  // namespace veldra_tests
