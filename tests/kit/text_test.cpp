// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>
#include <limits>

namespace veldra_tests {
namespace {

TEST(FoldedText, is_the_same_for_any_case) {
  EXPECT_EQ(kit::folded("Brick"), "brick");
  EXPECT_EQ(kit::folded("ÄNDERN"), kit::folded("ändern"));
  EXPECT_EQ(kit::folded("ΟΔΟΣ"), kit::folded("οδος"));
  EXPECT_EQ(kit::folded("Жилой ДОМ"), kit::folded("жилой дом"));
}

TEST(FoldedText, is_the_same_with_and_without_accents) {
  EXPECT_EQ(kit::folded("Dämmung"), "dammung");
  EXPECT_EQ(kit::folded("béton armé"), "beton arme");
  EXPECT_EQ(kit::folded("A\xCC\x8A"), kit::folded("Å"));  // a letter, and a ring behind it
}

TEST(FoldedText, has_two_letters_for_a_sharp_s) {
  EXPECT_EQ(kit::folded("Straße"), "strasse");
  EXPECT_EQ(kit::folded("STRASSE"), "strasse");
}

TEST(FoldedText, keeps_marks_that_are_letters_in_their_scripts) {
  EXPECT_NE(kit::folded("が"), kit::folded("を"));
  EXPECT_NE(kit::folded("कि"), kit::folded("की"));
}

TEST(FoldedText, keeps_digits_and_signs) {
  EXPECT_EQ(kit::folded("λ 0.035 [W/(m K)]"), "λ 0.035 [w/(m k)]");
}

TEST(FoldedText, of_what_is_not_utf8_is_what_came) {
  EXPECT_EQ(kit::folded("Gr\xFC\xDF"), "Gr\xFC\xDF");
  EXPECT_EQ(kit::folded(""), "");
}

TEST(LowerCase, keeps_accents_and_sharp_s) {
  EXPECT_EQ(kit::lower_case("Well VENTILATED"), "well ventilated");
  EXPECT_EQ(kit::lower_case("ÄÖÜ Straße"), "äöü straße");
}

TEST(LowerCase, ends_before_what_is_not_utf8) {
  EXPECT_EQ(kit::lower_case("ÄB\xFF"
                            "CD"),
            "äb");
}

TEST(Utf8, has_no_broken_and_no_impossible_characters) {
  EXPECT_TRUE(kit::is_utf8(""));
  EXPECT_TRUE(kit::is_utf8("Dämmung \xF0\x9F\xA7\xB1"));
  EXPECT_FALSE(kit::is_utf8("Gr\xFC\xDF"));
  EXPECT_FALSE(kit::is_utf8("\xC3"));              // ends within a character
  EXPECT_FALSE(kit::is_utf8("\xC0\xAF"));          // longer than it must be
  EXPECT_FALSE(kit::is_utf8("\xED\xA0\x80"));      // half of a character of UTF-16
  EXPECT_FALSE(kit::is_utf8("\xF4\x90\x80\x80"));  // beyond the last
}

TEST(Utf8, is_made_of_latin_1_where_a_text_is_not) {
  EXPECT_EQ(kit::from_latin1("Gr\xFC\xDF"), "Grüß");
  EXPECT_EQ(kit::in_utf8("Gr\xFC\xDF"), "Grüß");
  EXPECT_EQ(kit::in_utf8("Grüß"), "Grüß");
}

TEST(TextWithoutControls, has_something_else_in_their_place) {
  const auto star = [](char32_t) { return std::string("*"); };
  EXPECT_EQ(kit::without_controls("a\x1b[1m\nü", star), "a*[1m*ü");
  EXPECT_EQ(kit::without_controls("\u202e\u2066\u200f\u2028\u0085\u061c", star), "******");
  EXPECT_EQ(kit::without_controls("\uffff\ufffe", star), "**");
  EXPECT_EQ(kit::without_controls("a\xFF"
                                  "b",
                                  star),
            "a");
}

TEST(TextWithoutControls, tells_which_it_replaces) {
  const auto number = [](char32_t character) {
    return std::to_string(static_cast<unsigned>(character));
  };
  EXPECT_EQ(kit::without_controls("\t\u2028", number), "98232");
}

TEST(TextWithoutControls, of_json_has_escapes_and_its_own_line_breaks) {
  EXPECT_EQ(kit::without_controls_in_json("{\n\"a\": \"\u202e\"}"), "{\n\"a\": \"\\u202e\"}");
}

TEST(TrimmedText, has_no_blanks_around_it) {
  EXPECT_EQ(kit::trimmed(" \t a b \r\n"), "a b");
  EXPECT_EQ(kit::trimmed(" \t "), "");
}

TEST(ExactNumber, reads_back_to_the_same_number) {
  for (const double number : {0.1, 1.0 / 3, 1e300, -2.5e-7, 240.0}) {
    EXPECT_EQ(kit::number_in(kit::exact_number(number)), number);
  }
  EXPECT_EQ(kit::exact_number(0.1), "0.1");
}

TEST(NumberInText, has_blanks_around_it_and_nothing_else) {
  EXPECT_EQ(kit::number_in(" 0.81 "), 0.81);
  EXPECT_EQ(kit::number_in("-1e3"), -1000.0);
  for (const char* text : {"", "abc", "0,81", "1 2", "0x10", "1.5 mm", "nan", "inf", "1e999"}) {
    EXPECT_EQ(kit::number_in(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace veldra_tests
