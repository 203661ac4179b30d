// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/catalogue_reader.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>

#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/object_reader.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/exchange/source_set.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace veldra::kit {

namespace {

constexpr const char* format_name = "veldra";
constexpr int format_version = 1;

Unit unit_of(const String& name, const JsonNode& node, const ObjectReader& reader) {
  for (const auto unit : {Unit::Millimetres, Unit::Inches}) {
    if (name.utf8() == name_of(unit)) return unit;
  }
  reader.fail(node, "the unit must be \"mm\" or \"in\"");
}

/// A library takes lengths that nobody knows, and nothing else that is not known.
double known_number(const JsonNode& node, const ObjectReader& reader, const char* whole) {
  const double number = reader.number_of(node);
  if (std::isnan(number)) reader.fail(node, fmt::format("{} cannot have null in it", whole));
  return number;
}

Color color_of(const JsonNode& node, const ObjectReader& reader) {
  if (node.kind != JsonNode::Kind::Array || node.elements().size() != 4) {
    reader.fail(node, "a colour is a list of four numbers: red, green, blue, alpha");
  }
  const auto part = [&](std::size_t index) {
    return known_number(node.elements()[index], reader, "a colour");
  };
  return {part(0), part(1), part(2), part(3)};
}

Pattern pattern_of(const JsonNode& node, const std::string& file) {
  ObjectReader reader(node, "the pattern", file);
  Pattern pattern;
  pattern.type = static_cast<Pattern::Type>(reader.integer("type", 0));
  pattern.name = reader.text("name");
  pattern.scale = reader.number("scale", 1);
  pattern.angle = reader.number("angle", 0);
  if (std::isnan(pattern.scale) || std::isnan(pattern.angle)) {
    reader.fail(node, "a pattern cannot have null in it");
  }
  pattern.cross = reader.boolean("cross", false);
  reader.finish();
  return pattern;
}

Point2d point_of(const JsonNode& node, const ObjectReader& reader) {
  if (node.kind != JsonNode::Kind::Array || node.elements().size() != 2) {
    reader.fail(node, "a point is a list of two numbers");
  }
  return {known_number(node.elements()[0], reader, "a point"),
          known_number(node.elements()[1], reader, "a point")};
}

/// Reads the objects of one file.
class CatalogueReader {
 public:
  CatalogueReader(const std::string& file, Unit from, Unit to, SharedObjects& shared)
      : file_(file), from_(from), to_(to), shared_(shared) {}

  Catalogue read(const JsonNode& document) {
    ObjectReader reader(document, "the catalogue", file_);
    reader.find("format");
    if (reader.integer("version", format_version) != format_version) {
      reader.fail(document, "its version is not known here");
    }
    read_settings(reader);
    for (const auto& node : reader.list("tags")) shared_.tag(reader.text_of(node));
    for (const auto& node : reader.list("layers")) shared_.layer(reader.text_of(node));
    read_types(reader);
    for (const auto& node : reader.list("custom_properties")) read_property(node);
    for (const auto& node : reader.list("materials")) read_material(node);
    for (const auto& node : reader.list("compositions")) read_composition(node);
    reader.finish();
    return std::move(catalogue_);
  }

 private:
  double length(double value) const { return converted_length(value, from_, to_); }

  void read_settings(ObjectReader& reader) {
    const JsonNode* node = reader.find("library");
    if (node == nullptr) return;
    ObjectReader settings(*node, "the library", file_);
    settings.find("unit");
    catalogue_.locale = settings.text("locale");
    catalogue_.region = settings.text("region");
    settings.finish();
  }

  void read_types(ObjectReader& reader) {
    if (reader.find("material_types") == nullptr) return;
    catalogue_.types.emplace();
    for (const auto& node : reader.list("material_types")) {
      const auto name = reader.text_of(node);
      shared_.type(name);
      catalogue_.types->insert(name);
    }
  }

  void read_property(const JsonNode& node) {
    ObjectReader reader(node, "a custom property", file_);
    const auto name = reader.required_text("name");
    const JsonNode* owner = reader.find("object_type");
    reader.finish();
    if (owner == nullptr) reader.fail(node, "'object_type' is missing");
    shared_.property(name, owner_of(*owner, reader));
  }

  static ObjectType owner_of(const JsonNode& node, ObjectReader& reader) {
    if (node.kind != JsonNode::Kind::Text) {
      return static_cast<ObjectType>(reader.integer("object_type", 0));
    }
    for (const auto kind : {ObjectType::Material, ObjectType::Composition}) {
      if (node.text() == singular_of(kind)) return kind;
    }
    reader.fail(node, "'object_type' must be \"material\", \"composition\" or a number");
  }

  template <class Owner>
  void read_tags(ObjectReader& reader, Owner& owner) {
    for (const auto& node : reader.list("tags")) owner.addTag(shared_.tag(reader.text_of(node)));
  }

