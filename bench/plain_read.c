// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>

/* The row of an id that something refers to. */
static sqlite3_stmt* referred_row(plain_library* library, statement_id find, unsigned id) {
  sqlite3_stmt* row = statement_for(library, find, id);
  if (!next_row(library, row)) fail("a dangling reference");
  return row;
}

static plain_named read_named(plain_library* library, statement_id find, unsigned id) {
  plain_named named = {0, NULL};
  if (id == 0) return named;
  sqlite3_stmt* row = referred_row(library, find, id);
  named = named_of(row);
  sqlite3_reset(row);
  return named;
}

static plain_property read_property(plain_library* library, unsigned id) {
  sqlite3_stmt* row = referred_row(library, FIND_PROPERTY, id);
  const plain_property property = property_of(row);
  sqlite3_reset(row);
  return property;
}

static void read_tags(plain_library* library, statement_id find, unsigned id, plain_tags* tags) {
  sqlite3_stmt* rows = statement_for(library, find, id);
  while (next_row(library, rows)) {
    plain_named* tag = APPEND(tags);
    *tag = read_named(library, FIND_TAG, id_at(rows, 1));
  }
}

static void read_values(plain_library* library, statement_id find, unsigned id,
                        plain_values* values) {
  sqlite3_stmt* rows = statement_for(library, find, id);
  while (next_row(library, rows)) {
    plain_value* value = APPEND(values);
    value->property = read_property(library, id_at(rows, 0));
    value->value = text_at(rows, 1);
  }
}

static void read_thicknesses(plain_library* library, unsigned id, plain_numbers* thicknesses) {
  sqlite3_stmt* rows = statement_for(library, FIND_THICKNESSES, id);
  while (next_row(library, rows)) {
    double* thickness = APPEND(thicknesses);
    *thickness = sqlite3_column_double(rows, 0);
  }
}

static plain_asset* read_asset(plain_library* library, statement_id find, unsigned id) {
  if (id == 0) return NULL;
  plain_asset* asset = allocated(1, sizeof *asset);
  sqlite3_stmt* row = referred_row(library, find, id);
  fill_asset(row, asset);
  sqlite3_reset(row);
  read_tags(library, FIND_ASSET_TAGS, id, &asset->tags);
  return asset;
}

int read_material(plain_library* library, unsigned id, plain_material* material) {
  sqlite3_stmt* row = statement_for(library, FIND_MATERIAL, id);
  if (!next_row(library, row)) return 0;
  fill_material(row, material);
  sqlite3_reset(row);

  material->type = read_named(library, FIND_TYPE, material->type.id);
  material->cut_layer = read_named(library, FIND_LAYER, material->cut_layer.id);
  material->structural = read_asset(library, FIND_STRUCTURAL, material->structural_id);
  material->thermal = read_asset(library, FIND_THERMAL, material->thermal_id);
  read_tags(library, FIND_MATERIAL_TAGS, id, &material->tags);
  read_thicknesses(library, id, &material->thicknesses);
  read_values(library, FIND_MATERIAL_VALUES, id, &material->values);
  return 1;
}

static void read_layers(plain_library* library, unsigned id, plain_layers* layers) {
  sqlite3_stmt* rows = statement_for(library, FIND_LAYERS, id);
  while (next_row(library, rows)) {
    plain_composition_layer* layer = APPEND(layers);
    layer->material = allocated(1, sizeof *layer->material);
    if (!read_material(library, id_at(rows, 1), layer->material)) fail("a dangling reference");
    layer->function = sqlite3_column_int(rows, 2);
    layer->thickness = sqlite3_column_double(rows, 3);
  }
}

