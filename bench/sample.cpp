// SPDX-License-Identifier: GPL-2.0-or-later
#include "sample.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace veldra_bench {

namespace {

const char* const products[] = {
    "Clay brick",     "Oak flooring",   "Mineral wool",   "Gypsum board", "Concrete C25/30",
    "Lime plaster",   "Steel sheet",    "Cellular glass", "Wood fibre",   "Sand-lime block",
    "Bitumen sheet",  "Cement screed",  "Ceramic tile",   "Slate",        "Zinc sheet",
    "Spruce board",   "Larch cladding", "Cork",           "Hemp mat",     "Aerated concrete",
    "Natural stone",  "Terrazzo",       "Linoleum",       "Rubber mat",   "EPS board",
    "XPS board",      "PUR foam",       "Vapour barrier", "Gravel",       "Substrate",
    "Adobe",          "Rammed earth",   "Copper sheet",   "Aluminium",    "Glass pane",
    "Acrylic render", "Silicate paint", "Plywood",        "OSB",          "Chipboard"};
const char* const makers[] = {"Gr\xC3\xBCnwald Baustoffe", "Northfield", "Ost & S\xC3\xB6hne",
                              "Delta Supplies", "Atelier Terre"};
const char* const type_names[] = {"Ceramic", "Concrete", "Earth", "Generic", "Glass",
                                  "Liquid",  "Masonry",  "Metal", "Paint",   "Plastic",
                                  "Stone",   "Textile",  "Wood"};

template <class... Values>
std::string format(const char* pattern, Values... values) {
  char text[200];
  std::snprintf(text, sizeof text, pattern, values...);
  return text;
}

plain_text text(const std::string& utf8) { return plain_decode(utf8.data(), utf8.size()); }

template <std::size_t size>
const char* pick(const char* const (&texts)[size], unsigned number) {
  return texts[number % size];
}

std::string layer_name(unsigned number) { return format("A-WALL-CUT-%02u", number); }

std::string property_name(unsigned number) {
  return number <= sample_material_properties ? format("Material property %02u", number)
                                              : format("Build-up property %02u", number);
}

int property_object_type(unsigned number) {
  return static_cast<int>(number <= sample_material_properties ? veldra::ObjectType::Material
                                                               : veldra::ObjectType::Composition);
}

template <class List>
List allocated(std::size_t size) {
  List list;
  list.items = static_cast<decltype(list.items)>(std::calloc(size, sizeof *list.items));
  list.size = list.room = size;
  return list;
}

plain_tags tags_of(unsigned number, unsigned count) {
  auto tags = allocated<plain_tags>(count);
  for (unsigned i = 0; i != count; ++i) {
    const unsigned tag = (number * 7 + i * 17) % sample_tags + 1;
    tags.items[i] = {tag, text(sample_tag_name(tag))};
  }
  return tags;
}

plain_values values_of(unsigned number, unsigned count, unsigned first, unsigned properties) {
  auto values = allocated<plain_values>(count);
  for (unsigned i = 0; i != count; ++i) {
    const unsigned property = first + number % (properties - count + 1) + i;
    values.items[i] = {{property, text(property_name(property)), property_object_type(property)},
                       text(format("%u.%u W/(m\xC2\xB7K)", number % 97, i))};
  }
  return values;
}

plain_color color_of(unsigned number) {
  return {(number % 256) / 255.0, (number % 199) / 255.0, (number % 151) / 255.0, 1.0};
}

plain_pattern pattern_of(unsigned number, const char* name) {
  return {0,
          text(name),
          1.0 + number % 4,
          0.25 * (number % 7),
          static_cast<int>(number % 2),
          color_of(number * 3)};
}

plain_material* allocated_material() {
  return static_cast<plain_material*>(std::calloc(1, sizeof(plain_material)));
}

/// The material of a layer. Where a third is not used, every third one is left out.
unsigned material_of_layer(const Shape& shape, unsigned composition, unsigned layer) {
  if (!shape.a_third_unused) return (composition * 31 + layer * 977) % shape.materials + 1;
  const unsigned used = shape.materials - shape.materials / 3;
  const unsigned place = (composition * sample_composition_layers + layer) % used;
  return place / 2 * 3 + place % 2 + 1;
}

void insert_assets(plain_library* library) {
  for (unsigned i = 1; i <= 2 * sample_assets; ++i) {
    const bool structural = i <= sample_assets;
    plain_execute(library, format("INSERT INTO Asset VALUES (%u, 'veldra::%s', 'Asset %u',"
                                  " 'Values of series %u')",
                                  i, structural ? "StructuralAsset" : "ThermalAsset", i, i % 7)
                               .c_str());
    plain_execute(library,
                  format(structural ? "INSERT INTO StructuralAsset VALUES (%u, 'Concrete', %u, 900,"
                                      " NULL)"
                                    : "INSERT INTO ThermalAsset VALUES (%u, 'Solid', 'Tables', %u,"
                                      " 0.9, 1000, 2.1)",
                         i, 2000 + i)
                      .c_str());
  }
}

void add_assets(plain_material& material) {
  material.structural_id = material.id % sample_assets + 1;
  material.thermal_id = material.id % sample_assets + 1 + sample_assets;
}

plain_map clone(const plain_map& map) {
  plain_map copy = {nullptr, map.size};
  if (map.size == 0) return copy;
  copy.ids = static_cast<unsigned*>(std::malloc(map.size * sizeof *map.ids));
  std::memcpy(copy.ids, map.ids, map.size * sizeof *map.ids);
  return copy;
}

veldra::Color color(const plain_color& color) {
  return {color.red, color.green, color.blue, color.alpha};
}

veldra::Pattern pattern(const plain_pattern& values) {
  veldra::Pattern result;
  result.type = static_cast<veldra::Pattern::Type>(values.type);
  result.name = values.name;
  result.scale = values.scale;
  result.angle = values.angle;
  result.cross = values.cross != 0;
  return result;
}

}  // namespace

