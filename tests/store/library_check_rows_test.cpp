// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/check_fixture.hpp"
#include "support/rows.hpp"

#include <algorithm>
#include <limits>
#include <utility>

namespace veldra_tests {
namespace {

const double nan_ = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

/// A library with a wall (1) of three layers of one material, Brick (1), with two tags each, and
/// an asset of either sort (1 and 2).
class LibraryCheckRows : public CheckFixture {
 protected:
  void SetUp() override {
    {
      const auto library = create();
      auto brick = Material::create("Brick");
      brick->thicknesses(veldra::toModify).insert({115, 240});
      brick->custom_value("Fire class", "A1");
      auto wall = Composition::create("Wall");
      for (int i = 0; i != 3; ++i) wall->appendLayer({brick, Material::Function::None, 115});
      for (const char* name : {"old", "facade"}) {
        const auto tag = veldra::Tag::create(name);
        brick->tags(veldra::toModify).push_back(tag);
        wall->tags(veldra::toModify).push_back(tag);
      }
      wall->entity_layer(veldra::Layer::create("Walls"));
      library->save(wall);
    }
    PlainDatabase database(path);
    put_structural_asset(database, "1");
    put_thermal_asset(database, "2");
    database.execute("INSERT INTO Asset_tags VALUES (2, 0, 1), (2, 1, 2)");
    sound_ = read_file(path);
  }

  /// What is found after the statements, which change the sound library.
  std::vector<std::string> found_after(const std::string& statements) const {
    write_file(path, sound_);
    tamper(statements);
    return findings();
  }

  std::string sound_;
};

TEST_F(LibraryCheckRows, finds_nothing_in_sound_rows) { EXPECT_THAT(findings(), IsEmpty()); }

TEST_F(LibraryCheckRows, names_the_object) {
  tamper("UPDATE Composition_layers SET value_thickness = -1 WHERE \"index\" = 1");
  std::vector<Library::Finding> found;
  open()->check(found);
  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found[0].object, ObjectKey(ObjectType::Composition, 1));
  EXPECT_EQ(found[0].name.utf8(), "Wall");
  EXPECT_EQ(found[0].sentence.utf8(), "the thickness of layer 2 is negative: -1");
}

TEST_F(LibraryCheckRows, names_nothing_for_the_file) {
  tamper("DROP INDEX Tag_name_i");
  std::vector<Library::Finding> found;
  open()->check(found);
  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found[0].object, ObjectKey());
  EXPECT_TRUE(found[0].name.empty());
  EXPECT_EQ(found[0].sentence.utf8(), "\"Tag\" lacks the unique index \"Tag_name_i\" on \"name\"");
}

TEST_F(LibraryCheckRows, appends_findings) {
  tamper("UPDATE Composition SET type = 3");
  std::vector<Library::Finding> found(1);
  open()->check(found);
  ASSERT_THAT(found, SizeIs(2));
  EXPECT_EQ(found[1].name.utf8(), "Wall");
}

TEST_F(LibraryCheckRows, calls_an_object_without_a_name_by_its_id) {
  tamper("UPDATE Composition SET type = 3, name = ''");
  EXPECT_THAT(findings(), ElementsAre("composition 1: its type is none of 1, 2, 4 and 128: 3"));
}

TEST_F(LibraryCheckRows, tells_of_layers_of_a_thickness_that_is_none) {
  const std::string wall = "composition 1 \"Wall\": the thickness of layer 2 ";
  const std::pair<const char*, std::string> cases[] = {{"-0.25", "is negative: -0.25"},
                                                       {"9e999", "is infinite"},
                                                       {"-9e999", "is infinite"},
                                                       {"NULL", "is not known"},
                                                       {"'thick'", "is no number: 'thick'"},
                                                       {"x'00'", "is no number: X'00'"}};
  for (const auto& one : cases) {
    EXPECT_THAT(found_after("UPDATE Composition_layers SET value_thickness = " +
                            std::string(one.first) + " WHERE \"index\" = 1"),
                ElementsAre(wall + one.second));
  }
  EXPECT_THAT(found_after("UPDATE Composition_layers SET value_thickness = 0"), IsEmpty());
  EXPECT_THAT(found_after("UPDATE Composition_layers SET value_thickness = -0.0"), IsEmpty());
  EXPECT_THAT(found_after("UPDATE Composition_layers SET value_thickness = 1e308"), IsEmpty());
}

TEST_F(LibraryCheckRows, tells_of_materials_of_a_thickness_that_is_none) {
  const std::pair<const char*, std::string> cases[] = {{"-5", "is negative: -5"},
                                                       {"9e999", "is infinite"},
                                                       {"-9e999", "is infinite"},
                                                       {"NULL", "is not known"},
                                                       {"'thick'", "is no number: 'thick'"}};
  for (const auto& one : cases) {
    EXPECT_THAT(found_after("UPDATE Material_thicknesses SET value = " + std::string(one.first) +
                            " WHERE value = 240"),
                ElementsAre("material 1 \"Brick\": a thickness " + one.second));
  }
}

