// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <sys/stat.h>

namespace veldra_tests {
namespace {

/// A library, and scripts in the place of an editor.
class EditJson : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material, Brick, Rough, 0.24, 1, 1800, 1000; Material, Wool, Rough, 0.1, 0.04, 1, 1;"
          "Construction, Wall, Brick;");
    must({"import", "a.lib", "a.idf", "--tag", "t"});
    must({"set", "a.lib", "material:Brick", "manufacturer=Smith"});
  }

  /// Runs the command with an editor that does this to the file "$1".
  Outcome edit(const std::string& script, const std::string& arguments) const {
    write("editor", "#!/bin/sh\n" + script + "\n");
    ::chmod(path("editor").c_str(), 0700);
    return shell("mkdir -p tmp && TMPDIR=" + path("tmp") + " VISUAL= EDITOR=" + path("editor") +
                 " veldra edit a.lib " + arguments);
  }

  void expect_unchanged(const std::string& script, const std::string& arguments,
                        const std::string& sentence) const {
    const auto before = read("a.lib");
    const auto run = edit(script, arguments);
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(sentence));
    EXPECT_TRUE(read("a.lib") == before);
  }

  nlohmann::json shown(const std::string& kind, const std::string& name) const {
    return must({"show", "a.lib", kind, name, "--json"}).json();
  }
};

TEST_F(EditJson, changes_what_the_editor_has_changed) {
  const auto run = edit("sed -i s/Smith/Jones/ \"$1\"", "material:Brick");
  EXPECT_EQ(run.out, "material  Brick  changed\n    manufacturer: Smith -> Jones\n") << run.err;
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(shown("material", "Brick")["manufacturer"], "Jones");
  EXPECT_THAT(names("tmp"), IsEmpty());
}

TEST_F(EditJson, writes_nothing_where_nothing_was_changed) {
  const auto before = read("a.lib");
  const auto run = edit("true", "material:Brick");
  EXPECT_EQ(run.out, "Nothing was changed.\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(read("a.lib") == before);
  EXPECT_THAT(names("tmp"), IsEmpty());
  EXPECT_EQ(edit("true", "material:Brick --json").json(), nlohmann::json::array());
}

TEST_F(EditJson, of_a_value_that_nobody_can_compute_with_is_refused) {
  expect_unchanged("sed -i 's/\"1800\"/\"-3\"/' \"$1\"", "material:Brick",
                   "material 'Brick': its 'Density [kg/m3]' is less than 0: '-3'");
  expect_unchanged("sed -i 's/\"thickness\": [0-9.]*/\"thickness\": -1/' \"$1\"",
                   "composition:Wall", "composition 'Wall': the thickness of layer 1");
}

TEST_F(EditJson, without_its_bracket_is_no_json) {
  expect_unchanged("sed -i s/{// \"$1\"", "material:Brick", "line 1: this is no JSON");
}

TEST_F(EditJson, knows_a_renamed_object_again) {
  const auto id = shown("material", "Brick")["id"];
  const auto run = edit("sed -i s/Brick/Clinker/ \"$1\"", "material:Brick");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(shown("material", "Clinker")["id"], id);
  EXPECT_EQ(shown("composition", "Wall")["layers"][0]["material"], "Clinker");
}

TEST_F(EditJson, gives_a_field_that_is_removed_its_default) {
  EXPECT_EQ(edit("sed -i /manufacturer/d \"$1\"", "material:Brick").status, 0);
  EXPECT_FALSE(shown("material", "Brick").contains("manufacturer"));
}

TEST_F(EditJson, takes_all_that_a_filter_selects) {
  const auto run = edit("sed -i 's/\"type\": \"[A-Za-z:]*\"/\"mark\": \"m\"/' \"$1\"",
                        "materials --where 'density > 0' --json");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.json(), SizeIs(2));
  EXPECT_EQ(shown("material", "Wool")["mark"], "m");
}

TEST_F(EditJson, of_a_composition_takes_any_material_of_the_library) {
  const auto run =
      edit("sed -i 's/\"material\": \"Brick\"/\"material\": \"Wool\"/' \"$1\"", "composition:Wall");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(shown("composition", "Wall")["layers"][0]["material"], "Wool");
  expect_unchanged("sed -i 's/Wool/Felt/' \"$1\"", "composition:Wall",
                   "there is no material 'Felt'");
}

TEST_F(EditJson, does_not_hold_the_library_meanwhile) {
  const auto run = edit("\"" + std::string(VELDRA_PROGRAM) +
                            "\" set a.lib material:Wool cost=3 >/dev/null; sed -i s/Smith/Jones/ "
                            "\"$1\"",
                        "material:Brick");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(shown("material", "Wool")["cost"], "3");
  EXPECT_EQ(shown("material", "Brick")["manufacturer"], "Jones");
}

