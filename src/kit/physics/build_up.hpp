// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_BUILD_UP_HPP
#define VELDRA_KIT_PHYSICS_BUILD_UP_HPP

#include <veldra/kit/physics.hpp>

#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

/// A layer of a composition with all that is known of it.
struct BuildUpLayer {
  std::optional<KnownValues> values;  ///< empty for a layer without a material
  std::string material;               ///< its name
  double thickness = 0;               ///< in metres
  bool air_by_type = false;           ///< its material type says that it is an air gap

  std::optional<double> number(Known id) const {
    return values ? values->number(id) : std::nullopt;
  }
  std::string text(Known id) const { return values ? values->text(id) : std::string(); }

  /// Why a thickness is none; empty if it is one.
  std::string thickness_fault() const;

  /// The faults of these values.
  std::string fault(std::initializer_list<Known> ids) const;

  bool is_air() const;
  bool is_gas() const;
  bool is_well_ventilated() const;
};

std::vector<BuildUpLayer> build_up_of(const Composition& composition, Unit unit);

/// How many layers the innermost well-ventilated one keeps from counting, itself included.
std::size_t ventilated_layers(const std::vector<BuildUpLayer>& layers);

/// A sentence about a layer, counted from 0.
std::string about_layer(const std::vector<BuildUpLayer>& layers, std::size_t index,
                        const std::string& fault);

}  // namespace veldra::kit

#endif
