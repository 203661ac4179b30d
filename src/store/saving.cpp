// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/host_saving.hpp"
#include "store/kinds.hpp"
#include "store/reported_operation.hpp"
#include "store/saver.hpp"

// The saving operations of a library, and of its objects.

namespace veldra {

namespace {

/// Nothing is written of an object that is clean and no other library's: it needs no lock for
/// writing, and may be saved where nothing else may.
template <class T>
bool is_saved(const std::shared_ptr<T>& object, const Library& library) {
  if (object == nullptr) return true;
  const auto source = object->library();
  return !object->isDirty() && (source == nullptr || source.get() == &library);
}

template <class T>
std::shared_ptr<T> saved_already(const std::shared_ptr<T>& object, Library& library,
                                 IdMapping& mapping) {
  HeldTransaction* const held = LibraryAccess::database(library).transactions().held();
  if (held != nullptr) held->running();  // throws when it has ended
  if (object != nullptr) {
    const ObjectKey key(ObjectTraits<T>::type, object->id());
    mapping.assign({key, object->library().get()}, {key.id, IdMapping::Existing});
  }
  return object;
}

}  // namespace

template <class T>
std::shared_ptr<T> Library::save(const std::shared_ptr<T>& object) {
  IdMapping mapping(this);
  return save(object, mapping);
}

template <class T>
std::shared_ptr<T> Library::save(const std::shared_ptr<T>& object, IdMapping& mapping) {
  if (is_saved(object, *this)) return saved_already(object, *this, mapping);
  std::shared_ptr<T> saved;
  run_operation(*this, [&] {
    Saver<HostSaving> saver(*this, mapping);
    saved = saver.save(object);
    saver.commit();
  });
  return saved;
}

template <class T>
std::shared_ptr<T> Saveable<T>::save(const std::shared_ptr<Library>& library) {
  if (library == nullptr) return nullptr;
  return library->save(static_cast<T&>(*this).shared_from_this());
}

template <class T>
bool Saveable<T>::save() {
  return save(static_cast<T&>(*this).library()) != nullptr;
}

#define VELDRA_INSTANTIATE(T)                                                            \
  template VELDRA_EXPORT std::shared_ptr<T> Library::save<T>(const std::shared_ptr<T>&); \
  template VELDRA_EXPORT std::shared_ptr<T> Library::save<T>(const std::shared_ptr<T>&,  \
                                                             IdMapping&);                \
  template class Saveable<T>;

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
