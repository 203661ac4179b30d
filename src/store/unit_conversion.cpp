#include "store/unit_conversion.hpp"

namespace veldra {

namespace {

/// What a length is multiplied by; 1 where the units are not the two that are known.
double factor(Unit from, Unit to) {
  if (from == Unit::Inches && to == Unit::Millimetres) return 25.4;
  if (from == Unit::Millimetres && to == Unit::Inches) return 0.03937007874015748;
  return 1.0;
}

}  // namespace

void convert_lengths(Material& material, Unit from, Unit to) {
  const double by = factor(from, to);
  if (by == 1.0 || material.thicknesses().empty()) return;
  std::set<double> converted;
  for (const double thickness : material.thicknesses()) converted.insert(thickness * by);
  material.thicknesses(toModify).swap(converted);
}

void convert_lengths(Composition& composition, Unit from, Unit to) {
  const double by = factor(from, to);
  if (by == 1.0) return;
  const auto end = composition.layers_end(toModify);
  for (auto layer = composition.layers_begin(toModify); layer != end; ++layer) {
    layer->thickness(layer->thickness() * by);
  }
  composition.variable_layer_min_thickness(composition.variable_layer_min_thickness() * by);
  if (composition.has_variable_layer_max_thickness()) {
    composition.variable_layer_max_thickness(composition.variable_layer_max_thickness() * by);
  }
}

}  // namespace veldra
