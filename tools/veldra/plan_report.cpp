// SPDX-License-Identifier: GPL-2.0-or-later
#include "plan_report.hpp"

#include "failure.hpp"
#include "kinds.hpp"
#include "table.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace veldra_tool {

namespace {

using kit::Clash;
using kit::Decision;
using kit::PlanEntry;

/// A value that a field of an object has, or is to have.
std::string text_of(const PlanEntry& entry, const std::string& field, const kit::Value& value) {
  if (value.is_empty()) return "nothing";
  return printable(kit::field_text(entry.source.type, field, value));
}

/// How people know an object: one that gets another name by that which it has.
std::string known_name(const PlanEntry& entry) {
  if (entry.decision != Decision::Change) return entry.name;
  for (const auto& change : entry.changes) {
    if (change.field == "name") return kit::value_text(change.before);
  }
  return entry.name;
}

std::string outcome_text(const PlanEntry& entry) {
  if (entry.decision == Decision::Rename) {
    return fmt::format("renamed to {}", in_quotes(entry.result));
  }
  if (entry.decision == Decision::Tag) {
    std::string names;
    for (const auto& tag : entry.tags) names += (names.empty() ? "" : ", ") + printable(tag);
    return fmt::format("tagged {}", names);
  }
  if (entry.result != known_name(entry)) {
    return fmt::format("{}, as {}", name_of(entry.decision), in_quotes(entry.result));
  }
  return name_of(entry.decision);
}

/// What changes; of an object that is kept, in what it differs.
std::string changes_text(const PlanEntry& entry) {
  std::string text;
  for (const auto& change : entry.changes) {
    const bool stays = entry.decision == Decision::Keep || entry.decision == Decision::Undecided;
    text += fmt::format("    {}: {}{}{}\n", printable(change.field),
                        text_of(entry, change.field, change.before), stays ? ", and not " : " -> ",
                        text_of(entry, change.field, change.after));
  }
  return text;
}

/// A line for each object, with what changes below it.
std::string full_text(const PlanEntries& entries) {
  std::size_t kind_width = 0;
  std::size_t name_width = 0;
  for (const auto* entry : entries) {
    kind_width = std::max(kind_width, singular_of(entry->source.type).size());
    name_width = std::max(name_width, display_width(printable(known_name(*entry))));
  }
  std::string text;
  for (const auto* entry : entries) {
    const auto name = printable(known_name(*entry));
    text += fmt::format("{:<{}}  {}{}  {}\n", singular_of(entry->source.type), kind_width, name,
                        std::string(name_width - display_width(name), ' '), outcome_text(*entry));
    if (entry->decision != Decision::Rename) text += changes_text(*entry);
  }
  return text;
}

constexpr const char* nothing_to_do = "There was nothing to do.\n";

std::string counted_text(const PlanEntries& entries) {
  std::map<veldra::ObjectType, std::map<Decision, std::size_t>> counts;
  for (const auto* entry : entries) ++counts[entry->source.type][entry->decision];
  std::string text;
  for (const auto kind : all_kinds()) {
    std::string line;
    for (const auto decision : all_decisions()) {
      const auto count = counts[kind][decision];
      if (count == 0) continue;
      line += fmt::format("{}{} {}", line.empty() ? "" : ", ", count, name_of(decision));
    }
    if (!line.empty()) text += fmt::format("{:<13}  {}\n", plural_of(kind), line);
  }
  return text;
}

bool is_built(const PlanEntry& entry) {
  return entry.source.type == veldra::ObjectType::Material ||
         entry.source.type == veldra::ObjectType::Composition;
}

/// Without the tags, types, layers and properties that are in both libraries.
PlanEntries noteworthy(const PlanEntries& entries) {
  PlanEntries result;
  for (const auto* entry : entries) {
    if (is_built(*entry) || entry->decision != Decision::Equal) result.push_back(entry);
  }
  return result;
}

PlanEntries pointers_to(const std::vector<PlanEntry>& entries) {
  PlanEntries pointers;
  pointers.reserve(entries.size());
  for (const auto& entry : entries) pointers.push_back(&entry);
  return pointers;
}

/// In the order of kinds in which people look for them.
PlanEntries in_order(const PlanEntries& entries) {
  PlanEntries result;
  for (const auto kind : all_kinds()) {
    for (const auto* entry : entries) {
      if (entry->source.type == kind) result.push_back(entry);
    }
  }
  return result;
}

Json changes_to_json(const PlanEntry& entry) {
  Json list = Json::array();
  for (const auto& change : entry.changes) {
    Json json = Json::object();
    json["field"] = change.field;
    json["old"] = value_to_json(change.before);
    json["new"] = value_to_json(change.after);
    list.push_back(json);
  }
  return list;
}

Json clashes_to_json(const PlanEntry& entry) {
  Json list = Json::array();
  for (const auto& clash : entry.clashes) {
    Json json = key_to_json({entry.source.type, clash.id}, clash.name);
    json["same"] = name_of(clash.with);
    list.push_back(json);
  }
  return list;
}

Json json_of(const PlanEntry& entry, unsigned id) {
  Json json = Json::object();
  json["kind"] = singular_of(entry.source.type);
  if (id != 0) json["id"] = id;
  json["name"] = known_name(entry);
  json["outcome"] = name_of(entry.decision);
  json["name_in_destination"] = entry.result;
  if (!entry.changes.empty()) json["changes"] = changes_to_json(entry);
  if (!entry.clashes.empty()) json["clashes"] = clashes_to_json(entry);
  if (!entry.tags.empty()) json["tags"] = entry.tags;
  return json;
}

std::string differences_text(const PlanEntry& entry) {
  std::string text;
  for (const auto& change : entry.changes) {
    text += fmt::format("{}{}: {} there, {} here", text.empty() ? "" : "; ",
                        printable(change.field), text_of(entry, change.field, change.before),
                        text_of(entry, change.field, change.after));
  }
  return text;
}

std::string sentence_of(const PlanEntry& entry, const Clash& clash) {
  const auto object = fmt::format("{} {}", singular_of(entry.source.type), in_quotes(entry.name));
  switch (clash.with) {
    case Clash::With::Name:
      if (entry.stored != clash.id) {
        return fmt::format("{}: the library has another one of that name", object);
      }
      return fmt::format("the library has a {} already, which differs ({})", object,
                         differences_text(entry));
    case Clash::With::OtherCase:
      return fmt::format("the library has a {} already, written {}, which differs ({})", object,
                         in_quotes(clash.name), differences_text(entry));
    case Clash::With::Code:
      return fmt::format("{} has the code {}, which {} of the library has already", object,
                         in_quotes(clash.code), in_quotes(clash.name));
  }
  return {};
}

}  // namespace

