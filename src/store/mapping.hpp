// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_MAPPING_HPP
#define VELDRA_STORE_MAPPING_HPP

// How objects become rows: what the mapping compiler is told of each class. The order of the
// members is the order of the columns; the order of the headers is the order of the tables. Both,
// and every name, are the file format. A changed format needs a new version here, a new entry in
// changelog.xml and a place in docs/file-format.md.

// clang-format off
// These first: the records below know all classes, in another order.
#include <veldra/tag.hpp>
#include <veldra/custom_property.hpp>
#include <veldra/layer.hpp>
#include <veldra/asset.hpp>
#include <veldra/material_type.hpp>
#include <veldra/material.hpp>
#include <veldra/composition.hpp>
#include "store/meta.hpp"

#include "objects/tag_impl.hpp"
#include "objects/custom_property_impl.hpp"
#include "objects/layer_impl.hpp"
#include "objects/asset_impl.hpp"
#include "objects/material_type_impl.hpp"
#include "objects/material_impl.hpp"
#include "objects/composition_impl.hpp"
#include "store/asset_reference.hpp"
#include "store/containers.hpp"
#include "store/wide_id.hpp"
// clang-format on

#include <odb/core.hxx>

#pragma db model version(150201, 150302, closed)

namespace veldra {

// The mapping compiler takes plain names only.
using Tags = std::vector<std::shared_ptr<Tag>>;
using Thicknesses = std::set<double>;
using CustomValues = std::map<CustomPropertyKey, String>;
using CompositionLayers = std::vector<Composition::Layer>;
using TypePointer = std::shared_ptr<const MaterialType>;
using LayerPointer = std::shared_ptr<const Layer>;
using StructuralAssetPointer = AssetReference<StructuralAsset>;
using ThermalAssetPointer = AssetReference<ThermalAsset>;
using NullableString = odb::nullable<String>;
using NullableUnsigned = odb::nullable<unsigned>;
using NullableDouble = odb::nullable<double>;

}  // namespace veldra

// Values.

#pragma db value(veldra::String) type("TEXT") not_null

#pragma db value(veldra::Color) definition
#pragma db member(veldra::Color::red) not_null
#pragma db member(veldra::Color::green) not_null
#pragma db member(veldra::Color::blue) not_null
#pragma db member(veldra::Color::alpha) not_null

#pragma db value(veldra::Point2d) definition
#pragma db member(veldra::Point2d::x) not_null
#pragma db member(veldra::Point2d::y) not_null

#pragma db value(veldra::Pattern) definition
#pragma db member(veldra::Pattern::scale) not_null
#pragma db member(veldra::Pattern::angle) not_null

#pragma db value(veldra::CustomPropertyKey) definition
#pragma db member(veldra::CustomPropertyKey::property_) column("property_id")

#pragma db value(veldra::Composition::Layer) definition
#pragma db member(veldra::Composition::Layer::material_) not_null column("material_id")

// Objects.

#pragma db object(veldra::Tag) definition pointer(std::shared_ptr) transient session readonly
#pragma db member(veldra::Tag::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::Tag::name) virtual(veldra::String) get(impl().name) \
    set(impl().name = (?))unique

#pragma db object(veldra::CustomProperty) definition pointer(std::shared_ptr) transient session
#pragma db member(veldra::CustomProperty::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::CustomProperty::name) virtual(veldra::String) get(impl().name) \
    set(impl().name = (?))
#pragma db member(veldra::CustomProperty::object_type) virtual(veldra::ObjectType) \
    access(impl().object_type)
#pragma db index(veldra::CustomProperty::"object_type_name_i") unique members(object_type, name)

#pragma db object(veldra::Layer) definition pointer(std::shared_ptr) transient session
#pragma db member(veldra::Layer::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::Layer::name) virtual(veldra::String) get(impl().name) \
    set(impl().name = (?))unique

#pragma db object(veldra::Asset) definition pointer(std::shared_ptr) transient session polymorphic
#pragma db member(veldra::Asset::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::Asset::name) virtual(veldra::String) access(impl().name)
#pragma db member(veldra::Asset::description) virtual(veldra::String) access(impl().description)
#pragma db member(veldra::Asset::tags) virtual(veldra::Tags) access(impl().tags) \
    value_not_null value_column("tag_id")

#pragma db object(veldra::StructuralAsset) definition pointer(std::shared_ptr) transient session
#pragma db member(veldra::StructuralAsset::subclass) virtual(veldra::String) access(impl().subclass)
#pragma db member(veldra::StructuralAsset::density) virtual(double) access(impl().density)
#pragma db member(veldra::StructuralAsset::specific_heat) virtual(double) \
    access(impl().specific_heat)
#pragma db member(veldra::StructuralAsset::thermal_conductivity) virtual(double) \
    access(impl().thermal_conductivity)

#pragma db object(veldra::ThermalAsset) definition pointer(std::shared_ptr) transient session
#pragma db member(veldra::ThermalAsset::subclass) virtual(veldra::String) access(impl().subclass)
#pragma db member(veldra::ThermalAsset::source) virtual(veldra::String) access(impl().source)
#pragma db member(veldra::ThermalAsset::density) virtual(double) access(impl().density)
#pragma db member(veldra::ThermalAsset::emissivity) virtual(double) access(impl().emissivity)
#pragma db member(veldra::ThermalAsset::specific_heat) virtual(double) access(impl().specific_heat)
#pragma db member(veldra::ThermalAsset::thermal_conductivity) virtual(double) \
    access(impl().thermal_conductivity)

