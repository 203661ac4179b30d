// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/processes.hpp"

#include <sys/stat.h>
#include <unistd.h>

namespace veldra_tests {
namespace {

/// Which file a name means.
class FileName : public ProgramTest {
 protected:
  void make(const std::string& folder) const { ASSERT_EQ(::mkdir(path(folder).c_str(), 0755), 0); }
};

TEST_F(FileName, with_dots_behind_a_link_means_what_it_means_to_all_others) {
  make("far");
  make("far/deep");
  ASSERT_EQ(::symlink("far/deep", path("link").c_str()), 0);
  library("x.lib")->save(veldra::Tag::create("near"));
  library("far/x.lib")->save(veldra::Tag::create("far"));
  EXPECT_EQ(must({"list", "link/../x.lib", "tags", "--json"}).json()[0]["name"], "far");
  must({"purge", "link/../x.lib", "tags"});
  EXPECT_EQ(count("x.lib", "tags"), 1U);
  EXPECT_EQ(count("far/x.lib", "tags"), 0U);
  must({"create", "link/../y.lib"});
  EXPECT_TRUE(exists("far/y.lib"));
  must({"export", "x.lib", "-o", "link/../out"});
  EXPECT_TRUE(exists("far/out"));
}

TEST_F(FileName, is_never_a_name_of_sqlite) {
  make("http:");
  for (const char* file :
       {"http://a.lib", ":memory:", "file:b.lib?mode=memory", "http:////c.lib"}) {
    must({"create", file});
    must({"check", file});
    must({"export", file, "-o", std::string(file) + ".json"});
  }
  EXPECT_TRUE(exists("http:/a.lib"));
  EXPECT_TRUE(exists(":memory:"));
  EXPECT_TRUE(exists("file:b.lib?mode=memory"));
  EXPECT_TRUE(exists("http:/c.lib"));
}

TEST_F(FileName, must_be_a_text_that_is_not_empty) {
  must({"create", "a.lib"});
  const std::string no_text = "\xFF.lib";
  for (const auto& [name, sentence] :
       {std::pair<std::string, const char*>("", "the name of the file is empty"),
        std::pair<std::string, const char*>(no_text, "the name of a library must be UTF-8")}) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"create", name}, std::vector<std::string>{"info", name},
          std::vector<std::string>{"import", name, "a.lib"},
          std::vector<std::string>{"copy", "a.lib", name, "--all"}}) {
      const auto run = veldra(arguments);
      EXPECT_EQ(run.status, 1) << arguments.front();
      if (arguments.front() == "import") continue;  // looks at its sources first
      EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr(sentence))) << arguments.front();
    }
  }
  EXPECT_EQ(names(), std::vector<std::string>{"a.lib"});
}

TEST_F(FileName, that_is_too_long_is_refused_before_anything_is_made) {
  std::string folder = path("");
  while (folder.size() < 400) {
    folder += std::string(90, 'x');
    ASSERT_EQ(::mkdir(folder.c_str(), 0755), 0);
    folder += '/';
  }
  const std::string fits = folder + std::string(504 - folder.size(), 'a');
  must({"create", fits});
  must({"info", fits});
  for (const char* command : {"create", "info"}) {
    const auto run = veldra({command, fits + "b"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("too long for a library")));
  }
  EXPECT_FALSE(file_exists(fits + "b"));
}

TEST_F(FileName, in_a_folder_that_is_gone_gives_a_sentence) {
  const auto run = shell("mkdir gone; cd gone; rmdir ../gone; veldra create a.lib");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("current folder")));
}

/// Files that are no libraries, or no sound ones, with every command that takes one that is there.
class NotOpened : public ProgramTest, public testing::WithParamInterface<std::string> {
 protected:
  std::vector<std::string> arguments(const std::string& file) {
    write("empty.idf", "Version, 9.4;");
    const std::string& name = GetParam();
    if (name == "list") return {name, file, "tags"};
    if (name == "show" || name == "where-used" || name == "remove")
      return {name, file, "tags", "x"};
    if (name == "purge") return {name, file, "tags"};
    if (name == "draw") return {name, file, "x"};
    if (name == "import") return {name, file, "empty.idf"};
    if (name == "copy") return {name, file, "destination.lib", "--all"};
    return {name, file};
  }

  void SetUp() override { must({"create", "destination.lib"}); }

  void expect_refusal(const std::string& file, const std::string& sentence) {
    const auto before = read(file);
    const auto run = veldra(arguments(file));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("'" + file + "': " + sentence)));
    EXPECT_TRUE(read(file) == before);
  }

  /// A library with a tag, changed by plain SQL.
  void make(const std::string& file, const std::string& statements) {
    library(file)->save(veldra::Tag::create("kept"));
    PlainDatabase(path(file)).execute(statements);
  }
};

TEST_P(NotOpened, a_foreign_database_with_the_right_words_in_it_stays_what_it_is) {
  PlainDatabase(path("notes"))
      .execute(
          "CREATE TABLE Material (id INTEGER, note TEXT);"
          "INSERT INTO Material VALUES (1, 'see schema_version of veldra')");
  expect_refusal("notes", "this is a database of another program");
}

