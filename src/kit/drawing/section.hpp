// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_SECTION_HPP
#define VELDRA_KIT_DRAWING_SECTION_HPP

#include "kit/drawing/hatch.hpp"
#include "kit/drawing/svg.hpp"
#include "kit/drawing/words.hpp"

#include <veldra/kit/drawing.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

/// The cut through a build-up, placed on paper: walls stand, with the outside on the left; roofs
/// lie, with the outside above; floors lie, with the outside below.
class Section {
 public:
  /// Chooses the largest usual scale that fits. There are layers. `heat` outlives the section.
  Section(const Composition& composition, Unit unit, Point origin, const Transmission& heat,
          const DrawingRules& rules);

  /// Draws the layers, the core, the ends, the dimensions and a bar that shows the scale, with a
  /// number for each layer, or for every so many where they would not fit. Returns false when some
  /// layers are without their hatch, because all hatches together would be too long a text.
  bool draw(Svg& svg) const;

  double scale() const { return scale_; }
  double height() const;  ///< of all that is drawn
  bool has_thickened_layers() const { return thickened_; }
  bool has_crossing_bridges() const;  ///< beside those that the section is cut through

  /// How many thicknesses are so close together that they stand in the list alone.
  std::size_t undimensioned_layers() const { return undimensioned_; }

 private:
  enum class Lie { Standing, OutsideAbove, OutsideBelow };

  void place_layers();
  bool place_layers(double scale, double deepest);
  Point at(double across, double along) const;
  bool has_crossing_bridge(std::size_t index) const;
  double bridge_spacing(std::size_t index) const;
  std::string bridge_elements(std::size_t index, double layer_width, double layer_length) const;
  void place_dimensions();
  void draw_layer(Svg& svg, std::size_t index, const CutStyle& style,
                  const std::string& hatch) const;
  bool draw_layers(Svg& svg) const;
  void draw_core(Svg& svg) const;
  void draw_break(Svg& svg, double along) const;
  void draw_dimension(Svg& svg, double from, double to, double distance) const;
  void draw_dimension_text(Svg& svg, double middle, double distance, double shift,
                           const std::string& text) const;
  void draw_dimensions(Svg& svg) const;
  void draw_leader(Svg& svg, double middle, double shift) const;
  double row_shift(std::size_t row) const;
  double total_place() const;
  const char* side_text(physics::Side side) const;
  void draw_scale_bar(Svg& svg) const;
  void draw_numbers(Svg& svg) const;
  void draw_sides(Svg& svg) const;
  double bar() const;
  std::vector<std::size_t> numbered_layers() const;
  std::vector<double> number_places(const std::vector<std::size_t>& layers) const;
  std::size_t thickest_layer() const;
  double depth() const;  ///< of the drawing without the bar below it

  double width() const { return edges_.back(); }

  const Composition& composition_;
  Unit unit_;
  Point origin_;  ///< of the area that the drawing may use
  Lie lie_;
  const Transmission& heat_;
  Words words_;
  double scale_ = 1;
  double margin_lying_ = 8;        ///< above and below a section that lies
  std::vector<std::size_t> rows_;  ///< of the thicknesses: 0 before the line, 1 and more behind
  std::size_t greatest_row_ = 0;
  std::size_t undimensioned_ = 0;
  bool thickened_ = false;
  std::vector<double> edges_;  ///< across, from the outside; one more than layers
};

/// A length as it stands in drawings, without its unit.
std::string drawn_length(double length, Unit unit, const Words& words);

/// A layer number in its circle.
void draw_number(Svg& svg, Point center, std::size_t number, bool structural);

}  // namespace veldra::kit

#endif
