// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>
#include <limits>

namespace veldra_tests {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Conductivities of 1 and 0.04, 20 and 200 thick: 0.02 + 5.
std::shared_ptr<Composition> wall(Composition::Type type = Composition::Type::Wall) {
  const auto result = Composition::create("Wall");
  result->type(type);
  for (const auto& [name, conductivity, thickness] :
       {std::tuple("Render", "1.0", 20.0), std::tuple("Wool", "0.04", 200.0)}) {
    result->appendLayer({with_custom(name, kit::property::conductivity, conductivity),
                         Material::Function::None, thickness});
  }
  return result;
}

TEST(Lengths, go_to_metres_and_back) {
  EXPECT_DOUBLE_EQ(kit::in_metres(240, Unit::Millimetres), 0.24);
  EXPECT_DOUBLE_EQ(kit::in_metres(10, Unit::Inches), 0.254);
  EXPECT_DOUBLE_EQ(kit::from_metres(0.24, Unit::Millimetres), 240);
  EXPECT_DOUBLE_EQ(kit::from_metres(0.254, Unit::Inches), 10);
}

TEST(Lengths, are_the_same_after_a_way_through_another_unit) {
  const double there = converted_length(12.7, Unit::Millimetres, Unit::Inches);
  EXPECT_TRUE(kit::same_length(12.7, converted_length(there, Unit::Inches, Unit::Millimetres)));
  EXPECT_FALSE(kit::same_length(12.7, 12.7001));
  EXPECT_TRUE(kit::same_length(nan, nan));
  EXPECT_FALSE(kit::same_length(nan, 0));
}

TEST(Resistance, is_that_of_layers_and_surfaces) {
  const auto result = kit::transmission_of(*wall(), Unit::Millimetres);
  EXPECT_DOUBLE_EQ(*result.resistance, 5.02);
  EXPECT_DOUBLE_EQ(*result.total_resistance(), 5.02 + 0.13 + 0.04);
  EXPECT_DOUBLE_EQ(*result.transmittance(), 1 / (5.02 + 0.13 + 0.04));
  EXPECT_EQ(result.border.boundary.heat_flow, kit::physics::HeatFlow::Horizontal);
}

TEST(Resistance, has_surfaces_by_the_direction_of_the_heat) {
  using Type = Composition::Type;
  EXPECT_EQ(kit::transmission_of(*wall(Type::Roof), Unit::Millimetres).inside, 0.10);
  EXPECT_EQ(kit::transmission_of(*wall(Type::Floor), Unit::Millimetres).inside, 0.17);
  EXPECT_EQ(kit::transmission_of(*wall(Type::Other), Unit::Millimetres).inside, 0.13);
}

TEST(Resistance, of_a_layer_as_a_whole_goes_before_its_conductivity) {
  const auto composition = wall();
  const auto air = with_custom("Air", kit::property::conductivity, "1");
  air->custom_value(kit::property::resistance, "0.18");
  composition->appendLayer({air, Material::Function::None, 40});
  EXPECT_DOUBLE_EQ(*kit::transmission_of(*composition, Unit::Millimetres).resistance, 5.2);
}

TEST(Resistance, is_not_known_where_that_of_a_layer_is_not) {
  const auto composition = wall();
  composition->appendLayer({Material::create("Mystery"), Material::Function::None, 40});
  composition->appendLayer({nullptr, Material::Function::None, 40});
  const auto result = kit::transmission_of(*composition, Unit::Millimetres);
  EXPECT_EQ(result.total_resistance(), std::nullopt);
  EXPECT_EQ(result.transmittance(), std::nullopt);
  EXPECT_EQ(result.layers[2].resistance, std::nullopt);
  EXPECT_EQ(kit::transmission_of(*Composition::create("Bare"), Unit::Inches).transmittance(),
            std::nullopt);
}

TEST(Resistance, begins_behind_a_ventilated_layer) {
  const auto composition = wall();
  const auto air = with_custom("Air", kit::property::ventilation, " Well Ventilated ");
  composition->insertLayer(1, {air, Material::Function::None, 40});
  const auto result = kit::transmission_of(*composition, Unit::Millimetres);
  EXPECT_EQ(result.ventilated, 2U);
  EXPECT_DOUBLE_EQ(*result.total_resistance(), 5 + 0.13 + 0.13);
}

TEST(Conductivity, is_the_custom_value_or_else_that_of_the_thermal_asset) {
  EXPECT_EQ(kit::conductivity_of(*with_custom("a", kit::property::conductivity, "0.5")), 0.5);
  EXPECT_EQ(kit::conductivity_of(*with_custom("a", kit::property::conductivity, "much")),
            std::nullopt);
  EXPECT_EQ(kit::conductivity_of(*Material::create("a")), std::nullopt);
}

TEST(TotalThickness, is_the_sum_and_not_known_where_a_part_is_not) {
  const auto composition = wall();
  EXPECT_EQ(kit::total_thickness(*composition), 220);
  composition->layer(0, toModify).thickness(nan);
  EXPECT_TRUE(std::isnan(kit::total_thickness(*composition)));
}

}  // namespace
}  // namespace veldra_tests
