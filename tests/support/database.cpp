// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/database.hpp"

#include <sqlite3.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace veldra_tests {

namespace {

using StatementPointer = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

std::string bytes_of(sqlite3_stmt* statement, int column) {
  const void* bytes = sqlite3_column_blob(statement, column);
  const int size = sqlite3_column_bytes(statement, column);
  return bytes == nullptr
             ? std::string()
             : std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
}

std::string text_of(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      return "NULL";
    case SQLITE_INTEGER:
      return std::to_string(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return real(sqlite3_column_double(statement, column));
    case SQLITE_TEXT:
      return "'" + bytes_of(statement, column) + "'";
    default:
      return "x'" + bytes_of(statement, column) + "'";
  }
}

}  // namespace

std::string real(double number) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.17g", number);
  return buffer;
}

PlainDatabase::PlainDatabase(const std::string& path) : handle_(nullptr) {
  if (sqlite3_open(path.c_str(), &handle_) != SQLITE_OK) {
    const std::string message = sqlite3_errmsg(handle_);
    sqlite3_close(handle_);
    throw std::runtime_error(path + ": " + message);
  }
}

PlainDatabase::~PlainDatabase() { sqlite3_close(handle_); }

void PlainDatabase::execute(const std::string& statements) {
  if (sqlite3_exec(handle_, statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(handle_) + (" in " + statements));
  }
}

Rows PlainDatabase::query(const std::string& statement) {
  sqlite3_stmt* raw = nullptr;
  if (sqlite3_prepare_v2(handle_, statement.c_str(), -1, &raw, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(handle_) + (" in " + statement));
  }
  const StatementPointer prepared(raw, sqlite3_finalize);
  Rows rows;
  int result;
  while ((result = sqlite3_step(raw)) == SQLITE_ROW) {
    Row row;
    for (int column = 0; column != sqlite3_column_count(raw); ++column) {
      row.push_back(text_of(raw, column));
    }
    rows.push_back(row);
  }
  if (result != SQLITE_DONE)
    throw std::runtime_error(sqlite3_errmsg(handle_) + (" in " + statement));
  return rows;
}

std::string PlainDatabase::value(const std::string& statement) {
  const Rows rows = query(statement);
  if (rows.empty()) throw std::runtime_error("no row: " + statement);
  return rows.front().front();
}

std::string catalogue(PlainDatabase& database) {
  std::string texts;
  for (const Row& row :
       database.query("SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY rowid")) {
    texts += row[0].substr(1, row[0].size() - 2) + "\n\n";
  }
  return texts;
}

std::string catalogue(const std::string& path) {
  PlainDatabase database(path);
  return catalogue(database);
}

std::string dump(const std::string& path) {
  PlainDatabase database(path);
  std::string lines;
  for (const Row& table :
       database.query("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name")) {
    const std::string name = table[0].substr(1, table[0].size() - 2);
    for (const Row& row : database.query("SELECT * FROM \"" + name + "\" ORDER BY rowid")) {
      lines += name + ":";
      for (const std::string& value : row) lines += " " + value;
      lines += "\n";
    }
  }
  return lines;
}

std::string damage(PlainDatabase& database) {
  std::string found;
  for (const Row& row : database.query("PRAGMA integrity_check")) {
    if (row[0] != "'ok'") found += row[0] + "\n";
  }
  for (const Row& row : database.query("PRAGMA foreign_key_check")) {
    found += "foreign key: " + row[0] + " " + row[1] + " -> " + row[2] + "\n";
  }
  return found;
}

std::string damage(const std::string& path) {
  PlainDatabase database(path);
  return damage(database);
}

}  // namespace veldra_tests
