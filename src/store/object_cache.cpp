// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/object_cache.hpp"

#include "objects/material_impl.hpp"

namespace veldra {

std::shared_ptr<Material> SharingCache::stub(OfKind<Material>, unsigned id) const {
  if (!copied_.has({{ObjectType::Material, id}, &source_})) return nullptr;
  const auto material = ObjectAccess::make<Material>();
  auto& record = ObjectAccess::impl(*material);
  record.id = id;
  record.is_stub = true;
  return material;
}

}  // namespace veldra
