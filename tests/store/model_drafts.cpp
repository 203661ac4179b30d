// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_drafts.hpp"

#include "store/model_kinds.hpp"
#include "support/names.hpp"

namespace veldra_tests {

namespace {

/// The names of the properties for a kind of object.
std::set<std::string> properties_for(const ModelStore& store, ObjectType object_type) {
  std::set<std::string> names;
  for (const PropertyName& property : store.properties) {
    if (property.first == object_type) names.insert(property.second);
  }
  return names;
}

template <class Objects>
std::set<std::string> names_of(const Objects& objects) {
  std::set<std::string> names;
  for (const auto& object : objects) names.insert(object.first);
  return names;
}

}  // namespace

std::vector<ModelKey> keys_in(const ModelStore& store, ObjectType kind) {
  std::vector<ModelKey> keys;
  const auto add = [&](const std::set<std::string>& names) {
    for (const std::string& name : names) keys.push_back({kind, name});
  };
  switch (kind) {
    case ObjectType::Tag:
      add(store.tags);
      break;
    case ObjectType::MaterialType:
      add(store.types);
      break;
    case ObjectType::Layer:
      add(store.layers);
      break;
    case ObjectType::CustomProperty:
      for (const PropertyName& property : store.properties)
        keys.push_back({kind, property.second, property.first});
      break;
    case ObjectType::Material:
      add(names_of(store.materials));
      break;
    default:
      add(names_of(store.compositions));
  }
  return keys;
}

MaterialDraft Drafts::new_material() {
  MaterialDraft draft;
  draft.name = random_.name(names_of(store_.materials), "m");
  change(draft.values, 60);
  return draft;
}

MaterialDraft Drafts::changed_material() {
  const auto stored = random_.pick(store_.materials);
  MaterialDraft draft{stored.first, stored.first, stored.second};
  change(draft.values, 30);
  if (random_.chance(20)) draft.name = random_.name(names_of(store_.materials), "m");
  return draft;
}

CompositionDraft Drafts::new_composition() {
  CompositionDraft draft;
  draft.name = random_.name(names_of(store_.compositions), "c");
  change(draft, 60);
  return draft;
}

CompositionDraft Drafts::changed_composition() {
  const auto stored = random_.pick(store_.compositions);
  CompositionDraft draft;
  draft.stored_name = draft.name = stored.first;
  draft.values = stored.second;
  change(draft, 30);
  if (random_.chance(20)) draft.name = random_.name(names_of(store_.compositions), "c");
  return draft;
}

std::vector<std::string> Drafts::tags() {
  std::vector<std::string> tags(random_.below(4));
  for (std::string& tag : tags) tag = random_.name(store_.tags, "t");
  return tags;
}

std::optional<std::string> Drafts::layer() {
  if (random_.chance(40)) return std::nullopt;
  return random_.name(store_.layers, "l");
}

Values Drafts::custom_values(ObjectType object_type) {
  Values values;
  for (unsigned i = random_.below(3); i != 0; --i) {
    values[random_.name(properties_for(store_, object_type), "p")] =
        "v" + std::to_string(random_.below(9));
  }
  return values;
}

std::optional<std::string> Drafts::code() {
  if (random_.chance(50)) return std::nullopt;
  return "k" + std::to_string(random_.below(6));
}

std::set<double> Drafts::thicknesses() {
  std::set<double> thicknesses;
  for (unsigned i = random_.below(4); i != 0; --i) thicknesses.insert(random_.length());
  return thicknesses;
}

void Drafts::change(MaterialValues& values, unsigned percent) {
  if (random_.chance(percent)) values.description = "d" + std::to_string(random_.below(9));
  if (random_.chance(percent)) values.code = code();
  if (random_.chance(percent)) values.tags = tags();
  if (random_.chance(percent))
    values.type = random_.chance(20) ? "" : random_.name(store_.types, "y");
  if (random_.chance(percent)) values.cut_layer = layer();
  if (random_.chance(percent)) values.thicknesses = thicknesses();
  if (random_.chance(percent)) values.custom_values = custom_values(ObjectType::Material);
}

void Drafts::change(CompositionDraft& draft, unsigned percent) {
  CompositionValues& values = draft.values;
  if (random_.chance(percent)) values.description = "d" + std::to_string(random_.below(9));
  if (random_.chance(percent)) values.tags = tags();
  if (random_.chance(percent)) values.entity_layer = layer();
  if (random_.chance(percent)) values.min_thickness = random_.length();
  if (random_.chance(percent)) values.max_thickness = random_.length();
  if (random_.chance(10)) values.max_thickness = std::nullopt;
  if (random_.chance(percent)) values.custom_values = custom_values(ObjectType::Composition);
  if (values.layers.size() < 4) values.layers.resize(values.layers.size() + random_.below(3));
  for (LayerValues& layer : values.layers) {
    if (!layer.material.empty() && !random_.chance(percent)) continue;
    layer.thickness = random_.length();
    layer.material = layer_material(draft);
  }
}

std::string Drafts::layer_material(CompositionDraft& draft) {
  if (!store_.materials.empty() && random_.chance(70)) return random_.pick(store_.materials).first;
  if (!draft.new_material) draft.new_material = new_material();
  return kNewMaterial;
}

template <class T, class AnyDraft>
std::shared_ptr<T> Maker::begin(const AnyDraft& draft) {
  const auto object =
      draft.stored_name ? library_.get<T>(text(*draft.stored_name)) : T::create(text(draft.name));
  object->name(text(draft.name));
  object->description(text(draft.values.description));
  set_tags(*object, draft.values.tags);
  set_custom_values(*object, draft.values.custom_values);
  return object;
}

std::shared_ptr<Material> Maker::make(const MaterialDraft& draft) {
  const auto material = begin<Material>(draft);
  const MaterialValues& values = draft.values;
  set_code(*material, values.code);
  material->type(values.type.empty() ? nullptr : stored_or_new<MaterialType>(values.type));
  material->cut_layer(values.cut_layer ? stored_or_new<Layer>(*values.cut_layer) : nullptr);
  material->thicknesses(toModify) = values.thicknesses;
  return material;
}

std::shared_ptr<Composition> Maker::make(const CompositionDraft& draft) {
  const auto composition = begin<Composition>(draft);
  const CompositionValues& values = draft.values;
  composition->entity_layer(values.entity_layer ? stored_or_new<Layer>(*values.entity_layer)
                                                : nullptr);
  set_layers(*composition, draft);
  composition->variable_layer_min_thickness(values.min_thickness);
  composition->clear_variable_layer_max_thickness();
  if (values.max_thickness) composition->variable_layer_max_thickness(*values.max_thickness);
  return composition;
}

template <class T>
std::shared_ptr<T> Maker::stored_or_new(const std::string& name) {
  const auto stored = random_.chance(50) ? library_.get<T>(text(name)) : nullptr;
  return stored ? stored : T::create(text(name));
}

void Maker::set_code(Material& material, const std::optional<std::string>& code) {
  material.clear_code();
  if (code) material.code(text(*code));
}

template <class T>
void Maker::set_tags(T& object, const std::vector<std::string>& tags) {
  object.tags(veldra::toModify).clear();
  for (const std::string& tag : tags) object.addTag(stored_or_new<Tag>(tag));
}

template <class T>
void Maker::set_custom_values(T& object, const Values& values) {
  object.clear_custom_values();
  for (const auto& value : values) object.custom_value(text(value.first), text(value.second));
}

void Maker::set_layers(Composition& composition, const CompositionDraft& draft) {
  const auto new_material = draft.new_material ? make(*draft.new_material) : nullptr;
  std::uint64_t place = 0;
  for (const LayerValues& values : draft.values.layers) {
    const auto material = values.material == kNewMaterial
                              ? new_material
                              : library_.get<Material>(text(values.material));
    const Composition::Layer layer(material, Material::Function::None, values.thickness);
    if (place == composition.layers().size()) composition.appendLayer(layer);
    composition.layer(place++, veldra::toModify) = layer;
  }
}

}  // namespace veldra_tests
