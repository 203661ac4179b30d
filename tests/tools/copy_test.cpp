// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

class Copy : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material, Brick, Rough, 0.115, 1, 1800, 1000; Material, Wool, Rough, 0.1, 1, 1, 1;"
          "Construction, Wall, Brick, Wool; Construction, Other, Wool;");
    must({"import", "a.lib", "a.idf"});
    must({"create", "in.lib", "--unit", "in"});
  }

  std::string outcome(const nlohmann::json& list, const std::string& name) {
    for (const auto& entry : list) {
      if (entry["name"] == name) return entry["outcome"];
    }
    return "";
  }
};

TEST_F(Copy, a_selection_brings_what_it_refers_to_in_the_other_unit) {
  const auto list = must({"copy", "a.lib", "in.lib", "composition:Wall", "--json"}).json();
  EXPECT_EQ(outcome(list, "Wall"), "added");
  EXPECT_EQ(outcome(list, "Brick"), "added");
  EXPECT_EQ(outcome(list, "a.idf"), "added");
  EXPECT_EQ(count("in.lib", "compositions"), 1U);
  const auto wall = must({"show", "in.lib", "composition", "Wall", "--json"}).json();
  EXPECT_NEAR(wall["layers"][0]["thickness"].get<double>(), 0.115 / 0.0254, 1e-12);
}

TEST_F(Copy, a_second_copy_takes_everything_as_it_is) {
  must({"copy", "a.lib", "in.lib", "--all"});
  const auto before = dump(path("in.lib"));
  const auto list = must({"copy", "a.lib", "in.lib", "--all", "--json"}).json();
  for (const auto& entry : list) EXPECT_EQ(entry["outcome"], "equal") << entry;
  EXPECT_EQ(dump(path("in.lib")), before);
}

