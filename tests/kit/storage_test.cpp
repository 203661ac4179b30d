// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>
#include <complex>

namespace veldra_tests {
namespace {

using namespace kit::physics;

constexpr double day = 86400;
constexpr double pi = 3.14159265358979323846;

StorageLayer layer(double thickness, double conductivity, double density, double specific_heat) {
  return {thickness / conductivity, thickness, density, specific_heat};
}

/// A wall in thin slices through whose temperatures time goes in small steps. It knows nothing of
/// swings, so that it judges what is computed with them.
class SteppedWall {
 public:
  SteppedWall(const std::vector<StorageLayer>& layers, double outside, double inside) {
    constexpr int slices = 120;
    double before = outside;
    for (const auto& each : layers) {
      for (int i = 0; i < slices; ++i) {
        const double half = each.resistance / slices / 2;
        conductances_.push_back(1 / (before + half));
        capacities_.push_back(each.thickness / slices * each.density * each.specific_heat + 1e-6);
        before = half;
      }
    }
    conductances_.push_back(1 / (before + inside));
    temperatures_.assign(capacities_.size(), 0);
  }

  /// The heat that leaves at the inside, as amplitude and phase, when the sides swing by so many K.
  std::complex<double> inner_flow(double outer_swing, double inner_swing) {
    constexpr int steps = 1440;
    constexpr int days = 10;
    std::complex<double> sum = 0;
    for (int n = 0; n < days * steps; ++n) {
      const double middle = 2 * pi * (n + 0.5) / steps;
      const auto before = temperatures_.back();
      step(day / steps, outer_swing * std::cos(middle), inner_swing * std::cos(middle));
      if (n < (days - 1) * steps) continue;
      const double wall = (before + temperatures_.back()) / 2;
      const double flow = conductances_.back() * (wall - inner_swing * std::cos(middle));
      sum += flow * std::exp(std::complex<double>(0, -middle)) * (2.0 / steps);
    }
    return sum;
  }

 private:
  /// Crank and Nicolson, solved by elimination.
  void step(double seconds, double outer, double inner) {
    const std::size_t size = temperatures_.size();
    std::vector<double> above(size), right(size);
    for (std::size_t i = 0; i < size; ++i) {
      const double left = conductances_[i];
      const double next = conductances_[i + 1];
      const double rest = 2 * capacities_[i] / seconds;
      const double warm_left = i == 0 ? 2 * outer : temperatures_[i - 1];
      const double warm_right = i + 1 == size ? 2 * inner : temperatures_[i + 1];
      double diagonal = rest + left + next;
      double value = (rest - left - next) * temperatures_[i] + left * warm_left + next * warm_right;
      if (i > 0) {
        diagonal -= left * above[i - 1];
        value += left * right[i - 1];
      }
      above[i] = next / diagonal;
      right[i] = value / diagonal;
    }
    temperatures_[size - 1] = right[size - 1];
    for (std::size_t i = size - 1; i-- > 0;) {
      temperatures_[i] = right[i] + above[i] * temperatures_[i + 1];
    }
  }

