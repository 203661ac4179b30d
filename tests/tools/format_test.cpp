// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

using namespace std::string_literals;

struct Foreign {
  std::string content;
  const char* name;  ///< what the file is called in the sentence
};

void PrintTo(const Foreign& foreign, std::ostream* out) { *out << foreign.name; }

std::string utf16(const std::string& text, bool little) {
  std::string result;
  for (const char character : text) {
    result += little ? std::string{character, '\0'} : std::string{'\0', character};
  }
  return result;
}

constexpr const char* unknown_ifc = R"(ISO-10303-21;
HEADER;FILE_DESCRIPTION(('ViewDefinition [CoordinationView]'),'2;1');
FILE_SCHEMA(('IFC5'));ENDSEC;
DATA;
#1=IFCMATERIAL('Concrete',$,$);
ENDSEC;
END-ISO-10303-21;
)";

constexpr const char* old_idf = R"(Lead Input;
Run Control, Run Period;
MATERIAL, Brick, Rough, 0.1, 1, 1, 1;
CONSTRUCTION, Wall,
  Brick;
End Lead Input;)";

/// The first page of a database says how large its pages are and how many there are.
std::string database_of_one_page() {
  std::string page = "SQLite format 3\0\2\0"s;
  page.resize(512);
  page[31] = 1;
  return page;
}

class ForeignSource : public ProgramTest, public testing::WithParamInterface<Foreign> {
 protected:
  void SetUp() override {
    write("foreign", GetParam().content);
    write("good.idf", "Material:AirGap, Gap, 0.1;");
  }

  void expect_refusal(const std::vector<std::string>& arguments) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_THAT(run.err, AllOf(HasSubstr("'foreign': "), HasSubstr(GetParam().name)));
    EXPECT_FALSE(exists("new.lib"));
  }
};

TEST_P(ForeignSource, is_named_and_nothing_is_done) {
  expect_refusal({"import", "new.lib", "foreign"});
}

