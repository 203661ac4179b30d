// SPDX-License-Identifier: GPL-2.0-or-later
//
// That the operations which the sweeps run do what is said of them; one that does nothing would
// pass every sweep.

#include "reliability/sweep.hpp"

#include <gmock/gmock.h>

#include <set>

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;

const char* const rolled_back = "several for nothing";

bool changes_rows(const Operation& operation) {
  const std::set<Kind> others = {Kind::Opening, Kind::Reading, Kind::Merging};
  return others.count(operation.kind) == 0 && operation.name != rolled_back;
}

bool gives_something(const Operation& operation) {
  return operation.kind == Kind::Opening || operation.kind == Kind::Merging ||
         (operation.kind == Kind::Reading && operation.name != "check");
}

TEST(Operations, write_if_their_kind_says_so_and_find_something) {
  for (const Operation& operation : operations()) {
    SCOPED_TRACE(operation.name);
    Scene scene(operation.start, "");
    set_up(scene, operation);
    const std::string rows = scene.rows();
    const std::string found = scene.found_text();
    EXPECT_EQ(thrown_by([&] { operation.run(scene); }), "");
    EXPECT_EQ(scene.rows() != rows, changes_rows(operation));
    EXPECT_TRUE(scene.found_text() != found || !gives_something(operation));
  }
}

TEST(Operations, have_names_of_their_own) {
  std::set<std::string> names;
  for (const Operation& operation : operations()) {
    EXPECT_TRUE(names.insert(operation.name).second) << operation.name;
  }
}

TEST(Operations, tell_the_reactor_of_each_object) {
  for (const Operation& operation : operations()) {
    if (operation.kind != Kind::Writing && operation.kind != Kind::Removing) continue;
    SCOPED_TRACE(operation.name);
    Scene scene(operation.start, "");
    set_up(scene, operation);
    operation.run(scene);
    const char* const call = operation.kind == Kind::Writing ? "saved " : "removed ";
    EXPECT_THAT(scene.reactor.calls_starting_with(call), testing::Not(testing::IsEmpty()));
  }
}

}  // namespace

}  // namespace veldra_tests
