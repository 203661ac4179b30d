// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/file_check.hpp"

#include "store/file_schema.hpp"
#include "store/kinds.hpp"
#include "store/mapping.hpp"
#include "store/row_checks.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <algorithm>
#include <map>

namespace veldra {

namespace {

const std::size_t most_references = 100;

/// The kinds to which reading objects may lead, with their tables.
using ReachedKinds = std::map<ObjectType, TableNames>;

template <class T>
void reach(ReachedKinds& kinds);

/// Reaches what a member refers to.
struct ReachedByMembers {
  ReachedKinds& kinds;

  template <class Role, class How, class Values, class Field>
  auto operator()(Member<Role, How, Values, Field>) const -> IfOneOf<Role, Plain, Length, Number> {}

  template <class Role, class How, class Values, class T>
  auto operator()(Member<Role, How, Values, std::shared_ptr<T>>) const
      -> IfOneOf<Role, Reference, NeededReference> {
    reach<std::remove_const_t<T>>(kinds);
  }
  template <class How, class Values, class T>
  void operator()(Member<UnsavedReference, How, Values, std::shared_ptr<T>>) const {
    reach<Asset>(kinds);
  }
  template <class How, class Values, class T>
  void operator()(Member<References, How, Values, std::vector<std::shared_ptr<T>>>) const {
    reach<T>(kinds);
  }
  template <class How, class Values, class Map>
  void operator()(Member<ValuesByProperty, How, Values, Map>) const {
    reach<CustomProperty>(kinds);
  }
  template <class How, class Values, class Layers>
  void operator()(Member<LayersOfMaterials, How, Values, Layers>) const {
    reach<Material>(kinds);
  }
};

template <class T>
void reach(ReachedKinds& kinds) {
  TableNames tables = Kind<T>::lists();
  tables.insert(tables.begin(), Kind<T>::table);
  const bool is_new = kinds.emplace(ObjectTraits<T>::type, std::move(tables)).second;
  if (is_new) for_each_member(PartsOf<T>(), ReachedByMembers{kinds});
}

/// The tables that reading the objects of a kind may lead to: first its own, which say the most of
/// why it cannot be read, and those of assets last.
template <class T>
TableNames tables_reached_from() {
  ReachedKinds kinds;
  reach<T>(kinds);
  TableNames tables;
  const auto take = [&](ObjectType type) {
    const TableNames& more = kinds[type];
    tables.insert(tables.end(), more.begin(), more.end());
    kinds.erase(type);
  };
  take(ObjectTraits<T>::type);
  take(ObjectType::Material);
  const TableNames assets = kinds[ObjectType::Asset];
  kinds.erase(ObjectType::Asset);
  while (!kinds.empty()) take(kinds.begin()->first);
  tables.insert(tables.end(), assets.begin(), assets.end());
  return tables;
}

/// The kinds in the order of their numbers.
std::map<ObjectType, TableNames> tables_of_kinds() {
  std::map<ObjectType, TableNames> kinds;
  for_each_kind([&kinds](auto kind) {
    using T = typename decltype(kind)::type;
    kinds.emplace(ObjectTraits<T>::type, tables_reached_from<T>());
  });
  return kinds;
}

class FileCheck {
 public:
  explicit FileCheck(Database& database)
      : database_(database), connection_(database.only_connection()) {}

  Findings run() {
    // First, since it says what can be read.
    attempt([this] { check_schema(); });
    attempt([this] { check_pages(); });
    check_references();
    for (const RowCheck& check : row_checks(expected_)) {
      attempt([&] { check_rows(check); });
    }
    return std::move(findings_);
  }

 private:
  /// What is the fault of the file is a finding, and the check goes on.
  template <class Work>
  void attempt(Work work) {
    database_.stop_if_interrupted();
    try {
      work();
    } catch (const odb::sqlite::database_exception& error) {
      if (error.error() != SQLITE_CORRUPT && error.error() != SQLITE_ERROR) throw;
      add_once(finding_of_file(error.message()));
    }
  }

