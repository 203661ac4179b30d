#ifndef VELDRA_STORE_KINDS_HPP
#define VELDRA_STORE_KINDS_HPP

#include "store/views-odb.hpp"

#include <veldra/criteria.hpp>

#include <set>

// What the operations, which are written once for all kinds, must know of each.

namespace veldra {

template <class T>
struct Kind;

// Whether criteria can name tags, which takes the views over the tags.
struct WithTags {};
struct WithoutTags {};

template <class IdView, class CountView, class HasTags = WithoutTags>
struct PlainViews {
  using Tagging = HasTags;
  using Id = IdView;
  using Count = CountView;
};

template <>
struct Kind<Tag> : PlainViews<TagId, TagCount> {
  static constexpr const char* table = "Tag";
};

template <>
struct Kind<MaterialType> : PlainViews<MaterialTypeId, MaterialTypeCount> {
  static constexpr const char* table = "MaterialType";
};

template <>
struct Kind<Layer> : PlainViews<LayerId, LayerCount> {
  static constexpr const char* table = "Layer";
};

template <>
struct Kind<CustomProperty> : PlainViews<CustomPropertyId, CustomPropertyCount> {
  static constexpr const char* table = "CustomProperty";
};

template <>
struct Kind<Material> : PlainViews<MaterialId, MaterialCount, WithTags> {
  static constexpr const char* table = "Material";
  using TaggedId = TaggedMaterialId;
  using TaggedCount = TaggedMaterialCount;
};

template <>
struct Kind<Composition> : PlainViews<CompositionId, CompositionCount, WithTags> {
  static constexpr const char* table = "Composition";
  using TaggedId = TaggedCompositionId;
  using TaggedCount = TaggedCompositionCount;
};

/// The name that the views over the tags give to the table of the objects.
constexpr const char* tagged_alias = "Object";

/// The order of operations on several kinds: what refers comes before what it refers to. Calls
/// `operation` with an object of `OfKind` for each kind.
template <class T>
struct OfKind {
  using type = T;
};

template <class Operation>
void for_each_kind(Operation operation) {
  operation(OfKind<Composition>());
  operation(OfKind<Material>());
  operation(OfKind<MaterialType>());
  operation(OfKind<Layer>());
  operation(OfKind<CustomProperty>());
  operation(OfKind<Tag>());
}

/// The ids of the keys of a kind.
inline std::set<unsigned> ids_of_kind(const std::set<ObjectKey>& keys, ObjectType type) {
  std::set<unsigned> ids;
  const auto end = keys.end();
  for (auto key = keys.lower_bound({type, 0}); key != end && key->type == type; ++key) {
    ids.insert(ids.end(), key->id);
  }
  return ids;
}

/// Instantiates a macro for each kind.
#define VELDRA_FOR_EACH_KIND(macro)                                                 \
  macro(Tag) macro(MaterialType) macro(Layer) macro(CustomProperty) macro(Material) \
      macro(Composition)

}  // namespace veldra

#endif
