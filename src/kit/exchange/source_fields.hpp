// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_SOURCE_FIELDS_HPP
#define VELDRA_KIT_EXCHANGE_SOURCE_FIELDS_HPP

#include "kit/exchange/source_model.hpp"

#include <veldra/kit/physics.hpp>

#include <string>
#include <utility>
#include <vector>

namespace veldra::kit {

/// The custom properties that take what several formats say, so that the same material from two of
/// them is equal. Those of physics have their names there.
namespace source_property {

constexpr const char* solar_transmittance = "Solar transmittance [-]";
constexpr const char* front_solar_reflectance = "Front solar reflectance [-]";
constexpr const char* back_solar_reflectance = "Back solar reflectance [-]";
constexpr const char* visible_transmittance = "Visible transmittance [-]";
constexpr const char* front_visible_reflectance = "Front visible reflectance [-]";
constexpr const char* back_visible_reflectance = "Back visible reflectance [-]";
constexpr const char* infrared_transmittance = "Infrared transmittance [-]";
constexpr const char* front_emissivity = "Front infrared emissivity [-]";
constexpr const char* back_emissivity = "Back infrared emissivity [-]";
constexpr const char* dirt_correction = "Dirt correction factor [-]";
constexpr const char* solar_diffusing = "Solar diffusing";
constexpr const char* optical_data_type = "Optical data type";
constexpr const char* solar_reflectance = "Solar reflectance [-]";
constexpr const char* visible_reflectance = "Visible reflectance [-]";
constexpr const char* emissivity = "Infrared emissivity [-]";
constexpr const char* leaf_reflectance = "Leaf reflectance [-]";
constexpr const char* gas_type = "Gas type";
constexpr const char* u_factor = "U-factor [W/(m2 K)]";
constexpr const char* heat_gain = "Solar heat gain coefficient [-]";

}  // namespace source_property

/// What the tables of classes are made of.
namespace source_fields {

constexpr double required = 0;
constexpr double none = -1;

inline SourceField number(const char* key, const char* property) {
  return {key, property, FieldKind::Number};
}

inline SourceField text(const char* key, const char* property) {
  return {key, property, FieldKind::Text};
}

inline SourceField thickness() { return {"thickness", "", FieldKind::Thickness}; }

inline SourceField dropped(const char* key) { return {key, "", FieldKind::Dropped}; }

inline SourceField implied(const char* key) { return {key, "", FieldKind::Implied}; }

inline std::vector<SourceField> dropped(const std::vector<const char*>& keys) {
  std::vector<SourceField> fields;
  fields.reserve(keys.size());
  for (const char* key : keys) fields.push_back(dropped(key));
  return fields;
}

inline SourceField word(const char* key, const char* property, std::vector<const char*> words) {
  return {key, property, FieldKind::Text, std::move(words)};
}

inline SourceField roughness() {
  return word("roughness", "Roughness",
              {"VeryRough", "Rough", "MediumRough", "MediumSmooth", "Smooth", "VerySmooth"});
}

inline SourceField gas_of_mixture(const char* key, const char* property) {
  return word(key, property, {"Air", "Argon", "Krypton", "Xenon", "SF6"});
}

/// One that is known by its coefficients is "Custom".
inline SourceField gas_type() {
  return word("gas_type", source_property::gas_type,
              {"Air", "Argon", "Krypton", "Xenon", "SF6", "Custom"});
}

inline SourceField optical_data_type() {
  return word("optical_data_type", source_property::optical_data_type,
              {"SpectralAverage", "Spectral", "SpectralAndAngle", "BSDF"});
}

inline SourceField solar_diffusing() {
  return word("solar_diffusing", source_property::solar_diffusing, {"Yes", "No"});
}

inline std::vector<SourceField> joined(std::vector<SourceField> fields,
                                       const std::vector<SourceField>& more) {
  fields.insert(fields.end(), more.begin(), more.end());
  return fields;
}

inline std::vector<SourceField> absorptances() {
  return {number("thermal_absorptance", "Thermal absorptance [-]"),
          number("solar_absorptance", "Solar absorptance [-]"),
          number("visible_absorptance", "Visible absorptance [-]")};
}

inline std::vector<SourceField> solid() {
  return {number("conductivity", property::conductivity), number("density", property::density),
          number("specific_heat", property::specific_heat)};
}

/// Of a pane, as the formats of simulation name it.
inline std::vector<SourceField> optics_at_normal_incidence() {
  return {
      number("solar_transmittance_at_normal_incidence", source_property::solar_transmittance),
      number("front_side_solar_reflectance_at_normal_incidence",
             source_property::front_solar_reflectance),
      number("back_side_solar_reflectance_at_normal_incidence",
             source_property::back_solar_reflectance),
      number("visible_transmittance_at_normal_incidence", source_property::visible_transmittance),
      number("front_side_visible_reflectance_at_normal_incidence",
             source_property::front_visible_reflectance),
      number("back_side_visible_reflectance_at_normal_incidence",
             source_property::back_visible_reflectance),
      number("infrared_transmittance_at_normal_incidence", source_property::infrared_transmittance),
      number("front_side_infrared_hemispherical_emissivity", source_property::front_emissivity),
      number("back_side_infrared_hemispherical_emissivity", source_property::back_emissivity)};
}

/// What dims the light behind a pane.
inline std::vector<SourceField> dirt_and_diffusion() {
  return {number("dirt_correction_factor_for_solar_and_visible_transmittance",
                 source_property::dirt_correction),
          solar_diffusing()};
}

/// The parts of a mixture, of which there are at most four.
inline std::vector<SourceField> gases() {
  return {
      gas_of_mixture("gas_1_type", "Gas 1 type"), number("gas_1_fraction", "Gas 1 fraction [-]"),
      gas_of_mixture("gas_2_type", "Gas 2 type"), number("gas_2_fraction", "Gas 2 fraction [-]"),
      gas_of_mixture("gas_3_type", "Gas 3 type"), number("gas_3_fraction", "Gas 3 fraction [-]"),
      gas_of_mixture("gas_4_type", "Gas 4 type"), number("gas_4_fraction", "Gas 4 fraction [-]")};
}

}  // namespace source_fields

}  // namespace veldra::kit

#endif
