// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_properties.hpp"

#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

/// A property of the classes that IFC2x3 has in place of property sets, by its place behind the
/// material. The sets are those that IFC4 has for them.
struct FixedProperty {
  const char* name;
  const char* measure;
};

struct FixedClass {
  const char* keyword;
  const char* set;
  std::vector<FixedProperty> properties;
};

constexpr const char* ratio = "IFCRATIOMEASURE";
constexpr const char* modulus = "IFCMODULUSOFELASTICITYMEASURE";
constexpr const char* pressure = "IFCPRESSUREMEASURE";
constexpr const char* temperature = "IFCTHERMODYNAMICTEMPERATUREMEASURE";

std::vector<FixedProperty> mechanical(const std::vector<FixedProperty>& more) {
  std::vector<FixedProperty> all{
      {"DynamicViscosity", "IFCDYNAMICVISCOSITYMEASURE"},
      {"YoungModulus", modulus},
      {"ShearModulus", modulus},
      {"PoissonRatio", ratio},
      {"ThermalExpansionCoefficient", "IFCTHERMALEXPANSIONCOEFFICIENTMEASURE"}};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

const std::vector<FixedClass>& fixed_classes() {
  static const std::vector<FixedClass> classes{
      {"IFCTHERMALMATERIALPROPERTIES",
       "Pset_MaterialThermal",
       {{"SpecificHeatCapacity", "IFCSPECIFICHEATCAPACITYMEASURE"},
        {"BoilingPoint", temperature},
        {"FreezingPoint", temperature},
        {"ThermalConductivity", "IFCTHERMALCONDUCTIVITYMEASURE"}}},
      {"IFCGENERALMATERIALPROPERTIES",
       "Pset_MaterialCommon",
       {{"MolecularWeight", "IFCMOLECULARWEIGHTMEASURE"},
        {"Porosity", ratio},
        {"MassDensity", "IFCMASSDENSITYMEASURE"}}},
      {"IFCMECHANICALMATERIALPROPERTIES", "Pset_MaterialMechanical", mechanical({})},
      {"IFCMECHANICALSTEELMATERIALPROPERTIES", "Pset_MaterialSteel",
       mechanical({{"YieldStress", pressure},
                   {"UltimateStress", pressure},
                   {"UltimateStrain", ratio},
                   {"HardeningModule", modulus},
                   {"ProportionalStress", pressure},
                   {"PlasticStrain", ratio}})},
      {"IFCMECHANICALCONCRETEMATERIALPROPERTIES", "Pset_MaterialConcrete",
       mechanical({{"CompressiveStrength", pressure},
                   {"MaxAggregateSize", "IFCPOSITIVELENGTHMEASURE"},
                   {"AdmixturesDescription", ""},
                   {"Workability", ""},
                   {"ProtectivePoreRatio", ratio},
                   {"WaterImpermeability", ""}})},
      {"IFCOPTICALMATERIALPROPERTIES",
       "Pset_MaterialOptical",
       {{"VisibleTransmittance", ratio},
        {"SolarTransmittance", ratio},
        {"ThermalIrTransmittance", ratio},
        {"ThermalIrEmissivityBack", ratio},
        {"ThermalIrEmissivityFront", ratio},
        {"VisibleReflectanceBack", ratio},
        {"VisibleReflectanceFront", ratio},
        {"SolarReflectanceFront", ratio},
        {"SolarReflectanceBack", ratio}}},
      {"IFCHYGROSCOPICMATERIALPROPERTIES",
       "Pset_MaterialHygroscopic",
       {{"UpperVaporResistanceFactor", ratio},
        {"LowerVaporResistanceFactor", ratio},
        {"IsothermalMoistureCapacity", "IFCISOTHERMALMOISTURECAPACITYMEASURE"},
        {"VaporPermeability", "IFCVAPORPERMEABILITYMEASURE"},
        {"MoistureDiffusivity", "IFCMOISTUREDIFFUSIVITYMEASURE"}}}};
  return classes;
}

/// The properties that physics knows, whatever the set.
const char* known_property(const std::string& full_name) {
  const auto name = full_name.substr(full_name.rfind('.') + 1);
  if (name == "ThermalConductivity") return property::conductivity;
  if (name == "MassDensity") return property::density;
  return name == "SpecificHeatCapacity" ? property::specific_heat : nullptr;
}

std::string text_of(const StepValue& value) { return value.content().text().value_or(""); }

}  // namespace