  template <class Owner>
  void read_custom_values(ObjectReader& reader, const char* key, ObjectType kind, Owner& owner) {
    const JsonNode* node = reader.find(key);
    if (node == nullptr) return;
    const ObjectReader values(*node, fmt::format("'{}'", key), file_);
    for (const auto& [name, value] : node->members()) {
      const bool number = value.kind == JsonNode::Kind::Number;
      owner.custom_value(
          shared_.property(library_text(name), kind),
          number ? library_text(exact_number(value.number())) : values.text_of(value));
    }
  }

  void read_material(const JsonNode& node) {
    auto reader = ObjectReader::of_kind(node, "material", file_);
    auto material = Material::create(reader.required_text("name"));
    CatalogueMaterial result{material, node.line, {}};
    if (const JsonNode* code = reader.find("code")) material->code(reader.text_of(*code));
    if (reader.find("type")) material->type(shared_.type(reader.required_text("type")));
    read_texts(reader, *material);
    read_tags(reader, *material);
    material->function(static_cast<Material::Function>(reader.integer("function", 0)));
    for (const auto& thickness : reader.list("thicknesses")) {
      material->thicknesses(toModify).insert(length(reader.number_of(thickness)));
    }
    material->allow_custom_thickness(reader.boolean("allow_custom_thickness", true));
    read_custom_values(reader, "custom_values", ObjectType::Material, *material);
    read_custom_values(reader, "common_custom_values", ObjectType{}, *material);
    read_appearance(reader, *material);
    for (const char* asset : {"structural_asset", "thermal_asset"}) {
      if (const JsonNode* found = reader.find(asset)) add_asset(asset, *found, result.not_kept);
    }
    reader.finish();
    catalogue_.materials.push_back(std::move(result));
  }

  /// The library never writes assets.
  static void add_asset(const std::string& asset, const JsonNode& node, FieldsNotKept& not_kept) {
    if (node.members().empty()) not_kept.emplace_back(asset, text_of_any(node));
    for (const auto& [name, value] : node.members()) {
      not_kept.emplace_back(asset + "." + name.text(), text_of_any(value));
    }
  }

  void read_texts(ObjectReader& reader, Material& material) {
    for (const auto* field : texts_) {
      const JsonNode* node = reader.find(field->key);
      if (node != nullptr) field->set(material, reader.text_of(*node).utf8());
    }
  }

  void read_appearance(ObjectReader& reader, Material& material) {
    material.shading_use_appearance(reader.boolean("shading_use_appearance", false));
    for (const auto* field : colors_) {
      if (const JsonNode* node = reader.find(field->key)) {
        field->set(material, color_of(*node, reader));
      }
    }
    for (const auto* field : patterns_) {
      if (const JsonNode* node = reader.find(field->key)) {
        field->set(material, pattern_of(*node, file_));
      }
    }
    if (const JsonNode* node = reader.find("surface_pattern_alignment")) {
      material.surface_pattern_alignment(point_of(*node, reader));
    }
    if (reader.find("cut_layer")) {
      material.cut_layer(shared_.layer(reader.required_text("cut_layer")));
    }
  }

  void read_composition(const JsonNode& node) {
    auto reader = ObjectReader::of_kind(node, "composition", file_);
    CatalogueComposition result;
    result.line = node.line;
    result.object = Composition::create(reader.required_text("name"));
    auto& composition = *result.object;
    const auto type = reader.text("type").utf8();
    if (!type.empty()) composition.type(type_of(type, node, reader));
    composition.description(reader.text("description"));
    composition.comments(reader.text("comments"));
    read_tags(reader, composition);
    if (reader.find("entity_layer")) {
      composition.entity_layer(shared_.layer(reader.required_text("entity_layer")));
    }
    read_custom_values(reader, "custom_values", ObjectType::Composition, composition);
    read_custom_values(reader, "common_custom_values", ObjectType{}, composition);
    for (const auto& layer : reader.list("layers")) result.layers.push_back(read_layer(layer));
    read_core(reader, result);
    read_variable_layer(reader, composition);
    reader.finish();
    catalogue_.compositions.push_back(std::move(result));
  }

  static Composition::Type type_of(const std::string& name, const JsonNode& node,
                                   const ObjectReader& reader) {
    try {
      return veldra::kit::composition_type(name);
    } catch (const Error& error) {
      reader.fail(node, error.what());
    }
  }

  NamedLayer read_layer(const JsonNode& node) {
    ObjectReader reader(node, "a layer", file_);
    NamedLayer layer;
    layer.material = reader.required_text("material").utf8();
    layer.thickness = length(reader.number("thickness", 0));
    layer.function = static_cast<Material::Function>(reader.integer("function", 0));
    reader.finish();
    return layer;
  }

