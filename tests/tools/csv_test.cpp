// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"
#include "tools/terminal.hpp"

#include <map>
#include <set>

namespace veldra_tests {
namespace {

using Cells = std::vector<std::string>;

/// Reads a table as RFC 4180 describes it.
std::vector<Cells> rows_of(const std::string& csv) {
  std::vector<Cells> rows;
  Cells cells(1);
  bool quoted = false;
  for (std::size_t i = 0; i < csv.size(); ++i) {
    const char character = csv[i];
    if (quoted) {
      if (character != '"') {
        cells.back() += character;
      } else if (i + 1 < csv.size() && csv[i + 1] == '"') {
        cells.back() += csv[++i];
      } else {
        quoted = false;
      }
    } else if (character == '"') {
      quoted = true;
    } else if (character == ',') {
      cells.emplace_back();
    } else if (character == '\n') {
      rows.push_back(cells);
      cells.assign(1, "");
    } else if (character != '\r') {
      cells.back() += character;
    }
  }
  return rows;
}

class Csv : public ProgramTest {
 protected:
  void SetUp() override { office_ = library("a.lib"); }

  /// A property for a kind of object, with the value that it has in the objects of that kind.
  void add(const char* name, veldra::ObjectType kind, const char* value) {
    const auto property = veldra::CustomProperty::create(name, kind);
    if (kind != veldra::ObjectType::Composition) material_->custom_value(property, value);
    if (kind == veldra::ObjectType::Composition) composition_->custom_value(property, value);
  }
  void save() {
    office_->save(material_);
    composition_->appendLayer({material_, veldra::Material::Function::None, 115});
    office_->save(composition_);
  }

  Cells titles() { return rows_of(csv()).front(); }

  std::string csv(const std::string& table = "materials") {
    return must({"export", "a.lib", "--format", "csv", "--table", table}).out;
  }

  /// The cells of the only object of a kind, or of that with a name, by column.
  std::map<std::string, std::string> row_of(const std::string& kind, const std::string& name = "") {
    const auto rows = rows_of(csv(kind + "s"));
    std::map<std::string, std::string> result;
    for (const auto& row : rows) {
      if (row[0] != kind || (!name.empty() && row[kind == "layer" ? 1 : 2] != name)) continue;
      EXPECT_EQ(row.size(), rows[0].size());
      for (std::size_t i = 0; i < row.size(); ++i) result[rows[0][i]] = row[i];
    }
    return result;
  }

