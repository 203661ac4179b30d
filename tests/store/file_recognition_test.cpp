// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/file_state.hpp"
#include "support/library_fixture.hpp"
#include "support/processes.hpp"
#include "support/thrown.hpp"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veldra_tests {
namespace {

using Kind = Library::Recognition::Kind;

constexpr unsigned long long current = 150302;
constexpr const char* endless =
    "AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i AS id FROM n";

class FileRecognition : public LibraryFixture {
 protected:
  /// What the file is; it is as it was afterwards, and nobody holds it.
  Library::Recognition recognised() const {
    const FileState before(path);
    const auto result = Library::recognise(path.c_str());
    EXPECT_TRUE(before == FileState(path));
    EXPECT_THAT(open_files(folder.path()), IsEmpty());
    EXPECT_FALSE(file_exists(path + "-journal"));
    EXPECT_FALSE(file_exists(path + "-wal"));
    return result;
  }
  Kind kind() const { return recognised().kind; }

  /// A database that SQLite alone has made.
  void make_database(const std::string& statements) const {
    PlainDatabase(path).execute(statements);
  }

  /// A library that somebody else has changed.
  void make_changed_library(const std::string& statements) const {
    create_and_close();
    make_database("PRAGMA foreign_keys = OFF;" + statements);
  }

  Thrown opening(bool read_only = false) const {
    return thrown_by([&] { Library::openExisting(path.c_str(), read_only); });
  }

  /// What is no library is not opened and stays as it is.
  void expect_not_opened() const {
    for (const bool read_only : {false, true}) {
      const FileState before(path);
      EXPECT_EQ(opening(read_only), "veldra::NotALibrary");
      EXPECT_TRUE(before == FileState(path));
    }
    EXPECT_THAT(open_files(folder.path()), IsEmpty());
  }
};

// Libraries.

TEST_F(FileRecognition, a_library_is_one_of_the_current_version) {
  create_and_close();
  EXPECT_EQ(kind(), Kind::Library);
  EXPECT_EQ(recognised().version, current);
  EXPECT_EQ(Library::openExisting(path.c_str(), false)->version(), current);
  EXPECT_TRUE(Library::openExisting(path.c_str(), true)->readOnly());
}

TEST_F(FileRecognition, an_open_library_is_one) {
  const auto library = create();
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Library);
  EXPECT_TRUE(library->save(veldra::Tag::create("facade")));
}

TEST_F(FileRecognition, a_library_in_UTF_16_is_one) {
  make_database("PRAGMA encoding = 'UTF-16'; CREATE TABLE t (a); DROP TABLE t");
  create_and_close();
  constexpr std::size_t encoding = 59;  // its place in the first page
  ASSERT_EQ(read_file(path)[encoding], 2) << "not UTF-16";
  EXPECT_EQ(kind(), Kind::Library);
  EXPECT_TRUE(Library::openExisting(path.c_str(), false));
}

TEST_F(FileRecognition, an_older_library_is_told_apart_and_brought_to_the_current_version) {
  for (const int version : {150201, 150301}) {
    ::unlink(path.c_str());
    make_old_file(path, version);
    EXPECT_EQ(kind(), Kind::OlderLibrary);
    EXPECT_EQ(recognised().version, static_cast<unsigned>(version));
    Library::openExisting(path.c_str(), true);
    EXPECT_EQ(kind(), Kind::Library);
  }
}

TEST_F(FileRecognition, a_library_of_a_version_to_come_is_told_apart) {
  make_changed_library("UPDATE schema_version SET version = 150303");
  EXPECT_EQ(kind(), Kind::NewerLibrary);
  EXPECT_EQ(recognised().version, current + 1);
  EXPECT_EQ(opening(), "odb::unknown_schema_version");
}

TEST_F(FileRecognition, a_version_that_means_nothing_is_told_apart) {
  create_and_close();
  for (const char* version : {"'many'", "x'31'", "1.5", "-1", "0", "150200"}) {
    SCOPED_TRACE(version);
    make_database(
        "DROP TABLE schema_version; CREATE TABLE schema_version (name, version);"
        "INSERT INTO schema_version VALUES ('', " +
        std::string(version) + ")");
    EXPECT_EQ(kind(), Kind::UnknownVersion);
    EXPECT_EQ(opening(), "odb::unknown_schema_version");
  }
  make_database("INSERT INTO schema_version VALUES ('', 150302)");
  EXPECT_EQ(kind(), Kind::UnknownVersion);
}

// What is none.

