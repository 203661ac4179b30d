// SPDX-License-Identifier: GPL-2.0-or-later
#include "drawing/sheet.hpp"

#include "drawing/section.hpp"
#include "drawing/svg.hpp"
#include "kinds.hpp"
#include "summary.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra_tool {

namespace {

constexpr double sheet_width = 297;
constexpr double margin = 14;
constexpr double right = sheet_width - margin;
constexpr double list_left = 152;
constexpr double name_left = list_left + 6;
constexpr double thickness_right = right - 30;
constexpr double conductivity_right = right - 14;
constexpr double line_height = 3.7;
constexpr double row_padding = 2.4;
constexpr std::size_t name_columns = 48;
constexpr std::size_t title_columns = 160;
constexpr std::size_t subtitle_columns = 280;
constexpr std::size_t most_layers = 200;        ///< of a build-up that is drawn
constexpr std::size_t longest_panel = 950'000;  ///< bytes of one, without its title

/// The text in lines of at most so many columns, broken at blanks where there are any.
std::vector<std::string> wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> lines(1);
  std::size_t start = 0;
  while (start < text.size()) {
    auto end = text.find(' ', start + 1);
    if (end == std::string::npos) end = text.size();
    const std::string word = text.substr(start, end - start);
    if (!lines.back().empty() && display_width(lines.back() + word) > columns) {
      lines.push_back(trimmed(word));
    } else {
      lines.back() += word;
    }
    start = end;
  }
  return lines;
}

/// What fits into so many columns, with a sign that there was more.
std::string shortened(const std::string& text, std::size_t columns) {
  if (display_width(text) <= columns) return text;
  return leading_columns(text, columns - 1) + "…";
}

TextStyle style_of(double size, Anchor anchor = Anchor::Start) {
  TextStyle style;
  style.size = size;
  style.anchor = anchor;
  return style;
}

/// With as many decimals in every row, so that the points stand under each other; metals need none.
std::string conductivity_text(double conductivity) {
  return fixed_number(conductivity, conductivity < 10 ? 3 : 0);
}

std::string title_of(veldra::Composition::Type type) {
  switch (type) {
    case veldra::Composition::Type::Wall:
      return "Wall";
    case veldra::Composition::Type::Floor:
      return "Floor";
    case veldra::Composition::Type::Roof:
      return "Roof";
    default:
      return "Build-up";
  }
}

/// One build-up on the sheet.
class Panel {
 public:
  Panel(const veldra::Composition& composition, veldra::Unit unit, double top)
      : composition_(composition), unit_(unit), top_(top) {}

  /// Draws the build-up and returns where the next one may begin.
  double draw(Svg& svg) {
    const std::size_t layers = composition_.layers().size();
    if (layers == 0) return draw_sentence(svg, "This build-up has no layers.");
    if (layers > most_layers) return draw_sentence(svg, "It has too many layers to be drawn.");
    transmission_ = kit::transmission_of(composition_, unit_);
    const Section section(composition_, unit_, {margin, top_ + 15});
    thickened_ = section.has_thickened_layers();
    Svg body;
    hatched_ = section.draw(body);
    const double list_end = draw_sum(body, draw_list(body));
    if (body.size() > longest_panel) {
      return draw_sentence(svg, "The names of its materials are too long to be drawn.");
    }
    draw_title(svg,
               fmt::format(" · scale 1:{} · thicknesses in {}", short_number(section.scale(), 0),
                           unit_ == veldra::Unit::Inches ? "inches" : "millimetres"));
    svg.add(body);
    return std::max(top_ + 15 + section.height(), list_end) + 10;
  }

 private:
  double draw_sentence(Svg& svg, const char* sentence) const {
    draw_title(svg, "");
    svg.text({margin, top_ + 22}, sentence, style_of(3));
    return top_ + 32;
  }

  void draw_title(Svg& svg, const std::string& scale) const {
    TextStyle style = style_of(5);
    style.bold = true;
    svg.text({margin, top_ + 5}, shortened(composition_.name().utf8(), title_columns), style);
    std::string subtitle = fmt::format("{} · {} layers{}", title_of(composition_.type()),
                                       composition_.layers().size(), scale);
    if (composition_.description()) subtitle += " · " + composition_.description().utf8();
    TextStyle small = style_of(2.8);
    small.color = "#555555";
    svg.text({margin, top_ + 10}, shortened(subtitle, subtitle_columns), small);
    svg.line({margin, top_ + 12.5}, {right, top_ + 12.5}, 0.35);
  }

  double draw_list(Svg& svg) const {
    double y = top_ + 19;
    TextStyle head = style_of(2.3);
    head.color = "#555555";
    svg.text({name_left, y}, "from outside to inside", head);
    head.anchor = Anchor::End;
    svg.text({thickness_right, y}, fmt::format("d [{}]", name_of(unit_)), head);
    svg.text({conductivity_right, y}, "λ [W/(m·K)]", head);
    svg.text({right, y}, "R [m²K/W]", head);
    y += 1.8;
    svg.line({list_left - 2.5, y}, {right, y}, 0.18);
    for (std::size_t i = 0; i < composition_.layers().size(); ++i) y = draw_row(svg, i, y);
    return y;
  }

