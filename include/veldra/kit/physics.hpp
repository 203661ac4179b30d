// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_HPP
#define VELDRA_KIT_PHYSICS_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>

#include <cstddef>
#include <optional>
#include <vector>

namespace veldra::kit {

/// The names of the custom properties that hold what is known of a material's behaviour. A name
/// that ends with a unit in square brackets has numbers as its values.
namespace property {
constexpr const char* conductivity = "Thermal conductivity [W/(m K)]";  ///< of heat
constexpr const char* density = "Density [kg/m3]";                      ///< mass of a volume
constexpr const char* specific_heat = "Specific heat [J/(kg K)]";       ///< of a mass
constexpr const char* resistance = "Thermal resistance [m2 K/W]";       ///< of a layer as a whole
constexpr const char* ventilation = "Ventilation";  ///< "well ventilated", of an air layer
}  // namespace property

/// A length in metres as one in the unit `unit`.
VELDRA_KIT_EXPORT double from_metres(double length, Unit unit);

/// A length in the unit `unit` as one in metres.
VELDRA_KIT_EXPORT double in_metres(double length, Unit unit);

/// Whether two lengths are the same, of which one may have come through other units and back. What
/// is not known (NaN) is the same as what is not known.
VELDRA_KIT_EXPORT bool same_length(double left, double right);

/// Heat flow through a build-up of plane layers after ISO 6946, in m2 K/W and W/(m2 K).
///
/// The outside is taken for the air outdoors. Where a material says that it is a well-ventilated
/// air layer, this layer and those outside it count for nothing, and the air in it is as still at
/// the next layer as indoors.
struct VELDRA_KIT_EXPORT Transmission {
  std::vector<std::optional<double>> layers;  ///< the resistance of each layer, where known
  const char* heat_flow = "";                 ///< the direction that the surfaces are for
  double outside = 0;                         ///< the resistance of the outside surface
  double inside = 0;                          ///< the resistance of the inside surface
  std::size_t ventilated = 0;        ///< layers, from the outside, that a ventilated cavity ends
  std::optional<double> resistance;  ///< of the layers together, where all are known

  /// The resistance with both surfaces; empty where that of a layer is not known.
  std::optional<double> total_resistance() const;

  /// 1 divided by the total resistance; empty where that is not known.
  std::optional<double> transmittance() const;
};

/// Computes the heat flow through a composition, whose lengths are in the unit `unit`.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT Transmission transmission_of(const Composition& composition, Unit unit);

/// The number that a custom value of a material says, if it says one.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<double> number_value(const Material& material,
                                                     const char* property);

/// The conductivity of a material: its custom value, or else that of its thermal asset; empty where
/// neither is known.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<double> conductivity_of(const Material& material);

/// The sum of all layers; NaN when the thickness of one is not known.
VELDRA_KIT_EXPORT double total_thickness(const Composition& composition);

}  // namespace veldra::kit

#endif
