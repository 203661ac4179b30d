// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics_moisture.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace veldra::kit::physics {

namespace {

constexpr double permeability = 2e-10;  ///< of air, kg/(m s Pa); ISO 13788:2012, 6.3
constexpr double thickest_part = 0.25;  ///< m2 K/W; thicker layers are divided (6.4.2)
constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// Computes months over places that stay the same.
class Year {
 public:
  Year(const std::vector<MoistureLayer>& layers, double outside, double inside,
       const Climate& climate)
      : outside_(outside), climate_(climate) {
    add_place(0, 0, 0, 0);
    for (std::size_t i = 0; i < layers.size(); ++i) add_layer(layers[i], i);
    total_ = outside + resistances_.back() + inside;
  }

  /// Where a year has several wet spells, one that begins before the longest drying ends dry, as
  /// the years that follow do.
  MoistureYear run() const {
    const auto starts = first_months();
    auto result = year_from(starts.front());
    for (auto start = starts.begin() + 1; start != starts.end() && !result.dries; ++start) {
      auto other = year_from(*start);
      if (other.dries) result = std::move(other);
    }
    return result;
  }

 private:
  void add_place(std::size_t layer, double part, double resistance, double vapour) {
    places_.push_back({layer, part, vapour});
    resistances_.push_back(resistance);
  }

