// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/tables.hpp"

#include <veldra/kit/physics.hpp>

#include <cmath>

namespace veldra::kit {

namespace {

struct TextField {
  const char* key;
  const String& (Material::*get)() const noexcept;
  void (Material::*set)(const String&);
};

constexpr TextField texts[] = {
    {"description", &Material::description, &Material::description},
    {"comments", &Material::comments, &Material::comments},
    {"cost", &Material::cost, &Material::cost},
    {"keynote", &Material::keynote, &Material::keynote},
    {"label", &Material::label, &Material::label},
    {"manufacturer", &Material::manufacturer, &Material::manufacturer},
    {"mark", &Material::mark, &Material::mark},
    {"model", &Material::model, &Material::model},
    {"url", &Material::url, &Material::url},
    {"classification", &Material::classification, &Material::classification},
    {"appearance", &Material::appearance, &Material::appearance}};

void add_code(Table<Material>& table) {
  auto description = described("code", Value::Kind::Text);
  description.unique = true;
  table.add(
      description,
      [](const Material& material) {
        return material.has_code() ? Value(material.code().utf8()) : Value();
      },
      [](Material& material, const Value& value) {
        if (value.is_nothing()) return material.clear_code();
        material.code(library_text(value.as<std::string>()));
      });
}

void set_type(Material& material, const Value& value, const FieldDescription& field,
              const Library* library) {
  if (value.is_nothing()) return material.type(nullptr);
  const auto& text = value.as<std::string>();
  const auto name = library_text(text);
  if (library == nullptr) return material.type(MaterialType::create(name));
  const auto type = library->get<MaterialType>(name);
  if (!type) throw FieldError(field.name(), text, absence_of("type", text, field.names()));
  material.type(type);
}

void add_type(Table<Material>& table, const Context& context) {
  const auto description =
      referring<MaterialType>(described("type", Value::Kind::Text), "type", context);
  table.add(
      description, [](const Material& material) { return name_of_reference(material.type()); },
      [description, library = context.library](Material& material, const Value& value) {
        set_type(material, value, description, library);
      });
}

void add_function(Table<Material>& table) {
  auto description =
      described("function", Value::Kind::WholeNumber, static_cast<int>(Material::Function::None));
  description.words = function_words();
  table.add(
      description,
      [](const Material& material) { return Value(static_cast<int>(material.function())); },
      [description](Material& material, const Value& value) {
        material.function(static_cast<Material::Function>(int_of(description, value)));
      });
}

void add_thicknesses(Table<Material>& table) {
  auto description = described("thicknesses", Value::Kind::Numbers, Value::Numbers());
  description.measure = Measure::Length;
  description.aliases = {"thickness"};
  table.add(
      description,
      [](const Material& material) {
        return Value(Value::Numbers(material.thicknesses().begin(), material.thicknesses().end()));
      },
      [](Material& material, const Value& value) {
        const auto& numbers = value.as<Value::Numbers>();
        material.thicknesses(toModify) = std::set<double>(numbers.begin(), numbers.end());
      });
}

void add_yes_no(Table<Material>& table, const char* key, bool initial,
                bool (Material::*get)() const noexcept, void (Material::*set)(bool)) {
  table.add(
      described(key, Value::Kind::YesNo, initial),
      [get](const Material& material) { return Value((material.*get)()); },
      [set](Material& material, const Value& value) { (material.*set)(value.as<bool>()); });
}

/// A member that the library gives and takes as the value has it.
template <class Member>
void add_member(Table<Material>& table, const char* key, Value::Kind kind,
                const Member& (Material::*get)() const noexcept,
                void (Material::*set)(const Member&)) {
  table.add(
      described(key, kind, Member()),
      [get](const Material& material) { return Value((material.*get)()); },
      [set](Material& material, const Value& value) { (material.*set)(value.as<Member>()); });
}

void add_appearance(Table<Material>& table, const Context& context) {
  using M = Material;
  add_yes_no(table, "shading_use_appearance", false, &M::shading_use_appearance,
             &M::shading_use_appearance);
  const auto color = Value::Kind::Color;
  add_member<Color>(table, "shading_color", color, &M::shading_color, &M::shading_color);
  add_member<Color>(table, "surface_pattern_color", color, &M::surface_pattern_color,
                    &M::surface_pattern_color);
  add_member<Color>(table, "cut_pattern_color", color, &M::cut_pattern_color,
                    &M::cut_pattern_color);
  const auto pattern = Value::Kind::Pattern;
  add_member<Pattern>(table, "surface_pattern", pattern, &M::surface_pattern, &M::surface_pattern);
  add_member<Pattern>(table, "cut_pattern", pattern, &M::cut_pattern, &M::cut_pattern);
  add_member<Point2d>(table, "surface_pattern_alignment", Value::Kind::Point,
                      &M::surface_pattern_alignment, &M::surface_pattern_alignment);
  add_layer<Material>(table, "cut_layer", &M::cut_layer, &M::cut_layer, context);
}

/// The fields of one of the two assets of a material.
template <class Asset>
class AssetFields {
 public:
  using Get = const std::shared_ptr<Asset>& (Material::*)() const noexcept;

