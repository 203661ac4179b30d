// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/numbers.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include "kit/exchange/source_fields.hpp"
#include "kit/exchange/source_model.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <cmath>
#include <set>

namespace veldra::kit {

namespace {

using Faults = std::vector<NumberFault>;

// The fields that faults are of.
constexpr const char* thicknesses = "thicknesses";
constexpr const char* layer_thickness = "thickness";
constexpr const char* least_thickness = "variable_layer_min_thickness";
constexpr const char* greatest_thickness = "variable_layer_max_thickness";

/// A material that is known by its resistance or by what it lets through has no thickness, and its
/// layers have none either.
bool has_no_thickness(const Composition::Layer& layer) {
  const auto& material = layer.material();
  return layer.thickness() == 0 && material && material->thicknesses().empty() &&
         material->type() && may_lack_thickness(material->type()->name().utf8());
}

/// An empty text says that it is not known.
void add_conductivity(const Material& material, Faults& faults) {
  const auto value = material.custom_value(String(property::conductivity));
  if (value.null()) return;
  const std::string text = trimmed(value.get().utf8());
  const auto number = number_value(material, property::conductivity);
  if (text.empty() || (number && *number > 0)) return;
  faults.push_back(
      {fmt::format("its thermal conductivity is {}: {}",
                   number ? "not greater than 0" : "no number that can be used", quoted(text)),
       property::conductivity});
}

/// The properties that are parts of what falls on a surface, but for those that physics knows.
const std::set<String>& shares_of_radiation() {
  static const std::set<String> names{String("Thermal absorptance [-]"),
                                      String("Solar absorptance [-]"),
                                      String("Visible absorptance [-]"),
                                      String(source_property::solar_transmittance),
                                      String(source_property::front_solar_reflectance),
                                      String(source_property::back_solar_reflectance),
                                      String(source_property::visible_transmittance),
                                      String(source_property::front_visible_reflectance),
                                      String(source_property::back_visible_reflectance),
                                      String(source_property::solar_reflectance),
                                      String(source_property::visible_reflectance),
                                      String(source_property::leaf_reflectance),
                                      String(source_property::heat_gain)};
  return names;
}

/// What is wrong with a text that is to be a part of a whole; null for nothing.
const char* fault_of_share(const std::string& text) {
  const auto number = number_in(text);
  if (!number) return "no number that can be used";
  if (*number < 0) return "less than 0";
  return *number > 1 ? "greater than 1" : nullptr;
}

void add_shares(const Material& material, Faults& faults) {
  for (const auto& [property, value] : material.custom_values()) {
    if (shares_of_radiation().count(property->name()) == 0) continue;
    const std::string text = trimmed(value.utf8());
    const char* fault = text.empty() ? nullptr : fault_of_share(text);
    if (fault == nullptr) continue;
    const auto name = property->name().utf8();
    faults.push_back({fmt::format("its {} is {}: {}", quoted(name), fault, quoted(text)), name});
  }
}

void add_known(const KnownValues& values, Faults& faults) {
  for (const auto& known : known_properties()) {
    const auto fault = values.fault(known.id);
    if (!fault.empty()) faults.push_back({fault, known.name});
  }
}

/// A conductivity that the material states has been told of already.
void add_physics(const Material& material, Faults& faults) {
  Faults known;
  add_known(KnownValues(material), known);
  const bool told = !material.custom_value(String(property::conductivity)).null();
  for (const auto& fault : known) {
    if (!told || fault.field != property::conductivity) faults.push_back(fault);
  }
}

void add_layers(const Composition& composition, Faults& faults) {
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    const auto& layer = composition.layers()[i];
    if (layer.thickness() != 0 || has_no_thickness(layer)) continue;
    faults.push_back({fmt::format("the thickness 0 of layer {} is not greater than 0", i + 1),
                      layer_thickness, i + 1});
  }
}

void add_variable_layer(const Composition& composition, Faults& faults) {
  const auto layers = composition.layers().size();
  if (composition.has_variable_layer() && composition.variable_layer() >= layers) {
    faults.push_back({fmt::format("the variable layer {} is none of its {} layers",
                                  composition.variable_layer() + 1ULL, layers),
                      "variable_layer"});
  }
  const double least = composition.variable_layer_min_thickness();
  const double greatest = composition.variable_layer_max_thickness();
  if (composition.has_variable_layer_max_thickness() && greatest < least) {
    faults.push_back({"the greatest thickness of the variable layer is less than the least",
                      greatest_thickness});
  }
}

/// Adds what the library says of a thickness that cannot be; returns whether it is one.
bool add_impossible(double thickness, const std::string& what, const char* field, std::size_t layer,
                    Faults& faults) {
  if (thickness >= 0 && std::isfinite(thickness)) return false;
  const char* fault = std::isnan(thickness)   ? "not known"
                      : std::isinf(thickness) ? "infinite"
                                              : "negative";
  faults.push_back({fmt::format("{} is {}", what, fault), field, layer});
  return true;
}

Faults doubts_of(const Material& material) {
  Faults faults;
  add_conductivity(material, faults);
  add_physics(material, faults);
  add_shares(material, faults);
  if (material.thicknesses().count(0) != 0) {
    faults.push_back({"the thickness 0 is not greater than 0", thicknesses});
  }
  return faults;
}

Faults doubts_of(const Composition& composition) {
  Faults faults;
  add_layers(composition, faults);
  add_variable_layer(composition, faults);
  add_known(KnownValues(composition), faults);
  const auto border = boundary_of(composition);
  const auto& statement = known_properties()[static_cast<std::size_t>(Known::Boundary)];
  if (!border.fault.empty()) faults.push_back({border.fault, statement.name});
  return faults;
}

Faults impossible_of(const Material& material) {
  Faults faults;
  for (const double thickness : material.thicknesses()) {
    if (add_impossible(thickness, "a thickness", thicknesses, 0, faults)) break;
  }
  return faults;
}

Faults impossible_of(const Composition& composition) {
  Faults faults;
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    add_impossible(composition.layers()[i].thickness(),
                   fmt::format("the thickness of layer {}", i + 1), layer_thickness, i + 1, faults);
  }
  const bool is_told =
      add_impossible(composition.variable_layer_min_thickness(),
                     "the least thickness of the variable layer", least_thickness, 0, faults);
  if (!is_told && composition.has_variable_layer_max_thickness()) {
    add_impossible(composition.variable_layer_max_thickness(),
                   "the greatest thickness of the variable layer", greatest_thickness, 0, faults);
  }
  return faults;
}

template <class T>
Faults all_of(const T& object) {
  auto faults = impossible_of(object);
  const auto doubts = doubts_of(object);
  faults.insert(faults.end(), doubts.begin(), doubts.end());
  return faults;
}

std::vector<std::string> sentences_of(const Faults& faults) {
  std::vector<std::string> sentences;
  sentences.reserve(faults.size());
  for (const auto& fault : faults) sentences.push_back(fault.sentence);
  return sentences;
}

}  // namespace

std::vector<std::string> doubtful_numbers(const Material& material) {
  return sentences_of(doubts_of(material));
}

std::vector<std::string> doubtful_numbers(const Composition& composition) {
  return sentences_of(doubts_of(composition));
}

std::vector<std::string> wrong_numbers(const Material& material) {
  return sentences_of(all_of(material));
}

std::vector<std::string> wrong_numbers(const Composition& composition) {
  return sentences_of(all_of(composition));
}

std::vector<NumberFault> number_faults(const Material& material) { return all_of(material); }

std::vector<NumberFault> number_faults(const Composition& composition) {
  return all_of(composition);
}

}  // namespace veldra::kit
