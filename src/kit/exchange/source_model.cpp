// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/source_model.hpp"

#include "kit/exchange/source_fields.hpp"

#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

using namespace source_fields;

/// What gases that are none of the usual ones are known by.
std::vector<SourceField> gas_coefficients() {
  return dropped({"conductivity_coefficient_a", "conductivity_coefficient_b",
                  "conductivity_coefficient_c", "viscosity_coefficient_a",
                  "viscosity_coefficient_b", "viscosity_coefficient_c",
                  "specific_heat_coefficient_a", "specific_heat_coefficient_b",
                  "specific_heat_coefficient_c", "molecular_weight", "specific_heat_ratio"});
}

std::vector<SourceField> glazing_fields() {
  const std::vector<SourceField> data{
      optical_data_type(), text("window_glass_spectral_data_set_name", "Spectral data set"),
      thickness()};
  const auto glass = joined(joined(data, optics_at_normal_incidence()),
                            {number("conductivity", property::conductivity)});
  return joined(
      joined(glass, dirt_and_diffusion()),
      dropped({"young_s_modulus", "poisson_s_ratio",
               "window_glass_spectral_and_incident_angle_transmittance_data_set_table_name",
               "window_glass_spectral_and_incident_angle_front_reflectance_data_set_table_name",
               "window_glass_spectral_and_incident_angle_back_reflectance_data_set_table_name"}));
}

std::vector<SourceField> refraction_fields() {
  return joined(
      {thickness(), number("solar_index_of_refraction", "Solar index of refraction [-]"),
       number("solar_extinction_coefficient", "Solar extinction coefficient [1/m]"),
       number("visible_index_of_refraction", "Visible index of refraction [-]"),
       number("visible_extinction_coefficient", "Visible extinction coefficient [1/m]"),
       number("infrared_transmittance_at_normal_incidence",
              source_property::infrared_transmittance),
       number("infrared_hemispherical_emissivity", source_property::emissivity),
       number("conductivity", property::conductivity)},
      dropped({"dirt_correction_factor_for_solar_and_visible_transmittance", "solar_diffusing"}));
}

std::vector<SourceField> gas_mixture_fields() {
  return joined({thickness(), implied("number_of_gases_in_mixture")}, gases());
}

std::vector<SourceField> shade_fields() {
  return joined({number("solar_transmittance", source_property::solar_transmittance),
                 number("solar_reflectance", source_property::solar_reflectance),
                 number("visible_transmittance", source_property::visible_transmittance),
                 number("visible_reflectance", source_property::visible_reflectance),
                 number("infrared_hemispherical_emissivity", source_property::emissivity),
                 number("infrared_transmittance", source_property::infrared_transmittance),
                 thickness(), number("conductivity", property::conductivity)},
                dropped({"shade_to_glass_distance", "top_opening_multiplier",
                         "bottom_opening_multiplier", "left_side_opening_multiplier",
                         "right_side_opening_multiplier", "airflow_permeability"}));
}

std::vector<SourceField> blind_fields() {
  return dropped({"slat_orientation",
                  "slat_width",
                  "slat_separation",
                  "slat_thickness",
                  "slat_angle",
                  "slat_conductivity",
                  "slat_beam_solar_transmittance",
                  "front_side_slat_beam_solar_reflectance",
                  "back_side_slat_beam_solar_reflectance",
                  "slat_diffuse_solar_transmittance",
                  "front_side_slat_diffuse_solar_reflectance",
                  "back_side_slat_diffuse_solar_reflectance",
                  "slat_beam_visible_transmittance",
                  "front_side_slat_beam_visible_reflectance",
                  "back_side_slat_beam_visible_reflectance",
                  "slat_diffuse_visible_transmittance",
                  "front_side_slat_diffuse_visible_reflectance",
                  "back_side_slat_diffuse_visible_reflectance",
                  "slat_infrared_hemispherical_transmittance",
                  "front_side_slat_infrared_hemispherical_emissivity",
                  "back_side_slat_infrared_hemispherical_emissivity",
                  "blind_to_glass_distance",
                  "blind_top_opening_multiplier",
                  "blind_bottom_opening_multiplier",
                  "blind_left_side_opening_multiplier",
                  "blind_right_side_opening_multiplier",
                  "minimum_slat_angle",
                  "maximum_slat_angle"});
}

