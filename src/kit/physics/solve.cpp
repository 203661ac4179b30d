// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics.hpp>
#include <veldra/kit/physics_solve.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace veldra::kit {

namespace physics {

std::optional<double> thickness_for(double target,
                                    const std::function<double(double)>& transmittance,
                                    double least, double greatest) {
  constexpr double far = 1e6;  ///< no layer is as thick, in whatever unit
  if (transmittance(least) <= target) return least;
  double low = least;
  double high = std::isfinite(greatest) ? greatest : std::max(1.0, 2 * least);
  while (transmittance(high) > target) {
    if (std::isfinite(greatest) || high > far) return std::nullopt;
    low = high;
    high *= 2;
  }
  while (high - low > 1e-12 * high) {
    const double middle = (low + high) / 2;
    if (middle <= low || middle >= high) break;
    (transmittance(middle) <= target ? high : low) = middle;
  }
  return high;
}

}  // namespace physics

namespace {

constexpr double thin = 1e-6;  ///< stands for no thickness, with which a layer has no resistance

struct Limits {
  double least;
  double greatest;
};

Limits limits_of(const Composition& composition, std::size_t layer) {
  Limits limits{thin, std::numeric_limits<double>::infinity()};
  if (!composition.has_variable_layer() || composition.variable_layer() != layer) return limits;
  limits.least = std::max(thin, composition.variable_layer_min_thickness());
  if (composition.has_variable_layer_max_thickness()) {
    limits.greatest = composition.variable_layer_max_thickness();
  }
  return limits;
}

/// Tells whether a thickness can change the figure at all.
std::string obstacle(const Transmission& transmission, std::size_t layer) {
  if (transmission.stated) return "its U-factor is stated, whatever the layers are";
  if (!transmission.faults.empty()) return transmission.faults.front();
  const auto basis = transmission.layers[layer].basis;
  if (basis == LayerHeat::Basis::Conductivity) return "";
  if (basis == LayerHeat::Basis::NotCounted)
    return "a layer outside a ventilated one has no effect";
  return fmt::format("the resistance of layer {} does not grow with its thickness", layer + 1);
}

/// The thickness stays what it is until it is known that there is another.
class Trial {
 public:
  Trial(const Composition& composition, Unit unit, std::size_t layer,
        const physics::BoundaryStatement& asked)
      : composition_(composition.clone()), unit_(unit), layer_(layer), asked_(asked) {}

  Transmission with(double thickness) {
    composition_->layer(layer_, toModify).thickness(thickness);
    return transmission_of(*composition_, unit_, asked_);
  }

  double transmittance(double thickness) {
    return with(thickness).transmittance().value_or(std::numeric_limits<double>::infinity());
  }

 private:
  std::shared_ptr<Composition> composition_;
  Unit unit_;
  std::size_t layer_;
  physics::BoundaryStatement asked_;
};

std::string text_of(double length, Unit unit) {
  return fmt::format("{:.4g} {}", length, unit == Unit::Inches ? "in" : "mm");
}

}  // namespace

ThicknessSolution thickness_for(const Composition& composition, Unit unit, double target,
                                std::optional<std::size_t> layer,
                                const physics::BoundaryStatement& asked) {
  ThicknessSolution result;
  if (!layer && composition.has_variable_layer()) layer = composition.variable_layer();
  const auto count = composition.layers().size();
  if (!layer || *layer >= count) {
    result.fault = layer ? fmt::format("there is no layer {} of {}", *layer + 1, count)
                         : "it has no variable layer; name one";
    return result;
  }
  result.layer = *layer;
  if (!(target > 0) || !std::isfinite(target)) {
    result.fault = "the target is not greater than 0";
    return result;
  }
  Trial trial(composition, unit, *layer, asked);
  const auto limits = limits_of(composition, *layer);
  if (limits.least > limits.greatest) {
    result.fault =
        fmt::format("the least thickness of layer {}, {}, is more than its greatest, {}",
                    *layer + 1, text_of(limits.least, unit), text_of(limits.greatest, unit));
    return result;
  }
  result.fault = obstacle(trial.with(std::max(limits.least, 1e-3)), *layer);
  if (!result.fault.empty()) return result;
  const auto transmittance = [&trial](double thickness) { return trial.transmittance(thickness); };
  result.thickness = physics::thickness_for(target, transmittance, limits.least, limits.greatest);
  if (result.thickness) {
    result.transmittance = transmittance(*result.thickness);
    if (*result.thickness <= thin) result.thickness = 0;  // it can be left out
  } else if (std::isfinite(limits.greatest)) {
    result.fault =
        fmt::format("even with its greatest thickness, {}, layer {} gives {:.3f} W/(m²K)",
                    text_of(limits.greatest, unit), *layer + 1, transmittance(limits.greatest));
  } else {
    result.fault = fmt::format("no thickness of layer {} is enough", *layer + 1);
  }
  return result;
}

}  // namespace veldra::kit
