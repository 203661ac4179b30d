// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/commands.hpp"
#include "program/faults.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <regex>
#include <sstream>

namespace veldra_tests {

namespace {

using Deeds = std::vector<std::string>;

/// What a run did to files, in its order. The random name is T, and the folder is ".".
Deeds deeds_of(const SharedPlan& plan) {
  static const std::regex random("\\.veldra-[A-Za-z0-9]{6}\\.tmp");
  std::istringstream lines(std::regex_replace(std::string(plan->deeds), random, "T"));
  Deeds deeds;
  for (std::string line; std::getline(lines, line);) deeds.push_back(line);
  return deeds;
}

/// Where something was done for the last time before `end`; -1 where it was not.
long last(const Deeds& deeds, const std::string& deed, long end) {
  for (long i = end - 1; i >= 0; --i) {
    if (deeds[static_cast<std::size_t>(i)] == deed) return i;
  }
  return -1;
}

/// What puts a file into its place, with all that comes before and after it.
struct Placing {
  Deeds deeds;
  long at;

  long last(const std::string& deed) const { return veldra_tests::last(deeds, deed, at); }
  Deeds before() const { return {deeds.begin(), deeds.begin() + at}; }
  Deeds after() const { return {deeds.begin() + at + 1, deeds.end()}; }
};

Placing placing(const Command& command, const Fault& fault, const std::string& deed) {
  const Scene scene(command.arguments);
  const SharedPlan plan(fault, scene.path());
  const Ending run = scene.run(command.arguments, &plan);
  EXPECT_EQ(run.status, 0) << run.err;
  Placing result{deeds_of(plan), 0};
  const auto size = static_cast<long>(result.deeds.size());
  result.at = last(result.deeds, deed + " T " + command.writes, size);
  EXPECT_GE(result.at, 0) << testing::PrintToString(result.deeds);
  result.at = std::max(result.at, 0L);
  return result;
}

/// Files that get their place when they are whole, and what goes on there besides.
class Order : public testing::TestWithParam<const char*> {
 protected:
  const Command& command() const { return command_named(GetParam()); }

  /// All that the file has is on the disk before it has its name, and the name before anybody is
  /// told.
  void expect_order(const Placing& placing) const {
    SCOPED_TRACE(testing::PrintToString(placing.deeds));
    const long written = std::max(placing.last("write T"), placing.last("cut T"));
    EXPECT_GE(written, 0);
    EXPECT_GT(placing.last("sync T"), written);
    EXPECT_THAT(placing.before(), Not(Contains(HasSubstr(command().writes))));
  }

  /// What comes after the others: a new library is told of, and of an output there is nothing to
  /// say.
  Deeds and_telling(Deeds deeds) const {
    const auto& name = command().arguments.front();
    if (name != "export" && name != "draw") deeds.emplace_back("write standard output");
    return deeds;
  }
};

TEST_P(Order, of_a_file_is_write_sync_rename_sync_of_the_folder) {
  const auto renamed = placing(command(), {}, "rename");
  expect_order(renamed);
  EXPECT_EQ(renamed.after(), and_telling({"sync ."}));
}

TEST_P(Order, of_a_file_has_no_journal_left_when_it_is_renamed) {
  const auto renamed = placing(command(), {}, "rename");
  if (renamed.last("make T-journal") < 0) return;
  EXPECT_GT(renamed.last("remove T-journal"), renamed.last("make T-journal"));
  EXPECT_GT(renamed.last("remove T-journal"), renamed.last("sync T"));
}

INSTANTIATE_TEST_SUITE_P(Outputs, Order,
                         testing::Values("export to a new file", "export over a file",
                                         "export over what a link leads to", "draw to a new file",
                                         "draw over a file"));
INSTANTIATE_TEST_SUITE_P(Libraries, Order, testing::Values("create", "import into a new library"));

/// The same on a system that cannot rename to free names only.
class OrderOfLinks : public Order {};

TEST_P(OrderOfLinks, is_write_sync_link_removal_sync_of_the_folder) {
  const auto linked = placing(command(), {Trouble::Error, ENOSYS, true, -1, 1}, "link");
  expect_order(linked);
  EXPECT_EQ(linked.after(), and_telling({"remove T", "sync ."}));
}

INSTANTIATE_TEST_SUITE_P(NewFiles, OrderOfLinks,
                         testing::Values("create", "import into a new library",
                                         "export to a new file", "draw to a new file"));

}  // namespace

}  // namespace veldra_tests
