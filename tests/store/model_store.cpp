// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_store.hpp"

#include "support/contents.hpp"
#include "support/database.hpp"
#include "support/names.hpp"
#include "support/units.hpp"

#include <algorithm>
#include <sstream>
#include <tuple>

namespace veldra_tests {

namespace {

using Decision = Library::Reactor::Decision;

template <class T>
std::set<std::string> names_in(const Library& library) {
  std::set<std::string> names;
  for (const auto& object : all_of<T>(library)) names.insert(object->name().utf8());
  return names;
}

template <class T>
std::vector<std::string> tags_of(const T& object) {
  std::vector<std::string> tags;
  for (const auto& tag : object.tags()) tags.push_back(tag->name().utf8());
  return tags;
}

template <class T>
Values custom_values_of(const T& object) {
  Values values;
  for (const auto& value : object.custom_values())
    values[value.first->name().utf8()] = value.second.utf8();
  return values;
}

std::optional<std::string> name_of(const std::shared_ptr<const Layer>& layer) {
  if (!layer) return std::nullopt;
  return layer->name().utf8();
}

MaterialValues values_of(const Material& material) {
  MaterialValues values;
  values.description = material.description().utf8();
  if (material.has_code()) values.code = material.code().utf8();
  values.tags = tags_of(material);
  values.type = material.type()->name().utf8();
  values.cut_layer = name_of(material.cut_layer());
  values.thicknesses = material.thicknesses();
  values.custom_values = custom_values_of(material);
  return values;
}

CompositionValues values_of(const Composition& composition) {
  CompositionValues values;
  values.description = composition.description().utf8();
  values.tags = tags_of(composition);
  values.entity_layer = name_of(composition.entity_layer());
  for (const auto& layer : composition.layers())
    values.layers.push_back({layer.material()->name().utf8(), layer.thickness()});
  values.min_thickness = composition.variable_layer_min_thickness();
  if (composition.has_variable_layer_max_thickness())
    values.max_thickness = composition.variable_layer_max_thickness();
  values.custom_values = custom_values_of(composition);
  return values;
}

class Line {
 public:
  explicit Line(const std::string& start) { out_ << start; }

  Line& operator()(const char* field, const std::string& value) {
    out_ << ", " << field << " '" << value << "'";
    return *this;
  }

  Line& operator()(const char* field, double value) {
    out_ << ", " << field << " " << real(value);
    return *this;
  }

  template <class Value>
  Line& operator()(const char* field, const std::optional<Value>& value) {
    return value ? (*this)(field, *value) : *this;
  }

  Line& operator()(const char* field, const std::vector<std::string>& values) {
    for (const std::string& value : values) (*this)(field, value);
    return *this;
  }

  Line& operator()(const Values& values) {
    for (const auto& value : values) (*this)(value.first.c_str(), value.second);
    return *this;
  }

  std::string text() const { return out_.str() + "\n"; }

