// SPDX-License-Identifier: GPL-2.0-or-later
#include "removal.hpp"

#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "references.hpp"
#include "table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace veldra_tool {

namespace {

using veldra::ObjectType;

/// The order in which the library removes: what refers goes before what it refers to.
constexpr ObjectType removal_order[] = {ObjectType::Composition,    ObjectType::Material,
                                        ObjectType::MaterialType,   ObjectType::Layer,
                                        ObjectType::CustomProperty, ObjectType::Tag};

}  // namespace

std::vector<Candidate> candidates(const veldra::Library& library,
                                  const std::set<ObjectType>& kinds) {
  std::vector<Candidate> result;
  for (const auto kind : removal_order) {
    if (kinds.count(kind) == 0) continue;
    with_class_of(kind, [&](auto of) {
      using T = typename decltype(of)::type;
      for (const auto& object : all_objects<T>(library)) {
        result.push_back({veldra::ObjectKey(kind, object->id()), object->name().utf8()});
      }
    });
  }
  return result;
}

void enter_results(std::vector<Candidate>& candidates,
                   const std::map<veldra::ObjectKey, bool>& results) {
  for (auto& candidate : candidates) {
    const auto found = results.find(candidate.key);
    candidate.removed = found != results.end() && found->second;
  }
}

void predict_removal(std::vector<Candidate>& candidates, const veldra::Library& library) {
  const auto references = references_in(library);
  std::set<veldra::ObjectKey> gone;
  for (auto& candidate : candidates) {
    const auto found = references.find(candidate.key);
    candidate.removed =
        found == references.end() ||
        std::all_of(found->second.begin(), found->second.end(),
                    [&](const Reference& reference) { return gone.count(reference.from) > 0; });
    if (candidate.removed) gone.insert(candidate.key);
  }
}

RemovalCounts counts_of(const std::vector<Candidate>& candidates) {
  RemovalCounts counts;
  for (const auto& candidate : candidates) {
    if (candidate.removed) ++counts[candidate.key.type];
  }
  return counts;
}

std::string text_of(const RemovalCounts& counts) {
  std::size_t sum = 0;
  std::string kinds;
  for (const auto kind : removal_order) {
    const auto found = counts.find(kind);
    if (found == counts.end()) continue;
    sum += found->second;
    kinds += fmt::format("{}{} {}", kinds.empty() ? "" : ", ", found->second,
                         found->second == 1 ? singular_of(kind) : plural_of(kind));
  }
  if (sum == 0) return "no object";
  return fmt::format("{} {} ({})", sum, sum == 1 ? "object" : "objects", kinds);
}

void print_candidates(Spool& output, const std::vector<Candidate>& candidates, bool json,
                      const char* removed) {
  if (json) {
    return print_json_list(output, candidates, [](const Candidate& candidate) {
      Json entry = key_to_json(candidate.key, candidate.name);
      entry["removed"] = candidate.removed;
      return entry;
    });
  }
  Table table = object_table("what became of it");
  for (const auto& candidate : candidates) {
    table.add({singular_of(candidate.key.type), fmt::format("{}", candidate.key.id), candidate.name,
               candidate.removed ? removed : "stays: in use"});
  }
  print_table(output, table, "There was nothing to remove.");
}

void print_purged(Spool& output, const std::vector<Candidate>& candidates, bool json,
                  const char* removed) {
  if (json) return print_candidates(output, candidates, json, removed);
  std::vector<Candidate> gone;
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(gone),
               [](const Candidate& candidate) { return candidate.removed; });
  print_candidates(output, gone, json, removed);
  const auto staying = candidates.size() - gone.size();
  output.print("{} {} in use.\n", staying,
               staying == 1 ? "object stays, because it is" : "objects stay, because they are");
}

}  // namespace veldra_tool
