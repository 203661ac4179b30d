// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"
#include "tools/terminal.hpp"

#include "locale.hpp"

#include <sys/stat.h>

#include <cstdlib>

namespace veldra_tests {
namespace {

/// Mistakes that are easily made, each of which is told in the same words by every command.
class SmallTraps : public ProgramTest {
 protected:
  void SetUp() override {
    library("a.lib")->save(veldra::Composition::create("Wall"));
    write("walls.idf", "Material:AirGap, Air, 0.1;");
  }

  /// Wrong use, told by the sentence and where help is, after which everything is as before.
  void expect_wrong_use(const std::vector<std::string>& arguments, const std::string& sentence) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const auto before = names();
    const std::string bytes = read("a.lib");
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "veldra: " + sentence + "\n'veldra " + arguments.front() + " --help' tells more.\n");
    EXPECT_EQ(names(), before);
    EXPECT_TRUE(read("a.lib") == bytes);
  }

  std::string error(const std::vector<std::string>& arguments) const {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    return run.err;
  }
};

TEST_F(SmallTraps, a_unit_that_a_library_does_not_have_is_refused_and_not_ignored) {
  const auto before = read("a.lib");
  must({"create", "b.lib", "--unit", "in"});
  library("b.lib")->save(veldra::Composition::create("Roof"));
  const std::string sentence = "veldra: 'a.lib': its unit is mm; --unit is for a new library\n";
  EXPECT_EQ(error({"import", "a.lib", "walls.idf", "--unit", "in"}), sentence);
  EXPECT_EQ(error({"copy", "b.lib", "a.lib", "--all", "--unit", "in"}), sentence);
  EXPECT_TRUE(read("a.lib") == before);
  must({"import", "a.lib", "walls.idf", "--unit", "mm"});
}

TEST_F(SmallTraps, an_empty_value_is_none) {
  for (const char* empty : {"", " ", "\t"}) {
    expect_wrong_use({"import", "a.lib", "walls.idf", "--tag", empty}, "--tag: the value is empty");
    expect_wrong_use({"list", "a.lib", "materials", "--tag", empty}, "--tag: the value is empty");
  }
  for (const char* option : {"--type", "--sort", "--columns"}) {
    expect_wrong_use({"list", "a.lib", "materials", option, ""},
                     std::string(option) + ": the value is empty");
  }
  for (const char* option : {"--guid", "--region"}) {
    expect_wrong_use({"create", "b.lib", option, ""}, std::string(option) + ": the value is empty");
  }
  for (const char* command : {"export", "draw"}) {
    std::vector<std::string> arguments{command, "a.lib", "-o", ""};
    if (arguments.front() == "draw") arguments.push_back("Wall");
    expect_wrong_use(arguments, "--output: the value is empty");
  }
}

TEST_F(SmallTraps, an_unknown_locale_is_refused) {
  for (const char* locale :
       {"", "german", "xx", "de_XX", "de_DE.UTF-8", "de_", "C", "DE", "de_at"}) {
    expect_wrong_use({"create", "b.lib", "--locale", locale},
                     std::string("--locale: '") + locale +
                         "' is no locale, which is a language with or without a country, such as "
                         "de or de_AT");
  }
  must({"create", "b.lib", "--locale", "de-CH"});
}

TEST(Locale, is_a_language_a_script_and_a_country) {
  for (const char* locale : {"de", "de_AT", "de-CH", "gsw_CH", "sr_Latn_RS", "zh-Hant-TW", "zu",
                             "wae", "aa", "es_419", "en_ZW", "sr_Cyrl"}) {
    EXPECT_TRUE(veldra_tool::is_locale(locale)) << locale;
  }
  for (const char* locale : {"", "_", "-AT", "de__AT", "de_AT_", "de_AT_x", "de_Latn_", "de_latn",
                             "de_A", "d", "de ", "e a", "aa ab", "de_41", "de_Latn_Latn"}) {
    EXPECT_FALSE(veldra_tool::is_locale(locale)) << locale;
  }
}