#pragma db object(veldra::MaterialType) definition pointer(std::shared_ptr) transient session
#pragma db member(veldra::MaterialType::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::MaterialType::name) virtual(veldra::String) get(impl().name) \
    set(impl().name = (?))unique

#pragma db object(veldra::Material) definition pointer(std::shared_ptr) transient session
#pragma db member(veldra::Material::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::Material::name) virtual(veldra::String) access(impl().name) unique
#pragma db member(veldra::Material::description) virtual(veldra::String) access(impl().description)
#pragma db member(veldra::Material::tags) virtual(veldra::Tags) access(impl().tags) \
    value_not_null value_column("tag_id")
#pragma db member(veldra::Material::type) virtual(veldra::TypePointer) access(impl().type) not_null
#pragma db member(veldra::Material::comments) virtual(veldra::String) access(impl().comments)
#pragma db member(veldra::Material::code) virtual(veldra::NullableString) access(impl().code) unique
#pragma db member(veldra::Material::cost) virtual(veldra::String) access(impl().cost)
#pragma db member(veldra::Material::keynote) virtual(veldra::String) access(impl().keynote)
#pragma db member(veldra::Material::label) virtual(veldra::String) access(impl().label)
#pragma db member(veldra::Material::manufacturer) virtual(veldra::String) \
    access(impl().manufacturer)
#pragma db member(veldra::Material::mark) virtual(veldra::String) access(impl().mark)
#pragma db member(veldra::Material::model) virtual(veldra::String) access(impl().model)
#pragma db member(veldra::Material::url) virtual(veldra::String) access(impl().url)
#pragma db member(veldra::Material::classification) virtual(veldra::String) \
    access(impl().classification)
#pragma db member(veldra::Material::shading_use_appearance) virtual(bool) \
    access(impl().shading_use_appearance)
#pragma db member(veldra::Material::shading_color) virtual(veldra::Color) \
    access(impl().shading_color)
#pragma db member(veldra::Material::surface_pattern) virtual(veldra::Pattern) \
    access(impl().surface_pattern)
#pragma db member(veldra::Material::surface_pattern_color) virtual(veldra::Color) \
    access(impl().surface_pattern_color)
#pragma db member(veldra::Material::surface_pattern_alignment) virtual(veldra::Point2d) \
    access(impl().surface_pattern_alignment)
#pragma db member(veldra::Material::cut_pattern) virtual(veldra::Pattern) access(impl().cut_pattern)
#pragma db member(veldra::Material::cut_pattern_color) virtual(veldra::Color) \
    access(impl().cut_pattern_color)
#pragma db member(veldra::Material::cut_layer) virtual(veldra::LayerPointer) \
    access(impl().cut_layer)
#pragma db member(veldra::Material::appearance) virtual(veldra::String) access(impl().appearance)
#pragma db member(veldra::Material::structural_asset) virtual(veldra::StructuralAssetPointer) \
    get(impl().structural_asset) set(impl().structural_asset = (?).get())column("structural_id")
#pragma db member(veldra::Material::thermal_asset) virtual(veldra::ThermalAssetPointer) \
    get(impl().thermal_asset) set(impl().thermal_asset = (?).get())column("thermal_id")
#pragma db member(veldra::Material::function) virtual(veldra::Material::Function) \
    access(impl().function)
#pragma db member(veldra::Material::thicknesses) virtual(veldra::Thicknesses) \
    access(impl().thicknesses)
#pragma db member(veldra::Material::allow_custom_thickness) virtual(bool) \
    access(impl().allow_custom_thickness)
#pragma db member(veldra::Material::custom_values) virtual(veldra::CustomValues) \
    access(impl().custom_values) key_column("")

#pragma db object(veldra::Composition) definition pointer(std::shared_ptr) transient
#pragma db member(veldra::Composition::id) virtual(unsigned long long) get(impl().id) \
    set(impl().id = veldra::narrowed_id(?)) id auto
#pragma db member(veldra::Composition::name) virtual(veldra::String) access(impl().name) unique
#pragma db member(veldra::Composition::description) virtual(veldra::String) \
    access(impl().description)
#pragma db member(veldra::Composition::tags) virtual(veldra::Tags) access(impl().tags) \
    value_not_null value_column("tag_id")
#pragma db member(veldra::Composition::type) virtual(veldra::Composition::Type) access(impl().type)
#pragma db member(veldra::Composition::entity_layer) virtual(veldra::LayerPointer) \
    access(impl().entity_layer)
#pragma db member(veldra::Composition::comments) virtual(veldra::String) access(impl().comments)
#pragma db member(veldra::Composition::layers) virtual(veldra::CompositionLayers) \
    access(impl().layers)
#pragma db member(veldra::Composition::first_core_layer) virtual(unsigned int) \
    access(impl().first_core_layer)
#pragma db member(veldra::Composition::last_core_layer) virtual(unsigned int) \
    access(impl().last_core_layer)
#pragma db member(veldra::Composition::structural_layer) virtual(unsigned int) \
    access(impl().structural_layer)
#pragma db member(veldra::Composition::variable_layer) virtual(veldra::NullableUnsigned) \
    access(impl().variable_layer)
#pragma db member(veldra::Composition::variable_layer_min_thickness) virtual(double) \
    access(impl().variable_layer_min_thickness)
#pragma db member(veldra::Composition::variable_layer_max_thickness) virtual( \
    veldra::NullableDouble) access(impl().variable_layer_max_thickness)
#pragma db member(veldra::Composition::custom_values) virtual(veldra::CustomValues) \
    access(impl().custom_values) key_column("")

#pragma db object(veldra::Meta) definition
#pragma db member(veldra::Meta::id) id

#endif
