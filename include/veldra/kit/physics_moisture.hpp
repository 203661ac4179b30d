// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PHYSICS_MOISTURE_HPP
#define VELDRA_KIT_PHYSICS_MOISTURE_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/physics_heat.hpp>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

namespace physics {

/// The pressure of saturated water vapour in Pa at a temperature in °C (ISO 13788:2012, annex E).
VELDRA_KIT_EXPORT double saturation_pressure(double temperature);

/// The temperature in °C at which a pressure in Pa saturates.
VELDRA_KIT_EXPORT double saturation_temperature(double pressure);

/// The air of a month on both sides.
struct MonthClimate {
  double outside_temperature = 0;  ///< °C
  double outside_humidity = 0;     ///< relative, 0 to 1
  double inside_temperature = 20;  ///< °C
  double inside_humidity = 0;      ///< relative, 0 to 1
};

/// A year, January first.
using Climate = std::array<MonthClimate, 12>;

/// By how much the pressure of vapour in a room is greater than outdoors, in Pa: the upper limit of
/// a room class from 1 to 5 (ISO 13788:2012, annex A), full to 0 °C outdoors, none from 20 °C.
VELDRA_KIT_EXPORT double vapour_excess(int room_class, double outside_temperature);

/// A layer as vapour sees it.
struct MoistureLayer {
  double resistance = 0;        ///< m2 K/W
  double vapour_thickness = 0;  ///< s_d in m
};

/// A place in the section, on the surface of a layer or within it.
struct MoisturePlace {
  std::size_t layer = 0;        ///< which layer, counted from 0 from the outside
  double part = 0;              ///< how far in it, 0 to 1
  double vapour_thickness = 0;  ///< s_d from the outside, m
};

/// One month of a year of condensation.
struct MoistureMonth {
  std::size_t month = 0;             ///< 0 is January
  std::vector<double> temperatures;  ///< °C, at each place
  std::vector<double> saturations;   ///< Pa, at each place
  std::vector<double> pressures;     ///< Pa, at each place
  std::vector<double> condensed;     ///< kg/m2 in the month; less than 0 evaporates
  std::vector<double> accumulated;   ///< kg/m2 at the end of the month

  /// The sum of `accumulated`.
  VELDRA_KIT_EXPORT double total() const;
};

/// A year of condensation and evaporation (ISO 13788:2012, 6).
struct MoistureYear {
  std::vector<MoisturePlace> places;  ///< from the outside to the inside
  std::vector<MoistureMonth> months;  ///< from the first one in which something condenses
  bool condenses = false;             ///< in any month
  bool dries = true;                  ///< nothing is left when the year is over
  double greatest = 0;                ///< what is accumulated at most, kg/m2
};

/// Computes a year for layers from the outside to the inside. At least one layer must have an s_d.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT MoistureYear moisture_year(const std::vector<MoistureLayer>& layers,
                                             double outside, double inside, const Climate& climate);

/// What the inner surface must be so that no mould grows (ISO 13788:2012, 5).
struct SurfaceHumidity {
  double factor = 0;                  ///< f_Rsi of the build-up
  std::array<double, 12> required{};  ///< f_Rsi that keeps the surface at 80 % in each month
  std::size_t critical = 0;           ///< the month that needs most; 0 is January

  /// Whether the build-up is good enough in the critical month.
  bool safe() const { return factor > required[critical]; }
};

/// Computes it for layers of a resistance, without surfaces. The inner surface has 0.25 m2 K/W.
VELDRA_KIT_EXPORT SurfaceHumidity surface_humidity(double resistance, double outside,
                                                   const Climate& climate);

}  // namespace physics

/// The climate that a table says: comma-separated values with a title line. The columns are month
/// (1 to 12), outside_temperature and inside_temperature in °C, outside_humidity and
/// inside_humidity in %. Lines that begin with # are comments. Where there is no inside_humidity,
/// `room_class` gives it (`vapour_excess`).
///
/// Throws: `Error`, naming the line.
VELDRA_KIT_EXPORT physics::Climate climate_from_csv(const std::string& text,
                                                    std::optional<int> room_class = {});

/// The s_d values of a composition.
struct Diffusion {
  std::vector<std::optional<double>> layers;   ///< in m, from the outside; 0 if it does not count
  std::vector<std::optional<double>> bridges;  ///< in m, of bridges whose factor is known
  std::optional<double> total;                 ///< where all are known
  std::vector<std::string> faults;             ///< why it is not known, as sentences
};

/// Computes them: what is stated, or else thickness and vapour resistance factor, beside bridges.
/// Air layers have 0.01 m.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT Diffusion diffusion_of(const Composition& composition, Unit unit);

/// Moisture in a composition.
struct CompositionMoisture {
  std::optional<physics::MoistureYear> year;        ///< if it can be computed
  std::optional<physics::SurfaceHumidity> surface;  ///< if it can be computed
  std::vector<std::string> notes;                   ///< what was assumed
  std::vector<std::string> faults;                  ///< why there is no figure, as sentences
};

/// Computes it beside bridges. What a ventilated layer keeps from counting does not count. There is
/// no figure where the outside is neither outdoor nor ventilated air, or the inside no heated room,
/// of which the climate says nothing.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT CompositionMoisture moisture_of(const Composition& composition, Unit unit,
                                                  const physics::Climate& climate,
                                                  const physics::BoundaryStatement& asked = {});

}  // namespace veldra::kit

#endif
