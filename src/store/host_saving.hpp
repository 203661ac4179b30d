// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_HOST_SAVING_HPP
#define VELDRA_STORE_HOST_SAVING_HPP

#include "store/library_impl.hpp"
#include "store/loading.hpp"
#include "store/transactions.hpp"

#include <memory>

namespace veldra {

/// How `Saver` saves for a host: what it returns is the host's to use, and what it changes in the
/// host's objects is undone unless all is committed.
class HostSaving {
 public:
  explicit HostSaving(Library& library) : library_(library) {}

  /// The object of this library with that id, which stands for `object` of another one. Null when
  /// it is gone.
  template <class T>
  std::shared_ptr<T> standing_for(const T&, unsigned id) {
    return load<T>(library_, id);
  }

  /// The object of another library of which a copy is saved.
  template <class T>
  std::shared_ptr<T> original(const std::shared_ptr<T>& object, const Library&) {
    return object;
  }

  /// Gets the values of the stored object with that id.
  template <class T>
  void become_stored(T& object, unsigned id) {
    logs_.front().remember_values(ObjectAccess::impl(object));
    LibraryAccess::database(library_).load(id, object);
    link(object, LibraryAccess::impl(library_).self);
  }

  template <class T>
  void note_stored(unsigned) {}

  // What changes in objects.

  template <class T>
  void remember(const std::shared_ptr<T>& object) {
    logs_.front().remember(object, ObjectAccess::impl(*object));
  }

  template <class Value>
  void set(Value& field, Value value) {
    logs_.front().set(field, std::move(value));
  }

  template <class List>
  void set_list(List& field, List list) {
    logs_.front().set_list(field, std::move(list));
  }

  void commit(WriteTransaction& transaction) { transaction.commit(logs_); }

 private:
  Library& library_;
  UndoLogs logs_{1};
};

}  // namespace veldra

#endif
