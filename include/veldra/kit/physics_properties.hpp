// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_PROPERTIES_HPP
#define VELDRA_KIT_PHYSICS_PROPERTIES_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

/// The names of the custom properties that hold what is known of a material's behaviour. A name
/// that ends with a unit in square brackets has numbers as its values.
namespace property {
constexpr const char* conductivity = "Thermal conductivity [W/(m K)]";  ///< of heat
constexpr const char* density = "Density [kg/m3]";                      ///< mass of a volume
constexpr const char* specific_heat = "Specific heat [J/(kg K)]";       ///< of a mass
constexpr const char* resistance = "Thermal resistance [m2 K/W]";       ///< of a layer as a whole
constexpr const char* vapour_factor = "Water vapour resistance factor [-]";  ///< as air is 1
constexpr const char* ventilation = "Ventilation";  ///< how an air layer is ventilated
}  // namespace property

/// The properties that physics reads. Those up to `InvertedRoofFactor` and the texts are of
/// materials; see `known_properties` for what each is.
enum class Known : int {
  Conductivity = 0,            ///< of heat
  Resistance = 1,              ///< of a layer as a whole
  Density = 2,                 ///< mass of a volume
  SpecificHeat = 3,            ///< of a mass
  VapourFactor = 4,            ///< resistance to water vapour, as a multiple of air
  VapourThickness = 5,         ///< of a layer as a whole
  Opening = 6,                 ///< of a ventilated air layer
  OuterEmissivity = 7,         ///< of what borders on an air layer
  InnerEmissivity = 8,         ///< of what borders on an air layer
  BridgeShare = 9,             ///< of the area
  BridgeConductivity = 10,     ///< of heat
  BridgeDepth = 11,            ///< of a bridge that does not go through its layer
  BridgeDensity = 12,          ///< mass of a volume
  BridgeSpecificHeat = 13,     ///< of a mass
  BridgeVapourFactor = 14,     ///< resistance to water vapour
  BridgeSpacing = 15,          ///< from axis to axis
  AirVoidLevel = 16,           ///< 0, 1 or 2
  FastenerNumber = 17,         ///< of an area
  FastenerConductivity = 18,   ///< of heat
  FastenerSection = 19,        ///< the area of one
  FastenerLength = 20,         ///< within the layer
  InvertedRoofFactor = 21,     ///< of insulation that rain flows under
  TaperRise = 22,              ///< above the thickness of the layer
  TaperSecondRise = 23,        ///< of the third corner
  FrontEmissivity = 24,        ///< of a pane, towards the outside
  BackEmissivity = 25,         ///< of a pane, towards the inside
  BothEmissivity = 26,         ///< of a pane with two equal sides
  InfraredTransmittance = 27,  ///< of a pane
  GasFraction1 = 28,           ///< of the volume
  GasFraction2 = 29,           ///< of the volume
  GasFraction3 = 30,           ///< of the volume
  GasFraction4 = 31,           ///< of the volume
  UFactor = 32,                ///< of a whole glazing or build-up, as stated
  Precipitation = 33,          ///< of compositions
  Ventilation = 34,            ///< the first of the texts
  BridgeName = 35,             ///< what it is
  BridgeGroup = 36,            ///< what it is aligned with
  TaperShape = 37,             ///< its plan
  GasType = 38,                ///< of an unmixed gas
  GasType1 = 39,               ///< of a mixture
  GasType2 = 40,               ///< of a mixture
  GasType3 = 41,               ///< of a mixture
  GasType4 = 42,               ///< of a mixture
  Boundary = 43                ///< of compositions
};

/// How many properties there are in `Known`.
constexpr std::size_t known_count = 44;

/// What is known of a property.
struct KnownProperty {
  Known id;              ///< which one it is
  const char* name;      ///< of the custom property
  bool number;           ///< else it is a text
  double least;          ///< of a number
  bool least_allowed;    ///< or only what is greater
  double greatest;       ///< of a number; infinite for no limit
  const char* used_for;  ///< for people
  const char* of;        ///< the objects that have it: "materials", "compositions" or "both"
};

/// All of them, in the order of `Known`.
VELDRA_KIT_EXPORT const std::array<KnownProperty, known_count>& known_properties();

/// The values of the known properties that a material or a composition has.
class VELDRA_KIT_EXPORT KnownValues {
 public:
  /// The values of a material. Where it has no custom value for conductivity, density or specific
  /// heat, those of its thermal asset count, and else those of its structural asset.
  ///
  /// Throws: `std::bad_alloc`.
  explicit KnownValues(const Material& material);

  /// The values of a composition.
  ///
  /// Throws: `std::bad_alloc`.
  explicit KnownValues(const Composition& composition);

  /// A number that is within its limits; empty if there is none.
  std::optional<double> number(Known id) const;

  /// A text without blanks around it; empty if there is none.
  ///
  /// Throws: `std::bad_alloc`.
  std::string text(Known id) const;

  /// Why a value cannot be used, such as "its 'Bridge share [-]' 1.2 is greater than 1"; empty if
  /// it can or is not there.
  ///
  /// Throws: `std::bad_alloc`.
  std::string fault(Known id) const;

  /// All faults in the order of `Known`.
  ///
  /// Throws: `std::bad_alloc`.
  std::vector<std::string> faults() const;

 private:
  struct Item {
    int id;
    std::optional<double> number;
    std::string text;
    std::string fault;
  };

  template <class Owner>
  void read(const Owner& owner);
  void add(std::size_t id, const std::string& text);
  void add_of_assets(const Material& material);
  const Item* find(Known id) const;

  std::vector<Item> items_;
};

/// The number that a custom value of a material says, if it says one.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<double> number_value(const Material& material,
                                                     const char* property);

/// The conductivity of a material: its custom value, or else that of its thermal asset; empty where
/// neither is known.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<double> conductivity_of(const Material& material);

}  // namespace veldra::kit

#endif
