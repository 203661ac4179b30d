// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <fstream>

namespace veldra_tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::string table_of(const Library& library, const std::string& table, char separator = ',',
                     char decimal = '.') {
  kit::WriteRules rules;
  rules.table = table;
  rules.separator = separator;
  rules.decimal = decimal;
  return written_as("CSV", library, rules).text;
}

class Tables : public Test {
 protected:
  /// Reads tables as a person might hand them in, and does what they say.
  kit::Sources read(const std::vector<std::string>& texts, kit::TableRules rules = {}) {
    std::vector<kit::Source> sources;
    for (const auto& text : texts) sources.emplace_back("t.csv", text);
    return kit::read_tables(sources, library_, rules);
  }

  void apply(const kit::Sources& sources) {
    kit::PlanRules rules;
    rules.states_of = sources.states_of;
    Library::Transaction transaction(*library_);
    const kit::Plan plan(sources.library, *library_, rules);
    changes_ = plan.changes_anything();
    plan.apply(*library_);
    transaction.commit();
  }

  std::vector<std::string> take(const std::vector<std::string>& texts) {
    const auto sources = read(texts);
    apply(sources);
    std::vector<std::string> problems;
    for (const auto& report : sources.reports) {
      for (const auto& problem : report.problems) problems.push_back(problem.text());
    }
    return problems;
  }

  std::shared_ptr<Material> material(const std::string& name) {
    return library_->get<Material>(text(name));
  }

  std::string refusal(const std::string& content) {
    return error_of([&] { read({content}); });
  }

  void fill() {
    library_->save(full_material("Oak"));
    library_->save(full_composition("Wall"));
    const auto odd = with_custom("=odd, \"quoted\"; and\nmore", "Price", "1,5");
    odd->custom_value(text("Number"), text("0.50"));
    odd->custom_value(CustomProperty::create(text("Price"), ObjectType{}), text("-3"));
    odd->thicknesses(toModify) = {0.1, 12.5, 1e-7};
    odd->manufacturer(text("'s"));
    odd->comments(text(" blanks "));
    library_->save(odd);
  }

  std::shared_ptr<Library> library_ = Library::create(":memory:", Unit::Millimetres, "");
  bool changes_ = false;
};

TEST_F(Tables, that_nobody_changed_change_nothing) {
  fill();
  const auto before = fields_of(*library_);
  for (const char decimal : {'.', ','}) {
    const char separator = decimal == ',' ? ';' : ',';
    for (const char* table : {"materials", "compositions", "layers"}) {
      SCOPED_TRACE(table);
      EXPECT_THAT(take({table_of(*library_, table, separator, decimal)}), IsEmpty());
      EXPECT_FALSE(changes_);
    }
  }
  EXPECT_EQ(fields_of(*library_), before);
}

TEST_F(Tables, bring_all_that_they_hold_into_an_empty_library) {
  fill();
  std::vector<std::string> tables;
  for (const char* table : {"layers", "compositions", "materials"}) {
    tables.push_back(table_of(*library_, table, ';', ','));
  }
  const auto before = fields_of(*library_);
  library_ = Library::create(":memory:", Unit::Millimetres, "");
  EXPECT_THAT(take(tables), ElementsAre(HasSubstr("the variable layer 6 is none of its 4 layers")));
  EXPECT_EQ(fields_of(*library_), before);
}

TEST_F(Tables, are_written_the_same_again) {
  fill();
  const auto first = table_of(*library_, "materials");
  EXPECT_EQ(first, table_of(*library_, "materials"));
  EXPECT_THAT(first, StartsWith("kind,id [" + library_->guid().utf8() + "],name,code,type,"));
  EXPECT_THAT(first, HasSubstr("thicknesses [mm]"));
  EXPECT_EQ(first.substr(first.size() - 2), "\r\n");
}

TEST_F(Tables, without_rows_are_told_to_have_nothing) {
  for (const char* content : {"kind,name\n", "kind,name\n,\n\n"}) {
    EXPECT_THAT(take({content}),
                ElementsAre("'t.csv': this CSV source has no materials and no constructions"));
  }
  EXPECT_FALSE(changes_);
  EXPECT_THAT(take({"kind,name\n", "kind,name\nmaterial,Brick\n"}), IsEmpty());
}

