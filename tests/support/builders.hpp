// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_BUILDERS_HPP
#define VELDRA_TESTS_SUPPORT_BUILDERS_HPP

#include <veldra/veldra.hpp>

#include <memory>
#include <string>

namespace veldra_tests {

/// A new, unsaved object of the kind and the name. A custom property is one for materials.
///
///     auto layer = named<veldra::Layer>("Section");
template <class T>
std::shared_ptr<T> named(const std::string& name) {
  return T::create(veldra::String(name.c_str()));
}

template <>
inline std::shared_ptr<veldra::CustomProperty> named(const std::string& name) {
  return veldra::CustomProperty::create(veldra::String(name.c_str()), veldra::ObjectType::Material);
}

/// A new property for compositions.
std::shared_ptr<veldra::CustomProperty> composition_property(const std::string& name);

/// A new material in which every field but the assets differs from its default and from the other
/// fields. What it refers to is new as well and is named after it, "Oak": its tags are "Oak tag 1",
/// "Oak tag 2", "Oak tag 1", its type "Oak type", its layer "Oak layer", its properties
/// "Oak property 1" and "Oak property 2", its code is "Oak code", its thicknesses 12.5 and 50.
std::shared_ptr<veldra::Material> full_material(const std::string& name);

/// A new composition in which every field differs from its default and from the other fields. What
/// it refers to is new as well and is named after it, "Wall": its tags are "Wall tag 1",
/// "Wall tag 2", its layer is "Wall layer", its properties are "Wall property 1" and
/// "Wall property 2". It has four layers, of the full materials "Wall outside", "Wall core",
/// "Wall core" again (the same object) and "Wall inside".
std::shared_ptr<veldra::Composition> full_composition(const std::string& name);

/// A new object in which as much as possible differs from the defaults.
template <class T>
std::shared_ptr<T> full(const std::string& name) {
  return named<T>(name);
}

template <>
inline std::shared_ptr<veldra::Material> full(const std::string& name) {
  return full_material(name);
}

template <>
inline std::shared_ptr<veldra::Composition> full(const std::string& name) {
  return full_composition(name);
}

/// The same without the codes of materials, so that only names can be taken: about a taken code
/// nobody is asked.
template <class T>
std::shared_ptr<T> full_without_codes(const std::string& name) {
  return full<T>(name);
}

template <>
std::shared_ptr<veldra::Material> full_without_codes(const std::string& name);

template <>
std::shared_ptr<veldra::Composition> full_without_codes(const std::string& name);

/// The material of a layer, to change it.
std::shared_ptr<veldra::Material> material_of(
    const std::shared_ptr<veldra::Composition>& composition, unsigned layer);

}  // namespace veldra_tests

#endif
