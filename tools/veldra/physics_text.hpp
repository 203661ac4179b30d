// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PHYSICS_TEXT_HPP
#define VELDRA_TOOL_PHYSICS_TEXT_HPP

#include "json.hpp"
#include "kit.hpp"

#include <string>

namespace veldra_tool {

/// The surfaces that a transmittance is for.
std::string surfaces_text(const kit::Transmission& transmission);

/// What was assumed of the surroundings, and why; empty where they are stated.
std::string assumption_text(const kit::Transmission& transmission);

/// How the resistance of a layer is known, for people; empty where it is not.
std::string basis_text(const kit::LayerHeat& layer);

/// All of it, as the program prints it as JSON.
Json transmission_json(const kit::Transmission& transmission);

}  // namespace veldra_tool

#endif
