// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_DATABASE_HPP
#define VELDRA_TESTS_SUPPORT_DATABASE_HPP

#include <string>
#include <vector>

struct sqlite3;

namespace veldra_tests {

/// A value of a row as text, with its storage class: NULL, an integer, a real number with 17
/// digits, 'a text' or x'a blob'.
using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

/// A real number in the form of `Row`.
std::string real(double number);

/// A file as plain SQLite sees it, beside the library. Errors are `std::runtime_error`.
class PlainDatabase {
 public:
  /// Opens the file, creating it if it is missing.
  explicit PlainDatabase(const std::string& path);
  PlainDatabase(const PlainDatabase&) = delete;
  PlainDatabase& operator=(const PlainDatabase&) = delete;
  ~PlainDatabase();

  /// Runs one statement or more.
  void execute(const std::string& statements);

  /// The rows of a query.
  Rows query(const std::string& statement);

  /// The first value of the first row.
  std::string value(const std::string& statement);

  sqlite3* handle() { return handle_; }

 private:
  sqlite3* handle_;
};

/// The texts of the catalogue in the order of creation, each followed by an empty line.
std::string catalogue(PlainDatabase& database);
std::string catalogue(const std::string& path);

/// All rows of all tables in a fixed order: "Table: value, value, ..." a line.
std::string dump(const std::string& path);

/// What is wrong with the file; empty when SQLite's checks of integrity and of foreign keys find
/// nothing.
std::string damage(PlainDatabase& database);
std::string damage(const std::string& path);

}  // namespace veldra_tests

#endif
