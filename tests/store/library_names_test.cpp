// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/library_fixture.hpp"
#include "support/processes.hpp"
#include "support/thrown.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

namespace veldra_tests {
namespace {

std::shared_ptr<Library> create_library(const std::string& name) {
  return Library::create(name.c_str(), Unit::Millimetres, "abc");
}

class LibraryNames : public LibraryFixture {
 protected:
  // The name must reach the file at `file` in every way of opening.
  void expect_file(const std::string& name, const std::string& file) const {
    EXPECT_EQ(create_library(name)->filename().utf8(), name);
    EXPECT_EQ(catalogue(file), current_catalogue());
    EXPECT_EQ(Library::open(name.c_str(), false)->count<MaterialType>(), 13u);
    EXPECT_EQ(Library::open(name.c_str(), true)->filename().utf8(), name);
  }
};

TEST_F(LibraryNames, may_lie_beyond_ascii) {
  const std::string file = folder / "Wände 石 \xF0\x9D\x84\x9E.lib";
  expect_file(file, file);
}

TEST_F(LibraryNames, may_have_blanks_and_marks) {
  const std::string file = folder / "a b?c=d&e%20#f'g\".lib";
  expect_file(file, file);
}

TEST_F(LibraryNames, must_be_well_formed) {
  const unsigned short name[] = {'a', 0xD800, 0};
  EXPECT_EQ(thrown_by([&] { Library::create(name, Unit::Inches, ""); }).type,
            "utf8::invalid_utf16");
  EXPECT_EQ(thrown_by([&] { Library::open(name, false); }).type, "utf8::invalid_utf16");
}

// The name of a VFS.

TEST_F(LibraryNames, a_vfs_may_stand_before_the_path) { expect_file("unix://" + path, path); }

// The VFS "unix-none" takes no locks and heeds none, which tells it apart.
TEST_F(LibraryNames, another_vfs_is_used) {
  create_and_close();
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 8000);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Library::open(("unix-none://" + path).c_str(), false)->count<MaterialType>(), 13u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(LibraryNames, only_the_first_separator_counts) {
  ASSERT_EQ(::mkdir((folder / "a:").c_str(), 0700), 0);
  expect_file("unix://" + (folder / "a://walls.lib"), folder / "a:/walls.lib");
}

TEST_F(LibraryNames, without_a_separator_the_name_is_the_path) {
  ASSERT_EQ(::mkdir((folder / "unix:").c_str(), 0700), 0);
  expect_file(folder / "unix:/walls.lib", folder / "unix:/walls.lib");
  expect_file(folder / "unix:walls:.lib", folder / "unix:walls:.lib");
}

class LibraryRelativeNames : public LibraryNames {
 protected:
  void SetUp() override {
    char before[4096];
    ASSERT_NE(::getcwd(before, sizeof before), nullptr);
    before_ = before;
    ASSERT_EQ(::chdir(folder.path().c_str()), 0);
  }

  void TearDown() override { EXPECT_EQ(::chdir(before_.c_str()), 0); }

 private:
  std::string before_;
};

TEST_F(LibraryRelativeNames, lie_in_the_folder_of_the_process) {
  expect_file("walls.lib", folder / "walls.lib");
}

TEST_F(LibraryRelativeNames, are_no_addresses) {
  expect_file("file:walls.lib", folder / "file:walls.lib");
}

TEST_F(LibraryRelativeNames, may_follow_a_vfs) {
  expect_file("unix://walls.lib", folder / "walls.lib");
}

// Libraries in memory.

TEST(LibraryInMemory, lives_as_long_as_its_handle) {
  const auto library = create_library(":memory:");
  EXPECT_EQ(library->count<MaterialType>(), 13u);
  EXPECT_FALSE(library->readOnly());
  library->locale("de-CH");
  EXPECT_EQ(library->locale().utf8(), "de-CH");
}

TEST(LibraryInMemory, belongs_to_one_handle) {
  const auto first = create_library(":memory:");
  first->locale("de-CH");
  EXPECT_TRUE(create_library(":memory:")->locale().empty());
}

class LibrarySharedInMemory : public testing::Test {
 protected:
  static constexpr const char* name = "memdb:///walls";

  std::shared_ptr<Library> first_ = create_library(name);
};

TEST_F(LibrarySharedInMemory, is_shared_by_the_handles_of_the_process) {
  first_->locale("de-CH");
  EXPECT_EQ(Library::open(name, false)->locale().utf8(), "de-CH");
  EXPECT_EQ(create_library(name)->locale().utf8(), "de-CH");
  EXPECT_EQ(first_->filename().utf8(), name);
}

TEST_F(LibrarySharedInMemory, has_several_under_different_names) {
  first_->locale("de-CH");
  EXPECT_TRUE(create_library("memdb:///floors")->locale().empty());
}

TEST_F(LibrarySharedInMemory, can_be_opened_for_reading_only) {
  first_->locale("de-CH");
  const auto reader = Library::open(name, true);
  EXPECT_TRUE(reader->readOnly());
  EXPECT_EQ(reader->locale().utf8(), "de-CH");
  EXPECT_EQ(reader->count<MaterialType>(), 13u);
  EXPECT_EQ(thrown_by([&] { reader->locale("fr-CH"); }).type, "veldra::LibraryReadOnly");
  EXPECT_EQ(Library::open(name, false)->locale().utf8(), "de-CH");
}

TEST_F(LibrarySharedInMemory, can_be_opened_for_reading_only_by_the_first_handle) {
  const auto reader = Library::open("memdb:///alone", true);
  EXPECT_TRUE(reader->readOnly());
  EXPECT_EQ(reader->count<MaterialType>(), 13u);
}

TEST_F(LibrarySharedInMemory, goes_with_its_last_handle) {
  first_->locale("de-CH");
  first_.reset();
  EXPECT_TRUE(create_library(name)->locale().empty());
}

TEST_F(LibrarySharedInMemory, leaves_no_file) {
  EXPECT_FALSE(file_exists("/walls"));
  EXPECT_FALSE(file_exists("walls"));
}

}  // namespace
}  // namespace veldra_tests
