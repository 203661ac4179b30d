// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/kind_planning.hpp"

#include "kit/fields/field.hpp"
#include "kit/plan/entry.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace veldra::kit {

namespace {

/// So many objects are in memory at a time.
constexpr std::size_t part_size = 512;

template <class T>
ObjectKey key_of(const T& object) {
  return {ObjectTraits<T>::type, object.id()};
}

template <class T>
std::vector<std::string> missing_tags(const T& incoming, const T& stored) {
  std::vector<std::string> names;
  for (const auto& tag : incoming.tags()) {
    const auto& has = stored.tags();
    const bool found = std::any_of(has.begin(), has.end(),
                                   [&](const auto& other) { return other->name() == tag->name(); });
    if (!found) names.push_back(tag->name().utf8());
  }
  return names;
}

std::string code_of(const Material& material) {
  return material.has_code() ? material.code().utf8() : std::string();
}

std::string code_of(const Composition&) { return {}; }

[[noreturn]] void fail_missing(const PlanEntry& entry) {
  throw PlanError(fmt::format("there is no {} with the id {} in the library any more",
                              singular_of(entry.source.type), entry.stored));
}

[[noreturn]] void fail_name(const PlanEntry& entry, const std::string& name) {
  throw PlanError(fmt::format("the {} '{}' cannot get the name '{}', which is taken",
                              singular_of(entry.source.type), entry.name, name));
}

bool is_written(const PlanEntry& entry) {
  return comes_in(entry) || entry.decision == Decision::Change;
}

/// An object that is overwritten keeps its tags, and gets those that it lacks.
template <class T>
void add_tags(PlanEntry& entry, const T& incoming, const T& stored) {
  const auto missing = missing_tags(incoming, stored);
  if (missing.empty()) return;
  Value::Texts before;
  for (const auto& tag : stored.tags()) before.push_back(tag->name().utf8());
  Value::Texts after = before;
  after.insert(after.end(), missing.begin(), missing.end());
  entry.changes.push_back({"tags", before, after});
}

}  // namespace

template <class T>
KindPlanning<T>::KindPlanning(const Library& source, const Library& destination,
                              const PlanRules& rules, const Progress& progress,
                              const NewNames& materials)
    : source_(source),
      destination_(destination),
      rules_(rules),
      progress_(progress),
      materials_(materials),
      comparing_(source, destination),
      stored_(destination, source.count<T>(), static_cast<bool>(rules.ignores_case)),
      stored_codes_(destination) {}

template <class T>
void KindPlanning<T>::plan(std::vector<PlanEntry>& entries) {
  const std::size_t begin = entries.size();
  const auto ids = source_.ids<T>();
  entries.reserve(begin + ids.size());
  std::set<unsigned> part;
  for (const unsigned id : ids) {
    part.insert(part.end(), id);
    if (part.size() < part_size) continue;
    plan_part(part, entries);
    part.clear();
  }
  plan_part(part, entries);
  settle_taken(entries, begin);
}

template <class T>
void KindPlanning<T>::plan_part(const std::set<unsigned>& ids, std::vector<PlanEntry>& entries) {
  if (ids.empty()) return;
  Objects incoming;
  source_.get(incoming, ids);
  const std::size_t begin = entries.size();
  std::set<unsigned> stored_ids;
  for (const auto& object : incoming) {
    entries.push_back(entry_of(*object));
    if (entries.back().stored != 0) stored_ids.insert(entries.back().stored);
  }
  Objects found;
  destination_.get(found, stored_ids);
  std::map<unsigned, std::shared_ptr<T>> stored;
  for (const auto& object : found) stored.emplace(object->id(), object);
  for (std::size_t i = 0; i < incoming.size(); ++i) {
    auto& entry = entries[begin + i];
    if (progress_) progress_();
    note_code(*incoming[i]);
    if (entry.stored != 0 && stored.count(entry.stored) == 0) forget_stored(entry);
    if (entry.stored == 0) {
      if (is_renamed(entry.source)) rename(entry, *incoming[i]);
      continue;
    }
    decide(entry, *incoming[i], *stored[entry.stored]);
  }
}

