// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects.hpp"
#include "text.hpp"
#include "values.hpp"

#include <veldra/kit/drawing.hpp>
#include <veldra/kit/error.hpp>

#include <pybind11/stl.h>

#include <optional>
#include <utility>

namespace veldra::python {

namespace {

using Compositions = std::vector<std::shared_ptr<Composition>>;

Composition::Type type_named(const std::string& name) {
  const std::pair<const char*, Composition::Type> all[] = {{"wall", Composition::Type::Wall},
                                                           {"floor", Composition::Type::Floor},
                                                           {"roof", Composition::Type::Roof},
                                                           {"other", Composition::Type::Other}};
  for (const auto& [word, type] : all) {
    if (word == name) return type;
  }
  throw py::value_error("'" + name + "' is none of 'wall', 'floor', 'roof' and 'other'");
}

/// That of all of them; a sheet has one.
Unit common_unit(const Compositions& compositions) {
  const Unit unit = compositions.empty() ? Unit::Millimetres : unit_of(*compositions.front());
  for (const auto& each : compositions) {
    if (unit_of(*each) != unit) {
      throw kit::Error("the build-ups of a drawing must be of libraries of one unit");
    }
  }
  return unit;
}

std::string draw(const Compositions& compositions, const Text& locale, std::optional<bool> lying,
                 const std::optional<std::string>& type, const Text& boundary) {
  for (const auto& each : compositions) {
    if (!each) throw py::type_error("a veldra.Composition is needed, not None");
    require_readable(*each);
  }
  const Use nothing({});
  try {
    kit::DrawingRules rules;
    rules.locale = locale.utf8;
    rules.lying = lying;
    if (type) rules.type = type_named(*type);
    rules.boundary = kit::physics::boundary_statement(boundary.utf8);
    return kit::draw_sheet(compositions, common_unit(compositions), rules);
  } catch (...) {
    raise(std::current_exception(), {});
  }
}

py::bytes pdf(const Text& svg, const Text& title) {
  const Use nothing({});
  return run(nothing, {}, [&] { return kit::pdf_of(svg.utf8, title.utf8); });
}

std::string page(const Text& svg, const Text& title, const Text& locale) {
  return kit::page_of(svg.utf8, title.utf8, locale.utf8);
}

}  // namespace

void bind_drawing(py::module_& module) {
  module.def("_draw", &draw);
  module.def("_pdf", &pdf);
  module.def("_page", &page);
}

}  // namespace veldra::python
