// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/error.hpp>
#include <veldra/kit/physics_heat.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <sstream>

namespace veldra::kit::physics {

namespace {

constexpr HeatFlow flows[] = {HeatFlow::Horizontal, HeatFlow::Upward, HeatFlow::Downward};

struct SideWord {
  const char* word;
  Side side;
};

constexpr SideWord sides[] = {{"outdoors", Side::Outdoors},
                              {"ventilated", Side::Ventilated},
                              {"ground", Side::Ground},
                              {"interior", Side::Interior},
                              {"unheated", Side::Unheated}};

std::optional<HeatFlow> flow_of(const std::string& word) {
  for (const HeatFlow flow : flows) {
    if (word == name_of(flow)) return flow;
  }
  return std::nullopt;
}

std::optional<Side> side_of(const std::string& word) {
  for (const auto& each : sides) {
    if (word == each.word) return each.side;
  }
  return std::nullopt;
}

[[noreturn]] void refuse(const std::string& word, const std::string& why) {
  throw Error(fmt::format("'{}' in a boundary {}", word, why));
}

void add_word(BoundaryStatement& statement, const std::string& word) {
  if (const auto flow = flow_of(word)) {
    if (statement.heat_flow) refuse(word, "is a second direction of the heat");
    statement.heat_flow = flow;
    return;
  }
  const auto side = side_of(word);
  if (!side) {
    refuse(word,
           "is none of outdoors, ventilated, ground, interior, unheated, horizontal, upward, "
           "downward");
  }
  auto& place = statement.outside ? statement.inside : statement.outside;
  if (place) refuse(word, "is a third side");
  place = side;
}

}  // namespace

const char* name_of(HeatFlow flow) {
  switch (flow) {
    case HeatFlow::Upward:
      return "upward";
    case HeatFlow::Downward:
      return "downward";
    default:
      return "horizontal";
  }
}

const char* name_of(Side side) {
  switch (side) {
    case Side::Ventilated:
      return "ventilated air";
    case Side::Ground:
      return "the ground";
    case Side::Interior:
      return "a heated room";
    case Side::Unheated:
      return "an unheated room";
    default:
      return "outdoor air";
  }
}

BoundaryStatement boundary_statement(const std::string& text) {
  BoundaryStatement statement;
  std::istringstream words(text);
  for (std::string word; std::getline(words, word, ',');) {
    add_word(statement, lower_case(trimmed(word)));
  }
  return statement;
}

double surface_resistance(HeatFlow flow, Side side) {
  if (side == Side::Ground) return 0;
  if (side == Side::Outdoors) return 0.04;
  switch (flow) {
    case HeatFlow::Upward:
      return 0.10;
    case HeatFlow::Downward:
      return 0.17;
    default:
      return 0.13;
  }
}

}  // namespace veldra::kit::physics
