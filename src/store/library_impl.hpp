// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_LIBRARY_IMPL_HPP
#define VELDRA_STORE_LIBRARY_IMPL_HPP

#include "store/library_file.hpp"

#include <veldra/library.hpp>

#include <memory>
#include <set>

namespace veldra {

class Library::Impl {
 public:
  Impl(const String& filename, LibraryFile file);

  String filename;
  std::unique_ptr<Database> database;
  unsigned long long version;
  Meta meta;
  Reactor* reactor;
  std::weak_ptr<Library> self;  // what objects are linked to

  // The kinds that the running operation has changed so far, and how deep operations are nested.
  std::set<ObjectType> changed;
  unsigned operations = 0;
};

/// The way of the store's sources to the record of a library.
class LibraryAccess {
 public:
  using Impl = Library::Impl;

  static Impl& impl(Library& library) { return *library.impl_; }
  static const Impl& impl(const Library& library) { return *library.impl_; }

  /// Reading works on the connection too.
  static Database& database(const Library& library) { return *library.impl_->database; }

  static std::shared_ptr<Library> make(std::unique_ptr<Impl> impl);
};

}  // namespace veldra

#endif
