// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/physics/layer_heat.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace veldra::kit {

namespace {

using Basis = LayerHeat::Basis;

constexpr std::pair<Known, Known> gas_parts[] = {{Known::GasType1, Known::GasFraction1},
                                                 {Known::GasType2, Known::GasFraction2},
                                                 {Known::GasType3, Known::GasFraction3},
                                                 {Known::GasType4, Known::GasFraction4}};

bool is_pane(const BuildUpLayer& layer) {
  return layer.number(Known::FrontEmissivity) || layer.number(Known::BackEmissivity) ||
         layer.number(Known::BothEmissivity);
}

std::optional<double> emissivity(const BuildUpLayer& pane, Known side) {
  if (pane.number(Known::InfraredTransmittance).value_or(0) > 0) return std::nullopt;
  const auto number = pane.number(side);
  return number ? number : pane.number(Known::BothEmissivity);
}

std::optional<physics::Gas> gas_of(const BuildUpLayer& layer) {
  const auto single = layer.text(Known::GasType);
  if (!single.empty()) return physics::gas_named(single);
  std::vector<std::pair<physics::Gas, double>> parts;
  double sum = 0;
  for (const auto& [type, fraction] : gas_parts) {
    const auto name = layer.text(type);
    if (name.empty()) continue;
    const auto gas = physics::gas_named(name);
    const auto share = layer.number(fraction);
    if (!gas || !share) return std::nullopt;
    parts.emplace_back(*gas, *share);
    sum += *share;
  }
  if (sum < 0.99 || sum > 1.01) return std::nullopt;
  return physics::mixed(parts);
}

/// Reads layers one by one; gas between panes is known when all are read.
class Reader {
 public:
  Reader(const std::vector<BuildUpLayer>& layers, std::size_t ventilated, physics::HeatFlow flow)
      : layers_(layers), ventilated_(ventilated), flow_(flow), result_(layers.size()) {}

  std::vector<LayerHeat> run() {
    for (std::size_t i = 0; i < layers_.size(); ++i) {
      if (i < ventilated_) {
        result_[i].resistance = 0;
        result_[i].basis = Basis::NotCounted;
      } else {
        read(i);
      }
    }
    const auto resistances = physics::gas_resistances(spaces_, flow_);
    for (std::size_t n = 0; n < places_.size(); ++n) {
      result_[places_[n]].resistance = resistances[n];
    }
    return std::move(result_);
  }

 private:
  void read(std::size_t i) {
    const auto& layer = layers_[i];
    auto& heat = result_[i];
    heat.conductivity = layer.number(Known::Conductivity);
    heat.fault =
        layer.fault({Known::Conductivity, Known::Resistance, Known::Opening, Known::OuterEmissivity,
                     Known::InnerEmissivity, Known::AirVoidLevel, Known::FastenerNumber,
                     Known::FastenerConductivity, Known::FastenerSection, Known::FastenerLength,
                     Known::InvertedRoofFactor, Known::TaperRise, Known::TaperSecondRise});
    if (!heat.fault.empty()) return;
    read_resistance(i);
    if (heat.fault.empty()) read_bridge(i);
    if (!heat.fault.empty()) heat.resistance.reset();
  }

  void read_resistance(std::size_t i) {
    const auto& layer = layers_[i];
    auto& heat = result_[i];
    if (const auto stated = layer.number(Known::Resistance)) {
      heat.resistance = stated;
      heat.basis = Basis::Stated;
    } else if (layer.number(Known::UFactor)) {
      heat.fault = "its U-factor is that of a whole glazing, and it is not the only layer";
    } else if (layer.is_gas()) {
      read_gas(i);
    } else if (layer.is_air()) {
      read_air(i);
    } else {
      read_solid(i);
    }
  }

  void read_solid(std::size_t i) {
    const auto& layer = layers_[i];
    auto& heat = result_[i];
    auto conductivity = heat.conductivity;
    if (!conductivity && is_pane(layer)) conductivity = physics::glass_conductivity;
    if (!conductivity) {
      heat.fault = "it has neither a conductivity nor a resistance";
      return;
    }
    heat.fault = layer.thickness_fault();
    if (!heat.fault.empty()) return;
    heat.resistance = layer.thickness / *conductivity;
    heat.basis = Basis::Conductivity;
  }

