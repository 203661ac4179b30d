// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/drawing/svg.hpp"

#include "kit/text/xml.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <cmath>

namespace veldra::kit {

namespace {

const char* name_of(Anchor anchor) {
  switch (anchor) {
    case Anchor::Middle:
      return "middle";
    case Anchor::End:
      return "end";
    default:
      return "start";
  }
}

}  // namespace

std::string xml_text(const std::string& text) {
  const auto replacement = [](char32_t character) -> std::string {
    const bool blank = character == U'\t' || character == U'\n' || character == U'\r';
    return blank ? " " : "\xEF\xBF\xBD";
  };
  return escaped_in_xml(without_controls(text, replacement), [](char byte) { return byte; });
}

std::string paper(double millimetres) {
  const double rounded = std::round(millimetres * 100) / 100;
  return fmt::format("{}", rounded == 0 ? 0.0 : rounded);
}

void Svg::line(Point from, Point to, double width, const char* color) {
  raw(fmt::format(R"(<line x1="{}" y1="{}" x2="{}" y2="{}" stroke="{}" stroke-width="{}"/>)",
                  paper(from.x), paper(from.y), paper(to.x), paper(to.y), color, paper(width)));
}

void Svg::circle(Point center, double radius, const std::string& fill) {
  raw(fmt::format(
      R"(<circle cx="{}" cy="{}" r="{}" fill="{}" stroke="#1a1a1a" stroke-width="0.18"/>)",
      paper(center.x), paper(center.y), paper(radius), fill));
}

void Svg::text(Point at, const std::string& text, const TextStyle& style) {
  std::string attributes =
      fmt::format(R"(x="{}" y="{}" font-size="{}" fill="{}" text-anchor="{}")", paper(at.x),
                  paper(at.y), paper(style.size), style.color, name_of(style.anchor));
  if (style.bold) attributes += R"( font-weight="bold")";
  if (style.italic) attributes += R"( font-style="italic")";
  if (style.turn != 0) {
    attributes += fmt::format(R"svg( transform="rotate({} {} {})")svg", paper(style.turn),
                              paper(at.x), paper(at.y));
  }
  raw(fmt::format("<text {}>{}</text>", attributes, xml_text(text)));
}

std::string Svg::document(double width, double height, const std::string& title,
                          const std::string& description, const char* language) const {
  return fmt::format(
      R"(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="{0}mm" height="{1}mm" viewBox="0 0 {0} {1}" xml:lang="{5}" )"
      R"(font-family="Helvetica, Arial, 'Liberation Sans', 'DejaVu Sans', sans-serif">
<title>{2}</title>
<desc>{4}</desc>
<rect width="{0}" height="{1}" fill="#ffffff"/>
{3}</svg>
)",
      paper(width), paper(height), xml_text(title), elements_, xml_text(description), language);
}

}  // namespace veldra::kit
