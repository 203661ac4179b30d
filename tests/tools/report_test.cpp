// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

#include <algorithm>

namespace veldra_tests {
namespace {

/// What an import says that it did.
class Report : public ProgramTest {
 protected:
  nlohmann::json reported(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "import");
    arguments.push_back("--json");
    const auto run = veldra(arguments);
    EXPECT_TRUE(run.status == 0 || run.status == 3) << run.err;
    return run.out.empty() ? nlohmann::json() : run.json();
  }

  /// All outcomes of a source's materials and compositions together.
  static int sum(const nlohmann::json& source) {
    int result = 0;
    for (const char* kind : {"materials", "compositions"}) {
      for (const auto& [outcome, count] : source[kind].items()) result += count.get<int>();
    }
    return result;
  }
};

TEST_F(Report, tells_what_was_renamed_because_another_source_had_its_name) {
  write("one.idf", "Material:AirGap, A, 0.1; Material:AirGap, B, 0.1; Construction, W, A;");
  write("two.idf", "Material:AirGap, A, 0.2; Material:AirGap, B, 0.1; Construction, W, A, B;");
  write("three.idf", "Material:AirGap, A, 0.3; Material:AirGap, C, 0.3; Construction, W, A, C;");
  const auto report =
      reported({"a.lib", "one.idf", "two.idf", "three.idf", "--on-conflict", "rename"});
  EXPECT_EQ(report[0]["materials"]["added"], 2);
  EXPECT_EQ(report[0]["materials"]["renamed"], 0);
  EXPECT_EQ(report[1]["materials"]["added"], 0);
  EXPECT_EQ(report[1]["materials"]["equal"], 1);
  EXPECT_EQ(report[1]["materials"]["renamed"], 1);
  EXPECT_EQ(report[1]["compositions"]["renamed"], 1);
  EXPECT_EQ(report[2]["materials"]["added"], 1);
  EXPECT_EQ(report[2]["materials"]["renamed"], 1);
  EXPECT_EQ(report[2]["compositions"]["renamed"], 1);
  for (const auto& source : report) EXPECT_EQ(sum(source), 3);
  EXPECT_EQ(count("a.lib", "materials"), 5U);
  EXPECT_THAT(must({"list", "a.lib", "materials"}).out, HasSubstr("A (3)"));
}

TEST_F(Report, tells_what_is_there_already_under_its_new_name_as_equal) {
  write("one.idf", "Material:AirGap, A, 0.1;");
  write("two.idf", "Material:AirGap, A, 0.2;");
  reported({"a.lib", "one.idf", "two.idf", "--on-conflict", "rename"});
  const auto again = reported({"a.lib", "one.idf", "two.idf", "--on-conflict", "rename"});
  EXPECT_EQ(again[1]["materials"]["equal"], 1);
  EXPECT_EQ(again[1]["materials"]["renamed"], 0);
}

TEST_F(Report, counts_layers_by_their_own_thickness) {
  write("a.json", R"({"format": "veldra", "materials": [{"name": "A"}, {"name": "B",
    "thicknesses": [5]}], "compositions": [{"name": "W", "layers": [
    {"material": "A", "thickness": 115}, {"material": "A", "thickness": 20},
    {"material": "B", "thickness": 5}, {"material": "B"}, {"material": "A", "thickness": null}]}]})");
  const auto source = reported({"a.lib", "a.json"})[0];
  EXPECT_EQ(source["layers"], 5);
  EXPECT_EQ(source["layers_without_thickness"], 2);
}

TEST_F(Report, counts_layers_of_models_by_their_materials) {
  write("a.idf",
        "Material, A, Rough, 0.1, 1, 1, 1; Material:AirGap, Gap, 0.1; Construction, W, A, Gap, A;");
  const auto source = reported({"a.lib", "a.idf"})[0];
  EXPECT_EQ(source["layers"], 3);
  EXPECT_EQ(source["layers_without_thickness"], 1);
}

TEST_F(Report, tells_of_the_fields_that_no_library_has_a_place_for) {
  write("a.idf",
        "WindowMaterial:Blind, Blind, Horizontal, 0.025, , 0.01; Material:AirGap, Gap, 0.1, ;"
        "WindowMaterial:GasMixture, Mix, 0.01, 2, Argon, .9, Air, .1;"
        "Construction:InternalSource, Warm, 1, , 1, 0.15, Gap;");
  write("a.epJSON", R"({"Material": {"Brick": {"thickness": 0.1, "idf_order": 4, "colour": "red",
    "note": "", "age": null}}, "Construction": {"W": {"outside_layer": "Brick", "use": "wall"}}})");
  const auto run = veldra({"import", "a.lib", "a.idf", "a.epJSON", "--json"});
  EXPECT_EQ(run.json()[0]["dropped"],
            nlohmann::json({{"WindowMaterial:Blind.slat_orientation", 1},
                            {"WindowMaterial:Blind.slat_width", 1},
                            {"WindowMaterial:Blind.slat_thickness", 1},
                            {"Construction:InternalSource.source_present_after_layer_number", 1},
                            {"Construction:InternalSource.dimensions_for_the_ctf_calculation", 1},
                            {"Construction:InternalSource.tube_spacing", 1}}));
  EXPECT_EQ(run.json()[1]["dropped"],
            nlohmann::json({{"Material.colour", 1}, {"Construction.use", 1}}));
  EXPECT_EQ(run.status, 3);
}

