// SPDX-License-Identifier: GPL-2.0-or-later
//
// The custom values of both kinds of objects that have them.

#include "foundation/type_names.hpp"
#include "objects/stored_objects.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace veldra_tests {
namespace {

using PropertyPointer = std::shared_ptr<const CustomProperty>;
using Values = std::map<CustomPropertyKey, String>;
using NamedValues = std::vector<std::pair<std::string, std::string>>;

const ObjectType any_kind = ObjectType(0);

/// A clean owner without values, and a stored one that has the value "Valued" under "Stored".
template <class T>
class CustomValuesTest : public testing::Test {
 public:
  static_assert(
      std::is_same<decltype(std::declval<const T&>().custom_values()), const Values&>::value, "");
  static_assert(std::is_same<decltype(std::declval<T&>().custom_values_begin(toModify)),
                             Values::iterator>::value,
                "");
  static_assert(std::is_same<decltype(std::declval<const T&>().custom_value(String())),
                             odb::nullable<String>>::value,
                "");

  static constexpr ObjectType own_kind = ObjectTraits<T>::type;
  static constexpr ObjectType other_kind =
      own_kind == ObjectType::Material ? ObjectType::Composition : ObjectType::Material;

  static std::shared_ptr<CustomProperty> property(const char* name,
                                                  ObjectType type = ObjectTraits<T>::type) {
    return CustomProperty::create(name, type);
  }

  NamedValues values() const { return values_of(*owner); }

  static NamedValues values_of(const T& object) {
    NamedValues values;
    for (const auto& entry : object.custom_values()) {
      values.emplace_back(entry.first->name().utf8(), entry.second.utf8());
    }
    return values;
  }

  static std::string text_of(const odb::nullable<String>& value) {
    return value.null() ? "nothing" : value->utf8();
  }

  std::string value(const PropertyPointer& property) const {
    return text_of(owner->custom_value(property));
  }
  std::string value(const char* name) const { return text_of(owner->custom_value(String(name))); }

  void expect_clean_without_values() const {
    EXPECT_FALSE(owner->isDirty());
    EXPECT_THAT(values(), IsEmpty());
  }

  void expect_stored_as_it_was() const {
    EXPECT_FALSE(stored->isDirty());
    EXPECT_THAT(values_of(*stored), ElementsAre(Pair("Stored", "Valued")));
  }

  const std::shared_ptr<T> owner = T::create();
  const std::shared_ptr<CustomProperty> colour = property("Colour");

 private:
  StoredObjects objects_;

