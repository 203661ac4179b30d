// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/distinct_names.hpp"
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/gbxml_fields.hpp"
#include "kit/exchange/gbxml_model.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/exchange/xml_document.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace veldra::kit {

namespace {

using pugi::xml_node;

constexpr std::size_t most_fields = 1000;
constexpr std::size_t most_objects = 500'000;

/// What all references to materials may take together: each may stand for a long name.
constexpr std::size_t most_bytes_of_layers = 128 << 20;

/// What the declaration of a document calls its encoding, in lower case; empty if nothing.
std::string declared_encoding(const std::string& text) {
  const auto begin = text.find("<?xml");
  const auto end = text.find("?>");
  if (begin > text.find_first_not_of(" \t\r\n") || end == std::string::npos) return {};
  const auto declaration = text.substr(begin, end - begin);
  const auto name = declaration.find("encoding");
  if (name == std::string::npos) return {};
  const auto open = declaration.find_first_of("\"'", name);
  if (open == std::string::npos) return {};
  const auto close = declaration.find(declaration[open], open + 1);
  if (close == std::string::npos) return {};
  return lower_case(declaration.substr(open + 1, close - open - 1));
}

bool is_ascii(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool is_one_of(const std::string& text, const std::vector<const char*>& words) {
  return std::find(words.begin(), words.end(), text) != words.end();
}

/// The bytes must be what the document says that they are. Programs write UTF-8 and call it UTF-16,
/// of which nobody can take one for the other.
void require_encoding(const FileContent& content) {
  const auto declared = declared_encoding(content.text);
  const bool unicode = is_one_of(declared, {"", "utf-8", "utf8", "utf-16", "utf-16le", "utf-16be"});
  const bool latin1 = is_one_of(declared, {"iso-8859-1", "iso8859-1", "latin1", "latin-1"});
  if (content.encoding == Encoding::Latin1 && unicode) {
    fail_at(content.file, 1,
            "the document says that it is UTF-8, or nothing, and its bytes are no UTF-8");
  }
  if (unicode || latin1 || is_ascii(content.text)) return;
  fail_at(content.file, 1,
          fmt::format("the document is in the encoding {}; UTF-8, UTF-16 and ISO-8859-1 are read",
                      quoted(declared)));
}

/// Reads the materials and constructions of one document.
class GbxmlReader {
 public:
  GbxmlReader(const XmlDocument& document, const std::string& file)
      : document_(document), file_(file) {
    model_.ignores_case = false;
    model_.tells_missing = true;
  }

  SourceModel read() {
    const auto root = document_.root();
    require_few_objects(root);
    if (lower_case(local_name(root.name())) != "gbxml") {
      fail_at(file_, document_.line_of(root), "the root of the document is not <gbXML>");
    }
    length_unit_ = root.attribute("lengthUnit").value();
    for_each(root, "Material", [this](const xml_node& node) { read_material(node); });
    for_each(root, "Layer", [this](const xml_node& node) { read_layer(node); });
    for_each(root, "Construction", [this](const xml_node& node) { read_construction(node); });
    count_others(root);
    if (inch_pound_) model_.note = "with units of inch and pound converted";
    return std::move(model_);
  }

 private:
  struct LayerParts {
    std::vector<std::string> materials;  ///< their identifiers
    FieldsNotKept not_kept;
  };

  /// What is known of an object while its elements are read.
  struct Object {
    const char* kind;
    unsigned line;
    std::string name;
    std::string fault;
  };

  Object object_of(const char* kind, const xml_node& node) const {
    return {kind, document_.line_of(node), name_of(node), ""};
  }

  static bool is_object(const std::string& name) {
    return is_one_of(name, {"Material", "Layer", "Construction"});
  }

  void require_few_objects(const xml_node& root) const {
    std::size_t count = 0;
    for (const auto& node : root.children()) count += is_object(local_name(node.name())) ? 1 : 0;
    if (count <= most_objects) return;
    fail_at(file_, 0,
            fmt::format("this has more than {} materials, layers and constructions", most_objects));
  }

  template <class Work>
  static void for_each(const xml_node& parent, const std::string& name, Work work) {
    for (const auto& node : parent.children()) {
      if (node.type() == pugi::node_element && local_name(node.name()) == name) work(node);
    }
  }

  void count_others(const xml_node& root) {
    for (const auto& node : root.children()) {
      if (node.type() != pugi::node_element) continue;
      const auto name = local_name(node.name());
      if (!is_object(name)) ++model_.skipped[name];
    }
  }

  std::string attribute_of(const xml_node& node, const char* name) const {
    return document_.text_of(node, node.attribute(name));
  }

  std::string name_of(const xml_node& node) const {
    std::string name;
    for_each(node, "Name", [&](const xml_node& child) {
      if (name.empty()) name = document_.text_of(child);
    });
    return name.empty() ? attribute_of(node, "id") : name;
  }

  void read_material(const xml_node& node) {
    SourceMaterial material;
    auto object = object_of("Material", node);
    Children children(*this, node);
    children.add_attributes(material.not_kept);
    for (const auto& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const auto name = local_name(child.name());
      const char* key = key_of_material(name);
      if (name == "Name" && children.first(name)) continue;
      if (is_description(child, name) && children.first(name)) {
        material.description = document_.text_of(child);
      } else if (key == nullptr) {
        children.add(child, name, material.not_kept);
      } else if (!children.first(name)) {
        object.fault = fmt::format("{} is there twice", quoted(name));
      } else {
        const auto value = number_of(child, name, object);
        if (!value.empty()) material.values[key] = value;
      }
    }
    material.described = &gbxml_class_of(material);
    material.name = object.name;
    material.line = object.line;
    material.fault = object.fault;
    tell_what_is_missing(material, object);
    enter(attribute_of(node, "id"), std::move(material));
  }

  /// Whether an element is a text that describes its object, and nothing else.
  static bool is_description(const xml_node& node, const std::string& name) {
    const auto children = node.children();
    return name == "Description" && !node.first_attribute() &&
           std::none_of(children.begin(), children.end(),
                        [](const xml_node& child) { return child.type() == pugi::node_element; });
  }

  /// The key of the field for which an element stands; null for none.
  static const char* key_of_material(const std::string& element) {
    for (const auto& described : gbxml_classes()) {
      for (const auto& field : described.fields) {
        if (gbxml_element_of(field) == element) return field.key;
      }
    }
    return nullptr;
  }

  /// Takes what stands in an element, and counts elements of each name.
  class Children {
   public:
    Children(const GbxmlReader& reader, const xml_node& parent)
        : reader_(reader), parent_(parent) {}

    bool first(const std::string& name) { return ++counts_[name] == 1; }

    void add(const xml_node& node, const std::string& name, FieldsNotKept& fields) {
      const GbxmlField field{name, ++counts_[name], ""};
      add(node, key_of(field), 0, fields);
    }

    void add(const xml_node& node, const std::string& key, int depth, FieldsNotKept& fields) {
      for (const auto& attribute : node.attributes()) {
        take(key + "@" + attribute.name(), reader_.document_.text_of(node, attribute), fields);
      }
      take(key, reader_.document_.text_of(node), fields);
      constexpr int deepest = 8;
      for (const auto& child : node.children()) {
        if (child.type() != pugi::node_element) continue;
        if (depth == deepest) return;
        add(child, key + "/" + local_name(child.name()), depth + 1, fields);
      }
    }

    /// The attributes of the object itself, but for what identifies it and declarations.
    void add_attributes(FieldsNotKept& fields) const {
      for (const auto& attribute : parent_.attributes()) {
        const std::string name = attribute.name();
        const bool is_declaration = name == "xmlns" || name.compare(0, 6, "xmlns:") == 0;
        if (is_declaration || is_one_of(name, {"id", "lang", "xml:lang"})) continue;
        take("@" + name, reader_.document_.text_of(parent_, attribute), fields);
      }
    }

   private:
    void take(const std::string& key, const std::string& value, FieldsNotKept& fields) const {
      if (value.empty()) return;
      if (fields.size() == most_fields) {
        fail_at(reader_.file_, reader_.document_.line_of(parent_),
                fmt::format("the <{}> has more than {} fields", parent_.name(), most_fields));
      }
      fields.emplace_back(key, value);
    }

    const GbxmlReader& reader_;
    const xml_node& parent_;
    std::map<std::string, unsigned> counts_;
  };

  /// The number of an element in units of SI. What is no number stays as it is, for the mapping to
  /// tell.
  std::string number_of(const xml_node& node, const std::string& element, Object& object) {
    const auto text = document_.text_of(node);
    if (text.empty()) return {};
    const auto name = unit_name_of(node, element, object);
    const auto* unit = gbxml_unit(element, name);
    if (unit == nullptr) {
      object.fault = fmt::format("{} is no unit of {}", quoted(name), quoted(element));
      return text;
    }
    if (!unit->is_si) inch_pound_ = true;
    const auto number = number_in(text);
    const bool converts = number && unit->times != unit->over;
    return converts ? exact_number(*number * unit->times / unit->over) : text;
  }

  /// The unit of a length may stand at the root.
  std::string unit_name_of(const xml_node& node, const std::string& element, const Object& object) {
    auto name = attribute_of(node, "unit");
    if (name.empty() && element == "Thickness") name = length_unit_;
    if (!name.empty()) return name;
    const auto* usual = gbxml_si_unit(element).name;
    tell_doubt(object, fmt::format("{} has no unit and is taken for {}", quoted(element), usual));
    return usual;
  }

  void tell_what_is_missing(const SourceMaterial& material, const Object& object) {
    const auto& required = material.described->required;
    for (const auto& key : required) {
      if (material.values.count(key) > 0) continue;
      const bool solid = required.count("Conductivity") > 0;
      tell_doubt(object, solid ? "neither the conductivity nor the R-value is there"
                               : "neither the thickness nor the R-value is there");
    }
  }

  /// An object with a fault has that told.
  void tell_doubt(const Object& object, const std::string& sentence) {
    if (!object.fault.empty()) return;
    model_.problems.push_back({file_, object.line, object.name,
                               fmt::format("{} {}: {}", object.kind, quoted(object.name), sentence),
                               true});
  }

  /// Those without an identifier that differ are no two materials, as nothing else tells them
  /// apart.
  void enter(const std::string& id, SourceMaterial material) {
    const auto place = model_.materials.size();
    const auto name = material_names_.name_for(material.name, id, place, [&](std::size_t other) {
      return is_same(model_.materials[other], material);
    });
    if (!id.empty()) {
      material.name = name.text;
      const bool is_free = materials_.emplace(id, name.text).second;
      if (name.is_new && !is_free) {
        material.fault = fmt::format("another material has the id {}", quoted(id));
      }
    }
    model_.materials.push_back(std::move(material));
  }

  static bool is_same(const SourceMaterial& first, const SourceMaterial& second) {
    return first.values == second.values && first.description == second.description &&
           first.not_kept == second.not_kept;
  }

  static bool is_same(const SourceConstruction& first, const SourceConstruction& second) {
    return first.layers == second.layers && first.description == second.description &&
           first.transmittance == second.transmittance && first.not_kept == second.not_kept;
  }

  void read_layer(const xml_node& node) {
    LayerParts layer;
    Children children(*this, node);
    children.add_attributes(layer.not_kept);
    for (const auto& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const auto name = local_name(child.name());
      if (name == "MaterialId") {
        layer.materials.push_back(attribute_of(child, "materialIdRef"));
      } else {
        children.add(child, name, layer.not_kept);
      }
    }
    const auto id = attribute_of(node, "id");
    if (layers_.emplace(id, std::move(layer)).second) return;
    model_.problems.push_back({file_, document_.line_of(node), id,
                               fmt::format("Layer {}: another layer has this id", quoted(id))});
  }

  void read_construction(const xml_node& node) {
    SourceConstruction construction;
    auto object = object_of("Construction", node);
    construction.described = &gbxml_construction();
    construction.name = object.name;
    construction.line = object.line;
    Children children(*this, node);
    children.add_attributes(construction.not_kept);
    for (const auto& child : node.children()) {
      if (child.type() != pugi::node_element) continue;
      const auto name = local_name(child.name());
      if (name == "Name" && children.first(name)) continue;
      if (is_description(child, name) && children.first(name)) {
        construction.description = document_.text_of(child);
      } else if (name == "LayerId") {
        add_layer(attribute_of(child, "layerIdRef"), construction);
      } else if (name == gbxml_transmittance && children.first(name)) {
        construction.transmittance = transmittance_in(child, object);
      } else {
        children.add(child, name, construction.not_kept);
      }
    }
    construction.fault = object.fault;
    const auto id = attribute_of(node, "id");
    const auto name = construction_names_.name_for(
        construction.name, id, model_.constructions.size(),
        [&](std::size_t other) { return is_same(model_.constructions[other], construction); });
    if (!id.empty()) construction.name = name.text;
    model_.constructions.push_back(std::move(construction));
  }

  std::string transmittance_in(const xml_node& node, Object& object) {
    auto value = number_of(node, gbxml_transmittance, object);
    if (!value.empty() && object.fault.empty() && !number_in(value)) {
      object.fault = fmt::format("{} is not a number for '{}'", quoted(value), gbxml_transmittance);
    }
    return value;
  }

  /// A layer may be of several materials, one behind the other.
  void add_layer(const std::string& id, SourceConstruction& construction) {
    const auto layer = layers_.find(id);
    if (layer == layers_.end()) {
      return add_missing(fmt::format("there is no layer {}", quoted(id)), construction);
    }
    auto& parts = layer->second;
    if (parts.materials.empty()) {
      add_missing(fmt::format("the layer {} has no material", quoted(id)), construction);
    }
    for (const auto& material : parts.materials) {
      const auto found = materials_.find(material);
      if (found == materials_.end()) {
        add_missing(fmt::format("there is no material {}, of which the layer {} is",
                                quoted(material), quoted(id)),
                    construction);
      } else {
        count_bytes(found->second, construction);
        construction.layers.push_back(found->second);
      }
    }
    const auto number = construction.layers.size();
    for (const auto& [key, value] : parts.not_kept) {
      construction.not_kept.emplace_back(fmt::format("Layer {}/{}", number, key), value);
    }
    parts.not_kept.clear();  // told once
  }

  void add_missing(const std::string& sentence, SourceConstruction& construction) {
    count_bytes(sentence, construction);
    construction.missing.push_back(sentence);
  }

  void count_bytes(const std::string& text, const SourceConstruction& construction) {
    constexpr std::size_t least = 64;
    bytes_of_layers_ += text.size() + least;
    if (bytes_of_layers_ <= most_bytes_of_layers) return;
    fail_at(file_, construction.line,
            fmt::format("the layers of the constructions take more than {} MiB",
                        most_bytes_of_layers >> 20),
            construction.name);
  }

  const XmlDocument& document_;
  const std::string& file_;
  std::string length_unit_;
  bool inch_pound_ = false;
  std::size_t bytes_of_layers_ = 0;
  SourceModel model_;
  DistinctNames material_names_;
  DistinctNames construction_names_;
  std::map<std::string, std::string> materials_;  ///< names, by identifier
  std::map<std::string, LayerParts> layers_;      ///< by identifier
};

}  // namespace

FormatModule gbxml_module() {
  return {"gbXML",
          {"gbxml", "xml"},
          [](const FileContent& content) { return !content.document && is_gbxml(content.text); },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            require_encoding(content);
            const XmlDocument document(content.text, content.file,
                                       XmlDocument::most_parts_of(content.text.size()));
            return std::make_shared<ModelContent>(GbxmlReader(document, content.file).read());
          },
          write_gbxml};
}

}  // namespace veldra::kit
