#ifndef VELDRA_OBJECTS_OBJECT_ACCESS_HPP
#define VELDRA_OBJECTS_OBJECT_ACCESS_HPP

#include <veldra/composition.hpp>

#include <memory>

namespace veldra {

/// The library's own way to what handles keep to themselves.
class ObjectAccess {
 public:
  /// A new object of defaults, clean. Handle, record and reference count are one allocation: lists
  /// make objects by the ten thousand.
  template <class T>
  static std::shared_ptr<T> make() {
    using Impl = typename T::Impl;
    struct Made : T {
      Made() : T(static_cast<Impl*>(nullptr)), lent{this->impl_} { this->impl_.reset(&record); }
      Impl record;
      Lent<decltype(T::impl_)> lent;
    };
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

  /// The pointer within a key of a map, for replacing the property by one of the same name: the
  /// order of the keys looks at nothing else.
  static std::shared_ptr<const CustomProperty>& property(const CustomPropertyKey& key) noexcept {
    return const_cast<CustomPropertyKey&>(key).property_;
  }

 private:
  /// Takes the record out of the hands of the handle before both go with their block.
  template <class Pointer>
  struct Lent {
    Pointer& owner;
    ~Lent() { static_cast<void>(owner.release()); }
  };
};

}  // namespace veldra

#endif
