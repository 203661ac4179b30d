// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics_properties.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace veldra::kit {

namespace {

constexpr double no_limit = std::numeric_limits<double>::infinity();

constexpr KnownProperty positive(Known id, const char* name, const char* used_for) {
  return {id, name, true, 0, false, no_limit, used_for, "materials"};
}

constexpr KnownProperty not_negative(Known id, const char* name, const char* used_for) {
  return {id, name, true, 0, true, no_limit, used_for, "materials"};
}

constexpr KnownProperty share(Known id, const char* name, const char* used_for) {
  return {id, name, true, 0, true, 1, used_for, "materials"};
}

constexpr KnownProperty emissivity(Known id, const char* name, const char* used_for) {
  return {id, name, true, 0, false, 1, used_for, "materials"};
}

constexpr KnownProperty text(Known id, const char* name, const char* used_for) {
  return {id, name, false, 0, true, no_limit, used_for, "materials"};
}

constexpr KnownProperty of(const char* owners, KnownProperty property) {
  property.of = owners;
  return property;
}

constexpr std::array<KnownProperty, known_count> properties{{
    positive(Known::Conductivity, property::conductivity, "resistance of a layer by its thickness"),
    not_negative(Known::Resistance, property::resistance,
                 "resistance of a layer as a whole, whatever its thickness"),
    not_negative(Known::Density, property::density, "mass, heat storage"),
    not_negative(Known::SpecificHeat, property::specific_heat, "heat storage"),
    positive(Known::VapourFactor, property::vapour_factor, "moisture"),
    not_negative(Known::VapourThickness, "Vapour diffusion thickness [m]",
                 "moisture: s_d of a layer as a whole, whatever its thickness"),
    not_negative(Known::Opening, "Ventilation opening [mm2]",
                 "air layers: openings per metre of length, of lying ones per square metre"),
    emissivity(Known::OuterEmissivity, "Outer emissivity [-]",
               "air layers: of the surface on their outer side"),
    emissivity(Known::InnerEmissivity, "Inner emissivity [-]",
               "air layers: of the surface on their inner side"),
    share(Known::BridgeShare, "Bridge share [-]", "bridged layers: part of the area, 0 to 1"),
    positive(Known::BridgeConductivity, "Bridge conductivity [W/(m K)]", "bridged layers"),
    positive(Known::BridgeDepth, "Bridge depth [mm]",
             "bridged layers: from the inner side, of a bridge that does not go through"),
    not_negative(Known::BridgeDensity, "Bridge density [kg/m3]", "bridged layers: mass, storage"),
    not_negative(Known::BridgeSpecificHeat, "Bridge specific heat [J/(kg K)]",
                 "bridged layers: storage"),
    positive(Known::BridgeVapourFactor, "Bridge vapour resistance factor [-]",
             "bridged layers: s_d of the bridge"),
    positive(Known::BridgeSpacing, "Bridge spacing [mm]",
             "drawings: from axis to axis of the bridges"),
    {Known::AirVoidLevel, "Air void level [-]", true, 0, true, 2,
     "correction for air voids in insulation: 0, 1 or 2", "materials"},
    not_negative(Known::FastenerNumber, "Fasteners [1/m2]", "correction for fasteners: number"),
    positive(Known::FastenerConductivity, "Fastener conductivity [W/(m K)]",
             "correction for fasteners"),
    positive(Known::FastenerSection, "Fastener cross-section [mm2]",
             "correction for fasteners: of one"),
    positive(Known::FastenerLength, "Fastener length [mm]",
             "correction for fasteners: within the layer; without it they go through"),
    not_negative(Known::InvertedRoofFactor, "Inverted roof factor [W day/(m2 K mm)]",
                 "correction for insulation above the sealing: f x"),
    not_negative(Known::TaperRise, "Taper rise [mm]",
                 "tapered layers: greatest thickness less that of the layer"),
    not_negative(Known::TaperSecondRise, "Taper second rise [mm]",
                 "tapered layers: of the middle corner of a triangle"),
    emissivity(Known::FrontEmissivity, "Front infrared emissivity [-]",
               "panes: side towards the outside"),
    emissivity(Known::BackEmissivity, "Back infrared emissivity [-]",
               "panes: side towards the inside"),
    emissivity(Known::BothEmissivity, "Infrared emissivity [-]", "panes: both sides"),
    share(Known::InfraredTransmittance, "Infrared transmittance [-]",
          "panes: glazing can be computed for 0 only"),
    share(Known::GasFraction1, "Gas 1 fraction [-]", "gas layers: part of the volume"),
    share(Known::GasFraction2, "Gas 2 fraction [-]", "gas layers"),
    share(Known::GasFraction3, "Gas 3 fraction [-]", "gas layers"),
    share(Known::GasFraction4, "Gas 4 fraction [-]", "gas layers"),
    of("both", positive(Known::UFactor, "U-factor [W/(m2 K)]",
                        "stated for a whole glazing or build-up with its surfaces; used as it is")),
    of("compositions", not_negative(Known::Precipitation, "Precipitation [mm/day]",
                                    "correction for inverted roofs: mean of the heating season")),
    text(Known::Ventilation, property::ventilation,
         "air layers: unventilated, slightly ventilated or well ventilated"),
    text(Known::BridgeName, "Bridge", "bridged layers: what the bridge is, such as rafters"),
    text(Known::BridgeGroup, "Bridge group",
         "bridged layers: bridges of one group lie behind one another, others cross"),
    text(Known::TaperShape, "Taper shape",
         "tapered layers: rectangle, thick apex, thin apex or triangle"),
    text(Known::GasType, "Gas type", "gas layers: Air, Argon, Krypton, Xenon or SF6"),
    text(Known::GasType1, "Gas 1 type", "gas layers: the same"),
    text(Known::GasType2, "Gas 2 type", "gas layers: the same"),
    text(Known::GasType3, "Gas 3 type", "gas layers: the same"),
    text(Known::GasType4, "Gas 4 type", "gas layers: the same"),
    of("compositions", text(Known::Boundary, "Boundary",
                            "what is outside and inside, and the direction of the heat flow")),
}};

using Index = std::vector<std::pair<String, std::size_t>>;

Index index_by_name() {
  Index index;
  for (std::size_t i = 0; i < properties.size(); ++i) index.emplace_back(properties[i].name, i);
  std::sort(index.begin(), index.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
  return index;
}

/// Compared as the library's texts, since names need no conversion then.
std::optional<std::size_t> known_by(const String& name) {
  static const Index index = index_by_name();
  const auto found = std::lower_bound(
      index.begin(), index.end(), name,
      [](const auto& entry, const String& wanted) { return entry.first < wanted; });
  if (found == index.end() || found->first != name) return std::nullopt;
  return found->second;
}

std::string fault_of(const KnownProperty& property, const std::string& text,
                     std::optional<double> number) {
  const char* fault = nullptr;
  std::string limit;
  if (!number) {
    fault = "no number that can be used";
  } else if (*number < property.least || (*number == property.least && !property.least_allowed)) {
    fault = property.least_allowed ? "less than " : "not greater than ";
    limit = exact_number(property.least);
  } else if (*number > property.greatest) {
    fault = "greater than ";
    limit = exact_number(property.greatest);
  } else if (property.id == Known::AirVoidLevel && std::floor(*number) != *number) {
    fault = "none of 0, 1 and 2";
  }
  if (fault == nullptr) return "";
  return fmt::format("its '{}' is {}{}: '{}'", property.name, fault, limit, text);
}

std::optional<double> known(double number) {
  return std::isnan(number) ? std::nullopt : std::optional<double>(number);
}

template <class Asset>
std::optional<double> of_asset(const std::shared_ptr<Asset>& asset,
                               double (Asset::*get)() const noexcept) {
  return asset ? known(((*asset).*get)()) : std::nullopt;
}

}  // namespace

const std::array<KnownProperty, known_count>& known_properties() { return properties; }

KnownValues::KnownValues(const Material& material) {
  read(material);
  add_of_assets(material);
}

KnownValues::KnownValues(const Composition& composition) { read(composition); }

template <class Owner>
void KnownValues::read(const Owner& owner) {
  for (const auto& [key, value] : owner.custom_values()) {
    const auto id = known_by(key->name());
    if (id) add(*id, trimmed(value.utf8()));
  }
}

/// An empty text says that a value is not known.
void KnownValues::add(std::size_t id, const std::string& text) {
  if (text.empty()) return;
  const auto& property = properties[id];
  Item item{static_cast<int>(id), std::nullopt, text, ""};
  if (property.number) {
    item.number = number_in(text);
    item.fault = fault_of(property, text, item.number);
    if (!item.fault.empty()) item.number.reset();
  }
  items_.push_back(std::move(item));
}

void KnownValues::add_of_assets(const Material& material) {
  const auto& thermal = material.thermalAsset();
  const auto& structural = material.structuralAsset();
  if (!thermal && !structural) return;
  const auto add_either = [&](Known id, std::optional<double> first, std::optional<double> second) {
    const auto number = first ? first : second;
    if (number && find(id) == nullptr) add(static_cast<std::size_t>(id), exact_number(*number));
  };
  add_either(Known::Conductivity, of_asset(thermal, &ThermalAsset::thermal_conductivity),
             std::nullopt);
  add_either(Known::Density, of_asset(thermal, &ThermalAsset::density),
             of_asset(structural, &StructuralAsset::density));
  add_either(Known::SpecificHeat, of_asset(thermal, &ThermalAsset::specific_heat),
             of_asset(structural, &StructuralAsset::specific_heat));
}

const KnownValues::Item* KnownValues::find(Known id) const {
  for (const Item& item : items_) {
    if (item.id == static_cast<int>(id)) return &item;
  }
  return nullptr;
}

std::optional<double> KnownValues::number(Known id) const {
  const Item* item = find(id);
  return item ? item->number : std::nullopt;
}

std::string KnownValues::text(Known id) const {
  const Item* item = find(id);
  return item ? item->text : std::string();
}

std::string KnownValues::fault(Known id) const {
  const Item* item = find(id);
  return item ? item->fault : std::string();
}

std::vector<std::string> KnownValues::faults() const {
  std::vector<const Item*> wrong;
  for (const Item& item : items_) {
    if (!item.fault.empty()) wrong.push_back(&item);
  }
  std::sort(wrong.begin(), wrong.end(),
            [](const Item* left, const Item* right) { return left->id < right->id; });
  std::vector<std::string> sentences;
  sentences.reserve(wrong.size());
  for (const Item* item : wrong) sentences.push_back(item->fault);
  return sentences;
}

std::optional<double> number_value(const Material& material, const char* property) {
  const auto value = material.custom_value(String(property));
  if (value.null()) return std::nullopt;
  return number_in(value.get().utf8());
}

std::optional<double> conductivity_of(const Material& material) {
  if (const auto conductivity = number_value(material, property::conductivity)) {
    return conductivity;
  }
  return of_asset(material.thermalAsset(), &ThermalAsset::thermal_conductivity);
}

}  // namespace veldra::kit
