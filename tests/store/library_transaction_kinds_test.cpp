// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/transaction_objects.hpp"

namespace veldra_tests {
namespace {

template <class T>
void change(T& object) {
  object.name("changed");
}

void change(Material& material) { material.tags(toModify) = {Tag::create("changed")}; }

void change(Composition& composition) {
  composition.entity_layer(Layer::create("changed"));
  if (!composition.layers().empty()) composition.removeLayer(0);
}

/// A tag cannot be changed.
void change(Tag&) {}

template <class T>
class TransactionObjectsOfKind : public TransactionObjects {};
TYPED_TEST_SUITE(TransactionObjectsOfKind, AllKinds, KindNames);

TYPED_TEST(TransactionObjectsOfKind, a_new_one) {
  const auto object = full<TypeParam>("New");
  const std::string values = values_of(object);
  this->expect_to_be_taken_back(object, [&] { EXPECT_EQ(this->library->save(object), object); });
  this->expect_stored(object);
  EXPECT_EQ(values_of(object), values);
}

TYPED_TEST(TransactionObjectsOfKind, a_new_one_that_saves_itself) {
  const auto object = full<TypeParam>("New");
  this->expect_to_be_taken_back(object, [&] {
    object->save(this->library);
    EXPECT_TRUE(object->save());
  });
  this->expect_stored(object);
}

/// All but tags, which cannot be changed.
template <class T>
class TransactionObjectsThatChange : public TransactionObjects {};
using KindsThatChange = testing::Types<MaterialType, Layer, CustomProperty, Material, Composition>;
TYPED_TEST_SUITE(TransactionObjectsThatChange, KindsThatChange, KindNames);

TYPED_TEST(TransactionObjectsThatChange, a_changed_one) {
  const auto object = this->library->save(full<TypeParam>("Old"));
  change(*object);
  const unsigned id = object->id();
  this->expect_to_be_taken_back(object, [&] { this->library->save(object); });
  EXPECT_EQ(object->id(), id);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_saved_twice) {
  const auto object = full<TypeParam>("New");
  const std::string file = this->rows();
  std::string state;
  roll_back(*this->library, [&] {
    this->library->save(object);
    change(*object);
    this->library->save(object);
    EXPECT_FALSE(object->isDirty());
  });
  EXPECT_EQ(this->rows(), file);
  EXPECT_EQ(object->id(), 0u);
  EXPECT_FALSE(object->library());
  EXPECT_TRUE(object->isDirty());
  EXPECT_EQ(state_of(object).find(", clean"), std::string::npos);
  this->library->save(object);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_changed_after_it_was_saved) {
  const auto object = full<TypeParam>("New");
  roll_back(*this->library, [&] {
    this->library->save(object);
    change(*object);
  });
  EXPECT_EQ(object->id(), 0u);
  EXPECT_FALSE(object->library());
  EXPECT_TRUE(object->isDirty());
  this->library->save(object);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_saved_and_then_removed) {
  const auto object = full<TypeParam>("New");
  const std::string file = this->rows();
  const std::string state = state_of(object);
  roll_back(*this->library, [&] {
    this->library->save(object);
    EXPECT_TRUE(this->library->remove(object));
    EXPECT_FALSE(object->library());
    EXPECT_NE(object->id(), 0u);
  });
  EXPECT_EQ(this->rows(), file);
  EXPECT_EQ(state_of(object), state);
  this->library->save(object);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_saved_and_then_removed_by_its_id) {
  const auto object = full<TypeParam>("New");
  const std::string state = state_of(object);
  roll_back(*this->library, [&] {
    this->library->save(object);
    EXPECT_TRUE(this->library->template remove<TypeParam>(object->id()));
  });
  EXPECT_EQ(state_of(object), state);
  this->library->save(object);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_removed) {
  const auto object = this->library->save(named<TypeParam>("Old"));
  this->expect_to_be_taken_back(object, [&] {
    EXPECT_TRUE(this->library->remove(object));
    EXPECT_FALSE(object->library());
  });
  EXPECT_FALSE(object->library());
  EXPECT_FALSE(this->library->template get<TypeParam>("Old"));
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_removed_can_be_saved_after_a_rollback) {
  const auto object = this->library->save(named<TypeParam>("Old"));
  const unsigned id = object->id();
  roll_back(*this->library, [&] { this->library->remove(object); });
  change(*object);
  this->library->save(object);
  EXPECT_EQ(object->id(), id);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_changed_after_it_was_removed_stays_dirty) {
  const auto object = this->library->save(named<TypeParam>("Old"));
  bool dirty = false;
  roll_back(*this->library, [&] {
    this->library->remove(object);
    change(*object);
    dirty = object->isDirty();
  });
  EXPECT_EQ(object->isDirty(), dirty);
  EXPECT_EQ(object->library(), this->library);
  this->library->save(object);
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_of_another_library) {
  const auto foreign = this->put(full<TypeParam>("New"));
  const std::string state = state_of(foreign);
  std::vector<std::shared_ptr<TypeParam>> copies;
  this->expect_to_be_taken_back(foreign, [&] { copies.push_back(this->library->save(foreign)); });
  EXPECT_EQ(state_of(foreign), state);
  this->expect_stored(copies.back());
  EXPECT_EQ(values_of(copies.back()), values_of(foreign));
  const auto& lost = copies.front();
  EXPECT_EQ(lost->id(), 0u);
  EXPECT_FALSE(lost->library());
  EXPECT_TRUE(lost->isDirty());
}

TYPED_TEST(TransactionObjectsOfKind, the_copy_of_a_foreign_one_can_be_saved_after_a_rollback) {
  const auto foreign = this->put(full<TypeParam>("New"));
  std::shared_ptr<TypeParam> copy;
  roll_back(*this->library, [&] { copy = this->library->save(foreign); });
  EXPECT_EQ(this->library->save(copy), copy);
  this->expect_stored(copy);
  EXPECT_EQ(values_of(copy), values_of(foreign));
}

TYPED_TEST(TransactionObjectsOfKind, one_that_becomes_the_stored_one_of_its_name) {
  const auto stored = this->library->save(full<TypeParam>("Old"));
  const auto object = full_without_codes<TypeParam>("Old");
  const std::string file = this->rows();
  const std::string state = state_of(object);
  this->reactor.decision = Library::Reactor::UseExisting;
  roll_back(*this->library, [&] {
    this->library->save(object);
    EXPECT_EQ(object->id(), stored->id());
    EXPECT_FALSE(object->isDirty());
  });
  EXPECT_EQ(this->rows(), file);
  EXPECT_EQ(state_of(object), state);
  this->library->save(object);
  EXPECT_EQ(object->id(), stored->id());
  this->expect_stored(object);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_merged_into_what_the_same_transaction_saved) {
  const auto first = full_without_codes<TypeParam>("New");
  const auto second = full_without_codes<TypeParam>("New");
  const std::string state = state_of(first) + state_of(second);
  this->reactor.decision = Library::Reactor::UseExisting;
  roll_back(*this->library, [&] {
    this->library->save(first);
    this->library->save(second);
    EXPECT_EQ(first->id(), second->id());
  });
  EXPECT_EQ(state_of(first) + state_of(second), state);
  this->library->save(second);
  this->library->save(first);
  this->expect_stored(second);
  EXPECT_EQ(first->id(), second->id());
}

// An object with the id of another one would overwrite that.
TYPED_TEST(TransactionObjectsOfKind, one_that_was_taken_back_never_has_the_id_of_another) {
  const auto lost = named<TypeParam>("lost");
  roll_back(*this->library, [&] { this->library->save(lost); });
  const auto next = this->library->save(named<TypeParam>("next"));
  this->library->save(lost);
  EXPECT_NE(lost->id(), next->id());
  EXPECT_EQ(this->library->template get<TypeParam>(next->id())->name(), String("next"));
  EXPECT_EQ(this->library->template get<TypeParam>(lost->id())->name(), String("lost"));
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_kept_only_by_the_transaction) {
  std::weak_ptr<TypeParam> saved, removed;
  const auto stored = this->library->save(named<TypeParam>("Old"));
  roll_back(*this->library, [&] {
    saved = this->library->save(named<TypeParam>("New"));
    auto read = this->library->template get<TypeParam>(stored->id());
    this->library->remove(read);
    removed = read;
    read.reset();
    EXPECT_FALSE(saved.expired());
    EXPECT_FALSE(removed.expired());
  });
  EXPECT_TRUE(saved.expired());
  EXPECT_TRUE(removed.expired());
}

TYPED_TEST(TransactionObjectsOfKind, one_that_was_read_stays_as_it_was_read) {
  const auto object = full<TypeParam>("New");
  std::shared_ptr<TypeParam> read;
  std::string state;
  roll_back(*this->library, [&] {
    this->library->save(object);
    read = this->library->template get<TypeParam>(object->id());
    state = state_of(read);
  });
  EXPECT_EQ(state_of(read), state);
}

TYPED_TEST(TransactionObjectsOfKind, one_that_is_not_dirty_is_left_alone) {
  const auto object = this->library->save(full<TypeParam>("Old"));
  const std::string state = state_of(object);
  roll_back(*this->library, [&] { this->library->save(object); });
  EXPECT_EQ(state_of(object), state);
}

TYPED_TEST(TransactionObjectsOfKind, committed_they_stay_as_saving_left_them) {
  const auto object = full<TypeParam>("New");
  const auto gone = this->library->save(named<TypeParam>("Old"));
  commit(*this->library, [&] {
    this->library->save(object);
    this->library->remove(gone);
  });
  this->expect_stored(object);
  EXPECT_FALSE(gone->library());
  EXPECT_NE(gone->id(), 0u);
}

}  // namespace
}  // namespace veldra_tests