TEST_F(LibraryCheckRows, tells_of_variable_layers_of_a_thickness_that_is_none) {
  const std::string least = "composition 1 \"Wall\": the least thickness of the variable layer ";
  const std::string greatest =
      "composition 1 \"Wall\": the greatest thickness of the variable layer ";
  const std::pair<const char*, std::string> cases[] = {
      {"variable_layer_min_thickness = -1", least + "is negative: -1"},
      {"variable_layer_min_thickness = 9e999", least + "is infinite"},
      {"variable_layer_min_thickness = 'x'", least + "is no number: 'x'"},
      {"variable_layer = 0, variable_layer_min_thickness = NULL", least + "is not known"},
      {"variable_layer_max_thickness = -1", greatest + "is negative: -1"},
      {"variable_layer_max_thickness = -9e999", greatest + "is infinite"},
      {"variable_layer_max_thickness = x'01'", greatest + "is no number: X'01'"}};
  for (const auto& one : cases) {
    EXPECT_THAT(found_after("UPDATE Composition SET " + std::string(one.first)),
                ElementsAre(one.second));
  }
  EXPECT_THAT(found_after("UPDATE Composition SET variable_layer_min_thickness = NULL"), IsEmpty());
  EXPECT_THAT(found_after("UPDATE Composition SET variable_layer = 0"), IsEmpty());
}

TEST_F(LibraryCheckRows, tells_of_thicknesses_that_a_host_has_set) {
  {
    const auto library = open();
    auto slab = Composition::create("Slab");
    auto screed = Material::create("Screed");
    screed->thicknesses(veldra::toModify).insert(-3);
    slab->appendLayer({screed, Material::Function::None, nan_});
    slab->appendLayer({screed, Material::Function::None, infinity});
    library->save(slab);
  }
  EXPECT_THAT(findings(),
              ElementsAre("composition 2 \"Slab\": the thickness of layer 1 is not known",
                          "composition 2 \"Slab\": the thickness of layer 2 is infinite",
                          "material 2 \"Screed\": a thickness is negative: -3"));
}

TEST_F(LibraryCheckRows, tells_of_assets_of_a_conductivity_that_is_none) {
  const std::string steel = "asset 1 \"StructuralAsset 1\": the thermal conductivity ";
  const std::string wool = "asset 2 \"ThermalAsset 2\": the thermal conductivity ";
  const std::pair<const char*, std::string> cases[] = {
      {"-0.5", "is negative: -0.5"}, {"9e999", "is infinite"}, {"'good'", "is no number: 'good'"}};
  for (const auto& one : cases) {
    const std::string change = " SET thermal_conductivity = " + std::string(one.first);
    EXPECT_THAT(found_after("UPDATE StructuralAsset" + change), ElementsAre(steel + one.second));
    EXPECT_THAT(found_after("UPDATE ThermalAsset" + change), ElementsAre(wool + one.second));
  }
  EXPECT_THAT(found_after("UPDATE ThermalAsset SET thermal_conductivity = NULL"),
              ElementsAre(wool + "is not known"));
}

TEST_F(LibraryCheckRows, tells_of_types_of_compositions_that_are_none) {
  for (const char* none : {"0", "3", "8", "64", "256", "-1", "'wall'", "1.5", "4294967297"}) {
    EXPECT_THAT(found_after("UPDATE Composition SET type = " + std::string(none)),
                ElementsAre("composition 1 \"Wall\": its type is none of 1, 2, 4 and 128: " +
                            std::string(none)));
  }
  for (const char* type : {"1", "2", "4", "128"}) {
    EXPECT_THAT(found_after("UPDATE Composition SET type = " + std::string(type)), IsEmpty());
  }
}

TEST_F(LibraryCheckRows, tells_of_positions_that_are_doubled) {
  EXPECT_THAT(
      found_after("UPDATE Composition_layers SET \"index\" = 1"),
      ElementsAre("composition 1 \"Wall\": 3 of its layers have the position 1",
                  "composition 1 \"Wall\": none of its layers has the position 0, but one has 1"));
  EXPECT_THAT(found_after("INSERT INTO Composition_layers SELECT * FROM Composition_layers "
                          "WHERE \"index\" = 2"),
              ElementsAre("composition 1 \"Wall\": 2 of its layers have the position 2"));
}

