// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_styles.hpp"

#include <algorithm>

namespace veldra::kit {

namespace {

constexpr unsigned greatest_depth = 20;

double share(const StepValue& value) {
  return std::clamp(value.content().number().value_or(0), 0.0, 1.0);
}

std::optional<Color> predefined(const std::string& name) {
  static const std::map<std::string, Color> colors{
      {"black", {0, 0, 0, 1}}, {"red", {1, 0, 0, 1}},    {"green", {0, 1, 0, 1}},
      {"blue", {0, 0, 1, 1}},  {"yellow", {1, 1, 0, 1}}, {"magenta", {1, 0, 1, 1}},
      {"cyan", {0, 1, 1, 1}},  {"white", {1, 1, 1, 1}}};
  const auto found = colors.find(name);
  return found != colors.end() ? std::optional<Color>(found->second) : std::nullopt;
}

}  // namespace

void IfcStyles::Colors::add(const Colors& more) {
  if (!surface) surface = more.surface;
  if (!fill) fill = more.fill;
  if (!line) line = more.line;
}

void IfcStyles::read(const FindIfcMaterial& material_of) {
  for (const auto* instance : file_.all("IFCMATERIALDEFINITIONREPRESENTATION")) {
    const auto fields = file_.fields_of(*instance);
    auto* material = material_of(fields[3]);
    if (material == nullptr) continue;
    const auto colors = colors_of_all(fields[2]);
    if (!material->shading_color) material->shading_color = colors.surface;
    if (!material->cut_pattern_color) {
      material->cut_pattern_color = colors.line ? colors.line : colors.fill;
    }
  }
}

/// A style that is under way already refers to itself, and says nothing.
const IfcStyles::Colors& IfcStyles::colors_in(const StepValue& reference) {
  static const Colors none;
  const auto* instance = file_.find(reference);
  if (instance == nullptr || depth_ == greatest_depth) return none;
  const auto [known, is_new] = known_.emplace(instance->number, Colors());
  if (!is_new) return known->second;
  ++depth_;
  known->second = colors_of(*instance);
  --depth_;
  return known->second;
}

IfcStyles::Colors IfcStyles::colors_of_all(const StepValue& list) {
  Colors colors;
  list.for_each([&](const StepValue& reference) { colors.add(colors_in(reference)); });
  return colors;
}

IfcStyles::Colors IfcStyles::colors_of(const StepInstance& instance) {
  const auto fields = file_.fields_of(instance);
  const auto keyword = instance.keyword;
  Colors colors;
  if (keyword == "IFCSTYLEDREPRESENTATION") return colors_of_all(fields[3]);
  if (keyword == "IFCSTYLEDITEM") return colors_of_all(fields[1]);
  if (keyword == "IFCPRESENTATIONSTYLEASSIGNMENT") return colors_of_all(fields[0]);
  if (keyword == "IFCSURFACESTYLE") return colors_of_all(fields[2]);
  if (keyword == "IFCFILLAREASTYLE") return colors_of_all(fields[1]);
  if (keyword == "IFCSURFACESTYLESHADING" || keyword == "IFCSURFACESTYLERENDERING") {
    colors.surface = color_in(fields[0], 1 - share(fields[1]));
  } else if (keyword == "IFCFILLAREASTYLEHATCHING") {
    const auto* curve = file_.find(fields[0], "IFCCURVESTYLE");
    if (curve != nullptr) colors.line = color_in(file_.fields_of(*curve)[3], 1);
  } else if (keyword == "IFCCOLOURRGB" || keyword == "IFCDRAUGHTINGPREDEFINEDCOLOUR") {
    colors.fill = color_of(instance, 1);
  }
  return colors;
}

std::optional<Color> IfcStyles::color_of(const StepInstance& instance, double alpha) const {
  const auto fields = file_.fields_of(instance);
  auto color = predefined(fields[0].text().value_or(""));
  if (instance.keyword == "IFCCOLOURRGB") {
    color = Color(share(fields[1]), share(fields[2]), share(fields[3]), alpha);
  } else if (instance.keyword != "IFCDRAUGHTINGPREDEFINEDCOLOUR") {
    return std::nullopt;
  }
  if (color) color->alpha = alpha;
  return color;
}

std::optional<Color> IfcStyles::color_in(const StepValue& reference, double alpha) const {
  const auto* instance = file_.find(reference);
  return instance != nullptr ? color_of(*instance, alpha) : std::nullopt;
}

}  // namespace veldra::kit
