// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_MAPPING_HPP
#define VELDRA_KIT_EXCHANGE_MAPPING_HPP

#include "kit/exchange/shared_objects.hpp"
#include "kit/exchange/source_model.hpp"

#include <veldra/library.hpp>

#include <memory>
#include <vector>

namespace veldra::kit {

/// The material that a material of the simulation formats becomes. Throws `Error`, without a
/// place, for numbers that are none and for negative thicknesses.
std::shared_ptr<Material> map_material(const SourceMaterial& source, Unit unit,
                                       SharedObjects& shared);

/// The thickness that a layer of a material has; 0 when the material is offered in none.
double usual_thickness(const Material& material);

/// The layers of a construction: each as thick as its material is offered, and the one of the
/// greatest thermal mass per area carries.
std::vector<Composition::Layer> map_layers(const std::vector<std::shared_ptr<Material>>& materials);

/// The composition of these layers, all of which are the core.
std::shared_ptr<Composition> map_construction(const String& name,
                                              const std::vector<Composition::Layer>& layers);

}  // namespace veldra::kit

#endif
