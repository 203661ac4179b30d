// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

namespace veldra_tests {
namespace {

/// Materials whose names are the ids of others: "2" has the id 1, "Brick" 2, "3" 3, "id:2" 4 and
/// "name:2" 5.
class Naming : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    for (const char* name : {"2", "Brick", "3", "id:2", "name:2"}) {
      office->save(veldra::Material::create(name));
    }
    must({"create", "b.lib"});
  }

  int id_of(const std::string& text) {
    return must({"show", "a.lib", "material", text, "--json"}).json()["id"];
  }

  /// A sentence with both objects that a bare 2 could mean, and nothing done.
  void expect_question(const std::vector<std::string>& arguments) {
    const auto before = exported("a.lib");
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_THAT(run.err, AllOf(HasSubstr("'2'"), HasSubstr("the id 1"), HasSubstr("'Brick'"),
                               HasSubstr("name:2"), HasSubstr("id:2")));
    EXPECT_EQ(exported("a.lib"), before);
  }
};

TEST_F(Naming, by_id_is_by_id_whatever_has_that_name) {
  EXPECT_EQ(id_of("id:1"), 1);
  EXPECT_EQ(id_of("id:2"), 2);
  EXPECT_EQ(id_of("id:3"), 3);
}

TEST_F(Naming, by_name_is_by_name_whatever_has_that_id) {
  EXPECT_EQ(id_of("name:2"), 1);
  EXPECT_EQ(id_of("name:3"), 3);
  EXPECT_EQ(id_of("name:Brick"), 2);
}

TEST_F(Naming, everything_after_name_is_the_name) {
  EXPECT_EQ(id_of("name:id:2"), 4);
  EXPECT_EQ(id_of("name:name:2"), 5);
}

TEST_F(Naming, without_a_word_it_may_be_a_name_or_an_id) {
  EXPECT_EQ(id_of("Brick"), 2);
  EXPECT_EQ(id_of("1"), 1);
  EXPECT_EQ(id_of("3"), 3);  // both its name and its id
}

TEST_F(Naming, what_is_not_there_is_told_as_it_was_named) {
  for (const char* text : {"id:7", "id:", "id:Brick", "id:-1", "name:1", "name:", "7", "id:2 "}) {
    const auto run = veldra({"show", "a.lib", "material", text});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_THAT(run.err, HasSubstr("'" + std::string(text) + "'"));
  }
}

TEST_F(Naming, a_number_that_is_a_name_and_an_id_is_a_question_in_every_command) {
  expect_question({"show", "a.lib", "material", "2"});
  expect_question({"where-used", "a.lib", "material", "2"});
  expect_question({"remove", "a.lib", "materials", "2"});
  expect_question({"copy", "a.lib", "b.lib", "material:2"});
  EXPECT_EQ(count("b.lib", "materials"), 0U);
}

TEST_F(Naming, a_number_that_is_the_name_and_the_id_of_build_ups_is_a_question_when_drawing) {
  const auto office = library("a.lib");
  office->save(veldra::Composition::create("2"));
  office->save(veldra::Composition::create("Brick"));
  expect_question({"draw", "a.lib", "2"});
  EXPECT_THAT(must({"draw", "a.lib", "id:2"}).out, HasSubstr(">Brick<"));
  EXPECT_THAT(must({"draw", "a.lib", "name:2"}).out, HasSubstr(">2<"));
}

