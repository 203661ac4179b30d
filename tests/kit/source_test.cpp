// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <gmock/gmock.h>

namespace veldra_tests {
namespace {

using kit::Source;

kit::SourceProblem problem_of(const std::string& content, const std::string& file = "a.idf") {
  try {
    const Source source(file, content);
  } catch (const kit::SourceError& error) {
    EXPECT_EQ(error.what(), error.problem().text());
    return error.problem();
  }
  return {};
}

TEST(Formats, are_known_by_name_and_endings) {
  std::vector<std::string> names;
  for (const auto& format : kit::formats()) {
    names.push_back(format.name);
    EXPECT_FALSE(format.endings.empty()) << format.name;
    EXPECT_TRUE(format.readable || format.writable) << format.name;
  }
  EXPECT_THAT(names, testing::IsSupersetOf({"veldra", "IDF", "epJSON"}));
}

TEST(Source, is_of_the_format_that_its_content_tells) {
  EXPECT_EQ(Source("a", "Material:AirGap, Gap, 0.1;").format().name, "IDF");
  EXPECT_EQ(Source("a", R"({"Material:AirGap": {}})").format().name, "epJSON");
  EXPECT_EQ(Source("a.idf", R"({"format": "veldra"})").format().name, "veldra");
  EXPECT_EQ(Source("a.idf", "a,b,c\n1,2,3\n").format().name, "CSV");
  EXPECT_EQ(Source("a.csv", "name\nBrick\n").format().name, "CSV");
}

TEST(Source, is_of_the_format_that_the_beginning_of_a_long_one_tells) {
  const auto text = repeated("Zone, A;\n", 1000) + repeated("1, 2;\n", 2000);
  EXPECT_EQ(Source("a", text).format().name, "IDF");
  EXPECT_NE(Source("a.csv", "a,b\n" + repeated("1,2\n", 2000)).format().name, "IDF");
}

TEST(Source, is_a_step_file_by_its_first_statement_only) {
  EXPECT_EQ(Source("a", "! of ISO-10303-21; from an IFC model\nVersion, 9.4;").format().name,
            "IDF");
  EXPECT_EQ(Source("a",
                   "/* a */\n ISO-10303-21;HEADER;FILE_SCHEMA(('IFC4'));ENDSEC;DATA;ENDSEC;"
                   "END-ISO-10303-21;")
                .format()
                .name,
            "IFC");
}

TEST(Source, may_begin_with_a_byte_order_mark) {
  EXPECT_EQ(Source("a",
                   "\xEF\xBB\xBF"
                   R"({"format": "veldra"})")
                .format()
                .name,
            "veldra");
  EXPECT_TRUE(Source("a", "\xEF\xBB\xBFMaterial:AirGap, Gap, 0.1;").has_objects());
}

TEST(Source, knows_whether_it_has_objects) {
  EXPECT_TRUE(Source("a", "Material:AirGap, Gap, 0.1;").has_objects());
  EXPECT_FALSE(Source("a", "Version, 9.4;").has_objects());
  EXPECT_TRUE(Source("a", R"({"format": "veldra", "tags": ["t"]})").has_objects());
  EXPECT_FALSE(Source("a", R"({"format": "veldra", "version": 1})").has_objects());
}

TEST(Source, has_a_unit_if_it_is_of_a_library_that_says_one) {
  EXPECT_EQ(Source("a", R"({"format": "veldra", "library": {"unit": "in"}})").unit(), Unit::Inches);
  EXPECT_EQ(Source("a", R"({"format": "veldra", "library": {}})").unit(), std::nullopt);
  EXPECT_EQ(Source("a", "Version, 9.4;").unit(), std::nullopt);
}

TEST(Source, cannot_have_a_unit_that_nobody_knows) {
  const Source source("a.json", "{\"format\": \"veldra\",\n \"library\": {\"unit\": \"ell\"}}");
  EXPECT_EQ(error_of([&] { source.unit(); }),
            "'a.json', line 2: the library: the unit must be \"mm\" or \"in\"");
}

TEST(SourceProblem, has_the_place_in_parts) {
  const auto problem = problem_of("Version, 9.4;\nMaterial,\n Brick, Rough");
  EXPECT_EQ(problem.file, "a.idf");
  EXPECT_EQ(problem.line, 2U);
  EXPECT_EQ(problem.sentence, "the file ends within the object that begins here");
  EXPECT_EQ(problem.text(), "'a.idf', line 2: the file ends within the object that begins here");
}

TEST(SourceProblem, of_a_whole_file_has_no_line) {
  const auto problem = problem_of("");
  EXPECT_EQ(problem.line, 0U);
  EXPECT_EQ(problem.text(), "'a.idf': this is empty");
}

TEST(SourceProblem, names_the_format_of_what_cannot_be_read) {
  EXPECT_THAT(problem_of("%PDF-1.7 ").sentence, HasSubstr("this seems to be a PDF document"));
  EXPECT_THAT(problem_of("PK\x03\x04 xl/workbook.xml").sentence,
              HasSubstr("a broken archive (ZIP)"));
  EXPECT_THAT(problem_of("{\"a\": 1}").sentence, HasSubstr("JSON of another kind"));
}

TEST(SourceProblem, tells_of_objects_that_are_made_to_fill_the_memory) {
  std::string many;
  for (int i = 0; i < 1000000; ++i) many += ",1";
  const std::string field(2 << 20, 'a');
  EXPECT_EQ(problem_of("Material, Brick" + many + ";").sentence,
            "the object that begins here has more than 1000 fields");
  EXPECT_EQ(problem_of("Version, 9.4; Zone" + many + ";").sentence,
            "the object that begins here has more than 100000 fields");
  EXPECT_EQ(problem_of("Version, 9.4; Material, " + field + ", 1;").sentence,
            "a field of the object that begins here is longer than 1 MiB");
  std::string members;
  for (int i = 0; i < 2000; ++i) members += ",\"" + std::to_string(i) + "\": 1";
  EXPECT_EQ(problem_of("{\"Material\": {\"Brick\": {\"a\": 1" + members + "}}}").sentence,
            "'Brick' has more than 1000 fields");
}

TEST(SourceProblem, tells_of_documents_that_are_made_to_fill_the_memory) {
  EXPECT_EQ(problem_of("[" + repeated("1,", 2'000'000) + "1]").sentence,
            "this has more than 2000000 values");
  EXPECT_EQ(problem_of("[" + repeated("[],", 2'000'000) + "1]").sentence,
            "this has more than 2000000 values");
}

TEST(SourceProblem, tells_of_a_value_that_is_made_to_fill_the_memory) {
  const std::string filling(33 << 20, '1');
  for (const auto& begin : {R"({"Material": {"A \", )", R"({"Material": {"A": {"thickness": )"}) {
    const auto problem = problem_of("\n" + (begin + filling));
    EXPECT_EQ(problem.sentence, "a value is longer than 32 MiB");
    EXPECT_EQ(problem.line, 2U);
  }
}

TEST(SourceProblem, quotes_no_more_than_a_person_reads) {
  for (const char* letter : {"a", "\xC3\xA9"}) {
    const auto sentence = problem_of("{\"Material\": {\"" + repeated(letter, 1'000'000)).sentence;
    EXPECT_LT(sentence.size(), 300U);
    EXPECT_THAT(sentence, HasSubstr("this is no proper JSON (invalid string"));
    EXPECT_TRUE(kit::is_utf8(sentence));
  }
}

std::string numbered(const std::string& rest, unsigned count) {
  std::string text;
  for (unsigned i = 1; i <= count; ++i) text += "#" + std::to_string(i) + rest;
  return text;
}

TEST(SourceProblem, tells_of_more_objects_than_the_memory_may_hold) {
  const std::string sentence = "this has more than 300000 materials and constructions";
  const auto too_many = [](const std::string& object) { return repeated(object, 300'001); };
  EXPECT_EQ(problem_of(too_many("Material,A,,1;")).sentence, sentence);
  EXPECT_EQ(problem_of(R"({"format": "veldra", "materials": [0)" + too_many(",0") + "]}").sentence,
            sentence);
  EXPECT_EQ(problem_of("ISO-10303-21;HEADER;FILE_SCHEMA(('IFC4'));ENDSEC;DATA;" +
                       numbered("=IFCMATERIAL('A');", 300'001) + "ENDSEC;END-ISO-10303-21;")
                .sentence,
            sentence);
}

TEST(Source, may_have_more_values_the_larger_it_is) {
  const auto list = "[" + repeated("1,", 2'000'000) + "1]";
  const Source source(
      "a.json", R"({"Version": {"a": {"list": )" + list + std::string(34'000'000, ' ') + "}}}");
  EXPECT_EQ(source.format().name, "epJSON");
}

TEST(SourceProblem, tells_the_line_of_what_is_no_json) {
  const auto problem = problem_of("{\n\n\"a\": ?}");
  EXPECT_EQ(problem.line, 3U);
  EXPECT_THAT(problem.sentence, HasSubstr("this is no proper JSON"));
}

TEST(SourceProblem, is_utf8_whatever_the_name_of_the_file) {
  EXPECT_EQ(problem_of("", "Gr\xFC\xDF.idf").text(), "'Grüß.idf': this is empty");
  EXPECT_EQ(problem_of("", "Gr\xFC\xDF.idf").file, "Gr\xFC\xDF.idf");
}

TEST(SourceProblem, quotes_names_as_they_are) {
  EXPECT_EQ(problem_of("", "a\x1b[1m").text(), "'a\x1b[1m': this is empty");
}

}  // namespace
}  // namespace veldra_tests
