// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/statement.hpp"

#include <odb/sqlite/error.hxx>

#include <sqlite3.h>

namespace veldra {

Statement::Statement(odb::sqlite::connection& connection, const char* text)
    : connection_(connection) {
  check(sqlite3_prepare_v2(connection.handle(), text, -1, &statement_, nullptr));
}

Statement::~Statement() { sqlite3_finalize(statement_); }

void Statement::bind(int parameter, long long value) {
  check(sqlite3_bind_int64(statement_, parameter, value));
}

void Statement::bind(int parameter, const char* text) {
  check(sqlite3_bind_text(statement_, parameter, text, -1, SQLITE_STATIC));
}

bool Statement::next() {
  const int result = sqlite3_step(statement_);
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) check(result);
  return false;
}

bool Statement::is_integer(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_INTEGER;
}

long long Statement::integer(int column) const { return sqlite3_column_int64(statement_, column); }

std::string Statement::text(int column) const {
  const void* text = sqlite3_column_text(statement_, column);
  if (text == nullptr) return {};
  return {static_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

void Statement::check(int result) const {
  if (result != SQLITE_OK) odb::sqlite::translate_error(result, connection_);
}

Setting::Setting(odb::sqlite::connection& connection, const char* pragma)
    : row_(connection, pragma), is_there_(row_.next()) {}

long long Setting::number() const { return is_there_ ? row_.integer(0) : 0; }

std::string Setting::text() const { return is_there_ ? row_.text(0) : ""; }

}  // namespace veldra
