// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_KIT_WRITTEN_HPP
#define VELDRA_TESTS_KIT_WRITTEN_HPP

#include "kit/kit_names.hpp"

#include <string>

namespace veldra_tests {

/// What `kit::write` gave.
struct Written {
  std::string text;
  kit::WriteReport report;
};

inline Written written_as(const std::string& format, const Library& library,
                          kit::WriteRules rules = {}) {
  Written written;
  const auto sink = [&](std::string_view part) { written.text += part; };
  written.report = kit::write(library, *kit::find_format(format), sink, rules);
  return written;
}

/// All values of all fields of the materials and compositions of a library that are stored, by
/// their names: what two libraries of the same objects have in common.
inline std::string fields_of(const Library& library) {
  std::string whole;
  kit::write_json(library, [&](std::string_view part) { whole += part; });
  return whole;
}

}  // namespace veldra_tests

#endif
