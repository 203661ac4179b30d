// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/drawing/sentences.hpp"

#include <optional>
#include <string_view>
#include <vector>

namespace veldra::kit {

namespace {

/// Both have their places, "{}", in the same order; the German one may have fewer.
struct Sentence {
  std::string_view english;
  std::string_view german;
};

constexpr Sentence sentences[] = {
    {"layer {}, '{}': {}", "Schicht {}, „{}“: {}"},
    {"its thickness is not known", "die Dicke ist nicht bekannt"},
    {"its thickness is infinite", "die Dicke ist unendlich"},
    {"its thickness is 0", "die Dicke ist 0"},
    {"its thickness is negative", "die Dicke ist negativ"},
    {"it has no material", "sie hat keinen Baustoff"},
    {"its '{}' is not known", "„{}“ ist nicht bekannt"},
    {"its '{}' is no number that can be used: '{}'", "„{}“ ist keine brauchbare Zahl: „{}“"},
    {"its '{}' is less than {}: '{}'", "„{}“ ist kleiner als {}: „{}“"},
    {"its '{}' is not greater than {}: '{}'", "„{}“ ist nicht größer als {}: „{}“"},
    {"its '{}' is greater than {}: '{}'", "„{}“ ist größer als {}: „{}“"},
    {"its '{}' is none of 0, 1 and 2: '{}'", "„{}“ ist weder 0 noch 1 noch 2: „{}“"},
    {"its U-factor is that of a whole glazing, and it is not the only layer",
     "der U-Wert gilt für eine ganze Verglasung, und sie ist nicht die einzige Schicht"},
    {"it has neither a conductivity nor a resistance",
     "weder Wärmeleitfähigkeit noch Wärmedurchlasswiderstand sind bekannt"},
    {"its 'Ventilation' is none that is known: '{}'", "„Ventilation“ ist unbekannt: „{}“"},
    {"air layers thicker than 0.3 m have no resistance",
     "für Luftschichten über 0,3 m Dicke gibt es keinen Widerstand"},
    {"its gas is not known", "das Gas ist nicht bekannt"},
    {"it is gas, and not between panes whose emissivities are known",
     "sie ist Gas, aber nicht zwischen Scheiben mit bekannten Emissionsgraden"},
    {"it is slightly ventilated, and its 'Ventilation opening [mm2]' is not known",
     "sie ist schwach belüftet, und „Ventilation opening [mm2]“ ist nicht bekannt"},
    {"it is the second tapered layer", "sie ist die zweite Schicht mit Gefälle"},
    {"its 'Taper shape' is none that is known", "„Taper shape“ ist unbekannt"},
    {"it is tapered and has no conductivity", "sie hat Gefälle, aber keine Wärmeleitfähigkeit"},
    {"it has fasteners whose conductivity or cross-section is not known",
     "Wärmeleitfähigkeit oder Querschnitt der Befestigungen sind nicht bekannt"},
    {"rain flows under it, and the composition has no 'Precipitation [mm/day]'",
     "Regen fließt darunter, und der Aufbau hat kein „Precipitation [mm/day]“"},
    {"air voids in layer {}", "Luftspalte in Schicht {}"},
    {"fasteners in layer {}", "Befestigungen in Schicht {}"},
    {"rain under the insulation in layer {}", "Regen unter der Dämmung in Schicht {}"},
    {"it has no layers", "der Aufbau hat keine Schichten"},
    {"'{}' in a boundary {}", "„{}“ gehört nicht in die Angabe „Boundary“"},
    {"the U-factor is used as it is stated, with its surfaces",
     "der U-Wert ist übernommen, wie er angegeben ist, mit seinen Übergängen"},
    {"gas between panes after EN 673, with 15 K between them",
     "Gas zwischen Scheiben nach EN 673, bei 15 K zwischen ihnen"},
    {"a bridge of metal is beyond the combined method; compute it in detail",
     "eine Unterbrechung aus Metall ist dem vereinfachten Verfahren entzogen; genau zu berechnen"},
    {"more bridges cross than can be counted",
     "es kreuzen sich mehr Unterbrechungen, als gezählt werden können"},
    {"the upper limit is {} times the lower one; the combined method holds up to 1.5",
     "der obere Grenzwert ist das {}-Fache des unteren; das vereinfachte Verfahren gilt bis 1,5"},
    {"a stated U-factor does not tell where vapour goes",
     "ein angegebener U-Wert sagt nicht, wohin Wasserdampf geht"},
    {"the climate says nothing of {} outside", "das Klima sagt nichts von außen: {}"},
    {"the climate says nothing of {} inside", "das Klima sagt nichts von innen: {}"},
    {"ventilated air", "belüftete Luft"},
    {"the ground", "Erdreich"},
    {"a heated room", "ein beheizter Raum"},
    {"an unheated room", "ein unbeheizter Raum"},
    {"outdoor air", "Außenluft"},
    {"no layer resists water vapour", "keine Schicht hemmt Wasserdampf"},
    {"moisture is computed beside the bridges",
     "die Feuchte ist neben den Unterbrechungen berechnet"},
};

constexpr std::string_view place = "{}";

/// What stands at the places of a sentence; nothing where a text is another one.
std::optional<std::vector<std::string_view>> parts_of(std::string_view text,
                                                      std::string_view sentence) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto at = sentence.find(place);
    const auto before = sentence.substr(0, at);
    if (text.substr(0, before.size()) != before) return std::nullopt;
    text.remove_prefix(before.size());
    if (at == std::string_view::npos) {
      if (!text.empty()) return std::nullopt;
      return parts;
    }
    sentence.remove_prefix(at + place.size());
    const auto next = sentence.substr(0, sentence.find(place));
    const auto end = next.empty() ? text.size() : text.find(next);
    if (end == std::string_view::npos) return std::nullopt;
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
}

bool is_number(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos;
}

}  // namespace

std::string in_language(const std::string& sentence, const Words& words) {
  if (is_number(sentence)) return words.number(sentence);
  for (const auto& each : sentences) {
    const auto parts = parts_of(sentence, each.english);
    if (!parts) continue;
    std::string german(each.german);
    std::size_t at = 0;
    for (const auto part : *parts) {
      at = german.find(place, at);
      if (at == std::string::npos) break;
      const auto translated = in_language(std::string(part), words);
      german.replace(at, place.size(), translated);
      at += translated.size();
    }
    return words.say(sentence.c_str(), german.c_str());
  }
  return sentence;
}

}  // namespace veldra::kit
