// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/interruption.hpp"

#include "process/status.hpp"
#include "process/writing.hpp"

#include <poll.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string_view>
#include <utility>

namespace veldra_tool {

namespace {

constexpr suseconds_t patience = 600000;  // microseconds

// What the handler looks at. All of it changes while signals wait, or at once.
std::atomic<bool> asked{false};
std::atomic<bool> told{false};
std::atomic<bool> sudden_end_forbidden{false};
std::array<std::atomic<veldra::Library*>, 8> libraries{};
std::array<std::atomic<const char*>, 8> leftovers{};
char state[2 * PATH_MAX] = "nothing was done";

static_assert(std::atomic<veldra::Library*>::is_always_lock_free, "the handler must not wait");

template <class Slots, class Value>
void replace(Slots& slots, Value old, Value value) noexcept {
  for (auto& slot : slots) {
    if (slot != old) continue;
    slot = value;
    return;
  }
}

/// The file itself goes last: without it nobody would know whose the others are.
void remove_with_companions(const char* path) noexcept {
  char name[PATH_MAX + 16];
  for (const char* suffix : {"-journal", "-wal", "-shm", ""}) {
    if (std::strlen(path) + std::strlen(suffix) >= sizeof name) continue;
    std::strcpy(name, path);
    std::strcat(name, suffix);
    ::unlink(name);
  }
}

struct Sentence {
  char text[sizeof state + 32];
};

Sentence sentence_when_stopped() noexcept {
  Sentence sentence{"veldra: interrupted; "};
  std::strcat(sentence.text, state);
  std::strcat(sentence.text, "\n");
  return sentence;
}

/// Somebody may have stopped the terminal.
void say_without_waiting(const char* text) noexcept {
  pollfd ready{STDERR_FILENO, POLLOUT, 0};
  if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return;
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text, std::strlen(text));
}

void end_suddenly() noexcept {
  for (const auto& leftover : leftovers) {
    if (const char* path = leftover) remove_with_companions(path);
  }
  if (!told) say_without_waiting(sentence_when_stopped().text);
  ::_exit(static_cast<int>(Status::Failed));
}

/// What is missed by a library that was just about to begin, or by a call into the system that was
/// just about to wait, comes again.
void come_again() noexcept {
  const itimerval soon{{0, patience}, {0, patience}};
  ::setitimer(ITIMER_REAL, &soon, nullptr);
}

extern "C" void stop_on_signal(int signal) {
  const int error = errno;
  const bool again = asked.exchange(true);
  if (again && signal == SIGALRM && !sudden_end_forbidden) end_suddenly();
  for (const auto& library : libraries) {
    if (veldra::Library* open = library) open->interrupt();
  }
  if (!again) come_again();
  errno = error;
}

/// Those that end a program unless it catches them, faults of the program itself apart.
sigset_t ending_signals() noexcept {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGVTALRM, SIGPROF, SIGUSR1,
                           SIGUSR2, SIGXCPU, SIGPOLL, SIGPWR, SIGSTKFLT}) {
    sigaddset(&signals, signal);
  }
  for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal) sigaddset(&signals, signal);
  return signals;
}

bool is_ignored(int signal) noexcept {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void catch_signals() {
  std::signal(SIGPIPE, SIG_IGN);
  struct sigaction action {};
  action.sa_handler = stop_on_signal;
  action.sa_mask = ending_signals();
  for (int signal = 1; signal <= SIGRTMAX; ++signal) {
    if (sigismember(&action.sa_mask, signal) != 1) continue;
    if (signal == SIGALRM || !is_ignored(signal)) ::sigaction(signal, &action, nullptr);
  }
  sigset_t timer;
  sigemptyset(&timer);
  sigaddset(&timer, SIGALRM);
  ::pthread_sigmask(SIG_UNBLOCK, &timer, nullptr);
}

bool stop_asked() noexcept { return asked; }

void stop_if_asked() {
  if (stop_asked()) throw Stopped();
}

void tell_when_stopped(const std::string& text) noexcept {
  const SignalPause pause;
  const std::size_t size = std::min(text.size(), sizeof state - 1);
  std::memcpy(state, text.data(), size);
  state[size] = '\0';
}

/// What comes after it may take so long that the alarm ends it.
void say_stopped() noexcept {
  say(sentence_when_stopped().text);
  told = true;
}

void forbid_sudden_end() noexcept { sudden_end_forbidden = true; }

Interruptible::Interruptible(veldra::Library& library) noexcept : library_(&library) {
  replace(libraries, static_cast<veldra::Library*>(nullptr), library_);
}

Interruptible::~Interruptible() {
  const SignalPause pause;
  replace(libraries, library_, static_cast<veldra::Library*>(nullptr));
}

SignalPause::SignalPause() noexcept {
  const sigset_t signals = ending_signals();
  ::pthread_sigmask(SIG_BLOCK, &signals, &before_);
}

SignalPause::~SignalPause() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

Leftover::Leftover(std::string path) : path_(std::move(path)) {
  replace(leftovers, static_cast<const char*>(nullptr), path_.c_str());
}

Leftover::~Leftover() {
  if (!left_) return;
  remove_with_companions(path_.c_str());
  forget();
}

void Leftover::forget() noexcept {
  const SignalPause pause;
  replace(leftovers, path_.c_str(), static_cast<const char*>(nullptr));
  left_ = false;
}

}  // namespace veldra_tool