TEST_F(Copy, there_and_back_is_no_conflict) {
  must({"copy", "a.lib", "in.lib", "--all"});
  const auto before = dump(path("a.lib"));
  must({"copy", "in.lib", "a.lib", "composition:Wall", "material:Wool"});
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_F(Copy, an_object_that_differs_is_a_conflict) {
  write("b.idf", "Material, Brick, Rough, 0.24, 1, 1800, 1000;");
  must({"import", "in.lib", "b.idf"});
  const auto before = dump(path("in.lib"));
  const auto run = veldra({"copy", "a.lib", "in.lib", "--all"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("'Brick'"));
  EXPECT_EQ(dump(path("in.lib")), before);
  const auto list =
      must({"copy", "a.lib", "in.lib", "--all", "--on-conflict", "overwrite", "--json"}).json();
  EXPECT_EQ(outcome(list, "Brick"), "changed");
}

TEST_F(Copy, an_object_that_is_not_there_gives_a_sentence) {
  const auto run = veldra({"copy", "a.lib", "in.lib", "material:Gold"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
}

TEST_F(Copy, a_name_may_have_a_colon) {
  library("a.lib")->save(veldra::Tag::create("a:b"));
  must({"copy", "a.lib", "in.lib", "tag:a:b"});
  EXPECT_EQ(must({"show", "in.lib", "tag", "a:b", "--json"}).json()["name"], "a:b");
}

TEST_F(Copy, makes_a_destination_that_is_missing_in_the_unit_of_the_source) {
  must({"copy", "in.lib", "made.lib", "--all"});
  EXPECT_EQ(must({"info", "made.lib", "--json"}).json()["unit"], "in");
  must({"copy", "in.lib", "other.lib", "--all", "--unit", "mm"});
  EXPECT_EQ(must({"info", "other.lib", "--json"}).json()["unit"], "mm");
}

TEST_F(Copy, takes_locale_and_region_into_an_empty_library) {
  must({"create", "de.lib", "--locale", "de_AT", "--region", "AT"});
  must({"copy", "a.lib", "de.lib", "--all"});
  must({"copy", "de.lib", "new.lib", "--all"});
  const auto info = must({"info", "new.lib", "--json"}).json();
  EXPECT_EQ(info["locale"], "de_AT");
  EXPECT_EQ(info["region"], "AT");
  must({"create", "fr.lib", "--locale", "fr"});
  must({"copy", "de.lib", "fr.lib", "--all"});
  EXPECT_EQ(must({"info", "fr.lib", "--json"}).json()["locale"], "fr");
}

TEST_F(Copy, that_fails_makes_no_destination) {
  EXPECT_EQ(veldra({"copy", "a.lib", "made.lib", "material:Gold"}).status, 1);
  EXPECT_FALSE(exists("made.lib"));
}

TEST_F(Copy, a_dry_run_makes_no_destination_and_tells_what_would_be) {
  const auto list =
      must({"copy", "a.lib", "made.lib", "composition:Wall", "--dry-run", "--json"}).json();
  EXPECT_EQ(outcome(list, "Wall"), "added");
  EXPECT_FALSE(exists("made.lib"));
}

TEST_F(Copy, a_dry_run_changes_nothing) {
  const auto before = dump(path("in.lib"));
  const auto run = must({"copy", "a.lib", "in.lib", "composition:Wall", "--dry-run"});
  EXPECT_THAT(run.out, HasSubstr("Nothing was written, because this was a dry run.\n"));
  EXPECT_EQ(dump(path("in.lib")), before);
}

/// Two materials and a build-up of the same names in both libraries, which differ.
class CopyConflicts : public Copy {
 protected:
  void SetUp() override {
    Copy::SetUp();
    write("b.idf",
          "Material, Brick, Rough, 0.24, 1, 1800, 1000; Material, Wool, Rough, 0.1, 2, 1, 1;"
          "Construction, Wall, Brick;");
    must({"import", "b.lib", "b.idf"});
  }
  Outcome copy(const std::vector<std::string>& rest) {
    std::vector<std::string> arguments{"copy", "a.lib", "b.lib", "--all"};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    return veldra(arguments);
  }
};

TEST_F(CopyConflicts, are_all_told_with_the_fields_that_differ) {
  const auto before = dump(path("b.lib"));
  const auto run = copy({});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err,
              HasSubstr("veldra: the library has a material 'Brick' already, which differs "
                        "(thicknesses: 240 there, 115 here)\n"));
  EXPECT_THAT(run.err,
              HasSubstr("'Wool' already, which differs "
                        "(custom_values.Thermal conductivity [W/(m K)]: 2 there, 1 here)"));
  EXPECT_THAT(run.err, HasSubstr("a composition 'Wall' already"));
  EXPECT_THAT(run.err, HasSubstr("3 conflicts are to be decided first; --on-conflict says what to "
                                 "do\n"));
  EXPECT_EQ(dump(path("b.lib")), before);
}

TEST_F(CopyConflicts, are_among_all_else_in_a_dry_run) {
  const auto run = copy({"--dry-run", "--json"});
  EXPECT_EQ(run.status, 1);
  const auto list = nlohmann::json::parse(run.out);
  EXPECT_EQ(outcome(list, "Brick"), "undecided");
  EXPECT_EQ(outcome(list, "Other"), "added");
}

TEST_F(CopyConflicts, may_be_decided_for_a_kind_and_for_one_object) {
  const auto run = copy({"--on-conflict", "rename", "--on-conflict", "material=use",
                         "--on-conflict", "material:Wool=overwrite", "--json"});
  ASSERT_EQ(run.status, 0) << run.err;
  const auto list = nlohmann::json::parse(run.out);
  EXPECT_EQ(outcome(list, "Brick"), "kept");
  EXPECT_EQ(outcome(list, "Wool"), "changed");
  EXPECT_EQ(outcome(list, "Wall"), "renamed");
}

TEST_F(CopyConflicts, tell_each_field_that_changes) {
  const auto run = copy({"--on-conflict", "overwrite", "--json"});
  for (const auto& entry : nlohmann::json::parse(run.out)) {
    if (entry["name"] != "Brick") continue;
    EXPECT_EQ(entry["changes"][0].dump(), R"({"field":"thicknesses","new":[115.0],"old":[240.0]})");
    EXPECT_EQ(entry["changes"][1].dump(),
              R"({"field":"tags","new":["b.idf","a.idf"],"old":["b.idf"]})");
  }
}

TEST_F(CopyConflicts, tell_each_field_that_changes_as_text) {
  EXPECT_THAT(copy({"--on-conflict", "overwrite"}).out,
              HasSubstr("material     Brick  changed\n    thicknesses: 240 -> 115\n"));
}

TEST_F(CopyConflicts, need_a_policy_that_there_is) {
  for (const auto& [policy, sentence] : std::vector<std::pair<std::string, std::string>>{
           {"none", "'none' is none of fail, use, overwrite, rename"},
           {"tag=use", "'tag' is neither material nor composition"},
           {"material:Brick=x", "'x' is none of fail, use, overwrite, rename"}}) {
    const auto run = copy({"--on-conflict", policy});
    EXPECT_EQ(run.status, 2) << policy;
    EXPECT_THAT(run.err, HasSubstr(sentence)) << policy;
  }
  const auto run = copy({"--on-conflict", "material:Gold=use"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("there is no material 'Gold'"));
}

TEST_F(Copy, more_than_20_objects_are_counted_unless_all_are_wanted) {
  std::string source;
  for (int i = 0; i < 21; ++i) source += "Material:AirGap, Gap" + std::to_string(i) + ", 0.1;";
  write("many.idf", source);
  must({"import", "many.lib", "many.idf"});
  const auto run = must({"copy", "many.lib", "new.lib", "--all"});
  EXPECT_THAT(run.out, HasSubstr("materials      21 added\n"));
  EXPECT_THAT(run.out, Not(HasSubstr("Gap7")));
  const auto all = must({"copy", "many.lib", "new.lib", "--all", "--verbose"});
  EXPECT_THAT(all.out, HasSubstr("material  Gap7                         equal\n"));
}

constexpr const char* assets = R"sql(
  INSERT INTO Asset (id, typeid, name, description) VALUES
    (1, 'veldra::StructuralAsset', 'oak', ''), (2, 'veldra::ThermalAsset', 'oak', ''),
    (3, 'veldra::ThermalAsset', 'ash', '');
  INSERT INTO StructuralAsset (id, subclass) VALUES (1, '');
  INSERT INTO ThermalAsset (id, subclass, source) VALUES (2, '', ''), (3, '', '');
  UPDATE Material SET structural_id = 1, thermal_id = 2 WHERE name = 'Oak';
  UPDATE Material SET thermal_id = 3 WHERE name = 'Ash';
)sql";

/// A library with an oak that has two assets, an ash that has one, and a floor of ash.
class CopyWithAssets : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    const auto floor = veldra::Composition::create("Floor");
    floor->appendLayer({veldra::Material::create("Ash"), veldra::Material::Function::None, 20});
    office->save(floor);
    office->save(veldra::Material::create("Oak"));
    office->save(veldra::Material::create("Pine"));
    PlainDatabase(path("a.lib")).execute(assets);
    must({"create", "b.lib"});
  }
};

TEST_F(CopyWithAssets, tells_how_many_stay_behind) {
  const auto run = veldra({"copy", "a.lib", "b.lib", "--all", "--json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("3 assets"));
  EXPECT_EQ(count("b.lib", "materials"), 3U);
}

TEST_F(CopyWithAssets, counts_those_of_what_was_copied_only) {
  must({"copy", "a.lib", "b.lib", "material:Pine"});
  const auto run = veldra({"copy", "a.lib", "b.lib", "composition:Floor"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, HasSubstr("1 asset "));
}

TEST_F(CopyWithAssets, loses_none_of_a_material_that_is_there_already) {
  veldra({"copy", "a.lib", "b.lib", "--all"});
  must({"copy", "a.lib", "b.lib", "--all"});
}

/// A library of more objects than are told one by one.
class CopyOfMany : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    const auto tag = veldra::Tag::create("north");
    for (int i = 0; i < 25; ++i) {
      const auto material = veldra::Material::create(("Board " + std::to_string(i)).c_str());
      material->code(("B" + std::to_string(i)).c_str());
      material->addTag(tag);
      const auto floor = veldra::Composition::create(("Floor " + std::to_string(i)).c_str());
      floor->appendLayer({material, veldra::Material::Function::None, 20.0 + i});
      office->save(floor);
    }
    office->save(veldra::Layer::create("unused"));
  }

  Outcome copy(const std::string& destination, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"copy", "a.lib", destination, "--all"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return veldra(arguments);
  }

  void change_file(const std::string& statements) {
    PlainDatabase(path("a.lib")).execute(statements);
  }

  /// All ways of copying it tell the same of it, and make no library.
  void expect_refusal(const std::string& sentence) {
    must({"create", "b.lib"});
    const auto before = read("b.lib");
    for (const auto& more : std::vector<std::vector<std::string>>{{}, {"--verbose"}, {"--json"}}) {
      for (const char* destination : {"b.lib", "new.lib"}) {
        const auto run = copy(destination, more);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, "veldra: 'a.lib': " + sentence + "\n");
      }
    }
    EXPECT_EQ(read("b.lib"), before);
    EXPECT_FALSE(exists("new.lib"));
  }
};

constexpr const char* counts_of_many =
    "materials      25 added\ncompositions   25 added\nlayers         1 added\n"
    "tags           1 added\n";

TEST_F(CopyOfMany, into_an_empty_library_is_what_a_plan_of_it_does) {
  const auto at_once = copy("at_once.lib");
  EXPECT_EQ(at_once.status, 0) << at_once.err;
  EXPECT_EQ(at_once.out, counts_of_many);
  for (const auto& entry : copy("planned.lib", {"--json"}).json()) {
    const bool was_there = entry["kind"] == "type";
    EXPECT_EQ(entry["outcome"], was_there ? "equal" : "added") << entry;
  }
  EXPECT_EQ(exported("at_once.lib"), exported("planned.lib"));
  EXPECT_EQ(exported("at_once.lib"), exported("a.lib"));
}

TEST_F(CopyOfMany, into_an_empty_library_of_the_other_unit) {
  must({"create", "in.lib", "--unit", "in"});
  must({"create", "other.lib", "--unit", "in"});
  EXPECT_EQ(copy("in.lib").out, counts_of_many);
  EXPECT_EQ(copy("other.lib", {"--verbose"}).status, 0);
  EXPECT_EQ(exported("in.lib"), exported("other.lib"));
}

TEST_F(CopyOfMany, takes_what_an_empty_library_has_of_tags_as_it_is) {
  library("b.lib")->save(veldra::Tag::create("north"));
  EXPECT_THAT(copy("b.lib").out, Not(HasSubstr("tags")));
  EXPECT_EQ(count("b.lib", "tags"), 1U);
  EXPECT_EQ(count("b.lib", "compositions"), 25U);
}

TEST_F(CopyOfMany, in_a_dry_run_writes_nothing) {
  must({"create", "b.lib"});
  const auto before = read("b.lib");
  for (const char* destination : {"b.lib", "new.lib"}) {
    EXPECT_EQ(copy(destination, {"--dry-run"}).out,
              std::string(counts_of_many) + "Nothing was written, because this was a dry run.\n");
  }
  EXPECT_EQ(read("b.lib"), before);
  EXPECT_FALSE(exists("new.lib"));
}

TEST_F(CopyOfMany, tells_of_policies_for_objects_that_are_not_there) {
  const auto run = copy("new.lib", {"--on-conflict", "material:Gold=use"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("there is no material 'Gold'"));
}

TEST_F(CopyOfMany, tells_how_many_assets_stay_behind) {
  change_file(R"sql(
      INSERT INTO Asset (id, typeid, name, description) VALUES (1, 'veldra::ThermalAsset', '', '');
      INSERT INTO ThermalAsset (id, subclass, source) VALUES (1, '', '');
      UPDATE Material SET thermal_id = 1 WHERE id < 4)sql");
  for (const char* how : {"--dry-run", "--unit=mm"}) {
    const auto run = copy("new.lib", {how});
    EXPECT_EQ(run.status, 3) << how;
    EXPECT_THAT(run.err, HasSubstr("3 assets of the materials are left behind")) << how;
  }
  EXPECT_EQ(copy("new.lib").status, 0);
}

TEST_F(CopyOfMany, leaves_out_what_cannot_be_read_whole) {
  change_file("PRAGMA foreign_keys = OFF; DELETE FROM Material WHERE id = 3");
  for (const char* destination : {"at_once.lib", "planned.lib"}) {
    const bool plans = destination == std::string("planned.lib");
    const auto more = plans ? std::vector<std::string>{"--verbose"} : std::vector<std::string>{};
    const auto run = copy(destination, more);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(count(destination, "materials"), 24U);
    EXPECT_EQ(count(destination, "compositions"), 24U);
  }
  EXPECT_EQ(exported("at_once.lib"), exported("planned.lib"));
}

TEST_F(CopyOfMany, tells_of_a_text_that_is_none_as_one_of_the_source) {
  change_file("UPDATE Material SET description = CAST(x'ff' AS TEXT) WHERE id = 3");
  expect_refusal("the library has a text that is not UTF-8");
}

TEST_F(CopyOfMany, tells_of_names_that_are_there_twice_as_ones_of_the_source) {
  change_file("DROP INDEX Material_name_i; UPDATE Material SET name = 'Board 1' WHERE id > 20");
  expect_refusal("an object has a name that another one has already");
}

TEST_F(CopyOfMany, tells_of_codes_that_are_there_twice_as_ones_of_the_source) {
  change_file("DROP INDEX Material_code_i; UPDATE Material SET code = 'B1' WHERE id > 20");
  expect_refusal("a material has a code that another material has already");
}

TEST_F(CopyOfMany, needs_no_pages_like_those_of_a_new_library) {
  change_file("PRAGMA page_size = 1024; VACUUM");
  EXPECT_EQ(copy("new.lib").out, counts_of_many);
  EXPECT_EQ(exported("new.lib"), exported("a.lib"));
}

TEST_F(CopyOfMany, needs_no_sound_pages_where_objects_can_be_read) {
  change_file("PRAGMA writable_schema = ON; DROP TABLE Asset_tags");
  EXPECT_EQ(copy("new.lib").out, counts_of_many);
}

TEST_F(CopyOfMany, a_second_copy_takes_everything_as_it_is) {
  copy("new.lib");
  const auto before = dump(path("new.lib"));
  EXPECT_EQ(copy("new.lib").out, "materials      25 equal\ncompositions   25 equal\n");
  EXPECT_EQ(dump(path("new.lib")), before);
}

TEST_F(Copy, a_library_is_not_copied_into_itself) {
  EXPECT_EQ(veldra({"copy", "a.lib", "./a.lib", "--all"}).status, 1);
}

}  // namespace
}  // namespace veldra_tests
