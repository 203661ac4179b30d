// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_FAULT_VFS_HPP
#define VELDRA_TESTS_RELIABILITY_FAULT_VFS_HPP

#include <string>

namespace veldra_tests {

/// An SQLite VFS on top of the usual one, which fails when it is told to.
///
///     auto library = Library::create(FaultVfs::name_of(path).c_str(), Unit::Millimetres, "");
///     FaultVfs::arm({FaultVfs::Trouble::Error, 17, FaultVfs::Repetition::Once});
///     ... the 17th call from now on fails ...
///     FaultVfs::disarm();
///
/// A failing call does nothing and returns the error that SQLite has for it. Nothing is really
/// synced, which makes the tests fast. Not for several threads.
class FaultVfs {
 public:
  enum class Trouble {
    Error,       ///< at any call: open, read, write, sync, truncate, delete, lock, access, size
    DiskFull,    ///< at a write that makes a file longer
    ShortWrite,  ///< at a write, half of which is done
    PowerLoss,   ///< at a call that changes the disk; nothing works from then on
    KeptLock     ///< at giving back a lock
  };

  enum class Repetition { Once, Persistent };

  struct Fault {
    Trouble trouble;
    unsigned at;  ///< the first of the calls that `trouble` is about has the number 1
    Repetition repetition;
  };

  /// The name by which a library opens the file through this VFS.
  static std::string name_of(const std::string& path);

  /// Starts to count.
  static void arm(const Fault& fault);

  /// Everything works from now on.
  static void disarm();

  /// Whether a call has failed since `arm`.
  static bool fired();

  /// How many of the calls that the fault is about were made since `arm`.
  static unsigned calls();

  /// After a loss of power, and when all files are closed: makes the files what a disk may hold
  /// then. Every change since the last sync of a file was either made, or lost, or made in part;
  /// chance decides, from the number given. So a later change may be there without an earlier one.
  static void leave_what_reached_the_disk(unsigned seed);
};

}  // namespace veldra_tests

#endif