TEST_F(LibraryCheckRows, tells_of_positions_that_leave_gaps) {
  EXPECT_THAT(found_after("UPDATE Composition_layers SET \"index\" = 5 WHERE \"index\" = 2"),
              ElementsAre("composition 1 \"Wall\": none of its layers has the position 2, but one "
                          "has 5"));
  EXPECT_THAT(found_after("DELETE FROM Composition_layers WHERE \"index\" = 0"),
              ElementsAre("composition 1 \"Wall\": none of its layers has the position 0, but one "
                          "has 2"));
  EXPECT_THAT(found_after("UPDATE Composition_layers SET \"index\" = 9223372036854775807 "
                          "WHERE \"index\" = 1"),
              ElementsAre("composition 1 \"Wall\": none of its layers has the position 1, but one "
                          "has 9223372036854775807"));
}

TEST_F(LibraryCheckRows, tells_of_positions_that_are_negative_or_no_numbers) {
  EXPECT_THAT(found_after("UPDATE Composition_layers SET \"index\" = -1 WHERE \"index\" = 2"),
              ElementsAre("composition 1 \"Wall\": a position in its layers is negative: -1"));
  EXPECT_THAT(found_after("UPDATE Composition_layers SET \"index\" = 'last' WHERE \"index\" = 2"),
              ElementsAre("composition 1 \"Wall\": a position in its layers is no whole number: "
                          "'last'"));
  EXPECT_THAT(found_after("UPDATE Composition_layers SET \"index\" = 0.5 WHERE \"index\" = 2"),
              ElementsAre("composition 1 \"Wall\": a position in its layers is no whole number: "
                          "0.5"));
}

TEST_F(LibraryCheckRows, tells_of_a_layer_without_a_position_as_of_any_layer) {
  EXPECT_THAT(
      found_after("UPDATE Composition_layers SET \"index\" = 'x', value_thickness = -1 "
                  "WHERE \"index\" = 2"),
      ElementsAre("composition 1 \"Wall\": a position in its layers is no whole number: 'x'",
                  "composition 1 \"Wall\": the thickness of a layer is negative: -1"));
}

TEST_F(LibraryCheckRows, tells_of_the_positions_of_tags) {
  const std::pair<const char*, std::string> lists[] = {
      {"Asset_tags", "asset 2 \"ThermalAsset 2\": "},
      {"Material_tags", "material 1 \"Brick\": "},
      {"Composition_tags", "composition 1 \"Wall\": "}};
  for (const auto& list : lists) {
    const std::string update = "UPDATE " + std::string(list.first) + " SET \"index\" = ";
    EXPECT_THAT(found_after(update + "0"),
                ElementsAre(list.second + "2 of its tags have the position 0"));
    EXPECT_THAT(found_after(update + "7 WHERE \"index\" = 1"),
                ElementsAre(list.second + "none of its tags has the position 1, but one has 7"));
    EXPECT_THAT(found_after(update + "-4 WHERE \"index\" = 1"),
                ElementsAre(list.second + "a position in its tags is negative: -4"));
  }
}

struct NamedTable {
  const char* table;
  const char* kind;
};

const NamedTable named_tables[] = {{"Tag", "tag"},
                                   {"Asset", "asset"},
                                   {"MaterialType", "material type"},
                                   {"Material", "material"},
                                   {"Composition", "composition"},
                                   {"CustomProperty", "custom property"},
                                   {"Layer", "drawing layer"}};

TEST_F(LibraryCheckRows, tells_of_names_with_a_zero_byte_inside) {
  for (const auto& named : named_tables) {
    EXPECT_THAT(found_after("UPDATE " + std::string(named.table) +
                            " SET name = 'a' || char(0) || 'b' WHERE id = 1"),
                ElementsAre(std::string(named.kind) + " 1 \"a\": its \"name\" has a zero byte "
                                                      "inside"));
  }
}

TEST_F(LibraryCheckRows, tells_of_names_that_are_no_texts) {
  for (const auto& named : named_tables) {
    EXPECT_THAT(
        found_after("UPDATE " + std::string(named.table) + " SET name = x'4142' WHERE id = 1"),
        ElementsAre(std::string(named.kind) + " 1 \"AB\": its \"name\" is no text"));
  }
}

TEST_F(LibraryCheckRows, tells_of_other_texts_that_are_none) {
  const std::pair<const char*, std::string> cases[] = {
      {"UPDATE Material SET code = x'00'", "material 1 \"Brick\": its \"code\" is no text"},
      {"UPDATE Composition SET comments = char(0)",
       "composition 1 \"Wall\": its \"comments\" has a zero byte inside"},
      {"UPDATE StructuralAsset SET subclass = x'00'",
       "asset 1 \"StructuralAsset 1\": its \"subclass\" is no text"},
      {"UPDATE ThermalAsset SET source = char(0)",
       "asset 2 \"ThermalAsset 2\": its \"source\" has a zero byte inside"},
      {"UPDATE Material_custom_values SET value = x'00'",
       "material 1 \"Brick\": its \"value\" is no text"},
      {"INSERT INTO Composition_custom_values VALUES (1, 1, char(0))",
       "composition 1 \"Wall\": its \"value\" has a zero byte inside"}};
  for (const auto& one : cases) EXPECT_THAT(found_after(one.first), ElementsAre(one.second));
}

