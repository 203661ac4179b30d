#ifndef VELDRA_TESTS_STORE_COPYING_FIXTURE_HPP
#define VELDRA_TESTS_STORE_COPYING_FIXTURE_HPP

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

/// The values of all objects of a library by kind and name. Ids are not in it, so that a library
/// and its copy have the same contents.
using Contents = std::map<std::string, std::string>;

template <class T>
std::vector<std::shared_ptr<T>> all_of(const veldra::Library& library) {
  std::vector<std::shared_ptr<T>> objects;
  library.get(objects);
  return objects;
}

template <class T>
std::string kind_of() {
  return kind_name(veldra::ObjectTraits<T>::type);
}

template <class T>
std::string title_of(const std::shared_ptr<T>& object) {
  return kind_of<T>() + " " + object->name().utf8();
}

inline std::string title_of(const std::shared_ptr<veldra::CustomProperty>& property) {
  return "CustomProperty for " + kind_name(property->object_type()) + " " + property->name().utf8();
}

template <class T>
void add_contents(Contents& contents, const veldra::Library& library) {
  for (const auto& object : all_of<T>(library)) contents[title_of(object)] = values_of(object);
}

inline Contents contents_of(const veldra::Library& library) {
  Contents contents;
  add_contents<veldra::Tag>(contents, library);
  add_contents<veldra::MaterialType>(contents, library);
  add_contents<veldra::Layer>(contents, library);
  add_contents<veldra::CustomProperty>(contents, library);
  add_contents<veldra::Material>(contents, library);
  add_contents<veldra::Composition>(contents, library);
  return contents;
}

template <class T>
veldra::ObjectKey key_of(const std::shared_ptr<T>& object) {
  return {veldra::ObjectTraits<T>::type, object->id()};
}

/// `library` is the destination. Both libraries are in millimetres, and their ids differ.
class CopyingTest : public LibraryTest {
 protected:
  CopyingTest() {
    shift_ids();
    reactor.calls.clear();
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
