// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "layer_table.hpp"
#include "lookup.hpp"
#include "object_arguments.hpp"
#include "opening.hpp"
#include "physics_text.hpp"
#include "process/writing.hpp"
#include "summary.hpp"
#include "table.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  ObjectsOfKind object;
  bool json = false;
};

std::string line_of(const std::string& title, const std::string& value) {
  const std::size_t width = display_width(title);
  return printable(title) + std::string(width < 22 ? 22 - width : 1, ' ') + printable(value);
}

void line(Spool& output, const std::string& title, const std::string& value) {
  if (!value.empty()) output.print("{}\n", line_of(title, value));
}

void muted_line(Spool& output, const std::string& title, const std::string& value) {
  if (!value.empty()) output.print("{}\n", muted(line_of(title, value)));
}

template <class T>
void print_head(Spool& output, const T& object) {
  line(output, "id", fmt::format("{}", object.id()));
  line(output, "name", object.name().utf8());
}

template <class Owner>
void print_custom_values(Spool& output, const Owner& owner) {
  for (const auto& [property, value] : owner.custom_values()) {
    line(output, "  " + property->name().utf8(), value.utf8());
  }
}

std::string color_text(const veldra::Color& color) {
  if (color == veldra::Color()) return "";
  return fmt::format("red {}, green {}, blue {}, alpha {}", exact_number(color.red),
                     exact_number(color.green), exact_number(color.blue),
                     exact_number(color.alpha));
}

std::string pattern_text(const veldra::Pattern& pattern) {
  if (pattern == veldra::Pattern()) return "";
  return fmt::format("{} (type {}), scale {}, angle {}{}",
                     pattern.name ? pattern.name.utf8() : "unnamed", static_cast<int>(pattern.type),
                     exact_number(pattern.scale), exact_number(pattern.angle),
                     pattern.cross ? ", crossed" : "");
}

template <class Asset>
void print_asset(Spool& output, const std::string& title, const std::shared_ptr<Asset>& asset) {
  if (!asset) return;
  line(output, title, asset->name().utf8());
  line(output, "  subclass", asset->subclass().utf8());
  line(output, "  density", rounded_number(asset->density(), 6));
  line(output, "  specific heat", rounded_number(asset->specific_heat(), 6));
  line(output, "  conductivity", rounded_number(asset->thermal_conductivity(), 6));
}

/// What holds a quantity, as a word of the JSON format.
const char* source_key(kit::QuantitySource source) {
  switch (source) {
    case kit::QuantitySource::CustomProperty:
      return "custom_property";
    case kit::QuantitySource::ThermalAsset:
      return "thermal_asset";
    case kit::QuantitySource::StructuralAsset:
      return "structural_asset";
    default:
      return "";
  }
}

std::string source_text(kit::QuantitySource source) {
  std::string text = source_key(source);
  std::replace(text.begin(), text.end(), '_', ' ');
  return text;
}

/// Calls `visit(field, number, source)` for each quantity that the material has.
template <class Visit>
void for_each_quantity(const veldra::Material& material, Visit visit) {
  for (const auto& field : kit::built_in_fields<veldra::Material>()) {
    const auto source = kit::quantity_source(field, material);
    if (source == kit::QuantitySource::None) continue;
    visit(field, field.get(material).as<double>(), source);
  }
}

void print_quantities(Spool& output, const veldra::Material& material, veldra::Unit unit) {
  bool first = true;
  for_each_quantity(material, [&](const auto& field, double number, auto source) {
    if (std::exchange(first, false)) output.print("quantities\n");
    line(output, "  " + field.label,
         fmt::format("{} {}, from the {}", rounded_number(number, 6),
                     kit::unit_text(field.measure, unit), source_text(source)));
  });
}

void print_details(Spool& output, const veldra::Material& material, veldra::Unit unit) {
  if (material.type()) line(output, "type", material.type()->name().utf8());
  if (material.has_code()) {
    line(output, "code", material.code() ? material.code().utf8() : "(empty)");
  }
  for (const auto* field : kit::plain_material_fields(kit::Value::Kind::Text)) {
    line(output, field->key, kit::value_text(field->get(material)));
  }
  line(output, "tags", tags_text(material));
  line(
      output, "thicknesses",
      material.thicknesses().empty() ? "" : thicknesses_text(material, unit) + " " + name_of(unit));
  line(output, "other thicknesses", material.allow_custom_thickness() ? "allowed" : "not allowed");
  line(output, "function", function_text(material.function()));
  line(output, "shading",
       material.shading_use_appearance() ? "from the appearance" : "from its colour");
  for (const auto* field : kit::plain_material_fields(kit::Value::Kind::Color)) {
    line(output, field->key, color_text(field->get(material).as<veldra::Color>()));
  }
  for (const auto* field : kit::plain_material_fields(kit::Value::Kind::Pattern)) {
    line(output, field->key, pattern_text(field->get(material).as<veldra::Pattern>()));
  }
  const auto& alignment = material.surface_pattern_alignment();
  if (alignment != veldra::Point2d()) {
    line(output, "surface alignment",
         fmt::format("{}, {}", exact_number(alignment.x), exact_number(alignment.y)));
  }
  if (material.cut_layer()) line(output, "cut layer", material.cut_layer()->name().utf8());
  if (!material.custom_values().empty()) output.print("custom values\n");
  print_custom_values(output, material);
  print_asset(output, "structural asset", material.structuralAsset());
  print_asset(output, "thermal asset", material.thermalAsset());
  print_quantities(output, material, unit);
}

