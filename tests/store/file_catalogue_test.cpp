// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/library_fixture.hpp"
#include "support/rows.hpp"

namespace veldra_tests {
namespace {

class FileCatalogue : public LibraryFixture {};

TEST_F(FileCatalogue, the_texts_of_a_new_file_are_these_in_this_order) {
  create_and_close();
  EXPECT_EQ(catalogue(path), current_catalogue());
}

TEST_F(FileCatalogue, a_new_file_has_these_tables_and_indexes_and_nothing_else) {
  create_and_close();
  PlainDatabase database(path);
  std::vector<std::string> entries;
  for (const Row& row :
       database.query("SELECT type || ' ' || name FROM sqlite_master ORDER BY rowid")) {
    entries.push_back(row[0]);
  }
  EXPECT_THAT(
      entries,
      ElementsAre("'table schema_version'", "'index sqlite_autoindex_schema_version_1'",
                  "'table Tag'", "'table sqlite_sequence'", "'index Tag_name_i'",
                  "'table CustomProperty'", "'index object_type_name_i'", "'table Layer'",
                  "'index Layer_name_i'", "'table Asset'", "'table Asset_tags'",
                  "'index Asset_tags_object_id_i'", "'index Asset_tags_index_i'",
                  "'table StructuralAsset'", "'table ThermalAsset'", "'table MaterialType'",
                  "'index MaterialType_name_i'", "'table Material'", "'index Material_name_i'",
                  "'index Material_code_i'", "'table Material_tags'",
                  "'index Material_tags_object_id_i'", "'index Material_tags_index_i'",
                  "'table Material_thicknesses'", "'index Material_thicknesses_object_id_i'",
                  "'table Material_custom_values'", "'index Material_custom_values_object_id_i'",
                  "'table Composition'", "'index Composition_name_i'", "'table Composition_tags'",
                  "'index Composition_tags_object_id_i'", "'index Composition_tags_index_i'",
                  "'table Composition_layers'", "'index Composition_layers_object_id_i'",
                  "'index Composition_layers_index_i'", "'table Composition_custom_values'",
                  "'index Composition_custom_values_object_id_i'", "'table Meta'"));
}

TEST_F(FileCatalogue, the_version_row_of_a_new_file_is_the_only_one_and_complete) {
  create_and_close();
  EXPECT_THAT(PlainDatabase(path).query("SELECT name, version, migration FROM schema_version"),
              ElementsAre(ElementsAre("''", "150302", "0")));
}

TEST_F(FileCatalogue, a_new_file_holds_the_metadata_and_the_material_types_and_nothing_else) {
  create_and_close();
  EXPECT_THAT(PlainDatabase(path).query("SELECT name, seq FROM sqlite_sequence"),
              ElementsAre(ElementsAre("'MaterialType'", "13")));
  const std::string guid = PlainDatabase(path).value("SELECT guid FROM Meta");
  EXPECT_EQ(dump(path),
            "MaterialType: 1 'Ceramic'\nMaterialType: 2 'Concrete'\n"
            "MaterialType: 3 'Earth'\nMaterialType: 4 'Generic'\n"
            "MaterialType: 5 'Glass'\nMaterialType: 6 'Liquid'\n"
            "MaterialType: 7 'Masonry'\nMaterialType: 8 'Metal'\n"
            "MaterialType: 9 'Paint'\nMaterialType: 10 'Plastic'\n"
            "MaterialType: 11 'Stone'\nMaterialType: 12 'Textile'\n"
            "MaterialType: 13 'Wood'\nMeta: 0 " +
                guid +
                " 1 '' ''\nschema_version: '' 150302 0\n"
                "sqlite_sequence: 'MaterialType' 13\n");
}

TEST_F(FileCatalogue, a_new_file_is_sound) {
  create_and_close();
  EXPECT_EQ(damage(path), "");
}

TEST_F(FileCatalogue, opening_again_leaves_the_texts) {
  create_and_close();
  open();
  open_read_only();
  create();
  EXPECT_EQ(catalogue(path), current_catalogue());
}

// A file that counts as empty.

TEST_F(FileCatalogue, an_empty_file_becomes_a_library) {
  write_file(path, "");
  open();
  EXPECT_EQ(catalogue(path), current_catalogue());
}

TEST_F(FileCatalogue, an_empty_database_becomes_a_library) {
  PlainDatabase(path).execute("CREATE TABLE Passing (id); DROP TABLE Passing");
  open();
  EXPECT_EQ(catalogue(path), current_catalogue());
}

TEST_F(FileCatalogue, a_file_without_a_version_row_is_made_anew) {
  create_and_close();
  PlainDatabase(path).execute(
      "INSERT INTO Tag (name) VALUES ('facade'); DELETE FROM schema_version");
  const auto library = create(veldra::Unit::Inches, "abc");
  EXPECT_EQ(library->count<veldra::Tag>(), 0u);
  EXPECT_EQ(library->unit(), veldra::Unit::Inches);
  EXPECT_THAT(PlainDatabase(path).query("SELECT * FROM schema_version"),
              ElementsAre(ElementsAre("''", "150302", "0")));
}

TEST_F(FileCatalogue, a_file_without_the_version_table_is_made_anew) {
  create_and_close();
  PlainDatabase(path).execute(
      "INSERT INTO Tag (name) VALUES ('facade'); DROP TABLE schema_version");
  EXPECT_EQ(open()->count<veldra::Tag>(), 0u);
}

TEST_F(FileCatalogue, a_partly_present_schema_is_made_whole) {
  PlainDatabase(path).execute("CREATE TABLE Tag (word); CREATE TABLE Meta (word)");
  open();
  EXPECT_EQ(catalogue(path), current_catalogue());
}

TEST_F(FileCatalogue, tables_of_others_stay_when_a_library_is_made_around_them) {
  PlainDatabase(path).execute("CREATE TABLE Notes (word); INSERT INTO Notes VALUES ('kept')");
  open();
  EXPECT_EQ(catalogue(path), "CREATE TABLE Notes (word)\n\n" + current_catalogue());
  EXPECT_EQ(PlainDatabase(path).value("SELECT word FROM Notes"), "'kept'");
}

// Foreign keys are not enforced while the tables are dropped.
TEST_F(FileCatalogue, rows_of_others_that_refer_to_a_library_do_not_keep_it_from_being_made_anew) {
  create_and_close();
  PlainDatabase(path).execute(
      "INSERT INTO Tag VALUES (1, 'facade'); CREATE TABLE Notes (tag REFERENCES Tag (id));"
      "INSERT INTO Notes VALUES (1); DELETE FROM schema_version");
  EXPECT_EQ(open()->count<veldra::Tag>(), 0u);
  EXPECT_EQ(PlainDatabase(path).value("SELECT tag FROM Notes"), "1");
}

TEST_F(FileCatalogue, the_version_table_may_be_written_in_any_case) {
  create_and_close();
  PlainDatabase(path).execute(
      "INSERT INTO Tag (name) VALUES ('kept'); ALTER TABLE schema_version RENAME TO other;"
      "ALTER TABLE other RENAME TO Schema_Version");
  EXPECT_EQ(open()->count<veldra::Tag>(), 1u);
}

TEST_F(FileCatalogue, version_rows_of_other_schemas_do_not_count_and_stay) {
  PlainDatabase(path).execute(
      "CREATE TABLE schema_version (name TEXT NOT NULL PRIMARY KEY, version INTEGER NOT NULL, "
      "migration INTEGER NOT NULL); INSERT INTO schema_version VALUES ('other', 7, 1)");
  EXPECT_EQ(open()->version(), 150302u);
  EXPECT_THAT(PlainDatabase(path).query("SELECT * FROM schema_version ORDER BY name"),
              ElementsAre(ElementsAre("''", "150302", "0"), ElementsAre("'other'", "7", "1")));
}

// What the schema allows and refuses, whoever writes.

class FileRules : public LibraryFixture {
 protected:
  void SetUp() override {
    create_and_close();
    database_ = std::make_unique<PlainDatabase>(path);
    database_->execute("PRAGMA foreign_keys=ON");
  }

