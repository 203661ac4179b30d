// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/honeybee_model.hpp"
#include "kit/exchange/writers.hpp"

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
    for (auto& construction : model_.constructions) {
      for (auto& layer : construction.layers) layer = name_of(layer);
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

  /// The name that people see, and the identifier beside it. Materials of one name have their
  /// identifiers as names.
  template <class Object>
  void take_name(const JsonNode& node, std::map<std::string, std::string>& identifiers,
                 Object& object) const {
    const auto identifier = identifier_of(node);
    const auto shown = text_of(node, "display_name", object);
    const auto taken = identifiers.emplace(shown.empty() ? identifier : shown, identifier);
    const bool is_free = taken.first->second == identifier;
    object.name = shown.empty() || !is_free ? identifier : shown;
    if (!shown.empty() && is_free) object.identifier = identifier;
    object.line = node.line;
  }

  void read_material(const JsonNode& node, const MaterialClass& described) {
    SourceMaterial material;
    material.described = &described;
    take_name(node, materials_, material);
    names_.emplace(identifier_of(node), material.name);
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
    model_.materials.push_back(std::move(material));
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
    take_name(node, constructions_, construction);
    for (const auto& [key, value] : node.members()) {
      if (key == "materials" || is_common(key, value)) continue;
      construction.not_kept.emplace_back(key, text_of_any(value));
    }
    if (const JsonNode* materials = node.member("materials")) {
      for (const auto& layer : materials->elements()) {
        construction.layers.push_back(read_layer(layer, construction));
      }
    }
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
    const auto identifier = identifier_of(node);
    if (names_.count(identifier) == 0) read_object(node);
    return identifier;
  }

  const std::string& file_;
  SourceModel model_;
  std::map<std::string, std::string> names_;          ///< of materials, by identifier
  std::map<std::string, std::string> materials_;      ///< identifiers, by name
  std::map<std::string, std::string> constructions_;  ///< likewise
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
