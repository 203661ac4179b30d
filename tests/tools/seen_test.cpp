// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"
#include "tools/terminal.hpp"

namespace veldra_tests {
namespace {

/// What people see of objects with values in every field.
class Seen : public ProgramTest {
 protected:
  static std::shared_ptr<veldra::Material> brick() {
    const auto material = veldra::Material::create("Brick");
    material->code("");
    material->shading_color({1, 0.5, 0, 0.25});
    material->surface_pattern({veldra::Pattern::Type::Lines, "Brickwork", 2, 45});
    material->cut_pattern({1, 0, true});
    material->surface_pattern_alignment({1.5, -2});
    material->cut_layer(veldra::Layer::create("CUTS"));
    material->allow_custom_thickness(false);
    material->shading_use_appearance(true);
    material->thicknesses(veldra::toModify) = {115, 240};
    material->type(veldra::MaterialType::create("Clay"));
    return material;
  }

  std::string shown(const std::string& kind, const std::string& name) const {
    return must({"show", "a.lib", kind, name}).out;
  }
};

TEST_F(Seen, colours_patterns_and_layers_of_a_material_are_told_in_words) {
  library("a.lib")->save(brick());
  const auto text = shown("material", "Brick");
  EXPECT_THAT(text, ContainsRegex("code +\\(empty\\)\n"));
  EXPECT_THAT(text, HasSubstr("red 1, green 0.5, blue 0, alpha 0.25\n"));
  EXPECT_THAT(text, HasSubstr("Brickwork (type 0), scale 2, angle 45\n"));
  EXPECT_THAT(text, HasSubstr(", scale 1, angle 0, crossed\n"));
  EXPECT_THAT(text, ContainsRegex("surface alignment +1\\.5, -2\n"));
  EXPECT_THAT(text, ContainsRegex("cut layer +CUTS\n"));
  EXPECT_THAT(text, ContainsRegex("other thicknesses +not allowed\n"));
  EXPECT_THAT(text, ContainsRegex("thicknesses +115, 240 mm\n"));
  EXPECT_THAT(text, ContainsRegex("shading +from the appearance\n"));
  EXPECT_THAT(text, ContainsRegex("type +Clay\n"));
}

TEST_F(Seen, nothing_is_told_of_what_a_material_does_not_have) {
  library("a.lib")->save(veldra::Material::create("Bare"));
  const auto text = shown("material", "Bare");
  for (const char* title : {"code", "cut layer", "surface alignment", "red ", "scale", "custom"}) {
    EXPECT_THAT(text, Not(HasSubstr(title)));
  }
  EXPECT_THAT(text, ContainsRegex("other thicknesses +allowed\n"));
  EXPECT_THAT(text, ContainsRegex("shading +from its colour\n"));
}

TEST_F(Seen, a_property_tells_for_which_objects_it_is) {
  const auto office = library("a.lib");
  office->save(veldra::CustomProperty::create("Price", veldra::ObjectType::Material));
  office->save(veldra::CustomProperty::create("Area", veldra::ObjectType::Composition));
  EXPECT_THAT(shown("property", "Price"), ContainsRegex("for +material\n"));
  EXPECT_THAT(shown("property", "Area"), ContainsRegex("for +composition\n"));
}

TEST_F(Seen, the_layer_of_a_cut_is_in_use) {
  library("a.lib")->save(brick());
  EXPECT_THAT(must({"where-used", "a.lib", "layer", "CUTS"}).out,
              AllOf(HasSubstr("Brick"), HasSubstr("cut layer")));
  const auto run = veldra({"remove", "a.lib", "layers", "CUTS"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, HasSubstr("in use"));
}

TEST_F(Seen, what_is_written_to_a_terminal_does_not_steer_it) {
  if (!terminals_can_be_made()) GTEST_SKIP() << "there are no terminals here";
  const auto wall = veldra::Composition::create("Wall \x1b[31m red");
  wall->appendLayer({brick(), veldra::Material::Function::None, 115});
  library("a.lib")->save(wall);
  for (const char* format : {"idf", "csv", "ifc"}) {
    TerminalRun run(path(""), {"export", "a.lib", "--format", format});
    run.finish();
    EXPECT_THAT(run.seen(), HasSubstr("Brick")) << format;
    EXPECT_THAT(run.seen(), Not(HasSubstr("\x1b[31m"))) << format;
    EXPECT_THAT(run.seen(), HasSubstr("\n")) << format;
  }
}

TEST_F(Seen, a_workbook_does_not_go_to_a_terminal) {
  if (!terminals_can_be_made()) GTEST_SKIP() << "there are no terminals here";
  library("a.lib")->save(brick());
  TerminalRun run(path(""), {"export", "a.lib", "--format", "xlsx"});
  EXPECT_EQ(run.finish(), 2);
  EXPECT_THAT(run.seen(), Not(HasSubstr("PK")));
}

TEST_F(Seen, a_device_that_is_no_terminal_takes_what_is_written) {
  library("a.lib")->save(brick());
  EXPECT_EQ(must({"export", "a.lib", "--format", "csv", "-o", "/dev/null"}).out, "");
}

TEST_F(Seen, a_format_that_nobody_knows_is_answered_with_those_that_can_be_written) {
  library("a.lib");
  const auto run = veldra({"export", "a.lib", "--format", "docx"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, AllOf(HasSubstr("'docx' is none of"), HasSubstr("csv")));
}

TEST_F(Seen, numbers_for_spreadsheets_are_those_of_their_country) {
  const auto board = veldra::Material::create("Board");
  board->thicknesses(veldra::toModify) = {12.5};
  library("a.lib")->save(board);
  const auto table = [&](const char* locale) {
    return must({"export", "a.lib", "--format", "csv", "--locale", locale}).out;
  };
  EXPECT_THAT(table("de_DE"), AllOf(HasSubstr("kind;id"), HasSubstr(";12,5;")));
  EXPECT_THAT(table("de_CH"), AllOf(HasSubstr("kind;id"), HasSubstr(";12.5;")));
  EXPECT_THAT(table("en_US"), AllOf(HasSubstr("kind,id"), HasSubstr(",12.5,")));
  const auto run = veldra({"export", "a.lib", "--format", "csv", "--locale", "nowhere at all"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("'nowhere at all' is no locale, such as de or de_CH"));
}

/// Layers whose resistance comes from everywhere it may come from.
class SeenProof : public ProgramTest {
 protected:
  static std::shared_ptr<veldra::Material> material(const char* name, const char* property,
                                                    const char* value) {
    const auto result = veldra::Material::create(name);
    result->custom_value(veldra::String(property), veldra::String(value));
    return result;
  }

  void save(const char* name, const std::vector<std::shared_ptr<veldra::Material>>& materials) {
    const auto wall = veldra::Composition::create(name);
    for (const auto& each : materials) {
      wall->appendLayer({each, veldra::Material::Function::None, 100});
    }
    library("a.lib")->save(wall);
  }

  std::string calculated(const std::vector<std::string>& more) {
    std::vector<std::string> command{"calc", "a.lib", "Wall"};
    command.insert(command.end(), more.begin(), more.end());
    return must(command).out;
  }
};

TEST_F(SeenProof, tells_where_resistances_come_from) {
  save("Wall", {material("Cladding", "Thermal conductivity [W/(m K)]", "1"),
                material("Cavity", "Ventilation", "Well ventilated"),
                material("Board", "Thermal resistance [m2 K/W]", "0.5"),
                material("Wool", "Thermal conductivity [W/(m K)]", "0.04")});
  const auto text = calculated({});
  EXPECT_THAT(text, ContainsRegex("Cladding .*does not count"));
  EXPECT_THAT(text, ContainsRegex("Board .*stated"));
  EXPECT_THAT(text, ContainsRegex("Wool .*d / λ"));
  EXPECT_THAT(text, HasSubstr("a ventilated cavity outside"));
}

TEST_F(SeenProof, tells_what_is_inside_where_that_is_no_room) {
  save("Wall", {material("Wool", "Thermal conductivity [W/(m K)]", "0.04")});
  EXPECT_THAT(calculated({"--boundary", "outdoors,unheated,upward"}),
              AllOf(HasSubstr("upward heat flow"), HasSubstr(" inside\n")));
  const auto json =
      nlohmann::json::parse(calculated({"--boundary", "ground,unheated,downward", "--json"}));
  EXPECT_THAT(json.dump(), AllOf(HasSubstr("\"asked\""), HasSubstr("the ground")));
}

// 4 screws go through 100 of wool: 0.8 * 50 * 6e-6 * 4 / 0.1 * (5 / 5.17)^2 = 0.008979.
TEST_F(SeenProof, tells_what_corrects_the_transmittance) {
  const auto wool = material("Wool", "Thermal conductivity [W/(m K)]", "0.02");
  wool->custom_value("Fasteners [1/m2]", "4");
  wool->custom_value("Fastener conductivity [W/(m K)]", "50");
  wool->custom_value("Fastener cross-section [mm2]", "6");
  save("Wall", {wool});
  EXPECT_THAT(calculated({}), ContainsRegex("correction +0\\.0090 W/\\(m²K\\) for "));
  const auto corrections = nlohmann::json::parse(calculated({"--json"}))["thermal"]["corrections"];
  ASSERT_EQ(corrections.size(), 1U);
  EXPECT_NEAR(corrections[0]["value"].get<double>(), 0.008979, 1e-6);
}

TEST_F(SeenProof, tells_of_bridges_and_of_what_the_build_up_states) {
  const auto wool = material("Wool", "Thermal conductivity [W/(m K)]", "0.04");
  wool->custom_value("Bridge", "studs");
  wool->custom_value("Bridge share [-]", "0.1");
  wool->custom_value("Bridge conductivity [W/(m K)]", "0.13");
  const auto wall = veldra::Composition::create("Wall");
  wall->custom_value("Boundary", "ground, interior, downward");
  wall->appendLayer({wool, veldra::Material::Function::None, 100});
  library("a.lib")->save(wall);
  const auto thermal = nlohmann::json::parse(calculated({"--json"}))["thermal"];
  EXPECT_EQ(thermal["boundary"]["basis"], "stated");
  EXPECT_EQ(thermal["boundary"]["outside"], "the ground");
  EXPECT_GE(thermal["limits"]["upper"].get<double>(), thermal["limits"]["lower"].get<double>());
  EXPECT_EQ(thermal["limits"]["valid"], true);
}

TEST_F(SeenProof, refuses_wishes_that_make_no_sense) {
  save("Wall", {material("Wool", "Thermal conductivity [W/(m K)]", "0.04")});
  const auto error = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"calc", "a.lib", "Wall"});
    const auto run = veldra(more);
    EXPECT_EQ(run.status, 2) << run.out;
    return run.err;
  };
  EXPECT_THAT(error({"--layer", "1"}), HasSubstr("it says for which layer --target-u is meant"));
  EXPECT_THAT(error({"--layer", "0", "--target-u", "1"}), HasSubstr("layers are counted from 1"));
  EXPECT_THAT(error({"--target-u", "0"}), HasSubstr("a U-value is a number above 0"));
  EXPECT_THAT(error({"--target-u", "inf"}), HasSubstr("a U-value is a number above 0"));
  for (const char* room : {"0", "6"}) {
    EXPECT_THAT(error({"--room-class", room}), HasSubstr("room classes are from 1 to 5"));
  }
  EXPECT_THAT(error({"--room-class", "3"}), HasSubstr("it says more of a --climate"));
  EXPECT_THAT(error({"--boundary", "moon"}), HasSubstr("moon"));
}

/// The program that writes the manual.
class ManualProgram : public ProgramTest {
 protected:
  Outcome manual(const std::vector<std::string>& arguments) const {
    std::vector<std::string> texts{VELDRA_MANUAL};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    return Running(path(""), texts).outcome();
  }
};

TEST_F(ManualProgram, writes_a_page_for_each_command_and_completions) {
  EXPECT_EQ(manual({"pages"}).status, 0);
  EXPECT_THAT(names("pages"), ElementsAre("completions", "man", "markdown"));
  EXPECT_THAT(names("pages/man"), testing::IsSupersetOf({"veldra.1", "veldra-import.1"}));
  EXPECT_THAT(names("pages/markdown"), testing::IsSupersetOf({"index.md", "import.md"}));
  EXPECT_THAT(read("pages/markdown/import.md"), HasSubstr("veldra import"));
  EXPECT_THAT(read("pages/completions/bash/veldra"), HasSubstr("import"));
  EXPECT_THAT(read("pages/completions/zsh/_veldra"), HasSubstr("import"));
  EXPECT_THAT(read("pages/completions/fish/veldra.fish"), HasSubstr("import"));
}

TEST_F(ManualProgram, says_what_it_lacks_and_what_it_cannot_write) {
  EXPECT_EQ(manual({}).err, "veldra_manual: which folder?\n");
  EXPECT_EQ(manual({}).status, 2);
  write("file", "");
  const auto run = manual({"file"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(HasSubstr("veldra_manual: "), HasSubstr("file")));
  ASSERT_EQ(shell("mkdir -p full/man && ln -s /dev/full full/man/veldra.1").status, 0);
  EXPECT_THAT(manual({"full"}).err, HasSubstr("full/man/veldra.1 cannot be written"));
}

}  // namespace
}  // namespace veldra_tests
