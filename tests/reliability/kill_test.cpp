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

  // Waits for some steps to be done, lets the process go on for a moment, and kills it. Returns how
  // many steps it has told of.
  unsigned kill_after(unsigned wait_for, unsigned microseconds) {
    unsigned done = 0;
    while (done != wait_for && next_step()) ++done;
    ::usleep(microseconds);
    ::kill(process_, SIGKILL);
    while (next_step()) ++done;
    int status = 0;
    ::waitpid(process_, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == SIGKILL : WEXITSTATUS(status) == 0)
        << "the process has failed";
    return done;
  }

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
      PlainReactor reactor;
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
};

void kill_once(const std::vector<std::vector<std::string>>& states, unsigned seed,
               std::mt19937& random) {
  const Deadline deadline;
  Scene scene(Start::Current, "");
  KilledProcess process(scene, seed);
  const unsigned done = process.kill_after(random() % steps, random() % 20000);

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
  const unsigned kills = number_or(12, 500);
  for (unsigned n = 0; n != kills && !testing::Test::HasFailure(); ++n) {
    if (n % 50 == 0) {
      const Scene scene(Start::Current, "");
      states = states_of(scene.path(), scene.source_path(), seed + n, steps);
    }
    kill_once(states, seed + n / 50 * 50, random);
  }
  report_figure("killed processes", kills);
}

}  // namespace

}  // namespace veldra_tests