static int read_composition(plain_library* library, unsigned id, plain_composition* composition) {
  sqlite3_stmt* row = statement_for(library, FIND_COMPOSITION, id);
  if (!next_row(library, row)) return 0;
  fill_composition(row, composition);
  sqlite3_reset(row);

  composition->entity_layer = read_named(library, FIND_LAYER, composition->entity_layer.id);
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

unsigned material_of_name(plain_library* library, const uint16_t* name) {
  library->texts_used = 0;
  sqlite3_stmt* query = statement(library, MATERIAL_ID_BY_NAME);
  bind_text(library, query, 1, name);
  if (!next_row(library, query)) return 0;
  const unsigned id = id_at(query, 0);
  sqlite3_reset(query);
  return id;
}

int plain_get_material_by_name(plain_library* library, const uint16_t* name,
                               plain_material* material) {
  plain_begin(library);
  const unsigned id = material_of_name(library, name);
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

plain_ids read_ids(plain_library* library, sqlite3_stmt* query) {
  plain_ids ids = {NULL, 0, 0};
  while (next_row(library, query)) {
    unsigned* id = APPEND(&ids);
    *id = id_at(query, 0);
  }
  return ids;
}

static plain_materials read_materials(plain_library* library, const unsigned* ids, size_t size) {
  plain_materials materials = {NULL, 0, 0};
  for (size_t i = 0; i != size; ++i) {
    plain_material* material = APPEND(&materials);
    if (!read_material(library, ids[i], material)) --materials.size;
  }
  return materials;
}

static plain_materials listed(plain_library* library, sqlite3_stmt* query) {
  plain_begin(library);
  plain_ids ids = read_ids(library, query);
  const plain_materials materials = read_materials(library, ids.items, ids.size);
  free(ids.items);
  plain_commit(library);
  return materials;
}

plain_materials plain_each_of_ids(plain_library* library, const unsigned* ids, size_t size) {
  plain_begin(library);
  const plain_materials materials = read_materials(library, ids, size);
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

sqlite3_stmt* searching(plain_library* library, const uint16_t* pattern) {
  library->texts_used = 0;
  sqlite3_stmt* query = statement(library, SEARCH_MATERIALS);
  bind_text(library, query, 1, pattern);
  return query;
}

sqlite3_stmt* selecting_ids(plain_library* library, const unsigned* ids) {
  sqlite3_stmt* query = statement(library, MATERIAL_ID_SET);
  for (int i = 0; i != PLAIN_ID_SET; ++i) check(library, sqlite3_bind_int64(query, i + 1, ids[i]));
  return query;
}

sqlite3_stmt* selecting_tagged(plain_library* library, const uint16_t* const* tags) {
  library->texts_used = 0;
  sqlite3_stmt* query = statement(library, TAGGED_MATERIALS);
  for (int i = 0; i != PLAIN_TAG_SET; ++i) bind_text(library, query, i + 1, tags[i]);
  return query;
}

plain_materials plain_all_materials(plain_library* library) {
  return listed(library, statement(library, MATERIAL_IDS));
}

plain_materials plain_search_materials(plain_library* library, const uint16_t* pattern) {
  return listed(library, searching(library, pattern));
}

plain_materials plain_materials_of(plain_library* library, const unsigned* ids) {
  return listed(library, selecting_ids(library, ids));
}

plain_materials plain_materials_tagged(plain_library* library, const uint16_t* const* tags) {
  return listed(library, selecting_tagged(library, tags));
}

void plain_each_material(plain_library* library, plain_visit_material visit, void* context) {
  plain_begin(library);
  plain_ids ids = read_ids(library, statement(library, MATERIAL_IDS));
  for (size_t i = 0; i != ids.size; ++i) {
    plain_material material;
    if (!read_material(library, ids.items[i], &material)) continue;
    visit(context, &material);
    plain_free_material(&material);
  }
  free(ids.items);
  plain_commit(library);
}

void plain_each_composition(plain_library* library, plain_visit_composition visit, void* context) {
  plain_begin(library);
  plain_ids ids = read_ids(library, statement(library, COMPOSITION_IDS));
  for (size_t i = 0; i != ids.size; ++i) {
    plain_composition composition;
    if (!read_composition(library, ids.items[i], &composition)) continue;
    visit(context, &composition);
    plain_free_composition(&composition);
  }
  free(ids.items);
  plain_commit(library);
}
