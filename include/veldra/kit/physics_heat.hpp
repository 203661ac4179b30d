// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_HEAT_HPP
#define VELDRA_KIT_PHYSICS_HEAT_HPP

#include <veldra/kit/export.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Building physics as functions over plain values, in SI units: metres, m2 K/W, W/(m K). They know
/// neither libraries nor objects. Values must be finite and within their physical limits.
namespace veldra::kit::physics {

/// The direction of the heat, from the inside to the outside.
enum class HeatFlow : int { Horizontal = 0, Upward = 1, Downward = 2 };

/// What one side of a build-up borders on.
enum class Side : int {
  Outdoors = 0,    ///< the air outdoors
  Ventilated = 1,  ///< a well-ventilated air layer
  Ground = 2,      ///< soil
  Interior = 3,    ///< a heated room
  Unheated = 4     ///< a room without heating
};

/// Both sides and the direction between them.
struct Boundary {
  HeatFlow heat_flow = HeatFlow::Horizontal;  ///< the direction of the heat
  Side outside = Side::Outdoors;              ///< before the first layer
  Side inside = Side::Interior;               ///< behind the last one
};

/// "horizontal", "upward" or "downward".
VELDRA_KIT_EXPORT const char* name_of(HeatFlow flow);

/// A side for people, such as "outdoor air".
VELDRA_KIT_EXPORT const char* name_of(Side side);

/// A statement of a boundary, each part of which may be left open.
struct BoundaryStatement {
  std::optional<HeatFlow> heat_flow;  ///< the direction of the heat
  std::optional<Side> outside;        ///< before the first layer
  std::optional<Side> inside;         ///< behind the last one
};

/// The statement that a text makes: words with commas between them, of which "horizontal", "upward"
/// and "downward" tell the direction, and "outdoors", "ventilated", "ground", "interior" and
/// "unheated" the outside, then the inside.
///
/// Throws: `Error` for any other word, and for one too many.
VELDRA_KIT_EXPORT BoundaryStatement boundary_statement(const std::string& text);

/// The resistance of a surface in m2 K/W (ISO 6946:2017, 6.8, table 7).
VELDRA_KIT_EXPORT double surface_resistance(HeatFlow flow, Side side);

/// An air layer whose air does not flow.
struct AirLayer {
  double thickness = 0;                    ///< in metres
  std::optional<double> outer_emissivity;  ///< of the surface on its outer side, 0 to 1
  std::optional<double> inner_emissivity;  ///< of the surface on its inner side, 0 to 1
};

/// Its resistance (ISO 6946:2017, 6.9.2): by the table for usual surfaces, and by the formula of
/// annex D where an emissivity is known; the other one is then 0.9. Empty for a layer thicker than
/// 0.3 m, for which there is no value.
VELDRA_KIT_EXPORT std::optional<double> air_resistance(const AirLayer& layer, HeatFlow flow);

/// The resistance of a build-up with a slightly ventilated air layer, between those with the layer
/// unventilated and well ventilated (ISO 6946:2017, 6.9.3). `opening` is in mm2 per metre or square
/// metre, from 500 to 1500.
VELDRA_KIT_EXPORT double slightly_ventilated(double unventilated, double ventilated,
                                             double opening);

/// What interrupts a layer at regular distances, such as rafters.
struct Bridge {
  double share = 0;       ///< of the area, 0 to 1
  double resistance = 0;  ///< through the depth of the layer
  std::size_t group = 0;  ///< bridges of one group lie behind one another, others cross
};

/// A layer as heat sees it.
struct HeatLayer {
  double resistance = 0;         ///< beside the bridge
  std::optional<Bridge> bridge;  ///< if it has one
};

/// The resistance of bridged layers between two limits (ISO 6946:2017, 6.7.2).
struct VELDRA_KIT_EXPORT CombinedResistance {
  double upper = 0;  ///< as if no heat flowed sideways
  double lower = 0;  ///< as if each layer had one temperature across

  /// The mean of both.
  double total() const { return (upper + lower) / 2; }

  /// The greatest relative error of the total (6.7.2.5).
  double error() const { return (upper - lower) / (2 * total()); }

  /// Whether the method may be used: the upper limit is at most 1.5 times the lower.
  bool valid() const { return upper <= 1.5 * lower; }
};

/// The resistance of layers and both surfaces. Empty where more bridges cross than can be counted.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<CombinedResistance> combined_resistance(
    const std::vector<HeatLayer>& layers, double outside, double inside);

/// The correction of a transmittance for air voids of level 0, 1 or 2 in a layer of resistance
/// `layer` in a build-up of resistance `total` without bridges (ISO 6946:2017, annex F.2).
VELDRA_KIT_EXPORT double air_void_correction(int level, double layer, double total);

/// Fasteners through an insulating layer.
struct Fasteners {
  double number = 0;        ///< per m2
  double conductivity = 0;  ///< W/(m K)
  double section = 0;       ///< of one, in m2
  double length = 0;        ///< within the layer, in metres
  double thickness = 0;     ///< of the layer, in metres
};

/// The correction for them (annex F.3); 0 for fasteners that conduct less than 1 W/(m K).
VELDRA_KIT_EXPORT double fastener_correction(const Fasteners& fasteners, double layer,
                                             double total);

/// The correction for rain under the insulation of an inverted roof (annex F.4). `precipitation` is
/// in mm/day, `factor` is f x in W day/(m2 K mm).
VELDRA_KIT_EXPORT double inverted_roof_correction(double precipitation, double factor, double layer,
                                                  double total);

/// The plan of a tapered layer.
enum class TaperShape : int {
  Rectangle = 0,  ///< rises from one edge to the other
  ThickApex = 1,  ///< a triangle, thin along one edge
  ThinApex = 2,   ///< a triangle, thick along one edge
  Triangle = 3    ///< a triangle with three thicknesses
};

/// The transmittance of a build-up of resistance `base`, surfaces included, on which a tapered
/// layer adds from 0 to `rise` (ISO 6946:2017, annex E). `second` is what it adds at the middle
/// corner of a triangle with three thicknesses.
VELDRA_KIT_EXPORT double tapered_transmittance(TaperShape shape, double base, double rise,
                                               double second = 0);

}  // namespace veldra::kit::physics

#endif
