// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_walk.hpp"

#include "store/model_kinds.hpp"
#include "support/description.hpp"
#include "support/names.hpp"

namespace veldra_tests {

namespace {

constexpr unsigned kMissing = 1000000;

std::set<unsigned> ids_of(const std::set<ObjectKey>& keys) {
  std::set<unsigned> ids;
  for (const ObjectKey& key : keys) ids.insert(key.id);
  return ids;
}

}  // namespace

void RandomWalk::save_foreign() {
  const std::vector<ModelKey> keys = keys_of_some_kind(other_->model);
  if (keys.empty()) return;
  const ModelKey key = random_.pick(keys);
  begin("save foreign " + kind_name(key.kind) + " " + key.name);
  decide();
  for_kind(key.kind, [&](auto kind) {
    using T = typename decltype(kind)::Class;
    const auto object = find<T>(*other_->library, key);
    const std::string before = state_of(object);
    run([&] { EXPECT_EQ(side_->library->save(object)->library(), side_->library); },
        [&](ModelOperation& operation) { operation.copy(other_->model, key); });
    EXPECT_EQ(state_of(object), before) << what_;
  });
}

template <class T>
void RandomWalk::choose(Choice& choice, unsigned percent) {
  std::vector<std::shared_ptr<T>> all, chosen;
  other_->library->get(all);
  std::set<unsigned> ids;
  for (const auto& object : all) {
    if (random_.chance(percent)) ids.insert(object->id());
  }
  if (percent == 100) {
    chosen = all;
  } else {
    other_->library->get(chosen, ids);
  }
  for (const auto& object : chosen) {
    choice.models.push_back(model_key_of(*object));
    choice.keys.insert({veldra::ObjectTraits<T>::type, object->id()});
  }
}

void RandomWalk::copy() {
  const unsigned form = random_.below(3);
  const ObjectType only = kKinds[random_.below(6)];
  Choice choice;
  for (const ObjectType kind : kKinds) {
    if (form == 1 && kind != only) continue;
    for_kind(kind, [&](auto named) {
      choose<typename decltype(named)::Class>(choice, form == 0 ? 100 : 25);
    });
  }
  begin("copy " + std::to_string(choice.keys.size()) + " objects, form " + std::to_string(form));
  decide();
  IdMapping mapping(side_->library.get());
  std::map<ModelKey, std::string> copied;
  run([&] { call_copy(form, only, choice, mapping); },
      [&](ModelOperation& operation) {
        for (const ModelKey& key : choice.models) operation.copy(other_->model, key);
        copied = operation.copied();
      });
  if (!copied.empty()) compare_mapping(mapping, copied);
}

void RandomWalk::call_copy(unsigned form, ObjectType only, const Choice& choice,
                           IdMapping& mapping) {
  Library& library = *side_->library;
  if (form == 0) return library.copyAll(other_->library, mapping);
  if (form == 2) return library.copy(other_->library, choice.keys, mapping);
  for_kind(only, [&](auto kind) {
    using T = typename decltype(kind)::Class;
    std::set<unsigned> ids = ids_of(choice.keys);
    ids.insert(kMissing);
    library.template copy<T>(other_->library, ids, mapping);
  });
}

template <class T>
void RandomWalk::compare_names(const IdMapping& mapping,
                               const std::map<ModelKey, std::string>& copied) {
  for (const auto& entry : copied) {
    if (entry.first.kind != veldra::ObjectTraits<T>::type) continue;
    const auto original = find<T>(*other_->library, entry.first);
    IdMapping::Value value;
    ASSERT_TRUE(mapping.compute({{entry.first.kind, original->id()}, other_->library.get()}, value))
        << what_ << ": " << entry.first.name;
    EXPECT_EQ(side_->library->get<T>(value.id)->name().utf8(), entry.second) << what_;
  }
}

void RandomWalk::compare_mapping(const IdMapping& mapping,
                                 const std::map<ModelKey, std::string>& copied) {
  compare_names<Material>(mapping, copied);
  compare_names<Composition>(mapping, copied);
}

}  // namespace veldra_tests
