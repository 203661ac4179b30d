// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <regex>
#include <set>

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

class DrawSheet : public Draw {
 protected:
  using Properties = std::vector<std::pair<const char*, const char*>>;

  std::shared_ptr<veldra::Material> material(const char* name, const Properties& properties) {
    const auto result = veldra::Material::create(name);
    for (const auto& [property, value] : properties) result->custom_value(property, value);
    return result;
  }

  void add(const std::shared_ptr<veldra::Material>& material, double thickness) {
    wall_->appendLayer({material, veldra::Material::Function::None, thickness});
  }

  std::string sheet(const std::vector<std::string>& options = {}) {
    library("a.lib")->save(wall_);
    std::vector<std::string> arguments{"draw", "a.lib", "Wall"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return must(arguments).out;
  }

  /// The font size of the first text that begins so; 0 if there is none.
  static double size_of(const std::string& svg, const std::string& beginning) {
    std::smatch match;
    const std::regex element("font-size=\"([0-9.]+)\"[^>]*>" + beginning);
    return std::regex_search(svg, match, element) ? std::stod(match[1]) : 0;
  }

  /// The same months all year, with that humidity inside.
  void write_climate(const std::string& inside) const {
    std::string table =
        "month,outside_temperature,outside_humidity,inside_temperature,"
        "inside_humidity\n";
    for (int month = 1; month <= 12; ++month) {
      table += std::to_string(month) + ",0,90,20," + inside + "\n";
    }
    write("climate.csv", table);
  }

  std::shared_ptr<veldra::Composition> wall_ = veldra::Composition::create("Wall");
};

TEST_F(DrawSheet, an_assumed_transmittance_is_smaller_than_a_stated_one) {
  wall_->type(veldra::Composition::Type::Wall);
  add(material("Brick", {{"Thermal conductivity [W/(m K)]", "0.4"}}), 200);
  const auto assumed = sheet();
  EXPECT_THAT(assumed, HasSubstr(">assumed by its type: outdoor air outside<"));
  const auto stated = sheet({"--boundary", "ground"});
  EXPECT_THAT(stated, Not(HasSubstr("assumed")));
  EXPECT_THAT(stated, HasSubstr(">ground<"));
  EXPECT_GT(size_of(stated, "U = "), size_of(assumed, "U = "));
}

TEST_F(DrawSheet, what_is_stated_is_not_called_assumed) {
  add(material("Concrete", {{"Thermal conductivity [W/(m K)]", "2"}}), 200);
  wall_->custom_value("Boundary", "ground");
  EXPECT_THAT(sheet(), HasSubstr(">assumed as usual: horizontal heat flow<"));
}

TEST_F(DrawSheet, an_interior_wall_has_a_room_on_both_sides) {
  wall_->custom_value("Boundary", "interior,horizontal");
  add(material("Brick", {{"Thermal conductivity [W/(m K)]", "0.4"}}), 200);
  const auto svg = sheet();
  EXPECT_THAT(svg, HasSubstr(">room<"));
  EXPECT_THAT(svg, Not(HasSubstr(">outside<")));
}

TEST_F(DrawSheet, a_bridge_is_drawn_and_listed) {
  add(material("Wool", {{"Thermal conductivity [W/(m K)]", "0.04"},
                        {"Bridge", "rafters"},
                        {"Bridge share [-]", "0.12"},
                        {"Bridge conductivity [W/(m K)]", "0.13"},
                        {"Bridge spacing [mm]", "100"}}),
      200);
  const auto svg = sheet();
  EXPECT_THAT(svg, HasSubstr(">+ rafters, 12 %<"));
  // At 1:2 the wool is 100 wide and a bridge, 12 % of 50, is 6.
  EXPECT_THAT(svg, HasSubstr("<rect width=\"100\" height=\"6\""));
}

TEST_F(DrawSheet, a_bridge_that_crosses_the_others_runs_along_the_section) {
  const auto wool = [this](const char* name, const char* share, const char* group) {
    return material(name, {{"Thermal conductivity [W/(m K)]", "0.04"},
                           {"Bridge share [-]", share},
                           {"Bridge group", group},
                           {"Bridge conductivity [W/(m K)]", "0.13"}});
  };
  const auto rectangles = [](const std::string& svg, const std::string& size) {
    std::size_t count = 0;
    for (auto at = svg.find(size); at != std::string::npos; at = svg.find(size, at + 1)) ++count;
    return count;
  };
  add(wool("Battens", "0.1", "battens"), 20);
  add(wool("Studs", "0.1", "studs"), 80);
  const auto crossing = sheet();
  // At 1:1 a section is 78 long: three studs of 10 % of 26, and a batten in its last third.
  EXPECT_EQ(rectangles(crossing, "<rect width=\"80\" height=\"2.6\""), 3U);
  EXPECT_EQ(rectangles(crossing, "<rect width=\"20\" height=\"26\""), 1U);
  EXPECT_THAT(crossing, HasSubstr(">Bridges with lines along them cross those with diagonals.<"));

  wall_ = veldra::Composition::create("Aligned");
  add(wool("Battens in line", "0.1", "studs"), 20);
  add(wool("Studs in line", "0.1", "studs"), 80);
  library("a.lib")->save(wall_);
  const auto aligned = drawn("Aligned");
  EXPECT_EQ(rectangles(aligned, "<rect width=\"20\" height=\"2.6\""), 3U);
  EXPECT_THAT(aligned, Not(HasSubstr("cross those")));
}

TEST_F(DrawSheet, twenty_layers_have_all_their_thicknesses) {
  for (int i = 0; i < 20; ++i) {
    add(material(("M" + std::to_string(i)).c_str(), {}), i % 4 == 0 ? 60 : 1.25 + i);
  }
  const auto svg = sheet();
  for (int i = 0; i < 20; ++i) {
    const auto thickness = i % 4 == 0 ? std::string("60") : std::to_string(1 + i) + ".25";
    EXPECT_THAT(svg, ContainsRegex("font-size=\"2.3\"[^>]*>" + thickness + "<")) << i;
  }
  EXPECT_THAT(svg, Not(HasSubstr("room in this list only")));
}

TEST_F(DrawSheet, thicknesses_without_room_are_told) {
  for (int i = 0; i < 60; ++i) add(material(("M" + std::to_string(i)).c_str(), {}), 10.25);
  EXPECT_THAT(sheet(), ContainsRegex("Thicknesses that have room in this list only: [0-9]+"));
}

TEST_F(DrawSheet, long_titles_and_words_are_broken) {
  wall_->name(std::string(150, 'W').c_str());
  wall_->description("x");
  add(material(std::string(120, 'b').c_str(), {}), 100);
  library("a.lib")->save(wall_);
  const auto svg = must({"draw", "a.lib", "1"}).out;
  // Of 88 columns, each takes 1.65.
  EXPECT_THAT(svg, HasSubstr(">" + std::string(53, 'W') + "<"));
  EXPECT_THAT(svg, HasSubstr(">" + std::string(150 - 2 * 53, 'W') + "<"));
  EXPECT_THAT(svg, HasSubstr(">" + std::string(48, 'b') + "<"));
  EXPECT_THAT(svg, HasSubstr(">" + std::string(24, 'b') + "<"));
}

TEST_F(DrawSheet, capitals_have_more_room_than_small_letters) {
  add(material("DÄMMPLATTE AUS STEINWOLLE NACH EN 13162 MIT VLIES", {}), 100);
  add(material("Dämmplatte aus Steinwolle nach EN 13162, ohne Vl", {}), 100);
  const auto svg = sheet();
  EXPECT_THAT(svg, HasSubstr(">DÄMMPLATTE AUS STEINWOLLE NACH EN<"));
  EXPECT_THAT(svg, HasSubstr(">13162 MIT VLIES<"));
  EXPECT_THAT(svg, HasSubstr(">Dämmplatte aus Steinwolle nach EN 13162,<"));
}

TEST_F(DrawSheet, names_layer_and_field_where_there_is_no_figure) {
  for (int i = 1; i <= 6; ++i) {
    add(material(("Cork " + std::to_string(i)).c_str(),
                 {{"Thermal conductivity [W/(m K)]", "-0.04"}}),
        100);
  }
  const auto svg = sheet();
  EXPECT_THAT(svg, HasSubstr(">U-value unknown: layer 1, 'Cork 1': its 'Thermal conductivity"));
  EXPECT_THAT(svg, HasSubstr(">layer 4, 'Cork 4': its 'Thermal conductivity [W/(m K)]'"));
  EXPECT_THAT(svg, HasSubstr(">and 2 more<"));
  EXPECT_THAT(svg, Not(HasSubstr(">-0.040<")));
}

TEST_F(DrawSheet, one_layer_is_one) {
  add(material("Brick", {{"Thermal conductivity [W/(m K)]", "0.4"}}), 200);
  EXPECT_THAT(sheet(), HasSubstr("1 layer ·"));
}

// 0.5 / 0.04 + 0.17 = 12.67: 0.0789.
TEST_F(DrawSheet, small_transmittances_have_two_figures) {
  add(material("Wool", {{"Thermal conductivity [W/(m K)]", "0.04"}}), 500);
  EXPECT_THAT(sheet(), HasSubstr(">U = 0.079 W/(m²K)<"));
}

TEST_F(DrawSheet, no_line_runs_over_the_number_of_a_layer) {
  for (int i = 0; i < 20; ++i) add(material(("M" + std::to_string(i)).c_str(), {}), 1.5);
  const auto svg = sheet();
  const auto first = svg.find("<circle cx=", svg.find("r=\"2.3\"") - 60);
  const auto title = svg.find(">outside<");
  ASSERT_NE(title, std::string::npos);
  EXPECT_EQ(svg.substr(first, title - first).find("<line"), std::string::npos);
}

TEST_F(DrawSheet, bridges_of_a_group_stand_behind_one_another) {
  const auto wool = [this](const char* name, const char* spacing) {
    return material(name, {{"Thermal conductivity [W/(m K)]", "0.04"},
                           {"Bridge share [-]", "0.1"},
                           {"Bridge group", "studs"},
                           {"Bridge spacing [mm]", spacing},
                           {"Bridge conductivity [W/(m K)]", "0.13"}});
  };
  add(wool("Battens", ""), 20);
  add(wool("Studs", "50"), 80);
  const auto svg = sheet();
  // At 1:1, 10 % of 50.
  EXPECT_THAT(svg, HasSubstr("<rect width=\"80\" height=\"5\""));
  EXPECT_THAT(svg, HasSubstr("<rect width=\"20\" height=\"5\""));
}

TEST_F(DrawSheet, soft_insulation_is_never_guessed) {
  const auto loops = [this](const char* hatch) {
    wall_ = veldra::Composition::create("Wall");
    const auto wool = material("Wool", {{"Thermal conductivity [W/(m K)]", "0.04"}});
    if (hatch) {
      veldra::Pattern pattern(1, 45, false);
      pattern.name = hatch;
      wool->cut_pattern(pattern);
    }
    add(wool, 100);
    const std::string name = std::string("Wall ") + (hatch ? hatch : "plain");
    wall_->name(name.c_str());
    library(hatch ? "b.lib" : "c.lib")->save(wall_);
    return must({"draw", hatch ? "b.lib" : "c.lib", name}).out.size();
  };
  EXPECT_GT(loops("Insulation"), loops(nullptr) + 1000);
}

TEST_F(DrawSheet, hatches_differ_without_colours) {
  std::set<std::string> seen;
  const char* names[] = {"Metal",   "Gypsum",   "Plain concrete", "Reinforced concrete",
                         "Glass",   "Membrane", "Insulation",     "Rigid insulation",
                         "Masonry", "Plaster",  "Timber",         "Board"};
  for (const char* name : names) {
    const auto composition = veldra::Composition::create(name);
    const auto of = material(name, {});
    veldra::Pattern pattern(1, 45, false);
    pattern.name = name;
    of->cut_pattern(pattern);
    composition->appendLayer({of, veldra::Material::Function::None, 200});
    library("a.lib")->save(composition);
    const auto svg = drawn(name);
    // A path is too long for the regular expressions of the library.
    const auto group = svg.find("<g clip-path");
    const auto begin = svg.find("<path", group);
    ASSERT_NE(begin, std::string::npos) << name;
    const auto data = svg.find(" d=\"", begin);
    ASSERT_NE(data, std::string::npos) << name;
    const auto path = svg.substr(data, svg.find('"', data + 4) - data);
    EXPECT_TRUE(seen.insert(path).second) << name;
  }
}

TEST_F(DrawSheet, lies_or_stands_as_is_asked_for) {
  save("Wall", veldra::Composition::Type::Wall, {100, 200});
  EXPECT_THAT(must({"draw", "a.lib", "Wall"}).out, HasSubstr("matrix(1 0 0 1"));
  EXPECT_THAT(must({"draw", "a.lib", "Wall", "--orientation", "lying"}).out,
              HasSubstr("matrix(0 1 1 0"));
  const auto floor = must({"draw", "a.lib", "Wall", "--type", "floor"}).out;
  EXPECT_THAT(floor, HasSubstr("matrix(0 -1 1 0"));
  EXPECT_THAT(floor, HasSubstr("Floor · 2 layers"));
}

TEST_F(DrawSheet, speaks_german_in_a_german_library) {
  must({"create", "de.lib", "--locale", "de_CH"});
  save("Wall", veldra::Composition::Type::Wall, {12.5});
  must({"copy", "a.lib", "de.lib", "--all"});
  const auto svg = must({"draw", "de.lib", "Wall"}).out;
  EXPECT_THAT(svg, HasSubstr("xml:lang=\"de\""));
  EXPECT_THAT(svg, HasSubstr("Wand · 1 Schicht · Maßstab 1:1"));
  EXPECT_THAT(svg, HasSubstr(">12,5<"));
  EXPECT_THAT(svg, HasSubstr(">außen<"));
  EXPECT_THAT(svg, Not(HasSubstr(">12.5<")));
}

/// Both are made in the same way, so that what is told of a layer is told in German.
TEST_F(DrawSheet, tells_in_german_what_the_figures_cannot_say) {
  must({"create", "de.lib", "--locale", "de"});
  const auto sheet_of = [&](const char* name) {
    wall_->name(name);
    library("de.lib")->save(wall_);
    const auto svg = must({"draw", "de.lib", name, "--climate", "climate.csv"}).out;
    wall_ = veldra::Composition::create();
    return svg;
  };
  write_climate("50");
  add(material("Wool", {{"Thermal conductivity [W/(m K)]", "0.04"},
                        {"Air void level [-]", "1"},
                        {"Bridge share [-]", "0.12"},
                        {"Bridge conductivity [W/(m K)]", "50"}}),
      200);
  const auto metal = sheet_of("Metal");
  EXPECT_THAT(metal, HasSubstr("Schicht 1, „Wool“: eine Unterbrechung aus Metall"));
  EXPECT_THAT(metal, HasSubstr(">Fehler durch Unterbrechungen, höchstens<"));
  EXPECT_THAT(metal, HasSubstr(">ΔU: Luftspalte in Schicht 1<"));
  EXPECT_THAT(metal, HasSubstr("-Fache des unteren; das vereinfachte Verfahren gilt bis 1,5<"));
  EXPECT_THAT(metal, ContainsRegex(">f_Rsi 0,[0-9]{3}, nötig 0,[0-9]{3} im Januar"));
  EXPECT_THAT(metal,
              HasSubstr(">Schicht 1, „Wool“: „Water vapour resistance factor [-]“ ist nicht"));
  wall_->custom_value("U-factor [W/(m2 K)]", "much");
  add(material("Brick", {{"Thermal conductivity [W/(m K)]", "0.4"}}), 100);
  EXPECT_THAT(
      sheet_of("Stated"),
      HasSubstr("U-Wert unbekannt: „U-factor [W/(m2 K)]“ ist keine brauchbare Zahl: „much“"));
}

TEST_F(DrawSheet, tells_f_rsi_and_the_error_by_bridges) {
  add(material("Wool", {{"Thermal conductivity [W/(m K)]", "0.04"},
                        {"Water vapour resistance factor [-]", "1"},
                        {"Bridge share [-]", "0.12"},
                        {"Bridge conductivity [W/(m K)]", "0.13"}}),
      200);
  add(material("Board", {{"Thermal conductivity [W/(m K)]", "0.2"},
                         {"Water vapour resistance factor [-]", "10"}}),
      20);
  write_climate("50");
  const auto svg = sheet({"--climate", "climate.csv"});
  EXPECT_THAT(svg,
              ContainsRegex(">f_Rsi 0\\.9[0-9]{2}, needed 0\\.[0-9]{3} in January .*: no mould<"));
  EXPECT_THAT(svg, HasSubstr(">moisture is computed beside the bridges<"));
  EXPECT_THAT(svg, ContainsRegex(">error by the bridges, at most<.*\n?.*>[0-9.]+ %<"));
}

TEST_F(DrawSheet, numbers_are_never_those_of_a_machine) {
  const auto brick = material("Brick", {{"Thermal conductivity [W/(m K)]", "0.000025"}});
  for (const double thickness : {1e-5, 1e300, 0.0, std::nan(""), -5.0, HUGE_VAL}) {
    wall_ = veldra::Composition::create(("Wall " + std::to_string(thickness)).c_str());
    add(brick, thickness);
    library("a.lib")->save(wall_);
    const auto svg = must({"draw", "a.lib", wall_->name().utf8()}).out;
    for (const char* machine : {">inf<", ">nan<", "\"inf\"", "\"nan\"", "e-05", "e+"}) {
      EXPECT_THAT(svg, Not(HasSubstr(machine))) << thickness;
    }
  }
}

TEST_F(DrawSheet, has_title_description_and_language) {
  save("Wall", veldra::Composition::Type::Wall, {100});
  const auto svg = drawn("Wall");
  EXPECT_THAT(svg, HasSubstr("<title>Wall</title>\n<desc>Sections to scale"));
  EXPECT_THAT(svg, HasSubstr("xml:lang=\"en\""));
}

TEST_F(DrawSheet, as_a_page_escapes_what_comes_from_the_library_and_loads_nothing) {
  save("<script>alert(1)</script>", veldra::Composition::Type::Wall, {100});
  must({"draw", "a.lib", "1", "-o", "sheet.html"});
  const auto page = read("sheet.html");
  EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n<html lang=\"en\">"));
  EXPECT_THAT(page, HasSubstr("<title>&lt;script&gt;"));
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, Not(ContainsRegex("(src|href)=")));
}

