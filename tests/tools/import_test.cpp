// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

class Import : public ProgramTest {
 protected:
  nlohmann::json imported(std::vector<std::string> sources) {
    sources.insert(sources.begin(), {"import", "a.lib", "--json"});
    const auto run = veldra(sources);
    EXPECT_TRUE(run.status == 0 || run.status == 3) << run.err;
    return run.json();
  }
  nlohmann::json shown(const std::string& kind, const std::string& name) {
    return must({"show", "a.lib", kind, name, "--json"}).json();
  }
};

constexpr const char* brick_wall = R"(
! A comment with , and ; in it
Version, 9.4;
MATERIAL,Brick,Rough,0.115,.81,1.8E+03,1000;  !- and another
Material,
  Wool,   !- Name
  Rough, 0.14, 0.035, 40, 1030, , 0.7;
Construction, Wall,
  BRICK, wool,
  Brick;
)";

TEST_F(Import, an_idf_is_read_with_its_lexical_traps) {
  write("a.idf", brick_wall);
  const auto report = imported({"a.idf"})[0];
  EXPECT_EQ(report["format"], "IDF");
  EXPECT_EQ(report["read"]["Material"], 2);
  EXPECT_EQ(report["materials"]["added"], 2);
  EXPECT_EQ(report["layers"], 3);
  EXPECT_EQ(report["skipped"]["Version"], 1);
  const auto brick = shown("material", "Brick");
  EXPECT_EQ(brick["type"], "Opaque");
  EXPECT_EQ(brick["thicknesses"], nlohmann::json({115.0}));
  EXPECT_EQ(brick["tags"], nlohmann::json({"a.idf"}));
  EXPECT_EQ(brick["custom_values"], nlohmann::json({{"Density [kg/m3]", "1800"},
                                                    {"Roughness", "Rough"},
                                                    {"Specific heat [J/(kg K)]", "1000"},
                                                    {"Thermal conductivity [W/(m K)]", "0.81"}}));
  EXPECT_EQ(shown("material", "Wool")["custom_values"].count("Thermal absorptance [-]"), 0U);
  EXPECT_EQ(shown("material", "Wool")["custom_values"]["Solar absorptance [-]"], "0.7");
}

TEST_F(Import, the_heaviest_layer_carries_and_all_layers_are_the_core) {
  write("a.idf", brick_wall);
  imported({"a.idf"});
  const auto wall = shown("composition", "Wall");
  EXPECT_EQ(wall["type"], "other");
  EXPECT_EQ(wall["layers"][0]["material"], "Brick");
  EXPECT_EQ(wall["layers"][0]["function"], 1);
  EXPECT_EQ(wall["layers"][1]["material"], "Wool");
  EXPECT_EQ(wall["layers"][1]["thickness"], 140.0);
  EXPECT_EQ(wall["layers"][2].count("function"), 0U);
  EXPECT_EQ(wall["first_core_layer"], 0);
  EXPECT_EQ(wall["last_core_layer"], 2);
  EXPECT_EQ(wall["structural_layer"], 0);
}

