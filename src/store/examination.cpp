#include "store/examination.hpp"

#include "store/mapping-odb.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <odb/schema-catalog.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>
#include <utf8.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace veldra {

namespace {

using Sentences = std::vector<std::string>;

/// Who has it, a table or "" for the file; and what it is.
using Part = std::pair<std::string, std::string>;

// What a schema consists of, as SQLite understood it and not as it is written: files that were
// migrated have columns elsewhere. What SQLite does not tell of, the text does.
const char* const parts_of_a_schema[] = {
    R"sql(SELECT '', type || ' "' || name || '"' || iif(wr, ' WITHOUT ROWID', '')
                     || iif(strict, ' STRICT', '')
            FROM pragma_table_list
           WHERE schema = 'main' AND name NOT LIKE 'sqlite\_%' ESCAPE '\')sql",

    R"sql(SELECT '', 'trigger "' || name || '"' FROM sqlite_master WHERE type = 'trigger')sql",

    R"sql(SELECT m.name, 'column "' || c.name || '" ' || c.type || iif(c."notnull", ' NOT NULL', '')
                         || iif(c.pk, ' PRIMARY KEY', '') || iif(c.hidden, ' GENERATED', '')
                         || ifnull(' DEFAULT ' || c.dflt_value, '')
            FROM sqlite_master AS m JOIN pragma_table_xinfo(m.name) AS c
           WHERE m.type = 'table')sql",

    R"sql(SELECT m.name, 'foreign key from "' || f."from" || '" to "' || f."table" || '"'
                         || ifnull(' ("' || f."to" || '")', '') || ' ON DELETE ' || f.on_delete
                         || ' ON UPDATE ' || f.on_update
            FROM sqlite_master AS m JOIN pragma_foreign_key_list(m.name) AS f
           WHERE m.type = 'table')sql",

    R"sql(SELECT m.name, iif(i."unique", 'unique ', '') || iif(i.partial, 'partial ', '')
                         || 'index "' || i.name || '" on '
                         || (SELECT group_concat(ifnull('"' || k.name || '"', 'an expression')
                                                 || iif(k."desc", ' DESC', '')
                                                 || iif(k.coll <> 'BINARY', ' COLLATE ' || k.coll, ''), ', ')
                               FROM pragma_index_xinfo(i.name) AS k
                              WHERE k.key)
            FROM sqlite_master AS m JOIN pragma_index_list(m.name) AS i
           WHERE m.type = 'table')sql",

    R"sql(WITH word(text) AS (VALUES ('AUTOINCREMENT'), ('CHECK'), ('COLLATE'))
          SELECT m.name, 'word ' || word.text
            FROM sqlite_master AS m JOIN word ON instr(upper(m.sql), word.text)
           WHERE m.type = 'table')sql",
};

std::set<Part> schema_of(odb::sqlite::connection& connection) {
  std::set<Part> parts;
  for (const char* query : parts_of_a_schema) {
    Statement row(connection, query);
    while (row.next()) parts.insert({row.text(0), row.text(1)});
  }
  return parts;
}

std::set<Part> expected_schema() {
  Database empty({"", ":memory:"}, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  WriteTransaction transaction(empty);
  odb::schema_catalog::create_schema(empty, "", false);
  return schema_of(empty.connection_in_use());
}

/// The parts that only `some` has. What a table has is not told if the table itself is one of them.
Sentences only_in(const std::set<Part>& some, const std::set<Part>& others,
                  std::string (*sentence)(const Part&)) {
  Sentences sentences;
  for (const Part& part : some) {
    const Part owner("", "table \"" + part.first + "\"");
    const bool of_the_file = part.first.empty();
    if (others.count(part) != 0 || (!of_the_file && others.count(owner) == 0)) continue;
    sentences.push_back((of_the_file ? "The file" : "\"" + part.first + "\"") + sentence(part));
  }
  return sentences;
}

Sentences wrong_schema(odb::sqlite::connection& connection) {
  const auto actual = schema_of(connection);
  const auto expected = expected_schema();
  auto sentences =
      only_in(expected, actual, [](const Part& part) { return " lacks the " + part.second; });
  const auto foreign = only_in(actual, expected, [](const Part& part) {
    return " has the " + part.second + ", which does not belong there";
  });
  sentences.insert(sentences.end(), foreign.begin(), foreign.end());
  return sentences;
}

Sentences rows_of(odb::sqlite::connection& connection, const char* query) {
  Sentences sentences;
  Statement row(connection, query);
  while (row.next()) sentences.push_back(row.text(0));
  return sentences;
}

Sentences damage(odb::sqlite::connection& connection) {
  return rows_of(connection,
                 "SELECT integrity_check FROM pragma_integrity_check"
                 " WHERE integrity_check <> 'ok'");
}

Sentences broken_references(odb::sqlite::connection& connection) {
  return rows_of(connection, R"sql(
      SELECT '"' || c."table" || '"' || ifnull(', row ' || c.rowid, '') || ': "' || f."from"
             || '" refers to a row of "' || c.parent || '" that is not there'
        FROM pragma_foreign_key_check AS c JOIN pragma_foreign_key_list(c."table") AS f
             ON f.id = c.fkid
       LIMIT 100)sql");
}

Sentences wrong_identity(odb::sqlite::connection& connection) {
  return rows_of(connection, R"sql(
      SELECT '"Meta" has ' || count(*) || ' rows instead of one'
        FROM "Meta" HAVING count(*) <> 1)sql");
}

bool is_the_files_fault(const odb::sqlite::database_exception& error) {
  return error.error() == SQLITE_CORRUPT || error.error() == SQLITE_ERROR;
}

std::string well_formed(const std::string& text) {
  std::string result;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(result));
  return result;
}

}  // namespace

std::vector<std::string> examine(Database& database) {
  ReadTransaction transaction(database);
  auto& connection = database.connection_in_use();
  Sentences findings;
  for (const auto examination : {damage, broken_references, wrong_schema, wrong_identity}) {
    database.stop_if_interrupted();
    Sentences sentences;
    try {
      sentences = examination(connection);
    } catch (const odb::sqlite::database_exception& error) {
      if (!is_the_files_fault(error)) throw;
      sentences = {error.message()};
    }
    std::transform(sentences.begin(), sentences.end(), std::back_inserter(findings), well_formed);
  }
  return findings;
}

}  // namespace veldra
