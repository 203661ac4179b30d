// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/recognition.hpp"

#include "store/database.hpp"
#include "store/errors.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <odb/schema-catalog.hxx>
#include <odb/sqlite/error.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>

namespace veldra {

namespace {

using Recognition = Library::Recognition;
using Kind = Recognition::Kind;

bool is_empty(odb::sqlite::connection& connection) {
  return !Statement(connection, "SELECT 1 FROM sqlite_master LIMIT 1").next();
}

/// Whether most of the tables are there that tell a library from other databases. What stands in
/// their places, and which of them are missing, is left to `Library::check`.
bool has_tables_of_a_library(odb::sqlite::connection& connection) {
  Statement row(connection,
                "SELECT count(*) > 3 FROM sqlite_master"
                " WHERE name IN ('Material', 'Material_thicknesses', 'MaterialType',"
                "                'Composition', 'Composition_layers', 'Meta')");
  return row.next() && row.integer(0) != 0;
}

/// Whether there is a table of that name, with pages of its own, and not what others have written
/// in its place; with that many of those columns.
bool is_table(odb::sqlite::connection& connection, const char* name, const char* columns,
              long long number) {
  const std::string query =
      std::string(
          "SELECT 1 FROM sqlite_master WHERE name = ?1 COLLATE NOCASE AND type = 'table'"
          " AND rootpage > 0 AND (SELECT count(*) FROM pragma_table_info(?1)"
          "                        WHERE name COLLATE NOCASE IN (") +
      columns + ")) = ?2";
  Statement row(connection, query.c_str());
  row.bind(1, name);
  row.bind(2, number);
  return row.next();
}

/// Whether the file says what library it is, which opening reads.
bool has_identity(odb::sqlite::connection& connection) {
  return is_table(connection, "Meta", "'id', 'guid', 'unit', 'locale', 'region'", 5) &&
         Statement(connection, "SELECT 1 FROM \"Meta\" WHERE \"id\" = 0").next();
}

bool has_version_table(odb::sqlite::connection& connection) {
  return Statement(connection,
                   "SELECT 1 FROM sqlite_master WHERE name='schema_version' COLLATE NOCASE")
      .next();
}

odb::schema_version base_version() { return odb::schema_catalog::base_version(odb::id_sqlite, ""); }

odb::schema_version current_version() {
  return odb::schema_catalog::current_version(odb::id_sqlite, "");
}

Kind kind_of_version(const FileVersion& version) {
  if (version.known) {
    return version.number == current_version() ? Kind::Library : Kind::OlderLibrary;
  }
  const auto number = static_cast<long long>(version.number);
  return number > static_cast<long long>(current_version()) ? Kind::NewerLibrary
                                                            : Kind::UnknownVersion;
}

/// Another program may have turned the log on: the last pages may be there and not in the file yet.
bool has_write_ahead_log(odb::sqlite::connection& connection) {
  return Setting(connection, "PRAGMA journal_mode").text() == "wal";
}

Recognition look_through(Database& database) {
  ReadTransaction transaction(database);
  auto& connection = database.only_connection();
  const auto recognition = recognise_tables(connection);
  require_whole_pages(connection);
  return recognition;
}

/// Whether reading has failed for a journal or log that has to be applied before.
bool needs_a_writer(const odb::sqlite::database_exception& error) {
  return error.error() == SQLITE_READONLY || error.error() == SQLITE_CANTOPEN;
}

/// Looks at a file through a connection of its own; returns false where that one cannot apply its
/// journal or log.
bool look(const FileName& file, int flags, Recognition& recognition) {
  Database database(file, flags);
  try {
    recognition = look_through(database);
    return true;
  } catch (const odb::sqlite::database_exception& error) {
    if (!needs_a_writer(error)) throw;
    return false;
  }
}

bool is_missing(const FileName& file) {
  sqlite3_vfs* const vfs = sqlite3_vfs_find(file.vfs.empty() ? nullptr : file.vfs.c_str());
  int there = 1;
  if (vfs == nullptr ||
      vfs->xAccess(vfs, file.path.c_str(), SQLITE_ACCESS_EXISTS, &there) != SQLITE_OK) {
    return false;
  }
  return there == 0;
}

/// SQLite says of a first page that makes no sense that this is no database; the first bytes of the
/// file tell whether it was one.
Kind kind_of_unreadable(const FileName& file) {
  constexpr char first_bytes[] = "SQLite format 3";  // and a zero byte
  const std::string mark(first_bytes, sizeof first_bytes);
  std::string head(mark.size(), '\0');
  std::ifstream stream(file.path, std::ios::binary);
  stream.read(&head[0], static_cast<std::streamsize>(head.size()));
  return head == mark ? Kind::Damaged : Kind::Other;
}

Recognition recognise_database(const FileName& file) {
  Recognition recognition{Kind::NeedsRecovery, 0};
  try {
    if (!look(file, SQLITE_OPEN_READONLY, recognition)) {
      look(file, SQLITE_OPEN_READWRITE, recognition);
    }
    return recognition;
  } catch (const odb::sqlite::database_exception& error) {
    if (error.error() == SQLITE_CORRUPT) return {Kind::Damaged, 0};
    if (error.error() == SQLITE_NOTADB) return {kind_of_unreadable(file), 0};
    if (error.error() == SQLITE_CANTOPEN && is_missing(file)) return {Kind::Missing, 0};
    throw;
  }
}

Recognition recognise_file(const FileName& file) {
  if (file.path == ":memory:") return {Kind::Empty, 0};
  if (!file.vfs.empty()) return recognise_database(file);
  struct stat status;
  if (::stat(file.path.c_str(), &status) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return {Kind::Missing, 0};
    return recognise_database(file);  // which says what is the matter
  }
  // Opening a pipe would wait for somebody at its other end.
  if (!S_ISREG(status.st_mode)) return {Kind::Other, 0};
  if (status.st_size == 0) return {Kind::Empty, 0};
  // SQLite takes a single byte for an empty file.
  if (status.st_size == 1) return {Kind::Other, 0};
  return recognise_database(file);
}

}  // namespace

FileVersion version_of(odb::sqlite::connection& connection) {
  if (!has_version_table(connection)) return {true, 0};
  Statement row(connection, "SELECT \"version\" FROM \"schema_version\" WHERE \"name\"=''");
  if (!row.next()) return {true, 0};

  const bool understood = row.is_integer(0);
  const auto version = static_cast<odb::schema_version>(row.integer(0));
  const bool known =
      understood && !row.next() && version >= base_version() && version <= current_version();
  return {known, version};
}

Recognition recognise_tables(odb::sqlite::connection& connection) {
  if (is_empty(connection)) return {Kind::Empty, 0};
  if (!has_tables_of_a_library(connection)) return {Kind::OtherDatabase, 0};
  if (!is_table(connection, "schema_version", "'name', 'version'", 2)) {
    return {Kind::WithoutVersion, 0};
  }
  const FileVersion version = version_of(connection);
  if (version.known && version.number == 0) return {Kind::WithoutVersion, 0};
  if (!has_identity(connection)) return {Kind::WithoutIdentity, version.number};
  return {kind_of_version(version), version.number};
}

void require_whole_pages(odb::sqlite::connection& connection) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection.handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file == nullptr || file->pMethods == nullptr) return;  // a database in memory
  sqlite3_int64 size = 0;
  const int result = file->pMethods->xFileSize(file, &size);
  if (result != SQLITE_OK) odb::sqlite::translate_error(result, connection);
  const auto pages = Setting(connection, "PRAGMA page_count").number();
  const bool whole = size >= pages * Setting(connection, "PRAGMA page_size").number();
  if (!whole && !has_write_ahead_log(connection)) {
    throw odb::sqlite::database_exception(SQLITE_CORRUPT, SQLITE_CORRUPT,
                                          sqlite3_errstr(SQLITE_CORRUPT));
  }
}

Recognition recognise_file(const String& filename) {
  const std::string name = filename.utf8();
  return naming_file(name, [&name] { return recognise_file(parse_file_name(name)); });
}

}  // namespace veldra
