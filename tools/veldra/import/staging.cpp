// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/staging.hpp"

#include "opening.hpp"

namespace veldra_tool {

namespace {

using Counts = std::map<Outcome, unsigned>;

Counts& counts_of(veldra::ObjectType kind, ImportedSource& source) {
  return kind == veldra::ObjectType::Material ? source.materials : source.compositions;
}

veldra::String name_of(const veldra::ObjectKey& key, const veldra::Library& library) {
  if (key.type == veldra::ObjectType::Material) {
    return library.get<veldra::Material>(key.id)->name();
  }
  return library.get<veldra::Composition>(key.id)->name();
}

Outcome outcome_of(kit::Repetition repetition) {
  switch (repetition) {
    case kit::Repetition::Used:
      return Outcome::Kept;
    case kit::Repetition::Overwrote:
      return Outcome::Changed;
    default:
      return Outcome::Equal;
  }
}

void ignore_tags_of_origin(const kit::Sources& sources, ConflictReactor& reactor) {
  for (const auto& [key, origin] : sources.origins) {
    if (origin.ignores_case) reactor.ignore_tags(key.type, name_of(key, *sources.library));
  }
}

void count_outcomes(const kit::Sources& sources, const ConflictReactor& reactor,
                    const veldra::IdMapping& mapping, ImportReport& report) {
  for (const auto& [key, origin] : sources.origins) {
    veldra::IdMapping::Value value;
    if (!mapping.compute({key, sources.library.get()}, value)) continue;
    auto outcome = reactor.outcome(key.type, name_of(key, *sources.library), value.status);
    if (outcome == Outcome::Added && origin.renamed) outcome = Outcome::Renamed;
    ++counts_of(key.type, report[origin.source])[outcome];
  }
}

}  // namespace

ImportReport transfer_sources(const kit::Sources& sources,
                              const std::shared_ptr<veldra::Library>& library,
                              const ImportRules& rules, Progress& progress) {
  const auto staging = watched(sources.library);
  veldra::IdMapping mapping(library.get());
  ConflictReactor reactor(rules.on_conflict, *staging, mapping);
  if (rules.tagged_by_origin) ignore_tags_of_origin(sources, reactor);
  transfer(staging, library, reactor, mapping, progress);
  ImportReport report;
  for (const auto& found : sources.reports) {
    report.push_back({found, {}, {}});
    for (const auto& repeated : found.repeated) {
      ++counts_of(repeated.object.type, report.back())[outcome_of(repeated.what)];
    }
  }
  count_outcomes(sources, reactor, mapping, report);
  return report;
}

}  // namespace veldra_tool
