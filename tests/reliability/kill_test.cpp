// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/fault_vfs.hpp"
#include "reliability/scene.hpp"
#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"
#include "reliability/workload.hpp"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>

namespace veldra_tests {

namespace {

const unsigned steps = 40;

// Another process that works on the files of a scene until it is killed, and tells of each step
// that it has done.
class KilledProcess {
 public:
  KilledProcess(const Scene& scene, unsigned seed) {
    if (::pipe(told_) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ == 0) work(scene, seed);
    ::close(told_[1]);
  }
  KilledProcess(const KilledProcess&) = delete;
  KilledProcess& operator=(const KilledProcess&) = delete;
  ~KilledProcess() { ::close(told_[0]); }

  // Waits for some steps to be done, lets the process go on for a moment, and kills it.
  void kill_after(unsigned wait_for, unsigned microseconds) {
    while (done_ != wait_for && next_step()) ++done_;
    ::usleep(microseconds);
    ::kill(process_, SIGKILL);
    while (next_step()) ++done_;
    int status = 0;
    ::waitpid(process_, &status, 0);
    killed_ = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    EXPECT_TRUE(killed_ || (WIFEXITED(status) && WEXITSTATUS(status) == 0))
        << "the process has failed";
  }

  // How many steps it has told of.
  unsigned done() const { return done_; }

  // Whether it was still at work then.
  bool killed() const { return killed_; }

 private:
  bool next_step() {
    char byte;
    return ::read(told_[0], &byte, 1) == 1;
  }

  [[noreturn]] void work(const Scene& scene, unsigned seed) {
    const Thrown thrown = thrown_by([&] {
      const auto library = veldra::Library::open(FaultVfs::name_of(scene.path()).c_str(), false);
      const auto source =
          veldra::Library::open(FaultVfs::name_of(scene.source_path()).c_str(), true);
      RecordingReactor reactor;
      reactor.decision = RecordingReactor::UseExisting;
      library->setReactor(&reactor);
      Workload workload(library, source, seed);
      for (unsigned n = 0; n != steps; ++n) {
        workload.step(n);
        if (::write(told_[1], "s", 1) != 1) ::_exit(2);
      }
    });
    ::_exit(thrown == "" ? 0 : 3);
  }

  int told_[2];
  pid_t process_;
  unsigned done_ = 0;
  bool killed_ = false;
};

struct Kills {
  unsigned tried = 0;
  unsigned killed = 0;              // before the process came to its end by itself
  unsigned within_transaction = 0;  // of these, with a journal left

  bool are_enough(unsigned wanted) const { return killed >= wanted && within_transaction != 0; }
};

void kill_once(const std::vector<std::vector<std::string>>& states, unsigned seed,
               std::mt19937& random, Kills& kills) {
  const Deadline deadline;
  Scene scene(Start::Current, "");
  KilledProcess process(scene, seed);
  process.kill_after(random() % steps, random() % 5000);
  const unsigned done = process.done();
  ++kills.tried;
  if (process.killed()) ++kills.killed;
  if (process.killed() && file_exists(scene.path() + "-journal")) ++kills.within_transaction;

  SCOPED_TRACE("killed after step " + std::to_string(done));
  const std::string rows = scene.rows();
  // The step that was running has left the state before it, one between, or the one after it.
  const bool expected = done == steps ? rows == states.back().back()
                                      : std::count(states[done].begin(), states[done].end(), rows);
  EXPECT_TRUE(expected) << "something that was told of is lost, or something is there in part";
  expect_sane(scene, Start::Current);
  scene.open();
  expect_usable(*scene.library);
  expect_clean_end(scene);
}

TEST(KilledProcess, loses_nothing_that_it_told_of) {
  const unsigned seed = number_from_environment("VELDRA_SEED", 1);
  std::mt19937 random(seed);
  std::vector<std::vector<std::string>> states;
  const unsigned wanted = number_or(16, 500);
  Kills kills;
  while (!kills.are_enough(wanted) && kills.tried != 4 * wanted && !testing::Test::HasFailure()) {
    const unsigned n = kills.tried;
    if (n % 50 == 0) {
      const Scene scene(Start::Current, "");
      states = states_of(scene.path(), scene.source_path(), seed + n, steps);
    }
    kill_once(states, seed + n / 50 * 50, random, kills);
  }
  EXPECT_TRUE(kills.are_enough(wanted));
  EXPECT_GT(2 * kills.killed, kills.tried) << "most came to their end before";
  report_figure("killed processes", kills.killed);
  report_figure("of which in the middle of a transaction", kills.within_transaction);
  report_figure("processes that were to be killed", kills.tried);
}

}  // namespace

}  // namespace veldra_tests