TEST_F(Import, standard_input_is_a_source_only_once) {
  const auto run = veldra({"import", "a.lib", "-", "-"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("standard input can be read once only"));
  EXPECT_FALSE(exists("a.lib"));
}

TEST_F(Import, line_ends_and_a_byte_order_mark_do_not_matter) {
  write("cr.idf", "\xEF\xBB\xBFMaterial:AirGap,A,0.1;! one\rMaterial:AirGap,B,0.2;\r\n");
  EXPECT_EQ(imported({"cr.idf"})[0]["read"]["Material:AirGap"], 2);
}

TEST_F(Import, old_files_in_latin_1_are_read) {
  write("old.idf", "Material:AirGap,D\xE4mmung,0.1;");
  imported({"old.idf"});
  EXPECT_EQ(shown("material", "Dämmung")["type"], "Air gap");
}

TEST_F(Import, layers_of_epjson_come_by_their_numbers) {
  std::string layers = R"("layer_2": "B", "outside_layer": "A", "layer_10": "A")";
  for (int i = 3; i < 10; ++i) layers += R"(, "layer_)" + std::to_string(i) + R"(": "b")";
  write("a.epJSON", R"({"Construction": {"C": {)" + layers + R"(}},
    "Material:NoMass": {"A": {"roughness": "Rough", "thermal_resistance": 1, "idf_order": 3},
                        "B": {"roughness": "Rough", "thermal_resistance": 0.25}}})");
  const auto report = imported({"a.epJSON"})[0];
  EXPECT_EQ(report["format"], "epJSON");
  EXPECT_EQ(report["layers_without_thickness"], 10);
  const auto layers_read = shown("composition", "C")["layers"];
  ASSERT_EQ(layers_read.size(), 10U);
  EXPECT_EQ(layers_read[0]["material"], "A");
  EXPECT_EQ(layers_read[1]["material"], "B");
  EXPECT_EQ(layers_read[9]["material"], "A");
  EXPECT_EQ(shown("material", "A")["custom_values"]["Thermal resistance [m2 K/W]"], "1");
  EXPECT_EQ(shown("material", "A").count("thicknesses"), 0U);
}

TEST_F(Import, the_content_tells_the_format_and_not_the_name) {
  write("a.idf", "\n {}");
  EXPECT_EQ(imported({"a.idf"})[0]["format"], "epJSON");
  write("a.json", "Version, 9.4;");
  EXPECT_EQ(imported({"a.json"})[0]["format"], "IDF");
}

TEST_F(Import, a_construction_may_name_a_material_of_another_source) {
  write("walls.idf", "Construction, Wall, brick;");
  write("bricks.epJSON", R"({"Material": {"Brick": {"thickness": 0.115}}})");
  const auto report = imported({"walls.idf", "bricks.epJSON"});
  EXPECT_EQ(report[0]["references_not_found"], 0);
  EXPECT_EQ(shown("composition", "Wall")["layers"][0]["material"], "Brick");
}

TEST_F(Import, a_missing_reference_costs_its_construction_only) {
  write("a.idf",
        "Material:AirGap, Gap, 0.1;\nConstruction, Good, Gap;\n\nConstruction, Bad, Lost;");
  const auto run = veldra({"import", "a.lib", "a.idf"});
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(run.err, "veldra: 'a.idf', line 4: Construction 'Bad': there is no material 'Lost'\n");
  EXPECT_EQ(count("a.lib", "compositions"), 1U);
}

TEST_F(Import, strict_imports_nothing_when_there_is_a_problem) {
  write("a.idf",
        "Material:AirGap, Gap, 0.1;\nConstruction, Good, Gap;\n\nConstruction, Bad, Lost;");
  const auto run = veldra({"import", "a.lib", "a.idf", "--strict"});
  EXPECT_EQ(run.status, 1);
  EXPECT_FALSE(exists("a.lib"));
}

TEST_F(Import, a_construction_without_layers_is_reported_and_left_out) {
  write("a.idf", "Construction:FfactorGroundFloor, Floor, 0.5, 100, 40;");
  const auto report = imported({"a.idf"})[0];
  EXPECT_EQ(report["skipped"]["Construction:FfactorGroundFloor"], 1);
  EXPECT_EQ(report["problems"].size(), 1U);
  EXPECT_EQ(count("a.lib", "compositions"), 0U);
}

TEST_F(Import, the_numbers_before_the_layers_of_an_internal_source_are_skipped) {
  write("a.idf",
        "Material:AirGap, Gap, 0.1; Construction:InternalSource, Old, 1, 1, 1, 0.15, Gap, Gap;"
        "Construction:InternalSource, New, 1, 1, 1, 0.15, 0.0, Gap;");
  imported({"a.idf"});
  EXPECT_EQ(shown("composition", "Old")["layers"].size(), 2U);
  EXPECT_EQ(shown("composition", "New")["layers"].size(), 1U);
}

