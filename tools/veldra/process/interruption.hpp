// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_INTERRUPTION_HPP
#define VELDRA_TOOL_PROCESS_INTERRUPTION_HPP

#include <veldra/veldra.hpp>

#include <csignal>
#include <string>

namespace veldra_tool {

// How the program ends when a signal asks it to. The signal ends what the open libraries are at,
// and all other work looks now and then whether it should go on; so everything is closed in order.
// What does not look, such as waiting for the lock of a library that is being opened, is ended
// from the handler a moment later, unless that could leave something half done.

/// Thrown where work stops because the program was asked to. It is no `std::exception`, so that
/// nobody takes it for a failure of the work.
class Stopped {};

/// Catches the signals that would end the program, but for those that its starter has it ignore.
void catch_signals();

bool stop_asked() noexcept;

/// Throws `Stopped` when the program was asked to stop.
void stop_if_asked();

/// What is said when the program stops from now on, such as "'a.lib' is as it was".
void tell_when_stopped(const std::string& state) noexcept;

/// Says that the program was interrupted, and what was to be told then.
void say_stopped() noexcept;

/// From now on the program ends by itself only, and in order.
void forbid_sudden_end() noexcept;

/// Has signals end what a library is at, for as long as it lives.
class Interruptible {
 public:
  explicit Interruptible(veldra::Library& library) noexcept;
  Interruptible(const Interruptible&) = delete;
  Interruptible& operator=(const Interruptible&) = delete;
  ~Interruptible();

 private:
  veldra::Library* library_;
};

/// Keeps the caught signals waiting, for as long as it lives.
class SignalPause {
 public:
  SignalPause() noexcept;
  SignalPause(const SignalPause&) = delete;
  SignalPause& operator=(const SignalPause&) = delete;
  ~SignalPause();

 private:
  sigset_t before_;
};

/// A file that goes, with what a database keeps beside it, when this goes or the program ends
/// suddenly.
class Leftover {
 public:
  /// Signals are to wait from before the file is made.
  explicit Leftover(std::string path);
  Leftover(const Leftover&) = delete;
  Leftover& operator=(const Leftover&) = delete;
  ~Leftover();

  const std::string& path() const { return path_; }

  /// Leaves to itself what has this name from now on.
  void forget() noexcept;

 private:
  std::string path_;
  bool left_ = true;
};

}  // namespace veldra_tool

#endif
