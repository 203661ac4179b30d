// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>

namespace veldra::kit {

namespace {

void require_object(const JsonNode& node, const std::string& what, const std::string& file) {
  if (node.kind == JsonNode::Kind::Object) return;
  fail_at(file, node.line, fmt::format("{} must be a JSON object", what));
}

/// More than any object has that is none to fill the memory.
void require_few_members(const JsonNode& node, const std::string& name, const std::string& file) {
  constexpr std::size_t most = 1000;
  if (node.members().size() <= most) return;
  fail_at(file, node.line, fmt::format("{} has more than {} fields", quoted(name), most), name);
}

/// Whether a member says something of the object: not the order that it had in another file, and
/// not that a value is missing.
bool says_something(const std::string& key, const JsonNode& value) {
  if (key.compare(0, 4, "idf_") == 0 || value.kind == JsonNode::Kind::Null) return false;
  return value.kind != JsonNode::Kind::Text || !trimmed(value.text()).empty();
}

SourceMaterial material_from(const std::string& name, const JsonNode& node,
                             const MaterialClass& described) {
  SourceMaterial material;
  material.described = &described;
  material.name = name;
  material.line = node.line;
  std::set<std::string> known;
  for (const auto& field : described.fields) {
    if (field.kind == FieldKind::Dropped) continue;
    known.insert(field.key);
    const JsonNode* value = node.member(field.key);
    if (value == nullptr || field.kind == FieldKind::Implied) continue;
    std::string text = scalar_text(*value, field.key, material.fault);
    if (!text.empty()) material.values[field.key] = std::move(text);
  }
  for (const auto& [key, value] : node.members()) {
    if (known.count(key) == 0 && says_something(key, value)) {
      material.not_kept.emplace_back(key, text_of_any(value));
    }
  }
  return material;
}

/// The position of a layer among the layers: 1 for the outside layer, 0 for what is no layer.
unsigned layer_position(const std::string& key) {
  if (key == "outside_layer") return 1;
  constexpr std::string_view prefix = "layer_";
  if (key.compare(0, prefix.size(), prefix) != 0) return 0;
  unsigned position = 0;
  const char* end = key.data() + key.size();
  const auto result = std::from_chars(key.data() + prefix.size(), end, position);
  return result.ec == std::errc() && result.ptr == end ? position : 0;
}

SourceConstruction construction_from(const std::string& name, const JsonNode& node,
                                     const ConstructionClass& described) {
  SourceConstruction construction;
  construction.described = &described;
  construction.name = name;
  construction.line = node.line;
  if (described.kind == ConstructionKind::WithoutLayers) return construction;
  std::map<unsigned, std::string> layers;
  for (const auto& [key, value] : node.members()) {
    const unsigned position = layer_position(key);
    if (position == 0 && says_something(key, value)) {
      construction.not_kept.emplace_back(key, text_of_any(value));
    }
    if (position == 0) continue;
    std::string text = scalar_text(value, key, construction.fault);
    if (!text.empty()) layers[position] = std::move(text);
  }
  for (const auto& [place, material] : layers) add_layer(construction, place, material);
  return construction;
}

bool has_objects_only(const JsonNode& node) {
  return node.kind == JsonNode::Kind::Object &&
         std::all_of(node.members().begin(), node.members().end(), [](const auto& member) {
           return member.value.kind == JsonNode::Kind::Object;
         });
}

/// A class whose name is not spelled as usual may be something else.
bool is_evidence(const std::string& name, const JsonNode& objects) {
  const auto* material = material_class(name);
  const auto* construction = construction_class(name);
  if (objects.kind == JsonNode::Kind::Object) return material || construction;
  return (material && name == material->name) || (construction && name == construction->name);
}

/// Whether a document is of the format, maybe with mistakes: it has a class of materials or
/// constructions, or nothing but objects of objects under names that classes can have.
bool is_epjson(const JsonNode& document) {
  if (document.kind != JsonNode::Kind::Object) return false;
  const auto& members = document.members();
  if (std::any_of(members.begin(), members.end(),
                  [](const auto& member) { return is_evidence(member.name, member.value); })) {
    return true;
  }
  return std::all_of(members.begin(), members.end(), [](const auto& member) {
    const auto& [name, objects] = member;
    return can_be_class(name) && name.text()[0] >= 'A' && name.text()[0] <= 'Z' &&
           has_objects_only(objects);
  });
}

/// Objects that are read are not kept beside what they were made of, which takes more memory.
SourceModel read_epjson(JsonNode document, const std::string& file) {
  SourceModel model;
  require_object(document, "the document", file);
  for (auto& [name, objects] : *document.own_members()) {
    const auto* material = material_class(name);
    const auto* construction = construction_class(name);
    require_object(objects, quoted(name), file);
    if (!material && !construction) {
      model.skipped[name] += static_cast<unsigned>(objects.members().size());
      continue;
    }
    for (auto& [object, node] : *objects.own_members()) {
      require_object(node, quoted(object), file);
      require_few_members(node, object, file);
      if (material) {
        model.materials.push_back(material_from(object, node, *material));
      } else {
        model.constructions.push_back(construction_from(object, node, *construction));
      }
      node = JsonNode();
    }
  }
  return model;
}

}  // namespace

FormatModule epjson_module() {
  return {
      "epJSON",
      {"epjson", "json"},
      [](const FileContent& content) { return content.document && is_epjson(*content.document); },
      [](FileContent content) -> std::shared_ptr<SourceContent> {
        return std::make_shared<ModelContent>(
            read_epjson(std::move(*content.document), content.file));
      },
      write_epjson};
}

}  // namespace veldra::kit
