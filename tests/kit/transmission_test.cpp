// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

namespace veldra_tests {
namespace {

using kit::BoundaryBasis;
using kit::physics::HeatFlow;
using kit::physics::Side;

using Properties = std::vector<std::pair<const char*, const char*>>;

constexpr const char* conductivity = "Thermal conductivity [W/(m K)]";

std::shared_ptr<Material> material(const std::string& name, const Properties& values) {
  const auto result = Material::create(text(name));
  for (const auto& [property, value] : values) result->custom_value(property, value);
  return result;
}

class TransmissionTest : public Test {
 protected:
  void add(const std::string& name, double thickness, const Properties& values) {
    wall_->appendLayer({material(name, values), Material::Function::None, thickness});
  }

  kit::Transmission result(const kit::physics::BoundaryStatement& asked = {}) const {
    return kit::transmission_of(*wall_, Unit::Millimetres, asked);
  }

  std::string fault() const {
    const auto faults = result().faults;
    EXPECT_EQ(result().transmittance(), std::nullopt);
    return faults.empty() ? "no fault" : faults.front();
  }

  std::shared_ptr<Composition> wall_ = Composition::create("Wand");
};

// 0.2 / 0.4 = 0.5: 1 / (0.5 + 0.13 + 0.04), (0.5 + 0.26), (0.5 + 0.13).
TEST_F(TransmissionTest, has_the_surfaces_that_the_composition_states) {
  wall_->type(Composition::Type::Wall);
  add("Brick", 200, {{conductivity, "0.4"}});
  EXPECT_DOUBLE_EQ(*result().total_resistance(), 0.67);
  EXPECT_TRUE(result().border.assumed);
  wall_->custom_value("Boundary", "interior");
  EXPECT_DOUBLE_EQ(*result().total_resistance(), 0.76);
  EXPECT_FALSE(result().border.assumed);
  EXPECT_EQ(result().border.basis, BoundaryBasis::Stated);
  wall_->custom_value("Boundary", "ground");
  EXPECT_DOUBLE_EQ(*result().total_resistance(), 0.63);
  wall_->custom_value("Boundary", "unheated, interior, upward");
  EXPECT_DOUBLE_EQ(*result().total_resistance(), 0.70);
}

TEST_F(TransmissionTest, has_the_surfaces_that_are_asked_for_before_those_stated) {
  wall_->type(Composition::Type::Wall);
  add("Brick", 200, {{conductivity, "0.4"}});
  wall_->custom_value("Boundary", "ground");
  const auto asked = result(kit::physics::boundary_statement("unheated"));
  EXPECT_DOUBLE_EQ(*asked.total_resistance(), 0.76);
  EXPECT_EQ(asked.border.basis, BoundaryBasis::Asked);
  EXPECT_FALSE(asked.border.assumed);
}

TEST_F(TransmissionTest, is_not_given_for_a_boundary_that_says_nothing_known) {
  add("Brick", 200, {{conductivity, "0.4"}});
  wall_->custom_value("Boundary", "underwater");
  EXPECT_THAT(fault(), HasSubstr("'underwater' in a boundary is none of outdoors"));
}

TEST_F(TransmissionTest, has_surfaces_by_words_in_the_name_where_nothing_is_stated) {
  const auto by = [](const char* name, Composition::Type type) {
    const auto composition = Composition::create(name);
    composition->type(type);
    return kit::boundary_of(*composition);
  };
  using Type = Composition::Type;
  EXPECT_EQ(by("Medium Partitions", Type::Other).boundary.outside, Side::Interior);
  EXPECT_EQ(by("Interior Ceiling", Type::Other).boundary.heat_flow, HeatFlow::Upward);
  EXPECT_EQ(by("Interior Floor", Type::Other).boundary.heat_flow, HeatFlow::Downward);
  EXPECT_EQ(by("Heavy Roof/Ceiling", Type::Other).boundary.outside, Side::Outdoors);
  EXPECT_EQ(by("Innenwand 5", Type::Wall).boundary.outside, Side::Interior);
  EXPECT_EQ(by("Innenwand 5", Type::Wall).basis, BoundaryBasis::Name);
  EXPECT_EQ(by("Bodenplatte", Type::Floor).boundary.outside, Side::Ground);
  EXPECT_EQ(by("Exterior wall with interior insulation", Type::Wall).boundary.outside,
            Side::Outdoors);
  EXPECT_EQ(by("Disinterior", Type::Wall).boundary.outside, Side::Outdoors);
  EXPECT_EQ(by("Ceiling panel", Type::Wall).boundary.heat_flow, HeatFlow::Horizontal);
  EXPECT_TRUE(by("Interior wall", Type::Wall).assumed);
  EXPECT_EQ(by("InteriorFurnishings", Type::Other).boundary.outside, Side::Interior);
  EXPECT_EQ(by("Wall with interior insulation", Type::Wall).boundary.outside, Side::Outdoors);
  EXPECT_EQ(by("Internal gutter roof", Type::Roof).boundary.outside, Side::Outdoors);
}

TEST_F(TransmissionTest, has_surfaces_by_the_last_part_of_long_words) {
  const auto by = [](const char* name) { return kit::boundary_of(*Composition::create(name)); };
  const auto border = [&](const char* name) {
    return std::make_pair(by(name).boundary.outside, by(name).boundary.heat_flow);
  };
  EXPECT_EQ(border("Geschossdecke"), std::make_pair(Side::Interior, HeatFlow::Upward));
  EXPECT_EQ(border("Oberste Geschossdecke"), std::make_pair(Side::Unheated, HeatFlow::Upward));
  EXPECT_EQ(border("Kellerdecke"), std::make_pair(Side::Unheated, HeatFlow::Downward));
  EXPECT_EQ(border("Basement ceiling"), std::make_pair(Side::Unheated, HeatFlow::Downward));
  EXPECT_EQ(border("Holzbalkendecke 2"), std::make_pair(Side::Outdoors, HeatFlow::Upward));
  EXPECT_EQ(border("Flachdach"), std::make_pair(Side::Outdoors, HeatFlow::Upward));
  EXPECT_EQ(border("Fußboden"), std::make_pair(Side::Outdoors, HeatFlow::Downward));
  EXPECT_EQ(border("Dachdeckung am Bodensee"), std::make_pair(Side::Outdoors, HeatFlow::Upward));
}

TEST_F(TransmissionTest, has_the_usual_surfaces_where_neither_name_nor_type_tells) {
  const auto usual = kit::boundary_of(*Composition::create("Build-up 7"));
  EXPECT_EQ(usual.basis, BoundaryBasis::Usual);
  EXPECT_EQ(usual.boundary.heat_flow, HeatFlow::Horizontal);
  EXPECT_EQ(usual.boundary.outside, Side::Outdoors);
  EXPECT_TRUE(usual.assumed);
}

TEST_F(TransmissionTest, assumes_only_what_is_not_stated) {
  wall_->custom_value("Boundary", "ground");
  auto border = kit::boundary_of(*wall_);
  EXPECT_TRUE(border.assumed);
  EXPECT_FALSE(border.outside_assumed);
  EXPECT_TRUE(border.heat_flow_assumed);
  EXPECT_EQ(border.basis, BoundaryBasis::Usual);
  wall_->custom_value("Boundary", "upward");
  border = kit::boundary_of(*wall_);
  EXPECT_TRUE(border.outside_assumed);
  EXPECT_FALSE(border.heat_flow_assumed);
  EXPECT_EQ(border.basis, BoundaryBasis::Usual);
  wall_->custom_value("Boundary", "ground, horizontal");
  border = kit::boundary_of(*wall_);
  EXPECT_FALSE(border.assumed || border.outside_assumed || border.heat_flow_assumed);
}

TEST_F(TransmissionTest, of_no_layers_is_none_and_says_so) {
  EXPECT_FALSE(result().transmittance());
  EXPECT_THAT(result().faults, ElementsAre("it has no layers"));
}

// 24 mm of air, horizontal: between 15 mm (0.17) and 25 mm (0.18) 0.179.
TEST_F(TransmissionTest, of_an_air_layer_follows_its_thickness_and_direction) {
  add("Air", 24, {{"Ventilation", "unventilated"}});
  EXPECT_NEAR(*result().total_resistance(), 0.179 + 0.17, 1e-12);
  wall_->layer(0, toModify).thickness(50);
  EXPECT_NEAR(*result(kit::physics::boundary_statement("outdoors,downward")).total_resistance(),
              0.21 + 0.21, 1e-12);
}

TEST_F(TransmissionTest, of_an_air_layer_beside_a_foil_follows_the_formula) {
  add("Air", 20, {{"Ventilation", "unventilated"}, {"Inner emissivity [-]", "0.05"}});
  EXPECT_NEAR(*result().total_resistance(), 0.665075 + 0.17, 1e-6);
}

// Slab 0.1 / 1, air 50 mm, wool 0.1 / 0.04 = 2.5. Unventilated: 0.04 + 0.1 + 0.18 + 2.5 + 0.13 =
// 2.95. Well ventilated: 0.13 + 2.5 + 0.13 = 2.76. 800 mm2: 0.7 * 2.95 + 0.3 * 2.76 = 2.893.
TEST_F(TransmissionTest, of_a_slightly_ventilated_layer_is_between_both) {
  add("Slab", 100, {{conductivity, "1"}});
  add("Air", 50, {{"Ventilation", "slightly ventilated"}, {"Ventilation opening [mm2]", "800"}});
  add("Wool", 100, {{conductivity, "0.04"}});
  EXPECT_NEAR(*result().total_resistance(), 2.893, 1e-12);
  const auto opening = [&](const char* value) {
    const auto air = material("Air", {{"Ventilation opening [mm2]", value}});
    wall_->layer(1, toModify).material(air);
    return *result().total_resistance();
  };
  EXPECT_NEAR(opening("500"), 2.95, 1e-12);
  EXPECT_NEAR(opening("1499.999999"), 2.76, 1e-6);
  EXPECT_NEAR(opening("1500"), 2.76, 1e-12);
  EXPECT_EQ(result().ventilated, 2U);
}

TEST_F(TransmissionTest, of_a_slightly_ventilated_layer_needs_its_opening) {
  add("Air", 50, {{"Ventilation", "slightly ventilated"}});
  EXPECT_THAT(fault(), HasSubstr("layer 1, 'Air': it is slightly ventilated"));
}

Properties wool_between_studs(const char* share) {
  return {{conductivity, "0.04"},
          {"Bridge", "studs"},
          {"Bridge share [-]", share},
          {"Bridge conductivity [W/(m K)]", "0.13"}};
}

// The stud wall of the plain functions' test: limits 4.423338 and 4.351633.
TEST_F(TransmissionTest, of_bridged_layers_has_limits_and_their_mean) {
  add("Board", 10, {{conductivity, "0.1"}});
  add("Wool", 200, wool_between_studs("0.1"));
  const auto wall = result();
  EXPECT_TRUE(wall.bridged);
  EXPECT_NEAR(wall.limits->upper, 4.423338, 5e-6);
  EXPECT_NEAR(wall.limits->lower, 4.351633, 1e-6);
  EXPECT_NEAR(*wall.transmittance(), 1 / 4.387486, 1e-6);
  EXPECT_EQ(wall.layers[1].bridge_name, "studs");
}

TEST_F(TransmissionTest, of_bridges_in_one_group_is_less_than_of_crossing_ones) {
  for (const char* name : {"Outer", "Inner"}) add(name, 100, wool_between_studs("0.1"));
  const auto crossing = *result().transmittance();
  for (const std::size_t i : {0, 1}) {
    auto values = wool_between_studs("0.1");
    values.emplace_back("Bridge group", "main");
    wall_->layer(i, toModify).material(material("Aligned", values));
  }
  EXPECT_GT(*result().transmittance(), crossing);
}

// 160 mm of a bridge in 200 mm: as 40 mm of wool before 160 mm with studs.
TEST_F(TransmissionTest, of_a_bridge_that_does_not_go_through_cuts_the_layer) {
  auto values = wool_between_studs("0.1");
  values.emplace_back("Bridge depth [mm]", "160");
  add("Wool", 200, values);
  const auto cut = *result().limits;
  wall_ = Composition::create("Cut");
  add("Wool", 40, {{conductivity, "0.04"}});
  add("Wool", 160, wool_between_studs("0.1"));
  EXPECT_NEAR(cut.upper, result().limits->upper, 1e-12);
  EXPECT_NEAR(cut.lower, result().limits->lower, 1e-12);
}

TEST_F(TransmissionTest, tells_where_the_combined_method_ends) {
  add("Wool", 200,
      {{conductivity, "0.04"},
       {"Bridge share [-]", "0.01"},
       {"Bridge conductivity [W/(m K)]", "50"}});
  add("Board", 100, {{conductivity, "0.1"}});
  EXPECT_THAT(result().notes,
              ElementsAre(HasSubstr("a bridge of metal"), HasSubstr("holds up to 1.5")));
}

// Wool 0.2 / 0.04 = 5, total 5.17, U = 0.193424. Air voids of level 1: 0.01 * (5 / 5.17)^2 =
// 0.009353. 4 screws: 0.8 * 50 * 12e-6 * 4 / 0.2 * (5 / 5.17)^2 = 0.008979.
TEST_F(TransmissionTest, is_corrected_for_air_voids_and_fasteners) {
  add("Wool", 200,
      {{conductivity, "0.04"},
       {"Air void level [-]", "1"},
       {"Fasteners [1/m2]", "4"},
       {"Fastener conductivity [W/(m K)]", "50"},
       {"Fastener cross-section [mm2]", "12"}});
  EXPECT_NEAR(*result().transmittance(), 0.193424 + 0.009353 + 0.008979, 2e-6);
  EXPECT_EQ(result().corrections.size(), 2U);
  EXPECT_NEAR(*result().total_resistance(), 5.17, 1e-12);
}

TEST_F(TransmissionTest, with_fasteners_of_which_too_little_is_known_is_not_given) {
  add("Wool", 200, {{conductivity, "0.04"}, {"Fasteners [1/m2]", "4"}});
  EXPECT_THAT(fault(), HasSubstr("fasteners"));
}

// 120 mm of foam (0.035): 3.428571, slab 0.2 / 2 = 0.1, surfaces 0.14 upward: total 3.668571.
// 2.5 mm/day * 0.04 * (3.428571 / 3.668571)^2 = 0.087344; U = 0.272586.
TEST_F(TransmissionTest, of_an_inverted_roof_is_corrected_for_rain) {
  wall_->type(Composition::Type::Roof);
  add("Foam", 120, {{conductivity, "0.035"}, {"Inverted roof factor [W day/(m2 K mm)]", "0.04"}});
  add("Slab", 200, {{conductivity, "2"}});
  EXPECT_THAT(fault(), HasSubstr("'Precipitation [mm/day]'"));
  wall_->custom_value("Precipitation [mm/day]", "2.5");
  EXPECT_NEAR(*result().transmittance(), 0.272586 + 0.087344, 2e-6);
}

// 40 to 200 mm of foam (0.04) on R = 0.86 with surfaces: base 0.86 + 1 = 1.86, rise 4:
// ln(1 + 4 / 1.86) / 4 = 0.286894.
TEST_F(TransmissionTest, of_a_tapered_layer_is_the_mean_of_its_rise) {
  wall_->type(Composition::Type::Roof);
  add("Foam", 40, {{conductivity, "0.04"}, {"Taper rise [mm]", "160"}});
  add("Slab", 180, {{conductivity, "0.25"}});
  EXPECT_NEAR(*result().transmittance(), std::log(1 + 4 / 1.86) / 4, 1e-12);
  wall_->appendLayer(wall_->layers()[0]);
  EXPECT_THAT(fault(), HasSubstr("layer 3, 'Foam': it is the second tapered layer"));
}

class Window : public TransmissionTest {
 protected:
  void pane(const char* back, const char* front) {
    add("Pane", 4,
        {{conductivity, "1"},
         {"Front infrared emissivity [-]", front},
         {"Back infrared emissivity [-]", back}});
  }
};

// The two panes of the plain functions' test: 0.18824 + 0.008 + 0.17.
TEST_F(Window, of_panes_with_gas_between_them) {
  pane("0.837", "0.837");
  add("Gas", 16, {{"Gas type", "Air"}});
  pane("0.837", "0.837");
  EXPECT_NEAR(*result().total_resistance(), 0.36624, 1e-4);
  EXPECT_THAT(result().notes, ElementsAre(HasSubstr("EN 673")));
}

TEST_F(Window, looks_at_the_sides_that_face_the_gas) {
  pane("0.03", "0.837");
  add("Gas", 16, {{"Gas type", "Argon"}});
  pane("0.837", "0.837");
  const double coated = *result().transmittance();
  wall_->layer(0, toModify).material(wall_->layers()[2].material());
  EXPECT_GT(*result().transmittance(), 2 * coated);
}

TEST_F(Window, with_a_mixture_needs_all_its_gases) {
  pane("0.837", "0.837");
  add("Gas", 16,
      {{"Gas 1 type", "Argon"},
       {"Gas 1 fraction [-]", "0.9"},
       {"Gas 2 type", "Air"},
       {"Gas 2 fraction [-]", "0.1"}});
  pane("0.837", "0.837");
  EXPECT_NEAR(*result().transmittance(), 2.6, 0.05);
  wall_->layer(1, toModify)
      .material(material("Gas", {{"Gas 1 type", "Argon"}, {"Gas 1 fraction [-]", "0.9"}}));
  EXPECT_THAT(fault(), HasSubstr("layer 2, 'Gas': its gas is not known"));
}

TEST_F(Window, with_gas_beside_no_pane_is_not_known) {
  add("Gas", 16, {{"Gas type", "Air"}});
  pane("0.837", "0.837");
  EXPECT_THAT(fault(), HasSubstr("not between panes"));
}

TEST_F(Window, that_lets_radiation_through_is_not_known) {
  add("Film", 4, {{"Infrared emissivity [-]", "0.5"}, {"Infrared transmittance [-]", "0.2"}});
  add("Gas", 16, {{"Gas type", "Air"}});
  pane("0.837", "0.837");
  EXPECT_THAT(fault(), HasSubstr("not between panes"));
}

TEST_F(Window, with_a_stated_u_factor_has_it) {
  add("System", 0, {{"U-factor [W/(m2 K)]", "1.3"}});
  EXPECT_EQ(result().transmittance(), 1.3);
  EXPECT_THAT(result().notes, ElementsAre(HasSubstr("as it is stated")));
  add("Board", 10, {{conductivity, "0.1"}});
  EXPECT_THAT(fault(), HasSubstr("it is not the only layer"));
  wall_->custom_value("U-factor [W/(m2 K)]", "0.9");
  EXPECT_EQ(result().transmittance(), 0.9);
}

struct BadValue {
  const char* property;
  const char* value;
  const char* sentence;
};

class BadValues : public TransmissionTest, public WithParamInterface<BadValue> {};

TEST_P(BadValues, keep_the_figure_away_and_are_named) {
  add("Board", 10, {{conductivity, "0.1"}});
  const auto bad = material("Wool", wool_between_studs("0.1"));
  bad->custom_value(GetParam().property, GetParam().value);
  wall_->appendLayer({bad, Material::Function::None, 200});
  EXPECT_EQ(fault(), std::string("layer 2, 'Wool': ") + GetParam().sentence);
  EXPECT_THAT(kit::KnownValues(*bad).faults(), Contains(GetParam().sentence));
}

INSTANTIATE_TEST_SUITE_P(
    Physics, BadValues,
    Values(BadValue{conductivity, "-1",
                    "its 'Thermal conductivity [W/(m K)]' is not greater than 0: '-1'"},
           BadValue{conductivity, "0",
                    "its 'Thermal conductivity [W/(m K)]' is not greater than 0: '0'"},
           BadValue{conductivity, "inf",
                    "its 'Thermal conductivity [W/(m K)]' is no number that can be used: 'inf'"},
           BadValue{"Thermal resistance [m2 K/W]", "-0.1",
                    "its 'Thermal resistance [m2 K/W]' is less than 0: '-0.1'"},
           BadValue{"Bridge share [-]", "1.2", "its 'Bridge share [-]' is greater than 1: '1.2'"},
           BadValue{"Bridge conductivity [W/(m K)]", "1e999",
                    "its 'Bridge conductivity [W/(m K)]' is no number that can be used: '1e999'"},
           BadValue{"Air void level [-]", "1.5",
                    "its 'Air void level [-]' is none of 0, 1 and 2: '1.5'"}));

TEST_F(TransmissionTest, of_a_layer_without_a_thickness_is_not_given) {
  add("Board", 0, {{conductivity, "0.1"}});
  EXPECT_EQ(fault(), "layer 1, 'Board': its thickness is 0");
  wall_->layer(0, toModify).thickness(std::numeric_limits<double>::infinity());
  EXPECT_EQ(fault(), "layer 1, 'Board': its thickness is infinite");
  wall_->layer(0, toModify).thickness(-1);
  EXPECT_EQ(fault(), "layer 1, 'Board': its thickness is negative");
}

TEST_F(TransmissionTest, of_half_a_bridge_is_not_given) {
  add("Wool", 100, {{conductivity, "0.04"}, {"Bridge share [-]", "0.1"}});
  EXPECT_THAT(fault(), HasSubstr("its 'Bridge conductivity [W/(m K)]' is not known"));
}

TEST_F(TransmissionTest, looks_at_no_bad_value_outside_a_ventilated_layer) {
  add("Cladding", 20, {{conductivity, "-1"}});
  add("Air", 40, {{"Ventilation", "well ventilated"}});
  add("Wool", 100, {{conductivity, "0.04"}});
  EXPECT_DOUBLE_EQ(*result().total_resistance(), 2.5 + 0.26);
}

TEST_F(TransmissionTest, nears_its_surfaces_and_nothing_with_the_thickness) {
  add("Wool", 1e-9, {{conductivity, "0.04"}});
  EXPECT_NEAR(*result().transmittance(), 1 / 0.17, 1e-6);
  wall_->layer(0, toModify).thickness(1e12);
  EXPECT_NEAR(*result().transmittance(), 0, 1e-9);
}

/// Walls of random layers, some bridged.
class RandomWall {
 public:
  explicit RandomWall(unsigned seed) : random_(seed) {
    const int layers = 1 + static_cast<int>(random_() % 6);
    for (int i = 0; i < layers; ++i) {
      thicknesses_.push_back(between(1, 400));
      conductivities_.push_back(between(0.02, 3));
      bridges_.push_back(random_() % 3 == 0 ? between(0.01, 0.4) : 0);
      groups_.push_back(random_() % 2 == 0 ? "a" : "");
    }
  }

