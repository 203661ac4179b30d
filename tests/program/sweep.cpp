// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/sweep.hpp"

#include "program/judgement.hpp"
#include "reliability/soak.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <iostream>

namespace veldra_tests {

namespace {

/// After so many failures of one command, more of them tell nothing new.
constexpr int enough = 3;

/// Of a disk that is full: no divisor of what is written at once.
constexpr unsigned long bytes_of_a_point = 499;

int failed_expectations() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

class CommandSweep {
 public:
  CommandSweep(const Command& command, const Fault& fault) : reference_(command), fault_(fault) {}

  unsigned run(unsigned sample) {
    const unsigned long points = count_points();
    const unsigned long unit = fault_.trouble == Trouble::FullDisk ? bytes_of_a_point : 1;
    const unsigned long stride =
        unit * stride_or(static_cast<unsigned>(std::max(1ul, points / unit / sample)));
    unsigned fired = 0;
    int failures = 0;
    for (fault_.point = 1; fault_.point <= points; fault_.point += stride) {
      const int failed = failed_expectations();
      if (run_once()) ++fired;
      if (failed_expectations() != failed && ++failures == enough) break;
    }
    return fired;
  }

 private:
  /// Nothing goes wrong in this run, and nothing may be different.
  unsigned long count_points() {
    const Scene scene(reference_.command.arguments);
    fault_.point = 0;
    const SharedPlan plan(fault_, scene.path());
    const Ending run = scene.run(reference_.command.arguments, &plan);
    expect_true_status(reference_, run, expect_whole_files(reference_, scene, Leftovers::None, ""));
    EXPECT_EQ(run.status, reference_.run.status) << run.err;
    return plan->calls;
  }

  bool run_once() {
    const Scene scene(reference_.command.arguments);
    const SharedPlan plan(fault_, scene.path());
    const Ending run = scene.run(reference_.command.arguments, &plan);
    SCOPED_TRACE(reference_.command.name + ", " + fault_.text() + ", " + plan.text());
    const State state =
        expect_whole_files(reference_, scene, leftovers(plan), excused(plan, run, scene));
    if (fault_.trouble == Trouble::Kill && plan->fired) {
      EXPECT_EQ(run.signal, SIGKILL);
    } else {
      expect_true_status(reference_, run, state);
    }
    if (is_harmless()) {
      EXPECT_EQ(run.status, reference_.run.status) << run.err;
    }
    expect_usable(reference_, scene, state);
    return plan->fired;
  }

  /// Writing goes on where it has stopped, and what a system does not have is done in another way.
  bool is_harmless() const {
    return fault_.trouble == Trouble::ShortWrite || fault_.error == ENOSYS ||
           fault_.error == EOPNOTSUPP;
  }

  Leftovers leftovers(const SharedPlan& plan) const {
    if (!plan->fired) return Leftovers::None;
    switch (fault_.trouble) {
      case Trouble::Kill:
        return Leftovers::TemporaryFile;
      case Trouble::Error:
        // Removing is among what fails.
        return fault_.lasting ? Leftovers::TemporaryFile : Leftovers::Journal;
      case Trouble::NoMemory:
        // To take its JSON down needs memory, and without any the program ends at once.
        return fault_.lasting && edits() ? Leftovers::TemporaryFile : Leftovers::None;
      default:
        return Leftovers::None;
    }
  }

  bool edits() const { return reference_.command.arguments.front() == "edit"; }

  /// The file that was not removed, because its removal was what failed, or on purpose.
  std::string excused(const SharedPlan& plan, const Ending& run, const Scene& scene) const {
    const std::string kept = kept_text(run, scene);
    if (!kept.empty()) return kept;
    const bool removal = plan->number == SYS_unlink || plan->number == SYS_unlinkat;
    if (!removal || fault_.trouble != Trouble::Error) return "";
    const std::string path = plan->path;
    return path.substr(path.rfind('/') + 1);
  }

  Reference reference_;
  Fault fault_;
};

}  // namespace

void sweep(const std::vector<Command>& commands, const Fault& fault, unsigned sample,
           const std::string& what) {
  unsigned long all = 0;
  for (const Command& command : commands) {
    std::cout << command.name << ": " << std::flush;
    const unsigned fired = CommandSweep(command, fault).run(sample);
    std::cout << fired << " faults" << std::endl;
    EXPECT_GT(fired, 0u) << command.name;
    all += fired;
  }
  report_figure(what, all);
}

}  // namespace veldra_tests
