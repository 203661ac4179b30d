// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_UNITS_HPP
#define VELDRA_KIT_EXCHANGE_IFC_UNITS_HPP

#include "kit/exchange/step_file.hpp"

#include <veldra/library.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace veldra::kit {

/// A unit as so many of the SI. Powers of ten stand beside the factor, so that they are exact.
struct IfcUnit {
  double factor = 1;
  int exponent = 0;   ///< of ten
  double offset = 0;  ///< of temperatures, in kelvin

  /// The number in the unit of the SI.
  double to_si(double number) const;

  /// A length in the unit of a library.
  double length_in(double number, Unit library) const;
};

/// What values of a type are measured in.
struct IfcMeasure {
  const char* type;       ///< of the value
  const char* unit_type;  ///< as files call it; empty where there is none
  const char* unit;       ///< that of the SI, as people write it
};

/// What values of a type are measured in; null for those without unit.
const IfcMeasure* ifc_measure(std::string_view type);

/// The units of a file.
class IfcUnits {
 public:
  explicit IfcUnits(const StepFile& file);

  /// The unit that the project has for a type of units, such as `LENGTHUNIT`; empty for none.
  std::optional<IfcUnit> of(std::string_view unit_type) const;

  /// The unit in an instance; empty where it is none, or cannot be followed.
  std::optional<IfcUnit> in(const StepValue& reference);

 private:
  std::optional<IfcUnit> resolve(const StepInstance& instance);
  std::optional<IfcUnit> resolve_conversion(const StepFields& fields);
  std::optional<IfcUnit> resolve_derived(const StepFields& fields);
  void assign(const StepInstance& assignment);

  const StepFile& file_;
  std::map<std::string, IfcUnit, std::less<>> by_type_;
  std::map<std::uint64_t, std::optional<IfcUnit>> resolved_;
  unsigned depth_ = 0;
};

}  // namespace veldra::kit

#endif
