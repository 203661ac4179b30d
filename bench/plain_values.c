// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>
#include <string.h>

/* Copying and freeing what was read. */

/* Where the texts lie that belong to a material in any case, and to a composition. */
static const size_t material_texts[] = {offsetof(plain_material, name),
                                        offsetof(plain_material, description),
                                        offsetof(plain_material, comments),
                                        offsetof(plain_material, code),
                                        offsetof(plain_material, cost),
                                        offsetof(plain_material, keynote),
                                        offsetof(plain_material, label),
                                        offsetof(plain_material, manufacturer),
                                        offsetof(plain_material, mark),
                                        offsetof(plain_material, model),
                                        offsetof(plain_material, url),
                                        offsetof(plain_material, classification),
                                        offsetof(plain_material, surface_pattern.name),
                                        offsetof(plain_material, cut_pattern.name),
                                        offsetof(plain_material, appearance)};
enum { MATERIAL_TEXTS = sizeof material_texts / sizeof *material_texts };

static plain_text* text_in(plain_material* material, int text) {
  return (plain_text*)((char*)material + material_texts[text]);
}

void* allocated(size_t count, size_t item_bytes) {
  void* items = calloc(count == 0 ? 1 : count, item_bytes);
  if (items == NULL) fail("no memory");
  return items;
}

static void* copied_bytes(const void* from, size_t bytes) {
  if (bytes == 0) return NULL;
  void* copy = malloc(bytes);
  if (copy == NULL) fail("no memory");
  return memcpy(copy, from, bytes);
}

plain_text copied_text(const uint16_t* text) {
  if (text == NULL) return NULL;
  return copied_bytes(text, (plain_length(text) + 1) * sizeof *text);
}

static plain_tags copied_tags(const plain_tags* tags) {
  plain_tags copy = {copied_bytes(tags->items, tags->size * sizeof *tags->items), tags->size,
                     tags->size};
  for (size_t i = 0; i != copy.size; ++i) copy.items[i].name = copied_text(tags->items[i].name);
  return copy;
}

static plain_values copied_values(const plain_values* values) {
  plain_values copy = {copied_bytes(values->items, values->size * sizeof *values->items),
                       values->size, values->size};
  for (size_t i = 0; i != copy.size; ++i) {
    copy.items[i].property.name = copied_text(values->items[i].property.name);
    copy.items[i].value = copied_text(values->items[i].value);
  }
  return copy;
}

plain_asset* copied_asset(const plain_asset* asset) {
  if (asset == NULL) return NULL;
  plain_asset* copy = copied_bytes(asset, sizeof *asset);
  copy->name = copied_text(asset->name);
  copy->description = copied_text(asset->description);
  copy->subclass = copied_text(asset->subclass);
  copy->source = copied_text(asset->source);
  copy->tags = copied_tags(&asset->tags);
  return copy;
}

void copy_material(const plain_material* material, plain_material* copy) {
  *copy = *material;
  for (int i = 0; i != MATERIAL_TEXTS; ++i) *text_in(copy, i) = copied_text(*text_in(copy, i));
  copy->type.name = copied_text(material->type.name);
  copy->cut_layer.name = copied_text(material->cut_layer.name);
  copy->structural = copied_asset(material->structural);
  copy->thermal = copied_asset(material->thermal);
  copy->tags = copied_tags(&material->tags);
  const plain_numbers* thicknesses = &material->thicknesses;
  copy->thicknesses.items =
      copied_bytes(thicknesses->items, thicknesses->size * sizeof *thicknesses->items);
  copy->thicknesses.room = thicknesses->size;
  copy->values = copied_values(&material->values);
}

/* The name of something else, which goes with each object that has a copy of its own. */
static void free_name(plain_text name, plain_sharing sharing) {
  if (sharing == PLAIN_OWN_COPIES) free(name);
}

static void free_tags(plain_tags* tags, plain_sharing sharing) {
  for (size_t i = 0; i != tags->size; ++i) free_name(tags->items[i].name, sharing);
  free(tags->items);
}

static void free_values(plain_values* values, plain_sharing sharing) {
  for (size_t i = 0; i != values->size; ++i) {
    free_name(values->items[i].property.name, sharing);
    free(values->items[i].value);
  }
  free(values->items);
}

void free_asset_values(plain_asset* asset, plain_sharing sharing) {
  free(asset->name);
  free(asset->description);
  free(asset->subclass);
  free(asset->source);
  free_tags(&asset->tags, sharing);
}

static void free_asset(plain_asset* asset, plain_sharing sharing) {
  if (asset == NULL || sharing == PLAIN_SHARED) return;
  free_asset_values(asset, sharing);
  free(asset);
}

void free_material_values(plain_material* material, plain_sharing sharing) {
  for (int i = 0; i != MATERIAL_TEXTS; ++i) free(*text_in(material, i));
  free_name(material->type.name, sharing);
  free_name(material->cut_layer.name, sharing);
  free_asset(material->structural, sharing);
  free_asset(material->thermal, sharing);
  free_tags(&material->tags, sharing);
  free(material->thicknesses.items);
  free_values(&material->values, sharing);
}

void free_composition_values(plain_composition* composition, plain_sharing sharing) {
  free(composition->name);
  free(composition->description);
  free_name(composition->entity_layer.name, sharing);
  free(composition->comments);
  free_tags(&composition->tags, sharing);
  for (size_t i = 0; i != composition->layers.size && sharing == PLAIN_OWN_COPIES; ++i) {
    plain_free_material(composition->layers.items[i].material);
    free(composition->layers.items[i].material);
  }
  free(composition->layers.items);
  free_values(&composition->values, sharing);
}

void plain_free_material(plain_material* material) {
  free_material_values(material, PLAIN_OWN_COPIES);
}

void plain_free_composition(plain_composition* composition) {
  free_composition_values(composition, PLAIN_OWN_COPIES);
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
