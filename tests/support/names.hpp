// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_NAMES_HPP
#define VELDRA_TESTS_SUPPORT_NAMES_HPP

#include <veldra/veldra.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Tests write the names of the interface, and those of matchers, on their own. A name that tests
/// have themselves goes before.
namespace veldra_tests {

using namespace testing;
using namespace veldra;

}  // namespace veldra_tests

#endif
