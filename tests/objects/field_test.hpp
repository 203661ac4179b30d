// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_OBJECTS_FIELD_TEST_HPP
#define VELDRA_TESTS_OBJECTS_FIELD_TEST_HPP

#include "objects/stored_objects.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

/// Whether `operator==` looks at a field.
enum class Compared { No, Yes };

/// One field of a kind of objects, for asking the same questions of every field.
template <class T>
struct Field {
  std::string name;
  std::function<void(T&)> keep;           ///< sets the value that it has
  std::function<void(T&)> change;         ///< sets another value
  std::function<bool(const T&)> changed;  ///< whether it has that other value
  Compared compared;
};

template <class T>
std::ostream& operator<<(std::ostream& out, const Field<T>& field) {
  return out << field.name;
}

template <class T>
std::string name_of(const testing::TestParamInfo<Field<T>>& field) {
  return field.param.name;
}

/// A field with a getter and a setter of its name. `other` is a value that the stored object does
/// not have.
#define VELDRA_FIELD_THAT_IS(compared, T, field, other)                          \
  veldra_tests::Field<T> {                                                       \
#field, [](T &object) { object.field(object.field()); },                       \
        [](T &object) { object.field(other); },                                    \
        [](const T &object) { return object.field() == (other); },                 \
        veldra_tests::Compared::compared \
  }

#define VELDRA_FIELD(T, field, other) VELDRA_FIELD_THAT_IS(Yes, T, field, other)

/// A stored object with a value in every field, clean; and another that was read from the same row.
template <class T>
class FieldTest : public testing::TestWithParam<Field<T>> {
 protected:
  const Field<T>& field() const { return this->GetParam(); }

  void expect_keeping_its_value_to_leave_it_clean() {
    field().keep(*object);
    EXPECT_FALSE(object->isDirty());
    EXPECT_FALSE(field().changed(*object));
  }

  void expect_changing_to_make_it_dirty() {
    ASSERT_FALSE(field().changed(*object)) << "the other value must differ";
    field().change(*object);
    EXPECT_TRUE(object->isDirty());
    EXPECT_TRUE(field().changed(*object));
    EXPECT_EQ(object->id(), same_row->id());
    EXPECT_EQ(object->library(), same_row->library());
  }

  void expect_changing_to_leave_the_other_fields(const std::vector<Field<T>>& fields) {
    field().change(*object);
    for (const Field<T>& other : fields) {
      EXPECT_EQ(other.changed(*object), other.name == field().name) << other.name;
    }
  }

  void expect_a_change_to_count_in_comparisons() {
    ASSERT_TRUE(*object == *same_row);
    field().change(*object);
    const bool equal = field().compared == Compared::No;
    EXPECT_EQ(*object == *same_row, equal);
    EXPECT_EQ(*same_row == *object, equal);
    EXPECT_EQ(*object != *same_row, !equal);
    EXPECT_EQ(*same_row != *object, !equal);
    field().change(*same_row);
    EXPECT_TRUE(*object == *same_row);
  }

  void expect_a_clone_to_have_it() {
    field().change(*object);
    const std::shared_ptr<T> clone = object->clone();
    EXPECT_TRUE(field().changed(*clone));
    EXPECT_TRUE(*clone == *object);
    EXPECT_EQ(clone->id(), 0u);
    EXPECT_EQ(clone->library(), nullptr);
    EXPECT_TRUE(clone->isDirty());
  }

  void expect_a_change_of_a_clone_to_leave_the_original() {
    field().change(*object->clone());
    EXPECT_FALSE(field().changed(*object));
    EXPECT_FALSE(object->isDirty());
  }

  void expect_an_assignment_to_carry_it() {
    const std::shared_ptr<T> source = object->clone();
    field().change(*source);
    T& target = *object;
    EXPECT_EQ(&(target = *source), &target);
    EXPECT_TRUE(field().changed(target));
    EXPECT_TRUE(target == *source);
    EXPECT_TRUE(target.isDirty());
    EXPECT_EQ(target.id(), same_row->id());
    EXPECT_EQ(target.library(), same_row->library());
  }

  const StoredObjects stored;
  const std::shared_ptr<T> object = stored.get<T>();
  const std::shared_ptr<T> same_row = stored.get<T>();
};

/// What is asked of each of the fields. `Suite` is a `FieldTest` of the kind `T`.
#define VELDRA_FIELD_TESTS(Suite, T, fields)                                        \
  TEST_P(Suite, keeping_its_value_leaves_it_clean) {                                \
    expect_keeping_its_value_to_leave_it_clean();                                   \
  }                                                                                 \
  TEST_P(Suite, changing_it_makes_it_dirty) { expect_changing_to_make_it_dirty(); } \
  TEST_P(Suite, changing_it_leaves_the_other_fields) {                              \
    expect_changing_to_leave_the_other_fields(fields);                              \
  }                                                                                 \
  TEST_P(Suite, a_change_counts_in_comparisons_as_it_should) {                      \
    expect_a_change_to_count_in_comparisons();                                      \
  }                                                                                 \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(fields), veldra_tests::name_of<T>)

/// What is asked in addition where objects can be cloned and assigned.
#define VELDRA_COPIED_FIELD_TESTS(Suite)                         \
  TEST_P(Suite, a_clone_has_it) { expect_a_clone_to_have_it(); } \
  TEST_P(Suite, a_change_of_a_clone_leaves_the_original) {       \
    expect_a_change_of_a_clone_to_leave_the_original();          \
  }                                                              \
  TEST_P(Suite, an_assignment_carries_it) { expect_an_assignment_to_carry_it(); }

}  // namespace veldra_tests

#endif
