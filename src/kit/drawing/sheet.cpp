// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/drawing.hpp>

#include "kit/drawing/charts.hpp"
#include "kit/drawing/section.hpp"
#include "kit/drawing/sentences.hpp"
#include "kit/drawing/svg.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/physics_storage.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace veldra::kit {

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
constexpr std::size_t title_columns = 88;
constexpr std::size_t subtitle_columns = 165;
constexpr std::size_t most_title_lines = 3;
constexpr std::size_t note_columns = 100;
constexpr std::size_t fault_columns = 90;
constexpr std::size_t most_faults = 4;          ///< that are told of a build-up
constexpr std::size_t most_layers = 200;        ///< of a build-up that is drawn
constexpr std::size_t longest_panel = 950'000;  ///< bytes of one, without its title

/// The number of bytes of the first character of a text.
std::size_t character_size(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) ++size;
  return size;
}

/// The columns that a character takes on paper, where capitals are wider than small letters.
double columns_on_paper(std::string_view character) {
  constexpr double capital = 1.3;
  constexpr double widest = 1.65;
  const char first = character.front();
  if (std::string_view("MWmw@%").find(first) != std::string_view::npos) return widest;
  const bool accented = character.size() == 2 && first == '\xC3' && character[1] < '\x9F';
  if ((first >= 'A' && first <= 'Z') || accented) return capital;
  return static_cast<double>(display_width(character));
}

/// The beginning of a text that has room in so many columns on paper. Characters without a width
/// end as well, so that a word without end is gone through once.
std::string_view fitting(std::string_view text, std::size_t columns) {
  double width = 0;
  std::size_t end = 0;
  while (end < text.size() && end < 16 * columns) {
    const auto size = character_size(text.substr(end));
    width += columns_on_paper(text.substr(end, size));
    if (width > static_cast<double>(columns)) break;
    end += size;
  }
  return text.substr(0, end);
}

bool fits(std::string_view text, std::size_t columns) {
  return fitting(text, columns).size() == text.size();
}

/// Puts what fills lines of a word into lines, and gives the rest.
std::string broken(std::string_view word, std::size_t columns, std::vector<std::string>& lines) {
  while (!fits(word, columns)) {
    const auto line = fitting(word, columns);
    lines.back() += line;
    lines.emplace_back();
    word.remove_prefix(line.size());
  }
  return std::string(word);
}

/// The text in lines of at most so many columns, broken at blanks where there are any, and else
/// within words.
std::vector<std::string> wrapped(const std::string& text, std::size_t columns) {
  std::vector<std::string> lines(1);
  std::size_t start = 0;
  while (start < text.size()) {
    auto end = text.find(' ', start + 1);
    if (end == std::string::npos) end = text.size();
    std::string word = text.substr(start, end - start);
    if (!lines.back().empty() && !fits(lines.back() + word, columns)) {
      lines.emplace_back();
      word = trimmed(word);
    }
    word = broken(word, columns, lines);
    lines.back() += word;
    start = end;
  }
  return lines;
}

/// What fits into so many columns, with a sign that there was more.
std::string shortened(const std::string& text, std::size_t columns) {
  if (fits(text, columns)) return text;
  return std::string(fitting(text, columns - 1)) + "…";
}

