// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/drawing/section.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

namespace {

constexpr double area_width = 128;
constexpr double length = 78;             ///< of a layer that stands
constexpr double lying_length = 92;       ///< of a layer that lies
constexpr double deepest_standing = 100;  ///< of all layers together
constexpr double deepest_lying = 74;
constexpr double thinnest = 1.1;  ///< that a layer is drawn
constexpr double same_width = 1e-6;
constexpr double number_radius = 2.3;
constexpr double number_spacing = 5.4;
constexpr double number_distance = 9;
constexpr double margin_before = 16;   ///< for the numbers, or for what stands outside
constexpr double margin_behind = 3.5;  ///< behind the last dimension
constexpr double margin_lying = 8;     ///< for what stands outside and inside
constexpr double chain_distance = 7;
constexpr double total_distance = 7.5;  ///< from the chain
constexpr double row_distance = 2.7;    ///< of the thicknesses behind the chain
constexpr std::size_t most_rows = 4;
constexpr std::size_t none = static_cast<std::size_t>(-1);
constexpr double digit_width = 1.46;
constexpr double text_before = -0.9;  ///< from a dimension line
constexpr double text_beyond = 3.5;
constexpr double bar_margin = 9;
constexpr double longest_bar = 40;
constexpr double longest_lying_numbers = 135;
constexpr std::size_t longest_hatches = 400'000;  ///< bytes of all hatches together

double millimetres(double length, Unit unit) {
  const double value = converted_length(length, unit, Unit::Millimetres);
  return std::isfinite(value) && value > 0 ? std::min(value, 1e300) : 0;
}

/// Where number circles stand so that none covers another, each as near as can be to its layer.
std::vector<double> spread(std::vector<double> places) {
  for (std::size_t i = 1; i < places.size(); ++i) {
    places[i] = std::max(places[i], places[i - 1] + number_spacing);
  }
  return places;
}

/// The two diagonals by which timber is shown that is cut across.
std::string crossed_lines(double width, double height, const std::string& color) {
  return fmt::format(R"(<path d="M0 0L{0} {1}M{0} 0L0 {1}" stroke="{2}" stroke-width="0.15"/>)",
                     paper(width), paper(height), color);
}

/// Lines along the grain, by which timber is shown that runs with the section.
std::string lengthwise_lines(double width, double height, const std::string& color) {
  std::string path;
  for (const double part : {0.25, 0.5, 0.75}) {
    path += fmt::format("M{0} 0V{1}", paper(width * part), paper(height));
  }
  return fmt::format(R"(<path d="{}" stroke="{}" stroke-width="0.15"/>)", path, color);
}

double mean(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

}  // namespace

Section::Section(const Composition& composition, Unit unit, Point origin, const Transmission& heat,
                 const DrawingRules& rules)
    : composition_(composition), unit_(unit), origin_(origin), heat_(heat), words_(rules.locale) {
  switch (rules.type.value_or(composition.type())) {
    case Composition::Type::Roof:
      lie_ = Lie::OutsideAbove;
      break;
    case Composition::Type::Floor:
      lie_ = Lie::OutsideBelow;
      break;
    default:
      lie_ = Lie::Standing;
  }
  if (rules.lying && *rules.lying != (lie_ != Lie::Standing)) {
    lie_ = *rules.lying ? Lie::OutsideAbove : Lie::Standing;
  }
  place_layers();
  const double numbers = static_cast<double>(numbered_layers().size()) * number_spacing;
  margin_lying_ = std::max(margin_lying, (numbers - width()) / 2 + number_radius);
  place_dimensions();
}

void Section::place_layers() {
  constexpr double usual[] = {1, 2, 5, 10, 20, 25, 50, 100, 200, 500};
  const double deepest = lie_ == Lie::Standing ? deepest_standing : deepest_lying;
  for (const double scale : usual) {
    if (place_layers(scale, deepest)) return;
  }
  for (double thousands = 1000;; thousands *= 10) {
    for (const double leading : {1, 2, 5}) {
      if (place_layers(leading * thousands, deepest)) return;
    }
  }
}

/// Places the layers at a scale; returns false when they do not fit. Many layers are drawn thinner
/// than few, so that at some scale they do.
bool Section::place_layers(double scale, double deepest) {
  const auto& layers = composition_.layers();
  const double least = std::min(thinnest, deepest / static_cast<double>(layers.size()));
  scale_ = scale;
  thickened_ = false;
  edges_.assign(1, 0.0);
  for (const auto& layer : layers) {
    const double true_width = millimetres(layer.thickness(), unit_) / scale;
    if (true_width < least) thickened_ = true;
    edges_.push_back(edges_.back() + std::max(true_width, least));
  }
  return width() <= deepest + 1e-6;
}

double Section::height() const { return depth() + bar_margin; }

double Section::depth() const {
  return lie_ == Lie::Standing ? margin_before + length + total_place() + margin_behind
                               : margin_lying_ + width() + margin_lying_;
}

/// A place of the section on paper; `along` runs down or to the right.
Point Section::at(double across, double along) const {
  const double left = origin_.x + (area_width - lying_length) / 2;
  switch (lie_) {
    case Lie::OutsideAbove:
      return {left + along, origin_.y + margin_lying_ + across};
    case Lie::OutsideBelow:
      return {left + along, origin_.y + margin_lying_ + width() - across};
    default:
      break;
  }
  const double start = origin_.x + (area_width - width()) / 2;
  return {start + across, origin_.y + margin_before + along};
}

bool Section::draw(Svg& svg) const {
  const bool hatched = draw_layers(svg);
  draw_core(svg);
  draw_break(svg, 0);
  draw_break(svg, lie_ == Lie::Standing ? length : lying_length);
  draw_dimensions(svg);
  draw_numbers(svg);
  draw_sides(svg);
  draw_scale_bar(svg);
  return hatched;
}

bool Section::draw_layers(Svg& svg) const {
  const double layer_length = lie_ == Lie::Standing ? length : lying_length;
  std::size_t room = longest_hatches;
  bool hatched = true;
  for (std::size_t i = 0; i < composition_.layers().size(); ++i) {
    const auto style = cut_style(*composition_.layers()[i].material());
    const double layer_width = edges_[i + 1] - edges_[i];
    std::string hatch;
    if (hatched) {
      hatch = hatch_elements(style, layer_width, layer_length) +
              bridge_elements(i, layer_width, layer_length);
    }
    hatched = hatched && hatch.size() <= room;
    if (!hatched) hatch.clear();
    room -= hatch.size();
    draw_layer(svg, i, style, hatch);
  }
  return hatched;
}

/// Whether a layer has a bridge that runs with the section: one that crosses those of the thickest
/// layer with bridges, through which the section is cut.
bool Section::has_crossing_bridge(std::size_t index) const {
  const auto& layers = heat_.layers;
  if (index >= layers.size() || !layers[index].bridge) return false;
  std::size_t cut = index;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    if (!layers[i].bridge) continue;
    if (edges_[i + 1] - edges_[i] > edges_[cut + 1] - edges_[cut] + same_width) cut = i;
  }
  return layers[cut].bridge->group != layers[index].bridge->group;
}

