// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_THERMAL_HPP
#define VELDRA_TOOL_THERMAL_HPP

#include <veldra/veldra.hpp>

#include <optional>
#include <string>
#include <vector>

namespace veldra_tool {

// The names of the custom properties that hold what is known of a material's behaviour.
namespace property {
constexpr const char* conductivity = "Thermal conductivity [W/(m K)]";
constexpr const char* density = "Density [kg/m3]";
constexpr const char* specific_heat = "Specific heat [J/(kg K)]";
constexpr const char* resistance = "Thermal resistance [m2 K/W]";
constexpr const char* ventilation = "Ventilation";  ///< of an air layer
}  // namespace property

/// Heat flow through a build-up of plane layers after ISO 6946, in m2 K/W and W/(m2 K).
///
/// The outside is taken for the air outdoors. Where a material says that it is a well-ventilated
/// air layer, this layer and those outside it count for nothing, and the air in it is as still at
/// the next layer as indoors.
struct Transmission {
  std::vector<std::optional<double>> layers;  ///< the resistance of each layer, where known
  const char* heat_flow = "";                 ///< the direction that the surfaces are for
  double outside = 0;                         ///< surface resistances
  double inside = 0;
  std::size_t ventilated = 0;        ///< layers, from the outside, that a ventilated cavity ends
  std::optional<double> resistance;  ///< of the layers together, where all are known

  /// The resistance of a layer for people; "–" for what is not known or does not count.
  std::string resistance_text(std::size_t layer) const;

  /// Surface to surface air.
  std::optional<double> total_resistance() const;
  std::optional<double> transmittance() const;
};

Transmission transmission_of(const veldra::Composition& composition, veldra::Unit unit);

/// The number that a custom value of a material says, if it says one.
std::optional<double> number_value(const veldra::Material& material, const char* property);

std::optional<double> conductivity_of(const veldra::Material& material);

/// The sum of all layers; NaN when the thickness of one is not known.
double total_thickness(const veldra::Composition& composition);

}  // namespace veldra_tool

#endif
