// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/physics/build_up.hpp"
#include "kit/physics/layer_heat.hpp"

#include <veldra/kit/physics_storage.hpp>

#include <cmath>
#include <complex>

namespace veldra::kit {

namespace physics {

namespace {

constexpr double pi = 3.14159265358979323846;

using Complex = std::complex<double>;

/// A transfer matrix, divided by the exponential function of `scale` so that thick layers have one.
struct Transfer {
  Complex a = 1, b = 0, c = 0, d = 1;
  Complex scale = 0;

  /// What comes before this on the way from the inside to the outside.
  void add_behind(const Transfer& next) {
    const Transfer before = *this;
    a = next.a * before.a + next.b * before.c;
    b = next.a * before.b + next.b * before.d;
    c = next.c * before.a + next.d * before.c;
    d = next.c * before.b + next.d * before.d;
    scale += next.scale;
  }
};

Transfer of_resistance(double resistance) {
  Transfer transfer;
  transfer.b = -resistance;
  return transfer;
}

/// ISO 13786:2017, 7.2: the depth of penetration, and the matrix of a layer.
Transfer of_layer(const StorageLayer& layer, double period) {
  const double capacity = layer.density * layer.specific_heat;
  if (!(capacity > 0) || !(layer.thickness > 0)) return of_resistance(layer.resistance);
  const double conductivity = layer.thickness / layer.resistance;
  const double penetration = std::sqrt(conductivity * period / (pi * capacity));
  const Complex turn(1, 1);
  const Complex depth = turn * (layer.thickness / penetration);
  const Complex decay = std::exp(-2.0 * depth);
  const Complex cosh = (1.0 + decay) / 2.0;
  const Complex sinh = (1.0 - decay) / 2.0;
  Transfer transfer;
  transfer.a = cosh;
  transfer.b = -penetration / conductivity * sinh / turn;
  transfer.c = -conductivity / penetration * sinh * turn;
  transfer.d = cosh;
  transfer.scale = depth;
  return transfer;
}

}  // namespace

Storage heat_storage(const std::vector<StorageLayer>& layers, double outside, double inside,
                     double period) {
  Transfer whole = of_resistance(inside);
  double steady = inside + outside;
  for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
    whole.add_behind(of_layer(*layer, period));
    steady += layer->resistance;
  }
  whole.add_behind(of_resistance(outside));
  const Complex one = std::exp(-whole.scale);
  Storage result;
  result.inside = period / (2 * pi) * std::abs((whole.a - one) / whole.b);
  result.outside = period / (2 * pi) * std::abs((whole.d - one) / whole.b);
  result.periodic_transmittance = std::abs(one / whole.b);
  result.decrement = result.periodic_transmittance * steady;
  result.time_shift = period / 3600 / (2 * pi) * (whole.scale.imag() + std::arg(-whole.b));
  return result;
}

}  // namespace physics

namespace {

/// A quantity of a layer with its bridge, by their volumes.
struct Mixed {
  double share;  ///< of the bridge
  double operator()(double main, double bridge) const {
    return main * (1 - share) + bridge * share;
  }
};

bool is_weightless(const BuildUpLayer& layer) { return layer.is_air() || layer.is_gas(); }

double share_of_volume(const BuildUpLayer& layer) {
  return layer.number(Known::BridgeShare).value_or(0) * bridged_part(layer);
}

std::string lacking(Known id) {
  return std::string("its '") + known_properties()[static_cast<std::size_t>(id)].name +
         "' is not known";
}

/// The density of a layer with its bridge. Sets `fault` where it is not known.
double density_of(const BuildUpLayer& layer, std::string& fault) {
  fault = layer.fault({Known::Density, Known::BridgeDensity, Known::BridgeShare});
  const auto main = layer.number(Known::Density);
  if (fault.empty() && !main && !is_weightless(layer)) fault = lacking(Known::Density);
  const double share = share_of_volume(layer);
  const auto bridge = layer.number(Known::BridgeDensity);
  if (fault.empty() && share > 0 && !bridge) fault = lacking(Known::BridgeDensity);
  if (fault.empty()) fault = layer.thickness_fault();
  if (!fault.empty()) return 0;
  return Mixed{share}(is_weightless(layer) ? 0 : *main, bridge.value_or(0));
}

/// The specific heat of a layer with its bridge, so that the heat of both is right.
double specific_heat_of(const BuildUpLayer& layer, double density, std::string& fault) {
  fault = layer.fault({Known::SpecificHeat, Known::BridgeSpecificHeat});
  const auto main = layer.number(Known::SpecificHeat);
  if (fault.empty() && !main && !is_weightless(layer)) fault = lacking(Known::SpecificHeat);
  const double share = share_of_volume(layer);
  const auto bridge = layer.number(Known::BridgeSpecificHeat);
  if (fault.empty() && share > 0 && !bridge) fault = lacking(Known::BridgeSpecificHeat);
  if (!fault.empty() || density == 0) return 0;
  const auto heat = [&](Known of_density, std::optional<double> specific) {
    return layer.number(of_density).value_or(0) * specific.value_or(0);
  };
  const double main_heat = is_weightless(layer) ? 0 : heat(Known::Density, main);
  return Mixed{share}(main_heat, heat(Known::BridgeDensity, bridge)) / density;
}

/// A layer with its bridge as one of equal resistance across.
double resistance_of(const LayerHeat& heat) {
  if (!heat.bridge) return *heat.resistance;
  return physics::combined_resistance({{*heat.resistance, heat.bridge}}, 0, 0)->lower;
}

std::optional<double> mass_of(const std::vector<BuildUpLayer>& layers,
                              std::vector<std::string>& faults) {
  double mass = 0;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    std::string fault;
    mass += density_of(layers[i], fault) * layers[i].thickness;
    if (!fault.empty()) faults.push_back(about_layer(layers, i, fault));
  }
  return faults.empty() && !layers.empty() ? std::optional<double>(mass) : std::nullopt;
}

}  // namespace

CompositionStorage storage_of(const Composition& composition, Unit unit,
                              const physics::BoundaryStatement& asked) {
  const auto layers = build_up_of(composition, unit);
  const auto transmission = transmission_of(composition, unit, asked);
  CompositionStorage result;
  result.mass = mass_of(layers, result.mass_faults);
  result.faults = transmission.faults;
  if (transmission.stated) {
    result.faults.emplace_back("a stated U-factor does not tell what the layers store");
  }
  if (!result.faults.empty() || layers.empty()) return result;
  std::vector<physics::StorageLayer> parts;
  for (std::size_t i = transmission.ventilated; i < layers.size(); ++i) {
    std::string fault;
    physics::StorageLayer part{resistance_of(transmission.layers[i]), layers[i].thickness, 0, 0};
    part.density = density_of(layers[i], fault);
    if (fault.empty()) part.specific_heat = specific_heat_of(layers[i], part.density, fault);
    if (!fault.empty()) result.faults.push_back(about_layer(layers, i, fault));
    parts.push_back(part);
  }
  if (!result.faults.empty()) return result;
  result.storage = physics::heat_storage(parts, transmission.outside, transmission.inside);
  return result;
}

std::optional<double> mass_of(const Composition& composition, Unit unit) {
  std::vector<std::string> faults;
  return mass_of(build_up_of(composition, unit), faults);
}

}  // namespace veldra::kit
