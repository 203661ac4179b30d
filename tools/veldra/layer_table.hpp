// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_LAYER_TABLE_HPP
#define VELDRA_TOOL_LAYER_TABLE_HPP

#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <string>

namespace veldra_tool {

/// The function of a material or a layer; a dash for none.
std::string function_text(veldra::Material::Function function);

/// The layers of a composition from outside to inside, with what they are: a title, and a table.
std::string layers_text(const veldra::Composition& composition,
                        const kit::Transmission& transmission, veldra::Unit unit);

}  // namespace veldra_tool

#endif
