// SPDX-License-Identifier: GPL-2.0-or-later
#include "physics_text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

namespace physics = kit::physics;

Json optional_number(const std::optional<double>& number) {
  return number ? number_to_json(*number) : Json();
}

std::string outside_text(const kit::Transmission& transmission) {
  if (transmission.ventilated > 0) return "a ventilated cavity";
  return physics::name_of(transmission.border.boundary.outside);
}

const char* word_of(kit::BoundaryBasis basis) {
  switch (basis) {
    case kit::BoundaryBasis::Asked:
      return "asked";
    case kit::BoundaryBasis::Stated:
      return "stated";
    case kit::BoundaryBasis::Name:
      return "name";
    case kit::BoundaryBasis::Usual:
      return "usual";
    default:
      return "type";
  }
}

Json boundary_json(const kit::CompositionBoundary& border) {
  Json json = Json::object();
  json["outside"] = physics::name_of(border.boundary.outside);
  json["inside"] = physics::name_of(border.boundary.inside);
  json["basis"] = word_of(border.basis);
  json["assumed"] = border.assumed;
  return json;
}

Json limits_json(const kit::Transmission& transmission) {
  if (!transmission.limits || !transmission.bridged) return Json();
  Json json = Json::object();
  json["upper"] = number_to_json(transmission.limits->upper);
  json["lower"] = number_to_json(transmission.limits->lower);
  json["error"] = number_to_json(transmission.limits->error());
  json["valid"] = transmission.limits->valid();
  return json;
}

}  // namespace

std::string surfaces_text(const kit::Transmission& transmission) {
  const auto& boundary = transmission.border.boundary;
  auto text = fmt::format(
      "{:.2f} outside, {:.2f} inside, in m²K/W: {} heat flow after ISO 6946, {} "
      "outside",
      transmission.outside, transmission.inside, physics::name_of(boundary.heat_flow),
      outside_text(transmission));
  if (boundary.inside != physics::Side::Interior) {
    text += fmt::format(", {} inside", physics::name_of(boundary.inside));
  }
  return text;
}

std::string assumption_text(const kit::Transmission& transmission) {
  const auto& border = transmission.border;
  if (!border.assumed || transmission.stated || !border.fault.empty()) return "";
  const auto basis = border.basis == kit::BoundaryBasis::Name   ? " by its name"
                     : border.basis == kit::BoundaryBasis::Type ? " by its type"
                                                                : ", as for a wall outside";
  const auto flow = fmt::format("{} heat flow", physics::name_of(border.boundary.heat_flow));
  const auto outside = fmt::format("{} outside", physics::name_of(border.boundary.outside));
  if (border.outside_assumed && border.heat_flow_assumed) {
    return fmt::format("{} and {} are assumed{}; no 'Boundary' is stated", flow, outside, basis);
  }
  return fmt::format("{} is assumed{}; no 'Boundary' states it",
                     border.outside_assumed ? outside : flow, basis);
}

std::string basis_text(const kit::LayerHeat& layer) {
  using Basis = kit::LayerHeat::Basis;
  switch (layer.basis) {
    case Basis::Stated:
      return "stated";
    case Basis::Conductivity:
      return "d / λ";
    case Basis::Air:
      return "air layer";
    case Basis::Gas:
      return "gas between panes";
    case Basis::NotCounted:
      return "does not count";
    default:
      return "";
  }
}

Json transmission_json(const kit::Transmission& transmission) {
  Json thermal = Json::object();
  for (const auto& layer : transmission.layers) {
    thermal["layer_resistances"].push_back(optional_number(layer.resistance));
  }
  thermal["heat_flow"] = physics::name_of(transmission.border.boundary.heat_flow);
  thermal["boundary"] = boundary_json(transmission.border);
  thermal["ventilated_layers"] = transmission.ventilated;
  thermal["outside_surface_resistance"] = transmission.outside;
  thermal["inside_surface_resistance"] = transmission.inside;
  thermal["limits"] = limits_json(transmission);
  thermal["corrections"] = Json::array();
  for (const auto& correction : transmission.corrections) {
    thermal["corrections"].push_back(
        {{"name", correction.name}, {"value", number_to_json(correction.value)}});
  }
  thermal["stated"] = transmission.stated.has_value();
  thermal["total_resistance"] = optional_number(transmission.total_resistance());
  thermal["transmittance"] = optional_number(transmission.transmittance());
  thermal["notes"] = transmission.notes;
  thermal["faults"] = transmission.faults;
  return thermal;
}

}  // namespace veldra_tool
