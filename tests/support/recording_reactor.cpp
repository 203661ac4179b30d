// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/recording_reactor.hpp"

#include "support/names.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace veldra_tests {

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

std::string RecordingReactor::text_of(const Call& call) {
  const std::string kind = kind_name(call.key.type);
  const std::string object = kind + " " + std::to_string(call.key.id);
  switch (call.what) {
    case What::Conflict:
      return "conflict " + kind + " '" + call.name.utf8() + "'";
    case What::Saved:
      return "saved " + object;
    case What::MayRemove:
      return "may remove " + object;
    case What::Removed:
      return "removed " + object;
    case What::LibraryChanged:
      return "library";
    case What::TypeChanged:
      return "type " + kind;
    default:
      return "reserved";
  }
}

void RecordingReactor::rename_with(const std::string& suffix) {
  decision = Rename;
  suffix_ = suffix;
}

void RecordingReactor::watch_removals(const std::function<void()>& observer) {
  on_may_remove = [this, observer, answer = on_may_remove](Library& library, const ObjectKey& key) {
    observer();
    return answer ? answer(library, key) : refusal;
  };
}

std::vector<std::string> RecordingReactor::calls() const {
  std::vector<std::string> texts;
  std::transform(calls_.begin(), calls_.end(), std::back_inserter(texts), text_of);
  return texts;
}

std::vector<std::string> RecordingReactor::calls_starting_with(const std::string& prefix) const {
  const std::vector<std::string> all = calls();
  std::vector<std::string> chosen;
  std::copy_if(all.begin(), all.end(), std::back_inserter(chosen), [&](const std::string& call) {
    return call.compare(0, prefix.size(), prefix) == 0;
  });
  return chosen;
}

std::string RecordingReactor::changes() const {
  std::string numbers;
  for (const Call& call : calls_) {
    if (call.what == What::LibraryChanged) numbers += '0';
    if (call.what == What::TypeChanged) {
      numbers += static_cast<char>('0' + static_cast<int>(call.key.type));
    }
  }
  return numbers;
}

void RecordingReactor::count_down() {
  if (remaining_ != nullptr && (*remaining_)-- == 0) throw std::runtime_error("cancelled");
}

int RecordingReactor::resolveNameConflict(Library& library, ObjectType type, String& name) {
  calls_.push_back({What::Conflict, {type, 0}, name});
  count_down();
  if (on_conflict) return on_conflict(library, type, name);
  if (decision == Rename) name.utf8(name.utf8() + suffix_);
  return decision != 0 ? decision : Reactor::resolveNameConflict(library, type, name);
}

void RecordingReactor::objectSaved(Library& library, const ObjectKey& key) {
  calls_.push_back({What::Saved, key, {}});
  count_down();
  if (on_saved) on_saved(library, key);
}

int RecordingReactor::mayRemove(Library& library, const ObjectKey& key) {
  calls_.push_back({What::MayRemove, key, {}});
  return on_may_remove ? on_may_remove(library, key) : refusal;
}

void RecordingReactor::objectRemoved(Library& library, const ObjectKey& key) {
  calls_.push_back({What::Removed, key, {}});
  if (on_removed) on_removed(library, key);
}

void RecordingReactor::libraryChanged(Library& library) {
  calls_.push_back({What::LibraryChanged, {}, {}});
  if (on_library_changed) on_library_changed(library);
}

void RecordingReactor::typeChanged(Library& library, ObjectType type) {
  calls_.push_back({What::TypeChanged, {type, 0}, {}});
  if (on_type_changed) on_type_changed(library, type);
}

void RecordingReactor::reserved() { calls_.push_back({What::Reserved, {}, {}}); }

}  // namespace veldra_tests
