// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_COMPOSITION_IMPL_HPP
#define VELDRA_OBJECTS_COMPOSITION_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"

#include <veldra/composition.hpp>

#include <map>
#include <vector>

namespace veldra {

struct CompositionValues {
  String description;
  std::vector<std::shared_ptr<Tag>> tags;
  Composition::Type type = Composition::Type::Other;
  std::shared_ptr<const Layer> entity_layer;
  String comments;
  Composition::Layers layers;
  unsigned first_core_layer = 0;
  unsigned last_core_layer = 0;
  unsigned structural_layer = 0;
  odb::nullable<unsigned> variable_layer;
  double variable_layer_min_thickness = 0.0;
  odb::nullable<double> variable_layer_max_thickness;
  std::map<CustomPropertyKey, String> custom_values;

  /// What it refers to is saved in this order.
  static constexpr auto members() {
    using Values = CompositionValues;
    using namespace describe;
    return std::make_tuple(values_by_property(&Values::custom_values), value(&Values::description),
                           references(&Values::tags), value(&Values::type),
                           reference(&Values::entity_layer), value(&Values::comments),
                           layers_of_materials(&Values::layers), value(&Values::first_core_layer),
                           value(&Values::last_core_layer), value(&Values::structural_layer),
                           value<ByPresence>(&Values::variable_layer),
                           length(&Values::variable_layer_min_thickness),
                           length<ByPresence>(&Values::variable_layer_max_thickness));
  }
};

struct Composition::Impl : NamedRecord<String>, CompositionValues {
  using Parts = DescribedBy<CompositionValues>;
};

}  // namespace veldra

#endif