TEST_F(SmallTraps, an_output_has_the_ending_of_its_format) {
  const auto wrong = [](const std::string& file, const std::string& format) {
    return "--output: '" + file + "' has the ending of another format; what is written is " +
           format;
  };
  const auto unknown = [](const std::string& file) {
    return "--output: '" + file +
           "' has the ending of none of the formats json, hbjson, epjson, gbxml, xlsx, idf, ifc, "
           "csv";
  };
  expect_wrong_use({"export", "a.lib", "-o", "x.pdf"}, unknown("x.pdf"));
  expect_wrong_use({"export", "a.lib", "-o", "x.csv", "--format", "json"}, wrong("x.csv", "json"));
  expect_wrong_use({"export", "a.lib", "-o", "x.json", "--format", "csv"}, wrong("x.json", "csv"));
  expect_wrong_use({"export", "a.lib", "-o", "./x.TXT", "--force"}, unknown("./x.TXT"));
  expect_wrong_use({"draw", "a.lib", "Wall", "-o", "x.pdf", "--format", "svg"},
                   wrong("x.pdf", "svg"));
  expect_wrong_use({"draw", "a.lib", "Wall", "-o", "x.json"}, wrong("x.json", "svg"));
}

TEST_F(SmallTraps, an_ending_says_which_format_is_wanted) {
  must({"export", "a.lib", "-o", "x.csv"});
  EXPECT_EQ(read("x.csv"), must({"export", "a.lib", "--format", "csv"}).out);
  must({"export", "a.lib", "-o", "X.JSON"});
  EXPECT_EQ(read("X.JSON"), exported("a.lib"));
  EXPECT_EQ(must({"export", "a.lib", "-o", "y.csv", "--json"}).json()["format"], "csv");
}

TEST_F(SmallTraps, a_name_without_an_ending_may_have_any_format) {
  for (const char* file :
       {"plain", ".hidden", "of 2026.11.22", "ends with.", "much.longer-than-an-ending"}) {
    must({"export", "a.lib", "-o", file});
    EXPECT_TRUE(exists(file)) << file;
  }
}

TEST_F(SmallTraps, a_file_that_is_missing_is_missing_everywhere) {
  write("empty.idf", "Version, 9.4;");
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"info", "gone"},
                                                    {"import", "a.lib", "gone"},
                                                    {"copy", "gone", "a.lib", "--all"},
                                                    {"restore", "a.lib", "gone"}}) {
    EXPECT_EQ(error(arguments), "veldra: 'gone': there is no such file\n");
  }
}

TEST_F(SmallTraps, a_folder_is_a_folder_everywhere) {
  ASSERT_EQ(::mkdir(path("folder").c_str(), 0755), 0);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"create", "folder"},
        {"info", "folder"},
        {"import", "folder", "walls.idf"},
        {"import", "a.lib", "folder"},
        {"copy", "folder", "a.lib", "--all"},
        {"export", "a.lib", "-o", "folder"},
        {"purge", "a.lib", "tags", "--backup", "folder"}}) {
    EXPECT_EQ(error(arguments), "veldra: 'folder': this is a folder\n") << arguments.front();
  }
}

TEST_F(SmallTraps, what_is_too_much_or_too_little_is_told_in_words_of_ours) {
  expect_wrong_use({"info", "a.lib", "b.lib", "c.lib"}, "'b.lib' is one argument too many");
  expect_wrong_use({"info", "a.lib", "--unit", "mm"}, "there is no option '--unit'");
  expect_wrong_use({"list", "a.lib", "tags", "--jsno"}, "there is no option '--jsno'");
  expect_wrong_use({"create", "b.lib", "--unit"}, "--unit: the value is missing");
  expect_wrong_use({"import", "a.lib", "walls.idf", "--tag"}, "--tag: the value is missing");
  expect_wrong_use({"create", "b.lib", "--unit", "mm", "--unit", "in"},
                   "--unit: this is given twice");
  expect_wrong_use({"info", "a.lib", "--json=no"}, "--json: there is no value for this");
  EXPECT_EQ(veldra({"--no-config"}).err,
            "veldra: a command is missing\n'veldra --help' tells more.\n");
}

