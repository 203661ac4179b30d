// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_PLAIN_INTERNAL_H
#define VELDRA_BENCH_PLAIN_INTERNAL_H

#include "plain_sqlite.h"

#include <sqlite3.h>

/* The columns of a table behind its id, for the texts of its statements. */
#define MATERIAL_COLUMNS(COLUMN) COLUMN(Material, name) FURTHER_MATERIAL_COLUMNS(COLUMN)
#define FURTHER_MATERIAL_COLUMNS(COLUMN)        \
  COLUMN(Material, description)                 \
  COLUMN(Material, type)                        \
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
  COLUMN(Material, cut_pattern_color_alpha)     \
  COLUMN(Material, cut_layer)                   \
  COLUMN(Material, appearance)                  \
  COLUMN(Material, structural_id)               \
  COLUMN(Material, thermal_id)                  \
  COLUMN(Material, function)                    \
  COLUMN(Material, allow_custom_thickness)

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
  COUNT_MATERIALS,
  COUNT_COMPOSITIONS,
  COUNT_COMPOSITIONS_OF,
  COUNT_MATERIALS_WITH,

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

void* grown(void* items, size_t size, size_t* room, size_t item_bytes);
/* The place behind the last item of a list, which becomes its last. */
#define APPEND(list)                                                                          \
  ((list)->items = grown((list)->items, (list)->size, &(list)->room, sizeof(*(list)->items)), \
   &(list)->items[(list)->size++])

#endif
