// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/page_copy.hpp"

#include "store/transactions.hpp"

#include <odb/sqlite/error.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <sqlite3.h>

#include <new>

namespace veldra {

namespace {

constexpr int pages_in_a_step = 256;

class PageCopy {
 public:
  PageCopy(Database& from, Database& to)
      : to_(to), copy_(sqlite3_backup_init(to.handle(), "main", from.handle(), "main")) {
    if (copy_ == nullptr) fail(sqlite3_errcode(to.handle()));
  }
  PageCopy(const PageCopy&) = delete;
  PageCopy& operator=(const PageCopy&) = delete;
  ~PageCopy() { finish(); }

  /// Returns whether there is more to copy.
  bool step() {
    const int result = sqlite3_backup_step(copy_, pages_in_a_step);
    if (result == SQLITE_OK) return true;
    // Only then the connection has the words for what is wrong.
    const int outcome = finish();
    if (result != SQLITE_DONE) fail(result);
    if (outcome != SQLITE_OK) fail(outcome);
    return false;
  }

 private:
  int finish() {
    sqlite3_backup* const ending = copy_;
    copy_ = nullptr;
    return sqlite3_backup_finish(ending);
  }

  [[noreturn]] void fail(int result) {
    odb::sqlite::translate_error(result, to_.only_connection());
    throw std::bad_alloc();  // never reached
  }

  Database& to_;
  sqlite3_backup* copy_;
};

}  // namespace

void copy_pages(Database& from, Database& to, Database& running) {
  end_what_is_left(to);
  try {
    PageCopy copy(from, to);
    do {
      running.stop_if_interrupted();
    } while (copy.step());
  } catch (const odb::sqlite::database_exception& error) {
    if (!is_of_a_lock_given_back(error)) throw;
  }
}

}  // namespace veldra
