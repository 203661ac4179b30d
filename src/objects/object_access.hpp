#ifndef VELDRA_OBJECTS_OBJECT_ACCESS_HPP
#define VELDRA_OBJECTS_OBJECT_ACCESS_HPP

#include <veldra/composition.hpp>

#include <memory>

namespace veldra {

/// The library's own way to what handles keep to themselves.
class ObjectAccess {
 public:
  /// A new object of defaults, clean; handle and reference count in one allocation.
  template <class T>
  static std::shared_ptr<T> make() {
    struct Made : T {};
    return std::make_shared<Made>();
  }

  /// A new object of that name, dirty.
  template <class T>
  static std::shared_ptr<T> make(const String& name) {
    std::shared_ptr<T> object = make<T>();
    object->impl().name = name;
    object->impl().dirty = true;
    return object;
  }

  template <class T>
  static auto& impl(T& object) noexcept {
    return object.impl();
  }

  template <class T>
  static auto& impl_pointer(T& object) noexcept {
    return object.impl_;
  }

  /// The pointer within a key of a map, for replacing the property by one of the same name: the
  /// order of the keys looks at nothing else.
  static std::shared_ptr<const CustomProperty>& property(const CustomPropertyKey& key) noexcept {
    return const_cast<CustomPropertyKey&>(key).property_;
  }
};

}  // namespace veldra

#endif
