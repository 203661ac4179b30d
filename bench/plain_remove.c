// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>

static void delete_rows(plain_library* library, statement_id remove, unsigned id) {
  run(library, statement_for(library, remove, id));
}

void delete_side_rows(plain_library* library, plain_kind kind, unsigned id) {
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

static void delete_object(plain_library* library, plain_kind kind, unsigned id) {
  static const statement_id deletes[PLAIN_KINDS] = {
      DELETE_COMPOSITION, DELETE_MATERIAL, DELETE_TYPE, DELETE_LAYER, DELETE_PROPERTY, DELETE_TAG};
  delete_side_rows(library, kind, id);
  delete_rows(library, deletes[kind], id);
}

int plain_remove(plain_library* library, plain_kind kind, unsigned id) {
  plain_begin_write(library);
  delete_object(library, kind, id);
  return committed(library);
}

static int ascending(const void* left, const void* right) {
  const unsigned a = *(const unsigned*)left, b = *(const unsigned*)right;
  return (a > b) - (a < b);
}

static plain_ids sorted_ids(plain_library* library, statement_id query) {
  plain_begin(library);
  plain_ids ids = read_ids(library, statement(library, query));
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

static statement_id unreferenced(plain_kind kind) {
  if (kind == PLAIN_MATERIAL) return UNREFERENCED_MATERIALS;
  if (kind == PLAIN_TAG) return UNREFERENCED_TAGS;
  fail("no query for what nothing refers to");
  return STATEMENTS;
}

size_t plain_find_unreferenced(plain_library* library, plain_kind kind) {
  plain_begin(library);
  plain_ids ids = read_ids(library, statement(library, unreferenced(kind)));
  plain_commit(library);
  free(ids.items);
  return ids.size;
}

/* SQLite would search whole tables for references at each deletion. What nothing refers to is known
 * already. */
static void enforce_foreign_keys(plain_library* library, int enforced) {
  check(library, sqlite3_db_config(library->database, SQLITE_DBCONFIG_ENABLE_FKEY, enforced, NULL));
}

size_t plain_purge_in_one(plain_library* library, plain_kind kind) {
  plain_begin_write(library);
  plain_ids ids = read_ids(library, statement(library, unreferenced(kind)));
  enforce_foreign_keys(library, 0);
  for (size_t i = 0; i != ids.size; ++i) delete_object(library, kind, ids.items[i]);
  enforce_foreign_keys(library, 1);
  plain_commit(library);
  free(ids.items);
  return ids.size;
}
