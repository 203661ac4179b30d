// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"
#include "tools/terminal.hpp"

#include <veldra/kit/kit.hpp>

namespace veldra_tests {
namespace {

using Properties = std::vector<std::pair<const char*, const char*>>;

/// A wall of brick and a variable layer of wool between studs, in "a.lib".
class Calc : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    brick_ = material("Brick", {{"Thermal conductivity [W/(m K)]", "0.4"},
                                {"Density [kg/m3]", "1400"},
                                {"Specific heat [J/(kg K)]", "1000"},
                                {"Water vapour resistance factor [-]", "10"}});
    wool_ = material("Wool", {{"Thermal conductivity [W/(m K)]", "0.04"},
                              {"Density [kg/m3]", "20"},
                              {"Specific heat [J/(kg K)]", "1030"},
                              {"Water vapour resistance factor [-]", "1"}});
    wall_ = veldra::Composition::create("Wall");
    wall_->type(veldra::Composition::Type::Wall);
    wall_->appendLayer({brick_, veldra::Material::Function::Structure, 200});
    wall_->appendLayer({wool_, veldra::Material::Function::None, 100});
    wall_->variable_layer(1);
    wall_->variable_layer_max_thickness(300);
  }

  static std::shared_ptr<veldra::Material> material(const char* name,
                                                    const Properties& properties) {
    const auto result = veldra::Material::create(name);
    for (const auto& [property, value] : properties) result->custom_value(property, value);
    return result;
  }

  void save() { library("a.lib")->save(wall_); }

