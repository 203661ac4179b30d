// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_LOGGED_FIXTURE_HPP
#define VELDRA_TESTS_STORE_LOGGED_FIXTURE_HPP

#include "support/library_test.hpp"
#include "support/statement_log.hpp"

namespace veldra_tests {

/// Stands before the library, whose connections are logged from their opening on.
struct Logged {
  StatementLog log;
};

/// The statements on a library since it was made.
class LoggedTest : protected Logged, public LibraryTest {
 protected:
  LoggedTest() { log.take(); }
};

}  // namespace veldra_tests

#endif
