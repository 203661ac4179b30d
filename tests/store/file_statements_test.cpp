// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/library_fixture.hpp"
#include "support/statement_log.hpp"

#include <algorithm>

namespace veldra_tests {
namespace {

const std::string version_table = R"sql(CREATE TABLE IF NOT EXISTS "schema_version" (
  "name" TEXT NOT NULL PRIMARY KEY,
  "version" INTEGER NOT NULL,
  "migration" INTEGER NOT NULL))sql";

const std::string forget_version = R"sql(DELETE FROM "schema_version"
  WHERE "name" = '')sql";

const std::string register_version = R"sql(INSERT OR IGNORE INTO "schema_version" (
  "name", "version", "migration")
  VALUES ('', 150302, 0))sql";

const std::string begin_step_to_150301 = R"sql(UPDATE "schema_version"
  SET "version" = 150301, "migration" = 1
  WHERE "name" = '')sql";

const std::string begin_step_to_150302 = R"sql(UPDATE "schema_version"
  SET "version" = 150302, "migration" = 1
  WHERE "name" = '')sql";

const std::string end_step = R"sql(UPDATE "schema_version"
  SET "migration" = 0
  WHERE "name" = '')sql";

const std::string add_cut_layer = R"sql(ALTER TABLE "Material"
  ADD COLUMN "cut_layer" INTEGER NULL CONSTRAINT "cut_layer_fk" REFERENCES "Layer" ("id"))sql";

const std::string add_entity_layer = R"sql(ALTER TABLE "Composition"
  ADD COLUMN "entity_layer" INTEGER NULL CONSTRAINT "entity_layer_fk" REFERENCES "Layer" ("id"))sql";

// What refers to others goes before them.
const Statements tables_as_dropped = {"Meta",
                                      "Composition_custom_values",
                                      "Composition_layers",
                                      "Composition_tags",
                                      "Composition",
                                      "Material_custom_values",
                                      "Material_thicknesses",
                                      "Material_tags",
                                      "Material",
                                      "MaterialType",
                                      "ThermalAsset",
                                      "StructuralAsset",
                                      "Asset_tags",
                                      "Asset",
                                      "Layer",
                                      "CustomProperty",
                                      "Tag"};

/// The texts of the tables and indexes of objects and metadata, in their order in a new file.
Statements current_texts() {
  Statements texts;
  const std::string catalogue = current_catalogue();
  for (std::size_t begin = 0, end; begin != catalogue.size(); begin = end + 2) {
    end = catalogue.find("\n\n", begin);
    const std::string text = catalogue.substr(begin, end - begin);
    if (text.find("\"schema_version\"") == std::string::npos &&
        text.find("sqlite_sequence") == std::string::npos) {
      texts.push_back(text);
    }
  }
  return texts;
}

/// Those of one table and of its indexes.
Statements texts_of(const std::string& table) {
  Statements texts;
  for (const std::string& text : current_texts()) {
    if (text.find("TABLE \"" + table + "\"") != std::string::npos ||
        text.find("  ON \"" + table + "\"") != std::string::npos) {
      texts.push_back(text);
    }
  }
  return texts;
}

Statements operator+(Statements all, const Statements& more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

/// Whether a statement changes the file or says how; the others only ask.
bool changes(const std::string& statement) {
  const Statements verbs = {"DROP",   "CREATE",          "ALTER",
                            "INSERT", "UPDATE",          "DELETE",
                            "COMMIT", "BEGIN IMMEDIATE", "PRAGMA foreign_keys"};
  return std::any_of(verbs.begin(), verbs.end(), [&statement](const std::string& verb) {
    return statement.compare(0, verb.size(), verb) == 0;
  });
}

const Statements connecting = {"PRAGMA foreign_keys=ON"};
const Statements beginning = {"PRAGMA foreign_keys=OFF", "BEGIN IMMEDIATE"};
const Statements ending = {"COMMIT", "PRAGMA foreign_keys=ON"};

Statements step_to_150301() {
  return texts_of("CustomProperty") + texts_of("Material_custom_values") +
         texts_of("Composition_custom_values") + Statements{begin_step_to_150301, end_step};
}

Statements step_to_150302() {
  return texts_of("Layer") +
         Statements{add_cut_layer, add_entity_layer, begin_step_to_150302, end_step};
}

/// What opening does to a file, word for word and in this order.
class FileStatements : public LibraryFixture {
 protected:
  Statements of_opening_old_file(int version) {
    make_old_file(path, version);
    log.take_all();
    open();
    return changing_statements();
  }

  Statements changing_statements() {
    Statements chosen;
    for (const std::string& statement : log.take_all()) {
      if (changes(statement)) chosen.push_back(statement);
    }
    return chosen;
  }

  StatementLog log;
};

TEST_F(FileStatements, a_new_file_is_cleared_filled_and_committed_once) {
  create_and_close();
  Statements drops;
  for (const std::string& table : tables_as_dropped) {
    drops.push_back("DROP TABLE IF EXISTS \"" + table + "\"");
  }
  const Statements rows =
      Statements{R"(INSERT INTO "Meta" ("id", "guid", "unit", "locale", "region") )"
                 "VALUES (?, ?, ?, ?, ?)"} +
      Statements(13, R"(INSERT INTO "MaterialType" ("id", "name") VALUES (?, ?))");
  EXPECT_THAT(changing_statements(),
              ElementsAreArray(connecting + beginning + drops +
                               Statements{version_table, forget_version} + current_texts() +
                               Statements{version_table, register_version} + rows + ending));
}

TEST_F(FileStatements, a_file_of_150201_is_migrated_in_two_steps_and_committed_once) {
  EXPECT_THAT(
      of_opening_old_file(150201),
      ElementsAreArray(connecting + beginning + step_to_150301() + step_to_150302() + ending));
}

TEST_F(FileStatements, a_file_of_150301_is_migrated_in_one_step) {
  EXPECT_THAT(of_opening_old_file(150301),
              ElementsAreArray(connecting + beginning + step_to_150302() + ending));
}

TEST_F(FileStatements, a_current_file_is_only_read) {
  create_and_close();
  log.take_all();
  open();
  EXPECT_THAT(changing_statements(), ElementsAreArray(connecting));
  create();
  EXPECT_THAT(changing_statements(), ElementsAreArray(connecting));
}

TEST_F(FileStatements, a_file_that_is_to_be_read_only_is_migrated_and_connected_to_anew) {
  make_old_file(path, 150301);
  log.take_all();
  open_read_only();
  EXPECT_THAT(changing_statements(),
              ElementsAreArray(connecting + beginning + step_to_150302() + ending + connecting));
}

}  // namespace
}  // namespace veldra_tests