std::vector<SourceField> screen_fields() {
  return dropped({"reflected_beam_transmittance_accounting_method", "diffuse_solar_reflectance",
                  "diffuse_visible_reflectance", "thermal_hemispherical_emissivity", "conductivity",
                  "screen_material_spacing", "screen_material_diameter", "screen_to_glass_distance",
                  "top_opening_multiplier", "bottom_opening_multiplier",
                  "left_side_opening_multiplier", "right_side_opening_multiplier",
                  "angle_of_resolution_for_screen_transmittance_output_map"});
}

std::vector<SourceField> vegetation_fields() {
  const auto soil =
      joined(joined({dropped("height_of_plants"), dropped("leaf_area_index"),
                     number("leaf_reflectivity", source_property::leaf_reflectance),
                     dropped("leaf_emissivity"), dropped("minimum_stomatal_resistance"),
                     dropped("soil_layer_name"), roughness(), thickness()},
                    {number("conductivity_of_dry_soil", property::conductivity),
                     number("density_of_dry_soil", property::density),
                     number("specific_heat_of_dry_soil", property::specific_heat)}),
             absorptances());
  return joined(soil, dropped({"saturation_volumetric_moisture_content_of_the_soil_layer",
                               "residual_volumetric_moisture_content_of_the_soil_layer",
                               "initial_volumetric_moisture_content_of_the_soil_layer",
                               "moisture_diffusion_calculation_method"}));
}

MaterialClasses make_material_classes() {
  const auto resistance = number("thermal_resistance", property::resistance);
  return {
      {"Material",
       "Opaque",
       required,
       joined(joined({roughness(), thickness()}, solid()), absorptances()),
       {"roughness", "thickness", "conductivity", "density", "specific_heat"}},
      {"Material:NoMass",
       "No mass",
       none,
       joined({roughness(), resistance}, absorptances()),
       {"roughness", "thermal_resistance"}},
      {"Material:AirGap", "Air gap", none, {resistance}, {"thermal_resistance"}},
      {"Material:InfraredTransparent", "Infrared transparent", none, {}, {}},
      {"Material:RoofVegetation", "Vegetation", 0.1, vegetation_fields(), {}},
      {"WindowMaterial:Glazing",
       "Glazing",
       required,
       glazing_fields(),
       {"optical_data_type", "thickness"}},
      {"WindowMaterial:Glazing:RefractionExtinctionMethod",
       "Glazing",
       required,
       refraction_fields(),
       {"thickness", "solar_index_of_refraction", "solar_extinction_coefficient",
        "visible_index_of_refraction", "visible_extinction_coefficient"}},
      {"WindowMaterial:Gas",
       "Gas",
       required,
       joined({gas_type(), thickness()}, gas_coefficients()),
       {"gas_type", "thickness"}},
      {"WindowMaterial:GasMixture",
       "Gas mixture",
       required,
       gas_mixture_fields(),
       {"thickness", "gas_1_type", "gas_1_fraction", "gas_2_type", "gas_2_fraction"}},
      {"WindowMaterial:Gap:EquivalentLayer",
       "Gas",
       required,
       joined({gas_type(), thickness(),
               word("gap_vent_type", "Gap vent type", {"Sealed", "VentedIndoor", "VentedOutdoor"})},
              gas_coefficients()),
       {"gas_type", "thickness", "gap_vent_type"}},
      {"WindowMaterial:SimpleGlazingSystem",
       "Simple glazing",
       none,
       {number("u_factor", source_property::u_factor),
        number("solar_heat_gain_coefficient", source_property::heat_gain),
        number("visible_transmittance", source_property::visible_transmittance)},
       {"u_factor", "solar_heat_gain_coefficient"}},
      {"WindowMaterial:Shade",
       "Shade",
       required,
       shade_fields(),
       {"solar_transmittance", "solar_reflectance", "visible_transmittance", "visible_reflectance",
        "infrared_hemispherical_emissivity", "infrared_transmittance", "thickness",
        "conductivity"}},
      {"WindowMaterial:Blind",
       "Blind",
       none,
       blind_fields(),
       {"slat_width", "slat_separation", "front_side_slat_beam_solar_reflectance",
        "back_side_slat_beam_solar_reflectance", "front_side_slat_diffuse_solar_reflectance",
        "back_side_slat_diffuse_solar_reflectance", "slat_beam_visible_transmittance"}},
      {"WindowMaterial:Screen",
       "Screen",
       none,
       screen_fields(),
       {"diffuse_solar_reflectance", "diffuse_visible_reflectance"}},
      {"WindowMaterial:Glazing:EquivalentLayer", "Glazing", none, {}, {}},
      {"WindowMaterial:Shade:EquivalentLayer", "Shade", none, {}, {}},
      {"WindowMaterial:Drape:EquivalentLayer", "Shade", none, {}, {}},
      {"WindowMaterial:Blind:EquivalentLayer", "Blind", none, {}, {}},
      {"WindowMaterial:Screen:EquivalentLayer", "Screen", none, {}, {}}};
}

