// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/application.hpp"

#include "kit/plan/entry.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/reactor_guard.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

/// So many stored objects are in memory at a time.
constexpr std::size_t part_size = 512;

constexpr ObjectType named_kinds[] = {ObjectType::Tag, ObjectType::Layer, ObjectType::MaterialType,
                                      ObjectType::CustomProperty};

/// Gives objects that are copied the names that were planned.
class Names : public Library::Reactor {
 public:
  Names(const Plan& plan, const Progress& progress) : progress_(progress) {
    for (const auto& entry : plan.entries()) {
      if (entry.decision != kit::Decision::Rename) continue;
      names_.emplace(std::make_pair(entry.source.type, library_text(entry.name)), entry.result);
    }
  }

  int resolveNameConflict(Library&, ObjectType type, String& name) override {
    const auto found = names_.find({type, name});
    if (found == names_.end()) {
      throw PlanError(fmt::format("the {} '{}' was not there when the plan was made",
                                  singular_of(type), name.utf8()));
    }
    name = library_text(found->second);
    return Rename;
  }

  void objectSaved(Library&, const ObjectKey&) override {
    if (progress_) progress_();
  }

 private:
  const Progress& progress_;
  std::map<std::pair<ObjectType, String>, std::string> names_;
};

/// Whether a stored object stands for it.
bool is_stored(const PlanEntry& entry) {
  return !comes_in(entry) && entry.decision != Decision::Undecided;
}

/// Fields that move each other when they are set, in the order in which they can be set where the
/// core begins at the first layer.
constexpr const char* bound_fields[] = {"layers",
                                        "last_core_layer",
                                        "first_core_layer",
                                        "structural_layer",
                                        "variable_layer",
                                        "variable_layer_min_thickness",
                                        "variable_layer_max_thickness"};

bool is_bound(const FieldChange& change) {
  return std::find(std::begin(bound_fields), std::end(bound_fields), change.field) !=
         std::end(bound_fields);
}

/// Sets all of them where one changes, to what is planned or what they are.
void change_bound(Composition& composition, const PlanEntry& entry,
                  const Fields<Composition>& fields) {
  if (std::none_of(entry.changes.begin(), entry.changes.end(), is_bound)) return;
  std::vector<Value> wanted;
  for (const char* name : bound_fields) {
    const auto* change = change_of(entry, name);
    wanted.push_back(change ? change->after : fields.at(name).get(composition));
  }
  composition.first_core_layer(0);
  auto value = wanted.begin();
  for (const char* name : bound_fields) fields.at(name).set(composition, *value++);
}

void change_bound(Material&, const PlanEntry&, const Fields<Material>&) {}

}  // namespace

Application::Application(const Plan& plan, Library& destination, const Progress& progress)
    : plan_(plan), destination_(destination), progress_(progress), mapping_(&destination) {}

void Application::assign_existing() {
  for (const auto& entry : plan_.entries()) {
    if (!is_stored(entry)) continue;
    mapping_.assign({entry.source, plan_.source().get()}, {entry.stored, IdMapping::Existing});
  }
}

void Application::add_named() {
  std::set<ObjectKey> keys;
  for (const auto& entry : plan_.entries()) {
    const auto* kind = std::find(std::begin(named_kinds), std::end(named_kinds), entry.source.type);
    if (kind != std::end(named_kinds) && entry.decision == Decision::Add) keys.insert(entry.source);
  }
  if (!keys.empty()) destination_.copy(plan_.source(), keys, mapping_);
}

template <class T>
Application::Entries Application::stored_of(Decision decision) const {
  Entries entries;
  for (const auto& entry : plan_.entries()) {
    if (entry.source.type != ObjectTraits<T>::type || entry.decision != decision) continue;
    entries.emplace(entry.stored, &entry);
  }
  return entries;
}

/// Reads the objects a part at a time.
template <class T, class Work>
void Application::for_each_of(const Entries& entries, Work work) {
  auto next = entries.begin();
  while (next != entries.end()) {
    std::set<unsigned> ids;
    for (; next != entries.end() && ids.size() < part_size; ++next) ids.insert(next->first);
    std::vector<std::shared_ptr<T>> objects;
    destination_.get(objects, ids);
    for (const auto& object : objects) {
      work(*object, *entries.at(object->id()));
      destination_.save(object);
    }
  }
}

