// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <gmock/gmock.h>

#include <limits>

namespace veldra_tests {
namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

std::shared_ptr<Composition> of_layers(const std::vector<double>& thicknesses) {
  const auto composition = Composition::create(text("Wall"));
  const auto material = Material::create(text("Brick"));
  for (const double thickness : thicknesses) {
    composition->appendLayer({material, Material::Function::None, thickness});
  }
  return composition;
}

TEST(DoubtfulNumber, is_a_conductivity_that_is_none) {
  const auto sentences = [](const char* value) {
    return kit::doubtful_numbers(*with_custom("Brick", kit::property::conductivity, value));
  };
  EXPECT_THAT(sentences("0.8"), IsEmpty());
  EXPECT_THAT(sentences(" "), IsEmpty());
  EXPECT_THAT(sentences("0"), ElementsAre("its thermal conductivity is not greater than 0: '0'"));
  EXPECT_THAT(sentences("much"),
              ElementsAre("its thermal conductivity is no number that can be used: 'much'"));
}

TEST(DoubtfulNumber, is_a_thickness_of_0) {
  const auto brick = Material::create(text("Brick"));
  brick->thicknesses(toModify) = {0, 240};
  EXPECT_THAT(kit::doubtful_numbers(*brick), ElementsAre("the thickness 0 is not greater than 0"));
  EXPECT_THAT(kit::doubtful_numbers(*of_layers({240, 0})),
              ElementsAre("the thickness 0 of layer 2 is not greater than 0"));
}

TEST(DoubtfulNumber, is_a_known_property_that_cannot_be_used) {
  const auto studs = Material::create(text("Studs"));
  studs->custom_value("Density [kg/m3]", "-5");
  studs->custom_value("Bridge share [-]", "1.5");
  EXPECT_THAT(kit::doubtful_numbers(*studs),
              ElementsAre(AllOf(HasSubstr("Density [kg/m3]"), HasSubstr("-5")),
                          AllOf(HasSubstr("Bridge share [-]"), HasSubstr("greater than 1"))));
  const auto wall = of_layers({240});
  wall->custom_value("Boundary", "beyond");
  EXPECT_THAT(kit::doubtful_numbers(*wall), ElementsAre(HasSubstr("'beyond'")));
}

TEST(DoubtfulNumber, is_a_part_of_radiation_that_is_more_than_all_or_less_than_nothing) {
  const auto pane = Material::create(text("Pane"));
  pane->custom_value("Solar transmittance [-]", "1.8");
  pane->custom_value("Front visible reflectance [-]", "-0.1");
  pane->custom_value("Solar heat gain coefficient [-]", "much");
  pane->custom_value("Thermal absorptance [-]", "1");
  pane->custom_value("Solar absorptance [-]", "0");
  pane->custom_value("Visible absorptance [-]", " ");
  EXPECT_THAT(kit::doubtful_numbers(*pane),
              UnorderedElementsAre(
                  "its 'Solar transmittance [-]' is greater than 1: '1.8'",
                  "its 'Front visible reflectance [-]' is less than 0: '-0.1'",
                  "its 'Solar heat gain coefficient [-]' is no number that can be used: 'much'"));
}

TEST(DoubtfulNumber, is_no_layer_of_a_material_that_never_has_a_thickness) {
  const auto gap = Material::create(text("Gap"));
  gap->type(MaterialType::create(text("Air gap")));
  const auto wall = Composition::create(text("Wall"));
  wall->appendLayer({gap, Material::Function::None, 0});
  EXPECT_THAT(kit::doubtful_numbers(*wall), IsEmpty());
  gap->type(MaterialType::create(text("Opaque")));
  EXPECT_EQ(kit::doubtful_numbers(*wall).size(), 1U);
}

TEST(DoubtfulNumber, is_a_variable_layer_that_is_not_there) {
  const auto wall = of_layers({240});
  wall->variable_layer(1);
  EXPECT_THAT(kit::doubtful_numbers(*wall),
              ElementsAre("the variable layer 2 is none of its 1 layers"));
}

TEST(DoubtfulNumber, is_a_greatest_thickness_below_the_least) {
  const auto wall = of_layers({240});
  wall->variable_layer_min_thickness(20);
  wall->variable_layer_max_thickness(10);
  EXPECT_THAT(kit::doubtful_numbers(*wall),
              ElementsAre("the greatest thickness of the variable layer is less than the least"));
}

TEST(WrongNumber, is_a_thickness_that_cannot_be) {
  const auto brick = Material::create(text("Brick"));
  brick->thicknesses(toModify) = {-1};
  EXPECT_THAT(kit::wrong_numbers(*brick), ElementsAre("a thickness is negative"));
  constexpr double infinite = std::numeric_limits<double>::infinity();
  EXPECT_THAT(
      kit::wrong_numbers(*of_layers({unknown, infinite, -1, 240})),
      ElementsAre("the thickness of layer 1 is not known", "the thickness of layer 2 is infinite",
                  "the thickness of layer 3 is negative"));
}

TEST(WrongNumber, is_a_limit_of_the_variable_layer_that_cannot_be) {
  const auto wall = of_layers({240});
  wall->variable_layer_min_thickness(-1);
  EXPECT_THAT(kit::wrong_numbers(*wall),
              ElementsAre("the least thickness of the variable layer is negative"));
  wall->variable_layer_min_thickness(1);
  wall->variable_layer_max_thickness(unknown);
  EXPECT_THAT(kit::wrong_numbers(*wall),
              ElementsAre("the greatest thickness of the variable layer is not known"));
}

TEST(WrongNumber, tells_its_field_and_layer) {
  const auto faults = kit::number_faults(*of_layers({240, 0}));
  ASSERT_EQ(faults.size(), 1U);
  EXPECT_EQ(faults[0].field, "thickness");
  EXPECT_EQ(faults[0].layer, 2U);
  const auto known = kit::number_faults(*with_custom("A", kit::property::density, "much"));
  ASSERT_EQ(known.size(), 1U);
  EXPECT_EQ(known[0].field, kit::property::density);
}

TEST(WrongNumber, is_a_doubtful_one_as_well) {
  EXPECT_THAT(kit::wrong_numbers(*of_layers({0})),
              ElementsAre("the thickness 0 of layer 1 is not greater than 0"));
}

}  // namespace
}  // namespace veldra_tests
