// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics_heat.hpp>

#include <algorithm>
#include <cmath>

namespace veldra::kit::physics {

namespace {

constexpr double thickest = 0.3;
constexpr double usual_emissivity = 0.9;

struct TableRow {
  double thickness;
  double resistances[3];  ///< by `HeatFlow`
};

/// ISO 6946:2017, table 8; values between its rows are interpolated.
constexpr TableRow table[] = {
    {0.000, {0.00, 0.00, 0.00}}, {0.005, {0.11, 0.11, 0.11}}, {0.007, {0.13, 0.13, 0.13}},
    {0.010, {0.15, 0.15, 0.15}}, {0.015, {0.17, 0.16, 0.17}}, {0.025, {0.18, 0.16, 0.19}},
    {0.050, {0.18, 0.16, 0.21}}, {0.100, {0.18, 0.16, 0.22}}, {thickest, {0.18, 0.16, 0.23}}};

double by_table(double thickness, HeatFlow flow) {
  const auto column = static_cast<std::size_t>(flow);
  const auto* above = std::begin(table) + 1;
  while (above->thickness < thickness) ++above;
  const auto* below = above - 1;
  const double part = (thickness - below->thickness) / (above->thickness - below->thickness);
  return below->resistances[column] +
         part * (above->resistances[column] - below->resistances[column]);
}

/// Annex D, for a difference of at most 5 K between the surfaces.
double convection(double thickness, HeatFlow flow) {
  const double conduction = 0.025 / thickness;
  switch (flow) {
    case HeatFlow::Upward:
      return std::max(1.95, conduction);
    case HeatFlow::Downward:
      return std::max(0.12 * std::pow(thickness, -0.44), conduction);
    default:
      return std::max(1.25, conduction);
  }
}

/// Annex D, at a mean temperature of 10 °C.
double radiation(const AirLayer& layer) {
  constexpr double black_body = 5.1;
  const double outer = layer.outer_emissivity.value_or(usual_emissivity);
  const double inner = layer.inner_emissivity.value_or(usual_emissivity);
  return black_body / (1 / outer + 1 / inner - 1);
}

}  // namespace

std::optional<double> air_resistance(const AirLayer& layer, HeatFlow flow) {
  if (layer.thickness > thickest) return std::nullopt;
  if (!layer.outer_emissivity && !layer.inner_emissivity) return by_table(layer.thickness, flow);
  return 1 / (convection(layer.thickness, flow) + radiation(layer));
}

double slightly_ventilated(double unventilated, double ventilated, double opening) {
  return (1500 - opening) / 1000 * unventilated + (opening - 500) / 1000 * ventilated;
}

}  // namespace veldra::kit::physics
