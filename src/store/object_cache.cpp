#include "store/object_cache.hpp"

#include "objects/material_impl.hpp"
#include "objects/object_access.hpp"

namespace veldra {

std::shared_ptr<Material> ObjectCache::copied_object(unsigned id, Material*) const {
  if (copied_ == nullptr || !copied_->has({{ObjectType::Material, id}, source_})) return nullptr;
  const auto material = ObjectAccess::make<Material>();
  ObjectAccess::impl(*material).id = id;
  return material;
}

}  // namespace veldra
