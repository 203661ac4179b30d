// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_STATEMENT_LOG_HPP
#define VELDRA_TESTS_SUPPORT_STATEMENT_LOG_HPP

#include <string>
#include <vector>

namespace veldra_tests {

using Statements = std::vector<std::string>;

/// The statements of all connections that are opened while the log is there, in the order in which
/// they ended. One log at a time.
class StatementLog {
 public:
  StatementLog();
  StatementLog(const StatementLog&) = delete;
  StatementLog& operator=(const StatementLog&) = delete;
  ~StatementLog();

  /// The statements since the last call, word for word as they were given to SQLite.
  Statements take_all();

  /// Of these only those that read or write rows of objects.
  Statements take();
};

}  // namespace veldra_tests

#endif
