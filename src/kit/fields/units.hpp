// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_UNITS_HPP
#define VELDRA_KIT_FIELDS_UNITS_HPP

#include <veldra/kit/fields.hpp>

#include <string>

namespace veldra::kit {

/// A unit as people write it, but for blanks and raised digits.
struct WrittenUnit {
  const char* name;
  Measure measure;
  double factor;
};

/// A unit in the form of `WrittenUnit::name`.
std::string bare_unit(std::string unit);

/// The units of a measure, for people.
std::string unit_choices(Measure measure);

}  // namespace veldra::kit

#endif
