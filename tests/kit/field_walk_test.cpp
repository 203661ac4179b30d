// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"
#include "support/builders.hpp"
#include "support/library_test.hpp"

namespace veldra_tests {
namespace {

using kit::Value;

/// A value for a field of another object than the one that has it.
Value another(const kit::FieldDescription& field, const Value& value) {
  if (field.unique) return value_text(value) + " too";
  if (field.origin == kit::Origin::Quantity) return 0.125;
  return value;
}

/// All fields of each class, through a library and back.
template <class T>
class FieldWalk : public LibraryFixture {
 protected:
  void SetUp() override {
    auto library = create();
    library->save(full<T>("Full"));
    library->save(named<T>("Plain"));
  }
};

TYPED_TEST_SUITE(FieldWalk, AllKinds);

TYPED_TEST(FieldWalk, each_value_that_is_set_is_read_back) {
  using T = TypeParam;
  std::vector<std::pair<std::string, Value>> expected;
  {
    const auto library = this->open();
    const kit::Fields<T> fields(*library);
    const auto source = library->template get<T>(text("Full"));
    const auto object = library->template get<T>(text("Plain"));
    for (const auto& field : fields) {
      if (!field.writable()) continue;
      const Value value = another(field, field.get(*source));
      field.set(*object, value);
      EXPECT_EQ(field.get(*object), value) << field.name();
      expected.emplace_back(field.name(), value);
    }
    library->save(object);
  }
  const auto library = this->open();
  const kit::Fields<T> fields(*library);
  if (expected.empty()) return;
  const auto copy = library->template get<T>(text("Full too"));
  ASSERT_TRUE(copy);
  for (const auto& [name, value] : expected) {
    EXPECT_EQ(fields.at(name).get(*copy), value) << name;
  }
}

TYPED_TEST(FieldWalk, each_field_that_is_set_alone_is_saved_and_cleared_again) {
  using T = TypeParam;
  const auto library = this->open();
  const kit::Fields<T> fields(*library);
  for (const auto& field : fields) {
    if (!field.writable() || field.required) continue;
    const auto source = library->template get<T>(text("Full"));
    const auto object = library->template get<T>(text("Plain"));
    const Value before = field.get(*object);
    const Value value = another(field, field.get(*source));
    EXPECT_NE(before, value) << field.name();
    field.set(*object, value);
    library->save(object);
    const auto saved = library->template get<T>(text("Plain"));
    EXPECT_EQ(field.get(*saved), value) << field.name();
    field.set(*saved, before);
    library->save(saved);
    EXPECT_EQ(field.get(*library->template get<T>(text("Plain"))), before) << field.name();
  }
}

TYPED_TEST(FieldWalk, each_value_has_a_text_that_reads_back) {
  using T = TypeParam;
  const auto library = this->open();
  const auto source = library->template get<T>(text("Full"));
  for (const auto& field : kit::Fields<T>(*library)) {
    const Value value = field.get(*source);
    if (value.is_nothing() || value.kind() != field.kind) continue;
    EXPECT_EQ(kit::value_from_text(field, kit::field_text(field, value), library->unit()), value)
        << field.name();
  }
}

TYPED_TEST(FieldWalk, each_field_has_a_name_of_its_own_and_a_label) {
  std::set<std::string> names;
  for (const auto& field : kit::Fields<TypeParam>(*this->open())) {
    EXPECT_TRUE(names.insert(field.name()).second) << field.name();
    EXPECT_FALSE(field.label.empty()) << field.name();
    EXPECT_EQ(kit::Fields<TypeParam>(*this->open()).at(field.name()).name(), field.name());
  }
}

TYPED_TEST(FieldWalk, a_new_object_has_the_initial_values) {
  using T = TypeParam;
  const auto object = named<T>("New");
  for (const auto& field : kit::Fields<T>()) {
    if (!field.writable() || field.required) continue;
    EXPECT_EQ(field.get(*object), field.initial) << field.name();
  }
}

}  // namespace
}  // namespace veldra_tests