TEST_F(EditJson, refuses_an_object_that_somebody_else_has_changed_meanwhile) {
  const auto run = edit("\"" + std::string(VELDRA_PROGRAM) +
                            "\" set a.lib material:Brick cost=3 >/dev/null; sed -i s/Smith/Jones/ "
                            "\"$1\"",
                        "material:Brick");
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("somebody else has changed meanwhile what was edited: material "
                                 "'Brick'"));
  EXPECT_EQ(shown("material", "Brick")["manufacturer"], "Smith");
}

TEST_F(EditJson, keeps_what_cannot_be_applied_and_tells_where) {
  expect_unchanged("echo '{' >> \"$1\"", "material:Brick", "what was edited is kept in '");
  ASSERT_THAT(names("tmp"), SizeIs(1));
  EXPECT_THAT(read("tmp/" + names("tmp")[0] + "/veldra.json"), EndsWith("{\n"));
}

TEST_F(EditJson, names_the_line_of_what_is_wrong) {
  expect_unchanged("sed -i '2s/.*/ x/' \"$1\"", "material:Brick", "line 2: this is no proper JSON");
  expect_unchanged("sed -i s/manufacturer/maker/ \"$1\"", "material:Brick",
                   "material 'Brick': 'maker' is not known");
}

TEST_F(EditJson, takes_no_objects_in_and_none_away) {
  expect_unchanged("printf '{\"format\": \"veldra\", \"version\": 1, \"materials\": []}' > \"$1\"",
                   "material:Brick", "it has not just the materials that were to be edited");
  expect_unchanged("sed -i 's/\"materials\": .*/\"materials\": [{\"name\": \"New\"},/' \"$1\"",
                   "material:Brick", "it has not just the materials that were to be edited");
}

TEST_F(EditJson, refuses_a_name_that_another_object_has) {
  expect_unchanged("sed -i 's/\"Brick\"/\"Wool\"/' \"$1\"", "material:Brick",
                   "the library has another one of that name");
}

TEST_F(EditJson, hides_the_file_from_others) {
  edit("stat -c %a \"$(dirname \"$1\")\" \"$1\" > rights", "material:Brick");
  EXPECT_EQ(read("rights"), "700\n600\n");
}

TEST_F(EditJson, tells_what_is_wrong_with_the_editor) {
  expect_unchanged("exit 3", "material:Brick", "editor' ended with status 3");
  EXPECT_THAT(names("tmp"), IsEmpty());
  expect_unchanged("kill -9 $$", "material:Brick", "editor' was ended");
  const auto missing = shell("VISUAL= EDITOR=./no-editor veldra edit a.lib material:Brick");
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.err, HasSubstr("the editor './no-editor' cannot be started"));
  const auto none = shell("VISUAL= EDITOR= veldra edit a.lib material:Brick");
  EXPECT_EQ(none.err, "veldra: neither $VISUAL nor $EDITOR names an editor\n");
}

TEST_F(EditJson, starts_the_editor_of_visual_with_its_arguments_and_without_a_shell) {
  write("editor", "#!/bin/sh\nprintf '%s|' \"$@\" > arguments\n");
  ::chmod(path("editor").c_str(), 0700);
  const auto run =
      shell("VISUAL='./editor  -w $HOME;x' EDITOR=false veldra edit a.lib material:Brick");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(read("arguments"), StartsWith("-w|$HOME;x|"));
}

TEST_F(EditJson, tries_and_keeps_backups_like_all_commands_that_change_a_library) {
  const auto before = exported("a.lib");
  const auto tried = edit("sed -i s/Smith/Jones/ \"$1\"", "material:Brick --dry-run");
  EXPECT_THAT(tried.out, EndsWith("Nothing was written, because this was a dry run.\n"));
  EXPECT_EQ(exported("a.lib"), before);
  edit("sed -i s/Smith/Jones/ \"$1\"", "material:Brick --backup kept.lib");
  EXPECT_EQ(exported("kept.lib"), before);
  EXPECT_NE(exported("a.lib"), before);
}

TEST_F(EditJson, is_for_materials_and_compositions) {
  expect_unchanged("true", "type:Generic", "only materials and compositions can be edited as JSON");
  EXPECT_EQ(shell("EDITOR=true veldra edit a.lib material:Brick cost=5").status, 2);
}

}  // namespace
}  // namespace veldra_tests
