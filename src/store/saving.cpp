#include "store/kinds.hpp"
#include "store/notifications.hpp"
#include "store/running_operation.hpp"
#include "store/save_operation.hpp"

// The saving operations of a library, and of its objects.

namespace veldra {

template <class T>
std::shared_ptr<T> Library::save(const std::shared_ptr<T>& object) {
  IdMapping mapping(this);
  return save(object, mapping);
}

template <class T>
std::shared_ptr<T> Library::save(const std::shared_ptr<T>& object, IdMapping& mapping) {
  return interruptibly(*this, [&] {
    Notifications notifications(*this);
    std::shared_ptr<T> saved;
    {
      SaveOperation operation(*this, mapping, SaveOperation::Results::Wanted);
      saved = operation.save(object);
      operation.commit();
    }
    notifications.deliver();
    return saved;
  });
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
