// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/check_fixture.hpp"
#include "support/builders.hpp"

#include <unistd.h>

#include <chrono>
#include <set>

namespace veldra_tests {
namespace {

/// A table, and the kinds whose objects are read from it.
struct TableAndKinds {
  const char* name;
  std::set<ObjectType> kinds;
};

constexpr auto material = ObjectType::Material;
constexpr auto composition = ObjectType::Composition;

const TableAndKinds tables[] = {
    {"Tag", {ObjectType::Tag, material, composition}},
    {"CustomProperty", {ObjectType::CustomProperty, material, composition}},
    {"Layer", {ObjectType::Layer, material, composition}},
    {"Asset", {material, composition}},
    {"Asset_tags", {material, composition}},
    {"StructuralAsset", {material, composition}},
    {"ThermalAsset", {material, composition}},
    {"MaterialType", {ObjectType::MaterialType, material, composition}},
    {"Material", {material, composition}},
    {"Material_tags", {material, composition}},
    {"Material_thicknesses", {material, composition}},
    {"Material_custom_values", {material, composition}},
    {"Composition", {composition}},
    {"Composition_tags", {composition}},
    {"Composition_layers", {composition}},
    {"Composition_custom_values", {composition}},
    {"Meta", {}}};

/// Ends the process when something takes for ever, and finds what takes long.
class FiveSeconds {
 public:
  FiveSeconds() { ::alarm(60); }
  ~FiveSeconds() {
    ::alarm(0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin_, std::chrono::seconds(5));
  }

 private:
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

class LibraryCheckTables : public CheckFixture, public testing::WithParamInterface<TableAndKinds> {
 protected:
  /// Opened before the file is tampered with: opening reads the identity.
  void SetUp() override {
    library_ = create();
    library_->save(full_composition("Wall"));
  }

  /// A view with the columns of a table, whose rows never end.
  void replace_by_an_endless_view(const std::string& table) const {
    std::string columns;
    for (const auto& row : PlainDatabase(path).query("SELECT '\"' || name || '\"' FROM "
                                                     "pragma_table_info('" +
                                                     table + "')")) {
      const std::string name = row[0].substr(1, row[0].size() - 2);
      columns += (columns.empty() ? "i AS " : ", i AS ") + name;
    }
    tamper("PRAGMA legacy_alter_table = ON; DROP TABLE \"" + table + "\"; CREATE VIEW \"" + table +
           "\" AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT " +
           columns + " FROM n");
  }

  /// Kinds of which all objects must not be read.
  std::set<ObjectType> unreadable_kinds() const {
    std::vector<Library::Finding> found;
    library_->check(found);
    std::set<ObjectType> kinds;
    for (const auto& finding : found) {
      if (finding.object.type != ObjectType{} && finding.object.id == 0) {
        kinds.insert(finding.object.type);
      }
    }
    return kinds;
  }