const std::vector<kit::Decision>& all_decisions() {
  static const std::vector<Decision> decisions{
      Decision::Add,    Decision::Equal,  Decision::Tag,      Decision::Keep,
      Decision::Change, Decision::Rename, Decision::Undecided};
  return decisions;
}

PlanEntries entries_of(const kit::Plan& plan) { return pointers_to(plan.entries()); }

std::string text_of(const PlanEntries& entries, bool verbose) {
  const auto shown = verbose ? entries : noteworthy(entries);
  if (shown.empty()) return nothing_to_do;
  return verbose || shown.size() <= few_objects ? full_text(in_order(shown)) : counted_text(shown);
}

std::string counted_text(const std::vector<PlanEntry>& entries) {
  const auto shown = noteworthy(pointers_to(entries));
  return shown.empty() ? nothing_to_do : counted_text(shown);
}

Json json_of(const PlanEntries& entries, const veldra::IdMapping& mapping,
             const veldra::Library& source) {
  Json list = Json::array();
  for (const auto* entry : entries) {
    veldra::IdMapping::Value value;
    const bool is_there = mapping.compute({entry->source, &source}, value);
    list.push_back(json_of(*entry, is_there ? value.id : entry->stored));
  }
  return list;
}

std::vector<Undecided> clashes_of(const kit::Plan& plan) {
  std::vector<Undecided> clashes;
  for (const auto& entry : plan.entries()) {
    if (entry.decision != Decision::Undecided) continue;
    for (const auto& clash : entry.clashes) {
      clashes.push_back({sentence_of(entry, clash), clash.with != Clash::With::Code});
    }
  }
  return clashes;
}

}  // namespace veldra_tool