TEST_F(Tables, change_what_a_person_changed) {
  library_->save(with_custom("Brick", "Fire class", "A1"));
  library_->save(with_custom("Wool", "Fire class", "A2"));
  const unsigned id = material("Brick")->id();
  const auto problems =
      take({"kind,id,name,manufacturer,thicknesses [mm],property:Fire class\n"
            "material," +
            std::to_string(id) +
            ",Red brick,Works,115; 17.5 cm,\n"
            "material,,Wool,,,A1\n"});
  EXPECT_THAT(problems, IsEmpty());
  EXPECT_EQ(material("Brick"), nullptr);
  const auto brick = material("Red brick");
  ASSERT_NE(brick, nullptr);
  EXPECT_EQ(brick->id(), id);
  EXPECT_EQ(brick->manufacturer(), text("Works"));
  EXPECT_EQ(brick->thicknesses(), (std::set<double>{115, 175}));
  EXPECT_TRUE(brick->custom_value("Fire class").null());
  EXPECT_EQ(material("Wool")->custom_value("Fire class").get(), text("A1"));
}

TEST_F(Tables, find_objects_by_id_else_code_else_name) {
  const auto one = library_->save(with_custom("One", "p", "v"));
  const auto two = library_->save(Material::create(text("Two")));
  two->code(text("B-2"));
  two->save();
  const auto sources = read({"id,code,name,mark\n" + std::to_string(one->id()) +
                             ",,New name,by id\n,B-2,Newer name,by code\n"});
  apply(sources);
  EXPECT_EQ(library_->get<Material>(one->id())->mark(), text("by id"));
  EXPECT_EQ(library_->get<Material>(two->id())->mark(), text("by code"));
  EXPECT_EQ(library_->get<Material>(two->id())->name(), text("Newer name"));
  take({"name,mark\nNew name,by name\n"});
  EXPECT_EQ(library_->get<Material>(one->id())->mark(), text("by name"));
  EXPECT_EQ(library_->count<Material>(), 2U);
}

TEST_F(Tables, do_not_take_ids_of_another_library_for_its_own) {
  library_->save(Material::create(text("Brick")));
  const auto other = Library::create(":memory:", Unit::Millimetres, "");
  other->save(Material::create(text("Wool")));
  EXPECT_THAT(take({table_of(*other, "materials")}), IsEmpty());
  EXPECT_NE(material("Brick"), nullptr);
  EXPECT_NE(material("Wool"), nullptr);
}

TEST_F(Tables, clear_by_empty_cells_and_leave_what_has_no_column) {
  library_->save(full_material("Oak"));
  const auto before = material("Oak");
  take({"name,manufacturer,code,tags\nOak,,,\n"});
  const auto oak = material("Oak");
  EXPECT_TRUE(oak->manufacturer().empty());
  EXPECT_FALSE(oak->has_code());
  EXPECT_TRUE(oak->tags().empty());
  EXPECT_EQ(oak->model(), before->model());
  EXPECT_EQ(oak->thicknesses(), before->thicknesses());
}

TEST_F(Tables, know_quantities_and_other_units) {
  take({"name;conductivity [W/(m K)];density [g/cm3];thicknesses [cm]\nBrick;0,81;1,8;11,5; 24\n"});
  EXPECT_EQ(material("Brick"), nullptr) << "the separator stands in a cell that is not quoted";
  take(
      {"name;conductivity [W/(m K)];density [g/cm3];thicknesses [cm]\n"
       "Brick;0,81;1,8;\"11,5; 24\"\n"});
  ASSERT_NE(material("Brick"), nullptr);
  EXPECT_EQ(material("Brick")->custom_value("Thermal conductivity [W/(m K)]").get(), text("0.81"));
  EXPECT_EQ(material("Brick")->custom_value("Density [kg/m3]").get(), text("1800"));
  EXPECT_EQ(material("Brick")->thicknesses(), (std::set<double>{115, 240}));
}

TEST_F(Tables, may_be_written_in_many_ways) {
  const std::string rows[] = {"name,mark\r\nA,1\r\nB,2\r\n",
                              "name,mark\nA,1\nB,2",
                              "name,mark\rA,1\rB,2\r",
                              "name;mark\nA;1\n\n\nB;2\n",
                              "\"name\"\t\"mark\"\nA\t1\nB\t\"2\"\n",
                              "\xEF\xBB\xBFname,mark\nA,1\n,\nB,2\n"};
  for (const auto& table : rows) {
    SCOPED_TRACE(table);
    library_ = Library::create(":memory:", Unit::Millimetres, "");
    EXPECT_THAT(take({table}), IsEmpty());
    ASSERT_NE(material("A"), nullptr);
    ASSERT_NE(material("B"), nullptr);
    EXPECT_EQ(material("B")->mark(), text("2"));
  }
}

