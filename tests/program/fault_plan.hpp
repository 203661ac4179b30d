// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_FAULT_PLAN_HPP
#define VELDRA_TESTS_PROGRAM_FAULT_PLAN_HPP

#include <atomic>

namespace veldra_tests {

/// What goes wrong.
enum class Trouble : int {
  Error,       ///< a call into the file system fails with `error`
  ShortWrite,  ///< a write takes half of its bytes and says so
  FullDisk,    ///< there is no room for the byte `point` that the files grow by
  Kill,        ///< SIGKILL before a call; a write is done by half before it
  Interrupt,   ///< SIGINT before a call
  Pause,       ///< SIGSTOP before a call
  NoMemory     ///< an allocation fails
};

/// What a test and the preloaded library in the program share, as the contents of a file that the
/// environment names. The calls that are counted are those that `error` is possible for.
struct FaultPlan {
  static constexpr const char* variable = "VELDRA_FAULT_PLAN";

  // What is wanted.
  Trouble trouble = Trouble::Error;
  int error = 0;
  unsigned long point = 0;  ///< which call, or byte of a full disk, from 1 on; 0 is none
  long only = -1;           ///< of errors and pauses, those of this call, by number; -1 is all
  bool lasting = false;     ///< all calls from there on, not just one
  char folder[256] = {};    ///< calls on files anywhere else are neither counted nor failed

  // What happened.
  std::atomic<unsigned long> calls{0};  ///< how many were counted; of a disk, bytes
  std::atomic<bool> fired{false};
  int number = -1;        ///< of the first call that failed
  int descriptor = -1;    ///< that it was given, if any
  char path[256] = {};    ///< that it was given, if any
  char second[256] = {};  ///< the new name, of a renaming or linking

  /// What was done to files, a line each: "make", "write", "cut", "sync" or "remove" with a name
  /// below the folder, which is "." itself, and "rename" or "link" with two. Of the same again and
  /// again only the first is there.
  char deeds[1 << 16] = {};
  unsigned deeds_length = 0;
};

}  // namespace veldra_tests

#endif
