#ifndef VELDRA_OBJECTS_MATERIALTYPE_IMPL_HPP
#define VELDRA_OBJECTS_MATERIALTYPE_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/materialtype.hpp>

namespace veldra {

struct MaterialType::Impl : ObjectRecord {};

}  // namespace veldra

#endif
