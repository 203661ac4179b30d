// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

namespace veldra_tests {
namespace {

class List : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    add(*office, "Eiche", "Wood", {"Boden"});
    add(*office, "Kiefer", "Wood", {"Boden", "Decke"});
    add(*office, "木材", "Wood", {});
    add(*office, "Stahl", "Metal", {"Decke"});
    const auto roof = veldra::Composition::create("Dach");
    roof->type(veldra::Composition::Type::Roof);
    roof->addTag(veldra::Tag::create("Decke"));
    office->save(roof);
    office->save(veldra::Composition::create("Wand"));
    office->save(veldra::CustomProperty::create("Preis", veldra::ObjectType::Material));
    office->save(veldra::CustomProperty::create("Preis", veldra::ObjectType::Composition));
  }

  static void add(veldra::Library& office, const char* name, const char* type,
                  const std::vector<const char*>& tags) {
    const auto material = veldra::Material::create(name);
    material->type(office.get<veldra::MaterialType>(veldra::String(type)));
    for (const char* tag : tags) material->addTag(veldra::Tag::create(tag));
    office.save(material);
  }

  std::vector<std::string> names(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"list", "a.lib"});
    arguments.push_back("--json");
    std::vector<std::string> result;
    for (const auto& entry : must(arguments).json()) result.push_back(entry["name"]);
    return result;
  }
};

TEST_F(List, all_objects_come_by_name) {
  EXPECT_THAT(names({"materials"}), ElementsAre("Eiche", "Kiefer", "Stahl", "木材"));
  EXPECT_THAT(names({"tag"}), ElementsAre("Boden", "Decke"));
  EXPECT_EQ(names({"types"}).size(), 13U);
}

TEST_F(List, as_json_has_the_figures_of_the_table_and_nothing_empty) {
  const auto brick = veldra::Material::create("Lehmziegel");
  brick->custom_value("Thermal conductivity [W/(m K)]", "0.4");
  const auto wall = veldra::Composition::create("Ziegelwand");
  wall->appendLayer({brick, veldra::Material::Function::Structure, 200});
  library("a.lib")->save(wall);
  for (const auto& entry : must({"list", "a.lib", "compositions", "--json"}).json()) {
    if (entry["name"] != "Ziegelwand") continue;
    EXPECT_EQ(entry["total_thickness"], 200.0);
    EXPECT_NEAR(entry["transmittance"].get<double>(), 1 / (0.2 / 0.4 + 0.17), 1e-9);
  }
  for (const auto& entry : must({"list", "a.lib", "materials", "--json"}).json()) {
    EXPECT_EQ(entry.count("thicknesses"), 0U) << entry;
    EXPECT_EQ(entry.count("code"), 0U) << entry;
  }
}

TEST_F(List, a_tag_selects) {
  EXPECT_THAT(names({"materials", "--tag", "Boden"}), ElementsAre("Eiche", "Kiefer"));
  EXPECT_THAT(names({"compositions", "--tag", "Decke"}), ElementsAre("Dach"));
}

TEST_F(List, several_tags_select_what_has_one_of_them_once) {
  EXPECT_THAT(names({"materials", "--tag", "Boden", "--tag", "Decke"}),
              ElementsAre("Eiche", "Kiefer", "Stahl"));
}

TEST_F(List, a_type_selects) {
  EXPECT_THAT(names({"materials", "--type", "Metal"}), ElementsAre("Stahl"));
  EXPECT_THAT(names({"compositions", "--type", "roof"}), ElementsAre("Dach"));
  EXPECT_THAT(names({"properties", "--type", "material"}), ElementsAre("Preis"));
}

TEST_F(List, a_type_that_is_not_there_is_a_failure) {
  EXPECT_EQ(veldra({"list", "a.lib", "materials", "--type", "Cheese"}).status, 1);
  EXPECT_EQ(veldra({"list", "a.lib", "compositions", "--type", "Cheese"}).status, 1);
}

TEST_F(List, a_pattern_selects) {
  EXPECT_THAT(names({"materials", "--search", "%i%"}), ElementsAre("Eiche", "Kiefer"));
  EXPECT_THAT(names({"materials", "--search", "stahl"}), ElementsAre("Stahl"));
  EXPECT_THAT(names({"materials", "--search", "__"}), ElementsAre("木材"));
  EXPECT_THAT(names({"materials", "--search", ""}), ElementsAre());
}

TEST_F(List, columns_stand_under_each_other_whatever_the_characters) {
  const auto table = must({"list", "a.lib", "materials"}).out;
  EXPECT_THAT(table, HasSubstr("Stahl   Metal"));
  EXPECT_THAT(table, HasSubstr("木材    Wood"));
}

TEST_F(List, control_characters_in_names_do_not_reach_the_terminal) {
  add(*library("a.lib"), "two\nlines \x1b[31m red", "Wood", {});
  const auto table = must({"list", "a.lib", "materials"}).out;
  EXPECT_THAT(table, HasSubstr("two\\nlines \\x1b[31m red"));
  EXPECT_THAT(table, Not(HasSubstr("\x1b")));
}

}  // namespace
}  // namespace veldra_tests
