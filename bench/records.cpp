// SPDX-License-Identifier: GPL-2.0-or-later
#include "records.hpp"

#include <cstdlib>
#include <map>
#include <stdexcept>

namespace veldra_bench {

namespace {

std::string utf8(const std::uint16_t* text) {
  std::string bytes(3 * plain_length(text), '\0');
  bytes.resize(plain_encode(text, &bytes[0]));
  return bytes;
}

ColorRecord record_of(const plain_color& color) {
  return {color.red, color.green, color.blue, color.alpha};
}

PatternRecord record_of(const plain_pattern& pattern) {
  return {pattern.type,  utf8(pattern.name), pattern.scale,
          pattern.angle, pattern.cross != 0, record_of(pattern.color)};
}

std::vector<unsigned> ids_of(const plain_tags& tags) {
  std::vector<unsigned> ids;
  for (std::size_t i = 0; i != tags.size; ++i) ids.push_back(tags.items[i].id);
  return ids;
}

std::vector<ValueRecord> records_of(const plain_values& values) {
  std::vector<ValueRecord> records;
  for (std::size_t i = 0; i != values.size; ++i) {
    records.push_back({values.items[i].property.id, utf8(values.items[i].value)});
  }
  return records;
}

MaterialRecord record_of(const plain_material& from) {
  if (from.structural != nullptr || from.thermal != nullptr) {
    throw std::invalid_argument("a document has no assets");
  }
  const double* thicknesses = from.thicknesses.items;
  return {from.id,
          utf8(from.name),
          utf8(from.description),
          from.type.id,
          utf8(from.comments),
          utf8(from.code),
          utf8(from.cost),
          utf8(from.keynote),
          utf8(from.label),
          utf8(from.manufacturer),
          utf8(from.mark),
          utf8(from.model),
          utf8(from.url),
          utf8(from.classification),
          from.shading_use_appearance != 0,
          record_of(from.shading_color),
          record_of(from.surface_pattern),
          from.alignment_x,
          from.alignment_y,
          record_of(from.cut_pattern),
          from.cut_layer.id,
          utf8(from.appearance),
          from.function,
          from.allow_custom_thickness != 0,
          ids_of(from.tags),
          std::vector<double>(thicknesses, thicknesses + from.thicknesses.size),
          records_of(from.values)};
}

std::vector<LayerRecord> records_of(const plain_layers& layers) {
  std::vector<LayerRecord> records;
  for (std::size_t i = 0; i != layers.size; ++i) {
    const plain_composition_layer& layer = layers.items[i];
    records.push_back({layer.material->id, layer.function, layer.thickness});
  }
  return records;
}

CompositionRecord record_of(const plain_composition& from) {
  return {from.id,
          utf8(from.name),
          utf8(from.description),
          from.type,
          from.entity_layer.id,
          utf8(from.comments),
          from.first_core_layer,
          from.last_core_layer,
          from.structural_layer,
          from.has_variable_layer != 0,
          from.variable_layer,
          from.variable_layer_min_thickness,
          from.has_variable_layer_max_thickness != 0,
          from.variable_layer_max_thickness,
          ids_of(from.tags),
          records_of(from.layers),
          records_of(from.values)};
}

using Names = std::map<unsigned, std::string>;

void enter(Names& names, const plain_named& named) {
  if (named.id != 0) names[named.id] = utf8(named.name);
}

void enter(Names& names, const plain_tags& tags) {
  for (std::size_t i = 0; i != tags.size; ++i) enter(names, tags.items[i]);
}

std::vector<NamedRecord> records_of(const Names& names) {
  std::vector<NamedRecord> records;
  for (const auto& name : names) records.push_back({name.first, name.second});
  return records;
}

/// What the objects of a document refer to.
struct Referred {
  template <class Plain>
  void enter_all(const Plain& object) {
    enter(tags, object.tags);
    for (std::size_t i = 0; i != object.values.size; ++i) {
      const plain_property& property = object.values.items[i].property;
      properties[property.id] = {property.id, utf8(property.name), property.object_type};
    }
  }

  void give_to(Document& document) const {
    document.tags = records_of(tags);
    document.types = records_of(types);
    document.layers = records_of(layers);
    for (const auto& property : properties) document.properties.push_back(property.second);
  }

  Names tags, types, layers;
  std::map<unsigned, PropertyRecord> properties;
};

struct Collector {
  Document document;
  Referred referred;

  static void material(void* self, const plain_material* material) {
    auto& collector = *static_cast<Collector*>(self);
    collector.document.materials.push_back(record_of(*material));
    collector.referred.enter_all(*material);
    enter(collector.referred.types, material->type);
    enter(collector.referred.layers, material->cut_layer);
  }

  static void composition(void* self, const plain_composition* composition) {
    auto& collector = *static_cast<Collector*>(self);
    collector.document.compositions.push_back(record_of(*composition));
    collector.referred.enter_all(*composition);
    enter(collector.referred.layers, composition->entity_layer);
  }
};

/// Makes plain structs of records, with all that these refer to.
class Plain {
 public:
  explicit Plain(const Document& document) {
    for (const auto& tag : document.tags) tags_[tag.id] = tag.name;
    for (const auto& type : document.types) types_[type.id] = type.name;
    for (const auto& layer : document.layers) layers_[layer.id] = layer.name;
    for (const auto& property : document.properties) properties_[property.id] = property;
    for (const auto& material : document.materials) materials_[material.id] = &material;
  }