  std::vector<double> conductances_;
  std::vector<double> capacities_;
  std::vector<double> temperatures_;
};

const std::vector<std::vector<StorageLayer>> walls{
    {layer(0.2, 2, 2400, 1000)},
    {layer(0.16, 0.035, 30, 1030), layer(0.175, 0.99, 1800, 1000)},
    {layer(0.02, 1, 1800, 1000), layer(0.365, 0.1, 650, 1000), layer(0.015, 0.7, 1400, 1000)},
    {layer(0.06, 0.045, 160, 2100), layer(0.2, 0.05, 80, 1300), layer(0.0125, 0.25, 900, 1050)}};

TEST(HeatStorage, is_what_small_steps_through_time_find) {
  for (const auto& wall : walls) {
    const auto storage = heat_storage(wall, 0.04, 0.13);
    const auto periodic = SteppedWall(wall, 0.04, 0.13).inner_flow(1, 0);
    EXPECT_NEAR(storage.periodic_transmittance, std::abs(periodic),
                0.003 * std::abs(periodic) + 1e-5);
    const double hours = std::fmod(-std::arg(periodic) / (2 * pi) * 24 + 48, 24);
    EXPECT_NEAR(std::fmod(storage.time_shift, 24), hours, 0.05);
    const double both = std::abs(SteppedWall(wall, 0.04, 0.13).inner_flow(1, 1)) * day / (2 * pi);
    EXPECT_NEAR(storage.inside, both, 0.003 * both);
    const std::vector<StorageLayer> turned(wall.rbegin(), wall.rend());
    const double outer =
        std::abs(SteppedWall(turned, 0.13, 0.04).inner_flow(1, 1)) * day / (2 * pi);
    EXPECT_NEAR(storage.outside, outer, 0.003 * outer);
  }
}

// 140 mm of polystyrene outside 200 mm of brick, from the inside to the outside. Brick: penetration
// sqrt(0.8 * 86400 / (pi * 1800 * 900)) = 0.116538 m, xi = 0.2 / 0.116538 = 1.71617, Z11 = cosh xi
// cos xi + j sinh xi sin xi = -0.41597 + 2.66332j, Z12 = -0.17854 - 0.23534j, Z21 = 22.1806 -
// 16.8271j. Polystyrene: 0.210371 m, 0.66549, 0.96733 + 0.44191j, -3.97385 - 0.58995j, 0.03266 -
// 0.21999j. With the surfaces 0.13 and 0.04: Z11 = -100.827 + 56.427j, Z12 = 16.3286 - 18.0773j of
// the size 24.3600, Z22 = -5.46729 + 3.24266j. So 1 / 24.3600 = 0.041051 W/(m2 K), times the
// resistance 4 + 0.25 + 0.17 = 4.42 is 0.181445; 86400 / (2 pi) = 13750.99 times |Z11 - 1| =
// 116.417 and |Z22 - 1| = 7.23469 over 24.3600 are 65716 and 4083.9 J/(m2 K); -1 / Z12 turns by
// -2.30541, times 12 / pi: 8.8060 h.
TEST(HeatStorage, of_two_layers_is_that_of_their_matrices) {
  const auto storage =
      heat_storage({layer(0.14, 0.035, 15, 1450), layer(0.2, 0.8, 1800, 900)}, 0.04, 0.13);
  EXPECT_NEAR(storage.inside, 65716, 0.5);
  EXPECT_NEAR(storage.outside, 4083.9, 0.05);
  EXPECT_NEAR(storage.periodic_transmittance, 0.041051, 1e-6);
  EXPECT_NEAR(storage.decrement, 0.181445, 1e-6);
  EXPECT_NEAR(storage.time_shift, 8.8060, 1e-4);
}

// R = 2 with surfaces 0.04 and 0.13: all swings come through at once, 1 / 2.17.
TEST(HeatStorage, of_a_wall_without_mass_is_none) {
  const auto storage = heat_storage({{2, 0.1, 0, 0}}, 0.04, 0.13);
  EXPECT_NEAR(storage.inside, 0, 1e-9);
  EXPECT_NEAR(storage.outside, 0, 1e-9);
  EXPECT_NEAR(storage.decrement, 1, 1e-12);
  EXPECT_NEAR(storage.time_shift, 0, 1e-12);
  EXPECT_NEAR(storage.periodic_transmittance, 1 / 2.17, 1e-12);
}

// Concrete without end and without surfaces takes sqrt(2 * 2400 * 1000) / sqrt(2 pi / 86400) =
// 2190.89 / 0.00852774 = 256,914 J/(m2 K).
TEST(HeatStorage, of_a_layer_without_end_is_what_its_surface_takes) {
  for (const double thickness : {5.0, 500.0, 5e6}) {
    const auto storage = heat_storage({layer(thickness, 2, 2400, 1000)}, 0, 0);
    EXPECT_NEAR(storage.inside, 256914, 5);
    EXPECT_NEAR(storage.outside, 256914, 5);
    EXPECT_NEAR(storage.decrement, 0, 1e-3);
  }
}

// A thin sheet swings with both sides, so that each takes half of 0.001 * 7800 * 450 = 3510.
TEST(HeatStorage, of_a_thin_layer_is_shared_by_both_sides) {
  const auto storage = heat_storage({layer(0.001, 50, 7800, 450)}, 0.1, 0.1);
  EXPECT_NEAR(storage.inside, 3510 / 2, 5);
  EXPECT_NEAR(storage.outside, 3510 / 2, 5);
}

std::shared_ptr<Material> concrete() {
  const auto result = with_custom("Concrete", kit::property::conductivity, "2");
  result->custom_value(kit::property::density, "2400");
  result->custom_value(kit::property::specific_heat, "1000");
  return result;
}

std::shared_ptr<Composition> wall_of(const std::vector<std::shared_ptr<Material>>& materials) {
  const auto wall = Composition::create("Wall");
  wall->type(Composition::Type::Wall);
  for (const auto& each : materials) wall->appendLayer({each, Material::Function::None, 200});
  return wall;
}

TEST(CompositionStorage, is_that_of_its_layers) {
  const auto result = kit::storage_of(*wall_of({concrete()}), Unit::Millimetres);
  EXPECT_NEAR(*result.mass, 480, 1e-9);
  EXPECT_NEAR(result.storage->inside, heat_storage(walls[0], 0.04, 0.13).inside, 1e-6);
}

TEST(CompositionStorage, is_the_same_in_inches) {
  const auto wall = wall_of({concrete(), concrete()});
  const auto metric = kit::storage_of(*wall, Unit::Millimetres);
  for (std::size_t i = 0; i < 2; ++i) wall->layer(i, toModify).thickness(200 / 25.4);
  const auto inches = kit::storage_of(*wall, Unit::Inches);
  EXPECT_NEAR(*inches.mass, *metric.mass, 1e-9);
  EXPECT_NEAR(inches.storage->inside, metric.storage->inside, 1e-6);
  EXPECT_NEAR(inches.storage->time_shift, metric.storage->time_shift, 1e-9);
}

// 90 % wool of 20 kg/m3, 10 % studs of 500 kg/m3 in 0.2 m: 0.2 * (18 + 50) = 13.6 kg/m2.
TEST(CompositionStorage, has_the_mass_of_bridges_by_their_share) {
  const auto wool = with_custom("Wool", kit::property::conductivity, "0.04");
  for (const auto& [property, value] :
       {std::pair("Density [kg/m3]", "20"), std::pair("Specific heat [J/(kg K)]", "1030"),
        std::pair("Bridge share [-]", "0.1"), std::pair("Bridge conductivity [W/(m K)]", "0.13"),
        std::pair("Bridge density [kg/m3]", "500")}) {
    wool->custom_value(property, value);
  }
  const auto wall = wall_of({wool});
  EXPECT_NEAR(*kit::mass_of(*wall, Unit::Millimetres), 13.6, 1e-9);
  EXPECT_THAT(kit::storage_of(*wall, Unit::Millimetres).faults,
              ElementsAre("layer 1, 'Wool': its 'Bridge specific heat [J/(kg K)]' is not known"));
  wool->custom_value("Bridge specific heat [J/(kg K)]", "1600");
  wall->layer(0, toModify).material(wool);
  EXPECT_TRUE(kit::storage_of(*wall, Unit::Millimetres).storage);
}

TEST(CompositionStorage, tells_what_is_not_known) {
  const auto bare = with_custom("Bare", kit::property::conductivity, "2");
  const auto result = kit::storage_of(*wall_of({concrete(), bare}), Unit::Millimetres);
  EXPECT_EQ(result.mass, std::nullopt);
  EXPECT_FALSE(result.storage);
  EXPECT_THAT(result.mass_faults,
              ElementsAre("layer 2, 'Bare': its 'Density [kg/m3]' is not known"));
}

TEST(CompositionStorage, counts_the_mass_outside_a_ventilated_layer_and_not_its_storage) {
  const auto air = with_custom("Air", kit::property::ventilation, "well ventilated");
  const auto wall = wall_of({concrete(), air, concrete()});
  const auto result = kit::storage_of(*wall, Unit::Millimetres);
  EXPECT_NEAR(*result.mass, 960, 1e-9);
  EXPECT_NEAR(result.storage->inside, heat_storage(walls[0], 0.13, 0.13).inside, 1e-6);
}

// Without the wool 0.5 + 0.17 = 0.67; 1 / 0.15 = 6.666667, so (6.666667 - 0.67) * 0.04 = 0.239867.
class Solving : public Test {
 protected:
  Solving() {
    wall_->type(Composition::Type::Wall);
    wall_->appendLayer(
        {with_custom("Brick", kit::property::conductivity, "0.4"), Material::Function::None, 200});
    wall_->appendLayer(
        {with_custom("Wool", kit::property::conductivity, "0.04"), Material::Function::None, 100});
  }

