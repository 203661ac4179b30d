#ifndef VELDRA_TESTS_SUPPORT_PROCESSES_HPP
#define VELDRA_TESTS_SUPPORT_PROCESSES_HPP

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace veldra_tests {

/// Runs the calls at the same moment, each in a process of its own, and gives the texts that they
/// return; what a call throws is "thrown: ..." and a process that dies is "died".
std::vector<std::string> run_at_once(const std::vector<std::function<std::string()>>& calls);

/// The same for one call in a process without the rights of the superuser, who may write every
/// file; other users run the call as they are.
std::string run_without_privileges(const std::function<std::string()>& call);

/// Another process that holds a lock on a database.
class LockingProcess {
 public:
  /// Returns when the other process has executed `begin`, such as "BEGIN IMMEDIATE", on the file;
  /// it commits after `milliseconds`.
  LockingProcess(const std::string& path, const std::string& begin, int milliseconds);
  LockingProcess(const LockingProcess&) = delete;
  LockingProcess& operator=(const LockingProcess&) = delete;

  /// Ends the other process, whether its time has come or not.
  ~LockingProcess();

 private:
  pid_t process_;
};

/// The files in `folder` that this process holds open, by name, once for each time.
std::vector<std::string> open_files(const std::string& folder);

}  // namespace veldra_tests

#endif
