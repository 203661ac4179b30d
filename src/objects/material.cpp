// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/handle_members.hpp"
#include "objects/material_impl.hpp"

namespace veldra {

VELDRA_HANDLE_MEMBERS(Material)
template class Tagged<Material>;
template class CustomValued<Material>;

std::shared_ptr<Material> Material::create() { return ObjectAccess::make<Material>(); }

std::shared_ptr<Material> Material::create(const String& name) {
  return ObjectAccess::make<Material>(name);
}

std::shared_ptr<Material> Material::clone() const { return clone_of(*this); }

Material& Material::operator=(const Material& other) {
  assign_values(impl(), other.impl());
  return *this;
}

bool Material::operator==(const Material& other) const {
  return name() == other.name() && equal_values<MaterialValues>(impl(), other.impl());
}

bool Material::operator!=(const Material& other) const { return !(*this == other); }

void Material::name(const String& name) { change(impl(), impl().name, name); }

const String& Material::description() const noexcept { return impl().description; }
void Material::description(const String& description) {
  change(impl(), impl().description, description);
}

const String& Material::comments() const noexcept { return impl().comments; }
void Material::comments(const String& comments) { change(impl(), impl().comments, comments); }

const String& Material::cost() const noexcept { return impl().cost; }
void Material::cost(const String& cost) { change(impl(), impl().cost, cost); }

const String& Material::keynote() const noexcept { return impl().keynote; }
void Material::keynote(const String& keynote) { change(impl(), impl().keynote, keynote); }

const String& Material::label() const noexcept { return impl().label; }
void Material::label(const String& label) { change(impl(), impl().label, label); }

const String& Material::manufacturer() const noexcept { return impl().manufacturer; }
void Material::manufacturer(const String& manufacturer) {
  change(impl(), impl().manufacturer, manufacturer);
}

const String& Material::mark() const noexcept { return impl().mark; }
void Material::mark(const String& mark) { change(impl(), impl().mark, mark); }

const String& Material::model() const noexcept { return impl().model; }
void Material::model(const String& model) { change(impl(), impl().model, model); }

const String& Material::url() const noexcept { return impl().url; }
void Material::url(const String& url) { change(impl(), impl().url, url); }

const String& Material::classification() const noexcept { return impl().classification; }
void Material::classification(const String& classification) {
  change(impl(), impl().classification, classification);
}

const String& Material::appearance() const noexcept { return impl().appearance; }
void Material::appearance(const String& appearance) {
  change(impl(), impl().appearance, appearance);
}

const Color& Material::shading_color() const noexcept { return impl().shading_color; }
void Material::shading_color(const Color& shading_color) {
  change(impl(), impl().shading_color, shading_color);
}

const Pattern& Material::surface_pattern() const noexcept { return impl().surface_pattern; }
void Material::surface_pattern(const Pattern& surface_pattern) {
  change(impl(), impl().surface_pattern, surface_pattern);
}

const Color& Material::surface_pattern_color() const noexcept {
  return impl().surface_pattern_color;
}
void Material::surface_pattern_color(const Color& surface_pattern_color) {
  change(impl(), impl().surface_pattern_color, surface_pattern_color);
}

const Point2d& Material::surface_pattern_alignment() const noexcept {
  return impl().surface_pattern_alignment;
}
void Material::surface_pattern_alignment(const Point2d& surface_pattern_alignment) {
  change(impl(), impl().surface_pattern_alignment, surface_pattern_alignment);
}

const Pattern& Material::cut_pattern() const noexcept { return impl().cut_pattern; }
void Material::cut_pattern(const Pattern& cut_pattern) {
  change(impl(), impl().cut_pattern, cut_pattern);
}

const Color& Material::cut_pattern_color() const noexcept { return impl().cut_pattern_color; }
void Material::cut_pattern_color(const Color& cut_pattern_color) {
  change(impl(), impl().cut_pattern_color, cut_pattern_color);
}

const std::shared_ptr<const MaterialType>& Material::type() const noexcept { return impl().type; }
void Material::type(const std::shared_ptr<const MaterialType>& type) {
  change(impl(), impl().type, type);
}

const std::shared_ptr<const Layer>& Material::cut_layer() const noexcept {
  return impl().cut_layer;
}
void Material::cut_layer(const std::shared_ptr<const Layer>& cut_layer) {
  change(impl(), impl().cut_layer, cut_layer);
}

bool Material::shading_use_appearance() const noexcept { return impl().shading_use_appearance; }
void Material::shading_use_appearance(bool shading_use_appearance) {
  change(impl(), impl().shading_use_appearance, shading_use_appearance);
}

bool Material::allow_custom_thickness() const noexcept { return impl().allow_custom_thickness; }
void Material::allow_custom_thickness(bool allow_custom_thickness) {
  change(impl(), impl().allow_custom_thickness, allow_custom_thickness);
}

bool Material::has_code() const noexcept { return !impl().code.null(); }

const String& Material::code() const noexcept {
  static const String none;
  return has_code() ? *impl().code : none;
}

void Material::code(const String& code) { change_nullable(impl(), impl().code, code); }

void Material::clear_code() { clear(impl(), impl().code); }

const std::shared_ptr<StructuralAsset>& Material::structuralAsset() const noexcept {
  return impl().structural_asset;
}

void Material::structuralAsset(const std::shared_ptr<StructuralAsset>& asset) {
  change(impl(), impl().structural_asset, asset);
}

const std::shared_ptr<ThermalAsset>& Material::thermalAsset() const noexcept {
  return impl().thermal_asset;
}

void Material::thermalAsset(const std::shared_ptr<ThermalAsset>& asset) {
  change(impl(), impl().thermal_asset, asset);
}

Material::Function Material::function() const noexcept { return impl().function; }

void Material::function(Function function) { change(impl(), impl().function, function); }

const std::set<double>& Material::thicknesses() const noexcept { return impl().thicknesses; }

std::set<double>& Material::thicknesses(const ToModify&) {
  impl().dirty = true;
  return impl().thicknesses;
}

}  // namespace veldra
