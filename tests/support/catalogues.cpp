// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"

#include "support/database.hpp"

#include <sstream>
#include <stdexcept>

namespace veldra_tests {

namespace {

const std::string schema_version = R"sql(CREATE TABLE "schema_version" (
  "name" TEXT NOT NULL PRIMARY KEY,
  "version" INTEGER NOT NULL,
  "migration" INTEGER NOT NULL)

)sql";

// SQLite makes this table itself, with the first table that has AUTOINCREMENT.
const std::string sqlite_sequence = R"sql(CREATE TABLE sqlite_sequence(name,seq)

)sql";

const std::string tag_table = R"sql(CREATE TABLE "Tag" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "name" TEXT NOT NULL)

)sql";

const std::string tag_index = R"sql(CREATE UNIQUE INDEX "Tag_name_i"
  ON "Tag" ("name")

)sql";

const std::string custom_property = R"sql(CREATE TABLE "CustomProperty" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "name" TEXT NOT NULL,
  "object_type" INTEGER NOT NULL)

CREATE UNIQUE INDEX "object_type_name_i"
  ON "CustomProperty" (
    "object_type",
    "name")

)sql";

const std::string layer = R"sql(CREATE TABLE "Layer" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "name" TEXT NOT NULL)

CREATE UNIQUE INDEX "Layer_name_i"
  ON "Layer" ("name")

)sql";

const std::string assets_and_material_type = R"sql(CREATE TABLE "Asset" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "typeid" TEXT NOT NULL,
  "name" TEXT NOT NULL,
  "description" TEXT NOT NULL)

CREATE TABLE "Asset_tags" (
  "object_id" INTEGER NOT NULL,
  "index" INTEGER NOT NULL,
  "tag_id" INTEGER NOT NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Asset" ("id")
    ON DELETE CASCADE,
  CONSTRAINT "tag_id_fk"
    FOREIGN KEY ("tag_id")
    REFERENCES "Tag" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE INDEX "Asset_tags_object_id_i"
  ON "Asset_tags" ("object_id")

CREATE INDEX "Asset_tags_index_i"
  ON "Asset_tags" ("index")

CREATE TABLE "StructuralAsset" (
  "id" INTEGER NOT NULL PRIMARY KEY,
  "subclass" TEXT NOT NULL,
  "density" REAL NULL,
  "specific_heat" REAL NULL,
  "thermal_conductivity" REAL NULL,
  CONSTRAINT "id_fk"
    FOREIGN KEY ("id")
    REFERENCES "Asset" ("id")
    ON DELETE CASCADE)

CREATE TABLE "ThermalAsset" (
  "id" INTEGER NOT NULL PRIMARY KEY,
  "subclass" TEXT NOT NULL,
  "source" TEXT NOT NULL,
  "density" REAL NULL,
  "emissivity" REAL NULL,
  "specific_heat" REAL NULL,
  "thermal_conductivity" REAL NULL,
  CONSTRAINT "id_fk"
    FOREIGN KEY ("id")
    REFERENCES "Asset" ("id")
    ON DELETE CASCADE)

CREATE TABLE "MaterialType" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "name" TEXT NOT NULL)

CREATE UNIQUE INDEX "MaterialType_name_i"
  ON "MaterialType" ("name")

)sql";

const std::string material_to_cut_pattern = R"sql(CREATE TABLE "Material" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "name" TEXT NOT NULL,
  "description" TEXT NOT NULL,
  "type" INTEGER NOT NULL,
  "comments" TEXT NOT NULL,
  "code" TEXT NULL,
  "cost" TEXT NOT NULL,
  "keynote" TEXT NOT NULL,
  "label" TEXT NOT NULL,
  "manufacturer" TEXT NOT NULL,
  "mark" TEXT NOT NULL,
  "model" TEXT NOT NULL,
  "url" TEXT NOT NULL,
  "classification" TEXT NOT NULL,
  "shading_use_appearance" INTEGER NOT NULL,
  "shading_color_red" REAL NOT NULL,
  "shading_color_green" REAL NOT NULL,
  "shading_color_blue" REAL NOT NULL,
  "shading_color_alpha" REAL NOT NULL,
  "surface_pattern_type" INTEGER NOT NULL,
  "surface_pattern_name" TEXT NOT NULL,
  "surface_pattern_scale" REAL NOT NULL,
  "surface_pattern_angle" REAL NOT NULL,
  "surface_pattern_cross" INTEGER NOT NULL,
  "surface_pattern_color_red" REAL NOT NULL,
  "surface_pattern_color_green" REAL NOT NULL,
  "surface_pattern_color_blue" REAL NOT NULL,
  "surface_pattern_color_alpha" REAL NOT NULL,
  "surface_pattern_alignment_x" REAL NOT NULL,
  "surface_pattern_alignment_y" REAL NOT NULL,
  "cut_pattern_type" INTEGER NOT NULL,
  "cut_pattern_name" TEXT NOT NULL,
  "cut_pattern_scale" REAL NOT NULL,
  "cut_pattern_angle" REAL NOT NULL,
  "cut_pattern_cross" INTEGER NOT NULL,
  "cut_pattern_color_red" REAL NOT NULL,
  "cut_pattern_color_green" REAL NOT NULL,
  "cut_pattern_color_blue" REAL NOT NULL,
  "cut_pattern_color_alpha" REAL NOT NULL,
)sql";

