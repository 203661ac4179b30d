// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/physics_heat.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace veldra::kit::physics {

namespace {

constexpr std::size_t most_sections = 200'000;

/// Sections side by side: the resistance of each, and its part of the area.
using Sections = std::map<double, double>;

using Bridged = std::vector<const HeatLayer*>;

/// Bridges of a group begin at one line, so that a narrower one lies within a wider one.
Sections sections_of(const Bridged& layers) {
  std::set<double> edges{0, 1};
  for (const HeatLayer* layer : layers) edges.insert(layer->bridge->share);
  Sections sections;
  for (auto right = std::next(edges.begin()); right != edges.end(); ++right) {
    const double left = *std::prev(right);
    double sum = 0;
    for (const HeatLayer* layer : layers) {
      sum += left < layer->bridge->share ? layer->bridge->resistance : layer->resistance;
    }
    sections[sum] += *right - left;
  }
  return sections;
}

Sections crossed(const Sections& one, const Sections& other) {
  Sections result;
  for (const auto& [resistance, share] : one) {
    for (const auto& [more, part] : other) result[resistance + more] += share * part;
  }
  return result;
}

/// ISO 6946:2017, 6.7.2.3.
std::optional<double> upper_limit(const std::vector<HeatLayer>& layers, double surfaces) {
  double plain = surfaces;
  std::map<std::size_t, Bridged> groups;
  for (const auto& layer : layers) {
    if (layer.bridge) {
      groups[layer.bridge->group].push_back(&layer);
    } else {
      plain += layer.resistance;
    }
  }
  Sections sections{{plain, 1}};
  for (const auto& group : groups) {
    const auto more = sections_of(group.second);
    if (sections.size() * more.size() > most_sections) return std::nullopt;
    sections = crossed(sections, more);
  }
  double conductance = 0;
  for (const auto& [resistance, share] : sections) conductance += share / resistance;
  return 1 / conductance;
}

/// ISO 6946:2017, 6.7.2.4.
double across(const HeatLayer& layer) {
  if (!layer.bridge) return layer.resistance;
  const auto conductance = [](double share, double resistance) {
    return share == 0 ? 0 : share / resistance;
  };
  return 1 / (conductance(1 - layer.bridge->share, layer.resistance) +
              conductance(layer.bridge->share, layer.bridge->resistance));
}

}  // namespace

std::optional<CombinedResistance> combined_resistance(const std::vector<HeatLayer>& layers,
                                                      double outside, double inside) {
  const bool bridged = std::any_of(layers.begin(), layers.end(),
                                   [](const HeatLayer& layer) { return layer.bridge.has_value(); });
  CombinedResistance result;
  result.lower = outside;
  for (const auto& layer : layers) result.lower += across(layer);
  result.lower += inside;
  result.upper = result.lower;
  if (!bridged) return result;
  const auto upper = upper_limit(layers, outside + inside);
  if (!upper) return std::nullopt;
  result.upper = std::max(*upper, result.lower);
  return result;
}

}  // namespace veldra::kit::physics
