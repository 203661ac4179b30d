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
  EXPECT_EQ(outcome(list, "Wall"), "inserted");
  EXPECT_EQ(outcome(list, "Brick"), "inserted");
  EXPECT_EQ(outcome(list, "a.idf"), "inserted");
  EXPECT_EQ(count("in.lib", "compositions"), 1U);
  const auto wall = must({"show", "in.lib", "composition", "Wall", "--json"}).json();
  EXPECT_NEAR(wall["layers"][0]["thickness"].get<double>(), 0.115 / 0.0254, 1e-12);
}

TEST_F(Copy, a_second_copy_takes_everything_as_it_is) {
  must({"copy", "a.lib", "in.lib", "--all"});
  const auto before = dump(path("in.lib"));
  const auto list = must({"copy", "a.lib", "in.lib", "--all", "--json"}).json();
  for (const auto& entry : list) EXPECT_EQ(entry["outcome"], "existing") << entry;
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
  EXPECT_EQ(outcome(list, "Brick"), "updated");
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

TEST_F(Copy, a_library_is_not_copied_into_itself) {
  EXPECT_EQ(veldra({"copy", "a.lib", "./a.lib", "--all"}).status, 1);
}

}  // namespace
}  // namespace veldra_tests
