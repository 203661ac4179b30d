// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

#include <sys/stat.h>

namespace veldra_tests {
namespace {

class Remove : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material:AirGap, Used, 0.1; Material:AirGap, Free, 0.1; Material:AirGap, 3, 0.1;"
          "Construction, Wall, Used;");
    must({"import", "a.lib", "a.idf"});
  }

  bool removed(const nlohmann::json& list, const std::string& name) {
    for (const auto& entry : list) {
      if (entry["name"] == name) return entry["removed"];
    }
    ADD_FAILURE() << name << " is not told of";
    return false;
  }
};

TEST_F(Remove, what_is_in_use_stays_and_the_rest_goes) {
  const auto run = veldra({"remove", "a.lib", "materials", "Used", "Free", "--json"});
  EXPECT_EQ(run.status, 3);
  const auto list = run.json();
  EXPECT_FALSE(removed(list, "Used"));
  EXPECT_TRUE(removed(list, "Free"));
  EXPECT_EQ(count("a.lib", "materials"), 2U);
}

TEST_F(Remove, a_dry_run_tells_what_would_go_and_writes_nothing) {
  const auto before = read("a.lib");
  const auto run = must({"remove", "a.lib", "materials", "Used", "Free", "--dry-run"});
  EXPECT_THAT(run.out, ContainsRegex("Used +stays: in use"));
  EXPECT_THAT(run.out, ContainsRegex("Free +would go"));
  EXPECT_TRUE(read("a.lib") == before);
}

TEST_F(Remove, when_nothing_goes_the_status_is_1) {
  const auto run = veldra({"remove", "a.lib", "materials", "Used"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, HasSubstr("in use"));
  EXPECT_EQ(run.err, "veldra: 'a.lib': nothing is removed, because all of it is in use\n");
  EXPECT_EQ(count("a.lib", "materials"), 3U);
}

TEST_F(Remove, when_nothing_goes_it_is_not_said_to_be_done) {
  const auto before = dump(path("a.lib"));
  const auto run = shell("veldra remove a.lib materials Used > /dev/full");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("standard output cannot be written"));
  EXPECT_THAT(run.err, testing::Not(HasSubstr("is done")));
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(Remove, a_name_that_is_not_there_keeps_everything_in_place) {
  const auto run = veldra({"remove", "a.lib", "materials", "Free", "Nobody"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_EQ(count("a.lib", "materials"), 3U);
}

TEST_F(Remove, when_one_of_several_fails_all_stay) {
  PlainDatabase(path("a.lib"))
      .execute(
          "CREATE TRIGGER failure BEFORE DELETE ON Material WHEN OLD.name = '3' "
          "BEGIN SELECT abs(-9223372036854775807 - 1); END");
  const auto before = dump(path("a.lib"));
  const auto run = veldra({"remove", "a.lib", "materials", "Free", "3"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_EQ(veldra({"purge", "a.lib", "materials"}).status, 1);
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(Remove, the_same_object_may_be_named_twice) {
  EXPECT_EQ(must({"remove", "a.lib", "materials", "Free", "Free", "--json"}).json().size(), 1U);
}

TEST_F(Remove, a_purge_takes_what_nothing_refers_to) {
  const auto list = must({"purge", "a.lib", "materials", "types", "--json"}).json();
  EXPECT_FALSE(removed(list, "Used"));
  EXPECT_TRUE(removed(list, "Free"));
  EXPECT_TRUE(removed(list, "Wood"));
  EXPECT_FALSE(removed(list, "Air gap"));
  EXPECT_EQ(count("a.lib", "materials"), 1U);
  EXPECT_EQ(count("a.lib", "compositions"), 1U);
}

TEST_F(Remove, a_dry_run_tells_what_a_purge_does_and_writes_nothing) {
  for (const std::vector<std::string>& kinds :
       {std::vector<std::string>{"materials", "tags"}, std::vector<std::string>{"types"},
        std::vector<std::string>{"compositions", "materials", "types", "tags", "properties"}}) {
    std::vector<std::string> arguments{"purge", "a.lib", "--json", "--yes"};
    arguments.insert(arguments.end(), kinds.begin(), kinds.end());
    auto pretended = arguments;
    pretended.push_back("--dry-run");
    const auto before = dump(path("a.lib"));
    const auto told = must(pretended).json();
    EXPECT_EQ(dump(path("a.lib")), before);
    EXPECT_EQ(must(arguments).json(), told);
  }
  EXPECT_EQ(count("a.lib", "materials"), 0U);
}

/// A library in a file that can only be read.
class ReadOnly : public Remove {
 protected:
  void SetUp() override {
    Remove::SetUp();
    ASSERT_EQ(::chmod(path("a.lib").c_str(), 0444), 0);
    if (!lose_privileges()) GTEST_SKIP() << "the superuser may write every file";
  }
};

TEST_F(ReadOnly, refuses_changes_with_a_sentence) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"remove", "a.lib", "materials", "Free"},
        std::vector<std::string>{"purge", "a.lib", "tags"},
        std::vector<std::string>{"import", "a.lib", "a.idf"}}) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_THAT(run.err, HasSubstr("only be read"));
  }
}

TEST_F(ReadOnly, can_be_looked_at) {
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json()["read_only"], true);
  must({"list", "a.lib", "materials"});
  must({"purge", "a.lib", "compositions", "--dry-run"});
}

}  // namespace
}  // namespace veldra_tests
