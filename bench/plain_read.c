// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>
#include <string.h>

/* The columns of a row from the left to the right. */
typedef struct {
  sqlite3_stmt* row;
  int column;
} columns;

static plain_text next_text(columns* at) {
  const int column = at->column++;
  const char* utf8 = (const char*)sqlite3_column_text(at->row, column);
  if (utf8 == NULL) return NULL;
  return plain_decode(utf8, (size_t)sqlite3_column_bytes(at->row, column));
}

static unsigned next_id(columns* at) {
  return (unsigned)sqlite3_column_int64(at->row, at->column++);
}

static int next_int(columns* at) { return sqlite3_column_int(at->row, at->column++); }

static double next_real(columns* at) { return sqlite3_column_double(at->row, at->column++); }

static int next_is_null(const columns* at) {
  return sqlite3_column_type(at->row, at->column) == SQLITE_NULL;
}

static plain_color next_color(columns* at) {
  plain_color color;
  color.red = next_real(at);
  color.green = next_real(at);
  color.blue = next_real(at);
  color.alpha = next_real(at);
  return color;
}

static plain_pattern next_pattern(columns* at) {
  plain_pattern pattern;
  pattern.type = next_int(at);
  pattern.name = next_text(at);
  pattern.scale = next_real(at);
  pattern.angle = next_real(at);
  pattern.cross = next_int(at);
  pattern.color = next_color(at);
  return pattern;
}

static plain_named read_named(plain_library* library, statement_id find, unsigned id) {
  plain_named named = {0, NULL};
  if (id == 0) return named;
  columns at = {statement_for(library, find, id), 0};
  if (!next_row(library, at.row)) fail("a dangling reference");
  named.id = next_id(&at);
  named.name = next_text(&at);
  sqlite3_reset(at.row);
  return named;
}

static plain_property read_property(plain_library* library, unsigned id) {
  plain_property property;
  columns at = {statement_for(library, FIND_PROPERTY, id), 0};
  if (!next_row(library, at.row)) fail("a dangling reference");
  property.id = next_id(&at);
  property.name = next_text(&at);
  property.object_type = next_int(&at);
  sqlite3_reset(at.row);
  return property;
}

static void read_tags(plain_library* library, statement_id find, unsigned id, plain_tags* tags) {
  sqlite3_stmt* rows = statement_for(library, find, id);
  while (next_row(library, rows)) {
    plain_named* tag = APPEND(tags);
    *tag = read_named(library, FIND_TAG, (unsigned)sqlite3_column_int64(rows, 1));
  }
}

static void read_values(plain_library* library, statement_id find, unsigned id,
                        plain_values* values) {
  sqlite3_stmt* rows = statement_for(library, find, id);
  while (next_row(library, rows)) {
    columns at = {rows, 0};
    plain_value* value = APPEND(values);
    value->property = read_property(library, next_id(&at));
    value->value = next_text(&at);
  }
}

static void read_thicknesses(plain_library* library, unsigned id, plain_numbers* thicknesses) {
  sqlite3_stmt* rows = statement_for(library, FIND_THICKNESSES, id);
  while (next_row(library, rows)) {
    double* thickness = APPEND(thicknesses);
    *thickness = sqlite3_column_double(rows, 0);
  }
}

static int read_material(plain_library* library, unsigned id, plain_material* material) {
  memset(material, 0, sizeof *material);
  columns at = {statement_for(library, FIND_MATERIAL, id), 0};
  if (!next_row(library, at.row)) return 0;

  material->id = next_id(&at);
  material->name = next_text(&at);
  material->description = next_text(&at);
  const unsigned type = next_id(&at);
  material->comments = next_text(&at);
  material->code = next_text(&at);
  material->cost = next_text(&at);
  material->keynote = next_text(&at);
  material->label = next_text(&at);
  material->manufacturer = next_text(&at);
  material->mark = next_text(&at);
  material->model = next_text(&at);
  material->url = next_text(&at);
  material->classification = next_text(&at);
  material->shading_use_appearance = next_int(&at);
  material->shading_color = next_color(&at);
  material->surface_pattern = next_pattern(&at);
  material->alignment_x = next_real(&at);
  material->alignment_y = next_real(&at);
  material->cut_pattern = next_pattern(&at);
  const unsigned cut_layer = next_id(&at);
  material->appearance = next_text(&at);
  material->structural_id = next_id(&at);
  material->thermal_id = next_id(&at);
  material->function = next_int(&at);
  material->allow_custom_thickness = next_int(&at);
  sqlite3_reset(at.row);

  material->type = read_named(library, FIND_TYPE, type);
  material->cut_layer = read_named(library, FIND_LAYER, cut_layer);
  read_tags(library, FIND_MATERIAL_TAGS, id, &material->tags);
  read_thicknesses(library, id, &material->thicknesses);
  read_values(library, FIND_MATERIAL_VALUES, id, &material->values);
  return 1;
}

