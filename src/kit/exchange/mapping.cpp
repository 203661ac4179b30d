// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/mapping.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include "kit/exchange/source_fields.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace veldra::kit {

namespace {

double number_of(const std::string& text, const char* key) {
  const char* begin = text.data() + (text.front() == '+' ? 1 : 0);
  const char* end = text.data() + text.size();
  double number = 0;
  const auto result = std::from_chars(begin, end, number);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(number)) {
    throw Error(fmt::format("{} is not a number for '{}'", quoted(text), key));
  }
  return number;
}

/// The thickness in metres, for classes that have one.
double thickness_of(const SourceMaterial& source) {
  const auto value = source.values.find("thickness");
  if (value == source.values.end()) {
    if (source.described->default_thickness > 0) return source.described->default_thickness;
    throw Error("the thickness is missing");
  }
  const double thickness = number_of(value->second, "thickness");
  if (thickness < 0) throw Error(fmt::format("the thickness {} is negative", value->second));
  return thickness;
}

/// Sources round what follows from other numbers.
bool is_nearly(double number, double other) {
  constexpr double rounding = 0.01;
  return std::abs(number - other) <= rounding * std::abs(other);
}

/// Whether the resistance is that of the thickness and the conductivity.
bool is_implied(const SourceMaterial& source, const std::string& resistance) {
  const auto number_at = [&](const std::string& key) {
    const auto value = source.values.find(key);
    return value != source.values.end() ? number_in(value->second) : std::nullopt;
  };
  const auto stated = number_in(resistance);
  const auto thickness = number_at("thickness");
  for (const auto& field : source.described->fields) {
    if (std::string(field.property) != property::conductivity) continue;
    const auto conductivity = number_at(field.key);
    if (!stated || !thickness || !conductivity || *conductivity <= 0) return false;
    return is_nearly(*thickness / *conductivity, *stated);
  }
  return false;
}

bool is_number(FieldKind kind) {
  return kind == FieldKind::Number || kind == FieldKind::Resistance;
}

constexpr const char* identifier_property = "Identifier";

bool is_a_number(const std::string& text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end && std::isfinite(number);
}

/// The number of metres that the reader takes for a length of a library: the one of the fewest
/// digits.
double metres_for(double length, Unit unit) {
  const double about = in_metres(length, unit);
  for (int digits = 1; digits <= 17; ++digits) {
    const double metres = number_in(fmt::format("{:.{}g}", about, digits)).value_or(about);
    if (from_metres(metres, unit) == length) return metres;
  }
  for (const double metres : {std::nextafter(about, 0.0), std::nextafter(about, 1e300)}) {
    if (from_metres(metres, unit) == length) return metres;
  }
  return about;
}

bool has_value(const Material& material, const std::string& property) {
  return !material.custom_value(library_text(property)).null();
}

/// How many values of a material a class has a place for.
std::size_t places_in(const MaterialClass& described, const Material& material,
                      bool has_thickness) {
  const bool takes_thickness = described.default_thickness >= 0;
  const auto fields =
      std::count_if(described.fields.begin(), described.fields.end(), [&](const auto& field) {
        return *field.property != '\0' && has_value(material, field.property);
      });
  return static_cast<std::size_t>(fields) + unknown_fields(material, described.name).size() +
         (takes_thickness == has_thickness ? 1 : 0);
}

/// The type that a material has by its values.
const char* usual_type(const Material& material, bool has_thickness) {
  if (has_value(material, property::conductivity) || has_thickness) return "Opaque";
  if (has_value(material, source_property::u_factor)) return "Simple glazing";
  return has_value(material, property::resistance) ? "No mass" : "Opaque";
}

const MaterialClass* best_class(const Material& material, const std::string& type,
                                const MaterialClasses& classes, bool has_thickness) {
  const MaterialClass* best = nullptr;
  std::size_t most = 0;
  for (const auto& described : classes) {
    if (described.type != type) continue;
    const auto places = places_in(described, material, has_thickness);
    if (best != nullptr && places <= most) continue;
    best = &described;
    most = places;
  }
  return best;
}

/// The text that stands for a field in the source; empty for none.
std::string source_value(const Material& material, const SourceField& field) {
  if (!is_number(field.kind) && field.kind != FieldKind::Text) return {};
  const auto value = material.custom_value(library_text(field.property));
  if (value.null()) return {};
  const auto text = value.get().utf8();
  if (field.kind == FieldKind::Text) return can_have(field, text) ? text : std::string();
  return is_a_number(text) ? exact_number(number_of(text, field.key)) : std::string();
}

double thermal_mass_of(const Material& material) {
  const auto density = number_value(material, property::density);
  if (!density || material.thicknesses().empty()) return -1;
  return *density * *material.thicknesses().begin();
}

}  // namespace

