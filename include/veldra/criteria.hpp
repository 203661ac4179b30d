// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_CRITERIA_HPP
#define VELDRA_CRITERIA_HPP

#include <veldra/composition.hpp>

#include <memory>
#include <set>

namespace veldra {

/// The materials that a list, a search or a count selects. A material must meet all conditions that
/// are set; a record of defaults selects every material.
///
///     veldra::MaterialCriteria criteria;
///     criteria.type = library->get<veldra::MaterialType>("Wood");
///     criteria.tags = {"exterior", "facade"};  // with one of the two, or both
///     library->get(found, criteria);
struct MaterialCriteria {
  std::shared_ptr<const MaterialType> type;  ///< if set: of this type, which its id names
  std::set<String> tags;                     ///< if not empty: with at least one tag of these names
};

/// The compositions that a list, a search or a count selects. A composition must meet all
/// conditions that are set; a record of defaults selects every composition.
struct CompositionCriteria {
  /// If not 0: of one of these types. The values of `Composition::Type` are joined by `|`:
  /// `unsigned(Composition::Type::Wall) | unsigned(Composition::Type::Roof)`.
  unsigned types = 0;

  std::set<String> tags;  ///< if not empty: with at least one tag of these names
};

/// The custom properties that a list, a search or a count selects.
struct CustomPropertyCriteria {
  ObjectType object_type{};  ///< if not 0: for this kind of object
};

/// Selects every material type.
struct MaterialTypeCriteria {};

/// Selects every drawing layer.
struct LayerCriteria {};

/// Selects every tag.
struct TagCriteria {};

/// The criteria of a kind: `CriteriaOf<Material>::type` is `MaterialCriteria`.
template <class T>
struct CriteriaOf;

/// The criteria of tags.
template <>
struct CriteriaOf<Tag> {
  using type = TagCriteria;  ///< the record to fill
};

/// The criteria of material types.
template <>
struct CriteriaOf<MaterialType> {
  using type = MaterialTypeCriteria;  ///< the record to fill
};

/// The criteria of drawing layers.
template <>
struct CriteriaOf<Layer> {
  using type = LayerCriteria;  ///< the record to fill
};

/// The criteria of custom properties.
template <>
struct CriteriaOf<CustomProperty> {
  using type = CustomPropertyCriteria;  ///< the record to fill
};

/// The criteria of materials.
template <>
struct CriteriaOf<Material> {
  using type = MaterialCriteria;  ///< the record to fill
};

/// The criteria of compositions.
template <>
struct CriteriaOf<Composition> {
  using type = CompositionCriteria;  ///< the record to fill
};

}  // namespace veldra

#endif
