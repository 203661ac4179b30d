// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

/// A library with a gap of 0.1, and a source with one of 0.2 and a wall of it.
class Conflict : public ProgramTest {
 protected:
  void SetUp() override {
    write("old.idf", "Material:AirGap, Gap, 0.1;");
    write("new.idf", "Material:AirGap, Gap, 0.2; Construction, Wall, Gap;");
    must({"import", "a.lib", "old.idf"});
  }

  nlohmann::json imported(const std::string& policy) {
    return must({"import", "a.lib", "new.idf", "--on-conflict", policy, "--json"}).json()[0];
  }
  std::string resistance(const std::string& name) {
    return must({"show", "a.lib", "material", name, "--json"})
        .json()["custom_values"]["Thermal resistance [m2 K/W]"];
  }
  std::string wall_material() {
    return must({"show", "a.lib", "composition", "Wall", "--json"}).json()["layers"][0]["material"];
  }
  /// The same import again finds everything equal and changes no row.
  void expect_no_more_changes(const std::string& policy) {
    const auto before = dump(path("a.lib"));
    const auto report = imported(policy);
    EXPECT_EQ(report["materials"]["equal"].get<int>() + report["materials"]["kept"].get<int>(), 1);
    EXPECT_EQ(report["compositions"]["equal"], 1);
    EXPECT_EQ(dump(path("a.lib")), before);
  }
};