std::shared_ptr<Material> map_material(const SourceMaterial& source, Unit unit,
                                       SharedObjects& shared) {
  if (!source.fault.empty()) throw Error(source.fault);
  if (source.name.empty()) throw Error("the name is missing");
  auto material = Material::create(library_text(source.name));
  material->type(shared.type(source.described->type));
  if (!source.identifier.empty()) material->mark(library_text(source.identifier));
  material->description(library_text(source.description));
  if (source.described->default_thickness >= 0) {
    material->thicknesses(toModify).insert(from_metres(thickness_of(source), unit));
  }
  for (const auto& field : source.described->fields) {
    const auto value = source.values.find(field.key);
    const bool number = is_number(field.kind);
    const bool wanted = number || field.kind == FieldKind::Text;
    if (!wanted || value == source.values.end()) continue;
    if (field.kind == FieldKind::Resistance && is_implied(source, value->second)) continue;
    const auto text = number ? exact_number(number_of(value->second, field.key)) : value->second;
    material->custom_value(shared.property(field.property, ObjectType::Material),
                           library_text(text));
  }
  return material;
}

double usual_thickness(const Material& material) {
  return material.thicknesses().empty() ? 0.0 : *material.thicknesses().begin();
}

std::vector<Composition::Layer> map_layers(
    const std::vector<std::shared_ptr<Material>>& materials) {
  std::vector<Composition::Layer> layers;
  std::size_t structural = 0;
  double greatest = -1;
  for (const auto& material : materials) {
    const double mass = thermal_mass_of(*material);
    if (mass > greatest) {
      greatest = mass;
      structural = layers.size();
    }
    layers.emplace_back(material, Material::Function::None, usual_thickness(*material));
  }
  if (greatest >= 0) layers[structural].function(Material::Function::Structure);
  return layers;
}

std::shared_ptr<Composition> map_construction(const SourceConstruction& source,
                                              const std::vector<Composition::Layer>& layers,
                                              SharedObjects& shared) {
  auto composition = Composition::create(library_text(source.name));
  if (!source.identifier.empty()) {
    composition->custom_value(shared.property(identifier_property, ObjectType::Composition),
                              library_text(source.identifier));
  }
  composition->description(library_text(source.description));
  composition->type(source.type);
  for (const auto& [name, value] : source.properties) {
    composition->custom_value(shared.property(library_text(name), ObjectType::Composition),
                              library_text(value));
  }
  unsigned structural = 0;
  for (const auto& layer : layers) {
    if (layer.function() == Material::Function::Structure) {
      structural = static_cast<unsigned>(composition->layers().size());
    }
    composition->appendLayer(layer);
  }
  composition->last_core_layer(static_cast<unsigned>(layers.size() - 1));
  composition->structural_layer(structural);
  return composition;
}

void keep_transmittance(Composition& composition, const std::string& stated, Unit unit,
                        SharedObjects& shared) {
  const double number = number_of(stated, "U-value");
  const auto computed = transmission_of(composition, unit).transmittance();
  if (computed && is_nearly(*computed, number)) return;
  composition.custom_value(shared.property(source_property::u_factor, ObjectType::Composition),
                           library_text(exact_number(number)));
}

std::string property_of_unknown(const std::string& class_name, const std::string& field) {
  return fmt::format("{}.{}", class_name, field);
}

const MaterialClass& class_for(const Material& material, const MaterialClasses& classes,
                               bool has_thickness) {
  if (material.type()) {
    const auto type = material.type()->name().utf8();
    if (const auto* found = best_class(material, type, classes, has_thickness)) return *found;
  }
  const auto* found =
      best_class(material, usual_type(material, has_thickness), classes, has_thickness);
  return found != nullptr ? *found : classes.front();
}

SourceMaterial unmap_material(const Material& material, const MaterialClass& described,
                              std::optional<double> thickness, Unit unit, HoldsField holds) {
  SourceMaterial source;
  source.described = &described;
  source.name = material.name().utf8();
  source.identifier = material.mark().utf8();
  if (thickness) source.values["thickness"] = exact_number(metres_for(*thickness, unit));
  for (const auto& field : described.fields) {
    const auto text = source_value(material, field);
    if (!text.empty() && holds(described, field.key, text)) source.values[field.key] = text;
  }
  for (auto& [key, value] : unknown_fields(material, described.name)) {
    const bool stands_there = source.values.count(key) > 0;
    if (!stands_there && holds(described, key, value)) source.not_kept.emplace_back(key, value);
  }
  return source;
}

std::string identifier_of(const Composition& composition) {
  const auto value = composition.custom_value(identifier_property);
  return value.null() ? std::string() : value.get().utf8();
}

const ConstructionClass& class_for(const Composition& composition) {
  for (const char* name : {"Construction:InternalSource", "Construction:WindowEquivalentLayer"}) {
    if (!unknown_fields(composition, name).empty()) return *construction_class(name);
  }
  return *construction_class("Construction");
}

}  // namespace veldra::kit