TEST_F(Naming, a_number_that_is_the_name_and_the_id_of_types_is_a_question_when_listing) {
  const auto office = library("a.lib");
  const auto named = veldra::MaterialType::create("2");
  office->save(named);
  const auto numbered = office->get<veldra::MaterialType>(2);
  const auto brick = office->get<veldra::Material>("Brick");
  brick->type(numbered);
  brick->save();
  const auto run = veldra({"list", "a.lib", "materials", "--type", "2"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("'" + numbered->name().utf8() + "'"));
  EXPECT_EQ(must({"list", "a.lib", "materials", "--type", "id:2", "--json"}).json().size(), 1U);
  EXPECT_EQ(must({"list", "a.lib", "materials", "--type", "name:2", "--json"}).json().size(), 0U);
}

TEST_F(Naming, the_same_command_again_never_takes_another_object) {
  must({"remove", "a.lib", "materials", "name:2"});
  const auto again = veldra({"remove", "a.lib", "materials", "name:2"});
  EXPECT_EQ(again.status, 1);
  EXPECT_EQ(count("a.lib", "materials"), 4U);
}

TEST_F(Naming, comes_behind_the_kind_when_copying) {
  must({"copy", "a.lib", "b.lib", "material:name:2", "material:id:3"});
  const auto copied = must({"list", "b.lib", "materials", "--json"}).json();
  ASSERT_EQ(copied.size(), 2U);
  EXPECT_EQ(copied[0]["name"], "2");
  EXPECT_EQ(copied[1]["name"], "3");
}

TEST_F(Naming, a_property_that_has_its_name_from_two_kinds_is_told_by_id) {
  const auto office = library("a.lib");
  office->save(veldra::CustomProperty::create("Price", veldra::ObjectType::Material));
  office->save(veldra::CustomProperty::create("Price", veldra::ObjectType::Composition));
  office->save(veldra::CustomProperty::create("1", veldra::ObjectType::Material));
  EXPECT_THAT(veldra({"show", "a.lib", "property", "name:Price"}).err, HasSubstr("1 or 2"));
  EXPECT_EQ(veldra({"show", "a.lib", "property", "1"}).status, 1);
  EXPECT_EQ(must({"show", "a.lib", "property", "id:1", "--json"}).json()["object_type"],
            "material");
  EXPECT_EQ(must({"show", "a.lib", "property", "name:1", "--json"}).json()["id"], 3);
}

TEST_F(Naming, is_told_in_the_help_of_every_command_that_takes_objects) {
  for (const char* command : {"show", "where-used", "remove", "draw", "copy", "list"}) {
    EXPECT_THAT(must({command, "--help"}).out, HasSubstr("id:NUMBER")) << command;
  }
}

TEST_F(Naming, by_kind_may_have_a_colon_or_not_in_every_command) {
  const auto office = library("a.lib");
  office->save(veldra::Composition::create("Wall"));
  for (const std::string command : {"show", "where-used"}) {
    EXPECT_EQ(must({command, "a.lib", "material:Brick"}).out,
              must({command, "a.lib", "material", "Brick"}).out);
  }
  EXPECT_EQ(id_of("material:Brick"), 2);
  EXPECT_EQ(must({"draw", "a.lib", "composition:Wall"}).out, must({"draw", "a.lib", "Wall"}).out);
  EXPECT_THAT(veldra({"calc", "a.lib", "composition:id:1", "--json"}).json()["name"], "Wall");
  must({"set", "a.lib", "materials", "Brick", "id:3", "manufacturer=Smith"});
  must({"set", "a.lib", "material", "Brick", "composition", "Wall", "comments=x"});
  must({"tag", "a.lib", "material", "Brick", "composition:Wall", "--tag", "t"});
  must({"layers", "a.lib", "composition:Wall", "add", "material:Brick", "115"});
  must({"duplicate", "a.lib", "composition", "Wall", "Wall 2"});
  must({"rename", "a.lib", "material", "Brick", "Stone"});
  must({"rename", "a.lib", "material:Stone", "Clinker"});
  must({"new", "a.lib", "material:Cork", "density=120"});
  must({"new", "a.lib", "Material", "Wool", "density=20"});
  const auto brick = must({"show", "a.lib", "material:Clinker", "--json"}).json();
  EXPECT_EQ(brick["manufacturer"], "Smith");
  EXPECT_EQ(brick["comments"], "x");
  EXPECT_EQ(brick["tags"], nlohmann::json::array({"t"}));
  EXPECT_EQ(must({"show", "a.lib", "composition:Wall", "--json"}).json()["comments"], "x");
  must({"copy", "a.lib", "b.lib", "materials", "Cork", "Wool", "composition:Wall 2"});
  EXPECT_EQ(count("b.lib", "compositions"), 1U);
  must({"remove", "a.lib", "composition:Wall 2", "material:Cork", "materials", "Wool"});
  EXPECT_EQ(count("a.lib", "compositions"), 1U);
  EXPECT_EQ(count("a.lib", "materials"), 5U);
}

TEST_F(Naming, a_name_that_begins_with_its_kind_is_that_name) {
  const auto office = library("a.lib");
  office->save(veldra::Material::create("material:Brick"));
  EXPECT_EQ(must({"show", "a.lib", "material:Brick", "--json"}).json()["id"], 2);
  EXPECT_EQ(id_of("material:Brick"), 6);
}

TEST_F(Naming, with_too_little_or_too_much_is_wrong_use) {
  const auto expect = [&](const std::vector<std::string>& arguments, const std::string& sentence) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 2) << run.out;
    EXPECT_THAT(run.err, HasSubstr(sentence));
  };
  expect({"show", "a.lib", "material"}, "OBJECT is required");
  expect({"show", "a.lib", "Brick"}, "KIND: 'Brick' is none of materials, ");
  expect({"show", "a.lib", "brick:x"}, "KIND: 'brick' is none of materials, ");
  expect({"show", "a.lib", "material:Brick", "material:3"},
         "'material:3' is one argument too many");
  expect({"show", "a.lib", "material", "Brick", "3"}, "'3' is one argument too many");
  expect({"new", "a.lib", "material"}, "NAME is required");
  expect({"rename", "a.lib", "material:Brick"}, "NAME is required");
  expect({"rename", "a.lib", "material", "Brick"}, "OBJECT is required");
  expect({"rename", "a.lib", "material", "Brick", "3", "x"}, "'3' is one argument too many");
  expect({"set", "a.lib", "material", "comments=x"}, "'material' is not KIND:OBJECT");
  expect({"copy", "a.lib", "b.lib", "Brick"}, "'Brick' is not KIND:OBJECT");
}

TEST_F(Naming, of_what_is_not_there_names_the_library) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"show", "a.lib", "material", "x"},
        std::vector<std::string>{"where-used", "a.lib", "material", "x"},
        std::vector<std::string>{"remove", "a.lib", "material", "x"},
        std::vector<std::string>{"copy", "a.lib", "b.lib", "material:x"}}) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "veldra: 'a.lib': there is no material 'x' in the library\n");
  }
  EXPECT_EQ(veldra({"draw", "a.lib", "x"}).err,
            "veldra: 'a.lib': there is no composition 'x' in the library\n");
  EXPECT_THAT(veldra({"list", "a.lib", "materials", "--type", "x"}).err,
              StartsWith("veldra: 'a.lib': there is no type 'x' in the library; there are "));
}

}  // namespace
}  // namespace veldra_tests
