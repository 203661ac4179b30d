// SPDX-License-Identifier: GPL-2.0-or-later
#include <sqlite3.h>
#include <stdio.h>

static const char* const query =
    "SELECT c.name, l.\"index\" + 1, m.name, l.value_thickness,"
    "       CASE (SELECT unit FROM Meta) WHEN 0 THEN 'in' ELSE 'mm' END"
    "  FROM Composition c"
    "  JOIN Composition_layers l ON l.object_id = c.id"
    "  JOIN Material m ON m.id = l.value_material_id"
    " ORDER BY c.name, l.\"index\"";

int main(int argc, char** argv) {
  sqlite3* database = NULL;
  sqlite3_stmt* statement = NULL;
  if (argc != 2 || sqlite3_open_v2(argv[1], &database, SQLITE_OPEN_READONLY, NULL) != SQLITE_OK ||
      sqlite3_busy_timeout(database, 5000) != SQLITE_OK ||
      sqlite3_prepare_v2(database, query, -1, &statement, NULL) != SQLITE_OK) {
    fprintf(stderr, "%s\n", database ? sqlite3_errmsg(database) : "usage: plain_sqlite FILE");
    return 1;
  }
  while (sqlite3_step(statement) == SQLITE_ROW) {
    printf("%s, layer %d: %g %s %s\n", sqlite3_column_text(statement, 0),
           sqlite3_column_int(statement, 1), sqlite3_column_double(statement, 3),
           sqlite3_column_text(statement, 4), sqlite3_column_text(statement, 2));
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
  return 0;
}
