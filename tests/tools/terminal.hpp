// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_TOOLS_TERMINAL_HPP
#define VELDRA_TESTS_TOOLS_TERMINAL_HPP

#include <sys/types.h>

#include <string>
#include <vector>

namespace veldra_tests {

/// Not where /dev/pts is missing, as in a bare root folder.
bool terminals_can_be_made();

/// A run of the built program with its three streams on a terminal.
class TerminalRun {
 public:
  /// With 0 columns the terminal does not say how many it has.
  TerminalRun(const std::string& folder, const std::vector<std::string>& arguments,
              unsigned short columns = 0);
  TerminalRun(const TerminalRun&) = delete;
  TerminalRun& operator=(const TerminalRun&) = delete;
  ~TerminalRun();

  /// Waits until a text has come; returns false when the program has ended without it.
  bool wait_for(const std::string& text);

  void type(const std::string& text);

  /// Waits until the program has ended. Gives its status; -1 when a signal ended it.
  int finish();

  /// All that has come so far.
  const std::string& seen() const { return seen_; }

 private:
  bool receive();

  int terminal_ = -1;
  pid_t child_ = -1;
  std::string seen_;
};

}  // namespace veldra_tests

#endif
