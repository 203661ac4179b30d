#ifndef VELDRA_OBJECTS_MATERIAL_IMPL_HPP
#define VELDRA_OBJECTS_MATERIAL_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/material.hpp>

#include <map>
#include <set>
#include <vector>

namespace veldra {

struct Material::Impl : ObjectRecord {
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
  bool shading_use_appearance = false;
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
  Function function = Function::None;
  std::set<double> thicknesses;
  bool allow_custom_thickness = true;
  std::map<CustomPropertyKey, String> custom_values;
};

}  // namespace veldra

#endif
