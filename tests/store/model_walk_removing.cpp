// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_walk.hpp"

#include "store/model_kinds.hpp"
#include "support/description.hpp"
#include "support/names.hpp"

#include <algorithm>

namespace veldra_tests {

namespace {

constexpr unsigned kMissing = 1000000;

/// Ascending, as the library takes them.
void sort_by_kind_and_id(std::vector<Victim>& victims) {
  const auto rank = [](const Victim& victim) {
    return std::make_pair(std::find(std::begin(kKinds), std::end(kKinds), victim.key.type),
                          victim.key.id);
  };
  std::sort(victims.begin(), victims.end(),
            [&](const Victim& left, const Victim& right) { return rank(left) < rank(right); });
}

/// What the model makes of the removal of several objects.
void remove_all(ModelOperation& operation, const std::vector<Victim>& victims,
                const std::set<ObjectKey>& refused, Removed& result) {
  for (const Victim& victim : victims) {
    bool removed = refused.count(victim.key) == 0;
    try {
      if (removed) operation.remove(victim.model);
    } catch (const ModelFailure& failure) {
      if (failure.type != "veldra::ObjectInUse") throw;
      removed = false;
    }
    result[victim.key] = removed;
  }
}

}  // namespace

Victim RandomWalk::victim_of(const ModelKey& key) const {
  const unsigned id = for_kind(key.kind, [&](auto kind) {
    using T = typename decltype(kind)::Class;
    return find<T>(*side_->library, key)->id();
  });
  return {{key.kind, id}, key};
}

std::set<ObjectKey> RandomWalk::refuse_some(const std::vector<Victim>& victims) {
  std::set<ObjectKey> refused;
  for (const Victim& victim : victims) {
    if (random_.chance(10)) refused.insert(victim.key);
  }
  side_->reactor.on_may_remove = [refused](Library&, const ObjectKey& key) {
    return static_cast<int>(refused.count(key));
  };
  return refused;
}

void RandomWalk::remove_one() {
  const std::vector<ModelKey> keys = keys_of_some_kind(side_->model);
  if (keys.empty()) return;
  const Victim victim = victim_of(random_.pick(keys));
  const bool refused = !refuse_some({victim}).empty();
  const bool by_handle = random_.chance(50);
  begin("remove " + kind_name(victim.key.type) + " " + victim.model.name);
  for_kind(victim.key.type, [&](auto kind) {
    using T = typename decltype(kind)::Class;
    Library& library = *side_->library;
    const auto object = library.template get<T>(victim.key.id);
    watch(object);
    bool removed = false;
    run(
        [&] {
          removed = by_handle ? library.remove(object) : library.template remove<T>(victim.key.id);
        },
        [&](ModelOperation& operation) {
          if (!refused) operation.remove(victim.model);
        },
        true);
    EXPECT_EQ(library.template get<T>(victim.key.id) == nullptr, removed) << what_;
    EXPECT_EQ(object->library() == nullptr, removed && by_handle) << what_;
    EXPECT_EQ(object->id(), victim.key.id);
  });
}

void RandomWalk::run_removal(std::vector<Victim> victims,
                             const std::function<void(Removed&)>& call) {
  sort_by_kind_and_id(victims);
  const std::set<ObjectKey> refused = refuse_some(victims);
  Removed result, expected;
  run([&] { call(result); },
      [&](ModelOperation& operation) { remove_all(operation, victims, refused, expected); }, true);
  EXPECT_EQ(result, expected) << what_;
}

void RandomWalk::remove_several() {
  std::vector<Victim> victims;
  const bool one_kind = random_.chance(40);
  const ObjectType only = kKinds[random_.below(6)];
  for (const ObjectType kind : kKinds) {
    if (one_kind && kind != only) continue;
    for (const ModelKey& key : keys_in(side_->model, kind)) {
      if (random_.chance(25)) victims.push_back(victim_of(key));
    }
  }
  const bool with_missing = random_.chance(15);
  if (with_missing) victims.push_back({{only, kMissing}, {only, "there is none"}});
  begin("remove " + std::to_string(victims.size()) + " objects");
  std::set<ObjectKey> keys;
  std::set<unsigned> ids;
  for (const Victim& victim : victims) {
    keys.insert(victim.key);
    ids.insert(victim.key.id);
  }
  run_removal(victims, [&](Removed& result) {
    if (!one_kind) return side_->library->remove(keys, result);
    for_kind(only, [&](auto kind) {
      using T = typename decltype(kind)::Class;
      side_->library->template remove<T>(ids, result);
    });
  });
}

void RandomWalk::purge() {
  std::set<ObjectType> kinds;
  for (const ObjectType kind : kKinds) {
    if (random_.chance(30)) kinds.insert(kind);
  }
  const bool everything = random_.chance(10);
  if (everything) kinds.insert(std::begin(kKinds), std::end(kKinds));
  std::vector<Victim> victims;
  for (const ObjectType kind : kinds) {
    for (const ModelKey& key : keys_in(side_->model, kind)) victims.push_back(victim_of(key));
  }
  begin("purge " + std::to_string(kinds.size()) + " kinds");
  run_removal(victims, [&](Removed& result) {
    if (everything) return side_->library->purge(result);
    if (kinds.size() != 1) return side_->library->purge(kinds, result);
    for_kind(*kinds.begin(), [&](auto kind) {
      using T = typename decltype(kind)::Class;
      side_->library->template purge<T>(result);
    });
  });
}

}  // namespace veldra_tests