TEST_F(FileRecognition, a_file_that_is_not_there_is_missing_and_not_made) {
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Missing);
  EXPECT_EQ(Library::recognise((path + "/below").c_str()).kind, Kind::Missing);
  EXPECT_EQ(Library::recognise(("unix://" + path).c_str()).kind, Kind::Missing);
  EXPECT_EQ(opening().code, 14);
  EXPECT_FALSE(file_exists(path));
}

TEST_F(FileRecognition, an_empty_file_is_empty_and_not_filled) {
  write_file(path, "");
  EXPECT_EQ(kind(), Kind::Empty);
  expect_not_opened();
}

TEST_F(FileRecognition, a_database_without_tables_is_empty_and_not_filled) {
  make_database("CREATE TABLE t (a); DROP TABLE t");
  EXPECT_EQ(kind(), Kind::Empty);
  expect_not_opened();
}

TEST_F(FileRecognition, a_library_that_has_lost_its_version_says_none) {
  make_changed_library("DELETE FROM schema_version");
  EXPECT_EQ(kind(), Kind::WithoutVersion);
  expect_not_opened();
  make_database("DROP TABLE schema_version");
  EXPECT_EQ(kind(), Kind::WithoutVersion);
  expect_not_opened();
}

TEST_F(FileRecognition, a_database_of_another_program_is_told_apart) {
  make_database("CREATE TABLE notes (text); INSERT INTO notes VALUES ('my schema_version is 7')");
  EXPECT_EQ(kind(), Kind::OtherDatabase);
  expect_not_opened();
}

TEST_F(FileRecognition, versions_of_another_program_make_no_library) {
  for (const char* columns : {"version", "name, version", "name, number"}) {
    SCOPED_TRACE(columns);
    ::unlink(path.c_str());
    make_database("CREATE TABLE schema_version (" + std::string(columns) +
                  ");"
                  "CREATE TABLE Material (price); INSERT INTO Material VALUES (12)");
    EXPECT_EQ(kind(), Kind::OtherDatabase);
    expect_not_opened();
  }
  make_database(
      "DROP TABLE schema_version; CREATE TABLE schema_version (name, version);"
      "INSERT INTO schema_version VALUES ('', 150301)");
  EXPECT_EQ(kind(), Kind::OtherDatabase);
  expect_not_opened();
}

TEST_F(FileRecognition, a_view_in_place_of_the_version_is_not_read) {
  make_changed_library("DROP TABLE schema_version; CREATE VIEW schema_version " +
                       std::string(endless));
  EXPECT_EQ(kind(), Kind::WithoutVersion);
  expect_not_opened();
}

TEST_F(FileRecognition, a_library_that_has_lost_its_identity_is_told_apart) {
  for (const std::string& loss :
       {std::string("DELETE FROM Meta"), std::string("UPDATE Meta SET id = 1"),
        std::string("DROP TABLE Meta"), std::string("ALTER TABLE Meta DROP COLUMN guid"),
        std::string("DROP TABLE Meta; CREATE VIEW Meta ") + endless}) {
    SCOPED_TRACE(loss);
    ::unlink(path.c_str());
    make_changed_library(loss);
    EXPECT_EQ(kind(), Kind::WithoutIdentity);
    expect_not_opened();
  }
}

TEST_F(FileRecognition, a_library_that_lacks_another_table_is_one) {
  for (const char* table : {"Material", "Composition", "Tag", "Composition_layers"}) {
    SCOPED_TRACE(table);
    ::unlink(path.c_str());
    make_changed_library("DROP TABLE " + std::string(table));
    EXPECT_EQ(kind(), Kind::Library);
    EXPECT_EQ(opening(), "");
  }
}

TEST_F(FileRecognition, a_view_in_place_of_another_table_is_left_to_the_check) {
  for (const char* table : {"Material", "Composition", "Tag"}) {
    SCOPED_TRACE(table);
    ::unlink(path.c_str());
    make_changed_library("DROP TABLE " + std::string(table) + "; CREATE VIEW " + table + " " +
                         endless);
    EXPECT_EQ(kind(), Kind::Library);
    std::vector<veldra::String> findings;
    Library::openExisting(path.c_str(), true)->check(findings);
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings[0].utf8(), "The file has the view \"" + std::string(table) +
                                      "\" where the table \"" + table + "\" belongs");
  }
}

TEST_F(FileRecognition, what_is_no_database_is_told_apart) {
  write_file(path, "walls, floors and roofs");
  EXPECT_EQ(kind(), Kind::Other);
  EXPECT_EQ(opening().code, 26);
  write_file(path, "x");  // which SQLite takes for an empty file
  EXPECT_EQ(kind(), Kind::Other);
  expect_not_opened();
}

