// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/physics/build_up.hpp"
#include "kit/physics/layer_heat.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace veldra::kit {

namespace {

using physics::CombinedResistance;
using physics::HeatLayer;

constexpr double least_slight = 500;  ///< mm2 of opening of a slightly ventilated layer
constexpr double greatest_slight = 1500;

/// Puts the layers of a composition together.
class Assembly {
 public:
  Assembly(const Composition& composition, Unit unit, const physics::BoundaryStatement& asked)
      : layers_(build_up_of(composition, unit)), own_(composition) {
    result_.border = boundary_of(composition, asked);
    if (!result_.border.fault.empty()) result_.faults.push_back(result_.border.fault);
  }

  Transmission run() {
    find_surfaces();
    if (use_stated()) return std::move(result_);
    if (layers_.empty()) {
      result_.faults.emplace_back("it has no layers");
      return std::move(result_);
    }
    result_.layers = layers_heat(layers_, result_.ventilated, result_.border.boundary.heat_flow);
    for (std::size_t i = 0; i < layers_.size(); ++i) add_fault(i, result_.layers[i].fault);
    find_openings();
    note_methods();
    if (!result_.faults.empty()) return std::move(result_);
    combine();
    taper();
    correct();
    if (!result_.faults.empty()) result_.limits.reset();
    return std::move(result_);
  }

 private:
  void add_fault(std::size_t index, const std::string& fault) {
    if (!fault.empty()) result_.faults.push_back(about_layer(layers_, index, fault));
  }

  void find_surfaces() {
    auto boundary = result_.border.boundary;
    result_.ventilated = ventilated_layers(layers_);
    if (result_.ventilated > 0) boundary.outside = physics::Side::Ventilated;
    result_.outside = physics::surface_resistance(boundary.heat_flow, boundary.outside);
    result_.inside = physics::surface_resistance(boundary.heat_flow, boundary.inside);
  }

  /// A stated transmittance is that of the whole with its surfaces.
  bool use_stated() {
    const auto fault = own_.fault(Known::UFactor);
    if (!fault.empty()) result_.faults.push_back(fault);
    result_.stated = own_.number(Known::UFactor);
    if (!result_.stated && layers_.size() == 1) {
      result_.stated = layers_.front().number(Known::UFactor);
    }
    if (!result_.stated) return false;
    result_.layers.resize(layers_.size());
    result_.notes.emplace_back("the U-factor is used as it is stated, with its surfaces");
    return true;
  }

  /// ISO 6946:2017, 6.9.3: the openings of slightly ventilated layers.
  void find_openings() {
    openings_.assign(layers_.size(), 0);
    for (std::size_t i = result_.ventilated; i < layers_.size(); ++i) {
      if (!layers_[i].is_air()) continue;
      const auto opening = layers_[i].number(Known::Opening);
      if (opening && *opening > least_slight && *opening < greatest_slight) {
        openings_[i] = *opening;
      } else if (!opening &&
                 lower_case(layers_[i].text(Known::Ventilation)) == "slightly ventilated") {
        add_fault(i, "it is slightly ventilated, and its 'Ventilation opening [mm2]' is not known");
      }
    }
  }

  void note_methods() {
    const auto is_gas = [](const LayerHeat& layer) { return layer.basis == LayerHeat::Basis::Gas; };
    if (std::any_of(result_.layers.begin(), result_.layers.end(), is_gas)) {
      result_.notes.emplace_back("gas between panes after EN 673, with 15 K between them");
    }
    for (std::size_t i = result_.ventilated; i < layers_.size(); ++i) {
      const auto& layer = result_.layers[i];
      const bool metal = layer.bridge && layer.bridge_conductivity > 10;
      if (metal) {
        result_.notes.push_back(about_layer(
            layers_, i, "a bridge of metal is beyond the combined method; compute it in detail"));
      }
    }
  }

  /// The layers from one on, with layers that a bridge does not go through cut at its end.
  std::vector<HeatLayer> parts_from(std::size_t first) const {
    std::vector<HeatLayer> parts;
    for (std::size_t i = first; i < layers_.size(); ++i) {
      const auto& layer = result_.layers[i];
      const double part = bridged_part(layers_[i]);
      if (layer.bridge && part < 1) {
        parts.push_back({*layer.resistance * (1 - part), std::nullopt});
        parts.push_back({*layer.resistance * part, layer.bridge});
      } else {
        parts.push_back({*layer.resistance, layer.bridge});
      }
    }
    return parts;
  }

  /// The innermost slightly ventilated layer is taken for both kinds, and then the next one.
  std::optional<CombinedResistance> combined(std::size_t end) const {
    for (std::size_t i = end; i-- > result_.ventilated;) {
      if (openings_[i] == 0) continue;
      const auto still =
          physics::surface_resistance(result_.border.boundary.heat_flow, physics::Side::Ventilated);
      const auto open = physics::combined_resistance(parts_from(i + 1), still, result_.inside);
      const auto closed = combined(i);
      if (!open || !closed) return std::nullopt;
      return CombinedResistance{
          physics::slightly_ventilated(closed->upper, open->upper, openings_[i]),
          physics::slightly_ventilated(closed->lower, open->lower, openings_[i])};
    }
    return physics::combined_resistance(parts_from(result_.ventilated), result_.outside,
                                        result_.inside);
  }