TEST_F(Tables, may_be_in_utf_16) {
  const std::u16string wide = u"name,mark\nGr\u00fcn \U0001F600,1\n";
  for (const bool little : {true, false}) {
    std::string bytes = little ? "\xff\xfe" : "\xfe\xff";
    for (const char16_t unit : wide) {
      const char low = static_cast<char>(unit & 0xff);
      const char high = static_cast<char>(unit >> 8);
      bytes += little ? low : high;
      bytes += little ? high : low;
    }
    library_ = Library::create(":memory:", Unit::Millimetres, "");
    EXPECT_THAT(take({bytes}), IsEmpty());
    EXPECT_NE(material("Gr\u00fcn \U0001F600"), nullptr);
  }
}

TEST_F(Tables, take_the_apostrophe_before_a_formula_off) {
  for (const char* name : {"=1+1", "+43 1", "-", "@home", "'so", "'=x", "\ttab"}) {
    library_ = Library::create(":memory:", Unit::Millimetres, "");
    library_->save(Material::create(text(name)));
    const auto table = table_of(*library_, "materials");
    EXPECT_THAT(table, HasSubstr(std::string("'") + name));
    library_ = Library::create(":memory:", Unit::Millimetres, "");
    EXPECT_THAT(take({table}), IsEmpty());
    EXPECT_NE(material(name), nullptr) << name;
  }
}

TEST_F(Tables, leave_rows_out_that_cannot_be_read_and_tell_the_line) {
  library_->save(Material::create(text("Wool")));
  const auto problems =
      take({"kind,name,thicknesses,function\n"
            "material,Brick,thick,\n"
            "material,,1,\n"
            "material,Stone,-3,\n"
            "composition,Wall,,\n"
            "material,Oak,1,,,,x\n"
            "material,Wool,2,1.5\n"
            "material,Pine,\"20\n\",1\n"
            "material,Pine,30,1\n"});
  EXPECT_THAT(
      problems,
      ElementsAre(
          "'t.csv', line 2: material 'Brick': 'thick' is no value for 'thicknesses': it must be a "
          "list of numbers, with ; between them, in mm or with a unit",
          "'t.csv', line 3: a material: the name is missing",
          "'t.csv', line 4: material 'Stone': '-3' is no value for 'thicknesses': it must be 0 or "
          "greater",
          "'t.csv', line 5: material 'Wall': the row is of another kind, 'composition'",
          "'t.csv', line 6: material 'Oak': the row has more cells than the table has columns",
          "'t.csv', line 7: material 'Wool': '1.5' is no value for 'function': it must be none, "
          "structure, or a whole number",
          "'t.csv', line 10: material 'Pine': its name is taken"));
  EXPECT_EQ(material("Pine")->thicknesses(), (std::set<double>{20}));
  EXPECT_TRUE(material("Wool")->thicknesses().empty());
  EXPECT_EQ(library_->count<Material>(), 2U);
}

TEST_F(Tables, name_the_column_of_a_doubtful_number) {
  EXPECT_THAT(take({"name,thicknesses [mm],property:all:Density [kg/m3]\nA,0,1\nB,1,-2\n"}),
              ElementsAre("'t.csv', line 2: column 'thicknesses [mm]': material 'A': the "
                          "thickness 0 is not greater than 0",
                          "'t.csv', line 3: column 'property:all:Density [kg/m3]': material 'B': "
                          "its 'Density [kg/m3]' is less than 0: '-2'"));
}

TEST_F(Tables, name_the_column_of_a_doubtful_quantity) {
  EXPECT_THAT(take({"name,density,conductivity [W/(m K)]\nA,1,0\n"}),
              ElementsAre("'t.csv', line 2: column 'conductivity [W/(m K)]': material 'A': its "
                          "thermal conductivity is not greater than 0: '0'"));
}

TEST_F(Tables, name_the_field_of_a_layer_that_has_no_number) {
  EXPECT_THAT(take({"kind,name\nmaterial,Brick\n",
                    "composition,position,material,thickness,function\nW,1,Brick,wide,0\n"
                    "V,1,Brick,1,core\n"}),
              ElementsAre("'t.csv', line 2: layers of 'W': 'wide' is no value for 'thickness': it "
                          "must be a number, in mm or with a unit",
                          StartsWith("'t.csv', line 3: layers of 'V': 'core' is no value for "
                                     "'function'")));
}

