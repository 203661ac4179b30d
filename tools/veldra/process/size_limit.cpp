// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/size_limit.hpp"

#include <atomic>
#include <csignal>

namespace veldra_tool {

namespace {

std::atomic<bool> met{false};

extern "C" void note_size_limit(int) { met = true; }

}  // namespace

void notice_size_limit() noexcept {
  struct sigaction action {};
  action.sa_handler = note_size_limit;
  action.sa_flags = SA_RESTART;
  ::sigaction(SIGXFSZ, &action, nullptr);
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

bool size_limit_was_met() noexcept { return met; }

}  // namespace veldra_tool
