// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_LIBRARY_TEST_HPP
#define VELDRA_TESTS_SUPPORT_LIBRARY_TEST_HPP

#include "support/builders.hpp"
#include "support/contents.hpp"
#include "support/description.hpp"
#include "support/library_fixture.hpp"
#include "support/recording_reactor.hpp"
#include "support/rows.hpp"
#include "support/thrown.hpp"

#include <memory>
#include <string>

namespace veldra_tests {

/// A new library in millimetres with a reactor that records, and the file beside it.
class LibraryTest : public LibraryFixture {
 protected:
  LibraryTest() : library(create()) { library->setReactor(&reactor); }

  /// Closes the library and opens its file again.
  void reopen() {
    library.reset();
    library = open();
    library->setReactor(&reactor);
  }

  RecordingReactor reactor;
  std::shared_ptr<Library> library;
};

/// The six kinds of objects that are read and saved, for typed tests.
using AllKinds = Types<Tag, MaterialType, Layer, CustomProperty, Material, Composition>;

struct KindNames {
  template <class T>
  static std::string GetName(int) {
    return kind_of<T>();
  }
};

/// Inserts a row of the kind with plain SQL; `name` is an SQL expression.
template <class T>
void put_named(PlainDatabase& database, const std::string& id, const std::string& name) {
  const Columns columns = {{"id", id}, {"name", name}};
  switch (ObjectTraits<T>::type) {
    case ObjectType::Material:
      return put_material(database, columns);
    case ObjectType::Composition:
      return put_composition(database, columns);
    case ObjectType::CustomProperty:
      return put_row(database, "CustomProperty",
                     {{"id", id}, {"name", name}, {"object_type", "4"}});
    default:
      return put_row(database, kind_of<T>(), columns);
  }
}

}  // namespace veldra_tests

#endif
