// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <cmath>

namespace veldra::kit {

namespace {

constexpr double outdoors = 0.04;

struct Surface {
  const char* heat_flow;
  double indoors;
};

/// ISO 6946: upward through roofs, downward through floors, horizontally through all
/// else.
Surface surface_of(Composition::Type type) {
  switch (type) {
    case Composition::Type::Roof:
      return {"upward", 0.10};
    case Composition::Type::Floor:
      return {"downward", 0.17};
    default:
      return {"horizontal", 0.13};
  }
}

std::optional<double> resistance_of(const Composition::Layer& layer, Unit unit) {
  if (!layer.material()) return std::nullopt;
  if (const auto resistance = number_value(*layer.material(), property::resistance)) {
    return resistance;
  }
  const auto conductivity = conductivity_of(*layer.material());
  if (!conductivity || !(*conductivity > 0) || !(layer.thickness() >= 0)) return std::nullopt;
  return in_metres(layer.thickness(), unit) / *conductivity;
}

bool is_well_ventilated(const Composition::Layer& layer) {
  if (!layer.material()) return false;
  const auto value = layer.material()->custom_value(String(property::ventilation));
  return !value.null() && lower_case(trimmed(value.get().utf8())) == "well ventilated";
}

/// How many layers the innermost well-ventilated one keeps from counting, itself included.
std::size_t ventilated_layers(const Composition& composition) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    if (is_well_ventilated(composition.layers()[i])) count = i + 1;
  }
  return count;
}

}  // namespace

std::optional<double> Transmission::total_resistance() const {
  if (!resistance) return std::nullopt;
  return outside + *resistance + inside;
}

std::optional<double> Transmission::transmittance() const {
  const auto total = total_resistance();
  if (!total) return std::nullopt;
  return 1.0 / *total;
}

Transmission transmission_of(const Composition& composition, Unit unit) {
  Transmission result;
  const auto surface = surface_of(composition.type());
  result.ventilated = ventilated_layers(composition);
  result.heat_flow = surface.heat_flow;
  result.outside = result.ventilated > 0 ? surface.indoors : outdoors;
  result.inside = surface.indoors;
  if (composition.layers().empty()) return result;
  double sum = 0;
  bool all_known = true;
  for (const auto& layer : composition.layers()) {
    const bool counts = result.layers.size() >= result.ventilated;
    result.layers.push_back(counts ? resistance_of(layer, unit) : 0.0);
    all_known = all_known && result.layers.back();
    sum += result.layers.back().value_or(0);
  }
  if (all_known) result.resistance = sum;
  return result;
}

std::optional<double> number_value(const Material& material, const char* property) {
  const auto value = material.custom_value(String(property));
  if (value.null()) return std::nullopt;
  return number_in(value.get().utf8());
}

std::optional<double> conductivity_of(const Material& material) {
  if (const auto conductivity = number_value(material, property::conductivity)) {
    return conductivity;
  }
  const auto& asset = material.thermalAsset();
  if (!asset || std::isnan(asset->thermal_conductivity())) return std::nullopt;
  return asset->thermal_conductivity();
}

double total_thickness(const Composition& composition) {
  double sum = 0;
  for (const auto& layer : composition.layers()) sum += layer.thickness();
  return sum;
}

}  // namespace veldra::kit
