// SPDX-License-Identifier: GPL-2.0-or-later
#include "edited_objects.hpp"

#include "failure.hpp"
#include "kinds.hpp"
#include "opening.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra_tool {

namespace {

constexpr veldra::ObjectType edited_kinds[] = {veldra::ObjectType::Material,
                                               veldra::ObjectType::Composition};

Json empty_document(veldra::Unit unit) {
  Json document = Json::object();
  document["format"] = "veldra";
  document["version"] = 1;
  document["library"]["unit"] = kit::name_of(unit);
  return document;
}

/// Without the assets, which the library never writes.
template <class T>
Json json_to_edit(const T& object) {
  Json json = Json::parse(kit::json_of(object));
  json.erase("structural_asset");
  json.erase("thermal_asset");
  return json;
}

/// The texts of a member of all objects in a list.
void collect(const Json& list, const char* member, std::set<std::string>& texts) {
  if (!list.is_array()) return;
  for (const auto& object : list) {
    if (!object.is_object()) continue;
    const auto found = object.find(member);
    if (found != object.end() && found->is_string()) texts.insert(found->get<std::string>());
  }
}

const Json& member(const Json& object, const char* name) {
  static const Json nothing;
  if (!object.is_object()) return nothing;
  const auto found = object.find(name);
  return found != object.end() ? *found : nothing;
}

/// The materials of layers that the document has not itself.
std::set<std::string> materials_elsewhere(const Json& document) {
  std::set<std::string> wanted;
  const Json& compositions = member(document, "compositions");
  if (compositions.is_array()) {
    for (const auto& composition : compositions) {
      collect(member(composition, "layers"), "material", wanted);
    }
  }
  std::set<std::string> own;
  collect(member(document, "materials"), "name", own);
  for (const auto& name : own) wanted.erase(name);
  return wanted;
}

/// Those as a source of its own.
Json materials_of_library(const veldra::Library& library, const std::string& text) {
  Json document = empty_document(library.unit());
  document["materials"] = Json::array();
  for (const auto& name : materials_elsewhere(Json::parse(text, nullptr, false))) {
    const auto material = library.get<veldra::Material>(library_text(name));
    if (material) document["materials"].push_back(json_to_edit(*material));
  }
  return document;
}

kit::Sources read(const std::string& file, const std::string& text,
                  const veldra::Library& library) {
  if (text.find_first_not_of(" \t\r\n") != text.find('{')) {
    throw failure_of(file, "line 1: this is no JSON, as it does not begin with '{'");
  }
  std::vector<kit::Source> sources{{file, text}};
  const auto others = materials_of_library(library, text);
  if (!others["materials"].empty()) sources.emplace_back("the library", others.dump());
  kit::SourceRules rules;
  rules.unit = library.unit();
  auto read = kit::read_together(sources, rules);
  for (const auto& problem : read.reports.front().problems) {
    if (!problem.doubt) throw kit::SourceError(problem);
  }
  read.library = watched(read.library);
  return read;
}

/// The objects of a kind that the first source has, in their order there.
std::vector<std::pair<veldra::ObjectKey, std::string>> objects_of_first(const kit::Sources& sources,
                                                                        veldra::ObjectType kind) {
  std::vector<std::pair<veldra::ObjectKey, std::string>> objects;
  for (const auto& [key, origin] : sources.origins) {
    if (key.type == kind && origin.source == 0) objects.emplace_back(key, origin.name);
  }
  return objects;
}

}  // namespace

EditedObjects::EditedObjects(const veldra::Library& library,
                             const std::set<veldra::ObjectKey>& keys) {
  Json document = empty_document(library.unit());
  for (const auto kind : edited_kinds) {
    for (const auto& key : keys) {
      if (key.type != kind) continue;
      kind == veldra::ObjectType::Material ? read<veldra::Material>(library, key.id, document)
                                           : read<veldra::Composition>(library, key.id, document);
    }
  }
  if (objects_.size() != keys.size()) {
    throw LibraryFailure("only materials and compositions can be edited as JSON");
  }
  text_ = kit::without_controls_in_json(document.dump(2)) + "\n";
}

template <class T>
void EditedObjects::read(const veldra::Library& library, unsigned id, Json& document) {
  const auto object = library.get<T>(id);
  if (!object) throw LibraryFailure("an object has gone while it was read");
  const auto kind = veldra::ObjectTraits<T>::type;
  objects_.push_back({{kind, id}, object->name().utf8(), kit::fingerprint_of(*object)});
  document[plural_of(kind)].push_back(json_to_edit(*object));
}

EditedObjects::States EditedObjects::states_in(const std::string& file, const std::string& text,
                                               const veldra::Library& library) const {
  States states;
  states.sources = veldra_tool::read(file, text, library);
  for (const auto kind : edited_kinds) assign(file, kind, states);
  require_same_state(library);
  return states;
}

void EditedObjects::assign(const std::string& file, veldra::ObjectType kind, States& states) const {
  auto incoming = objects_of_first(states.sources, kind);
  Objects stored;
  for (const auto& object : objects_) {
    if (object.key.type == kind) stored.push_back(&object);
  }
  if (incoming.size() != stored.size() || !states.sources.reports.front().repeated.empty()) {
    throw failure_of(file, fmt::format("it has not just the {} that were to be edited; 'veldra "
                                       "new' makes objects, and 'veldra remove' removes them",
                                       plural_of(kind)));
  }
  std::map<std::string, const Object*> by_name;
  for (const auto* object : stored) by_name.emplace(object->name, object);
  std::vector<veldra::ObjectKey> renamed;
  for (const auto& [key, name] : incoming) {
    const auto found = by_name.find(name);
    if (found == by_name.end()) {
      renamed.push_back(key);
      continue;
    }
    states.rules.states_of[key] = found->second->key.id;
    stored.erase(std::find(stored.begin(), stored.end(), found->second));
  }
  auto next = stored.begin();
  for (const auto& key : renamed) states.rules.states_of[key] = (*next++)->key.id;
}

template <class T>
bool EditedObjects::is_as_it_was(const veldra::Library& library, const Object& object) const {
  const auto now = library.get<T>(object.key.id);
  return now && kit::fingerprint_of(*now) == object.fingerprint;
}

/// Somebody else may have been at work meanwhile.
void EditedObjects::require_same_state(const veldra::Library& library) const {
  std::string names;
  for (const auto& object : objects_) {
    const bool is_same = object.key.type == veldra::ObjectType::Material
                             ? is_as_it_was<veldra::Material>(library, object)
                             : is_as_it_was<veldra::Composition>(library, object);
    if (is_same) continue;
    names += fmt::format("{}{} {}", names.empty() ? "" : ", ", singular_of(object.key.type),
                         in_quotes(object.name));
  }
  if (names.empty()) return;
  throw LibraryFailure(
      fmt::format("somebody else has changed meanwhile what was edited: {}", names));
}

}  // namespace veldra_tool
