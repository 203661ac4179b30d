// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_MAPPING_HPP
#define VELDRA_KIT_EXCHANGE_MAPPING_HPP

#include "kit/exchange/shared_objects.hpp"
#include "kit/exchange/source_model.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/library.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

/// The material that a material of the simulation formats becomes. Throws `Error`, without a
/// place, for numbers that are none and for negative thicknesses.
std::shared_ptr<Material> map_material(const SourceMaterial& source, Unit unit,
                                       SharedObjects& shared);

/// The thickness that a layer of a material has; 0 when the material is offered in none.
double usual_thickness(const Material& material);

/// The layers of a construction: each as thick as its material is offered, and the one of the
/// greatest thermal mass per area carries.
std::vector<Composition::Layer> map_layers(const std::vector<std::shared_ptr<Material>>& materials);

/// The composition of a construction and its layers, all of which are the core.
std::shared_ptr<Composition> map_construction(const SourceConstruction& source,
                                              const std::vector<Composition::Layer>& layers,
                                              SharedObjects& shared);

/// Keeps the transmittance that a source states of a composition, in W/(m2 K), unless the layers
/// say it as well. Throws `Error` for a number that is none.
void keep_transmittance(Composition& composition, const std::string& stated, Unit unit,
                        SharedObjects& shared);

/// The name of the custom property for a field that a library has no place for.
std::string property_of_unknown(const std::string& class_name, const std::string& field);

/// Keeps the value of such a field all the same.
template <class T>
void keep_unknown(T& object, const std::string& class_name, const std::string& field,
                  const std::string& value, SharedObjects& shared) {
  const auto name = library_text(property_of_unknown(class_name, field));
  object.custom_value(shared.property(name, ObjectTraits<T>::type), library_text(value));
}

// The way back, for what is written.

/// The class of these as which a material is written: of those of its type the one that has a place
/// for most of its values; where no class has its type, what its values say.
const MaterialClass& class_for(const Material& material, const MaterialClasses& classes,
                               bool has_thickness);

/// Whether a value of a field is one that a format can hold.
using HoldsField = bool (*)(const MaterialClass& described, const std::string& key,
                            const std::string& value);

/// What is written of a material as one of a class, with a thickness in the unit of the library.
SourceMaterial unmap_material(const Material& material, const MaterialClass& described,
                              std::optional<double> thickness, Unit unit, HoldsField holds);

/// The identifier that a composition came with; empty for none.
std::string identifier_of(const Composition& composition);

/// The class as which a composition is written.
const ConstructionClass& class_for(const Composition& composition);

/// The values that stand in custom properties for fields of a class that a library has no place
/// for.
template <class T>
FieldsNotKept unknown_fields(const T& object, const std::string& class_name) {
  FieldsNotKept fields;
  const std::string beginning = property_of_unknown(class_name, "");
  for (const auto& [property, value] : object.custom_values()) {
    const auto name = property->name().utf8();
    if (name.compare(0, beginning.size(), beginning) != 0) continue;
    fields.emplace_back(name.substr(beginning.size()), value.utf8());
  }
  return fields;
}

}  // namespace veldra::kit

#endif
