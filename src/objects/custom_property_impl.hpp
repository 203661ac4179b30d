#ifndef VELDRA_OBJECTS_CUSTOM_PROPERTY_IMPL_HPP
#define VELDRA_OBJECTS_CUSTOM_PROPERTY_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/custom_property.hpp>

namespace veldra {

struct CustomProperty::Impl : ObjectRecord {
  ObjectType object_type{};
};

}  // namespace veldra

#endif