  AssetFields(Table<Material>& table, const char* group, Get get)
      : table_(table), group_(group), get_(get) {}

  template <class ValueOf>
  void add(const char* key, Value::Kind kind, Measure measure, const Value& initial,
           ValueOf value_of) const {
    auto description = described(key, kind, initial);
    description.group = group_;
    description.origin = Origin::Asset;
    description.measure = measure;
    table_.add(description, [get = get_, value_of](const Material& material) {
      const auto& asset = (material.*get)();
      return asset ? Value(value_of(*asset)) : Value();
    });
  }

  void add_text(const char* key, const String& (Asset::*get)() const noexcept) const {
    add(key, Value::Kind::Text, Measure::None, "",
        [get](const Asset& asset) { return (asset.*get)().utf8(); });
  }

  void add_number(const char* key, Measure measure, double (Asset::*get)() const noexcept) const {
    add(key, Value::Kind::Number, measure, {},
        [get](const Asset& asset) { return (asset.*get)(); });
  }

  void add_common() const {
    add("name", Value::Kind::Text, Measure::None, {},
        [](const Asset& asset) { return asset.name().utf8(); });
    add("description", Value::Kind::Text, Measure::None, "",
        [](const Asset& asset) { return asset.description().utf8(); });
    add_text("subclass", &Asset::subclass);
    add_number("density", Measure::Density, &Asset::density);
    add_number("specific_heat", Measure::SpecificHeat, &Asset::specific_heat);
    add_number("thermal_conductivity", Measure::Conductivity, &Asset::thermal_conductivity);
    add("tags", Value::Kind::Texts, Measure::None, Value::Texts(), names_of_tags<Asset>);
  }

