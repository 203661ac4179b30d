// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_ASSET_HPP
#define VELDRA_ASSET_HPP

#include <veldra/object.hpp>

namespace veldra {

/// The kinds of assets.
enum class AssetType : int { Thermal = 1, Structural = 5 };

/// A named set of physical properties that materials point to.
///
/// Assets are read from a library with the materials that point to them. They can be changed in
/// memory, which marks them dirty, but the library never writes them: not with their material,
/// and not into another library. The units of their numbers are the host's; a number that the
/// file does not hold is NaN.
///
/// Keep the pointer that the material gives: `shared_from_this` throws `std::bad_weak_ptr`, since
/// the kinds of assets inherit it twice and no `std::shared_ptr` sets what is ambiguous.
class VELDRA_EXPORT Asset : public Object<Asset>, public Tagged<Asset> {
 public:
  /// Whether the asset is of the kind. False for every kind in a plain `Asset`.
  virtual bool isKindOf(AssetType type) const;

  virtual ~Asset();

  using Object<Asset>::name;
  void name(const String& name);  ///< marks the asset dirty when the value differs

  const String& description() const noexcept;
  void description(const String& description);  ///< marks the asset dirty when the value differs

 protected:
  struct Impl;

  Asset();
  explicit Asset(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

/// The properties that structural analysis asks for.
///
/// Every setter marks the asset dirty when the value differs; NaN always differs.
class VELDRA_EXPORT StructuralAsset : public Asset,
                                      public std::enable_shared_from_this<StructuralAsset> {
 public:
  /// True for `AssetType::Structural` only.
  bool isKindOf(AssetType type) const override;

  ~StructuralAsset() override;

  const String& subclass() const noexcept;
  void subclass(const String& subclass);

  double density() const noexcept;
  void density(double density);

  double specific_heat() const noexcept;
  void specific_heat(double specific_heat);

  double thermal_conductivity() const noexcept;
  void thermal_conductivity(double thermal_conductivity);

  /// Equality of subclass and numbers; name, description, tags, id and library do not count.
  bool operator==(const StructuralAsset& other) const noexcept;
  bool operator!=(const StructuralAsset& other) const noexcept;

 protected:
  struct Impl;

  StructuralAsset();
  explicit StructuralAsset(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;
};

/// The properties that energy analysis asks for.
///
/// Every setter marks the asset dirty when the value differs; NaN always differs.
class VELDRA_EXPORT ThermalAsset : public Asset, public std::enable_shared_from_this<ThermalAsset> {
 public:
  /// True for `AssetType::Thermal` only.
  bool isKindOf(AssetType type) const override;

  ~ThermalAsset() override;

  const String& subclass() const noexcept;
  void subclass(const String& subclass);

  /// Where the numbers come from.
  const String& source() const noexcept;
  void source(const String& source);

  double density() const noexcept;
  void density(double density);

  double emissivity() const noexcept;
  void emissivity(double emissivity);

  double specific_heat() const noexcept;
  void specific_heat(double specific_heat);

  double thermal_conductivity() const noexcept;
  void thermal_conductivity(double thermal_conductivity);

  /// Equality of subclass, source and numbers; name, description, tags, id and library do not
  /// count.
  bool operator==(const ThermalAsset& other) const noexcept;
  bool operator!=(const ThermalAsset& other) const noexcept;

 protected:
  struct Impl;

  ThermalAsset();
  explicit ThermalAsset(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;
};

}  // namespace veldra

#endif
