// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics_heat.hpp>

#include <algorithm>
#include <cmath>

namespace veldra::kit::physics {

namespace {

double square(double value) { return value * value; }

/// The mean of 1 / x between two values.
double mean_inverse(double from, double to) {
  const double rise = (to - from) / from;
  if (rise < 1e-4) return (1 - rise / 2 + rise * rise / 3) / from;
  return std::log1p(rise) / (to - from);
}

/// x ln x - x, whose second derivative is 1 / x.
double antiderivative(double x) { return x * std::log(x) - x; }

/// The mean of 1 / x over a triangle in whose corners x is as given, in rising order: twice the
/// second divided difference of the antiderivative. The formulas of annex E are its special cases.
double mean_inverse(double least, double middle, double greatest) {
  const double range = (greatest - least) / least;
  if (range < 1e-3) {
    const double mean = (least + middle + greatest) / 3;
    const double spread =
        (square(least - mean) + square(middle - mean) + square(greatest - mean)) / 12;
    return (1 + spread / square(mean)) / mean;
  }
  const auto first = [](double a, double b) {
    if (b - a < 1e-6 * b) return std::log((a + b) / 2);
    return (antiderivative(b) - antiderivative(a)) / (b - a);
  };
  return 2 * (first(middle, greatest) - first(least, middle)) / (greatest - least);
}

}  // namespace

double air_void_correction(int level, double layer, double total) {
  constexpr double corrections[] = {0, 0.01, 0.04};
  return corrections[std::clamp(level, 0, 2)] * square(layer / total);
}

double fastener_correction(const Fasteners& fasteners, double layer, double total) {
  if (fasteners.conductivity < 1) return 0;
  const double part = std::min(1.0, fasteners.length / fasteners.thickness);
  return 0.8 * part * fasteners.conductivity * fasteners.section * fasteners.number /
         fasteners.thickness * square(layer / total);
}

double inverted_roof_correction(double precipitation, double factor, double layer, double total) {
  return precipitation * factor * square(layer / total);
}

double tapered_transmittance(TaperShape shape, double base, double rise, double second) {
  const double top = base + rise;
  switch (shape) {
    case TaperShape::ThickApex:
      return mean_inverse(base, base, top);
    case TaperShape::ThinApex:
      return mean_inverse(base, top, top);
    case TaperShape::Triangle:
      return mean_inverse(base, std::min(base + second, top), std::max(base + second, top));
    default:
      return mean_inverse(base, top);
  }
}

}  // namespace veldra::kit::physics
