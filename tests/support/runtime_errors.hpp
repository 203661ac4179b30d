// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_RUNTIME_ERRORS_HPP
#define VELDRA_TESTS_SUPPORT_RUNTIME_ERRORS_HPP

#include <functional>
#include <map>
#include <string>

namespace veldra_tests {

/// Calls that throw what the persistence runtime and utf8-cpp throw, by the names of the
/// exceptions, but for errors of the database.
const std::map<std::string, std::function<void()>>& runtime_errors();

/// Throws an error of the database as the runtime does.
[[noreturn]] void throw_database_error(int code, int extended_code, const std::string& message);

}  // namespace veldra_tests

#endif
