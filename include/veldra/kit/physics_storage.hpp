// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_STORAGE_HPP
#define VELDRA_KIT_PHYSICS_STORAGE_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/physics_heat.hpp>

#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

namespace physics {

/// A layer that stores heat, in SI units. One without density or specific heat is a resistance.
struct StorageLayer {
  double resistance = 0;     ///< m2 K/W, greater than 0
  double thickness = 0;      ///< m
  double density = 0;        ///< kg/m3
  double specific_heat = 0;  ///< J/(kg K)
};

/// How a build-up answers to temperatures that swing (ISO 13786:2017).
struct Storage {
  double inside = 0;                  ///< areal heat capacity of the inner side, J/(m2 K)
  double outside = 0;                 ///< of the outer side, J/(m2 K)
  double periodic_transmittance = 0;  ///< W/(m2 K)
  double decrement = 0;               ///< that divided by the steady transmittance
  double time_shift = 0;              ///< by how many hours the inside comes later
};

/// Computes it for layers from the outside to the inside between two surface resistances, for a
/// swing of `period` seconds.
VELDRA_KIT_EXPORT Storage heat_storage(const std::vector<StorageLayer>& layers, double outside,
                                       double inside, double period = 86400);

}  // namespace physics

/// What a composition stores.
struct CompositionStorage {
  std::optional<double> mass;               ///< of all layers, kg/m2
  std::vector<std::string> mass_faults;     ///< why it is not known, as sentences
  std::optional<physics::Storage> storage;  ///< for a day
  std::vector<std::string> faults;          ///< why it is not known, as sentences
};

/// Computes it from the densities and specific heats of the materials, bridges by their share. Air
/// and gas between layers have no mass. What a ventilated layer keeps from counting has mass, and
/// stores nothing.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT CompositionStorage storage_of(const Composition& composition, Unit unit,
                                                const physics::BoundaryStatement& asked = {});

/// The mass of all layers in kg/m2; empty where that of one is not known.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<double> mass_of(const Composition& composition, Unit unit);

}  // namespace veldra::kit

#endif
