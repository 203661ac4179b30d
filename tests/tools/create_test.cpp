// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

#include <sys/stat.h>

namespace veldra_tests {
namespace {

class Create : public ProgramTest {};

TEST_F(Create, a_new_library_has_what_it_was_given) {
  const auto guid =
      must({"create", "a.lib", "--unit", "in", "--guid", "4B7009EF-0317-4504-A674-282D1B5BB08F",
            "--locale", "de_AT", "--region", "Österreich"});
  EXPECT_EQ(guid.out, "4b7009ef-0317-4504-a674-282d1b5bb08f\n");
  const auto info = must({"info", "a.lib", "--json"}).json();
  EXPECT_EQ(info["unit"], "in");
  EXPECT_EQ(info["locale"], "de_AT");
  EXPECT_EQ(info["region"], "Österreich");
  EXPECT_EQ(info["schema_version"], 150302);
  EXPECT_EQ(info["read_only"], false);
  EXPECT_EQ(info["counts"]["types"], 13);
  EXPECT_EQ(info["counts"]["materials"], 0);
}

TEST_F(Create, json_tells_what_info_tells_afterwards) {
  const auto created = must({"create", "a.lib", "--locale", "de_AT", "--json"}).json();
  EXPECT_EQ(created, must({"info", "a.lib", "--json"}).json());
}

TEST_F(Create, millimetres_are_the_default) {
  must({"create", "a.lib"});
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json()["unit"], "mm");
}

TEST_F(Create, an_existing_file_is_refused_and_left_alone) {
  write("a.lib", "not to be lost");
  const auto run = veldra({"create", "a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("'a.lib'"));
  EXPECT_EQ(read("a.lib"), "not to be lost");
}

TEST_F(Create, file_names_mean_files_and_nothing_else) {
  must({"create", "with 'quotes\" and ü.lib"});
  EXPECT_TRUE(exists("with 'quotes\" and ü.lib"));
  must({"create", ":memory:"});
  EXPECT_TRUE(exists(":memory:"));
  must({"create", "file:x?mode=memory"});
  EXPECT_TRUE(exists("file:x?mode=memory"));
}

TEST_F(Create, a_folder_that_is_missing_gives_a_sentence) {
  const auto run = veldra({"create", "nowhere/a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("'nowhere/a.lib': it cannot be made in its folder"));
}

TEST_F(Create, arguments_that_are_wrong_are_told_with_the_command_that_helps) {
  EXPECT_EQ(veldra({}).err, "veldra: a command is missing\n'veldra --help' tells more.\n");
  EXPECT_EQ(veldra({"craete", "a.lib"}).err,
            "veldra: there is no command 'craete'\n'veldra --help' tells more.\n");
  EXPECT_EQ(veldra({"create"}).err,
            "veldra: FILE is required\n'veldra create --help' tells more.\n");
  EXPECT_EQ(veldra({"export", "a.lib", "--format", "pdf"}).err,
            "veldra: --format: 'pdf' is none of json, hbjson, epjson, gbxml, xlsx, idf, ifc, "
            "csv\n'veldra export "
            "--help' tells more.\n");
}

class WrongArguments : public ProgramTest, public testing::WithParamInterface<int> {};

const std::vector<std::vector<std::string>>& wrong_arguments() {
  static const std::vector<std::vector<std::string>> list{
      {},
      {"nonsense"},
      {"create"},
      {"create", "b.lib", "--unit", "feet"},
      {"create", "b.lib", "c.lib"},
      {"info"},
      {"info", "a.lib", "--nonsense"},
      {"list", "a.lib"},
      {"list", "a.lib", "nonsense"},
      {"list", "a.lib", "tags", "--tag", "x"},
      {"list", "a.lib", "layers", "--type", "x"},
      {"show", "a.lib", "materials"},
      {"where-used", "a.lib"},
      {"import", "a.lib"},
      {"import", "a.lib", "x.idf", "--on-conflict", "nonsense"},
      {"export", "a.lib", "--format", "pdf"},
      {"export", "a.lib", "--format", "csv", "--json"},
      {"copy", "a.lib"},
      {"copy", "a.lib", "b.lib"},
      {"copy", "a.lib", "b.lib", "x"},
      {"copy", "a.lib", "b.lib", "nonsense:x"},
      {"copy", "a.lib", "b.lib", "tag:x", "--all"},
      {"remove", "a.lib", "materials"},
      {"purge", "a.lib"},
      {"purge", "a.lib", "--yes"},
      {"purge", "a.lib", "nonsense"},
      {"purge", "a.lib", "tags", "--backup", ""},
      {"restore", "a.lib"},
      {"check"},
      {"draw", "a.lib"},
      {"draw", "a.lib", "x", "--json"},
      {"draw", "a.lib", "x", "--json", "-o", "-"}};
  return list;
}

TEST_P(WrongArguments, end_with_status_2_and_change_nothing) {
  must({"create", "a.lib"});
  const std::string before = read("a.lib");
  const auto run = veldra(wrong_arguments()[static_cast<std::size_t>(GetParam())]);
  EXPECT_EQ(run.status, 2) << run.err;
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, testing::Not(IsEmpty()));
  EXPECT_EQ(read("a.lib"), before);
}

INSTANTIATE_TEST_SUITE_P(All, WrongArguments,
                         testing::Range(0, static_cast<int>(wrong_arguments().size())));

class Help : public ProgramTest, public testing::WithParamInterface<const char*> {};

TEST_P(Help, has_an_example) {
  const auto run = must({GetParam(), "--help"});
  EXPECT_THAT(run.out, ContainsRegex(std::string("Example:\n  veldra ") + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(OfEachCommand, Help,
                         testing::Values("create", "info", "list", "show", "where-used", "import",
                                         "export", "copy", "remove", "purge", "restore", "check",
                                         "draw"));

TEST_F(Create, help_tells_the_exit_statuses) {
  const auto text = must({"--help"}).out;
  for (const char* line : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  "}) {
    EXPECT_THAT(text, HasSubstr(line));
  }
}

class NoLibrary : public ProgramTest, public testing::WithParamInterface<std::string> {
 protected:
  /// A run on a file that is no library gives a sentence and leaves the file as it is.
  void expect_refusal(const std::string& file) {
    std::vector<std::string> arguments{GetParam(), file};
    if (GetParam() == "list" || GetParam() == "purge") arguments.push_back("materials");
    if (GetParam() == "show" || GetParam() == "where-used" || GetParam() == "remove") {
      arguments.insert(arguments.end(), {"materials", "x"});
    }
    if (GetParam() == "draw") arguments.push_back("x");
    if (GetParam() == "import") {
      write("empty.idf", "Version, 9.4;");
      arguments.push_back("empty.idf");
    }
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_THAT(run.err, HasSubstr(file));
  }
};

TEST_P(NoLibrary, a_text_is_refused) {
  write("text", "this is no library");
  expect_refusal("text");
  EXPECT_EQ(read("text"), "this is no library");
}

TEST_P(NoLibrary, an_empty_file_is_refused_and_not_made_a_library) {
  write("empty", "");
  expect_refusal("empty");
  EXPECT_EQ(read("empty"), "");
}

TEST_P(NoLibrary, a_foreign_database_is_refused_and_not_made_a_library) {
  PlainDatabase(path("foreign")).execute("CREATE TABLE bookmarks (url TEXT)");
  const std::string before = read("foreign");
  expect_refusal("foreign");
  EXPECT_EQ(read("foreign"), before);
}

TEST_P(NoLibrary, a_folder_is_refused) {
  ASSERT_EQ(::mkdir(path("folder").c_str(), 0700), 0);
  expect_refusal("folder");
}

INSTANTIATE_TEST_SUITE_P(WithEachCommand, NoLibrary,
                         testing::Values("info", "list", "show", "where-used", "import", "export",
                                         "remove", "purge", "check", "draw"));

class Missing : public NoLibrary {};

TEST_P(Missing, a_file_that_is_not_there_is_not_made) {
  expect_refusal("missing.lib");
  EXPECT_FALSE(exists("missing.lib"));
}

INSTANTIATE_TEST_SUITE_P(WithEachCommand, Missing,
                         testing::Values("info", "list", "show", "where-used", "export", "remove",
                                         "purge", "check", "draw"));

}  // namespace
}  // namespace veldra_tests
