// SPDX-License-Identifier: GPL-2.0-or-later
//
// What the save members say of objects that belong to no library. Saving itself is tested with
// the library.

#include "foundation/type_names.hpp"
#include "objects/stored_objects.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <memory>

namespace veldra_tests {
namespace {

template <class T>
class UnboundSavingTest : public testing::Test {
 public:
  StoredObjects stored;
  const std::shared_ptr<Library> no_library;
};

using Saveable = testing::Types<Tag, Layer, MaterialType, CustomProperty, Material, Composition>;
TYPED_TEST_SUITE(UnboundSavingTest, Saveable, TypeNames);

TYPED_TEST(UnboundSavingTest, an_object_without_a_library_is_not_saved) {
  const auto object = this->stored.template get<TypeParam>()->clone();
  EXPECT_FALSE(object->save());
  EXPECT_TRUE(object->isDirty());
  EXPECT_EQ(object->id(), 0u);
  EXPECT_EQ(object->library(), nullptr);
}

TYPED_TEST(UnboundSavingTest, an_object_whose_library_was_closed_is_not_saved) {
  const auto object = this->stored.template get<TypeParam>();
  this->stored.close();
  EXPECT_FALSE(object->save());
  EXPECT_EQ(object->id(), StoredObjects::id);
}

TYPED_TEST(UnboundSavingTest, saving_into_no_library_gives_nothing) {
  const auto object = this->stored.template get<TypeParam>()->clone();
  EXPECT_EQ(object->save(this->no_library), nullptr);
  EXPECT_TRUE(object->isDirty());
  EXPECT_EQ(object->id(), 0u);
}

TYPED_TEST(UnboundSavingTest, saving_a_bound_object_into_no_library_gives_nothing) {
  const auto object = this->stored.template get<TypeParam>();
  EXPECT_EQ(object->save(this->no_library), nullptr);
  EXPECT_EQ(object->library(), this->stored.library());
  EXPECT_FALSE(object->isDirty());
}

TYPED_TEST(UnboundSavingTest, an_object_that_no_shared_pointer_holds_cannot_be_saved) {
  Bare<TypeParam> object;
  EXPECT_EQ(thrown_by([&] { object.save(this->stored.library()); }), "std::bad_weak_ptr");
  EXPECT_EQ(object.library(), nullptr);
}

}  // namespace
}  // namespace veldra_tests