TEST_F(LibraryCheckRows, tells_of_ids_that_no_object_can_have) {
  for (const char* id : {"0", "-1", "4294967296", "-9223372036854775808"}) {
    EXPECT_THAT(found_after("INSERT INTO Layer VALUES (" + std::string(id) + ", 'x')"),
                testing::Contains("The drawing layer \"x\" has the id " + std::string(id) +
                                  ", which no object can have"));
  }
  EXPECT_THAT(found_after("INSERT INTO CustomProperty VALUES (-7, 'x', 4)"),
              ElementsAre("The custom property \"x\" has the id -7, which no object can have"));
}

TEST_F(LibraryCheckRows, tells_of_sequences_of_ids_that_are_used_up) {
  for (const char* last : {"4294967294", "4294967296", "9223372036854775807"}) {
    EXPECT_THAT(
        found_after("UPDATE sqlite_sequence SET seq = " + std::string(last) +
                    " WHERE name = 'Material'"),
        ElementsAre("No id is left for \"Material\": the last one was " + std::string(last)));
  }
  EXPECT_THAT(found_after("UPDATE sqlite_sequence SET seq = 4294967293"), IsEmpty());
  EXPECT_THAT(found_after("DELETE FROM sqlite_sequence"), IsEmpty());
}

// SQLite goes on behind the largest id, whatever the sequence says.
TEST_F(LibraryCheckRows, tells_of_the_last_id_as_of_a_sequence_that_is_used_up) {
  EXPECT_THAT(found_after("INSERT INTO Tag VALUES (4294967294, 'x');"
                          "UPDATE sqlite_sequence SET seq = 5"),
              ElementsAre("No id is left for \"Tag\": the last one was 4294967294"));
}

TEST_F(LibraryCheckRows, tells_of_sequences_of_ids_that_are_no_numbers) {
  const std::string layer = "The last id of \"Layer\" is noted as ";
  for (const char* value : {"'many'", "1.5", "NULL", "X'01'"}) {
    EXPECT_THAT(found_after("UPDATE sqlite_sequence SET seq = " + std::string(value) +
                            " WHERE name = 'Layer'"),
                ElementsAre(layer + value + ", which is no whole number"));
  }
}

TEST_F(LibraryCheckRows, tells_of_at_most_a_hundred_of_each_sort) {
  tamper(
      "DELETE FROM Composition_layers;"
      "WITH n(i) AS (VALUES (0) UNION ALL SELECT i + 1 FROM n WHERE i < 100)"
      "INSERT INTO Composition_layers SELECT 1, -1, 1, 0, -1 FROM n;"
      "WITH n(i) AS (VALUES (0) UNION ALL SELECT i + 1 FROM n WHERE i < 100)"
      "INSERT INTO Layer (id, name) SELECT -i, 'x' || i FROM n");
  const auto all = findings();
  const auto number = [&all](const std::string& text) {
    return std::count_if(all.begin(), all.end(), [&](const std::string& finding) {
      return finding.find(text) != std::string::npos;
    });
  };
  EXPECT_EQ(number("a position in its layers is negative"), 100);
  EXPECT_EQ(number("the thickness of a layer is negative"), 100);
  EXPECT_EQ(number("which no object can have"), 100);
}

// Those that are not there are told as broken references.
TEST_F(LibraryCheckRows, tells_of_rows_of_objects_that_are_there_only) {
  tamper("UPDATE Composition_layers SET object_id = 77, value_thickness = -1");
  EXPECT_THAT(findings(), testing::Each(testing::HasSubstr("refers to a row of")));
}

TEST_F(LibraryCheckRows, finds_the_same_where_nothing_is_forbidden) {
  tamper(
      "PRAGMA writable_schema = ON;"
      "UPDATE sqlite_master SET sql = replace(sql, ' NOT NULL', '') WHERE type = 'table'");
  tamper(
      "UPDATE Composition_layers SET \"index\" = NULL, value_thickness = -1 WHERE \"index\" = 2");
  EXPECT_THAT(findings(),
              testing::IsSupersetOf(
                  {"composition 1 \"Wall\": a position in its layers is no whole number: NULL",
                   "composition 1 \"Wall\": the thickness of a layer is negative: -1"}));
}

}  // namespace
}  // namespace veldra_tests
