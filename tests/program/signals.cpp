// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/signals.hpp"

#include "program/judgement.hpp"
#include "reliability/soak.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <random>

namespace veldra_tests {

namespace {

using Clock = std::chrono::steady_clock;

/// How long after a signal the program may still be there, on a machine that has others to do.
constexpr auto patience = std::chrono::seconds(3);

struct Times {
  unsigned tried = 0;
  unsigned met = 0;  // before the command had come to its end
};

class SignalledCommand {
 public:
  explicit SignalledCommand(const Command& command) : reference_(command) {
    const auto start = Clock::now();
    const Scene scene(reference_.command.arguments);
    const SharedPlan plan(counting(), scene.path());
    scene.run(reference_.command.arguments, &plan);
    usual_ = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
  }

  void send(int signal, std::mt19937& random, Times& times) {
    const Scene scene(reference_.command.arguments);
    const SharedPlan plan(counting(), scene.path());
    const auto process = scene.start(reference_.command.arguments, &plan);
    ::usleep(static_cast<useconds_t>(random() % static_cast<unsigned long>(usual_.count())));
    const bool has_begun = plan->calls != 0;
    const bool met = !process->has_ended();
    process->send(signal);
    const auto sent = Clock::now();
    const Ending run = process->wait();
    ++times.tried;
    if (met) ++times.met;
    SCOPED_TRACE(reference_.command.name + ", signal " + std::to_string(signal) + " after " +
                 std::to_string(plan->calls) + " calls");
    EXPECT_LT(Clock::now() - sent, patience);
    expect_true(run, scene, signal, has_begun);
  }

 private:
  static Fault counting() { return {Trouble::Interrupt}; }

  /// Before the program has begun, the system ends it.
  void expect_true(const Ending& run, const Scene& scene, int signal, bool has_begun) {
    const bool kills = signal == SIGKILL;
    const State state =
        expect_whole_files(reference_, scene, kills ? Leftovers::TemporaryFile : Leftovers::None,
                           kept_text(run, scene));
    if (run.signal == signal && (kills || !has_begun)) {
      EXPECT_TRUE(kills || state != State::After);
    } else {
      expect_true_status(reference_, run, state);
    }
    expect_usable(reference_, scene, state);
  }

  Reference reference_;
  std::chrono::microseconds usual_{};
};

}  // namespace

void send_at_random(const std::vector<Command>& commands, int signal, unsigned times,
                    const std::string& what) {
  const unsigned seed = number_from_environment("VELDRA_SEED", 1);
  std::mt19937 random(seed);
  Times all;
  std::vector<SignalledCommand> signalled(commands.begin(), commands.end());
  while (all.met < times && all.tried != 4 * times && !testing::Test::HasFailure()) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    signalled[all.tried % signalled.size()].send(signal, random, all);
  }
  EXPECT_GT(2 * all.met, all.tried) << "most came to their end before";
  report_figure(what, all.met);
}

}  // namespace veldra_tests
