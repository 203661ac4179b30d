// SPDX-License-Identifier: GPL-2.0-or-later
#include "conflicts.hpp"

#include "failure.hpp"
#include "kinds.hpp"
#include "kit.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra_tool {

namespace {

using veldra::ObjectType;

/// Assets stay in their library, so that a copied material never has any.
void drop_assets(veldra::Material& material) {
  material.structuralAsset(nullptr);
  material.thermalAsset(nullptr);
}

/// Whose layers are of the same materials is told by ids.
void drop_layer_materials(veldra::Composition& composition) {
  for (std::size_t i = 0; i < composition.layers().size(); ++i) {
    composition.layer(i, veldra::toModify).material(nullptr);
  }
}

bool has_code(const std::shared_ptr<veldra::Material>& material) { return material->has_code(); }

[[noreturn]] void fail_code(const veldra::Material& incoming, const veldra::String& owner) {
  throw LibraryFailure(
      fmt::format("material {} has the code {}, which {} of the library has already",
                  in_quotes(incoming.name().utf8()), in_quotes(incoming.code().utf8()),
                  in_quotes(owner.utf8())));
}

bool has(const veldra::Library& library, ObjectType type, const veldra::String& name) {
  if (type == ObjectType::Material) return library.get<veldra::Material>(name) != nullptr;
  return library.get<veldra::Composition>(name) != nullptr;
}

}  // namespace

ConflictReactor::ConflictReactor(OnConflict policy, const veldra::Library& source,
                                 veldra::IdMapping& mapping)
    : policy_(policy), source_(source), mapping_(mapping) {}

void ConflictReactor::ignore_tags(ObjectType type, const veldra::String& name) {
  without_tags_.insert({type, name});
}

void ConflictReactor::on_saved(std::function<void()> listener) { listener_ = std::move(listener); }

void ConflictReactor::objectSaved(veldra::Library&, const veldra::ObjectKey&) {
  if (listener_) listener_();
}

int ConflictReactor::resolveNameConflict(veldra::Library& library, ObjectType type,
                                         veldra::String& name) {
  const auto found = originals_.find({type, name});
  const Name original(type, found != originals_.end() ? found->second : name);
  if (same(library, original, name)) {
    equal_.insert(original);
    return UseExisting;
  }
  switch (policy_) {
    case OnConflict::Use:
      return UseExisting;
    case OnConflict::Overwrite:
      return Overwrite;
    case OnConflict::Rename:
      return rename(library, original, name);
    default:
      fail(original);
  }
}

void ConflictReactor::fail(const Name& original) {
  throw LibraryFailure(
      fmt::format("the library has a {} {} already, which differs; --on-conflict says what to do",
                  singular_of(original.first), in_quotes(original.second.utf8())));
}

int ConflictReactor::rename(const veldra::Library& library, const Name& original,
                            veldra::String& name) {
  for (unsigned number = 2;; ++number) {
    veldra::String candidate;
    candidate.utf8(fmt::format("{} ({})", original.second.utf8(), number));
    if (has(source_, original.first, candidate)) continue;
    if (has(library, original.first, candidate) && !same(library, original, candidate)) continue;
    renamed_.insert(original);
    originals_[{original.first, candidate}] = original.second;
    name = candidate;
    return Rename;
  }
}

Outcome ConflictReactor::outcome(ObjectType type, const veldra::String& name,
                                 veldra::IdMapping::Status status) const {
  if (equal_.count({type, name})) return Outcome::Equal;
  if (status == veldra::IdMapping::Existing) return Outcome::Kept;
  if (status == veldra::IdMapping::Updated) return Outcome::Changed;
  return renamed_.count({type, name}) ? Outcome::Renamed : Outcome::Added;
}

