// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>

#include "kit/fields/units.hpp"

#include <algorithm>

namespace veldra::kit {

namespace {

/// Lengths in millimetres, all else in the unit of the measure.
constexpr WrittenUnit written_units[] = {{"mm", Measure::Length, 1},
                                         {"cm", Measure::Length, 10},
                                         {"m", Measure::Length, 1000},
                                         {"in", Measure::Length, 25.4},
                                         {"ft", Measure::Length, 304.8},
                                         {"W/(mK)", Measure::Conductivity, 1},
                                         {"W/mK", Measure::Conductivity, 1},
                                         {"kg/m3", Measure::Density, 1},
                                         {"g/cm3", Measure::Density, 1000},
                                         {"J/(kgK)", Measure::SpecificHeat, 1},
                                         {"kJ/(kgK)", Measure::SpecificHeat, 1000},
                                         {"m2K/W", Measure::Resistance, 1},
                                         {"W/(m2K)", Measure::Transmittance, 1},
                                         {"W/m2K", Measure::Transmittance, 1},
                                         {"m", Measure::VapourThickness, 1},
                                         {"kg/m2", Measure::AreaMass, 1},
                                         {"kJ/(m2K)", Measure::AreaCapacity, 1},
                                         {"J/(m2K)", Measure::AreaCapacity, 0.001}};

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

std::string unit_text(Measure measure, Unit library) {
  switch (measure) {
    case Measure::None:
      return {};
    case Measure::Length:
      return name_of(library);
    case Measure::Conductivity:
      return "W/(m K)";
    case Measure::Density:
      return "kg/m³";
    case Measure::SpecificHeat:
      return "J/(kg K)";
    case Measure::Resistance:
      return "m²K/W";
    case Measure::Transmittance:
      return "W/(m²K)";
    case Measure::VapourThickness:
      return "m";
    case Measure::AreaMass:
      return "kg/m²";
    case Measure::AreaCapacity:
      return "kJ/(m²K)";
  }
  return {};
}

std::string bare_unit(std::string unit) {
  unit.erase(std::remove(unit.begin(), unit.end(), ' '), unit.end());
  replace_all(unit, "·", "");
  replace_all(unit, "²", "2");
  replace_all(unit, "³", "3");
  return unit;
}

std::optional<double> unit_factor(const std::string& unit, Measure measure, Unit library) {
  const std::string bare = bare_unit(unit);
  for (const WrittenUnit& written : written_units) {
    if (written.measure != measure || bare != written.name) continue;
    if (measure != Measure::Length) return written.factor;
    if (bare == name_of(library)) return 1.0;
    return written.factor / length_factor(library, Unit::Millimetres);
  }
  return std::nullopt;
}

std::string unit_choices(Measure measure) {
  std::string text;
  for (const WrittenUnit& written : written_units) {
    if (written.measure == measure) text += (text.empty() ? "" : ", ") + std::string(written.name);
  }
  return text;
}

}  // namespace veldra::kit
