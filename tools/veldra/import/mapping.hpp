// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_MAPPING_HPP
#define VELDRA_TOOL_IMPORT_MAPPING_HPP

#include "import/shared_objects.hpp"
#include "import/source_model.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <vector>

namespace veldra_tool {

/// The material that a material of the simulation formats becomes. Throws `Failure`, without a
/// place, for numbers that are none and for negative thicknesses.
std::shared_ptr<veldra::Material> map_material(const SourceMaterial& source, veldra::Unit unit,
                                               SharedObjects& shared);

/// The thickness that a layer of a material has; 0 when the material is offered in none.
double usual_thickness(const veldra::Material& material);

/// The layers of a construction: each as thick as its material is offered, and the one of the
/// greatest thermal mass per area carries.
std::vector<veldra::Composition::Layer> map_layers(
    const std::vector<std::shared_ptr<veldra::Material>>& materials);

/// The composition of these layers, all of which are the core.
std::shared_ptr<veldra::Composition> map_construction(
    const veldra::String& name, const std::vector<veldra::Composition::Layer>& layers);

}  // namespace veldra_tool

#endif
