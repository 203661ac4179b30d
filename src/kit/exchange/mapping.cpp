// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/mapping.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/physics.hpp>

#include "kit/text/quoted.hpp"

#include <fmt/format.h>

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

double thermal_mass_of(const Material& material) {
  const auto density = number_value(material, property::density);
  if (!density || material.thicknesses().empty()) return -1;
  return *density * *material.thicknesses().begin();
}

}  // namespace

std::shared_ptr<Material> map_material(const SourceMaterial& source, Unit unit,
                                       SharedObjects& shared) {
  if (source.name.empty()) throw Error("the name is missing");
  auto material = Material::create(library_text(source.name));
  material->type(shared.type(source.described->type));
  if (source.described->default_thickness >= 0) {
    material->thicknesses(toModify).insert(from_metres(thickness_of(source), unit));
  }
  for (const auto& field : source.described->fields) {
    const auto value = source.values.find(field.key);
    const bool wanted = field.kind == FieldKind::Number || field.kind == FieldKind::Text;
    if (!wanted || value == source.values.end()) continue;
    const bool number = field.kind == FieldKind::Number;
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

std::shared_ptr<Composition> map_construction(const String& name,
                                              const std::vector<Composition::Layer>& layers) {
  auto composition = Composition::create(name);
  composition->type(Composition::Type::Other);
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

}  // namespace veldra::kit