TEST_F(DrawSheet, charts_of_moisture_stand_below_it) {
  add(material("Sheet", {{"Thermal conductivity [W/(m K)]", "0.4"},
                         {"Vapour diffusion thickness [m]", "10"}}),
      20);
  add(material("Board", {{"Thermal conductivity [W/(m K)]", "0.2"},
                         {"Water vapour resistance factor [-]", "10"}}),
      50);
  write_climate("60");
  const auto svg = sheet({"--climate", "climate.csv"});
  EXPECT_THAT(svg, HasSubstr(">Vapour pressures, December<"));
  EXPECT_THAT(svg, HasSubstr(">Accumulated moisture<"));
  EXPECT_THAT(svg, ContainsRegex(">[0-9.]+ kg/m²; does not dry within the year<"));
  EXPECT_THAT(svg, HasSubstr(">s_d [m]<"));
  EXPECT_THAT(sheet(), Not(HasSubstr("Vapour pressures")));
  write_climate("20");
  const auto dry = sheet({"--climate", "climate.csv"});
  EXPECT_THAT(dry, HasSubstr(">nothing condenses<"));
  EXPECT_THAT(dry, Not(HasSubstr("within the year")));
  EXPECT_THAT(dry, HasSubstr(">0.10<"));
  EXPECT_THAT(dry, Not(HasSubstr("0.000")));
}