class BadThickness : public Import, public testing::WithParamInterface<const char*> {};

TEST_P(BadThickness, is_an_error_of_its_object) {
  write("a.idf", std::string("\nMaterial, Bad, Rough, ") + GetParam() +
                     ", 1, 1, 1;\nMaterial, Good, Rough, 0.2, 1, 1, 1;");
  const auto report = imported({"a.idf"})[0];
  ASSERT_EQ(report["problems"].size(), 1U);
  EXPECT_THAT(report["problems"][0].get<std::string>(), HasSubstr("'a.idf', line 2"));
  EXPECT_EQ(count("a.lib", "materials"), 1U);
  EXPECT_EQ(shown("material", "Good")["thicknesses"], nlohmann::json({200.0}));
}

INSTANTIATE_TEST_SUITE_P(Each, BadThickness,
                         testing::Values("-0.1", "thick", "nan", "inf", "1e999", "0.1m", ""));

TEST_F(Import, the_same_name_twice_is_one_object_or_an_error_of_the_second) {
  write("a.idf",
        "Material:AirGap, Gap, 0.1;\nMaterial:AirGap, GAP, 0.1;\nMaterial:AirGap, gap, 0.2;");
  const auto report = imported({"a.idf"})[0];
  EXPECT_EQ(count("a.lib", "materials"), 1U);
  EXPECT_EQ(shown("material", "Gap")["custom_values"]["Thermal resistance [m2 K/W]"], "0.1");
  ASSERT_EQ(report["problems"].size(), 1U);
  EXPECT_THAT(report["problems"][0].get<std::string>(), HasSubstr("line 3"));
}

TEST_F(Import, given_tags_take_the_place_of_the_name_of_the_file) {
  write("a.idf", "Material:AirGap, Gap, 0.1;");
  imported({"a.idf", "--tag", "x", "--tag", "y, z"});
  EXPECT_EQ(shown("material", "Gap")["tags"], nlohmann::json({"x", "y, z"}));
}

TEST_F(Import, inches_come_from_the_number_of_the_source) {
  write("a.idf", "Material, A, Rough, 0.0254, 1, 1, 1;");
  must({"create", "a.lib", "--unit", "in"});
  imported({"a.idf"});
  EXPECT_EQ(shown("material", "A")["thicknesses"], nlohmann::json({1.0}));
}

TEST_F(Import, a_dry_run_tells_all_and_writes_nothing) {
  write("a.idf", brick_wall);
  const auto report = imported({"a.idf", "--dry-run"})[0];
  EXPECT_EQ(report["materials"]["added"], 2);
  EXPECT_EQ(report["compositions"]["added"], 1);
  EXPECT_FALSE(exists("a.lib"));
  must({"create", "a.lib"});
  const auto before = dump(path("a.lib"));
  EXPECT_EQ(imported({"a.idf", "--dry-run"})[0]["materials"]["added"], 2);
  EXPECT_EQ(dump(path("a.lib")), before);
}

/// What `veldra export` says of a library counts where it is imported into an empty one.
class ImportIntoEmpty : public Import {
 protected:
  void SetUp() override {
    write("all.json", R"({"format": "veldra", "library": {"locale": "de_AT", "region": "AT"},
                          "material_types": ["Straw"], "materials": [{"name": "Oak"}]})");
    must({"create", "a.lib"});
  }

  void expect_nothing_changes_with(const std::string& trigger) {
    PlainDatabase(path("a.lib")).execute(trigger);
    const auto before = dump(path("a.lib"));
    EXPECT_EQ(veldra({"import", "a.lib", "all.json"}).status, 1);
    EXPECT_EQ(dump(path("a.lib")), before);
  }
};

