// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/plan_file.hpp>

#include "kit/exchange/problem.hpp"
#include "kit/plan/entry.hpp"
#include "kit/plan/plan_form.hpp"
#include "kit/plan/plan_reading.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <map>
#include <set>

namespace veldra::kit {

namespace {

/// Whether the stored object has another name, and not the same in another case.
bool is_known_otherwise(const PlanFileEntry& entry) {
  const bool same = entry.ignores_case && lower_case(entry.stored_name) == lower_case(entry.name);
  return !entry.stored_name.empty() && !same;
}

/// By which rule a plan comes to a decision where an object clashes with a stored one.
OnClash rule_for(const PlanFileEntry& entry) {
  switch (entry.decision) {
    case Decision::Keep:
      return OnClash::Use;
    case Decision::Change:
      return OnClash::Overwrite;
    case Decision::Rename:
      return OnClash::Rename;
    default:
      // It may be known under a name that it got before.
      return is_known_otherwise(entry) ? OnClash::Rename : OnClash::Fail;
  }
}

const std::string& new_name_in(const PlanFileEntry& entry) {
  return entry.decision == Decision::Rename ? entry.new_name : entry.stored_name;
}

std::string called(const PlanFileEntry& entry) {
  return fmt::format("{} {}", singular_of(entry.object.type), quoted(entry.name));
}

/// The id of a stored object; 0 where there is none.
unsigned id_in(const Library& destination, ObjectType kind, const std::string& name) {
  const auto text = library_text(name);
  if (kind == ObjectType::Material) {
    const auto object = destination.get<Material>(text);
    return object ? object->id() : 0;
  }
  const auto object = destination.get<Composition>(text);
  return object ? object->id() : 0;
}

/// Which stored objects the entries are other states of.
std::map<ObjectKey, unsigned> states_in(const std::vector<PlanFileEntry>& entries,
                                        const Library& destination) {
  std::map<ObjectKey, unsigned> states;
  std::vector<std::string> missing;
  for (const auto& entry : entries) {
    if (entry.state_of.empty()) continue;
    const unsigned id = id_in(destination, entry.object.type, entry.state_of);
    if (id == 0) missing.push_back(called(entry));
    states[entry.object] = id;
  }
  if (!missing.empty()) throw_changed(missing);
  return states;
}

/// What a stored object is to the one of the file, as the end of a sentence.
const char* state_in(const PlanEntry& entry) {
  switch (entry.decision) {
    case Decision::Equal:
    case Decision::Tag:
      return "as the library has the same one already";
    case Decision::Add:
      return "as the library has none of that name";
    default:
      return "as the library has one that differs";
  }
}

/// Whether an object that is to be renamed is the same as a stored one of another name, and so has
/// come in before. Of the one of its own name the plan says nothing then.
bool is_there_renamed(const PlanFileEntry& entry, const PlanEntry& planned) {
  const bool is_there = planned.decision == Decision::Equal || planned.decision == Decision::Tag;
  return is_there && entry.decision == Decision::Rename && planned.result != entry.name;
}

/// Whether a plan has come to what was decided. To keep what is the same is no other thing. What is
/// open now tells by itself why: a code is in the way, or it differs because of another decision.
bool is_as_decided(const PlanFileEntry& entry, const PlanEntry& planned) {
  if (entry.decision == planned.decision || is_there_renamed(entry, planned)) return true;
  if (planned.decision == Decision::Undecided) return true;
  return entry.decision == Decision::Keep && planned.decision == Decision::Equal;
}

/// The entries of a plan that a file has entries for.
std::vector<const PlanEntry*> entries_in(const Plan& plan) {
  std::vector<const PlanEntry*> entries;
  for (const auto& entry : plan.entries()) {
    if (plan_form::has_entry(entry.source.type)) entries.push_back(&entry);
  }
  return entries;
}

}  // namespace

PlanFile::PlanFile(std::string file, std::string content) : file_(std::move(file)) {
  PlanReading reading(file_, std::move(content));
  reading.read();
  path_ = std::move(reading.path);
  guid_ = reading.guid;
  source_ = reading.source();
  entries_ = std::move(reading.entries);
}

PlanRules PlanFile::rules(const Library& destination) const {
  PlanRules rules;
  rules.fingerprints = true;
  rules.states_of = states_in(entries_, destination);
  std::set<ObjectKey> ignoring;
  for (const auto& entry : entries_) {
    const auto rule = rule_for(entry);
    rules.for_object[entry.object] = rule;
    const auto& new_name = new_name_in(entry);
    if (rule == OnClash::Rename && !new_name.empty()) rules.new_names[entry.object] = new_name;
    const bool leaves_tags = entry.decision == Decision::Equal || entry.decision == Decision::Keep;
    if (leaves_tags) rules.untagged.insert(entry.object);
    if (entry.ignores_case) ignoring.insert(entry.object);
  }
  if (!ignoring.empty()) {
    rules.ignores_case = [ignoring](const ObjectKey& key) { return ignoring.count(key) != 0; };
  }
  return rules;
}

Plan PlanFile::plan(const Library& destination, const Progress& progress) const {
  if (destination.guid() != guid_) throw PlanError("the plan is for another library");
  Plan plan(source_, destination, rules(destination), progress);
  require_same_state(plan);
  require_decisions(plan);
  return plan;
}

void PlanFile::require_same_state(const Plan& plan) const {
  const auto now = entries_in(plan);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (is_there_renamed(entries_[i], *now[i])) continue;
    if (entries_[i].fingerprint != now[i]->fingerprint) names.push_back(called(entries_[i]));
  }
  if (!names.empty()) throw_changed(names);
}

void PlanFile::require_decisions(const Plan& plan) const {
  const auto now = entries_in(plan);
  std::set<ObjectKey> written;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const auto& entry = entries_[i];
    const auto planned = now[i]->decision;
    const auto fail = [&](const std::string& sentence) {
      fail_at(file_, entry.line, fmt::format("{}: {}", called(entry), sentence), entry.name);
    };
    if (!is_as_decided(entry, *now[i])) {
      fail(fmt::format("'{}' makes no sense, {}", plan_form::word_of(entry.decision),
                       state_in(*now[i])));
    }
    if (planned != Decision::Change && planned != Decision::Tag) continue;
    if (!written.insert({entry.object.type, now[i]->stored}).second) {
      fail("another entry changes the same stored one");
    }
  }
}

IdMapping PlanFile::apply(Library& destination, const Progress& progress) const {
  Library::Transaction transaction(destination);
  auto mapping = plan(destination, progress).apply(destination, progress);
  transaction.commit();
  return mapping;
}

}  // namespace veldra::kit
