#include "drawing/section.hpp"

#include "drawing/hatch.hpp"
#include "summary.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace veldra_tool {

namespace {

constexpr double area_width = 128;
constexpr double length = 78;             ///< of a layer that stands
constexpr double lying_length = 92;       ///< of a layer that lies
constexpr double deepest_standing = 100;  ///< of all layers together
constexpr double deepest_lying = 74;
constexpr double thinnest = 1.1;  ///< that a layer is drawn
constexpr double number_radius = 2.3;
constexpr double number_spacing = 5.4;
constexpr double number_distance = 9;
constexpr double margin_before = 16;  ///< for the numbers, or for what stands outside
constexpr double margin_behind = 20;  ///< for the dimensions, or for what stands inside
constexpr double chain_distance = 7;
constexpr double total_distance = 13.5;

double millimetres(double length, veldra::Unit unit) {
  const double value = unit == veldra::Unit::Inches ? length * 25.4 : length;
  return std::isfinite(value) && value > 0 ? value : 0;
}

/// Where number circles stand so that none covers another, each as near as can be to its layer.
std::vector<double> spread(std::vector<double> places) {
  for (std::size_t i = 1; i < places.size(); ++i) {
    places[i] = std::max(places[i], places[i - 1] + number_spacing);
  }
  return places;
}

double mean(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

}  // namespace

Section::Section(const veldra::Composition& composition, veldra::Unit unit, Point origin)
    : composition_(composition), unit_(unit), origin_(origin) {
  switch (composition.type()) {
    case veldra::Composition::Type::Roof:
      lie_ = Lie::OutsideAbove;
      break;
    case veldra::Composition::Type::Floor:
      lie_ = Lie::OutsideBelow;
      break;
    default:
      lie_ = Lie::Standing;
  }
  place_layers();
}

void Section::place_layers() {
  constexpr double scales[] = {1, 2, 5, 10, 20, 25, 50, 100, 200, 500, 1000};
  const double deepest = lie_ == Lie::Standing ? deepest_standing : deepest_lying;
  for (const double scale : scales) {
    scale_ = scale;
    thickened_ = false;
    edges_.assign(1, 0.0);
    for (const auto& layer : composition_.layers()) {
      const double true_width = millimetres(layer.thickness(), unit_) / scale;
      if (true_width < thinnest) thickened_ = true;
      edges_.push_back(edges_.back() + std::max(true_width, thinnest));
    }
    if (width() <= deepest) return;
  }
}

double Section::height() const {
  return lie_ == Lie::Standing ? margin_before + length + margin_behind : 8 + width() + 8;
}

/// A place of the section on paper; `along` runs down or to the right.
Point Section::at(double across, double along) const {
  const double left = origin_.x + (area_width - lying_length) / 2;
  switch (lie_) {
    case Lie::OutsideAbove:
      return {left + along, origin_.y + 8 + across};
    case Lie::OutsideBelow:
      return {left + along, origin_.y + 8 + width() - across};
    default:
      break;
  }
  const double start = origin_.x + (area_width - width()) / 2;
  return {start + across, origin_.y + margin_before + along};
}

void Section::draw(Svg& svg) const {
  for (std::size_t i = 0; i < composition_.layers().size(); ++i) draw_layer(svg, i);
  draw_core(svg);
  draw_break(svg, 0);
  draw_break(svg, lie_ == Lie::Standing ? length : lying_length);
  draw_dimensions(svg);
  draw_numbers(svg);
  draw_sides(svg);
}

/// The frame of a hatch has its origin at the outer end of the layer; lying layers swap its axes.
void Section::draw_layer(Svg& svg, std::size_t index) const {
  const auto style = cut_style(*composition_.layers()[index].material());
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
      R"(stroke-width="0.2"/></g>)",
      axes, paper(corner.x), paper(corner.y), clip, paper(layer_width), paper(layer_length),
      style.fill, paper(style.fill_opacity), hatch_elements(style, layer_width, layer_length)));
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

/// The sign that the build-up goes on.
void Section::draw_break(Svg& svg, double along) const {
  const double middle = width() / 2;
  const double jag = std::min(1.6, width() / 6);
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
void Section::draw_dimension(Svg& svg, double from, double to, double distance,
                             const std::string& text) const {
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
  if (text.empty()) return;
  TextStyle style;
  style.size = 2.3;
  style.anchor = Anchor::Middle;
  style.turn = standing ? 0 : -90;
  const Point middle{(start.x + end.x) / 2, (start.y + end.y) / 2};
  svg.text(standing ? Point{middle.x, middle.y - 0.9} : Point{middle.x - 0.9, middle.y}, text,
           style);
}

void Section::draw_dimensions(Svg& svg) const {
  double sum = 0;
  for (std::size_t i = 0; i < composition_.layers().size(); ++i) {
    const double thickness = composition_.layers()[i].thickness();
    sum += thickness;
    const std::string text = length_text(thickness, unit_);
    const bool fits = 1.4 * static_cast<double>(text.size()) + 1 < edges_[i + 1] - edges_[i];
    draw_dimension(svg, edges_[i], edges_[i + 1], chain_distance, fits ? text : "");
  }
  draw_dimension(svg, 0, width(), total_distance, length_text(sum, unit_));
}

/// The places of the numbers across the section. They may reach beyond it on both sides.
std::vector<double> Section::number_places() const {
  std::vector<double> wanted;
  for (std::size_t i = 0; i + 1 < edges_.size(); ++i) {
    wanted.push_back((edges_[i] + edges_[i + 1]) / 2);
  }
  auto places = spread(wanted);
  const double shift = mean(places) - mean(wanted);
  for (double& place : places) place -= shift;
  return places;
}

void Section::draw_numbers(Svg& svg) const {
  const bool standing = lie_ == Lie::Standing;
  const auto places = number_places();
  for (std::size_t i = 0; i < places.size(); ++i) {
    const double along = standing ? -number_distance : lying_length + number_distance;
    const Point center = at(places[i], along);
    const double middle = (edges_[i] + edges_[i + 1]) / 2;
    const double inside = standing ? 3.5 : lying_length - 3.5;
    const double bend = standing ? -2.5 : lying_length + 2.5;
    const Point target = at(middle, inside);
    svg.line(center, at(middle, bend), 0.13);
    svg.line(at(middle, bend), target, 0.13);
    svg.raw(fmt::format(R"(<circle cx="{}" cy="{}" r="0.5" fill="#1a1a1a" stroke="#ffffff" )"
                        R"(stroke-width="0.15"/>)",
                        paper(target.x), paper(target.y)));
    draw_number(svg, center, i + 1, i == composition_.structural_layer());
  }
}

void Section::draw_sides(Svg& svg) const {
  TextStyle style;
  style.size = 2.6;
  style.italic = true;
  style.anchor = Anchor::Middle;
  style.color = "#555555";
  if (lie_ == Lie::Standing) {
    style.turn = -90;
    const Point outside = at(-5, length / 2);
    const Point inside = at(width() + 6.5, length / 2);
    svg.text(outside, "outside", style);
    svg.text(inside, "inside", style);
    return;
  }
  const bool above = lie_ == Lie::OutsideAbove;
  const Point top = at(above ? 0 : width(), lying_length / 2);
  const Point bottom = at(above ? width() : 0, lying_length / 2);
  svg.text({top.x, top.y - 3}, above ? "outside" : "inside", style);
  svg.text({bottom.x, bottom.y + 5}, above ? "inside" : "outside", style);
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

}  // namespace veldra_tool
