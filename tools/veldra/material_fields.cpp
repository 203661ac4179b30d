// SPDX-License-Identifier: GPL-2.0-or-later
#include "material_fields.hpp"

namespace veldra_tool {

std::vector<const kit::Field<veldra::Material>*> plain_material_fields(kit::Value::Kind kind) {
  std::vector<const kit::Field<veldra::Material>*> fields;
  for (const auto& field : built_in_fields<veldra::Material>()) {
    if (field.origin != kit::Origin::Stored || field.kind != kind) continue;
    if (field.initial.kind() == kind) fields.push_back(&field);
  }
  return fields;
}

}  // namespace veldra_tool
