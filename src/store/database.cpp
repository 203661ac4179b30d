#include "store/database.hpp"

#include <sqlite3.h>

#include <memory>

namespace veldra {

namespace {

const int busy_milliseconds = 5000;

/// Hands out one connection again and again, so that a name in memory means one database and
/// prepared statements are kept.
class OneConnection : public odb::sqlite::connection_factory {
 public:
  odb::sqlite::connection_ptr connect() override { return connection_; }

  void database(database_type& database) override {
    connection_.reset(new (odb::details::shared) odb::sqlite::connection(database));
    sqlite3_busy_timeout(connection_->handle(), busy_milliseconds);
  }

 private:
  odb::sqlite::connection_ptr connection_;
};

struct FileName {
  std::string vfs;
  std::string path;
};

/// Some builds of SQLite take a path that starts with "file:" for an address.
std::string plain_path(const std::string& path) {
  return path.compare(0, 5, "file:") == 0 ? "./" + path : path;
}

FileName parse(const std::string& name) {
  const std::string separator = "://";
  const auto at = name.find(separator);
  if (at == std::string::npos) return {"", plain_path(name)};
  return {name.substr(0, at), plain_path(name.substr(at + separator.size()))};
}

}  // namespace

// A shared cache would make two handles on one file wait for each other for ever.
Database::Database(const std::string& name, int flags)
    : odb::sqlite::database(parse(name).path, flags | SQLITE_OPEN_PRIVATECACHE, true,
                            parse(name).vfs,
                            std::unique_ptr<odb::sqlite::connection_factory>(new OneConnection)) {}

odb::sqlite::connection& Database::connection_in_use() { return *connection(); }

}  // namespace veldra
