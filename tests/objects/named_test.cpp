// SPDX-License-Identifier: GPL-2.0-or-later
//
// What the kinds share that consist of a name, asked of each of them; and what all kinds share
// about their names.

#include "foundation/type_names.hpp"
#include "objects/stored_objects.hpp"
#include "support/names.hpp"

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace veldra_tests {
namespace {

template <class T>
std::shared_ptr<T> create(const String& name) {
  return T::create(name);
}

template <>
std::shared_ptr<CustomProperty> create<CustomProperty>(const String& name) {
  return CustomProperty::create(name, ObjectType::Material);
}

template <class T, class = void>
struct CanBeRenamed : std::false_type {};
template <class T>
struct CanBeRenamed<T, decltype(std::declval<T&>().name(std::declval<const String&>()), void())>
    : std::true_type {};

static_assert(!CanBeRenamed<Tag>::value, "a tag with another name is another tag");
static_assert(CanBeRenamed<Layer>::value, "");

template <class T>
void expect_new(const T& object) {
  EXPECT_EQ(object.id(), 0u);
  EXPECT_EQ(object.library(), nullptr);
  EXPECT_TRUE(object.isDirty());
}

template <class T>
class NamedTest : public testing::Test {
 public:
  static_assert(!std::is_copy_constructible<T>::value, "clone() makes another object");
  static_assert(!std::is_move_constructible<T>::value, "");
  static_assert(!std::is_copy_assignable<T>::value, "");
  static_assert(!std::is_default_constructible<T>::value, "");
  static_assert(std::is_destructible<T>::value, "");
  static_assert(!std::is_polymorphic<T>::value, "no virtual operations");
  static_assert(std::is_base_of<std::enable_shared_from_this<T>, T>::value, "");
  static_assert(sizeof(T) == sizeof(std::weak_ptr<T>) + sizeof(void*),
                "a handle holds nothing but its record");
};

using Named = testing::Types<Tag, Layer, MaterialType, CustomProperty>;
TYPED_TEST_SUITE(NamedTest, Named, TypeNames);

TYPED_TEST(NamedTest, a_new_object_is_dirty_and_unbound) {
  const auto object = create<TypeParam>("Wood");
  EXPECT_EQ(object->name().utf8(), "Wood");
  expect_new(*object);
}

TYPED_TEST(NamedTest, a_new_object_keeps_a_copy_of_its_name) {
  String name("Wood");
  const auto object = create<TypeParam>(name);
  EXPECT_NE(object->name().c_str(), name.c_str());
  name = "Stone";
  EXPECT_EQ(object->name().utf8(), "Wood");
}

TYPED_TEST(NamedTest, a_name_may_be_empty) {
  EXPECT_TRUE(create<TypeParam>(String())->name().empty());
  EXPECT_TRUE(create<TypeParam>("")->name().empty());
  EXPECT_TRUE(*create<TypeParam>(String()) == *create<TypeParam>(""));
  EXPECT_TRUE(create<TypeParam>(String())->isDirty());
}

TYPED_TEST(NamedTest, a_name_may_be_that_of_another_object) {
  const auto object = create<TypeParam>("Wood");
  EXPECT_EQ(create<TypeParam>(object->name())->name().utf8(), "Wood");
}

TYPED_TEST(NamedTest, the_constructor_of_derived_classes_leaves_it_clean) {
  const Bare<TypeParam> object;
  EXPECT_EQ(object.id(), 0u);
  EXPECT_TRUE(object.name().empty());
  EXPECT_EQ(object.library(), nullptr);
  EXPECT_FALSE(object.isDirty());
}

TYPED_TEST(NamedTest, gives_the_shared_pointer_that_holds_it) {
  const auto object = create<TypeParam>("Wood");
  EXPECT_EQ(object->shared_from_this(), object);
}

TYPED_TEST(NamedTest, a_read_object_is_clean_and_bound) {
  const StoredObjects stored;
  const auto object = stored.get<TypeParam>();
  EXPECT_EQ(object->id(), StoredObjects::id);
  EXPECT_EQ(object->name().utf8(), "Stored");
  EXPECT_EQ(object->library(), stored.library());
  EXPECT_FALSE(object->isDirty());
}

TYPED_TEST(NamedTest, a_clone_is_dirty_and_unbound) {
  const auto clone = create<TypeParam>("Wood")->clone();
  EXPECT_EQ(clone->name().utf8(), "Wood");
  expect_new(*clone);
}

TYPED_TEST(NamedTest, a_clone_of_a_stored_object_is_dirty_unbound_and_equal) {
  const StoredObjects stored;
  const auto object = stored.get<TypeParam>();
  const auto clone = object->clone();
  expect_new(*clone);
  EXPECT_TRUE(*clone == *object);
  EXPECT_FALSE(*clone != *object);
}

TYPED_TEST(NamedTest, cloning_leaves_the_object_as_it_was) {
  const StoredObjects stored;
  const auto object = stored.get<TypeParam>();
  const std::shared_ptr<const TypeParam> read_only = object;
  EXPECT_NE(read_only->clone(), object);
  EXPECT_EQ(object->id(), StoredObjects::id);
  EXPECT_EQ(object->library(), stored.library());
  EXPECT_FALSE(object->isDirty());
}

TYPED_TEST(NamedTest, a_clone_has_a_name_of_its_own) {
  auto object = create<TypeParam>("Wood");
  const auto clone = object->clone();
  EXPECT_NE(clone->name().c_str(), object->name().c_str());
  object.reset();
  EXPECT_EQ(clone->name().utf8(), "Wood");
}

TYPED_TEST(NamedTest, objects_of_the_same_name_are_equal) {
  const auto wood = create<TypeParam>("Wood");
  const auto again = create<TypeParam>("Wood");
  EXPECT_TRUE(*wood == *wood);
  EXPECT_TRUE(*wood == *again);
  EXPECT_FALSE(*wood != *again);
}

TYPED_TEST(NamedTest, objects_of_other_names_are_unequal) {
  const auto a = create<TypeParam>("A");
  for (const char* other : {"a", "B", "", "A ", " A", "AA", "\xC3\x84", "A\xCC\x88"}) {
    EXPECT_FALSE(*a == *create<TypeParam>(other)) << other;
    EXPECT_TRUE(*a != *create<TypeParam>(other)) << other;
  }
}

TYPED_TEST(NamedTest, names_are_not_normalised) {
  const auto composed = create<TypeParam>("\xC3\x84");
  const auto decomposed = create<TypeParam>("A\xCC\x88");
  EXPECT_FALSE(*composed == *decomposed);
}

TYPED_TEST(NamedTest, objects_of_different_libraries_are_equal_by_name) {
  const StoredObjects here;
  const StoredObjects there;
  EXPECT_TRUE(*here.get<TypeParam>() == *there.get<TypeParam>());
}

template <class T>
class RenamingTest : public testing::Test {
 public:
  static_assert(CanBeRenamed<T>::value, "");

  const StoredObjects stored;
  const std::shared_ptr<T> object = stored.get<T>();
};

using Renamed = testing::Types<Layer, MaterialType, CustomProperty, Material, Composition,
                               StructuralAsset, ThermalAsset>;
TYPED_TEST_SUITE(RenamingTest, Renamed, TypeNames);

TYPED_TEST(RenamingTest, another_name_makes_it_dirty) {
  this->object->name("Other");
  EXPECT_EQ(this->object->name().utf8(), "Other");
  EXPECT_TRUE(this->object->isDirty());
}

TYPED_TEST(RenamingTest, the_same_name_leaves_it_clean) {
  this->object->name("Stored");
  EXPECT_EQ(this->object->name().utf8(), "Stored");
  EXPECT_FALSE(this->object->isDirty());
}

TYPED_TEST(RenamingTest, a_copy_of_the_object_keeps_the_former_name) {
  const auto other = this->stored.template get<TypeParam>();
  const String copy = this->object->name();
  this->object->name("Other");
  EXPECT_EQ(copy.utf8(), "Stored");
  EXPECT_EQ(other->name().utf8(), "Stored");
}

TYPED_TEST(RenamingTest, its_own_name_leaves_it_clean) {
  this->object->name(this->object->name());
  EXPECT_EQ(this->object->name().utf8(), "Stored");
  EXPECT_FALSE(this->object->isDirty());
}

TYPED_TEST(RenamingTest, its_own_name_leaves_a_dirty_object_dirty) {
  this->object->name("Other");
  this->object->name(this->object->name());
  EXPECT_EQ(this->object->name().utf8(), "Other");
  EXPECT_TRUE(this->object->isDirty());
}

TYPED_TEST(RenamingTest, going_back_to_the_former_name_does_not_clean_it) {
  this->object->name("Other");
  this->object->name("Stored");
  EXPECT_TRUE(this->object->isDirty());
}

TYPED_TEST(RenamingTest, a_name_that_differs_in_one_unit_makes_it_dirty) {
  for (const char* other : {"stored", "Store", "Stored ", ""}) {
    const auto clean = this->stored.template get<TypeParam>();
    clean->name(other);
    EXPECT_EQ(clean->name().utf8(), other);
    EXPECT_TRUE(clean->isDirty()) << other;
  }
}

TYPED_TEST(RenamingTest, null_makes_the_name_empty) {
  this->object->name(String());
  EXPECT_TRUE(this->object->name().empty());
  EXPECT_TRUE(this->object->isDirty());
}

TYPED_TEST(RenamingTest, an_empty_name_equals_a_missing_one) {
  Bare<TypeParam> object;
  object.name("");
  object.name(String());
  EXPECT_FALSE(object.isDirty());
}

TYPED_TEST(RenamingTest, keeps_a_copy_of_the_name) {
  String name("Other");
  this->object->name(name);
  name = "Changed";
  EXPECT_EQ(this->object->name().utf8(), "Other");
}

TYPED_TEST(RenamingTest, keeps_id_and_library) {
  this->object->name("Other");
  EXPECT_NE(this->object->id(), 0u);
  EXPECT_NE(this->object->library(), nullptr);
}

// Of every kind, assets too.

using StoredKinds = testing::Types<Tag, Layer, MaterialType, CustomProperty, Material, Composition,
                                   StructuralAsset, ThermalAsset>;

template <class T>
class StoredObjectTest : public testing::Test {};
TYPED_TEST_SUITE(StoredObjectTest, StoredKinds);

TYPED_TEST(StoredObjectTest, does_not_keep_its_library_open) {
  StoredObjects stored;
  const auto object = stored.get<TypeParam>();
  const std::weak_ptr<Library> library = stored.library();
  stored.close();
  EXPECT_TRUE(library.expired());
}

TYPED_TEST(StoredObjectTest, outlives_its_library_and_keeps_its_id) {
  StoredObjects stored;
  const auto object = stored.get<TypeParam>();
  const unsigned id = object->id();
  stored.close();
  EXPECT_EQ(object->library(), nullptr);
  EXPECT_NE(id, 0u);
  EXPECT_EQ(object->id(), id);
  EXPECT_EQ(object->name().utf8(), "Stored");
  EXPECT_FALSE(object->isDirty());
}

}  // namespace
}  // namespace veldra_tests