/// One of the same name that cannot be read counts as not there, as it does in a list.
template <class T>
void KindPlanning<T>::forget_stored(PlanEntry& entry) const {
  if (rules_.states_of.count(entry.source) != 0) fail_missing(entry);
  entry.stored = 0;
  entry.clashes.clear();
}

template <class T>
void KindPlanning<T>::note_code(const T& incoming) {
  const auto code = code_of(incoming);
  if (!code.empty()) codes_.emplace(key_of(incoming), code);
}

template <class T>
void KindPlanning<T>::decide(PlanEntry& entry, const T& incoming, const T& stored) {
  if (rules_.fingerprints) entry.fingerprint = fingerprint_of(stored);
  if (rules_.states_of.count(entry.source) != 0) return decide_state(entry, incoming, stored);
  compare(entry, incoming, stored);
  if (!entry.clashes.empty()) decide_clash(entry, incoming, stored);
}

template <class T>
PlanEntry KindPlanning<T>::entry_of(const T& incoming) const {
  PlanEntry entry{key_of(incoming), incoming.name().utf8(), Decision::Add, 0, {}, {}, {}, {}, {}};
  entry.result = entry.name;
  bool other_case = false;
  entry.stored = stored_for(incoming, other_case);
  if (other_case) entry.clashes.push_back({Clash::With::OtherCase, entry.stored, {}, {}});
  return entry;
}

template <class T>
unsigned KindPlanning<T>::stored_for(const T& incoming, bool& other_case) const {
  const auto state = rules_.states_of.find(key_of(incoming));
  if (state != rules_.states_of.end()) return state->second;
  const std::string name = incoming.name().utf8();
  const unsigned exact = stored_.with_name(name);
  if (exact != 0 || !rules_.ignores_case || !rules_.ignores_case(key_of(incoming))) return exact;
  const unsigned folded = stored_.with_folded_name(name);
  if (folded == 0) return 0;
  const auto stored = destination_.get<T>(folded);
  // Another object of the source may have the very name, and then is the one that is meant.
  other_case = stored && !source_.get<T>(stored->name());
  return other_case ? folded : 0;
}

template <class T>
void KindPlanning<T>::decide_state(PlanEntry& entry, const T& incoming, const T& stored) const {
  entry.changes = comparing_.all_differences(incoming, stored, materials_);
  const auto own_rule = rules_.for_object.find(entry.source);
  const bool stays = own_rule != rules_.for_object.end() && own_rule->second == OnClash::Use;
  entry.decision = stays ? Decision::Keep : Decision::Change;
  if (entry.changes.empty()) entry.decision = Decision::Equal;
}

/// Leaves a clash for what differs.
template <class T>
void KindPlanning<T>::compare(PlanEntry& entry, const T& incoming, const T& stored) const {
  entry.changes = comparing_.differences(incoming, stored, materials_);
  entry.result = stored.name().utf8();
  if (!entry.changes.empty()) {
    if (entry.clashes.empty()) entry.clashes.push_back({Clash::With::Name, entry.stored, {}, {}});
    entry.clashes.back().name = entry.result;
    return;
  }
  entry.clashes.clear();
  if (rules_.untagged.count(entry.source) == 0) entry.tags = missing_tags(incoming, stored);
  entry.decision = entry.tags.empty() ? Decision::Equal : Decision::Tag;
}

template <class T>
void KindPlanning<T>::decide_clash(PlanEntry& entry, const T& incoming, const T& stored) {
  switch (policy_for(entry.source)) {
    case OnClash::Fail:
      entry.decision = Decision::Undecided;
      return;
    case OnClash::Use:
      entry.decision = Decision::Keep;
      return;
    case OnClash::Overwrite:
      entry.decision = Decision::Change;
      return add_tags(entry, incoming, stored);
    case OnClash::Rename:
      return rename(entry, incoming);
  }
}

