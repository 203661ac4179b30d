// SPDX-License-Identifier: GPL-2.0-or-later
#include "foundation/utf16.hpp"
#include "support/names.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace veldra_tests {
namespace {

const unsigned short* const no_utf16 = nullptr;
const char* const no_utf8 = nullptr;
const unsigned short empty_utf16[] = {0};
const unsigned short abc_utf16[] = {'a', 'b', 'c', 0};

static_assert(sizeof(String) == sizeof(void*), "a text is one pointer");
static_assert(std::is_nothrow_default_constructible<String>::value, "");
static_assert(std::is_nothrow_move_constructible<String>::value, "");
static_assert(std::is_nothrow_move_assignable<String>::value, "");
static_assert(std::is_copy_constructible<String>::value, "");
static_assert(std::is_copy_assignable<String>::value, "");
static_assert(std::is_convertible<const char*, String>::value, "");
static_assert(std::is_convertible<const unsigned short*, String>::value, "");
static_assert(std::is_constructible<bool, String>::value, "");
static_assert(!std::is_convertible<String, bool>::value, "the test for a text is explicit");
static_assert(!std::is_convertible<String, int>::value, "");

void expect_empty(const String& text) {
  EXPECT_TRUE(text.empty());
  EXPECT_FALSE(static_cast<bool>(text));
  ASSERT_NE(text.c_str(), nullptr);
  EXPECT_EQ(text.c_str()[0], 0);
  EXPECT_EQ(text.utf8(), "");
}

void expect_abc(const String& text) {
  EXPECT_FALSE(text.empty());
  EXPECT_TRUE(static_cast<bool>(text));
  EXPECT_THAT(units_of(text), ElementsAre('a', 'b', 'c'));
  EXPECT_EQ(text.utf8(), "abc");
}

TEST(StringTest, the_default_is_empty) { expect_empty(String()); }

TEST(StringTest, null_gives_the_empty_text) {
  expect_empty(String(no_utf16));
  expect_empty(String(no_utf8));
}

TEST(StringTest, a_text_without_units_is_empty) {
  expect_empty(String(empty_utf16));
  expect_empty(String(""));
}

TEST(StringTest, all_empty_texts_are_equal) {
  const String empty_texts[] = {String(), String(empty_utf16), String(""), String(no_utf8)};
  for (const String& left : empty_texts) {
    for (const String& right : empty_texts) {
      EXPECT_TRUE(left == right);
      EXPECT_FALSE(left != right);
      EXPECT_FALSE(left < right);
    }
    EXPECT_TRUE(left == empty_utf16);
    EXPECT_FALSE(left != empty_utf16);
  }
}

TEST(StringTest, is_made_from_utf16) { expect_abc(String(abc_utf16)); }

TEST(StringTest, is_made_from_utf8) { expect_abc(String("abc")); }

TEST(StringTest, keeps_a_copy_of_what_it_was_made_from) {
  unsigned short source[] = {'a', 'b', 'c', 0};
  const String text(source);
  source[0] = 'x';
  expect_abc(text);
}

TEST(StringTest, a_copy_has_an_array_of_its_own) {
  auto original = std::make_unique<String>("abc");
  const String copy(*original);
  EXPECT_NE(copy.c_str(), original->c_str());
  original.reset();
  expect_abc(copy);
}

TEST(StringTest, a_copy_of_an_empty_text_is_empty) {
  const String null_text;
  const String empty_array("");
  expect_empty(String(null_text));
  expect_empty(String(empty_array));
}

TEST(StringTest, a_move_takes_the_array_and_leaves_the_source_empty) {
  String source("abc");
  const unsigned short* const array = source.c_str();
  const String target(std::move(source));
  EXPECT_EQ(target.c_str(), array);
  expect_abc(target);
  expect_empty(source);
}

TEST(StringTest, a_moved_from_text_can_be_used_again) {
  String source("abc");
  const String target(std::move(source));
  source = "abc";
  expect_abc(source);
  expect_abc(target);
}

TEST(StringTest, a_move_assignment_takes_the_array) {
  String source("abc");
  String target("former");
  const unsigned short* const array = source.c_str();
  target = std::move(source);
  EXPECT_EQ(target.c_str(), array);
  expect_abc(target);
}

TEST(StringTest, moving_it_to_itself_keeps_the_text) {
  String text("abc");
  String& itself = text;
  text = std::move(itself);
  expect_abc(text);
}

TEST(StringTest, an_empty_text_can_be_moved) {
  String source;
  String target("former");
  target = std::move(source);
  expect_empty(target);
  expect_empty(String(std::move(target)));
}

TEST(StringTest, is_assigned_from_each_kind_of_text) {
  const String abc("abc");
  String text("former");
  expect_abc(text = abc);
  text = "former";
  expect_abc(text = abc_utf16);
  text = String();
  expect_abc(text = "abc");
}

TEST(StringTest, an_assignment_copies) {
  String source("abc");
  String target("former");
  target = source;
  EXPECT_NE(target.c_str(), source.c_str());
  source = "other";
  expect_abc(target);
}

TEST(StringTest, an_assignment_returns_its_target) {
  String text;
  const String other("abc");
  EXPECT_EQ(&(text = other), &text);
  EXPECT_EQ(&(text = abc_utf16), &text);
  EXPECT_EQ(&(text = "abc"), &text);
  EXPECT_EQ(&(text = String("abc")), &text);
}

TEST(StringTest, assigning_null_empties_it) {
  String text("former");
  text = no_utf16;
  expect_empty(text);
  text = "former";
  text = no_utf8;
  expect_empty(text);
}

TEST(StringTest, assigning_an_empty_text_empties_it) {
  String text("former");
  text = empty_utf16;
  expect_empty(text);
  text = "former";
  text = String();
  expect_empty(text);
  text = "former";
  text = "";
  expect_empty(text);
}

TEST(StringTest, assigning_it_to_itself_does_nothing) {
  String text("abc");
  const String& itself = text;
  const unsigned short* const array = text.c_str();
  text = itself;
  EXPECT_EQ(text.c_str(), array);
  expect_abc(text);
}

TEST(StringTest, assigning_its_own_array_does_nothing) {
  String text("abc");
  const unsigned short* const array = text.c_str();
  text = array;
  EXPECT_EQ(text.c_str(), array);
  expect_abc(text);
}

TEST(StringTest, assigning_an_empty_text_to_itself_leaves_it_empty) {
  String text;
  const String& itself = text;
  text = itself;
  expect_empty(text);
  text = itself.c_str();
  expect_empty(text);
}

TEST(StringTest, assigning_the_end_of_its_own_array_keeps_that_end) {
  String text("xxabc");
  text = text.c_str() + 2;
  expect_abc(text);
}

TEST(StringTest, compares_with_a_utf16_text) {
  const String abc("abc");
  const unsigned short ab[] = {'a', 'b', 0};
  const unsigned short abcd[] = {'a', 'b', 'c', 'd', 0};
  const unsigned short abd[] = {'a', 'b', 'd', 0};
  EXPECT_TRUE(abc == abc_utf16);
  EXPECT_FALSE(abc != abc_utf16);
  for (const unsigned short* other : {ab, abcd, abd, empty_utf16}) {
    EXPECT_FALSE(abc == other);
    EXPECT_TRUE(abc != other);
  }
  EXPECT_FALSE(String() == abc_utf16);
  EXPECT_TRUE(String() != abc_utf16);
}

TEST(StringTest, compares_with_its_own_array) {
  const String abc("abc");
  EXPECT_TRUE(abc == abc.c_str());
  EXPECT_TRUE(abc == abc);
  EXPECT_FALSE(abc < abc);
}

TEST(StringTest, a_prefix_comes_first) {
  EXPECT_TRUE(String("ab") < String("abc"));
  EXPECT_FALSE(String("abc") < String("ab"));
  EXPECT_TRUE(String() < String("a"));
  EXPECT_FALSE(String("a") < String());
}

TEST(StringTest, the_first_different_unit_decides) {
  EXPECT_TRUE(String("abc") < String("abd"));
  EXPECT_FALSE(String("abd") < String("abc"));
  EXPECT_TRUE(String("abc") < String("b"));
}

TEST(StringTest, the_order_knows_no_case) {
  EXPECT_TRUE(String("B") < String("a"));
  EXPECT_FALSE(String("a") < String("B"));
  EXPECT_FALSE(String("a") == String("A"));
}

TEST(StringTest, units_are_unsigned) {
  EXPECT_TRUE(string_of({0x7FFF}) < string_of({0x8000}));
  EXPECT_TRUE(string_of({0x0001}) < string_of({0xFFFF}));
  EXPECT_FALSE(string_of({0xFFFF}) < string_of({0x0001}));
}

TEST(StringTest, the_order_is_that_of_units_and_not_of_characters) {
  const String pile_of_books("\xF0\x9F\x93\x9A");       // D83D DCDA
  const String halfwidth_white_circle("\xEF\xBF\xAE");  // FFEE
  EXPECT_TRUE(pile_of_books < halfwidth_white_circle);
}

std::vector<Units> all_texts_of(const Units& alphabet, std::size_t longest) {
  std::vector<Units> texts = {{}};
  for (std::size_t next = 0; next != texts.size(); ++next) {
    if (texts[next].size() == longest) continue;
    for (const unsigned short unit : alphabet) {
      Units longer = texts[next];
      longer.push_back(unit);
      texts.push_back(longer);
    }
  }
  return texts;
}

TEST(StringTest, comparisons_agree_with_those_of_the_units) {
  const std::vector<Units> texts = all_texts_of({0x0001, 0x0041, 0x0061, 0xD83D, 0xFFFF}, 3);
  for (const Units& left : texts) {
    const String left_text = string_of(left);
    for (const Units& right : texts) {
      const String right_text = string_of(right);
      ASSERT_EQ(left_text < right_text, left < right);
      ASSERT_EQ(left_text == right_text, left == right);
      ASSERT_EQ(left_text != right_text, left != right);
      ASSERT_EQ(left_text == right_text.c_str(), left == right);
      ASSERT_EQ(left_text != right_text.c_str(), left != right);
    }
  }
}

TEST(StringTest, sorts_in_sets_and_maps) {
  const std::set<String> names = {"b", "a", "B", "", "ab", "a"};
  std::vector<std::string> sorted;
  for (const String& name : names) sorted.push_back(name.utf8());
  EXPECT_THAT(sorted, ElementsAre("", "B", "a", "ab", "b"));

  std::map<String, int> counts;
  ++counts["Wood"];
  ++counts["Wood"];
  EXPECT_EQ(counts["Wood"], 2);
  EXPECT_EQ(counts.size(), 1u);
}

TEST(StringTest, holds_units_that_are_no_text) {
  const Units units = {0xDC00, 0xD800, 0x0041, 0xFFFE, 0xFFFF};
  EXPECT_EQ(units_of(string_of(units)), units);
}

TEST(StringTest, holds_long_texts) {
  const std::string long_text(1 << 20, 'x');
  const String text(long_text.c_str());
  EXPECT_EQ(units_of(text).size(), long_text.size());
  EXPECT_EQ(text.utf8(), long_text);
  EXPECT_TRUE(String(text) == text);
}

}  // namespace
}  // namespace veldra_tests
