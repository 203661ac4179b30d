// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "configuration.hpp"
#include "failure.hpp"

#include <sys/stat.h>

namespace veldra_tests {
namespace {

class ConfigurationText : public testing::Test {
 protected:
  static std::string backup_in(const std::string& text) {
    return veldra_tool::configuration_in(text, "config").backup;
  }

  static std::string failure_in(const std::string& text) {
    try {
      veldra_tool::configuration_in(text, "config");
    } catch (const veldra_tool::Failure& failure) {
      return failure.what();
    }
    return "";
  }
};

TEST_F(ConfigurationText, has_keys_with_values_and_comments) {
  EXPECT_EQ(backup_in(""), "");
  EXPECT_EQ(backup_in("# backup = no\n\n  \t\n"), "");
  EXPECT_EQ(backup_in("backup=older"), "older");
  EXPECT_EQ(backup_in("# habits\r\n backup =  my older ones \r\n"), "my older ones");
  EXPECT_EQ(backup_in("backup = a=b"), "a=b");
}

TEST_F(ConfigurationText, a_comment_begins_behind_a_blank) {
  EXPECT_EQ(backup_in("backup = older # always"), "older");
  EXPECT_EQ(backup_in("backup = older\t#always"), "older");
  EXPECT_EQ(backup_in("backup = C#"), "C#");
}

TEST_F(ConfigurationText, what_is_wrong_is_told_with_its_line) {
  EXPECT_EQ(failure_in("\n# x\nbakup = x"),
            "'config': line 3: there is no key 'bakup'; there is 'backup'");
  EXPECT_EQ(failure_in("backup"), "'config': line 1: 'backup' is not 'key = value'");
  EXPECT_EQ(failure_in("= x"), "'config': line 1: '= x' is not 'key = value'");
  EXPECT_EQ(failure_in("backup ="), "'config': line 1: 'backup' has no value");
  EXPECT_EQ(failure_in("backup = # none"), "'config': line 1: 'backup' has no value");
  EXPECT_EQ(failure_in("backup = x\nbackup = y"), "'config': line 2: 'backup' stands there twice");
  EXPECT_EQ(failure_in("\nbackup = \xFF"), "'config': line 2: this is not UTF-8");
  EXPECT_EQ(failure_in(std::string("a\0b", 3)), "'config': line 1: this is not UTF-8");
  EXPECT_EQ(failure_in("\x1b[31m = x"),
            "'config': line 1: there is no key '\\x1b[31m'; there is 'backup'");
}

/// Where the file is looked for, and when.
class ConfigurationFile : public ProgramTest {
 protected:
  void SetUp() override {
    must({"create", "a.lib"});
    for (const char* folder : {"configuration", "configuration/veldra", "person", "person/.config",
                               "person/.config/veldra"}) {
      ASSERT_EQ(::mkdir(path(folder).c_str(), 0755), 0);
    }
  }

  static constexpr const char* wrong_ = "# a key that nobody knows\nnonsense = 1\n";
};

TEST_F(ConfigurationFile, is_that_of_the_environment_or_else_the_one_at_home) {
  write("person/.config/veldra/config", wrong_);
  must({"info", "a.lib"});
  for (const char* elsewhere :
       {"unset XDG_CONFIG_HOME", "XDG_CONFIG_HOME=", "XDG_CONFIG_HOME=not/from/the/root"}) {
    const auto run = shell(std::string(elsewhere) + "; HOME=$PWD/person; veldra info a.lib");
    EXPECT_EQ(run.status, 1) << elsewhere;
    EXPECT_THAT(run.err,
                AllOf(is_one_sentence(),
                      HasSubstr("/person/.config/veldra/config': line 2: there is no key")));
  }
  write("configuration/veldra/config", wrong_);
  EXPECT_THAT(veldra({"info", "a.lib"}).err,
              HasSubstr("'" + path("configuration/veldra/config") + "': line 2: "));
}

TEST_F(ConfigurationFile, need_not_be_there) {
  for (const char* nowhere : {"HOME=/dev/null", "unset HOME", "HOME="}) {
    const auto run =
        shell(std::string("unset XDG_CONFIG_HOME; ") + nowhere + "; veldra info a.lib");
    EXPECT_EQ(run.status, 0) << nowhere << run.err;
  }
}

TEST_F(ConfigurationFile, that_is_wrong_ends_every_command_but_what_helps) {
  write("configuration/veldra/config", wrong_);
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"info", "a.lib"},
                                                    {"create", "b.lib"},
                                                    {"purge", "a.lib", "tags"}}) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("line 2")));
  }
  EXPECT_FALSE(exists("b.lib"));
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"help"},
                                                    {"--help"},
                                                    {"info", "--help"},
                                                    {"--version"},
                                                    {"info", "a.lib", "--no-config"},
                                                    {"--no-config", "info", "a.lib"}}) {
    must(arguments);
  }
}

TEST_F(ConfigurationFile, that_cannot_be_read_is_an_error) {
  ASSERT_EQ(::mkdir(path("configuration/veldra/config").c_str(), 0755), 0);
  auto run = veldra({"info", "a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("config': this is a folder")));
  ASSERT_EQ(::rmdir(path("configuration/veldra/config").c_str()), 0);
  write("configuration/veldra/config", "");
  ASSERT_EQ(::chmod(path("configuration/veldra/config").c_str(), 0), 0);
  if (!lose_privileges()) GTEST_SKIP() << "the superuser may read every file";
  run = veldra({"info", "a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("config': it cannot be read: ")));
}

TEST_F(ConfigurationFile, without_an_end_is_refused) {
  write("configuration/veldra/config", std::string(70000, '\n'));
  EXPECT_THAT(veldra({"info", "a.lib"}).err, HasSubstr("config': it is larger than 65536 bytes"));
}

}  // namespace
}  // namespace veldra_tests