TEST_F(ImportIntoEmpty, takes_over_locale_region_and_types) {
  imported({"all.json"});
  const auto info = must({"info", "a.lib", "--json"}).json();
  EXPECT_EQ(info["locale"], "de_AT");
  EXPECT_EQ(info["region"], "AT");
  EXPECT_EQ(count("a.lib", "types"), 2U);  // that of the material as well
  EXPECT_EQ(must({"show", "a.lib", "type", "Straw", "--json"}).json()["name"], "Straw");
}

TEST_F(ImportIntoEmpty, takes_over_nothing_in_a_dry_run) {
  const auto before = dump(path("a.lib"));
  imported({"all.json", "--dry-run"});
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(ImportIntoEmpty, changes_nothing_when_the_region_cannot_be_set) {
  expect_nothing_changes_with(
      "CREATE TRIGGER refusal BEFORE UPDATE ON Meta WHEN NEW.region <> '' "
      "BEGIN SELECT RAISE(ABORT, 'refused'); END");
}

TEST_F(ImportIntoEmpty, changes_nothing_when_a_type_cannot_be_removed) {
  expect_nothing_changes_with(
      "CREATE TRIGGER failure BEFORE DELETE ON MaterialType WHEN OLD.name = 'Wood' "
      "BEGIN SELECT abs(-9223372036854775807 - 1); END");
}

struct BadSource {
  const char* content;
  const char* place;
};

void PrintTo(const BadSource& source, std::ostream* out) { *out << source.place; }

class Unreadable : public Import, public testing::WithParamInterface<BadSource> {};

TEST_P(Unreadable, sources_give_a_sentence_with_their_place_and_leave_the_library_alone) {
  write("bad", GetParam().content);
  const auto made = veldra({"import", "new.lib", "bad"});
  EXPECT_EQ(made.status, 1);
  EXPECT_FALSE(exists("new.lib"));
  must({"create", "a.lib"});
  const auto before = dump(path("a.lib"));
  const auto run = veldra({"import", "a.lib", "bad"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr(GetParam().place));
  EXPECT_EQ(dump(path("a.lib")), before);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Unreadable,
    testing::Values(
        BadSource{"\nMaterial, A, Rough", "'bad', line 2"},
        BadSource{"{\n\n  \"Material\": ]", "'bad', line 3"},
        BadSource{"{\n  \"Material\": 5}", "'bad', line 2"},
        BadSource{"[1, 2]", "JSON of another kind"},
        BadSource{"{\n\"format\": \"veldra\",\n\"materials\": [{\"name\": 5}]}", "line 3"},
        BadSource{"{\"format\": \"veldra\",\n\"materials\": [\n{\"nome\": \"A\"}]}", "line 3"},
        BadSource{"{\"format\": \"veldra\",\n\"materials\": [\n{\"name\": \"A\", "
                  "\"colour\": 1}]}",
                  "material 'A': 'colour'"},
        BadSource{"{\"format\": \"veldra\", \"materials\": [{\"name\": \"A\", \"code\": \"X\"},\n"
                  "{\"name\": \"B\", \"code\": \"X\"}]}",
                  "'bad', line 2: material 'B' has the code 'X', which 'A'"},
        BadSource{"{\"format\": \"veldra\", \"version\": 9}", "version"},
        BadSource{"{\"format\": \"veldra\", \"library\": {\"unit\": \"feet\"}}", "unit"},
        BadSource{"{\"format\": \"veldra\", \"tags\": [\"a\\u0000b\"]}", "U+0000"},
        BadSource{"{\"format\": \"veldra\",\n\"compositions\": [{\"name\": \"C\", "
                  "\"last_core_layer\": 7, \"layers\": []}, {\"name\": \"D\", "
                  "\"layers\": [], \"structural_layer\": 3}]}",
                  "'bad', line 2"}));

TEST_F(Import, a_source_that_is_missing_or_a_folder_gives_a_sentence) {
  const auto missing = veldra({"import", "a.lib", "missing.idf"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.err, is_one_sentence());
  EXPECT_THAT(missing.err, HasSubstr("missing.idf"));
  EXPECT_EQ(veldra({"import", "a.lib", path("")}).status, 1);
  EXPECT_FALSE(exists("a.lib"));
}

TEST_F(Import, values_that_are_nested_without_end_give_a_sentence) {
  write("deep", std::string(100000, '['));
  const auto run = veldra({"import", "a.lib", "deep"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
}

TEST_F(Import, ten_thousand_materials_come_in_whole_and_then_change_nothing) {
  std::string text;
  for (int i = 0; i < 10000; ++i) {
    const auto number = std::to_string(i);
    text += "Material, M" + number + ", Rough, 0." + number + "1, 0.5, " + number + ", 900;\n";
  }
  for (int i = 0; i < 2000; ++i) {
    text += "Construction, C" + std::to_string(i);
    for (int layer = 0; layer < 6; ++layer) text += ", M" + std::to_string(i * 5 % 9000 + layer);
    text += ";\n";
  }
  write("big.idf", text);
  for (const char* outcome : {"added", "equal"}) {
    const auto run = must({"import", "a.lib", "big.idf", "--json"});
    EXPECT_EQ(run.err, "");  // no line of progress, for it is no terminal
    const auto report = run.json()[0];
    EXPECT_EQ(report["materials"][outcome], 10000);
    EXPECT_EQ(report["compositions"][outcome], 2000);
  }
}

/// Libraries that have given the last id that an object of a kind can have.
class LastId : public Import, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    write("a.json", R"({"format": "veldra", "tags": ["t"], "layers": ["l"],
      "material_types": ["Straw"], "custom_properties": [{"name": "p", "object_type": "material"}],
      "materials": [{"name": "A", "type": "Straw"}],
      "compositions": [{"name": "W", "layers": [{"material": "A", "thickness": 1}]}]})");
    must({"create", "a.lib"});
    must({"import", "b.lib", "a.json"});
  }

  void set_last_id(const std::string& id) {
    const std::string table = GetParam();
    PlainDatabase(path("a.lib"))
        .execute("DELETE FROM sqlite_sequence WHERE name = '" + table +
                 "'; INSERT INTO sqlite_sequence VALUES ('" + table + "', " + id + ")");
  }
};

TEST_P(LastId, was_given_is_told_and_nothing_is_done) {
  // That of an object, and that of a row.
  for (const char* last : {"4294967294", "9223372036854775807"}) {
    set_last_id(last);
    const auto before = dump(path("a.lib"));
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"import", "a.lib", "a.json"},
          std::vector<std::string>{"copy", "b.lib", "a.lib", "--all"}}) {
      const auto run = veldra(arguments);
      EXPECT_EQ(run.status, 1);
      EXPECT_EQ(run.out, "");
      EXPECT_EQ(run.err,
                "veldra: 'a.lib': the library has no id left for another object of a kind\n");
      EXPECT_EQ(dump(path("a.lib")), before);
    }
  }
}