 public:
  const std::shared_ptr<T> stored = objects_.get<T>();
};

using Owners = testing::Types<Material, Composition>;
TYPED_TEST_SUITE(CustomValuesTest, Owners, TypeNames);

TYPED_TEST(CustomValuesTest, a_new_owner_has_none) { this->expect_clean_without_values(); }

TYPED_TEST(CustomValuesTest, a_read_owner_is_clean_with_its_values) {
  this->expect_stored_as_it_was();
}

// Setting by property.

TYPED_TEST(CustomValuesTest, a_value_is_set_and_makes_the_owner_dirty) {
  this->owner->custom_value(this->colour, "Red");
  EXPECT_TRUE(this->owner->isDirty());
  ASSERT_THAT(this->values(), ElementsAre(Pair("Colour", "Red")));
  const PropertyPointer& key = this->owner->custom_values().begin()->first;
  EXPECT_EQ(key, this->colour);
}

TYPED_TEST(CustomValuesTest, a_value_is_replaced) {
  this->owner->custom_value(this->colour, "Red");
  this->owner->custom_value(this->colour, "Blue");
  EXPECT_THAT(this->values(), ElementsAre(Pair("Colour", "Blue")));
}

TYPED_TEST(CustomValuesTest, a_value_may_be_empty) {
  this->owner->custom_value(this->colour, String());
  EXPECT_THAT(this->values(), ElementsAre(Pair("Colour", "")));
  EXPECT_FALSE(this->owner->custom_value(this->colour).null());
  EXPECT_TRUE(this->owner->isDirty());
}

TYPED_TEST(CustomValuesTest, a_value_is_copied) {
  String text("Red");
  this->owner->custom_value(this->colour, text);
  text = "Blue";
  EXPECT_EQ(this->value(this->colour), "Red");
}

TYPED_TEST(CustomValuesTest, setting_the_same_value_makes_the_owner_dirty) {
  this->stored->custom_value(this->property("Stored"), "Valued");
  EXPECT_TRUE(this->stored->isDirty());
  EXPECT_THAT(this->values_of(*this->stored), ElementsAre(Pair("Stored", "Valued")));
}

TYPED_TEST(CustomValuesTest, a_property_for_another_kind_is_inappropriate) {
  for (const ObjectType kind :
       {ObjectType::Tag, ObjectType::Asset, ObjectType::MaterialType, this->other_kind,
        ObjectType::CustomProperty, ObjectType::Layer, ObjectType(-1), ObjectType(8)}) {
    const Thrown thrown = thrown_by(
        [&] { this->owner->custom_value(this->property("Colour", kind), String("Red")); });
    EXPECT_EQ(thrown, "veldra::InappropriateCustomProperty") << int(kind);
    EXPECT_EQ(thrown.text, "Inappropriate custom property");
    this->expect_clean_without_values();
  }
}

TYPED_TEST(CustomValuesTest, no_property_is_inappropriate) {
  EXPECT_EQ(thrown_by([&] { this->owner->custom_value(PropertyPointer(), String("Red")); }),
            "veldra::InappropriateCustomProperty");
  this->expect_clean_without_values();
}

TYPED_TEST(CustomValuesTest, an_inappropriate_property_changes_no_value_of_its_name) {
  const auto inappropriate = this->property("Stored", this->other_kind);
  EXPECT_EQ(thrown_by([&] { this->stored->custom_value(inappropriate, String("Changed")); }),
            "veldra::InappropriateCustomProperty");
  this->expect_stored_as_it_was();
}

TYPED_TEST(CustomValuesTest, a_property_for_any_kind_is_appropriate) {
  const auto anything = this->property("Colour", any_kind);
  this->owner->custom_value(anything, "Red");
  EXPECT_TRUE(this->owner->isDirty());
  EXPECT_EQ(this->value(anything), "Red");
}

TYPED_TEST(CustomValuesTest, another_property_of_the_name_changes_the_value_only) {
  this->owner->custom_value(this->colour, "Red");
  this->owner->custom_value(this->property("Colour"), "Blue");
  this->owner->custom_value(this->property("Colour", any_kind), "Green");
  ASSERT_THAT(this->values(), ElementsAre(Pair("Colour", "Green")));
  const PropertyPointer& key = this->owner->custom_values().begin()->first;
  EXPECT_EQ(key, this->colour);
}

TYPED_TEST(CustomValuesTest, values_come_in_the_order_of_the_names) {
  for (const char* name : {"b", "a", "B", "ab", ""}) {
    this->owner->custom_value(this->property(name), name);
  }
  EXPECT_THAT(this->values(), ElementsAre(Pair("", ""), Pair("B", "B"), Pair("a", "a"),
                                          Pair("ab", "ab"), Pair("b", "b")));
}

// Setting by name.

TYPED_TEST(CustomValuesTest, a_new_name_gets_a_new_property) {
  this->owner->custom_value("Colour", "Red");
  EXPECT_TRUE(this->owner->isDirty());
  ASSERT_THAT(this->values(), ElementsAre(Pair("Colour", "Red")));
  const CustomPropertyKey& key = this->owner->custom_values().begin()->first;
  EXPECT_EQ(key->id(), 0u);
  EXPECT_EQ(key->library(), nullptr);
  EXPECT_EQ(key->object_type(), this->own_kind);
  EXPECT_TRUE(key->isDirty());
}

TYPED_TEST(CustomValuesTest, a_name_is_not_looked_up_in_the_library) {
  this->stored->clear_custom_values();
  this->stored->custom_value("Stored", "Changed");
  ASSERT_THAT(this->values_of(*this->stored), ElementsAre(Pair("Stored", "Changed")));
  EXPECT_EQ(this->stored->custom_values().begin()->first->id(), 0u);
}

TYPED_TEST(CustomValuesTest, a_known_name_keeps_its_property) {
  this->owner->custom_value("Colour", "Red");
  const PropertyPointer key = this->owner->custom_values().begin()->first;
  this->owner->custom_value("Colour", "Blue");
  ASSERT_THAT(this->values(), ElementsAre(Pair("Colour", "Blue")));
  const PropertyPointer& kept = this->owner->custom_values().begin()->first;
  EXPECT_EQ(kept, key);
}

TYPED_TEST(CustomValuesTest, a_known_name_of_a_property_for_any_kind_keeps_it) {
  const auto anything = this->property("Colour", any_kind);
  this->owner->custom_value(anything, "Red");
  this->owner->custom_value("Colour", "Blue");
  ASSERT_THAT(this->values(), ElementsAre(Pair("Colour", "Blue")));
  EXPECT_EQ(this->owner->custom_values().begin()->first->object_type(), any_kind);
}

TYPED_TEST(CustomValuesTest, setting_the_same_value_by_name_makes_the_owner_dirty) {
  this->stored->custom_value("Stored", "Valued");
  EXPECT_TRUE(this->stored->isDirty());
}

// Getting.

TYPED_TEST(CustomValuesTest, a_value_is_got_by_its_property) {
  this->owner->custom_value(this->colour, "Red");
  EXPECT_EQ(this->value(this->colour), "Red");
}

TYPED_TEST(CustomValuesTest, a_value_is_got_by_an_equal_property) {
  EXPECT_EQ(this->text_of(this->stored->custom_value(this->property("Stored"))), "Valued");
}

TYPED_TEST(CustomValuesTest, a_missing_value_is_null) {
  EXPECT_EQ(this->value(this->colour), "nothing");
  EXPECT_EQ(this->value("Colour"), "nothing");
  this->owner->custom_value(this->property("Colou"), "Red");
  this->owner->custom_value(this->property("colour"), "Red");
  EXPECT_EQ(this->value(this->colour), "nothing");
  EXPECT_EQ(this->value("Colour"), "nothing");
}

TYPED_TEST(CustomValuesTest, no_property_has_no_value) {
  EXPECT_EQ(this->value(PropertyPointer()), "nothing");
  EXPECT_EQ(this->text_of(this->stored->custom_value(PropertyPointer())), "nothing");
}

TYPED_TEST(CustomValuesTest, a_property_for_another_kind_has_no_value) {
  this->owner->custom_value(this->colour, "Red");
  EXPECT_EQ(this->value(this->property("Colour", this->other_kind)), "nothing");
  EXPECT_EQ(this->value(this->property("Colour", any_kind)), "nothing");
  EXPECT_EQ(this->value("Colour"), "Red");
}

TYPED_TEST(CustomValuesTest, a_name_finds_a_property_for_any_kind) {
  this->owner->custom_value(this->property("Colour", any_kind), "Red");
  EXPECT_EQ(this->value("Colour"), "Red");
  EXPECT_EQ(this->value(this->colour), "nothing");
}

TYPED_TEST(CustomValuesTest, the_empty_name_is_a_name) {
  EXPECT_EQ(this->value(""), "nothing");
  this->owner->custom_value(String(), String("Red"));
  EXPECT_EQ(this->value(""), "Red");
}

TYPED_TEST(CustomValuesTest, what_is_got_is_a_copy) {
  this->owner->custom_value(this->colour, "Red");
  odb::nullable<String> value = this->owner->custom_value(this->colour);
  *value = "Blue";
  EXPECT_EQ(this->value(this->colour), "Red");
}

TYPED_TEST(CustomValuesTest, getting_leaves_the_owner_clean) {
  this->stored->custom_value(this->property("Stored"));
  this->stored->custom_value(this->property("Stored", this->other_kind));
  this->stored->custom_value(String("Stored"));
  this->stored->custom_value(String("Missing"));
  this->expect_stored_as_it_was();
}

TYPED_TEST(CustomValuesTest, a_renamed_property_is_found_by_its_new_name) {
  std::vector<std::shared_ptr<CustomProperty>> properties;
  for (const char* name : {"a", "b", "c", "d", "e"}) {
    properties.push_back(this->property(name));
    this->owner->custom_value(properties.back(), name);
  }
  properties.front()->name("z");
  EXPECT_EQ(this->value("z"), "a");
  EXPECT_EQ(this->value("a"), "nothing");
  EXPECT_EQ(this->value("d"), "d");
}

TYPED_TEST(CustomValuesTest, of_two_properties_of_a_name_the_first_is_found) {
  const auto first = this->property("a");
  this->owner->custom_value(first, "first");
  this->owner->custom_value(this->property("m"), "second");
  this->owner->custom_value(this->property("z"), "third");
  first->name("m");
  EXPECT_EQ(this->value("m"), "first");
  this->owner->clear_custom_value(String("m"));
  EXPECT_EQ(this->value("m"), "second");
}

// Access for changing.

TYPED_TEST(CustomValuesTest, each_access_for_changing_makes_the_owner_dirty) {
  const auto begun = TypeParam::create();
  begun->custom_values_begin(toModify);
  EXPECT_TRUE(begun->isDirty());
  const auto ended = TypeParam::create();
  ended->custom_values_end(toModify);
  EXPECT_TRUE(ended->isDirty());
}

TYPED_TEST(CustomValuesTest, access_for_changing_reaches_all_values) {
  for (const char* name : {"a", "b", "c"}) this->owner->custom_value(name, name);
  const auto end = this->owner->custom_values_end(toModify);
  for (auto entry = this->owner->custom_values_begin(toModify); entry != end; ++entry) {
    entry->second = "changed";
  }
  EXPECT_THAT(this->values(),
              ElementsAre(Pair("a", "changed"), Pair("b", "changed"), Pair("c", "changed")));
}

TYPED_TEST(CustomValuesTest, reading_all_leaves_the_owner_clean) {
  EXPECT_EQ(this->stored->custom_values().size(), 1u);
  EXPECT_FALSE(this->stored->isDirty());
}

// Clearing.

TYPED_TEST(CustomValuesTest, a_value_is_cleared_by_property_and_makes_the_owner_dirty) {
  this->stored->clear_custom_value(this->property("Stored"));
  EXPECT_TRUE(this->stored->isDirty());
  EXPECT_THAT(this->stored->custom_values(), IsEmpty());
}

TYPED_TEST(CustomValuesTest, a_value_is_cleared_by_name_and_makes_the_owner_dirty) {
  this->stored->clear_custom_value(String("Stored"));
  EXPECT_TRUE(this->stored->isDirty());
  EXPECT_THAT(this->stored->custom_values(), IsEmpty());
}

TYPED_TEST(CustomValuesTest, clearing_a_missing_value_leaves_the_owner_clean) {
  this->stored->clear_custom_value(this->property("Missing"));
  this->stored->clear_custom_value(this->property("stored"));
  this->stored->clear_custom_value(String("Missing"));
  this->stored->clear_custom_value(String("stored"));
  this->stored->clear_custom_value(String());
  this->expect_stored_as_it_was();
}

TYPED_TEST(CustomValuesTest, clearing_through_a_property_for_another_kind_does_nothing) {
  this->stored->clear_custom_value(this->property("Stored", this->other_kind));
  this->stored->clear_custom_value(this->property("Stored", any_kind));
  this->expect_stored_as_it_was();
}

TYPED_TEST(CustomValuesTest, clearing_through_no_property_does_nothing) {
  this->stored->clear_custom_value(PropertyPointer());
  this->expect_stored_as_it_was();
}

TYPED_TEST(CustomValuesTest, clearing_by_name_looks_at_no_kind) {
  this->owner->custom_value(this->property("Colour", any_kind), "Red");
  this->owner->clear_custom_value(this->colour);
  EXPECT_THAT(this->values(), ElementsAre(Pair("Colour", "Red")));
  this->owner->clear_custom_value(String("Colour"));
  EXPECT_THAT(this->values(), IsEmpty());
}

TYPED_TEST(CustomValuesTest, clearing_one_value_keeps_the_others) {
  for (const char* name : {"a", "b", "c"}) this->owner->custom_value(name, name);
  this->owner->clear_custom_value(String("b"));
  EXPECT_THAT(this->values(), ElementsAre(Pair("a", "a"), Pair("c", "c")));
  this->owner->clear_custom_value(this->property("a"));
  EXPECT_THAT(this->values(), ElementsAre(Pair("c", "c")));
}

TYPED_TEST(CustomValuesTest, clearing_all_values_makes_the_owner_dirty) {
  this->stored->clear_custom_values();
  EXPECT_TRUE(this->stored->isDirty());
  EXPECT_THAT(this->stored->custom_values(), IsEmpty());
}

TYPED_TEST(CustomValuesTest, clearing_all_of_no_values_leaves_the_owner_clean) {
  this->owner->clear_custom_values();
  this->expect_clean_without_values();
}

TYPED_TEST(CustomValuesTest, clearing_all_of_no_values_leaves_a_dirty_owner_dirty) {
  this->owner->name("Named");
  this->owner->clear_custom_values();
  EXPECT_TRUE(this->owner->isDirty());
}

// Arguments that are part of the owner itself.

TYPED_TEST(CustomValuesTest, a_value_can_be_set_to_another_value_of_the_owner) {
  this->owner->custom_value("a", "first");
  const String& first = this->owner->custom_values().begin()->second;
  this->owner->custom_value("b", first);
  this->owner->custom_value("a", first);
  EXPECT_THAT(this->values(), ElementsAre(Pair("a", "first"), Pair("b", "first")));
}

TYPED_TEST(CustomValuesTest, a_value_can_be_set_through_its_own_key) {
  this->owner->custom_value("a", "first");
  const auto& entry = *this->owner->custom_values().begin();
  this->owner->custom_value(entry.first->name(), entry.second);
  this->owner->custom_value(entry.first.operator->(), String("changed"));
  EXPECT_THAT(this->values(), ElementsAre(Pair("a", "changed")));
}

TYPED_TEST(CustomValuesTest, a_value_can_be_cleared_through_its_own_key) {
  this->owner->custom_value("a", "first");
  this->owner->clear_custom_value(this->owner->custom_values().begin()->first.operator->());
  EXPECT_THAT(this->values(), IsEmpty());
}

TYPED_TEST(CustomValuesTest, a_value_can_be_cleared_through_the_name_of_its_own_key) {
  this->owner->custom_value("a", "first");
  this->owner->clear_custom_value(this->owner->custom_values().begin()->first->name());
  EXPECT_THAT(this->values(), IsEmpty());
}

// Owners with values.

TYPED_TEST(CustomValuesTest, a_clone_shares_the_properties_and_has_values_of_its_own) {
  this->owner->custom_value(this->colour, "Red");
  const auto clone = this->owner->clone();
  this->owner->custom_value(this->colour, "Blue");
  ASSERT_THAT(this->values_of(*clone), ElementsAre(Pair("Colour", "Red")));
  const PropertyPointer& key = clone->custom_values().begin()->first;
  EXPECT_EQ(key, this->colour);
}

TYPED_TEST(CustomValuesTest, owners_are_equal_when_keys_and_texts_are) {
  const auto with = [](const PropertyPointer& property, const char* text) {
    const auto object = TypeParam::create();
    object->custom_value(property, text);
    return object;
  };
  const auto red = with(this->colour, "Red");
  EXPECT_TRUE(*red == *with(this->property("Colour"), "Red"));
  EXPECT_FALSE(*red == *with(this->property("Colour"), "red"));
  EXPECT_FALSE(*red == *with(this->property("Color"), "Red"));
  EXPECT_FALSE(*red == *with(this->property("Colour", any_kind), "Red"));
  EXPECT_FALSE(*red == *TypeParam::create());
  EXPECT_TRUE(*red != *TypeParam::create());

  const auto two = red->clone();
  two->custom_value("Price", "High");
  EXPECT_FALSE(*red == *two);
  EXPECT_FALSE(*two == *red);
}

}  // namespace
}  // namespace veldra_tests
