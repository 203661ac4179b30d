// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/errors.hpp"
#include "store/file_check.hpp"
#include "store/library_impl.hpp"
#include "store/mapping-odb.hpp"
#include "store/recognition.hpp"
#include "store/running_operation.hpp"
#include "store/transactions.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <iterator>

namespace veldra {

namespace {

class DefaultReactor : public Library::Reactor {};

Library::Reactor& default_reactor() {
  static DefaultReactor reactor;
  return reactor;
}

std::shared_ptr<Library> library_in(const String& filename, LibraryFile file) {
  return LibraryAccess::make(
      std::unique_ptr<LibraryAccess::Impl>(new LibraryAccess::Impl(filename, std::move(file))));
}

FileAccess access_of(bool read_only) {
  return read_only ? FileAccess::ReadOnly : FileAccess::ReadWrite;
}

}  // namespace

Library::Reactor::~Reactor() = default;
int Library::Reactor::resolveNameConflict(Library&, ObjectType, String&) {
  throw ObjectNotUnique();
}
void Library::Reactor::objectSaved(Library&, const ObjectKey&) {}
int Library::Reactor::mayRemove(Library&, const ObjectKey&) { return 0; }
void Library::Reactor::objectRemoved(Library&, const ObjectKey&) {}
void Library::Reactor::libraryChanged(Library&) {}
void Library::Reactor::typeChanged(Library&, ObjectType) {}
void Library::Reactor::reserved() {}

Library::Impl::Impl(const String& name, LibraryFile file)
    : filename(name),
      database(std::move(file.database)),
      version(file.version),
      meta(std::move(file.meta)),
      reactor(&default_reactor()) {}

std::shared_ptr<Library> LibraryAccess::make(std::unique_ptr<Impl> impl) {
  std::shared_ptr<Library> library(new Library(std::move(impl)));
  library->impl_->self = library;
  return library;
}

Library::Library(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Library::~Library() = default;

std::shared_ptr<Library> Library::create(const String& filename, Unit unit, const String& guid) {
  return library_in(filename, open_library_file(filename, FileAccess::Create, {unit, guid}));
}

std::shared_ptr<Library> Library::open(const String& filename, bool readOnly) {
  return library_in(filename, open_library_file(filename, access_of(readOnly), NewLibrary()));
}

std::shared_ptr<Library> Library::openExisting(const String& filename, bool readOnly) {
  return library_in(filename, open_existing_file(filename, access_of(readOnly)));
}

Library::Recognition Library::recognise(const String& filename) { return recognise_file(filename); }

const String& Library::filename() const noexcept { return impl_->filename; }
const String& Library::guid() const noexcept { return impl_->meta.guid; }
Unit Library::unit() const noexcept { return impl_->meta.unit; }
const String& Library::locale() const noexcept { return impl_->meta.locale; }
const String& Library::region() const noexcept { return impl_->meta.region; }
unsigned long long Library::version() const noexcept { return impl_->version; }

namespace {

// Deliberate: a failed write leaves the new value in the handle and the old one in the file.
void change_metadata(Database& database, Meta& meta, String& field, const String& value) {
  field = value;
  interruptibly(database, [&] {
    translating_errors([&] {
      WriteTransaction transaction(database);
      // Another handle may have restored another library since this one was opened.
      Meta stored;
      database.load(meta.id, stored);
      stored.locale = meta.locale;
      stored.region = meta.region;
      database.update(stored);
      transaction.commit();
    });
  });
}

}  // namespace

void Library::locale(const String& locale) {
  change_metadata(*impl_->database, impl_->meta, impl_->meta.locale, locale);
}

void Library::region(const String& region) {
  change_metadata(*impl_->database, impl_->meta, impl_->meta.region, region);
}

bool Library::readOnly() const {
  return sqlite3_db_readonly(impl_->database->handle(), nullptr) == 1;
}

void Library::check(std::vector<Finding>& findings) const {
  auto found = interruptibly(*impl_->database, [&] { return check_file(*impl_->database); });
  findings.reserve(findings.size() + found.size());
  std::move(found.begin(), found.end(), std::back_inserter(findings));
}

void Library::check(std::vector<String>& findings) const {
  std::vector<Finding> found;
  check(found);
  std::vector<String> sentences;
  std::transform(found.begin(), found.end(), std::back_inserter(sentences), told);
  findings.reserve(findings.size() + sentences.size());
  std::move(sentences.begin(), sentences.end(), std::back_inserter(findings));
}

void Library::interrupt() noexcept { impl_->database->interrupt(); }

void Library::setReactor(Reactor* reactor) {
  impl_->reactor = reactor == nullptr ? &default_reactor() : reactor;
}

}  // namespace veldra