const std::string cut_layer_column = R"sql(  "cut_layer" INTEGER NULL,
)sql";

const std::string material_from_appearance = R"sql(  "appearance" TEXT NOT NULL,
  "structural_id" INTEGER NULL,
  "thermal_id" INTEGER NULL,
  "function" INTEGER NOT NULL,
  "allow_custom_thickness" INTEGER NOT NULL)sql";

// SQLite keeps an added column behind the last one, on the same line, before the constraints.
const std::string added_cut_layer =
    R"sql(, "cut_layer" INTEGER NULL CONSTRAINT "cut_layer_fk" REFERENCES "Layer" ("id"))sql";

const std::string material_type_key = R"sql(,
  CONSTRAINT "type_fk"
    FOREIGN KEY ("type")
    REFERENCES "MaterialType" ("id")
    DEFERRABLE INITIALLY DEFERRED)sql";

const std::string cut_layer_key = R"sql(,
  CONSTRAINT "cut_layer_fk"
    FOREIGN KEY ("cut_layer")
    REFERENCES "Layer" ("id")
    DEFERRABLE INITIALLY DEFERRED)sql";

const std::string material_asset_keys_and_indexes = R"sql(,
  CONSTRAINT "structural_id_fk"
    FOREIGN KEY ("structural_id")
    REFERENCES "StructuralAsset" ("id")
    DEFERRABLE INITIALLY DEFERRED,
  CONSTRAINT "thermal_id_fk"
    FOREIGN KEY ("thermal_id")
    REFERENCES "ThermalAsset" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE UNIQUE INDEX "Material_name_i"
  ON "Material" ("name")

CREATE UNIQUE INDEX "Material_code_i"
  ON "Material" ("code")

)sql";

const std::string material_lists = R"sql(CREATE TABLE "Material_tags" (
  "object_id" INTEGER NOT NULL,
  "index" INTEGER NOT NULL,
  "tag_id" INTEGER NOT NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Material" ("id")
    ON DELETE CASCADE,
  CONSTRAINT "tag_id_fk"
    FOREIGN KEY ("tag_id")
    REFERENCES "Tag" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE INDEX "Material_tags_object_id_i"
  ON "Material_tags" ("object_id")

CREATE INDEX "Material_tags_index_i"
  ON "Material_tags" ("index")

CREATE TABLE "Material_thicknesses" (
  "object_id" INTEGER NOT NULL,
  "value" REAL NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Material" ("id")
    ON DELETE CASCADE)

CREATE INDEX "Material_thicknesses_object_id_i"
  ON "Material_thicknesses" ("object_id")

)sql";

const std::string material_custom_values = R"sql(CREATE TABLE "Material_custom_values" (
  "object_id" INTEGER NOT NULL,
  "property_id" INTEGER NULL,
  "value" TEXT NOT NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Material" ("id")
    ON DELETE CASCADE,
  CONSTRAINT "property_id_fk"
    FOREIGN KEY ("property_id")
    REFERENCES "CustomProperty" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE INDEX "Material_custom_values_object_id_i"
  ON "Material_custom_values" ("object_id")

)sql";

const std::string composition_to_type = R"sql(CREATE TABLE "Composition" (
  "id" INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
  "name" TEXT NOT NULL,
  "description" TEXT NOT NULL,
  "type" INTEGER NOT NULL,
)sql";

const std::string entity_layer_column = R"sql(  "entity_layer" INTEGER NULL,
)sql";

const std::string composition_from_comments = R"sql(  "comments" TEXT NOT NULL,
  "first_core_layer" INTEGER NOT NULL,
  "last_core_layer" INTEGER NOT NULL,
  "structural_layer" INTEGER NOT NULL,
  "variable_layer" INTEGER NULL,
  "variable_layer_min_thickness" REAL NULL,
  "variable_layer_max_thickness" REAL NULL)sql";

