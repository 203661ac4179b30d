// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/description.hpp"

#include "support/database.hpp"
#include "support/names.hpp"

#include <cmath>
#include <cstdio>
#include <ostream>
#include <sstream>

namespace veldra_tests {

namespace {

std::string text_of(double number) { return std::isnan(number) ? "nan" : real(number); }

std::string text_of(const String& text) {
  std::string escaped = "'";
  for (const unsigned short* unit = text.c_str(); *unit != 0; ++unit) {
    if (*unit >= 0x20 && *unit < 0x7f) {
      escaped += static_cast<char>(*unit);
    } else {
      char buffer[16];
      std::snprintf(buffer, sizeof buffer, "<%04X>", static_cast<unsigned>(*unit));
      escaped += buffer;
    }
  }
  return escaped + "'";
}

std::string text_of(const Color& color) {
  return text_of(color.red) + "/" + text_of(color.green) + "/" + text_of(color.blue) + "/" +
         text_of(color.alpha);
}

std::string text_of(const Pattern& pattern) {
  return std::to_string(static_cast<int>(pattern.type)) + "/" + text_of(pattern.name) + "/" +
         text_of(pattern.scale) + "/" + text_of(pattern.angle) + "/" +
         std::to_string(pattern.cross);
}

/// Writes one object after the other, one field a line, what is referred to indented.
class Description {
 public:
  explicit Description(bool with_identity) : with_identity_(with_identity) {}

  template <class T>
  std::string of(const std::shared_ptr<T>& object) {
    reference("object", object);
    return out_.str();
  }

 private:
  template <class Value>
  void field(const char* name, const Value& value) {
    out_ << indent_ << name << " " << value << "\n";
  }

  template <class T>
  void reference(const char* name, const std::shared_ptr<T>& object) {
    out_ << indent_ << name;
    if (!object) {
      out_ << " none\n";
      return;
    }
    if (with_identity_) identity(*object);
    out_ << "\n";
    indent_ += "  ";
    describe(*object);
    indent_.resize(indent_.size() - 2);
  }

  template <class T>
  void identity(const T& object) {
    out_ << " at " << &object << ", id " << object.id() << ", library " << object.library().get()
         << (object.isDirty() ? ", dirty" : ", clean");
  }

  template <class T>
  void named(const T& object) {
    field("name", text_of(object.name()));
  }

  template <class T>
  void tags(const T& object) {
    for (const auto& tag : object.tags()) reference("tag", tag);
  }

  template <class T>
  void custom_values(const T& object) {
    for (const auto& value : object.custom_values()) {
      const std::shared_ptr<const CustomProperty>& property = value.first;
      reference("property", property);
      field("value", text_of(value.second));
    }
  }

  void describe(const Tag& tag) { named(tag); }
  void describe(const MaterialType& type) { named(type); }
  void describe(const Layer& layer) { named(layer); }

  void describe(const CustomProperty& property) {
    named(property);
    field("object_type", static_cast<int>(property.object_type()));
  }

  void describe(const StructuralAsset& asset) {
    named(asset);
    field("description", text_of(asset.description()));
    field("subclass", text_of(asset.subclass()));
    field("density", text_of(asset.density()));
    field("specific_heat", text_of(asset.specific_heat()));
    field("thermal_conductivity", text_of(asset.thermal_conductivity()));
    tags(asset);
  }

  void describe(const ThermalAsset& asset) {
    named(asset);
    field("description", text_of(asset.description()));
    field("subclass", text_of(asset.subclass()));
    field("source", text_of(asset.source()));
    field("density", text_of(asset.density()));
    field("emissivity", text_of(asset.emissivity()));
    field("specific_heat", text_of(asset.specific_heat()));
    field("thermal_conductivity", text_of(asset.thermal_conductivity()));
    tags(asset);
  }

  void describe(const Material& material) {
    named(material);
    texts(material);
    appearance(material);
    field("function", static_cast<int>(material.function()));
    for (const double thickness : material.thicknesses()) field("thickness", text_of(thickness));
    field("allow_custom_thickness", material.allow_custom_thickness());
    tags(material);
    reference("type", material.type());
    reference("cut_layer", material.cut_layer());
    reference("structural", material.structuralAsset());
    reference("thermal", material.thermalAsset());
    custom_values(material);
  }