std::string sample_tag_name(unsigned number) { return format("tag %02u", number); }

std::string sample_material_name(unsigned number) {
  return format("%s %06u", pick(products, number), number);
}

plain_material sample_material(unsigned number) {
  plain_material material{};
  material.id = number;
  material.name = text(sample_material_name(number));
  material.description = text(format("%s, class %u, for walls and ceilings of dry rooms",
                                     pick(products, number), number % 9));
  material.type = {number % sample_types + 1, text(type_names[number % sample_types])};
  material.comments =
      text(format("Gepr\xC3\xBC"
                  "ft %u",
                  1990 + number % 35));
  material.code = text(format("M-%07u", number));
  material.cost = text(format("%u.%02u EUR/m\xC2\xB2", number % 300, number % 100));
  material.keynote = text(format("%02u.%03u", number % 60, number % 1000));
  material.label = text(format("L%u", number % 500));
  material.manufacturer = text(pick(makers, number));
  material.mark = text(format("CE %04u", number % 10000));
  material.model = text(format("Series %u", number % 40));
  material.url = text(format("https://products.example/materials/%u", number));
  material.classification = text(format("23.%02u.%02u", number % 40, number % 17));
  material.shading_use_appearance = number % 2;
  material.shading_color = color_of(number);
  material.surface_pattern = pattern_of(number, "Running bond");
  material.alignment_x = number % 5;
  material.alignment_y = number % 3;
  material.cut_pattern = pattern_of(number + 1, "Diagonal");
  const unsigned layer = number % sample_layers + 1;
  material.cut_layer = {layer, text(layer_name(layer))};
  material.appearance = text(format("appearance/%u", number % 120));
  material.function = number % 2;
  material.allow_custom_thickness = number % 3 != 0;
  material.tags = tags_of(number, 3);
  material.thicknesses = allocated<plain_numbers>(2);
  material.thicknesses.items[0] = 0.5 + number % 20 * 0.25;
  material.thicknesses.items[1] = 6.0 + number % 50 * 0.5;
  material.values = values_of(number, 3, 1, sample_material_properties);
  return material;
}

plain_material* new_sample_material(unsigned number) {
  plain_material* material = allocated_material();
  *material = sample_material(number);
  return material;
}

plain_composition sample_composition(unsigned number, const Shape& shape) {
  plain_composition composition{};
  composition.id = number;
  composition.name = text(format("Wall type %06u", number));
  composition.description = text(format("External wall, variant %u", number % 12));
  composition.type = 1 << (number % 3);
  composition.comments = text("U-value checked");
  composition.first_core_layer = 1;
  composition.last_core_layer = 4;
  composition.structural_layer = 2;
  composition.has_variable_layer = number % 2;
  composition.variable_layer = composition.has_variable_layer ? 3 : 0;
  composition.variable_layer_min_thickness = 2.0;
  composition.tags = tags_of(number, 2);
  composition.layers = allocated<plain_layers>(sample_composition_layers);
  for (unsigned i = 0; i != sample_composition_layers; ++i) {
    plain_composition_layer& layer = composition.layers.items[i];
    layer.material = allocated_material();
    layer.material->id = material_of_layer(shape, number, i);
    layer.function = i == 2;
    layer.thickness = 0.5 * (i + 1);
  }
  composition.values =
      values_of(number, 2, sample_material_properties + 1, sample_composition_properties);
  return composition;
}

