// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

extern char** environ;

namespace veldra_tests {

namespace {

constexpr int patience = 60000;  // milliseconds

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

std::vector<std::string> whole_environment(const std::vector<std::string>& more) {
  std::vector<std::string> result = more;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const std::string name = text.substr(0, text.find('=') + 1);
    bool replaced = false;
    for (const auto& other : more) replaced = replaced || other.compare(0, name.size(), name) == 0;
    if (!replaced) result.push_back(text);
  }
  return result;
}

}  // namespace

Process::Process(const std::string& folder, const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment) {
  std::vector<std::string> texts{VELDRA_PROGRAM};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<std::string> surroundings = whole_environment(environment);
  const int writing = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (outputs_ / "out").c_str(), writing,
                                   0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (outputs_ / "err").c_str(), writing,
                                   0600);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  const int error = posix_spawn(&process_, VELDRA_PROGRAM, &actions, nullptr,
                                pointers(texts).data(), pointers(surroundings).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error(std::strerror(error));
}

Process::~Process() {
  if (process_ == 0) return;
  send(SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void Process::send(int signal) const { ::kill(process_, signal); }

bool Process::has_ended() const {
  siginfo_t info{};
  ::waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOHANG | WNOWAIT);
  return info.si_pid != 0;
}

bool Process::is_stopped() const {
  siginfo_t info{};
  ::waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WSTOPPED | WNOWAIT);
  return info.si_code == CLD_STOPPED;
}

Ending Process::wait() {
  const int handle = static_cast<int>(::syscall(SYS_pidfd_open, process_, 0));
  pollfd end{handle, POLLIN, 0};
  if (handle >= 0 && ::poll(&end, 1, patience) == 0) {
    ADD_FAILURE() << "the program does not come to its end";
    send(SIGKILL);
  }
  ::close(handle);
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = 0;
  Ending run;
  if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) run.signal = WTERMSIG(status);
  run.out = read_file(outputs_ / "out");
  run.err = read_file(outputs_ / "err");
  return run;
}

}  // namespace veldra_tests
