// SPDX-License-Identifier: GPL-2.0-or-later
#include "kinds.hpp"

#include "failure.hpp"

#include <fmt/format.h>

namespace veldra_tool {

const std::map<std::string, veldra::ObjectType>& kinds_by_name() {
  static const auto kinds = [] {
    std::map<std::string, veldra::ObjectType> result;
    for (const auto kind : all_kinds()) {
      result[plural_of(kind)] = kind;
      result[singular_of(kind)] = kind;
    }
    return result;
  }();
  return kinds;
}

veldra::Composition::Type composition_type(const std::string& name) {
  for (const auto type : kit::all_composition_types()) {
    if (name_of(type) == name) return type;
  }
  throw Failure(fmt::format(
      "there is no type of composition {}; there are wall, floor, roof, other", in_quotes(name)));
}

}  // namespace veldra_tool
