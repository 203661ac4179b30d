#ifndef VELDRA_TESTS_SUPPORT_LIBRARY_TEST_HPP
#define VELDRA_TESTS_SUPPORT_LIBRARY_TEST_HPP

#include "support/builders.hpp"
#include "support/database.hpp"
#include "support/description.hpp"
#include "support/names.hpp"
#include "support/recording_reactor.hpp"
#include "support/rows.hpp"
#include "support/temporary.hpp"
#include "support/thrown.hpp"

#include <memory>
#include <string>

namespace veldra_tests {

/// A new library in millimetres with a reactor that records, and the file beside it.
class LibraryTest : public ::testing::Test {
 protected:
  LibraryTest() : library(create("main.lib")) { library->setReactor(&reactor); }

  std::shared_ptr<veldra::Library> create(const std::string& name,
                                          veldra::Unit unit = veldra::Unit::Millimetres) const {
    return veldra::Library::create((folder / name).c_str(), unit, "");
  }

  /// Closes the library and opens its file again.
  void reopen() {
    library.reset();
    library = veldra::Library::open(path.c_str(), false);
    library->setReactor(&reactor);
  }

  std::string rows() const { return dump(path); }

  TemporaryFolder folder;
  const std::string path = folder / "main.lib";
  RecordingReactor reactor;
  std::shared_ptr<veldra::Library> library;
};

/// The six kinds of objects that are read and saved, for typed tests.
using AllKinds = ::testing::Types<veldra::Tag, veldra::MaterialType, veldra::Layer,
                                  veldra::CustomProperty, veldra::Material, veldra::Composition>;

struct KindNames {
  template <class T>
  static std::string GetName(int) {
    return kind_name(veldra::ObjectTraits<T>::type);
  }
};

/// The table of a kind.
template <class T>
std::string table_of() {
  return kind_name(veldra::ObjectTraits<T>::type);
}

/// Inserts a row of the kind with plain SQL; `name` is an SQL expression.
template <class T>
void put_named(PlainDatabase& database, const std::string& id, const std::string& name) {
  const Columns columns = {{"id", id}, {"name", name}};
  switch (veldra::ObjectTraits<T>::type) {
    case veldra::ObjectType::Material:
      return put_material(database, columns);
    case veldra::ObjectType::Composition:
      return put_composition(database, columns);
    case veldra::ObjectType::CustomProperty:
      return put_row(database, "CustomProperty",
                     {{"id", id}, {"name", name}, {"object_type", "4"}});
    default:
      return put_row(database, table_of<T>(), columns);
  }
}

}  // namespace veldra_tests

#endif
