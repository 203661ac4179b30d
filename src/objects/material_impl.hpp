// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_MATERIAL_IMPL_HPP
#define VELDRA_OBJECTS_MATERIAL_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"

#include <veldra/material.hpp>

#include <map>
#include <set>
#include <vector>

namespace veldra {

struct MaterialValues {
  String description;
  std::vector<std::shared_ptr<Tag>> tags;
  std::shared_ptr<const MaterialType> type;
  String comments;
  odb::nullable<String> code;
  String cost;
  String keynote;
  String label;
  String manufacturer;
  String mark;
  String model;
  String url;
  String classification;
  Color shading_color;
  Pattern surface_pattern;
  Color surface_pattern_color;
  Point2d surface_pattern_alignment;
  Pattern cut_pattern;
  Color cut_pattern_color;
  std::shared_ptr<const Layer> cut_layer;
  String appearance;
  std::shared_ptr<StructuralAsset> structural_asset;
  std::shared_ptr<ThermalAsset> thermal_asset;
  Material::Function function = Material::Function::None;
  bool shading_use_appearance = false;
  bool allow_custom_thickness = true;
  std::set<double> thicknesses;
  std::map<CustomPropertyKey, String> custom_values;

  /// What it refers to is saved in this order. The custom values come last, which compares the
  /// fastest.
  static constexpr auto members() {
    using Values = MaterialValues;
    using namespace describe;
    return std::make_tuple(
        value(&Values::description), references(&Values::tags), needed_reference(&Values::type),
        value(&Values::comments), value<ByPresence>(&Values::code), value(&Values::cost),
        value(&Values::keynote), value(&Values::label), value(&Values::manufacturer),
        value(&Values::mark), value(&Values::model), value(&Values::url),
        value(&Values::classification), value(&Values::shading_use_appearance),
        value(&Values::shading_color), value(&Values::surface_pattern),
        value(&Values::surface_pattern_color), value(&Values::surface_pattern_alignment),
        value(&Values::cut_pattern), value(&Values::cut_pattern_color),
        reference(&Values::cut_layer), value(&Values::appearance), asset(&Values::structural_asset),
        asset(&Values::thermal_asset), value(&Values::function), length(&Values::thicknesses),
        value(&Values::allow_custom_thickness), values_by_property(&Values::custom_values));
  }
};

struct Material::Impl : NamedRecord<String>, MaterialValues {
  using Parts = DescribedBy<MaterialValues>;
};

}  // namespace veldra

#endif
