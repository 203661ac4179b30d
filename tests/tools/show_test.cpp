// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"
#include "support/rows.hpp"

namespace veldra_tests {
namespace {

class Show : public ProgramTest {
 protected:
  static std::shared_ptr<veldra::Material> material(const char* name, const char* property,
                                                    const char* value) {
    const auto result = veldra::Material::create(name);
    if (property) result->custom_value(veldra::String(property), veldra::String(value));
    return result;
  }

  /// Render, insulation, concrete and an air layer, 475 thick together.
  std::shared_ptr<veldra::Composition> build_up(veldra::Composition::Type type) {
    const char* conductivity = "Thermal conductivity [W/(m K)]";
    const auto function = veldra::Material::Function::None;
    const auto result = veldra::Composition::create("Aufbau");
    result->type(type);
    result->appendLayer({material("Render", conductivity, "1.0"), function, 20});
    result->appendLayer({material("Wool", conductivity, "0.04"), function, 200});
    result->appendLayer(
        {material("Concrete", conductivity, "2.0"), veldra::Material::Function::Structure, 230});
    result->appendLayer({material("Air", "Thermal resistance [m2 K/W]", "0.18"), function, 25});
    result->last_core_layer(2);
    result->first_core_layer(2);
    return result;
  }

  nlohmann::json thermal(veldra::Composition::Type type) {
    library("a.lib")->save(build_up(type));
    return must({"show", "a.lib", "composition", "Aufbau", "--json"}).json()["thermal"];
  }
};

// 0.02 / 1 + 0.2 / 0.04 + 0.23 / 2 + 0.18 = 5.315, and the surfaces of ISO 6946.
TEST_F(Show, a_wall_has_the_resistance_of_its_layers_and_horizontal_surfaces) {
  const auto values = thermal(veldra::Composition::Type::Wall);
  EXPECT_NEAR(values["total_resistance"].get<double>(), 5.315 + 0.04 + 0.13, 1e-12);
  EXPECT_NEAR(values["transmittance"].get<double>(), 1 / 5.485, 1e-12);
}

TEST_F(Show, heat_goes_upward_through_a_roof) {
  EXPECT_NEAR(thermal(veldra::Composition::Type::Roof)["total_resistance"].get<double>(),
              5.315 + 0.04 + 0.10, 1e-12);
}

TEST_F(Show, heat_goes_downward_through_a_floor) {
  EXPECT_NEAR(thermal(veldra::Composition::Type::Floor)["total_resistance"].get<double>(),
              5.315 + 0.04 + 0.17, 1e-12);
}

TEST_F(Show, the_surfaces_that_were_assumed_are_told) {
  const auto values = thermal(veldra::Composition::Type::Floor);
  EXPECT_EQ(values["heat_flow"], "downward");
  EXPECT_EQ(values["outside_surface_resistance"], 0.04);
  EXPECT_EQ(values["inside_surface_resistance"], 0.17);
  EXPECT_EQ(values["ventilated_layers"], 0);
  EXPECT_THAT(must({"show", "a.lib", "composition", "Aufbau"}).out,
              HasSubstr("0.04 outside, 0.17 inside, in m²K/W: downward heat flow after ISO 6946, "
                        "outdoor air outside\n"));
}

// Behind cladding and cavity: 0.2 / 0.04 + 0.23 / 2 + 0.18 = 5.295, with still air on both sides.
TEST_F(Show, a_well_ventilated_cavity_and_what_is_outside_it_do_not_count) {
  const auto office = library("a.lib");
  const auto wall = build_up(veldra::Composition::Type::Wall);
  wall->insertLayer(1, {material("Cavity", "Ventilation", "Well ventilated"),
                        veldra::Material::Function::None, 40});
  office->save(wall);
  const auto values = must({"show", "a.lib", "composition", "Aufbau", "--json"}).json()["thermal"];
  EXPECT_EQ(values["ventilated_layers"], 2);
  EXPECT_EQ(values["layer_resistances"][0], 0.0);
  EXPECT_EQ(values["outside_surface_resistance"], 0.13);
  EXPECT_NEAR(values["total_resistance"].get<double>(), 5.295 + 0.13 + 0.13, 1e-12);
  EXPECT_THAT(must({"show", "a.lib", "composition", "Aufbau"}).out,
              ContainsRegex("ventilated +layer 2 and what is outside it do not count"));
}

TEST_F(Show, inches_count_as_inches) {
  const auto office = veldra::Library::create(path("in.lib").c_str(), veldra::Unit::Inches, "");
  const auto wall = veldra::Composition::create("Wall");
  wall->appendLayer({material("Wool", "Thermal conductivity [W/(m K)]", "0.0254"),
                     veldra::Material::Function::None, 2});
  office->save(wall);
  const auto values = must({"show", "in.lib", "composition", "Wall", "--json"}).json()["thermal"];
  EXPECT_NEAR(values["total_resistance"].get<double>(), 2 + 0.17, 1e-12);
}

TEST_F(Show, a_layer_of_which_nothing_is_known_is_named) {
  const auto office = library("a.lib");
  const auto wall = build_up(veldra::Composition::Type::Wall);
  wall->appendLayer({material("Mystery", nullptr, nullptr), veldra::Material::Function::None, 5});
  office->save(wall);
  const auto text = must({"show", "a.lib", "composition", "Aufbau"}).out;
  EXPECT_THAT(text, ContainsRegex("no U-value +layer 5, 'Mystery'"));
  const auto values = must({"show", "a.lib", "composition", "Aufbau", "--json"}).json()["thermal"];
  EXPECT_TRUE(values["transmittance"].is_null());
}

TEST_F(Show, a_composition_tells_its_layers_core_and_total) {
  const auto office = library("a.lib");
  const auto wall = build_up(veldra::Composition::Type::Wall);
  wall->variable_layer(1);
  wall->variable_layer_min_thickness(80);
  wall->variable_layer_max_thickness(240);
  office->save(wall);
  const auto text = must({"show", "a.lib", "composition", "Aufbau"}).out;
  EXPECT_THAT(text, ContainsRegex("total +475 mm"));
  EXPECT_THAT(text, ContainsRegex("core +layer 3\n"));
  EXPECT_THAT(text, ContainsRegex("structural layer +3"));
  EXPECT_THAT(text, ContainsRegex("variable layer +layer 2, from 80 to 240 mm"));
  EXPECT_THAT(text, ContainsRegex("3  Concrete +230 +0.115  structure  core, structural"));
}

TEST_F(Show, a_core_of_several_layers_and_a_function_of_the_host_are_told) {
  const auto office = library("a.lib");
  const auto wall = build_up(veldra::Composition::Type::Wall);
  wall->layer(0, veldra::toModify).function(static_cast<veldra::Material::Function>(7));
  wall->first_core_layer(1);
  office->save(wall);
  const auto text = must({"show", "a.lib", "composition", "Aufbau"}).out;
  EXPECT_THAT(text, ContainsRegex("core +layers 2 to 3\n"));
  EXPECT_THAT(text, ContainsRegex("1  Render +20 +0.020  7\n"));
  EXPECT_THAT(text, ContainsRegex("2  Wool +200 +5.000  –"));
}

TEST_F(Show, an_object_that_is_not_there_gives_a_sentence) {
  library("a.lib");
  const auto run = veldra({"show", "a.lib", "material", "no 'such'\nthing"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_THAT(run.err, HasSubstr("no 'such'\\nthing"));
}

TEST_F(Show, properties_of_one_name_must_be_told_apart_by_id) {
  const auto office = library("a.lib");
  office->save(veldra::CustomProperty::create("Preis", veldra::ObjectType::Material));
  office->save(veldra::CustomProperty::create("Preis", veldra::ObjectType::Composition));
  const auto run = veldra({"show", "a.lib", "property", "Preis"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("1 or 2"));
  EXPECT_EQ(must({"show", "a.lib", "property", "2", "--json"}).json()["object_type"],
            "composition");
}

class WhereUsed : public Show {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    const auto wall = build_up(veldra::Composition::Type::Wall);
    wall->addTag(veldra::Tag::create("tested"));
    wall->entity_layer(veldra::Layer::create("A-WALL"));
    office->save(wall);
  }

  std::string as(const std::string& kind, const std::string& name) {
    std::string roles;
    for (const auto& entry : must({"where-used", "a.lib", kind, name, "--json"}).json()) {
      roles += entry["kind"].get<std::string>() + " " + entry["name"].get<std::string>() + " " +
               entry["as"].get<std::string>() + ";";
    }
    return roles;
  }
};

TEST_F(WhereUsed, every_kind_of_reference_is_found) {
  EXPECT_EQ(as("material", "Wool"), "composition Aufbau layer 2;");
  EXPECT_EQ(as("tag", "tested"), "composition Aufbau tag;");
  EXPECT_EQ(as("layer", "A-WALL"), "composition Aufbau entity layer;");
  EXPECT_EQ(as("property", "Thermal resistance [m2 K/W]"), "material Air custom value;");
  EXPECT_EQ(as("type", "Wood"), "");
  EXPECT_EQ(as("composition", "Aufbau"), "");
  EXPECT_EQ(must({"where-used", "a.lib", "type", "Generic", "--json"}).json().size(), 4U);
}

/// A material with an asset of each kind, and a density of its own.
class ShownQuantities : public ProgramTest {
 protected:
  void SetUp() override {
    library("a.lib")->save(veldra::CustomProperty::create("Density [kg/m3]", {}));
    PlainDatabase database(path("a.lib"));
    put_structural_asset(database, "1");
    put_thermal_asset(database, "2");
    database.execute("UPDATE ThermalAsset SET specific_heat = NULL");
    put_material(database,
                 {{"id", "1"}, {"name", "'Brick'"}, {"structural_id", "1"}, {"thermal_id", "2"}});
    const auto office = library("a.lib");
    const auto brick = office->get<veldra::Material>(1);
    brick->custom_value("Density [kg/m3]", "1800");
    office->save(brick);
  }
};

TEST_F(ShownQuantities, are_told_with_what_holds_them) {
  EXPECT_THAT(must({"show", "a.lib", "material", "Brick"}).out,
              HasSubstr("quantities\n"
                        "  conductivity        4.25 W/(m K), from the thermal asset\n"
                        "  density             1800 kg/m³, from the custom property\n"
                        "  specific heat       2.5 J/(kg K), from the structural asset\n"));
  const auto json = must({"show", "a.lib", "material", "Brick", "--json"}).json()["quantities"];
  EXPECT_EQ(json["density"]["source"], "custom_property");
  EXPECT_EQ(json["density"]["value"], 1800.0);
  EXPECT_EQ(json["specific_heat"]["source"], "structural_asset");
  EXPECT_EQ(json["conductivity"]["source"], "thermal_asset");
  EXPECT_FALSE(json.contains("resistance"));
}

TEST_F(ShownQuantities, are_not_told_where_there_are_none) {
  library("a.lib")->save(veldra::Material::create("Bare"));
  EXPECT_THAT(must({"show", "a.lib", "material", "Bare"}).out, Not(HasSubstr("quantities")));
}

}  // namespace
}  // namespace veldra_tests
