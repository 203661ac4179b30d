// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/honeybee_model.hpp"

#include "kit/exchange/source_fields.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

using namespace source_fields;

std::vector<SourceField> glazing_fields() {
  return {thickness(),
          number("solar_transmittance", source_property::solar_transmittance),
          number("solar_reflectance", source_property::front_solar_reflectance),
          number("solar_reflectance_back", source_property::back_solar_reflectance),
          number("visible_transmittance", source_property::visible_transmittance),
          number("visible_reflectance", source_property::front_visible_reflectance),
          number("visible_reflectance_back", source_property::back_visible_reflectance),
          number("infrared_transmittance", source_property::infrared_transmittance),
          number("emissivity", source_property::front_emissivity),
          number("emissivity_back", source_property::back_emissivity),
          number("conductivity", property::conductivity),
          number("dirt_correction", source_property::dirt_correction),
          solar_diffusing()};
}

std::vector<SourceField> shade_fields() {
  return {number("solar_transmittance", source_property::solar_transmittance),
          number("solar_reflectance", source_property::solar_reflectance),
          number("visible_transmittance", source_property::visible_transmittance),
          number("visible_reflectance", source_property::visible_reflectance),
          number("emissivity", source_property::emissivity),
          number("infrared_transmittance", source_property::infrared_transmittance),
          thickness(),
          number("conductivity", property::conductivity)};
}

std::vector<SourceField> mixture_fields() { return joined({thickness()}, gases()); }

std::vector<SourceField> plant_fields() {
  return {number("plant_height", "Plant height [m]"),
          number("leaf_area_index", "Leaf area index [-]"),
          number("leaf_reflectivity", source_property::leaf_reflectance),
          number("leaf_emissivity", "Leaf emissivity [-]"),
          number("min_stomatal_resist", "Minimum stomatal resistance [s/m]"),
          number("sat_vol_moist_cont", "Saturation volumetric moisture content [-]"),
          number("residual_vol_moist_cont", "Residual volumetric moisture content [-]"),
          number("init_vol_moist_cont", "Initial volumetric moisture content [-]"),
          word("moist_diff_model", "Moisture diffusion model", {"Simple", "Advanced"})};
}

std::vector<SourceField> opaque_fields() {
  return joined(joined({roughness(), thickness()}, solid()), absorptances());
}

/// Thicknesses that the format has where none is given.
constexpr double usual_vegetation = 0.1;
constexpr double usual_pane = 0.003;
constexpr double usual_gap = 0.0125;
constexpr double usual_shade = 0.005;

MaterialClasses make_classes() {
  return {
      {"EnergyMaterial",
       "Opaque",
       required,
       opaque_fields(),
       {"thickness", "conductivity", "density", "specific_heat"}},
      {"EnergyMaterialNoMass",
       "No mass",
       none,
       joined({roughness(), number("r_value", property::resistance)}, absorptances()),
       {"r_value"}},
      {"EnergyMaterialVegetation",
       "Vegetation",
       usual_vegetation,
       joined(opaque_fields(), plant_fields()),
       {}},
      {"EnergyWindowMaterialGlazing", "Glazing", usual_pane, glazing_fields(), {}},
      {"EnergyWindowMaterialSimpleGlazSys",
       "Simple glazing",
       none,
       {number("u_factor", source_property::u_factor), number("shgc", source_property::heat_gain),
        number("vt", source_property::visible_transmittance)},
       {"u_factor", "shgc"}},
      {"EnergyWindowMaterialGas", "Gas", usual_gap, {gas_type(), thickness()}, {}},
      {"EnergyWindowMaterialGasMixture",
       "Gas mixture",
       usual_gap,
       mixture_fields(),
       {"gas_1_type", "gas_1_fraction", "gas_2_type", "gas_2_fraction"}},
      {"EnergyWindowMaterialGasCustom", "Gas", usual_gap, {thickness()}, {}},
      {"EnergyWindowMaterialShade", "Shade", usual_shade, shade_fields(), {}},
      {"EnergyWindowMaterialBlind", "Blind", none, {}, {}},
      {"EnergyWindowFrame", "Frame", none, {}, {"width", "conductance"}}};
}

}  // namespace

const MaterialClasses& honeybee_classes() {
  static const auto classes = make_classes();
  return classes;
}

const MaterialClass* honeybee_class(const std::string& name) {
  const auto& classes = honeybee_classes();
  const auto found = std::find_if(classes.begin(), classes.end(),
                                  [&](const auto& described) { return described.name == name; });
  return found != classes.end() ? &*found : nullptr;
}

const ConstructionClass* honeybee_construction(const std::string& name) {
  static const ConstructionClass classes[] = {
      {"OpaqueConstruction", ConstructionKind::Layers},
      {"OpaqueConstructionAbridged", ConstructionKind::Layers},
      {"WindowConstruction", ConstructionKind::Layers},
      {"WindowConstructionAbridged", ConstructionKind::Layers}};
  for (const auto& described : classes) {
    if (described.name == name) return &described;
  }
  return nullptr;
}

bool is_of_windows(const MaterialClass& described) {
  return std::string(described.name).compare(0, 12, "EnergyWindow") == 0;
}

std::string gas_type_key(int gas) { return fmt::format("gas_{}_type", gas); }
std::string gas_fraction_key(int gas) { return fmt::format("gas_{}_fraction", gas); }

}  // namespace veldra::kit
