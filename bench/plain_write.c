// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>
#include <string.h>

unsigned plain_mapped(const plain_map* map, unsigned id) {
  return id < map->size ? map->ids[id] : 0;
}

void plain_enter(plain_map* map, unsigned id, unsigned row) {
  if (id >= map->size) {
    const size_t size = 2 * (size_t)id + 64;
    map->ids = realloc(map->ids, size * sizeof *map->ids);
    if (map->ids == NULL) fail("no memory");
    memset(map->ids + map->size, 0, (size - map->size) * sizeof *map->ids);
    map->size = size;
  }
  map->ids[id] = row;
}

void plain_free_maps(plain_maps* maps) {
  free(maps->tags.ids);
  free(maps->types.ids);
  free(maps->layers.ids);
  free(maps->properties.ids);
  free(maps->materials.ids);
  memset(maps, 0, sizeof *maps);
}

static unsigned inserted_id(plain_library* library) {
  return (unsigned)sqlite3_last_insert_rowid(library->database);
}

/* The places of a statement from the left to the right. */
typedef struct {
  plain_library* library;
  sqlite3_stmt* statement;
  int place;
} places;

static places places_of(plain_library* library, statement_id id) {
  library->texts_used = 0;
  places at = {library, statement(library, id), 1};
  return at;
}

static void put_text(places* at, const uint16_t* text) {
  bind_text(at->library, at->statement, at->place++, text);
}

static void put_int(places* at, long long number) {
  check(at->library, sqlite3_bind_int64(at->statement, at->place++, number));
}

static void put_real(places* at, double number) {
  check(at->library, sqlite3_bind_double(at->statement, at->place++, number));
}

static void put_null(places* at) {
  check(at->library, sqlite3_bind_null(at->statement, at->place++));
}

static void put_reference(places* at, unsigned id) {
  if (id == 0) {
    put_null(at);
  } else {
    put_int(at, id);
  }
}

static void put_color(places* at, const plain_color* color) {
  put_real(at, color->red);
  put_real(at, color->green);
  put_real(at, color->blue);
  put_real(at, color->alpha);
}

static void put_pattern(places* at, const plain_pattern* pattern) {
  put_int(at, pattern->type);
  put_text(at, pattern->name);
  put_real(at, pattern->scale);
  put_real(at, pattern->angle);
  put_int(at, pattern->cross);
  put_color(at, &pattern->color);
}

static unsigned insert_named(plain_library* library, statement_id insert, const plain_named* named,
                             plain_map* map) {
  if (named->id == 0) return 0;
  unsigned row = plain_mapped(map, named->id);
  if (row != 0) return row;
  places at = places_of(library, insert);
  put_null(&at);
  put_text(&at, named->name);
  run(library, at.statement);
  row = inserted_id(library);
  plain_enter(map, named->id, row);
  return row;
}

static void insert_property(plain_library* library, const plain_property* property,
                            plain_map* map) {
  if (plain_mapped(map, property->id) != 0) return;
  places at = places_of(library, INSERT_PROPERTY);
  put_null(&at);
  put_text(&at, property->name);
  put_int(&at, property->object_type);
  run(library, at.statement);
  plain_enter(map, property->id, inserted_id(library));
}

static void insert_tags(plain_library* library, const plain_tags* tags, plain_map* map) {
  for (size_t i = 0; i != tags->size; ++i) {
    insert_named(library, INSERT_TAG, &tags->items[i], map);
  }
}

static void insert_properties(plain_library* library, const plain_values* values, plain_map* map) {
  for (size_t i = 0; i != values->size; ++i) {
    insert_property(library, &values->items[i].property, map);
  }
}

static void insert_tag_rows(plain_library* library, statement_id insert, unsigned owner,
                            const plain_tags* tags, const plain_map* map) {
  for (size_t i = 0; i != tags->size; ++i) {
    places at = places_of(library, insert);
    put_int(&at, owner);
    put_int(&at, (long long)i);
    put_int(&at, plain_mapped(map, tags->items[i].id));
    run(library, at.statement);
  }
}

static void insert_value_rows(plain_library* library, statement_id insert, unsigned owner,
                              const plain_values* values, const plain_map* map) {
  for (size_t i = 0; i != values->size; ++i) {
    places at = places_of(library, insert);
    put_int(&at, owner);
    put_int(&at, plain_mapped(map, values->items[i].property.id));
    put_text(&at, values->items[i].value);
    run(library, at.statement);
  }
}

