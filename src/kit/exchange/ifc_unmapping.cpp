// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_unmapping.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

namespace {

/// A name that IFC calls a label has so many characters at most.
constexpr std::size_t longest_label = 255;

bool is_share(double number) { return number >= 0 && number <= 1; }

/// The colour that a style gives back.
std::optional<Color> style_color(const Color& color, bool has_alpha) {
  const bool fits =
      is_share(color.red) && is_share(color.green) && is_share(color.blue) && is_share(color.alpha);
  if (!fits || color == Color()) return std::nullopt;
  return Color(color.red, color.green, color.blue, has_alpha ? 1 - (1 - color.alpha) : 1);
}

/// The values of custom properties for objects of a kind, by name.
template <class T>
std::map<std::string, std::string> own_custom_values(const T& object) {
  std::map<std::string, std::string> values;
  for (const auto& [property, value] : object.custom_values()) {
    if (property->object_type() == ObjectTraits<T>::type) {
      values[property->name().utf8()] = value.utf8();
    }
  }
  return values;
}

/// What the model says of a material besides the property set for values of a library.
IfcMaterial plain(const Material& material) {
  IfcMaterial source;
  source.name = ifc_label(material.name().utf8());
  source.description = material.description().utf8();
  source.classification = ifc_label(material.classification().utf8());
  source.shading_color = style_color(material.shading_color(), true);
  source.cut_pattern_color = style_color(material.cut_pattern_color(), false);
  auto values = own_custom_values(material);
  const auto& category = values[ifc_category_property];
  if (material.type()) {
    source.category = ifc_label(material.type()->name().utf8());
  } else if (known_material_type(category).empty()) {
    source.category = ifc_label(category);
  }
  for (const char* name : {property::conductivity, property::density, property::specific_heat}) {
    const auto number = number_in(values[name]);
    if (number) source.properties.emplace_back(name, exact_number(*number));
  }
  return source;
}

/// The same of a composition.
IfcLayerSet plain(const Composition& composition) {
  IfcLayerSet source;
  source.name = ifc_label(composition.name().utf8());
  source.type = composition.type();
  source.description = composition.description().utf8();
  for (const auto& layer : composition.layers()) {
    IfcLayer written;
    written.material = source.layers.size();
    const bool can_be = std::isfinite(layer.thickness()) && layer.thickness() >= 0;
    written.thickness = can_be ? layer.thickness() : 0;
    written.structural = layer.function() == Material::Function::Structure;
    source.layers.push_back(written);
  }
  return source;
}

void ignore(const std::string&) {}

std::shared_ptr<Material> mapped_back(const IfcMaterial& source, const Material&, Unit unit) {
  SharedObjects shared;
  return map_ifc(source, ifc_length_of(unit), unit, shared, ignore);
}

std::shared_ptr<Composition> mapped_back(const IfcLayerSet& source, const Composition& composition,
                                         Unit unit) {
  SharedObjects shared;
  const std::vector<std::string> names(source.layers.size());
  const auto result = map_ifc(source, names, ifc_length_of(unit), unit, shared, ignore);
  std::vector<Composition::Layer> layers;
  for (const auto& layer : result.layers) {
    layers.emplace_back(composition.layers()[layers.size()].material(), layer.function,
                        layer.thickness);
  }
  complete(result, layers, "");
  return result.object;
}

bool says(const IfcMaterial& source, const std::string& name, const std::string& value) {
  if (name == ifc_category_property) return source.category == value;
  return std::any_of(source.properties.begin(), source.properties.end(), [&](const auto& each) {
    return each.first == name && number_in(each.second) == number_in(value);
  });
}

bool says(const IfcLayerSet&, const std::string&, const std::string&) { return false; }

/// Custom values that the model does not say elsewhere.
template <class Source, class T>
void add_custom_values(const T& object, Source& source) {
  for (const auto& [property, value] : object.custom_values()) {
    const bool own = property->object_type() == ObjectTraits<T>::type;
    if (own && says(source, property->name().utf8(), value.utf8())) continue;
    const auto name = ifc_name_of_property<T>(*property);
    if (ifc_label(name) == name) source.own.emplace_back(name, value.utf8());
  }
}

/// Functions that only the host knows.
void add_functions(const Composition& composition, IfcLayerSet& source) {
  std::string functions;
  bool needed = false;
  for (const auto& layer : composition.layers()) {
    const auto number = static_cast<int>(layer.function());
    needed = needed || (number != 0 && number != 1);
    functions += (functions.empty() ? "" : ";") + std::to_string(number);
  }
  if (needed) source.own.emplace_back(ifc_layer_functions, functions);
}

void add_functions(const Material&, IfcMaterial&) {}

/// Fields that the model does not say elsewhere, and that come back from a text.
template <class Source, class T>
void add_fields(const T& object, Unit unit, Source& source) {
  const auto before = mapped_back(source, object, unit);
  const auto others = source.own;
  IfcValues added;
  for (const auto& field : built_in_fields<T>()) {
    if (ifc_own_field<T>(field.name()) == nullptr) continue;
    const auto value = field.get(object);
    if (value == field.get(*before) || value.is_nothing()) continue;
    added.emplace_back(field.name(), value_text(value));
  }
  if (added.empty()) return;
  source.own.insert(source.own.begin(), added.begin(), added.end());
  const auto after = mapped_back(source, object, unit);
  const auto comes_back = [&](const auto& value) {
    const auto* field = ifc_own_field<T>(value.first);
    return field->get(object) == field->get(*after);
  };
  source.own.assign(added.begin(), std::stable_partition(added.begin(), added.end(), comes_back));
  source.own.insert(source.own.end(), others.begin(), others.end());
}

template <class Source, class T>
IfcUnmapped<Source, T> unmap(const T& object, Unit unit) {
  IfcUnmapped<Source, T> result;
  result.source = plain(object);
  add_functions(object, result.source);
  add_custom_values(object, result.source);
  add_fields(object, unit, result.source);
  result.back = mapped_back(result.source, object, unit);
  return result;
}

}  // namespace

std::string ifc_label(const std::string& name) {
  std::size_t characters = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool begins = (static_cast<unsigned char>(name[i]) & 0xc0) != 0x80;
    characters += begins ? 1 : 0;
    if (characters > longest_label) return name.substr(0, i);
  }
  return name;
}

IfcUnit ifc_length_of(Unit unit) {
  return unit == Unit::Inches ? IfcUnit{0.0254, 0, 0} : IfcUnit{1, -3, 0};
}

IfcUnmapped<IfcMaterial, Material> unmap_ifc(const Material& material, Unit unit) {
  return unmap<IfcMaterial>(material, unit);
}

IfcUnmapped<IfcLayerSet, Composition> unmap_ifc(const Composition& composition, Unit unit) {
  return unmap<IfcLayerSet>(composition, unit);
}

}  // namespace veldra::kit