 private:
  std::ostringstream out_;
};

std::string text_of(const std::string& name, const MaterialValues& values) {
  Line line("Material " + name);
  line("description", values.description)("code", values.code)("tag", values.tags);
  line("type", values.type)("cut layer", values.cut_layer);
  for (const double thickness : values.thicknesses) line("thickness", thickness);
  return line(values.custom_values).text();
}

std::string text_of(const std::string& name, const CompositionValues& values) {
  Line line("Composition " + name);
  line("description", values.description)("tag", values.tags);
  line("entity layer", values.entity_layer);
  for (const LayerValues& layer : values.layers)
    line("layer", layer.material)("thickness", layer.thickness);
  line("min", values.min_thickness)("max", values.max_thickness);
  return line(values.custom_values).text();
}

double factor(Unit from, Unit to) {
  if (from == to) return 1.0;
  return from == Unit::Inches ? kMillimetresPerInch : kInchesPerMillimetre;
}

MaterialValues converted(MaterialValues values, double factor) {
  std::set<double> thicknesses;
  for (const double thickness : values.thicknesses) thicknesses.insert(thickness * factor);
  values.thicknesses = thicknesses;
  return values;
}

CompositionValues converted(CompositionValues values, double factor) {
  for (LayerValues& layer : values.layers) layer.thickness *= factor;
  values.min_thickness *= factor;
  if (values.max_thickness) values.max_thickness = *values.max_thickness * factor;
  return values;
}

void replace(std::string& name, const std::string& from, const std::string& to) {
  if (name == from) name = to;
}

void replace(std::optional<std::string>& name, const std::string& from, const std::string& to) {
  if (name) replace(*name, from, to);
}

void replace(Values& values, const std::string& from, const std::string& to) {
  auto value = values.extract(from);
  if (value.empty()) return;
  value.key() = to;
  values.insert(std::move(value));
}

bool has(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool uses(const CompositionValues& composition, const std::string& material) {
  return std::any_of(composition.layers.begin(), composition.layers.end(),
                     [&](const LayerValues& layer) { return layer.material == material; });
}

bool refers(const MaterialValues& material, const ModelKey& key) {
  switch (key.kind) {
    case ObjectType::Tag:
      return has(material.tags, key.name);
    case ObjectType::MaterialType:
      return material.type == key.name;
    case ObjectType::Layer:
      return material.cut_layer == key.name;
    case ObjectType::CustomProperty:
      return key.object_type == ObjectType::Material && material.custom_values.count(key.name) != 0;
    default:
      return false;
  }
}

bool refers(const CompositionValues& composition, const ModelKey& key) {
  switch (key.kind) {
    case ObjectType::Tag:
      return has(composition.tags, key.name);
    case ObjectType::Layer:
      return composition.entity_layer == key.name;
    case ObjectType::CustomProperty:
      return key.object_type == ObjectType::Composition &&
             composition.custom_values.count(key.name) != 0;
    case ObjectType::Material:
      return uses(composition, key.name);
    default:
      return false;
  }
}

void rename_in(MaterialValues& material, const ModelKey& key, const std::string& name) {
  if (key.kind == ObjectType::MaterialType) replace(material.type, key.name, name);
  if (key.kind == ObjectType::Layer) replace(material.cut_layer, key.name, name);
  if (key.kind == ObjectType::CustomProperty && key.object_type == ObjectType::Material)
    replace(material.custom_values, key.name, name);
}

void rename_in(CompositionValues& composition, const ModelKey& key, const std::string& name) {
  if (key.kind == ObjectType::Layer) replace(composition.entity_layer, key.name, name);
  if (key.kind == ObjectType::CustomProperty && key.object_type == ObjectType::Composition)
    replace(composition.custom_values, key.name, name);
  if (key.kind != ObjectType::Material) return;
  for (LayerValues& layer : composition.layers) replace(layer.material, key.name, name);
}

void rename_in(ModelStore& store, const ModelKey& key, const std::string& name) {
  for (auto& material : store.materials) rename_in(material.second, key, name);
  for (auto& composition : store.compositions) rename_in(composition.second, key, name);
}

}  // namespace

const char* const kNewMaterial = "*";

bool ModelKey::operator<(const ModelKey& other) const {
  return std::tie(kind, object_type, name) < std::tie(other.kind, other.object_type, other.name);
}

ModelStore new_store(Unit unit) {
  ModelStore store{};
  store.unit = unit;
  store.types = {"Ceramic", "Concrete", "Earth",   "Generic", "Glass",   "Liquid", "Masonry",
                 "Metal",   "Paint",    "Plastic", "Stone",   "Textile", "Wood"};
  return store;
}

ModelStore stored_in(const Library& library) {
  ModelStore store{};
  store.unit = library.unit();
  store.tags = names_in<Tag>(library);
  store.types = names_in<MaterialType>(library);
  store.layers = names_in<Layer>(library);
  for (const auto& property : all_of<CustomProperty>(library))
    store.properties.insert({property->object_type(), property->name().utf8()});
  for (const auto& material : all_of<Material>(library))
    store.materials[material->name().utf8()] = values_of(*material);
  for (const auto& composition : all_of<Composition>(library))
    store.compositions[composition->name().utf8()] = values_of(*composition);
  return store;
}

std::string text_of(const ModelStore& store) {
  std::string text;
  for (const auto& name : store.tags) text += "Tag " + name + "\n";
  for (const auto& name : store.types) text += "MaterialType " + name + "\n";
  for (const auto& name : store.layers) text += "Layer " + name + "\n";
  for (const auto& property : store.properties) {
    text += "CustomProperty for " + std::to_string(static_cast<int>(property.first)) + " " +
            property.second + "\n";
  }
  for (const auto& material : store.materials) text += text_of(material.first, material.second);
  for (const auto& composition : store.compositions)
    text += text_of(composition.first, composition.second);
  return text;
}

template <class Names, class Name>
void ModelOperation::insert_into(Names& names, const Name& name, ObjectType kind) {
  if (names.insert(name).second) changed_.insert(kind);
}

void ModelOperation::save_named(const ModelKey& key) {
  switch (key.kind) {
    case ObjectType::Tag:
      return insert_into(store_.tags, key.name, key.kind);
    case ObjectType::MaterialType:
      return insert_into(store_.types, key.name, key.kind);
    case ObjectType::Layer:
      return insert_into(store_.layers, key.name, key.kind);
    default:
      return insert_into(store_.properties, PropertyName(key.object_type, key.name), key.kind);
  }
}

void ModelOperation::rename(const ModelKey& key, const std::string& name) {
  if (key.name == name) return;
  const ModelKey renamed{key.kind, name, key.object_type};
  ModelStore with_both = store_;
  ModelOperation insertion(with_both, 0);
  insertion.save_named(renamed);
  if (insertion.changed().empty()) throw ModelFailure{"veldra::ObjectNotUnique", ""};
  store_ = with_both;
  erase(key);
  rename_in(store_, key, name);
  changed_.insert(key.kind);
}

void ModelOperation::save_tags(const std::vector<std::string>& tags) {
  for (const std::string& tag : tags) insert_into(store_.tags, tag, ObjectType::Tag);
}

void ModelOperation::save_properties(const Values& values, ObjectType object_type) {
  for (const auto& value : values) {
    insert_into(store_.properties, PropertyName(object_type, value.first),
                ObjectType::CustomProperty);
  }
}

std::string ModelOperation::save(const MaterialDraft& draft) {
  MaterialDraft working = draft;
  MaterialValues& values = working.values;
  if (values.type.empty()) values.type = "Generic";
  save_tags(values.tags);
  insert_into(store_.types, values.type, ObjectType::MaterialType);
  if (values.cut_layer) insert_into(store_.layers, *values.cut_layer, ObjectType::Layer);
  save_properties(values.custom_values, ObjectType::Material);
  return write(working);
}

std::string ModelOperation::save(const CompositionDraft& draft) {
  CompositionDraft working = draft;
  CompositionValues& values = working.values;
  save_properties(values.custom_values, ObjectType::Composition);
  save_tags(values.tags);
  if (values.entity_layer) insert_into(store_.layers, *values.entity_layer, ObjectType::Layer);
  for (LayerValues& layer : values.layers) {
    if (layer.material != kNewMaterial) continue;
    const std::string name = save(*working.new_material);
    for (LayerValues& same : values.layers) replace(same.material, kNewMaterial, name);
  }
  return write(working);
}

void ModelOperation::require_free_code(const MaterialDraft& draft) const {
  if (!draft.values.code) return;
  for (const auto& other : store_.materials) {
    if (draft.stored_name == other.first) continue;
    if (other.second.code == draft.values.code)
      throw ModelFailure{"veldra::ObjectNotUnique", "Material.code"};
  }
}

/// Whether the draft can be written under its name; else acts on the decision. Throws when there
/// is none, and clears the name when the stored object is taken as it is.
template <class Objects, class AnyDraft>
bool ModelOperation::finds_place(Objects& objects, AnyDraft& draft) {
  if (objects.count(draft.name) == 0 || draft.stored_name == draft.name) return true;
  if (decision_ == Decision::Overwrite) {
    draft.stored_name = draft.name;
  } else if (decision_ == Decision::Rename) {
    draft.name += "'";
  } else if (decision_ != Decision::UseExisting) {
    throw ModelFailure{"veldra::ObjectNotUnique", ""};
  }
  return false;
}

std::string ModelOperation::write(MaterialDraft draft) {
  // SQLite looks at the newest index first, which is the one on the code.
  for (require_free_code(draft); !finds_place(store_.materials, draft); require_free_code(draft)) {
    if (decision_ == Decision::UseExisting) return draft.name;
  }
  if (draft.stored_name && *draft.stored_name != draft.name) {
    store_.materials.erase(*draft.stored_name);
    rename_in(store_, {ObjectType::Material, *draft.stored_name}, draft.name);
  }
  store_.materials[draft.name] = draft.values;
  changed_.insert(ObjectType::Material);
  return draft.name;
}

std::string ModelOperation::write(CompositionDraft draft) {
  while (!finds_place(store_.compositions, draft)) {
    if (decision_ == Decision::UseExisting) return draft.name;
  }
  if (draft.stored_name) store_.compositions.erase(*draft.stored_name);
  store_.compositions[draft.name] = draft.values;
  changed_.insert(ObjectType::Composition);
  return draft.name;
}

std::string ModelOperation::copy(const ModelStore& source, const ModelKey& key) {
  const auto known = copied_.find(key);
  if (known != copied_.end()) return known->second;
  const double scale = factor(source.unit, store_.unit);
  std::string name = key.name;
  if (key.kind == ObjectType::Material) {
    name = save(MaterialDraft{{}, name, converted(source.materials.at(name), scale)});
  } else if (key.kind == ObjectType::Composition) {
    CompositionDraft draft;
    draft.name = name;
    draft.values = converted(source.compositions.at(name), scale);
    save_properties(draft.values.custom_values, ObjectType::Composition);
    save_tags(draft.values.tags);
    if (draft.values.entity_layer)
      insert_into(store_.layers, *draft.values.entity_layer, ObjectType::Layer);
    for (LayerValues& layer : draft.values.layers)
      layer.material = copy(source, {ObjectType::Material, layer.material});
    name = write(draft);
  } else {
    save_named(key);
  }
  return copied_[key] = name;
}

bool ModelOperation::is_referenced(const ModelKey& key) const {
  for (const auto& material : store_.materials) {
    if (refers(material.second, key)) return true;
  }
  for (const auto& composition : store_.compositions) {
    if (refers(composition.second, key)) return true;
  }
  return false;
}

bool ModelOperation::erase(const ModelKey& key) {
  switch (key.kind) {
    case ObjectType::Tag:
      return store_.tags.erase(key.name) != 0;
    case ObjectType::MaterialType:
      return store_.types.erase(key.name) != 0;
    case ObjectType::Layer:
      return store_.layers.erase(key.name) != 0;
    case ObjectType::CustomProperty:
      return store_.properties.erase({key.object_type, key.name}) != 0;
    case ObjectType::Material:
      return store_.materials.erase(key.name) != 0;
    default:
      return store_.compositions.erase(key.name) != 0;
  }
}

void ModelOperation::remove(const ModelKey& key) {
  if (!is_referenced(key)) {
    if (!erase(key)) throw ModelFailure{"veldra::ObjectNotFound", "Object not found"};
    changed_.insert(key.kind);
    return;
  }
  // A reference is found when the removal is committed; the kind counts as changed by then.
  changed_.insert(key.kind);
  throw ModelFailure{"veldra::ObjectInUse", "Object is still referenced by other object"};
}

}  // namespace veldra_tests