  PlainDatabase& database() { return *database_; }

  void insert_material(const std::string& id, const std::string& name, const std::string& code) {
    put_material(database(), {{"id", id}, {"name", quoted(name)}, {"code", code}});
  }

  std::string refusal(const std::string& statement) {
    try {
      database().execute(statement);
      return "accepted";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }

  std::string number_of(const std::string& table) {
    return database().value("SELECT count(*) FROM " + table);
  }

 private:
  std::unique_ptr<PlainDatabase> database_;
};

TEST_F(FileRules, several_materials_may_lack_a_code) {
  insert_material("1", "Oak", "NULL");
  insert_material("2", "Ash", "NULL");
  EXPECT_EQ(number_of("Material"), "2");
}

TEST_F(FileRules, a_code_is_unique) {
  insert_material("1", "Oak", "'W'");
  insert_material("2", "Ash", "'V'");
  EXPECT_THAT(refusal("UPDATE Material SET code = 'W' WHERE id = 2"),
              HasSubstr("UNIQUE constraint failed: Material.code"));
}

TEST_F(FileRules, names_are_unique_within_a_kind) {
  for (const std::string table : {"Tag", "Layer", "MaterialType"}) {
    database().execute("INSERT INTO " + table + " (name) VALUES ('same')");
    EXPECT_THAT(refusal("INSERT INTO " + table + " (name) VALUES ('same')"),
                HasSubstr("UNIQUE constraint failed: " + table + ".name"));
  }
  const std::string composition =
      "INSERT INTO Composition (name, description, type, comments, first_core_layer, "
      "last_core_layer, structural_layer) VALUES ('same', '', 1, '', 0, 0, 0)";
  EXPECT_EQ(refusal(composition), "accepted");
  EXPECT_THAT(refusal(composition), HasSubstr("UNIQUE constraint failed: Composition.name"));
}

TEST_F(FileRules, material_names_are_unique) {
  insert_material("1", "Oak", "NULL");
  insert_material("2", "Ash", "NULL");
  EXPECT_THAT(refusal("UPDATE Material SET name = 'Oak' WHERE id = 2"),
              HasSubstr("UNIQUE constraint failed: Material.name"));
}

TEST_F(FileRules, asset_names_are_not_unique) {
  database().execute(
      "INSERT INTO Asset (typeid, name, description) VALUES ('a', 'same', ''), ('a', 'same', '')");
  EXPECT_EQ(number_of("Asset"), "2");
}

TEST_F(FileRules, custom_properties_are_unique_by_kind_of_object_and_name) {
  database().execute("INSERT INTO CustomProperty (name, object_type) VALUES ('U', 4), ('U', 5)");
  EXPECT_THAT(refusal("INSERT INTO CustomProperty (name, object_type) VALUES ('U', 4)"),
              HasSubstr("CustomProperty.object_type, CustomProperty.name"));
}

TEST_F(FileRules, ids_are_not_used_again) {
  database().execute(
      "INSERT INTO Tag (name) VALUES ('a'), ('b'); DELETE FROM Tag WHERE name = 'b';"
      "INSERT INTO Tag (name) VALUES ('c')");
  EXPECT_EQ(database().value("SELECT id FROM Tag WHERE name = 'c'"), "3");
}

TEST_F(FileRules, a_material_takes_its_lists_with_it) {
  insert_material("1", "Oak", "NULL");
  database().execute(
      "INSERT INTO Tag VALUES (1, 'a'); INSERT INTO Material_tags VALUES (1, 0, 1);"
      "INSERT INTO Material_thicknesses VALUES (1, 22.0);"
      "INSERT INTO CustomProperty VALUES (1, 'U', 4);"
      "INSERT INTO Material_custom_values VALUES (1, 1, 'x'); DELETE FROM Material");
  EXPECT_EQ(number_of("Material_tags"), "0");
  EXPECT_EQ(number_of("Material_thicknesses"), "0");
  EXPECT_EQ(number_of("Material_custom_values"), "0");
}

TEST_F(FileRules, an_asset_takes_its_properties_and_tags_with_it) {
  database().execute(
      "INSERT INTO Tag VALUES (1, 'a');"
      "INSERT INTO Asset VALUES (1, 'x', '', ''), (2, 'y', '', '');"
      "INSERT INTO StructuralAsset VALUES (1, '', 1, 1, 1);"
      "INSERT INTO ThermalAsset VALUES (2, '', '', 1, 1, 1, 1);"
      "INSERT INTO Asset_tags VALUES (1, 0, 1), (2, 0, 1); DELETE FROM Asset");
  EXPECT_EQ(number_of("StructuralAsset"), "0");
  EXPECT_EQ(number_of("ThermalAsset"), "0");
  EXPECT_EQ(number_of("Asset_tags"), "0");
}

TEST_F(FileRules, a_reference_is_checked_at_the_commit) {
  insert_material("1", "Oak", "NULL");
  EXPECT_EQ(refusal("BEGIN; INSERT INTO Material_tags VALUES (1, 0, 5);"
                    "INSERT INTO Tag VALUES (5, 'late'); COMMIT"),
            "accepted");
  EXPECT_EQ(refusal("BEGIN; DELETE FROM Tag"), "accepted");
  EXPECT_THAT(refusal("COMMIT"), HasSubstr("FOREIGN KEY constraint failed"));
}

}  // namespace
}  // namespace veldra_tests