TEST_F(Conflict, fails_by_default_and_changes_nothing) {
  const auto before = dump(path("a.lib"));
  const auto run = veldra({"import", "a.lib", "new.idf"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("'Gap'"));
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(Conflict, use_keeps_what_is_there) {
  EXPECT_EQ(imported("use")["materials"]["kept"], 1);
  EXPECT_EQ(resistance("Gap"), "0.1");
  EXPECT_EQ(wall_material(), "Gap");
  expect_no_more_changes("use");
}

TEST_F(Conflict, overwrite_changes_what_is_there) {
  EXPECT_EQ(imported("overwrite")["materials"]["changed"], 1);
  EXPECT_EQ(resistance("Gap"), "0.2");
  EXPECT_EQ(wall_material(), "Gap");
  expect_no_more_changes("overwrite");
}

TEST_F(Conflict, rename_puts_the_new_one_beside_the_old_one) {
  EXPECT_EQ(imported("rename")["materials"]["renamed"], 1);
  EXPECT_EQ(resistance("Gap"), "0.1");
  EXPECT_EQ(resistance("Gap (2)"), "0.2");
  EXPECT_EQ(wall_material(), "Gap (2)");
  expect_no_more_changes("rename");
}

TEST_F(Conflict, equal_objects_are_none_whatever_the_file_is_called) {
  write("copy.idf", "Material:AirGap, Gap, 0.1;");
  const auto report = must({"import", "a.lib", "copy.idf", "--json"}).json()[0];
  EXPECT_EQ(report["materials"]["tagged"], 1);
  EXPECT_EQ(count("a.lib", "materials"), 1U);
}

TEST_F(Conflict, between_sources_is_settled_like_one_with_the_library) {
  EXPECT_EQ(veldra({"import", "b.lib", "old.idf", "new.idf"}).status, 1);
  EXPECT_FALSE(exists("b.lib"));
  must({"import", "b.lib", "old.idf", "new.idf", "--on-conflict", "rename"});
  EXPECT_EQ(
      must({"show", "b.lib", "composition", "Wall", "--json"}).json()["layers"][0]["material"],
      "Gap (2)");
}

/// A source whose names ignore case, with a gap that is written in another case.
class OtherCase : public Conflict {
 protected:
  void SetUp() override {
    Conflict::SetUp();
    write("same.idf", "Material:AirGap, GAP, 0.1; Construction, Wall, gAP;");
    write("other.idf", "Material:AirGap, GAP, 0.2; Construction, Wall, gAP;");
  }
};

TEST_F(OtherCase, is_equal_if_all_else_is) {
  const auto report = must({"import", "a.lib", "same.idf", "--tag", "old.idf", "--json"}).json()[0];
  EXPECT_EQ(report["materials"]["equal"], 1);
  EXPECT_EQ(count("a.lib", "materials"), 1U);
  EXPECT_EQ(wall_material(), "Gap");
}

TEST_F(OtherCase, is_a_conflict_if_it_differs) {
  const auto run = veldra({"import", "a.lib", "other.idf"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("a material 'GAP' already, written 'Gap', which differs"));
}

TEST_F(OtherCase, is_the_stored_one_for_use) {
  must({"import", "a.lib", "other.idf", "--on-conflict", "use"});
  EXPECT_EQ(resistance("Gap"), "0.1");
  EXPECT_EQ(wall_material(), "Gap");
}

TEST_F(OtherCase, is_overwritten_under_the_stored_spelling) {
  must({"import", "a.lib", "other.idf", "--on-conflict", "overwrite"});
  EXPECT_EQ(count("a.lib", "materials"), 1U);
  EXPECT_EQ(resistance("Gap"), "0.2");
  EXPECT_EQ(wall_material(), "Gap");
}

TEST_F(OtherCase, gets_a_new_name_for_rename) {
  must({"import", "a.lib", "other.idf", "--on-conflict", "rename"});
  EXPECT_EQ(resistance("Gap"), "0.1");
  EXPECT_EQ(resistance("GAP (2)"), "0.2");
  EXPECT_EQ(wall_material(), "GAP (2)");
}

TEST_F(OtherCase, counts_for_names_of_libraries) {
  write("own.json", R"({"format": "veldra", "materials": [{"name": "GAP"}]})");
  EXPECT_EQ(must({"import", "a.lib", "own.json", "--json"}).json()[0]["materials"]["added"], 1);
}

TEST_F(Conflict, of_one_object_is_decided_for_it_alone) {
  write("two.idf", "Material:AirGap, Gap, 0.2; Material:AirGap, Gap2, 0.2;");
  write("three.idf", "Material:AirGap, Gap, 0.3; Material:AirGap, Gap2, 0.3;");
  must({"import", "b.lib", "two.idf"});
  must({"import", "b.lib", "three.idf", "--on-conflict", "use", "--on-conflict",
        "material:Gap2=overwrite"});
  EXPECT_EQ(must({"show", "b.lib", "material", "Gap", "--json"})
                .json()["custom_values"]["Thermal resistance [m2 K/W]"],
            "0.2");
  EXPECT_EQ(must({"show", "b.lib", "material", "Gap2", "--json"})
                .json()["custom_values"]["Thermal resistance [m2 K/W]"],
            "0.3");
}

TEST_F(Conflict, names_each_object_and_each_field_that_changes) {
  const auto object = imported("overwrite")["objects"][0];
  EXPECT_EQ(object["name"], "Gap");
  EXPECT_EQ(object["outcome"], "changed");
  EXPECT_EQ(object["changes"][0].dump(),
            R"({"field":"custom_values.Thermal resistance [m2 K/W]","new":"0.2","old":"0.1"})");
}

/// Sources in the program's own format that differ in one value.
class Difference : public ProgramTest {
 protected:
  void expect_conflict(const std::string& old_source, const std::string& new_source) {
    write("old.json", old_source);
    write("new.json", new_source);
    must({"import", "a.lib", "old.json"});
    const auto before = dump(path("a.lib"));
    const auto run = veldra({"import", "a.lib", "new.json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_EQ(dump(path("a.lib")), before);
    EXPECT_EQ(veldra({"import", "b.lib", "old.json", "new.json"}).status, 1);
    must({"import", "a.lib", "new.json", "--on-conflict", "overwrite"});
    must({"import", "a.lib", "new.json"});
    EXPECT_EQ(veldra({"import", "a.lib", "old.json"}).status, 1);
  }

  static std::string material(const std::string& rest) {
    return R"({"format": "veldra", "materials": [{"name": "Oak")" + rest + "}]}";
  }
  static std::string composition(const std::string& rest) {
    return R"({"format": "veldra", "materials": [{"name": "Oak"}], "compositions": [{"name":
           "Floor", "layers": [{"material": "Oak", "thickness": 20}, {"material": "Oak",
           "thickness": 30}])" +
           rest + "}]}";
  }
};

TEST_F(Difference, of_tags_alone_is_none) {
  write("a.json", material(R"(, "tags": ["a"])"));
  write("b.json", material(R"(, "tags": ["b"])"));
  must({"import", "a.lib", "a.json"});
  const auto report = must({"import", "a.lib", "b.json", "--json"}).json()[0];
  EXPECT_EQ(report["materials"]["tagged"], 1);
  EXPECT_EQ(report["objects"][0]["tags"].dump(), R"(["b"])");
  EXPECT_EQ(must({"show", "a.lib", "material", "Oak", "--json"}).json()["tags"].dump(),
            R"(["a","b"])");
  must({"import", "a.lib", "b.json"});
  write("none.json", material(""));
  EXPECT_EQ(must({"import", "a.lib", "none.json", "--json"}).json()[0]["materials"]["equal"], 1);
}

TEST_F(Difference, of_the_index_of_the_variable_layer_counts) {
  expect_conflict(composition(R"(, "variable_layer": 0)"), composition(R"(, "variable_layer": 1)"));
}

TEST_F(Difference, of_the_least_thickness_of_the_variable_layer_counts) {
  expect_conflict(composition(R"(, "variable_layer": 0, "variable_layer_min_thickness": 10)"),
                  composition(R"(, "variable_layer": 0, "variable_layer_min_thickness": 11)"));
}

TEST_F(Difference, of_the_greatest_thickness_of_the_variable_layer_counts) {
  expect_conflict(composition(R"(, "variable_layer": 0, "variable_layer_max_thickness": 40)"),
                  composition(R"(, "variable_layer": 0, "variable_layer_max_thickness": 41)"));
}

TEST_F(Difference, of_tags_that_are_given_adds_them) {
  write("a.idf", "Material:AirGap, Gap, 0.1; Construction, Wall, Gap;");
  must({"import", "a.lib", "a.idf", "--tag", "x"});
  const auto before = read("a.lib");
  must({"import", "a.lib", "a.idf", "--tag", "x"});
  EXPECT_EQ(read("a.lib"), before);
  const auto report = must({"import", "a.lib", "a.idf", "--tag", "y", "--json"}).json()[0];
  EXPECT_EQ(report["materials"]["tagged"], 1);
  EXPECT_EQ(report["compositions"]["tagged"], 1);
  EXPECT_EQ(must({"show", "a.lib", "composition", "Wall", "--json"}).json()["tags"].dump(),
            R"(["x","y"])");
}

/// Materials with codes, about which the library asks nobody.
class CodeConflict : public ProgramTest {
 protected:
  void SetUp() override {
    write_material("old.json", "Oak", "H-1", "old");
    must({"import", "a.lib", "old.json"});
  }
  void write_material(const std::string& file, const std::string& name, const std::string& code,
                      const std::string& label) {
    write(file, R"({"format": "veldra", "materials": [{"name": ")" + name + R"(", "code": ")" +
                    code + R"(", "label": ")" + label + R"("}]})");
  }
  nlohmann::json oak() { return must({"show", "a.lib", "material", "Oak", "--json"}).json(); }
};

