// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/terminal.hpp"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace veldra_tests {

namespace {

constexpr int patience = 60'000;  // milliseconds

[[noreturn]] void run_program(const std::string& folder,
                              const std::vector<std::string>& arguments) {
  std::vector<std::string> texts{VELDRA_PROGRAM};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  if (::chdir(folder.c_str()) == 0) ::execv(VELDRA_PROGRAM, pointers.data());
  ::_exit(127);
}

}  // namespace

bool terminals_can_be_made() {
  int ends[2] = {-1, -1};
  if (::openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) != 0) return false;
  ::close(ends[0]);
  ::close(ends[1]);
  return true;
}

TerminalRun::TerminalRun(const std::string& folder, const std::vector<std::string>& arguments,
                         unsigned short columns) {
  winsize size{};
  size.ws_col = columns;
  child_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
  if (child_ < 0) throw std::runtime_error("there is no terminal to be had");
  if (child_ == 0) run_program(folder, arguments);
}

TerminalRun::~TerminalRun() {
  if (child_ > 0) {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }
  ::close(terminal_);
}

/// Reads what has come. The terminal is gone when its last user has ended.
bool TerminalRun::receive() {
  pollfd waiting{terminal_, POLLIN, 0};
  if (::poll(&waiting, 1, patience) <= 0)
    throw std::runtime_error("the program is stuck: " + seen_);
  char block[4096];
  const auto count = ::read(terminal_, block, sizeof block);
  if (count <= 0) return false;
  seen_.append(block, static_cast<std::size_t>(count));
  return true;
}

bool TerminalRun::wait_for(const std::string& text) {
  while (seen_.find(text) == std::string::npos) {
    if (!receive()) return false;
  }
  return true;
}

void TerminalRun::type(const std::string& text) {
  if (::write(terminal_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("nothing can be typed");
  }
}

int TerminalRun::finish() {
  while (receive()) {
  }
  int status = 0;
  ::waitpid(child_, &status, 0);
  child_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace veldra_tests