  /// The whole build-up is the core where nothing else is said.
  static void read_core(ObjectReader& reader, CatalogueComposition& result) {
    const auto index = [&](const char* key, unsigned otherwise) {
      return reader.find(key) ? reader.required_index(key) : otherwise;
    };
    const auto count = static_cast<unsigned>(result.layers.size());
    result.first_core_layer = index("first_core_layer", 0);
    result.last_core_layer = index("last_core_layer", count > 0 ? count - 1 : 0);
    result.structural_layer = index("structural_layer", result.first_core_layer);
  }

  void read_variable_layer(ObjectReader& reader, Composition& composition) {
    if (reader.find("variable_layer")) {
      composition.variable_layer(reader.required_index("variable_layer"));
    }
    composition.variable_layer_min_thickness(
        length(reader.number("variable_layer_min_thickness", 0)));
    if (const JsonNode* node = reader.find("variable_layer_max_thickness")) {
      composition.variable_layer_max_thickness(length(reader.number_of(*node)));
    }
  }

  const std::string& file_;
  Unit from_;
  Unit to_;
  SharedObjects& shared_;
  Catalogue catalogue_;

  using MaterialFields = std::vector<const Field<Material>*>;
  const MaterialFields texts_ = plain_material_fields(Value::Kind::Text);
  const MaterialFields colors_ = plain_material_fields(Value::Kind::Color);
  const MaterialFields patterns_ = plain_material_fields(Value::Kind::Pattern);
};

void set_core(Composition& composition, const CatalogueComposition& wanted) {
  composition.last_core_layer(wanted.last_core_layer);
  composition.first_core_layer(wanted.first_core_layer);
  composition.structural_layer(wanted.structural_layer);
}

bool has_core(const Composition& composition, const CatalogueComposition& wanted) {
  return composition.first_core_layer() == wanted.first_core_layer &&
         composition.last_core_layer() == wanted.last_core_layer &&
         composition.structural_layer() == wanted.structural_layer;
}

bool is_catalogue(const JsonNode& document) {
  const JsonNode* format = document.member("format");
  return format != nullptr && format->text() == format_name;
}

bool has_catalogue_objects(const JsonNode& document) {
  return std::any_of(document.members().begin(), document.members().end(), [](const auto& member) {
    return member.name != "format" && member.name != "version";
  });
}

std::optional<Unit> catalogue_unit(const JsonNode& document, const std::string& file) {
  const JsonNode* library = document.member("library");
  if (library == nullptr) return std::nullopt;
  ObjectReader settings(*library, "the library", file);
  const JsonNode* unit = settings.find("unit");
  if (unit == nullptr) return std::nullopt;
  return unit_of(settings.text_of(*unit), *unit, settings);
}

Catalogue read_catalogue(const JsonNode& document, const std::string& file, Unit unit,
                         SharedObjects& shared) {
  const auto own_unit = catalogue_unit(document, file).value_or(Unit::Millimetres);
  return CatalogueReader(file, own_unit, unit, shared).read(document);
}

class CatalogueContent : public SourceContent {
 public:
  explicit CatalogueContent(FileContent content) : content_(std::move(content)) {}

  bool has_objects() const override { return has_catalogue_objects(*content_.document); }

  std::size_t made_together() const override {
    return number_in("materials") + number_in("compositions");
  }

  std::optional<Unit> unit() const override {
    return catalogue_unit(*content_.document, content_.file);
  }

  void add_to(SourceSet& set, SourceReport& report) const override {
    set.add(read_catalogue(*content_.document, content_.file, set.unit(), set.shared()), report);
  }

  void give_to(SourceSet& set, SourceReport& report) override {
    add_to(set, report);
    content_.document.emplace();
  }

 private:
  std::size_t number_in(const char* list) const {
    const JsonNode* objects = content_.document->member(list);
    return objects != nullptr ? objects->elements().size() : 0;
  }

  FileContent content_;
};

}  // namespace

FormatModule catalogue_module() {
  return {"veldra",
          {"json"},
          [](const FileContent& content) {
            return content.document && is_catalogue(*content.document);
          },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            return std::make_shared<CatalogueContent>(std::move(content));
          },
          write_catalogue};
}

void complete(const CatalogueComposition& composition,
              const std::vector<Composition::Layer>& layers, const std::string& file) {
  auto& object = *composition.object;
  try {
    for (const auto& layer : layers) object.appendLayer(layer);
    set_core(object, composition);
    if (has_core(object, composition)) return;
  } catch (const std::out_of_range&) {
  }
  const auto name = object.name().utf8();
  fail_at(file, composition.line,
          fmt::format("composition {}: the indices of core and structural layer contradict each "
                      "other or the number of layers",
                      quoted(name)),
          name);
}

}  // namespace veldra::kit
