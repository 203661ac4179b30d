// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/drawing/charts.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

namespace {

using physics::MoistureMonth;
using physics::MoistureYear;

constexpr double chart_width = 112;
constexpr double chart_depth = 48;
constexpr double between_charts = 17;
constexpr double label_margin = 14;
constexpr double title_margin = 9;
constexpr const char* muted = "#555555";

/// A step of 1, 2 or 5 with which so many steps reach as far as a value.
double step_for(double greatest, int steps) {
  const double least = greatest / steps;
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double leading : {1.0, 2.0, 5.0}) {
    if (leading * power >= least * (1 - 1e-9)) return leading * power;
  }
  return 10 * power;
}

/// The month in which most is wet, or in which vapour is nearest to saturation where nothing is.
const MoistureMonth& wettest(const MoistureYear& year) {
  const auto margin = [](const MoistureMonth& month) {
    double least = 1e9;
    for (std::size_t i = 0; i < month.pressures.size(); ++i) {
      least = std::min(least, month.saturations[i] - month.pressures[i]);
    }
    return least;
  };
  return *std::max_element(year.months.begin(), year.months.end(),
                           [&](const MoistureMonth& left, const MoistureMonth& right) {
                             if (left.total() != right.total()) return left.total() < right.total();
                             return margin(left) > margin(right);
                           });
}

/// One chart with its axes.
class Chart {
 public:
  Chart(Svg& svg, const Words& words, Point origin, double greatest_x, double greatest_y)
      : svg_(svg),
        words_(words),
        origin_{origin.x + label_margin, origin.y + title_margin},
        step_x_(step_for(std::max(greatest_x, 1e-9), 6)),
        step_y_(step_for(std::max(greatest_y, 1e-9), 5)),
        most_x_(greatest_x),
        most_y_(step_y_ * std::ceil(greatest_y / step_y_ - 1e-9)) {
    if (!(most_y_ > 0)) most_y_ = step_y_;
  }

  Point at(double x, double y) const {
    return {origin_.x + x / most_x_ * chart_width,
            origin_.y + chart_depth - y / most_y_ * chart_depth};
  }

  void title(const std::string& text) const {
    TextStyle style;
    style.size = 3.2;
    style.bold = true;
    svg_.text({origin_.x, origin_.y - 5}, text, style);
  }

  void vertical_axis(const std::string& unit) const {
    for (double y = 0; y <= most_y_ * (1 + 1e-9); y += step_y_) {
      const Point from = at(0, y);
      svg_.line(from, {from.x + chart_width, from.y}, y == 0 ? 0.3 : 0.09,
                y == 0 ? "#1a1a1a" : "#bbbbbb");
      label({from.x - 1.5, from.y + 0.8}, y, step_y_, Anchor::End);
    }
    note({origin_.x - 1.5, origin_.y - 2}, unit, Anchor::End);
  }

  void horizontal_axis(const std::string& unit) const {
    for (double x = 0; x <= most_x_ * (1 + 1e-9); x += step_x_) {
      const Point from = at(x, 0);
      svg_.line(from, {from.x, from.y + 1}, 0.2);
      label({from.x, from.y + 4}, x, step_x_, Anchor::Middle);
    }
    note({origin_.x + chart_width, origin_.y + chart_depth + 7.5}, unit, Anchor::End);
  }

  void note(Point place, const std::string& text, Anchor anchor, const char* color = muted) const {
    TextStyle style;
    style.size = 2.4;
    style.anchor = anchor;
    style.color = color;
    svg_.text(place, text, style);
  }

  void curve(const std::vector<double>& x, const std::vector<double>& y,
             const char* attributes) const {
    std::string path;
    for (std::size_t i = 0; i < x.size(); ++i) {
      const Point point = at(x[i], y[i]);
      path += fmt::format("{}{} {}", i == 0 ? 'M' : 'L', paper(point.x), paper(point.y));
    }
    svg_.raw(fmt::format(R"(<path d="{}" fill="none" {}/>)", path, attributes));
  }

