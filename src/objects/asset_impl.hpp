// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_ASSET_IMPL_HPP
#define VELDRA_OBJECTS_ASSET_IMPL_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"

#include <veldra/asset.hpp>
#include <veldra/tag.hpp>

#include <vector>

namespace veldra {

struct AssetValues {
  String description;
  std::vector<std::shared_ptr<Tag>> tags;

  static constexpr auto members() {
    using Values = AssetValues;
    return std::make_tuple(describe::value(&Values::description),
                           describe::references(&Values::tags));
  }
};

struct StructuralAssetValues {
  String subclass;
  double density = 0.0;
  double specific_heat = 0.0;
  double thermal_conductivity = 0.0;

  static constexpr auto members() {
    using Values = StructuralAssetValues;
    return std::make_tuple(describe::value(&Values::subclass), describe::number(&Values::density),
                           describe::number(&Values::specific_heat),
                           describe::number(&Values::thermal_conductivity));
  }
};

struct ThermalAssetValues {
  String subclass;
  String source;
  double density = 0.0;
  double emissivity = 0.0;
  double specific_heat = 0.0;
  double thermal_conductivity = 0.0;

  static constexpr auto members() {
    using Values = ThermalAssetValues;
    return std::make_tuple(
        describe::value(&Values::subclass), describe::value(&Values::source),
        describe::number(&Values::density), describe::number(&Values::emissivity),
        describe::number(&Values::specific_heat), describe::number(&Values::thermal_conductivity));
  }
};

struct Asset::Impl : NamedRecord<String>, AssetValues {
  using Parts = DescribedBy<AssetValues>;

  virtual ~Impl() = default;
};

struct StructuralAsset::Impl : Asset::Impl, StructuralAssetValues {
  using Parts = DescribedBy<AssetValues, StructuralAssetValues>;
};

struct ThermalAsset::Impl : Asset::Impl, ThermalAssetValues {
  using Parts = DescribedBy<AssetValues, ThermalAssetValues>;
};

inline StructuralAsset::Impl& StructuralAsset::impl() noexcept {
  return static_cast<Impl&>(Asset::impl());
}

inline const StructuralAsset::Impl& StructuralAsset::impl() const noexcept {
  return static_cast<const Impl&>(Asset::impl());
}

inline ThermalAsset::Impl& ThermalAsset::impl() noexcept {
  return static_cast<Impl&>(Asset::impl());
}

inline const ThermalAsset::Impl& ThermalAsset::impl() const noexcept {
  return static_cast<const Impl&>(Asset::impl());
}

}  // namespace veldra

#endif