TEST_F(CodeConflict, an_equal_material_is_none) {
  EXPECT_EQ(must({"import", "a.lib", "old.json", "--json"}).json()[0]["materials"]["equal"], 1);
}

TEST_F(CodeConflict, use_and_overwrite_work_with_the_same_code) {
  write_material("new.json", "Oak", "H-1", "new");
  EXPECT_EQ(veldra({"import", "a.lib", "new.json"}).status, 1);
  must({"import", "a.lib", "new.json", "--on-conflict", "use"});
  EXPECT_EQ(oak()["label"], "old");
  must({"import", "a.lib", "new.json", "--on-conflict", "overwrite"});
  EXPECT_EQ(oak()["label"], "new");
  EXPECT_EQ(oak()["code"], "H-1");
}

TEST_F(CodeConflict, an_import_that_fails_after_codes_were_given_up_changes_nothing) {
  write_material("new.json", "Oak", "H-1", "new");
  PlainDatabase(path("a.lib"))
      .execute(
          "CREATE TRIGGER refusal BEFORE UPDATE ON Material WHEN NEW.code IS NOT NULL "
          "BEGIN SELECT RAISE(ABORT, 'refused'); END");
  const auto before = dump(path("a.lib"));
  const auto run = veldra({"import", "a.lib", "new.json", "--on-conflict", "overwrite"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(CodeConflict, a_dry_run_with_the_same_code_tells_of_the_change_and_writes_nothing) {
  write_material("new.json", "Oak", "H-1", "new");
  const auto before = dump(path("a.lib"));
  const auto run =
      must({"import", "a.lib", "new.json", "--on-conflict", "overwrite", "--dry-run", "--json"});
  EXPECT_EQ(run.json()[0]["materials"]["changed"], 1);
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(CodeConflict, materials_that_are_overwritten_may_exchange_their_codes) {
  write("two.json", R"({"format": "veldra", "materials": [{"name": "Oak", "code": "H-1"},
                        {"name": "Pine", "code": "H-2"}]})");
  write("exchanged.json", R"({"format": "veldra", "materials": [{"name": "Oak", "code": "H-2"},
                              {"name": "Pine", "code": "H-1"}]})");
  must({"import", "b.lib", "two.json"});
  must({"import", "b.lib", "exchanged.json", "--on-conflict", "overwrite"});
  EXPECT_EQ(must({"show", "b.lib", "material", "Oak", "--json"}).json()["code"], "H-2");
  EXPECT_EQ(must({"show", "b.lib", "material", "Pine", "--json"}).json()["code"], "H-1");
}

