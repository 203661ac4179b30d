// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"
#include "support/processes.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace veldra_tests {
namespace {

/// A library with a material that is in use and one that is not, a source, and a library to copy.
class Backups : public ProgramTest {
 protected:
  void SetUp() override {
    write("walls.idf",
          "Material:AirGap, Used, 0.1; Material:AirGap, Free, 0.1; Construction, Wall, Used;");
    must({"import", "a.lib", "walls.idf"});
    write("roofs.idf", "Material:AirGap, Roof, 0.1;");
    must({"import", "other.lib", "roofs.idf"});
    before_ = dump(path("a.lib"));
  }

  /// The names of the folder that were not there at first.
  std::vector<std::string> new_names() const {
    std::vector<std::string> all = names();
    for (const char* name : {"a.lib", "other.lib", "walls.idf", "roofs.idf", "configuration"}) {
      all.erase(std::remove(all.begin(), all.end(), name), all.end());
    }
    return all;
  }

  /// What changes the library, each in one way.
  static std::vector<std::vector<std::string>> changes() {
    return {{"import", "a.lib", "roofs.idf"},
            {"copy", "other.lib", "a.lib", "--all"},
            {"remove", "a.lib", "materials", "Free"},
            {"purge", "a.lib", "materials"},
            {"restore", "a.lib", "other.lib", "--force"}};
  }

  static std::vector<std::string> with(std::vector<std::string> arguments,
                                       const std::vector<std::string>& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  void expect_refusal(const std::vector<std::string>& arguments, const std::string& sentence) {
    SCOPED_TRACE(arguments.front());
    const auto left = names();
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr(sentence)));
    EXPECT_EQ(dump(path("a.lib")), before_);
    EXPECT_EQ(names(), left);
  }

  std::string before_;
};

TEST_F(Backups, of_each_command_are_the_library_before_it) {
  for (const auto& change : changes()) {
    SCOPED_TRACE(change.front());
    write("kept.lib", read("a.lib"));
    must(with(change, {"--backup", "b.lib"}));
    EXPECT_NE(dump(path("a.lib")), before_);
    EXPECT_EQ(dump(path("b.lib")), before_);
    ::unlink(path("b.lib").c_str());
    write("a.lib", read("kept.lib"));
  }
}

TEST_F(Backups, bring_back_what_was_there) {
  must({"remove", "a.lib", "compositions", "Wall", "--backup", "b.lib"});
  must({"restore", "a.lib", "b.lib"});
  EXPECT_EQ(dump(path("a.lib")), before_);
}

TEST_F(Backups, never_take_the_place_of_a_file) {
  write("b.lib", "not to be lost");
  for (const auto& change : changes()) {
    expect_refusal(with(change, {"--backup", "b.lib"}),
                   "'b.lib': there is a file of that name already");
  }
  EXPECT_EQ(read("b.lib"), "not to be lost");
  expect_refusal({"remove", "a.lib", "materials", "Free", "--backup", "a.lib"},
                 "'a.lib': there is a file of that name already");
}

TEST_F(Backups, that_cannot_be_made_leave_the_library_as_it_is) {
  for (const auto& change : changes()) {
    expect_refusal(with(change, {"--backup", "nowhere/b.lib"}),
                   "'nowhere/b.lib': it cannot be made in its folder");
    expect_refusal(with(change, {"--backup", "a.lib-journal"}),
                   "'a.lib-journal': this is the name of what a library keeps beside it");
  }
}

TEST_F(Backups, are_not_made_by_what_does_nothing) {
  for (const std::vector<std::string>& trial :
       {std::vector<std::string>{"import", "a.lib", "roofs.idf"},
        {"purge", "a.lib", "materials"}}) {
    must(with(trial, {"--dry-run", "--backup", "b.lib"}));
    EXPECT_THAT(new_names(), IsEmpty());
  }
  EXPECT_EQ(veldra({"remove", "a.lib", "materials", "Used", "--backup", "b.lib"}).status, 1);
  EXPECT_EQ(veldra({"remove", "a.lib", "materials", "nothing", "--backup", "b.lib"}).status, 1);
  EXPECT_EQ(veldra({"restore", "a.lib", "other.lib", "--backup", "b.lib"}).status, 1);
  EXPECT_EQ(veldra({"restore", "a.lib", "walls.idf", "--backup", "b.lib"}).status, 1);
  EXPECT_THAT(new_names(), IsEmpty());
}

