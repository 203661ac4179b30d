// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_PLAIN_SQLITE_H
#define VELDRA_BENCH_PLAIN_SQLITE_H

/* The yardstick: what a C program does that works on library files with nothing but SQLite. It
 * prepares each statement once, and fills plain structs that own their texts in UTF-16. Whatever
 * goes wrong ends the process.
 *
 * There are two ways of most works: object by object, with a statement for each reference
 * (plain_read.c, plain_write.c), and with the fewest statements (plain_bulk.c, plain_count.c,
 * the latter parts of plain_copy.c and plain_remove.c). */

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

/* A structural or a thermal asset. A number that it does not have is NaN. */
typedef struct {
  unsigned id;
  plain_text name, description, subclass, source;
  double density, emissivity, specific_heat, thermal_conductivity;
  plain_tags tags;
} plain_asset;

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
  plain_asset *structural, *thermal; /* NULL: none */
  int function;
  int allow_custom_thickness;
  plain_tags tags;
  plain_numbers thicknesses;
  plain_values values;
} plain_material;

typedef struct {
  plain_material* material;
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

/* plain_read.c: object by object. Each call is one read transaction. What it gives is the caller's
 * to free. */

int plain_get_material(plain_library* library, unsigned id, plain_material* material);
int plain_get_material_by_name(plain_library* library, const uint16_t* name,
                               plain_material* material);
int plain_get_composition(plain_library* library, unsigned id, plain_composition* composition);
plain_materials plain_all_materials(plain_library* library);
plain_compositions plain_all_compositions(plain_library* library);
plain_materials plain_search_materials(plain_library* library, const uint16_t* pattern);
/* Exactly PLAIN_ID_SET ids, exactly PLAIN_TAG_SET names of tags. */
enum { PLAIN_ID_SET = 100, PLAIN_TAG_SET = 10 };
plain_materials plain_materials_of(plain_library* library, const unsigned* ids);
plain_materials plain_materials_tagged(plain_library* library, const uint16_t* const* tags);
/* Any ids that there are. */
plain_materials plain_each_of_ids(plain_library* library, const unsigned* ids, size_t size);

/* Gives each object to `visit` and frees it then. */
typedef void (*plain_visit_material)(void* context, const plain_material* material);
typedef void (*plain_visit_composition)(void* context, const plain_composition* composition);
void plain_each_material(plain_library* library, plain_visit_material visit, void* context);
void plain_each_composition(plain_library* library, plain_visit_composition visit, void* context);

/* plain_bulk.c: the same lists with the fewest statements. The ids first, as above; then the rows
 * of each table in one pass, which go to their objects by id. What objects refer to is read once,
 * and each object has a copy of its own, as where it could be changed; or all share the one. */

typedef enum { PLAIN_OWN_COPIES, PLAIN_SHARED } plain_sharing;

/* A list of materials, or of compositions; then `materials` are those of its layers, where these
 * are shared. */
typedef struct {
  plain_sharing sharing;
  plain_materials materials;
  plain_compositions compositions;
  struct plain_dependents* dependents;
} plain_bulk;

plain_bulk plain_bulk_materials(plain_library* library, plain_sharing sharing);
plain_bulk plain_bulk_compositions(plain_library* library, plain_sharing sharing);
plain_bulk plain_bulk_search(plain_library* library, const uint16_t* pattern,
                             plain_sharing sharing);
plain_bulk plain_bulk_materials_of(plain_library* library, const unsigned* ids,
                                   plain_sharing sharing);
plain_bulk plain_bulk_materials_tagged(plain_library* library, const uint16_t* const* tags,
                                       plain_sharing sharing);
plain_bulk plain_bulk_of_ids(plain_library* library, const unsigned* ids, size_t size,
                             plain_sharing sharing);
void plain_free_bulk(plain_bulk* bulk);

/* In batches, each object with copies of its own. */
void plain_bulk_each_material(plain_library* library, plain_visit_material visit, void* context);
void plain_bulk_each_composition(plain_library* library, plain_visit_composition visit,
                                 void* context);

/* plain_count.c: by the queries that the lists suggest, and by the leanest that count the same. */

unsigned long long plain_count_materials(plain_library* library);
unsigned long long plain_count_compositions(plain_library* library);
unsigned long long plain_count_compositions_of(plain_library* library, int type, int other_type);
unsigned long long plain_count_materials_with(plain_library* library, const uint16_t* tag,
                                              const uint16_t* other_tag);
unsigned long long plain_lean_count_materials(plain_library* library);
unsigned long long plain_lean_count_compositions(plain_library* library);
unsigned long long plain_lean_count_compositions_of(plain_library* library, int type,
                                                    int other_type);
unsigned long long plain_lean_count_materials_with(plain_library* library, const uint16_t* tag,
                                                   const uint16_t* other_tag);

/* plain_values.c */

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

/* What becomes of a material whose name is taken: the stored one is read and stands for it, or it
 * is written over the stored one. */
typedef enum { PLAIN_USE_EXISTING, PLAIN_OVERWRITE } plain_decision;
/* One transaction: a new composition and the materials of its layers. */
unsigned plain_save_taken(plain_library* library, const plain_composition* composition,
                          plain_maps* maps, plain_decision decision);

/* plain_copy.c */

/* One transaction: every row of `source`, lengths multiplied by `factor`. */
void plain_copy_all(plain_library* destination, plain_library* source, double factor);
/* The same by SQL alone, from the file `source`: the rows do not pass through the program. */
void plain_copy_all_in_sql(plain_library* destination, const char* source, double factor);

/* plain_remove.c */

/* One transaction: returns 1 when removed, 0 when other rows refer to it. */
int plain_remove(plain_library* library, plain_kind kind, unsigned id);
/* Every row that nothing refers to, each in a transaction of its own. Returns how many went. */
size_t plain_purge(plain_library* library);
/* How many rows of a kind there are to which nothing refers: PLAIN_MATERIAL and PLAIN_TAG. */
size_t plain_find_unreferenced(plain_library* library, plain_kind kind);
/* One transaction: every one of these. Returns how many went. */
size_t plain_purge_in_one(plain_library* library, plain_kind kind);

/* plain_check.c: each call is one read transaction. */

/* How many compositions have a layer of that material. */
size_t plain_count_referrers(plain_library* library, unsigned material);
/* How many defects SQLite finds in the file. */
size_t plain_check(plain_library* library);

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
