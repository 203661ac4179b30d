// SPDX-License-Identifier: GPL-2.0-or-later
//
// The tag list of all kinds that have one.

#include "foundation/type_names.hpp"
#include "objects/stored_objects.hpp"
#include "support/names.hpp"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace veldra_tests {
namespace {

using TagList = std::vector<std::shared_ptr<Tag>>;

std::vector<std::string> names_of(const TagList& tags) {
  std::vector<std::string> names;
  for (const auto& tag : tags) names.push_back(tag->name().utf8());
  return names;
}

TagList tags_named(const std::vector<std::string>& names) {
  TagList tags;
  for (const std::string& name : names) tags.push_back(Tag::create(name.c_str()));
  return tags;
}

/// A clean owner without tags.
template <class T>
class TagListTest : public testing::Test {
 public:
  static_assert(std::is_same<decltype(std::declval<const T&>().tags()), const TagList&>::value, "");
  static_assert(std::is_same<decltype(std::declval<T&>().tags(veldra::toModify)), TagList&>::value,
                "");

  void SetUp() override {
    ASSERT_FALSE(owner.isDirty());
    ASSERT_THAT(owner.tags(), IsEmpty());
  }

  std::vector<std::string> names() const { return names_of(owner.tags()); }

  Bare<T> owner;
  String name{"Wood"};
  std::shared_ptr<Tag> wood = Tag::create("Wood");
  std::shared_ptr<Tag> stone = Tag::create("Stone");
};

using Owners = testing::Types<Material, Composition, Asset, StructuralAsset, ThermalAsset>;
TYPED_TEST_SUITE(TagListTest, Owners, TypeNames);

TYPED_TEST(TagListTest, reading_leaves_the_owner_clean) {
  const auto& owner = this->owner;
  EXPECT_THAT(owner.tags(), IsEmpty());
  EXPECT_FALSE(owner.isDirty());
}

TYPED_TEST(TagListTest, access_for_changing_makes_the_owner_dirty) {
  this->owner.tags(toModify);
  EXPECT_TRUE(this->owner.isDirty());
}

TYPED_TEST(TagListTest, access_for_changing_gives_the_list) {
  this->owner.tags(toModify) = {this->stone, this->wood};
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->stone, this->wood));
  EXPECT_EQ(&this->owner.tags(toModify), &this->owner.tags());
}

TYPED_TEST(TagListTest, adding_appends_the_very_tag_and_makes_the_owner_dirty) {
  this->owner.addTag(this->wood);
  EXPECT_TRUE(this->owner.isDirty());
  this->owner.addTag(this->stone);
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->wood, this->stone));
}

TYPED_TEST(TagListTest, the_same_tag_can_be_added_twice) {
  this->owner.addTag(this->wood);
  this->owner.addTag(this->wood);
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->wood, this->wood));
  this->owner.removeTag(this->wood);
  EXPECT_THAT(this->owner.tags(), IsEmpty());
}

TYPED_TEST(TagListTest, a_null_tag_can_be_added) {
  this->owner.addTag(std::shared_ptr<Tag>());
  EXPECT_THAT(this->owner.tags(), ElementsAre(nullptr));
  EXPECT_TRUE(this->owner.isDirty());
}

TYPED_TEST(TagListTest, a_tag_of_any_library_can_be_added) {
  const StoredObjects here;
  const StoredObjects there;
  const auto from_here = here.get<Tag>();
  const auto from_there = there.get<Tag>();
  this->owner.addTag(from_here);
  this->owner.addTag(from_there);
  EXPECT_THAT(this->owner.tags(), ElementsAre(from_here, from_there));
}

TYPED_TEST(TagListTest, adding_a_name_appends_a_new_tag) {
  this->owner.addTag(this->wood);
  this->owner.addTag(this->name.c_str());
  EXPECT_TRUE(this->owner.isDirty());
  ASSERT_EQ(this->owner.tags().size(), 2u);
  const auto added = this->owner.tags()[1];
  EXPECT_NE(added, this->wood);
  EXPECT_EQ(added->name().utf8(), "Wood");
  EXPECT_EQ(added->id(), 0u);
  EXPECT_EQ(added->library(), nullptr);
  EXPECT_TRUE(added->isDirty());
}

TYPED_TEST(TagListTest, adding_a_name_makes_the_owner_dirty) {
  this->owner.addTag(this->name.c_str());
  EXPECT_TRUE(this->owner.isDirty());
}