TEST_F(Backups, are_not_made_of_a_library_that_is_not_there) {
  must({"import", "new.lib", "roofs.idf", "--backup", "b.lib"});
  EXPECT_THAT(new_names(), ElementsAre("new.lib"));
}

/// Whoever wrote last before the change would lose that when the backup is brought back.
TEST_F(Backups, have_what_others_wrote_while_the_lock_was_waited_for) {
  {
    const LockingProcess other(path("a.lib"),
                               "BEGIN IMMEDIATE; INSERT INTO Tag (name) VALUES ('late')", 1000);
    must({"remove", "a.lib", "materials", "Free", "--backup", "b.lib"});
  }
  EXPECT_EQ(count("b.lib", "tags"), count("a.lib", "tags"));
  EXPECT_EQ(count("b.lib", "materials"), 2U);
}

/// As the configuration asks for them.
class BackupsByHabit : public Backups {
 protected:
  void configure(const std::string& text) const {
    ::mkdir(path("configuration").c_str(), 0755);
    ::mkdir(path("configuration/veldra").c_str(), 0755);
    write("configuration/veldra/config", text);
  }
};

TEST_F(BackupsByHabit, lie_in_a_folder_beside_the_library) {
  configure("backup = older\n");
  must({"remove", "a.lib", "materials", "Free"});
  const auto files = names("older");
  ASSERT_THAT(files, SizeIs(1));
  EXPECT_THAT(files[0], MatchesRegex("a-[0-9]{4}(-[0-9]{2}){2}T[0-9]{2}(-[0-9]{2}){2}Z\\.lib"));
  EXPECT_EQ(dump(path("older/" + files[0])), before_);
}

TEST_F(BackupsByHabit, never_take_each_others_place) {
  configure("backup = " + path("older") + "\n");
  ::mkdir(path("x").c_str(), 0755);
  for (int i = 0; i < 4; ++i) {
    must({"purge", "a.lib", "layers"});
    write("x/a.lib", read("a.lib"));
    must({"purge", "x/a.lib", "layers"});
  }
  EXPECT_THAT(names("older"), SizeIs(8));
}

TEST_F(BackupsByHabit, may_lie_at_home) {
  configure("backup = ~/older\n");
  EXPECT_EQ(shell("HOME=$PWD veldra purge a.lib layers").status, 0);
  EXPECT_THAT(names("older"), SizeIs(1));
  const auto run = shell("unset HOME; veldra purge a.lib layers");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("HOME is not set")));
}

TEST_F(BackupsByHabit, give_way_to_a_file_that_is_named_and_to_no_configuration) {
  configure("backup = older\n");
  must({"purge", "a.lib", "layers", "--backup", "b.lib"});
  must({"purge", "a.lib", "layers", "--no-config"});
  must({"--no-config", "purge", "a.lib", "layers"});
  must({"purge", "a.lib", "layers", "--dry-run"});
  EXPECT_THAT(new_names(), ElementsAre("b.lib"));
}

TEST_F(BackupsByHabit, that_cannot_be_made_leave_the_library_as_it_is) {
  configure("backup = missing/older\n");
  for (const auto& change : changes()) {
    expect_refusal(change, "the folder for backups cannot be made");
  }
  configure("backup = walls.idf\n");
  expect_refusal(changes().front(), "it cannot be made in its folder");
}

TEST_F(BackupsByHabit, of_a_library_without_an_ending_have_none) {
  configure("backup = older\n");
  write("plain", read("a.lib"));
  must({"purge", "plain", "layers"});
  ASSERT_THAT(names("older"), SizeIs(1));
  EXPECT_THAT(names("older")[0], MatchesRegex("plain-.*Z"));
}

}  // namespace
}  // namespace veldra_tests
