// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_HPP
#define VELDRA_KIT_PHYSICS_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/physics_glazing.hpp>
#include <veldra/kit/physics_heat.hpp>
#include <veldra/kit/physics_properties.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

/// A length in metres as one in the unit `unit`.
VELDRA_KIT_EXPORT double from_metres(double length, Unit unit);

/// A length in the unit `unit` as one in metres.
VELDRA_KIT_EXPORT double in_metres(double length, Unit unit);

/// Whether two lengths are the same, of which one may have come through other units and back. What
/// is not known (NaN) is the same as what is not known.
VELDRA_KIT_EXPORT bool same_length(double left, double right);

/// From where it is known what a composition borders on.
enum class BoundaryBasis : int {
  Asked = 0,   ///< the caller said it
  Stated = 1,  ///< a custom property of the composition
  Type = 2,    ///< assumed by its type
  Name = 3,    ///< assumed by a word in its name
  Usual = 4    ///< neither tells: assumed to be a wall to outdoor air
};

/// What a composition borders on.
struct CompositionBoundary {
  physics::Boundary boundary;                 ///< both sides and the direction
  BoundaryBasis basis = BoundaryBasis::Type;  ///< from where it is known, or what is assumed of it
  bool assumed = true;            ///< whether the outside or the direction is no statement
  bool outside_assumed = true;    ///< whether the outside is none
  bool heat_flow_assumed = true;  ///< whether the direction is none
  std::string fault;  ///< why a statement of the composition cannot be read; usually empty
};

/// What a composition borders on: what is asked for, then what its property "Boundary" states. The
/// rest is assumed: the direction by the type, of other types by the words for roof, ceiling and
/// floor in the name; the outside by words for rooms, cellars or soil in the name, or else outdoor
/// air. Where the outside is stated, the direction by the type is no assumption.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT CompositionBoundary boundary_of(const Composition& composition,
                                                  const physics::BoundaryStatement& asked = {});

/// How heat goes through a layer of a composition.
struct LayerHeat {
  /// From where the resistance is known.
  enum class Basis : int {
    Unknown = 0,       ///< it is not
    Stated = 1,        ///< a stated resistance
    Conductivity = 2,  ///< thickness and conductivity
    Air = 3,           ///< an air layer
    Gas = 4,           ///< gas between panes
    NotCounted = 5     ///< the layer is outside of a well-ventilated one, or is this
  };

  std::optional<double> resistance;       ///< in m2 K/W, beside a bridge; 0 if it does not count
  Basis basis = Basis::Unknown;           ///< from where it is known
  std::optional<double> conductivity;     ///< of the material, if it has one
  std::string fault;                      ///< why it is not known, as a sentence without the layer
  std::optional<physics::Bridge> bridge;  ///< if there is one; the resistance is that of its depth
  std::string bridge_name;                ///< what it is
  double bridge_conductivity = 0;         ///< in W/(m K)
};

/// One correction of a transmittance.
struct Correction {
  std::string name;  ///< for people, such as "air voids in layer 2"
  double value = 0;  ///< in W/(m2 K)
};

/// Heat flow through a build-up after ISO 6946:2017, in m2 K/W and W/(m2 K); that of panes with gas
/// between them after EN 673:2011.
///
/// Where a material is a well-ventilated air layer, this layer and those outside it count for
/// nothing, and the air in it is as still at the next layer as indoors.
struct VELDRA_KIT_EXPORT Transmission {
  CompositionBoundary border;        ///< what the surfaces are for
  double outside = 0;                ///< the resistance of the outside surface
  double inside = 0;                 ///< the resistance of the inside surface
  std::size_t ventilated = 0;        ///< layers, from the outside, that a ventilated cavity ends
  std::vector<LayerHeat> layers;     ///< from the outside to the inside
  std::optional<double> stated;      ///< a transmittance that is used as it is stated
  std::optional<double> resistance;  ///< of the layers together, without surfaces
  bool bridged = false;              ///< whether the limits differ
  std::optional<physics::CombinedResistance> limits;  ///< with surfaces, without taper
  std::optional<double> tapered;                      ///< the transmittance with a tapered layer
  std::vector<Correction> corrections;                ///< those that are not 0
  std::vector<std::string> notes;                     ///< what was assumed, and limits of methods
  std::vector<std::string> faults;                    ///< why there is no figure, as sentences

  /// The resistance of a layer; empty where it is not known, and where it does not count, as the
  /// layer is well ventilated or borders on one that is. Throws `std::out_of_range` for no layer.
  std::optional<double> counted_resistance(std::size_t layer) const;

  /// The resistance with both surfaces, before corrections; empty where a layer is not known.
  std::optional<double> total_resistance() const;

  /// 1 divided by the total resistance, with corrections; empty where that is not known.
  std::optional<double> transmittance() const;
};

/// Computes the heat flow through a composition, whose lengths are in the unit `unit`.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT Transmission transmission_of(const Composition& composition, Unit unit,
                                               const physics::BoundaryStatement& asked = {});

/// The sum of all layers; NaN when the thickness of one is not known.
VELDRA_KIT_EXPORT double total_thickness(const Composition& composition);

}  // namespace veldra::kit

#endif
