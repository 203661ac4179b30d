// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/file_schema.hpp"

#include "store/mapping-odb.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <odb/schema-catalog.hxx>

#include <sqlite3.h>

namespace veldra {

// SQLite's own list of tables would work out the columns of all views, which may be a work without
// end as well.
const char* const tables_with_rows = R"sql(
    (SELECT name, sql FROM sqlite_master
      WHERE type = 'table' AND rootpage > 0 AND sql LIKE 'CREATE TABLE %'))sql";

namespace {

using Part = FileSchema::Part;
using Sentences = std::vector<std::string>;

const char* const tables_and_views = R"sql(
    SELECT name, CASE WHEN type = 'view' THEN 'view'
                      WHEN rootpage > 0 AND sql LIKE 'CREATE TABLE %' THEN 'table'
                      ELSE 'virtual table' END, upper(sql)
      FROM sqlite_master
     WHERE type IN ('table', 'view'))sql";

// What a schema consists of besides, as SQLite understood it and not as it is written: files that
// were migrated have columns elsewhere. What SQLite does not tell of, the text does.
std::vector<std::string> parts_of_a_schema() {
  const std::string from_tables = std::string(" FROM ") + tables_with_rows + " AS m ";
  return {
      R"sql(SELECT '', 'trigger "' || name || '"' FROM sqlite_master WHERE type = 'trigger')sql",

      R"sql(SELECT m.name, 'foreign key from "' || f."from" || '" to "' || f."table" || '"'
                           || ifnull(' ("' || f."to" || '")', '') || ' ON DELETE ' || f.on_delete
                           || ' ON UPDATE ' || f.on_update)sql" +
          from_tables + "JOIN pragma_foreign_key_list(m.name) AS f",

      R"sql(SELECT m.name, iif(i."unique", 'unique ', '') || iif(i.partial, 'partial ', '')
                           || 'index "' || i.name || '" on '
                           || (SELECT group_concat(ifnull('"' || k.name || '"', 'an expression')
                                                   || iif(k."desc", ' DESC', '')
                                                   || iif(k.coll <> 'BINARY', ' COLLATE ' || k.coll,
                                                          ''), ', ')
                                 FROM pragma_index_xinfo(i.name) AS k
                                WHERE k.key))sql" +
          from_tables + "JOIN pragma_index_list(m.name) AS i",

      "WITH word(text) AS (VALUES ('AUTOINCREMENT'), ('CHECK'), ('COLLATE'))"
      " SELECT m.name, 'word ' || word.text" +
          from_tables + "JOIN word ON instr(upper(m.sql), word.text)",
  };
}

const char* const columns = R"sql(
    SELECT m.name, c.name, c.type, 'column "' || c.name || '" ' || c.type
                           || iif(c."notnull", ' NOT NULL', '')
                           || iif(c.pk, ' PRIMARY KEY', '') || iif(c.hidden, ' GENERATED', '')
                           || ifnull(' DEFAULT ' || c.dflt_value, '') FROM )sql";

/// As SQLite compares names.
std::string lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

bool is_sqlites_own(const std::string& name) { return name.compare(0, 7, "sqlite_") == 0; }

std::string quoted(const std::string& sort, const std::string& name) {
  return sort + " \"" + name + "\"";
}

/// The words behind the last parenthesis of a table's text.
std::string options_in(const std::string& text) {
  const auto end = text.rfind(')');
  const std::string words = end == std::string::npos ? "" : text.substr(end);
  const auto has = [&words](const char* word) { return words.find(word) != std::string::npos; };
  return std::string(has("WITHOUT") ? " WITHOUT ROWID" : "") + (has("STRICT") ? " STRICT" : "");
}

void add_tables(FileSchema& schema, odb::sqlite::connection& connection) {
  Statement row(connection, tables_and_views);
  while (row.next()) {
    const std::string name = row.text(0);
    const std::string sort = row.text(1);
    schema.tables[lower(name)] = {name, sort, {}};
    if (is_sqlites_own(name)) continue;
    const std::string options = sort == "table" ? options_in(row.text(2)) : "";
    schema.parts.insert({"", quoted(sort, name) + options});
  }
}

