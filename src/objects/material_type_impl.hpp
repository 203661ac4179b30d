// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_MATERIAL_TYPE_IMPL_HPP
#define VELDRA_OBJECTS_MATERIAL_TYPE_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"

#include <veldra/material_type.hpp>

namespace veldra {

struct MaterialType::Impl : ObjectRecord {
  using Parts = DescribedBy<>;
};

}  // namespace veldra

#endif