void ConflictReactor::settle_codes(const veldra::Library& library) {
  std::vector<std::shared_ptr<veldra::Material>> incoming;
  source_.get(incoming);
  if (std::none_of(incoming.begin(), incoming.end(), has_code)) return;

  std::vector<std::shared_ptr<veldra::Material>> stored;
  library.get(stored);
  std::map<veldra::String, std::shared_ptr<veldra::Material>> with_code;
  for (const auto& material : stored) {
    if (has_code(material)) with_code[material->name()] = material;
  }
  for (const auto& material : incoming) {
    const auto found = with_code.find(material->name());
    if (found != with_code.end()) settle_code(*material, *found->second);
  }

  std::map<veldra::String, veldra::String> names_by_code;
  for (const auto& [name, material] : with_code) {
    if (has_code(material)) names_by_code[material->code()] = name;
  }
  for (const auto& material : incoming) {
    if (!has_code(material) || settled(*material)) continue;
    const auto taken = names_by_code.find(material->code());
    if (taken != names_by_code.end()) fail_code(*material, taken->second);
  }
}

/// What becomes of a code of the library when a material of the same name comes in.
void ConflictReactor::settle_code(const veldra::Material& incoming, veldra::Material& stored) {
  const Name original(ObjectType::Material, incoming.name());
  if (same(*stored.library(), original, stored.name())) {
    equal_.insert(original);
    return use_stored(incoming, stored);
  }
  switch (policy_) {
    case OnConflict::Fail:
      fail(original);
    case OnConflict::Use:
      return use_stored(incoming, stored);
    case OnConflict::Overwrite:
      stored.clear_code();
      stored.save();
      return;
    case OnConflict::Rename:
      return;
  }
}

void ConflictReactor::use_stored(const veldra::Material& incoming, const veldra::Material& stored) {
  mapping_.assign({{ObjectType::Material, incoming.id()}, &source_},
                  {stored.id(), veldra::IdMapping::Existing});
}

bool ConflictReactor::settled(const veldra::Material& incoming) const {
  return mapping_.has({{ObjectType::Material, incoming.id()}, &source_});
}

template <class T>
void ConflictReactor::drop_ignored_tags(T& object, const Name& original) const {
  if (without_tags_.count(original)) object.tags(veldra::toModify).clear();
}

bool ConflictReactor::same(const veldra::Library& library, const Name& original,
                           const veldra::String& stored_name) const {
  return original.first == ObjectType::Material
             ? same_material(library, original.second, stored_name)
             : same_composition(library, original.second, stored_name);
}

bool ConflictReactor::same_material(const veldra::Library& library, const veldra::String& original,
                                    const veldra::String& stored_name) const {
  const auto incoming = source_.get<veldra::Material>(original);
  const auto existing = library.get<veldra::Material>(stored_name);
  if (!incoming || !existing) return false;
  const auto left = incoming->clone();
  const auto right = existing->clone();
  left->name(stored_name);
  for (const auto& material : {left, right}) {
    drop_assets(*material);
    drop_ignored_tags(*material, {ObjectType::Material, original});
  }
  return kit::same_values(*left, *right);
}

bool ConflictReactor::same_composition(const veldra::Library& library,
                                       const veldra::String& original,
                                       const veldra::String& stored_name) const {
  const auto incoming = source_.get<veldra::Composition>(original);
  const auto existing = library.get<veldra::Composition>(stored_name);
  if (!incoming || !existing || !same_layer_materials(*incoming, *existing)) return false;
  const auto left = incoming->clone();
  const auto right = existing->clone();
  left->name(stored_name);
  for (const auto& composition : {left, right}) {
    drop_layer_materials(*composition);
    drop_ignored_tags(*composition, {ObjectType::Composition, original});
  }
  return kit::same_values(*left, *right);
}

/// The materials of a composition are copied before it, so the mapping has them.
bool ConflictReactor::same_layer_materials(const veldra::Composition& incoming,
                                           const veldra::Composition& stored) const {
  const auto same = [&](const auto& left, const auto& right) {
    veldra::IdMapping::Value value;
    const veldra::ObjectKey key(ObjectType::Material, left.material()->id());
    return mapping_.compute({key, &source_}, value) && value.id == right.material()->id();
  };
  const auto& left = incoming.layers();
  const auto& right = stored.layers();
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
}

}  // namespace veldra_tool