/// As many lines as a title may have; the last one tells that there was more.
std::vector<std::string> title_lines(const std::string& text, std::size_t columns) {
  auto lines = wrapped(text, columns);
  if (lines.size() <= most_title_lines) return lines;
  lines.resize(most_title_lines);
  lines.back() = std::string(fitting(lines.back(), columns - 1)) + "…";
  return lines;
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

const char* title_of(Composition::Type type, const Words& words) {
  switch (type) {
    case Composition::Type::Wall:
      return words.say("Wall", "Wand");
    case Composition::Type::Floor:
      return words.say("Floor", "Decke");
    case Composition::Type::Roof:
      return words.say("Roof", "Dach");
    default:
      return words.say("Build-up", "Aufbau");
  }
}

/// One build-up on the sheet.
class Panel {
 public:
  Panel(const Composition& composition, Unit unit, const DrawingRules& rules, double top)
      : composition_(composition),
        unit_(unit),
        rules_(rules),
        words_(rules.locale),
        names_(title_lines(composition.name().utf8(), title_columns)),
        top_(top) {}

  /// Draws the build-up and returns where the next one may begin.
  double draw(Svg& svg) {
    const std::size_t layers = composition_.layers().size();
    if (layers == 0) {
      return draw_sentence(
          svg, words_.say("This build-up has no layers.", "Dieser Aufbau hat keine Schichten."));
    }
    if (layers > most_layers) {
      return draw_sentence(svg, words_.say("It has too many layers to be drawn.",
                                           "Er hat zu viele Schichten für eine Zeichnung."));
    }
    transmission_ = transmission_of(composition_, unit_, rules_.boundary);
    // The subtitle needs the scale, and the section the place below it: first anywhere.
    const Section trial(composition_, unit_, {margin, top_}, transmission_, rules_);
    subtitles_ = subtitle_lines(trial.scale());
    const double body_top = top_ + title_height() + 2.5;
    const Section section(composition_, unit_, {margin, body_top}, transmission_, rules_);
    thickened_ = section.has_thickened_layers();
    crossing_ = section.has_crossing_bridges();
    undimensioned_ = section.undimensioned_layers();
    Svg body;
    hatched_ = section.draw(body);
    const double list_end = draw_sum(body, draw_list(body, body_top + 4));
    if (body.size() > longest_panel) {
      return draw_sentence(svg,
                           words_.say("The names of its materials are too long to be drawn.",
                                      "Die Namen der Baustoffe sind zu lang für eine Zeichnung."));
    }
    draw_title(svg);
    svg.add(body);
    return draw_moisture(svg, std::max(body_top + section.height(), list_end)) + 10;
  }

 private:
  /// Charts where there is a climate, or why there are none.
  double draw_moisture(Svg& svg, double y) const {
    if (!rules_.climate) return y;
    const auto moisture = moisture_of(composition_, unit_, *rules_.climate, rules_.boundary);
    if (moisture.surface) {
      svg.text({margin, y += 5}, surface_text(*moisture.surface), style_of(2.8));
    }
    y = draw_sentences(svg, y, moisture.notes);
    if (moisture.year) {
      draw_charts(svg, *moisture.year, words_, {margin, y + 6});
      return y + charts_height;
    }
    return draw_sentences(svg, y, moisture.faults);
  }

  std::string surface_text(const physics::SurfaceHumidity& surface) const {
    const auto text = fmt::format(
        fmt::runtime(words_.say("f_Rsi {:.3f}, needed {:.3f} in {} (ISO 13788): {}",
                                "f_Rsi {:.3f}, nötig {:.3f} im {} (ISO 13788): {}")),
        surface.factor, surface.required[surface.critical], words_.month(surface.critical),
        surface.safe() ? words_.say("no mould", "kein Schimmel")
                       : words_.say("mould may grow", "Schimmel ist möglich"));
    return words_.number(text);
  }

  double draw_sentences(Svg& svg, double y, const std::vector<std::string>& sentences) const {
    for (const auto& sentence : sentences) {
      for (const auto& line : wrapped(in_language(sentence, words_), subtitle_columns)) {
        svg.text({margin, y += 4.5}, line, style_of(2.6));
      }
    }
    return y;
  }

  double draw_sentence(Svg& svg, const char* sentence) {
    subtitles_ = subtitle_lines(0);
    draw_title(svg);
    svg.text({margin, top_ + title_height() + 9.5}, sentence, style_of(3));
    return top_ + title_height() + 19.5;
  }

  double title_height() const {
    return 1.1 + static_cast<double>(names_.size()) * 6 +
           static_cast<double>(subtitles_.size()) * 4 + 1.4;
  }

  /// A scale of 0 stands for none.
  std::vector<std::string> subtitle_lines(double scale) const {
    const auto type = rules_.type.value_or(composition_.type());
    const auto count = composition_.layers().size();
    std::string text = fmt::format(
        "{} · {} {}", title_of(type, words_), count,
        count == 1 ? words_.say("layer", "Schicht") : words_.say("layers", "Schichten"));
    if (scale > 0) {
      text += fmt::format(" · {} 1:{} · {}", words_.say("scale", "Maßstab"),
                          words_.number(short_number(scale, 0)), unit_text());
    }
    if (composition_.description()) text += " · " + composition_.description().utf8();
    return title_lines(text, subtitle_columns);
  }

  const char* unit_text() const {
    return unit_ == Unit::Inches
               ? words_.say("thicknesses in inches", "Dicken in Zoll")
               : words_.say("thicknesses in millimetres", "Dicken in Millimetern");
  }

  void draw_title(Svg& svg) const {
    TextStyle style = style_of(5);
    style.bold = true;
    double y = top_ - 1;
    for (const auto& line : names_) svg.text({margin, y += 6}, line, style);
    TextStyle small = style_of(2.8);
    small.color = "#555555";
    y += 1;
    for (const auto& line : subtitles_) svg.text({margin, y += 4}, line, small);
    const double end = top_ + title_height();
    svg.line({margin, end}, {right, end}, 0.35);
  }

  double draw_list(Svg& svg, double y) const {
    TextStyle head = style_of(2.3);
    head.color = "#555555";
    svg.text({name_left, y}, words_.say("from outside to inside", "von außen nach innen"), head);
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
    const auto conductivity = KnownValues(*layer.material()).number(Known::Conductivity);
    draw_cells(svg, base, thickness_text(index), conductivity ? number(*conductivity) : "–",
               words_.number(resistance_text(index)));
    double end = y + row_padding + line_height * static_cast<double>(lines.size());
    if (transmission_.layers[index].bridge) {
      draw_bridge(svg, transmission_.layers[index], end - row_padding / 2 + line_height * 0.78);
      end += line_height;
    }
    svg.line({list_left - 2.5, end}, {right, end}, 0.09, "#999999");
    return end;
  }

  void draw_cells(Svg& svg, double base, const std::string& thickness,
                  const std::string& conductivity, const std::string& resistance) const {
    const TextStyle cell = style_of(2.8, Anchor::End);
    svg.text({thickness_right, base}, thickness, cell);
    svg.text({conductivity_right, base}, conductivity, cell);
    svg.text({right, base}, resistance, cell);
  }

  void draw_bridge(Svg& svg, const LayerHeat& heat, double base) const {
    const std::string name =
        heat.bridge_name.empty() ? words_.say("bridge", "Unterbrechung") : heat.bridge_name;
    const auto share = words_.number(rounded_number(heat.bridge->share * 100, 1));
    svg.text({name_left, base}, shortened(fmt::format("+ {}, {} %", name, share), name_columns),
             style_of(2.8));
    draw_cells(svg, base, "", number(heat.bridge_conductivity),
               words_.number(fixed_number(heat.bridge->resistance, 3)));
  }

  std::string resistance_text(std::size_t index) const {
    const auto resistance = transmission_.counted_resistance(index);
    return resistance ? fixed_number(*resistance, 3) : "–";
  }

  std::string number(double conductivity) const {
    return words_.number(conductivity_text(conductivity));
  }

  std::string thickness_text(std::size_t index) const {
    const auto drawn = [this](double length) { return drawn_length(length, unit_, words_); };
    const std::string text = drawn(composition_.layers()[index].thickness());
    const bool variable =
        composition_.has_variable_layer() && composition_.variable_layer() == index;
    if (!variable) return text;
    const std::string least = drawn(composition_.variable_layer_min_thickness());
    if (!composition_.has_variable_layer_max_thickness()) return "≥" + least + " / " + text;
    return least + "–" + drawn(composition_.variable_layer_max_thickness());
  }

  double draw_sum(Svg& svg, double y) const {
    y += 5;
    draw_figure(svg, y, words_.say("total thickness", "Gesamtdicke"),
                drawn_length(total_thickness(composition_), unit_, words_), thickness_right);
    y = draw_further_figures(svg, draw_transmission(svg, y + 5));
    TextStyle note = style_of(2.2);
    note.color = "#555555";
    y += 2;
    for (const auto& text : notes()) {
      for (const auto& line : wrapped(text, note_columns)) {
        svg.text({name_left, y += 3.6}, line, note);
      }
    }
    return y;
  }

  void draw_figure(Svg& svg, double y, const std::string& label, const std::string& value,
                   double end) const {
    svg.text({name_left, y}, label, style_of(2.8));
    TextStyle style = style_of(2.8, Anchor::End);
    style.bold = true;
    svg.text({end, y}, value, style);
  }

  double draw_transmission(Svg& svg, double y) const {
    const auto total = transmission_.total_resistance();
    if (!total) return draw_faults(svg, y);
    const auto surfaces = fmt::format(
        fmt::runtime(words_.say("total R, with surfaces {:.2f} outside and {:.2f} inside",
                                "R gesamt, mit Übergängen {:.2f} außen und {:.2f} innen")),
        transmission_.outside, transmission_.inside);
    draw_figure(svg, y, words_.number(surfaces), words_.number(fixed_number(*total, 3)), right);
    if (transmission_.limits && transmission_.bridged) {
      const auto error = fixed_number(transmission_.limits->error() * 100, 1);
      draw_figure(
          svg, y += 4.5,
          words_.say("error by the bridges, at most", "Fehler durch Unterbrechungen, höchstens"),
          words_.number(error) + " %", right);
    }
    for (const auto& correction : transmission_.corrections) {
      draw_figure(svg, y += 4.5, "ΔU: " + in_language(correction.name, words_),
                  words_.number(fixed_number(correction.value, 4)), right);
    }
    return draw_transmittance(svg, y);
  }

  /// What was only assumed is smaller than what is stated.
  double draw_transmittance(Svg& svg, double y) const {
    const bool assumed = transmission_.border.assumed && !transmission_.stated;
    y += 8;
    TextStyle large = style_of(assumed ? 3.8 : 5, Anchor::End);
    large.bold = true;
    svg.text({right, y}, words_.number(transmittance_text(*transmission_.transmittance())), large);
    if (!assumed) return y;
    TextStyle muted = style_of(2.2, Anchor::End);
    muted.color = "#555555";
    svg.text({right, y += 3.6}, assumed_text(), muted);
    return y;
  }

  std::string assumed_text() const {
    const auto basis = transmission_.border.basis;
    const auto* by = basis == BoundaryBasis::Name   ? words_.say("by its name", "nach dem Namen")
                     : basis == BoundaryBasis::Type ? words_.say("by its type", "nach der Art")
                                                    : words_.say("as usual", "wie üblich");
    const auto* what = transmission_.border.outside_assumed ? assumed_outside() : assumed_flow();
    return fmt::format("{} {}: {}", words_.say("assumed", "angenommen"), by, what);
  }

  const char* assumed_outside() const {
    using Side = physics::Side;
    switch (transmission_.border.boundary.outside) {
      case Side::Outdoors:
        return words_.say("outdoor air outside", "außen Außenluft");
      case Side::Ground:
        return words_.say("ground outside", "außen Erdreich");
      case Side::Unheated:
        return words_.say("an unheated room outside", "außen ein unbeheizter Raum");
      default:
        return words_.say("a room on both sides", "beiderseits Räume");
    }
  }

  const char* assumed_flow() const {
    using physics::HeatFlow;
    switch (transmission_.border.boundary.heat_flow) {
      case HeatFlow::Upward:
        return words_.say("upward heat flow", "Wärmestrom nach oben");
      case HeatFlow::Downward:
        return words_.say("downward heat flow", "Wärmestrom nach unten");
      default:
        return words_.say("horizontal heat flow", "waagrechter Wärmestrom");
    }
  }

  /// With at least two figures that say something.
  std::string transmittance_text(double transmittance) const {
    const int decimals = transmittance < 0.1 ? 3 : 2;
    const auto text = fmt::format("U = {:.{}f} W/(m²K)", transmittance, decimals);
    if (unit_ != Unit::Inches) return text;
    return text + fmt::format(" = {:.{}f} Btu/(h·ft²·°F)", transmittance * 0.17611, decimals + 1);
  }

  /// Those that are known.
  double draw_further_figures(Svg& svg, double y) const {
    const auto figure = [&](const char* label, double value, int decimals, const char* unit) {
      const auto text = words_.number(fixed_number(value, decimals));
      draw_figure(svg, y += 4.5, label, fmt::format("{} {}", text, unit), right);
    };
    const auto storage = storage_of(composition_, unit_, rules_.boundary);
    if (storage.mass) figure(words_.say("mass", "Masse"), *storage.mass, 0, "kg/m²");
    if (storage.storage) {
      figure(words_.say("heat capacity κ inside", "Wärmekapazität κ innen"),
             storage.storage->inside / 1000, 1, "kJ/(m²K)");
      figure(words_.say("time shift", "Phasenverschiebung"), storage.storage->time_shift, 1, "h");
    }
    const auto diffusion = diffusion_of(composition_, unit_);
    if (diffusion.total) {
      figure(words_.say("vapour diffusion s_d", "Dampfdiffusion s_d"), *diffusion.total, 2, "m");
    }
    return y;
  }

  /// Why there is no U-value: some sentences, and how many there are beside them.
  double draw_faults(Svg& svg, double y) const {
    const auto& faults = transmission_.faults;
    const auto told = std::min(faults.size(), most_faults);
    std::string text = words_.say("U-value unknown: ", "U-Wert unbekannt: ");
    for (std::size_t i = 0; i < told; ++i) {
      for (const auto& line : wrapped(text + in_language(faults[i], words_), fault_columns)) {
        svg.text({name_left, y}, line, style_of(2.8));
        y += line_height;
      }
      text.clear();
    }
    if (faults.size() > told) {
      const auto* more = words_.say("and {} more", "und {} weitere Gründe");
      svg.text({name_left, y}, fmt::format(fmt::runtime(more), faults.size() - told),
               style_of(2.8));
      y += line_height;
    }
    return y - line_height;
  }

  std::vector<std::string> notes() const {
    std::vector<std::string> notes{
        words_.say("Filled number: structural layer. Thick lines: the core.",
                   "Gefüllte Nummer: tragende Schicht. Dicke Linien: der Kern.")};
    if (thickened_) {
      notes.front() += words_.say(" The thinnest layers are drawn thicker.",
                                  " Die dünnsten Schichten sind dicker gezeichnet.");
    }
    if (crossing_) {
      notes.emplace_back(words_.say("Bridges with lines along them cross those with diagonals.",
                                    "Unterbrechungen mit Längslinien kreuzen die mit Diagonalen."));
    }
    if (undimensioned_ > 0) {
      notes.push_back(
          fmt::format(fmt::runtime(words_.say("Thicknesses that have room in this list only: {}.",
                                              "Dicken, die nur in dieser Liste Platz haben: {}.")),
                      undimensioned_));
    }
    if (!hatched_) {
      notes.emplace_back(words_.say("Some layers are drawn without their hatch.",
                                    "Einige Schichten sind ohne Schraffur gezeichnet."));
    }
    if (transmission_.ventilated > 0) {
      notes.push_back(fmt::format(
          fmt::runtime(words_.say("Layer {} is well ventilated: R counts from the next one.",
                                  "Schicht {} ist stark belüftet: R zählt ab der nächsten.")),
          transmission_.ventilated));
    }
    for (const auto& note : transmission_.notes) notes.push_back(in_language(note, words_));
    return notes;
  }

  const Composition& composition_;
  Unit unit_;
  const DrawingRules& rules_;
  Words words_;
  std::vector<std::string> names_;
  std::vector<std::string> subtitles_;
  double top_;
  Transmission transmission_;
  bool thickened_ = false;
  bool crossing_ = false;
  bool hatched_ = true;
  std::size_t undimensioned_ = 0;
};

}  // namespace

std::string draw_sheet(const std::vector<std::shared_ptr<Composition>>& compositions, Unit unit,
                       const DrawingRules& rules) {
  Svg svg;
  double y = margin;
  std::string title;
  for (const auto& composition : compositions) {
    y = Panel(*composition, unit, rules, y).draw(svg);
    title += (title.empty() ? "" : ", ") + shortened(composition->name().utf8(), title_columns);
  }
  const Words words(rules.locale);
  const auto* description = words.say("Sections to scale, with layers and figures",
                                      "Maßstäbliche Schnitte mit Schichten und Kennwerten");
  return svg.document(sheet_width, std::max(y, margin * 2), title, description, words.code());
}

}  // namespace veldra::kit
