// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/stored_objects.hpp"
#include "support/names.hpp"

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace veldra_tests {
namespace {

using PropertyPointer = std::shared_ptr<const CustomProperty>;

static_assert(!std::is_default_constructible<CustomPropertyKey>::value, "no empty keys for hosts");
static_assert(std::is_copy_constructible<CustomPropertyKey>::value, "");
static_assert(std::is_copy_assignable<CustomPropertyKey>::value, "");
static_assert(std::is_convertible<PropertyPointer, CustomPropertyKey>::value, "");
static_assert(std::is_convertible<CustomPropertyKey, const PropertyPointer&>::value, "");
static_assert(sizeof(CustomPropertyKey) == sizeof(PropertyPointer), "a key is one pointer");
static_assert(
    std::is_same<decltype(*std::declval<const CustomPropertyKey&>()), const CustomProperty&>::value,
    "");
static_assert(std::is_same<decltype(std::declval<const CustomPropertyKey&>().operator->()),
                           const PropertyPointer&>::value,
              "");

template <class T, class = void>
struct HasObjectTypeSetter : std::false_type {};
template <class T>
struct HasObjectTypeSetter<T, decltype(std::declval<T&>().object_type(ObjectType::Material),
                                       void())> : std::true_type {};
static_assert(!HasObjectTypeSetter<CustomProperty>::value, "fixed when the property is made");

TEST(CustomPropertyTest, a_new_property_has_its_kind_of_object) {
  for (const ObjectType type : {ObjectType::Material, ObjectType::Composition, ObjectType(0),
                                ObjectType::Layer, ObjectType(-1), ObjectType(1000)}) {
    const auto property = CustomProperty::create("Colour", type);
    EXPECT_EQ(property->object_type(), type);
    EXPECT_EQ(property->name().utf8(), "Colour");
    EXPECT_EQ(property->id(), 0u);
    EXPECT_EQ(property->library(), nullptr);
    EXPECT_TRUE(property->isDirty());
  }
}

TEST(CustomPropertyTest, a_clone_keeps_the_kind_of_object) {
  const auto property = CustomProperty::create("Colour", ObjectType::Composition);
  const auto clone = property->clone();
  EXPECT_EQ(clone->object_type(), ObjectType::Composition);
  EXPECT_EQ(clone->name().utf8(), "Colour");
  EXPECT_TRUE(*clone == *property);
}

TEST(CustomPropertyTest, a_read_property_has_its_kind_of_object) {
  const StoredObjects stored;
  EXPECT_EQ(stored.get<CustomProperty>()->object_type(), ObjectType::Material);
  EXPECT_EQ(stored.library()->get<CustomProperty>(StoredObjects::twin_id)->object_type(),
            ObjectType::Composition);
}

TEST(CustomPropertyTest, both_name_and_kind_of_object_count) {
  const auto property = CustomProperty::create("Colour", ObjectType::Material);
  EXPECT_TRUE(*property == *CustomProperty::create("Colour", ObjectType::Material));
  EXPECT_FALSE(*property != *CustomProperty::create("Colour", ObjectType::Material));
  EXPECT_FALSE(*property == *CustomProperty::create("colour", ObjectType::Material));
  EXPECT_FALSE(*property == *CustomProperty::create("Colour", ObjectType::Composition));
  EXPECT_TRUE(*property != *CustomProperty::create("Colour", ObjectType::Composition));
  EXPECT_FALSE(*property == *CustomProperty::create("Colour", ObjectType(0)));
}

CustomPropertyKey key_of(const char* name, ObjectType type = ObjectType::Material) {
  return CustomPropertyKey(CustomProperty::create(name, type));
}

TEST(CustomPropertyKeyTest, gives_its_property) {
  const PropertyPointer property = CustomProperty::create("Colour", ObjectType::Material);
  const CustomPropertyKey key(property);
  const PropertyPointer& wrapped = key;
  EXPECT_EQ(wrapped, property);
  EXPECT_EQ(key.operator->(), property);
  EXPECT_EQ(&*key, property.get());
  EXPECT_EQ(key->name().utf8(), "Colour");
}

TEST(CustomPropertyKeyTest, holds_its_property_until_it_goes) {
  std::weak_ptr<const CustomProperty> property;
  {
    auto key = std::make_unique<CustomPropertyKey>(key_of("Colour"));
    property = key->operator->();
    const CustomPropertyKey copy(*key);
    key.reset();
    EXPECT_FALSE(property.expired());
  }
  EXPECT_TRUE(property.expired());
}

TEST(CustomPropertyKeyTest, is_assigned) {
  CustomPropertyKey key = key_of("Colour");
  const CustomPropertyKey other = key_of("Price");
  EXPECT_EQ(&(key = other), &key);
  EXPECT_EQ(&*key, &*other);
  const CustomPropertyKey& itself = key;
  key = itself;
  EXPECT_EQ(&*key, &*other);
}

TEST(CustomPropertyKeyTest, is_ordered_by_name_alone) {
  EXPECT_TRUE(key_of("A") < key_of("B"));
  EXPECT_FALSE(key_of("B") < key_of("A"));
  EXPECT_TRUE(key_of("B") < key_of("a"));
  EXPECT_TRUE(key_of("A") < key_of("AA"));
  EXPECT_TRUE(key_of("") < key_of("A"));
  EXPECT_TRUE(key_of("A", ObjectType::Composition) < key_of("B", ObjectType::Material));
  EXPECT_FALSE(key_of("A", ObjectType::Material) < key_of("A", ObjectType::Composition));
  EXPECT_FALSE(key_of("A", ObjectType::Composition) < key_of("A", ObjectType::Material));
}

TEST(CustomPropertyKeyTest, equality_looks_at_the_kind_of_object_as_well) {
  EXPECT_TRUE(key_of("A") == key_of("A"));
  EXPECT_FALSE(key_of("A") == key_of("a"));
  EXPECT_FALSE(key_of("A", ObjectType::Material) == key_of("A", ObjectType::Composition));
  EXPECT_FALSE(key_of("A", ObjectType::Material) == key_of("A", ObjectType(0)));
  const CustomPropertyKey key = key_of("A");
  EXPECT_TRUE(key == key);
  EXPECT_TRUE(key == CustomPropertyKey(key));
}

TEST(CustomPropertyKeyTest, keys_of_equal_properties_are_equal_and_neither_is_less) {
  const CustomPropertyKey left = key_of("A");
  const CustomPropertyKey right = key_of("A");
  EXPECT_NE(&*left, &*right);
  EXPECT_TRUE(left == right);
  EXPECT_FALSE(left < right);
  EXPECT_FALSE(right < left);
}

TEST(CustomPropertyKeyTest, a_map_has_one_value_per_name) {
  std::map<CustomPropertyKey, String> values;
  values.emplace(key_of("A", ObjectType::Material), "first");
  values.emplace(key_of("A", ObjectType::Composition), "second");
  ASSERT_EQ(values.size(), 1u);
  EXPECT_EQ(values.begin()->second.utf8(), "first");
}

}  // namespace
}  // namespace veldra_tests
