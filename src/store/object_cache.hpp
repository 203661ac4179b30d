// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_OBJECT_CACHE_HPP
#define VELDRA_STORE_OBJECT_CACHE_HPP

#include "objects/copies.hpp"
#include "store/of_kind.hpp"

#include <veldra/id_mapping.hpp>

#include <memory>
#include <tuple>
#include <unordered_map>

namespace veldra {

/// The objects that the reading of a list has met, by kind and id: what others refer to, whole.
/// Those of the kind that is listed are not kept.
template <template <class> class Entry>
class MetObjects {
 public:
  explicit MetObjects(ObjectType listed) : listed_(listed) {}

  /// What is known of an object; null when it was not met yet.
  template <class T>
  Entry<T>* find(unsigned id) {
    auto& objects = std::get<Objects<T>>(objects_);
    const auto entry = objects.find(id);
    return entry == objects.end() ? nullptr : &entry->second;
  }

  template <class T>
  void insert(const std::shared_ptr<T>& object) {
    if (ObjectTraits<T>::type == listed_) return;
    std::get<Objects<T>>(objects_).emplace(object->id(), Entry<T>{object});
  }

 private:
  template <class T>
  using Objects = std::unordered_map<unsigned, Entry<T>>;

  ObjectType listed_;
  std::tuple<Objects<Tag>, Objects<Layer>, Objects<MaterialType>, Objects<CustomProperty>,
             Objects<Asset>, Objects<Material>>
      objects_;
};

/// For a list that is given to the host: what several of its objects refer to is given to each as
/// an object of its own, a replica of what was loaded once.
class ReplicaCache {
 public:
  explicit ReplicaCache(ObjectType listed) : objects_(listed) {}

  /// A replica of the object with that id, or itself if it was offered; null when it was not met.
  template <class T>
  std::shared_ptr<T> find(unsigned id) {
    Entry<T>* const known = objects_.find<T>(id);
    if (known == nullptr) return nullptr;
    if (!known->offered) return replica(*known->object);
    known->offered = false;
    return known->object;
  }

  /// Whoever holds the object does not change it during the reading.
  template <class T>
  void insert(const std::shared_ptr<T>& object) {
    objects_.insert(object);
  }

  /// The first who asks for this material may have it itself: nobody else does.
  void offer(unsigned id) {
    Entry<Material>* const known = objects_.find<Material>(id);
    if (known != nullptr) known->offered = true;
  }

 private:
  template <class T>
  struct Entry {
    std::shared_ptr<T> object;
    bool offered = false;

    explicit Entry(const std::shared_ptr<T>& met) : object(met) {}
  };

  MetObjects<Entry> objects_;
};

/// For a list that is read for copying and changed by nobody: objects are shared, and a material of
/// `source` that is in the mapping already is not read at all. A stub with its id is enough.
class SharingCache {
 public:
  SharingCache(ObjectType listed, const Library& source, const IdMapping& copied)
      : objects_(listed), source_(source), copied_(copied) {}

  template <class T>
  std::shared_ptr<T> find(unsigned id) {
    const std::shared_ptr<T>* const known = objects_.find<T>(id);
    return known == nullptr ? stub(OfKind<T>(), id) : *known;
  }

  template <class T>
  void insert(const std::shared_ptr<T>& object) {
    objects_.insert(object);
  }

  /// Everybody has it itself anyway.
  void offer(unsigned) {}

 private:
  template <class T>
  std::shared_ptr<T> stub(OfKind<T>, unsigned) const {
    return nullptr;
  }

  std::shared_ptr<Material> stub(OfKind<Material>, unsigned id) const;

  MetObjects<std::shared_ptr> objects_;
  const Library& source_;
  const IdMapping& copied_;
};

}  // namespace veldra

#endif
