// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_GLAZING_HPP
#define VELDRA_KIT_PHYSICS_GLAZING_HPP

#include <veldra/kit/export.hpp>
#include <veldra/kit/physics_heat.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace veldra::kit::physics {

/// A gas at 10 °C.
struct Gas {
  double density = 0;        ///< kg/m3
  double viscosity = 0;      ///< kg/(m s)
  double conductivity = 0;   ///< W/(m K)
  double specific_heat = 0;  ///< J/(kg K)
};

/// The gas of a name (EN 673:2011, table 1): air, argon, krypton, xenon or SF6, in whatever case.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<Gas> gas_named(const std::string& name);

/// A mixture (EN 673:2011, 5.3.3) of gases with their parts of the volume.
VELDRA_KIT_EXPORT Gas mixed(const std::vector<std::pair<Gas, double>>& gases);

/// Gas between two panes.
struct GasSpace {
  Gas gas;                      ///< what is in it
  double thickness = 0;         ///< in metres
  double outer_emissivity = 0;  ///< of the surface on its outer side, corrected
  double inner_emissivity = 0;  ///< of the surface on its inner side, corrected
};

/// The resistances of the spaces of a glazing (EN 673:2011, 5): radiation and convection for 15 K
/// between the outermost and the innermost pane, which several spaces share as their resistances
/// are. Glass counts as a resistance apart.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<double> gas_resistances(const std::vector<GasSpace>& spaces,
                                                      HeatFlow flow);

/// The conductivity of soda lime glass (EN 673:2011, 5.2), where none is known.
constexpr double glass_conductivity = 1.0;

}  // namespace veldra::kit::physics

#endif
