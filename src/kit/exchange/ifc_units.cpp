// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_units.hpp"

#include <veldra/kit/physics.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace veldra::kit {

namespace {

/// As the scanner counts lists, units may refer to others so often.
constexpr unsigned greatest_depth = 20;
constexpr int greatest_exponent = 300;

double shifted(double number, int exponent) {
  const double power = std::pow(10.0, std::abs(exponent));
  return exponent < 0 ? number / power : number * power;
}

/// The quotient of two units, without the rounding of binary numbers where it is a short decimal.
double tidy(double ratio) {
  const double rounded = std::round(ratio * 1e6) / 1e6;
  return std::abs(ratio - rounded) < 1e-12 * std::abs(ratio) ? rounded : ratio;
}

int exponent_of_prefix(std::string_view prefix) {
  static const std::map<std::string_view, int> exponents{
      {"EXA", 18},  {"PETA", 15},  {"TERA", 12},   {"GIGA", 9},   {"MEGA", 6},   {"KILO", 3},
      {"HECTO", 2}, {"DECA", 1},   {"DECI", -1},   {"CENTI", -2}, {"MILLI", -3}, {"MICRO", -6},
      {"NANO", -9}, {"PICO", -12}, {"FEMTO", -15}, {"ATTO", -18}};
  const auto found = exponents.find(prefix);
  return found != exponents.end() ? found->second : 0;
}

IfcUnit power_of(const IfcUnit& unit, int exponent) {
  return {std::pow(unit.factor, exponent), unit.exponent * exponent, 0};
}

bool is_usable(const IfcUnit& unit) {
  return std::isfinite(unit.factor) && unit.factor > 0 &&
         std::abs(unit.exponent) <= greatest_exponent;
}

/// A prefix of square metres is that of the metre.
IfcUnit si_unit(const StepFields& fields) {
  const auto name = fields[3].enumeration();
  IfcUnit unit;
  unit.exponent = exponent_of_prefix(fields[2].enumeration());
  if (name == "SQUARE_METRE") unit.exponent *= 2;
  if (name == "CUBIC_METRE") unit.exponent *= 3;
  if (name == "GRAM") unit.exponent -= 3;
  if (name == "DEGREE_CELSIUS") unit.offset = 273.15;
  return unit;
}

constexpr IfcMeasure measures[] = {
    {"IFCLENGTHMEASURE", "LENGTHUNIT", "m"},
    {"IFCPOSITIVELENGTHMEASURE", "LENGTHUNIT", "m"},
    {"IFCNONNEGATIVELENGTHMEASURE", "LENGTHUNIT", "m"},
    {"IFCAREAMEASURE", "AREAUNIT", "m2"},
    {"IFCVOLUMEMEASURE", "VOLUMEUNIT", "m3"},
    {"IFCMASSMEASURE", "MASSUNIT", "kg"},
    {"IFCTIMEMEASURE", "TIMEUNIT", "s"},
    {"IFCTHERMODYNAMICTEMPERATUREMEASURE", "THERMODYNAMICTEMPERATUREUNIT", "K"},
    {"IFCPRESSUREMEASURE", "PRESSUREUNIT", "Pa"},
    {"IFCMODULUSOFELASTICITYMEASURE", "MODULUSOFELASTICITYUNIT", "Pa"},
    {"IFCFORCEMEASURE", "FORCEUNIT", "N"},
    {"IFCENERGYMEASURE", "ENERGYUNIT", "J"},
    {"IFCPOWERMEASURE", "POWERUNIT", "W"},
    {"IFCFREQUENCYMEASURE", "FREQUENCYUNIT", "Hz"},
    {"IFCPLANEANGLEMEASURE", "PLANEANGLEUNIT", "rad"},
    {"IFCTHERMALCONDUCTIVITYMEASURE", "THERMALCONDUCTANCEUNIT", "W/(m K)"},
    {"IFCSPECIFICHEATCAPACITYMEASURE", "SPECIFICHEATCAPACITYUNIT", "J/(kg K)"},
    {"IFCMASSDENSITYMEASURE", "MASSDENSITYUNIT", "kg/m3"},
    {"IFCAREADENSITYMEASURE", "AREADENSITYUNIT", "kg/m2"},
    {"IFCTHERMALTRANSMITTANCEMEASURE", "THERMALTRANSMITTANCEUNIT", "W/(m2 K)"},
    {"IFCTHERMALRESISTANCEMEASURE", "THERMALRESISTANCEUNIT", "m2 K/W"},
    {"IFCTHERMALADMITTANCEMEASURE", "THERMALADMITTANCEUNIT", "W/(m2 K)"},
    {"IFCTHERMALEXPANSIONCOEFFICIENTMEASURE", "THERMALEXPANSIONCOEFFICIENTUNIT", "1/K"},
    {"IFCVAPORPERMEABILITYMEASURE", "VAPORPERMEABILITYUNIT", "kg/(s m Pa)"},
    {"IFCMOISTUREDIFFUSIVITYMEASURE", "MOISTUREDIFFUSIVITYUNIT", "m3/s"},
    {"IFCISOTHERMALMOISTURECAPACITYMEASURE", "ISOTHERMALMOISTURECAPACITYUNIT", "m3/kg"},
    {"IFCDYNAMICVISCOSITYMEASURE", "DYNAMICVISCOSITYUNIT", "Pa s"},
    {"IFCHEATFLUXDENSITYMEASURE", "HEATFLUXDENSITYUNIT", "W/m2"},
    {"IFCHEATINGVALUEMEASURE", "HEATINGVALUEUNIT", "J/kg"},
    {"IFCMOLECULARWEIGHTMEASURE", "", "g/mol"},
    {"IFCSOUNDPRESSUREMEASURE", "SOUNDPRESSUREUNIT", "Pa"},
    {"IFCRATIOMEASURE", "", "-"},
    {"IFCPOSITIVERATIOMEASURE", "", "-"},
    {"IFCNORMALISEDRATIOMEASURE", "", "-"}};

}  // namespace

