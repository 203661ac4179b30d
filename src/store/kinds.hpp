// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_KINDS_HPP
#define VELDRA_STORE_KINDS_HPP

#include "store/of_kind.hpp"

#include <veldra/composition.hpp>

#include <set>
#include <string>
#include <vector>

// The table of the kinds of objects: what differs between them and the operations, which are
// written once for all kinds, must know. What an operation does for one kind only stands there, as
// an overload.

namespace veldra {

/// The kinds in the order of operations on several: what refers comes before what it refers to.
#define VELDRA_FOR_EACH_KIND(macro)                                                         \
  macro(Composition) macro(Material) macro(MaterialType) macro(Layer) macro(CustomProperty) \
      macro(Tag)

/// Calls `operation` with an object of `OfKind` for each kind, in that order.
template <class Operation>
void for_each_kind(Operation operation) {
#define VELDRA_CALL(T) operation(OfKind<T>());
  VELDRA_FOR_EACH_KIND(VELDRA_CALL)
#undef VELDRA_CALL
}

using TableNames = std::vector<std::string>;

/// What most kinds have in common.
struct UsualKind {
  static constexpr const char* listed_by = "";  ///< the column by which lists are in order
  static TableNames lists() { return {}; }      ///< the tables besides its own
};

template <class T>
struct Kind;

template <>
struct Kind<Composition> : UsualKind {
  static constexpr const char* table = "Composition";
  static constexpr bool is_asked_about = true;  // the reactor decides about a taken name
  static constexpr const char* singular = "composition";
  static constexpr const char* plural = "compositions";
  static TableNames lists() {
    return {"Composition_tags", "Composition_layers", "Composition_custom_values"};
  }
};

template <>
struct Kind<Material> : UsualKind {
  static constexpr const char* table = "Material";
  static constexpr bool is_asked_about = true;  // the reactor decides about a taken name
  static constexpr const char* singular = "material";
  static constexpr const char* plural = "materials";
  static TableNames lists() {
    return {"Material_tags", "Material_thicknesses", "Material_custom_values"};
  }
};

template <>
struct Kind<MaterialType> : UsualKind {
  static constexpr const char* table = "MaterialType";
  static constexpr bool is_asked_about = false;  // it is nothing but its unique values
  static constexpr const char* singular = "material type";
  static constexpr const char* plural = "material types";
};

template <>
struct Kind<Layer> : UsualKind {
  static constexpr const char* table = "Layer";
  static constexpr bool is_asked_about = false;  // it is nothing but its unique values
  static constexpr const char* singular = "drawing layer";
  static constexpr const char* plural = "drawing layers";
};

template <>
struct Kind<CustomProperty> : UsualKind {
  static constexpr const char* table = "CustomProperty";
  static constexpr bool is_asked_about = false;  // it is nothing but its unique values
  static constexpr const char* singular = "custom property";
  static constexpr const char* plural = "custom properties";
  static constexpr const char* listed_by = "name";
};

template <>
struct Kind<Tag> : UsualKind {
  static constexpr const char* table = "Tag";
  static constexpr bool is_asked_about = false;  // it is nothing but its unique values
  static constexpr const char* singular = "tag";
  static constexpr const char* plural = "tags";
};

/// What is no kind of its own: assets are read with the materials that refer to them.
template <>
struct Kind<Asset> : UsualKind {
  static constexpr const char* table = "Asset";
  static constexpr const char* singular = "asset";
  static constexpr const char* plural = "assets";
  static TableNames lists() { return {"Asset_tags", "StructuralAsset", "ThermalAsset"}; }
};

/// The kinds, as a host names them.
inline std::set<ObjectType> all_kinds() {
  std::set<ObjectType> kinds;
  for_each_kind(
      [&kinds](auto kind) { kinds.insert(ObjectTraits<typename decltype(kind)::type>::type); });
  return kinds;
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

}  // namespace veldra

#endif
