// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { SCHEMA_VERSION = 150302, BUSY_MILLISECONDS = 5000 };

static plain_library* connect(const char* path) {
  plain_library* library = calloc(1, sizeof *library);
  if (library == NULL) fail("no memory");
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_PRIVATECACHE;
  check(library, sqlite3_open_v2(path, &library->database, flags, NULL));
  sqlite3_extended_result_codes(library->database, 1);
  sqlite3_busy_timeout(library->database, BUSY_MILLISECONDS);
  plain_execute(library, "PRAGMA foreign_keys=ON");
  library->texts = malloc(TEXTS_ROOM);
  return library;
}

void plain_execute(plain_library* library, const char* statement) {
  check(library, sqlite3_exec(library->database, statement, NULL, NULL, NULL));
}

void plain_begin(plain_library* library) { run(library, statement(library, BEGIN)); }
void plain_begin_write(plain_library* library) {
  run(library, statement(library, BEGIN_IMMEDIATE));
}
void plain_commit(plain_library* library) { run(library, statement(library, COMMIT)); }
void plain_rollback(plain_library* library) { run(library, statement(library, ROLLBACK)); }

static sqlite3_stmt* one_row(plain_library* library, const char* text) {
  sqlite3_stmt* row = NULL;
  check(library, sqlite3_prepare_v2(library->database, text, -1, &row, NULL));
  if (sqlite3_step(row) == SQLITE_ROW) return row;
  sqlite3_finalize(row);
  return NULL;
}

static int version_of(plain_library* library) {
  sqlite3_stmt* table =
      one_row(library, "SELECT 1 FROM sqlite_master WHERE name='schema_version' COLLATE NOCASE");
  if (table == NULL) return 0;
  sqlite3_finalize(table);
  sqlite3_stmt* row =
      one_row(library, "SELECT \"version\" FROM \"schema_version\" WHERE \"name\"=''");
  if (row == NULL) return 0;
  const int version = sqlite3_column_int(row, 0);
  sqlite3_finalize(row);
  return version;
}

static void read_meta(plain_library* library) {
  sqlite3_stmt* row = one_row(library,
                              "SELECT \"Meta\".\"id\", \"Meta\".\"guid\", \"Meta\".\"unit\","
                              " \"Meta\".\"locale\", \"Meta\".\"region\" FROM \"Meta\""
                              " WHERE \"Meta\".\"id\"=0");
  if (row == NULL) fail("no Meta row");
  const char* guid = (const char*)sqlite3_column_text(row, 1);
  library->guid = plain_decode(guid, (size_t)sqlite3_column_bytes(row, 1));
  library->unit = sqlite3_column_int(row, 2);
  sqlite3_finalize(row);
}

plain_library* plain_open(const char* path) {
  plain_library* library = connect(path);
  plain_begin(library);
  if (version_of(library) != SCHEMA_VERSION) fail("not a current library");
  read_meta(library);
  plain_commit(library);
  return library;
}

static void drop_tables(plain_library* library) {
  static const char* const tables[] = {"Meta",
                                       "Composition_custom_values",
                                       "Composition_layers",
                                       "Composition_tags",
                                       "Composition",
                                       "Material_custom_values",
                                       "Material_thicknesses",
                                       "Material_tags",
                                       "Material",
                                       "MaterialType",
                                       "ThermalAsset",
                                       "StructuralAsset",
                                       "Asset_tags",
                                       "Asset",
                                       "Layer",
                                       "CustomProperty",
                                       "Tag"};
  char text[80];
  for (size_t i = 0; i != sizeof tables / sizeof *tables; ++i) {
    snprintf(text, sizeof text, "DROP TABLE IF EXISTS \"%s\"", tables[i]);
    plain_execute(library, text);
  }
}

static void insert_types(plain_library* library) {
  static const char* const names[] = {"Ceramic", "Concrete", "Earth", "Generic", "Glass",
                                      "Liquid",  "Masonry",  "Metal", "Paint",   "Plastic",
                                      "Stone",   "Textile",  "Wood"};
  sqlite3_stmt* insert = statement(library, INSERT_TYPE);
  for (size_t i = 0; i != sizeof names / sizeof *names; ++i) {
    check(library, sqlite3_bind_text(insert, 2, names[i], -1, SQLITE_STATIC));
    run(library, insert);
  }
}

plain_library* plain_create(const char* path, const char* const* catalogue) {
  plain_library* library = connect(path);
  plain_begin(library);
  if (version_of(library) != 0) fail("not an empty file");
  plain_commit(library);

  plain_execute(library, "PRAGMA foreign_keys=OFF");
  plain_begin_write(library);
  drop_tables(library);
  for (; *catalogue != NULL; ++catalogue) plain_execute(library, *catalogue);
  plain_execute(library, "INSERT INTO \"schema_version\" VALUES ('', 150302, 0)");
  plain_execute(library,
                "INSERT INTO \"Meta\" (\"id\", \"guid\", \"unit\", \"locale\", \"region\")"
                " VALUES (0, '6a2c7e0e-3b52-4c59-9a3e-0d6a1b9f4e21', 1, '', '')");
  insert_types(library);
  plain_commit(library);
  plain_execute(library, "PRAGMA foreign_keys=ON");

  plain_begin(library);
  read_meta(library);
  plain_commit(library);
  return library;
}

void plain_close(plain_library* library) {
  for (int i = 0; i != STATEMENTS; ++i) sqlite3_finalize(library->statements[i]);
  sqlite3_close(library->database);
  free(library->guid);
  free(library->texts);
  free(library);
}

const uint16_t* plain_guid(const plain_library* library) { return library->guid; }