TEST_F(Tables, are_refused_for_headings_that_nobody_knows) {
  EXPECT_THAT(refusal("name,manufakturer\nBrick,x\n"),
              AllOf(StartsWith("'t.csv', line 1: there is no column 'manufakturer'; did you mean "
                               "'manufacturer'"),
                    HasSubstr("kind, id ["), HasSubstr("thicknesses [mm]")));
  EXPECT_THAT(refusal("name,mark,mark\na,b,c\n"), HasSubstr("the column 'mark' is there twice"));
  EXPECT_THAT(refusal("name,thicknesses [stone]\na,1\n"), HasSubstr("'stone' is no unit"));
  EXPECT_THAT(refusal("name,thicknesses,thickness\na,1,1\n"), HasSubstr("another column means"));
  EXPECT_THAT(refusal("id,name,description\n1,a,b\n"), HasSubstr("a column 'kind'"));
  EXPECT_THAT(refusal("kind,name\nwall,a\n"), HasSubstr("there is no table of the kind 'wall'"));
  EXPECT_THAT(refusal("name,mark\na,\"b\n"), HasSubstr("the table ends within quotes"));
  EXPECT_THAT(refusal("composition,position,material,size\nWall,1,Brick,2\n"),
              HasSubstr("there is no column 'size'"));
}

TEST_F(Tables, of_a_million_columns_are_refused) {
  std::string table = "name,mark";
  table.append(1000000, ',');
  EXPECT_THAT(refusal(table + "\n"), HasSubstr("more than 10000 columns"));
}

TEST_F(Tables, of_endless_rows_and_cells_are_refused) {
  EXPECT_THAT(refusal("name,mark\n" + std::string(1000000, ',') + "x\n"),
              HasSubstr("line 2: the row has more than 10000 cells"));
  EXPECT_THAT(refusal("name,mark\na," + std::string(2 << 20, 'b') + "\n"),
              HasSubstr("line 2: a cell is longer than 1 MiB"));
}

TEST_F(Tables, replace_the_layers_of_compositions) {
  library_->save(full_composition("Wall"));
  library_->save(Material::create(text("Brick")));
  EXPECT_THAT(
      take({"kind,composition,position,material,thickness [cm],function\n"
            "layer,Wall,2,Brick,24,1\n"
            "layer,Wall,1,Wall inside,1.5,0\n"}),
      ElementsAre("'t.csv', line 3: composition 'Wall': the variable layer 4 is none of its "
                  "2 layers"));
  const auto layers = library_->get<Composition>(text("Wall"))->layers();
  ASSERT_EQ(layers.size(), 2U);
  EXPECT_EQ(layers[0].material()->name(), text("Wall inside"));
  EXPECT_EQ(layers[0].thickness(), 15);
  EXPECT_EQ(layers[1].material()->id(), material("Brick")->id());
  EXPECT_EQ(layers[1].thickness(), 240);
  EXPECT_EQ(layers[1].function(), Material::Function::Structure);
}

TEST_F(Tables, count_layers_from_1) {
  library_->save(full_composition("Wall"));
  const unsigned before = library_->get<Composition>(text("Wall"))->structural_layer();
  take({"kind,name,structural_layer\ncomposition,Wall," + std::to_string(before + 1) + "\n"});
  EXPECT_FALSE(changes_);
  EXPECT_THAT(take({"kind,name,structural_layer\ncomposition,Wall,0\n"}),
              ElementsAre(testing::HasSubstr("counted from 1")));
}

TEST_F(Tables, leave_layers_alone_of_which_they_say_nothing_that_can_be) {
  library_->save(full_composition("Wall"));
  const auto before = fields_of(*library_);
  EXPECT_THAT(take({"composition,position,material\nWall,1,Nothing\nWall,2,Wall core\n"}),
              ElementsAre("'t.csv', line 2: layers of 'Wall': there is no material 'Nothing'"));
  EXPECT_THAT(take({"composition,position,material\nWall,1,Wall core\nWall,3,Wall core\n"}),
              ElementsAre("'t.csv', line 3: layers of 'Wall': a position is missing"));
  EXPECT_THAT(take({"composition,position,material\nWall,1,Wall core\nWall,1,Wall core\n"}),
              ElementsAre("'t.csv', line 3: layers of 'Wall': the position 1 is there twice"));
  EXPECT_THAT(take({"composition,position,material\nWall,0,Wall core\n"}),
              ElementsAre("'t.csv', line 2: layers of 'Wall': the position must be a whole number "
                          "from 1"));
  EXPECT_THAT(take({"composition,position,material\nRoof,1,Wall core\n"}),
              ElementsAre("'t.csv', line 2: layers of 'Roof': there is no such composition"));
  EXPECT_EQ(fields_of(*library_), before);
}

