// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_model.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include "kit/exchange/table_columns.hpp"
#include "kit/fields/parts.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>

namespace veldra::kit {

namespace {

constexpr const char* common_owner = "all";

/// The material types of a new library, and those that formats have, by their names in lower case.
std::map<std::string, std::string> make_known_types() {
  std::map<std::string, std::string> types;
  for (const auto& described : material_classes())
    types[lower_case(described.type)] = described.type;
  Library::create(":memory:", Unit::Millimetres, "")
      ->for_each<MaterialType>([&](const std::shared_ptr<MaterialType>& type) {
        const auto name = type->name().utf8();
        types[lower_case(name)] = name;
        return true;
      });
  return types;
}

/// Lengths stand in the file in its own unit.
Value in_unit(const FieldDescription& field, const Value& value, const IfcUnit& length, Unit unit) {
  if (field.measure != Measure::Length) return value;
  if (value.kind() == Value::Kind::Number) return length.length_in(value.as<double>(), unit);
  if (value.kind() != Value::Kind::Numbers) return value;
  Value::Numbers numbers;
  for (const double number : value.as<Value::Numbers>()) {
    numbers.push_back(length.length_in(number, unit));
  }
  return numbers;
}

/// What objects share is to be one object, so that fields do not make it here.
bool set_reference(Material& material, const std::string& key, const String& name,
                   SharedObjects& shared) {
  if (key == "type") {
    material.type(shared.type(name));
  } else if (key == "cut_layer") {
    material.cut_layer(shared.layer(name));
  } else {
    return false;
  }
  return true;
}

bool set_reference(Composition& composition, const std::string& key, const String& name,
                   SharedObjects& shared) {
  if (key != "entity_layer") return false;
  composition.entity_layer(shared.layer(name));
  return true;
}

/// Sets the values of the property set for those of a library. A value that is none is told, and
/// the object comes in without it.
template <class T>
class OwnValues {
 public:
  OwnValues(T& object, const IfcUnit& length, Unit unit, SharedObjects& shared)
      : object_(object), length_(length), unit_(unit), shared_(shared) {}

  void set(const IfcValues& values, const TellProblem& tell) {
    for (const auto& [name, text] : values) {
      try {
        set(name, text);
      } catch (const Error& error) {
        tell(error.what());
      }
    }
  }

 private:
  void set(const std::string& name, const std::string& text) {
    const auto* field = ifc_own_field<T>(name);
    if (field == nullptr) {
      const auto [property, owner] = ifc_own_property<T>(name);
      return object_.custom_value(shared_.property(library_text(property), owner),
                                  library_text(text));
    }
    if (set_reference(object_, name, library_text(text), shared_)) return;
    const auto value = value_in_model(*field, text);
    if (name != "tags") return field->set(object_, in_unit(*field, value, length_, unit_));
    if (value.is_nothing()) return;
    for (const auto& tag : value.template as<Value::Texts>()) {
      object_.addTag(shared_.tag(library_text(tag)));
    }
  }

  /// Positions count from 0 in the model.
  Value value_in_model(const FieldDescription& field, const std::string& text) const {
    if (!field.is_position) return value_from_text(field, text, unit_);
    const auto number = number_in(text);
    const bool is_whole = number && *number == std::floor(*number);
    if (is_whole && *number >= 0 && *number <= std::numeric_limits<int>::max()) {
      return static_cast<long long>(*number);
    }
    throw FieldError(field.name(), text, "it must be a position, counted from 0");
  }

