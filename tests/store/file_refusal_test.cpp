// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/file_state.hpp"
#include "support/library_fixture.hpp"
#include "support/processes.hpp"
#include "support/thrown.hpp"

#include <sys/stat.h>

namespace veldra_tests {
namespace {

const char* const database_exception = "odb::sqlite::database_exception";

// The three ways to open a file that exists.
enum class Way { Create, Open, OpenReadOnly };

class FileRefusal : public LibraryFixture {
 protected:
  void open_by(Way way) const {
    switch (way) {
      case Way::Create:
        create();
        return;
      case Way::Open:
        open();
        return;
      case Way::OpenReadOnly:
        open_read_only();
        return;
    }
  }

  // Every way must be refused with that exception and leave no trace.
  void expect_refusal(const std::string& exception, const std::string& text) const {
    for (const Way way : {Way::Create, Way::Open, Way::OpenReadOnly}) {
      SCOPED_TRACE(static_cast<int>(way));
      const FileState before(path);
      const Thrown thrown = thrown_by([&] { open_by(way); });
      EXPECT_EQ(thrown.type, exception);
      EXPECT_THAT(thrown.text, HasSubstr(text));
      EXPECT_TRUE(before == FileState(path));
      expect_nothing_is_left();
    }
  }

  void expect_nothing_is_left() const {
    EXPECT_THAT(open_files(folder.path()), IsEmpty());
    EXPECT_FALSE(file_exists(path + "-journal"));
    EXPECT_FALSE(file_exists(path + "-wal"));
  }

  void expect_no_lock() const { PlainDatabase(path).execute("BEGIN EXCLUSIVE; COMMIT"); }
};

// Versions.

class FileVersionRefusal : public FileRefusal {
 protected:
  void SetUp() override {
    create_and_close();
    PlainDatabase(path).execute("INSERT INTO Tag (name) VALUES ('kept')");
  }

  void set_version(const std::string& value) const {
    PlainDatabase(path).execute("UPDATE schema_version SET version = " + value);
  }

  // A version table without types and keys, as no library makes it, with these rows.
  void replace_version_table(const std::string& rows) const {
    PlainDatabase(path).execute(
        "DROP TABLE schema_version; CREATE TABLE schema_version (name, version, migration);"
        "INSERT INTO schema_version VALUES " +
        rows);
  }

  void expect_unknown_version() const {
    expect_refusal("odb::unknown_schema_version", path);
    expect_no_lock();
  }