  void add_once(const Library::Finding& finding) {
    const auto same = [&](const Library::Finding& other) {
      return other.object == finding.object && other.sentence == finding.sentence;
    };
    if (std::none_of(findings_.begin(), findings_.end(), same)) findings_.push_back(finding);
  }

  void add_sentences(Statement& row) {
    while (row.next()) findings_.push_back(finding_of_file(row.text(0)));
  }

  void check_schema() {
    actual_ = FileSchema::of(connection_);
    for (const auto& sentence : wrong_parts(actual_, expected_)) {
      findings_.push_back(finding_of_file(sentence));
    }
    for (const auto& kind : tables_of_kinds()) {
      const std::string reason = first_obstacle(kind.second);
      if (reason.empty()) continue;
      findings_.push_back(
          make_finding({kind.first, 0}, {}, "they cannot be read, because " + reason));
    }
  }

  template <class Names>
  std::string first_obstacle(const Names& tables) const {
    for (const auto& table : tables) {
      auto reason = obstacle(actual_, expected_, table);
      if (!reason.empty()) return reason;
    }
    return {};
  }

  void check_pages() {
    Statement row(connection_,
                  "SELECT integrity_check FROM pragma_integrity_check"
                  " WHERE integrity_check <> 'ok'");
    add_sentences(row);
  }

  /// Each table alone, so that one with keys that lead nowhere does not hide the others.
  void check_references() {
    std::vector<std::string> tables;
    attempt([&] { tables = tables_with_references(); });
    std::size_t found = 0;
    for (const std::string& table : tables) {
      attempt([&] { found += check_references_of(table, most_references - found); });
    }
  }

  /// Those that refer to tables; what is none must not be looked into.
  std::vector<std::string> tables_with_references() {
    const std::string query = std::string("SELECT name FROM ") + tables_with_rows + R"sql( AS m
           WHERE EXISTS (SELECT 1 FROM pragma_foreign_key_list(m.name))
             AND NOT EXISTS (SELECT 1 FROM pragma_foreign_key_list(m.name) AS f
                               JOIN sqlite_master AS p ON p.name = f."table" COLLATE NOCASE
                              WHERE p.type IN ('table', 'view')
                                AND p.name NOT IN (SELECT name FROM )sql" +
                              tables_with_rows + "))";
    std::vector<std::string> tables;
    Statement row(connection_, query.c_str());
    while (row.next()) tables.push_back(row.text(0));
    return tables;
  }

  std::size_t check_references_of(const std::string& table, std::size_t most) {
    Statement row(connection_, R"sql(
        SELECT '"' || c."table" || '"' || ifnull(', row ' || c.rowid, '') || ': "' || f."from"
               || '" refers to a row of "' || c.parent || '" that is not there'
          FROM pragma_foreign_key_check(?1) AS c JOIN pragma_foreign_key_list(c."table") AS f
               ON f.id = c.fkid
         LIMIT ?2)sql");
    row.bind(1, table.c_str());
    row.bind(2, static_cast<long long>(most));
    const std::size_t before = findings_.size();
    add_sentences(row);
    return findings_.size() - before;
  }

  void check_rows(const RowCheck& check) {
    if (!first_obstacle(check.tables).empty()) return;
    Statement row(connection_, check.query.c_str());
    if (check.type == ObjectType{}) return add_sentences(row);
    while (row.next()) {
      const ObjectKey object(check.type, static_cast<unsigned>(row.integer(0)));
      findings_.push_back(make_finding(object, row.text(1), row.text(2)));
    }
  }

  Database& database_;
  odb::sqlite::connection& connection_;
  FileSchema expected_ = FileSchema::expected();
  FileSchema actual_;
  Findings findings_;
};

}  // namespace

Findings check_file(Database& database) {
  ReadTransaction transaction(database);
  return FileCheck(database).run();
}

}  // namespace veldra
