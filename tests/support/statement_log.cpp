// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/statement_log.hpp"

#include <sqlite3.h>

#include <utility>

namespace veldra_tests {

namespace {

Statements statements;

// Called when a statement has ended: at its beginning, a foreign key that acts would tell of it as
// well.
int note(unsigned, void*, void* statement, void*) {
  statements.push_back(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
  return 0;
}

int trace_connection(sqlite3* connection, const char**, const void*) {
  return sqlite3_trace_v2(connection, SQLITE_TRACE_PROFILE, &note, nullptr);
}

// The type that SQLite wants of every function that it calls for a new connection.
void (*entry_point())() { return reinterpret_cast<void (*)()>(&trace_connection); }

bool touches_rows(const std::string& statement) {
  return statement.find("schema_version") == std::string::npos &&
         statement.find("sqlite_master") == std::string::npos &&
         (statement.compare(0, 6, "SELECT") == 0 || statement.compare(0, 6, "INSERT") == 0 ||
          statement.compare(0, 6, "UPDATE") == 0 || statement.compare(0, 6, "DELETE") == 0);
}

}  // namespace

StatementLog::StatementLog() {
  statements.clear();
  sqlite3_auto_extension(entry_point());
}

StatementLog::~StatementLog() { sqlite3_cancel_auto_extension(entry_point()); }

Statements StatementLog::take_all() { return std::exchange(statements, {}); }

Statements StatementLog::take() {
  Statements taken;
  for (std::string& statement : take_all()) {
    if (touches_rows(statement)) taken.push_back(std::move(statement));
  }
  return taken;
}

}  // namespace veldra_tests