static void read_layers(plain_library* library, unsigned id, plain_layers* layers) {
  sqlite3_stmt* rows = statement_for(library, FIND_LAYERS, id);
  while (next_row(library, rows)) {
    plain_composition_layer* layer = APPEND(layers);
    const unsigned material = (unsigned)sqlite3_column_int64(rows, 1);
    if (!read_material(library, material, &layer->material)) fail("a dangling reference");
    layer->function = sqlite3_column_int(rows, 2);
    layer->thickness = sqlite3_column_double(rows, 3);
  }
}

static int read_composition(plain_library* library, unsigned id, plain_composition* composition) {
  memset(composition, 0, sizeof *composition);
  columns at = {statement_for(library, FIND_COMPOSITION, id), 0};
  if (!next_row(library, at.row)) return 0;

  composition->id = next_id(&at);
  composition->name = next_text(&at);
  composition->description = next_text(&at);
  composition->type = next_int(&at);
  const unsigned entity_layer = next_id(&at);
  composition->comments = next_text(&at);
  composition->first_core_layer = next_id(&at);
  composition->last_core_layer = next_id(&at);
  composition->structural_layer = next_id(&at);
  composition->has_variable_layer = !next_is_null(&at);
  composition->variable_layer = next_id(&at);
  composition->variable_layer_min_thickness = next_real(&at);
  composition->has_variable_layer_max_thickness = !next_is_null(&at);
  composition->variable_layer_max_thickness = next_real(&at);
  sqlite3_reset(at.row);

  composition->entity_layer = read_named(library, FIND_LAYER, entity_layer);
  read_tags(library, FIND_COMPOSITION_TAGS, id, &composition->tags);
  read_layers(library, id, &composition->layers);
  read_values(library, FIND_COMPOSITION_VALUES, id, &composition->values);
  return 1;
}

int plain_get_material(plain_library* library, unsigned id, plain_material* material) {
  plain_begin(library);
  const int found = read_material(library, id, material);
  plain_commit(library);
  return found;
}

int plain_get_material_by_name(plain_library* library, const uint16_t* name,
                               plain_material* material) {
  plain_begin(library);
  library->texts_used = 0;
  sqlite3_stmt* query = statement(library, MATERIAL_ID_BY_NAME);
  bind_text(library, query, 1, name);
  unsigned id = 0;
  if (next_row(library, query)) {
    id = (unsigned)sqlite3_column_int64(query, 0);
    sqlite3_reset(query);
  }
  const int found = id != 0 && read_material(library, id, material);
  plain_commit(library);
  return found;
}

int plain_get_composition(plain_library* library, unsigned id, plain_composition* composition) {
  plain_begin(library);
  const int found = read_composition(library, id, composition);
  plain_commit(library);
  return found;
}

static plain_ids read_ids(plain_library* library, sqlite3_stmt* query) {
  plain_ids ids = {NULL, 0, 0};
  while (next_row(library, query)) {
    unsigned* id = APPEND(&ids);
    *id = (unsigned)sqlite3_column_int64(query, 0);
  }
  return ids;
}

static plain_materials read_materials(plain_library* library, sqlite3_stmt* query) {
  plain_materials materials = {NULL, 0, 0};
  plain_ids ids = read_ids(library, query);
  for (size_t i = 0; i != ids.size; ++i) {
    plain_material* material = APPEND(&materials);
    if (!read_material(library, ids.items[i], material)) --materials.size;
  }
  free(ids.items);
  return materials;
}

plain_materials plain_all_materials(plain_library* library) {
  plain_begin(library);
  const plain_materials materials = read_materials(library, statement(library, MATERIAL_IDS));
  plain_commit(library);
  return materials;
}

