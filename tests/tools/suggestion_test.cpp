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
  EXPECT_EQ(error({"list", "a.lib", "materials", "--type", "Mansory"}),
            "veldra: 'a.lib': there is no type 'Mansory' in the library; did you mean "
            "'Masonry'?\n");
  EXPECT_EQ(error({"list", "a.lib", "materials", "--tag", "aussenwand"}),
            "veldra: 'a.lib': there is no tag 'aussenwand' in the library; did you mean "
            "'Außenwand'?\n");
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

TEST_F(Suggestion, says_when_not_all_names_were_compared) {
  PlainDatabase(path("a.lib"))
      .execute(
          "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)"
          "INSERT INTO Tag (name) SELECT 'number ' || i FROM n");
  EXPECT_EQ(error({"show", "a.lib", "tag", "Aussenwand"}),
            "veldra: 'a.lib': there is no tag 'Aussenwand' in the library; did you mean "
            "'Außenwand'? (only 100000 of the 100001 names were compared)\n");
  PlainDatabase(path("a.lib")).execute("DELETE FROM Tag WHERE name = 'number 1'");
  EXPECT_THAT(error({"show", "a.lib", "tag", "Aussenwand"}), Not(HasSubstr("compared")));
}

}  // namespace
}  // namespace veldra_tests
