// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/errors.hpp"
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/new_file.hpp"
#include "store/page_copy.hpp"
#include "store/reported_operation.hpp"
#include "store/transactions.hpp"

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
      copy_pages(database, copy, database);
    }
    file.keep();
  });
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
    LibraryState source(filename);
    if (!otherLibrary && source.meta().guid != impl_->meta.guid) throw OtherLibrary(filename);
    copy_pages(source.database(), database, database);
    impl_->meta = std::move(source.meta());
    impl_->changed.swap(kinds);
  });
}

}  // namespace veldra
