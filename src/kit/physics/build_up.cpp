// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/physics/build_up.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <cmath>

namespace veldra::kit {

namespace {

constexpr double least_opening = 1500;  ///< mm2, of a well-ventilated layer

}  // namespace

std::string BuildUpLayer::thickness_fault() const {
  if (std::isnan(thickness)) return "its thickness is not known";
  if (std::isinf(thickness)) return "its thickness is infinite";
  if (thickness == 0) return "its thickness is 0";
  return thickness < 0 ? "its thickness is negative" : "";
}

std::string BuildUpLayer::fault(std::initializer_list<Known> ids) const {
  if (!values) return "it has no material";
  for (const Known id : ids) {
    const auto sentence = values->fault(id);
    if (!sentence.empty()) return sentence;
  }
  return "";
}

bool BuildUpLayer::is_air() const {
  return values && (air_by_type || !text(Known::Ventilation).empty() || number(Known::Opening));
}

bool BuildUpLayer::is_gas() const {
  return values && (!text(Known::GasType).empty() || !text(Known::GasType1).empty());
}

/// ISO 6946:2017, 6.9.4. What the openings are tells more than a word.
bool BuildUpLayer::is_well_ventilated() const {
  if (const auto opening = number(Known::Opening)) return *opening >= least_opening;
  return lower_case(text(Known::Ventilation)) == "well ventilated";
}

std::vector<BuildUpLayer> build_up_of(const Composition& composition, Unit unit) {
  static const String air_gap("Air gap");
  std::vector<BuildUpLayer> layers;
  layers.reserve(composition.layers().size());
  for (const auto& layer : composition.layers()) {
    BuildUpLayer each;
    each.thickness = in_metres(layer.thickness(), unit);
    if (layer.material()) {
      each.values.emplace(*layer.material());
      each.material = layer.material()->name().utf8();
      const auto& type = layer.material()->type();
      each.air_by_type = type && type->name() == air_gap;
    }
    layers.push_back(std::move(each));
  }
  return layers;
}

std::size_t ventilated_layers(const std::vector<BuildUpLayer>& layers) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    if (layers[i].is_well_ventilated()) count = i + 1;
  }
  return count;
}

std::string about_layer(const std::vector<BuildUpLayer>& layers, std::size_t index,
                        const std::string& fault) {
  return fmt::format("layer {}, '{}': {}", index + 1, layers[index].material, fault);
}

}  // namespace veldra::kit
