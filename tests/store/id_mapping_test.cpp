// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/names.hpp"

#include <memory>
#include <type_traits>
#include <vector>

namespace veldra_tests {
namespace {

using Key = IdMapping::Key;
using Value = IdMapping::Value;

class IdMappingTest : public testing::Test {
 protected:
  IdMappingTest() {
    if (std::less<const Library*>()(second_.get(), first_.get())) first_.swap(second_);
  }

  static std::shared_ptr<Library> library() {
    return Library::create(":memory:", veldra::Unit::Millimetres, "");
  }

  // In the order of their addresses.
  const Library* first() const { return first_.get(); }
  const Library* second() const { return second_.get(); }

  Key tag(unsigned id) const { return {{ObjectType::Tag, id}, first()}; }

  std::vector<Key> keys() const {
    std::vector<Key> keys;
    for (const auto& entry : mapping_) keys.push_back(entry.first);
    return keys;
  }

  IdMapping& mapping() { return mapping_; }

  void expect_value(const Key& key, unsigned id, IdMapping::Status status) const {
    Value value;
    ASSERT_TRUE(mapping_.compute(key, value));
    EXPECT_EQ(value.id, id);
    EXPECT_EQ(value.status, status);
  }

 private:
  std::shared_ptr<Library> first_ = library();
  std::shared_ptr<Library> second_ = library();
  std::shared_ptr<Library> destination_ = library();
  IdMapping mapping_{destination_.get()};
};

TEST_F(IdMappingTest, starts_empty) {
  EXPECT_EQ(mapping().size(), 0u);
  EXPECT_TRUE(mapping().begin() == mapping().end());
  EXPECT_FALSE(mapping().has(tag(1)));
}

TEST_F(IdMappingTest, knows_its_destination) {
  EXPECT_EQ(IdMapping(first()).destination(), first());
  EXPECT_EQ(IdMapping(nullptr).destination(), nullptr);
}

TEST_F(IdMappingTest, keeps_no_library_alive) {
  auto destination = library();
  const std::weak_ptr<Library> watched = destination;
  IdMapping mapping(destination.get());
  mapping.assign({{ObjectType::Tag, 1}, destination.get()}, Value(2, IdMapping::Inserted));
  destination.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(mapping.size(), 1u);
}

TEST_F(IdMappingTest, assigns_and_computes) {
  mapping().assign(tag(1), Value(7, IdMapping::Updated));
  EXPECT_TRUE(mapping().has(tag(1)));
  EXPECT_EQ(mapping().size(), 1u);
  expect_value(tag(1), 7, IdMapping::Updated);
}

TEST_F(IdMappingTest, assigning_again_replaces_the_value) {
  mapping().assign(tag(1), Value(7, IdMapping::Inserted));
  mapping().assign(tag(1), Value(8, IdMapping::Existing));
  EXPECT_EQ(mapping().size(), 1u);
  expect_value(tag(1), 8, IdMapping::Existing);
}

TEST_F(IdMappingTest, computing_without_an_entry_leaves_the_value) {
  mapping().assign(tag(1), Value(7, IdMapping::Inserted));
  Value value(42, IdMapping::Updated);
  EXPECT_FALSE(mapping().compute(tag(2), value));
  EXPECT_EQ(value.id, 42u);
  EXPECT_EQ(value.status, IdMapping::Updated);
}

TEST_F(IdMappingTest, looking_up_adds_nothing) {
  Value value;
  mapping().compute(tag(1), value);
  mapping().has(tag(1));
  EXPECT_EQ(mapping().size(), 0u);
}

TEST_F(IdMappingTest, removes_an_entry_once) {
  mapping().assign(tag(1), Value(7, IdMapping::Inserted));
  mapping().assign(tag(2), Value(8, IdMapping::Inserted));
  EXPECT_TRUE(mapping().remove(tag(1)));
  EXPECT_FALSE(mapping().remove(tag(1)));
  EXPECT_FALSE(mapping().has(tag(1)));
  EXPECT_EQ(mapping().size(), 1u);
  expect_value(tag(2), 8, IdMapping::Inserted);
}

TEST_F(IdMappingTest, removing_a_missing_entry_says_so) { EXPECT_FALSE(mapping().remove(tag(1))); }

TEST_F(IdMappingTest, the_same_object_of_two_libraries_is_two_entries) {
  const ObjectKey key(ObjectType::Material, 1);
  mapping().assign({key, first()}, Value(7, IdMapping::Inserted));
  mapping().assign({key, second()}, Value(8, IdMapping::Existing));
  EXPECT_EQ(mapping().size(), 2u);
  expect_value({key, first()}, 7, IdMapping::Inserted);
  expect_value({key, second()}, 8, IdMapping::Existing);
  EXPECT_TRUE(mapping().remove({key, first()}));
  expect_value({key, second()}, 8, IdMapping::Existing);
}

TEST_F(IdMappingTest, the_same_id_of_two_kinds_is_two_entries) {
  mapping().assign({{ObjectType::Tag, 1}, first()}, Value(7, IdMapping::Inserted));
  mapping().assign({{ObjectType::Layer, 1}, first()}, Value(8, IdMapping::Inserted));
  EXPECT_EQ(mapping().size(), 2u);
}

TEST_F(IdMappingTest, lists_entries_by_library_then_kind_then_id) {
  const std::vector<Key> sorted = {{{static_cast<ObjectType>(-1), 9}, first()},
                                   {{ObjectType::Tag, 1}, first()},
                                   {{ObjectType::Tag, 2}, first()},
                                   {{ObjectType::Tag, 4294967295u}, first()},
                                   {{ObjectType::Layer, 0}, first()},
                                   {{ObjectType::Tag, 1}, second()},
                                   {{ObjectType::Material, 1}, second()}};
  for (std::size_t i = sorted.size(); i-- != 0;) {
    mapping().assign(sorted[i], Value(static_cast<unsigned>(i), IdMapping::Inserted));
  }
  EXPECT_EQ(keys(), sorted);
}

TEST_F(IdMappingTest, a_null_library_comes_first) {
  mapping().assign(tag(1), Value());
  mapping().assign({{ObjectType::Layer, 1}, nullptr}, Value());
  EXPECT_EQ(mapping().begin()->first.source, nullptr);
}

TEST_F(IdMappingTest, gives_the_values_in_the_order_of_the_keys) {
  mapping().assign(tag(2), Value(20, IdMapping::Updated));
  mapping().assign(tag(1), Value(10, IdMapping::Existing));
  std::vector<unsigned> ids;
  std::vector<int> statuses;
  for (const auto& entry : mapping()) {
    ids.push_back(entry.second.id);
    statuses.push_back(entry.second.status);
  }
  EXPECT_THAT(ids, ElementsAre(10, 20));
  EXPECT_THAT(statuses, ElementsAre(1, 2));
}

TEST_F(IdMappingTest, a_copy_is_apart_from_its_source) {
  mapping().assign(tag(1), Value(7, IdMapping::Inserted));
  IdMapping copy = mapping();
  copy.assign(tag(2), Value(8, IdMapping::Inserted));
  EXPECT_EQ(copy.destination(), mapping().destination());
  EXPECT_EQ(copy.size(), 2u);
  EXPECT_EQ(mapping().size(), 1u);
}

// Keys.

TEST_F(IdMappingTest, keys_compare_by_all_that_they_hold) {
  const Key key = tag(1);
  EXPECT_TRUE(key == tag(1));
  EXPECT_FALSE(key != tag(1));
  EXPECT_TRUE(key != tag(2));
  EXPECT_TRUE(key != Key({ObjectType::Layer, 1}, first()));
  EXPECT_TRUE(key != Key({ObjectType::Tag, 1}, second()));
}

TEST_F(IdMappingTest, a_key_is_not_less_than_itself) { EXPECT_FALSE(tag(1) < tag(1)); }

TEST_F(IdMappingTest, the_library_counts_before_the_kind_and_the_kind_before_the_id) {
  EXPECT_TRUE(Key({ObjectType::Layer, 9}, first()) < Key({ObjectType::Tag, 1}, second()));
  EXPECT_FALSE(Key({ObjectType::Tag, 1}, second()) < Key({ObjectType::Layer, 9}, first()));
  EXPECT_TRUE(Key({ObjectType::Tag, 9}, first()) < Key({ObjectType::Layer, 1}, first()));
  EXPECT_TRUE(tag(1) < tag(2));
}

TEST_F(IdMappingTest, a_key_holds_what_it_was_made_of) {
  const Key key({ObjectType::Composition, 3}, second());
  EXPECT_EQ(key.key, ObjectKey(ObjectType::Composition, 3));
  EXPECT_EQ(key.source, second());
}

// Values.

TEST(IdMappingValue, starts_as_inserted_under_no_id) {
  EXPECT_EQ(Value().id, 0u);
  EXPECT_EQ(Value().status, IdMapping::Inserted);
}

TEST(IdMappingValue, holds_what_it_was_made_of) {
  const Value value(4294967295u, IdMapping::Existing);
  EXPECT_EQ(value.id, 4294967295u);
  EXPECT_EQ(value.status, IdMapping::Existing);
}

TEST(IdMappingValue, statuses_have_fixed_numbers_of_32_bits) {
  static_assert(IdMapping::Inserted == 0, "");
  static_assert(IdMapping::Existing == 1, "");
  static_assert(IdMapping::Updated == 2, "");
  static_assert(std::is_same<std::underlying_type<IdMapping::Status>::type, int>::value, "");
  static_assert(std::is_same<decltype(Value::id), unsigned>::value, "");
}

}  // namespace
}  // namespace veldra_tests
