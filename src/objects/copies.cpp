// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/copies.hpp"

#include "objects/asset_impl.hpp"
#include "objects/tag_impl.hpp"

namespace veldra {

std::shared_ptr<Asset> replica(const Asset& asset) {
  if (asset.isKindOf(AssetType::Structural)) {
    return replica(static_cast<const StructuralAsset&>(asset));
  }
  if (asset.isKindOf(AssetType::Thermal)) return replica(static_cast<const ThermalAsset&>(asset));
  return nullptr;
}

}  // namespace veldra
