// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_PROCESSES_HPP
#define VELDRA_TESTS_SUPPORT_PROCESSES_HPP

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

/// Runs the calls at the same moment, each in a process of its own, and gives the texts that they
/// return; what a call throws is "thrown: ..." and a process that dies is "died".
std::vector<std::string> run_at_once(const std::vector<std::function<std::string()>>& calls);

/// The same for one call in a process without the rights of the superuser, who may write every
/// file; other users run the call as they are.
std::string run_without_privileges(const std::function<std::string()>& call);

class Pipe;

/// Another process that holds a lock on a database.
class LockingProcess {
 public:
  /// Returns when the other process has executed `begin`, such as "BEGIN IMMEDIATE", on the file;
  /// it commits after `milliseconds`. Throws `std::runtime_error` when it cannot execute that.
  LockingProcess(const std::string& path, const std::string& begin, int milliseconds);
  LockingProcess(const LockingProcess&) = delete;
  LockingProcess& operator=(const LockingProcess&) = delete;

  /// Ends the other process, whether its time has come or not.
  ~LockingProcess();

  /// Whether its time has come: it is about to commit, or has done so.
  bool time_is_over() const;

 private:
  std::unique_ptr<Pipe> told_;
  pid_t process_;
};

/// The files in `folder` that this process holds open, by name, once for each time.
std::vector<std::string> open_files(const std::string& folder);

}  // namespace veldra_tests

#endif
