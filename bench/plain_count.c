// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

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

static unsigned long long count_of_types(plain_library* library, sqlite3_stmt* query, int type,
                                         int other_type) {
  check(library, sqlite3_bind_int(query, 1, type));
  check(library, sqlite3_bind_int(query, 2, other_type));
  return counted(library, query);
}

static unsigned long long count_with_tags(plain_library* library, sqlite3_stmt* query,
                                          const uint16_t* tag, const uint16_t* other_tag) {
  library->texts_used = 0;
  bind_text(library, query, 1, tag);
  bind_text(library, query, 2, other_tag);
  return counted(library, query);
}

unsigned long long plain_count_materials(plain_library* library) {
  return counted(library, statement(library, COUNT_MATERIALS));
}

unsigned long long plain_count_compositions(plain_library* library) {
  return counted(library, statement(library, COUNT_COMPOSITIONS));
}

unsigned long long plain_count_compositions_of(plain_library* library, int type, int other_type) {
  return count_of_types(library, statement(library, COUNT_COMPOSITIONS_OF), type, other_type);
}

unsigned long long plain_count_materials_with(plain_library* library, const uint16_t* tag,
                                              const uint16_t* other_tag) {
  return count_with_tags(library, statement(library, COUNT_MATERIALS_WITH), tag, other_tag);
}

unsigned long long plain_lean_count_materials(plain_library* library) {
  return counted(library, statement(library, LEAN_COUNT_MATERIALS));
}

unsigned long long plain_lean_count_compositions(plain_library* library) {
  return counted(library, statement(library, LEAN_COUNT_COMPOSITIONS));
}

unsigned long long plain_lean_count_compositions_of(plain_library* library, int type,
                                                    int other_type) {
  return count_of_types(library, statement(library, LEAN_COUNT_COMPOSITIONS_OF), type, other_type);
}

unsigned long long plain_lean_count_materials_with(plain_library* library, const uint16_t* tag,
                                                   const uint16_t* other_tag) {
  return count_with_tags(library, statement(library, LEAN_COUNT_MATERIALS_WITH), tag, other_tag);
}
