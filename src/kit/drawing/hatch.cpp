// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/drawing/hatch.hpp"

#include "kit/drawing/svg.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace veldra::kit {

namespace {

constexpr double pi = 3.14159265358979323846;

/// Collects strokes and dots of one hatch.
class Hatch {
 public:
  Hatch(const CutStyle& style, double width, double length)
      : style(style), width(width), length(length) {}

  const CutStyle& style;
  const double width;   ///< across the layer
  const double length;  ///< along it

  void move(double x, double y) { strokes_ += fmt::format("M{} {}", paper(x), paper(y)); }
  void draw(double x, double y) { strokes_ += fmt::format("L{} {}", paper(x), paper(y)); }
  void segment(double x1, double y1, double x2, double y2) {
    move(x1, y1);
    draw(x2, y2);
  }
  void dot(double x, double y, double radius) {
    dots_ += fmt::format("M{} {}h0", paper(x), paper(y));
    dot_width_ = 2 * radius;
  }
  void ring(double x, double y, double radius) {
    strokes_ += fmt::format("M{0} {1}a{2} {2} 0 1 0 {3} 0a{2} {2} 0 1 0 -{3} 0", paper(x - radius),
                            paper(y), paper(radius), paper(2 * radius));
  }

  /// A number from 0 to 1, always the same for the same place.
  static double scatter(unsigned column, unsigned row, unsigned salt) {
    unsigned value = column * 374761393U + row * 668265263U + salt * 2246822519U;
    value = (value ^ (value >> 13)) * 1274126177U;
    return static_cast<double>((value ^ (value >> 16)) & 0xffffU) / 65535.0;
  }

  std::string elements(double stroke_width, const std::string& dashes = "") const {
    std::string result;
    if (!strokes_.empty()) {
      const auto dash = dashes.empty() ? "" : fmt::format(R"( stroke-dasharray="{}")", dashes);
      result += fmt::format(
          R"(<path d="{}" fill="none" stroke="{}" stroke-width="{}" stroke-linejoin="round"{}/>)",
          strokes_, style.line, paper(stroke_width), dash);
    }
    if (!dots_.empty()) {
      result += fmt::format(
          R"(<path d="{}" fill="none" stroke="{}" stroke-width="{}" stroke-linecap="round"/>)",
          dots_, style.line, paper(dot_width_));
    }
    return result;
  }

