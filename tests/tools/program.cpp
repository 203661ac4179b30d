// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

extern char** environ;

namespace veldra_tests {

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

/// The streams of a child: nothing to read, and a file each to write.
class Streams {
 public:
  Streams(const std::string& out, const std::string& err) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    open(STDOUT_FILENO, out);
    open(STDERR_FILENO, err);
  }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }

  void change_folder(const std::string& folder) {
    posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  void open(int descriptor, const std::string& file) {
    posix_spawn_file_actions_addopen(&actions_, descriptor, file.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
  }

  posix_spawn_file_actions_t actions_;
};

}  // namespace

Running::Running(const std::string& folder, std::vector<std::string> texts) {
  Streams streams(outputs_ / "out", outputs_ / "err");
  streams.change_folder(folder);
  const std::string program = texts.front();
  const int error = posix_spawn(&process_, program.c_str(), streams.get(), nullptr,
                                pointers(texts).data(), environ);
  if (error != 0) throw std::runtime_error(std::strerror(error));
}

Running::~Running() {
  if (ended_) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, &status_, 0);
}

void Running::signal(int number) const { ::kill(process_, number); }

bool Running::ends_within(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (!ended_) {
    ended_ = ::waitpid(process_, &status_, WNOHANG) == process_;
    if (ended_ || std::chrono::steady_clock::now() > end) break;
    ::usleep(1000);
  }
  return ended_;
}

Outcome Running::outcome() {
  if (!ended_) ::waitpid(process_, &status_, 0);
  ended_ = true;
  Outcome run;
  if (WIFEXITED(status_)) run.status = WEXITSTATUS(status_);
  run.out = read_file(outputs_ / "out");
  run.err = read_file(outputs_ / "err");
  return run;
}

ProgramTest::ProgramTest() { ::setenv("XDG_CONFIG_HOME", path("configuration").c_str(), 1); }

std::vector<std::string> ProgramTest::program() const {
  std::vector<std::string> texts = runner_;
  texts.push_back(VELDRA_PROGRAM);
  return texts;
}

std::unique_ptr<Running> ProgramTest::start(const std::vector<std::string>& arguments) const {
  auto texts = program();
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  return std::make_unique<Running>(folder_.path(), texts);
}

/// The shell gets the program as its arguments, because its path may have blanks.
std::unique_ptr<Running> ProgramTest::start_shell(const std::string& command) const {
  std::string kept;
  std::string words;
  const auto texts = program();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string number = std::to_string(i);
    kept += "p" + number + "=$" + number + "; ";
    words += "\"$p" + number + "\" ";
  }
  std::vector<std::string> shell{"/bin/sh", "-c",
                                 kept + "veldra() { " + words + "\"$@\"; }; " + command};
  shell.insert(shell.end(), texts.begin(), texts.end());
  return std::make_unique<Running>(folder_.path(), shell);
}

Outcome ProgramTest::veldra(const std::vector<std::string>& arguments) const {
  return start(arguments)->outcome();
}

Outcome ProgramTest::shell(const std::string& command) const {
  return start_shell(command)->outcome();
}

/// The counts of what is run, which are files too, go elsewhere: one that is cut off would spoil
/// those of all other runs.
Outcome ProgramTest::on_full_disk(int half_kilobytes, const std::string& arguments) const {
  return shell("export GCOV_PREFIX=$(mktemp -d) GCOV_ERROR_FILE=/dev/null; (ulimit -f " +
               std::to_string(half_kilobytes) + "; veldra " + arguments +
               "); status=$?; rm -r $GCOV_PREFIX; exit $status");
}

std::vector<std::string> ProgramTest::names(const std::string& folder) const {
  std::vector<std::string> all;
  for (const auto& entry : std::filesystem::directory_iterator(path(folder))) {
    all.push_back(entry.path().filename().string());
  }
  std::sort(all.begin(), all.end());
  return all;
}

Outcome ProgramTest::must(const std::vector<std::string>& arguments) const {
  auto run = veldra(arguments);
  EXPECT_EQ(run.status, 0) << run.err;
  return run;
}

void ProgramTest::write(const std::string& file, const std::string& text) const {
  write_file(path(file), text);
}

std::shared_ptr<veldra::Library> ProgramTest::library(const std::string& file) const {
  return veldra::Library::create(path(file).c_str(), veldra::Unit::Millimetres, "");
}

unsigned ProgramTest::count(const std::string& file, const std::string& kind) const {
  return must({"info", file, "--json"}).json()["counts"][kind].get<unsigned>();
}

bool ProgramTest::lose_privileges() {
  const std::string runner = "/usr/bin/setpriv";
  if (::geteuid() != 0) return true;
  if (!file_exists(runner)) return false;
  const std::string privileges = "-dac_override,-dac_read_search";
  runner_ = {runner, "--inh-caps=" + privileges, "--bounding-set=" + privileges};
  return true;
}

testing::Matcher<std::string> is_one_sentence() {
  using testing::AllOf;
  using testing::HasSubstr;
  using testing::MatchesRegex;
  using testing::Not;
  return AllOf(MatchesRegex("veldra: [^\n]+\n"), Not(HasSubstr("odb")), Not(HasSubstr("SQL")),
               Not(HasSubstr("what()")), Not(HasSubstr("exception")));
}

bool wait_until(const std::function<bool()>& condition) {
  for (int i = 0; i < 10000; ++i) {
    if (condition()) return true;
    ::usleep(1000);
  }
  return false;
}

}  // namespace veldra_tests
