// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <limits>

namespace veldra_tests {
namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

std::shared_ptr<Material> brick() {
  const auto material = Material::create(text("Brick"));
  material->thicknesses(toModify) = {115, 240};
  return material;
}

class SameValues : public testing::Test {
 protected:
  std::shared_ptr<Composition> wall(double thickness) const {
    const auto composition = Composition::create(text("Wall"));
    composition->appendLayer({material_, Material::Function::None, thickness});
    return composition;
  }

  const std::shared_ptr<Material> material_ = brick();
};

TEST_F(SameValues, are_those_of_a_clone) {
  EXPECT_TRUE(kit::same_values(*brick(), *brick()->clone()));
  EXPECT_TRUE(kit::same_values(*wall(240), *wall(240)));
}

TEST_F(SameValues, may_have_come_through_another_unit) {
  const auto other = brick();
  other->thicknesses(toModify) = {115, 240 / 25.4 * 25.4 + 3e-14};
  EXPECT_TRUE(kit::same_values(*brick(), *other));
  other->thicknesses(toModify) = {115, 240.001};
  EXPECT_FALSE(kit::same_values(*brick(), *other));
  EXPECT_TRUE(kit::same_values(*wall(240), *wall(240 + 3e-14)));
  EXPECT_FALSE(kit::same_values(*wall(240), *wall(241)));
}

TEST_F(SameValues, may_be_unknown_in_both) {
  EXPECT_TRUE(kit::same_values(*wall(unknown), *wall(unknown)));
  EXPECT_FALSE(kit::same_values(*wall(unknown), *wall(0)));
}

TEST_F(SameValues, have_one_code) {
  const auto other = brick();
  other->code(text("B"));
  EXPECT_FALSE(kit::same_values(*brick(), *other));
}

TEST_F(SameValues, may_have_other_tags) {
  const auto other = brick();
  other->addTag(Tag::create("seen"));
  EXPECT_TRUE(kit::same_values(*brick(), *other));
}

TEST_F(SameValues, have_one_name) {
  const auto other = brick();
  other->name("Clinker");
  const auto changes = kit::differences(*brick(), *other);
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].field, "name");
  EXPECT_EQ(changes[0].before, kit::Value("Brick"));
  EXPECT_EQ(changes[0].after, kit::Value("Clinker"));
}

TEST_F(SameValues, have_the_same_custom_values_on_both_sides) {
  const auto one = with_custom("Brick", "Fire class", "A1");
  const auto other = with_custom("Brick", "Origin", "quarry");
  const auto changes = kit::differences(*one, *other);
  ASSERT_EQ(changes.size(), 2U);
  EXPECT_EQ(changes[0].field, "custom_values.Fire class");
  EXPECT_TRUE(changes[0].after.is_nothing());
  EXPECT_EQ(changes[1].field, "custom_values.Origin");
  EXPECT_TRUE(changes[1].before.is_nothing());
}

TEST_F(SameValues, have_one_variable_layer) {
  const auto one = wall(240);
  const auto other = wall(240);
  one->variable_layer(0);
  other->variable_layer(0);
  EXPECT_TRUE(kit::same_values(*one, *other));
  other->variable_layer_min_thickness(10);
  EXPECT_FALSE(kit::same_values(*one, *other));
  one->variable_layer_min_thickness(10);
  other->variable_layer_max_thickness(20);
  EXPECT_FALSE(kit::same_values(*one, *other));
}

TEST_F(SameValues, leave_both_objects_as_they_were) {
  const auto one = wall(240);
  const auto other = wall(240 + 3e-14);
  kit::same_values(*one, *other);
  EXPECT_EQ(one->layers()[0].thickness(), 240);
}

}  // namespace
}  // namespace veldra_tests
