// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_REMOVAL_FIXTURE_HPP
#define VELDRA_TESTS_STORE_REMOVAL_FIXTURE_HPP

#include "support/contents.hpp"
#include "support/library_test.hpp"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace veldra_tests {

using Removed = std::map<ObjectKey, bool>;

// Have `owner` refer to an object.

inline void refer(Material& owner, const std::shared_ptr<Tag>& tag) { owner.addTag(tag); }
inline void refer(Material& owner, const std::shared_ptr<MaterialType>& type) { owner.type(type); }
inline void refer(Material& owner, const std::shared_ptr<Layer>& layer) { owner.cut_layer(layer); }

inline void refer(Material& owner, const std::shared_ptr<CustomProperty>& property) {
  owner.custom_value(property, "value");
}

inline void refer(Composition& owner, const std::shared_ptr<Material>& material) {
  owner.appendLayer({material, Material::Function::None, 10.0});
}

/// The kind of the objects that refer to those of the kind.
template <class T>
struct OwnerOf {
  using type = Material;
};

template <>
struct OwnerOf<Material> {
  using type = Composition;
};

class RemovalTest : public LibraryTest {
 protected:
  void reopen_for_reading() {
    library.reset();
    library = Library::open(path.c_str(), true);
  }

  /// Forgets what the reactor wrote down so far.
  void listen() { reactor.forget(); }

  /// How many rows a table has, as plain SQLite sees it.
  std::string rows_in(const std::string& table) const {
    return PlainDatabase(path).value("SELECT count(*) FROM \"" + table + "\"");
  }

  /// A stored object that nothing refers to.
  template <class T>
  std::shared_ptr<T> stored(const std::string& name) {
    const auto object = named<T>(name);
    library->save(object);
    return object;
  }

  /// A stored object that another one refers to.
  template <class T>
  std::shared_ptr<T> referenced(const std::string& name) {
    const auto owner = named<typename OwnerOf<T>::type>("owner of " + name);
    refer(*owner, named<T>(name));
    library->save(owner);
    return library->get<T>(name.c_str());
  }

  /// Whether the handle and other connections can write.
  void expect_usable() {
    EXPECT_EQ(thrown_by([&] { stored<Tag>("written afterwards"); }), "");
    EXPECT_EQ(thrown_by([&] { PlainDatabase(path).execute("UPDATE \"Meta\" SET \"id\"=\"id\""); }),
              "");
    EXPECT_EQ(damage(path), "");
  }

  /// Makes SQLite fail with `statement` whenever a row of the table is deleted.
  void on_delete_from(const std::string& table, const std::string& statement) {
    PlainDatabase(path).execute("CREATE TRIGGER \"broken\" BEFORE DELETE ON \"" + table +
                                "\" BEGIN " + statement + "; END");
  }

  void mend() { PlainDatabase(path).execute("DROP TRIGGER \"broken\""); }
};

/// A failure that is no violated constraint.
constexpr const char* kOverflow = "SELECT abs(-9223372036854775807 - 1)";

/// Nothing refers to compositions.
using ReferencedKinds = Types<Tag, MaterialType, Layer, CustomProperty, Material>;

}  // namespace veldra_tests

#endif
