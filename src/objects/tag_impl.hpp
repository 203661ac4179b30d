// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_TAG_IMPL_HPP
#define VELDRA_OBJECTS_TAG_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"
#include "objects/shared_name.hpp"

#include <veldra/tag.hpp>

namespace veldra {

struct Tag::Impl : NamedRecord<SharedName> {
  using Parts = DescribedBy<>;
};

}  // namespace veldra

#endif
