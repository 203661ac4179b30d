// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_COPY_SAVING_HPP
#define VELDRA_STORE_COPY_SAVING_HPP

#include "store/library_impl.hpp"
#include "store/loading.hpp"
#include "store/transactions.hpp"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace veldra {

/// How `Saver` saves within a copy: only the rows matter. Nobody ever has the objects, so that
/// nothing is undone in them, and those that stand for others have their id and name only.
class CopySaving {
 public:
  explicit CopySaving(Library& library) : library_(library) {}

  /// An object for the one of this library with that id, which stands for `object` of another one.
  /// Null when it is gone.
  template <class T>
  std::shared_ptr<T> standing_for(const T& object, unsigned id) {
    if (!is_there<T>(id)) return nullptr;
    const auto copy = ObjectAccess::make<T>();
    auto& record = ObjectAccess::impl(*copy);
    record.id = id;
    record.name = object.name();
    return copy;
  }

  /// The values of an owner are kept by the name of their property, which may be another one here.
  std::shared_ptr<CustomProperty> standing_for(const CustomProperty&, unsigned id) {
    std::shared_ptr<CustomProperty>& property = properties_[id];
    if (property == nullptr) property = load<CustomProperty>(library_, id);
    return property;
  }

  /// The object of another library of which a copy is saved. A stub comes here when the reactor has
  /// removed the entry of the mapping for which it was made, and is read now.
  template <class T>
  std::shared_ptr<T> original(const std::shared_ptr<T>& object, const Library& source) {
    if (!ObjectAccess::impl(*object).is_stub) return object;
    ReadTransaction transaction(LibraryAccess::database(source));
    const auto read = load<T>(source, object->id());
    if (read == nullptr) throw ObjectNotFound();
    return read;
  }

  /// Gets nothing of the stored object but the id, which the saver sets.
  template <class T>
  void become_stored(T&, unsigned) {}

  template <class T>
  void note_stored(unsigned id) {
    known_.insert(key<T>(id));
  }

  // What changes in objects.

  template <class T>
  void remember(const std::shared_ptr<T>&) {}

  template <class Value>
  void set(Value& field, Value value) {
    field = std::move(value);
  }

  template <class List>
  void set_list(List& field, List list) {
    field = std::move(list);
  }

  void commit(WriteTransaction& transaction) { transaction.commit(); }

 private:
  template <class T>
  static std::uint64_t key(unsigned id) {
    return static_cast<std::uint64_t>(ObjectTraits<T>::type) << 32 | id;
  }

  /// An entry of a mapping that the caller kept may name an object that is gone by now.
  template <class T>
  bool is_there(unsigned id) {
    if (known_.count(key<T>(id)) != 0) return true;
    if (load<T>(library_, id) == nullptr) return false;
    note_stored<T>(id);
    return true;
  }

  Library& library_;
  std::unordered_set<std::uint64_t> known_;  // objects that are known to be stored
  std::unordered_map<unsigned, std::shared_ptr<CustomProperty>> properties_;  // of this library
};

}  // namespace veldra

#endif
