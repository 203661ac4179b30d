// SPDX-License-Identifier: GPL-2.0-or-later
#include "json.hpp"

#include "fields.hpp"
#include "kinds.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>

namespace veldra_tool {

namespace {

Json color_to_json(const veldra::Color& color) {
  return Json::array({number_to_json(color.red), number_to_json(color.green),
                      number_to_json(color.blue), number_to_json(color.alpha)});
}

Json pattern_to_json(const veldra::Pattern& pattern) {
  Json json = Json::object();
  json["type"] = static_cast<int>(pattern.type);
  if (pattern.name) json["name"] = pattern.name.utf8();
  json["scale"] = number_to_json(pattern.scale);
  json["angle"] = number_to_json(pattern.angle);
  if (pattern.cross) json["cross"] = true;
  return json;
}

template <class Tagged>
void add_tags(Json& json, const Tagged& object) {
  for (const auto& tag : object.tags()) json["tags"].push_back(tag->name().utf8());
}

/// Values of properties for all kinds of objects stand apart, because their properties are others
/// than those of the same names for one kind.
template <class Owner>
void add_custom_values(Json& json, const Owner& object) {
  for (const auto& [property, value] : object.custom_values()) {
    const bool common = property->object_type() == veldra::ObjectType{};
    json[common ? "common_custom_values" : "custom_values"][property->name().utf8()] = value.utf8();
  }
}

template <class Asset>
Json asset_to_json(const Asset& asset) {
  Json json = Json::object();
  json["name"] = asset.name().utf8();
  if (asset.description()) json["description"] = asset.description().utf8();
  if (asset.subclass()) json["subclass"] = asset.subclass().utf8();
  json["density"] = number_to_json(asset.density());
  json["specific_heat"] = number_to_json(asset.specific_heat());
  json["thermal_conductivity"] = number_to_json(asset.thermal_conductivity());
  add_tags(json, asset);
  return json;
}

void add_assets(Json& json, const veldra::Material& material) {
  if (const auto& asset = material.structuralAsset()) {
    json["structural_asset"] = asset_to_json(*asset);
  }
  if (const auto& asset = material.thermalAsset()) {
    Json thermal = asset_to_json(*asset);
    if (asset->source()) thermal["source"] = asset->source().utf8();
    thermal["emissivity"] = number_to_json(asset->emissivity());
    json["thermal_asset"] = thermal;
  }
}

void add_appearance(Json& json, const veldra::Material& material) {
  if (material.shading_use_appearance()) json["shading_use_appearance"] = true;
  for (const auto& color : material_colors) {
    const auto& value = (material.*color.get)();
    if (value != veldra::Color()) json[color.key] = color_to_json(value);
  }
  for (const auto& pattern : material_patterns) {
    const auto& value = (material.*pattern.get)();
    if (value != veldra::Pattern()) json[pattern.key] = pattern_to_json(value);
  }
  const auto& alignment = material.surface_pattern_alignment();
  if (alignment != veldra::Point2d()) {
    json["surface_pattern_alignment"] =
        Json::array({number_to_json(alignment.x), number_to_json(alignment.y)});
  }
  if (const auto& layer = material.cut_layer()) json["cut_layer"] = layer->name().utf8();
}

Json layers_to_json(const veldra::Composition& composition) {
  Json json = Json::array();
  for (const auto& layer : composition.layers()) {
    Json entry = Json::object();
    entry["material"] = layer.material()->name().utf8();
    entry["thickness"] = number_to_json(layer.thickness());
    if (layer.function() != veldra::Material::Function::None) {
      entry["function"] = static_cast<int>(layer.function());
    }
    json.push_back(entry);
  }
  return json;
}

void add_indices(Json& json, const veldra::Composition& composition) {
  json["first_core_layer"] = composition.first_core_layer();
  json["last_core_layer"] = composition.last_core_layer();
  json["structural_layer"] = composition.structural_layer();
  if (composition.has_variable_layer()) json["variable_layer"] = composition.variable_layer();
  const double least = composition.variable_layer_min_thickness();
  if (least != 0) json["variable_layer_min_thickness"] = number_to_json(least);
  if (composition.has_variable_layer_max_thickness()) {
    json["variable_layer_max_thickness"] =
        number_to_json(composition.variable_layer_max_thickness());
  }
}

}  // namespace

Json number_to_json(double number) {
  if (std::isnan(number)) return nullptr;
  if (std::isinf(number)) return number > 0 ? "Infinity" : "-Infinity";
  return number;
}

Json to_json(const veldra::Material& material) {
  Json json = Json::object();
  json["name"] = material.name().utf8();
  if (material.has_code()) json["code"] = material.code().utf8();
  if (material.type()) json["type"] = material.type()->name().utf8();
  for (const auto& text : material_texts) {
    const auto& value = (material.*text.get)();
    if (value) json[text.key] = value.utf8();
  }
  add_tags(json, material);
  if (material.function() != veldra::Material::Function::None) {
    json["function"] = static_cast<int>(material.function());
  }
  for (const double thickness : material.thicknesses()) {
    json["thicknesses"].push_back(number_to_json(thickness));
  }
  if (!material.allow_custom_thickness()) json["allow_custom_thickness"] = false;
  add_custom_values(json, material);
  add_appearance(json, material);
  add_assets(json, material);
  return json;
}

Json to_json(const veldra::Composition& composition) {
  Json json = Json::object();
  json["name"] = composition.name().utf8();
  json["type"] = name_of(composition.type());
  if (composition.description()) json["description"] = composition.description().utf8();
  if (composition.comments()) json["comments"] = composition.comments().utf8();
  add_tags(json, composition);
  if (const auto& layer = composition.entity_layer()) json["entity_layer"] = layer->name().utf8();
  add_custom_values(json, composition);
  json["layers"] = layers_to_json(composition);
  add_indices(json, composition);
  return json;
}

Json to_json(const veldra::CustomProperty& property) {
  Json json = Json::object();
  json["name"] = property.name().utf8();
  json["object_type"] = owner_kind_to_json(property.object_type());
  return json;
}

Json settings_to_json(const veldra::Library& library) {
  Json json = Json::object();
  json["unit"] = name_of(library.unit());
  json["locale"] = library.locale().utf8();
  json["region"] = library.region().utf8();
  return json;
}

Json owner_kind_to_json(veldra::ObjectType kind) {
  if (kind == veldra::ObjectType::Material || kind == veldra::ObjectType::Composition) {
    return singular_of(kind);
  }
  return static_cast<int>(kind);
}

Json key_to_json(const veldra::ObjectKey& key, const std::string& name) {
  Json json = Json::object();
  json["kind"] = singular_of(key.type);
  json["id"] = key.id;
  json["name"] = name;
  return json;
}

std::string json_text(const Json& json) {
  const auto escape = [](wchar_t character) {
    if (character == L'\n') return std::string("\n");  // between the values
    return fmt::format("\\u{:04x}", static_cast<unsigned>(character));
  };
  return without_controls(json.dump(2), escape) + "\n";
}

void print_json(Spool& output, const Json& json) { output.write(json_text(json)); }

}  // namespace veldra_tool
