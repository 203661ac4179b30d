// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/staging.hpp"

#include "opening.hpp"
#include "progress.hpp"

namespace veldra_tool {

namespace {

template <class T>
void save_all(const IncomingObjects<T>& objects, veldra::Library& staging, Progress& progress) {
  for (const auto& incoming : objects.all()) {
    staging.save(incoming.object);
    progress.step();
  }
}

template <class T>
void ignore_tags_of_origin(const IncomingObjects<T>& objects, ConflictReactor& reactor) {
  for (const auto& incoming : objects.all()) {
    if (!incoming.tagged_by_origin) continue;
    reactor.ignore_tags(veldra::ObjectTraits<T>::type, incoming.object->name());
  }
}

template <class T>
void count_outcomes(const IncomingObjects<T>& objects, const veldra::Library& staging,
                    const ConflictReactor& reactor, const veldra::IdMapping& mapping,
                    std::map<Outcome, unsigned> SourceReport::*counts, ImportReport& report) {
  constexpr auto type = veldra::ObjectTraits<T>::type;
  for (const auto& incoming : objects.all()) {
    veldra::IdMapping::Value value;
    if (!mapping.compute({veldra::ObjectKey(type, incoming.object->id()), &staging}, value)) {
      continue;
    }
    auto outcome = reactor.outcome(type, incoming.object->name(), value.status);
    if (outcome == Outcome::Added && incoming.renamed) outcome = Outcome::Renamed;
    ++(report[incoming.source].*counts)[outcome];
  }
}

}  // namespace

std::shared_ptr<veldra::Library> staged(const ImportSet& set, veldra::Unit unit,
                                        Progress& progress) {
  auto staging = create_staging_library(unit);
  set.shared().save_all(*staging);
  save_all(set.materials(), *staging, progress);
  save_all(set.compositions(), *staging, progress);
  return staging;
}

void transfer_set(const ImportSet& set, const std::shared_ptr<veldra::Library>& staging,
                  const std::shared_ptr<veldra::Library>& library, OnConflict policy,
                  ImportReport& report, Progress& progress) {
  veldra::IdMapping mapping(library.get());
  ConflictReactor reactor(policy, *staging, mapping);
  ignore_tags_of_origin(set.materials(), reactor);
  ignore_tags_of_origin(set.compositions(), reactor);
  transfer(staging, library, reactor, mapping, progress);
  count_outcomes(set.materials(), *staging, reactor, mapping, &SourceReport::materials, report);
  count_outcomes(set.compositions(), *staging, reactor, mapping, &SourceReport::compositions,
                 report);
}

}  // namespace veldra_tool
