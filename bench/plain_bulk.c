// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdio.h>
#include <stdlib.h>

enum { BATCH = 512 };

/* What objects refer to, each kind with the places of its ids in the list, counted from 1. */
typedef struct {
  plain_tags list;
  plain_map places;
} named_table;

typedef struct {
  plain_asset* items;
  size_t size;
  size_t room;
  plain_map places;
} asset_table;

typedef struct plain_dependents {
  named_table tags, layers, types;
  plain_property* properties;
  size_t properties_size, properties_room;
  plain_map property_places;
  asset_table structural, thermal;
} dependents;

/* Where ids are in a list, counted from 1, in as much room as the list needs. Ids that follow one
 * another lie side by side. */
typedef struct {
  unsigned id;
  unsigned place; /* 0: an empty slot */
} slot;

typedef struct {
  slot* slots;
  size_t mask;
} place_map;

/* Objects whose rows are read, in the order of a list. */
typedef struct {
  plain_library* library;
  size_t size;
  place_map places;
  char* json; /* the ids for statements; NULL: whole tables are read */
} selection;

/* A row of a list that has an order of its own. */
typedef struct {
  size_t place; /* of the object, counted from 0 */
  long long index;
  unsigned id;
  int function;
  double thickness;
} indexed_row;

typedef struct {
  indexed_row* items;
  size_t size;
  size_t room;
} indexed_rows;

/* The same member of each object of a list. */
typedef struct {
  char* first;
  size_t distance;
} members;

#define MEMBERS(list, member) \
  ((members){(char*)(list)->items + offsetof_member((list)->items, member), sizeof *(list)->items})
#define offsetof_member(items, member) ((size_t)((char*)&(items)->member - (char*)(items)))

static void* member_at(const members* all, size_t place) {
  return all->first + place * all->distance;
}

/* The ids as an array in JSON, which one parameter of a statement holds. */
static char* json_of(const unsigned* ids, size_t size) {
  enum { LONGEST = 11 };
  char* text = malloc(size * LONGEST + 3);
  if (text == NULL) fail("no memory");
  char* to = text;
  *to++ = '[';
  for (size_t i = 0; i != size; ++i) to += sprintf(to, i == 0 ? "%u" : ",%u", ids[i]);
  *to++ = ']';
  *to = 0;
  return text;
}

static place_map places_for(size_t size) {
  size_t slots = 16;
  while (slots < 2 * size) slots *= 2;
  return (place_map){allocated(slots, sizeof(slot)), slots - 1};
}

/* The slot of an id, or the empty one where it would be. */
static slot* slot_of(const place_map* map, unsigned id) {
  size_t at = id & map->mask;
  while (map->slots[at].place != 0 && map->slots[at].id != id) at = (at + 1) & map->mask;
  return &map->slots[at];
}

static void enter_place(place_map* map, unsigned id, size_t place) {
  *slot_of(map, id) = (slot){id, (unsigned)place};
}

static selection selected(plain_library* library, const unsigned* ids, size_t size, int whole) {
  selection of = {library, size, places_for(size), whole ? NULL : json_of(ids, size)};
  for (size_t i = 0; i != size; ++i) enter_place(&of.places, ids[i], i + 1);
  return of;
}

static void free_selection(selection* of) {
  free(of->places.slots);
  free(of->json);
}

/* The rows of a table that belong to the selection, and others where the whole table is read. */
static sqlite3_stmt* rows_of(const selection* of, statement_id all) {
  if (of->json == NULL) return statement(of->library, all);
  sqlite3_stmt* rows = statement(of->library, all - ALL_MATERIALS + SOME_MATERIALS);
  check(of->library, sqlite3_bind_text(rows, 1, of->json, -1, SQLITE_STATIC));
  return rows;
}

/* Whether there is another row of the selection; its object is at `place`. */
static int next_selected(const selection* of, sqlite3_stmt* rows, size_t* place) {
  while (next_row(of->library, rows)) {
    const slot* found = slot_of(&of->places, id_at(rows, 0));
    if (found->place == 0) continue;
    *place = found->place - 1;
    return 1;
  }
  return 0;
}