  /// ISO 6946:2017, 6.9.2; also the part of a slightly ventilated layer in which it is still.
  void read_air(std::size_t i) {
    const auto& layer = layers_[i];
    auto& heat = result_[i];
    const auto word = lower_case(layer.text(Known::Ventilation));
    const bool known = word.empty() || word == "unventilated" || word == "slightly ventilated" ||
                       word == "well ventilated";
    heat.fault = known ? layer.thickness_fault()
                       : fmt::format("its 'Ventilation' is none that is known: '{}'", word);
    if (!heat.fault.empty()) return;
    heat.resistance =
        physics::air_resistance({layer.thickness, layer.number(Known::OuterEmissivity),
                                 layer.number(Known::InnerEmissivity)},
                                flow_);
    heat.basis = Basis::Air;
    if (!heat.resistance) heat.fault = "air layers thicker than 0.3 m have no resistance";
  }

  void read_gas(std::size_t i) {
    const auto& layer = layers_[i];
    auto& heat = result_[i];
    const auto gas = gas_of(layer);
    heat.fault = gas ? layer.thickness_fault() : "its gas is not known";
    if (!heat.fault.empty()) return;
    const bool between = i > ventilated_ && i + 1 < layers_.size();
    const auto outer = between ? emissivity(layers_[i - 1], Known::BackEmissivity) : std::nullopt;
    const auto inner = between ? emissivity(layers_[i + 1], Known::FrontEmissivity) : std::nullopt;
    if (!outer || !inner) {
      heat.fault = "it is gas, and not between panes whose emissivities are known";
      return;
    }
    spaces_.push_back({*gas, layer.thickness, *outer, *inner});
    places_.push_back(i);
    heat.basis = Basis::Gas;
  }

  void read_bridge(std::size_t i) {
    const auto& layer = layers_[i];
    auto& heat = result_[i];
    heat.fault = layer.fault({Known::BridgeShare, Known::BridgeConductivity, Known::BridgeDepth});
    if (!heat.fault.empty()) return;
    const auto share = layer.number(Known::BridgeShare);
    const auto conductivity = layer.number(Known::BridgeConductivity);
    if (share.value_or(conductivity ? 1 : 0) == 0) return;
    if (!share || !conductivity) {
      heat.fault =
          fmt::format("its '{}' is not known",
                      known_properties()[static_cast<std::size_t>(share ? Known::BridgeConductivity
                                                                        : Known::BridgeShare)]
                          .name);
      return;
    }
    heat.fault = layer.thickness_fault();
    if (!heat.fault.empty()) return;
    heat.bridge = physics::Bridge{*share, layer.thickness * bridged_part(layer) / *conductivity,
                                  group_of(layer, i)};
    heat.bridge_name = layer.text(Known::BridgeName);
    heat.bridge_conductivity = *conductivity;
  }

  /// Bridges without a group cross all others.
  std::size_t group_of(const BuildUpLayer& layer, std::size_t index) {
    const auto name = layer.text(Known::BridgeGroup);
    if (name.empty()) return layers_.size() + index;
    return groups_.emplace(name, groups_.size()).first->second;
  }

  const std::vector<BuildUpLayer>& layers_;
  std::size_t ventilated_;
  physics::HeatFlow flow_;
  std::vector<LayerHeat> result_;
  std::vector<physics::GasSpace> spaces_;
  std::vector<std::size_t> places_;  ///< the layers of the spaces
  std::map<std::string, std::size_t> groups_;
};

}  // namespace

std::vector<LayerHeat> layers_heat(const std::vector<BuildUpLayer>& layers, std::size_t ventilated,
                                   physics::HeatFlow flow) {
  return Reader(layers, ventilated, flow).run();
}

double bridged_part(const BuildUpLayer& layer) {
  const auto depth = layer.number(Known::BridgeDepth);
  return depth && layer.thickness > 0 ? std::min(1.0, *depth / 1000 / layer.thickness) : 1;
}

std::optional<physics::TaperShape> taper_shape(const BuildUpLayer& layer) {
  using physics::TaperShape;
  const auto word = lower_case(layer.text(Known::TaperShape));
  if (word.empty() || word == "rectangle") return TaperShape::Rectangle;
  if (word == "thick apex") return TaperShape::ThickApex;
  if (word == "thin apex") return TaperShape::ThinApex;
  if (word == "triangle") return TaperShape::Triangle;
  return std::nullopt;
}

}  // namespace veldra::kit