template <class T>
void KindPlanning<T>::rename(PlanEntry& entry, const T& incoming) {
  const auto given = given_name(entry);
  if (!given.empty()) {
    if (!rename_to(entry, incoming, given)) fail_name(entry, given);
    return;
  }
  unsigned number = 2;
  while (!rename_to(entry, incoming, fmt::format("{} ({})", entry.name, number))) ++number;
}

/// A name that is taken may stand for the same object that was renamed before.
template <class T>
bool KindPlanning<T>::rename_to(PlanEntry& entry, const T& incoming, const std::string& name) {
  if (!is_free(name, entry.name)) return false;
  const auto stored = destination_.get<T>(library_text(name));
  if (!stored) {
    entry.decision = Decision::Rename;
    entry.result = name;
    given_names_.insert(name);
    return true;
  }
  PlanEntry other = entry;
  other.stored = stored->id();
  other.clashes.clear();
  compare(other, incoming, *stored);
  if (!other.clashes.empty()) return false;
  if (rules_.fingerprints) other.fingerprint = fingerprint_of(*stored);
  entry = std::move(other);
  return true;
}

/// Whether an object is to come in under another name though nothing has its own.
template <class T>
bool KindPlanning<T>::is_renamed(const ObjectKey& key) const {
  return rules_.new_names.count(key) != 0 && policy_for(key) == OnClash::Rename;
}

template <class T>
std::string KindPlanning<T>::given_name(const PlanEntry& entry) const {
  const auto found = rules_.new_names.find(entry.source);
  return found != rules_.new_names.end() ? found->second : std::string();
}

/// Whether no other object of the source has the name, or is to get it.
template <class T>
bool KindPlanning<T>::is_free(const std::string& name, const std::string& own) const {
  if (name == own || given_names_.count(name) != 0) return false;
  return !source_.get<T>(library_text(name));
}

template <class T>
OnClash KindPlanning<T>::policy_for(const ObjectKey& key) const {
  const auto object = rules_.for_object.find(key);
  if (object != rules_.for_object.end()) return object->second;
  const auto kind = rules_.for_kind.find(key.type);
  return kind != rules_.for_kind.end() ? kind->second : rules_.on_clash;
}

/// Codes, and the names of other states of stored objects, may be taken by objects that nothing of
/// the source stands for. Unless these give them up, somebody has to decide.
template <class T>
void KindPlanning<T>::settle_taken(std::vector<PlanEntry>& entries, std::size_t begin) {
  std::set<unsigned> give_code_up;
  std::set<unsigned> give_name_up;
  for (std::size_t i = begin; i < entries.size(); ++i) {
    if (change_of(entries[i], "code")) give_code_up.insert(entries[i].stored);
    if (change_of(entries[i], "name")) give_name_up.insert(entries[i].stored);
  }
  for (std::size_t i = begin; i < entries.size(); ++i) {
    auto& entry = entries[i];
    if (!is_written(entry)) continue;
    const auto code = codes_.find(entry.source);
    if (code != codes_.end()) {
      require_free(entry, stored_codes_.holder_of(code->second), give_code_up, code->second);
    }
    if (change_of(entry, "name")) {
      require_free(entry, stored_.with_name(entry.result), give_name_up, {});
    }
  }
}

/// What was decided about the name does not help then. Without a code it is the name that is taken.
template <class T>
void KindPlanning<T>::require_free(PlanEntry& entry, unsigned holder,
                                   const std::set<unsigned>& give_up,
                                   const std::string& code) const {
  const bool own = entry.decision == Decision::Change && holder == entry.stored;
  if (holder == 0 || own || give_up.count(holder) != 0) return;
  if (entry.decision != Decision::Undecided) entry.clashes.clear();
  const auto other = destination_.get<T>(holder);
  const auto with = code.empty() ? Clash::With::Name : Clash::With::Code;
  entry.clashes.push_back({with, holder, other ? other->name().utf8() : std::string(), code});
  entry.decision = Decision::Undecided;
}

template class KindPlanning<Material>;
template class KindPlanning<Composition>;

}  // namespace veldra::kit
