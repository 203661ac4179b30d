// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FIELDS_HPP
#define VELDRA_TOOL_FIELDS_HPP

#include <veldra/veldra.hpp>

namespace veldra_tool {

/// A text of a material, with the name that it has in files and tables. The name and the code are
/// apart, because they are unique.
struct MaterialText {
  const char* key;
  const veldra::String& (veldra::Material::*get)() const noexcept;
  void (veldra::Material::*set)(const veldra::String&);
};

constexpr MaterialText material_texts[] = {
    {"description", &veldra::Material::description, &veldra::Material::description},
    {"comments", &veldra::Material::comments, &veldra::Material::comments},
    {"cost", &veldra::Material::cost, &veldra::Material::cost},
    {"keynote", &veldra::Material::keynote, &veldra::Material::keynote},
    {"label", &veldra::Material::label, &veldra::Material::label},
    {"manufacturer", &veldra::Material::manufacturer, &veldra::Material::manufacturer},
    {"mark", &veldra::Material::mark, &veldra::Material::mark},
    {"model", &veldra::Material::model, &veldra::Material::model},
    {"url", &veldra::Material::url, &veldra::Material::url},
    {"classification", &veldra::Material::classification, &veldra::Material::classification},
    {"appearance", &veldra::Material::appearance, &veldra::Material::appearance}};

struct MaterialColor {
  const char* key;
  const veldra::Color& (veldra::Material::*get)() const noexcept;
  void (veldra::Material::*set)(const veldra::Color&);
};

constexpr MaterialColor material_colors[] = {
    {"shading_color", &veldra::Material::shading_color, &veldra::Material::shading_color},
    {"surface_pattern_color", &veldra::Material::surface_pattern_color,
     &veldra::Material::surface_pattern_color},
    {"cut_pattern_color", &veldra::Material::cut_pattern_color,
     &veldra::Material::cut_pattern_color}};

struct MaterialPattern {
  const char* key;
  const veldra::Pattern& (veldra::Material::*get)() const noexcept;
  void (veldra::Material::*set)(const veldra::Pattern&);
};

constexpr MaterialPattern material_patterns[] = {
    {"surface_pattern", &veldra::Material::surface_pattern, &veldra::Material::surface_pattern},
    {"cut_pattern", &veldra::Material::cut_pattern, &veldra::Material::cut_pattern}};

}  // namespace veldra_tool

#endif
