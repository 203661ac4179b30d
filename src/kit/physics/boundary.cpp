// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/error.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

namespace veldra::kit {

namespace {

using physics::BoundaryStatement;
using physics::HeatFlow;
using physics::Side;

/// The words of a name, each with a blank before it, so that a word is found by its beginning.
std::string words_of(const Composition& composition) {
  std::string words = " " + folded(composition.name().utf8());
  for (char& character : words) {
    const bool part = (character >= 'a' && character <= 'z') || (character & 0x80) != 0;
    if (!part) character = ' ';
  }
  return words;
}

bool has_word(const std::string& words, std::initializer_list<const char*> beginnings) {
  for (const char* beginning : beginnings) {
    if (words.find(std::string(" ") + beginning) != std::string::npos) return true;
  }
  return false;
}

/// Words of which the last part says what they are, such as "Holzbalkendecke".
bool has_ending(const std::string& words, std::initializer_list<const char*> endings) {
  for (const char* ending : endings) {
    if ((words + " ").find(std::string(ending) + " ") != std::string::npos) return true;
  }
  return false;
}

/// "Interior wall" lies between rooms, and a "wall with interior insulation" does not.
bool is_something_interior(const std::string& words) {
  for (const std::string inside : {" interior", " internal"}) {
    for (auto at = words.find(inside); at != std::string::npos; at = words.find(inside, at + 1)) {
      const auto what = " " + trimmed(words.substr(at + inside.size()));
      if (has_word(what, {"wall", "partition", "floor", "ceiling", "slab", "door", "window", "mass",
                          "furnishing", "construction"})) {
        return true;
      }
    }
  }
  return false;
}

bool is_above_a_cellar(const std::string& words) {
  return has_word(words, {"basement ceiling", "cellar ceiling"}) ||
         has_ending(words, {"kellerdecke"});
}

std::optional<Side> outside_by_name(const std::string& words) {
  if (has_word(words, {"exterior", "external", "outer", "outside", "aussen"})) return std::nullopt;
  if (is_above_a_cellar(words) || has_word(words, {"oberste geschossdecke"})) {
    return Side::Unheated;
  }
  if (is_something_interior(words) ||
      has_word(words, {"partition", "furnishing", "innenwand", "innentur", "trennwand"}) ||
      has_ending(words, {"zwischendecke", "geschossdecke"})) {
    return Side::Interior;
  }
  if (has_word(words, {"underground", "basement", "slab on g", "bodenplatte", "erdberuhrt"})) {
    return Side::Ground;
  }
  return std::nullopt;
}

std::optional<HeatFlow> flow_by_type(Composition::Type type) {
  switch (type) {
    case Composition::Type::Roof:
      return HeatFlow::Upward;
    case Composition::Type::Floor:
      return HeatFlow::Downward;
    case Composition::Type::Wall:
      return HeatFlow::Horizontal;
    default:
      return std::nullopt;
  }
}

std::optional<HeatFlow> flow_by_name(const std::string& words) {
  if (is_above_a_cellar(words)) return HeatFlow::Downward;
  if (has_word(words, {"roof", "ceiling", "dach", "decke"}) ||
      has_ending(words, {"dach", "decke"})) {
    return HeatFlow::Upward;
  }
  if (has_word(words, {"floor", "boden", "slab on g"}) || has_ending(words, {"boden"})) {
    return HeatFlow::Downward;
  }
  return std::nullopt;
}

BoundaryStatement stated_by(const Composition& composition, std::string& fault) {
  try {
    return physics::boundary_statement(KnownValues(composition).text(Known::Boundary));
  } catch (const Error& error) {
    fault = error.what();
    return {};
  }
}

}  // namespace

CompositionBoundary boundary_of(const Composition& composition, const BoundaryStatement& asked) {
  CompositionBoundary result;
  const auto stated = stated_by(composition, result.fault);
  const auto flow = asked.heat_flow ? asked.heat_flow : stated.heat_flow;
  const auto outside = asked.outside ? asked.outside : stated.outside;
  const auto inside = asked.inside ? asked.inside : stated.inside;
  const auto by_type = flow_by_type(composition.type());
  const bool is_asked = asked.heat_flow || asked.outside || asked.inside;
  if (inside) result.boundary.inside = *inside;
  result.outside_assumed = !outside;
  result.heat_flow_assumed = !flow && !(outside && by_type);
  result.assumed = result.outside_assumed || result.heat_flow_assumed;
  if (!result.assumed) {
    result.boundary.outside = *outside;
    result.boundary.heat_flow = flow ? *flow : *by_type;
    result.basis = is_asked ? BoundaryBasis::Asked : BoundaryBasis::Stated;
    return result;
  }
  const auto words = words_of(composition);
  const auto side_by_name = outside_by_name(words);
  const auto named_flow = flow_by_name(words);
  const bool by_name = (!outside && side_by_name) || (!flow && !by_type && named_flow);
  result.basis = by_name            ? BoundaryBasis::Name
                 : !flow && by_type ? BoundaryBasis::Type
                                    : BoundaryBasis::Usual;
  result.boundary.outside = outside ? *outside : side_by_name.value_or(Side::Outdoors);
  result.boundary.heat_flow = flow      ? *flow
                              : by_type ? *by_type
                                        : named_flow.value_or(HeatFlow::Horizontal);
  return result;
}

}  // namespace veldra::kit