static plain_text name_for(plain_text name, plain_sharing sharing) {
  return sharing == PLAIN_SHARED ? name : copied_text(name);
}

static size_t place_in(const plain_map* places, unsigned id) {
  const unsigned place = plain_mapped(places, id);
  if (place == 0) fail("a dangling reference");
  return place - 1;
}

static plain_named named_for(const named_table* table, unsigned id, plain_sharing sharing) {
  plain_named named = {0, NULL};
  if (id == 0) return named;
  named = table->list.items[place_in(&table->places, id)];
  named.name = name_for(named.name, sharing);
  return named;
}

static plain_asset* asset_for(const asset_table* table, unsigned id, plain_sharing sharing) {
  if (id == 0) return NULL;
  plain_asset* asset = &table->items[place_in(&table->places, id)];
  return sharing == PLAIN_SHARED ? asset : copied_asset(asset);
}

static void read_named_table(plain_library* library, statement_id all, named_table* table) {
  sqlite3_stmt* rows = statement(library, all);
  while (next_row(library, rows)) {
    plain_named* named = APPEND(&table->list);
    *named = named_of(rows);
    plain_enter(&table->places, named->id, (unsigned)table->list.size);
  }
}

static void read_properties(plain_library* library, dependents* all) {
  sqlite3_stmt* rows = statement(library, ALL_PROPERTIES);
  while (next_row(library, rows)) {
    all->properties = grown(all->properties, all->properties_size, &all->properties_room,
                            sizeof *all->properties);
    plain_property* property = &all->properties[all->properties_size++];
    *property = property_of(rows);
    plain_enter(&all->property_places, property->id, (unsigned)all->properties_size);
  }
}

static void read_asset_table(plain_library* library, statement_id all, asset_table* table) {
  sqlite3_stmt* rows = statement(library, all);
  while (next_row(library, rows)) {
    plain_asset* asset = APPEND(table);
    fill_asset(rows, asset);
    plain_enter(&table->places, asset->id, (unsigned)table->size);
  }
}

static int by_place_and_index(const void* left, const void* right) {
  const indexed_row *a = left, *b = right;
  if (a->place != b->place) return a->place < b->place ? -1 : 1;
  return (a->index > b->index) - (a->index < b->index);
}

/* Most files have these rows in their order, since objects are saved one after another. */
static void sort_if_needed(indexed_rows* rows) {
  for (size_t i = 1; i < rows->size; ++i) {
    if (by_place_and_index(&rows->items[i - 1], &rows->items[i]) <= 0) continue;
    qsort(rows->items, rows->size, sizeof *rows->items, by_place_and_index);
    return;
  }
}

static indexed_rows read_indexed(const selection* of, statement_id all, int has_values) {
  indexed_rows list = {NULL, 0, 0};
  sqlite3_stmt* rows = rows_of(of, all);
  size_t place;
  while (next_selected(of, rows, &place)) {
    indexed_row* row = APPEND(&list);
    row->place = place;
    row->index = sqlite3_column_int64(rows, 1);
    row->id = id_at(rows, 2);
    row->function = has_values ? sqlite3_column_int(rows, 3) : 0;
    row->thickness = has_values ? sqlite3_column_double(rows, 4) : 0;
  }
  sort_if_needed(&list);
  return list;
}

static void bulk_tags(const dependents* all, const selection* of, statement_id query, members tags,
                      plain_sharing sharing) {
  indexed_rows rows = read_indexed(of, query, 0);
  for (size_t i = 0; i != rows.size; ++i) {
    plain_tags* list = member_at(&tags, rows.items[i].place);
    plain_named* tag = APPEND(list);
    *tag = named_for(&all->tags, rows.items[i].id, sharing);
  }
  free(rows.items);
}

