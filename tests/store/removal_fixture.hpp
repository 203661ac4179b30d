#ifndef VELDRA_TESTS_STORE_REMOVAL_FIXTURE_HPP
#define VELDRA_TESTS_STORE_REMOVAL_FIXTURE_HPP

#include "support/library_test.hpp"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace veldra_tests {

using Removed = std::map<veldra::ObjectKey, bool>;

template <class T>
veldra::ObjectKey key_of(unsigned id) {
  return {veldra::ObjectTraits<T>::type, id};
}

template <class T>
veldra::ObjectKey key_of(const std::shared_ptr<T>& object) {
  return key_of<T>(object->id());
}

class RemovalTest : public LibraryTest {
 protected:
  void reopen_for_reading() {
    library.reset();
    library = veldra::Library::open(path.c_str(), true);
  }

  /// Forgets what the reactor wrote down so far.
  void listen() { reactor.calls.clear(); }

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
  std::shared_ptr<T> referenced(const std::string& name);

  /// Whether the handle and other connections can write.
  void expect_usable() {
    EXPECT_EQ(thrown_by([&] { stored<veldra::Tag>("written afterwards"); }), "");
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

template <>
inline std::shared_ptr<veldra::Tag> RemovalTest::referenced(const std::string& name) {
  const auto owner = named<veldra::Material>("owner of " + name);
  owner->addTag(named<veldra::Tag>(name));
  library->save(owner);
  return library->get<veldra::Tag>(name.c_str());
}

template <>
inline std::shared_ptr<veldra::MaterialType> RemovalTest::referenced(const std::string& name) {
  const auto owner = named<veldra::Material>("owner of " + name);
  owner->type(named<veldra::MaterialType>(name));
  library->save(owner);
  return library->get<veldra::MaterialType>(name.c_str());
}

template <>
inline std::shared_ptr<veldra::Layer> RemovalTest::referenced(const std::string& name) {
  const auto owner = named<veldra::Material>("owner of " + name);
  owner->cut_layer(named<veldra::Layer>(name));
  library->save(owner);
  return library->get<veldra::Layer>(name.c_str());
}

template <>
inline std::shared_ptr<veldra::CustomProperty> RemovalTest::referenced(const std::string& name) {
  const auto owner = named<veldra::Material>("owner of " + name);
  owner->custom_value(named<veldra::CustomProperty>(name), "value");
  library->save(owner);
  return library->get<veldra::CustomProperty>(name.c_str());
}

template <>
inline std::shared_ptr<veldra::Material> RemovalTest::referenced(const std::string& name) {
  const auto owner = named<veldra::Composition>("owner of " + name);
  owner->appendLayer({named<veldra::Material>(name), veldra::Material::Function::None, 10.0});
  library->save(owner);
  return library->get<veldra::Material>(name.c_str());
}

/// Nothing refers to compositions.
using ReferencedKinds = testing::Types<veldra::Tag, veldra::MaterialType, veldra::Layer,
                                       veldra::CustomProperty, veldra::Material>;

}  // namespace veldra_tests

#endif
