// SPDX-License-Identifier: GPL-2.0-or-later
#include "foundation/type_names.hpp"
#include "foundation/utf16.hpp"
#include "foundation/virtual_slots.hpp"
#include "support/names.hpp"

#include <exception>
#include <memory>
#include <string>
#include <type_traits>

namespace veldra_tests {
namespace {

template <class Base, class Derived>
constexpr bool derives() {
  return std::is_base_of<Base, Derived>::value && std::is_convertible<Derived*, Base*>::value;
}

static_assert(!derives<std::exception, Exception>(), "the family stands on its own");
static_assert(std::is_abstract<Exception>::value, "");
static_assert(std::has_virtual_destructor<Exception>::value, "");
static_assert(std::is_abstract<ConsistencyError>::value, "");
static_assert(derives<Exception, ConsistencyError>(), "");
static_assert(derives<ConsistencyError, ObjectInUse>(), "");
static_assert(derives<ConsistencyError, ObjectNotUnique>(), "");
static_assert(!derives<ConsistencyError, UnknownError>(), "");
static_assert(!derives<ConsistencyError, LibraryReadOnly>(), "");
static_assert(!derives<ConsistencyError, ObjectNotFound>(), "");
static_assert(!derives<ConsistencyError, InappropriateCustomProperty>(), "");
static_assert(derives<UnknownError, DatabaseError>(), "caught wherever the former is");
static_assert(derives<Exception, NotALibrary>(), "");
static_assert(!std::is_convertible<int, DatabaseError>::value, "a number alone is no exception");
static_assert(!std::is_convertible<String, NotALibrary>::value, "a text alone is no exception");
static_assert(
    std::is_same<decltype(std::declval<const Exception&>().what()), const unsigned short*>::value,
    "");
static_assert(!std::is_convertible<String, ObjectNotUnique>::value, "a text alone is no exception");

template <class Error>
struct Text;
template <>
struct Text<UnknownError> {
  static constexpr const char* value = "Unkown error";
};
template <>
struct Text<Interrupted> {
  static constexpr const char* value = "The operation was interrupted";
};
template <>
struct Text<LibraryReadOnly> {
  static constexpr const char* value = "Library is read only";
};
template <>
struct Text<ObjectNotFound> {
  static constexpr const char* value = "Object not found";
};
template <>
struct Text<InappropriateCustomProperty> {
  static constexpr const char* value = "Inappropriate custom property";
};
template <>
struct Text<ObjectInUse> {
  static constexpr const char* value = "Object is still referenced by other object";
};
template <>
struct Text<ObjectNotUnique> {
  static constexpr const char* value = "An other object with the same values exists";
};

/// The text in UTF-8. All texts are ASCII, so each unit is one byte.
std::string ascii(const unsigned short* text) {
  std::string bytes;
  for (const unsigned short unit : units_of(text)) {
    bytes.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  }
  return bytes;
}

template <class Error>
class ExceptionsTest : public testing::Test {
 public:
  static_assert(derives<Exception, Error>(), "");
  static_assert(!derives<std::exception, Error>(), "");
  static_assert(std::is_default_constructible<Error>::value, "");
  static_assert(std::is_copy_constructible<Error>::value, "");
  static_assert(std::is_copy_assignable<Error>::value, "");
};

using Errors = testing::Types<UnknownError, Interrupted, LibraryReadOnly, ObjectNotFound,
                              InappropriateCustomProperty, ObjectInUse, ObjectNotUnique>;
TYPED_TEST_SUITE(ExceptionsTest, Errors, TypeNames);

TYPED_TEST(ExceptionsTest, says_what_happened) {
  EXPECT_EQ(ascii(TypeParam().what()), Text<TypeParam>::value);
  EXPECT_EQ(String(TypeParam().what()).utf8(), Text<TypeParam>::value);
}

TYPED_TEST(ExceptionsTest, its_text_outlives_it) {
  auto error = std::make_unique<TypeParam>();
  const unsigned short* const text = error->what();
  error.reset();
  EXPECT_EQ(ascii(text), Text<TypeParam>::value);
  EXPECT_EQ(TypeParam().what(), text);
}

TYPED_TEST(ExceptionsTest, is_caught_as_the_root_of_the_family) {
  try {
    throw TypeParam();
  } catch (const std::exception&) {
    FAIL() << "caught as a standard exception";
  } catch (const Exception& error) {
    EXPECT_EQ(ascii(error.what()), Text<TypeParam>::value);
  }
}

TYPED_TEST(ExceptionsTest, a_copy_says_the_same) {
  const TypeParam error;
  TypeParam copy(error);
  EXPECT_EQ(copy.what(), error.what());
  copy = error;
  EXPECT_EQ(copy.what(), error.what());
}

TYPED_TEST(ExceptionsTest, holds_nothing_besides_its_class_and_text) {
  const std::size_t text = std::is_same<TypeParam, ObjectNotUnique>::value ? sizeof(String) : 0;
  EXPECT_EQ(sizeof(TypeParam), sizeof(void*) + text);
}

TYPED_TEST(ExceptionsTest, its_text_is_in_the_slot_after_the_destructor) {
  const TypeParam error;
  const Exception* const base = &error;
  const auto what = virtual_slot<const unsigned short*(const Exception*)>(base, 2);
  EXPECT_EQ(what(base), base->what());
}

TYPED_TEST(ExceptionsTest, its_text_is_never_translated) {
  class Translator : public veldra::Translations {
   public:
    bool translate(String& translation, const String&, const char*, int) override {
      translation = "translated";
      return true;
    }
  };
  Translator translator;
  veldra::Translations::set(&translator);
  const std::string text = ascii(TypeParam().what());
  veldra::Translations::set(nullptr);
  EXPECT_EQ(text, Text<TypeParam>::value);
}

template <class Error>
bool is_caught_as_a_consistency_error() {
  try {
    throw Error();
  } catch (const ConsistencyError&) {
    return true;
  } catch (const Exception&) {
    return false;
  }
}

TEST(ConsistencyErrorTest, is_the_root_of_two) {
  EXPECT_TRUE(is_caught_as_a_consistency_error<ObjectInUse>());
  EXPECT_TRUE(is_caught_as_a_consistency_error<ObjectNotUnique>());
  EXPECT_FALSE(is_caught_as_a_consistency_error<UnknownError>());
  EXPECT_FALSE(is_caught_as_a_consistency_error<LibraryReadOnly>());
  EXPECT_FALSE(is_caught_as_a_consistency_error<ObjectNotFound>());
  EXPECT_FALSE(is_caught_as_a_consistency_error<InappropriateCustomProperty>());
}

TEST(ObjectNotUniqueTest, has_no_text_by_default) { EXPECT_TRUE(ObjectNotUnique().text().empty()); }

TEST(ObjectNotUniqueTest, keeps_a_copy_of_the_text) {
  String text("Material.code");
  const ObjectNotUnique error(text);
  text = "other";
  EXPECT_EQ(error.text().utf8(), "Material.code");
}

TEST(ObjectNotUniqueTest, a_copy_keeps_its_own_copy_of_the_text) {
  auto error = std::make_unique<ObjectNotUnique>(String("Material.code"));
  const ObjectNotUnique copy(*error);
  EXPECT_NE(copy.text().c_str(), error->text().c_str());
  error.reset();
  EXPECT_EQ(copy.text().utf8(), "Material.code");
}

TEST(ObjectNotUniqueTest, an_assignment_copies_the_text) {
  auto error = std::make_unique<ObjectNotUnique>(String("Material.code"));
  ObjectNotUnique target(String("former"));
  target = *error;
  error.reset();
  EXPECT_EQ(target.text().utf8(), "Material.code");
  const ObjectNotUnique& itself = target;
  target = itself;
  EXPECT_EQ(target.text().utf8(), "Material.code");
}

TEST(ObjectNotUniqueTest, carries_its_text_when_it_is_thrown) {
  try {
    throw ObjectNotUnique("Material.code");
  } catch (const ObjectNotUnique& error) {
    EXPECT_EQ(error.text().utf8(), "Material.code");
    EXPECT_EQ(ascii(error.what()), Text<ObjectNotUnique>::value);
  }
}

TEST(DatabaseErrorTest, carries_its_code_and_says_what_its_base_says) {
  try {
    throw DatabaseError(13);
  } catch (const UnknownError& error) {
    EXPECT_EQ(ascii(error.what()), Text<UnknownError>::value);
    EXPECT_EQ(dynamic_cast<const DatabaseError&>(error).code(), 13);
  }
}

TEST(NotALibraryTest, carries_the_name_of_the_file) {
  std::unique_ptr<NotALibrary> error(new NotALibrary("walls.lib"));
  const NotALibrary copy(*error);
  NotALibrary assigned("another");
  assigned = *error;
  error.reset();
  EXPECT_EQ(copy.filename(), String("walls.lib"));
  EXPECT_EQ(assigned.filename(), String("walls.lib"));
  EXPECT_EQ(ascii(copy.what()), "The file is not a library");
}

class CountedError : public Exception {
 public:
  explicit CountedError(int& ended) : ended_(ended) {}
  ~CountedError() override { ++ended_; }
  const unsigned short* what() const override { return nullptr; }

 private:
  int& ended_;
};

TEST(ExceptionSlotsTest, the_destructor_comes_first) {
  int ended = 0;
  Exception* const error = new CountedError(ended);
  const auto end_and_free = virtual_slot<void(Exception*)>(error, 1);
  end_and_free(error);
  EXPECT_EQ(ended, 1);
}

}  // namespace
}  // namespace veldra_tests