plain_compositions plain_all_compositions(plain_library* library) {
  plain_begin(library);
  plain_compositions compositions = {NULL, 0, 0};
  plain_ids ids = read_ids(library, statement(library, COMPOSITION_IDS));
  for (size_t i = 0; i != ids.size; ++i) {
    plain_composition* composition = APPEND(&compositions);
    if (!read_composition(library, ids.items[i], composition)) --compositions.size;
  }
  free(ids.items);
  plain_commit(library);
  return compositions;
}

plain_materials plain_search_materials(plain_library* library, const uint16_t* pattern) {
  plain_begin(library);
  library->texts_used = 0;
  sqlite3_stmt* query = statement(library, SEARCH_MATERIALS);
  bind_text(library, query, 1, pattern);
  const plain_materials materials = read_materials(library, query);
  plain_commit(library);
  return materials;
}

plain_materials plain_materials_of(plain_library* library, const unsigned* ids) {
  plain_begin(library);
  sqlite3_stmt* query = statement(library, MATERIAL_ID_SET);
  for (int i = 0; i != PLAIN_ID_SET; ++i) check(library, sqlite3_bind_int64(query, i + 1, ids[i]));
  const plain_materials materials = read_materials(library, query);
  plain_commit(library);
  return materials;
}

static unsigned long long read_count(plain_library* library, sqlite3_stmt* query) {
  if (!next_row(library, query)) fail("no count");
  const unsigned long long count = (unsigned long long)sqlite3_column_int64(query, 0);
  sqlite3_reset(query);
  return count;
}

static unsigned long long counted(plain_library* library, sqlite3_stmt* query) {
  plain_begin(library);
  const unsigned long long count = read_count(library, query);
  plain_commit(library);
  return count;
}

unsigned long long plain_count_materials(plain_library* library) {
  return counted(library, statement(library, COUNT_MATERIALS));
}

unsigned long long plain_count_compositions(plain_library* library) {
  return counted(library, statement(library, COUNT_COMPOSITIONS));
}

unsigned long long plain_count_compositions_of(plain_library* library, int type, int other_type) {
  sqlite3_stmt* query = statement(library, COUNT_COMPOSITIONS_OF);
  check(library, sqlite3_bind_int(query, 1, type));
  check(library, sqlite3_bind_int(query, 2, other_type));
  return counted(library, query);
}

unsigned long long plain_count_materials_with(plain_library* library, const uint16_t* tag,
                                              const uint16_t* other_tag) {
  library->texts_used = 0;
  sqlite3_stmt* query = statement(library, COUNT_MATERIALS_WITH);
  bind_text(library, query, 1, tag);
  bind_text(library, query, 2, other_tag);
  return counted(library, query);
}

static void free_tags(plain_tags* tags) {
  for (size_t i = 0; i != tags->size; ++i) free(tags->items[i].name);
  free(tags->items);
}

static void free_values(plain_values* values) {
  for (size_t i = 0; i != values->size; ++i) {
    free(values->items[i].property.name);
    free(values->items[i].value);
  }
  free(values->items);
}

void plain_free_material(plain_material* material) {
  plain_text texts[] = {material->name,
                        material->description,
                        material->type.name,
                        material->comments,
                        material->code,
                        material->cost,
                        material->keynote,
                        material->label,
                        material->manufacturer,
                        material->mark,
                        material->model,
                        material->url,
                        material->classification,
                        material->surface_pattern.name,
                        material->cut_pattern.name,
                        material->cut_layer.name,
                        material->appearance};
  for (size_t i = 0; i != sizeof texts / sizeof *texts; ++i) free(texts[i]);
  free_tags(&material->tags);
  free(material->thicknesses.items);
  free_values(&material->values);
}

void plain_free_composition(plain_composition* composition) {
  free(composition->name);
  free(composition->description);
  free(composition->entity_layer.name);
  free(composition->comments);
  free_tags(&composition->tags);
  for (size_t i = 0; i != composition->layers.size; ++i) {
    plain_free_material(&composition->layers.items[i].material);
  }
  free(composition->layers.items);
  free_values(&composition->values);
}

void plain_free_materials(plain_materials* materials) {
  for (size_t i = 0; i != materials->size; ++i) plain_free_material(&materials->items[i]);
  free(materials->items);
}

void plain_free_compositions(plain_compositions* compositions) {
  for (size_t i = 0; i != compositions->size; ++i) {
    plain_free_composition(&compositions->items[i]);
  }
  free(compositions->items);
}
