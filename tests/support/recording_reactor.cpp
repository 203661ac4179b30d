#include "support/recording_reactor.hpp"

#include <algorithm>
#include <iterator>

namespace veldra_tests {

namespace {

std::string key_text(const veldra::ObjectKey& key) {
  return kind_name(key.type) + " " + std::to_string(key.id);
}

}  // namespace

std::string kind_name(veldra::ObjectType type) {
  switch (type) {
    case veldra::ObjectType::Tag:
      return "Tag";
    case veldra::ObjectType::Asset:
      return "Asset";
    case veldra::ObjectType::MaterialType:
      return "MaterialType";
    case veldra::ObjectType::Material:
      return "Material";
    case veldra::ObjectType::Composition:
      return "Composition";
    case veldra::ObjectType::CustomProperty:
      return "CustomProperty";
    case veldra::ObjectType::Layer:
      return "Layer";
  }
  return "kind " + std::to_string(static_cast<int>(type));
}

std::vector<std::string> RecordingReactor::calls_starting_with(const std::string& prefix) const {
  std::vector<std::string> chosen;
  std::copy_if(
      calls.begin(), calls.end(), std::back_inserter(chosen),
      [&](const std::string& call) { return call.compare(0, prefix.size(), prefix) == 0; });
  return chosen;
}

int RecordingReactor::resolveNameConflict(veldra::Library& library, veldra::ObjectType type,
                                          veldra::String& name) {
  calls.push_back("conflict " + kind_name(type) + " '" + name.utf8() + "'");
  if (on_conflict) return on_conflict(library, type, name);
  return decision != 0 ? decision : Reactor::resolveNameConflict(library, type, name);
}

void RecordingReactor::objectSaved(veldra::Library& library, const veldra::ObjectKey& key) {
  calls.push_back("saved " + key_text(key));
  if (on_saved) on_saved(library, key);
}

int RecordingReactor::mayRemove(veldra::Library& library, const veldra::ObjectKey& key) {
  calls.push_back("may remove " + key_text(key));
  return on_may_remove ? on_may_remove(library, key) : refusal;
}

void RecordingReactor::objectRemoved(veldra::Library& library, const veldra::ObjectKey& key) {
  calls.push_back("removed " + key_text(key));
  if (on_removed) on_removed(library, key);
}

void RecordingReactor::libraryChanged(veldra::Library& library) {
  calls.push_back("library");
  if (on_library_changed) on_library_changed(library);
}

void RecordingReactor::typeChanged(veldra::Library& library, veldra::ObjectType type) {
  calls.push_back("type " + kind_name(type));
  if (on_type_changed) on_type_changed(library, type);
}

void RecordingReactor::reserved() { calls.push_back("reserved"); }

}  // namespace veldra_tests
