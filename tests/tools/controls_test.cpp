// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "text.hpp"

namespace veldra_tests {
namespace {

/// One of each kind of character that must not reach a terminal.
const std::vector<std::string>& unwelcome() {
  static const std::vector<std::string> characters{
      "\x1b",         "\x7f",         "\xC2\x80",     "\xC2\x85",     "\xC2\x9B",
      "\xC2\x9F",     "\xD8\x9C",     "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xA8",
      "\xE2\x80\xA9", "\xE2\x80\xAA", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9",
      "\xEF\xBF\xBE", "\xEF\xBF\xBF"};
  return characters;
}

/// Those that look like them and are welcome: a blank, letters, a picture, and their neighbours.
constexpr const char* welcome =
    "~ \xC2\xA0é\xE2\x80\x8D\xE2\x80\xA7\xE2\x80\xAFΩ木🧱\xEF\xBF\xBD";

class Controls : public ProgramTest {
 protected:
  void SetUp() override {
    name_ = welcome;
    for (const auto& character : unwelcome()) name_ += character + "x";
    const auto office = library("a.lib");
    const auto wall = veldra::Composition::create(name_.c_str());
    const auto brick = veldra::Material::create(name_.c_str());
    brick->custom_value(veldra::String(name_.c_str()), veldra::String(name_.c_str()));
    wall->description(name_.c_str());
    wall->appendLayer({brick, veldra::Material::Function::None, 115});
    office->save(wall);
  }

  void expect_none_in(const std::string& text) {
    for (const auto& character : unwelcome()) {
      EXPECT_THAT(text, Not(HasSubstr(character))) << text.find(character);
    }
    EXPECT_THAT(text, HasSubstr(welcome));
  }

  std::string name_;
};

TEST_F(Controls, come_as_escapes_in_json_that_reads_back_the_same) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"export", "a.lib"},
        std::vector<std::string>{"list", "a.lib", "materials", "--json"},
        std::vector<std::string>{"show", "a.lib", "composition", "1", "--json"},
        std::vector<std::string>{"where-used", "a.lib", "material", "1", "--json"}}) {
    const auto text = must(arguments).out;
    expect_none_in(text);
    EXPECT_THAT(text, HasSubstr("\\u009b"));
    EXPECT_THAT(nlohmann::json::parse(text).dump(), HasSubstr(nlohmann::json(name_).dump()));
  }
}

TEST_F(Controls, in_exported_json_survive_an_import) {
  write("a.json", exported("a.lib"));
  must({"import", "b.lib", "a.json"});
  EXPECT_EQ(library("b.lib")->get<veldra::Material>(1)->name().utf8(), name_);
}

TEST_F(Controls, are_escaped_in_tables) {
  expect_none_in(must({"list", "a.lib", "compositions"}).out);
  expect_none_in(must({"show", "a.lib", "composition", "1"}).out);
}

TEST_F(Controls, of_a_source_do_not_reach_the_terminal_in_what_is_wrong_about_it) {
  write("bad.json",
        "{\"a\": \"x\xC2\x9B"
        "31m\xE2\x80\xAE\x7f\" 5}");
  const auto run = veldra({"import", "b.lib", "bad.json"});
  EXPECT_EQ(run.status, 1);
  for (const auto& character : unwelcome()) EXPECT_THAT(run.err, Not(HasSubstr(character)));
}

/// Whether all characters of a text are ones that XML 1.0 allows.
bool has_xml_characters_only(const std::string& text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto first = static_cast<unsigned char>(text[i]);
    const std::size_t bytes = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    unsigned code = bytes == 1 ? first : first & (0x7fU >> bytes);
    for (std::size_t k = 1; k < bytes; ++k) {
      code = code << 6 | (static_cast<unsigned char>(text.at(i + k)) & 0x3fU);
    }
    const bool allowed = code == 9 || code == 10 || code == 13 ||
                         (code >= 0x20 && code <= 0xd7ff) || (code >= 0xe000 && code <= 0xfffd) ||
                         (code >= 0x10000 && code <= 0x10ffff);
    if (!allowed) return false;
    i += bytes;
  }
  return true;
}

/// Whether each element of a document without comments is closed by one of its name.
bool has_balanced_elements(const std::string& text) {
  std::vector<std::string> open;
  for (auto start = text.find('<'); start != std::string::npos; start = text.find('<', start + 1)) {
    const auto end = text.find('>', start);
    if (end == std::string::npos || text.find('<', start + 1) < end) return false;
    const std::string tag = text.substr(start + 1, end - start - 1);
    const std::string name = tag.substr(0, tag.find_first_of(" \n"));
    if (tag.front() == '?' || tag.back() == '/') continue;
    if (tag.front() != '/') {
      open.push_back(name);
    } else if (open.empty() || "/" + open.back() != name) {
      return false;
    } else {
      open.pop_back();
    }
  }
  return open.empty();
}

TEST_F(Controls, in_a_drawing_become_a_character_that_can_be_shown) {
  const auto svg = must({"draw", "a.lib", "1"}).out;
  expect_none_in(svg);
  EXPECT_THAT(svg, HasSubstr("x\xEF\xBF\xBDx"));
}

TEST_F(Controls, leave_a_drawing_well_formed) {
  const auto office = library("a.lib");
  const auto wall = veldra::Composition::create("<\x01&\">'\xEF\xBF\xBF]]>\xEF\xBF\xBE\x0b\t\n");
  wall->appendLayer({office->get<veldra::Material>(1), veldra::Material::Function::None, 5});
  office->save(wall);
  const auto svg = must({"draw", "a.lib", "1", "2"}).out;
  EXPECT_TRUE(has_xml_characters_only(svg));
  EXPECT_TRUE(has_balanced_elements(svg));
}

}  // namespace
}  // namespace veldra_tests
