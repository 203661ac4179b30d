// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/planning.hpp"

#include "kit/plan/kind_planning.hpp"

namespace veldra::kit {

/// Of an object that is nothing but its name.
template <class T, class Find>
static PlanEntry named_entry(const T& object, Find find) {
  PlanEntry entry{{ObjectTraits<T>::type, object.id()},
                  object.name().utf8(),
                  Decision::Add,
                  find(object),
                  {},
                  {},
                  {},
                  {},
                  {}};
  entry.result = entry.name;
  if (entry.stored != 0) entry.decision = Decision::Equal;
  return entry;
}

std::vector<PlanEntry> Planning::entries() {
  plan_named<Tag>();
  plan_named<Layer>();
  plan_named<MaterialType>();
  plan_properties();
  plan_built<Material>();
  note_new_names();
  plan_built<Composition>();
  return std::move(entries_);
}

void Planning::note_new_names() {
  for (const auto& entry : entries_) {
    if (entry.source.type != ObjectType::Material) continue;
    if (entry.result != entry.name) materials_.incoming.emplace(entry.name, entry.result);
    if (entry.decision != Decision::Change) continue;
    for (const auto& change : entry.changes) {
      if (change.field != "name") continue;
      materials_.stored.emplace(change.before.as<std::string>(), change.after.as<std::string>());
    }
  }
}

template <class T>
void Planning::plan_named() {
  const StoredObjects<T> stored(destination_, source_.count<T>(), false);
  source_.for_each<T>([&](const std::shared_ptr<T>& object) {
    entries_.push_back(
        named_entry(*object, [&](const T& each) { return stored.with_name(each.name().utf8()); }));
    return true;
  });
}

void Planning::plan_properties() {
  const StoredProperties stored(destination_);
  source_.for_each<CustomProperty>([&](const std::shared_ptr<CustomProperty>& property) {
    entries_.push_back(
        named_entry(*property, [&](const CustomProperty& each) { return stored.with_name(each); }));
    return true;
  });
}

template <class T>
void Planning::plan_built() {
  KindPlanning<T>(source_, destination_, rules_, progress_, materials_).plan(entries_);
}

}  // namespace veldra::kit
