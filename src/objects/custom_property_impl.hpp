// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_CUSTOM_PROPERTY_IMPL_HPP
#define VELDRA_OBJECTS_CUSTOM_PROPERTY_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"
#include "objects/shared_name.hpp"

#include <veldra/custom_property.hpp>

namespace veldra {

struct CustomPropertyValues {
  ObjectType object_type{};

  static constexpr auto members() {
    return std::make_tuple(describe::value(&CustomPropertyValues::object_type));
  }
};

struct CustomProperty::Impl : NamedRecord<SharedName>, CustomPropertyValues {
  using Parts = DescribedBy<CustomPropertyValues>;
};

}  // namespace veldra

#endif