TEST_P(NotOpened, a_foreign_database_with_versions_of_its_own_stays_what_it_is) {
  PlainDatabase(path("app"))
      .execute(
          "CREATE TABLE schema_version (version INTEGER, installed TEXT);"
          "INSERT INTO schema_version VALUES (7, 'yesterday');"
          "CREATE TABLE Composition (id INTEGER); INSERT INTO Composition VALUES (1)");
  expect_refusal("app", "this is a database of another program");
}

TEST_P(NotOpened, a_library_of_a_version_to_come_says_so) {
  make("new", "UPDATE schema_version SET version = 999999");
  expect_refusal("new", "the library was made by a newer version");
}

TEST_P(NotOpened, a_library_of_a_strange_version_says_so) {
  if (GetParam() == "check") return;  // which tells of it, see below
  make("odd", "UPDATE schema_version SET version = 'soon'");
  expect_refusal("odd", "the library was made by a version that is not known here");
}

TEST_P(NotOpened, a_library_that_is_cut_off_is_damaged_and_nothing_else) {
  library("cut");
  ASSERT_EQ(::truncate(path("cut").c_str(), 5000), 0);
  expect_refusal("cut", "the library is damaged");
}

TEST_P(NotOpened, a_library_whose_first_page_is_corrupt_is_damaged_and_nothing_else) {
  library("corrupt");
  auto bytes = read("corrupt");
  bytes.replace(100, 8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
  write("corrupt", bytes);
  expect_refusal("corrupt", "the library is damaged");
}

TEST_P(NotOpened, what_is_no_file_is_not_waited_for) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  for (const char* file : {"pipe", "/dev/null"}) {
    const auto run = veldra(arguments(file));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("this is not a file")));
  }
}

TEST_P(NotOpened, what_the_system_makes_up_when_it_is_read_is_not_empty) {
  for (const char* file : {"/proc/self/mem", "/proc/version"}) {
    const auto run = veldra(arguments(file));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "veldra: '" + std::string(file) + "': this is not a veldra library\n");
  }
}

TEST_P(NotOpened, an_empty_file_says_that_it_is_empty) {
  write("nothing", "");
  expect_refusal("nothing", "the file is empty");
}

TEST_P(NotOpened, a_file_that_may_not_be_read_says_so) {
  library("secret");
  ASSERT_EQ(::chmod(path("secret").c_str(), 0200), 0);
  if (!lose_privileges()) GTEST_SKIP() << "the superuser may read every file";
  const auto run = veldra(arguments("secret"));
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("it cannot be read")));
}

INSTANTIATE_TEST_SUITE_P(ByEachCommand, NotOpened,
                         testing::Values("info", "list", "show", "where-used", "import", "export",
                                         "copy", "remove", "purge", "check", "draw"));

TEST_P(NotOpened, a_library_beside_one_that_has_the_name_of_its_journal_is_not_lost) {
  for (const std::string suffix : {"-journal", "-wal"}) {
    make("kept.lib", "SELECT 1");
    write("kept.lib" + suffix, read("destination.lib"));
    expect_refusal("kept.lib", "beside it lies 'kept.lib" + suffix + "'");
    EXPECT_TRUE(read("kept.lib" + suffix) == read("destination.lib"));
    ::unlink(path("kept.lib" + suffix).c_str());
    ::unlink(path("kept.lib").c_str());
  }
}

/// A library that does not say its version any more is told by `check`, and stays as it is.
class WithoutVersion : public NotOpened {
 protected:
  void SetUp() override {
    NotOpened::SetUp();
    make("lost", "DELETE FROM schema_version");
  }
};

TEST_P(WithoutVersion, stays_as_it_is) {
  expect_refusal("lost", "the library does not say its version any more");
}

INSTANTIATE_TEST_SUITE_P(ByEachCommand, WithoutVersion,
                         testing::Values("info", "list", "show", "where-used", "import", "export",
                                         "copy", "remove", "purge", "draw"));