static void insert_thickness_rows(plain_library* library, unsigned owner,
                                  const plain_numbers* thicknesses) {
  for (size_t i = 0; i != thicknesses->size; ++i) {
    places at = places_of(library, INSERT_THICKNESS);
    put_int(&at, owner);
    put_real(&at, thicknesses->items[i]);
    run(library, at.statement);
  }
}

static void put_material(places* at, const plain_material* material, unsigned type,
                         unsigned cut_layer) {
  put_text(at, material->name);
  put_text(at, material->description);
  put_int(at, type);
  put_text(at, material->comments);
  put_text(at, material->code);
  put_text(at, material->cost);
  put_text(at, material->keynote);
  put_text(at, material->label);
  put_text(at, material->manufacturer);
  put_text(at, material->mark);
  put_text(at, material->model);
  put_text(at, material->url);
  put_text(at, material->classification);
  put_int(at, material->shading_use_appearance);
  put_color(at, &material->shading_color);
  put_pattern(at, &material->surface_pattern);
  put_real(at, material->alignment_x);
  put_real(at, material->alignment_y);
  put_pattern(at, &material->cut_pattern);
  put_reference(at, cut_layer);
  put_text(at, material->appearance);
  put_reference(at, material->structural_id);
  put_reference(at, material->thermal_id);
  put_int(at, material->function);
  put_int(at, material->allow_custom_thickness);
}

static void insert_material_side_rows(plain_library* library, unsigned row,
                                      const plain_material* material, const plain_maps* maps) {
  insert_tag_rows(library, INSERT_MATERIAL_TAG, row, &material->tags, &maps->tags);
  insert_thickness_rows(library, row, &material->thicknesses);
  insert_value_rows(library, INSERT_MATERIAL_VALUE, row, &material->values, &maps->properties);
}

unsigned plain_insert_material(plain_library* library, const plain_material* material,
                               plain_maps* maps) {
  unsigned row = plain_mapped(&maps->materials, material->id);
  if (row != 0) return row;
  insert_tags(library, &material->tags, &maps->tags);
  const unsigned type = insert_named(library, INSERT_TYPE, &material->type, &maps->types);
  const unsigned layer = insert_named(library, INSERT_LAYER, &material->cut_layer, &maps->layers);
  insert_properties(library, &material->values, &maps->properties);

  places at = places_of(library, INSERT_MATERIAL);
  put_null(&at);
  put_material(&at, material, type, layer);
  run(library, at.statement);
  row = inserted_id(library);
  plain_enter(&maps->materials, material->id, row);
  insert_material_side_rows(library, row, material, maps);
  return row;
}

static void insert_layer_rows(plain_library* library, unsigned owner, const plain_layers* layers,
                              const plain_map* map) {
  for (size_t i = 0; i != layers->size; ++i) {
    const plain_composition_layer* layer = &layers->items[i];
    places at = places_of(library, INSERT_COMPOSITION_LAYER);
    put_int(&at, owner);
    put_int(&at, (long long)i);
    put_int(&at, plain_mapped(map, layer->material.id));
    put_int(&at, layer->function);
    put_real(&at, layer->thickness);
    run(library, at.statement);
  }
}

unsigned plain_insert_composition(plain_library* library, const plain_composition* composition,
                                  plain_maps* maps) {
  insert_properties(library, &composition->values, &maps->properties);
  insert_tags(library, &composition->tags, &maps->tags);
  const unsigned entity_layer =
      insert_named(library, INSERT_LAYER, &composition->entity_layer, &maps->layers);
  for (size_t i = 0; i != composition->layers.size; ++i) {
    plain_insert_material(library, &composition->layers.items[i].material, maps);
  }

  places at = places_of(library, INSERT_COMPOSITION);
  put_null(&at);
  put_text(&at, composition->name);
  put_text(&at, composition->description);
  put_int(&at, composition->type);
  put_reference(&at, entity_layer);
  put_text(&at, composition->comments);
  put_int(&at, composition->first_core_layer);
  put_int(&at, composition->last_core_layer);
  put_int(&at, composition->structural_layer);
  if (composition->has_variable_layer) {
    put_int(&at, composition->variable_layer);
  } else {
    put_null(&at);
  }
  put_real(&at, composition->variable_layer_min_thickness);
  if (composition->has_variable_layer_max_thickness) {
    put_real(&at, composition->variable_layer_max_thickness);
  } else {
    put_null(&at);
  }
  run(library, at.statement);
  const unsigned row = inserted_id(library);

  insert_tag_rows(library, INSERT_COMPOSITION_TAG, row, &composition->tags, &maps->tags);
  insert_layer_rows(library, row, &composition->layers, &maps->materials);
  insert_value_rows(library, INSERT_COMPOSITION_VALUE, row, &composition->values,
                    &maps->properties);
  return row;
}

