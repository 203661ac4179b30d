// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"
#include "support/sanitized.hpp"

#include <algorithm>
#include <chrono>
#include <sstream>

namespace veldra_tests {
namespace {

/// The lines of a text.
std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class Check : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material, Brick, Rough, 0.115, 1, 1800, 1000; Construction, Wall, Brick, Brick;");
    must({"import", "a.lib", "a.idf"});
  }

  /// Changes rows behind the library's back.
  void damage_rows(const std::string& statement) {
    PlainDatabase(path("a.lib")).execute("PRAGMA foreign_keys=OFF; " + statement);
  }
  void expect_finding(const std::string& text) { EXPECT_THAT(findings(), HasSubstr(text)); }

  std::string findings() {
    const auto run = veldra({"check", "a.lib"});
    EXPECT_EQ(run.status, 3) << run.err;
    return run.out;
  }

  void set_conductivity(const std::string& text) {
    damage_rows("UPDATE Material_custom_values SET value = '" + text +
                "' WHERE property_id = (SELECT id FROM CustomProperty WHERE name LIKE 'Thermal "
                "conductivity%')");
  }
};

TEST_F(Check, a_sound_library_has_no_findings) {
  EXPECT_EQ(must({"check", "a.lib", "--json"}).json(), nlohmann::json::array());
}

TEST_F(Check, thicknesses_that_are_not_positive_are_found) {
  damage_rows("UPDATE Composition_layers SET value_thickness = -1 WHERE \"index\" = 1");
  expect_finding("composition 'Wall': the thickness of layer 2 is negative: -1");
  damage_rows("UPDATE Composition_layers SET value_thickness = NULL WHERE \"index\" = 1");
  expect_finding("composition 'Wall': the thickness of layer 2 is not known");
  damage_rows("UPDATE Material_thicknesses SET value = 0");
  expect_finding("material 'Brick': the thickness 0");
}

TEST_F(Check, materials_without_thickness_have_layers_of_none) {
  write("thin.idf",
        "Material:NoMass, R13, Rough, 2.29; Material:AirGap, Gap, 0.15;"
        "Material:InfraredTransparent, IR; WindowMaterial:SimpleGlazingSystem, Window, 1.1, 0.5;"
        "WindowMaterial:Blind:EquivalentLayer, Blind;"
        "Construction, Thin, R13, Gap, IR; Construction, Glass, Window, Blind;");
  must({"import", "thin.lib", "thin.idf"});
  EXPECT_EQ(must({"check", "thin.lib", "--json"}).json(), nlohmann::json::array());
}

TEST_F(Check, a_layer_of_none_is_found_where_its_material_has_a_thickness) {
  damage_rows("UPDATE Composition_layers SET value_thickness = 0 WHERE \"index\" = 0");
  expect_finding("composition 'Wall': the thickness 0 of layer 1");
  damage_rows("DELETE FROM Material_thicknesses");
  expect_finding("composition 'Wall': the thickness 0 of layer 1");
}

TEST_F(Check, indices_that_break_the_rules_are_found) {
  damage_rows("UPDATE Composition SET last_core_layer = 5");
  expect_finding("reaches beyond the 2 layers");
  damage_rows("UPDATE Composition SET last_core_layer = 0, first_core_layer = 1");
  expect_finding("ends before it begins");
  damage_rows("UPDATE Composition SET first_core_layer = 0, structural_layer = 1");
  expect_finding("the structural layer 2 is outside the core");
  damage_rows("UPDATE Composition SET variable_layer = 9");
  expect_finding("the variable layer 10 is none of its 2 layers");
}

TEST_F(Check, texts_that_are_not_utf_8_are_found_with_their_object) {
  damage_rows("UPDATE Material SET label = CAST(x'C3' AS TEXT)");
  expect_finding("material 1: the library has a text that is not UTF-8");
}

TEST_F(Check, what_the_library_finds_is_told_once) {
  damage_rows("UPDATE Composition_layers SET value_thickness = -1 WHERE \"index\" = 1");
  EXPECT_THAT(lines_of(findings()),
              ElementsAre("composition 'Wall': the thickness of layer 2 is negative: -1"));
  damage_rows("UPDATE Composition_layers SET value_thickness = NULL WHERE \"index\" = 1");
  EXPECT_THAT(lines_of(findings()),
              ElementsAre("composition 'Wall': the thickness of layer 2 is not known"));
}

TEST_F(Check, thicknesses_of_a_variable_layer_are_told_once) {
  damage_rows(
      "UPDATE Composition SET variable_layer = 0, variable_layer_min_thickness = -2,"
      "variable_layer_max_thickness = -1");
  EXPECT_THAT(lines_of(findings()),
              ElementsAre("composition 'Wall': the least thickness of the variable layer is "
                          "negative: -2"));
}

