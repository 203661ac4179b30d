// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/errors.hpp"
#include "store/file_schema.hpp"
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/new_file.hpp"
#include "store/page_copy.hpp"
#include "store/reported_operation.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <sqlite3.h>
#include <sys/stat.h>

#include <utility>

// Copies of whole libraries, page by page.

namespace veldra {

namespace {

void write_backup(Database& database, const String& filename) {
  const OneState state(database);
  const std::string name = filename.utf8();
  naming_file(name, [&] {
    const FileName file_name = parse_file_name(name);
    NewFile file(filename, file_name, database);
    {
      Database copy(file_name, SQLITE_OPEN_READWRITE);
      // A journal that a loss of power brings back would empty the file again.
      copy.only_connection().execute("PRAGMA synchronous=EXTRA");
      copy_pages(database, copy, database);
    }
    file.keep();
  });
}

[[noreturn]] void refuse(int code, const std::string& reason) {
  throw odb::sqlite::database_exception(code, code, reason);
}

/// Whether a name leads to the file of a database, by whatever links.
bool is_file_of(const Database& database, const FileName& name) {
  const char* const own = sqlite3_db_filename(database.handle(), "main");
  struct stat of_database;
  struct stat of_name;
  if (own == nullptr || ::stat(own, &of_database) != 0) return false;
  if (::stat(name.path.c_str(), &of_name) != 0) return false;
  return of_database.st_dev == of_name.st_dev && of_database.st_ino == of_name.st_ino;
}

/// One connection to a file would wait for the other in vain.
void require_other_file(const Database& database, const String& filename) {
  const std::string name = filename.utf8();
  if (is_file_of(database, naming_file(name, [&] { return parse_file_name(name); }))) {
    throw SameFile(filename);
  }
}

/// What the pages of a database cannot be exchanged for: SQLite would do it, or say something else.
void require_fitting(odb::sqlite::connection& from, odb::sqlite::connection& to) {
  if (Setting(from, "PRAGMA encoding").text() != Setting(to, "PRAGMA encoding").text()) {
    refuse(SQLITE_ERROR, "the texts in the file are encoded otherwise than in the library");
  }
  const std::string mode = Setting(to, "PRAGMA journal_mode").text();
  if (mode != "wal" && mode != "memory" && mode != "off") return;  // any size of pages will do
  if (Setting(from, "PRAGMA page_size").number() != Setting(to, "PRAGMA page_size").number()) {
    refuse(SQLITE_ERROR, "the pages of the file are of another size than those of the library");
  }
}

/// A sound library is not exchanged for a damaged one.
void require_sound(Database& database) {
  odb::sqlite::connection& connection = database.only_connection();
  if (Setting(connection, "PRAGMA quick_check(1)").text() != "ok") {
    refuse(SQLITE_CORRUPT, sqlite3_errstr(SQLITE_CORRUPT));
  }
  const FileSchema expected = FileSchema::expected();
  const FileSchema actual = FileSchema::of(connection);
  for (const auto& table : expected.tables) {
    const std::string reason = obstacle(actual, expected, table.first);
    if (!reason.empty()) refuse(SQLITE_CORRUPT, reason);
  }
}

Meta replace_contents(Database& database, const String& filename, bool any_library) {
  require_other_file(database, filename);
  LibraryState source(filename, database);
  // As it stands in the file: another handle may have restored another library. By reading, SQLite
  // notices what others have set, too.
  const String guid = load_meta(database).guid;
  naming_file(filename.utf8(), [&] {
    require_fitting(source.database().only_connection(), database.only_connection());
    require_sound(source.database());
  });
  if (!any_library && source.meta().guid != guid) throw OtherLibrary(filename);
  copy_pages(source.database(), database, database);
  return std::move(source.meta());
}

}  // namespace

void Library::backup(const String& filename) const {
  Database& database = *impl_->database;
  if (database.transactions().is_changing()) throw odb::already_in_transaction();
  interruptibly(database, [&] { write_backup(database, filename); });
}

void Library::restoreFrom(const String& filename, bool otherLibrary) {
  if (readOnly()) throw LibraryReadOnly();
  Database& database = *impl_->database;
  database.transactions().require_holdable();
  run_operation(*this, [&] {
    auto kinds = all_kinds();
    impl_->meta = replace_contents(database, filename, otherLibrary);
    impl_->changed.swap(kinds);
  });
}

}  // namespace veldra
