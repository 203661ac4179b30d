#ifndef VELDRA_STORE_OBJECT_CACHE_HPP
#define VELDRA_STORE_OBJECT_CACHE_HPP

#include "objects/copies.hpp"

#include <veldra/id_mapping.hpp>

#include <memory>
#include <tuple>
#include <unordered_map>

namespace veldra {

/// The objects that others refer to, as far as the reading of a list has met them, by id.
class ObjectCache {
 public:
  /// For a list of objects of the kind `listed`, which themselves are not kept. What several of
  /// them refer to is given to each as an object of its own.
  explicit ObjectCache(ObjectType listed) : listed_(listed) {}

  /// For a list that is read for copying and changed by nobody: objects are shared, and a material
  /// of `source` that is in the mapping already is not read at all; its id is enough.
  ObjectCache(ObjectType listed, const Library& source, const IdMapping& copied)
      : listed_(listed), source_(&source), copied_(&copied) {}

  /// The object with that id, or a replica of it; null when it was not met yet.
  template <class T>
  std::shared_ptr<T> find(unsigned id) {
    auto& objects = std::get<Objects<T>>(objects_);
    const auto entry = objects.find(id);
    if (entry == objects.end()) return copied_object(id, static_cast<T*>(nullptr));
    Entry<T>& known = entry->second;
    const bool give = copied_ != nullptr || known.offered;
    known.offered = false;
    return give ? known.object : replica(*known.object);
  }

  /// Keeps an object that was loaded whole. Whoever holds it does not change it during the reading.
  template <class T>
  void insert(const std::shared_ptr<T>& object) {
    if (ObjectTraits<T>::type == listed_) return;
    std::get<Objects<T>>(objects_).emplace(object->id(), Entry<T>{object, false});
  }

  /// The first who asks for this material, if it is here, may have it itself.
  void offer(unsigned id) {
    auto& objects = std::get<Objects<Material>>(objects_);
    const auto entry = objects.find(id);
    if (entry != objects.end()) entry->second.offered = true;
  }

 private:
  template <class T>
  struct Entry {
    std::shared_ptr<T> object;
    bool offered;
  };

  template <class T>
  using Objects = std::unordered_map<unsigned, Entry<T>>;

  template <class T>
  std::shared_ptr<T> copied_object(unsigned, T*) const {
    return nullptr;
  }

  std::shared_ptr<Material> copied_object(unsigned id, Material*) const;

  ObjectType listed_;
  const Library* source_ = nullptr;
  const IdMapping* copied_ = nullptr;
  std::tuple<Objects<Tag>, Objects<Layer>, Objects<MaterialType>, Objects<CustomProperty>,
             Objects<Asset>, Objects<Material>>
      objects_;
};

}  // namespace veldra

#endif