  void texts(const Material& material) {
    field("description", text_of(material.description()));
    field("comments", text_of(material.comments()));
    field("code", material.has_code() ? text_of(material.code()) : "unset");
    field("cost", text_of(material.cost()));
    field("keynote", text_of(material.keynote()));
    field("label", text_of(material.label()));
    field("manufacturer", text_of(material.manufacturer()));
    field("mark", text_of(material.mark()));
    field("model", text_of(material.model()));
    field("url", text_of(material.url()));
    field("classification", text_of(material.classification()));
    field("appearance", text_of(material.appearance()));
  }

  void appearance(const Material& material) {
    field("shading_use_appearance", material.shading_use_appearance());
    field("shading_color", text_of(material.shading_color()));
    field("surface_pattern", text_of(material.surface_pattern()));
    field("surface_pattern_color", text_of(material.surface_pattern_color()));
    field("alignment_x", text_of(material.surface_pattern_alignment().x));
    field("alignment_y", text_of(material.surface_pattern_alignment().y));
    field("cut_pattern", text_of(material.cut_pattern()));
    field("cut_pattern_color", text_of(material.cut_pattern_color()));
  }

  void describe(const Composition& composition) {
    named(composition);
    field("description", text_of(composition.description()));
    field("comments", text_of(composition.comments()));
    field("type", static_cast<unsigned>(composition.type()));
    field("first_core_layer", composition.first_core_layer());
    field("last_core_layer", composition.last_core_layer());
    field("structural_layer", composition.structural_layer());
    variable_layer(composition);
    tags(composition);
    reference("entity_layer", composition.entity_layer());
    for (const Composition::Layer& layer : composition.layers()) {
      field("layer", static_cast<int>(layer.function()));
      field("thickness", text_of(layer.thickness()));
      reference("material", layer.material());
    }
    custom_values(composition);
  }

  void variable_layer(const Composition& composition) {
    field("variable_layer", composition.has_variable_layer()
                                ? std::to_string(composition.variable_layer())
                                : "unset");
    field("min_thickness", text_of(composition.variable_layer_min_thickness()));
    field("max_thickness", composition.has_variable_layer_max_thickness()
                               ? text_of(composition.variable_layer_max_thickness())
                               : "unset");
  }

  bool with_identity_;
  std::string indent_;
  std::ostringstream out_;
};

}  // namespace

template <class T>
std::string values_of(const std::shared_ptr<T>& object) {
  return Description(false).of<T>(object);
}

template <class T>
std::string state_of(const std::shared_ptr<T>& object) {
  return Description(true).of<T>(object);
}

#define VELDRA_TESTS_INSTANTIATE(T)                                       \
  template std::string values_of(const std::shared_ptr<T>& object);       \
  template std::string values_of(const std::shared_ptr<const T>& object); \
  template std::string state_of(const std::shared_ptr<T>& object);        \
  template std::string state_of(const std::shared_ptr<const T>& object);

VELDRA_TESTS_INSTANTIATE(Tag)
VELDRA_TESTS_INSTANTIATE(MaterialType)
VELDRA_TESTS_INSTANTIATE(Layer)
VELDRA_TESTS_INSTANTIATE(CustomProperty)
VELDRA_TESTS_INSTANTIATE(StructuralAsset)
VELDRA_TESTS_INSTANTIATE(ThermalAsset)
VELDRA_TESTS_INSTANTIATE(Material)
VELDRA_TESTS_INSTANTIATE(Composition)

#undef VELDRA_TESTS_INSTANTIATE

}  // namespace veldra_tests

namespace veldra {

void PrintTo(const String& text, std::ostream* out) { *out << veldra_tests::text_of(text); }

void PrintTo(const ObjectKey& key, std::ostream* out) {
  *out << "(" << static_cast<int>(key.type) << ", " << key.id << ")";
}

}  // namespace veldra
