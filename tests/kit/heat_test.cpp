// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>

namespace veldra_tests {
namespace {

using namespace kit::physics;

TEST(Surface, has_the_resistance_of_its_side_and_direction) {
  EXPECT_EQ(surface_resistance(HeatFlow::Horizontal, Side::Outdoors), 0.04);
  EXPECT_EQ(surface_resistance(HeatFlow::Upward, Side::Outdoors), 0.04);
  for (const Side side : {Side::Ventilated, Side::Interior, Side::Unheated}) {
    EXPECT_EQ(surface_resistance(HeatFlow::Horizontal, side), 0.13);
    EXPECT_EQ(surface_resistance(HeatFlow::Upward, side), 0.10);
    EXPECT_EQ(surface_resistance(HeatFlow::Downward, side), 0.17);
  }
  EXPECT_EQ(surface_resistance(HeatFlow::Downward, Side::Ground), 0);
}

TEST(BoundaryStatement, is_read_from_words_in_any_order) {
  const auto statement = boundary_statement("Ground , upward,unheated");
  EXPECT_EQ(statement.outside, Side::Ground);
  EXPECT_EQ(statement.inside, Side::Unheated);
  EXPECT_EQ(statement.heat_flow, HeatFlow::Upward);
  EXPECT_EQ(boundary_statement("downward").outside, std::nullopt);
  EXPECT_EQ(boundary_statement("").heat_flow, std::nullopt);
}

TEST(BoundaryStatement, that_says_something_else_is_refused) {
  EXPECT_THAT(error_of([] { boundary_statement("moon"); }), HasSubstr("'moon'"));
  EXPECT_THAT(error_of([] { boundary_statement("ground,interior,outdoors"); }),
              HasSubstr("third side"));
  EXPECT_THAT(error_of([] { boundary_statement("upward,downward"); }),
              HasSubstr("second direction"));
}

TEST(StillAir, has_the_resistances_of_the_table) {
  EXPECT_DOUBLE_EQ(*air_resistance({0.025, {}, {}}, HeatFlow::Horizontal), 0.18);
  EXPECT_DOUBLE_EQ(*air_resistance({0.025, {}, {}}, HeatFlow::Upward), 0.16);
  EXPECT_DOUBLE_EQ(*air_resistance({0.025, {}, {}}, HeatFlow::Downward), 0.19);
  EXPECT_DOUBLE_EQ(*air_resistance({0.3, {}, {}}, HeatFlow::Downward), 0.23);
  EXPECT_EQ(*air_resistance({0, {}, {}}, HeatFlow::Upward), 0);
}

// Between 25 mm (0.19) and 50 mm (0.21): at 40 mm it is 0.19 + 0.6 * 0.02 = 0.202.
TEST(StillAir, is_interpolated_between_the_rows_of_the_table) {
  EXPECT_NEAR(*air_resistance({0.04, {}, {}}, HeatFlow::Downward), 0.202, 1e-12);
  EXPECT_NEAR(*air_resistance({0.0025, {}, {}}, HeatFlow::Horizontal), 0.055, 1e-12);
}

TEST(StillAir, of_more_than_300_mm_has_no_resistance) {
  EXPECT_EQ(air_resistance({0.301, {}, {}}, HeatFlow::Horizontal), std::nullopt);
}

// 20 mm, foil of 0.05 on one side: E = 1 / (1/0.05 + 1/0.9 - 1) = 0.049724, radiation
// 5.1 * 0.049724 = 0.253591; convection max(1.25, 0.025/0.02 = 1.25); R = 1 / 1.503591 = 0.665075.
TEST(StillAir, beside_a_foil_follows_the_formula) {
  EXPECT_NEAR(*air_resistance({0.02, 0.05, {}}, HeatFlow::Horizontal), 0.665075, 1e-6);
  EXPECT_NEAR(*air_resistance({0.02, {}, 0.05}, HeatFlow::Horizontal), 0.665075, 1e-6);
}

// 100 mm downward: 0.12 * 0.1^-0.44 = 0.330508 > 0.25; E = 1 / (2/0.9 - 1) = 0.818182, radiation
// 4.172727; R = 1 / 4.503235 = 0.222063, which the table rounds to 0.22.
TEST(StillAir, formula_agrees_with_the_table_for_usual_surfaces) {
  EXPECT_NEAR(*air_resistance({0.1, 0.9, 0.9}, HeatFlow::Downward), 0.222063, 1e-6);
  for (const HeatFlow flow : {HeatFlow::Horizontal, HeatFlow::Upward, HeatFlow::Downward}) {
    for (const double thickness : {0.005, 0.007, 0.01, 0.015, 0.025, 0.05, 0.1, 0.3}) {
      EXPECT_NEAR(*air_resistance({thickness, 0.9, 0.9}, flow),
                  *air_resistance({thickness, {}, {}}, flow), 0.006)
          << thickness << name_of(flow);
    }
  }
}

// Halfway between 500 and 1500 mm2: the mean of both.
TEST(SlightlyVentilatedAir, is_between_unventilated_and_well_ventilated) {
  EXPECT_DOUBLE_EQ(slightly_ventilated(3, 2, 1000), 2.5);
  EXPECT_DOUBLE_EQ(slightly_ventilated(3, 2, 500), 3);
  EXPECT_DOUBLE_EQ(slightly_ventilated(3, 2, 1500), 2);
}

/// A board of 0.1 and 200 mm of wool (0.04: R = 5) between studs (0.13: R = 1.538462).
std::vector<HeatLayer> stud_wall(double share) {
  return {{0.1, {}}, {5, Bridge{share, 0.2 / 0.13, 0}}};
}

// Upper limit: beside the studs 0.04 + 0.1 + 5 + 0.13 = 5.27, through them 1.808462, so
// 1 / (0.9 / 5.27 + 0.1 / 1.808462) = 4.423338. Lower limit: the layer has
// 1 / (0.9 / 5 + 0.1 / 1.538462) = 4.081633, with board and surfaces 4.351633. Mean 4.387486,
// error (4.423338 - 4.351633) / (2 * 4.387486) = 0.81 %.
TEST(BridgedLayers, have_the_mean_of_both_limits) {
  const auto result = *combined_resistance(stud_wall(0.1), 0.04, 0.13);
  EXPECT_NEAR(result.upper, 4.423338, 5e-6);
  EXPECT_NEAR(result.lower, 4.351633, 1e-6);
  EXPECT_NEAR(result.total(), 4.387486, 5e-6);
  EXPECT_NEAR(result.error(), 0.00817, 1e-5);
  EXPECT_TRUE(result.valid());
}

TEST(BridgedLayers, without_a_bridge_or_of_nothing_else_are_plain) {
  const auto none = *combined_resistance(stud_wall(0), 0.04, 0.13);
  EXPECT_DOUBLE_EQ(none.total(), 5.27);
  EXPECT_DOUBLE_EQ(none.error(), 0);
  const auto all = *combined_resistance(stud_wall(1), 0.04, 0.13);
  EXPECT_DOUBLE_EQ(all.total(), 0.04 + 0.1 + 0.2 / 0.13 + 0.13);
  EXPECT_DOUBLE_EQ(all.upper, all.lower);
}

// Two layers of R = 2 with bridges of R = 1 over half of the area, surfaces 0. Aligned: half has 4,
// half 2: 1 / (0.5 / 4 + 0.5 / 2) = 2.666667. Crossing: a quarter 4, half 3, a quarter 2:
// 1 / (0.25 / 4 + 0.5 / 3 + 0.25 / 2) = 2.823529. Lower limit of both: each layer has
// 1 / (0.5 / 2 + 0.5 / 1) = 1.333333, together 2.666667.
TEST(BridgedLayers, aligned_and_crossing_differ_in_the_upper_limit) {
  const auto wall = [](std::size_t group) {
    return std::vector<HeatLayer>{{2, Bridge{0.5, 1, 0}}, {2, Bridge{0.5, 1, group}}};
  };
  EXPECT_NEAR(combined_resistance(wall(0), 0, 0)->upper, 8.0 / 3, 1e-12);
  EXPECT_NEAR(combined_resistance(wall(1), 0, 0)->upper, 48.0 / 17, 1e-12);
  EXPECT_NEAR(combined_resistance(wall(0), 0, 0)->lower, 8.0 / 3, 1e-12);
  EXPECT_NEAR(combined_resistance(wall(1), 0, 0)->lower, 8.0 / 3, 1e-12);
}

// A counter batten of a quarter on a batten of a half, R 2 and bridges 1, surfaces 0: a quarter has
// 1 + 1, a quarter 1 + 2, half 2 + 2: 1 / (0.25 / 2 + 0.25 / 3 + 0.5 / 4) = 3.
TEST(BridgedLayers, of_one_group_lie_within_each_other) {
  const std::vector<HeatLayer> wall{{2, Bridge{0.25, 1, 7}}, {2, Bridge{0.5, 1, 7}}};
  EXPECT_NEAR(combined_resistance(wall, 0, 0)->upper, 3, 1e-12);
}

TEST(BridgedLayers, may_be_many) {
  const std::vector<HeatLayer> crossing = [] {
    std::vector<HeatLayer> layers;
    for (std::size_t i = 0; i < 12; ++i) layers.push_back({1, Bridge{0.1, 0.5 + 0.01 * i, i}});
    return layers;
  }();
  const auto result = combined_resistance(crossing, 0.04, 0.13);
  ASSERT_TRUE(result);
  EXPECT_GT(result->upper, result->lower);
  std::vector<HeatLayer> too_many;
  for (std::size_t i = 0; i < 40; ++i) {
    too_many.push_back({1 + 0.01 * std::sqrt(i), Bridge{0.1, std::sqrt(i + 2.0), i}});
  }
  EXPECT_EQ(combined_resistance(too_many, 0.04, 0.13), std::nullopt);
}

TEST(BridgedLayers, beyond_the_limit_of_the_method_say_so) {
  const std::vector<HeatLayer> steel{{5, Bridge{0.01, 0.004, 0}}, {1, {}}};
  EXPECT_FALSE(combined_resistance(steel, 0.04, 0.13)->valid());
}

// Level 1: 0.01 * (5 / 6)^2 = 0.006944; level 2: 0.04 * 25 / 36 = 0.027778.
TEST(Corrections, for_air_voids_follow_their_level) {
  EXPECT_EQ(air_void_correction(0, 5, 6), 0);
  EXPECT_NEAR(air_void_correction(1, 5, 6), 0.006944, 1e-6);
  EXPECT_NEAR(air_void_correction(2, 5, 6), 0.027778, 1e-6);
}

// 5 steel screws (50 W/(m K), 5 mm2) through 0.1 m: 0.8 * 50 * 5e-6 * 5 / 0.1 * (2.5 / 3)^2
// = 0.01 * 0.694444 = 0.006944. Into half of it only: half of that.
TEST(Corrections, for_fasteners_follow_their_length) {
  EXPECT_NEAR(fastener_correction({5, 50, 5e-6, 0.1, 0.1}, 2.5, 3), 0.0069444, 1e-7);
  EXPECT_NEAR(fastener_correction({5, 50, 5e-6, 0.05, 0.1}, 2.5, 3), 0.0034722, 1e-7);
  EXPECT_NEAR(fastener_correction({5, 50, 5e-6, 0.2, 0.1}, 2.5, 3), 0.0069444, 1e-7);
  EXPECT_EQ(fastener_correction({5, 0.9, 5e-6, 0.1, 0.1}, 2.5, 3), 0);
}

// 2 mm/day at f x = 0.04: 0.08 * (4 / 5)^2 = 0.0512.
TEST(Corrections, for_rain_follow_the_part_above_the_sealing) {
  EXPECT_NEAR(inverted_roof_correction(2, 0.04, 4, 5), 0.0512, 1e-12);
}

/// The mean transmittance over many small pieces of a triangle with corners a, b, c.
double mean_over_triangle(double a, double b, double c) {
  constexpr int steps = 400;
  double sum = 0;
  int count = 0;
  for (int i = 0; i < steps; ++i) {
    for (int j = 0; i + j < steps; ++j) {
      // The centres of the upright and of the inverted small triangle.
      const double x = (i + 1.0 / 3) / steps;
      const double y = (j + 1.0 / 3) / steps;
      sum += 1 / (a + (b - a) * x + (c - a) * y);
      ++count;
      if (i + j + 1 == steps) continue;
      const double further = 1.0 / 3 / steps;
      sum += 1 / (a + (b - a) * (x + further) + (c - a) * (y + further));
      ++count;
    }
  }
  return sum / count;
}

// R_0 = 1, rise 2. Rectangle: ln(1 + 2 / 1) / 2 = 0.549306. Thick apex:
// 2 / 2 * ((1 + 1/2) ln 3 - 1) = 0.647918. Thin apex: 2 / 2 * (1 - 1/2 * ln 3) = 0.450694.
TEST(TaperedLayers, have_the_transmittance_of_their_plan) {
  EXPECT_NEAR(tapered_transmittance(TaperShape::Rectangle, 1, 2), 0.549306, 1e-6);
  EXPECT_NEAR(tapered_transmittance(TaperShape::ThickApex, 1, 2), 0.647918, 1e-6);
  EXPECT_NEAR(tapered_transmittance(TaperShape::ThinApex, 1, 2), 0.450694, 1e-6);
}

TEST(TaperedLayers, are_the_mean_of_many_small_pieces) {
  for (const auto& [base, second, rise] :
       {std::tuple(1.0, 1.0, 2.0), std::tuple(0.3, 0.1, 4.0), std::tuple(2.0, 0.001, 0.002),
        std::tuple(0.5, 2.999999, 3.0), std::tuple(0.5, 0.0000001, 3.0)}) {
    EXPECT_NEAR(tapered_transmittance(TaperShape::Triangle, base, rise, second),
                mean_over_triangle(base, base + second, base + rise), 2e-5)
        << base << ' ' << second << ' ' << rise;
  }
  EXPECT_NEAR(tapered_transmittance(TaperShape::ThickApex, 0.7, 3),
              mean_over_triangle(0.7, 0.7, 3.7), 2e-5);
}

TEST(TaperedLayers, that_hardly_rise_are_plain) {
  for (const TaperShape shape :
       {TaperShape::Rectangle, TaperShape::ThickApex, TaperShape::ThinApex, TaperShape::Triangle}) {
    for (const double rise : {0.0, 1e-12, 1e-8, 1e-5}) {
      EXPECT_NEAR(tapered_transmittance(shape, 2, rise, rise / 2), 0.5, 1e-5);
    }
  }
}

GasSpace space(const char* gas, double thickness, double outer, double inner) {
  return {*gas_named(gas), thickness, outer, inner};
}

// 16 mm of air between plain panes. Radiation: 4 * 5.67e-8 * 283^3 / (2 / 0.837 - 1) = 3.6997.
// Gr = 9.81 * 0.016^3 * 15 * 1.232^2 / (283 * 1.761e-5^2) = 10424, Pr = 1.761e-5 * 1008 / 0.02496
// = 0.7112, Nu = 0.035 * 7413.3^0.38 = 1.0338, convection 1.0338 * 0.02496 / 0.016 = 1.6127;
// R = 1 / 5.3124 = 0.18824. With two panes of 4 mm and surfaces 0.17: U = 1 / 0.36624 = 2.73.
TEST(Glazing, of_two_panes_with_air) {
  const auto resistance =
      gas_resistances({space("Air", 0.016, 0.837, 0.837)}, HeatFlow::Horizontal);
  EXPECT_NEAR(resistance.front(), 0.18824, 1e-4);
  EXPECT_NEAR(1 / (resistance.front() + 0.17 + 0.008), 2.73, 0.005);
}

// The usual pane: 4 mm, 16 mm of argon, 4 mm, a coating of 0.03: its makers declare 1.1.
TEST(Glazing, of_a_coated_pane_with_argon_is_that_which_is_usually_declared) {
  const auto resistance =
      gas_resistances({space("argon", 0.016, 0.837, 0.03)}, HeatFlow::Horizontal);
  EXPECT_NEAR(1 / (resistance.front() + 0.17 + 0.008), 1.1, 0.05);
}

TEST(Glazing, of_three_panes_shares_the_difference_between_two_spaces) {
  const auto one = space("Argon", 0.012, 0.837, 0.03);
  const auto alike = gas_resistances({one, one}, HeatFlow::Horizontal);
  EXPECT_NEAR(alike[0], alike[1], 1e-9);
  EXPECT_GE(alike[0], gas_resistances({one}, HeatFlow::Horizontal)[0]);
  // 4 - 12 - 4 - 12 - 4 with two coatings: 0.7 is declared.
  EXPECT_NEAR(1 / (alike[0] + alike[1] + 0.17 + 0.012), 0.7, 0.05);
}

TEST(Glazing, does_not_convect_downward_and_convects_more_upward) {
  const auto pane = [](HeatFlow flow) {
    return gas_resistances({space("Air", 0.016, 0.837, 0.1)}, flow).front();
  };
  EXPECT_GT(pane(HeatFlow::Downward), pane(HeatFlow::Horizontal));
  EXPECT_LT(pane(HeatFlow::Upward), pane(HeatFlow::Horizontal));
}

TEST(Glazing, knows_gases_by_name_and_mixes_them_by_their_parts) {
  EXPECT_EQ(gas_named("Helium"), std::nullopt);
  const auto mixture = mixed({{*gas_named("Air"), 0.1}, {*gas_named(" ARGON "), 0.9}});
  EXPECT_NEAR(mixture.conductivity, 0.1 * 0.02496 + 0.9 * 0.01684, 1e-12);
  EXPECT_NEAR(mixture.density, 0.1 * 1.232 + 0.9 * 1.699, 1e-12);
}

}  // namespace
}  // namespace veldra_tests
