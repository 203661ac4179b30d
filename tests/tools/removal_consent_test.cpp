// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"
#include "tools/terminal.hpp"

#include "support/database.hpp"

#include <cstdio>

namespace veldra_tests {
namespace {

/// A library with two build-ups of two materials, and twenty-five tags, one of them in use.
class RemovalConsent : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material:AirGap, Used, 0.1; Material:AirGap, Free, 0.1; Construction, W, Used;"
          "Construction, V, Used;");
    must({"import", "a.lib", "a.idf"});
    const auto office = library("a.lib");
    for (int i = 1; i < 25; ++i) office->save(veldra::Tag::create(tag(i).c_str()));
    before_ = dump(path("a.lib"));
  }

  static std::string tag(int number) { return "tag " + std::to_string(number); }

  /// `remove` with so many tags that nobody uses.
  static std::vector<std::string> removal_of_tags(int number) {
    std::vector<std::string> arguments{"remove", "a.lib", "tags"};
    for (int i = 1; i <= number; ++i) arguments.push_back(tag(i));
    return arguments;
  }

  bool untouched() const { return dump(path("a.lib")) == before_; }

  std::string before_;
  const std::vector<std::string> purge_{"purge", "a.lib", "materials", "compositions", "tags"};
  std::vector<std::string> with_yes(std::vector<std::string> arguments) {
    arguments.push_back("--yes");
    return arguments;
  }
};

TEST_F(RemovalConsent, a_purge_without_kinds_says_what_can_be_named) {
  const auto run = veldra({"purge", "a.lib"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("materials, compositions, types, layers, properties, tags"));
  EXPECT_EQ(veldra({"purge", "a.lib", "--dry-run"}).status, 2);
  EXPECT_TRUE(untouched());
}

TEST_F(RemovalConsent, compositions_are_not_purged_where_nobody_can_be_asked) {
  const auto run = veldra(purge_);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, AllOf(HasSubstr("29 objects (2 compositions, 2 materials, 25 tags)"),
                             HasSubstr("--yes")));
  EXPECT_TRUE(untouched());
}

TEST_F(RemovalConsent, yes_stands_for_the_answer) {
  must(with_yes(purge_));
  EXPECT_EQ(count("a.lib", "compositions"), 0U);
  EXPECT_EQ(count("a.lib", "materials"), 0U);
}

TEST_F(RemovalConsent, a_dry_run_needs_none) {
  auto pretended = purge_;
  pretended.push_back("--dry-run");
  must(pretended);
  EXPECT_TRUE(untouched());
}

TEST_F(RemovalConsent, a_purge_without_compositions_needs_none) {
  must({"purge", "a.lib", "materials", "tags"});
  EXPECT_EQ(count("a.lib", "tags"), 1U);
  must(with_yes({"purge", "a.lib", "compositions"}));
  must({"purge", "a.lib", "compositions"});  // there are none any more
}

TEST_F(RemovalConsent, twenty_objects_are_removed_at_once_and_more_are_not) {
  const auto run = veldra(removal_of_tags(21));
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, AllOf(HasSubstr("21 objects (21 tags)"), HasSubstr("--yes")));
  EXPECT_TRUE(untouched());
  must(removal_of_tags(20));
  EXPECT_EQ(count("a.lib", "tags"), 5U);
}

TEST_F(RemovalConsent, yes_removes_any_number) {
  must(with_yes(removal_of_tags(24)));
  EXPECT_EQ(count("a.lib", "tags"), 1U);
}

TEST_F(RemovalConsent, an_object_that_is_named_twice_counts_once) {
  auto arguments = removal_of_tags(20);
  arguments.push_back(tag(1));
  must(arguments);
}

TEST_F(RemovalConsent, what_stays_is_not_counted) {
  auto arguments = removal_of_tags(21);
  arguments.push_back("a.idf");
  EXPECT_THAT(veldra(arguments).err, HasSubstr("21 objects (21 tags)"));
  EXPECT_TRUE(untouched());
}

TEST_F(RemovalConsent, what_is_kept_is_told_by_the_status) {
  auto arguments = with_yes(removal_of_tags(21));
  arguments.push_back("a.idf");
  EXPECT_EQ(veldra(arguments).status, 3);
  EXPECT_EQ(count("a.lib", "tags"), 4U);
  EXPECT_EQ(veldra({"remove", "a.lib", "tags", "a.idf"}).status, 1);
  EXPECT_EQ(veldra({"purge", "a.lib", "tags"}).status, 0);
}

/// The same where somebody sits at a terminal.
class RemovalQuestion : public RemovalConsent {
 protected:
  void SetUp() override {
    if (!terminals_can_be_made()) GTEST_SKIP() << "no terminal can be made here";
    RemovalConsent::SetUp();
  }
};

TEST_F(RemovalQuestion, tells_the_number_and_goes_on_when_the_answer_is_yes) {
  for (const char* answer : {"y\n", "yes\n"}) {
    const auto library_before = read("a.lib");
    TerminalRun run(path(""), purge_);
    ASSERT_TRUE(run.wait_for("[y/N]"));
    EXPECT_THAT(run.seen(), ContainsRegex("'a.lib': this removes 29 objects \\(2 compositions, 2 "
                                          "materials, 25 tags\\). Go on\\?"));
    EXPECT_TRUE(untouched());
    run.type(answer);
    EXPECT_EQ(run.finish(), 0);
    EXPECT_EQ(count("a.lib", "compositions"), 0U);
    write("a.lib", library_before);
  }
}

