// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/scene.hpp"

#include "support/database.hpp"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/syscall.h>

#include <stdexcept>

namespace veldra_tests {

namespace {

/// What is wrong at first: the program finds it in the materials, which come first.
constexpr const char* first_state =
    "INSERT INTO Material_thicknesses (object_id, value)"
    " SELECT id, 0 FROM Material WHERE name = 'Kork'";

/// What is wrong then: the library finds the one, before all else, and the program the other one in
/// the compositions, after the materials.
constexpr const char* second_state =
    "BEGIN IMMEDIATE; DELETE FROM Material_thicknesses WHERE value = 0;"
    "UPDATE Composition_layers SET value_thickness = CASE"
    " WHEN object_id = (SELECT id FROM Composition WHERE name = 'Lehmwand') THEN 0 ELSE -1 END;"
    "COMMIT";

/// A command that reads, beside somebody who changes the library at any moment when that is
/// possible.
class OneState : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const Scene scene;
    PlainDatabase office(scene.path() + "/office.lib");
    office.execute(first_state);
    first_ = scene.run(arguments_);
    office.execute(second_state);
    second_ = scene.run(arguments_);
    ASSERT_NE(first_.out, second_.out);
  }

  /// Stops the command before the call of that number, and changes the library meanwhile. Returns
  /// false where there are not so many calls.
  bool run_with_change(unsigned long call) {
    const Scene scene;
    PlainDatabase office(scene.path() + "/office.lib");
    office.execute(first_state);
    const Fault pause{Trouble::Pause, 0, false, SYS_fcntl, call};
    const SharedPlan plan(pause, scene.path());
    const auto process = scene.start(arguments_, &plan);
    const bool stopped = process->is_stopped();
    if (stopped) change(office);
    process->send(SIGCONT);
    const Ending run = process->wait();
    EXPECT_THAT(run.out, AnyOf(first_.out, second_.out)) << "two states, at lock " << call;
    EXPECT_THAT(run.status, AnyOf(first_.status, second_.status)) << run.err;
    return stopped;
  }

  void change(PlainDatabase& office) {
    try {
      office.execute(second_state);
      ++changed_;
    } catch (const std::runtime_error&) {
      office.execute("ROLLBACK");
      ++kept_waiting_;
    }
  }

  const Arguments arguments_{GetParam(), "office.lib"};
  Ending first_;
  Ending second_;
  unsigned changed_ = 0;
  unsigned kept_waiting_ = 0;
};

TEST_P(OneState, is_what_a_command_reads) {
  unsigned long call = 1;
  while (run_with_change(call) && !HasFailure()) ++call;
  EXPECT_GT(changed_, 1u);
  EXPECT_GT(kept_waiting_, 0u) << "the library was never held";
}

INSTANTIATE_TEST_SUITE_P(Of, OneState, testing::Values("check", "export"));

}  // namespace

}  // namespace veldra_tests