TEST_F(SmallTraps, an_output_and_a_source_may_have_any_name) {
  const std::string strange = "\xFF\xFE";
  must({"export", "a.lib", "-o", strange + ".json"});
  EXPECT_EQ(read(strange + ".json"), exported("a.lib"));
  EXPECT_EQ(must({"draw", "a.lib", "Wall", "-o", strange + ".svg", "--json"}).json()["file"],
            "\xC3\xBF\xC3\xBE.svg");
  must({"import", "b.lib", strange + ".json"});
  EXPECT_EQ(count("b.lib", "compositions"), 1U);
}

TEST_F(SmallTraps, a_library_whose_name_is_no_text_gets_a_sentence) {
  const std::string strange = "\xFF.lib";
  const std::string sentence = "veldra: 'ÿ.lib': the name of a library must be UTF-8\n";
  EXPECT_EQ(error({"create", strange}), sentence);
  EXPECT_EQ(error({"info", strange}), sentence);
  EXPECT_EQ(error({"import", strange, "walls.idf"}), sentence);
  EXPECT_EQ(error({"copy", strange, "a.lib", "--all"}), sentence);
  EXPECT_EQ(error({"copy", "a.lib", strange, "--all"}), sentence);
  EXPECT_EQ(error({"purge", "a.lib", "tags", "--backup", strange}), sentence);
  EXPECT_EQ(error({"restore", "a.lib", strange}), sentence);
  ASSERT_EQ(::mkdir(path("\xFF").c_str(), 0755), 0);
  const auto run = shell("cd \xFF && veldra create b.lib");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "veldra: 'b.lib': the name of its folder must be UTF-8\n");
}

/// Colours, on a terminal that could show some.
class Colours : public ProgramTest {
 protected:
  void SetUp() override {
    if (!terminals_can_be_made()) GTEST_SKIP() << "terminals cannot be made here";
    ::setenv("TERM", "xterm", 1);
    ::unsetenv("NO_COLOR");
  }
  void TearDown() override { ::unsetenv("NO_COLOR"); }

  std::string seen(const std::vector<std::string>& arguments) {
    TerminalRun run(path(""), arguments);
    run.finish();
    return run.seen();
  }

  static constexpr const char* escape_ = "\x1b";
};

TEST_F(Colours, mark_an_error_on_a_terminal) {
  EXPECT_THAT(seen({"info", "gone"}), StartsWith("\x1b[1;31mveldra:\x1b[0m 'gone': there is no"));
  EXPECT_THAT(seen({"nonsense"}), StartsWith("\x1b[1;31mveldra:\x1b[0m there is no command"));
}

TEST_F(Colours, are_not_shown_to_those_who_want_none) {
  ::setenv("NO_COLOR", "1", 1);
  EXPECT_THAT(seen({"info", "gone"}), Not(HasSubstr(escape_)));
  ::setenv("NO_COLOR", "", 1);  // is as good as not set
  EXPECT_THAT(seen({"info", "gone"}), HasSubstr(escape_));
  ::unsetenv("NO_COLOR");
  ::setenv("TERM", "dumb", 1);
  EXPECT_THAT(seen({"info", "gone"}), Not(HasSubstr(escape_)));
  ::unsetenv("TERM");
  EXPECT_THAT(seen({"info", "gone"}), Not(HasSubstr(escape_)));
}

TEST_F(Colours, are_not_written_elsewhere) {
  EXPECT_THAT(veldra({"info", "gone"}).err, Not(HasSubstr(escape_)));
  EXPECT_THAT(veldra({"nonsense"}).err, Not(HasSubstr(escape_)));
}

}  // namespace
}  // namespace veldra_tests
