// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/asset_impl.hpp"
#include "objects/handle_members.hpp"

namespace veldra {

VELDRA_HANDLE_MEMBERS(Asset)
template class Tagged<Asset>;

bool Asset::isKindOf(AssetType) const { return false; }

void Asset::name(const String& name) { change(impl(), impl().name, name); }

const String& Asset::description() const noexcept { return impl().description; }
void Asset::description(const String& description) {
  change(impl(), impl().description, description);
}

StructuralAsset::StructuralAsset() : StructuralAsset(new Impl) {
  static_assert(is_described<Impl>(), "a member of a structural asset is not described");
}
StructuralAsset::StructuralAsset(Impl* impl) : Asset(impl) {}
StructuralAsset::~StructuralAsset() = default;

bool StructuralAsset::isKindOf(AssetType type) const { return type == AssetType::Structural; }

const String& StructuralAsset::subclass() const noexcept { return impl().subclass; }
void StructuralAsset::subclass(const String& subclass) {
  change(impl(), impl().subclass, subclass);
}

double StructuralAsset::density() const noexcept { return impl().density; }
void StructuralAsset::density(double density) { change(impl(), impl().density, density); }

double StructuralAsset::specific_heat() const noexcept { return impl().specific_heat; }
void StructuralAsset::specific_heat(double specific_heat) {
  change(impl(), impl().specific_heat, specific_heat);
}

double StructuralAsset::thermal_conductivity() const noexcept {
  return impl().thermal_conductivity;
}
void StructuralAsset::thermal_conductivity(double thermal_conductivity) {
  change(impl(), impl().thermal_conductivity, thermal_conductivity);
}

bool StructuralAsset::operator==(const StructuralAsset& other) const noexcept {
  return equal_values<StructuralAssetValues>(impl(), other.impl());
}

bool StructuralAsset::operator!=(const StructuralAsset& other) const noexcept {
  return !(*this == other);
}

ThermalAsset::ThermalAsset() : ThermalAsset(new Impl) {
  static_assert(is_described<Impl>(), "a member of a thermal asset is not described");
}
ThermalAsset::ThermalAsset(Impl* impl) : Asset(impl) {}
ThermalAsset::~ThermalAsset() = default;

bool ThermalAsset::isKindOf(AssetType type) const { return type == AssetType::Thermal; }

const String& ThermalAsset::subclass() const noexcept { return impl().subclass; }
void ThermalAsset::subclass(const String& subclass) { change(impl(), impl().subclass, subclass); }

const String& ThermalAsset::source() const noexcept { return impl().source; }
void ThermalAsset::source(const String& source) { change(impl(), impl().source, source); }

double ThermalAsset::density() const noexcept { return impl().density; }
void ThermalAsset::density(double density) { change(impl(), impl().density, density); }

double ThermalAsset::emissivity() const noexcept { return impl().emissivity; }
void ThermalAsset::emissivity(double emissivity) { change(impl(), impl().emissivity, emissivity); }

double ThermalAsset::specific_heat() const noexcept { return impl().specific_heat; }
void ThermalAsset::specific_heat(double specific_heat) {
  change(impl(), impl().specific_heat, specific_heat);
}

double ThermalAsset::thermal_conductivity() const noexcept { return impl().thermal_conductivity; }
void ThermalAsset::thermal_conductivity(double thermal_conductivity) {
  change(impl(), impl().thermal_conductivity, thermal_conductivity);
}

bool ThermalAsset::operator==(const ThermalAsset& other) const noexcept {
  return equal_values<ThermalAssetValues>(impl(), other.impl());
}

bool ThermalAsset::operator!=(const ThermalAsset& other) const noexcept {
  return !(*this == other);
}

}  // namespace veldra
