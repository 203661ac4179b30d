// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_LAYER_HEAT_HPP
#define VELDRA_KIT_PHYSICS_LAYER_HEAT_HPP

#include "kit/physics/build_up.hpp"

#include <optional>
#include <vector>

namespace veldra::kit {

/// How heat goes through each layer, of which the first `ventilated` do not count.
std::vector<LayerHeat> layers_heat(const std::vector<BuildUpLayer>& layers, std::size_t ventilated,
                                   physics::HeatFlow flow);

/// The part of its layer's depth, from the inner side, that a bridge takes.
double bridged_part(const BuildUpLayer& layer);

/// The plan of a tapered layer; empty for a text that says none.
std::optional<physics::TaperShape> taper_shape(const BuildUpLayer& layer);

}  // namespace veldra::kit

#endif
