#ifndef VELDRA_STORE_DATABASE_HPP
#define VELDRA_STORE_DATABASE_HPP

#include <odb/sqlite/connection-factory.hxx>
#include <odb/sqlite/connection.hxx>
#include <odb/sqlite/database.hxx>
#include <odb/sqlite/transaction.hxx>

#include <string>

namespace veldra {

class HeldTransaction;
class ObjectCache;

/// The database of an open library file, with one connection that lives as long as it does.
class Database : public odb::sqlite::database {
 public:
  /// `name` is a path, or the name of an SQLite VFS, "://" and a path. `flags` are those of
  /// `sqlite3_open_v2`. Throws `odb::sqlite::database_exception`.
  Database(const std::string& name, int flags);

  odb::sqlite::connection& connection_in_use();

  /// The transaction that is writing; null while none is.
  odb::sqlite::transaction* writing = nullptr;

  /// The transaction that the host holds over several operations; null while there is none.
  HeldTransaction* held = nullptr;

  /// What list reads fetched already; null while none is running.
  ObjectCache* cache = nullptr;
};

}  // namespace veldra

#endif