TEST_F(Tables, name_the_line_of_the_layer_that_is_wrong) {
  library_->save(full_composition("Wall"));
  EXPECT_THAT(take({"composition,position,material\nWall,2,Nothing\nWall,1,Wall core\n"}),
              ElementsAre("'t.csv', line 2: layers of 'Wall': there is no material 'Nothing'"));
  EXPECT_THAT(take({"composition,position,material\nWall,1,Wall core\nWall,2,Nothing\n"}),
              ElementsAre("'t.csv', line 3: layers of 'Wall': there is no material 'Nothing'"));
  EXPECT_THAT(take({"composition,position,material\nWall,4,Wall core\nWall,1,Wall core\n"
                    "Wall,3,Wall core\n"}),
              ElementsAre("'t.csv', line 4: layers of 'Wall': a position is missing"));
}

TEST_F(Tables, tell_what_no_table_has) {
  kit::WriteRules rules;
  rules.table = "walls";
  EXPECT_THAT(error_of([&] { written_as("CSV", *library_, rules); }),
              HasSubstr("there is no table 'walls'; there are materials, compositions, layers"));
}

TEST_F(Tables, come_a_row_at_a_time) {
  for (int i = 0; i < 600; ++i) {
    library_->save(Material::create(text("Brick " + std::to_string(i))));
  }
  std::size_t longest = 0;
  std::size_t parts = 0;
  const auto sink = [&](std::string_view part) {
    longest = std::max(longest, part.size());
    ++parts;
  };
  kit::write(*library_, *kit::find_format("csv"), sink);
  EXPECT_EQ(parts, 601U);
  EXPECT_LT(longest, 1000U);
}

TEST_F(Tables, need_a_library) {
  EXPECT_THAT(error_of([] {
                kit::read_together({{"t.csv", "name,mark\na,b\n"}}, {});
              }),
              HasSubstr("is read into a library by itself"));
  EXPECT_THAT(error_of([&] {
                kit::read_tables({{"a", "Version, 9.4;"}}, library_);
              }),
              HasSubstr("this is no table"));
}

TEST_F(Tables, of_a_part_of_a_library_mean_its_objects) {
  fill();
  const auto odd = key_of<Material>(*library_, "=odd, \"quoted\"; and\nmore");
  auto table = part_written_as("CSV", *library_, {odd}).text;
  EXPECT_EQ(table.substr(0, table.find("\r\n")),
            table_of(*library_, "materials").substr(0, table.find("\r\n")))
      << "the same columns, so that they mean the same";
  EXPECT_THAT(take({table}), IsEmpty());
  EXPECT_FALSE(changes_);
  const std::string name = "'=odd, \"\"quoted\"\"; and\nmore";
  table.replace(table.find(name), name.size(), "Other");
  EXPECT_THAT(take({table}), IsEmpty());
  EXPECT_EQ(material("Other")->id(), odd.id);
}

TEST(Formats, are_those_of_the_page) {
  std::ifstream page(VELDRA_FORMATS_PAGE);
  std::vector<std::string> rows;
  for (std::string line; std::getline(page, line);) {
    const bool is_row = line.compare(0, 2, "| ") == 0;
    if (!is_row && !rows.empty() && line.compare(0, 1, "|") != 0) break;
    if (is_row) rows.push_back(line);
  }
  ASSERT_EQ(rows.size(), kit::formats().size() + 1) << "a title, and a row for each";
  for (const auto& format : kit::formats()) {
    std::string endings;
    for (const auto& ending : format.endings) endings += (endings.empty() ? "" : ", ") + ending;
    EXPECT_THAT(rows, Contains("| " + format.name + " | " + format.endings.front() + " | " +
                               endings + " | " + (format.readable ? "yes" : "no") + " | " +
                               (format.writable ? "yes" : "no") + " |"));
  }
}

TEST(Formats, are_found_by_name_and_ending) {
  EXPECT_EQ(kit::find_format("IDF")->name, "IDF");
  EXPECT_EQ(kit::find_format("EPJSON")->name, "epJSON");
  EXPECT_EQ(kit::find_format("json")->name, "veldra");
  EXPECT_EQ(kit::find_format("Csv")->name, "CSV");
  EXPECT_EQ(kit::find_format("doc"), nullptr);
}

TEST(Formats, that_cannot_be_written_are_refused_with_those_that_can) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  EXPECT_THAT(error_of([&] {
                kit::write(*library, {"Stone", {"txt"}, true, false}, [](std::string_view) {});
              }),
              AllOf(StartsWith("Stone can be read only; there are writers for "),
                    HasSubstr("epJSON"), HasSubstr("IDF"), HasSubstr("CSV")));
}

}  // namespace
}  // namespace veldra_tests
