// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/processes.hpp"

#include <unistd.h>

namespace veldra_tests {
namespace {

/// A library that has changed since its backup, and another one.
class Restore : public ProgramTest {
 protected:
  void SetUp() override {
    library("a.lib")->save(veldra::Tag::create("old"));
    library("a.lib")->backup(path("b.lib").c_str());
    library("a.lib")->save(veldra::Tag::create("new"));
    must({"create", "other.lib", "--unit", "in", "--locale", "de_AT"});
    before_ = dump(path("a.lib"));
  }

  void expect_refusal(const std::vector<std::string>& arguments, const std::string& sentence) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr(sentence)));
    EXPECT_EQ(dump(path("a.lib")), before_);
  }

  std::string before_;
};

TEST_F(Restore, gives_the_library_what_the_backup_has_and_tells_how_much) {
  const auto run = must({"restore", "a.lib", "b.lib"});
  EXPECT_EQ(run.out, "'a.lib' has the contents of 'b.lib' now: 14 objects (13 types, 1 tag)\n");
  EXPECT_EQ(dump(path("a.lib")), dump(path("b.lib")));
}

TEST_F(Restore, json_tells_what_info_tells_afterwards) {
  const auto restored = must({"restore", "a.lib", "b.lib", "--json"}).json();
  EXPECT_EQ(restored, must({"info", "a.lib", "--json"}).json());
}

TEST_F(Restore, tried_tells_what_it_would_do_and_does_nothing) {
  const auto bytes = read("a.lib");
  EXPECT_EQ(must({"restore", "a.lib", "b.lib", "--dry-run"}).out,
            "'a.lib' would have the contents of 'b.lib': 14 objects (13 types, 1 tag)\n"
            "Nothing was written, because this was a dry run.\n");
  const auto facts = must({"restore", "a.lib", "b.lib", "--dry-run", "--json"}).json();
  EXPECT_EQ(facts["counts"]["tags"], 1);
  EXPECT_EQ(must({"restore", "a.lib", "other.lib", "--force", "--dry-run", "--json"}).json(),
            must({"info", "other.lib", "--json"}).json());
  EXPECT_TRUE(read("a.lib") == bytes);
}

TEST_F(Restore, tried_refuses_what_would_be_refused) {
  expect_refusal({"restore", "a.lib", "other.lib", "--dry-run"},
                 "'other.lib': this is a backup of another library than 'a.lib'");
  expect_refusal({"restore", "a.lib", "missing", "--dry-run"}, "'missing': there is no such file");
  ::unlink(path("b.lib").c_str());
  make_old_file(path("b.lib"), 150201);
  fill_old_file(path("b.lib"), 150201);
  expect_refusal({"restore", "a.lib", "b.lib", "--dry-run"}, "this is a backup of another library");
  EXPECT_THAT(must({"restore", "a.lib", "b.lib", "--dry-run", "--force"}).out, HasSubstr("2 tags"));
  std::string bytes = read("other.lib");
  bytes.replace(bytes.size() - 20000, 20000, std::string(20000, 'x'));
  write("other.lib", bytes);
  expect_refusal({"restore", "a.lib", "other.lib", "--force", "--dry-run"},
                 "'other.lib': the library is damaged");
}

TEST_F(Restore, from_another_library_needs_force) {
  expect_refusal({"restore", "a.lib", "other.lib"},
                 "'other.lib': this is a backup of another library than 'a.lib'; --force takes its "
                 "contents all the same");
  must({"restore", "a.lib", "other.lib", "--force"});
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json(), must({"info", "other.lib", "--json"}).json());
}

TEST_F(Restore, takes_nothing_from_what_is_no_library) {
  write("text", "no library");
  write("empty", "");
  PlainDatabase(path("foreign")).execute("CREATE TABLE bookmarks (url TEXT)");
  expect_refusal({"restore", "a.lib", "text"}, "'text': this is not a veldra library");
  expect_refusal({"restore", "a.lib", "empty", "--force"}, "'empty': the file is empty");
  expect_refusal({"restore", "a.lib", "foreign", "--force"},
                 "'foreign': this is a database of another program");
  expect_refusal({"restore", "a.lib", "missing"}, "'missing': there is no such file");
  expect_refusal({"restore", "a.lib", "."}, "'.': this is the name of a folder");
  EXPECT_FALSE(exists("missing"));
}

TEST_F(Restore, makes_no_library_and_takes_no_other_file_for_one) {
  expect_refusal({"restore", "missing.lib", "b.lib"}, "'missing.lib': there is no such file");
  EXPECT_FALSE(exists("missing.lib"));
  write("text", "no library");
  expect_refusal({"restore", "text", "b.lib", "--force"}, "'text': this is not a veldra library");
  EXPECT_EQ(read("text"), "no library");
}

TEST_F(Restore, from_itself_is_refused) {
  ASSERT_EQ(::symlink("a.lib", path("link").c_str()), 0);
  expect_refusal({"restore", "a.lib", "link"}, "the library and the backup are the same file");
}

TEST_F(Restore, names_the_backup_when_that_is_damaged) {
  std::string bytes = read("b.lib");
  bytes.replace(bytes.size() - 20000, 20000, std::string(20000, 'x'));
  write("b.lib", bytes);
  expect_refusal({"restore", "a.lib", "b.lib"}, "'b.lib': the library is damaged");
}

TEST_F(Restore, names_the_backup_when_it_lacks_a_table) {
  PlainDatabase(path("b.lib")).execute("PRAGMA foreign_keys = OFF; DROP TABLE Layer");
  expect_refusal({"restore", "a.lib", "b.lib"}, "'b.lib': the library is damaged");
}

TEST_F(Restore, brings_an_older_backup_up_to_date_and_leaves_the_file_as_it_is) {
  ::unlink(path("b.lib").c_str());
  make_old_file(path("b.lib"), 150201);
  fill_old_file(path("b.lib"), 150201);
  const std::string bytes = read("b.lib");
  expect_refusal({"restore", "a.lib", "b.lib"}, "'b.lib': this is a backup of another library");
  must({"restore", "a.lib", "b.lib", "--force"});
  EXPECT_TRUE(read("b.lib") == bytes);
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json()["schema_version"], 150302);
  EXPECT_EQ(count("a.lib", "tags"), 2U);
}

TEST_F(Restore, of_a_library_that_others_hold_is_given_up_with_their_mention) {
  const LockingProcess other(path("a.lib"), "BEGIN EXCLUSIVE", 20000);
  const auto run = veldra({"restore", "a.lib", "b.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err,
              AllOf(is_one_sentence(), HasSubstr("'a.lib': another program holds the library")));
}

}  // namespace
}  // namespace veldra_tests
