// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_LAYER_IMPL_HPP
#define VELDRA_OBJECTS_LAYER_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"

#include <veldra/layer.hpp>

namespace veldra {

struct Layer::Impl : ObjectRecord {
  using Parts = DescribedBy<>;
};

}  // namespace veldra

#endif
