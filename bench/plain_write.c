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
    put_int(&at, plain_mapped(map, layer->material->id));
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
    plain_insert_material(library, composition->layers.items[i].material, maps);
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

/* Rewrites a material's row and side tables. */
static void update_material(plain_library* library, unsigned row, const plain_material* material,
                            const plain_maps* maps) {
  places at = places_of(library, UPDATE_MATERIAL);
  put_material(&at, material, plain_mapped(&maps->types, material->type.id),
               plain_mapped(&maps->layers, material->cut_layer.id));
  put_int(&at, row);
  run(library, at.statement);
  delete_side_rows(library, PLAIN_MATERIAL, row);
  insert_material_side_rows(library, row, material, maps);
}

void plain_update_material(plain_library* library, const plain_material* material,
                           plain_maps* maps) {
  plain_begin_write(library);
  update_material(library, plain_mapped(&maps->materials, material->id), material, maps);
  plain_commit(library);
}

static void read_and_forget(plain_library* library, unsigned row) {
  plain_material stored;
  if (!read_material(library, row, &stored)) fail("no such material");
  plain_free_material(&stored);
}

/* Lets a stored material stand for one of the same name, if there is one. */
static void settle_name(plain_library* library, const plain_material* material, plain_maps* maps,
                        plain_decision decision) {
  const unsigned row = material_of_name(library, material->name);
  if (row == 0) return;
  if (decision == PLAIN_OVERWRITE) {
    update_material(library, row, material, maps);
  } else {
    read_and_forget(library, row);
  }
  plain_enter(&maps->materials, material->id, row);
}

unsigned plain_save_taken(plain_library* library, const plain_composition* composition,
                          plain_maps* maps, plain_decision decision) {
  plain_begin_write(library);
  for (size_t i = 0; i != composition->layers.size; ++i) {
    settle_name(library, composition->layers.items[i].material, maps, decision);
  }
  const unsigned row = plain_insert_composition(library, composition, maps);
  plain_commit(library);
  return row;
}
