// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_PROCESS_HPP
#define VELDRA_TESTS_PROGRAM_PROCESS_HPP

#include "support/temporary.hpp"

#include <sys/types.h>

#include <string>
#include <vector>

namespace veldra_tests {

/// What a run of the program gave.
struct Ending {
  int status = -1;  ///< the exit status; -1 when a signal ended the program
  int signal = 0;   ///< that ended it
  std::string out;
  std::string err;
};

/// A run of the program in a folder, with `environment` besides what the tests have.
class Process {
 public:
  Process(const std::string& folder, const std::vector<std::string>& arguments,
          const std::vector<std::string>& environment);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  void send(int signal) const;

  /// Whether it has come to its end.
  bool has_ended() const;

  /// Waits until it has been stopped; returns false when it has come to its end instead.
  bool is_stopped() const;

  /// Waits for its end. After a minute, SIGKILL makes that, and the test has failed.
  Ending wait();

 private:
  TemporaryFolder outputs_;
  pid_t process_ = 0;
};

}  // namespace veldra_tests

#endif
