// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdio.h>
#include <stdlib.h>

#define TEN_PLACES "?,?,?,?,?,?,?,?,?,?"
#define TEN_PLACES_MORE "," TEN_PLACES
#define FROM_TAGGED_MATERIALS                                    \
  " FROM \"Material\" AS \"Object\""                             \
  " LEFT JOIN \"Material_tags\" AS \"Object_Material_tags\""     \
  " ON \"Object_Material_tags\".\"object_id\"=\"Object\".\"id\"" \
  " LEFT JOIN \"Tag\" ON \"Object_Material_tags\".\"tag_id\"=\"Tag\".\"id\""
#define FIND_NAMED(table)                                                                 \
  "SELECT \"" table "\".\"id\", \"" table "\".\"name\" FROM \"" table "\" WHERE \"" table \
  "\".\"id\"=?"
#define FIND_TAGS(table)                                                                       \
  "SELECT \"" table "\".\"index\", \"" table "\".\"tag_id\" FROM \"" table "\" WHERE \"" table \
  "\".\"object_id\"=? ORDER BY \"" table "\".\"index\""
#define FIND_VALUES(table)                                                      \
  "SELECT \"" table "\".\"property_id\", \"" table "\".\"value\" FROM \"" table \
  "\" WHERE \"" table "\".\"object_id\"=?"
#define IDS(table) "SELECT \"" table "\".\"id\" FROM \"" table "\""
#define INSERT_NAMED(table) "INSERT INTO \"" table "\" (\"id\", \"name\") VALUES (?, ?)"
#define INSERT_TAGS(table) \
  "INSERT INTO \"" table "\" (\"object_id\", \"index\", \"tag_id\") VALUES (?, ?, ?)"
#define INSERT_VALUES(table) \
  "INSERT INTO \"" table "\" (\"object_id\", \"property_id\", \"value\") VALUES (?, ?, ?)"
#define ASSET_COLUMNS(table, source, emissivity)                                         \
  "SELECT \"" table "\".\"id\", \"Asset\".\"name\", \"Asset\".\"description\", \"" table \
  "\".\"subclass\", " source ", \"" table "\".\"density\", " emissivity ", \"" table     \
  "\".\"specific_heat\", \"" table "\".\"thermal_conductivity\" FROM \"" table           \
  "\" JOIN \"Asset\" ON \"Asset\".\"id\"=\"" table "\".\"id\""
#define STRUCTURAL_COLUMNS ASSET_COLUMNS("StructuralAsset", "''", "NULL")
#define THERMAL_COLUMNS ASSET_COLUMNS("ThermalAsset", "\"source\"", "\"emissivity\"")
#define NOT_AMONG(column, table) " NOT IN (SELECT \"" column "\" FROM \"" table "\")"
#define ALL_NAMED(table) "SELECT \"id\", \"name\" FROM \"" table "\""
#define OF_SOME(column) " WHERE \"" column "\" IN (SELECT \"value\" FROM json_each(?))"
#define ALL_OF_MATERIALS "SELECT \"id\"" MATERIAL_COLUMNS(INSERTED) " FROM \"Material\""
#define ALL_OF_COMPOSITIONS "SELECT \"id\"" COMPOSITION_COLUMNS(INSERTED) " FROM \"Composition\""
#define TAG_ROWS(table) "SELECT \"object_id\", \"index\", \"tag_id\" FROM \"" table "\""
#define THICKNESS_ROWS "SELECT \"object_id\", \"value\" FROM \"Material_thicknesses\""
#define VALUE_ROWS(table) "SELECT \"object_id\", \"property_id\", \"value\" FROM \"" table "\""
#define LAYER_ROWS                                                              \
  "SELECT \"object_id\", \"index\", \"value_material_id\", \"value_function\"," \
  " \"value_thickness\" FROM \"Composition_layers\""
#define DELETE_ROW(table) "DELETE FROM \"" table "\" WHERE \"id\"=?"
#define DELETE_SIDE(table) "DELETE FROM \"" table "\" WHERE \"object_id\"=?"