std::string core_text(const veldra::Composition& composition) {
  const auto first = composition.first_core_layer() + 1ULL;
  const auto last = composition.last_core_layer() + 1ULL;
  return first == last ? fmt::format("layer {}", first)
                       : fmt::format("layers {} to {}", first, last);
}

std::string variable_text(const veldra::Composition& composition, veldra::Unit unit) {
  std::string text = fmt::format("layer {}, from {}", composition.variable_layer() + 1ULL,
                                 length_text(composition.variable_layer_min_thickness(), unit));
  if (composition.has_variable_layer_max_thickness()) {
    text += fmt::format(" to {}", length_text(composition.variable_layer_max_thickness(), unit));
  }
  return text + " " + name_of(unit);
}

void print_transmission(Spool& output, const kit::Transmission& transmission) {
  line(output, "surfaces", surfaces_text(transmission));
  muted_line(output, "assumed", assumption_text(transmission));
  if (transmission.ventilated > 0) {
    line(output, "ventilated",
         fmt::format("layer {} and what is outside it do not count", transmission.ventilated));
  }
  for (const auto& note : transmission.notes) line(output, "note", note);
  if (const auto total = transmission.total_resistance()) {
    line(output, "resistance R_T", fmt::format("{:.3f} m²K/W with surfaces", *total));
    line(output, "transmittance U", fmt::format("{:.3f} W/(m²K)", *transmission.transmittance()));
  }
  for (const auto& fault : transmission.faults) line(output, "no U-value", fault);
}

void print_details(Spool& output, const veldra::Composition& composition, veldra::Unit unit) {
  line(output, "type", name_of(composition.type()));
  line(output, "description", composition.description().utf8());
  line(output, "comments", composition.comments().utf8());
  line(output, "tags", tags_text(composition));
  if (composition.entity_layer())
    line(output, "entity layer", composition.entity_layer()->name().utf8());
  if (!composition.custom_values().empty()) output.print("custom values\n");
  print_custom_values(output, composition);
  const auto transmission = kit::transmission_of(composition, unit);
  if (!composition.layers().empty()) {
    output.print("\n{}\n", layers_text(composition, transmission, unit));
  }
  line(output, "total", length_text(kit::total_thickness(composition), unit) + " " + name_of(unit));
  if (!composition.layers().empty()) {
    line(output, "core", core_text(composition));
    line(output, "structural layer", fmt::format("{}", composition.structural_layer() + 1ULL));
  }
  if (composition.has_variable_layer())
    line(output, "variable layer", variable_text(composition, unit));
  print_transmission(output, transmission);
}

void print_details(Spool& output, const veldra::CustomProperty& property, veldra::Unit) {
  const auto& owner = kit::built_in_fields<veldra::CustomProperty>().at("object_type");
  line(output, "for", kit::value_text(owner.get(property)));
}

template <class Named>
void print_details(Spool&, const Named&, veldra::Unit) {}

void add_thermal(Json& json, const veldra::Composition& composition, veldra::Unit unit) {
  json["total_thickness"] = number_to_json(kit::total_thickness(composition));
  json["thermal"] = transmission_json(kit::transmission_of(composition, unit));
}

void add_thermal(Json& json, const veldra::Material& material, veldra::Unit) {
  for_each_quantity(material, [&](const auto& field, double number, auto source) {
    Json& quantity = json["quantities"][field.key];
    quantity["value"] = number_to_json(number);
    quantity["source"] = source_key(source);
  });
}

template <class T>
void add_thermal(Json&, const T&, veldra::Unit) {}

template <class T>
void show_object(Spool& output, const veldra::Library& library, const std::string& text,
                 bool as_json) {
  const auto object = find_object<T>(library, text);
  if (as_json) {
    Json json = summary_of(*object);
    add_thermal(json, *object, library.unit());
    return print_json(output, json);
  }
  print_head(output, *object);
  print_details(output, *object, library.unit());
}

void show(const Arguments& arguments, Host& host) {
  const auto wanted = arguments.object.single();
  reading(arguments.file, [&](const veldra::Library& library) {
    with_class_of(wanted.kind, [&](auto of) {
      show_object<typename decltype(of)::type>(host.output, library, wanted.object, arguments.json);
    });
  });
}

}  // namespace

void add_show(Host& host) {
  auto& command = *host.arguments.add_subcommand("show", "Show everything about one object");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_objects_of_kind(command, arguments->object, "The object");
  add_json(command, arguments->json);
  add_example(command, "veldra show office.lib composition 'Cavity wall'");
  command.callback([arguments, &host] { show(*arguments, host); });
}

}  // namespace veldra_tool
