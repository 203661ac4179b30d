// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/handle_members.hpp"
#include "objects/material_type_impl.hpp"

namespace veldra {

VELDRA_HANDLE_MEMBERS(MaterialType)
VELDRA_NAMED_MEMBERS(MaterialType)

void MaterialType::name(const String& name) { change(impl(), impl().name, name); }

}  // namespace veldra