unsigned plain_save_composition(plain_library* library, const plain_composition* composition,
                                plain_maps* maps) {
  plain_begin_write(library);
  const unsigned row = plain_insert_composition(library, composition, maps);
  plain_commit(library);
  return row;
}

unsigned plain_save_material(plain_library* library, const plain_material* material,
                             plain_maps* maps) {
  plain_begin_write(library);
  const unsigned row = plain_insert_material(library, material, maps);
  plain_commit(library);
  return row;
}

static void delete_rows(plain_library* library, statement_id remove, unsigned id) {
  run(library, statement_for(library, remove, id));
}

void plain_update_material(plain_library* library, const plain_material* material,
                           plain_maps* maps) {
  const unsigned row = plain_mapped(&maps->materials, material->id);
  plain_begin_write(library);
  places at = places_of(library, UPDATE_MATERIAL);
  put_material(&at, material, plain_mapped(&maps->types, material->type.id),
               plain_mapped(&maps->layers, material->cut_layer.id));
  put_int(&at, row);
  run(library, at.statement);
  delete_rows(library, DELETE_MATERIAL_TAGS, row);
  delete_rows(library, DELETE_THICKNESSES, row);
  delete_rows(library, DELETE_MATERIAL_VALUES, row);
  insert_material_side_rows(library, row, material, maps);
  plain_commit(library);
}

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

static void delete_side_rows(plain_library* library, plain_kind kind, unsigned id) {
  if (kind == PLAIN_MATERIAL) {
    delete_rows(library, DELETE_MATERIAL_TAGS, id);
    delete_rows(library, DELETE_THICKNESSES, id);
    delete_rows(library, DELETE_MATERIAL_VALUES, id);
  } else if (kind == PLAIN_COMPOSITION) {
    delete_rows(library, DELETE_COMPOSITION_TAGS, id);
    delete_rows(library, DELETE_LAYERS, id);
    delete_rows(library, DELETE_COMPOSITION_VALUES, id);
  }
}

/* Whether the commit went through; it does not when rows still refer to what was deleted. */
static int committed(plain_library* library) {
  sqlite3_stmt* commit = statement(library, COMMIT);
  const int result = sqlite3_step(commit);
  sqlite3_reset(commit);
  if (result == SQLITE_DONE) return 1;
  if ((result & 0xFF) != SQLITE_CONSTRAINT) fail(sqlite3_errmsg(library->database));
  plain_rollback(library);
  return 0;
}

int plain_remove(plain_library* library, plain_kind kind, unsigned id) {
  static const statement_id deletes[PLAIN_KINDS] = {
      DELETE_COMPOSITION, DELETE_MATERIAL, DELETE_TYPE, DELETE_LAYER, DELETE_PROPERTY, DELETE_TAG};
  plain_begin_write(library);
  delete_side_rows(library, kind, id);
  delete_rows(library, deletes[kind], id);
  return committed(library);
}

static int ascending(const void* left, const void* right) {
  const unsigned a = *(const unsigned*)left, b = *(const unsigned*)right;
  return (a > b) - (a < b);
}

static plain_ids sorted_ids(plain_library* library, statement_id id) {
  plain_ids ids = {NULL, 0, 0};
  sqlite3_stmt* query = statement(library, id);
  plain_begin(library);
  while (next_row(library, query)) {
    unsigned* next = APPEND(&ids);
    *next = (unsigned)sqlite3_column_int64(query, 0);
  }
  plain_commit(library);
  if (ids.size != 0) qsort(ids.items, ids.size, sizeof *ids.items, ascending);
  return ids;
}

size_t plain_purge(plain_library* library) {
  static const statement_id queries[PLAIN_KINDS] = {COMPOSITION_IDS, MATERIAL_IDS, TYPE_IDS,
                                                    LAYER_IDS,       PROPERTY_IDS, TAG_IDS};
  size_t removed = 0;
  for (int kind = 0; kind != PLAIN_KINDS; ++kind) {
    plain_ids ids = sorted_ids(library, queries[kind]);
    for (size_t i = 0; i != ids.size; ++i) {
      removed += (size_t)plain_remove(library, (plain_kind)kind, ids.items[i]);
    }
    free(ids.items);
  }
  return removed;
}