TYPED_TEST(TagListTest, adding_a_null_name_appends_a_tag_of_the_empty_name) {
  this->owner.addTag(static_cast<const unsigned short*>(nullptr));
  EXPECT_THAT(this->names(), ElementsAre(""));
  EXPECT_TRUE(this->owner.isDirty());
}

TYPED_TEST(TagListTest, an_entry_of_the_list_can_be_added_again) {
  for (int round = 0; round != 20; ++round) {
    this->owner.tags(toModify) = {this->wood};
    this->owner.tags(toModify).shrink_to_fit();
    this->owner.addTag(this->owner.tags()[0]);
    EXPECT_THAT(this->owner.tags(), ElementsAre(this->wood, this->wood));
  }
}

TYPED_TEST(TagListTest, the_name_of_an_entry_can_be_added) {
  this->owner.addTag(this->wood);
  this->owner.addTag(this->owner.tags()[0]->name().c_str());
  EXPECT_THAT(this->names(), ElementsAre("Wood", "Wood"));
}

TYPED_TEST(TagListTest, removing_an_unsaved_tag_removes_all_unsaved_tags) {
  const StoredObjects stored;
  const auto saved = stored.get<Tag>();
  this->owner.tags(toModify) = {this->wood, saved, this->stone};
  this->owner.removeTag(this->wood);
  EXPECT_THAT(this->owner.tags(), ElementsAre(saved));
}

TYPED_TEST(TagListTest, removing_one_of_two_unsaved_tags_empties_the_list) {
  this->owner.addTag(this->wood);
  this->owner.addTag(this->stone);
  this->owner.removeTag(this->wood);
  EXPECT_THAT(this->owner.tags(), IsEmpty());
}

TYPED_TEST(TagListTest, removing_an_unsaved_tag_that_is_not_in_the_list_removes_unsaved_tags) {
  this->owner.addTag(this->stone);
  this->owner.removeTag(this->wood);
  EXPECT_THAT(this->owner.tags(), IsEmpty());
}

TYPED_TEST(TagListTest, removing_a_saved_tag_goes_by_its_id_and_keeps_the_order) {
  const StoredObjects stored;
  const auto saved = stored.get<Tag>();
  const auto same_row = stored.get<Tag>();
  const auto other_row = stored.library()->get<Tag>(StoredObjects::twin_id);
  this->owner.tags(toModify) = {this->wood, same_row, other_row, saved, this->stone};
  this->owner.removeTag(saved);
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->wood, other_row, this->stone));
}

TYPED_TEST(TagListTest, removing_a_saved_tag_looks_at_no_name) {
  const StoredObjects stored;
  const auto saved = stored.get<Tag>();
  const auto unsaved = Tag::create(saved->name());
  this->owner.addTag(unsaved);
  this->owner.removeTag(saved);
  EXPECT_THAT(this->owner.tags(), ElementsAre(unsaved));
}

TYPED_TEST(TagListTest, removing_a_tag_that_is_not_there_makes_the_owner_dirty) {
  this->owner.removeTag(this->wood);
  EXPECT_TRUE(this->owner.isDirty());
  EXPECT_THAT(this->owner.tags(), IsEmpty());
}

TYPED_TEST(TagListTest, removing_a_null_tag_removes_nothing_and_makes_the_owner_dirty) {
  this->owner.removeTag(std::shared_ptr<Tag>());
  EXPECT_TRUE(this->owner.isDirty());
  this->owner.tags(toModify) = {this->wood, nullptr, this->stone};
  this->owner.removeTag(std::shared_ptr<Tag>());
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->wood, nullptr, this->stone));
}

TYPED_TEST(TagListTest, removing_leaves_null_entries) {
  this->owner.tags(toModify) = {nullptr, this->wood, nullptr, this->stone};
  this->owner.removeTag(this->name.c_str());
  EXPECT_THAT(this->owner.tags(), ElementsAre(nullptr, nullptr, this->stone));
  this->owner.removeTag(String().c_str());
  EXPECT_THAT(this->owner.tags(), ElementsAre(nullptr, nullptr, this->stone));
  this->owner.removeTag(this->stone);
  EXPECT_THAT(this->owner.tags(), ElementsAre(nullptr, nullptr));
}

TYPED_TEST(TagListTest, an_entry_of_the_list_can_be_removed) {
  this->owner.tags(toModify) = {this->wood, this->stone};
  this->owner.removeTag(this->owner.tags()[0]);
  EXPECT_THAT(this->owner.tags(), IsEmpty());

  const StoredObjects stored;
  const auto second = stored.library()->get<Tag>(StoredObjects::twin_id);
  for (std::size_t entry = 0; entry != 4; ++entry) {
    this->owner.tags(toModify) = {stored.get<Tag>(), second, stored.get<Tag>(), second};
    const std::string removed = this->owner.tags()[entry]->name().utf8();
    this->owner.removeTag(this->owner.tags()[entry]);
    EXPECT_EQ(this->owner.tags().size(), 2u);
    for (const std::string& left : this->names()) EXPECT_NE(left, removed);
  }
}

