// SPDX-License-Identifier: GPL-2.0-or-later
#include "layer_table.hpp"

#include "kinds.hpp"
#include "physics_text.hpp"
#include "process/standard_streams.hpp"
#include "summary.hpp"
#include "table.hpp"
#include "text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

std::string roles_text(const veldra::Composition& composition, std::size_t index) {
  std::string text;
  const auto add = [&](bool holds, const char* role) {
    if (holds) text += (text.empty() ? "" : ", ") + std::string(role);
  };
  add(index >= composition.first_core_layer() && index <= composition.last_core_layer(), "core");
  add(index == composition.structural_layer(), "structural");
  add(composition.has_variable_layer() && index == composition.variable_layer(), "variable");
  return text;
}

}  // namespace

/// Other numbers than these two are the host's.
std::string function_text(veldra::Material::Function function) {
  switch (function) {
    case veldra::Material::Function::None:
      return "–";
    case veldra::Material::Function::Structure:
      return "structure";
    default:
      return fmt::format("{}", static_cast<int>(function));
  }
}

std::string layers_text(const veldra::Composition& composition,
                        const kit::Transmission& transmission, veldra::Unit unit) {
  Table table({{"layer", Align::Right},
               {"material", Align::Left, true},
               {fmt::format("thickness [{}]", name_of(unit)), Align::Right},
               {"R [m²K/W]", Align::Right},
               {"function"},
               {"role"}});
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    const auto& layer = composition.layers()[i];
    table.add({fmt::format("{}", i + 1), layer.material()->name().utf8(),
               length_text(layer.thickness(), unit), resistance_text(transmission, i),
               function_text(layer.function()), roles_text(composition, i)});
  }
  return fmt::format("Layers from outside to inside\n\n{}", table.text(terminal_width()));
}

}  // namespace veldra_tool