TEST_P(LastId, can_be_given) {
  set_last_id("4294967293");
  must({"copy", "b.lib", "a.lib", "--all"});
  EXPECT_EQ(veldra({"copy", "a.lib", "b.lib", "--all", "--json"}).status, 0);
  const std::string table = GetParam();
  EXPECT_EQ(PlainDatabase(path("a.lib")).value("SELECT max(id) FROM " + table), "4294967294");
  must({"show", "a.lib", "composition", "W"});
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, LastId,
                         testing::Values("Tag", "MaterialType", "Layer", "CustomProperty",
                                         "Material", "Composition"));

struct WrongNumber {
  const char* source;
  const char* object;
  const char* sentence;
};

void PrintTo(const WrongNumber& wrong, std::ostream* out) {
  *out << wrong.object << ": " << wrong.sentence;
}

/// Numbers that `check` finds fault with when they are in a library.
class WrongNumbers : public Import, public testing::WithParamInterface<WrongNumber> {
 protected:
  void SetUp() override { write("a.txt", GetParam().source); }

  std::string sentence() const {
    return "veldra: 'a.txt', line 2: " + std::string(GetParam().object) + ": " +
           GetParam().sentence + "\n";
  }
};

TEST_P(WrongNumbers, are_told_with_source_and_object) {
  const auto run = veldra({"import", "a.lib", "a.txt"});
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(run.err, sentence());
  EXPECT_THAT(veldra({"check", "a.lib"}).out, HasSubstr(std::string(GetParam().object) + ": "));
}

