// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>

namespace veldra_tests {
namespace {

using namespace kit::physics;

constexpr MonthClimate winter{0, 0.9, 20, 0.6};
constexpr MonthClimate summer{20, 0.5, 20, 0.5};

Climate all_year(const MonthClimate& air) {
  Climate climate;
  climate.fill(air);
  return climate;
}

/// October to March are winter.
Climate two_seasons() {
  auto climate = all_year(summer);
  for (const std::size_t month : {9, 10, 11, 0, 1, 2}) climate[month] = winter;
  return climate;
}

/// A tight sheet outside and a board inside, thin enough not to be divided.
const std::vector<MoistureLayer> tight_outside{{0.05, 10}, {0.25, 0.5}};

TEST(Saturation, has_the_pressures_of_the_formula_and_back) {
  EXPECT_NEAR(saturation_pressure(20), 2336.9, 0.5);
  EXPECT_NEAR(saturation_pressure(0), 610.5, 1e-9);
  EXPECT_NEAR(saturation_pressure(-10), 259.7, 0.5);
  for (const double temperature : {-20.0, -0.001, 0.0, 0.001, 12.6, 30.0}) {
    EXPECT_NEAR(saturation_temperature(saturation_pressure(temperature)), temperature, 1e-9);
  }
}

// At 0 and 20 °C, R 0.04 + 0.05 + 0.25 + 0.13 = 0.47: the interface has 20 * 0.09 / 0.47 = 3.8298
// °C and saturates at 610.5 * exp(17.269 * 3.8298 / 241.1298) = 803.15 Pa. Vapour: 0.6 * 2336.95 =
// 1402.17 inside, 0.9 * 610.5 = 549.45 outside. In: 2e-10 * (1402.17 - 803.15) / 0.5 = 2.39608e-7,
// out: 2e-10 * (803.15 - 549.45) / 10 = 5.0740e-9; 2.34534e-7 kg/(m2 s) stay, in January's 31 days
// 0.62818 kg/m2.
TEST(Condensation, is_what_comes_less_what_goes) {
  const auto year = moisture_year(tight_outside, 0.04, 0.13, all_year(winter));
  ASSERT_EQ(year.places.size(), 3U);
  const auto& january = year.months.front();
  EXPECT_EQ(january.month, 0U);
  EXPECT_NEAR(january.temperatures[1], 3.8298, 1e-4);
  EXPECT_NEAR(january.pressures[1], 803.15, 0.05);
  EXPECT_NEAR(january.condensed[1], 0.62818, 2e-4);
  EXPECT_FALSE(year.dries);
  EXPECT_NEAR(year.greatest, 2.34534e-7 * 365 * 86400, 3e-3);
}

// October to March 182 days: 2.34534e-7 * 86400 * 182 = 3.68799. In summer all is at 20 °C and
// 1168.47 Pa, so the wet place gives 2e-10 * 1168.47 * (1 / 0.5 + 1 / 10) = 4.90758e-7 kg/(m2 s):
// 1.27204 in April's 30 days, 1.31445 in May; June takes the rest.
TEST(Condensation, evaporates_in_summer) {
  const auto year = moisture_year(tight_outside, 0.04, 0.13, two_seasons());
  EXPECT_EQ(year.months.front().month, 9U);
  EXPECT_NEAR(year.months[5].accumulated[1], 3.68799, 1e-3);
  EXPECT_NEAR(year.months[6].condensed[1], -1.27204, 1e-4);
  EXPECT_NEAR(year.months[7].accumulated[1], 3.68799 - 1.27204 - 1.31445, 1e-3);
  EXPECT_EQ(year.months[8].accumulated[1], 0);
  EXPECT_NEAR(year.months[8].condensed[1], -(3.68799 - 1.27204 - 1.31445), 1e-3);
  EXPECT_TRUE(year.condenses);
  EXPECT_TRUE(year.dries);
  EXPECT_NEAR(year.greatest, 3.68799, 1e-3);
}

// November to January and March are winter, and a February at 10 °C takes but a part of what is
// there: the place has 10 + 10 * 0.09 / 0.47 = 11.9149 °C and 1393.96 Pa, from which 1393.96 - 0.5
// * 1227.31 = 780.31 Pa drive through 10 m and 1393.96 - 0.5 * 2336.95 = 225.49 Pa through 0.5 m:
// 2e-10 * (780.31 / 10 + 225.49 / 0.5) = 1.0580e-7 kg/(m2 s), in 28 days 0.25595 kg/m2 of
// the 2.34534e-7 * 86400 * 92 = 1.86426 from before. March adds 0.62818, and the summer dries all.
// A year from March would end with what is left in February.
TEST(Condensation, of_two_wet_spells_begins_with_the_one_behind_the_drying) {
  auto climate = all_year(summer);
  for (const std::size_t month : {10, 11, 0, 2}) climate[month] = winter;
  climate[1] = {10, 0.5, 20, 0.5};
  const auto year = moisture_year(tight_outside, 0.04, 0.13, climate);
  EXPECT_EQ(year.months.front().month, 10U);
  EXPECT_NEAR(year.months[2].total(), 1.86426, 1e-3);
  EXPECT_NEAR(year.months[3].total(), 1.86426 - 0.25595, 1e-3);
  EXPECT_NEAR(year.greatest, 1.86426 - 0.25595 + 0.62818, 1e-3);
  EXPECT_TRUE(year.dries);
}

TEST(Condensation, is_not_where_the_tight_layer_is_inside) {
  const auto year = moisture_year({{0.25, 0.5}, {0.05, 10}}, 0.04, 0.13, two_seasons());
  EXPECT_FALSE(year.condenses);
  EXPECT_TRUE(year.dries);
  EXPECT_EQ(year.greatest, 0);
  EXPECT_EQ(year.months.size(), 12U);
}

/// Vapour in many thin slices that may not go above saturation: what the slices lose by that
/// condenses. It knows neither tangents nor places, so that it judges them.
double condensed_by_slices(const std::vector<MoistureLayer>& layers, const MonthClimate& air) {
  constexpr int slices = 300;
  double total = 0.04 + 0.13;
  double length = 0;
  for (const auto& layer : layers) {
    total += layer.resistance;
    length += layer.vapour_thickness;
  }
  std::vector<double> most(slices + 1);
  for (int i = 0; i <= slices; ++i) {
    double rest = length * i / slices;
    double resistance = 0.04;
    for (const auto& layer : layers) {
      const double part = std::min(1.0, rest / layer.vapour_thickness);
      resistance += part * layer.resistance;
      rest -= part * layer.vapour_thickness;
      if (rest <= 1e-12) break;
    }
    const double difference = air.inside_temperature - air.outside_temperature;
    most[i] = saturation_pressure(air.outside_temperature + resistance / total * difference);
  }
  std::vector<double> p = most;
  p.front() = air.outside_humidity * saturation_pressure(air.outside_temperature);
  p.back() = air.inside_humidity * saturation_pressure(air.inside_temperature);
  for (int round = 0; round < 60000; ++round) {
    for (int i = 1; i < slices; ++i) {
      const double free = p[i] + 1.97 * ((p[i - 1] + p[i + 1]) / 2 - p[i]);
      p[i] = std::min(free, most[i]);
    }
  }
  const double slice = length / slices;
  const double in = 2e-10 * (p[slices] - p[slices - 1]) / slice;
  const double out = 2e-10 * (p[1] - p[0]) / slice;
  return (in - out) * 31 * 86400;
}

// Wool between two boards, concrete behind a sheet, and a wall that is wet in a whole zone.
TEST(Condensation, is_what_thin_slices_find) {
  const std::vector<std::vector<MoistureLayer>> walls{{{0.1, 2}, {5, 0.4}, {0.05, 0.2}},
                                                      {{0.02, 3}, {3, 4}, {0.1, 2}},
                                                      {{4, 4}, {0.05, 0.1}},
                                                      {{0.5, 1}, {4, 0.2}, {0.08, 15}, {0.1, 1}}};
  const MonthClimate air{-5, 0.85, 20, 0.55};
  for (const auto& wall : walls) {
    const auto year = moisture_year(wall, 0.04, 0.13, all_year(air));
    const double truth = condensed_by_slices(wall, air);
    EXPECT_NEAR(year.months.front().total(), truth, 0.03 * truth + 2e-4);
  }
}

TEST(Condensation, is_at_the_same_place_with_layers_that_resist_no_vapour) {
  const auto with =
      moisture_year({{0.05, 10}, {0.1, 0}, {0.15, 0.5}, {0.001, 0}}, 0.04, 0.13, all_year(winter));
  const auto without = moisture_year({{0.05, 10}, {0.1, 1e-9}, {0.15, 0.5}, {0.001, 1e-9}}, 0.04,
                                     0.13, all_year(winter));
  EXPECT_GT(with.greatest, 0);
  EXPECT_NEAR(with.greatest, without.greatest, 1e-3 * with.greatest);
}

// R = 5: 5.04 + 0.25 = 5.29, f = 5.04 / 5.29 = 0.95274. Winter: 1402.17 / 0.8 = 1752.7 Pa saturate
// at 15.436 °C, so 15.436 / 20 = 0.7718 is needed.
TEST(SurfaceHumidity, compares_the_factor_of_the_wall_with_that_of_the_climate) {
  const auto result = surface_humidity(5, 0.04, two_seasons());
  EXPECT_NEAR(result.factor, 0.95274, 1e-5);
  EXPECT_NEAR(result.required[0], 0.7718, 1e-3);
  EXPECT_EQ(result.required[5], 0);
  EXPECT_EQ(result.critical, 0U);
  EXPECT_TRUE(result.safe());
  EXPECT_FALSE(surface_humidity(0.3, 0.04, two_seasons()).safe());
}

TEST(RoomClass, has_more_vapour_the_colder_it_is_outside) {
  EXPECT_EQ(vapour_excess(3, -5), 810);
  EXPECT_EQ(vapour_excess(3, 0), 810);
  EXPECT_DOUBLE_EQ(vapour_excess(3, 10), 405);
  EXPECT_EQ(vapour_excess(3, 25), 0);
  EXPECT_EQ(vapour_excess(1, 0), 270);
  EXPECT_EQ(vapour_excess(5, 0), 1360);
}

std::string csv(const std::string& titles, const std::string& rest) {
  std::string text = "# made up\n" + titles + "\n";
  for (int month = 1; month <= 12; ++month) text += std::to_string(month) + rest + "\n";
  return text;
}

constexpr const char* all_titles =
    "month,outside_temperature,outside_humidity,inside_temperature,inside_humidity";

TEST(ClimateTable, is_read_by_its_titles) {
  const auto climate = kit::climate_from_csv(csv(all_titles, ", -5, 85,20,50"));
  EXPECT_EQ(climate[11].outside_temperature, -5);
  EXPECT_EQ(climate[11].outside_humidity, 0.85);
  EXPECT_EQ(climate[0].inside_temperature, 20);
  EXPECT_EQ(climate[0].inside_humidity, 0.5);
}

// 0.9 * 610.5 + 810 = 1359.45 Pa of 2336.95.
TEST(ClimateTable, without_the_humidity_inside_takes_that_of_the_room_class) {
  const auto table =
      csv("month,outside_temperature,outside_humidity,inside_temperature", ",0,90,20");
  EXPECT_NEAR(kit::climate_from_csv(table, 3)[4].inside_humidity, 1359.45 / 2336.95, 1e-4);
  EXPECT_THAT(error_of([&] { kit::climate_from_csv(table); }),
              HasSubstr("line 3 of the climate: there is no inside_humidity"));
  EXPECT_THAT(error_of([&] { kit::climate_from_csv(table, 6); }), HasSubstr("6 is no room class"));
}

TEST(ClimateTable, with_faults_tells_the_line) {
  const auto fault = [](const std::string& text) {
    return error_of([&] { kit::climate_from_csv(text); });
  };
  EXPECT_EQ(fault(csv(all_titles, ",x,85,20,50")),
            "line 3 of the climate: 'x' is no outside_temperature from -80 to 60");
  EXPECT_EQ(fault(csv(all_titles, ",5,850,20,50")),
            "line 3 of the climate: '850' is no outside_humidity from 0 to 100");
  EXPECT_EQ(fault("month,wind\n"), "line 1 of the climate: 'wind' is no column of a climate");
  EXPECT_EQ(fault("month,month\n"), "line 1 of the climate: the column 'month' is there twice");
  EXPECT_EQ(fault("month\n"), "line 1 of the climate: the column 'outside_temperature' is missing");
  EXPECT_EQ(fault(csv(all_titles, ",5,85,20,50") + "12,5,85,20,50\n"),
            "line 15 of the climate: month 12 is there twice");
  EXPECT_EQ(fault(""), "the climate has no month 1");
  EXPECT_EQ(fault(csv(all_titles, ",-5,0,85,20,50")),
            "line 3 of the climate: 6 values for 5 columns; numbers have a point");
  EXPECT_EQ(fault("month;outside_temperature\n"),
            "line 1 of the climate: columns have commas between them, and numbers a point");
  EXPECT_EQ(fault(std::string("SQLite format 3\0month", 21)), "the climate is no text");
  EXPECT_EQ(fault(std::string(all_titles) + "\n1\n"),
            "line 2 of the climate: '' is no outside_temperature from -80 to 60");
}

TEST(ClimateTable, may_have_the_mark_of_a_spreadsheet) {
  EXPECT_EQ(kit::climate_from_csv("\xEF\xBB\xBF" + csv(all_titles, ",-5,85,20,50"))[0]
                .outside_temperature,
            kit::climate_from_csv(csv(all_titles, ",-5,85,20,50"))[0].outside_temperature);
}

std::shared_ptr<Composition> wall(const char* board_factor) {
  const auto sheet = with_custom("Sheet", kit::property::conductivity, "0.4");
  sheet->custom_value("Vapour diffusion thickness [m]", "10");
  const auto board = with_custom("Board", kit::property::conductivity, "0.2");
  if (board_factor) board->custom_value("Water vapour resistance factor [-]", board_factor);
  const auto result = Composition::create("Wall");
  result->type(Composition::Type::Wall);
  result->appendLayer({sheet, Material::Function::None, 20});
  result->appendLayer({board, Material::Function::None, 50});
  return result;
}

// The two layers of the tests above: 0.02 / 0.4 = 0.05, 0.05 / 0.2 = 0.25 and 10 * 0.05 = 0.5 m.
TEST(CompositionMoisture, is_that_of_its_layers) {
  const auto result = kit::moisture_of(*wall("10"), Unit::Millimetres, two_seasons());
  EXPECT_NEAR(result.year->greatest, 3.68799, 1e-3);
  EXPECT_NEAR(result.surface->factor, 0.34 / 0.59, 1e-9);
  const auto diffusion = kit::diffusion_of(*wall("10"), Unit::Millimetres);
  EXPECT_NEAR(*diffusion.total, 10.5, 1e-12);
}

TEST(CompositionMoisture, is_the_same_in_inches) {
  const auto metric = kit::moisture_of(*wall("10"), Unit::Millimetres, two_seasons());
  const auto inches = wall("10");
  inches->layer(0, toModify).thickness(20 / 25.4);
  inches->layer(1, toModify).thickness(50 / 25.4);
  const auto result = kit::moisture_of(*inches, Unit::Inches, two_seasons());
  EXPECT_NEAR(result.year->greatest, metric.year->greatest, 1e-9);
  EXPECT_NEAR(result.surface->factor, metric.surface->factor, 1e-12);
}

TEST(CompositionMoisture, tells_which_layer_says_nothing_of_vapour) {
  const auto result = kit::moisture_of(*wall(nullptr), Unit::Millimetres, two_seasons());
  EXPECT_FALSE(result.year);
  EXPECT_TRUE(result.surface);
  EXPECT_THAT(
      result.faults,
      ElementsAre("layer 2, 'Board': its 'Water vapour resistance factor [-]' is not known"));
  EXPECT_THAT(kit::moisture_of(*wall("-2"), Unit::Millimetres, two_seasons()).faults,
              ElementsAre(HasSubstr("is not greater than 0: '-2'")));
}

TEST(CompositionMoisture, is_none_where_the_climate_says_nothing_of_a_side) {
  const auto faults = [](const char* boundary) {
    const auto asked = kit::physics::boundary_statement(boundary);
    const auto result = kit::moisture_of(*wall("10"), Unit::Millimetres, two_seasons(), asked);
    EXPECT_EQ(result.year.has_value(), result.faults.empty());
    EXPECT_EQ(result.surface.has_value(), result.faults.empty());
    return result.faults;
  };
  EXPECT_THAT(faults("ground"), ElementsAre("the climate says nothing of the ground outside"));
  EXPECT_THAT(faults("unheated"), ElementsAre(HasSubstr("says nothing of an unheated room")));
  EXPECT_THAT(faults("interior"), ElementsAre(HasSubstr("says nothing of a heated room")));
  EXPECT_THAT(faults("outdoors,unheated"), ElementsAre(HasSubstr("an unheated room inside")));
  EXPECT_THAT(faults("outdoors"), IsEmpty());
  EXPECT_THAT(faults("ventilated"), IsEmpty());
}

TEST(CompositionMoisture, begins_behind_a_ventilated_layer) {
  const auto vented = wall("10");
  const auto air = with_custom("Air", kit::property::ventilation, "well ventilated");
  vented->insertLayer(0, {air, Material::Function::None, 40});
  const auto result = kit::moisture_of(*vented, Unit::Millimetres, two_seasons());
  EXPECT_EQ(result.year->places[1].layer, 1U);
  EXPECT_NEAR(*kit::diffusion_of(*vented, Unit::Millimetres).total, 10.5, 1e-12);
}

}  // namespace
}  // namespace veldra_tests
