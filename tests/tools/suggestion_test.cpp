// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

class Suggestion : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    for (const char* name : {"Brick", "Block", "Lehmputz / Clay plaster"}) {
      office->save(veldra::Material::create(name));
    }
    office->save(veldra::Composition::create("Cavity wall"));
    office->save(veldra::Tag::create("Außenwand"));
    must({"create", "b.lib"});
  }

  std::string error(const std::vector<std::string>& arguments) const {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, is_one_sentence());
    return run.err;
  }
};

TEST_F(Suggestion, of_a_name_comes_in_every_command_that_looks_for_objects) {
  const std::string sentence =
      "veldra: 'a.lib': there is no material 'Brik' in the library; did you mean 'Brick'?\n";
  EXPECT_EQ(error({"show", "a.lib", "material", "Brik"}), sentence);
  EXPECT_EQ(error({"where-used", "a.lib", "material", "Brik"}), sentence);
  EXPECT_EQ(error({"remove", "a.lib", "materials", "Brik"}), sentence);
  EXPECT_EQ(error({"copy", "a.lib", "b.lib", "material:Brik"}), sentence);
  EXPECT_EQ(error({"draw", "a.lib", "Cavity wal"}),
            "veldra: 'a.lib': there is no composition 'Cavity wal' in the library; did you mean "
            "'Cavity wall'?\n");
}

TEST_F(Suggestion, of_a_tag_or_a_type_comes_with_all_that_there_are) {
  library("a.lib")->save(veldra::Tag::create("innen"));
  const std::string sentence =
      "veldra: 'a.lib': there is no tag 'aussenwand' in the library; did you mean 'Außenwand'? "
      "there are Außenwand, innen\n";
  EXPECT_EQ(error({"list", "a.lib", "materials", "--tag", "aussenwand"}), sentence);
  EXPECT_EQ(error({"remove", "a.lib", "tags", "aussenwand"}), sentence);
  EXPECT_THAT(error({"list", "a.lib", "materials", "--type", "Mansory"}),
              AllOf(HasSubstr("there is no type 'Mansory' in the library; did you mean 'Masonry'? "
                              "there are "),
                    HasSubstr(", Generic, "), HasSubstr(", Wood")));
}

TEST_F(Suggestion, of_one_of_many_tags_begins_with_the_nearest) {
  const auto office = library("a.lib");
  for (int i = 0; i < 25; ++i) {
    office->save(veldra::Tag::create(String(("A" + std::to_string(i)).c_str())));
  }
  EXPECT_THAT(error({"list", "a.lib", "materials", "--tag", "aussenwand"}),
              AllOf(HasSubstr("there are Außenwand, A0, A1, A10, A11"), EndsWith("and 6 more\n")));
  EXPECT_THAT(error({"list", "a.lib", "materials", "--where", "tag = aussenwan"}),
              AllOf(HasSubstr("there are Außenwand, "), EndsWith("and 6 more\n")));
}

TEST_F(Suggestion, of_a_kind_comes_in_all_commands) {
  const std::string sentence =
      "veldra: KIND: 'wall' is none of materials, compositions, types, layers, properties, tags\n";
  EXPECT_THAT(veldra({"show", "a.lib", "wall", "x"}).err, StartsWith(sentence));
  EXPECT_THAT(veldra({"copy", "a.lib", "b.lib", "wall:x"}).err, StartsWith(sentence));
  EXPECT_THAT(veldra({"rename", "a.lib", "wall:x", "y"}).err, StartsWith(sentence));
}

TEST_F(Suggestion, names_several_and_parts) {
  EXPECT_THAT(error({"show", "a.lib", "material", "Brock"}),
              HasSubstr("; did you mean 'Brick' or 'Block'?"));
  EXPECT_THAT(error({"show", "a.lib", "material", "clay"}),
              HasSubstr("; did you mean 'Lehmputz / Clay plaster'?"));
  EXPECT_THAT(error({"show", "a.lib", "material", "name:Brik"}), HasSubstr("did you mean 'Brick'"));
}

TEST_F(Suggestion, is_not_made_of_what_is_far) {
  EXPECT_EQ(error({"show", "a.lib", "material", "Zinc"}),
            "veldra: 'a.lib': there is no material 'Zinc' in the library\n");
}

TEST_F(Suggestion, does_not_steer_the_terminal) {
  library("a.lib")->save(veldra::Material::create("Oak\x1b[31m"));
  EXPECT_THAT(error({"show", "a.lib", "material", "Oak[31m"}),
              HasSubstr("did you mean 'Oak\\x1b[31m'?"));
}

TEST_F(Suggestion, says_for_what_there_are_properties) {
  EXPECT_EQ(error({"list", "a.lib", "properties", "--type", "walls"}),
            "veldra: there are no properties for 'walls'; there are material, composition\n");
}

TEST_F(Suggestion, is_found_behind_100000_others) {
  PlainDatabase(path("a.lib"))
      .execute(
          "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)"
          "INSERT INTO Layer (name) SELECT 'number ' || i FROM n");
  library("a.lib")->save(veldra::Layer::create("Schraffur"));
  EXPECT_EQ(error({"show", "a.lib", "layer", "Schrafur"}),
            "veldra: 'a.lib': there is no layer 'Schrafur' in the library; did you mean "
            "'Schraffur'?\n");
}

}  // namespace
}  // namespace veldra_tests
