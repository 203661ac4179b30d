#ifndef VELDRA_OBJECTS_ASSET_IMPL_HPP
#define VELDRA_OBJECTS_ASSET_IMPL_HPP

#include "objects/record.hpp"

#include <veldra/asset.hpp>
#include <veldra/tag.hpp>

#include <vector>

namespace veldra {

struct Asset::Impl : ObjectRecord {
  virtual ~Impl() = default;

  String description;
  std::vector<std::shared_ptr<Tag>> tags;
};

struct StructuralAsset::Impl : Asset::Impl {
  String subclass;
  double density = 0.0;
  double specific_heat = 0.0;
  double thermal_conductivity = 0.0;
};

struct ThermalAsset::Impl : Asset::Impl {
  String subclass;
  String source;
  double density = 0.0;
  double emissivity = 0.0;
  double specific_heat = 0.0;
  double thermal_conductivity = 0.0;
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
