// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/gbxml_model.hpp"

#include "kit/exchange/inch_pound.hpp"
#include "kit/exchange/source_fields.hpp"

#include <veldra/kit/text.hpp>

#include <algorithm>
#include <iterator>

namespace veldra::kit {

namespace {

using namespace inch_pound;
using namespace source_fields;

constexpr const char* resistance_key = "R-value";
constexpr const char* conductivity_key = "Conductivity";

SourceField resistance() { return {resistance_key, property::resistance, FieldKind::Resistance}; }

std::vector<SourceField> mass_fields() {
  return {number("Density", property::density), number("SpecificHeat", property::specific_heat)};
}

MaterialClasses make_classes() {
  const auto conducting = joined({number(conductivity_key, property::conductivity)}, mass_fields());
  const auto resisting = joined({resistance()}, mass_fields());
  const auto all = joined({resistance()}, conducting);
  return {
      {"Material", "Opaque", required, joined({thickness()}, all), {"thickness", conductivity_key}},
      {"Material", "No mass", required, joined({thickness()}, resisting), {resistance_key}},
      {"Material", "No mass", none, all, {resistance_key}}};
}

enum Classes { Solid, WithThickness, WithoutThickness };

constexpr const char* length = "Thickness";

constexpr GbxmlUnit units[] = {{length, "Meters", 1, 1, true},
                               {length, "Kilometers", 1000, 1, true},
                               {length, "Centimeters", 1, 100, true},
                               {length, "Millimeters", 1, 1000, true},
                               {length, "Miles", 5280 * foot, 1, false},
                               {length, "Yards", 3 * foot, 1, false},
                               {length, "Feet", foot, 1, false},
                               {length, "Inches", inch, 1, false},
                               {conductivity_key, "WPerMeterK", 1, 1, true},
                               {conductivity_key, "WPerCmC", 100, 1, true},
                               {conductivity_key, "BtuPerHourFtF", u_unit* foot, 1, false},
                               {"Density", "KgPerCubicM", 1, 1, true},
                               {"Density", "GramsPerCubicCm", 1000, 1, true},
                               {"Density", "LbsPerCubicFt", pound, foot* foot* foot, false},
                               {"Density", "LbsPerCubicIn", pound, inch* inch* inch, false},
                               {"SpecificHeat", "JPerKgK", 1, 1, true},
                               {"SpecificHeat", "BTUPerLbF", btu, pound* fahrenheit, false},
                               {resistance_key, "SquareMeterKPerW", 1, 1, true},
                               {resistance_key, "HrSquareFtFPerBTU", 1, u_unit, false},
                               {gbxml_transmittance, "WPerSquareMeterK", 1, 1, true},
                               {gbxml_transmittance, "BtuPerHourSquareFtF", u_unit, 1, false}};

}  // namespace

const MaterialClasses& gbxml_classes() {
  static const auto classes = make_classes();
  return classes;
}

const MaterialClass& gbxml_class_of(const SourceMaterial& material) {
  const auto has = [&](const char* key) { return material.values.count(key) > 0; };
  const auto& classes = gbxml_classes();
  if (!has("thickness")) return classes[WithoutThickness];
  const bool resists_only = has(resistance_key) && !has(conductivity_key);
  return classes[resists_only ? WithThickness : Solid];
}

const ConstructionClass& gbxml_construction() { return *construction_class("Construction"); }

std::string gbxml_element_of(const SourceField& field) {
  return field.kind == FieldKind::Thickness ? length : field.key;
}

const GbxmlUnit* gbxml_unit(const std::string& element, const std::string& name) {
  const auto wanted = lower_case(name);
  const auto* found = std::find_if(std::begin(units), std::end(units), [&](const auto& unit) {
    return unit.element == element && lower_case(unit.name) == wanted;
  });
  return found != std::end(units) ? found : nullptr;
}

bool gbxml_has_unit(const std::string& element) {
  return std::any_of(std::begin(units), std::end(units),
                     [&](const auto& unit) { return unit.element == element; });
}

const GbxmlUnit& gbxml_si_unit(const std::string& element) {
  return *std::find_if(std::begin(units), std::end(units),
                       [&](const auto& unit) { return unit.element == element; });
}

}  // namespace veldra::kit
