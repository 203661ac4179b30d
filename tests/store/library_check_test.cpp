// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/check_fixture.hpp"
#include "support/builders.hpp"
#include "support/catalogues.hpp"
#include "support/file_state.hpp"
#include "support/rows.hpp"
#include "support/thrown.hpp"

namespace veldra_tests {
namespace {

class LibraryCheck : public CheckFixture {};

TEST_F(LibraryCheck, finds_nothing_in_a_new_library) {
  EXPECT_THAT(findings(*create()), IsEmpty());
}

TEST_F(LibraryCheck, finds_nothing_in_a_library_with_all_values) {
  {
    const auto library = create();
    library->save(full_composition("Wall"));
    library->save(veldra::Composition::create("Bare"));
  }
  PlainDatabase database(path);
  put_structural_asset(database, "1");
  put_thermal_asset(database, "2");
  database.execute(
      "UPDATE Material SET structural_id = 1, thermal_id = 2;"
      "INSERT INTO Asset_tags VALUES (1, 0, 1), (1, 1, 2), (1, 2, 1)");
  EXPECT_THAT(findings(), IsEmpty());
}

// Values that are not known are NULL in the old files: a thickness that is not known is told.
TEST_F(LibraryCheck, finds_nothing_but_unknown_numbers_in_a_library_that_was_migrated) {
  for (const int version : {150201, 150301}) {
    const std::string old = folder / std::to_string(version);
    make_old_file(old, version);
    fill_old_file(old, version);
    EXPECT_THAT(
        findings(*Library::open(old.c_str(), false)),
        UnorderedElementsAre("composition 1 \"Parquet\": the thickness of layer 2 is not known",
                             "material 9 \"Granite\": a thickness is not known",
                             "asset 3 \"Unknown\": the thermal conductivity is not known",
                             "asset 5 \"Unknown\": the thermal conductivity is not known"))
        << version;
  }
}

TEST_F(LibraryCheck, takes_the_statistics_of_SQLite_for_no_part_of_the_schema) {
  create_and_close();
  tamper("ANALYZE");
  EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(LibraryCheck, works_on_a_library_that_can_only_be_read) {
  create_and_close();
  tamper("DROP TABLE Composition_tags");
  EXPECT_THAT(findings(*open_read_only()),
              ElementsAre("The file lacks the table \"Composition_tags\"",
                          "compositions: they cannot be read, because \"Composition_tags\" is "
                          "missing"));
}

TEST_F(LibraryCheck, works_on_a_library_in_memory) {
  EXPECT_THAT(findings(*Library::create("memdb:///check", veldra::Unit::Inches, "")), IsEmpty());
}

TEST_F(LibraryCheck, works_while_an_operation_is_running) {
  struct Checking : Library::Reactor {
    void objectSaved(Library& library, const veldra::ObjectKey&) override {
      found = findings(library);
    }
    std::vector<std::string> found{"not asked"};
  } reactor;
  const auto library = create();
  library->setReactor(&reactor);
  library->save(veldra::Tag::create("facade"));
  EXPECT_THAT(reactor.found, IsEmpty());
}

TEST_F(LibraryCheck, changes_nothing) {
  create_and_close();
  tamper("DROP INDEX Tag_name_i");
  const FileState before(path);
  findings();
  EXPECT_TRUE(before == FileState(path));
}

TEST_F(LibraryCheck, appends) {
  create_and_close();
  tamper("CREATE TABLE Prices (id)");
  std::vector<veldra::String> found{"an earlier one"};
  open()->check(found);
  ASSERT_THAT(found, SizeIs(2));
  EXPECT_EQ(found[0].utf8(), "an earlier one");
}

TEST_F(LibraryCheck, tells_of_damage) {
  create_and_close();
  tamper(
      "PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = (SELECT rootpage FROM "
      "sqlite_master WHERE name = 'Layer_name_i') WHERE name = 'MaterialType_name_i'");
  EXPECT_THAT(findings(), Contains(HasSubstr("missing from index MaterialType_name_i")));
}

TEST_F(LibraryCheck, tells_of_null_where_there_must_be_none) {
  create_and_close();
  rewrite("Meta", "\"locale\" TEXT NOT NULL", "\"locale\" TEXT");
  tamper("UPDATE Meta SET locale = NULL");
  rewrite("Meta", "\"locale\" TEXT", "\"locale\" TEXT NOT NULL");
  EXPECT_THAT(findings(), ElementsAre("NULL value in Meta.locale"));
}

TEST_F(LibraryCheck, tells_of_references_to_nothing) {
  create_and_close();
  tamper(
      "INSERT INTO Tag VALUES (3, 'facade');"
      "INSERT INTO Material_tags (rowid, object_id, \"index\", tag_id) VALUES (8, 77, 0, 3)");
  EXPECT_THAT(findings(), ElementsAre("\"Material_tags\", row 8: \"object_id\" refers to a row of "
                                      "\"Material\" that is not there"));
}

TEST_F(LibraryCheck, tells_of_at_most_a_hundred_references) {
  create_and_close();
  tamper(
      "WITH n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 101)"
      "INSERT INTO Material_thicknesses SELECT i, 1 FROM n");
  EXPECT_THAT(findings(), SizeIs(100));
}

TEST_F(LibraryCheck, tells_of_an_identity_that_is_there_twice) {
  create_and_close();
  tamper("INSERT INTO Meta SELECT 1, guid, unit, locale, region FROM Meta");
  EXPECT_THAT(findings(), ElementsAre("\"Meta\" has 2 rows instead of one"));
}

TEST_F(LibraryCheck, tells_of_an_identity_that_went) {
  const auto library = create();
  tamper("DELETE FROM Meta");
  EXPECT_THAT(findings(*library), ElementsAre("\"Meta\" has 0 rows instead of one"));
}

TEST_F(LibraryCheck, tells_of_a_version_that_is_there_twice) {
  create_and_close();
  const auto library = open();
  tamper(
      "CREATE TABLE copy AS SELECT * FROM schema_version; DROP TABLE schema_version;"
      "ALTER TABLE copy RENAME TO schema_version;"
      "INSERT INTO schema_version SELECT * FROM schema_version");
  EXPECT_THAT(findings(*library), Contains("\"schema_version\" has 2 rows with the version of the "
                                           "library instead of one"));
}

TEST_F(LibraryCheck, tells_of_a_version_that_went) {
  const auto library = create();
  tamper("UPDATE schema_version SET name = 'other'");
  EXPECT_THAT(findings(*library), ElementsAre("\"schema_version\" has 0 rows with the version of "
                                              "the library instead of one"));
  tamper("DROP TABLE schema_version");
  EXPECT_THAT(findings(*library), ElementsAre("The file lacks the table \"schema_version\""));
}

TEST_F(LibraryCheck, tells_of_what_the_schema_lacks) {
  create_and_close();
  tamper(
      "DROP INDEX Tag_name_i; DROP TABLE Composition_tags; ALTER TABLE Material DROP COLUMN mark");
  EXPECT_THAT(findings(),
              UnorderedElementsAre("\"Tag\" lacks the unique index \"Tag_name_i\" on \"name\"",
                                   "The file lacks the table \"Composition_tags\"",
                                   "\"Material\" lacks the column \"mark\" TEXT NOT NULL",
                                   "materials: they cannot be read, because \"Material\" lacks "
                                   "the column \"mark\"",
                                   "compositions: they cannot be read, because "
                                   "\"Composition_tags\" is missing"));
}

TEST_F(LibraryCheck, tells_of_what_does_not_belong_in_the_schema) {
  create_and_close();
  tamper(
      "CREATE TABLE Prices (id); CREATE VIEW Cheap AS SELECT * FROM Prices;"
      "CREATE TRIGGER watch AFTER INSERT ON Tag BEGIN SELECT 1; END;"
      "CREATE INDEX by_mark ON Material (mark COLLATE NOCASE DESC) WHERE mark <> '';"
      "ALTER TABLE Layer ADD COLUMN colour TEXT DEFAULT 'red'");
  const std::string rest = ", which does not belong there";
  EXPECT_THAT(findings(), UnorderedElementsAre(
                              "The file has the table \"Prices\"" + rest,
                              "The file has the view \"Cheap\"" + rest,
                              "The file has the trigger \"watch\"" + rest,
                              "\"Material\" has the partial index \"by_mark\" on \"mark\" DESC "
                              "COLLATE NOCASE" +
                                  rest,
                              "\"Layer\" has the column \"colour\" TEXT DEFAULT 'red'" + rest));
}

TEST_F(LibraryCheck, tells_of_generated_columns) {
  create_and_close();
  tamper("ALTER TABLE Layer ADD COLUMN upper TEXT AS (upper(name))");
  EXPECT_THAT(findings(), ElementsAre("\"Layer\" has the column \"upper\" TEXT GENERATED, which "
                                      "does not belong there"));
}

TEST_F(LibraryCheck, tells_of_tables_of_another_sort) {
  create_and_close();
  tamper(
      "DROP TABLE Material_thicknesses;"
      "CREATE TABLE Material_thicknesses (object_id INTEGER NOT NULL, value REAL) STRICT");
  EXPECT_THAT(findings(),
              ElementsAre("The file lacks the table \"Material_thicknesses\"",
                          "The file has the table \"Material_thicknesses\" STRICT, which does not "
                          "belong there"));
}

TEST_F(LibraryCheck, tells_of_tables_without_rowids) {
  create_and_close();
  tamper(
      "DROP TABLE Material_thicknesses;"
      "CREATE TABLE Material_thicknesses (object_id INTEGER PRIMARY KEY, value REAL) "
      "WITHOUT ROWID");
  const std::string rest = ", which does not belong there";
  EXPECT_THAT(
      findings(),
      UnorderedElementsAre(
          "The file lacks the table \"Material_thicknesses\"",
          "The file has the table \"Material_thicknesses\" WITHOUT ROWID" + rest,
          "\"Material_thicknesses\" has the column \"object_id\" INTEGER NOT NULL PRIMARY KEY" +
              rest,
          "\"Material_thicknesses\" has the unique index "
          "\"sqlite_autoindex_Material_thicknesses_1\" on \"object_id\"" +
              rest));
}

struct Rewriting {
  const char* table;
  const char* word;
  const char* by;
  std::vector<std::string> findings;
};

TEST_F(LibraryCheck, tells_of_tables_that_are_worded_differently) {
  const std::string rest = ", which does not belong there";
  const Rewriting rewritings[] = {
      {"Layer", "AUTOINCREMENT", "", {"\"Layer\" lacks the word AUTOINCREMENT"}},
      {"Layer",
       "\"name\" TEXT NOT NULL",
       "\"name\" TEXT NOT NULL CHECK (name)",
       {"\"Layer\" has the word CHECK" + rest}},
      {"Layer",
       "\"name\" TEXT NOT NULL",
       "\"name\" TEXT NOT NULL COLLATE BINARY",
       {"\"Layer\" has the word COLLATE" + rest}},
      {"Layer",
       "\"name\" TEXT NOT NULL",
       "\"name\" TEXT",
       {"\"Layer\" lacks the column \"name\" TEXT NOT NULL",
        "\"Layer\" has the column \"name\" TEXT" + rest}},
      {"Layer",
       "\"name\" TEXT",
       "\"name\" INTEGER",
       {"\"Layer\" lacks the column \"name\" TEXT NOT NULL",
        "\"Layer\" has the column \"name\" INTEGER NOT NULL" + rest}},
      {"Material_thicknesses",
       "ON DELETE CASCADE",
       "",
       {"\"Material_thicknesses\" lacks the foreign key from \"object_id\" to \"Material\" "
        "(\"id\") ON DELETE CASCADE ON UPDATE NO ACTION",
        "\"Material_thicknesses\" has the foreign key from \"object_id\" to \"Material\" (\"id\") "
        "ON DELETE NO ACTION ON UPDATE NO ACTION" +
            rest}},
  };
  for (const auto& rewriting : rewritings) {
    std::remove(path.c_str());
    create_and_close();
    rewrite(rewriting.table, rewriting.word, rewriting.by);
    EXPECT_THAT(findings(), testing::UnorderedElementsAreArray(rewriting.findings))
        << rewriting.word << " -> " << rewriting.by;
  }
}

TEST_F(LibraryCheck, tells_of_names_that_are_not_UTF_8) {
  create_and_close();
  tamper("CREATE TABLE \"Pr\xC3ses\" (id)");
  EXPECT_THAT(findings(), ElementsAre("The file has the table \"Pr\xEF\xBF\xBDses\", which does "
                                      "not belong there"));
}

TEST_F(LibraryCheck, goes_on_when_a_foreign_key_has_nothing_to_refer_to) {
  create_and_close();
  tamper("CREATE TABLE Prices (id REFERENCES Tag (price)); INSERT INTO Prices VALUES (1)");
  EXPECT_THAT(findings(), ElementsAre("The file has the table \"Prices\", which does not belong "
                                      "there",
                                      HasSubstr("foreign key mismatch")));
}

TEST_F(LibraryCheck, tells_of_references_beside_a_foreign_key_that_has_nothing_to_refer_to) {
  create_and_close();
  tamper(
      "CREATE TABLE Prices (id REFERENCES Tag (price)); INSERT INTO Prices VALUES (1);"
      "INSERT INTO Material_thicknesses VALUES (77, 1)");
  EXPECT_THAT(findings(), Contains("\"Material_thicknesses\", row 1: \"object_id\" refers to a "
                                   "row of \"Material\" that is not there"));
}

TEST_F(LibraryCheck, goes_on_when_a_table_is_too_damaged_to_be_read) {
  create_and_close();
  tamper(
      "CREATE TABLE Prices (id); PRAGMA writable_schema = ON; UPDATE sqlite_master SET rootpage = "
      "(SELECT rootpage FROM sqlite_master WHERE name = 'Layer_name_i') WHERE name = "
      "'Composition_tags'");
  EXPECT_THAT(findings(), IsSupersetOf({"database disk image is malformed",
                                        "The file has the table \"Prices\", which does not belong "
                                        "there"}));
}

TEST_F(LibraryCheck, waits_for_others_and_then_throws_and_appends_nothing) {
  const auto library = create();
  PlainDatabase other(path);
  other.execute("BEGIN EXCLUSIVE");
  std::vector<veldra::String> found{"an earlier one"};
  EXPECT_EQ(thrown_by([&] { library->check(found); }), "odb::timeout");
  EXPECT_THAT(found, SizeIs(1));
}

}  // namespace
}  // namespace veldra_tests
