#ifndef VELDRA_OBJECTS_MATERIAL_TYPE_IMPL_HPP
#define VELDRA_OBJECTS_MATERIAL_TYPE_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/material_type.hpp>

namespace veldra {

struct MaterialType::Impl : ObjectRecord {};

}  // namespace veldra

#endif
