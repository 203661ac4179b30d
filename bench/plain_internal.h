// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_PLAIN_INTERNAL_H
#define VELDRA_BENCH_PLAIN_INTERNAL_H

#include "plain_sqlite.h"

#include <sqlite3.h>

/* The columns of a table behind its id, for the texts of its statements. */
#define MATERIAL_COLUMNS(COLUMN) COLUMN(Material, name) FURTHER_MATERIAL_COLUMNS(COLUMN)
#define FURTHER_MATERIAL_COLUMNS(COLUMN) \
  COLUMN(Material, description)          \
  COLUMN(Material, type)                 \
  VALUE_MATERIAL_COLUMNS(COLUMN)         \
  COLUMN(Material, cut_layer)            \
  COLUMN(Material, appearance)           \
  COLUMN(Material, structural_id)        \
  COLUMN(Material, thermal_id)           \
  COLUMN(Material, function)             \
  COLUMN(Material, allow_custom_thickness)
#define VALUE_MATERIAL_COLUMNS(COLUMN)          \
  COLUMN(Material, comments)                    \
  COLUMN(Material, code)                        \
  COLUMN(Material, cost)                        \
  COLUMN(Material, keynote)                     \
  COLUMN(Material, label)                       \
  COLUMN(Material, manufacturer)                \
  COLUMN(Material, mark)                        \
  COLUMN(Material, model)                       \
  COLUMN(Material, url)                         \
  COLUMN(Material, classification)              \
  COLUMN(Material, shading_use_appearance)      \
  COLUMN(Material, shading_color_red)           \
  COLUMN(Material, shading_color_green)         \
  COLUMN(Material, shading_color_blue)          \
  COLUMN(Material, shading_color_alpha)         \
  COLUMN(Material, surface_pattern_type)        \
  COLUMN(Material, surface_pattern_name)        \
  COLUMN(Material, surface_pattern_scale)       \
  COLUMN(Material, surface_pattern_angle)       \
  COLUMN(Material, surface_pattern_cross)       \
  COLUMN(Material, surface_pattern_color_red)   \
  COLUMN(Material, surface_pattern_color_green) \
  COLUMN(Material, surface_pattern_color_blue)  \
  COLUMN(Material, surface_pattern_color_alpha) \
  COLUMN(Material, surface_pattern_alignment_x) \
  COLUMN(Material, surface_pattern_alignment_y) \
  COLUMN(Material, cut_pattern_type)            \
  COLUMN(Material, cut_pattern_name)            \
  COLUMN(Material, cut_pattern_scale)           \
  COLUMN(Material, cut_pattern_angle)           \
  COLUMN(Material, cut_pattern_cross)           \
  COLUMN(Material, cut_pattern_color_red)       \
  COLUMN(Material, cut_pattern_color_green)     \
  COLUMN(Material, cut_pattern_color_blue)      \
  COLUMN(Material, cut_pattern_color_alpha)

#define COMPOSITION_COLUMNS(COLUMN)                 \
  COLUMN(Composition, name)                         \
  COLUMN(Composition, description)                  \
  COLUMN(Composition, type)                         \
  COLUMN(Composition, entity_layer)                 \
  COLUMN(Composition, comments)                     \
  COLUMN(Composition, first_core_layer)             \
  COLUMN(Composition, last_core_layer)              \
  COLUMN(Composition, structural_layer)             \
  COLUMN(Composition, variable_layer)               \
  COLUMN(Composition, variable_layer_min_thickness) \
  COLUMN(Composition, variable_layer_max_thickness)

#define SELECTED(table, column) ", \"" #table "\".\"" #column "\""
#define INSERTED(table, column) ", \"" #column "\""
#define PLACE(table, column) ", ?"
#define ASSIGNED(table, column) ", \"" #column "\"=?"

