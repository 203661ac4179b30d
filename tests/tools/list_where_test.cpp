// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

namespace veldra_tests {
namespace {

class ListWhere : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    const char* conductivity = "Thermal conductivity [W/(m K)]";
    const auto add = [&](const char* name, const char* value, double thickness) {
      const auto material = veldra::Material::create(name);
      material->custom_value(veldra::String(conductivity), veldra::String(value));
      material->thicknesses(veldra::toModify) = {thickness};
      material->addTag(veldra::Tag::create("Außenwand"));
      return office->save(material);
    };
    const auto brick = add("Ziegel", "0.8", 240);
    const auto wool = add("Wolle", "0.04", 200);
    office->save(veldra::Material::create("Äther"));
    add_wall(*office, "Kalt", {brick});
    add_wall(*office, "Warm", {brick, wool});
  }

  static void add_wall(veldra::Library& office, const char* name,
                       const std::vector<std::shared_ptr<veldra::Material>>& materials) {
    const auto wall = veldra::Composition::create(name);
    wall->type(veldra::Composition::Type::Wall);
    for (const auto& material : materials) {
      wall->appendLayer(
          {material, veldra::Material::Function::None, *material->thicknesses().begin()});
    }
    office.save(wall);
  }

  std::vector<std::string> names(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"list", "a.lib"});
    arguments.push_back("--json");
    std::vector<std::string> result;
    for (const auto& entry : must(arguments).json()) result.push_back(entry["name"]);
    return result;
  }

  std::string error(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"list", "a.lib"});
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, is_one_sentence());
    return run.err;
  }
};

TEST_F(ListWhere, a_filter_selects) {
  EXPECT_THAT(names({"materials", "--where", "name ~ ZIEGEL"}), ElementsAre("Ziegel"));
  EXPECT_THAT(names({"materials", "--where", "tag = aussenwand and thickness < 9 in"}),
              ElementsAre("Wolle"));
  EXPECT_THAT(names({"compositions", "--where", "U < 0.25"}), ElementsAre("Warm"));
  EXPECT_THAT(names({"tags", "--where", "name is not empty"}), ElementsAre("Außenwand"));
  EXPECT_THAT(names({"materials", "--where", "name = nothing"}), IsEmpty());
}

TEST_F(ListWhere, a_filter_goes_with_the_other_ways_to_select) {
  EXPECT_THAT(names({"materials", "--tag", "Außenwand", "--where", "conductivity > 0.1"}),
              ElementsAre("Ziegel"));
  EXPECT_THAT(names({"materials", "--search", "%l%", "--where", "conductivity < 0.1"}),
              ElementsAre("Wolle"));
  EXPECT_THAT(names({"materials", "--type", "Generic", "--where", "name < b"}),
              ElementsAre("Äther"));
}

TEST_F(ListWhere, fields_sort) {
  EXPECT_THAT(names({"materials", "--sort", "name"}), ElementsAre("Äther", "Wolle", "Ziegel"));
  EXPECT_THAT(names({"materials", "--sort", "-conductivity"}),
              ElementsAre("Ziegel", "Wolle", "Äther"));
  EXPECT_THAT(names({"compositions", "--sort", "U"}), ElementsAre("Warm", "Kalt"));
}

TEST_F(ListWhere, columns_are_those_that_were_asked_for) {
  EXPECT_EQ(must({"list", "a.lib", "compositions", "--columns", "name,thickness,U"}).out,
            "name  total [mm]  U [W/(m²K)]\n"
            "────  ──────────  ───────────\n"
            "Kalt         240         2.13\n"
            "Warm         440         0.18\n");
  EXPECT_EQ(must({"list", "a.lib", "materials", "--columns",
                  "name,conductivity,manufacturer,tags,allow_custom_thickness"})
                .out,
            "name    conductivity [W/(m K)]  manufacturer  tags       allow custom thickness\n"
            "──────  ──────────────────────  ────────────  ─────────  ──────────────────────\n"
            "Wolle                     0.04                Außenwand  yes\n"
            "Ziegel                     0.8                Außenwand  yes\n"
            "Äther                                                    yes\n");
}

TEST_F(ListWhere, json_has_the_same_columns) {
  const auto list =
      must({"list", "a.lib", "compositions", "--columns", "name,thickness,layers", "--json"})
          .json();
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0].size(), 3U);
  EXPECT_EQ(list[0]["name"], "Kalt");
  EXPECT_EQ(list[0]["total_thickness"], 240.0);
  EXPECT_EQ(list[0]["layers"][0]["material"], "Ziegel");
  const auto materials =
      must({"list", "a.lib", "materials", "--columns", "name,conductivity", "--json"}).json();
  EXPECT_TRUE(materials[2]["conductivity"].is_null());
}

TEST_F(ListWhere, what_has_no_figure_shows_a_dash) {
  library("a.lib")->save(veldra::Composition::create("Leer"));
  EXPECT_THAT(
      must({"list", "a.lib", "compositions", "--columns", "name,R", "--where", "name = leer"}).out,
      HasSubstr("Leer          –"));
}

TEST_F(ListWhere, what_is_wrong_is_told_with_what_there_is) {
  EXPECT_EQ(error({"materials", "--where", "name ="}),
            "veldra: 'a.lib': in the filter, at character 7: expected a value, found the end\n");
  EXPECT_EQ(error({"materials", "--where", ""}),
            "veldra: 'a.lib': in the filter, at character 1: expected the name of a field, found "
            "the end\n");
  EXPECT_EQ(error({"tags", "--columns", "nam"}),
            "veldra: 'a.lib': tags have no field 'nam'; did you mean 'name'? there are id, name\n");
  EXPECT_THAT(error({"tags", "--sort", "-size"}), HasSubstr("tags have no field 'size'"));
  EXPECT_THAT(
      error({"compositions", "--columns", "name,W"}),
      AllOf(HasSubstr("total_thickness (thickness), total_resistance (R), transmittance (U)"),
            HasSubstr("sd (vapour_thickness)")));
  EXPECT_THAT(error({"compositions", "--columns", "thicknes"}),
              HasSubstr("compositions have no field 'thicknes'; did you mean 'thickness'"));
  EXPECT_EQ(error({"materials", "--columns", "name,"}),
            "veldra: 'a.lib': the name of a field is missing\n");
  EXPECT_EQ(error({"materials", "--where", "tag = Ausenwand"}),
            "veldra: 'a.lib': in the filter, at character 7: there is no tag 'Ausenwand'; did you "
            "mean 'Außenwand'? there is Außenwand\n");
}

TEST_F(ListWhere, what_was_asked_for_does_not_steer_the_terminal) {
  EXPECT_THAT(error({"materials", "--columns", "a\x1b[31m"}), HasSubstr("'a\\x1b[31m'"));
}

}  // namespace
}  // namespace veldra_tests