TEST_F(CodeConflict, a_copy_overwrites_a_material_with_the_same_code) {
  write_material("new.json", "Oak", "H-1", "new");
  must({"import", "b.lib", "new.json"});
  must({"copy", "b.lib", "a.lib", "material:Oak", "--on-conflict", "overwrite"});
  EXPECT_EQ(oak()["label"], "new");
  EXPECT_EQ(oak()["code"], "H-1");
}

TEST_F(CodeConflict, a_copy_under_another_name_cannot_have_the_same_code) {
  write_material("new.json", "Oak", "H-1", "new");
  const auto before = dump(path("a.lib"));
  const auto run = veldra({"import", "a.lib", "new.json", "--on-conflict", "rename"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("'Oak' has the code 'H-1', which 'Oak'"));
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(CodeConflict, a_code_of_another_material_is_named_and_nothing_changes) {
  write_material("new.json", "Ash", "H-1", "new");
  const auto before = dump(path("a.lib"));
  const auto run = veldra({"import", "a.lib", "new.json", "--on-conflict", "overwrite"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("'Ash' has the code 'H-1', which 'Oak'"));
  EXPECT_EQ(dump(path("a.lib")), before);
}

/// Materials of one name and one code that differ.
class ClashOfCodes : public ProgramTest {
 protected:
  void SetUp() override {
    write("one.json", source("first"));
    write("two.json", source("second"));
    write("three.json", source("third"));
  }

  static std::string source(const std::string& description) {
    return R"({"format": "veldra", "materials": [
                {"name": "A", "code": "X", "description": ")" +
           description + "\"}]}";
  }

  void expect_sentence(const std::vector<std::string>& arguments, const std::string& sentence) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "veldra: " + sentence + "\n");
  }
};

TEST_F(ClashOfCodes, between_sources_names_file_and_code_though_names_are_changed) {
  const std::string sentence =
      ", line 2: material 'A' has the code 'X', which 'A' of the sources has already";
  expect_sentence({"import", "b.lib", "one.json", "two.json", "--on-conflict", "rename"},
                  "'two.json'" + sentence);
  expect_sentence(
      {"import", "b.lib", "one.json", "two.json", "three.json", "--on-conflict", "rename"},
      "'two.json'" + sentence + "\nveldra: 'three.json'" + sentence +
          "\nveldra: 2 conflicts are to be decided first between the sources");
  EXPECT_FALSE(exists("b.lib"));
}

TEST_F(ClashOfCodes, between_sources_are_told_with_those_of_names) {
  const auto run = veldra({"import", "b.lib", "one.json", "two.json", "three.json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "veldra: 'two.json', line 2: another material 'A' stands in 'one.json' already, which "
            "differs (description: first there, second here)\n"
            "veldra: 'three.json', line 2: another material 'A' stands in 'one.json' already, "
            "which differs (description: first there, third here)\n"
            "veldra: 2 conflicts are to be decided first between the sources; --on-conflict says "
            "what to do\n");
}

TEST_F(ClashOfCodes, with_the_library_names_file_and_code_though_names_are_changed) {
  must({"import", "a.lib", "one.json"});
  must({"import", "b.lib", "two.json"});
  const auto before = dump(path("a.lib"));
  const std::string sentence =
      "'a.lib': material 'A' has the code 'X', which 'A' of the library has already";
  expect_sentence({"import", "a.lib", "two.json", "--on-conflict", "rename"}, sentence);
  expect_sentence({"copy", "b.lib", "a.lib", "--all", "--on-conflict", "rename"}, sentence);
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(Conflict, that_ends_a_command_names_the_library) {
  must({"import", "b.lib", "new.idf"});
  const std::string sentence =
      "veldra: 'a.lib': the library has a material 'Gap' already, which differs "
      "(custom_values.Thermal resistance [m2 K/W]: 0.1 there, 0.2 here); --on-conflict says what "
      "to "
      "do\n";
  EXPECT_EQ(veldra({"import", "a.lib", "new.idf"}).err, sentence);
  EXPECT_EQ(veldra({"copy", "b.lib", "a.lib", "--all"}).err, sentence);
}

}  // namespace
}  // namespace veldra_tests