TEST_F(Report, tells_of_each_field_once_and_of_each_value_if_asked) {
  write("a.idf",
        "Material:RoofVegetation, A, 0.3;\nMaterial:RoofVegetation, B, 0.5;"
        "Material:AirGap, Gap, 0.1, 7;");
  EXPECT_EQ(veldra({"import", "a.lib", "a.idf"}).err,
            "veldra: 'a.idf': Material:AirGap: a library has no place for 'field 3', 1 value is "
            "left out\n"
            "veldra: 'a.idf': Material:RoofVegetation: a library has no place for "
            "'height_of_plants', 2 values are left out\n");
  EXPECT_EQ(veldra({"import", "a.lib", "a.idf", "--verbose"}).err,
            "veldra: 'a.idf', line 1: Material:RoofVegetation 'A': a library has no place for "
            "'height_of_plants', '0.3' is left out\n"
            "veldra: 'a.idf', line 2: Material:RoofVegetation 'B': a library has no place for "
            "'height_of_plants', '0.5' is left out\n"
            "veldra: 'a.idf', line 2: Material:AirGap 'Gap': a library has no place for 'field 3', "
            "'7' is left out\n");
}

TEST_F(Report, tells_types_tags_layers_and_properties_that_it_made) {
  write("a.json", R"({"format": "veldra", "tags": ["new"], "materials": [
    {"name": "Oak", "type": "Timber", "tags": ["new", "old"], "cut_layer": "Hatch"},
    {"name": "Ash", "type": "Wood"}]})");
  must({"create", "a.lib"});
  library("a.lib")->save(veldra::Tag::create("old"));
  const auto made = reported({"a.lib", "a.json", "--dry-run"})[0]["made"];
  std::vector<std::string> found;
  for (const auto& each : made) {
    EXPECT_EQ(each["outcome"], "added");
    found.push_back(each["kind"].get<std::string>() + " " + each["name"].get<std::string>());
  }
  EXPECT_THAT(found, testing::UnorderedElementsAre("type Timber", "tag new", "layer Hatch"));
  EXPECT_THAT(
      must({"import", "a.lib", "a.json"}).out,
      HasSubstr("made in the library\n  types         Timber\n  layers        Hatch\n  tags    "
                "      new\n"));
  EXPECT_THAT(must({"import", "a.lib", "a.json"}).out, Not(HasSubstr("made in the library")));
}