  double draw_row(Svg& svg, std::size_t index, double y) const {
    const auto& layer = composition_.layers()[index];
    const auto lines = wrapped(layer.material()->name().utf8(), name_columns);
    const double base = y + row_padding / 2 + line_height * 0.78;
    const bool structural = index == composition_.structural_layer();
    draw_number(svg, {list_left, base - 0.95}, index + 1, structural);
    TextStyle style = style_of(2.8);
    style.bold = structural;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      svg.text({name_left, base + static_cast<double>(i) * line_height}, lines[i], style);
    }
    TextStyle number = style_of(2.8, Anchor::End);
    svg.text({thickness_right, base}, thickness_text(index), number);
    const auto conductivity = kit::conductivity_of(*layer.material());
    svg.text({conductivity_right, base}, conductivity ? conductivity_text(*conductivity) : "–",
             number);
    svg.text({right, base}, resistance_text(transmission_, index), number);
    const double end = y + row_padding + line_height * static_cast<double>(lines.size());
    svg.line({list_left - 2.5, end}, {right, end}, 0.09, "#999999");
    return end;
  }

  std::string thickness_text(std::size_t index) const {
    const std::string text = drawn_length(composition_.layers()[index].thickness(), unit_);
    const bool variable =
        composition_.has_variable_layer() && composition_.variable_layer() == index;
    if (!variable) return text;
    const std::string least = drawn_length(composition_.variable_layer_min_thickness(), unit_);
    if (!composition_.has_variable_layer_max_thickness()) return "≥" + least + " / " + text;
    return least + "–" + drawn_length(composition_.variable_layer_max_thickness(), unit_);
  }

  double draw_sum(Svg& svg, double y) const {
    TextStyle label = style_of(2.8);
    TextStyle number = style_of(2.8, Anchor::End);
    number.bold = true;
    y += 5;
    svg.text({name_left, y}, "total thickness", label);
    svg.text({thickness_right, y}, drawn_length(kit::total_thickness(composition_), unit_), number);
    y = draw_transmission(svg, y + 5);
    TextStyle note = style_of(2.2);
    note.color = "#555555";
    for (const auto& text : notes()) svg.text({name_left, y += 4.5}, text, note);
    return y;
  }

  double draw_transmission(Svg& svg, double y) const {
    TextStyle label = style_of(2.8);
    const auto total = transmission_.total_resistance();
    if (!total) {
      svg.text({name_left, y}, "U-value unknown: " + lacking_text(), label);
      return y;
    }
    TextStyle number = style_of(2.8, Anchor::End);
    svg.text({name_left, y},
             fmt::format("total R, with surfaces {:.2f} outside and {:.2f} inside",
                         transmission_.outside, transmission_.inside),
             label);
    svg.text({right, y}, fixed_number(*total, 3), number);
    y += 8;
    TextStyle large = style_of(5, Anchor::End);
    large.bold = true;
    svg.text({right, y}, transmittance_text(*transmission_.transmittance()), large);
    return y;
  }

  std::string transmittance_text(double transmittance) const {
    if (unit_ != veldra::Unit::Inches) return fmt::format("U = {:.2f} W/(m²K)", transmittance);
    return fmt::format("U = {:.2f} W/(m²K) = {:.3f} Btu/(h·ft²·°F)", transmittance,
                       transmittance * 0.17611);
  }

  std::string lacking_text() const {
    std::string numbers;
    for (std::size_t i = 0; i < transmission_.layers.size(); ++i) {
      if (transmission_.layers[i].fault.empty()) continue;
      numbers += fmt::format("{}{}", numbers.empty() ? "" : ", ", i + 1);
    }
    return fmt::format("nothing is known of layer {}", numbers);
  }

  std::vector<std::string> notes() const {
    std::vector<std::string> notes{"Filled number: structural layer. Thick lines: the core."};
    if (thickened_) notes.front() += " The thinnest layers are drawn thicker.";
    if (!hatched_) notes.push_back("Some layers are drawn without their hatch.");
    if (transmission_.ventilated > 0) {
      notes.push_back(fmt::format("Layer {} is well ventilated: R counts from the next one.",
                                  transmission_.ventilated));
    }
    return notes;
  }

  const veldra::Composition& composition_;
  veldra::Unit unit_;
  double top_;
  kit::Transmission transmission_;
  bool thickened_ = false;
  bool hatched_ = true;
};

}  // namespace

std::string draw_sheet(const std::vector<std::shared_ptr<veldra::Composition>>& compositions,
                       veldra::Unit unit) {
  Svg svg;
  double y = margin;
  std::string title;
  for (const auto& composition : compositions) {
    y = Panel(*composition, unit, y).draw(svg);
    title += (title.empty() ? "" : ", ") + shortened(composition->name().utf8(), title_columns);
  }
  return svg.document(sheet_width, std::max(y, margin * 2), title);
}

}  // namespace veldra_tool
