// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/physics/build_up.hpp"
#include "kit/physics/layer_heat.hpp"

#include <veldra/kit/physics_moisture.hpp>

#include <fmt/format.h>

namespace veldra::kit {

namespace {

constexpr double of_air = 0.01;  ///< ISO 13788:2012, 6.3: of an air layer, whatever its thickness

std::optional<double> vapour_thickness(const BuildUpLayer& layer, std::string& fault) {
  fault = layer.fault({Known::VapourFactor, Known::VapourThickness});
  if (!fault.empty()) return std::nullopt;
  if (const auto stated = layer.number(Known::VapourThickness)) return stated;
  if (const auto factor = layer.number(Known::VapourFactor)) {
    fault = layer.thickness_fault();
    return fault.empty() ? std::optional<double>(*factor * layer.thickness) : std::nullopt;
  }
  if (layer.is_air()) return of_air;
  fault = "its 'Water vapour resistance factor [-]' is not known";
  return std::nullopt;
}

std::optional<double> of_bridge(const BuildUpLayer& layer) {
  const auto factor = layer.number(Known::BridgeVapourFactor);
  if (!factor || !layer.thickness_fault().empty()) return std::nullopt;
  return *factor * layer.thickness * bridged_part(layer);
}

/// The air of a climate is that outdoors and that of a heated room.
std::string side_without_climate(const Transmission& transmission) {
  const auto& boundary = transmission.border.boundary;
  const bool open = transmission.ventilated > 0 || boundary.outside == physics::Side::Outdoors ||
                    boundary.outside == physics::Side::Ventilated;
  if (!open) {
    return fmt::format("the climate says nothing of {} outside",
                       physics::name_of(boundary.outside));
  }
  if (boundary.inside == physics::Side::Interior) return "";
  return fmt::format("the climate says nothing of {} inside", physics::name_of(boundary.inside));
}

}  // namespace

Diffusion diffusion_of(const Composition& composition, Unit unit) {
  const auto layers = build_up_of(composition, unit);
  const auto ventilated = ventilated_layers(layers);
  Diffusion result;
  double sum = 0;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    std::string fault;
    const auto each = i < ventilated ? 0 : vapour_thickness(layers[i], fault);
    if (!fault.empty()) result.faults.push_back(about_layer(layers, i, fault));
    result.layers.push_back(each);
    result.bridges.push_back(of_bridge(layers[i]));
    sum += each.value_or(0);
  }
  if (result.faults.empty() && !layers.empty()) result.total = sum;
  return result;
}

CompositionMoisture moisture_of(const Composition& composition, Unit unit,
                                const physics::Climate& climate,
                                const physics::BoundaryStatement& asked) {
  CompositionMoisture result;
  const auto transmission = transmission_of(composition, unit, asked);
  const auto diffusion = diffusion_of(composition, unit);
  result.faults = transmission.faults;
  if (transmission.stated) {
    result.faults.emplace_back("a stated U-factor does not tell where vapour goes");
  }
  const auto side = side_without_climate(transmission);
  if (!side.empty()) result.faults.push_back(side);
  if (result.faults.empty() && transmission.resistance) {
    result.surface =
        physics::surface_humidity(*transmission.resistance, transmission.outside, climate);
  }
  result.faults.insert(result.faults.end(), diffusion.faults.begin(), diffusion.faults.end());
  if (!result.faults.empty() || !diffusion.total) return result;
  if (!(*diffusion.total > 0)) {
    result.faults.emplace_back("no layer resists water vapour");
    return result;
  }
  std::vector<physics::MoistureLayer> layers;
  for (std::size_t i = transmission.ventilated; i < transmission.layers.size(); ++i) {
    layers.push_back({*transmission.layers[i].resistance, *diffusion.layers[i]});
  }
  if (transmission.bridged) result.notes.emplace_back("moisture is computed beside the bridges");
  result.year = physics::moisture_year(layers, transmission.outside, transmission.inside, climate);
  for (auto& place : result.year->places) place.layer += transmission.ventilated;
  return result;
}

}  // namespace veldra::kit
