// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_PLAIN_SQLITE_H
#define VELDRA_BENCH_PLAIN_SQLITE_H

/* The yardstick: what a C program does that works on library files with nothing but SQLite. It
 * runs the same statements on the same rows as the library, prepares each of them once, and fills
 * plain structs that own their texts in UTF-16. Whatever goes wrong ends the process. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* UTF-16 that ends with 0; NULL for the empty text. */
typedef uint16_t* plain_text;

/* A tag, a material type or a drawing layer. Id 0: none. */
typedef struct {
  unsigned id;
  plain_text name;
} plain_named;

typedef struct {
  unsigned id;
  plain_text name;
  int object_type;
} plain_property;

typedef struct {
  plain_property property;
  plain_text value;
} plain_value;

typedef struct {
  plain_named* items;
  size_t size;
  size_t room;
} plain_tags;

typedef struct {
  double* items;
  size_t size;
  size_t room;
} plain_numbers;

typedef struct {
  plain_value* items;
  size_t size;
  size_t room;
} plain_values;

typedef struct {
  unsigned* items;
  size_t size;
  size_t room;
} plain_ids;

typedef struct {
  double red, green, blue, alpha;
} plain_color;

typedef struct {
  int type;
  plain_text name;
  double scale, angle;
  int cross;
  plain_color color;
} plain_pattern;

typedef struct {
  unsigned id;
  plain_text name, description;
  plain_named type;
  plain_text comments, code, cost, keynote, label, manufacturer, mark, model, url, classification;
  int shading_use_appearance;
  plain_color shading_color;
  plain_pattern surface_pattern;
  double alignment_x, alignment_y;
  plain_pattern cut_pattern;
  plain_named cut_layer;
  plain_text appearance;
  unsigned structural_id, thermal_id;
  int function;
  int allow_custom_thickness;
  plain_tags tags;
  plain_numbers thicknesses;
  plain_values values;
} plain_material;

typedef struct {
  plain_material material;
  int function;
  double thickness;
} plain_composition_layer;

typedef struct {
  plain_composition_layer* items;
  size_t size;
  size_t room;
} plain_layers;

typedef struct {
  unsigned id;
  plain_text name, description;
  int type;
  plain_named entity_layer;
  plain_text comments;
  unsigned first_core_layer, last_core_layer, structural_layer;
  int has_variable_layer;
  unsigned variable_layer;
  double variable_layer_min_thickness;
  int has_variable_layer_max_thickness;
  double variable_layer_max_thickness;
  plain_tags tags;
  plain_layers layers;
  plain_values values;
} plain_composition;

typedef struct {
  plain_material* items;
  size_t size;
  size_t room;
} plain_materials;

typedef struct {
  plain_composition* items;
  size_t size;
  size_t room;
} plain_compositions;

/* The kinds of rows that can be removed, in the order in which a purge takes them. */
typedef enum {
  PLAIN_COMPOSITION,
  PLAIN_MATERIAL,
  PLAIN_MATERIAL_TYPE,
  PLAIN_LAYER,
  PLAIN_CUSTOM_PROPERTY,
  PLAIN_TAG,
  PLAIN_KINDS
} plain_kind;

typedef struct plain_library plain_library;

/* plain_file.c: opening and creating. */

/* Opens a current library file and reads its `Meta` row. */
plain_library* plain_open(const char* path);
/* Makes the file `path` a library by the statements of `catalogue`, a list that ends with NULL,
 * with the thirteen material types of a new library. */
plain_library* plain_create(const char* path, const char* const* catalogue);
void plain_close(plain_library* library);
const uint16_t* plain_guid(const plain_library* library);

void plain_begin(plain_library* library);
void plain_begin_write(plain_library* library);
void plain_commit(plain_library* library);
void plain_rollback(plain_library* library);
/* Runs any statement that gives no rows. */
void plain_execute(plain_library* library, const char* statement);

/* plain_read.c: each call is one read transaction. What it gives is the caller's to free. */

int plain_get_material(plain_library* library, unsigned id, plain_material* material);
int plain_get_material_by_name(plain_library* library, const uint16_t* name,
                               plain_material* material);
int plain_get_composition(plain_library* library, unsigned id, plain_composition* composition);
plain_materials plain_all_materials(plain_library* library);
plain_compositions plain_all_compositions(plain_library* library);
plain_materials plain_search_materials(plain_library* library, const uint16_t* pattern);
/* Exactly PLAIN_ID_SET ids. */
enum { PLAIN_ID_SET = 100 };
plain_materials plain_materials_of(plain_library* library, const unsigned* ids);
unsigned long long plain_count_materials(plain_library* library);
unsigned long long plain_count_compositions(plain_library* library);
unsigned long long plain_count_compositions_of(plain_library* library, int type, int other_type);
unsigned long long plain_count_materials_with(plain_library* library, const uint16_t* tag,
                                              const uint16_t* other_tag);

void plain_free_material(plain_material* material);
void plain_free_composition(plain_composition* composition);
void plain_free_materials(plain_materials* materials);
void plain_free_compositions(plain_compositions* compositions);

/* plain_write.c */

/* Which rows stand for the ids that the objects to be written carry: new ids by old ids. */
typedef struct {
  unsigned* ids;
  size_t size;
} plain_map;

typedef struct {
  plain_map tags, types, layers, properties, materials;
} plain_maps;

void plain_free_maps(plain_maps* maps);
unsigned plain_mapped(const plain_map* map, unsigned id);
void plain_enter(plain_map* map, unsigned id, unsigned row);

/* Insert an object and first what it refers to, as far as `maps` does not have it, within the
 * transaction of the caller. Return the new id. */
unsigned plain_insert_material(plain_library* library, const plain_material* material,
                               plain_maps* maps);
unsigned plain_insert_composition(plain_library* library, const plain_composition* composition,
                                  plain_maps* maps);

/* One transaction: a composition and the materials of its layers. */
unsigned plain_save_composition(plain_library* library, const plain_composition* composition,
                                plain_maps* maps);
/* One transaction: one material. */
unsigned plain_save_material(plain_library* library, const plain_material* material,
                             plain_maps* maps);
/* One transaction: rewrites a material's row and side tables. */
void plain_update_material(plain_library* library, const plain_material* material,
                           plain_maps* maps);

/* One transaction: every row of `source`, lengths multiplied by `factor`. */
void plain_copy_all(plain_library* destination, plain_library* source, double factor);

/* One transaction: returns 1 when removed, 0 when other rows refer to it. */
int plain_remove(plain_library* library, plain_kind kind, unsigned id);
/* Every row that nothing refers to, each in a transaction of its own. Returns how many went. */
size_t plain_purge(plain_library* library);

/* plain_text.c */

plain_text plain_decode(const char* utf8, size_t bytes);
plain_text plain_utf16(const char* utf8);
/* Writes at most 3 bytes for each unit, without an end, and returns how many. */
size_t plain_encode(const uint16_t* text, char* utf8);
size_t plain_length(const uint16_t* text);

#ifdef __cplusplus
}
#endif

#endif