void IfcProperties::read(const FindIfcMaterial& material_of) {
  read_sets(material_of);
  read_fixed_classes(material_of);
  read_classifications(material_of);
}

/// The material stands last in IFC4, and first in IFC2x3.
void IfcProperties::read_sets(const FindIfcMaterial& material_of) {
  for (const auto* instance : file_.all("IFCMATERIALPROPERTIES")) {
    const auto fields = file_.fields_of(*instance);
    auto* material = material_of(fields[3]);
    if (material != nullptr) read_set(text_of(fields[0]), fields[2], *material);
  }
  for (const auto* instance : file_.all("IFCEXTENDEDMATERIALPROPERTIES")) {
    const auto fields = file_.fields_of(*instance);
    auto* material = material_of(fields[0]);
    if (material != nullptr) read_set(text_of(fields[3]), fields[1], *material);
  }
}

void IfcProperties::read_set(const std::string& set, const StepValue& properties,
                             IfcMaterial& material) {
  properties.for_each([&](const StepValue& reference) {
    const auto* instance = file_.find(reference);
    if (instance == nullptr) return;
    const auto fields = file_.fields_of(*instance);
    const auto name = text_of(fields[0]);
    const bool is_single = instance->keyword == "IFCPROPERTYSINGLEVALUE";
    if (is_single && fields[2].is_missing()) return;
    const auto written = is_single ? value_of(fields) : std::nullopt;
    if (!written) {
      material.not_kept.emplace_back(fmt::format("{}.{}", set, name), instance->values);
    } else if (set == ifc_own_set) {
      material.own.emplace_back(name, written->value);
    } else {
      file_.charge(*instance, set.size());
      add(fmt::format("{}.{}", set, name), *written, material);
    }
  });
}

void IfcProperties::read_fixed_classes(const FindIfcMaterial& material_of) {
  for (const auto& described : fixed_classes()) {
    for (const auto* instance : file_.all(described.keyword)) {
      const auto fields = file_.fields_of(*instance);
      auto* material = material_of(fields[0]);
      if (material == nullptr) continue;
      for (std::size_t i = 0; i < described.properties.size(); ++i) {
        const auto& field = fields[i + 1];
        const auto& described_property = described.properties[i];
        if (field.is_missing()) continue;
        const auto number = field.content().number();
        const auto written =
            number ? measured(*number, described_property.measure, StepValue()) : std::nullopt;
        add(fmt::format("{}.{}", described.set, described_property.name),
            written.value_or(Written{number ? "" : text_of(field), ""}), *material);
      }
    }
  }
}

/// The first value of a property counts.
void IfcProperties::add(const std::string& property, const Written& written,
                        IfcMaterial& material) {
  if (written.value.empty()) return;
  auto& names = names_[&material];
  const char* known = number_in(written.value) ? known_property(property) : nullptr;
  if (known != nullptr && names.insert(known).second) {
    material.properties.emplace_back(known, written.value);
  } else if (names.insert(property).second) {
    const auto unit = written.unit.empty() ? "" : fmt::format(" [{}]", written.unit);
    material.properties.emplace_back(property + unit, written.value);
  } else {
    material.not_kept.emplace_back(property, written.value);
  }
}

std::optional<IfcProperties::Written> IfcProperties::value_of(const StepFields& single) {
  const auto content = single[2].content();
  if (const auto text = content.text()) return Written{*text, ""};
  if (const auto number = content.number()) return measured(*number, single[2].type(), single[3]);
  const auto word = content.enumeration();
  if (word == "T") return Written{"Yes", ""};
  if (word == "F") return Written{"No", ""};
  if (word == "U") return Written{"Unknown", ""};
  return std::nullopt;
}