 private:
  std::string strokes_;
  std::string dots_;
  double dot_width_ = 0.3;
};

/// Parallel lines over the whole layer, at an angle in degrees to the direction across it.
void add_lines(Hatch& hatch, double spacing, double degrees, double phase = 0) {
  const double angle = degrees * pi / 180;
  const double along_x = std::cos(angle);
  const double along_y = -std::sin(angle);
  const double reach = hatch.width + hatch.length;
  const double middle_x = hatch.width / 2;
  const double middle_y = hatch.length / 2;
  const int count = static_cast<int>(reach / spacing / 2) + 1;
  for (int i = -count; i <= count; ++i) {
    const double offset = (i + phase) * spacing;
    const double x = middle_x - along_y * offset;
    const double y = middle_y + along_x * offset;
    const double half = reach / 2;
    hatch.segment(x - along_x * half, y - along_y * half, x + along_x * half, y + along_y * half);
  }
}

/// Calls `place(x, y, column, row)` for places that are spread evenly but not in rows.
template <class Place>
void scattered(const Hatch& hatch, double spacing, Place place) {
  const auto columns = static_cast<unsigned>(hatch.width / spacing) + 1;
  const auto rows = static_cast<unsigned>(hatch.length / spacing) + 1;
  for (unsigned row = 0; row < rows; ++row) {
    for (unsigned column = 0; column < columns; ++column) {
      const double x = (column + 0.1 + 0.8 * Hatch::scatter(column, row, 1)) * spacing;
      const double y = (row + 0.1 + 0.8 * Hatch::scatter(column, row, 2)) * spacing;
      if (x < hatch.width && y < hatch.length) place(x, y, column, row);
    }
  }
}

std::string lines(Hatch& hatch) {
  const double spacing = std::clamp(2.0 * hatch.style.scale, 0.6, 20.0);
  add_lines(hatch, spacing, hatch.style.angle);
  if (hatch.style.cross) add_lines(hatch, spacing, hatch.style.angle + 90);
  return hatch.elements(0.13);
}

/// The loops of a soft mat, from face to face.
std::string insulation(Hatch& hatch) {
  const double period = std::clamp(hatch.width * 0.55, 1.4, 9.0);
  const double reach = std::max(hatch.width / 2 - 0.25, 0.1);
  constexpr int steps = 24;
  const int count = static_cast<int>((hatch.length / period + 2) * steps);
  for (int i = 0; i <= count; ++i) {
    const double turn = 2 * pi * i / steps;
    const double x = hatch.width / 2 + reach * std::cos(turn);
    const double y = period * (turn / (2 * pi) - 1) + 0.17 * period * std::sin(2 * turn);
    if (i == 0) {
      hatch.move(x, y);
    } else {
      hatch.draw(x, y);
    }
  }
  return hatch.elements(0.15);
}

/// The zigzag of a rigid board, from face to face.
std::string rigid_insulation(Hatch& hatch) {
  const double step = std::clamp(hatch.width * 0.5, 1.0, 7.0);
  hatch.move(0, -step);
  bool far = true;
  for (double y = 0; y <= hatch.length + step; y += step) {
    hatch.draw(far ? hatch.width : 0, y);
    far = !far;
  }
  return hatch.elements(0.15);
}

/// Reinforced concrete: full and broken diagonals in turn.
std::string concrete(Hatch& hatch) {
  add_lines(hatch, 3.6, 45);
  const std::string full = hatch.elements(0.16);
  Hatch broken(hatch.style, hatch.width, hatch.length);
  add_lines(broken, 3.6, 45, 0.5);
  return full + broken.elements(0.16, "1.4 0.7");
}

/// Concrete without steel: broken diagonals only.
std::string plain_concrete(Hatch& hatch) {
  add_lines(hatch, 2.6, 45);
  return hatch.elements(0.16, "1.4 0.7");
}

/// Pairs of close diagonals, light on the dark of the layer.
std::string metal(Hatch& hatch) {
  add_lines(hatch, 1.6, 45);
  add_lines(hatch, 1.6, 45, 0.3);
  return hatch.elements(0.14);
}

/// Small crosses, unlike the dots of plaster.
std::string gypsum(Hatch& hatch) {
  scattered(hatch, 2.2, [&](double x, double y, unsigned, unsigned) {
    hatch.segment(x - 0.3, y, x + 0.3, y);
    hatch.segment(x, y - 0.3, x, y + 0.3);
  });
  return hatch.elements(0.13);
}

std::string masonry(Hatch& hatch) {
  add_lines(hatch, 1.8, 45);
  return hatch.elements(0.16);
}

/// Light concrete and the like: stipple among wide diagonals.
std::string light_masonry(Hatch& hatch) {
  add_lines(hatch, 4.2, 45);
  scattered(hatch, 1.9, [&](double x, double y, unsigned, unsigned) { hatch.dot(x, y, 0.14); });
  return hatch.elements(0.14);
}

/// Grain that runs along the layer and swings a little.
std::string timber(Hatch& hatch) {
  const double spacing = std::clamp(hatch.width / 9, 0.7, 1.6);
  const auto count = static_cast<unsigned>(hatch.width / spacing) + 1;
  for (unsigned line = 0; line < count; ++line) {
    const double x = (line + 0.5 + 0.3 * (Hatch::scatter(line, 0, 3) - 0.5)) * spacing;
    const double swing = spacing * 0.28 * (0.4 + Hatch::scatter(line, 1, 3));
    const double phase = 2 * pi * Hatch::scatter(line / 3, 2, 3);
    hatch.move(x + swing * std::sin(phase), 0);
    for (double y = 1; y <= hatch.length + 1; y += 1) {
      hatch.draw(x + swing * std::sin(phase + y / 5.5), y);
    }
  }
  return hatch.elements(0.13);
}

/// Short strokes along a board of strands or veneers.
std::string board(Hatch& hatch) {
  scattered(hatch, 1.1, [&](double x, double y, unsigned column, unsigned row) {
    const double half = 0.5 + 0.8 * Hatch::scatter(column, row, 4);
    const double lean = 0.3 * (Hatch::scatter(column, row, 5) - 0.5);
    hatch.segment(x - lean, y - half, x + lean, y + half);
  });
  return hatch.elements(0.13);
}

std::string plaster(Hatch& hatch) {
  scattered(hatch, 0.9, [&](double x, double y, unsigned, unsigned) { hatch.dot(x, y, 0.11); });
  return hatch.elements(0.1);
}

std::string screed(Hatch& hatch) {
  scattered(hatch, 1.5, [&](double x, double y, unsigned column, unsigned row) {
    if (Hatch::scatter(column, row, 6) > 0.75) {
      hatch.ring(x, y, 0.32);
    } else {
      hatch.dot(x, y, 0.13);
    }
  });
  return hatch.elements(0.11);
}

std::string gravel(Hatch& hatch) {
  scattered(hatch, 2.1, [&](double x, double y, unsigned column, unsigned row) {
    hatch.ring(x, y, 0.45 + 0.5 * Hatch::scatter(column, row, 7));
  });
  return hatch.elements(0.14);
}

/// Bundles of three strokes, turned in every other place.
std::string earth(Hatch& hatch) {
  constexpr double cell = 3.4;
  const auto columns = static_cast<int>(hatch.width / cell) + 1;
  const auto rows = static_cast<int>(hatch.length / cell) + 1;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const double lean = (row + column) % 2 == 0 ? 1 : -1;
      for (int stroke = -1; stroke <= 1; ++stroke) {
        const double x = (column + 0.5) * cell + stroke * 0.55;
        const double y = (row + 0.5) * cell + stroke * 0.55 * lean;
        hatch.segment(x - 0.9, y + 0.9 * lean, x + 0.9, y - 0.9 * lean);
      }
    }
  }
  return hatch.elements(0.15);
}

