// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/database.hpp"
#include "support/library_fixture.hpp"

#include <set>

namespace veldra_tests {
namespace {

const char* const example = "4b7009ef-0317-4504-a674-282d1b5bb08f";

const char* const random_guid =
    "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";

std::string guid_made_from(const String& text) {
  return veldra::Library::create(":memory:", Unit::Millimetres, text)->guid().utf8();
}

class LibraryGuid : public LibraryFixture {};

TEST_F(LibraryGuid, the_getter_gives_what_the_file_holds) {
  const auto library = create(Unit::Millimetres, example);
  EXPECT_EQ(library->guid().utf8(), example);
  EXPECT_EQ(PlainDatabase(path).value("SELECT guid FROM Meta WHERE id = 0"),
            "'" + std::string(example) + "'");
  EXPECT_EQ(open()->guid().utf8(), example);
}

// The text of a GUID.

TEST(LibraryGuidText, upper_case_becomes_lower_case) {
  EXPECT_EQ(guid_made_from("4B7009EF-0317-4504-A674-282D1B5BB08F"), example);
  EXPECT_EQ(guid_made_from("4b7009EF-0317-4504-a674-282D1b5BB08F"), example);
}

TEST(LibraryGuidText, braces_are_taken_away) {
  EXPECT_EQ(guid_made_from("{4b7009ef-0317-4504-a674-282d1b5bb08f}"), example);
  EXPECT_EQ(guid_made_from("{4B7009EF-0317-4504-A674-282D1B5BB08F}"), example);
}

TEST(LibraryGuidText, hyphens_are_added) {
  EXPECT_EQ(guid_made_from("4b7009ef03174504a674282d1b5bb08f"), example);
  EXPECT_EQ(guid_made_from("{4B7009EF03174504A674282D1B5BB08F}"), example);
}

TEST(LibraryGuidText, every_version_and_variant_is_taken_as_it_is) {
  for (const char* text :
       {"00000000-0000-0000-0000-000000000000", "ffffffff-ffff-ffff-ffff-ffffffffffff",
        "01234567-89ab-1def-0123-456789abcdef"}) {
    EXPECT_EQ(guid_made_from(text), text);
  }
}

// No text.

TEST(LibraryGuidText, an_empty_text_gives_a_random_guid) {
  std::set<std::string> guids;
  for (int i = 0; i != 50; ++i) {
    const std::string guid = guid_made_from(String());
    EXPECT_THAT(guid, MatchesRegex(random_guid));
    guids.insert(guid);
  }
  EXPECT_EQ(guids.size(), 50u);
}

TEST(LibraryGuidText, an_empty_text_with_an_array_gives_a_random_guid) {
  EXPECT_THAT(guid_made_from(String("")), MatchesRegex(random_guid));
  EXPECT_NE(guid_made_from(String("")), guid_made_from(String("")));
}

TEST_F(LibraryGuid, an_empty_file_gets_a_random_guid) {
  write_file(path, "");
  EXPECT_THAT(open()->guid().utf8(), MatchesRegex(random_guid));
}

TEST_F(LibraryGuid, an_empty_file_opened_for_reading_only_keeps_the_guid_that_it_got) {
  write_file(path, "");
  const std::string guid = open_read_only()->guid().utf8();
  EXPECT_THAT(guid, MatchesRegex(random_guid));
  EXPECT_EQ(open()->guid().utf8(), guid);
}

// Any other text. The expected values were computed apart from the library: the SHA-1 of the 16
// bytes of the namespace 4b7009ef-0317-4504-a674-282d1b5bb08f and of four bytes for each code
// unit, the least significant first, with version 5 and the variant set.

TEST(LibraryGuidText, a_name_gives_the_same_guid_each_time) {
  EXPECT_EQ(guid_made_from("abc"), "25289ef0-812b-50f0-9943-5518cb168039");
  EXPECT_EQ(guid_made_from("abc"), "25289ef0-812b-50f0-9943-5518cb168039");
}

TEST(LibraryGuidText, the_case_of_a_name_counts) {
  EXPECT_EQ(guid_made_from("ABC"), "ab8b63b1-08b4-5b15-86d1-e18bb6918a43");
}

TEST(LibraryGuidText, a_blank_is_a_name) {
  EXPECT_EQ(guid_made_from(" "), "ac97cadd-716e-5520-9c64-f2b7e3d3fbd9");
}

TEST(LibraryGuidText, names_beyond_ascii_count_by_code_units) {
  EXPECT_EQ(guid_made_from("Glätteputz"), "3f8a7b66-a208-5885-b6af-5ec3659a0b72");
  EXPECT_EQ(guid_made_from("壁"), "179d7faf-5407-5c6f-a905-404624893ebb");
}

TEST(LibraryGuidText, a_character_of_two_code_units_counts_as_two) {
  EXPECT_EQ(guid_made_from("\xF0\x9D\x84\x9E"), "94461e50-406f-5db2-9a14-0899a9a5e603");
}

TEST(LibraryGuidText, a_name_need_not_be_well_formed) {
  const unsigned short text[] = {0xD800, 'x', 0};
  EXPECT_EQ(guid_made_from(text), "a63611de-13e1-5635-8dcb-e244c0afa512");
}

TEST(LibraryGuidText, what_is_nearly_a_guid_is_a_name) {
  EXPECT_EQ(guid_made_from("4b7009ef-0317-4504-a674-282d1b5bb08fx"),
            "a2d5b98e-4284-5ea2-9367-8bb87de9707b");
  EXPECT_EQ(guid_made_from("{4b7009ef-0317-4504-a674-282d1b5bb08f"),
            "1a4188f2-5fa5-5286-aa9c-850054f55e4e");
  EXPECT_EQ(guid_made_from("4b7009ef-0317-4504-a674-282d1b5bb08"),
            "f6bb5ceb-d351-559e-82ea-ebe32a04d6cd");
  EXPECT_EQ(guid_made_from("4b7009ef-0317-4504-a674-282d1b5bb08g"),
            "ca76a0b6-b2a0-56bc-a331-1adfd87ddf6f");
  EXPECT_EQ(guid_made_from(" 4b7009ef-0317-4504-a674-282d1b5bb08f"),
            "b5c70ca1-98ab-5ab8-a3e9-c1323d8d6836");
}

// U+0134 ends in the byte of the digit "4".
TEST(LibraryGuidText, a_character_that_ends_in_the_byte_of_a_digit_is_no_digit) {
  EXPECT_EQ(guid_made_from("\xC4\xB4"
                           "b7009ef-0317-4504-a674-282d1b5bb08f"),
            "e88068f1-99c5-51a7-ac2e-4faa91195331");
}

}  // namespace
}  // namespace veldra_tests
