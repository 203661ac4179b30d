// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/builders.hpp"

#include "support/names.hpp"

namespace veldra_tests {

namespace {

/// Texts that start with the name of the object that they are for.
class Texts {
 public:
  explicit Texts(const std::string& name) : name_(name) {}

  String operator()(const char* field) const { return String((name_ + " " + field).c_str()); }

 private:
  std::string name_;
};

Pattern full_pattern(Pattern::Type type, const String& name, double scale, double angle) {
  Pattern pattern(type, name, scale, angle);
  pattern.cross = true;
  return pattern;
}

void fill_texts(Material& material, const Texts& text) {
  material.description(text("description"));
  material.comments(text("comments"));
  material.code(text("code"));
  material.cost(text("cost"));
  material.keynote(text("keynote"));
  material.label(text("label"));
  material.manufacturer(text("manufacturer"));
  material.mark(text("mark"));
  material.model(text("model"));
  material.url(text("url"));
  material.classification(text("classification"));
  material.appearance(text("appearance"));
}

void fill_appearance(Material& material, const Texts& text) {
  material.shading_use_appearance(true);
  material.shading_color(Color(0.01, 0.02, 0.03, 0.04));
  material.surface_pattern(full_pattern(static_cast<Pattern::Type>(7), text("surface"), 1.25, 0.5));
  material.surface_pattern_color(Color(0.11, 0.12, 0.13, 0.14));
  material.surface_pattern_alignment(Point2d(-3.5, 4.75));
  material.cut_pattern(full_pattern(Pattern::Type::Lines, text("cut"), 2.25, -0.75));
  material.cut_pattern_color(Color(0.21, 0.22, 0.23, 0.24));
}

template <class T>
void fill_custom_values(T& object, const Texts& text, ObjectType kind) {
  object.custom_value(CustomProperty::create(text("property 1"), kind), text("value 1"));
  object.custom_value(CustomProperty::create(text("property 2"), kind), text("value 2"));
}

void fill_layers(Composition& composition, const std::string& name) {
  const auto core = full_material(name + " core");
  composition.appendLayer({full_material(name + " outside"), Material::Function::None, 15.0});
  composition.appendLayer({core, Material::Function::Structure, 175.0});
  composition.appendLayer({core, static_cast<Material::Function>(9), 80.0});
  composition.appendLayer({full_material(name + " inside"), Material::Function::None, 12.5});
}

void fill_indices(Composition& composition) {
  composition.last_core_layer(3);
  composition.first_core_layer(1);
  composition.structural_layer(2);
  composition.variable_layer(5);
  composition.variable_layer_min_thickness(60.5);
  composition.variable_layer_max_thickness(240.25);
}

}  // namespace

std::shared_ptr<CustomProperty> composition_property(const std::string& name) {
  return CustomProperty::create(String(name.c_str()), ObjectType::Composition);
}

std::shared_ptr<Material> full_material(const std::string& name) {
  const Texts text(name);
  const auto material = named<Material>(name);
  fill_texts(*material, text);
  fill_appearance(*material, text);
  const auto tag = Tag::create(text("tag 1"));
  material->tags(toModify) = {tag, Tag::create(text("tag 2")), tag};
  material->type(MaterialType::create(text("type")));
  material->cut_layer(Layer::create(text("layer")));
  material->function(Material::Function::Structure);
  material->thicknesses(toModify) = {12.5, 50.0};
  material->allow_custom_thickness(false);
  fill_custom_values(*material, text, ObjectType::Material);
  return material;
}

std::shared_ptr<Composition> full_composition(const std::string& name) {
  const Texts text(name);
  const auto composition = named<Composition>(name);
  composition->description(text("description"));
  composition->comments(text("comments"));
  composition->tags(toModify) = {Tag::create(text("tag 1")), Tag::create(text("tag 2"))};
  composition->type(Composition::Type::Roof);
  composition->entity_layer(Layer::create(text("layer")));
  fill_layers(*composition, name);
  fill_indices(*composition);
  fill_custom_values(*composition, text, ObjectType::Composition);
  return composition;
}

template <>
std::shared_ptr<Material> full_without_codes(const std::string& name) {
  const auto material = full_material(name);
  material->clear_code();
  return material;
}

template <>
std::shared_ptr<Composition> full_without_codes(const std::string& name) {
  const auto composition = full_composition(name);
  for (unsigned layer = 0; layer != composition->layers().size(); ++layer) {
    material_of(composition, layer)->clear_code();
  }
  return composition;
}

std::shared_ptr<Material> material_of(const std::shared_ptr<Composition>& composition,
                                      unsigned layer) {
  return std::const_pointer_cast<Material>(composition->layer(layer).material());
}

}  // namespace veldra_tests
