#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

using testing::HasSubstr;

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
  void expect_finding(const std::string& text) {
    const auto run = veldra({"check", "a.lib"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.out, HasSubstr(text));
  }
};

TEST_F(Check, a_sound_library_has_no_findings) {
  EXPECT_EQ(must({"check", "a.lib", "--json"}).json(), nlohmann::json::array());
}

TEST_F(Check, thicknesses_that_are_not_positive_are_found) {
  damage_rows("UPDATE Composition_layers SET value_thickness = -1 WHERE \"index\" = 1");
  expect_finding("composition 'Wall': the thickness -1 of layer 2");
  damage_rows("UPDATE Composition_layers SET value_thickness = NULL WHERE \"index\" = 1");
  expect_finding("composition 'Wall': the thickness of layer 2 is not known");
  damage_rows("UPDATE Material_thicknesses SET value = 0");
  expect_finding("material 'Brick': the thickness 0");
}

TEST_F(Check, materials_without_thickness_have_layers_of_none) {
  write("thin.idf",
        "Material:NoMass, R13, Rough, 2.29; Material:AirGap, Gap, 0.15;"
        "Material:InfraredTransparent, IR; WindowMaterial:SimpleGlazingSystem, Window, 1.1, 0.5;"
        "WindowMaterial:Blind, Blind, Horizontal;"
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

TEST_F(Check, references_to_nothing_are_found) {
  damage_rows("UPDATE Material SET type = 999");
  expect_finding("cannot be read");
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
  expect_finding("tags: ");
}

TEST_F(Check, findings_come_as_json_too) {
  damage_rows("UPDATE Material_thicknesses SET value = 0");
  const auto run = veldra({"check", "a.lib", "--json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(run.json()[0]["object"], "material 'Brick'");
}

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
