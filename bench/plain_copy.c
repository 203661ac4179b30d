// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>
#include <string.h>

/* Copying a table: what its rows hold besides plain values. Columns count from 0; -1: none. */
typedef struct {
  const char* select;
  statement_id insert;
  int has_id;
  const plain_map* references[4];
  int reference_columns[4];
  int lengths[2];
} table_copy;

static void bind_row(plain_library* destination, sqlite3_stmt* insert, sqlite3_stmt* row,
                     const table_copy* copy, double factor) {
  const int count = sqlite3_column_count(row);
  for (int i = copy->has_id; i != count; ++i) {
    check(destination, sqlite3_bind_value(insert, i + 1, sqlite3_column_value(row, i)));
  }
  for (int i = 0; i != 4 && copy->references[i] != NULL; ++i) {
    const int column = copy->reference_columns[i];
    if (sqlite3_column_type(row, column) == SQLITE_NULL) continue;
    const unsigned id = (unsigned)sqlite3_column_int64(row, column);
    const unsigned mapped = plain_mapped(copy->references[i], id);
    check(destination, sqlite3_bind_int64(insert, column + 1, mapped));
  }
  for (int i = 0; i != 2; ++i) {
    const int column = copy->lengths[i];
    if (column < 0 || sqlite3_column_type(row, column) == SQLITE_NULL) continue;
    const double length = sqlite3_column_double(row, column) * factor;
    check(destination, sqlite3_bind_double(insert, column + 1, length));
  }
}

static void copy_table(plain_library* destination, plain_library* source, const table_copy* copy,
                       plain_map* map, double factor) {
  sqlite3_stmt* rows = NULL;
  check(source, sqlite3_prepare_v2(source->database, copy->select, -1, &rows, NULL));
  sqlite3_stmt* insert = statement(destination, copy->insert);
  if (copy->has_id) check(destination, sqlite3_bind_null(insert, 1));
  while (next_row(source, rows)) {
    bind_row(destination, insert, rows, copy, factor);
    run(destination, insert);
    if (map != NULL) {
      plain_enter(map, (unsigned)sqlite3_column_int64(rows, 0), inserted_id(destination));
    }
  }
  sqlite3_finalize(rows);
}

static unsigned type_of_name(plain_library* library, sqlite3_stmt* row) {
  sqlite3_stmt* query = statement(library, TYPE_ID_BY_NAME);
  check(library, sqlite3_bind_value(query, 1, sqlite3_column_value(row, 1)));
  if (!next_row(library, query)) return 0;
  const unsigned id = (unsigned)sqlite3_column_int64(query, 0);
  sqlite3_reset(query);
  return id;
}

/* The destination has types already, and those of the same name stand for the source's. */
static void copy_types(plain_library* destination, plain_library* source, plain_map* map) {
  sqlite3_stmt* rows = NULL;
  check(source,
        sqlite3_prepare_v2(source->database, "SELECT \"id\", \"name\" FROM \"MaterialType\"", -1,
                           &rows, NULL));
  while (next_row(source, rows)) {
    unsigned id = type_of_name(destination, rows);
    if (id == 0) {
      sqlite3_stmt* insert = statement(destination, INSERT_TYPE);
      check(destination, sqlite3_bind_value(insert, 2, sqlite3_column_value(rows, 1)));
      run(destination, insert);
      id = inserted_id(destination);
    }
    plain_enter(map, (unsigned)sqlite3_column_int64(rows, 0), id);
  }
  sqlite3_finalize(rows);
}

static void copy_materials(plain_library* destination, plain_library* source, plain_maps* maps,
                           double factor) {
  const table_copy materials = {"SELECT \"id\"" MATERIAL_COLUMNS(INSERTED) " FROM \"Material\"",
                                INSERT_MATERIAL,
                                1,
                                {&maps->types, &maps->layers},
                                {3, 39},
                                {-1, -1}};
  const table_copy tags = {"SELECT \"object_id\", \"index\", \"tag_id\" FROM \"Material_tags\"",
                           INSERT_MATERIAL_TAG,
                           0,
                           {&maps->materials, &maps->tags},
                           {0, 2},
                           {-1, -1}};
  const table_copy thicknesses = {"SELECT \"object_id\", \"value\" FROM \"Material_thicknesses\"",
                                  INSERT_THICKNESS,
                                  0,
                                  {&maps->materials},
                                  {0},
                                  {1, -1}};
  const table_copy values = {
      "SELECT \"object_id\", \"property_id\", \"value\" FROM \"Material_custom_values\"",
      INSERT_MATERIAL_VALUE,
      0,
      {&maps->materials, &maps->properties},
      {0, 1},
      {-1, -1}};
  copy_table(destination, source, &materials, &maps->materials, factor);
  copy_table(destination, source, &tags, NULL, factor);
  copy_table(destination, source, &thicknesses, NULL, factor);
  copy_table(destination, source, &values, NULL, factor);
}

static void copy_compositions(plain_library* destination, plain_library* source, plain_maps* maps,
                              double factor) {
  plain_map ids = {NULL, 0};
  const table_copy compositions = {
      "SELECT \"id\"" COMPOSITION_COLUMNS(INSERTED) " FROM \"Composition\"",
      INSERT_COMPOSITION,
      1,
      {&maps->layers},
      {4},
      {10, 11}};
  const table_copy tags = {"SELECT \"object_id\", \"index\", \"tag_id\" FROM \"Composition_tags\"",
                           INSERT_COMPOSITION_TAG,
                           0,
                           {&ids, &maps->tags},
                           {0, 2},
                           {-1, -1}};
  const table_copy layers = {
      "SELECT \"object_id\", \"index\", \"value_material_id\", \"value_function\","
      " \"value_thickness\" FROM \"Composition_layers\"",
      INSERT_COMPOSITION_LAYER,
      0,
      {&ids, &maps->materials},
      {0, 2},
      {4, -1}};
  const table_copy values = {
      "SELECT \"object_id\", \"property_id\", \"value\" FROM \"Composition_custom_values\"",
      INSERT_COMPOSITION_VALUE,
      0,
      {&ids, &maps->properties},
      {0, 1},
      {-1, -1}};
  copy_table(destination, source, &compositions, &ids, factor);
  copy_table(destination, source, &tags, NULL, factor);
  copy_table(destination, source, &layers, NULL, factor);
  copy_table(destination, source, &values, NULL, factor);
  free(ids.ids);
}