TEST_F(Check, thicknesses_of_materials_are_told_once) {
  damage_rows("UPDATE Material_thicknesses SET value = 9e999");
  EXPECT_THAT(lines_of(findings()), ElementsAre("material 'Brick': a thickness is infinite"));
}

TEST_F(Check, conductivities_that_cannot_be_used_are_found) {
  for (const char* text : {"0", "-0.0", "-0.5"}) {
    set_conductivity(text);
    EXPECT_THAT(lines_of(findings()),
                ElementsAre("material 'Brick': its thermal conductivity is not greater than 0: '" +
                            std::string(text) + "'"));
  }
  for (const char* text : {"inf", "-inf", "nan", "1e999", "0,5", "good", "0.5 W"}) {
    set_conductivity(text);
    EXPECT_THAT(lines_of(findings()),
                ElementsAre("material 'Brick': its thermal conductivity is no number that can be "
                            "used: '" +
                            std::string(text) + "'"));
  }
}

TEST_F(Check, conductivities_that_are_numbers_or_not_given_are_no_finding) {
  for (const char* text : {"0.5", " 0.5 ", "1e-3", "400", "", " "}) {
    set_conductivity(text);
    EXPECT_EQ(must({"check", "a.lib", "--json"}).json(), nlohmann::json::array()) << text;
  }
}

TEST_F(Check, conductivities_of_assets_are_found) {
  damage_rows(
      "INSERT INTO Asset VALUES (1, 'veldra::ThermalAsset', 'Wool', '');"
      "INSERT INTO ThermalAsset VALUES (1, '', '', 1, 1, 1, -1)");
  EXPECT_THAT(lines_of(findings()),
              ElementsAre("asset 'Wool': the thermal conductivity is negative: -1"));
}

TEST_F(Check, a_layer_of_which_nothing_is_known_beside_others_is_found) {
  write(
      "b.json",
      R"({"format": "veldra", "version": 1, "materials": [{"name": "Mystery"},)"
      R"({"name": "Brick", "custom_values": {"Thermal conductivity [W/(m K)]": "1"}}],)"
      R"("compositions": [{"name": "Alone", "layers": [{"material": "Mystery", "thickness": 1}]},)"
      R"({"name": "Wall", "layers": [{"material": "Brick", "thickness": 115},)"
      R"({"material": "Mystery", "thickness": 10}]}]})");
  must({"import", "b.lib", "b.json"});
  const auto run = veldra({"check", "b.lib"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.out, HasSubstr("composition 'Wall': layer 2, 'Mystery': it has neither"));
  EXPECT_THAT(run.out, Not(HasSubstr("composition 'Alone': layer")));
}

TEST_F(Check, what_it_finds_in_numbers_is_told_by_an_import) {
  write("b.json", R"({"format": "veldra", "version": 1, "materials": [)"
                  R"({"name": "A", "custom_values": {"Density [kg/m3]": "-5"}}]})");
  const auto strict = veldra({"import", "b.lib", "b.json", "--strict"});
  EXPECT_EQ(strict.status, 1);
  EXPECT_FALSE(exists("b.lib"));
  const auto run = veldra({"import", "b.lib", "b.json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err + run.out, HasSubstr("its 'Density [kg/m3]'"));
  EXPECT_EQ(veldra({"check", "b.lib"}).status, 3);
}

/// They are looked at in parts, in the order of the file.
TEST_F(Check, what_it_finds_of_many_objects_is_in_the_order_of_their_names) {
  PlainDatabase(path("a.lib"))
      .execute(
          "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 1200)"
          "INSERT INTO CustomProperty (name, object_type) SELECT 'p' || (9000 - i), 1 FROM n");
  const auto lines = lines_of(findings());
  ASSERT_EQ(lines.size(), 1200U);
  EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end()));
}

// The address sanitizer takes more addresses than could be left to the program.
#ifndef VELDRA_KEEPS_FREED_MEMORY
TEST_F(Check, of_a_large_library_takes_little_memory) {
  PlainDatabase(path("a.lib"))
      .execute(
          "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 400000)"
          "INSERT INTO Tag (name) SELECT hex(randomblob(100)) FROM n");
  const auto run = shell("ulimit -v 150000; veldra check a.lib");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("Nothing is wrong."));
}

TEST_F(Check, what_is_no_fault_of_the_file_is_no_finding) {
  PlainDatabase(path("a.lib"))
      .execute("INSERT INTO Tag (name) SELECT replace(hex(zeroblob(30000000)), '0', 'a')");
  const auto run = shell("ulimit -v 150000; veldra check a.lib");
  EXPECT_EQ(run.status, 1) << run.out;
  EXPECT_THAT(run.out, testing::IsEmpty());
  EXPECT_THAT(run.err, HasSubstr("there is not enough memory"));
}
#endif