template <class T>
void Application::change() {
  const auto entries = stored_of<T>(Decision::Change);
  if (entries.empty()) return;
  if (std::is_same<T, Material>::value) give_up_codes(entries);
  give_up_names<T>(entries);
  const Fields<T> fields(destination_);
  for_each_of<T>(entries,
                 [&](T& stored, const PlanEntry& entry) { change(stored, entry, fields); });
}

template <class T>
void Application::change(T& stored, const PlanEntry& entry, const Fields<T>& fields) {
  for (const auto& change : entry.changes) {
    if (!is_bound(change)) fields.at(change.field).set(stored, change.after);
  }
  change_bound(stored, entry, fields);
}

/// Two objects may exchange their codes, of which there must never be two.
void Application::give_up_codes(const Entries& entries) {
  Entries concerned;
  for (const auto& [id, entry] : entries) {
    const FieldChange* change = change_of(*entry, "code");
    if (change && !change->before.is_nothing()) concerned.emplace(id, entry);
  }
  for_each_of<Material>(concerned,
                        [](Material& material, const PlanEntry&) { material.clear_code(); });
}

/// The same with names, where one that is given is another's before.
template <class T>
void Application::give_up_names(const Entries& entries) {
  Entries concerned;
  std::set<std::string> wanted;
  for (const auto& [id, entry] : entries) {
    const FieldChange* change = change_of(*entry, "name");
    if (change) wanted.insert(change->after.as<std::string>());
  }
  for (const auto& [id, entry] : entries) {
    const FieldChange* change = change_of(*entry, "name");
    if (change && wanted.count(change->before.as<std::string>()) != 0) concerned.emplace(id, entry);
  }
  for_each_of<T>(concerned, [this](T& object, const PlanEntry& entry) {
    unsigned number = 0;
    String name;
    do {
      name = library_text(fmt::format("{} \xE2\x80\xA6{}", entry.name, number++));
    } while (destination_.get<T>(name));
    object.name(name);
  });
}

template <class T>
void Application::copy(const std::set<unsigned>& ids) {
  destination_.copy<T>(plan_.source(), ids, mapping_);
}

/// They are all that is left by now, and come in the order of their ids this way.
template <>
void Application::copy<Composition>(const std::set<unsigned>&) {
  destination_.copyAll(plan_.source(), mapping_);
}

template <class T>
void Application::add() {
  std::set<unsigned> ids;
  for (const auto& entry : plan_.entries()) {
    const bool is_kind = entry.source.type == ObjectTraits<T>::type;
    if (is_kind && comes_in(entry)) ids.insert(ids.end(), entry.source.id);
  }
  if (ids.empty()) return;
  copy<T>(ids);
  give_new_names<T>(ids);
}

/// Names that differ in case only are no question of the library.
template <class T>
void Application::give_new_names(const std::set<unsigned>& ids) {
  Entries entries;
  for (const auto& entry : plan_.entries()) {
    const bool is_kind = entry.source.type == ObjectTraits<T>::type;
    if (!is_kind || entry.decision != Decision::Rename || ids.count(entry.source.id) == 0) continue;
    IdMapping::Value value;
    if (mapping_.compute({entry.source, plan_.source().get()}, value)) {
      entries.emplace(value.id, &entry);
    }
  }
  for_each_of<T>(entries, [](T& object, const PlanEntry& entry) {
    const auto name = library_text(entry.result);
    if (object.name() != name) object.name(name);
  });
}

template <class T>
void Application::tag() {
  for_each_of<T>(stored_of<T>(Decision::Tag), [this](T& object, const PlanEntry& entry) {
    for (const auto& name : entry.tags) object.addTag(tag_named(name));
  });
}

std::shared_ptr<Tag> Application::tag_named(const std::string& name) {
  auto& tag = tags_[name];
  if (!tag) tag = destination_.get<Tag>(library_text(name));
  return tag;
}

IdMapping Application::run() {
  assign_existing();
  if (!plan_.changes_anything()) return std::move(mapping_);
  Names names(plan_, progress_);
  const ReactorGuard guard(destination_, names);
  add_named();
  change<Material>();
  add<Material>();
  change<Composition>();
  add<Composition>();
  tag<Material>();
  tag<Composition>();
  return std::move(mapping_);
}

}  // namespace veldra::kit