template <class Class>
std::map<std::string, const Class*> by_name(const std::vector<Class>& classes) {
  std::map<std::string, const Class*> result;
  for (const Class& described : classes) result[lower_case(described.name)] = &described;
  return result;
}

template <class Class>
const Class* find(const std::map<std::string, const Class*>& classes, const std::string& name) {
  const auto found = classes.find(lower_case(name));
  return found != classes.end() ? found->second : nullptr;
}

}  // namespace

const MaterialClasses& material_classes() {
  static const auto classes = make_material_classes();
  return classes;
}

const MaterialClass* material_class(const std::string& name) {
  static const auto index = by_name(material_classes());
  return find(index, name);
}

bool is_known_class(const std::string& name) {
  return material_class(name) != nullptr || construction_class(name) != nullptr;
}

bool can_be_class(const std::string& name) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  char before = ':';
  for (const char c : name) {
    const bool inner = (c >= '0' && c <= '9') || c == '_' || c == '-' || c == ':';
    if (!is_letter(c) && (before == ':' || !inner)) return false;
    before = c;
  }
  return before != ':';
}

FieldValues::Items::const_iterator FieldValues::find(std::string_view key) const {
  return std::find_if(items_.begin(), items_.end(),
                      [key](const auto& item) { return item.first == key; });
}

void FieldValues::erase(std::string_view key) {
  const auto found = find(key);
  if (found != items_.end()) items_.erase(found);
}

std::string& FieldValues::operator[](const char* key) {
  const auto found = find(key);
  if (found == items_.end()) return items_.emplace_back(key, std::string()).second;
  return items_[static_cast<std::size_t>(found - items_.begin())].second;
}

bool FieldValues::operator==(const FieldValues& other) const {
  return items_.size() == other.items_.size() &&
         std::all_of(items_.begin(), items_.end(), [&other](const auto& item) {
           const auto found = other.find(item.first);
           return found != other.end() && found->second == item.second;
         });
}

const char* key_in(const MaterialClass& described, std::string_view text) {
  const auto& fields = described.fields;
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [text](const auto& field) { return field.key == text; });
  return found != fields.end() ? found->key : nullptr;
}

bool can_have(const SourceField& field, const std::string& text) {
  return field.words.empty() ||
         std::any_of(field.words.begin(), field.words.end(),
                     [&](const char* word) { return lower_case(word) == lower_case(text); });
}

void leave_unknown_words_out(SourceMaterial& material) {
  for (const auto& field : material.described->fields) {
    const auto value = material.values.find(field.key);
    if (value == material.values.end() || can_have(field, value->second)) continue;
    material.not_kept.emplace_back(field.key, value->second);
    material.values.erase(field.key);
  }
}

bool has_field(const SourceMaterial& material, const std::string& key) {
  return material.values.count(key) > 0 ||
         std::any_of(material.not_kept.begin(), material.not_kept.end(),
                     [&](const auto& field) { return field.first == key; });
}

void add_layer(SourceConstruction& construction, std::size_t place, const std::string& material) {
  const auto expected = construction.layers.size() + 1;
  if (place != expected && construction.fault.empty()) {
    construction.fault = fmt::format("layer {} is missing", expected);
  }
  construction.layers.push_back(material);
}

bool may_lack_thickness(const std::string& type) {
  const auto& classes = material_classes();
  return std::any_of(classes.begin(), classes.end(), [&](const MaterialClass& described) {
    return described.type == type && described.default_thickness < 0;
  });
}

const ConstructionClass* construction_class(const std::string& name) {
  static const std::vector<ConstructionClass> classes{
      {"Construction", ConstructionKind::Layers},
      {"Construction:InternalSource", ConstructionKind::InternalSource},
      {"Construction:WindowEquivalentLayer", ConstructionKind::Layers},
      {"Construction:CfactorUndergroundWall", ConstructionKind::WithoutLayers},
      {"Construction:FfactorGroundFloor", ConstructionKind::WithoutLayers},
      {"Construction:WindowDataFile", ConstructionKind::WithoutLayers},
      {"Construction:AirBoundary", ConstructionKind::WithoutLayers}};
  static const auto index = by_name(classes);
  return find(index, name);
}

}  // namespace veldra::kit
