// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics_glazing.hpp>
#include <veldra/kit/text.hpp>

#include <algorithm>
#include <cmath>

namespace veldra::kit::physics {

namespace {

constexpr double mean_temperature = 283;  ///< K
constexpr double whole_difference = 15;   ///< K
constexpr double stefan_boltzmann = 5.67e-8;
constexpr double gravity = 9.81;

struct NamedGas {
  const char* name;
  Gas gas;
};

constexpr NamedGas gases[] = {{"air", {1.232, 1.761e-5, 2.496e-2, 1008}},
                              {"argon", {1.699, 2.164e-5, 1.684e-2, 519}},
                              {"krypton", {3.560, 2.400e-5, 0.900e-2, 245}},
                              {"xenon", {5.689, 2.226e-5, 0.529e-2, 161}},
                              {"sf6", {6.360, 1.459e-5, 1.275e-2, 614}}};

/// EN 673:2011, 5.3.1: Nu = A (Gr Pr)^n, and never less than 1. Downward heat does not convect.
double nusselt(const GasSpace& space, HeatFlow flow, double difference) {
  if (flow == HeatFlow::Downward) return 1;
  const double factor = flow == HeatFlow::Upward ? 0.16 : 0.035;
  const double exponent = flow == HeatFlow::Upward ? 0.28 : 0.38;
  const Gas& gas = space.gas;
  const double grashof = gravity * std::pow(space.thickness, 3) * difference * gas.density *
                         gas.density / (mean_temperature * gas.viscosity * gas.viscosity);
  const double prandtl = gas.viscosity * gas.specific_heat / gas.conductivity;
  return std::max(1.0, factor * std::pow(grashof * prandtl, exponent));
}

double conductance(const GasSpace& space, HeatFlow flow, double difference) {
  const double radiation = 4 * stefan_boltzmann * std::pow(mean_temperature, 3) /
                           (1 / space.outer_emissivity + 1 / space.inner_emissivity - 1);
  return radiation + nusselt(space, flow, difference) * space.gas.conductivity / space.thickness;
}

}  // namespace

std::optional<Gas> gas_named(const std::string& name) {
  const std::string wanted = lower_case(trimmed(name));
  for (const auto& each : gases) {
    if (wanted == each.name) return each.gas;
  }
  return std::nullopt;
}

Gas mixed(const std::vector<std::pair<Gas, double>>& parts) {
  Gas result;
  for (const auto& [gas, share] : parts) {
    result.density += share * gas.density;
    result.viscosity += share * gas.viscosity;
    result.conductivity += share * gas.conductivity;
    result.specific_heat += share * gas.specific_heat;
  }
  return result;
}

std::vector<double> gas_resistances(const std::vector<GasSpace>& spaces, HeatFlow flow) {
  constexpr int most_rounds = 100;
  std::vector<double> resistances(spaces.size(), 1);
  for (int round = 0; round < most_rounds; ++round) {
    double sum = 0;
    for (const double resistance : resistances) sum += resistance;
    double change = 0;
    for (std::size_t i = 0; i < spaces.size(); ++i) {
      const double next = 1 / conductance(spaces[i], flow, whole_difference * resistances[i] / sum);
      change = std::max(change, std::abs(next - resistances[i]) / next);
      resistances[i] = next;
    }
    if (change < 1e-10) break;
  }
  return resistances;
}

}  // namespace veldra::kit::physics