static void bulk_thicknesses(const selection* of, members thicknesses) {
  sqlite3_stmt* rows = rows_of(of, ALL_THICKNESSES);
  size_t place;
  while (next_selected(of, rows, &place)) {
    plain_numbers* list = member_at(&thicknesses, place);
    double* thickness = APPEND(list);
    *thickness = sqlite3_column_double(rows, 1);
  }
}

static void bulk_values(const dependents* all, const selection* of, statement_id query,
                        members values, plain_sharing sharing) {
  sqlite3_stmt* rows = rows_of(of, query);
  size_t place;
  while (next_selected(of, rows, &place)) {
    plain_values* list = member_at(&values, place);
    plain_value* value = APPEND(list);
    value->property = all->properties[place_in(&all->property_places, id_at(rows, 1))];
    value->property.name = name_for(value->property.name, sharing);
    value->value = text_at(rows, 2);
  }
}

static void read_asset_tags(plain_library* library, const dependents* all, asset_table* assets) {
  if (assets->size == 0) return;
  selection of = {library, assets->size, places_for(assets->size), NULL};
  for (size_t i = 0; i != assets->size; ++i) enter_place(&of.places, assets->items[i].id, i + 1);
  bulk_tags(all, &of, ALL_ASSET_TAGS, MEMBERS(assets, tags), PLAIN_SHARED);
  free_selection(&of);
}

static dependents* read_dependents(plain_library* library) {
  dependents* all = allocated(1, sizeof *all);
  read_named_table(library, ALL_TAGS, &all->tags);
  read_named_table(library, ALL_LAYERS, &all->layers);
  read_named_table(library, ALL_TYPES, &all->types);
  read_properties(library, all);
  read_asset_table(library, ALL_STRUCTURAL, &all->structural);
  read_asset_table(library, ALL_THERMAL, &all->thermal);
  read_asset_tags(library, all, &all->structural);
  read_asset_tags(library, all, &all->thermal);
  return all;
}

static void free_named_table(named_table* table) {
  for (size_t i = 0; i != table->list.size; ++i) free(table->list.items[i].name);
  free(table->list.items);
  free(table->places.ids);
}

static void free_asset_table(asset_table* table) {
  for (size_t i = 0; i != table->size; ++i) free_asset_values(&table->items[i], PLAIN_SHARED);
  free(table->items);
  free(table->places.ids);
}

static void free_dependents(dependents* all) {
  if (all == NULL) return;
  free_named_table(&all->tags);
  free_named_table(&all->layers);
  free_named_table(&all->types);
  for (size_t i = 0; i != all->properties_size; ++i) free(all->properties[i].name);
  free(all->properties);
  free(all->property_places.ids);
  free_asset_table(&all->structural);
  free_asset_table(&all->thermal);
  free(all);
}

static plain_materials bulk_materials(const dependents* all, const selection* of,
                                      plain_sharing sharing) {
  plain_materials materials = {allocated(of->size, sizeof *materials.items), of->size, of->size};
  sqlite3_stmt* rows = rows_of(of, ALL_MATERIALS);
  size_t place;
  while (next_selected(of, rows, &place)) {
    plain_material* material = &materials.items[place];
    fill_material(rows, material);
    material->type = named_for(&all->types, material->type.id, sharing);
    material->cut_layer = named_for(&all->layers, material->cut_layer.id, sharing);
    material->structural = asset_for(&all->structural, material->structural_id, sharing);
    material->thermal = asset_for(&all->thermal, material->thermal_id, sharing);
  }
  bulk_tags(all, of, ALL_MATERIAL_TAGS, MEMBERS(&materials, tags), sharing);
  bulk_thicknesses(of, MEMBERS(&materials, thicknesses));
  bulk_values(all, of, ALL_MATERIAL_VALUES, MEMBERS(&materials, values), sharing);
  return materials;
}

/* The materials of layers, each once. */
static selection materials_in(const selection* of, const indexed_rows* layers) {
  selection materials = {of->library, 0, places_for(layers->size), NULL};
  plain_ids ids = {NULL, 0, 0};
  for (size_t i = 0; i != layers->size; ++i) {
    if (slot_of(&materials.places, layers->items[i].id)->place != 0) continue;
    unsigned* id = APPEND(&ids);
    *id = layers->items[i].id;
    enter_place(&materials.places, *id, ids.size);
  }
  materials.size = ids.size;
  if (of->json != NULL) materials.json = json_of(ids.items, ids.size);
  free(ids.items);
  return materials;
}

