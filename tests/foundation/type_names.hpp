// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_FOUNDATION_TYPE_NAMES_HPP
#define VELDRA_TESTS_FOUNDATION_TYPE_NAMES_HPP

#include <cxxabi.h>

#include <cstdlib>
#include <string>
#include <typeinfo>

namespace veldra_tests {

/// Names the suites of typed tests after their types, without namespaces:
/// `TYPED_TEST_SUITE(NamedTest, Named, TypeNames)` gives `NamedTest/Tag`.
struct TypeNames {
  template <class T>
  static std::string GetName(int) {
    char* const demangled = abi::__cxa_demangle(typeid(T).name(), nullptr, nullptr, nullptr);
    const std::string name = demangled != nullptr ? demangled : typeid(T).name();
    std::free(demangled);
    return name.substr(name.rfind(':') + 1);
  }
};

}  // namespace veldra_tests

#endif
