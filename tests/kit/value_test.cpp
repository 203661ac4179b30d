// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <limits>

namespace veldra_tests {
namespace {

using kit::Value;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// One value of each kind, in the order of the kinds.
std::vector<Value> one_of_each() {
  return {Value(),
          Value(true),
          Value(7),
          Value(2.5),
          Value("Oak"),
          Value(Value::Texts{"a", "b"}),
          Value(Value::Numbers{1, 2}),
          Value(Color(1, 0.5, 0, 1)),
          Value(Pattern(Pattern::Type::Lines, "Brick", 2, 45)),
          Value(Point2d(1, -2)),
          Value(Value::Layers{{"Oak", 22, 1}, {"Air; still", 40, 0}})};
}

TEST(KitValue, is_of_the_kind_of_what_it_was_made_of) {
  const auto values = one_of_each();
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(values[i].kind(), static_cast<Value::Kind>(i));
  }
  EXPECT_EQ(Value(7U), Value(7LL));
}

TEST(KitValue, is_equal_to_itself_and_to_no_other) {
  const auto values = one_of_each();
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t j = 0; j < values.size(); ++j) {
      EXPECT_EQ(values[i] == values[j], i == j);
      EXPECT_EQ(values[i] != values[j], i != j);
    }
  }
  EXPECT_NE(Value("a"), Value("b"));
  EXPECT_NE(Value(Value::Layers{{"Oak", 22, 1}}), Value(Value::Layers{{"Oak", 22, 0}}));
}

TEST(KitValue, that_nobody_knows_is_equal_to_itself) {
  EXPECT_EQ(Value(nan), Value(nan));
  EXPECT_EQ(Value(Value::Numbers{1, nan}), Value(Value::Numbers{1, nan}));
  EXPECT_EQ(Value(Value::Layers{{"Oak", nan, 0}}), Value(Value::Layers{{"Oak", nan, 0}}));
  EXPECT_NE(Value(nan), Value(0.0));
}

TEST(KitValue, of_another_type_is_not_given) {
  EXPECT_THROW(Value("a").as<bool>(), std::bad_variant_access);
}

TEST(KitValue, is_empty_where_there_is_nothing_to_see) {
  for (const Value& value :
       {Value(), Value(""), Value(Value::Texts()), Value(Value::Numbers()), Value(Value::Layers()),
        Value(nan), Value(Color()), Value(Pattern())}) {
    EXPECT_TRUE(value.is_empty());
  }
  for (const Value& value : {Value(false), Value(0), Value(0.0), Value(" "), Value(Point2d())}) {
    EXPECT_FALSE(value.is_empty());
  }
}

TEST(KitValue, has_a_text) {
  std::vector<std::string> texts;
  for (const auto& value : one_of_each()) texts.push_back(kit::value_text(value));
  EXPECT_THAT(texts,
              ElementsAre("", "yes", "7", "2.5", "Oak", "a; b", "1; 2", "1; 0.5; 0; 1",
                          "0; Brick; 2; 45; no", "1; -2", "Oak | 22 | 1; \"Air; still\" | 40 | 0"));
  EXPECT_EQ(kit::value_text(false), "no");
  EXPECT_EQ(kit::value_text(nan), "");
  EXPECT_EQ(kit::value_text(Pattern()), "");
  EXPECT_EQ(kit::value_text(Value::Texts{"a;b", "say \"x\"", " c", ""}),
            "\"a;b\"; \"say \"\"x\"\"\"; \" c\"; \"\"");
}

TEST(KitValue, has_a_kind_with_a_name) {
  for (const auto& value : one_of_each()) {
    EXPECT_FALSE(kit::name_of(value.kind()).empty());
    EXPECT_NE(kit::name_of(value.kind()), "a value");
  }
  EXPECT_EQ(kit::name_of(static_cast<Value::Kind>(99)), "a value");
}

}  // namespace
}  // namespace veldra_tests