  nlohmann::json calculated(std::vector<std::string> options = {}) {
    std::vector<std::string> arguments{"calc", "a.lib", "Wall", "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return veldra(arguments).json();
  }

  std::string climate(const std::string& inside) {
    std::string table =
        "month,outside_temperature,outside_humidity,inside_temperature,"
        "inside_humidity\n";
    for (int month = 1; month <= 12; ++month) {
      table += std::to_string(month) + ",0,90,20," + inside + "\n";
    }
    write("climate.csv", table);
    return "climate.csv";
  }

  std::shared_ptr<veldra::Material> brick_;
  std::shared_ptr<veldra::Material> wool_;
  std::shared_ptr<veldra::Composition> wall_;
};

// 0.2 / 0.4 + 0.1 / 0.04 + 0.17 = 3.17; mass 280 + 2 = 282; s_d 2 + 0.1 = 2.1.
TEST_F(Calc, prints_every_figure_of_a_build_up) {
  save();
  const auto run = must({"calc", "a.lib", "Wall"});
  EXPECT_THAT(run.out, ContainsRegex("resistance R_T +3.170 m²K/W with surfaces\n"));
  EXPECT_THAT(run.out, ContainsRegex("transmittance U +0.315 W/"));
  EXPECT_THAT(run.out, ContainsRegex("mass +282.0 kg/m²\n"));
  EXPECT_THAT(run.out, ContainsRegex("s_d +2.10 m\n"));
  EXPECT_THAT(run.out, ContainsRegex("heat capacity +κ [0-9.]+ kJ"));
  EXPECT_THAT(run.out, ContainsRegex("assumed +horizontal heat flow and outdoor air outside"));
}

TEST_F(Calc, json_has_the_same_figures) {
  save();
  const auto told = calculated();
  EXPECT_NEAR(told["thermal"]["total_resistance"].get<double>(), 3.17, 1e-12);
  EXPECT_NEAR(told["storage"]["mass"].get<double>(), 282, 1e-9);
  EXPECT_NEAR(told["diffusion"]["sd"].get<double>(), 2.1, 1e-12);
  EXPECT_EQ(told["thermal"]["boundary"]["assumed"], true);
  EXPECT_FALSE(told.contains("moisture"));
  EXPECT_FALSE(told.contains("solution"));
}

// With the surfaces of an interior wall 0.26 in the place of 0.17: 3.26.
TEST_F(Calc, takes_what_is_outside_from_an_option) {
  save();
  const auto told = calculated({"--boundary", "interior"});
  EXPECT_NEAR(told["thermal"]["total_resistance"].get<double>(), 3.26, 1e-12);
  EXPECT_EQ(told["thermal"]["boundary"]["basis"], "asked");
  const auto text = must({"calc", "a.lib", "Wall", "--boundary", "interior"}).out;
  EXPECT_THAT(text, Not(HasSubstr("assumed")));
  const auto wrong = veldra({"calc", "a.lib", "Wall", "--boundary", "moon"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_THAT(wrong.err, HasSubstr("'moon' in a boundary is none of outdoors"));
}

TEST_F(Calc, what_was_assumed_is_dim_on_a_terminal_alone) {
  if (!terminals_can_be_made()) GTEST_SKIP() << "no terminal can be made here";
  save();
  ::setenv("TERM", "xterm", 1);
  ::unsetenv("NO_COLOR");
  const std::vector<std::vector<std::string>> commands{{"calc", "a.lib", "Wall"},
                                                       {"show", "a.lib", "composition", "Wall"}};
  for (const auto& command : commands) {
    TerminalRun run(path(""), command);
    EXPECT_EQ(run.finish(), 0);
    EXPECT_THAT(run.seen(), HasSubstr("\x1b[2massumed "));
    EXPECT_THAT(must(command).out, HasSubstr("\nassumed "));
  }
}

TEST_F(Calc, calls_assumed_only_what_is_not_stated) {
  wall_->type(veldra::Composition::Type::Other);
  wall_->custom_value("Boundary", "ground");
  save();
  EXPECT_THAT(must({"calc", "a.lib", "Wall"}).out,
              ContainsRegex("assumed +horizontal heat flow is assumed, as for a wall outside; "
                            "no 'Boundary' states it\n"));
  EXPECT_THAT(must({"calc", "a.lib", "Wall", "--boundary", "downward"}).out,
              Not(HasSubstr("assumed")));
}

// 1 / 0.15 - 0.67 = 5.996667, times 0.04: 239.87 mm.
TEST_F(Calc, finds_the_thickness_for_a_target) {
  save();
  EXPECT_NEAR(calculated({"--target-u", "0.15"})["solution"]["thickness"].get<double>(), 239.8667,
              1e-3);
  EXPECT_THAT(must({"calc", "a.lib", "Wall", "--target-u", "0.15"}).out,
              ContainsRegex("thickness +239.87 mm of layer 2 give 0.150"));
  const auto run = veldra({"calc", "a.lib", "Wall", "--target-u", "0.1"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("even with its greatest thickness, 300 mm, layer 2 gives"));
  EXPECT_THAT(veldra({"calc", "a.lib", "Wall", "--target-u", "0.2", "--layer", "1"}).status, 0);
}

TEST_F(Calc, tells_of_bridges_and_the_limits_of_the_method) {
  for (const auto& [property, value] : Properties{{"Bridge", "studs"},
                                                  {"Bridge share [-]", "0.1"},
                                                  {"Bridge conductivity [W/(m K)]", "0.13"},
                                                  {"Bridge vapour resistance factor [-]", "50"}}) {
    wool_->custom_value(property, value);
  }
  save();
  const auto text = veldra({"calc", "a.lib", "Wall"}).out;
  EXPECT_THAT(text, ContainsRegex("studs, 10 % +0.13 +0.769 +d / λ +5\n"));
  EXPECT_THAT(text, ContainsRegex("limits of R_T +[0-9.]+ and [0-9.]+ m²K/W, error at most"));
  EXPECT_THAT(text, HasSubstr("'Bridge density [kg/m3]' is not known"));
}

TEST_F(Calc, computes_moisture_in_a_climate) {
  save();
  const auto dry = must({"calc", "a.lib", "Wall", "--climate", climate("20")}).out;
  EXPECT_THAT(dry, HasSubstr("none in any month"));
  EXPECT_THAT(dry, ContainsRegex("surface factor f_Rsi +0.9"));
  const auto wet = must({"calc", "a.lib", "Wall", "--climate", climate("80")}).out;
  EXPECT_THAT(wet, HasSubstr("it does not dry within the year"));
  EXPECT_THAT(wet, ContainsRegex("January +[0-9.]+ +[0-9.]+\n"));
  const auto told = calculated({"--climate", climate("80")})["moisture"];
  EXPECT_EQ(told["year"]["months"].size(), 12U);
  EXPECT_GT(told["year"]["greatest"].get<double>(), 0);
}

TEST_F(Calc, ends_with_3_when_a_value_cannot_be_used) {
  brick_->custom_value("Density [kg/m3]", "-5");
  save();
  const auto run = veldra({"calc", "a.lib", "Wall"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("\ntransmittance U "));
  EXPECT_THAT(run.out, ContainsRegex("no mass .*Density"));
}

TEST_F(Calc, tells_of_a_boundary_that_cannot_be_read_and_not_that_none_is_stated) {
  wall_->custom_value("Boundary", "beyond");
  save();
  const auto run = veldra({"calc", "a.lib", "Wall"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("'beyond'"));
  EXPECT_THAT(run.out, Not(HasSubstr("no 'Boundary' is stated")));
}

TEST_F(Calc, refuses_wishes_that_make_no_sense) {
  save();
  const auto refusal = [&](const std::string& option, const std::string& value) {
    const auto run = veldra({"calc", "a.lib", "Wall", option, value});
    EXPECT_EQ(run.status, 2) << option << ' ' << value;
    return run.err;
  };
  for (const char* target : {"0", "-1", "nan", "inf"}) {
    EXPECT_THAT(refusal("--target-u", target), HasSubstr("a U-value is a number above 0"));
  }
  EXPECT_THAT(refusal("--target-u", "0,15"), HasSubstr("'0,15' is no number"));
  EXPECT_THAT(refusal("--room-class", "6"), HasSubstr("room classes are from 1 to 5"));
  EXPECT_THAT(refusal("--climate", ""), HasSubstr("the value is empty"));
  EXPECT_THAT(refusal("--boundary", ""), HasSubstr("the value is empty"));
}

TEST_F(Calc, says_that_moisture_grows_with_the_years) {
  save();
  const auto wet = must({"calc", "a.lib", "Wall", "--climate", climate("80")}).out;
  EXPECT_THAT(wet, ContainsRegex("kg/m² in the first year, and more in each; it does not dry"));
}

TEST_F(Calc, takes_the_humidity_inside_from_a_room_class) {
  save();
  EXPECT_EQ(must({"calc", "a.lib", "Wall", "--climate", climate(""), "--room-class", "5"}).status,
            0);
  const auto run = veldra({"calc", "a.lib", "Wall", "--climate", climate("")});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("'climate.csv': line 2 of the climate: there is no"));
  EXPECT_THAT(run.err, is_one_sentence());
}

TEST_F(Calc, reads_the_example_of_a_climate) {
  save();
  write("example.csv", read_file(VELDRA_EXAMPLE_CLIMATE));
  EXPECT_EQ(must({"calc", "a.lib", "Wall", "--climate", "example.csv", "--room-class", "3"}).status,
            0);
}

TEST_F(Calc, names_layer_and_property_of_a_bad_value_and_ends_with_findings) {
  wool_->custom_value("Thermal conductivity [W/(m K)]", "-0.04");
  save();
  const auto run = veldra({"calc", "a.lib", "Wall"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("layer 2, 'Wool': its 'Thermal conductivity [W/(m K)]' is not "
                                 "greater than 0: '-0.04'"));
  EXPECT_THAT(run.out, Not(HasSubstr("transmittance U")));
}

TEST_F(Calc, needs_options_that_go_together) {
  save();
  for (const auto& options : std::vector<std::vector<std::string>>{
           {"--layer", "1"}, {"--room-class", "3"}, {"--target-u", "0.2", "--layer", "0"}}) {
    std::vector<std::string> arguments{"calc", "a.lib", "Wall"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(veldra(arguments).status, 2) << options.front();
  }
}

TEST_F(Calc, figures_are_columns_of_lists) {
  save();
  const auto rows = must({"list", "a.lib", "compositions", "--columns",
                          "name,U,R,sd,mass,kappa_inside,kappa_outside", "--json"})
                        .json();
  EXPECT_NEAR(rows[0]["sd"].get<double>(), 2.1, 1e-12);
  EXPECT_NEAR(rows[0]["mass"].get<double>(), 282, 1e-9);
  EXPECT_GT(rows[0]["kappa_outside"].get<double>(), rows[0]["kappa_inside"].get<double>());
  const auto count = [&](const std::string& filter) {
    return must({"list", "a.lib", "compositions", "--where", filter, "--json"}).json().size();
  };
  EXPECT_EQ(count("mass > 281.9 and mass < 282.1 kg/m2 and sd = 2.1 m"), 1U);
  EXPECT_EQ(count("kappa_inside > 300 or sd > 3"), 0U);
  EXPECT_EQ(count("kappa_inside < 300000 J/(m2 K)"), 1U);
}

TEST_F(Calc, bad_values_are_findings_of_a_check) {
  wool_->custom_value("Bridge share [-]", "1.2");
  wool_->custom_value("Emissivity", "9");
  wall_->custom_value("Boundary", "moon");
  wall_->custom_value("Precipitation [mm/day]", "-1");
  save();
  const auto run = veldra({"check", "a.lib"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out,
              HasSubstr("material 'Wool': its 'Bridge share [-]' is greater than 1: '1.2'"));
  EXPECT_THAT(run.out, HasSubstr("composition 'Wall': 'moon' in a boundary is none of"));
  EXPECT_THAT(run.out, HasSubstr("its 'Precipitation [mm/day]' is less than 0: '-1'"));
}

TEST(PropertyTable, of_the_documentation_has_all_that_are_computed_with) {
  const auto text = read_file(VELDRA_PROPERTY_TABLE);
  for (const auto& property : veldra::kit::known_properties()) {
    EXPECT_THAT(text, HasSubstr(std::string("| `") + property.name + "` | " + property.of + " | " +
                                property.used_for + " |\n"));
  }
}

}  // namespace
}  // namespace veldra_tests
