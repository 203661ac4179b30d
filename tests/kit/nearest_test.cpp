// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

namespace veldra_tests {
namespace {

const std::vector<std::string> names{"Brick",    "Block", "Kalkgipsputz / Lime-gypsum plaster",
                                     "Lehmputz", "Oak",   "Dämmung"};

TEST(NearestNames, need_few_changes) {
  EXPECT_THAT(kit::nearest("Brik", names), ElementsAre("Brick"));
  EXPECT_THAT(kit::nearest("Brickk", names), ElementsAre("Brick"));
  EXPECT_THAT(kit::nearest("Brock", names), ElementsAre("Brick", "Block"));
}

TEST(NearestNames, count_exchanged_letters_as_one_change) {
  EXPECT_THAT(kit::nearest("aOk", {"Oak"}), ElementsAre("Oak"));
  EXPECT_THAT(kit::nearest("Birck", names), ElementsAre("Brick"));
}

TEST(NearestNames, come_without_regard_to_case_and_accents) {
  EXPECT_THAT(kit::nearest("DAMMUNG", names), ElementsAre("Dämmung"));
}

TEST(NearestNames, may_have_the_wanted_one_as_a_part) {
  EXPECT_THAT(kit::nearest("Kalkgipspuz", names), ElementsAre(names[2]));
  EXPECT_THAT(kit::nearest("plaster", names), ElementsAre(names[2]));
}

TEST(NearestNames, have_what_is_mistyped_before_what_is_incomplete) {
  EXPECT_THAT(kit::nearest("Putz", {"Lehmputz", "Puts"}), ElementsAre("Puts", "Lehmputz"));
}

TEST(NearestNames, are_none_of_those_that_are_far) {
  EXPECT_THAT(kit::nearest("Zinc", names), IsEmpty());
  EXPECT_THAT(kit::nearest("x", {"y", "2", "Brick"}), IsEmpty());
  EXPECT_THAT(kit::nearest("", names), IsEmpty());
  EXPECT_THAT(kit::nearest("Br\xFF", names), IsEmpty());
}

TEST(NearestNames, are_as_many_as_wanted_the_first_of_equal_ones_first) {
  kit::Nearest search("wall 0", 2);
  for (const char* name : {"wall 1", "wall 2", "wall 3"}) search.offer(name);
  EXPECT_THAT(search.names(), ElementsAre("wall 1", "wall 2"));
}

TEST(NearestNames, of_very_long_texts_are_none) {
  EXPECT_THAT(kit::nearest(std::string(100000, 'a'), {std::string(100000, 'a')}), IsEmpty());
}

TEST(Suggestion, asks_for_the_names) {
  EXPECT_EQ(kit::suggestion({}), "");
  EXPECT_EQ(kit::suggestion({"a"}), "; did you mean 'a'?");
  EXPECT_EQ(kit::suggestion({"a", "b", "c"}), "; did you mean 'a', 'b' or 'c'?");
}

}  // namespace
}  // namespace veldra_tests
