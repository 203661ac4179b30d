// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <gmock/gmock.h>

#include <string_view>

namespace veldra_tests {
namespace {

using namespace std::string_view_literals;

std::string refusal_of(std::string_view content) {
  return error_of([&] { const kit::Source source("a.idf", std::string(content)); });
}

std::string seeming(const std::string& format) {
  return "'a.idf': this seems to be " + format + ", for which there is no reader; ";
}

/// Text of Latin letters in UTF-16, with what is put behind it.
std::string in_utf16(std::string_view text, bool little, std::string_view more = "") {
  std::string bytes(little ? "\xff\xfe" : "\xfe\xff");
  for (const char letter : text) {
    bytes += little ? std::string{letter, '\0'} : std::string{'\0', letter};
  }
  return bytes + std::string(more);
}

TEST(Recognition, names_what_begins_with_a_mark) {
  const std::pair<std::string_view, const char*> marked[] = {
      {"%PDF-1.7"sv, "a PDF document"},
      {"\x89PNG\r\n"sv, "a picture (PNG)"},
      {"\xff\xd8\xff\xe0"sv, "a picture (JPEG)"},
      {"GIF89a"sv, "a picture (GIF)"},
      {"II*\0\x08\0\0\0"sv, "a picture (TIFF)"},
      {"MM\0*\0\0\0\x08"sv, "a picture (TIFF)"},
      {"RIFF1234"sv, "a picture, a sound or a film (RIFF)"},
      {"\x1f\x8b\x08"sv, "a compressed file (gzip)"},
      {"7z\xbc\xaf\x27"sv, "an archive (7z)"},
      {"\xd0\xcf\x11\xe0\xa1"sv, "an old office document (such as XLS)"},
      {"{\\rtf1"sv, "a text document (RTF)"}};
  for (const auto& [content, format] : marked) {
    EXPECT_THAT(refusal_of(content), HasSubstr(seeming(format)));
  }
}

TEST(Recognition, names_archives_by_the_files_in_them) {
  EXPECT_THAT(refusal_of("PK\x03\x04 application/vnd.oasis.opendocument.spreadsheet"),
              HasSubstr(seeming("a spreadsheet (ODS)")));
  EXPECT_THAT(refusal_of("PK\x03\x04 word/document.xml"),
              HasSubstr(seeming("a text document (DOCX)")));
  EXPECT_THAT(refusal_of("PK\x03\x04 house.ifc"), HasSubstr(seeming("a compressed IFC model")));
  EXPECT_THAT(refusal_of("PK\x05\x06"), HasSubstr(seeming("an archive (ZIP)")));
}

TEST(Recognition, names_xml_by_its_first_elements) {
  EXPECT_THAT(refusal_of("<svg width='1'/>"), HasSubstr(seeming("a picture (SVG)")));
  EXPECT_THAT(refusal_of("<!DOCTYPE html>\n<HTML>"), HasSubstr(seeming("an HTML page")));
  EXPECT_THAT(refusal_of("<?xml version='1.0'?><ifcXML/>"),
              HasSubstr(seeming("an IFC model in XML")));
  EXPECT_THAT(refusal_of("<House/>"), HasSubstr(seeming("XML")));
}

TEST(Recognition, takes_no_text_with_an_angle_for_xml) {
  for (const char* text : {"<", "< a", "<1>", "<[a]>", "<{a}>"}) {
    EXPECT_THAT(refusal_of(text), HasSubstr("plain text")) << text;
  }
}

TEST(Recognition, names_what_is_no_text_and_other_step_files) {
  EXPECT_THAT(refusal_of("Version, 9.4;\0\0\1\2\3"sv), HasSubstr(seeming("a binary file")));
  EXPECT_THAT(refusal_of("ISO-10303-21;HEADER;FILE_SCHEMA(('CONFIG_CONTROL_DESIGN'));ENDSEC;"),
              HasSubstr(seeming("a STEP file")));
  EXPECT_THAT(refusal_of(" \t\r\n"), HasSubstr("this is empty"));
}

/// The head of a database with so many pages of a size.
std::string database(unsigned char pages, std::string_view size) {
  std::string head("SQLite format 3\0"sv);
  head += size;
  head.resize(100);
  head[31] = static_cast<char>(pages);
  return head;
}

TEST(Recognition, tells_libraries_other_databases_and_parts_of_them_apart) {
  auto whole = database(1, "\x04\x00"sv);
  whole.resize(1024);
  EXPECT_THAT(refusal_of(whole), HasSubstr(seeming("the database of another program")));
  whole.replace(200, 18, "Composition_layers");
  EXPECT_THAT(refusal_of(whole), HasSubstr("this is a library, which is not read as a source"));
  EXPECT_THAT(refusal_of(whole.substr(0, 1000)), HasSubstr("of which the rest is missing"));
  EXPECT_THAT(refusal_of(whole.substr(0, 50)), HasSubstr("of which the rest is missing"));
}

TEST(Recognition, knows_the_largest_pages_of_databases) {
  auto largest = database(1, "\x00\x01"sv);
  largest.resize(65536);
  EXPECT_THAT(refusal_of(largest), HasSubstr(seeming("the database of another program")));
  largest.resize(65535);
  EXPECT_THAT(refusal_of(largest), HasSubstr("of which the rest is missing"));
}

TEST(Recognition, reads_utf_16_of_either_order_with_or_without_mark) {
  const std::string gap = "Material:AirGap, Gap, 0.1;";
  for (const bool little : {true, false}) {
    const auto marked = in_utf16(gap, little);
    EXPECT_EQ(kit::Source("a.idf", marked).format().name, "IDF") << little;
    EXPECT_EQ(kit::Source("a.idf", marked.substr(2)).format().name, "IDF") << little;
  }
}

TEST(Recognition, refuses_utf_16_that_is_cut_off_or_malformed) {
  const std::string gap = "Material:AirGap, Gap, 0.1;";
  EXPECT_EQ(refusal_of(in_utf16(gap, true, "x")),
            "'a.idf': this is a text in UTF-16 that ends within a character");
  const std::string malformed = "'a.idf': this is malformed UTF-16";
  EXPECT_EQ(refusal_of(in_utf16(gap, true, "\x00\xd8"sv)), malformed) << "ends within a pair";
  EXPECT_EQ(refusal_of(in_utf16(gap, true,
                                "\x00\xd8"
                                "a\0"sv)),
            malformed)
      << "half a pair";
  EXPECT_EQ(refusal_of(in_utf16(gap, true, "\x00\xd8\x00\xe0"sv)), malformed) << "a wrong half";
  EXPECT_EQ(refusal_of(in_utf16(gap, true, "\x00\xdc"sv)), malformed) << "a second half alone";
  EXPECT_EQ(kit::Source("a.idf", in_utf16("! " + gap, true, "!\0\x3d\xd8\xf1\xdd"sv)).format().name,
            "IDF")
      << "a whole pair";
}

}  // namespace
}  // namespace veldra_tests