TEST_F(FileRecognition, folders_pipes_and_devices_are_no_databases) {
  EXPECT_EQ(Library::recognise(folder.path().c_str()).kind, Kind::Other);
  EXPECT_EQ(Library::recognise("/dev/null").kind, Kind::Other);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Other);
}

TEST_F(FileRecognition, damage_is_told_apart) {
  create_and_close();
  const std::string bytes = read_file(path);
  write_file(path, bytes.substr(0, bytes.size() - 100));
  EXPECT_EQ(kind(), Kind::Damaged);
  EXPECT_EQ(opening().code, 11);
  write_file(path, bytes.substr(0, 50) + std::string(bytes.size() - 50, '\xff'));
  EXPECT_EQ(kind(), Kind::Damaged);
  write_file(path, bytes.substr(0, 16) + std::string(4096, 'x'));
  EXPECT_EQ(kind(), Kind::Damaged);
}

TEST_F(FileRecognition, libraries_in_memory_are_known_by_their_names) {
  const auto library = Library::create("memdb:///recognised", veldra::Unit::Inches, "");
  EXPECT_EQ(Library::recognise("memdb:///recognised").kind, Kind::Library);
  EXPECT_EQ(Library::recognise(":memory:").kind, Kind::Empty);
  EXPECT_EQ(Library::openExisting("memdb:///recognised", false)->guid(), library->guid());
}

TEST_F(FileRecognition, the_exception_names_the_file) {
  write_file(path, "");
  try {
    Library::openExisting(path.c_str(), false);
    FAIL();
  } catch (const veldra::NotALibrary& error) {
    EXPECT_EQ(error.filename().utf8(), path);
    EXPECT_EQ(veldra::String(error.what()).utf8(), "The file is not a library");
  }
}

// Files that are held, and files that may not be read.

TEST_F(FileRecognition, a_file_that_is_held_is_waited_for) {
  create_and_close();
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 300);
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Library);
}

TEST_F(FileRecognition, a_file_that_stays_held_is_a_timeout) {
  create_and_close();
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 60000);
  EXPECT_EQ(thrown_by([&] { Library::recognise(path.c_str()); }), "odb::timeout");
}

TEST_F(FileRecognition, a_file_that_may_not_be_read_is_an_error) {
  create_and_close();
  ASSERT_EQ(::chmod(path.c_str(), 0), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  const std::string result = run_without_privileges([&] {
    Library::recognise(path.c_str());
    return std::string("recognised");
  });
  EXPECT_THAT(result, HasSubstr("odb::sqlite::database_exception"));
  EXPECT_THAT(result, HasSubstr(path));
}

/// Somebody else changes the file while it is being opened.
TEST_F(FileRecognition, what_loses_its_version_while_it_is_waited_for_is_not_filled) {
  create_and_close();
  {
    const LockingProcess other(path, "BEGIN EXCLUSIVE; DELETE FROM schema_version", 300);
    EXPECT_EQ(opening(), "veldra::NotALibrary");
  }
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM MaterialType"), "13");
}

TEST_F(FileRecognition, what_loses_its_version_before_it_is_migrated_is_not_filled) {
  make_old_file(path, 150201);
  make_database("INSERT INTO Tag (name) VALUES ('kept')");
  {
    const LockingProcess other(path, "BEGIN IMMEDIATE; DELETE FROM schema_version", 300);
    EXPECT_EQ(opening(), "veldra::NotALibrary");
  }
  EXPECT_EQ(PlainDatabase(path).value("SELECT name FROM Tag"), "'kept'");
}

// What a crash has left.

class Crash : public FileRecognition {
 protected:
  void SetUp() override { create_and_close(); }

  /// A process that dies within a transaction, when some of it is in the file already.
  void die_within(const std::string& settings) const {
    const auto results = run_at_once({[&] {
      PlainDatabase database(path);
      database.execute(settings +
                       "PRAGMA cache_size = 1; BEGIN;"
                       "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 5000)"
                       "INSERT INTO Tag (name) SELECT 'lost ' || i FROM n");
      ::kill(::getpid(), SIGKILL);
      return std::string();
    }});
    ASSERT_EQ(results.front(), "died");
  }

  /// A process that dies when it has committed into a log.
  void die_with_a_log() const {
    const auto results = run_at_once({[&] {
      PlainDatabase database(path);
      database.execute("PRAGMA journal_mode = WAL; INSERT INTO Tag (name) VALUES ('logged')");
      ::kill(::getpid(), SIGKILL);
      return std::string();
    }});
    ASSERT_EQ(results.front(), "died");
    ASSERT_TRUE(file_exists(path + "-wal"));
  }

  std::string recognised_in_a_folder_that_can_only_be_read() const {
    for (const char* file : {"", "-journal", "-wal", "-shm"}) {
      ::chmod((path + file).c_str(), 0444);
    }
    EXPECT_EQ(::chmod(folder.path().c_str(), 0555), 0);
    const auto result = run_without_privileges(
        [&] { return std::to_string(static_cast<int>(Library::recognise(path.c_str()).kind)); });
    EXPECT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    return result;
  }
};

const std::string needs_recovery = std::to_string(static_cast<int>(Kind::NeedsRecovery));

TEST_F(Crash, a_journal_that_is_left_is_played_back_and_the_library_recognised) {
  const std::string before = dump(path);
  die_within("");
  ASSERT_TRUE(file_exists(path + "-journal"));
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Library);
  EXPECT_FALSE(file_exists(path + "-journal"));
  EXPECT_EQ(dump(path), before);
}

