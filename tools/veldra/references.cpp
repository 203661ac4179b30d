// SPDX-License-Identifier: GPL-2.0-or-later
#include "references.hpp"

#include "lookup.hpp"
#include "progress.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

using veldra::ObjectKey;
using veldra::ObjectType;

class Collector {
 public:
  explicit Collector(References& references) : references_(references) {}

  void add(const veldra::Material& material) {
    const ObjectKey from(ObjectType::Material, material.id());
    add_common(from, material);
    if (material.type()) {
      add(from, material.name(), ObjectType::MaterialType, material.type()->id(), "type");
    }
    if (material.cut_layer()) {
      add(from, material.name(), ObjectType::Layer, material.cut_layer()->id(), "cut layer");
    }
    add_asset(material.structuralAsset());
    add_asset(material.thermalAsset());
  }

  void add(const veldra::Composition& composition) {
    const ObjectKey from(ObjectType::Composition, composition.id());
    add_common(from, composition);
    if (composition.entity_layer()) {
      add(from, composition.name(), ObjectType::Layer, composition.entity_layer()->id(),
          "entity layer");
    }
    for (std::size_t i = 0; i < composition.layers().size(); ++i) {
      const auto& material = composition.layers()[i].material();
      if (!material) continue;
      add(from, composition.name(), ObjectType::Material, material->id(),
          fmt::format("layer {}", i + 1));
    }
  }

 private:
  template <class Asset>
  void add_asset(const std::shared_ptr<Asset>& asset) {
    if (!asset) return;
    const ObjectKey from(ObjectType::Asset, asset->id());
    if (!assets_.insert(from).second) return;
    for (const auto& tag : asset->tags()) {
      add(from, asset->name(), ObjectType::Tag, tag->id(), "tag");
    }
  }

  template <class Owner>
  void add_common(const ObjectKey& from, const Owner& owner) {
    for (const auto& tag : owner.tags()) {
      add(from, owner.name(), ObjectType::Tag, tag->id(), "tag");
    }
    for (const auto& value : owner.custom_values()) {
      add(from, owner.name(), ObjectType::CustomProperty, value.first->id(), "custom value");
    }
  }

  void add(const ObjectKey& from, const veldra::String& name, ObjectType kind, unsigned id,
           const std::string& role) {
    references_[ObjectKey(kind, id)].push_back({from, name.utf8(), role});
  }

  References& references_;
  std::set<ObjectKey> assets_;
};

/// The ids of the objects of a kind.
std::set<unsigned> ids_of(const std::set<ObjectKey>& keys, ObjectType kind) {
  std::set<unsigned> ids;
  for (const auto& key : keys) {
    if (key.type == kind) ids.insert(key.id);
  }
  return ids;
}

template <class T>
void collect(const veldra::Library& library, const std::set<ObjectKey>& keys,
             Collector& collector) {
  std::vector<std::shared_ptr<T>> objects;
  library.get(objects, ids_of(keys, veldra::ObjectTraits<T>::type));
  sort_by_name(objects);
  for (const auto& object : objects) collector.add(*object);
}

/// Assets are read with the materials that have them, so what refers to an asset stands for it.
std::set<ObjectKey> readable_referrers(const veldra::Library& library, const ObjectKey& key) {
  auto keys = library.referrers(key);
  for (const unsigned id : ids_of(keys, ObjectType::Asset)) {
    keys.merge(library.referrers(ObjectKey(ObjectType::Asset, id)));
  }
  return keys;
}

}  // namespace

std::vector<Reference> references_to(const veldra::Library& library, const ObjectKey& key) {
  const auto keys = readable_referrers(library, key);
  References references;
  Collector collector(references);
  collect<veldra::Composition>(library, keys, collector);
  collect<veldra::Material>(library, keys, collector);
  return references[key];
}

References references_in(const veldra::Library& library) {
  Progress progress("looking for references");
  References references;
  Collector collector(references);
  for (const auto& composition : all_objects<veldra::Composition>(library)) {
    collector.add(*composition);
    progress.step();
  }
  for (const auto& material : all_objects<veldra::Material>(library)) {
    collector.add(*material);
    progress.step();
  }
  return references;
}

}  // namespace veldra_tool