void plain_copy_all(plain_library* destination, plain_library* source, double factor) {
  static const table_copy tags = {
      "SELECT \"id\", \"name\" FROM \"Tag\"", INSERT_TAG, 1, {NULL}, {0}, {-1, -1}};
  static const table_copy layers = {
      "SELECT \"id\", \"name\" FROM \"Layer\"", INSERT_LAYER, 1, {NULL}, {0}, {-1, -1}};
  static const table_copy properties = {
      "SELECT \"id\", \"name\", \"object_type\" FROM \"CustomProperty\"",
      INSERT_PROPERTY,
      1,
      {NULL},
      {0},
      {-1, -1}};
  plain_maps maps;
  memset(&maps, 0, sizeof maps);
  plain_begin(source);
  plain_begin_write(destination);
  copy_table(destination, source, &tags, &maps.tags, factor);
  copy_table(destination, source, &layers, &maps.layers, factor);
  copy_table(destination, source, &properties, &maps.properties, factor);
  copy_types(destination, source, &maps.types);
  copy_materials(destination, source, &maps, factor);
  copy_compositions(destination, source, &maps, factor);
  plain_commit(destination);
  plain_commit(source);
  plain_free_maps(&maps);
}

/* The ids of a table move behind those that the destination has given out. */
#define MOVED(id, table) id "+coalesce((SELECT seq FROM temp.taken WHERE name='" table "'),0)"
#define MOVED_OBJECTS(table) "SELECT " MOVED("object_id", table)
#define COPY_TAGS(table)                                                         \
  "INSERT INTO main." table "_tags " MOVED_OBJECTS(table) ", \"index\", " MOVED( \
      "tag_id", "Tag") " FROM source." table "_tags"
#define COPY_VALUES(table)                                                     \
  "INSERT INTO main." table "_custom_values " MOVED_OBJECTS(table) ", " MOVED( \
      "property_id", "CustomProperty") ", value FROM source." table "_custom_values"

/* ?1 is the factor. */
static const char* const copying[] = {
    "CREATE TEMP TABLE taken AS SELECT name, seq FROM main.sqlite_sequence",
    "INSERT INTO main.Tag SELECT " MOVED("id", "Tag") ", name FROM source.Tag",
    "INSERT INTO main.Layer SELECT " MOVED("id", "Layer") ", name FROM source.Layer",
    "INSERT INTO main.CustomProperty SELECT " MOVED("id", "CustomProperty")
        ", name, object_type FROM source.CustomProperty",
    "INSERT INTO main.MaterialType (name) SELECT name FROM source.MaterialType"
    " WHERE name NOT IN (SELECT name FROM main.MaterialType)",
    "CREATE TEMP TABLE types (old INTEGER PRIMARY KEY, new INTEGER)",
    "INSERT INTO temp.types SELECT s.id, d.id FROM source.MaterialType AS s"
    " JOIN main.MaterialType AS d ON d.name=s.name",
    "INSERT INTO main.Material SELECT " MOVED("id", "Material") ", name, description,"
    " (SELECT new FROM temp.types WHERE old=type)" VALUE_MATERIAL_COLUMNS(INSERTED) ", "
        MOVED("cut_layer", "Layer") ", appearance, NULL, NULL, function, allow_custom_thickness"
        " FROM source.Material",
    COPY_TAGS("Material"),
    "INSERT INTO main.Material_thicknesses " MOVED_OBJECTS("Material") ", value*?1"
    " FROM source.Material_thicknesses",
    COPY_VALUES("Material"),
    "INSERT INTO main.Composition SELECT " MOVED("id", "Composition") ", name, description, type, "
        MOVED("entity_layer", "Layer") ", comments, first_core_layer, last_core_layer,"
        " structural_layer, variable_layer, variable_layer_min_thickness*?1,"
        " variable_layer_max_thickness*?1 FROM source.Composition",
    COPY_TAGS("Composition"),
    "INSERT INTO main.Composition_layers " MOVED_OBJECTS("Composition") ", \"index\", "
        MOVED("value_material_id", "Material") ", value_function, value_thickness*?1"
        " FROM source.Composition_layers",
    COPY_VALUES("Composition"),
    "DROP TABLE temp.types",
    "DROP TABLE temp.taken"};

static void run_once(plain_library* library, const char* text, double factor) {
  sqlite3_stmt* once = NULL;
  check(library, sqlite3_prepare_v2(library->database, text, -1, &once, NULL));
  if (sqlite3_bind_parameter_count(once) != 0) {
    check(library, sqlite3_bind_double(once, 1, factor));
  }
  run(library, once);
  sqlite3_finalize(once);
}

void plain_copy_all_in_sql(plain_library* destination, const char* source, double factor) {
  char* attach = sqlite3_mprintf("ATTACH %Q AS source", source);
  plain_execute(destination, attach);
  sqlite3_free(attach);
  plain_begin_write(destination);
  for (size_t i = 0; i != sizeof copying / sizeof *copying; ++i) {
    run_once(destination, copying[i], factor);
  }
  plain_commit(destination);
  plain_execute(destination, "DETACH source");
}
