// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_COPYING_FIXTURE_HPP
#define VELDRA_TESTS_STORE_COPYING_FIXTURE_HPP

#include "support/contents.hpp"
#include "support/file_state.hpp"
#include "support/library_test.hpp"

#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace veldra {

/// What a failed expectation shows of an entry of a mapping.
inline void PrintTo(const IdMapping::Value& value, std::ostream* out) {
  *out << "id " << value.id << ", status " << static_cast<int>(value.status);
}

}  // namespace veldra

namespace veldra_tests {

using Keys = std::set<veldra::ObjectKey>;
using Ids = std::set<unsigned>;

/// `library` is the destination. Both libraries are in millimetres, and their ids differ.
class CopyingTest : public LibraryTest {
 protected:
  CopyingTest() {
    shift_ids();
    reactor.forget();
  }

  /// Gives all further objects of the destination other ids than those of the source.
  void shift_ids() {
    PlainDatabase database(path);
    for (const char* table :
         {"Tag", "CustomProperty", "Layer", "MaterialType", "Material", "Composition"}) {
      database.execute("DELETE FROM sqlite_sequence WHERE name='" + std::string(table) +
                       "'; INSERT INTO sqlite_sequence VALUES ('" + table + "', 100)");
    }
  }

  std::string source_path() const { return folder / "source.lib"; }

  /// Stores the object in the source.
  template <class T>
  std::shared_ptr<T> put(const std::shared_ptr<T>& object) {
    return source->save(object);
  }

  template <class T>
  veldra::IdMapping::Key source_key(const std::shared_ptr<T>& object) const {
    return {key_of(object), source.get()};
  }

  /// The entry of an object of the source; id 0 when it has none.
  template <class T>
  veldra::IdMapping::Value entry_of(const veldra::IdMapping& mapping,
                                    const std::shared_ptr<T>& object) const {
    veldra::IdMapping::Value value;
    mapping.compute(source_key(object), value);
    return value;
  }

  /// The object of the destination that stands for one of the source.
  template <class T>
  std::shared_ptr<T> twin_of(const veldra::IdMapping& mapping,
                             const std::shared_ptr<T>& object) const {
    return library->get<T>(entry_of(mapping, object).id);
  }

  /// Names the tests use for a fresh mapping into the destination.
  veldra::IdMapping fresh_mapping() const { return veldra::IdMapping(library.get()); }

  std::shared_ptr<veldra::Library> source = create("source.lib");
};

}  // namespace veldra_tests

#endif