  void add_layer(const MoistureLayer& layer, std::size_t index) {
    const double resistance = resistances_.back();
    const double vapour = places_.back().vapour_thickness;
    const auto parts = static_cast<int>(
        std::clamp(std::ceil(layer.resistance / thickest_part - 1e-9), 1.0, 10'000.0));
    for (int n = 1; n <= parts; ++n) {
      const double part = static_cast<double>(n) / parts;
      add_place(index, part, resistance + part * layer.resistance,
                vapour + part * layer.vapour_thickness);
    }
  }

  MoistureYear year_from(std::size_t start) const {
    MoistureYear result;
    std::vector<double> accumulated(places_.size(), 0);
    for (std::size_t n = 0; n < 12; ++n) {
      auto month = compute((start + n) % 12, accumulated);
      accumulated = month.accumulated;
      result.condenses |= month.total() > 0;
      result.greatest = std::max(result.greatest, month.total());
      result.months.push_back(std::move(month));
    }
    result.dries = result.months.back().total() <= 0;
    result.places = places_;
    return result;
  }

  /// The months in which something condenses behind one in which nothing does (6.5); January where
  /// there is none.
  std::vector<std::size_t> first_months() const {
    const std::vector<double> dry(places_.size(), 0);
    std::array<bool, 12> wet{};
    for (std::size_t month = 0; month < 12; ++month) wet[month] = compute(month, dry).total() > 0;
    std::vector<std::size_t> starts;
    for (std::size_t month = 0; month < 12; ++month) {
      if (wet[month] && !wet[(month + 11) % 12]) starts.push_back(month);
    }
    if (starts.empty()) starts.push_back(0);
    return starts;
  }

  MoistureMonth compute(std::size_t index, const std::vector<double>& before) const {
    const auto& air = climate_[index];
    MoistureMonth month;
    month.month = index;
    const double difference = air.inside_temperature - air.outside_temperature;
    for (const double resistance : resistances_) {
      month.temperatures.push_back(air.outside_temperature +
                                   (outside_ + resistance) / total_ * difference);
      month.saturations.push_back(saturation_pressure(month.temperatures.back()));
    }
    const auto corners = find_pressures(month, air, before);
    accumulate(month, corners, before);
    return month;
  }

  /// Between places that are wet, the pressure is the tightest line below saturation (6.5.2).
  std::vector<std::size_t> find_pressures(MoistureMonth& month, const MonthClimate& air,
                                          const std::vector<double>& before) const {
    const std::size_t last = places_.size() - 1;
    auto& pressures = month.pressures;
    pressures = month.saturations;
    const double outdoors = air.outside_humidity * saturation_pressure(air.outside_temperature);
    const double indoors = air.inside_humidity * saturation_pressure(air.inside_temperature);
    pressures.front() = std::min(outdoors, least_saturation_at(0, pressures));
    pressures.back() = std::min(indoors, least_saturation_at(last, pressures));
    std::vector<std::size_t> corners{0};
    std::size_t fixed = 0;  ///< where in `corners` the last wet place is
    for (std::size_t i = 1; i <= last; ++i) {
      while (corners.size() > fixed + 1 && is_below(i, corners, pressures)) corners.pop_back();
      if (x(i) > x(corners.back()) || i == last) {
        corners.push_back(i);
      } else if (pressures[i] < pressures[corners.back()] && corners.size() - 1 > fixed) {
        corners.back() = i;
      }
      if (before[i] > 0 && i != last && corners.back() == i) fixed = corners.size() - 1;
    }
    interpolate(pressures, corners);
    return corners;
  }

  /// Vapour meets no resistance between places of one s_d.
  double least_saturation_at(std::size_t end, const std::vector<double>& saturations) const {
    double least = saturations[end];
    for (std::size_t i = 0; i < saturations.size(); ++i) {
      if (x(i) == x(end)) least = std::min(least, saturations[i]);
    }
    return least;
  }

  double x(std::size_t place) const { return places_[place].vapour_thickness; }

  /// Whether the last corner lies above the line from the one before it to a place.
  bool is_below(std::size_t place, const std::vector<std::size_t>& corners,
                const std::vector<double>& pressures) const {
    const auto middle = corners.back();
    const auto start = corners[corners.size() - 2];
    return (pressures[middle] - pressures[start]) * (x(place) - x(start)) >=
           (pressures[place] - pressures[start]) * (x(middle) - x(start));
  }

  void interpolate(std::vector<double>& pressures, const std::vector<std::size_t>& corners) const {
    for (std::size_t n = 1; n < corners.size(); ++n) {
      const auto from = corners[n - 1];
      const auto to = corners[n];
      for (std::size_t i = from + 1; i < to; ++i) {
        const double part = x(to) > x(from) ? (x(i) - x(from)) / (x(to) - x(from)) : 0;
        pressures[i] = pressures[from] + part * (pressures[to] - pressures[from]);
      }
    }
  }

  /// What flows to a corner and not away from it stays there (6.5.3).
  void accumulate(MoistureMonth& month, const std::vector<std::size_t>& corners,
                  const std::vector<double>& before) const {
    month.condensed.assign(places_.size(), 0);
    month.accumulated = before;
    const double seconds = days[month.month] * 86400.0;
    const auto flow = [&](std::size_t from, std::size_t to) {
      const double distance = x(to) - x(from);
      return distance > 0 ? permeability * (month.pressures[to] - month.pressures[from]) / distance
                          : 0;
    };
    for (std::size_t n = 1; n + 1 < corners.size(); ++n) {
      const auto place = corners[n];
      const double rate = flow(place, corners[n + 1]) - flow(corners[n - 1], place);
      month.condensed[place] = std::max(rate * seconds, -before[place]);
      month.accumulated[place] = before[place] + month.condensed[place];
      if (month.accumulated[place] < 1e-12) month.accumulated[place] = 0;
    }
  }

  double outside_;
  double total_ = 0;
  const Climate& climate_;
  std::vector<MoisturePlace> places_;
  std::vector<double> resistances_;  ///< from the outer surface to each place
};

}  // namespace

double saturation_pressure(double temperature) {
  return temperature >= 0 ? 610.5 * std::exp(17.269 * temperature / (237.3 + temperature))
                          : 610.5 * std::exp(21.875 * temperature / (265.5 + temperature));
}

double saturation_temperature(double pressure) {
  const double logarithm = std::log(pressure / 610.5);
  return pressure >= 610.5 ? 237.3 * logarithm / (17.269 - logarithm)
                           : 265.5 * logarithm / (21.875 - logarithm);
}

double vapour_excess(int room_class, double outside_temperature) {
  constexpr double limits[] = {270, 540, 810, 1080, 1360};
  const double full = limits[std::clamp(room_class, 1, 5) - 1];
  return full * std::clamp(1 - outside_temperature / 20, 0.0, 1.0);
}

double MoistureMonth::total() const {
  double sum = 0;
  for (const double each : accumulated) sum += each;
  return sum;
}

MoistureYear moisture_year(const std::vector<MoistureLayer>& layers, double outside, double inside,
                           const Climate& climate) {
  return Year(layers, outside, inside, climate).run();
}

SurfaceHumidity surface_humidity(double resistance, double outside, const Climate& climate) {
  constexpr double inside = 0.25;   ///< ISO 13788:2012, 4.4.1
  constexpr double critical = 0.8;  ///< 5.3
  SurfaceHumidity result;
  const double total = outside + resistance + inside;
  result.factor = (total - inside) / total;
  for (std::size_t month = 0; month < 12; ++month) {
    const auto& air = climate[month];
    const double pressure = air.inside_humidity * saturation_pressure(air.inside_temperature);
    const double least = saturation_temperature(pressure / critical);
    const double difference = air.inside_temperature - air.outside_temperature;
    if (difference <= 0) continue;
    result.required[month] = (least - air.outside_temperature) / difference;
    if (result.required[month] > result.required[result.critical]) result.critical = month;
  }
  return result;
}

}  // namespace veldra::kit::physics