TEST_F(Crash, an_empty_library_that_was_being_made_is_empty_again) {
  ::unlink(path.c_str());
  const auto results = run_at_once({[&] {
    PlainDatabase database(path);
    database.execute(
        "PRAGMA cache_size = 1; BEGIN; CREATE TABLE t (a);"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 9000)"
        "INSERT INTO t SELECT 'never seen ' || i FROM n");
    ::kill(::getpid(), SIGKILL);
    return std::string();
  }});
  ASSERT_EQ(results.front(), "died");
  ASSERT_NE(read_file(path), "");
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Empty);
}

TEST_F(Crash, a_journal_that_cannot_be_played_back_needs_recovery) {
  die_within("");
  EXPECT_EQ(recognised_in_a_folder_that_can_only_be_read(), needs_recovery);
  EXPECT_TRUE(file_exists(path + "-journal"));
}

TEST_F(Crash, a_log_that_is_left_is_read) {
  die_with_a_log();
  EXPECT_EQ(Library::recognise(path.c_str()).kind, Kind::Library);
  EXPECT_TRUE(Library::openExisting(path.c_str(), true)->get<veldra::Tag>("logged"));
}

TEST_F(Crash, a_version_that_is_in_the_log_only_counts) {
  PlainDatabase(path).execute("PRAGMA journal_mode = WAL");
  const auto results = run_at_once({[&] {
    PlainDatabase(path).execute("UPDATE schema_version SET version = 150303");
    PlainDatabase database(path);
    database.execute("UPDATE schema_version SET version = 150304");
    ::kill(::getpid(), SIGKILL);
    return std::string();
  }});
  ASSERT_EQ(results.front(), "died");
  EXPECT_EQ(Library::recognise(path.c_str()).version, 150304U);
}

TEST_F(Crash, a_log_that_cannot_be_read_needs_recovery) {
  die_with_a_log();
  ::unlink((path + "-shm").c_str());
  EXPECT_EQ(recognised_in_a_folder_that_can_only_be_read(), needs_recovery);
}

// Names.

TEST(EmptyFileName, is_refused_before_anything_is_made) {
  for (const char* name : {"", "://", "unix://", "memdb://"}) {
    SCOPED_TRACE(name);
    for (const Thrown& thrown :
         {thrown_by([&] { Library::create(name, veldra::Unit::Inches, ""); }),
          thrown_by([&] { Library::open(name, false); }),
          thrown_by([&] { Library::open(name, true); }),
          thrown_by([&] { Library::openExisting(name, false); }),
          thrown_by([&] { Library::recognise(name); })}) {
      EXPECT_EQ(thrown, "odb::sqlite::database_exception");
      EXPECT_EQ(thrown.code, 14);
      EXPECT_EQ(thrown.text, std::string(name) + ": the name of the file is empty");
    }
  }
}

TEST(EmptyFileName, is_passed_on_by_a_manager_that_registers_nothing) {
  veldra::LibraryManager manager;
  for (int times = 0; times != 2; ++times) {
    EXPECT_EQ(thrown_by([&] { manager.create("", veldra::Unit::Inches, ""); }).code, 14);
    EXPECT_EQ(thrown_by([&] { manager.open("", false); }).code, 14);
  }
}

TEST(EmptyFileName, is_not_that_of_a_library_in_memory) {
  EXPECT_TRUE(Library::create(":memory:", veldra::Unit::Inches, ""));
}

}  // namespace
}  // namespace veldra_tests