TEST_F(Report, of_an_error_counts_the_fields_that_would_hide_it) {
  write("a.idf",
        "Material:RoofVegetation, A, 0.3, 2, 0.2, 0.9, 180, Soil, Rough, 0.1, 0.4, 1000, 1100, 0.9,"
        "0.7, 0.75, 0.4;"
        "Material:AirGap, Gap, 0.1;");
  must({"create", "a.lib"});
  const auto lines = [](const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  };
  ASSERT_GT(lines(veldra({"import", "b.lib", "a.idf"}).err), 3);
  library("a.lib")->save(veldra::Material::create("Gap"));
  const auto run = veldra({"import", "a.lib", "a.idf"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(lines(run.err), 2) << run.err;
  EXPECT_THAT(run.err,
              StartsWith("veldra: 'a.idf': a library has no place for 6 fields, 6 values "
                         "would be left out\nveldra: 'a.lib': the library has a material "));
  const auto tried = veldra({"import", "a.lib", "a.idf", "--dry-run"});
  EXPECT_EQ(lines(tried.err), 3) << tried.err;
  EXPECT_GT(lines(veldra({"import", "a.lib", "a.idf", "--verbose"}).err), 3);
  EXPECT_GT(lines(veldra({"import", "a.lib", "a.idf", "--strict"}).err), 3);
}

TEST_F(Report, has_no_such_fields_where_they_are_kept) {
  write("a.idf", "Material:RoofVegetation, Green, 0.3;");
  must({"import", "a.lib", "a.idf", "--keep-unknown", "--strict"});
  const auto green = veldra({"show", "a.lib", "material", "Green", "--json"}).json();
  EXPECT_EQ(green["custom_values"]["Material:RoofVegetation.height_of_plants"], "0.3");
}

TEST_F(Report, tells_of_assets_that_stay_behind) {
  write("a.json", R"({"format": "veldra", "materials": [{"name": "Oak", "thermal_asset": {},
    "structural_asset": {}}, {"name": "Ash", "thermal_asset": {}}]})");
  const auto run = veldra({"import", "a.lib", "a.json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("dropped       3 values of 2 fields"));
  EXPECT_EQ(count("a.lib", "materials"), 2U);
}

TEST_F(Report, of_everything_that_went_in_whole_is_not_a_finding) {
  write("a.idf", "Version, 9.4; Zone, Z1; Material:AirGap, Gap, 0.1; Construction, W, Gap;");
  must({"import", "a.lib", "a.idf", "--strict"});
}

TEST_F(Report, of_a_problem_is_a_finding) {
  write("a.idf", "Material:AirGap, Gap, 0.1; Construction, W, Lost;");
  EXPECT_EQ(veldra({"import", "a.lib", "a.idf", "--dry-run"}).status, 3);
  EXPECT_EQ(veldra({"import", "a.lib", "a.idf"}).status, 3);
}

class Strict : public Report, public testing::WithParamInterface<const char*> {};

TEST_P(Strict, makes_a_finding_an_error_before_anything_is_written) {
  write("source", GetParam());
  write("good.idf", "Material:AirGap, Good, 0.1;");
  const auto run = veldra({"import", "new.lib", "good.idf", "source", "--strict"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("nothing is imported"));
  EXPECT_FALSE(exists("new.lib"));
  must({"create", "a.lib"});
  const auto before = dump(path("a.lib"));
  EXPECT_EQ(veldra({"import", "a.lib", "source", "--strict"}).status, 1);
  EXPECT_EQ(veldra({"import", "a.lib", "source", "--strict", "--dry-run"}).status, 1);
  EXPECT_EQ(dump(path("a.lib")), before);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Strict,
    testing::Values("Construction, W, Lost;", "Material, A, Rough, thick, 1, 1, 1;",
                    "WindowMaterial:Blind, Blind, Horizontal;",
                    R"({"Material": {"Brick": {"thickness": 0.1, "colour": "red"}}})",
                    R"({"format": "veldra", "materials": [{"name": "A", "thermal_asset": {}}]})"));

/// A dry run tells what the run after it does.
class DryRun : public Report, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    write("one.idf",
          "Material:AirGap, A, 0.1; Material, B, Rough, 0.1, 1, 1, 1; Construction, W, A, B;"
          "Construction, Bad, Lost; WindowMaterial:Blind, Blind, Horizontal;");
    write("two.json", R"({"format": "veldra", "library": {"unit": "in", "locale": "de"},
      "material_types": ["Straw"], "tags": ["t"],
      "materials": [{"name": "A", "type": "Straw", "thermal_asset": {}},
                    {"name": "C", "code": "C-1", "thicknesses": [2]}],
      "compositions": [{"name": "W", "layers": [{"material": "C", "thickness": 2},
                                                {"material": "A"}]}]})");
    write("three.epJSON", R"({"Material": {"a": {"thickness": 0.3}, "D": {"thickness": 0.1}},
      "Construction": {"W": {"outside_layer": "D", "layer_2": "a"}}, "Zone": {"Z": {}}})");
  }

  void expect_same(const std::string& library, std::vector<std::string> sources) {
    std::vector<std::string> arguments{"import", library, "--json", "--on-conflict", GetParam()};
    arguments.insert(arguments.end(), sources.begin(), sources.end());
    auto pretended = arguments;
    pretended.push_back("--dry-run");
    const bool was_there = exists(library);
    const auto before = was_there ? exported(library) : "";
    const auto told = veldra(pretended);
    EXPECT_EQ(exists(library), was_there);
    if (was_there) {
      EXPECT_EQ(exported(library), before);
    }
    const auto done = veldra(arguments);
    EXPECT_EQ(done.status, told.status);
    // What nobody has decided is told among all else in a dry run.
    if (done.status == 1) {
      EXPECT_THAT(told.err, Not(IsEmpty()));
      return;
    }
    EXPECT_EQ(done.out, told.out);
    EXPECT_EQ(done.err, told.err);
  }
};

TEST_P(DryRun, of_several_sources_reports_what_the_real_one_does) {
  expect_same("new.lib", {"one.idf"});
  expect_same("new.lib", {"two.json", "three.epJSON"});
  expect_same("new.lib", {"one.idf", "two.json", "three.epJSON"});
  expect_same("other.lib", {"two.json", "one.idf", "three.epJSON"});
  expect_same("other.lib", {"three.epJSON", "two.json", "one.idf"});
  must({"create", "inches.lib", "--unit", "in"});
  expect_same("inches.lib", {"one.idf", "three.epJSON"});
}

INSTANTIATE_TEST_SUITE_P(WithEachPolicy, DryRun,
                         testing::Values("fail", "use", "overwrite", "rename"));

}  // namespace
}  // namespace veldra_tests
