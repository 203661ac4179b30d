// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_FILE_SCHEMA_HPP
#define VELDRA_STORE_FILE_SCHEMA_HPP

#include <odb/sqlite/connection.hxx>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace veldra {

/// The schema of a file. To know it, nothing is run that stands in the file: a view may never end.
struct FileSchema {
  struct Table {
    std::string name;
    std::string sort;                            ///< "table", "view" or "virtual table"
    std::map<std::string, std::string> columns;  ///< the declared types by their names in lower
                                                 ///< case; only of tables
  };

  /// Who has it, a table or "" for the file; and what it is.
  using Part = std::pair<std::string, std::string>;

  static FileSchema of(odb::sqlite::connection& connection);

  /// The one that a file of the current version has.
  static FileSchema expected();

  /// SQLite does not mind the case of names. Null when there is nothing of that name.
  const Table* find(const std::string& name) const;

  std::set<Part> parts;
  std::map<std::string, Table> tables;  ///< by their names in lower case
};

/// Calls `use` with a connection to an empty database that has that schema.
void in_expected_schema(const std::function<void(odb::sqlite::connection&)>& use);

/// Why the table must not be read, such as `"Tag" is a view`; empty when it may.
std::string obstacle(const FileSchema& actual, const FileSchema& expected,
                     const std::string& table);

/// How the schema of a file differs from the expected one, a sentence each.
std::vector<std::string> wrong_parts(const FileSchema& actual, const FileSchema& expected);

/// In SQL, those tables of a file that hold their rows themselves, with the columns `name` and
/// `sql`.
extern const char* const tables_with_rows;

}  // namespace veldra

#endif
