// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_MATERIAL_FIELDS_HPP
#define VELDRA_TOOL_MATERIAL_FIELDS_HPP

#include "kit.hpp"

#include <vector>

namespace veldra_tool {

/// The fields of a material that hold a value of a kind, and nothing of that kind by default. So
/// the name, the code and the references are not among the texts.
std::vector<const kit::Field<veldra::Material>*> plain_material_fields(kit::Value::Kind kind);

/// The fields of a class that need no library, and none of its custom properties.
template <class T>
const kit::Fields<T>& built_in_fields() {
  static const kit::Fields<T> fields;
  return fields;
}

}  // namespace veldra_tool

#endif
