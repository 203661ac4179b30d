// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_SOLVE_HPP
#define VELDRA_KIT_PHYSICS_SOLVE_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/physics_heat.hpp>

#include <functional>
#include <optional>
#include <string>

namespace veldra::kit {

namespace physics {

/// The least thickness between two limits at which a transmittance that falls with the thickness is
/// at most `target`; empty if it is greater even at `greatest`. `greatest` may be infinite.
VELDRA_KIT_EXPORT std::optional<double> thickness_for(
    double target, const std::function<double(double)>& transmittance, double least,
    double greatest);

}  // namespace physics

/// The thickness of a layer that reaches a transmittance.
struct ThicknessSolution {
  std::size_t layer = 0;                ///< which layer, counted from 0
  std::optional<double> thickness;      ///< in the unit of the composition, if there is one
  std::optional<double> transmittance;  ///< with that thickness
  std::string fault;                    ///< why there is none, as a sentence
};

/// Finds the thickness of a layer of a composition, of its variable layer where `layer` is empty,
/// with which the transmittance is at most `target`. The variable layer keeps within its limits.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT ThicknessSolution thickness_for(const Composition& composition, Unit unit,
                                                  double target,
                                                  std::optional<std::size_t> layer = {},
                                                  const physics::BoundaryStatement& asked = {});

}  // namespace veldra::kit

#endif