const std::string added_entity_layer =
    R"sql(, "entity_layer" INTEGER NULL CONSTRAINT "entity_layer_fk" REFERENCES "Layer" ("id"))sql";

const std::string entity_layer_key = R"sql(,
  CONSTRAINT "entity_layer_fk"
    FOREIGN KEY ("entity_layer")
    REFERENCES "Layer" ("id")
    DEFERRABLE INITIALLY DEFERRED)sql";

const std::string composition_end_and_lists = R"sql()

CREATE UNIQUE INDEX "Composition_name_i"
  ON "Composition" ("name")

CREATE TABLE "Composition_tags" (
  "object_id" INTEGER NOT NULL,
  "index" INTEGER NOT NULL,
  "tag_id" INTEGER NOT NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Composition" ("id")
    ON DELETE CASCADE,
  CONSTRAINT "tag_id_fk"
    FOREIGN KEY ("tag_id")
    REFERENCES "Tag" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE INDEX "Composition_tags_object_id_i"
  ON "Composition_tags" ("object_id")

CREATE INDEX "Composition_tags_index_i"
  ON "Composition_tags" ("index")

CREATE TABLE "Composition_layers" (
  "object_id" INTEGER NOT NULL,
  "index" INTEGER NOT NULL,
  "value_material_id" INTEGER NOT NULL,
  "value_function" INTEGER NOT NULL,
  "value_thickness" REAL NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Composition" ("id")
    ON DELETE CASCADE,
  CONSTRAINT "value_material_id_fk"
    FOREIGN KEY ("value_material_id")
    REFERENCES "Material" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE INDEX "Composition_layers_object_id_i"
  ON "Composition_layers" ("object_id")

CREATE INDEX "Composition_layers_index_i"
  ON "Composition_layers" ("index")

)sql";

const std::string composition_custom_values = R"sql(CREATE TABLE "Composition_custom_values" (
  "object_id" INTEGER NOT NULL,
  "property_id" INTEGER NULL,
  "value" TEXT NOT NULL,
  CONSTRAINT "object_id_fk"
    FOREIGN KEY ("object_id")
    REFERENCES "Composition" ("id")
    ON DELETE CASCADE,
  CONSTRAINT "property_id_fk"
    FOREIGN KEY ("property_id")
    REFERENCES "CustomProperty" ("id")
    DEFERRABLE INITIALLY DEFERRED)

CREATE INDEX "Composition_custom_values_object_id_i"
  ON "Composition_custom_values" ("object_id")

)sql";

const std::string meta = R"sql(CREATE TABLE "Meta" (
  "id" INTEGER NOT NULL PRIMARY KEY,
  "guid" TEXT NOT NULL,
  "unit" INTEGER NOT NULL,
  "locale" TEXT NOT NULL,
  "region" TEXT NOT NULL)

)sql";

const std::string no_text;

bool has_custom_properties(int version) {
  if (version != 150201 && version != 150301) throw std::logic_error("no such older version");
  return version == 150301;
}

// An older file, with what SQLite added to the two altered tables, if anything.
std::string older_file(bool custom_properties, const std::string& added_to_material,
                       const std::string& added_to_composition) {
  return schema_version + tag_table + sqlite_sequence + tag_index +
         (custom_properties ? custom_property : no_text) + assets_and_material_type +
         material_to_cut_pattern + material_from_appearance + added_to_material +
         material_type_key + material_asset_keys_and_indexes + material_lists +
         (custom_properties ? material_custom_values : no_text) + composition_to_type +
         composition_from_comments + added_to_composition + composition_end_and_lists +
         (custom_properties ? composition_custom_values : no_text) + meta;
}

std::string as_statements(std::string texts) {
  texts.erase(texts.find(sqlite_sequence), sqlite_sequence.size());
  for (std::size_t end = 0; (end = texts.find("\n\n", end)) != std::string::npos; end += 3) {
    texts.insert(end, ";");
  }
  return texts;
}

std::string file_statements(const std::string& texts, int version) {
  return as_statements(texts) + "INSERT INTO schema_version VALUES ('', " +
         std::to_string(version) +
         ", 0);\nINSERT INTO Meta VALUES "
         "(0, 'a0ee4c58-3c1d-4c07-9d0e-5f54c1a8f6b2', 0, 'de-DE', 'Ostschweiz');\n";
}

