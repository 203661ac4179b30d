// SPDX-License-Identifier: GPL-2.0-or-later
//
// Conversions are compared with those of the UTF-8 library, over all characters, over all short
// sequences of bytes and of units at the borders of the encodings, and over random ones.

#include "foundation/utf16.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <utf8.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>

namespace veldra_tests {
namespace {

constexpr std::uint32_t first_surrogate = 0xD800;
constexpr std::uint32_t last_surrogate = 0xDFFF;
constexpr std::uint32_t last_character = 0x10FFFF;

std::string hex(const std::string& bytes) {
  std::string digits;
  char two_digits[4];
  for (const char byte : bytes) {
    std::snprintf(two_digits, sizeof two_digits, "%02X ", static_cast<unsigned char>(byte));
    digits += two_digits;
  }
  return digits;
}

std::string hex(const Units& units) {
  std::string digits;
  char four_digits[6];
  for (const unsigned short unit : units) {
    std::snprintf(four_digits, sizeof four_digits, "%04X ", unit);
    digits += four_digits;
  }
  return digits;
}

Units decoded(const std::string& bytes) {
  Units units;
  utf8::utf8to16(bytes.begin(), bytes.end(), std::back_inserter(units));
  return units;
}

enum class Way { Constructor, Assignment, Text };

const Way every_way[] = {Way::Constructor, Way::Assignment, Way::Text};

/// Decodes `bytes` into `text`, which stays as it is when that throws.
void decode(String& text, const std::string& bytes, Way way) {
  switch (way) {
    case Way::Constructor:
      text = String(bytes.c_str());
      break;
    case Way::Assignment:
      text = bytes.c_str();
      break;
    case Way::Text:
      text.utf8(bytes);
      break;
  }
}

bool raises_invalid_utf8(const std::string& bytes, Way way) {
  String text("former");
  try {
    decode(text, bytes, way);
    return false;
  } catch (const utf8::invalid_utf8&) {
    return text == String("former");
  } catch (const utf8::exception&) {
    return false;
  }
}

/// Any way gives what the UTF-8 library gives, or raises its error for malformed UTF-8.
void expect_decoded_as_by_the_library(const std::string& bytes, Way way) {
  if (!utf8::is_valid(bytes.begin(), bytes.end())) {
    EXPECT_TRUE(raises_invalid_utf8(bytes, way)) << hex(bytes) << " by way " << int(way);
    return;
  }
  String text("former");
  decode(text, bytes, way);
  EXPECT_EQ(units_of(text), decoded(bytes)) << hex(bytes) << " by way " << int(way);
  EXPECT_EQ(text.utf8(), bytes) << hex(bytes);
}

TEST(StringConversionTest, two_bytes_become_one_unit_and_come_back) {
  const String text("\xC3\xA9");
  EXPECT_THAT(units_of(text), ElementsAre(0x00E9));
  EXPECT_EQ(text.utf8(), "\xC3\xA9");
}

TEST(StringConversionTest, four_bytes_become_two_units_and_come_back) {
  const String text("\xF0\x9F\x93\x9A");
  EXPECT_THAT(units_of(text), ElementsAre(0xD83D, 0xDCDA));
  EXPECT_EQ(text.utf8(), "\xF0\x9F\x93\x9A");
}

TEST(StringConversionTest, every_character_comes_back) {
  std::string bytes;
  for (std::uint32_t character = 1; character <= last_character; ++character) {
    if (character == first_surrogate) character = last_surrogate + 1;
    bytes.clear();
    utf8::append(character, std::back_inserter(bytes));
    const String text(bytes.c_str());
    ASSERT_EQ(text.utf8(), bytes) << "character " << character;
    ASSERT_EQ(units_of(text), decoded(bytes)) << "character " << character;
  }
}

TEST(StringConversionTest, all_characters_in_one_text_come_back) {
  std::string bytes;
  for (std::uint32_t character = 1; character <= last_character; ++character) {
    if (character == first_surrogate) character = last_surrogate + 1;
    utf8::append(character, std::back_inserter(bytes));
  }
  for (const Way way : every_way) {
    String text;
    decode(text, bytes, way);
    EXPECT_TRUE(text.utf8() == bytes);
    EXPECT_TRUE(units_of(text) == decoded(bytes));
  }
}

// Several characters are looked at at once, and those that are left over one by one.
TEST(StringConversionTest, one_other_character_is_found_wherever_it_stands) {
  for (const std::string other : {"\xC2\x80", "\xC3\xBF", "\xE2\x82\xAC", "\xF0\x9F\x93\x9A"}) {
    for (std::size_t length = 0; length != 20; ++length) {
      for (std::size_t place = 0; place <= length; ++place) {
        std::string bytes(length, 'x');
        bytes.insert(place, other);
        expect_decoded_as_by_the_library(bytes, Way::Text);
      }
    }
  }
}

TEST(StringConversionTest, no_bytes_give_the_empty_text) {
  for (const Way way : every_way) {
    String text("former");
    decode(text, "", way);
    EXPECT_TRUE(text.empty());
  }
}

TEST(StringConversionTest, a_text_that_ends_within_a_character_is_malformed) {
  String text("former");
  EXPECT_EQ(thrown_by([&] { text.utf8(std::string("a\xC3")); }), "utf8::invalid_utf8");
  EXPECT_TRUE(text == String("former"));
}

TEST(StringConversionTest, a_text_ends_at_its_first_zero_byte) {
  const std::string bytes("ab\0cd", 5);
  String text;
  text.utf8(bytes);
  EXPECT_EQ(text.utf8(), "ab");
}

TEST(StringConversionTest, what_follows_the_first_zero_byte_may_be_malformed) {
  String text;
  text.utf8(std::string("ab\0\xFF", 4));
  EXPECT_EQ(text.utf8(), "ab");
}

TEST(StringConversionTest, a_text_may_be_replaced_by_its_own_encoding) {
  String text("Gl\xC3\xA4tteputz");
  text.utf8(text.utf8());
  EXPECT_EQ(text.utf8(), "Gl\xC3\xA4tteputz");
}

struct Malformed {
  const char* what;
  const char* bytes;
};

void PrintTo(const Malformed& malformed, std::ostream* out) { *out << malformed.what; }

class MalformedUtf8Test : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedUtf8Test, raises_the_error_of_the_utf8_library_and_keeps_the_text) {
  const std::string bytes = GetParam().bytes;
  for (const std::string& malformed :
       {bytes, "before" + bytes, bytes + "after", "before" + bytes + "after"}) {
    for (const Way way : every_way) {
      String text("former");
      EXPECT_EQ(thrown_by([&] { decode(text, malformed, way); }), "utf8::invalid_utf8")
          << hex(malformed) << " by way " << int(way);
      EXPECT_TRUE(text == String("former"));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    , MalformedUtf8Test,
    testing::Values(
        Malformed{"a_continuation_alone", "\x80"}, Malformed{"the_last_continuation_alone", "\xBF"},
        Malformed{"a_start_of_two_alone", "\xC3"}, Malformed{"a_start_of_three_alone", "\xE2"},
        Malformed{"a_start_of_three_and_one", "\xE2\x82"},
        Malformed{"a_start_of_four_alone", "\xF0"},
        Malformed{"a_start_of_four_and_one", "\xF0\x9F"},
        Malformed{"a_start_of_four_and_two", "\xF0\x9F\x93"},
        Malformed{"two_starts", "\xC3\xC3\xA9"}, Malformed{"a_zero_in_two_bytes", "\xC0\x80"},
        Malformed{"a_slash_in_two_bytes", "\xC0\xAF"},
        Malformed{"a_letter_in_two_bytes", "\xC1\x81"},
        Malformed{"a_slash_in_three_bytes", "\xE0\x80\xAF"},
        Malformed{"two_bytes_worth_in_three", "\xE0\x9F\xBF"},
        Malformed{"a_slash_in_four_bytes", "\xF0\x80\x80\xAF"},
        Malformed{"three_bytes_worth_in_four", "\xF0\x8F\xBF\xBF"},
        Malformed{"the_first_surrogate", "\xED\xA0\x80"},
        Malformed{"the_last_surrogate", "\xED\xBF\xBF"},
        Malformed{"a_pair_of_surrogates", "\xED\xA0\xBD\xED\xB3\x9A"},
        Malformed{"the_first_beyond_all_characters", "\xF4\x90\x80\x80"},
        Malformed{"far_beyond_all_characters", "\xF7\xBF\xBF\xBF"},
        Malformed{"five_bytes", "\xF8\x88\x80\x80\x80"},
        Malformed{"six_bytes", "\xFC\x84\x80\x80\x80\x80"}, Malformed{"a_byte_FE", "\xFE"},
        Malformed{"a_byte_FF", "\xFF"}),
    [](const testing::TestParamInfo<Malformed>& malformed) { return malformed.param.what; });

TEST(StringConversionTest, every_sequence_of_one_or_two_bytes_is_decoded_or_refused) {
  for (int first = 1; first != 256; ++first) {
    const std::string one(1, static_cast<char>(first));
    expect_decoded_as_by_the_library(one, Way::Assignment);
    for (int second = 1; second != 256; ++second) {
      expect_decoded_as_by_the_library(one + static_cast<char>(second), Way::Assignment);
    }
  }
}

TEST(StringConversionTest, every_sequence_of_border_bytes_is_decoded_or_refused) {
  const std::string borders =
      "\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xED\xEE\xEF\xF0\xF3\xF4\xF5\xFF";
  for (const char first : borders) {
    for (const char second : borders) {
      for (const char third : borders) {
        expect_decoded_as_by_the_library({first, second, third}, Way::Text);
        for (const char fourth : borders) {
          expect_decoded_as_by_the_library({first, second, third, fourth}, Way::Text);
        }
      }
    }
  }
}

TEST(StringConversionTest, random_bytes_are_decoded_or_refused) {
  std::mt19937 random(20150302);
  for (int round = 0; round != 100000; ++round) {
    std::string bytes;
    for (auto left = random() % 12; left != 0; --left) {
      bytes.push_back(static_cast<char>(1 + random() % 255));
    }
    expect_decoded_as_by_the_library(bytes, every_way[round % 3]);
  }
}

TEST(StringConversionTest, valid_text_with_one_wrong_byte_is_decoded_or_refused) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x93\x9Az";
  for (std::size_t place = 0; place != text.size(); ++place) {
    for (int byte = 1; byte != 256; ++byte) {
      std::string changed = text;
      changed[place] = static_cast<char>(byte);
      for (const Way way : every_way) expect_decoded_as_by_the_library(changed, way);
    }
  }
}

void expect_unpaired(const Units& units) {
  const String text = string_of(units);
  EXPECT_EQ(thrown_by([&] { text.utf8(); }), "utf8::invalid_utf16") << hex(units);
  EXPECT_EQ(units_of(text), units);
}

TEST(StringConversionTest, every_surrogate_without_its_other_half_is_refused) {
  for (std::uint32_t unit = first_surrogate; unit <= last_surrogate; ++unit) {
    const auto surrogate = static_cast<unsigned short>(unit);
    expect_unpaired({surrogate});
    expect_unpaired({'a', surrogate});
    expect_unpaired({surrogate, 'z'});
    expect_unpaired({'a', surrogate, 'z'});
  }
}

TEST(StringConversionTest, surrogates_in_the_wrong_order_are_refused) {
  expect_unpaired({0xDC00, 0xD800});
  expect_unpaired({0xD800, 0xD800});
  expect_unpaired({0xDC00, 0xDC00});
  expect_unpaired({0xD800, 0xD800, 0xDC00});
  expect_unpaired({0xD800, 0xDC00, 0xDC00});
}

bool is_utf16(const Units& units) {
  bool after_high = false;
  for (const unsigned short unit : units) {
    const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
    if (low != after_high) return false;
    after_high = unit >= 0xD800 && unit <= 0xDBFF;
  }
  return !after_high;
}

void expect_encoded_as_by_the_library(const Units& units) {
  if (!is_utf16(units)) {
    expect_unpaired(units);
    return;
  }
  std::string bytes;
  utf8::utf16to8(units.begin(), units.end(), std::back_inserter(bytes));
  const String text = string_of(units);
  EXPECT_EQ(text.utf8(), bytes) << hex(units);
  EXPECT_TRUE(String(bytes.c_str()) == text) << hex(units);
}

TEST(StringConversionTest, every_sequence_of_border_units_is_encoded_or_refused) {
  const Units borders = {0x0001, 0x007F, 0x0080, 0x07FF, 0x0800, 0xD7FF, 0xD800,
                         0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFE, 0xFFFF};
  for (const unsigned short first : borders) {
    expect_encoded_as_by_the_library({first});
    for (const unsigned short second : borders) {
      expect_encoded_as_by_the_library({first, second});
      for (const unsigned short third : borders) {
        expect_encoded_as_by_the_library({first, second, third});
        for (const unsigned short fourth : borders) {
          expect_encoded_as_by_the_library({first, second, third, fourth});
        }
      }
    }
  }
}

TEST(StringConversionTest, every_pair_of_surrogates_is_encoded) {
  for (unsigned short high = 0xD800; high <= 0xDBFF; high += 7) {
    for (unsigned short low = 0xDC00; low <= 0xDFFF; low += 5) {
      expect_encoded_as_by_the_library({high, low});
    }
  }
}

}  // namespace
}  // namespace veldra_tests
