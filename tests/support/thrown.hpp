// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_THROWN_HPP
#define VELDRA_TESTS_SUPPORT_THROWN_HPP

#include <functional>
#include <ostream>
#include <string>

namespace veldra_tests {

/// What a call threw, by name, so that tests need no headers of the runtime.
struct Thrown {
  std::string type;  ///< such as "veldra::ObjectInUse", "odb::timeout"; empty: nothing was thrown
  std::string text;  ///< what(), or the text of `ObjectNotUnique`
  int code = 0;      ///< of `odb::sqlite::database_exception`
  int extended = 0;  ///< of `odb::sqlite::database_exception`

  bool operator==(const char* name) const { return type == name; }
};

std::ostream& operator<<(std::ostream& out, const Thrown& thrown);

/// Runs `call` and tells what it threw. Exceptions of the standard library, of utf8-cpp and of the
/// runtime are told apart as far as the library throws them; any other is "unknown".
///
///     EXPECT_EQ(thrown_by([&] { library->remove<Tag>(99); }), "veldra::ObjectNotFound");
Thrown thrown_by(const std::function<void()>& call);

}  // namespace veldra_tests

#endif