void add_columns(FileSchema& schema, odb::sqlite::connection& connection) {
  const std::string query =
      std::string(columns) + tables_with_rows + " AS m JOIN pragma_table_xinfo(m.name) AS c";
  Statement row(connection, query.c_str());
  while (row.next()) {
    schema.tables[lower(row.text(0))].columns[lower(row.text(1))] = row.text(2);
    schema.parts.insert({row.text(0), row.text(3)});
  }
}

/// Whether the name of a table is taken by what is none.
bool is_no_table(const FileSchema::Table* found) {
  return found != nullptr && found->sort != "table";
}

bool is_replaced(const FileSchema& actual, const FileSchema& expected, const Part& part) {
  for (const auto& entry : expected.tables) {
    const auto* const found = actual.find(entry.first);
    if (!is_no_table(found) || !part.first.empty()) continue;
    if (part.second == quoted("table", entry.second.name)) return true;
    if (part.second == quoted(found->sort, found->name)) return true;
  }
  return false;
}

Sentences replaced_tables(const FileSchema& actual, const FileSchema& expected) {
  Sentences sentences;
  for (const auto& entry : expected.tables) {
    const auto* const found = actual.find(entry.first);
    if (!is_no_table(found)) continue;
    sentences.push_back("The file has the " + quoted(found->sort, found->name) + " where the " +
                        quoted("table", entry.second.name) + " belongs");
  }
  return sentences;
}

/// The parts that only `some` has. What a table has is not told if the table itself is one of them.
template <class Skip>
Sentences only_in(const std::set<Part>& some, const std::set<Part>& others, Skip skip,
                  std::string (*sentence)(const Part&)) {
  Sentences sentences;
  for (const Part& part : some) {
    const Part owner("", quoted("table", part.first));
    const bool of_the_file = part.first.empty();
    if (others.count(part) != 0 || (!of_the_file && others.count(owner) == 0)) continue;
    if (skip(part)) continue;
    sentences.push_back((of_the_file ? "The file" : "\"" + part.first + "\"") + sentence(part));
  }
  return sentences;
}

}  // namespace

FileSchema FileSchema::of(odb::sqlite::connection& connection) {
  FileSchema schema;
  add_tables(schema, connection);
  add_columns(schema, connection);
  for (const std::string& query : parts_of_a_schema()) {
    Statement part(connection, query.c_str());
    while (part.next()) schema.parts.insert({part.text(0), part.text(1)});
  }
  return schema;
}

void in_expected_schema(const std::function<void(odb::sqlite::connection&)>& use) {
  Database empty({"", ":memory:"}, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  WriteTransaction transaction(empty);
  odb::schema_catalog::create_schema(empty, "", false);
  use(empty.only_connection());
}

FileSchema FileSchema::expected() {
  FileSchema schema;
  in_expected_schema([&schema](auto& connection) { schema = of(connection); });
  return schema;
}

const FileSchema::Table* FileSchema::find(const std::string& name) const {
  const auto found = tables.find(lower(name));
  return found == tables.end() ? nullptr : &found->second;
}

std::string obstacle(const FileSchema& actual, const FileSchema& expected,
                     const std::string& table) {
  const auto* const found = actual.find(table);
  if (found == nullptr) return "\"" + table + "\" is missing";
  if (is_no_table(found)) return "\"" + table + "\" is a " + found->sort;
  for (const auto& column : expected.find(table)->columns) {
    if (found->columns.count(column.first) != 0) continue;
    return "\"" + table + "\" lacks the column \"" + column.first + "\"";
  }
  return {};
}

std::vector<std::string> wrong_parts(const FileSchema& actual, const FileSchema& expected) {
  const auto is_told = [&](const Part& part) { return is_replaced(actual, expected, part); };
  auto sentences = replaced_tables(actual, expected);
  const auto missing = only_in(expected.parts, actual.parts, is_told,
                               [](const Part& part) { return " lacks the " + part.second; });
  const auto foreign = only_in(actual.parts, expected.parts, is_told, [](const Part& part) {
    return " has the " + part.second + ", which does not belong there";
  });
  sentences.insert(sentences.end(), missing.begin(), missing.end());
  sentences.insert(sentences.end(), foreign.begin(), foreign.end());
  return sentences;
}

}  // namespace veldra