TEST_P(WrongNumbers, are_not_imported_by_a_strict_import) {
  for (const char* dry : {"--json", "--dry-run"}) {
    const auto run = veldra({"import", "a.lib", "a.txt", "--strict", dry});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, sentence() + "veldra: nothing is imported, because there is a problem\n");
  }
  EXPECT_FALSE(exists("a.lib"));
}

#define IN_CATALOGUE(objects) \
  R"({"format": "veldra", )"  \
  "\n" objects "}"

INSTANTIATE_TEST_SUITE_P(
    OfMaterials, WrongNumbers,
    testing::Values(
        WrongNumber{IN_CATALOGUE(R"("materials": [{"name": "A", "thicknesses": [-5, 3]}])"),
                    "material 'A'", "a thickness is negative"},
        WrongNumber{IN_CATALOGUE(R"("materials": [{"name": "A", "thicknesses": [0]}])"),
                    "material 'A'", "the thickness 0 is not greater than 0"},
        WrongNumber{IN_CATALOGUE(R"("materials": [{"name": "A", "custom_values":
                                    {"Thermal conductivity [W/(m K)]": -1}}])"),
                    "material 'A'", "its thermal conductivity is not greater than 0: '-1'"},
        WrongNumber{IN_CATALOGUE(R"("materials": [{"name": "A", "custom_values":
                                    {"Thermal conductivity [W/(m K)]": "good"}}])"),
                    "material 'A'",
                    "its thermal conductivity is no number that can be used: 'good'"},
        WrongNumber{"\nMaterial, A, Rough, 0, 1, 1, 1;", "material 'A'",
                    "the thickness 0 is not greater than 0"},
        WrongNumber{"\nMaterial, A, Rough, 0.1, -1, 1, 1;", "material 'A'",
                    "its thermal conductivity is not greater than 0: '-1'"}));

#define IN_COMPOSITION(rest)                             \
  IN_CATALOGUE(R"("compositions": [{"name": "W", )" rest \
               R"(}], "materials": [{"name": "A", "type": "Stone"}])")

INSTANTIATE_TEST_SUITE_P(
    OfCompositions, WrongNumbers,
    testing::Values(
        WrongNumber{IN_COMPOSITION(R"("layers": [{"material": "A", "thickness": 1},
                                                 {"material": "A", "thickness": -1}])"),
                    "composition 'W'", "the thickness of layer 2 is negative"},
        WrongNumber{IN_COMPOSITION(R"("layers": [{"material": "A", "thickness": 0}])"),
                    "composition 'W'", "the thickness 0 of layer 1 is not greater than 0"},
        WrongNumber{IN_COMPOSITION(R"("variable_layer": 0, "variable_layer_min_thickness": -2,
                                      "layers": [{"material": "A", "thickness": 1}])"),
                    "composition 'W'", "the least thickness of the variable layer is negative"},
        WrongNumber{IN_COMPOSITION(R"("variable_layer": 0, "variable_layer_max_thickness": 2,
                                      "variable_layer_min_thickness": 3,
                                      "layers": [{"material": "A", "thickness": 1}])"),
                    "composition 'W'",
                    "the greatest thickness of the variable layer is less than the least"},
        WrongNumber{IN_COMPOSITION(R"("variable_layer": 7,
                                      "layers": [{"material": "A", "thickness": 1}])"),
                    "composition 'W'", "the variable layer 8 is none of its 1 layers"}));

}  // namespace
}  // namespace veldra_tests
