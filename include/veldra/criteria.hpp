// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_CRITERIA_HPP
#define VELDRA_CRITERIA_HPP

#include <veldra/composition.hpp>

#include <memory>
#include <set>

namespace veldra {

// What a list or a count selects. All that is set must hold; a record of defaults selects all.

struct MaterialCriteria {
  std::shared_ptr<const MaterialType> type;  ///< of this type, told by its id
  std::set<String> tags;                     ///< with at least one tag of these names
};

struct CompositionCriteria {
  unsigned types = 0;     ///< of one of these types, the values of `Composition::Type` joined
  std::set<String> tags;  ///< with at least one tag of these names
};

struct CustomPropertyCriteria {
  ObjectType object_type{};  ///< for this kind of object
};

struct MaterialTypeCriteria {};
struct LayerCriteria {};
struct TagCriteria {};

/// The criteria of a kind: `CriteriaOf<Material>::type` is `MaterialCriteria`.
template <class T>
struct CriteriaOf;

template <>
struct CriteriaOf<Tag> {
  using type = TagCriteria;
};
template <>
struct CriteriaOf<MaterialType> {
  using type = MaterialTypeCriteria;
};
template <>
struct CriteriaOf<Layer> {
  using type = LayerCriteria;
};
template <>
struct CriteriaOf<CustomProperty> {
  using type = CustomPropertyCriteria;
};
template <>
struct CriteriaOf<Material> {
  using type = MaterialCriteria;
};
template <>
struct CriteriaOf<Composition> {
  using type = CompositionCriteria;
};

}  // namespace veldra

#endif