/// The relative luminance of a colour such as "#1a1a1a", from 0 for black to 1 for white, after
/// WCAG 2.1.
double luminance(const std::string& color) {
  double sum = 0;
  const double weights[] = {0.2126, 0.7152, 0.0722};
  for (std::size_t i = 0; i < 3; ++i) {
    const double value = std::stoi(color.substr(1 + 2 * i, 2), nullptr, 16) / 255.0;
    sum += weights[i] * (value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
  }
  return sum;
}

double contrast(const std::string& one, const std::string& other) {
  const auto [least, greatest] = std::minmax({luminance(one), luminance(other)});
  return (greatest + 0.05) / (least + 0.05);
}

std::set<std::string> colors_of(const std::string& element, const std::string& svg) {
  const std::regex color("<" + element + "[^>]* fill=\"(#[0-9a-f]{6})\"");
  std::set<std::string> colors;
  for (std::sregex_iterator at(svg.begin(), svg.end(), color), end; at != end; ++at) {
    colors.insert((*at)[1]);
  }
  return colors;
}

/// Texts stand on the white of the paper, but for the number of a structural layer, which is white
/// in a dark circle. 4.5 is what WCAG 2.1 asks for (1.4.3).
TEST_F(DrawSheet, contrast_is_enough_to_read) {
  wall_->appendLayer({material("Brick", {}), veldra::Material::Function::Structure, 100});
  add(material("Wool", {}), 50);
  const auto svg = sheet();
  auto colors = colors_of("text", svg);
  EXPECT_FALSE(colors.empty());
  colors.merge(colors_of("circle", svg));
  colors.erase("#ffffff");
  for (const auto& color : colors) EXPECT_GE(contrast(color, "#ffffff"), 4.5) << color;
}

bool can_be_loaded(const char* library) { return dlopen(library, RTLD_LAZY) != nullptr; }

/// librsvg, with which cairo comes, need not be on a machine.
TEST_F(DrawSheet, as_a_pdf_is_one_or_a_sentence_tells_what_is_missing) {
  save("Wall", veldra::Composition::Type::Wall, {100});
  const auto run = veldra({"draw", "a.lib", "Wall", "-o", "sheet.pdf"});
  if (!can_be_loaded("librsvg-2.so.2")) {
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("a PDF needs 'lib"));
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_FALSE(exists("sheet.pdf"));
    return;
  }
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(read("sheet.pdf"), StartsWith("%PDF-"));
  EXPECT_THAT(read("sheet.pdf"), HasSubstr("%%EOF"));
}

}  // namespace
}  // namespace veldra_tests
