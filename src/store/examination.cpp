#include "store/examination.hpp"

#include "store/file_schema.hpp"
#include "store/row_examination.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <algorithm>

namespace veldra {

namespace {

const std::size_t most_references = 100;

/// A kind, and the tables that reading its objects may lead to.
struct KindTables {
  ObjectType type;
  std::vector<const char*> tables;
};

const std::vector<KindTables>& tables_of_kinds() {
  static const std::vector<KindTables> kinds{
      {ObjectType::Tag, {"Tag"}},
      {ObjectType::MaterialType, {"MaterialType"}},
      {ObjectType::Material,
       {"Material", "Material_tags", "Material_thicknesses", "Material_custom_values", "Tag",
        "MaterialType", "CustomProperty", "Layer", "Asset", "Asset_tags", "StructuralAsset",
        "ThermalAsset"}},
      {ObjectType::Composition,
       {"Composition", "Composition_tags", "Composition_layers", "Composition_custom_values",
        "Material", "Material_tags", "Material_thicknesses", "Material_custom_values", "Tag",
        "MaterialType", "CustomProperty", "Layer", "Asset", "Asset_tags", "StructuralAsset",
        "ThermalAsset"}},
      {ObjectType::CustomProperty, {"CustomProperty"}},
      {ObjectType::Layer, {"Layer"}}};
  return kinds;
}

class Examination {
 public:
  explicit Examination(Database& database)
      : database_(database), connection_(database.connection_in_use()) {}

  Findings run() {
    // First, since it says what can be read.
    attempt([this] { examine_schema(); });
    attempt([this] { examine_pages(); });
    examine_references();
    for (const RowExamination& examination : row_examinations(expected_)) {
      attempt([&] { examine_rows(examination); });
    }
    return std::move(findings_);
  }

 private:
  /// What is the fault of the file is a finding, and the examination goes on.
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

  void examine_schema() {
    actual_ = FileSchema::of(connection_);
    for (const auto& sentence : wrong_parts(actual_, expected_)) {
      findings_.push_back(finding_of_file(sentence));
    }
    for (const KindTables& kind : tables_of_kinds()) {
      const std::string reason = first_obstacle(kind.tables);
      if (reason.empty()) continue;
      findings_.push_back(
          make_finding({kind.type, 0}, {}, "they cannot be read, because " + reason));
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

  void examine_pages() {
    Statement row(connection_,
                  "SELECT integrity_check FROM pragma_integrity_check"
                  " WHERE integrity_check <> 'ok'");
    add_sentences(row);
  }

  /// Each table alone, so that one with keys that lead nowhere does not hide the others.
  void examine_references() {
    std::vector<std::string> tables;
    attempt([&] { tables = tables_with_references(); });
    std::size_t found = 0;
    for (const std::string& table : tables) {
      attempt([&] { found += examine_references_of(table, most_references - found); });
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

  std::size_t examine_references_of(const std::string& table, std::size_t most) {
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

  void examine_rows(const RowExamination& examination) {
    if (!first_obstacle(examination.tables).empty()) return;
    Statement row(connection_, examination.query.c_str());
    if (examination.type == ObjectType{}) return add_sentences(row);
    while (row.next()) {
      const ObjectKey object(examination.type, static_cast<unsigned>(row.integer(0)));
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

Findings examine(Database& database) {
  ReadTransaction transaction(database);
  return Examination(database).run();
}

}  // namespace veldra
