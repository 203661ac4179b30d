// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_walk.hpp"

#include "store/model_kinds.hpp"
#include "support/database.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <unistd.h>

#include <cstdlib>

namespace veldra_tests {

namespace {

std::string rows_of(const Library& library) { return dump(library.filename().utf8()); }

void expect_second_copy_writes_nothing(Library& library, const std::shared_ptr<Library>& source) {
  IdMapping mapping(&library);
  library.copyAll(source, mapping);
  const std::string once = rows_of(library);
  library.copyAll(source, mapping);
  EXPECT_EQ(rows_of(library), once);
}

void expect_second_purge_removes_nothing(Library& library) {
  const std::set<ObjectType> kinds{ObjectType::Material, ObjectType::MaterialType,
                                   ObjectType::Layer, ObjectType::CustomProperty, ObjectType::Tag};
  library.purge(kinds);
  const std::string once = rows_of(library);
  std::map<ObjectKey, bool> result;
  library.purge(kinds, result);
  EXPECT_EQ(rows_of(library), once);
  for (const auto& entry : result) EXPECT_FALSE(entry.second);
  EXPECT_EQ(damage(library.filename().utf8()), "");
}

std::vector<std::string> notifications_in(const RecordingReactor& reactor) {
  std::vector<std::string> calls = reactor.calls_starting_with("type");
  for (const std::string& call : reactor.calls_starting_with("library")) calls.push_back(call);
  return calls;
}

std::vector<std::string> notifications_of(const std::set<ObjectType>& changed) {
  std::vector<std::string> calls;
  for (const ObjectType kind : changed) calls.push_back("type " + kind_name(kind));
  if (!changed.empty()) calls.push_back("library");
  return calls;
}

}  // namespace

void keep_files_in_memory() {
  constexpr const char* kMemory = "/dev/shm";
  if (::access(kMemory, W_OK) == 0) ::setenv("TMPDIR", kMemory, 0);
}

RandomWalk::RandomWalk(Random random)
    : random_(std::move(random)),
      sides_{Side(folder_ / "millimetres.lib", Unit::Millimetres),
             Side(folder_ / "inches.lib", Unit::Inches)} {}

void RandomWalk::step() {
  if (random_.chance(8)) return do_several();
  do_one();
}

void RandomWalk::do_several() {
  Side& side = sides_[random_.below(2)];
  side.held = std::make_unique<HeldTransaction>(*side.library, side.model);
  for (unsigned steps = 1 + random_.below(6); steps != 0 && !testing::Test::HasFailure(); --steps) {
    do_one();
    compare();
    EXPECT_EQ(dump(side.path), side.held->before.rows) << what_;
  }
  random_.chance(50) ? commit(side) : roll_back(side);
}

void RandomWalk::commit(Side& side) {
  side.reactor.forget();
  side.held->transaction.commit();
  EXPECT_EQ(notifications_in(side.reactor), notifications_of(side.held->changed));
  side.held.reset();
  what_ = "commit of " + side.path + " after " + what_;
}

void RandomWalk::roll_back(Side& side) {
  const Before before = std::move(side.held->before);
  const std::set<ObjectType> changed = side.held->changed;
  what_ = "rollback of " + side.path + " after " + what_;
  side.reactor.forget();
  side.held.reset();
  side.model = before.model;
  EXPECT_EQ(notifications_in(side.reactor), notifications_of(changed)) << what_;
  EXPECT_EQ(dump(side.path), before.rows) << what_;
  for (const auto& object : before.objects) EXPECT_EQ(object.state(), object.before) << what_;
}

void RandomWalk::do_one() {
  const unsigned chosen = random_.below(2);
  side_ = &sides_[chosen];
  other_ = &sides_[1 - chosen];
  const unsigned number = random_.below(100);
  if (number < 8) return save_named();
  if (number < 16) return rename_named();
  if (number < 32) return save_material();
  if (number < 48) return save_composition();
  if (number < 52) return save_unchanged();
  if (number < 62) return remove_one();
  if (number < 68) return remove_several();
  if (number < 74) return purge();
  if (number < 78) return save_removed();
  if (number < 86) return save_foreign();
  if (number < 96) return copy();
  reopen();
}

void RandomWalk::compare() const {
  for (const Side& side : sides_)
    ASSERT_EQ(text_of(stored_in(*side.library)), text_of(side.model)) << what_;
}

void RandomWalk::expect_sound_files() const {
  for (const Side& side : sides_) EXPECT_EQ(damage(side.path), "");
}

void RandomWalk::expect_laws() {
  for (const Side& side : sides_) {
    const auto direct = new_library();
    direct->copyAll(side.library);
    const std::string copied = text_of(stored_in(*direct));
    const auto between = new_library();
    between->copyAll(side.library);
    const auto far = new_library();
    expect_second_copy_writes_nothing(*far, between);
    EXPECT_EQ(text_of(stored_in(*far)), copied) << "a copy of a copy";
    expect_second_purge_removes_nothing(*far);
  }
}

std::shared_ptr<Library> RandomWalk::new_library() {
  const std::string path = folder_ / (std::to_string(++libraries_) + ".lib");
  return Library::create(path.c_str(), Unit::Millimetres, "");
}

void RandomWalk::begin(const std::string& what) { what_ = what + " in " + side_->path; }

bool RandomWalk::run(const Call& call, const Expected& expected, bool keeps_what_was_done) {
  ModelStore attempted = side_->model;
  ModelOperation operation(attempted, decision_);
  ModelFailure failure;
  try {
    expected(operation);
  } catch (const ModelFailure& thrown) {
    failure = thrown;
  }
  side_->reactor.forget();
  const Thrown thrown = thrown_by(call);
  EXPECT_EQ(thrown.type, failure.type) << what_ << ": " << thrown;
  EXPECT_EQ(thrown.text, failure.text) << what_;
  expect_told(operation.changed());
  if (failure.type.empty() || keeps_what_was_done) side_->model = attempted;
  return failure.type.empty();
}

void RandomWalk::expect_told(const std::set<ObjectType>& changed) {
  const std::vector<std::string> told = notifications_in(side_->reactor);
  if (!side_->held) {
    EXPECT_EQ(told, notifications_of(changed)) << what_;
    return;
  }
  EXPECT_EQ(told, std::vector<std::string>()) << what_;
  side_->held->changed.insert(changed.begin(), changed.end());
}

void RandomWalk::decide() {
  decision_ = static_cast<int>(random_.below(4));
  side_->reactor.on_conflict = [this](Library& library, ObjectType kind, String& name) {
    if (decision_ == 0)
      return side_->reactor.Library::Reactor::resolveNameConflict(library, kind, name);
    if (decision_ == Library::Reactor::Rename) name = text(name.utf8() + "'");
    return decision_;
  };
  what_ += ", decision " + std::to_string(decision_);
}

std::vector<ModelKey> RandomWalk::keys_of_some_kind(const ModelStore& store) {
  return keys_in(store, kKinds[random_.below(6)]);
}

void RandomWalk::reopen() {
  if (side_->held) return;
  begin("reopen");
  side_->reopen();
}

}  // namespace veldra_tests