bool Section::has_crossing_bridges() const {
  for (std::size_t i = 0; i < heat_.layers.size(); ++i) {
    if (has_crossing_bridge(i)) return true;
  }
  return false;
}

/// From axis to axis in millimetres; 0 where it is not known. Bridges of one group lie behind one
/// another, so that one without a spacing has that of another.
double Section::bridge_spacing(std::size_t index) const {
  const auto stated = [this](std::size_t layer) {
    return KnownValues(*composition_.layers()[layer].material()).number(Known::BridgeSpacing);
  };
  if (const auto own = stated(index)) return *own;
  for (std::size_t i = 0; i < heat_.layers.size(); ++i) {
    const auto& bridge = heat_.layers[i].bridge;
    if (!bridge || bridge->group != heat_.layers[index].bridge->group) continue;
    if (const auto spacing = stated(i)) return *spacing;
  }
  return 0;
}

/// What interrupts a layer, in the frame of its hatch, from the inner side as deep as it is. Those
/// that are cut across are as wide as their share of the distance between two; one that runs with
/// the section is seen in its last third, and goes on beyond it.
std::string Section::bridge_elements(std::size_t index, double layer_width,
                                     double layer_length) const {
  if (index >= heat_.layers.size() || !heat_.layers[index].bridge) return "";
  const auto& heat = heat_.layers[index];
  const KnownValues values(*composition_.layers()[index].material());
  const double thickness = composition_.layers()[index].thickness();
  const double deep =
      converted_length(values.number(Known::BridgeDepth).value_or(0), Unit::Millimetres, unit_);
  const double depth = deep > 0 && deep < thickness ? layer_width * deep / thickness : layer_width;
  const auto style = bridge_style(heat.bridge_conductivity);
  const auto element = [&](double from, double across, const std::string& lines) {
    return fmt::format(
        R"svg(<g transform="translate({} {})"><rect width="{}" height="{}" fill="{}" )svg"
        R"svg(stroke="#1a1a1a" stroke-width="0.2"/>{}</g>)svg",
        paper(layer_width - depth), paper(from), paper(depth), paper(across), style.fill, lines);
  };
  if (has_crossing_bridge(index)) {
    const double across = layer_length / 3;
    return element(layer_length - across, across, lengthwise_lines(depth, across, style.line));
  }
  const double apart = bridge_spacing(index) / scale_;
  const double spacing = apart > 0 ? std::clamp(apart, 6.0, layer_length) : layer_length / 3;
  const double across = spacing * heat.bridge->share;
  std::string result;
  for (double middle = spacing / 2; middle < layer_length; middle += spacing) {
    result += element(middle - across / 2, across, crossed_lines(depth, across, style.line));
  }
  return result;
}