TEST_P(WithoutVersion, is_a_finding) {
  const auto before = read("lost");
  const auto run = veldra({"check", "lost"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("file: It does not say its version any more"));
  EXPECT_EQ(veldra({"check", "lost", "--json"}).json()[0]["object"], "file");
  EXPECT_TRUE(read("lost") == before);
}

/// What a library has lost that opening needs, or what stands in its place.
class Crippled : public ProgramTest {
 protected:
  /// `check` tells of it, all else is refused, and the file stays as it is.
  void expect_finding(const std::string& change, const std::string& sentence) {
    SCOPED_TRACE(change);
    ::unlink(path("a.lib").c_str());
    must({"create", "a.lib"});
    PlainDatabase(path("a.lib")).execute("PRAGMA foreign_keys = OFF;" + change);
    const std::string before = read("a.lib");
    const auto run = veldra({"check", "a.lib"});
    EXPECT_EQ(run.status, 3) << run.err;
    EXPECT_THAT(run.out, HasSubstr("file: " + sentence));
    EXPECT_TRUE(read("a.lib") == before);
  }
};

TEST_F(Crippled, versions_are_told_by_the_check) {
  expect_finding("UPDATE schema_version SET version = 'many'", "What it says of its version");
  expect_finding("DROP TABLE schema_version; CREATE VIEW schema_version AS SELECT 1",
                 "It does not say its version any more");
}

TEST_F(Crippled, identities_are_told_by_the_check) {
  const std::string sentence = "It does not say any more what library it is";
  expect_finding("DELETE FROM Meta", sentence);
  expect_finding("DROP TABLE Meta", sentence);
  expect_finding("DROP TABLE Meta; CREATE VIEW Meta AS SELECT 0 AS id", sentence);
  EXPECT_THAT(veldra({"info", "a.lib"}).err,
              HasSubstr("the library does not say what library it is"));
}

TEST_F(Crippled, tables_are_told_by_the_check) {
  for (const std::string table : {"Material", "Composition", "Tag"}) {
    expect_finding("DROP TABLE " + table, "The file lacks the table \"" + table + "\"");
  }
}

class Opening : public ProgramTest {};

TEST_F(Opening, takes_a_library_in_another_encoding) {
  PlainDatabase(path("utf16")).execute("PRAGMA encoding = 'UTF-16le';" + current_file_statements());
  EXPECT_EQ(must({"info", "utf16", "--json"}).json()["locale"], "de-DE");
  must({"check", "utf16"});
}

/// A library as a program leaves it that is killed while it commits.
class Unfinished : public ProgramTest {
 protected:
  void SetUp() override {
    library("other.lib")->save(veldra::Tag::create("kept"));
    ASSERT_EQ(::mkdir(path("shelf").c_str(), 0755), 0);
    PlainDatabase writer(path("other.lib"));
    writer.execute(
        "PRAGMA cache_size = 1; BEGIN; DELETE FROM Tag; CREATE TABLE filler (x);"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100)"
        "INSERT INTO filler SELECT zeroblob(4000) FROM n");
    write("shelf/a.lib", read("other.lib"));
    write("shelf/a.lib-journal", read("other.lib-journal"));
  }
};

TEST_F(Unfinished, work_is_taken_back_before_anything_is_read) {
  EXPECT_EQ(count("shelf/a.lib", "tags"), 1U);
  EXPECT_FALSE(exists("shelf/a.lib-journal"));
  must({"check", "shelf/a.lib"});
}

TEST_F(Unfinished, work_in_a_folder_that_can_only_be_read_gives_a_sentence) {
  ASSERT_EQ(::chmod(path("shelf/a.lib").c_str(), 0444), 0);
  ASSERT_EQ(::chmod(path("shelf").c_str(), 0555), 0);
  if (!lose_privileges()) GTEST_SKIP() << "the superuser may write every file";
  const auto run = veldra({"info", "shelf/a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("a program did not finish its work")));
  ASSERT_EQ(::chmod(path("shelf").c_str(), 0755), 0);
}

/// A library that somebody has given a write-ahead log, in a folder that can only be read.
class WithLog : public ProgramTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(::mkdir(path("shelf").c_str(), 0755), 0);
    library("other.lib");
    PlainDatabase writer(path("other.lib"));
    writer.execute("PRAGMA journal_mode = WAL; INSERT INTO Tag (name) VALUES ('logged')");
    write("shelf/a.lib", read("other.lib"));
    log_ = read("other.lib-wal");
  }

  void TearDown() override { ::chmod(path("shelf").c_str(), 0755); }

  void expect_sentence() {
    ASSERT_EQ(::chmod(path("shelf/a.lib").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(path("shelf").c_str(), 0555), 0);
    if (!lose_privileges()) GTEST_SKIP() << "the superuser may write every file";
    for (const char* command : {"info", "check", "export"}) {
      const auto run = veldra({command, "shelf/a.lib"});
      EXPECT_EQ(run.status, 1);
      EXPECT_EQ(run.err,
                "veldra: 'shelf/a.lib': it has a write-ahead log, which can only be used "
                "where its folder may be written\n");
    }
  }

  std::string log_;
};

TEST_F(WithLog, that_is_not_there_it_says_that_this_needs_a_folder) { expect_sentence(); }

TEST_F(WithLog, that_is_not_in_use_it_says_that_this_needs_a_folder) {
  write("shelf/a.lib-wal", log_);
  expect_sentence();
}

TEST_F(Opening, tells_read_only_libraries_from_others) {
  library("a.lib");
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json()["read_only"], false);
  ASSERT_EQ(::chmod(path("a.lib").c_str(), 0444), 0);
  if (!lose_privileges()) GTEST_SKIP() << "the superuser may write every file";
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json()["read_only"], true);
}

TEST_F(Opening, of_a_library_that_others_hold_is_given_up_with_their_mention) {
  library("a.lib");
  const LockingProcess other(path("a.lib"), "BEGIN EXCLUSIVE", 20000);
  const auto run = veldra({"list", "a.lib", "tags"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("another program holds the library")));
}

}  // namespace
}  // namespace veldra_tests