TYPED_TEST(TagListTest, an_entry_that_only_the_list_holds_can_be_removed) {
  this->owner.addTag(this->name.c_str());
  this->owner.addTag(this->name.c_str());
  this->owner.removeTag(this->owner.tags()[0]);
  EXPECT_THAT(this->owner.tags(), IsEmpty());
}

TYPED_TEST(TagListTest, removing_a_name_removes_every_tag_of_it_and_keeps_the_order) {
  const StoredObjects stored;
  const String stored_name("Stored");
  const auto saved = stored.get<Tag>();
  this->owner.tags(toModify) = {this->stone, saved, this->wood, Tag::create(stored_name)};
  this->owner.removeTag(stored_name.c_str());
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->stone, this->wood));
}

TYPED_TEST(TagListTest, removing_a_name_compares_it_exactly) {
  this->owner.tags(toModify) = tags_named({"wood", "Wood ", "Woo", "Wood", ""});
  this->owner.removeTag(this->name.c_str());
  EXPECT_THAT(this->names(), ElementsAre("wood", "Wood ", "Woo", ""));
}

TYPED_TEST(TagListTest, removing_the_empty_name_removes_tags_without_a_name) {
  const unsigned short empty[] = {0};
  this->owner.tags(toModify) = {Tag::create(String()), this->wood, Tag::create("")};
  this->owner.removeTag(empty);
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->wood));
}

TYPED_TEST(TagListTest, removing_a_name_that_is_not_there_makes_the_owner_dirty) {
  this->owner.removeTag(this->name.c_str());
  EXPECT_TRUE(this->owner.isDirty());
  EXPECT_THAT(this->owner.tags(), IsEmpty());
}

TYPED_TEST(TagListTest, the_name_of_an_entry_can_be_removed) {
  this->owner.addTag(this->name.c_str());
  this->owner.addTag(this->stone);
  this->owner.addTag(this->name.c_str());
  this->owner.removeTag(this->owner.tags()[0]->name().c_str());
  EXPECT_THAT(this->owner.tags(), ElementsAre(this->stone));
}

void expect_equal(const TagList& left, const TagList& right) {
  EXPECT_TRUE(veldra::operator==(left, right));
  EXPECT_TRUE(veldra::operator==(right, left));
  EXPECT_FALSE(veldra::operator!=(left, right));
}

void expect_unequal(const TagList& left, const TagList& right) {
  EXPECT_FALSE(veldra::operator==(left, right));
  EXPECT_FALSE(veldra::operator==(right, left));
  EXPECT_TRUE(veldra::operator!=(left, right));
}

TEST(TagListEqualityTest, empty_lists_are_equal) { expect_equal({}, {}); }

TEST(TagListEqualityTest, lists_of_the_same_tags_are_equal) {
  const TagList tags = tags_named({"A", "B"});
  expect_equal(tags, tags);
  expect_equal(tags, TagList(tags));
}

TEST(TagListEqualityTest, lists_of_tags_of_the_same_names_are_equal) {
  expect_equal(tags_named({"A"}), tags_named({"A"}));
  expect_equal(tags_named({"A", "B", "A"}), tags_named({"A", "B", "A"}));
  expect_equal({Tag::create(String())}, {Tag::create("")});
}

TEST(TagListEqualityTest, the_order_counts) {
  expect_unequal(tags_named({"A", "B"}), tags_named({"B", "A"}));
}

TEST(TagListEqualityTest, the_length_counts) {
  expect_unequal(tags_named({"A"}), tags_named({"A", "A"}));
  expect_unequal({}, tags_named({"A"}));
}

TEST(TagListEqualityTest, case_counts) { expect_unequal(tags_named({"A"}), tags_named({"a"})); }

TEST(TagListEqualityTest, ids_and_libraries_do_not_count) {
  const StoredObjects stored;
  expect_equal({stored.get<Tag>()}, tags_named({"Stored"}));
}

TEST(TagListEqualityTest, the_same_null_entry_is_equal) { expect_equal({nullptr}, {nullptr}); }

TEST(TagListEqualityTest, a_null_entry_equals_no_tag) {
  expect_unequal({nullptr}, {Tag::create("")});
}

}  // namespace
}  // namespace veldra_tests