  T& object_;
  const IfcUnit& length_;
  Unit unit_;
  SharedObjects& shared_;
};

/// Indices of layers, which a composition takes when it has its layers.
bool take_index(CatalogueComposition& result, const std::string& name, const std::string& text) {
  unsigned* index = nullptr;
  if (name == "first_core_layer") index = &result.first_core_layer;
  if (name == "last_core_layer") index = &result.last_core_layer;
  if (name == "structural_layer") index = &result.structural_layer;
  if (index == nullptr) return false;
  const auto number = number_in(text);
  const auto count = static_cast<double>(result.layers.size());
  if (!number || *number < 0 || *number >= count || *number != std::floor(*number)) {
    throw Error(fmt::format("{} is no layer for '{}'", quoted(text), name));
  }
  *index = static_cast<unsigned>(*number);
  return true;
}

/// Functions that only the host knows.
bool take_functions(CatalogueComposition& result, const std::string& name,
                    const std::string& text) {
  if (name != ifc_layer_functions) return false;
  const auto parts = split(text, list_separator);
  for (std::size_t i = 0; i < std::min(parts.size(), result.layers.size()); ++i) {
    const auto number = number_in(parts[i]);
    if (!number || std::abs(*number) > std::numeric_limits<int>::max()) {
      throw Error(fmt::format("{} is no function of a layer", quoted(parts[i])));
    }
    result.layers[i].function = static_cast<Material::Function>(static_cast<int>(*number));
  }
  return true;
}

/// The values that a composition takes at once.
IfcValues take_those_of_layers(const IfcValues& own, CatalogueComposition& result,
                               const TellProblem& tell) {
  IfcValues others;
  for (const auto& value : own) {
    try {
      const bool taken = take_index(result, value.first, value.second) ||
                         take_functions(result, value.first, value.second);
      if (!taken) others.push_back(value);
    } catch (const Error& error) {
      tell(error.what());
    }
  }
  return others;
}

bool has_type(const IfcValues& own) {
  return std::any_of(own.begin(), own.end(), [](const auto& value) {
    return value.first == "type" || value.first == ifc_category_property;
  });
}

/// A category is a type where there is such a type.
void set_category(const IfcMaterial& source, Material& material, SharedObjects& shared) {
  if (source.category.empty() || has_type(source.own)) return;
  const auto type = known_material_type(source.category);
  if (!type.empty()) return material.type(shared.type(library_text(type)));
  material.custom_value(shared.property(ifc_category_property, ObjectType::Material),
                        library_text(source.category));
}

}  // namespace

bool operator==(const IfcMaterial& left, const IfcMaterial& right) {
  const auto contents = [](const IfcMaterial& material) {
    return std::tie(material.name, material.description, material.category, material.classification,
                    material.shading_color, material.cut_pattern_color, material.properties,
                    material.own, material.not_kept);
  };
  return contents(left) == contents(right);
}

std::string known_material_type(const std::string& name) {
  static const auto types = make_known_types();
  const auto found = types.find(lower_case(name));
  return found != types.end() ? found->second : std::string();
}

template <class T>
const Field<T>* ifc_own_field(const std::string& name) {
  for (const auto& field : built_in_fields<T>()) {
    const bool is_plain = field.origin == Origin::Stored && field.kind != Value::Kind::Layers;
    if (is_plain && field.writable() && field.name() == name) return &field;
  }
  return nullptr;
}

template <class T>
std::pair<std::string, ObjectType> ifc_own_property(const std::string& name) {
  constexpr auto kind = ObjectTraits<T>::type;
  const std::string all = std::string(property_prefix) + common_owner + ":";
  const std::string own = std::string(property_prefix) + singular_of(kind) + ":";
  if (name.compare(0, all.size(), all) == 0) return {name.substr(all.size()), ObjectType{}};
  if (name.compare(0, own.size(), own) == 0) return {name.substr(own.size()), kind};
  return {name, kind};
}

template <class T>
std::string ifc_name_of_property(const CustomProperty& property) {
  constexpr auto kind = ObjectTraits<T>::type;
  const auto name = property.name().utf8();
  if (property.object_type() != kind) {
    return fmt::format("{}{}:{}", property_prefix, common_owner, name);
  }
  const bool is_taken = ifc_own_field<T>(name) != nullptr || name == ifc_layer_order ||
                        name == ifc_layer_functions || name.compare(0, 9, property_prefix) == 0;
  return is_taken ? fmt::format("{}{}:{}", property_prefix, singular_of(kind), name) : name;
}

std::shared_ptr<Material> map_ifc(const IfcMaterial& source, const IfcUnit& length, Unit unit,
                                  SharedObjects& shared, const TellProblem& tell) {
  auto material = Material::create(library_text(source.name));
  material->description(library_text(source.description));
  material->classification(library_text(source.classification));
  set_category(source, *material, shared);
  if (source.shading_color) material->shading_color(*source.shading_color);
  if (source.cut_pattern_color) material->cut_pattern_color(*source.cut_pattern_color);
  for (const auto& [name, value] : source.properties) {
    material->custom_value(shared.property(library_text(name), ObjectType::Material),
                           library_text(value));
  }
  OwnValues<Material>(*material, length, unit, shared).set(source.own, tell);
  return material;
}

CatalogueComposition map_ifc(const IfcLayerSet& source, const std::vector<std::string>& materials,
                             const IfcUnit& length, Unit unit, SharedObjects& shared,
                             const TellProblem& tell) {
  CatalogueComposition result;
  result.object = Composition::create(library_text(source.name));
  result.line = source.line;
  result.not_kept = source.not_kept;
  result.first_core_layer = 0;
  result.last_core_layer = static_cast<unsigned>(source.layers.size() - 1);
  result.structural_layer = 0;
  bool carries = false;
  for (const auto& layer : source.layers) {
    const bool is_first = layer.structural && !carries;
    if (is_first) result.structural_layer = static_cast<unsigned>(result.layers.size());
    carries = carries || layer.structural;
    const auto name =
        layer.material == IfcLayer::air ? ifc_air_name(layer) : materials[layer.material];
    result.layers.push_back(
        {name, layer.structural ? Material::Function::Structure : Material::Function::None,
         length.length_in(layer.thickness, unit)});
  }
  auto& composition = *result.object;
  composition.type(source.type);
  composition.description(library_text(source.description));
  const auto others = take_those_of_layers(source.own, result, tell);
  OwnValues<Composition>(composition, length, unit, shared).set(others, tell);
  return result;
}

std::string ifc_air_name(const IfcLayer& layer) {
  return layer.ventilated ? "Air layer, ventilated" : "Air layer";
}

template const Field<Material>* ifc_own_field(const std::string&);
template const Field<Composition>* ifc_own_field(const std::string&);
template std::string ifc_name_of_property<Material>(const CustomProperty&);
template std::string ifc_name_of_property<Composition>(const CustomProperty&);

}  // namespace veldra::kit
