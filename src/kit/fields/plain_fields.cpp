// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/fields.hpp>

namespace veldra::kit {

std::vector<const Field<Material>*> plain_material_fields(Value::Kind kind) {
  std::vector<const Field<Material>*> fields;
  for (const auto& field : built_in_fields<Material>()) {
    if (field.origin != Origin::Stored || field.kind != kind) continue;
    if (field.initial.kind() == kind) fields.push_back(&field);
  }
  return fields;
}

}  // namespace veldra::kit
