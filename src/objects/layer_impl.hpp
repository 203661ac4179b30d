// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_LAYER_IMPL_HPP
#define VELDRA_OBJECTS_LAYER_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"
#include "objects/shared_name.hpp"

#include <veldra/layer.hpp>

namespace veldra {

struct Layer::Impl : NamedRecord<SharedName> {
  using Parts = DescribedBy<>;
};

}  // namespace veldra

#endif