  /// The caller frees them.
  plain_material material(const MaterialRecord& from) const;
  plain_composition composition(const CompositionRecord& from) const;

 private:
  static plain_text text(const std::string& utf8) { return plain_decode(utf8.data(), utf8.size()); }

  static plain_color color(const ColorRecord& color) {
    return {color.red, color.green, color.blue, color.alpha};
  }

  static plain_pattern pattern(const PatternRecord& from) {
    return {from.type, text(from.name), from.scale, from.angle, from.cross, color(from.color)};
  }

  static plain_named named(const Names& names, unsigned id) {
    if (id == 0) return {0, nullptr};
    return {id, text(names.at(id))};
  }

  template <class List>
  static List list_of(std::size_t size) {
    List list{};
    list.items = static_cast<decltype(list.items)>(std::calloc(size + 1, sizeof *list.items));
    list.size = list.room = size;
    return list;
  }

  plain_tags tags(const std::vector<unsigned>& ids) const {
    auto tags = list_of<plain_tags>(ids.size());
    for (std::size_t i = 0; i != ids.size(); ++i) tags.items[i] = named(tags_, ids[i]);
    return tags;
  }

  plain_values values(const std::vector<ValueRecord>& records) const {
    auto values = list_of<plain_values>(records.size());
    for (std::size_t i = 0; i != records.size(); ++i) {
      const PropertyRecord& property = properties_.at(records[i].property);
      values.items[i] = {{property.id, text(property.name), property.object_type},
                         text(records[i].value)};
    }
    return values;
  }

  static plain_numbers numbers(const std::vector<double>& records) {
    auto numbers = list_of<plain_numbers>(records.size());
    for (std::size_t i = 0; i != records.size(); ++i) numbers.items[i] = records[i];
    return numbers;
  }

  plain_layers layers(const std::vector<LayerRecord>& records) const {
    auto layers = list_of<plain_layers>(records.size());
    for (std::size_t i = 0; i != records.size(); ++i) {
      auto* own = static_cast<plain_material*>(std::malloc(sizeof(plain_material)));
      *own = material(*materials_.at(records[i].material));
      layers.items[i] = {own, records[i].function, records[i].thickness};
    }
    return layers;
  }

  Names tags_, types_, layers_;
  std::map<unsigned, PropertyRecord> properties_;
  std::map<unsigned, const MaterialRecord*> materials_;
};

plain_material Plain::material(const MaterialRecord& from) const {
  plain_material to{};
  to.id = from.id;
  to.name = text(from.name);
  to.description = text(from.description);
  to.type = named(types_, from.type);
  to.comments = text(from.comments);
  to.code = text(from.code);
  to.cost = text(from.cost);
  to.keynote = text(from.keynote);
  to.label = text(from.label);
  to.manufacturer = text(from.manufacturer);
  to.mark = text(from.mark);
  to.model = text(from.model);
  to.url = text(from.url);
  to.classification = text(from.classification);
  to.shading_use_appearance = from.shading_use_appearance;
  to.shading_color = color(from.shading_color);
  to.surface_pattern = pattern(from.surface_pattern);
  to.alignment_x = from.alignment_x;
  to.alignment_y = from.alignment_y;
  to.cut_pattern = pattern(from.cut_pattern);
  to.cut_layer = named(layers_, from.cut_layer);
  to.appearance = text(from.appearance);
  to.function = from.function;
  to.allow_custom_thickness = from.allow_custom_thickness;
  to.tags = tags(from.tags);
  to.thicknesses = numbers(from.thicknesses);
  to.values = values(from.values);
  return to;
}

plain_composition Plain::composition(const CompositionRecord& from) const {
  plain_composition to{};
  to.id = from.id;
  to.name = text(from.name);
  to.description = text(from.description);
  to.type = from.type;
  to.entity_layer = named(layers_, from.entity_layer);
  to.comments = text(from.comments);
  to.first_core_layer = from.first_core_layer;
  to.last_core_layer = from.last_core_layer;
  to.structural_layer = from.structural_layer;
  to.has_variable_layer = from.has_variable_layer;
  to.variable_layer = from.variable_layer;
  to.variable_layer_min_thickness = from.variable_layer_min_thickness;
  to.has_variable_layer_max_thickness = from.has_variable_layer_max_thickness;
  to.variable_layer_max_thickness = from.variable_layer_max_thickness;
  to.tags = tags(from.tags);
  to.layers = layers(from.layers);
  to.values = values(from.values);
  return to;
}

void add_one(Digest& digest, const Plain& plain, const MaterialRecord& record) {
  plain_material material = plain.material(record);
  add(digest, material);
  plain_free_material(&material);
}

}  // namespace

Document document_of(const std::string& path) {
  Collector collector;
  plain_library* library = plain_open(path.c_str());
  plain_each_material(library, Collector::material, &collector);
  plain_each_composition(library, Collector::composition, &collector);
  plain_close(library);
  collector.referred.give_to(collector.document);
  return std::move(collector.document);
}

void add_materials(Digest& digest, const Document& document) {
  const Plain plain(document);
  for (const MaterialRecord& record : document.materials) add_one(digest, plain, record);
}

void add_compositions(Digest& digest, const Document& document) {
  const Plain plain(document);
  for (const CompositionRecord& record : document.compositions) {
    plain_composition composition = plain.composition(record);
    add(digest, composition);
    plain_free_composition(&composition);
  }
}

void add_material(Digest& digest, const Document& document, const MaterialRecord& material) {
  add_one(digest, Plain(document), material);
}

}  // namespace veldra_bench