/// The frame of a hatch has its origin at the outer end of the layer; lying layers swap its axes.
void Section::draw_layer(Svg& svg, std::size_t index, const CutStyle& style,
                         const std::string& hatch) const {
  const double layer_width = edges_[index + 1] - edges_[index];
  const double layer_length = lie_ == Lie::Standing ? length : lying_length;
  const Point corner = at(edges_[index], 0);
  const char* axes = lie_ == Lie::Standing       ? "1 0 0 1"
                     : lie_ == Lie::OutsideAbove ? "0 1 1 0"
                                                 : "0 -1 1 0";
  const std::string clip = fmt::format("clip-{}-{}-{}", paper(origin_.x), paper(origin_.y), index);
  svg.raw(fmt::format(
      R"svg(<g transform="matrix({0} {1} {2})"><clipPath id="{3}"><rect width="{4}" height="{5}"/>)svg"
      R"(</clipPath><rect width="{4}" height="{5}" fill="{6}" fill-opacity="{7}"/>)"
      R"svg(<g clip-path="url(#{3})">{8}</g><path d="M0 0V{5}M{4} 0V{5}" stroke="#1a1a1a" )svg"
      R"(stroke-width="0.25"/></g>)",
      axes, paper(corner.x), paper(corner.y), clip, paper(layer_width), paper(layer_length),
      style.fill, paper(style.fill_opacity), hatch));
}

void Section::draw_core(Svg& svg) const {
  const std::size_t count = composition_.layers().size();
  const std::size_t first = composition_.first_core_layer();
  const std::size_t last = std::min<std::size_t>(composition_.last_core_layer(), count - 1);
  if (first > last) return;
  const double end = lie_ == Lie::Standing ? length : lying_length;
  for (const double edge : {edges_[first], edges_[last + 1]}) {
    svg.line(at(edge, 0), at(edge, end), 0.7);
  }
}

std::size_t Section::thickest_layer() const {
  std::size_t thickest = 0;
  for (std::size_t i = 1; i + 1 < edges_.size(); ++i) {
    if (edges_[i + 1] - edges_[i] > edges_[thickest + 1] - edges_[thickest]) thickest = i;
  }
  return thickest;
}

/// The sign that the build-up goes on. It stands aside of the middle of a layer, where its number
/// points to.
void Section::draw_break(Svg& svg, double along) const {
  const std::size_t layer = thickest_layer();
  const double layer_width = edges_[layer + 1] - edges_[layer];
  const double middle = edges_[layer] + layer_width / 4;
  const double jag = std::min(1.6, layer_width / 6);
  std::string path;
  const auto add = [&](char command, double across, double shift) {
    const Point point = at(across, along + shift);
    path += fmt::format("{}{} {}", command, paper(point.x), paper(point.y));
  };
  add('M', -3, 0);
  add('L', middle - jag, 0);
  add('L', middle - jag / 3, -1.8);
  add('L', middle + jag / 3, 1.8);
  add('L', middle + jag, 0);
  add('L', width() + 3, 0);
  svg.raw(fmt::format(R"(<path d="{}" fill="none" stroke="#ffffff" stroke-width="0.9"/>)", path));
  svg.raw(fmt::format(R"(<path d="{}" fill="none" stroke="#1a1a1a" stroke-width="0.18"/>)", path));
}

/// A dimension line on the far side of standing layers and on the left of lying ones.
void Section::draw_dimension(Svg& svg, double from, double to, double distance) const {
  const bool standing = lie_ == Lie::Standing;
  const double along = standing ? length + distance : -distance;
  const Point start = at(from, along);
  const Point end = at(to, along);
  svg.line(start, end, 0.13);
  for (const Point& point : {start, end}) {
    svg.line({point.x - 0.8, point.y + 0.8}, {point.x + 0.8, point.y - 0.8}, 0.3);
    const double reach = 1.6;
    svg.line({point.x - (standing ? 0 : reach), point.y - (standing ? reach : 0)},
             {point.x + (standing ? 0 : reach), point.y + (standing ? reach : 0)}, 0.13);
  }
}

/// The number of a dimension, so far from its line as `shift` says.
void Section::draw_dimension_text(Svg& svg, double middle, double distance, double shift,
                                  const std::string& text) const {
  const bool standing = lie_ == Lie::Standing;
  TextStyle style;
  style.size = 2.3;
  style.anchor = Anchor::Middle;
  style.turn = standing ? 0 : -90;
  svg.text(at(middle, standing ? length + distance + shift : -distance + shift), text, style);
}

/// The row of each thickness: before the chain where its layer is wide enough, else in the first
/// row behind it that has room. Beyond the last row it is left to the list.
void Section::place_dimensions() {
  std::vector<double> free_from(most_rows, -area_width);
  for (std::size_t i = 0; i < composition_.layers().size(); ++i) {
    const auto text = drawn_length(composition_.layers()[i].thickness(), unit_, words_);
    const double text_width = digit_width * static_cast<double>(display_width(text));
    const double middle = (edges_[i] + edges_[i + 1]) / 2;
    std::size_t row = 0;
    if (text_width + 2 >= edges_[i + 1] - edges_[i]) {
      while (row < most_rows && middle - text_width / 2 < free_from[row]) ++row;
      if (row < most_rows) free_from[row] = middle + text_width / 2 + 1;
      row = row < most_rows ? row + 1 : none;
    }
    if (row == none) ++undimensioned_;
    if (row != none) greatest_row_ = std::max(greatest_row_, row);
    rows_.push_back(row);
  }
}

/// How far from the chain the thicknesses of a row stand. Behind the chain of a section that lies
/// is room for one row; further ones stand on its other side.
double Section::row_shift(std::size_t row) const {
  if (row == 0) return text_before;
  const double further = static_cast<double>(row - 1) * row_distance;
  if (lie_ == Lie::Standing || row == 1) return text_beyond + further;
  return text_before - further;
}

/// How far from the section its whole thickness stands.
double Section::total_place() const {
  const auto further = static_cast<double>(std::max<std::size_t>(greatest_row_, 1) - 1);
  return chain_distance + total_distance + further * row_distance;
}

/// A thickness far from the chain has a line that leads to it.
void Section::draw_dimensions(Svg& svg) const {
  double sum = 0;
  for (std::size_t i = 0; i < composition_.layers().size(); ++i) {
    const double thickness = composition_.layers()[i].thickness();
    sum += thickness;
    const double middle = (edges_[i] + edges_[i + 1]) / 2;
    draw_dimension(svg, edges_[i], edges_[i + 1], chain_distance);
    if (rows_[i] == none) continue;
    const double shift = row_shift(rows_[i]);
    draw_dimension_text(svg, middle, chain_distance, shift, drawn_length(thickness, unit_, words_));
    if (rows_[i] > 1) draw_leader(svg, middle, shift);
  }
  draw_dimension(svg, 0, width(), total_place());
  draw_dimension_text(svg, width() / 2, total_place(), text_before,
                      drawn_length(sum, unit_, words_));
}

/// From the chain to a thickness that stands so far from it.
void Section::draw_leader(Svg& svg, double middle, double shift) const {
  const bool standing = lie_ == Lie::Standing;
  const double chain = standing ? length + chain_distance : -chain_distance;
  svg.line(at(middle, chain), at(middle, chain + (standing ? shift - 2 : shift)), 0.09, "#777777");
}

/// The length that the bar shows.
double Section::bar() const {
  const double unit_on_paper = millimetres(1, unit_) / scale_;
  const double step = std::pow(10, std::floor(std::log10(longest_bar / unit_on_paper)));
  for (const double leading : {10.0, 5.0, 2.0}) {
    if (leading * step * unit_on_paper <= longest_bar) return leading * step;
  }
  return step;
}

/// For sheets that are not printed at their size.
void Section::draw_scale_bar(Svg& svg) const {
  const double bar = this->bar();
  const double bar_length = bar * millimetres(1, unit_) / scale_;
  const Point start{origin_.x + (area_width - bar_length) / 2, origin_.y + depth() + 3};
  const Point middle{start.x + bar_length / 2, start.y};
  const Point end{start.x + bar_length, start.y};
  svg.line(start, middle, 1.1);
  for (const double side : {-0.5, 0.5}) {
    svg.line({start.x, start.y + side}, {end.x, end.y + side}, 0.13);
  }
  svg.line({end.x, end.y - 0.5}, {end.x, end.y + 0.5}, 0.13);
  TextStyle style;
  style.size = 2.3;
  style.anchor = Anchor::Middle;
  svg.text({start.x, start.y + 3.2}, "0", style);
  const auto half_text = drawn_length(bar / 2, unit_, words_);
  const auto end_text = drawn_length(bar, unit_, words_) + " " + name_of(unit_);
  const auto columns = static_cast<double>(display_width(half_text) + display_width(end_text));
  if (columns * digit_width / 2 + 1 < bar_length / 2) {
    svg.text({middle.x, middle.y + 3.2}, half_text, style);
  }
  svg.text({end.x, end.y + 3.2}, end_text, style);
}

/// Those whose numbers are drawn: all, or every so many where there is no room for all.
std::vector<std::size_t> Section::numbered_layers() const {
  const double room = lie_ == Lie::Standing ? area_width : longest_lying_numbers;
  const std::size_t count = composition_.layers().size();
  const auto most = static_cast<std::size_t>(room / number_spacing);
  const std::size_t step = (count + most - 1) / most;
  std::vector<std::size_t> layers;
  for (std::size_t i = 0; i < count; i += step) layers.push_back(i);
  return layers;
}

/// The places of the numbers across the section. They may reach beyond it on both sides.
std::vector<double> Section::number_places(const std::vector<std::size_t>& layers) const {
  std::vector<double> wanted;
  wanted.reserve(layers.size());
  for (const std::size_t i : layers) wanted.push_back((edges_[i] + edges_[i + 1]) / 2);
  auto places = spread(wanted);
  const double shift = mean(places) - mean(wanted);
  for (double& place : places) place -= shift;
  return places;
}

/// No line runs over a number.
void Section::draw_numbers(Svg& svg) const {
  const bool standing = lie_ == Lie::Standing;
  const auto layers = numbered_layers();
  const auto places = number_places(layers);
  const double along = standing ? -number_distance : lying_length + number_distance;
  for (std::size_t n = 0; n < places.size(); ++n) {
    const std::size_t i = layers[n];
    const Point center = at(places[n], along);
    const double middle = (edges_[i] + edges_[i + 1]) / 2;
    const double inside = standing ? 3.5 : lying_length - 3.5;
    const double bend = standing ? -2.5 : lying_length + 2.5;
    const Point target = at(middle, inside);
    svg.line(center, at(middle, bend), 0.13);
    svg.line(at(middle, bend), target, 0.13);
    svg.raw(fmt::format(R"(<circle cx="{}" cy="{}" r="0.5" fill="#1a1a1a" stroke="#ffffff" )"
                        R"(stroke-width="0.15"/>)",
                        paper(target.x), paper(target.y)));
  }
  for (std::size_t n = 0; n < places.size(); ++n) {
    const std::size_t i = layers[n];
    draw_number(svg, at(places[n], along), i + 1, i == composition_.structural_layer());
  }
}

void Section::draw_sides(Svg& svg) const {
  TextStyle style;
  style.size = 2.6;
  style.italic = true;
  style.anchor = Anchor::Middle;
  style.color = "#555555";
  const auto& boundary = heat_.border.boundary;
  using Side = physics::Side;
  const bool open = boundary.outside == Side::Outdoors;
  const bool between_rooms =
      boundary.outside == Side::Interior || boundary.inside != Side::Interior;
  const auto* outside = open ? words_.say("outside", "außen") : side_text(boundary.outside);
  const auto* inside = between_rooms ? side_text(boundary.inside) : words_.say("inside", "innen");
  if (lie_ == Lie::Standing) {
    style.turn = -90;
    svg.text(at(-5, length / 2), outside, style);
    svg.text(at(width() + 6.5, length / 2), inside, style);
    return;
  }
  const bool above = lie_ == Lie::OutsideAbove;
  const Point top = at(above ? 0 : width(), lying_length / 2);
  const Point bottom = at(above ? width() : 0, lying_length / 2);
  svg.text({top.x, top.y - 3}, above ? outside : inside, style);
  svg.text({bottom.x, bottom.y + 5}, above ? inside : outside, style);
}

const char* Section::side_text(physics::Side side) const {
  switch (side) {
    case physics::Side::Ground:
      return words_.say("ground", "Erdreich");
    case physics::Side::Unheated:
      return words_.say("unheated room", "unbeheizter Raum");
    case physics::Side::Ventilated:
      return words_.say("ventilated air", "belüftet");
    case physics::Side::Interior:
      return words_.say("room", "Raum");
    default:
      return words_.say("outside", "außen");
  }
}

/// What is no length is a dash.
std::string drawn_length(double length, Unit unit, const Words& words) {
  if (std::isnan(length)) return "–";
  const int decimals = unit == Unit::Inches ? 3 : 2;
  return words.number(short_number(length, decimals));
}

void draw_number(Svg& svg, Point center, std::size_t number, bool structural) {
  svg.circle(center, number_radius, structural ? "#1a1a1a" : "#ffffff");
  TextStyle style;
  style.size = 2.5;
  style.bold = true;
  style.anchor = Anchor::Middle;
  style.color = structural ? "#ffffff" : "#1a1a1a";
  svg.text({center.x, center.y + 0.9}, fmt::format("{}", number), style);
}

}  // namespace veldra::kit
