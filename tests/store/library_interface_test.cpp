// SPDX-License-Identifier: GPL-2.0-or-later
//
// The types of the interface, looked at while this is compiled. The list of exported symbols knows
// names and parameters, but not what comes back.

#include <veldra/veldra.hpp>

#include <cstdint>
#include <type_traits>

namespace veldra_tests {
namespace {

using namespace veldra;

template <class T>
using Pointer = std::shared_ptr<T>;
template <class T>
using List = std::vector<std::shared_ptr<T>>;
using Nullable = odb::nullable<String>;
using Removed = std::map<ObjectKey, bool>;

/// Gives the overload of a member function that has exactly that type.
template <class Signature, class T>
constexpr bool has(Signature T::*) {
  return true;
}

template <class T>
constexpr bool named() {
  return has<unsigned() const>(&T::id) && has<Pointer<Library>() const>(&T::library) &&
         has<bool() const>(&T::isDirty) && has<const String&() const>(&T::name);
}

template <class T>
constexpr bool renamed() {
  return named<T>() && has<void(const String&)>(&T::name);
}

template <class T>
constexpr bool stored() {
  return has<Pointer<T>() const>(&T::clone) && has<bool(const T&) const>(&T::operator==) &&
         has<bool(const T&) const>(&T::operator!=) && has<bool()>(&T::save) &&
         has<Pointer<T>(const Pointer<Library>&)>(&T::save);
}

template <class T>
constexpr bool tagged() {
  return has<const List<Tag>&() const>(&T::tags) && has<List<Tag>&(const ToModify&)>(&T::tags) &&
         has<void(const Pointer<Tag>&)>(&T::addTag) &&
         has<void(const unsigned short*)>(&T::addTag) &&
         has<void(const Pointer<Tag>&)>(&T::removeTag) &&
         has<void(const unsigned short*)>(&T::removeTag);
}

template <class T>
constexpr bool valued() {
  using Values = std::map<CustomPropertyKey, String>;
  using Property = Pointer<const CustomProperty>;
  return has<const Values&() const>(&T::custom_values) &&
         has<Values::iterator(const ToModify&)>(&T::custom_values_begin) &&
         has<Values::iterator(const ToModify&)>(&T::custom_values_end) &&
         has<Nullable(const Property&) const>(&T::custom_value) &&
         has<Nullable(const String&) const>(&T::custom_value) &&
         has<void(const Property&, const String&)>(&T::custom_value) &&
         has<void(const String&, const String&)>(&T::custom_value) &&
         has<void(const Property&)>(&T::clear_custom_value) &&
         has<void(const String&)>(&T::clear_custom_value) && has<void()>(&T::clear_custom_values);
}

/// A getter and a setter of one name; what is small is given by value.
#define VELDRA_VALUE(Class, Value, member) \
  static_assert(has<Value() const>(&Class::member) && has<void(Value)>(&Class::member), "")
#define VELDRA_REFERENCE(Class, Value, member) \
  static_assert(                               \
      has<const Value&() const>(&Class::member) && has<void(const Value&)>(&Class::member), "")

static_assert(named<Tag>() && stored<Tag>(), "");
static_assert(renamed<Layer>() && stored<Layer>(), "");
static_assert(renamed<MaterialType>() && stored<MaterialType>(), "");
static_assert(renamed<CustomProperty>() && stored<CustomProperty>(), "");
static_assert(has<ObjectType() const>(&CustomProperty::object_type), "");
static_assert(renamed<Asset>() && tagged<Asset>(), "");
static_assert(renamed<Material>() && stored<Material>() && tagged<Material>(), "");
static_assert(valued<Material>(), "");
static_assert(renamed<Composition>() && stored<Composition>() && tagged<Composition>(), "");
static_assert(valued<Composition>(), "");

VELDRA_REFERENCE(Asset, String, description);
VELDRA_REFERENCE(StructuralAsset, String, subclass);
VELDRA_VALUE(StructuralAsset, double, density);
VELDRA_VALUE(StructuralAsset, double, specific_heat);
VELDRA_VALUE(StructuralAsset, double, thermal_conductivity);
VELDRA_REFERENCE(ThermalAsset, String, subclass);
VELDRA_REFERENCE(ThermalAsset, String, source);
VELDRA_VALUE(ThermalAsset, double, density);
VELDRA_VALUE(ThermalAsset, double, emissivity);
VELDRA_VALUE(ThermalAsset, double, specific_heat);
VELDRA_VALUE(ThermalAsset, double, thermal_conductivity);

VELDRA_REFERENCE(Material, String, description);
VELDRA_REFERENCE(Material, String, comments);
VELDRA_REFERENCE(Material, String, code);
VELDRA_REFERENCE(Material, String, cost);
VELDRA_REFERENCE(Material, String, keynote);
VELDRA_REFERENCE(Material, String, label);
VELDRA_REFERENCE(Material, String, manufacturer);
VELDRA_REFERENCE(Material, String, mark);
VELDRA_REFERENCE(Material, String, model);
VELDRA_REFERENCE(Material, String, url);
VELDRA_REFERENCE(Material, String, classification);
VELDRA_REFERENCE(Material, String, appearance);
VELDRA_REFERENCE(Material, Pointer<const MaterialType>, type);
VELDRA_REFERENCE(Material, Pointer<const Layer>, cut_layer);
VELDRA_REFERENCE(Material, Pointer<StructuralAsset>, structuralAsset);
VELDRA_REFERENCE(Material, Pointer<ThermalAsset>, thermalAsset);
VELDRA_REFERENCE(Material, Color, shading_color);
VELDRA_REFERENCE(Material, Pattern, surface_pattern);
VELDRA_REFERENCE(Material, Color, surface_pattern_color);
VELDRA_REFERENCE(Material, Point2d, surface_pattern_alignment);
VELDRA_REFERENCE(Material, Pattern, cut_pattern);
VELDRA_REFERENCE(Material, Color, cut_pattern_color);
VELDRA_VALUE(Material, bool, shading_use_appearance);
VELDRA_VALUE(Material, bool, allow_custom_thickness);
VELDRA_VALUE(Material, Material::Function, function);
static_assert(has<bool() const>(&Material::has_code), "");
static_assert(has<void()>(&Material::clear_code), "");
static_assert(has<const std::set<double>&() const>(&Material::thicknesses), "");
static_assert(has<std::set<double>&(const ToModify&)>(&Material::thicknesses), "");

VELDRA_REFERENCE(Composition, String, description);
VELDRA_REFERENCE(Composition, String, comments);
VELDRA_REFERENCE(Composition, Pointer<const Layer>, entity_layer);
VELDRA_VALUE(Composition, Composition::Type, type);
VELDRA_VALUE(Composition, unsigned, first_core_layer);
VELDRA_VALUE(Composition, unsigned, last_core_layer);
VELDRA_VALUE(Composition, unsigned, structural_layer);
VELDRA_VALUE(Composition, unsigned, variable_layer);
VELDRA_VALUE(Composition, double, variable_layer_min_thickness);
VELDRA_VALUE(Composition, double, variable_layer_max_thickness);
static_assert(has<bool() const>(&Composition::has_variable_layer), "");
static_assert(has<void()>(&Composition::clear_variable_layer), "");
static_assert(has<bool() const>(&Composition::has_variable_layer_max_thickness), "");
static_assert(has<void()>(&Composition::clear_variable_layer_max_thickness), "");
static_assert(has<const std::vector<Composition::Layer>&() const>(&Composition::layers), "");
static_assert(has<const Composition::Layer&(std::uint64_t) const>(&Composition::layer), "");
static_assert(has<Composition::Layer&(std::uint64_t, const ToModify&)>(&Composition::layer), "");
static_assert(has<Composition::Layers::iterator(const ToModify&)>(&Composition::layers_begin), "");
static_assert(has<Composition::Layers::iterator(const ToModify&)>(&Composition::layers_end), "");
static_assert(has<void(std::uint64_t, const Composition::Layer&)>(&Composition::insertLayer), "");
static_assert(has<void(const Composition::Layer&)>(&Composition::appendLayer), "");
static_assert(has<void(std::uint64_t, std::uint64_t)>(&Composition::moveLayer), "");
static_assert(has<void(std::uint64_t)>(&Composition::removeLayer), "");

using Ids = std::set<unsigned>;
using Keys = std::set<ObjectKey>;
using Kinds = std::set<ObjectType>;
using Source = Pointer<const Library>;

template <class T>
constexpr bool kept_in_a_library() {
  using Criteria = typename CriteriaOf<T>::type;
  return has<Pointer<T>(unsigned) const>(&Library::get<T>) &&
         has<Pointer<T>(const String&) const>(&Library::get<T>) &&
         has<void(List<T>&, const Ids&) const>(&Library::get<T>) &&
         has<void(List<T>&) const>(&Library::get<T>) &&
         has<void(List<T>&, const Criteria&) const>(&Library::get<T>) &&
         has<void(List<T>&, const String&) const>(&Library::search<T>) &&
         has<void(List<T>&, const String&, const Criteria&) const>(&Library::search<T>) &&
         has<unsigned long long() const>(&Library::count<T>) &&
         has<unsigned long long(const Criteria&) const>(&Library::count<T>) &&
         has<Pointer<T>(const Pointer<T>&)>(&Library::save<T>) &&
         has<Pointer<T>(const Pointer<T>&, IdMapping&)>(&Library::save<T>) &&
         has<bool(const Pointer<T>&)>(&Library::remove<T>) &&
         has<bool(unsigned)>(&Library::remove<T>) &&
         has<void(const Ids&, Removed&)>(&Library::remove<T>) &&
         has<void(const Ids&)>(&Library::remove<T>) && has<void(Removed&)>(&Library::purge<T>) &&
         has<void()>(&Library::purge<T>) &&
         has<void(const Source&, const Ids&, IdMapping&)>(&Library::copy<T>) &&
         has<void(const Source&, const Ids&)>(&Library::copy<T>);
}

static_assert(kept_in_a_library<Tag>() && kept_in_a_library<Layer>(), "");
static_assert(kept_in_a_library<MaterialType>() && kept_in_a_library<CustomProperty>(), "");
static_assert(kept_in_a_library<Material>() && kept_in_a_library<Composition>(), "");

VELDRA_REFERENCE(Library, String, locale);
VELDRA_REFERENCE(Library, String, region);
static_assert(has<const String&() const>(&Library::filename), "");
static_assert(has<const String&() const>(&Library::guid), "");
static_assert(has<Unit() const>(&Library::unit), "");
static_assert(has<unsigned long long() const>(&Library::version), "");
static_assert(has<bool() const>(&Library::readOnly), "");
static_assert(has<void(Library::Reactor*)>(&Library::setReactor), "");

static_assert(has<void(const Keys&, Removed&), Library>(&Library::remove), "");
static_assert(has<void(const Keys&), Library>(&Library::remove), "");
static_assert(has<void(const Kinds&, Removed&), Library>(&Library::purge), "");
static_assert(has<void(const Kinds&), Library>(&Library::purge), "");
static_assert(has<void(Removed&), Library>(&Library::purge), "");
static_assert(has<void(), Library>(&Library::purge), "");
static_assert(has<void(const Source&, const Keys&, IdMapping&), Library>(&Library::copy), "");
static_assert(has<void(const Source&, const Keys&), Library>(&Library::copy), "");
static_assert(has<void(const Source&, IdMapping&)>(&Library::copyAll), "");
static_assert(has<void(const Source&)>(&Library::copyAll), "");

using Created = Pointer<Library>(const String&, Unit, const String&);
using Opened = Pointer<Library>(const String&, bool);
static_assert(std::is_same<decltype(Library::create), Created>::value, "");
static_assert(std::is_same<decltype(Library::open), Opened>::value, "");
static_assert(std::is_same<decltype(LibraryManager::instance), LibraryManager&()>::value, "");
static_assert(has<Created>(&LibraryManager::create), "");
static_assert(has<Opened>(&LibraryManager::open), "");
static_assert(has<void(Library::Reactor*)>(&LibraryManager::setReactor), "");

}  // namespace
}  // namespace veldra_tests