typedef enum {
  BEGIN,
  BEGIN_IMMEDIATE,
  COMMIT,
  ROLLBACK,

  FIND_TAG,
  FIND_PROPERTY,
  FIND_LAYER,
  FIND_TYPE,
  FIND_STRUCTURAL,
  FIND_THERMAL,
  FIND_ASSET_TAGS,
  FIND_MATERIAL,
  FIND_MATERIAL_TAGS,
  FIND_THICKNESSES,
  FIND_MATERIAL_VALUES,
  FIND_COMPOSITION,
  FIND_COMPOSITION_TAGS,
  FIND_LAYERS,
  FIND_COMPOSITION_VALUES,

  MATERIAL_ID_BY_NAME,
  MATERIAL_IDS,
  COMPOSITION_IDS,
  TYPE_IDS,
  LAYER_IDS,
  PROPERTY_IDS,
  TAG_IDS,
  SEARCH_MATERIALS,
  MATERIAL_ID_SET,
  TAGGED_MATERIALS,
  COUNT_MATERIALS,
  COUNT_COMPOSITIONS,
  COUNT_COMPOSITIONS_OF,
  COUNT_MATERIALS_WITH,
  LEAN_COUNT_MATERIALS,
  LEAN_COUNT_COMPOSITIONS,
  LEAN_COUNT_COMPOSITIONS_OF,
  LEAN_COUNT_MATERIALS_WITH,

  ALL_TAGS,
  ALL_PROPERTIES,
  ALL_LAYERS,
  ALL_TYPES,
  ALL_STRUCTURAL,
  ALL_THERMAL,
  ALL_ASSET_TAGS,
  /* Whole tables, and in the same order the parts of them that belong to some ids. */
  ALL_MATERIALS,
  ALL_MATERIAL_TAGS,
  ALL_THICKNESSES,
  ALL_MATERIAL_VALUES,
  ALL_COMPOSITIONS,
  ALL_COMPOSITION_TAGS,
  ALL_LAYER_ROWS,
  ALL_COMPOSITION_VALUES,
  SOME_MATERIALS,
  SOME_MATERIAL_TAGS,
  SOME_THICKNESSES,
  SOME_MATERIAL_VALUES,
  SOME_COMPOSITIONS,
  SOME_COMPOSITION_TAGS,
  SOME_LAYER_ROWS,
  SOME_COMPOSITION_VALUES,

  INSERT_TAG,
  INSERT_PROPERTY,
  INSERT_LAYER,
  INSERT_TYPE,
  INSERT_MATERIAL,
  INSERT_MATERIAL_TAG,
  INSERT_THICKNESS,
  INSERT_MATERIAL_VALUE,
  INSERT_COMPOSITION,
  INSERT_COMPOSITION_TAG,
  INSERT_COMPOSITION_LAYER,
  INSERT_COMPOSITION_VALUE,
  UPDATE_MATERIAL,

  DELETE_TAG,
  DELETE_PROPERTY,
  DELETE_LAYER,
  DELETE_TYPE,
  DELETE_MATERIAL,
  DELETE_MATERIAL_TAGS,
  DELETE_THICKNESSES,
  DELETE_MATERIAL_VALUES,
  DELETE_COMPOSITION,
  DELETE_COMPOSITION_TAGS,
  DELETE_LAYERS,
  DELETE_COMPOSITION_VALUES,

  TYPE_ID_BY_NAME,

  UNREFERENCED_MATERIALS,
  UNREFERENCED_TAGS,
  REFERRERS_OF_MATERIAL,

  STATEMENTS
} statement_id;

struct plain_library {
  sqlite3* database;
  sqlite3_stmt* statements[STATEMENTS];
  plain_text guid;
  int unit;
  /* The texts of the row that is being written. */
  char* texts;
  size_t texts_used;
};

enum { TEXTS_ROOM = 1 << 20 };

/* plain_statements.c */

void fail(const char* what);
void check(plain_library* library, int result);
/* The statement, prepared at its first use. */
sqlite3_stmt* statement(plain_library* library, statement_id id);
/* The statement with a first parameter. */
sqlite3_stmt* statement_for(plain_library* library, statement_id id, unsigned parameter);
/* Whether there is another row. Resets the statement after the last. */
int next_row(plain_library* library, sqlite3_stmt* statement);
/* Runs a statement without rows and resets it. */
void run(plain_library* library, sqlite3_stmt* statement);

void bind_text(plain_library* library, sqlite3_stmt* statement, int place, const uint16_t* text);

unsigned inserted_id(plain_library* library);

void* grown(void* items, size_t size, size_t* room, size_t item_bytes);
/* The place behind the last item of a list, which becomes its last. */
#define APPEND(list)                                                                          \
  ((list)->items = grown((list)->items, (list)->size, &(list)->room, sizeof(*(list)->items)), \
   &(list)->items[(list)->size++])

/* plain_rows.c: what is in a row. Of what it refers to only the ids are filled in. */

unsigned id_at(sqlite3_stmt* row, int column);
plain_text text_at(sqlite3_stmt* row, int column);
plain_named named_of(sqlite3_stmt* row);
plain_property property_of(sqlite3_stmt* row);
void fill_asset(sqlite3_stmt* row, plain_asset* asset);
void fill_material(sqlite3_stmt* row, plain_material* material);
void fill_composition(sqlite3_stmt* row, plain_composition* composition);

/* plain_values.c */

/* Items of zeros. */
void* allocated(size_t count, size_t item_bytes);
plain_text copied_text(const uint16_t* text);
plain_asset* copied_asset(const plain_asset* asset);
void copy_material(const plain_material* material, plain_material* copy);
/* What belongs to an object, which itself stays. */
void free_asset_values(plain_asset* asset, plain_sharing sharing);
void free_material_values(plain_material* material, plain_sharing sharing);
void free_composition_values(plain_composition* composition, plain_sharing sharing);

/* plain_read.c */

/* Within the transaction of the caller; whether there is one of that id. */
int read_material(plain_library* library, unsigned id, plain_material* material);
/* Its id; 0 if there is none. */
unsigned material_of_name(plain_library* library, const uint16_t* name);
/* The ids that a query gives, and queries with their parameters. */
plain_ids read_ids(plain_library* library, sqlite3_stmt* query);
sqlite3_stmt* searching(plain_library* library, const uint16_t* pattern);
sqlite3_stmt* selecting_ids(plain_library* library, const unsigned* ids);
sqlite3_stmt* selecting_tagged(plain_library* library, const uint16_t* const* tags);

/* plain_remove.c: the rows that go with an object. */
void delete_side_rows(plain_library* library, plain_kind kind, unsigned id);

#endif