static const char* const texts[STATEMENTS] = {
    [BEGIN] = "BEGIN",
    [BEGIN_IMMEDIATE] = "BEGIN IMMEDIATE",
    [COMMIT] = "COMMIT",
    [ROLLBACK] = "ROLLBACK",

    [FIND_TAG] = FIND_NAMED("Tag"),
    [FIND_PROPERTY] =
        "SELECT \"CustomProperty\".\"id\", \"CustomProperty\".\"name\","
        " \"CustomProperty\".\"object_type\" FROM \"CustomProperty\""
        " WHERE \"CustomProperty\".\"id\"=?",
    [FIND_LAYER] = FIND_NAMED("Layer"),
    [FIND_TYPE] = FIND_NAMED("MaterialType"),
    [FIND_STRUCTURAL] = STRUCTURAL_COLUMNS " WHERE \"StructuralAsset\".\"id\"=?",
    [FIND_THERMAL] = THERMAL_COLUMNS " WHERE \"ThermalAsset\".\"id\"=?",
    [FIND_ASSET_TAGS] = FIND_TAGS("Asset_tags"),
    [FIND_MATERIAL] = "SELECT \"Material\".\"id\"" MATERIAL_COLUMNS(
        SELECTED) " FROM \"Material\" WHERE \"Material\".\"id\"=?",
    [FIND_MATERIAL_TAGS] = FIND_TAGS("Material_tags"),
    [FIND_THICKNESSES] =
        "SELECT \"Material_thicknesses\".\"value\" FROM \"Material_thicknesses\""
        " WHERE \"Material_thicknesses\".\"object_id\"=?",
    [FIND_MATERIAL_VALUES] = FIND_VALUES("Material_custom_values"),
    [FIND_COMPOSITION] = "SELECT \"Composition\".\"id\"" COMPOSITION_COLUMNS(
        SELECTED) " FROM \"Composition\" WHERE \"Composition\".\"id\"=?",
    [FIND_COMPOSITION_TAGS] = FIND_TAGS("Composition_tags"),
    [FIND_LAYERS] =
        "SELECT \"Composition_layers\".\"index\", \"Composition_layers\".\"value_material_id\","
        " \"Composition_layers\".\"value_function\", \"Composition_layers\".\"value_thickness\""
        " FROM \"Composition_layers\" WHERE \"Composition_layers\".\"object_id\"=?"
        " ORDER BY \"Composition_layers\".\"index\"",
    [FIND_COMPOSITION_VALUES] = FIND_VALUES("Composition_custom_values"),

    [MATERIAL_ID_BY_NAME] = IDS("Material") " WHERE \"Material\".\"name\"=?",
    [MATERIAL_IDS] = IDS("Material"),
    [COMPOSITION_IDS] = IDS("Composition"),
    [TYPE_IDS] = IDS("MaterialType"),
    [LAYER_IDS] = IDS("Layer"),
    [PROPERTY_IDS] = IDS("CustomProperty"),
    [TAG_IDS] = IDS("Tag"),
    [SEARCH_MATERIALS] = IDS("Material") " WHERE \"Material\".\"name\" LIKE ?",
    [MATERIAL_ID_SET] = IDS("Material") " WHERE \"Material\".\"id\" IN ("  //
    TEN_PLACES TEN_PLACES_MORE TEN_PLACES_MORE TEN_PLACES_MORE TEN_PLACES_MORE TEN_PLACES_MORE
        TEN_PLACES_MORE TEN_PLACES_MORE TEN_PLACES_MORE TEN_PLACES_MORE ")",
    [TAGGED_MATERIALS] = "SELECT DISTINCT \"Object\".\"id\"" FROM_TAGGED_MATERIALS
                         " WHERE \"Tag\".\"name\" IN (" TEN_PLACES ")",
    [COUNT_MATERIALS] = "SELECT count(\"Material\".\"id\") FROM \"Material\"",
    [COUNT_COMPOSITIONS] = "SELECT count(\"Composition\".\"id\") FROM \"Composition\"",
    [COUNT_COMPOSITIONS_OF] =
        "SELECT count(\"Composition\".\"id\") FROM \"Composition\""
        " WHERE (\"Composition\".\"type\"=?) OR (\"Composition\".\"type\"=?)",
    [COUNT_MATERIALS_WITH] = "SELECT count(DISTINCT \"Object\".\"id\")" FROM_TAGGED_MATERIALS
                             " WHERE \"Tag\".\"name\" IN (?,?)",
    [LEAN_COUNT_MATERIALS] = "SELECT count(*) FROM \"Material\"",
    [LEAN_COUNT_COMPOSITIONS] = "SELECT count(*) FROM \"Composition\"",
    [LEAN_COUNT_COMPOSITIONS_OF] =
        "SELECT count(*) FROM \"Composition\" WHERE \"type\"=? OR \"type\"=?",
    [LEAN_COUNT_MATERIALS_WITH] =
        "SELECT count(DISTINCT \"object_id\") FROM \"Material_tags\""
        " WHERE \"tag_id\" IN (SELECT \"id\" FROM \"Tag\" WHERE \"name\" IN (?,?))",

    [ALL_TAGS] = ALL_NAMED("Tag"),
    [ALL_PROPERTIES] = "SELECT \"id\", \"name\", \"object_type\" FROM \"CustomProperty\"",
    [ALL_LAYERS] = ALL_NAMED("Layer"),
    [ALL_TYPES] = ALL_NAMED("MaterialType"),
    [ALL_STRUCTURAL] = STRUCTURAL_COLUMNS,
    [ALL_THERMAL] = THERMAL_COLUMNS,
    [ALL_ASSET_TAGS] = TAG_ROWS("Asset_tags"),
    [ALL_MATERIALS] = ALL_OF_MATERIALS,
    [ALL_MATERIAL_TAGS] = TAG_ROWS("Material_tags"),
    [ALL_THICKNESSES] = THICKNESS_ROWS,
    [ALL_MATERIAL_VALUES] = VALUE_ROWS("Material_custom_values"),
    [ALL_COMPOSITIONS] = ALL_OF_COMPOSITIONS,
    [ALL_COMPOSITION_TAGS] = TAG_ROWS("Composition_tags"),
    [ALL_LAYER_ROWS] = LAYER_ROWS,
    [ALL_COMPOSITION_VALUES] = VALUE_ROWS("Composition_custom_values"),
    [SOME_MATERIALS] = ALL_OF_MATERIALS OF_SOME("id"),
    [SOME_MATERIAL_TAGS] = TAG_ROWS("Material_tags") OF_SOME("object_id"),
    [SOME_THICKNESSES] = THICKNESS_ROWS OF_SOME("object_id"),
    [SOME_MATERIAL_VALUES] = VALUE_ROWS("Material_custom_values") OF_SOME("object_id"),
    [SOME_COMPOSITIONS] = ALL_OF_COMPOSITIONS OF_SOME("id"),
    [SOME_COMPOSITION_TAGS] = TAG_ROWS("Composition_tags") OF_SOME("object_id"),
    [SOME_LAYER_ROWS] = LAYER_ROWS OF_SOME("object_id"),
    [SOME_COMPOSITION_VALUES] = VALUE_ROWS("Composition_custom_values") OF_SOME("object_id"),

    [INSERT_TAG] = INSERT_NAMED("Tag"),
    [INSERT_PROPERTY] =
        "INSERT INTO \"CustomProperty\" (\"id\", \"name\", \"object_type\") VALUES (?, ?, ?)",
    [INSERT_LAYER] = INSERT_NAMED("Layer"),
    [INSERT_TYPE] = INSERT_NAMED("MaterialType"),
    [INSERT_MATERIAL] = "INSERT INTO \"Material\" (\"id\"" MATERIAL_COLUMNS(
        INSERTED) ") VALUES (?" MATERIAL_COLUMNS(PLACE) ")",
    [INSERT_MATERIAL_TAG] = INSERT_TAGS("Material_tags"),
    [INSERT_THICKNESS] =
        "INSERT INTO \"Material_thicknesses\" (\"object_id\", \"value\") VALUES (?, ?)",
    [INSERT_MATERIAL_VALUE] = INSERT_VALUES("Material_custom_values"),
    [INSERT_COMPOSITION] = "INSERT INTO \"Composition\" (\"id\"" COMPOSITION_COLUMNS(
        INSERTED) ") VALUES (?" COMPOSITION_COLUMNS(PLACE) ")",
    [INSERT_COMPOSITION_TAG] = INSERT_TAGS("Composition_tags"),
    [INSERT_COMPOSITION_LAYER] =
        "INSERT INTO \"Composition_layers\" (\"object_id\", \"index\", \"value_material_id\","
        " \"value_function\", \"value_thickness\") VALUES (?, ?, ?, ?, ?)",
    [INSERT_COMPOSITION_VALUE] = INSERT_VALUES("Composition_custom_values"),
    [UPDATE_MATERIAL] =
        "UPDATE \"Material\" SET \"name\"=?" FURTHER_MATERIAL_COLUMNS(ASSIGNED) " WHERE \"id\"=?",

    [DELETE_TAG] = DELETE_ROW("Tag"),
    [DELETE_PROPERTY] = DELETE_ROW("CustomProperty"),
    [DELETE_LAYER] = DELETE_ROW("Layer"),
    [DELETE_TYPE] = DELETE_ROW("MaterialType"),
    [DELETE_MATERIAL] = DELETE_ROW("Material"),
    [DELETE_MATERIAL_TAGS] = DELETE_SIDE("Material_tags"),
    [DELETE_THICKNESSES] = DELETE_SIDE("Material_thicknesses"),
    [DELETE_MATERIAL_VALUES] = DELETE_SIDE("Material_custom_values"),
    [DELETE_COMPOSITION] = DELETE_ROW("Composition"),
    [DELETE_COMPOSITION_TAGS] = DELETE_SIDE("Composition_tags"),
    [DELETE_LAYERS] = DELETE_SIDE("Composition_layers"),
    [DELETE_COMPOSITION_VALUES] = DELETE_SIDE("Composition_custom_values"),

    [TYPE_ID_BY_NAME] = IDS("MaterialType") " WHERE \"MaterialType\".\"name\"=?",

    [UNREFERENCED_MATERIALS] =
        IDS("Material") " WHERE \"id\"" NOT_AMONG("value_material_id", "Composition_layers"),
    [UNREFERENCED_TAGS] =
        IDS("Tag") " WHERE \"id\"" NOT_AMONG("tag_id", "Material_tags") " AND \"id\"" NOT_AMONG(
            "tag_id", "Composition_tags") " AND \"id\"" NOT_AMONG("tag_id", "Asset_tags"),
    [REFERRERS_OF_MATERIAL] =
        "SELECT DISTINCT \"object_id\" FROM \"Composition_layers\" WHERE \"value_material_id\"=?",
};