  kit::ThicknessSolution solve(double target, std::optional<std::size_t> layer = {}) const {
    return kit::thickness_for(*wall_, Unit::Millimetres, target, layer);
  }

  std::shared_ptr<Composition> wall_ = Composition::create("Wall");
};

TEST_F(Solving, finds_the_thickness_of_a_named_layer) {
  const auto result = solve(0.15, 1);
  EXPECT_NEAR(*result.thickness, 239.8667, 1e-4);
  EXPECT_NEAR(*result.transmittance, 0.15, 1e-9);
  EXPECT_EQ(wall_->layers()[1].thickness(), 100);
}

TEST_F(Solving, finds_the_thickness_of_the_variable_layer_within_its_limits) {
  wall_->variable_layer(1);
  wall_->variable_layer_min_thickness(80);
  wall_->variable_layer_max_thickness(240);
  EXPECT_NEAR(*solve(0.15).thickness, 239.8667, 1e-4);
  EXPECT_EQ(*solve(1.0).thickness, 80);
  wall_->variable_layer_max_thickness(200);
  EXPECT_EQ(solve(0.15).thickness, std::nullopt);
  EXPECT_EQ(solve(0.15).fault,
            "even with its greatest thickness, 200 mm, layer 2 gives 0.176 W/(m²K)");
}

TEST_F(Solving, needs_no_layer_without_which_the_target_is_reached) {
  EXPECT_EQ(*solve(1.6, 1).thickness, 0);
  EXPECT_NEAR(*solve(1.6, 1).transmittance, 1 / (0.5 + 0.17), 1e-4);
}

TEST_F(Solving, refuses_limits_that_contradict_each_other) {
  wall_->variable_layer(1);
  wall_->variable_layer_min_thickness(200);
  wall_->variable_layer_max_thickness(120);
  EXPECT_FALSE(solve(0.3).thickness);
  EXPECT_EQ(solve(0.3).fault,
            "the least thickness of layer 2, 200 mm, is more than its greatest, 120 mm");
}

TEST_F(Solving, finds_the_same_in_inches) {
  wall_->layer(0, toModify).thickness(200 / 25.4);
  EXPECT_NEAR(*kit::thickness_for(*wall_, Unit::Inches, 0.15, 1).thickness, 239.8667 / 25.4, 1e-5);
}

TEST_F(Solving, tells_why_there_is_none) {
  EXPECT_EQ(solve(0.15).fault, "it has no variable layer; name one");
  EXPECT_EQ(solve(0.15, 2).fault, "there is no layer 3 of 2");
  EXPECT_EQ(solve(0, 1).fault, "the target is not greater than 0");
  const auto board = with_custom("Board", kit::property::resistance, "0.1");
  wall_->layer(1, toModify).material(board);
  EXPECT_EQ(solve(0.15, 1).fault, "the resistance of layer 2 does not grow with its thickness");
  wall_->custom_value("U-factor [W/(m2 K)]", "0.3");
  EXPECT_THAT(solve(0.15, 0).fault, HasSubstr("is stated"));
}

TEST_F(Solving, tells_that_a_bad_layer_is_in_the_way) {
  wall_->layer(0, toModify).material(Material::create("Mystery"));
  EXPECT_THAT(solve(0.15, 1).fault, HasSubstr("layer 1, 'Mystery'"));
}

}  // namespace
}  // namespace veldra_tests
