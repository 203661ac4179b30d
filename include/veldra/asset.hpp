// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_ASSET_HPP
#define VELDRA_ASSET_HPP

#include <veldra/object.hpp>

namespace veldra {

/// The kinds of assets.
enum class AssetType : int {
  Thermal = 1,    ///< a `ThermalAsset`
  Structural = 5  ///< a `StructuralAsset`
};

/// A named set of physical properties that materials point to.
///
/// How assets come and go:
/// - The library reads an asset with each material that points to it.
/// - A host can change an asset in memory, which marks it dirty.
/// - The library never writes assets: not with their material, and not into another library.
///
/// Units: the library stores the numbers as they are, so their units are a convention of the hosts.
/// The program `veldra` reads and shows them in SI units, and other hosts should too:
///
/// - density: kg/m3
/// - thermal conductivity: W/(m K), also in a library in inches
/// - specific heat: J/(kg K)
/// - emissivity: 0 to 1, without a unit
///
/// A number that the file does not hold is NaN.
///
/// Keep the pointer that the material gives. `shared_from_this` of an asset throws
/// `std::bad_weak_ptr`: the kinds of assets inherit it twice, and no `std::shared_ptr` sets an
/// ambiguous base.
///
/// Throws: getters throw nothing, setters nothing but `std::bad_alloc`.
class VELDRA_EXPORT Asset : public Object<Asset>, public Tagged<Asset> {
 public:
  /// Whether the asset is of the kind `type`. False for every kind in a plain `Asset`.
  virtual bool isKindOf(AssetType type) const;

  /// Destroys the handle. The asset in the library stays.
  virtual ~Asset();

  using Object<Asset>::name;

  /// Sets the name, which need not be unique. Marks the asset dirty if it differs.
  void name(const String& name);

  /// One or two sentences that say to users what the asset describes.
  const String& description() const noexcept;

  /// Sets the description. Marks the asset dirty if it differs.
  void description(const String& description);

 protected:
  /// The values of the asset.
  struct Impl;

  /// A clean asset of defaults, which the library fills with a row of the file.
  Asset();

  /// An asset that takes over `impl`.
  explicit Asset(Impl* impl);

  /// The values, for the library to write.
  Impl& impl() noexcept;

  /// The values, for the library to read.
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

/// The properties of a material that structural analysis asks for. Units: see `Asset`.
///
/// Every setter marks the asset dirty if the value differs. NaN always differs.
class VELDRA_EXPORT StructuralAsset : public Asset,
                                      public std::enable_shared_from_this<StructuralAsset> {
 public:
  /// True for `AssetType::Structural`, false for every other kind.
  bool isKindOf(AssetType type) const override;

  /// Destroys the handle. The asset in the library stays.
  ~StructuralAsset() override;

  /// The family of materials for the host's analysis, such as "Concrete" or "Steel".
  const String& subclass() const noexcept;

  /// Sets the family. Marks the asset dirty if it differs.
  void subclass(const String& subclass);

  /// The mass of a volume, by convention in kg/m3; NaN if not known.
  double density() const noexcept;

  /// Sets the density. Marks the asset dirty if it differs.
  void density(double density);

  /// The heat that warms a mass by one kelvin, by convention in J/(kg K); NaN if not known.
  double specific_heat() const noexcept;

  /// Sets the specific heat. Marks the asset dirty if it differs.
  void specific_heat(double specific_heat);

  /// How well heat flows through the material, by convention in W/(m K); NaN if not known.
  double thermal_conductivity() const noexcept;

  /// Sets the conductivity. Marks the asset dirty if it differs.
  void thermal_conductivity(double thermal_conductivity);

  /// Whether subclasses and numbers are equal. Name, description, tags, id and library do not
  /// count. An asset with a NaN is not equal to itself.
  bool operator==(const StructuralAsset& other) const noexcept;

  /// The opposite of `==`.
  bool operator!=(const StructuralAsset& other) const noexcept;

 protected:
  /// The values of the asset.
  struct Impl;

  /// A clean asset of defaults, which the library fills with a row of the file.
  StructuralAsset();

  /// An asset that takes over `impl`.
  explicit StructuralAsset(Impl* impl);

  /// The values, for the library to write.
  Impl& impl() noexcept;

  /// The values, for the library to read.
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;
};

/// The properties of a material that energy analysis asks for. Units: see `Asset`.
///
/// Every setter marks the asset dirty if the value differs. NaN always differs.
///
/// The program `veldra` computes with the conductivity where the material has no custom value
/// "Thermal conductivity [W/(m K)]".
class VELDRA_EXPORT ThermalAsset : public Asset, public std::enable_shared_from_this<ThermalAsset> {
 public:
  /// True for `AssetType::Thermal`, false for every other kind.
  bool isKindOf(AssetType type) const override;

  /// Destroys the handle. The asset in the library stays.
  ~ThermalAsset() override;

  /// The family of materials for the host's analysis, such as "Insulation".
  const String& subclass() const noexcept;

  /// Sets the family. Marks the asset dirty if it differs.
  void subclass(const String& subclass);

  /// The origin of the numbers: a standard, a data sheet, a measurement.
  const String& source() const noexcept;

  /// Sets the origin of the numbers. Marks the asset dirty if it differs.
  void source(const String& source);

  /// The mass of a volume, by convention in kg/m3; NaN if not known.
  double density() const noexcept;

  /// Sets the density. Marks the asset dirty if it differs.
  void density(double density);

  /// The share of heat that the surface radiates, from 0 to 1; NaN if not known.
  double emissivity() const noexcept;

  /// Sets the emissivity. Marks the asset dirty if it differs.
  void emissivity(double emissivity);

  /// The heat that warms a mass by one kelvin, by convention in J/(kg K); NaN if not known.
  double specific_heat() const noexcept;

  /// Sets the specific heat. Marks the asset dirty if it differs.
  void specific_heat(double specific_heat);

  /// How well heat flows through the material, by convention in W/(m K); NaN if not known.
  double thermal_conductivity() const noexcept;

  /// Sets the conductivity. Marks the asset dirty if it differs.
  void thermal_conductivity(double thermal_conductivity);

  /// Whether subclasses, sources and numbers are equal. Name, description, tags, id and library do
  /// not count. An asset with a NaN is not equal to itself.
  bool operator==(const ThermalAsset& other) const noexcept;

  /// The opposite of `==`.
  bool operator!=(const ThermalAsset& other) const noexcept;

 protected:
  /// The values of the asset.
  struct Impl;

  /// A clean asset of defaults, which the library fills with a row of the file.
  ThermalAsset();

  /// An asset that takes over `impl`.
  explicit ThermalAsset(Impl* impl);

  /// The values, for the library to write.
  Impl& impl() noexcept;

  /// The values, for the library to read.
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;
};

}  // namespace veldra

#endif