static plain_material* material_for(plain_material* read, plain_sharing sharing) {
  if (sharing == PLAIN_SHARED) return read;
  plain_material* own = malloc(sizeof *own);
  if (own == NULL) fail("no memory");
  copy_material(read, own);
  return own;
}

/* Gives the layers to their compositions. Returns the materials if they are shared. */
static plain_materials bulk_layers(const dependents* all, const selection* of,
                                   plain_compositions* compositions, plain_sharing sharing) {
  indexed_rows rows = read_indexed(of, ALL_LAYER_ROWS, 1);
  selection wanted = materials_in(of, &rows);
  plain_materials materials = bulk_materials(all, &wanted, sharing);
  for (size_t i = 0; i != rows.size; ++i) {
    const size_t place = slot_of(&wanted.places, rows.items[i].id)->place - 1;
    plain_layers* layers = &compositions->items[rows.items[i].place].layers;
    plain_composition_layer* layer = APPEND(layers);
    layer->material = material_for(&materials.items[place], sharing);
    layer->function = rows.items[i].function;
    layer->thickness = rows.items[i].thickness;
  }
  free(rows.items);
  free_selection(&wanted);
  if (sharing == PLAIN_SHARED) return materials;
  plain_free_materials(&materials);
  return (plain_materials){NULL, 0, 0};
}

static plain_compositions bulk_compositions(const dependents* all, const selection* of,
                                            plain_sharing sharing, plain_materials* materials) {
  plain_compositions list = {allocated(of->size, sizeof *list.items), of->size, of->size};
  sqlite3_stmt* rows = rows_of(of, ALL_COMPOSITIONS);
  size_t place;
  while (next_selected(of, rows, &place)) {
    plain_composition* composition = &list.items[place];
    fill_composition(rows, composition);
    composition->entity_layer = named_for(&all->layers, composition->entity_layer.id, sharing);
  }
  bulk_tags(all, of, ALL_COMPOSITION_TAGS, MEMBERS(&list, tags), sharing);
  *materials = bulk_layers(all, of, &list, sharing);
  bulk_values(all, of, ALL_COMPOSITION_VALUES, MEMBERS(&list, values), sharing);
  return list;
}

static void keep_or_free(plain_bulk* bulk, dependents* all) {
  bulk->dependents = bulk->sharing == PLAIN_SHARED ? all : NULL;
  if (bulk->dependents == NULL) free_dependents(all);
}

/* Many objects are found sooner by a pass over the table than by their ids. */
static int are_many(const plain_ids* ids) {
  unsigned largest = 0;
  for (size_t i = 0; i != ids->size; ++i) {
    if (ids->items[i] > largest) largest = ids->items[i];
  }
  return ids->size >= largest / 4;
}

/* Within the transaction of the caller, which ends here. */
static plain_bulk bulk_of(plain_library* library, const plain_ids* ids, plain_sharing sharing) {
  plain_bulk bulk = {sharing, {NULL, 0, 0}, {NULL, 0, 0}, NULL};
  selection of = selected(library, ids->items, ids->size, are_many(ids));
  dependents* all = read_dependents(library);
  bulk.materials = bulk_materials(all, &of, sharing);
  plain_commit(library);
  keep_or_free(&bulk, all);
  free_selection(&of);
  return bulk;
}

static plain_bulk bulk_list(plain_library* library, sqlite3_stmt* query, plain_sharing sharing) {
  plain_begin(library);
  plain_ids ids = read_ids(library, query);
  const plain_bulk bulk = bulk_of(library, &ids, sharing);
  free(ids.items);
  return bulk;
}