bool starts_with(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

const char* const old_rows = R"sql(
INSERT INTO "Tag" VALUES (3, 'facade'), (7, 'Fußboden');
INSERT INTO "Asset" VALUES
  (1, 'veldra::StructuralAsset', 'Oak, structural', 'across the grain'),
  (2, 'veldra::ThermalAsset', 'Oak, thermal', ''),
  (3, 'veldra::StructuralAsset', 'Unknown', ''),
  (5, 'veldra::ThermalAsset', 'Unknown', '');
INSERT INTO "Asset_tags" VALUES (1, 0, 7), (1, 1, 3), (5, 0, 3);
INSERT INTO "StructuralAsset" VALUES (1, 'Wood', 710.5, 2.1, 0.17), (3, '', NULL, NULL, NULL);
INSERT INTO "ThermalAsset" VALUES
  (2, 'Solid', 'measured', 700.0, 0.9, 2.0, 0.18),
  (5, '', '', NULL, NULL, NULL, NULL);
INSERT INTO "MaterialType" VALUES (1, 'Wood'), (4, '石');
INSERT INTO "Material" VALUES
  (2, 'Oak', 'a hard wood', 1, 'oiled', 'W-017', '12 a metre', 'K1', 'L1', 'Sawmill', 'M1', 'Plank',
   'file:oak', '06 10 00', 1, 0.5, 0.25, 0.125, 1.0, 0, 'grain', 2.0, 0.5, 1, 0.1, 0.2, 0.3, 0.4,
   7.5, -3.25, 3, 'rings', 1.5, 0.75, 0, 0.6, 0.7, 0.8, 0.9, 'oak-appearance', 1, 2, 1, 0),
  (9, 'Granite', '', 4, '', NULL, '', '', '', '', '', '', '', '', 0, 0, 0, 0, 0, -1, '', 1, 0, 0,
   0, 0, 0, 0, 0, 0, -1, '', 1, 0, 0, 0, 0, 0, 0, '', NULL, NULL, 0, 1);
INSERT INTO "Material_tags" VALUES (2, 0, 3), (2, 1, 7), (2, 2, 3), (9, 0, 7);
INSERT INTO "Material_thicknesses" VALUES (2, 16.0), (2, 22.5), (9, NULL);
INSERT INTO "Composition" VALUES
  (1, 'Parquet', 'on screed', 2, 'glued', 0, 1, 1, 1, 5.5, 9.25),
  (6, 'Bare', '', 128, '', 0, 0, 0, NULL, NULL, NULL);
INSERT INTO "Composition_tags" VALUES (1, 0, 7), (1, 1, 3);
INSERT INTO "Composition_layers" VALUES (1, 0, 2, 0, 22.5), (1, 1, 9, 1, NULL);
)sql";

const char* const old_custom_rows = R"sql(
INSERT INTO "CustomProperty" VALUES (1, 'Fire class', 4), (2, 'Fire class', 5), (5, 'Größe', 4);
INSERT INTO "Material_custom_values" VALUES (2, 1, 'D-s2'), (2, 5, 'groß');
INSERT INTO "Composition_custom_values" VALUES (1, 2, 'F 30');
)sql";

}  // namespace

std::string current_catalogue() {
  return schema_version + tag_table + sqlite_sequence + tag_index + custom_property + layer +
         assets_and_material_type + material_to_cut_pattern + cut_layer_column +
         material_from_appearance + material_type_key + cut_layer_key +
         material_asset_keys_and_indexes + material_lists + material_custom_values +
         composition_to_type + entity_layer_column + composition_from_comments + entity_layer_key +
         composition_end_and_lists + composition_custom_values + meta;
}

std::string current_file_statements() { return file_statements(current_catalogue(), 150302); }

std::string old_catalogue(int version) {
  return older_file(has_custom_properties(version), no_text, no_text);
}

std::string migrated_catalogue(int version) {
  const bool had_custom_properties = has_custom_properties(version);
  return older_file(had_custom_properties, added_cut_layer, added_entity_layer) +
         (had_custom_properties
              ? no_text
              : custom_property + material_custom_values + composition_custom_values) +
         layer;
}

void make_old_file(const std::string& path, int version) {
  PlainDatabase(path).execute("BEGIN;" + file_statements(old_catalogue(version), version) +
                              "COMMIT");
}

void fill_old_file(const std::string& path, int version) {
  PlainDatabase database(path);
  database.execute("BEGIN");
  database.execute(old_rows);
  if (has_custom_properties(version)) database.execute(old_custom_rows);
  database.execute("COMMIT");
}

std::string migrated_dump(const std::string& before) {
  std::istringstream lines(before);
  std::string after;
  for (std::string line; std::getline(lines, line);) {
    if (starts_with(line, "Material:") || starts_with(line, "Composition:")) line += " NULL";
    if (starts_with(line, "schema_version:")) line = "schema_version: '' 150302 0";
    after += line + "\n";
  }
  return after;
}

}  // namespace veldra_tests
