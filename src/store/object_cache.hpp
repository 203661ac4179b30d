#ifndef VELDRA_STORE_OBJECT_CACHE_HPP
#define VELDRA_STORE_OBJECT_CACHE_HPP

#include "store/replica.hpp"

#include <memory>
#include <tuple>
#include <unordered_map>

namespace veldra {

/// The objects that others refer to, as far as a list read has met them, by id.
class ObjectCache {
 public:
  /// For a list of objects of the kind `listed`, which themselves are not kept.
  explicit ObjectCache(ObjectType listed) : listed_(listed) {}

  /// A copy of the object with that id; null when it was not met yet.
  template <class T>
  std::shared_ptr<T> find(unsigned id) const {
    const auto& objects = std::get<Objects<T>>(objects_);
    const auto entry = objects.find(id);
    return entry == objects.end() ? nullptr : replica(*entry->second);
  }

  /// Keeps an object that was loaded whole. Whoever holds it does not change it during the read.
  template <class T>
  void insert(const std::shared_ptr<T>& object) {
    if (ObjectTraits<T>::type == listed_) return;
    std::get<Objects<T>>(objects_).emplace(object->id(), object);
  }

 private:
  ObjectType listed_;

  template <class T>
  using Objects = std::unordered_map<unsigned, std::shared_ptr<const T>>;

  std::tuple<Objects<Tag>, Objects<Layer>, Objects<MaterialType>, Objects<CustomProperty>,
             Objects<Asset>, Objects<Material>>
      objects_;
};

}  // namespace veldra

#endif
