// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/names.hpp"

#include <sqlite3.h>

#include <string>

namespace veldra_tests {
namespace {

TEST(Release, that_runs_is_the_one_that_was_compiled_with) {
  const veldra::Version release = veldra::version();
  EXPECT_EQ(release.major, VELDRA_VERSION_MAJOR);
  EXPECT_EQ(release.minor, VELDRA_VERSION_MINOR);
  EXPECT_EQ(release.patch, VELDRA_VERSION_PATCH);
  EXPECT_EQ(release.major * 10000 + release.minor * 100 + release.patch, VELDRA_VERSION);
}

TEST(Release, has_a_text) {
  const veldra::Version release = veldra::version();
  EXPECT_EQ(veldra::version_text(), std::to_string(release.major) + "." +
                                        std::to_string(release.minor) + "." +
                                        std::to_string(release.patch));
}

TEST(Release, tells_those_of_what_it_stands_on) {
  EXPECT_STREQ(veldra::sqlite_version_text(), sqlite3_libversion());
  EXPECT_THAT(veldra::runtime_version_text(), testing::MatchesRegex("2\\.4\\..+"));
}

TEST(Lengths, are_converted_by_the_factors_of_copying) {
  EXPECT_EQ(length_factor(Unit::Inches, Unit::Millimetres), 25.4);
  EXPECT_EQ(length_factor(Unit::Millimetres, Unit::Inches), 0.03937007874015748);
  EXPECT_EQ(length_factor(Unit::Inches, Unit::Inches), 1);
  EXPECT_EQ(length_factor(Unit::Millimetres, Unit::Millimetres), 1);
  EXPECT_EQ(converted_length(10, Unit::Inches, Unit::Millimetres), 254);
  EXPECT_EQ(converted_length(254, Unit::Millimetres, Unit::Inches), 254 * 0.03937007874015748);
}

TEST(Lengths, in_units_that_nobody_knows_stay_as_they_are) {
  const auto other = static_cast<Unit>(7);
  EXPECT_EQ(converted_length(10, other, Unit::Millimetres), 10);
  EXPECT_EQ(converted_length(10, Unit::Inches, other), 10);
}

}  // namespace
}  // namespace veldra_tests
