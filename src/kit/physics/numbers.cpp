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

using Sentences = std::vector<std::string>;

/// A material that is known by its resistance or by what it lets through has no thickness, and its
/// layers have none either.
bool has_no_thickness(const Composition::Layer& layer) {
  const auto& material = layer.material();
  return layer.thickness() == 0 && material && material->thicknesses().empty() &&
         material->type() && may_lack_thickness(material->type()->name().utf8());
}

/// An empty text says that it is not known.
void add_conductivity(const Material& material, Sentences& sentences) {
  const auto value = material.custom_value(String(property::conductivity));
  if (value.null()) return;
  const std::string text = trimmed(value.get().utf8());
  const auto number = number_value(material, property::conductivity);
  if (text.empty() || (number && *number > 0)) return;
  sentences.push_back(fmt::format("its thermal conductivity is {}: {}",
                                  number ? "not greater than 0" : "no number that can be used",
                                  quoted(text)));
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

void add_shares(const Material& material, Sentences& sentences) {
  for (const auto& [property, value] : material.custom_values()) {
    if (shares_of_radiation().count(property->name()) == 0) continue;
    const std::string text = trimmed(value.utf8());
    const char* fault = text.empty() ? nullptr : fault_of_share(text);
    if (fault == nullptr) continue;
    sentences.push_back(
        fmt::format("its {} is {}: {}", quoted(property->name().utf8()), fault, quoted(text)));
  }
}

/// A conductivity that the material states has been told of already.
void add_physics(const Material& material, Sentences& sentences) {
  const KnownValues values(material);
  const auto conductivity = values.fault(Known::Conductivity);
  const bool told = !material.custom_value(String(property::conductivity)).null();
  for (const auto& fault : values.faults()) {
    if (!told || fault != conductivity) sentences.push_back(fault);
  }
}

void add_layers(const Composition& composition, Sentences& sentences) {
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    const auto& layer = composition.layers()[i];
    if (layer.thickness() != 0 || has_no_thickness(layer)) continue;
    sentences.push_back(fmt::format("the thickness 0 of layer {} is not greater than 0", i + 1));
  }
}

void add_variable_layer(const Composition& composition, Sentences& sentences) {
  const auto layers = composition.layers().size();
  if (composition.has_variable_layer() && composition.variable_layer() >= layers) {
    sentences.push_back(fmt::format("the variable layer {} is none of its {} layers",
                                    composition.variable_layer() + 1ULL, layers));
  }
  const double least = composition.variable_layer_min_thickness();
  const double greatest = composition.variable_layer_max_thickness();
  if (composition.has_variable_layer_max_thickness() && greatest < least) {
    sentences.push_back("the greatest thickness of the variable layer is less than the least");
  }
}

/// Adds what the library says of a thickness that cannot be; returns whether it is one.
bool add_impossible(double thickness, const std::string& what, Sentences& sentences) {
  if (thickness >= 0 && std::isfinite(thickness)) return false;
  const char* fault = std::isnan(thickness)   ? "not known"
                      : std::isinf(thickness) ? "infinite"
                                              : "negative";
  sentences.push_back(fmt::format("{} is {}", what, fault));
  return true;
}

void append(Sentences& sentences, const Sentences& more) {
  sentences.insert(sentences.end(), more.begin(), more.end());
}

}  // namespace

std::vector<std::string> doubtful_numbers(const Material& material) {
  Sentences sentences;
  add_conductivity(material, sentences);
  add_physics(material, sentences);
  add_shares(material, sentences);
  if (material.thicknesses().count(0) != 0) {
    sentences.push_back("the thickness 0 is not greater than 0");
  }
  return sentences;
}

std::vector<std::string> doubtful_numbers(const Composition& composition) {
  Sentences sentences;
  add_layers(composition, sentences);
  add_variable_layer(composition, sentences);
  append(sentences, KnownValues(composition).faults());
  const auto border = boundary_of(composition);
  if (!border.fault.empty()) sentences.push_back(border.fault);
  return sentences;
}

std::vector<std::string> wrong_numbers(const Material& material) {
  Sentences sentences;
  for (const double thickness : material.thicknesses()) {
    if (add_impossible(thickness, "a thickness", sentences)) break;
  }
  append(sentences, doubtful_numbers(material));
  return sentences;
}

std::vector<std::string> wrong_numbers(const Composition& composition) {
  Sentences sentences;
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    add_impossible(composition.layers()[i].thickness(),
                   fmt::format("the thickness of layer {}", i + 1), sentences);
  }
  const bool is_told = add_impossible(composition.variable_layer_min_thickness(),
                                      "the least thickness of the variable layer", sentences);
  if (!is_told && composition.has_variable_layer_max_thickness()) {
    add_impossible(composition.variable_layer_max_thickness(),
                   "the greatest thickness of the variable layer", sentences);
  }
  append(sentences, doubtful_numbers(composition));
  return sentences;
}

}  // namespace veldra::kit
