// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <cmath>
#include <regex>

namespace veldra_tests {
namespace {

class Draw : public ProgramTest {
 protected:
  void save(const char* name, veldra::Composition::Type type,
            const std::vector<double>& thicknesses) {
    const auto composition = veldra::Composition::create(name);
    composition->type(type);
    for (std::size_t i = 0; i < thicknesses.size(); ++i) {
      const auto material =
          veldra::Material::create((std::string(name) + " " + std::to_string(i)).c_str());
      material->custom_value("Thermal conductivity [W/(m K)]", "1");
      material->shading_color({1, 0, static_cast<double>(i) / 255, 1});
      composition->appendLayer({material, veldra::Material::Function::None, thicknesses[i]});
    }
    library("a.lib")->save(composition);
  }

  /// The widths of the layers on paper, in the order in which they are drawn.
  std::vector<double> layer_widths(const std::string& svg) {
    const std::regex layer("<clipPath id=\"[^\"]*\"><rect width=\"([0-9.]+)\"");
    std::vector<double> widths;
    for (std::sregex_iterator match(svg.begin(), svg.end(), layer), end; match != end; ++match) {
      widths.push_back(std::stod((*match)[1]));
    }
    return widths;
  }

  std::string drawn(const std::string& name) { return must({"draw", "a.lib", name}).out; }
};

TEST_F(Draw, layers_are_to_scale) {
  save("Wall", veldra::Composition::Type::Wall, {20, 160, 240, 15});
  const auto svg = drawn("Wall");
  EXPECT_THAT(svg, HasSubstr("scale 1:5"));
  EXPECT_EQ(layer_widths(svg), (std::vector<double>{4, 32, 48, 3}));
}

TEST_F(Draw, a_membrane_has_a_width_that_can_be_seen) {
  save("Roof", veldra::Composition::Type::Roof, {0.2, 200, 0});
  const auto widths = layer_widths(drawn("Roof"));
  ASSERT_EQ(widths.size(), 3U);
  EXPECT_GE(widths[0], 1.0);
  EXPECT_GE(widths[2], 1.0);
}

TEST_F(Draw, inches_are_drawn_to_the_same_scale) {
  save("Wall", veldra::Composition::Type::Wall, {25.4, 254});
  must({"create", "in.lib", "--unit", "in"});
  must({"copy", "a.lib", "in.lib", "--all"});
  const auto svg = must({"draw", "in.lib", "Wall"}).out;
  EXPECT_EQ(layer_widths(svg), layer_widths(drawn("Wall")));
  EXPECT_THAT(svg, HasSubstr("thicknesses in inches"));
  EXPECT_THAT(svg, HasSubstr(">11<"));
}

TEST_F(Draw, colours_names_thicknesses_total_and_transmittance_are_there) {
  save("Wall", veldra::Composition::Type::Wall, {100, 330});
  const auto svg = drawn("Wall");
  EXPECT_THAT(svg, HasSubstr("#ff0000"));
  EXPECT_THAT(svg, HasSubstr("#ff0001"));
  EXPECT_THAT(svg, HasSubstr(">Wall 1<"));
  EXPECT_THAT(svg, HasSubstr(">430<"));
  EXPECT_THAT(svg, HasSubstr(">U = 1.67 W/(m²K)<"));  // 1 / (0.43 + 0.17)
}

TEST_F(Draw, a_bar_shows_the_scale) {
  save("Wall", veldra::Composition::Type::Wall, {100, 330});
  const auto svg = drawn("Wall");  // at 1:5, so that 200 mm take 40 mm of paper
  EXPECT_THAT(svg, HasSubstr(">100<"));
  EXPECT_THAT(svg, HasSubstr(">200 mm<"));
}

TEST_F(Draw, numbers_of_thin_layers_stand_on_the_other_side_of_the_line) {
  save("Wall", veldra::Composition::Type::Wall, {200, 7, 200});
  const auto number = [svg = drawn("Wall")](const std::string& text) {
    std::smatch match;
    const std::regex element("<text x=\"[0-9.]+\" y=\"([0-9.]+)\"[^>]*>" + text + "<");
    EXPECT_TRUE(std::regex_search(svg, match, element)) << text;
    return std::stod(match[1]);
  };
  EXPECT_GT(number("7"), number("200"));
}

TEST_F(Draw, a_ventilated_cavity_is_told) {
  const auto wall = veldra::Composition::create("Wall");
  const auto cavity = veldra::Material::create("Cavity");
  cavity->custom_value("Ventilation", "well ventilated");
  wall->appendLayer({cavity, veldra::Material::Function::None, 40});
  library("a.lib")->save(wall);
  EXPECT_THAT(drawn("Wall"), HasSubstr("Layer 1 is well ventilated"));
}

TEST_F(Draw, names_are_escaped) {
  save("<a href='x'>&\"\x01\n", veldra::Composition::Type::Floor, {100});
  const auto svg = drawn("1");
  EXPECT_THAT(svg, HasSubstr("&lt;a href='x'&gt;&amp;&quot;"));
  EXPECT_THAT(svg, Not(HasSubstr("\x01")));
}

TEST_F(Draw, several_build_ups_share_a_sheet_in_a_file) {
  save("Wall", veldra::Composition::Type::Wall, {100});
  save("Roof", veldra::Composition::Type::Roof, {100});
  const auto run = must({"draw", "a.lib", "Wall", "Roof", "-o", "sheet.svg"});
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(layer_widths(read("sheet.svg")).size(), 2U);
}

TEST_F(Draw, json_tells_of_the_sheet_that_was_written) {
  save("Wall", veldra::Composition::Type::Wall, {100});
  save("Roof", veldra::Composition::Type::Roof, {100});
  const auto told = must({"draw", "a.lib", "Roof", "Wall", "-o", "sheet.svg", "--json"}).json();
  EXPECT_EQ(told["file"], "sheet.svg");
  EXPECT_EQ(told["format"], "svg");
  EXPECT_EQ(told["bytes"], read("sheet.svg").size());
  EXPECT_EQ(told["compositions"], nlohmann::json::parse(R"([{"kind": "composition", "id": 2,
    "name": "Roof"}, {"kind": "composition", "id": 1, "name": "Wall"}])"));
}

TEST_F(Draw, strange_numbers_do_no_harm) {
  const double nan = std::nan("");
  save("Strange", veldra::Composition::Type::Wall, {nan, -5, 1e300, 0});
  save("Nothing", veldra::Composition::Type::Wall, {});
  EXPECT_THAT(drawn("Strange"), Not(HasSubstr("\"nan\"")));
  EXPECT_THAT(drawn("Nothing"), HasSubstr("no layers"));
}

TEST_F(Draw, a_composition_that_is_not_there_writes_no_file) {
  save("Wall", veldra::Composition::Type::Wall, {100});
  const auto run = veldra({"draw", "a.lib", "Wall", "Gone", "-o", "sheet.svg"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_FALSE(exists("sheet.svg"));
}

}  // namespace
}  // namespace veldra_tests
