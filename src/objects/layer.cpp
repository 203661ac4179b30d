// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/handle_members.hpp"
#include "objects/layer_impl.hpp"

namespace veldra {

VELDRA_HANDLE_MEMBERS(Layer)
VELDRA_NAMED_MEMBERS(Layer)

void Layer::name(const String& name) { change(impl(), impl().name, name); }

}  // namespace veldra