void fail(const char* what) {
  fprintf(stderr, "plain program: %s\n", what);
  exit(1);
}

void check(plain_library* library, int result) {
  if (result != SQLITE_OK) fail(sqlite3_errmsg(library->database));
}

sqlite3_stmt* statement(plain_library* library, statement_id id) {
  sqlite3_stmt** place = &library->statements[id];
  if (*place == NULL) {
    check(library, sqlite3_prepare_v3(library->database, texts[id], -1, SQLITE_PREPARE_PERSISTENT,
                                      place, NULL));
  }
  return *place;
}

sqlite3_stmt* statement_for(plain_library* library, statement_id id, unsigned parameter) {
  sqlite3_stmt* found = statement(library, id);
  check(library, sqlite3_bind_int64(found, 1, parameter));
  return found;
}

int next_row(plain_library* library, sqlite3_stmt* statement) {
  const int result = sqlite3_step(statement);
  if (result == SQLITE_ROW) return 1;
  if (result != SQLITE_DONE) fail(sqlite3_errmsg(library->database));
  sqlite3_reset(statement);
  return 0;
}

void run(plain_library* library, sqlite3_stmt* statement) {
  if (next_row(library, statement)) fail("a row too many");
}

void bind_text(plain_library* library, sqlite3_stmt* statement, int place, const uint16_t* text) {
  if (library->texts_used + 3 * plain_length(text) > TEXTS_ROOM) fail("texts too long");
  char* utf8 = library->texts + library->texts_used;
  const size_t bytes = plain_encode(text, utf8);
  library->texts_used += bytes;
  check(library, sqlite3_bind_text(statement, place, utf8, (int)bytes, SQLITE_STATIC));
}

unsigned inserted_id(plain_library* library) {
  return (unsigned)sqlite3_last_insert_rowid(library->database);
}

void* grown(void* items, size_t size, size_t* room, size_t item_bytes) {
  if (size < *room) return items;
  *room = *room == 0 ? 4 : 2 * *room;
  items = realloc(items, *room * item_bytes);
  if (items == NULL) fail("no memory");
  return items;
}