plain_bulk plain_bulk_of_ids(plain_library* library, const unsigned* ids, size_t size,
                             plain_sharing sharing) {
  const plain_ids list = {(unsigned*)ids, size, size};
  plain_begin(library);
  return bulk_of(library, &list, sharing);
}

plain_bulk plain_bulk_materials(plain_library* library, plain_sharing sharing) {
  return bulk_list(library, statement(library, MATERIAL_IDS), sharing);
}

plain_bulk plain_bulk_search(plain_library* library, const uint16_t* pattern,
                             plain_sharing sharing) {
  return bulk_list(library, searching(library, pattern), sharing);
}

plain_bulk plain_bulk_materials_of(plain_library* library, const unsigned* ids,
                                   plain_sharing sharing) {
  return bulk_list(library, selecting_ids(library, ids), sharing);
}

plain_bulk plain_bulk_materials_tagged(plain_library* library, const uint16_t* const* tags,
                                       plain_sharing sharing) {
  return bulk_list(library, selecting_tagged(library, tags), sharing);
}

plain_bulk plain_bulk_compositions(plain_library* library, plain_sharing sharing) {
  plain_bulk bulk = {sharing, {NULL, 0, 0}, {NULL, 0, 0}, NULL};
  plain_begin(library);
  plain_ids ids = read_ids(library, statement(library, COMPOSITION_IDS));
  selection of = selected(library, ids.items, ids.size, 1);
  dependents* all = read_dependents(library);
  bulk.compositions = bulk_compositions(all, &of, sharing, &bulk.materials);
  plain_commit(library);
  keep_or_free(&bulk, all);
  free_selection(&of);
  free(ids.items);
  return bulk;
}

void plain_free_bulk(plain_bulk* bulk) {
  for (size_t i = 0; i != bulk->materials.size; ++i) {
    free_material_values(&bulk->materials.items[i], bulk->sharing);
  }
  free(bulk->materials.items);
  for (size_t i = 0; i != bulk->compositions.size; ++i) {
    free_composition_values(&bulk->compositions.items[i], bulk->sharing);
  }
  free(bulk->compositions.items);
  free_dependents(bulk->dependents);
}

/* Calls `each` with the ids in batches, which are small enough to stay in the processor's caches.
 */
static void in_batches(plain_library* library, statement_id query, void* context,
                       void (*each)(const dependents* all, const selection* of, void* context)) {
  plain_begin(library);
  plain_ids ids = read_ids(library, statement(library, query));
  dependents* all = read_dependents(library);
  for (size_t begin = 0; begin < ids.size; begin += BATCH) {
    const size_t size = ids.size - begin < BATCH ? ids.size - begin : BATCH;
    selection of = selected(library, ids.items + begin, size, 0);
    each(all, &of, context);
    free_selection(&of);
  }
  free_dependents(all);
  free(ids.items);
  plain_commit(library);
}

typedef struct {
  plain_visit_material material;
  plain_visit_composition composition;
  void* context;
} visitor;

static void visit_materials(const dependents* all, const selection* of, void* context) {
  const visitor* visit = context;
  plain_materials materials = bulk_materials(all, of, PLAIN_OWN_COPIES);
  for (size_t i = 0; i != materials.size; ++i) {
    visit->material(visit->context, &materials.items[i]);
  }
  plain_free_materials(&materials);
}

static void visit_compositions(const dependents* all, const selection* of, void* context) {
  const visitor* visit = context;
  plain_materials none;
  plain_compositions list = bulk_compositions(all, of, PLAIN_OWN_COPIES, &none);
  for (size_t i = 0; i != list.size; ++i) visit->composition(visit->context, &list.items[i]);
  plain_free_compositions(&list);
}

void plain_bulk_each_material(plain_library* library, plain_visit_material visit, void* context) {
  visitor each = {visit, NULL, context};
  in_batches(library, MATERIAL_IDS, &each, visit_materials);
}

void plain_bulk_each_composition(plain_library* library, plain_visit_composition visit,
                                 void* context) {
  visitor each = {NULL, visit, context};
  in_batches(library, COMPOSITION_IDS, &each, visit_compositions);
}
