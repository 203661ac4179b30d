// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_KIT_WRITTEN_HPP
#define VELDRA_TESTS_KIT_WRITTEN_HPP

#include "kit/kit_names.hpp"

#include <set>
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

/// The same of objects and what they refer to.
inline Written part_written_as(const std::string& format, const Library& library,
                               const std::set<ObjectKey>& keys, kit::WriteRules rules = {}) {
  Written written;
  const auto sink = [&](std::string_view part) { written.text += part; };
  written.report = kit::write(library, keys, *kit::find_format(format), sink, rules);
  return written;
}

/// The key of the object of a kind and a name.
template <class T>
ObjectKey key_of(const Library& library, const std::string& name) {
  return {ObjectTraits<T>::type, library.get<T>(text(name))->id()};
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
