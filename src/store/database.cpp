// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/database.hpp"

#include <veldra/exceptions.hpp>

#include <odb/sqlite/exceptions.hxx>
#include <odb/sqlite/transaction.hxx>

#include <sqlite3.h>

#include <algorithm>
#include <memory>

namespace veldra {

namespace {

constexpr auto longest_wait = std::chrono::seconds(5);

/// Hands out one connection again and again, so that a name in memory means one database and
/// prepared statements are kept.
class OneConnection : public odb::sqlite::connection_factory {
 public:
  odb::sqlite::connection_ptr connect() override { return connection_; }

  void database(database_type& database) override {
    connection_.reset(new (odb::details::shared) odb::sqlite::connection(database));
  }

 private:
  odb::sqlite::connection_ptr connection_;
};

/// Some builds of SQLite take a path that starts with "file:" for an address.
std::string plain_path(const std::string& path) {
  return path.compare(0, 5, "file:") == 0 ? "./" + path : path;
}

}  // namespace

FileName parse_file_name(const std::string& name) {
  const std::string separator = "://";
  const auto at = name.find(separator);
  const bool has_vfs = at != std::string::npos;
  FileName file{has_vfs ? name.substr(0, at) : "",
                plain_path(has_vfs ? name.substr(at + separator.size()) : name)};
  if (!file.path.empty()) return file;
  throw odb::sqlite::database_exception(SQLITE_CANTOPEN, SQLITE_CANTOPEN,
                                        "the name of the file is empty");
}

// A shared cache would make two handles on one file wait for each other for ever.
Database::Database(const FileName& file, int flags)
    : odb::sqlite::database(file.path, flags | SQLITE_OPEN_PRIVATECACHE, true, file.vfs,
                            std::unique_ptr<odb::sqlite::connection_factory>(new OneConnection)),
      handle_(only_connection().handle()) {
  sqlite3_busy_handler(handle_, wait_for_others, this);
}

odb::sqlite::connection& Database::only_connection() { return *connection(); }

bool Database::is_current() {
  return odb::transaction::has_current() &&
         odb::sqlite::transaction::current().connection().handle() == handle_;
}

/// SQLite's own handler cannot be interrupted.
int Database::wait_for_others(void* database, int attempt) noexcept {
  auto& self = *static_cast<Database*>(database);
  const auto now = std::chrono::steady_clock::now();
  if (attempt == 0) self.waiting_since_ = now;
  if (self.interrupted_ || now - self.waiting_since_ >= longest_wait) return 0;
  sqlite3_sleep(std::min(1 + 2 * attempt, 50));
  return 1;
}

void Database::interrupt() noexcept {
  if (operations_ != 0) stop_what_runs();
}

void Database::stop_what_runs() noexcept {
  interrupted_ = true;
  ++interrupting_;
  Database* const joined = joined_;
  if (joined != nullptr) joined->stop_what_runs();
  --interrupting_;
  // A statement that writes and is interrupted would end the whole transaction, that of the host
  // included. It is short, and what comes after it asks.
  if (!transactions_.is_writing()) sqlite3_interrupt(handle_);
}

void Database::stop_if_interrupted() {
  if (take_interruption()) throw Interrupted();
}

bool Database::take_interruption() noexcept { return interrupted_ && interrupted_.exchange(false); }

}  // namespace veldra