 private:
  /// With as many decimals as the steps have.
  void label(Point place, double value, double step, Anchor anchor) const {
    const int decimals = std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
    note(place, words_.number(fixed_number(value, std::min(decimals, 6))), anchor);
  }

  Svg& svg_;
  const Words& words_;
  Point origin_;
  double step_x_;
  double step_y_;
  double most_x_;
  double most_y_;
};

void draw_pressures(Svg& svg, const MoistureYear& year, const Words& words, Point origin) {
  const auto& month = wettest(year);
  std::vector<double> x;
  for (const auto& place : year.places) x.push_back(place.vapour_thickness);
  const double greatest = *std::max_element(month.saturations.begin(), month.saturations.end());
  const Chart chart(svg, words, origin, x.back(), greatest);
  chart.title(fmt::format("{}, {}", words.say("Vapour pressures", "Dampfdrücke"),
                          words.month(month.month)));
  chart.vertical_axis("Pa");
  chart.horizontal_axis("s_d [m]");
  for (std::size_t i = 1; i < year.places.size(); ++i) {
    if (year.places[i].part < 1) continue;
    svg.line(chart.at(x[i], 0), chart.at(x[i], greatest), 0.13, "#999999");
  }
  chart.curve(x, month.saturations,
              R"(stroke="#1a1a1a" stroke-width="0.5" stroke-dasharray="2 1")");
  chart.curve(x, month.pressures, R"(stroke="#0b5394" stroke-width="0.6")");
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (month.accumulated[i] > 0) svg.circle(chart.at(x[i], month.pressures[i]), 0.9, "#0b5394");
  }
  const Point key{origin.x + label_margin + chart_width, origin.y + 4};
  chart.note(key,
             words.say("dashed: saturation; line: vapour; dot: condensate",
                       "gestrichelt: Sättigung; Linie: Dampf; Punkt: Tauwasser"),
             Anchor::End);
}

void draw_year(Svg& svg, const MoistureYear& year, const Words& words, Point origin) {
  constexpr double usual = 0.1;  // an axis needs an end also where nothing condenses
  const Chart chart(svg, words, origin, 12, year.condenses ? year.greatest : usual);
  chart.title(words.say("Accumulated moisture", "Tauwasser über das Jahr"));
  chart.vertical_axis("kg/m²");
  if (year.condenses) {
    const auto amount = words.number(fixed_number(year.greatest, 3));
    const auto* sentence = year.dries ? words.say("at most {} kg/m²; dries within the year",
                                                  "höchstens {} kg/m²; trocknet im Jahr aus")
                                      : words.say("{} kg/m²; does not dry within the year",
                                                  "{} kg/m²; trocknet im Jahr nicht aus");
    chart.note({origin.x + label_margin + chart_width, origin.y + 4},
               fmt::format(fmt::runtime(sentence), amount), Anchor::End);
  }
  for (std::size_t n = 0; n < year.months.size(); ++n) {
    const auto& month = year.months[n];
    const auto place = static_cast<double>(n);
    const Point top = chart.at(place + 0.15, month.total());
    const Point bottom = chart.at(place + 0.85, 0);
    if (month.total() > 0) {
      svg.raw(fmt::format(
          R"(<rect x="{}" y="{}" width="{}" height="{}" fill="#0b5394" stroke="#1a1a1a" stroke-width="0.15"/>)",
          paper(top.x), paper(top.y), paper(bottom.x - top.x), paper(bottom.y - top.y)));
    }
    const std::string name = words.month(month.month);
    chart.note({chart.at(place + 0.5, 0).x, bottom.y + 4}, leading_columns(name, 3),
               Anchor::Middle);
  }
  if (!year.condenses) {
    const Point middle = chart.at(6, 0);
    chart.note({middle.x, middle.y - chart_depth / 2},
               words.say("nothing condenses", "kein Tauwasser"), Anchor::Middle);
  }
}

}  // namespace

void draw_charts(Svg& svg, const MoistureYear& year, const Words& words, Point origin) {
  draw_pressures(svg, year, words, origin);
  draw_year(svg, year, words, {origin.x + label_margin + chart_width + between_charts, origin.y});
}

}  // namespace veldra::kit
