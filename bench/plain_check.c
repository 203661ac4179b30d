// SPDX-License-Identifier: GPL-2.0-or-later
#include "plain_internal.h"

#include <stdlib.h>

size_t plain_count_referrers(plain_library* library, unsigned material) {
  plain_begin(library);
  plain_ids ids = read_ids(library, statement_for(library, REFERRERS_OF_MATERIAL, material));
  plain_commit(library);
  free(ids.items);
  return ids.size;
}

static size_t rows_given(plain_library* library, const char* text) {
  size_t rows = 0;
  sqlite3_stmt* query = NULL;
  check(library, sqlite3_prepare_v2(library->database, text, -1, &query, NULL));
  while (next_row(library, query)) ++rows;
  sqlite3_finalize(query);
  return rows;
}

size_t plain_check(plain_library* library) {
  plain_begin(library);
  const size_t defects =
      rows_given(library,
                 "SELECT 1 FROM pragma_integrity_check WHERE \"integrity_check\" <> 'ok'") +
      rows_given(library, "SELECT 1 FROM pragma_foreign_key_check");
  plain_commit(library);
  return defects;
}