References new_references(const veldra::Library& library) {
  References references;
  for (unsigned i = 1; i <= sample_tags; ++i) {
    references.tags.push_back(veldra::Tag::create(sample_tag_name(i).c_str()));
  }
  for (const char* name : type_names) {
    references.types.push_back(library.get<veldra::MaterialType>(name));
  }
  for (unsigned i = 1; i <= sample_layers; ++i) {
    references.layers.push_back(veldra::Layer::create(layer_name(i).c_str()));
  }
  for (unsigned i = 1; i <= sample_material_properties; ++i) {
    references.properties.push_back(
        veldra::CustomProperty::create(property_name(i).c_str(), veldra::ObjectType::Material));
  }
  return references;
}

References stored_references(const veldra::Library& library) {
  References references = new_references(library);
  for (auto& tag : references.tags) tag = library.get<veldra::Tag>(tag->name());
  for (auto& layer : references.layers) layer = library.get<veldra::Layer>(layer->name());
  for (auto& property : references.properties) {
    property = library.get<veldra::CustomProperty>(property->name());
  }
  return references;
}

std::shared_ptr<veldra::Material> make_material(const plain_material& values,
                                                const References& references) {
  auto material = veldra::Material::create(values.name);
  material->description(values.description);
  material->type(references.types[values.type.id - 1]);
  material->comments(values.comments);
  material->code(values.code);
  material->cost(values.cost);
  material->keynote(values.keynote);
  material->label(values.label);
  material->manufacturer(values.manufacturer);
  material->mark(values.mark);
  material->model(values.model);
  material->url(values.url);
  material->classification(values.classification);
  material->shading_use_appearance(values.shading_use_appearance != 0);
  material->shading_color(color(values.shading_color));
  material->surface_pattern(pattern(values.surface_pattern));
  material->surface_pattern_color(color(values.surface_pattern.color));
  material->surface_pattern_alignment({values.alignment_x, values.alignment_y});
  material->cut_pattern(pattern(values.cut_pattern));
  material->cut_pattern_color(color(values.cut_pattern.color));
  material->cut_layer(references.layers[values.cut_layer.id - 1]);
  material->appearance(values.appearance);
  material->function(static_cast<veldra::Material::Function>(values.function));
  material->allow_custom_thickness(values.allow_custom_thickness != 0);
  for (std::size_t i = 0; i != values.tags.size; ++i) {
    material->addTag(references.tags[values.tags.items[i].id - 1]);
  }
  for (std::size_t i = 0; i != values.thicknesses.size; ++i) {
    material->thicknesses(veldra::toModify).insert(values.thicknesses.items[i]);
  }
  for (std::size_t i = 0; i != values.values.size; ++i) {
    const plain_value& value = values.values.items[i];
    material->custom_value(references.properties[value.property.id - 1], value.value);
  }
  return material;
}

Sample::Sample(const std::string& path, const Shape& shape) : path_(path), shape_(shape) {
  veldra::Library::create(path.c_str(), veldra::Unit::Inches, "sample");
  maps_ = maps_of_new_library();
  plain_library* library = plain_open(path.c_str());
  fill(library);
  plain_close(library);
}

void Sample::fill(plain_library* library) {
  plain_begin_write(library);
  if (shape_.assets) insert_assets(library);
  for (unsigned i = 1; i <= materials(); ++i) {
    plain_material material = sample_material(i);
    if (shape_.assets) add_assets(material);
    plain_insert_material(library, &material, &maps_);
    plain_free_material(&material);
  }
  for (unsigned i = 1; i <= compositions(); ++i) {
    plain_composition composition = sample_composition(i, shape_);
    plain_insert_composition(library, &composition, &maps_);
    plain_free_composition(&composition);
  }
  plain_commit(library);
}

plain_maps Sample::maps() const {
  return {clone(maps_.tags), clone(maps_.types), clone(maps_.layers), clone(maps_.properties),
          clone(maps_.materials)};
}

plain_maps maps_of_new_library() {
  plain_maps maps{};
  for (unsigned i = 1; i <= sample_types; ++i) plain_enter(&maps.types, i, i);
  return maps;
}

}  // namespace veldra_bench
