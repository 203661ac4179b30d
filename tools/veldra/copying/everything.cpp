// SPDX-License-Identifier: GPL-2.0-or-later
#include "copying/everything.hpp"

#include "progress.hpp"

namespace veldra_tool {

namespace {

class Stepping : public veldra::Library::Reactor {
 public:
  explicit Stepping(Progress& progress) : progress_(progress) {}

  void objectSaved(veldra::Library&, const veldra::ObjectKey&) override { progress_.step(); }

 private:
  Progress& progress_;
};

kit::PlanEntry entry_of(const veldra::IdMapping::Entries::value_type& copied) {
  kit::PlanEntry entry{};
  entry.source = copied.first.key;
  entry.decision = copied.second.status == veldra::IdMapping::Existing ? kit::Decision::Equal
                                                                       : kit::Decision::Add;
  return entry;
}

}  // namespace

bool has_no_names(const veldra::Library& library) {
  return library.count<veldra::Material>() + library.count<veldra::Composition>() == 0;
}

std::vector<kit::PlanEntry> copy_everything(const std::shared_ptr<const veldra::Library>& source,
                                            veldra::Library& destination) {
  Progress progress("copying");
  Stepping stepping(progress);
  const kit::ReactorGuard guard(destination, stepping);
  veldra::IdMapping mapping(&destination);
  destination.copyAll(source, mapping);
  std::vector<kit::PlanEntry> entries;
  entries.reserve(mapping.size());
  for (const auto& copied : mapping) entries.push_back(entry_of(copied));
  return entries;
}

}  // namespace veldra_tool