TEST_F(Check, references_to_nothing_are_found) {
  damage_rows("UPDATE Material SET type = 999");
  expect_finding(
      "library: 1 material cannot be read, because what they refer to is not there, or because "
      "of ids that no object can have");
}

TEST_F(Check, ids_that_no_object_can_have_are_found_with_their_cause) {
  damage_rows("INSERT INTO Tag VALUES (4294967296, 'large'), (-1, 'negative')");
  EXPECT_THAT(lines_of(findings()),
              ElementsAre("file: The tag \"negative\" has the id -1, which no object can have",
                          "file: The tag \"large\" has the id 4294967296, which no object can "
                          "have",
                          "file: No id is left for \"Tag\": the last one was 4294967296"));
}

TEST_F(Check, objects_behind_a_wide_gap_are_looked_at_as_well) {
  damage_rows(
      "INSERT INTO Tag VALUES (3000, CAST(x'C3' AS TEXT)), (4000, 'far'),"
      " (90000000, CAST(x'E4' AS TEXT))");
  EXPECT_THAT(lines_of(findings()),
              ElementsAre("tag 3000: the library has a text that is not UTF-8",
                          "tag 90000000: the library has a text that is not UTF-8"));
}

TEST_F(Check, broken_foreign_keys_are_found) {
  damage_rows("UPDATE Material SET type = 999");
  expect_finding(
      "file: \"Material\", row 1: \"type\" refers to a row of \"MaterialType\" that is not there");
}

TEST_F(Check, a_damaged_database_is_found) {
  damage_rows(
      "PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = (SELECT rootpage FROM "
      "sqlite_master WHERE name = 'Layer_name_i') WHERE name = 'MaterialType_name_i'");
  expect_finding("file: row 1 missing from index MaterialType_name_i");
}

TEST_F(Check, a_changed_schema_is_found) {
  damage_rows("DROP INDEX Tag_name_i");
  expect_finding("file: \"Tag\" lacks the unique index \"Tag_name_i\" on \"name\"");
}

TEST_F(Check, kinds_that_cannot_be_read_do_not_hide_the_rest) {
  damage_rows("DROP TABLE Tag; UPDATE Composition_layers SET value_thickness = -1");
  expect_finding("file: The file lacks the table \"Tag\"");
  expect_finding("tags: they cannot be read, because \"Tag\" is missing");
  expect_finding("composition 'Wall': the thickness of layer 1 is negative: -1");
}

TEST_F(Check, a_view_without_end_in_the_place_of_a_table_is_found_and_not_read) {
  const std::string rest =
      " AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i AS id,"
      "'x' AS name FROM n";
  for (const std::string table : {"Layer", "Tag", "Material"}) {
    const auto copy = table + ".lib";
    write(copy, read("a.lib"));
    PlainDatabase(path(copy))
        .execute(
            "PRAGMA foreign_keys=OFF; PRAGMA legacy_alter_table=ON;"
            "DROP TABLE " +
            table + "; CREATE VIEW " + table + rest);
    const auto begin = std::chrono::steady_clock::now();
    const auto run = veldra({"check", copy});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(run.status, 3);
    const std::string finding =
        "file: The file has the view \"" + table + "\" where the table \"" + table + "\" belongs";
    const std::string reason = "they cannot be read, because \"" + table + "\" is a view";
    EXPECT_THAT(lines_of(run.out), testing::IsSupersetOf({finding, "materials: " + reason,
                                                          "compositions: " + reason}));
  }
}

TEST_F(Check, findings_come_as_json_too) {
  damage_rows("UPDATE Material_thicknesses SET value = 0");
  const auto run = veldra({"check", "a.lib", "--json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(run.json()[0]["object"], "material 'Brick'");
}

TEST_F(Check, the_help_tells_the_exit_status) {
  EXPECT_THAT(must({"check", "--help"}).out, HasSubstr("the exit status is 3 if anything is"));
}

TEST_F(Check, an_error_is_no_finding) { EXPECT_EQ(veldra({"check", "missing.lib"}).status, 1); }

TEST_F(Check, a_text_that_is_not_utf_8_gives_other_commands_a_sentence) {
  damage_rows("UPDATE Material SET label = CAST(x'C3' AS TEXT)");
  const auto run = veldra({"list", "a.lib", "materials"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
}

TEST_F(Check, a_library_of_a_version_to_come_gives_a_sentence) {
  damage_rows("UPDATE schema_version SET version = 999999");
  const auto run = veldra({"info", "a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("version"));
}

}  // namespace
}  // namespace veldra_tests