  std::shared_ptr<veldra::Library> office_;
  std::shared_ptr<veldra::Material> material_ = veldra::Material::create("Brick");
  std::shared_ptr<veldra::Composition> composition_ = veldra::Composition::create("Wall");
};

TEST_F(Csv, a_property_takes_no_column_that_is_there_already) {
  material_->code("B-1");
  material_->cost("12 €");
  material_->thicknesses(veldra::toModify) = {115};
  const std::vector<const char*> names{"name", "thickness", "type", "code",    "cost",
                                       "kind", "material",  "tags", "position"};
  for (const char* name : names) {
    add(name, veldra::ObjectType::Material, (std::string("my ") + name).c_str());
  }
  save();
  auto row = row_of("material");
  EXPECT_EQ(row["name"], "Brick");
  EXPECT_EQ(row["thicknesses [mm]"], "115");
  EXPECT_EQ(row["code"], "B-1");
  EXPECT_EQ(row["cost"], "12 €");
  for (const char* name : names) {
    EXPECT_EQ(row["property:" + std::string(name)], std::string("my ") + name);
  }
  const auto all = titles();
  EXPECT_EQ(all.size(), std::set<std::string>(all.begin(), all.end()).size());
}

TEST_F(Csv, properties_of_one_name_have_a_column_for_each_kind_of_object) {
  add("Price", veldra::ObjectType::Material, "of materials");
  add("Price", veldra::ObjectType::Composition, "of compositions");
  const auto board = veldra::Material::create("Board");
  board->custom_value(veldra::CustomProperty::create("Price", veldra::ObjectType{}), "of all");
  composition_->appendLayer({board, veldra::Material::Function::None, 20});
  office_->save(veldra::CustomProperty::create("Price", static_cast<veldra::ObjectType>(99)));
  add("Colour", veldra::ObjectType::Material, "red");
  save();
  auto material = row_of("material", "Brick");
  EXPECT_EQ(row_of("material", "Board")["property:all:Price"], "of all");
  EXPECT_EQ(material["property:material:Price"], "of materials");
  EXPECT_EQ(material["property:all:Price"], "");
  EXPECT_EQ(material.count("property:composition:Price"), 0U);
  EXPECT_EQ(material["property:Colour"], "red");
  EXPECT_EQ(row_of("composition")["property:composition:Price"], "of compositions");
}

TEST_F(Csv, a_name_that_looks_like_a_kind_with_a_name_has_a_column_of_its_own) {
  add("x", veldra::ObjectType::Material, "1");
  office_->save(veldra::CustomProperty::create("x", veldra::ObjectType{}));
  add("material:x", veldra::ObjectType::Material, "3");
  add("material:material:x", veldra::ObjectType::Material, "4");
  add("material:y", veldra::ObjectType::Material, "5");
  save();
  auto row = row_of("material");
  EXPECT_EQ(row["property:material:x"], "1");
  EXPECT_EQ(row["property:material:material:x"], "3");
  EXPECT_EQ(row["property:material:material:material:x"], "4");
  EXPECT_EQ(row["property:material:y"], "5");
  EXPECT_EQ(row.count("property:all:x"), 1U);
}

TEST_F(Csv, texts_that_a_spreadsheet_takes_for_formulas_begin_with_an_apostrophe) {
  const std::vector<const char*> texts{"=1+1",  "+43 1 5880", "-",  "@home",
                                       "\ttab", "\rreturn",   "'so"};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    add(std::to_string(i).c_str(), veldra::ObjectType::Material, texts[i]);
  }
  material_->name("=name");
  material_->description("1 = 1");
  material_->comments("'quoted'");
  material_->addTag(veldra::Tag::create("-tag"));
  composition_->name("+name");
  save();
  auto row = row_of("material");
  EXPECT_EQ(row["name"], "'=name");
  EXPECT_EQ(row["description"], "1 = 1");
  EXPECT_EQ(row["comments"], "''quoted'");
  EXPECT_EQ(row["tags"], "'-tag");
  EXPECT_EQ(row["property:0"], "'=1+1");
  EXPECT_EQ(row["property:1"], "'+43 1 5880");
  EXPECT_EQ(row["property:2"], "'-");
  EXPECT_EQ(row["property:3"], "'@home");
  EXPECT_EQ(row["property:4"], "'\ttab");
  EXPECT_THAT(csv(), HasSubstr("\"'\rreturn\""));
  EXPECT_EQ(row["property:6"], "''so");
  EXPECT_EQ(row_of("layer")["composition"], "'+name");
  EXPECT_EQ(row_of("layer")["material"], "'=name");
}

TEST_F(Csv, numbers_never_do) {
  material_->thicknesses(veldra::toModify) = {-3, 5};
  material_->function(static_cast<veldra::Material::Function>(-7));
  composition_->appendLayer({material_, veldra::Material::Function::None, -1.5});
  save();
  EXPECT_EQ(row_of("material")["thicknesses [mm]"], "-3; 5");
  EXPECT_EQ(row_of("material")["function"], "-7");
  EXPECT_THAT(csv("layers"), HasSubstr("\r\nlayer,Wall,1,Brick,-1.5,0\r\n"));
}

TEST_F(Csv, control_characters_stay_what_they_are_in_files_and_pipes) {
  material_->description(
      "red \x1b[31m, \xC2\x9B"
      "31m and\nmore");
  save();
  EXPECT_THAT(csv(), HasSubstr("\"red \x1b[31m, \xC2\x9B"
                               "31m and\nmore\""));
}

TEST_F(Csv, control_characters_do_not_reach_a_terminal) {
  if (!terminals_can_be_made()) GTEST_SKIP() << "no terminal can be made here";
  material_->description(
      "red \x1b[31m, \xC2\x9B"
      "31m and\nmore");
  save();
  TerminalRun run(path(""), {"export", "a.lib", "--format", "csv"});
  EXPECT_EQ(run.finish(), 0);
  EXPECT_THAT(run.seen(), HasSubstr("\"red \\x1b[31m, \\x9b31m and\\nmore\""));
  EXPECT_THAT(run.seen(), Not(HasSubstr("\x1b")));
  EXPECT_THAT(run.seen(), Not(HasSubstr("\xC2\x9B")));
}

}  // namespace
}  // namespace veldra_tests
