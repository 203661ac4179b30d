#ifndef VELDRA_STORE_VIEWS_HPP
#define VELDRA_STORE_VIEWS_HPP

#include "store/mapping.hpp"

// What is asked of the tables besides whole objects: ids and counts. The ids are as wide as the
// file can hold them; those that are too large for an object are none of ours.

namespace veldra {

#pragma db view object(Tag)
struct TagId {
#pragma db column("" + Tag::id)
  unsigned long long value = 0;
};

#pragma db view object(Tag)
struct TagCount {
#pragma db column("count(" + Tag::id + ")")
  unsigned long long value = 0;
};

#pragma db view object(MaterialType)
struct MaterialTypeId {
#pragma db column("" + MaterialType::id)
  unsigned long long value = 0;
};

#pragma db view object(MaterialType)
struct MaterialTypeCount {
#pragma db column("count(" + MaterialType::id + ")")
  unsigned long long value = 0;
};

#pragma db view object(Layer)
struct LayerId {
#pragma db column("" + Layer::id)
  unsigned long long value = 0;
};

#pragma db view object(Layer)
struct LayerCount {
#pragma db column("count(" + Layer::id + ")")
  unsigned long long value = 0;
};

#pragma db view object(CustomProperty)
struct CustomPropertyId {
#pragma db column("" + CustomProperty::id)
  unsigned long long value = 0;
};

#pragma db view object(CustomProperty)
struct CustomPropertyCount {
#pragma db column("count(" + CustomProperty::id + ")")
  unsigned long long value = 0;
};

#pragma db view object(Material)
struct MaterialId {
#pragma db column("" + Material::id)
  unsigned long long value = 0;
};

#pragma db view object(Material)
struct MaterialCount {
#pragma db column("count(" + Material::id + ")")
  unsigned long long value = 0;
};

#pragma db view object(Composition)
struct CompositionId {
#pragma db column("" + Composition::id)
  unsigned long long value = 0;
};

#pragma db view object(Composition)
struct CompositionCount {
#pragma db column("count(" + Composition::id + ")")
  unsigned long long value = 0;
};

/// Over the tags as well, for conditions on their names.
#pragma db view object(Material = Object) object(Tag : Object::tags) query(distinct)
struct TaggedMaterialId {
#pragma db column("" + Object::id)
  unsigned long long value = 0;
};

#pragma db view object(Material = Object) object(Tag : Object::tags)
struct TaggedMaterialCount {
#pragma db column("count(DISTINCT " + Object::id + ")")
  unsigned long long value = 0;
};

/// Over the tags as well, for conditions on their names.
#pragma db view object(Composition = Object) object(Tag : Object::tags) query(distinct)
struct TaggedCompositionId {
#pragma db column("" + Object::id)
  unsigned long long value = 0;
};

#pragma db view object(Composition = Object) object(Tag : Object::tags)
struct TaggedCompositionCount {
#pragma db column("count(DISTINCT " + Object::id + ")")
  unsigned long long value = 0;
};

/// What the layers of compositions refer to.
#pragma db view table("Composition_layers")
struct LayerMaterialId {
#pragma db column("\"Composition_layers\".\"value_material_id\"") type("INTEGER")
  unsigned long long value = 0;
};

}  // namespace veldra

#endif