/// A unit of the property itself goes before that of the project; without either it is that of the
/// SI.
std::optional<IfcProperties::Written> IfcProperties::measured(double number, std::string_view type,
                                                              const StepValue& unit) {
  const auto* measure = ifc_measure(type);
  std::optional<IfcUnit> scale = unit.is_missing() ? std::nullopt : units_.in(unit);
  if (!unit.is_missing() && !scale) return std::nullopt;
  if (!scale && measure != nullptr) scale = units_.of(measure->unit_type);
  const double value = scale ? scale->to_si(number) : number;
  return Written{exact_number(value), measure != nullptr ? measure->unit : ""};
}

IfcValues IfcProperties::values_of_set(const StepInstance& set) {
  IfcValues values;
  file_.fields_of(set)[4].for_each([&](const StepValue& reference) {
    const auto* instance = file_.find(reference, "IFCPROPERTYSINGLEVALUE");
    if (instance == nullptr) return;
    const auto fields = file_.fields_of(*instance);
    const auto written = value_of(fields);
    if (written) values.emplace_back(text_of(fields[0]), written->value);
  });
  return values;
}

void IfcProperties::read_classifications(const FindIfcMaterial& material_of) {
  for (const auto* relation : file_.all("IFCEXTERNALREFERENCERELATIONSHIP")) {
    const auto fields = file_.fields_of(*relation);
    classify(*relation, fields[2], fields[3], material_of);
  }
  for (const auto* relation : file_.all("IFCRELASSOCIATESCLASSIFICATION")) {
    const auto fields = file_.fields_of(*relation);
    classify(*relation, fields[5], fields[4], material_of);
  }
  for (const auto* relation : file_.all("IFCMATERIALCLASSIFICATIONRELATIONSHIP")) {
    const auto fields = file_.fields_of(*relation);
    auto* material = material_of(fields[1]);
    if (material == nullptr) continue;
    fields[0].for_each([&](const StepValue& by) {
      add_classification(*relation, classification_in(by), *material);
    });
  }
}

void IfcProperties::classify(const StepInstance& relation, const StepValue& by,
                             const StepValue& objects, const FindIfcMaterial& material_of) {
  const auto text = classification_in(by);
  objects.for_each([&](const StepValue& object) {
    auto* material = material_of(object);
    if (material != nullptr) add_classification(relation, text, *material);
  });
}

/// A material may be classified in several systems.
void IfcProperties::add_classification(const StepInstance& relation, const std::string& text,
                                       IfcMaterial& material) const {
  if (text.empty()) return;
  file_.charge(relation, text.size());
  if (!material.classification.empty()) material.classification += "; ";
  material.classification += text;
}

/// The code and what it means.
std::string IfcProperties::classification_in(const StepValue& reference) const {
  const auto* instance = file_.find(reference);
  if (instance == nullptr) return {};
  if (instance->keyword == "IFCCLASSIFICATIONNOTATION") return notation_in(*instance);
  const auto fields = file_.fields_of(*instance);
  if (instance->keyword == "IFCCLASSIFICATION") return text_of(fields[3]);
  if (instance->keyword != "IFCCLASSIFICATIONREFERENCE") return {};
  const auto code = text_of(fields[1]);
  const auto name = text_of(fields[2]);
  return code.empty() || name.empty() ? code + name : fmt::format("{} {}", code, name);
}

std::string IfcProperties::notation_in(const StepInstance& notation) const {
  std::string text;
  file_.fields_of(notation)[0].for_each([&](const StepValue& reference) {
    const auto* facet = file_.find(reference, "IFCCLASSIFICATIONNOTATIONFACET");
    if (facet != nullptr) text += text_of(file_.fields_of(*facet)[0]);
  });
  return text;
}

}  // namespace veldra::kit