  void expect_it_opens_once_mended() const {
    replace_version_table("('', 150302, 0)");
    EXPECT_EQ(open()->count<veldra::Tag>(), 1u);
  }
};

TEST_F(FileVersionRefusal, below_the_base_version) {
  for (const char* version : {"150200", "150000", "1"}) {
    SCOPED_TRACE(version);
    set_version(version);
    expect_unknown_version();
  }
  expect_it_opens_once_mended();
}

TEST_F(FileVersionRefusal, above_the_current_version) {
  for (const char* version : {"150303", "160000", "4294967296", "9223372036854775807"}) {
    SCOPED_TRACE(version);
    set_version(version);
    expect_unknown_version();
  }
  expect_it_opens_once_mended();
}

// The row is there, so the file does not count as empty.
TEST_F(FileVersionRefusal, a_version_of_zero) {
  set_version("0");
  expect_unknown_version();
  expect_it_opens_once_mended();
}

TEST_F(FileVersionRefusal, a_negative_version) {
  for (const char* version : {"-1", "-150302", "-9223372036854775808"}) {
    SCOPED_TRACE(version);
    set_version(version);
    expect_unknown_version();
  }
}

TEST_F(FileVersionRefusal, numbers_that_only_fit_when_they_are_cut_to_32_bits) {
  for (const char* version : {"4295117598", "150302 - 4294967296"}) {
    SCOPED_TRACE(version);
    set_version(version);
    expect_unknown_version();
  }
}

TEST_F(FileVersionRefusal, a_text) {
  for (const char* row : {"('', '150302', 0)", "('', 'current', 0)", "('', '', 0)"}) {
    SCOPED_TRACE(row);
    replace_version_table(row);
    expect_unknown_version();
  }
  expect_it_opens_once_mended();
}

TEST_F(FileVersionRefusal, null) {
  replace_version_table("('', NULL, 0)");
  expect_unknown_version();
  expect_it_opens_once_mended();
}

TEST_F(FileVersionRefusal, a_real_number) {
  for (const char* row : {"('', 150302.0, 0)", "('', 150301.5, 0)", "('', 1e300, 0)"}) {
    SCOPED_TRACE(row);
    replace_version_table(row);
    expect_unknown_version();
  }
  expect_it_opens_once_mended();
}

TEST_F(FileVersionRefusal, a_blob) {
  replace_version_table("('', x'313530333032', 0)");
  expect_unknown_version();
}

TEST_F(FileVersionRefusal, two_rows) {
  for (const char* rows : {"('', 150302, 0), ('', 150302, 0)", "('', 150302, 0), ('', 150201, 0)",
                           "('', 150201, 0), ('', 150302, 0)"}) {
    SCOPED_TRACE(rows);
    replace_version_table(rows);
    expect_unknown_version();
  }
  expect_it_opens_once_mended();
}

TEST_F(FileVersionRefusal, an_old_file_of_a_version_before_the_base) {
  const std::string old = folder / "old.lib";
  make_old_file(old, 150201);
  fill_old_file(old, 150201);
  PlainDatabase(old).execute("UPDATE schema_version SET version = 150200");
  const FileState before(old);
  EXPECT_EQ(thrown_by([&] { veldra::Library::open(old.c_str(), false); }),
            "odb::unknown_schema_version");
  EXPECT_TRUE(before == FileState(old));
}

// Files that are none.

TEST_F(FileRefusal, opening_a_missing_file) {
  for (const Way way : {Way::Open, Way::OpenReadOnly}) {
    const Thrown thrown = thrown_by([&] { open_by(way); });
    EXPECT_EQ(thrown, database_exception);
    EXPECT_EQ(thrown.code, 14);
    EXPECT_THAT(thrown.text, HasSubstr(path));
    EXPECT_FALSE(file_exists(path));
    expect_nothing_is_left();
  }
}

TEST_F(FileRefusal, a_missing_file_can_be_created_afterwards) {
  EXPECT_EQ(thrown_by([&] { open(); }), database_exception);
  EXPECT_NE(create(), nullptr);
}

TEST_F(FileRefusal, creating_in_a_missing_folder) {
  const Thrown thrown = thrown_by([&] { create("missing/walls.lib", Unit::Inches); });
  EXPECT_EQ(thrown, database_exception);
  EXPECT_EQ(thrown.code, 14);
  EXPECT_THAT(thrown.text, HasSubstr(folder / "missing/walls.lib"));
  EXPECT_FALSE(file_exists(folder / "missing"));
}

TEST_F(FileRefusal, a_folder) {
  ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
  for (const Way way : {Way::Create, Way::Open, Way::OpenReadOnly}) {
    const Thrown thrown = thrown_by([&] { open_by(way); });
    EXPECT_EQ(thrown, database_exception);
    EXPECT_EQ(thrown.code, 14);
    EXPECT_THAT(thrown.text, HasSubstr(path));
    expect_nothing_is_left();
  }
}

TEST_F(FileRefusal, a_file_that_is_no_database) {
  // Not a single byte: SQLite takes such a file for an empty one.
  const std::string texts[] = {"xy",
                               "walls and floors\n",
                               std::string(99, 'w'),
                               std::string(100, '\0'),
                               std::string(5000, 'w'),
                               std::string(16384, '\0')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.size());
    write_file(path, text);
    expect_refusal(database_exception, path);
    EXPECT_EQ(thrown_by([&] { open(); }).code, 26);
  }
}

TEST_F(FileRefusal, a_vfs_that_is_not_there) {
  const std::string name = "nowhere://" + path;
  const Thrown thrown =
      thrown_by([&] { veldra::Library::create(name.c_str(), veldra::Unit::Inches, ""); });
  EXPECT_EQ(thrown, database_exception);
  EXPECT_THAT(thrown.text, HasSubstr(path));
  EXPECT_FALSE(file_exists(path));
}

TEST_F(FileRefusal, a_truncated_file) {
  create_and_close();
  const std::string whole = read_file(path);
  for (const std::size_t size :
       {std::size_t{2}, std::size_t{16}, std::size_t{99}, std::size_t{100}, std::size_t{511},
        std::size_t{512}, std::size_t{1024}, std::size_t{4095}, std::size_t{4096},
        std::size_t{4097}, whole.size() / 2, whole.size() - 8192, whole.size() - 4096,
        whole.size() - 2000, whole.size() - 1}) {
    SCOPED_TRACE(size);
    write_file(path, whole.substr(0, size));
    expect_refusal(database_exception, path);
    EXPECT_THAT(thrown_by([&] { open(); }).code, AnyOf(11, 26));
  }
  write_file(path, whole);
  EXPECT_EQ(open()->count<veldra::MaterialType>(), 13u);
}

TEST_F(FileRefusal, a_library_without_metadata) {
  create_and_close();
  PlainDatabase(path).execute("DELETE FROM Meta");
  expect_refusal("odb::object_not_persistent", "object not persistent");
  expect_no_lock();
}

TEST_F(FileRefusal, metadata_under_another_id) {
  create_and_close();
  PlainDatabase(path).execute("UPDATE Meta SET id = 1");
  expect_refusal("odb::object_not_persistent", "object not persistent");
}

// Files that would have to be written first.

class FileProtected : public FileRefusal {
 protected:
  void expect_read_only_error() const {
    protect_the_file();
    const FileState before(path);
    const std::string result = run_without_privileges([&] {
      const Thrown thrown = thrown_by([&] { open(); });
      return thrown.type + " " + std::to_string(thrown.code);
    });
    EXPECT_EQ(result, "odb::sqlite::database_exception 8");
    EXPECT_TRUE(before == FileState(path));
    expect_nothing_is_left();
  }
};

TEST_F(FileProtected, an_empty_file) {
  write_file(path, "");
  expect_read_only_error();
}

TEST_F(FileProtected, a_file_of_an_older_version) {
  make_old_file(path, 150301);
  expect_read_only_error();
}

}  // namespace
}  // namespace veldra_tests
