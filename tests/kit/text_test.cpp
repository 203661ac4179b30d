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