std::string glass(Hatch& hatch) {
  for (double y = 4; y < hatch.length; y += 14) {
    for (int stroke = 0; stroke < 3; ++stroke) {
      const double start = y + stroke * 1.1;
      hatch.segment(hatch.width * 0.15, start + hatch.width * 0.7, hatch.width * 0.85, start);
    }
  }
  return hatch.elements(0.13);
}

std::string stone(Hatch& hatch) {
  add_lines(hatch, 2.6, 60);
  return hatch.elements(0.15, "3 1 0.6 1");
}

std::string tile(Hatch& hatch) {
  add_lines(hatch, 1.1, 60);
  return hatch.elements(0.14);
}

/// A roll of sheeting: light dashes on the dark of the layer.
std::string membrane(Hatch& hatch) {
  return fmt::format(
      R"(<path d="M{0} 0V{1}" stroke="#ffffff" stroke-width="{2}" stroke-dasharray="2.6 1.6"/>)",
      paper(hatch.width / 2), paper(hatch.length), paper(hatch.width * 0.3));
}

std::string vegetation(Hatch& hatch) {
  scattered(hatch, 1.6, [&](double x, double y, unsigned, unsigned) {
    hatch.segment(x + 0.7, y, x - 0.7, y - 0.35);
    hatch.segment(x + 0.7, y, x - 0.8, y);
    hatch.segment(x + 0.7, y, x - 0.7, y + 0.35);
  });
  return hatch.elements(0.15);
}

std::string nothing(Hatch&) { return ""; }

}  // namespace

std::string hatch_elements(const CutStyle& style, double width, double length) {
  static const std::map<std::string, std::string (*)(Hatch&)> hatches{
      {"insulation", insulation},
      {"rigid insulation", rigid_insulation},
      {"concrete", concrete},
      {"masonry", masonry},
      {"light masonry", light_masonry},
      {"timber", timber},
      {"board", board},
      {"plaster", plaster},
      {"screed", screed},
      {"gypsum", gypsum},
      {"plain concrete", plain_concrete},
      {"reinforced concrete", concrete},
      {"unknown", nothing},
      {"gravel", gravel},
      {"earth", earth},
      {"glass", glass},
      {"stone", stone},
      {"tile", tile},
      {"membrane", membrane},
      {"metal", metal},
      {"air", nothing},
      {"solid", nothing},
      {"vegetation", vegetation}};
  const auto found = hatches.find(style.hatch);
  Hatch hatch(style, width, length);
  return found != hatches.end() ? found->second(hatch) : lines(hatch);
}

}  // namespace veldra::kit
