// SPDX-License-Identifier: GPL-2.0-or-later
#include "kinds.hpp"

#include "failure.hpp"
#include "text.hpp"

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
  try {
    return kit::composition_type(name);
  } catch (const kit::Error& error) {
    throw Failure(printable(error.what()));
  }
}

}  // namespace veldra_tool