 private:
  Table<Material>& table_;
  const char* group_;
  Get get_;
};

void add_assets(Table<Material>& table) {
  const AssetFields<StructuralAsset> structural(table, "structural_asset",
                                                &Material::structuralAsset);
  structural.add_common();
  const AssetFields<ThermalAsset> thermal(table, "thermal_asset", &Material::thermalAsset);
  thermal.add_common();
  thermal.add_text("source", &ThermalAsset::source);
  thermal.add_number("emissivity", Measure::None, &ThermalAsset::emissivity);
}

/// A number, and what holds it.
struct Held {
  std::optional<double> number;
  QuantitySource source = QuantitySource::None;
};

using AssetNumber = Held (*)(const Material&);

struct Quantity {
  const char* key;
  const char* property;
  Measure measure;
  AssetNumber of_assets;  ///< where no custom value holds
};

/// A number of an asset that the material may not have.
template <class Asset>
Held held_by(const std::shared_ptr<Asset>& asset, double (Asset::*number)() const noexcept,
             QuantitySource source) {
  if (!asset || std::isnan(((*asset).*number)())) return {};
  return {((*asset).*number)(), source};
}

/// Of the thermal asset, or else of the structural one.
template <double (ThermalAsset::*thermal)() const noexcept,
          double (StructuralAsset::*structural)() const noexcept>
Held of_either(const Material& material) {
  const Held held = held_by(material.thermalAsset(), thermal, QuantitySource::ThermalAsset);
  if (held.number) return held;
  return held_by(material.structuralAsset(), structural, QuantitySource::StructuralAsset);
}

/// The transmittance knows no other asset either.
Held of_thermal_asset(const Material& material) {
  return held_by(material.thermalAsset(), &ThermalAsset::thermal_conductivity,
                 QuantitySource::ThermalAsset);
}

Held of_no_asset(const Material&) { return {}; }

constexpr Quantity quantities[] = {
    {"conductivity", property::conductivity, Measure::Conductivity, of_thermal_asset},
    {"density", property::density, Measure::Density,
     of_either<&ThermalAsset::density, &StructuralAsset::density>},
    {"specific_heat", property::specific_heat, Measure::SpecificHeat,
     of_either<&ThermalAsset::specific_heat, &StructuralAsset::specific_heat>},
    {"resistance", property::resistance, Measure::Resistance, of_no_asset},
    {"vapour_resistance", property::vapour_factor, Measure::None, of_no_asset}};

Held held_of(const Material& material, const Quantity& quantity) {
  const auto number = number_value(material, quantity.property);
  return number ? Held{number, QuantitySource::CustomProperty} : quantity.of_assets(material);
}

Value quantity_of(const Material& material, const Quantity& quantity) {
  const Held held = held_of(material, quantity);
  return held.number ? Value(*held.number) : Value();
}

/// The property that holds a quantity: the library's for materials, or else one for all kinds, or
/// else none yet.
std::shared_ptr<const CustomProperty> property_of(const Quantity& quantity,
                                                  const Context& context) {
  std::shared_ptr<const CustomProperty> result;
  const String name(quantity.property);
  for (const auto& property : properties_for(ObjectType::Material, context)) {
    if (property->name() != name) continue;
    if (!result || property->object_type() == ObjectType::Material) result = property;
  }
  return result;
}

void add_quantities(Table<Material>& table, const Context& context) {
  for (const Quantity& quantity : quantities) {
    auto description = described(quantity.key, Value::Kind::Number);
    description.origin = Origin::Quantity;
    description.measure = quantity.measure;
    table.add(
        description,
        [&quantity](const Material& material) { return quantity_of(material, quantity); },
        [&quantity, stored = property_of(quantity, context)](Material& material,
                                                             const Value& value) {
          const String name(quantity.property);
          if (value.is_nothing()) return material.clear_custom_value(name);
          const String text(exact_number(value.as<double>()).c_str());
          const bool has_value = !material.custom_value(name).null();
          if (has_value || !stored) return material.custom_value(name, text);
          material.custom_value(stored, text);
        });
  }
}

}  // namespace

QuantitySource quantity_source(const FieldDescription& field, const Material& material) {
  if (field.origin != Origin::Quantity) return QuantitySource::None;
  for (const Quantity& quantity : quantities) {
    if (quantity.key == field.key) return held_of(material, quantity).source;
  }
  return QuantitySource::None;
}

std::string quantity_held_by(const std::string& property) {
  for (const Quantity& quantity : quantities) {
    if (quantity.property == property) return quantity.key;
  }
  return {};
}

template <>
Table<Material> table_of<Material>(const Context& context) {
  Table<Material> table;
  add_id(table);
  add_name(table);
  add_code(table);
  add_type(table, context);
  for (const TextField& text : texts) {
    add_text<Material>(table, described(text.key, Value::Kind::Text, ""), text.get, text.set);
  }
  add_tags(table, context);
  add_function(table);
  add_thicknesses(table);
  add_yes_no(table, "allow_custom_thickness", true, &Material::allow_custom_thickness,
             &Material::allow_custom_thickness);
  add_custom_values(table, context);
  add_appearance(table, context);
  add_assets(table);
  add_quantities(table, context);
  return table;
}

}  // namespace veldra::kit