TEST_F(RemovalQuestion, ends_with_any_other_answer) {
  for (const char* answer : {"n\n", "\n", "Yes, of course\n", "j\n", "yy\n", "\x04"}) {
    TerminalRun run(path(""), purge_);
    ASSERT_TRUE(run.wait_for("[y/N]"));
    run.type(answer);
    EXPECT_EQ(run.finish(), 1);
    EXPECT_THAT(run.seen(), HasSubstr("nothing is removed"));
    EXPECT_TRUE(untouched());
  }
}

TEST_F(RemovalQuestion, comes_before_more_than_twenty_objects_are_removed) {
  TerminalRun run(path(""), removal_of_tags(22));
  ASSERT_TRUE(run.wait_for("[y/N]"));
  EXPECT_THAT(run.seen(), HasSubstr("22 objects (22 tags)"));
  run.type("y\n");
  EXPECT_EQ(run.finish(), 0);
  EXPECT_EQ(count("a.lib", "tags"), 3U);
}

TEST_F(RemovalQuestion, does_not_come_for_less_and_with_yes) {
  TerminalRun few(path(""), removal_of_tags(20));
  EXPECT_EQ(few.finish(), 0);
  TerminalRun sure(path(""), with_yes(purge_));
  EXPECT_EQ(sure.finish(), 0);
  EXPECT_EQ(count("a.lib", "compositions"), 0U);
}

TEST_F(RemovalQuestion, holds_nothing_of_the_library_while_it_waits) {
  TerminalRun run(path(""), purge_);
  ASSERT_TRUE(run.wait_for("[y/N]"));
  must({"import", "a.lib", "a.idf", "--tag", "meanwhile", "--on-conflict", "rename"});
  const auto library_after = dump(path("a.lib"));
  run.type("y\n");
  EXPECT_EQ(run.finish(), 1);
  EXPECT_THAT(run.seen(), AllOf(HasSubstr("nothing is removed, because by now it would be 30"),
                                HasSubstr("and not 29 objects")));
  EXPECT_EQ(dump(path("a.lib")), library_after);
}

TEST_F(RemovalQuestion, is_not_answered_for_other_objects_of_the_same_number) {
  const auto arguments_of_both = {purge_, removal_of_tags(22)};
  for (const auto& arguments : arguments_of_both) {
    TerminalRun run(path(""), arguments);
    ASSERT_TRUE(run.wait_for("[y/N]"));
    must({"remove", "a.lib", "tags", tag(1)});
    library("a.lib")->save(veldra::Tag::create(tag(1).c_str()));
    const auto library_after = dump(path("a.lib"));
    run.type("y\n");
    EXPECT_EQ(run.finish(), 1);
    EXPECT_THAT(run.seen(), HasSubstr("'a.lib': nothing is removed, because by now it would be "
                                      "other objects"));
    EXPECT_EQ(dump(path("a.lib")), library_after);
  }
}

TEST_F(RemovalQuestion, is_not_answered_for_an_object_that_has_another_name_by_now) {
  TerminalRun run(path(""), purge_);
  ASSERT_TRUE(run.wait_for("[y/N]"));
  const auto office = library("a.lib");
  const auto wall = office->get<veldra::Composition>("W");
  wall->name("The best one");
  office->save(wall);
  const auto library_after = dump(path("a.lib"));
  run.type("y\n");
  EXPECT_EQ(run.finish(), 1);
  EXPECT_THAT(run.seen(), HasSubstr("by now it would be other objects"));
  EXPECT_EQ(dump(path("a.lib")), library_after);
}

TEST_F(RemovalQuestion, is_not_answered_for_another_library) {
  const auto arguments_of_both = {purge_, removal_of_tags(22)};
  for (const auto& arguments : arguments_of_both) {
    TerminalRun run(path(""), arguments);
    ASSERT_TRUE(run.wait_for("[y/N]"));
    // Put in the place of the one that was looked at, with the very same objects.
    write("b.lib", read("a.lib"));
    PlainDatabase(path("b.lib")).execute("UPDATE Meta SET guid = upper(guid) || '-'");
    ASSERT_EQ(::rename(path("b.lib").c_str(), path("a.lib").c_str()), 0);
    const auto library_after = dump(path("a.lib"));
    run.type("y\n");
    EXPECT_EQ(run.finish(), 1);
    EXPECT_THAT(run.seen(), HasSubstr("'a.lib': nothing is removed, because another library is "
                                      "there by now"));
    EXPECT_EQ(dump(path("a.lib")), library_after);
  }
}

TEST_F(RemovalQuestion, can_be_interrupted) {
  TerminalRun run(path(""), purge_);
  ASSERT_TRUE(run.wait_for("[y/N]"));
  run.type("\x03");
  EXPECT_EQ(run.finish(), 1);
  EXPECT_THAT(run.seen(), HasSubstr("interrupted"));
  EXPECT_TRUE(untouched());
}

}  // namespace
}  // namespace veldra_tests