  std::shared_ptr<Library> library_;
};

TEST_P(LibraryCheckTables, a_view_without_end_in_the_place_of_a_table_is_told_and_not_read) {
  const std::string table = GetParam().name;
  replace_by_an_endless_view(table);
  const FiveSeconds limit;
  EXPECT_THAT(findings(*library_), Contains("The file has the view \"" + table +
                                            "\" where the table \"" + table + "\" belongs"));
  EXPECT_EQ(unreadable_kinds(), GetParam().kinds);
}

TEST_P(LibraryCheckTables, a_view_is_told_once) {
  const std::string table = GetParam().name;
  replace_by_an_endless_view(table);
  std::vector<Library::Finding> found;
  library_->check(found);
  for (const auto& finding : found) {
    if (finding.object.type != ObjectType{}) continue;
    EXPECT_EQ(finding.sentence.utf8(),
              "The file has the view \"" + table + "\" where the table \"" + table + "\" belongs");
  }
}

TEST_P(LibraryCheckTables, the_kinds_that_a_missing_table_keeps_from_being_read_are_told) {
  tamper("DROP TABLE \"" + std::string(GetParam().name) + "\"");
  EXPECT_EQ(unreadable_kinds(), GetParam().kinds);
}

template <class T>
void expect_readable(const Library& library) {
  std::vector<std::shared_ptr<T>> objects;
  EXPECT_NO_THROW(library.get(objects));
  EXPECT_THAT(objects, Not(IsEmpty()));
}

TEST_P(LibraryCheckTables, all_other_kinds_can_be_read) {
  replace_by_an_endless_view(GetParam().name);
  const FiveSeconds limit;
  const auto unreadable = unreadable_kinds();
  if (unreadable.count(ObjectType::Tag) == 0) expect_readable<veldra::Tag>(*library_);
  if (unreadable.count(ObjectType::Layer) == 0) expect_readable<veldra::Layer>(*library_);
  if (unreadable.count(ObjectType::MaterialType) == 0) {
    expect_readable<veldra::MaterialType>(*library_);
  }
  if (unreadable.count(ObjectType::CustomProperty) == 0) {
    expect_readable<veldra::CustomProperty>(*library_);
  }
  if (unreadable.count(material) == 0) expect_readable<veldra::Material>(*library_);
  if (unreadable.count(composition) == 0) expect_readable<veldra::Composition>(*library_);
}

INSTANTIATE_TEST_SUITE_P(Tables, LibraryCheckTables, testing::ValuesIn(tables),
                         [](const auto& test) { return std::string(test.param.name); });

using LibraryCheckTable = LibraryCheckTables;

TEST_F(LibraryCheckTable, a_view_in_the_place_of_the_version_is_told_and_not_read) {
  replace_by_an_endless_view("schema_version");
  const FiveSeconds limit;
  EXPECT_THAT(findings(*library_),
              ElementsAre("The file has the view \"schema_version\" where the table "
                          "\"schema_version\" belongs"));
}

TEST_F(LibraryCheckTable, a_kind_that_cannot_be_read_is_told_with_the_cause) {
  replace_by_an_endless_view("Tag");
  const std::string rest = ": they cannot be read, because \"Tag\" is a view";
  EXPECT_THAT(findings(*library_),
              ElementsAre("The file has the view \"Tag\" where the table \"Tag\" belongs",
                          "tags" + rest, "materials" + rest, "compositions" + rest));
}

TEST_F(LibraryCheckTable, a_view_that_refers_to_a_table_by_another_case_is_told) {
  tamper("PRAGMA legacy_alter_table = ON; DROP TABLE Tag; CREATE VIEW tag AS SELECT 1 AS id");
  EXPECT_THAT(findings(*library_),
              Contains("The file has the view \"tag\" where the table \"Tag\" belongs"));
}

TEST_F(LibraryCheckTable, a_virtual_table_is_told_and_not_read) {
  tamper("DROP TABLE Tag; CREATE VIRTUAL TABLE Tag USING fts5(id, name)");
  EXPECT_THAT(findings(*library_),
              Contains("The file has the virtual table \"Tag\" where the table \"Tag\" belongs"));
  EXPECT_EQ(unreadable_kinds(), (std::set<ObjectType>{ObjectType::Tag, material, composition}));
}

TEST_F(LibraryCheckTable, a_virtual_table_of_an_unknown_module_hides_nothing) {
  tamper(
      "INSERT INTO Material_thicknesses VALUES (1, -2);"
      "PRAGMA writable_schema = ON; INSERT INTO sqlite_master VALUES "
      "('table', 'Unknown', 'Unknown', 0, 'CREATE VIRTUAL TABLE Unknown USING nothing(x)')");
  EXPECT_THAT(findings(*library_),
              ElementsAre("The file has the virtual table \"Unknown\", which does not belong there",
                          HasSubstr("a thickness is negative: -2")));
}

// The columns of the last one are those of a thousand million others, if anybody asks for them.
TEST_F(LibraryCheckTable, views_that_multiply_are_not_looked_into) {
  std::string views = "CREATE VIEW v0 AS SELECT 1 AS a;";
  for (int i = 1; i != 31; ++i) {
    const std::string last = "v" + std::to_string(i - 1);
    views += "CREATE VIEW v" + std::to_string(i) + " AS SELECT x.a FROM " + last + " AS x, " +
             last + " AS y;";
  }
  tamper(views);
  const FiveSeconds limit;
  EXPECT_THAT(findings(*library_),
              Contains("The file has the view \"v30\", which does not belong there"));
}

TEST_F(LibraryCheckTable, references_to_a_view_do_not_hide_the_others) {
  replace_by_an_endless_view("MaterialType");
  tamper("UPDATE Composition_layers SET value_material_id = 99 WHERE \"index\" = 0");
  EXPECT_THAT(findings(*library_),
              Contains("\"Composition_layers\", row 1: \"value_material_id\" refers to a row of "
                       "\"Material\" that is not there"));
}

TEST_F(LibraryCheckTable, rows_are_examined_beside_a_view) {
  replace_by_an_endless_view("MaterialType");
  tamper("UPDATE Composition_layers SET value_thickness = -1 WHERE \"index\" = 0");
  EXPECT_THAT(findings(*library_),
              Contains("composition 1 \"Wall\": the thickness of layer 1 is negative: -1"));
}

class LibraryCheckSeveralTables : public CheckFixture {
 protected:
  LibraryCheckSeveralTables() { library_->save(full_composition("Wall")); }

  /// Why objects of a kind cannot be read.
  std::string reason_of(ObjectType kind) const {
    std::vector<Library::Finding> found;
    library_->check(found);
    for (const auto& finding : found) {
      if (finding.object.type == kind && finding.object.id == 0) return finding.sentence.utf8();
    }
    return "";
  }

  const std::shared_ptr<Library> library_ = create();
};

TEST_F(LibraryCheckSeveralTables, of_several_causes_the_nearest_is_told) {
  tamper("DROP TABLE Layer; DROP TABLE CustomProperty; DROP TABLE Asset_tags");
  EXPECT_THAT(reason_of(ObjectType::Material), HasSubstr("\"CustomProperty\""));
  EXPECT_THAT(reason_of(ObjectType::Composition), HasSubstr("\"CustomProperty\""));
  tamper("DROP TABLE Tag; DROP TABLE Material_tags");
  EXPECT_THAT(reason_of(ObjectType::Material), HasSubstr("\"Material_tags\""));
  EXPECT_THAT(reason_of(ObjectType::Composition), HasSubstr("\"Material_tags\""));
}

}  // namespace
}  // namespace veldra_tests
