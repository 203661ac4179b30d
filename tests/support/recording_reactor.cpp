#include "support/recording_reactor.hpp"

#include "support/names.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace veldra_tests {

namespace {

std::string key_text(const ObjectKey& key) {
  return kind_name(key.type) + " " + std::to_string(key.id);
}

}  // namespace

std::string kind_name(ObjectType type) {
  switch (type) {
    case ObjectType::Tag:
      return "Tag";
    case ObjectType::Asset:
      return "Asset";
    case ObjectType::MaterialType:
      return "MaterialType";
    case ObjectType::Material:
      return "Material";
    case ObjectType::Composition:
      return "Composition";
    case ObjectType::CustomProperty:
      return "CustomProperty";
    case ObjectType::Layer:
      return "Layer";
  }
  return "kind " + std::to_string(static_cast<int>(type));
}

void RecordingReactor::rename_with(const std::string& suffix) {
  on_conflict = [suffix](Library&, ObjectType, String& name) {
    name = String((name.utf8() + suffix).c_str());
    return Rename;
  };
}

void RecordingReactor::throw_at_the_end_of(int& remaining) {
  const auto count_down = [&remaining] {
    if (remaining-- == 0) throw std::runtime_error("cancelled");
  };
  const auto answer = on_conflict;
  on_conflict = [count_down, answer](Library& library, ObjectType type, String& name) {
    count_down();
    return answer(library, type, name);
  };
  on_saved = [count_down](Library&, const ObjectKey&) { count_down(); };
}

std::vector<std::string> RecordingReactor::calls_starting_with(const std::string& prefix) const {
  std::vector<std::string> chosen;
  std::copy_if(
      calls.begin(), calls.end(), std::back_inserter(chosen),
      [&](const std::string& call) { return call.compare(0, prefix.size(), prefix) == 0; });
  return chosen;
}

int RecordingReactor::resolveNameConflict(Library& library, ObjectType type, String& name) {
  calls.push_back("conflict " + kind_name(type) + " '" + name.utf8() + "'");
  if (on_conflict) return on_conflict(library, type, name);
  return decision != 0 ? decision : Reactor::resolveNameConflict(library, type, name);
}

void RecordingReactor::objectSaved(Library& library, const ObjectKey& key) {
  calls.push_back("saved " + key_text(key));
  if (on_saved) on_saved(library, key);
}

int RecordingReactor::mayRemove(Library& library, const ObjectKey& key) {
  calls.push_back("may remove " + key_text(key));
  return on_may_remove ? on_may_remove(library, key) : refusal;
}

void RecordingReactor::objectRemoved(Library& library, const ObjectKey& key) {
  calls.push_back("removed " + key_text(key));
  if (on_removed) on_removed(library, key);
}

void RecordingReactor::libraryChanged(Library& library) {
  calls.push_back("library");
  if (on_library_changed) on_library_changed(library);
}

void RecordingReactor::typeChanged(Library& library, ObjectType type) {
  calls.push_back("type " + kind_name(type));
  if (on_type_changed) on_type_changed(library, type);
}

void RecordingReactor::reserved() { calls.push_back("reserved"); }

}  // namespace veldra_tests