  std::size_t layers() const { return thicknesses_.size(); }
  double& thickness(std::size_t i) { return thicknesses_[i]; }
  double& conductivity(std::size_t i) { return conductivities_[i]; }

  kit::Transmission result(Unit unit = Unit::Millimetres) const {
    const auto wall = Composition::create("Random");
    for (std::size_t i = 0; i < layers(); ++i) {
      const auto number = [](double value) { return kit::exact_number(value); };
      const auto each = with_custom("m" + std::to_string(i), "Thermal conductivity [W/(m K)]",
                                    number(conductivities_[i]));
      each->custom_value(text("Bridge share [-]"), text(number(bridges_[i])));
      each->custom_value(text("Bridge conductivity [W/(m K)]"), text("0.13"));
      each->custom_value(text("Bridge group"), text(groups_[i]));
      const double thickness = converted_length(thicknesses_[i], Unit::Millimetres, unit);
      wall->appendLayer({each, Material::Function::None, thickness});
    }
    return kit::transmission_of(*wall, unit);
  }

 private:
  double between(double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random_);
  }

  std::mt19937 random_;
  std::vector<double> thicknesses_;
  std::vector<double> conductivities_;
  std::vector<double> bridges_;
  std::vector<std::string> groups_;
};

TEST(RandomWalls, let_less_heat_through_when_thicker_and_more_when_they_conduct) {
  const char* wanted = std::getenv("VELDRA_TEST_SEED");
  const unsigned first = wanted ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : 1;
  for (unsigned seed = first; seed < first + 300; ++seed) {
    SCOPED_TRACE("VELDRA_TEST_SEED=" + std::to_string(seed));
    RandomWall wall(seed);
    const auto plain = wall.result();
    ASSERT_TRUE(plain.transmittance());
    ASSERT_GE(plain.limits->upper, plain.limits->lower);
    ASSERT_NEAR(*wall.result(Unit::Inches).transmittance(), *plain.transmittance(), 1e-12);
    for (std::size_t i = 0; i < wall.layers(); ++i) {
      RandomWall thicker(seed);
      thicker.thickness(i) *= 1.2;
      ASSERT_LT(*thicker.result().transmittance(), *plain.transmittance());
      RandomWall conducting(seed);
      conducting.conductivity(i) *= 1.2;
      ASSERT_GT(*conducting.result().transmittance(), *plain.transmittance());
    }
  }
}

}  // namespace
}  // namespace veldra_tests
