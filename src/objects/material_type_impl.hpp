// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_MATERIAL_TYPE_IMPL_HPP
#define VELDRA_OBJECTS_MATERIAL_TYPE_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"
#include "objects/shared_name.hpp"

#include <veldra/material_type.hpp>

namespace veldra {

struct MaterialType::Impl : NamedRecord<SharedName> {
  using Parts = DescribedBy<>;
};

}  // namespace veldra

#endif
