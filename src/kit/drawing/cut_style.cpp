// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/drawing/hatch.hpp"

#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace veldra::kit {

namespace {

/// The fill for a hatch when the material has no colour of its own.
std::string usual_fill(const std::string& hatch) {
  static const std::map<std::string, const char*> fills{
      {"insulation", "#fbf1c0"},     {"rigid insulation", "#f6e3c5"},
      {"concrete", "#d5d8d4"},       {"reinforced concrete", "#d5d8d4"},
      {"plain concrete", "#e2e4df"}, {"masonry", "#e6b59b"},
      {"timber", "#ecd3a4"},         {"board", "#e3c48f"},
      {"plaster", "#efece4"},        {"screed", "#dedbd2"},
      {"gypsum", "#f4f2ec"},         {"gravel", "#e4ddd0"},
      {"earth", "#cdb89b"},          {"membrane", "#303030"},
      {"metal", "#707880"},          {"air", "#ffffff"},
      {"glass", "#d7ecf2"},          {"stone", "#cfc8bd"},
      {"tile", "#d9a98c"},           {"vegetation", "#bcd39a"}};
  const auto found = fills.find(hatch);
  return found != fills.end() ? found->second : "#ececec";
}

std::string hex(const Color& color) {
  const auto part = [](double value) {
    return static_cast<int>(std::lround(std::clamp(std::isnan(value) ? 0 : value, 0.0, 1.0) * 255));
  };
  return fmt::format("#{:02x}{:02x}{:02x}", part(color.red), part(color.green), part(color.blue));
}

/// What the numbers of a material without a cut pattern make likely.
std::string likely_hatch(const Material& material) {
  const std::string type = material.type() ? lower_case(material.type()->name().utf8()) : "";
  if (type == "air gap" || type == "gas" || type == "gas mixture") return "air";
  if (type == "glazing" || type == "simple glazing" || type == "glass") return "glass";
  const auto conductivity = conductivity_of(material);
  const auto density = number_value(material, property::density);
  if (!conductivity) return "unknown";
  if (*conductivity > 10) return "metal";
  if (*conductivity <= 0.25 && density && *density >= 300 && *density <= 750) return "timber";
  if (density && *density >= 1900) return "concrete";
  return "unknown";
}

}  // namespace

CutStyle bridge_style(double conductivity) {
  const std::string hatch = conductivity > 10 ? "metal" : "timber";
  return {usual_fill(hatch), 1, "#3a3a3a", hatch, 1, 0, false};
}

CutStyle cut_style(const Material& material) {
  const auto& pattern = material.cut_pattern();
  CutStyle style;
  style.scale = pattern.scale > 0 && pattern.scale <= 1000 ? pattern.scale : 1;
  style.angle = std::isfinite(pattern.angle) ? pattern.angle : 0;
  style.cross = pattern.cross;
  if (pattern.type == Pattern::Type::None) {
    style.hatch = likely_hatch(material);
    style.angle = 45;
  } else {
    style.hatch = pattern.name ? lower_case(pattern.name.utf8()) : "lines";
  }
  const auto& fill = material.shading_color();
  const bool coloured = fill.alpha > 0;
  style.fill = coloured ? hex(fill) : usual_fill(style.hatch);
  style.fill_opacity = coloured ? std::min(fill.alpha, 1.0) : 1.0;
  const auto& line = material.cut_pattern_color();
  style.line = line.alpha > 0 ? hex(line) : style.hatch == "metal" ? "#ffffff" : "#3a3a3a";
  return style;
}

}  // namespace veldra::kit