  void combine() {
    for (const auto& layer : result_.layers) result_.bridged |= layer.bridge.has_value();
    result_.limits = combined(layers_.size());
    if (!result_.limits) {
      result_.faults.emplace_back("more bridges cross than can be counted");
      return;
    }
    result_.resistance = result_.limits->total() - result_.outside - result_.inside;
    if (!result_.limits->valid()) {
      result_.notes.push_back(fmt::format(
          "the upper limit is {:.2f} times the lower one; the combined method holds up to 1.5",
          result_.limits->upper / result_.limits->lower));
    }
  }

  void taper() {
    for (std::size_t i = result_.ventilated; i < layers_.size() && result_.limits; ++i) {
      if (!layers_[i].number(Known::TaperRise)) continue;
      if (result_.tapered) return add_fault(i, "it is the second tapered layer");
      const auto shape = taper_shape(layers_[i]);
      const auto conductivity = layers_[i].number(Known::Conductivity);
      if (!shape) return add_fault(i, "its 'Taper shape' is none that is known");
      if (!conductivity) return add_fault(i, "it is tapered and has no conductivity");
      const auto rise = [&](Known id) {
        return layers_[i].number(id).value_or(0) / 1000 / *conductivity;
      };
      result_.tapered = physics::tapered_transmittance(
          *shape, result_.limits->total(), rise(Known::TaperRise), rise(Known::TaperSecondRise));
    }
  }

  void correct() {
    double plain = result_.outside + result_.inside;
    for (const auto& layer : result_.layers) plain += *layer.resistance;
    for (std::size_t i = result_.ventilated; i < layers_.size(); ++i) {
      add_correction("air voids", i, air_voids(i, plain));
      add_correction("fasteners", i, fasteners(i, plain));
      add_correction("rain under the insulation", i, rain(i, plain));
    }
  }

  void add_correction(const char* what, std::size_t index, double value) {
    if (value == 0) return;
    result_.corrections.push_back({fmt::format("{} in layer {}", what, index + 1), value});
  }

  double air_voids(std::size_t index, double plain) const {
    const auto level = layers_[index].number(Known::AirVoidLevel);
    if (!level) return 0;
    return physics::air_void_correction(static_cast<int>(*level), *result_.layers[index].resistance,
                                        plain);
  }

  double fasteners(std::size_t index, double plain) {
    const auto& layer = layers_[index];
    const auto number = layer.number(Known::FastenerNumber);
    if (!number || *number == 0) return 0;
    const auto conductivity = layer.number(Known::FastenerConductivity);
    const auto section = layer.number(Known::FastenerSection);
    const auto fault = layer.thickness_fault();
    if (!conductivity || !section || !fault.empty()) {
      add_fault(index, "it has fasteners whose conductivity or cross-section is not known");
      return 0;
    }
    const auto length = layer.number(Known::FastenerLength);
    return physics::fastener_correction(
        {*number, *conductivity, *section * 1e-6, length ? *length / 1000 : layer.thickness,
         layer.thickness},
        *result_.layers[index].resistance, plain);
  }

  double rain(std::size_t index, double plain) {
    const auto factor = layers_[index].number(Known::InvertedRoofFactor);
    if (!factor || *factor == 0) return 0;
    const auto precipitation = own_.number(Known::Precipitation);
    if (!precipitation) {
      add_fault(index, "rain flows under it, and the composition has no 'Precipitation [mm/day]'");
      return 0;
    }
    return physics::inverted_roof_correction(*precipitation, *factor,
                                             *result_.layers[index].resistance, plain);
  }

  std::vector<BuildUpLayer> layers_;
  KnownValues own_;
  std::vector<double> openings_;  ///< of slightly ventilated layers, else 0
  Transmission result_;
};

}  // namespace

std::optional<double> Transmission::counted_resistance(std::size_t layer) const {
  const auto& resistance = layers.at(layer).resistance;
  return layer >= ventilated ? resistance : std::nullopt;
}

std::optional<double> Transmission::total_resistance() const {
  if (!faults.empty()) return std::nullopt;
  if (stated) return 1 / *stated;
  if (tapered) return 1 / *tapered;
  return limits ? std::optional<double>(limits->total()) : std::nullopt;
}

std::optional<double> Transmission::transmittance() const {
  const auto total = total_resistance();
  if (!total) return std::nullopt;
  double result = stated ? *stated : 1 / *total;
  for (const auto& correction : corrections) result += correction.value;
  return result;
}

Transmission transmission_of(const Composition& composition, Unit unit,
                             const physics::BoundaryStatement& asked) {
  return Assembly(composition, unit, asked).run();
}

double total_thickness(const Composition& composition) {
  double sum = 0;
  for (const auto& layer : composition.layers()) sum += layer.thickness();
  return sum;
}

}  // namespace veldra::kit
