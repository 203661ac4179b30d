#ifndef VELDRA_OBJECTS_COMPOSITION_IMPL_HPP
#define VELDRA_OBJECTS_COMPOSITION_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/composition.hpp>

#include <map>
#include <vector>

namespace veldra {

struct Composition::Impl : ObjectRecord {
  String description;
  std::vector<std::shared_ptr<Tag>> tags;
  Type type = Type::Other;
  std::shared_ptr<const veldra::Layer> entity_layer;
  String comments;
  Layers layers;
  unsigned first_core_layer = 0;
  unsigned last_core_layer = 0;
  unsigned structural_layer = 0;
  odb::nullable<unsigned> variable_layer;
  double variable_layer_min_thickness = 0.0;
  odb::nullable<double> variable_layer_max_thickness;
  std::map<CustomPropertyKey, String> custom_values;
};

}  // namespace veldra

#endif