double IfcUnit::to_si(double number) const {
  if (factor == 1) return shifted(number, exponent) + offset;
  return number * shifted(factor, exponent) + offset;
}

double IfcUnit::length_in(double number, Unit library) const {
  const bool is_decimal = factor == 1;
  if (is_decimal && library == Unit::Millimetres) return shifted(number, exponent + 3);
  if (is_decimal) return from_metres(shifted(number, exponent), library);
  return number * tidy(from_metres(shifted(factor, exponent), library));
}

const IfcMeasure* ifc_measure(std::string_view type) {
  const auto* const found = std::find_if(std::begin(measures), std::end(measures),
                                         [&](const auto& measure) { return measure.type == type; });
  return found != std::end(measures) ? found : nullptr;
}

/// Those of the project count, where there is one.
IfcUnits::IfcUnits(const StepFile& file) : file_(file) {
  const StepInstance* of_project = nullptr;
  for (const auto* project : file.all("IFCPROJECT")) {
    if (of_project != nullptr) break;
    of_project = file.find(file.fields_of(*project)[8], "IFCUNITASSIGNMENT");
  }
  const auto& all = file.all("IFCUNITASSIGNMENT");
  if (of_project == nullptr && !all.empty()) of_project = all.front();
  if (of_project != nullptr) assign(*of_project);
}

void IfcUnits::assign(const StepInstance& assignment) {
  file_.fields_of(assignment)[0].for_each([this](const StepValue& reference) {
    const auto* instance = file_.find(reference);
    const auto unit = in(reference);
    if (unit) by_type_.emplace(file_.fields_of(*instance)[1].enumeration(), *unit);
  });
}

std::optional<IfcUnit> IfcUnits::of(std::string_view unit_type) const {
  const auto found = by_type_.find(unit_type);
  return found != by_type_.end() ? std::optional<IfcUnit>(found->second) : std::nullopt;
}

/// A unit that is under way already refers to itself, and is none.
std::optional<IfcUnit> IfcUnits::in(const StepValue& reference) {
  const auto* instance = file_.find(reference);
  if (instance == nullptr || depth_ == greatest_depth) return std::nullopt;
  const auto [known, is_new] = resolved_.emplace(instance->number, std::nullopt);
  if (!is_new) return known->second;
  ++depth_;
  const auto unit = resolve(*instance);
  --depth_;
  if (unit && is_usable(*unit)) known->second = unit;
  return known->second;
}

std::optional<IfcUnit> IfcUnits::resolve(const StepInstance& instance) {
  const auto fields = file_.fields_of(instance);
  if (instance.keyword == "IFCSIUNIT") return si_unit(fields);
  if (instance.keyword == "IFCDERIVEDUNIT") return resolve_derived(fields);
  if (instance.keyword == "IFCCONVERSIONBASEDUNIT") return resolve_conversion(fields);
  if (instance.keyword != "IFCCONVERSIONBASEDUNITWITHOFFSET") return std::nullopt;
  auto unit = resolve_conversion(fields);
  if (unit) unit->offset = fields[4].number().value_or(0);
  return unit;
}

std::optional<IfcUnit> IfcUnits::resolve_conversion(const StepFields& fields) {
  const auto* measure = file_.find(fields[3], "IFCMEASUREWITHUNIT");
  if (measure == nullptr) return std::nullopt;
  const auto conversion = file_.fields_of(*measure);
  const auto number = conversion[0].content().number();
  auto unit = in(conversion[1]);
  if (!number || !unit) return std::nullopt;
  unit->factor *= *number;
  unit->offset = 0;
  return unit;
}

std::optional<IfcUnit> IfcUnits::resolve_derived(const StepFields& fields) {
  std::optional<IfcUnit> product = IfcUnit();
  fields[0].for_each([&](const StepValue& reference) {
    const auto* element = file_.find(reference, "IFCDERIVEDUNITELEMENT");
    if (element == nullptr || !product) return product.reset();
    const auto element_fields = file_.fields_of(*element);
    const auto unit = in(element_fields[0]);
    const auto exponent = element_fields[1].number();
    if (!unit || !exponent || std::abs(*exponent) > 9) return product.reset();
    const auto power = power_of(*unit, static_cast<int>(*exponent));
    product->factor *= power.factor;
    product->exponent += power.exponent;
    if (std::abs(product->exponent) > greatest_exponent) product.reset();
  });
  return product;
}

}  // namespace veldra::kit
