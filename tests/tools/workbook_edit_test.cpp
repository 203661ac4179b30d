// SPDX-License-Identifier: GPL-2.0-or-later
//
// Workbooks that an independent library edits and writes again.

#include "tools/program.hpp"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>

namespace veldra_tests {
namespace {

using testing::HasSubstr;

constexpr const char* python = "/usr/bin/python3";

class EditedBook : public ProgramTest {
 protected:
  void SetUp() override {
    const auto asked = std::string(python) + " -c 'import openpyxl' 2>/dev/null";
    if (std::system(asked.c_str()) != 0) GTEST_SKIP() << "there is no openpyxl";
    write("a.idf",
          "Material, Brick, Rough, 0.115, 0.81, 1800, 1000; Material, =Wool, Rough, 0.1, 0.04, 30, "
          "1400; Construction, Wall outer/inner, Brick, =Wool;");
    must({"import", "a.lib", "a.idf"});
    must({"export", "a.lib", "-o", "a.xlsx"});
  }

  std::string edit(const std::vector<std::string>& arguments) {
    auto command = std::string(python) + " '" VELDRA_EDIT_WORKBOOK "' '" + path("a.xlsx") + "'";
    for (const auto& argument : arguments) command += " '" + argument + "'";
    FILE* out = popen(command.c_str(), "r");
    std::string text;
    for (int c = fgetc(out); c != EOF; c = fgetc(out)) text += static_cast<char>(c);
    EXPECT_EQ(pclose(out), 0) << command;
    return text;
  }

  std::string json() { return veldra({"export", "a.lib"}).out; }
};

TEST_F(EditedBook, looks_as_people_want_it) {
  const auto text = edit({"tell"});
  EXPECT_THAT(text, HasSubstr("materials visible D2 A1:"));
  EXPECT_THAT(text, HasSubstr("hidden id\nhidden fingerprint\n"));
  EXPECT_THAT(text, HasSubstr("Wall outer_inner visible D2 A1:F3"));
  EXPECT_THAT(text, HasSubstr("veldra lists hidden"));
  EXPECT_THAT(text, HasSubstr("choice E2:E1004 'veldra lists'!$A$2:"));
}

TEST_F(EditedBook, that_was_only_saved_changes_nothing) {
  const auto before = json();
  edit({"save"});
  const auto run = veldra({"import", "a.lib", "a.xlsx"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(json(), before);
}

TEST_F(EditedBook, changes_the_cells_that_were_edited) {
  edit({"set", "materials", "Brick", "manufacturer", "=cmd()"});
  edit({"set", "materials", "=Wool", "property:Density [kg/m3]", "45.5"});
  edit({"set", "compositions", "Wall outer/inner", "description", "new"});
  edit({"add", "materials", "Plaster"});
  edit({"layer", "Wall outer_inner", "Plaster", "15"});
  const auto refused = veldra({"import", "a.lib", "a.xlsx"});
  EXPECT_EQ(refused.status, 3);
  EXPECT_THAT(refused.err, HasSubstr("'a.xlsx': materials!K3: material 'Brick': the formula has no "
                                     "stored value"));
  const auto text = json();
  EXPECT_THAT(text, HasSubstr("\"45.5\""));
  EXPECT_THAT(text, HasSubstr("\"description\": \"new\""));
  EXPECT_THAT(veldra({"show", "a.lib", "composition", "Wall outer/inner"}).out,
              HasSubstr("Plaster"));
}

TEST_F(EditedBook, of_two_people_clash_where_both_edited) {
  edit({"set", "materials", "Brick", "mark", "mine"});
  must({"set", "a.lib", "material:Brick", "mark=theirs"});
  must({"set", "a.lib", "material:=Wool", "mark=other"});
  const auto refused = veldra({"import", "a.lib", "a.xlsx"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.err, HasSubstr("material 'Brick': it has changed in the library since the "
                                     "table was written"));
  EXPECT_THAT(json(), HasSubstr("theirs"));
  EXPECT_EQ(veldra({"import", "a.lib", "a.xlsx", "--on-conflict", "use"}).status, 3);
  EXPECT_THAT(json(), HasSubstr("theirs"));
  veldra({"import", "a.lib", "a.xlsx", "--on-conflict", "overwrite"});
  EXPECT_THAT(json(), HasSubstr("mine"));
  EXPECT_THAT(json(), HasSubstr("other")) << "what nobody edited here is left alone";
}

TEST_F(EditedBook, is_made_of_a_library_and_makes_one) {
  must({"import", "b.lib", "a.xlsx"});
  for (const char* kind : {"materials", "compositions"}) {
    const std::vector<std::string> rest{kind, "--columns", "name,type,tags"};
    const auto listed = [&](const std::string& file) {
      return veldra({"list", file, rest[0], rest[1], rest[2]}).out;
    };
    EXPECT_EQ(listed("b.lib"), listed("a.lib"));
    EXPECT_THAT(listed("b.lib"), HasSubstr("a.idf"));
  }
  EXPECT_EQ(veldra({"export", "a.lib", "-o", "b.xlsx", "--table", "layers"}).status, 2);
}

}  // namespace
}  // namespace veldra_tests
