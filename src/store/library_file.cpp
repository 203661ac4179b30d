// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/library_file.hpp"

#include "store/errors.hpp"
#include "store/mapping-odb.hpp"
#include "store/page_copy.hpp"
#include "store/recognition.hpp"
#include "store/transactions.hpp"

#include <odb/exceptions.hxx>
#include <odb/schema-catalog.hxx>
#include <odb/sqlite/error.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <functional>

namespace veldra {

Meta load_meta(Database& database) {
  ReadTransaction transaction(database);
  Meta meta;
  database.load(0ULL, meta);
  return meta;
}

namespace {

/// The runtime's exception for a file of a version that is not ours, with the file in its text.
class UnknownVersion : public odb::unknown_schema_version {
 public:
  UnknownVersion(const std::string& name, const odb::unknown_schema_version& error)
      : odb::unknown_schema_version(error), what_(name + ": " + error.what()) {}
  ~UnknownVersion() noexcept override = default;

  const char* what() const noexcept override { return what_.c_str(); }
  UnknownVersion* clone() const override { return new UnknownVersion(*this); }

 private:
  std::string what_;
};

/// Foreign keys must not be enforced while tables are made and altered.
class ForeignKeysOff {
 public:
  explicit ForeignKeysOff(odb::sqlite::connection& connection) : connection_(connection) {
    connection_.execute("PRAGMA foreign_keys=OFF");
  }
  ForeignKeysOff(const ForeignKeysOff&) = delete;
  ForeignKeysOff& operator=(const ForeignKeysOff&) = delete;
  ~ForeignKeysOff() {
    if (!on_)
      sqlite3_exec(connection_.handle(), "PRAGMA foreign_keys=ON", nullptr, nullptr, nullptr);
  }

  void on_again() {
    connection_.execute("PRAGMA foreign_keys=ON");
    on_ = true;
  }

 private:
  odb::sqlite::connection& connection_;
  bool on_ = false;
};

odb::schema_version current_version() {
  return odb::schema_catalog::current_version(odb::id_sqlite, "");
}

/// The version of the file; 0 for an empty one. The runtime would take a version that is no number
/// for an empty file, and end the process over two versions; so the row is looked at first.
odb::schema_version file_version(odb::sqlite::connection& connection) {
  const FileVersion version = version_of(connection);
  if (!version.known) throw odb::unknown_schema_version(version.number);
  return version.number;
}

/// Looks at a file before anything is done to it, within the transaction that does it.
using Requirement = std::function<void(odb::sqlite::connection&)>;

void require_nothing(odb::sqlite::connection&) {}

Requirement require_library(const String& filename) {
  return [&filename](odb::sqlite::connection& connection) {
    using Kind = Library::Recognition::Kind;
    switch (recognise_tables(connection).kind) {
      case Kind::Empty:
      case Kind::WithoutVersion:
      case Kind::WithoutIdentity:
      case Kind::OtherDatabase:
        throw NotALibrary(filename);
      default:
        return;
    }
  };
}

/// What there is to do for a file before it can be used.
enum class Step { None, Fill, Migrate };

Step next_step(odb::sqlite::connection& connection) {
  const odb::schema_version version = file_version(connection);
  if (version == 0) return Step::Fill;
  return version < current_version() ? Step::Migrate : Step::None;
}

/// Looks at a file without changing anything, so that nobody has to wait for one that is current.
Step look_at(Database& database, const Requirement& require) {
  ReadTransaction transaction(database);
  auto& connection = database.only_connection();
  require(connection);
  const Step step = next_step(connection);
  require_whole_pages(connection);
  return step;
}

void take_step(Database& database, const Requirement& require, const NewLibrary& contents) {
  end_what_is_left(database);  // within a transaction the keys would stay on
  ForeignKeysOff foreign_keys(database.only_connection());
  WriteTransaction transaction(database);
  // Another process may have been faster while the lock was waited for.
  require(database.only_connection());
  const Step step = next_step(database.only_connection());
  if (step == Step::Fill) {
    odb::schema_catalog::create_schema(database, "", true);
    fill(database, contents);
  } else if (step == Step::Migrate) {
    odb::schema_catalog::migrate(database);
  }
  transaction.commit();
  foreign_keys.on_again();
}

/// Makes the file a library of the current version.
void bring_up_to_date(Database& database, const Requirement& require, const NewLibrary& contents) {
  if (look_at(database, require) != Step::None) take_step(database, require, contents);
}

/// On the disk, and gone with its connection.
std::unique_ptr<Database> temporary_database() {
  constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  return std::unique_ptr<Database>(new Database({"", ""}, flags));
}

LibraryFile open(const std::string& filename, FileAccess access, const Requirement& require,
                 const NewLibrary& contents) {
  const FileName name = parse_file_name(filename);
  const int create = access == FileAccess::Create ? SQLITE_OPEN_CREATE : 0;
  LibraryFile file;
  file.database.reset(new Database(name, SQLITE_OPEN_READWRITE | create));
  bring_up_to_date(*file.database, require, contents);
  if (access == FileAccess::ReadOnly) {
    // The second connection is there before the first goes, since a database in memory goes with
    // its last connection.
    std::unique_ptr<Database> reading(new Database(name, SQLITE_OPEN_READONLY));
    file.database = std::move(reading);
  }
  file.version = current_version();
  file.meta = load_meta(*file.database);
  require_ended(*file.database);  // a library that nobody uses must not hold a lock
  return file;
}

/// Puts the name of the file in front of what the database says in `work`, and of what the runtime
/// says of the version.
template <class Work>
auto naming_opened_file(const std::string& name, Work work) {
  try {
    return naming_file(name, work);
  } catch (const odb::unknown_schema_version& error) {
    throw UnknownVersion(name, error);
  }
}

LibraryFile open_named(const String& filename, FileAccess access, const Requirement& require,
                       const NewLibrary& contents) {
  const std::string name = filename.utf8();
  return naming_opened_file(name, [&] { return open(name, access, require, contents); });
}

}  // namespace

LibraryFile open_library_file(const String& filename, FileAccess access,
                              const NewLibrary& contents) {
  return open_named(filename, access, require_nothing, contents);
}

LibraryFile open_existing_file(const String& filename, FileAccess access) {
  return open_named(filename, access, require_library(filename), NewLibrary());
}

void LibraryState::join(Database& running) {
  joined_.reset(new JoinedOperation(running, *database_));
  running.stop_if_interrupted();
}

LibraryState::LibraryState(const String& filename, Database& running) {
  const std::string name = filename.utf8();
  const Requirement require = require_library(filename);
  naming_opened_file(name, [&] {
    // Not for reading only, since what a crash left behind could not be taken back then.
    database_.reset(new Database(parse_file_name(name), SQLITE_OPEN_READWRITE));
    join(running);
    state_.reset(new OneState(*database_));
    if (look_at(*database_, require) != Step::None) {
      std::unique_ptr<Database> copy = temporary_database();
      copy_pages(*database_, *copy, running);
      joined_.reset();
      state_.reset();
      database_ = std::move(copy);
      join(running);
      take_step(*database_, require, NewLibrary());
    }
    meta_ = load_meta(*database_);
  });
}

}  // namespace veldra
