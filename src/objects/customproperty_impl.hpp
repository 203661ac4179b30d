#ifndef VELDRA_OBJECTS_CUSTOMPROPERTY_IMPL_HPP
#define VELDRA_OBJECTS_CUSTOMPROPERTY_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/customproperty.hpp>

namespace veldra {

struct CustomProperty::Impl : ObjectRecord {
  ObjectType object_type{};
};

}  // namespace veldra

#endif
