// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/distinct_names.hpp"
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/honeybee_model.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace veldra::kit {

namespace {

bool has_text(const JsonNode& node, const char* member) {
  const JsonNode* value = node.member(member);
  return value != nullptr && value->kind == JsonNode::Kind::Text;
}

/// Each object says its type and its identifier.
bool is_object(const JsonNode& node) {
  return has_text(node, "type") && has_text(node, "identifier");
}

/// Several objects stand in a list or under names. An empty list is what is written of a library
/// without objects; no other format has a list.
bool is_honeybee(const JsonNode& document) {
  if (is_object(document)) return true;
  if (document.kind == JsonNode::Kind::Array && document.elements().empty()) return true;
  if (!document.elements().empty()) return is_object(document.elements().front());
  return !document.members().empty() && is_object(document.members().front().value);
}

/// Whether a value is empty, or has nothing in it but the names of types.
bool says_nothing(const JsonNode& node) {
  if (node.kind == JsonNode::Kind::Null) return true;
  if (node.kind == JsonNode::Kind::Array) return node.elements().empty();
  const auto& members = node.members();
  return node.kind == JsonNode::Kind::Object &&
         std::all_of(members.begin(), members.end(), [](const auto& member) {
           return member.name == "type" || says_nothing(member.value);
         });
}

/// Members that need not be told: the names of an object, what is empty, and properties of other
/// programs that have not set any.
bool is_common(const std::string& key, const JsonNode& value) {
  if (value.kind == JsonNode::Kind::Null) return true;
  if (key == "properties") return says_nothing(value);
  return key == "type" || key == "identifier" || key == "display_name";
}

/// Reads the objects of one document.
class HoneybeeReader {
 public:
  explicit HoneybeeReader(const std::string& file) : file_(file) { model_.ignores_case = false; }

  SourceModel read(JsonNode document) {
    if (is_object(document)) {
      read_object(document);
    } else {
      if (auto* elements = document.own_elements()) {
        for (auto& element : *elements) use_up(element);
      }
      if (auto* members = document.own_members()) {
        for (auto& member : *members) use_up(member.value);
      }
    }
    for (const auto& [construction, layer] : layers_by_identifier_) {
      auto& material = model_.constructions[construction].layers[layer];
      material = name_of(material);
    }
    return std::move(model_);
  }

 private:
  /// What is read needs not be kept beside what it was made of, which takes more memory.
  void use_up(JsonNode& node) {
    read_object(node);
    node = JsonNode();
  }

  void read_object(const JsonNode& node) {
    if (!is_object(node)) return tell_no_object(node);
    const auto& type = node.member("type")->text();
    if (type == "Model") return read_model(node);
    if (const auto* described = honeybee_class(type)) return read_material(node, *described);
    if (const auto* described = honeybee_construction(type)) {
      return read_construction(node, *described);
    }
    ++model_.skipped[type];
  }

  void tell_no_object(const JsonNode& node) {
    model_.problems.push_back(
        {file_, node.line, "", "an object with 'type' and 'identifier' is expected"});
  }

  /// A building has its materials and constructions among its properties of energy.
  void read_model(const JsonNode& node) {
    const JsonNode* properties = node.member("properties");
    const JsonNode* energy = properties != nullptr ? properties->member("energy") : nullptr;
    for (const char* list : {"materials", "constructions"}) {
      const JsonNode* objects = energy != nullptr ? energy->member(list) : nullptr;
      if (objects == nullptr) continue;
      for (const auto& object : objects->elements()) read_object(object);
    }
    ++model_.skipped["Model"];
  }

  /// The name of the material with an identifier, which may be of another source.
  std::string name_of(const std::string& identifier) const {
    const auto found = names_.find(identifier);
    return found != names_.end() ? found->second : identifier;
  }

  template <class Object>
  static std::string text_of(const JsonNode& node, const char* key, Object& object) {
    const JsonNode* value = node.member(key);
    return value != nullptr ? scalar_text(*value, key, object.fault) : std::string();
  }

  /// What is an object has one.
  static std::string identifier_of(const JsonNode& node) {
    return trimmed(node.member("identifier")->text());
  }

  /// The name that people see, or else the identifier.
  template <class Object>
  static void take_name(const JsonNode& node, Object& object) {
    object.name = text_of(node, "display_name", object);
    object.identifier = identifier_of(node);
    object.line = node.line;
    if (object.name.empty()) object.name = object.identifier;
  }

  /// Gives an object a name that no other one of the list has; returns whether no equal one has it.
  template <class Objects, class Object>
  static bool make_distinct(const Objects& objects, DistinctNames& names, Object& object) {
    const auto identifier = object.identifier;
    const auto name =
        names.name_for(object.name, identifier == object.name ? "" : identifier, objects.size(),
                       [&](std::size_t place) {
                         const auto& other = objects[place];
                         return identifier_of(other) == identifier && is_same(other, object);
                       });
    object.name = name.text;
    if (object.name == identifier) object.identifier.clear();
    return name.is_new;
  }

  template <class Object>
  static const std::string& identifier_of(const Object& object) {
    return object.identifier.empty() ? object.name : object.identifier;
  }

  static bool is_same(const SourceMaterial& first, const SourceMaterial& second) {
    return first.described == second.described && first.values == second.values &&
           first.not_kept == second.not_kept && first.fault == second.fault;
  }

  static bool is_same(const SourceConstruction& first, const SourceConstruction& second) {
    return first.described == second.described && first.layers == second.layers &&
           first.not_kept == second.not_kept && first.fault == second.fault;
  }

  /// An identifier belongs to the first material that has it.
  void read_material(const JsonNode& node, const MaterialClass& described) {
    auto material = material_of(node, described);
    const bool is_new = make_distinct(model_.materials, material_names_, material);
    const bool is_first = names_.emplace(identifier_of(material), material.name).second;
    if (is_new && !is_first) {
      model_.problems.push_back(
          {file_, node.line, material.name,
           fmt::format("{} {}: another material has the identifier {}", described.name,
                       quoted(material.name), quoted(identifier_of(material))),
           true});
    }
    model_.materials.push_back(std::move(material));
  }

  static SourceMaterial material_of(const JsonNode& node, const MaterialClass& described) {
    SourceMaterial material;
    material.described = &described;
    take_name(node, material);
    std::set<std::string> known;
    for (const auto& field : described.fields) {
      known.insert(field.key);
      const auto value = text_of(node, field.key, material);
      if (!value.empty()) material.values[field.key] = value;
    }
    if (std::string(described.name) == "EnergyWindowMaterialGasMixture") {
      read_gases(node, material);
      known.insert({"gas_types", "gas_fractions"});
    }
    for (const auto& [key, value] : node.members()) {
      if (known.count(key) > 0 || is_common(key, value)) continue;
      material.not_kept.emplace_back(key, text_of_any(value));
    }
    return material;
  }

  static void read_gases(const JsonNode& node, SourceMaterial& material) {
    const auto read_list = [&](const char* list, std::string (*key_of)(int)) {
      const JsonNode* values = node.member(list);
      if (values == nullptr) return;
      int gas = 0;
      for (const auto& value : values->elements()) {
        if (++gas > most_gases) {
          material.fault = fmt::format("a mixture has at most {} gases", most_gases);
          return;
        }
        const char* key = key_in(*material.described, key_of(gas));
        if (key != nullptr) material.values[key] = scalar_text(value, list, material.fault);
      }
    };
    read_list("gas_types", gas_type_key);
    read_list("gas_fractions", gas_fraction_key);
  }

  /// A whole construction has its materials in it, an abridged one their identifiers.
  void read_construction(const JsonNode& node, const ConstructionClass& described) {
    SourceConstruction construction;
    construction.described = &described;
    take_name(node, construction);
    for (const auto& [key, value] : node.members()) {
      if (key == "materials" || is_common(key, value)) continue;
      construction.not_kept.emplace_back(key, text_of_any(value));
    }
    const auto place = model_.constructions.size();
    if (const JsonNode* materials = node.member("materials")) {
      for (const auto& layer : materials->elements()) {
        if (layer.kind != JsonNode::Kind::Object) {
          layers_by_identifier_.emplace_back(place, construction.layers.size());
        }
        construction.layers.push_back(read_layer(layer, construction));
      }
    }
    make_distinct(model_.constructions, construction_names_, construction);
    model_.constructions.push_back(std::move(construction));
  }

  std::string read_layer(const JsonNode& node, SourceConstruction& construction) {
    if (node.kind != JsonNode::Kind::Object) {
      return scalar_text(node, "materials", construction.fault);
    }
    if (!is_object(node)) {
      construction.fault = "a layer has no type or no identifier";
      return {};
    }
    const auto* described = honeybee_class(node.member("type")->text());
    if (described != nullptr) return own_material(node, *described);
    read_object(node);
    return identifier_of(node);
  }

  /// The name of a material that a construction has in it. Each has its own, most of them equal.
  std::string own_material(const JsonNode& node, const MaterialClass& described) {
    auto material = material_of(node, described);
    const bool is_new = make_distinct(model_.materials, material_names_, material);
    const auto name = material.name;
    names_.emplace(identifier_of(material), name);
    if (is_new) model_.materials.push_back(std::move(material));
    return name;
  }

  const std::string& file_;
  SourceModel model_;
  std::map<std::string, std::string> names_;  ///< of materials, by identifier
  DistinctNames material_names_;
  DistinctNames construction_names_;
  std::vector<std::pair<std::size_t, std::size_t>> layers_by_identifier_;  ///< of constructions
};

}  // namespace

FormatModule honeybee_module() {
  return {
      "honeybee",
      {"hbjson", "json"},
      [](const FileContent& content) { return content.document && is_honeybee(*content.document); },
      [](FileContent content) -> std::shared_ptr<SourceContent> {
        return std::make_shared<ModelContent>(
            HoneybeeReader(content.file).read(std::move(*content.document)));
      },
      write_honeybee};
}

}  // namespace veldra::kit