TEST_P(ForeignSource, leaves_a_library_as_it_is) {
  must({"create", "a.lib"});
  const auto before = dump(path("a.lib"));
  expect_refusal({"import", "a.lib", "foreign", "good.idf", "--json"});
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_P(ForeignSource, stops_the_other_sources_too) {
  expect_refusal({"import", "new.lib", "good.idf", "foreign"});
}

TEST_P(ForeignSource, is_refused_by_a_dry_run_and_a_strict_one) {
  expect_refusal({"import", "new.lib", "good.idf", "foreign", "--dry-run"});
  expect_refusal({"import", "new.lib", "foreign", "--strict"});
}

INSTANTIATE_TEST_SUITE_P(
    Each, ForeignSource,
    testing::Values(Foreign{"", "this is empty"}, Foreign{" \n\t\r\n", "this is empty"},
                    Foreign{"\xEF\xBB\xBF\n", "this is empty"},
                    Foreign{unknown_ifc, "an IFC model"},
                    Foreign{"\n/* made by hand */\nISO-10303-21;\nHEADER;ENDSEC;", "a STEP file"},
                    Foreign{"<?xml version=\"1.0\"?>\n<ifc:ifcXML xmlns:ifc=\"ifc\"/>",
                            "an IFC model in XML"},
                    Foreign{"<?xml version=\"1.0\"?><materials/>", "XML"},
                    Foreign{"<svg xmlns=\"http://www.w3.org/2000/svg\"/>", "a picture (SVG)"},
                    Foreign{"<!DOCTYPE html><HTML>", "an HTML page"},
                    Foreign{R"({"materials": [{"name": "Oak"}]})", "JSON of another kind"},
                    Foreign{R"({"name": "program", "version": "1.0"})", "JSON of another kind"},
                    Foreign{R"({"material": "steel", "length": 5})", "JSON of another kind"},
                    Foreign{"[[]]", "JSON of another kind"}));

INSTANTIATE_TEST_SUITE_P(
    Text, ForeignSource,
    testing::Values(
        Foreign{"Material,Tags\nBrick,outside; heavy\nWool,inside; light\n", "plain text"},
        Foreign{"Dear colleague,\n\nthe walls are of brick; the roof is of timber, as agreed.\n",
                "plain text"},
        Foreign{"However, it is late; so, good night; and sleep well.\n", "plain text"},
        Foreign{"Zone, in general, is hard to say; what a wall is, is not; it stands.",
                "plain text"},
        Foreign{"#include <stdio.h>\n\nint main(void) {\n  int a, b;\n  return 0;\n}\n",
                "plain text"},
        Foreign{"std::map<int, Material> all;\nfor (int i = 0, n = 5; i < n; ++i) all[i];\n",
                "plain text"},
        Foreign{"a b c\nd e f\n", "plain text"}, Foreign{"; ; ;\n", "plain text"}));

INSTANTIATE_TEST_SUITE_P(
    Binary, ForeignSource,
    testing::Values(Foreign{"PK\x03\x04....xl/workbook.xml....", "a broken archive (ZIP)"},
                    Foreign{"PK\x03\x04....mimetypeapplication/vnd.oasis.opendocument.spreadsheet",
                            "a spreadsheet (ODS)"},
                    Foreign{"PK\x03\x04....house.ifc....", "a compressed IFC model"},
                    Foreign{"PK\x03\x04....readme.txt", "an archive (ZIP)"},
                    Foreign{"%PDF-1.7\n%\xE2\xE3\xCF\xD3\n", "a PDF document"},
                    Foreign{"\x89PNG\r\n\x1a\n\0\0"s, "a picture (PNG)"},
                    Foreign{"\xFF\xD8\xFF\xE0\0\x10JFIF"s, "a picture (JPEG)"},
                    Foreign{database_of_one_page(), "the database of another program"},
                    Foreign{"\x7f"
                            "ELF\0\1\2"s,
                            "a binary file"},
                    Foreign{"Material:AirGap,A\0B,1;"s, "a binary file"},
                    Foreign{"\xFF\xFE" + utf16("Material:AirGap, Gap, 0.1;", true) + "x", "UTF-16"},
                    Foreign{"\xFF\xFE\x01\xD8 \0"s, "malformed UTF-16"},
                    Foreign{"\xFE\xFF\xDC\x01"s, "malformed UTF-16"}));

class WideSource : public ProgramTest {};

TEST_F(WideSource, is_read_with_a_mark_and_without) {
  const std::string text = "Material:AirGap, Gap, 0.1;";
  const std::string sources[] = {"\xFF\xFE" + utf16(text, true), "\xFE\xFF" + utf16(text, false),
                                 utf16(text, true), utf16(text, false)};
  for (const auto& source : sources) {
    write("a.idf", source);
    must({"import", "a.lib", "a.idf"});
    EXPECT_EQ(count("a.lib", "materials"), 1U);
  }
}

class SourceFormat : public ProgramTest {
 protected:
  std::string format_of(const std::string& content) {
    write("source", content);
    const auto run = veldra({"import", "new.lib", "source", "--dry-run", "--json"});
    return run.out.empty() ? run.err : run.json()[0]["format"].get<std::string>();
  }
};

TEST_F(SourceFormat, has_colours_patterns_and_points_of_known_numbers) {
  for (const std::string field :
       {R"("shading_color": [null, 0, 0, 1])", R"("surface_pattern": {"scale": null})",
        R"("surface_pattern_alignment": [0, null])"}) {
    write("a.json", R"({"format": "veldra", "version": 1,
"materials": [{"name": "Brick", )" +
                        field + "}]}");
    const auto run = veldra({"import", "a.lib", "a.json"});
    EXPECT_EQ(run.status, 1) << field;
    EXPECT_THAT(run.err, AllOf(HasSubstr("'a.json', line 2"), HasSubstr("cannot have null")));
    EXPECT_FALSE(exists("a.lib"));
  }
}

TEST_F(SourceFormat, of_a_device_without_content_is_none) {
  const auto run = veldra({"import", "new.lib", "/dev/null"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("'/dev/null': this is empty"));
  EXPECT_FALSE(exists("new.lib"));
}

TEST_F(SourceFormat, of_a_library_is_told_with_what_to_do_instead) {
  must({"create", "a.lib"});
  const auto run = veldra({"import", "new.lib", "a.lib"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(
      run.err,
      HasSubstr("this is a library, which is not read as a source; copy objects from it instead"));
}

TEST_F(SourceFormat, of_a_part_of_a_library_is_not_that_of_another_database) {
  must({"create", "a.lib"});
  const std::string whole = read("a.lib");
  for (const std::size_t size : {std::size_t{20}, std::size_t{4096}, std::size_t{5000}}) {
    write("cut.lib", whole.substr(0, size));
    const auto run = veldra({"import", "new.lib", "cut.lib"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
              "veldra: 'cut.lib': this is a part of a library or of another database, of which the "
              "rest is missing\n");
  }
  EXPECT_FALSE(exists("new.lib"));
}

TEST_F(SourceFormat, of_tables_that_the_program_wrote_is_csv) {
  library("a.lib")->save(veldra::Material::create("Brick"));
  must({"export", "a.lib", "--format", "csv", "-o", "a.csv"});
  must({"import", "new.lib", "a.csv"});
  EXPECT_EQ(count("new.lib", "materials"), 1U);
}

TEST_F(SourceFormat, is_idf_for_models_of_any_content_style_and_age) {
  for (const char* text :
       {"Version, 9.4;", "! nothing but a comment; with, signs\n", "VERSION,8.5;\r\rzone,Z1;",
        "Schedule:Compact, Always, Fraction, Through: 12/31, For: AllDays, Until: 24:00, 1;",
        "!- Building\n  Building,\n    House,  !- Name\n    0.;\n", old_idf,
        "Material,\n  Brick,\n  Rough,\n  0.1, 1, 1, 1;", "construction, wall"}) {
    const auto format = format_of(text);
    EXPECT_TRUE(format == "IDF" || format.find("the file ends within") != std::string::npos)
        << text << format;
  }
}

TEST_F(SourceFormat, is_epjson_for_models_without_materials_too) {
  EXPECT_EQ(format_of(R"({"Version": {"Version 1": {"version_identifier": "9.4"}}})"), "epJSON");
  EXPECT_EQ(format_of(R"({"Zone": {"Z1": {}}, "Schedule:Compact": {"S": {"data": []}}})"),
            "epJSON");
  EXPECT_EQ(format_of(R"({"MATERIAL": {"Brick": {"thickness": 0.1}}})"), "epJSON");
  EXPECT_EQ(format_of("{}"), "epJSON");
}

/// A format that is known, in which there is nothing for a library.
class NoObjects : public ProgramTest, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    write("empty", GetParam());
    write("good.idf", "Material:AirGap, Gap, 0.1;");
  }
};

TEST_P(NoObjects, are_told_and_no_library_is_made) {
  for (const char* option : {"--json", "--dry-run"}) {
    const auto run = veldra({"import", "new.lib", "empty", option});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_THAT(run.err, AllOf(HasSubstr("'empty'"), HasSubstr("no materials")));
    EXPECT_FALSE(exists("new.lib"));
  }
  EXPECT_EQ(veldra({"import", "new.lib", "empty", "--json"}).json()[0]["problems"].size(), 1U);
}

TEST_P(NoObjects, change_no_library) {
  must({"create", "a.lib"});
  const auto before = dump(path("a.lib"));
  EXPECT_EQ(veldra({"import", "a.lib", "empty"}).status, 3);
  EXPECT_EQ(dump(path("a.lib")), before);
}

TEST_P(NoObjects, let_other_sources_go_on) {
  const auto run = veldra({"import", "new.lib", "empty", "good.idf"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_EQ(count("new.lib", "materials"), 1U);
}

TEST_P(NoObjects, are_an_error_where_none_may_be) {
  const auto run = veldra({"import", "new.lib", "good.idf", "empty", "--strict"});
  EXPECT_EQ(run.status, 1);
  EXPECT_FALSE(exists("new.lib"));
}

INSTANTIATE_TEST_SUITE_P(Each, NoObjects,
                         testing::Values("Version, 9.4; Zone, Z1;", "! nothing yet\n", "\n {}",
                                         R"({"Zone": {"Z1": {}}})",
                                         R"({"format": "veldra", "version": 1})"));

TEST_F(SourceFormat, of_a_catalogue_with_settings_only_is_something) {
  write("settings.json", R"({"format": "veldra", "library": {"locale": "de_AT"}})");
  must({"import", "a.lib", "settings.json"});
  EXPECT_EQ(must({"info", "a.lib", "--json"}).json()["locale"], "de_AT");
  write("tags.json", R"({"format": "veldra", "tags": ["new"]})");
  must({"import", "b.lib", "tags.json"});
  EXPECT_EQ(count("b.lib", "tags"), 1U);
}

}  // namespace
}  // namespace veldra_tests
