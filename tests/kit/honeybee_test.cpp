// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

namespace veldra_tests {
namespace {

using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

const char* const all_objects = R"([
  {"type": "EnergyMaterial", "identifier": "brick_1", "display_name": "Ziegel, rot",
   "roughness": "Rough", "thickness": 0.115, "conductivity": 0.81, "density": 1800,
   "specific_heat": 1000, "thermal_absorptance": 0.9, "solar_absorptance": 0.65,
   "visible_absorptance": 0.65},
  {"type": "EnergyMaterialNoMass", "identifier": "Insulation", "r_value": 3.5},
  {"type": "EnergyMaterialVegetation", "identifier": "Green", "thickness": 0.12,
   "conductivity": 0.4, "density": 641, "specific_heat": 1100, "plant_height": 0.2,
   "leaf_area_index": 1, "moist_diff_model": "Simple"},
  {"type": "EnergyWindowMaterialGlazing", "identifier": "Clear", "thickness": 0.003,
   "solar_transmittance": 0.837, "solar_reflectance_back": 0.075, "emissivity": 0.84,
   "solar_diffusing": false},
  {"type": "EnergyWindowMaterialSimpleGlazSys", "identifier": "Window", "u_factor": 1.3,
   "shgc": 0.6, "vt": 0.7},
  {"type": "EnergyWindowMaterialGas", "identifier": "Argon", "thickness": 0.0127,
   "gas_type": "Argon"},
  {"type": "EnergyWindowMaterialGasMixture", "identifier": "Mixture", "thickness": 0.012,
   "gas_types": ["Air", "Krypton"], "gas_fractions": [0.1, 0.9]},
  {"type": "EnergyWindowMaterialGasCustom", "identifier": "Own", "conductivity_coeff_a": 0.02,
   "thickness": 0.01},
  {"type": "EnergyWindowMaterialShade", "identifier": "Cloth", "thickness": 0.002,
   "solar_transmittance": 0.1, "airflow_permeability": 0.3},
  {"type": "EnergyWindowMaterialBlind", "identifier": "Slats", "slat_width": 0.025},
  {"type": "EnergyWindowFrame", "identifier": "Frame", "width": 0.05, "conductance": 2},
  {"type": "OpaqueConstructionAbridged", "identifier": "wall_1", "display_name": "Wand",
   "materials": ["brick_1", "Insulation"]},
  {"type": "WindowConstructionAbridged", "identifier": "Double", "frame": null,
   "materials": ["Clear", "Argon", "Clear"]}
])";

class Honeybee : public TestWithParam<bool> {
 protected:
  kit::Sources read(const std::string& content) const {
    kit::SourceRules rules;
    rules.tags = {"t"};
    rules.keep_unknown = GetParam();
    return kit::read_together({{"a.hbjson", content}}, rules);
  }
};

TEST_P(Honeybee, reads_back_to_what_came_in) {
  const auto sources = read(all_objects);
  EXPECT_THAT(sources.reports[0].problems, IsEmpty());
  EXPECT_EQ(sources.reports[0].format, "honeybee");
  EXPECT_EQ(sources.library->count<Material>(), 11U);
  EXPECT_EQ(sources.library->count<Composition>(), 2U);
  const auto written = written_as("honeybee", *sources.library);
  for (const auto& field : written.report.not_written) EXPECT_EQ(field.field, "tags");
  EXPECT_THAT(written.report.problems, IsEmpty());
  const auto back = read(written.text);
  EXPECT_EQ(fields_of(*back.library), fields_of(*sources.library));
  EXPECT_EQ(written_as("honeybee", *back.library).text, written.text);
}

TEST_P(Honeybee, has_the_properties_that_the_same_material_has_of_other_formats) {
  const auto library = read(all_objects).library;
  const auto brick = library->get<Material>(text("Ziegel, rot"));
  ASSERT_NE(brick, nullptr);
  EXPECT_EQ(brick->mark(), text("brick_1"));
  EXPECT_EQ(brick->type()->name(), text("Opaque"));
  EXPECT_EQ(brick->thicknesses(), (std::set<double>{115}));
  EXPECT_EQ(brick->custom_value("Thermal conductivity [W/(m K)]").get(), text("0.81"));
  EXPECT_EQ(brick->custom_value("Roughness").get(), text("Rough"));
  const auto mixture = library->get<Material>(text("Mixture"));
  EXPECT_EQ(mixture->custom_value("Gas 2 type").get(), text("Krypton"));
  EXPECT_EQ(mixture->custom_value("Gas 2 fraction [-]").get(), text("0.9"));
  EXPECT_EQ(library->get<Material>(text("Clear"))->custom_value("Solar diffusing").get(),
            text("No"));
  const auto wall = library->get<Composition>(text("Wand"));
  ASSERT_NE(wall, nullptr);
  EXPECT_EQ(wall->layers()[0].material()->name(), text("Ziegel, rot"));
  EXPECT_EQ(wall->custom_value("Identifier").get(), text("wall_1"));
}

INSTANTIATE_TEST_SUITE_P(With, Honeybee, Values(false, true));

kit::Sources read(const std::string& content) {
  return kit::read_together({{"a.json", content}}, {});
}

TEST(HoneybeeSource, may_be_one_object_a_list_or_a_dictionary) {
  const std::string object = R"({"type": "EnergyMaterialNoMass", "identifier": "A", "r_value": 1})";
  for (const auto& content : {object, "[" + object + "]", "{\"A\": " + object + "}"}) {
    const auto sources = read(content);
    EXPECT_EQ(sources.reports[0].format, "honeybee");
    EXPECT_NE(sources.library->get<Material>(text("A")), nullptr) << content;
  }
}

TEST(HoneybeeSource, may_be_a_model) {
  const auto sources = read(R"({"type": "Model", "identifier": "House", "properties": {"energy": {
    "materials": [{"type": "EnergyMaterialNoMass", "identifier": "A", "r_value": 1}],
    "constructions": [{"type": "AirBoundaryConstruction", "identifier": "Air"},
      {"type": "OpaqueConstructionAbridged", "identifier": "W", "materials": ["A"]}]}}})");
  EXPECT_EQ(sources.library->count<Composition>(), 1U);
  EXPECT_THAT(sources.reports[0].skipped,
              UnorderedElementsAre(Pair("Model", 1U), Pair("AirBoundaryConstruction", 1U)));
}

TEST(HoneybeeSource, may_have_the_materials_within_constructions) {
  const auto sources = read(R"({"type": "OpaqueConstruction", "identifier": "W", "materials": [
    {"type": "EnergyMaterialNoMass", "identifier": "A", "r_value": 1},
    {"type": "EnergyMaterialNoMass", "identifier": "a", "r_value": 2},
    {"type": "EnergyMaterialNoMass", "identifier": "A", "r_value": 1}]})");
  EXPECT_THAT(sources.reports[0].problems, IsEmpty());
  EXPECT_EQ(sources.library->count<Material>(), 2U) << "identifiers compare exactly";
  EXPECT_EQ(sources.library->get<Composition>(text("W"))->layers().size(), 3U);
}

/// The materials of the layers of a composition, with their resistances.
std::vector<std::string> layers_of(const kit::Sources& sources, const char* name) {
  const auto composition = sources.library->get<Composition>(text(name));
  std::vector<std::string> layers;
  for (const auto& layer : composition->layers()) {
    const auto& material = *layer.material();
    const auto resistance = material.custom_value(text("Thermal resistance [m2 K/W]"));
    layers.push_back(material.name().utf8() + ": " + resistance.get().utf8());
  }
  return layers;
}

TEST(HoneybeeSource, has_identifiers_in_names_that_are_shared) {
  const auto sources = read(R"([
    {"type": "EnergyMaterialNoMass", "identifier": "1", "display_name": "A", "r_value": 1},
    {"type": "EnergyMaterialNoMass", "identifier": "2", "display_name": "A", "r_value": 2},
    {"type": "EnergyMaterialNoMass", "identifier": "A", "display_name": "2", "r_value": 3},
    {"type": "OpaqueConstructionAbridged", "identifier": "W", "materials": ["1", "2", "A"]}])");
  EXPECT_THAT(sources.reports[0].problems, IsEmpty());
  EXPECT_THAT(layers_of(sources, "W"), ElementsAre("A: 1", "A (2): 2", "2: 3"));
}

TEST(HoneybeeSource, has_constructions_with_materials_of_their_own) {
  const auto sources = read(R"([
    {"type": "OpaqueConstruction", "identifier": "V", "materials": [
      {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "M", "r_value": 1}]},
    {"type": "OpaqueConstruction", "identifier": "W", "materials": [
      {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "M", "r_value": 5},
      {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "M", "r_value": 1},
      {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "M", "r_value": 7}]}])");
  EXPECT_THAT(sources.reports[0].problems, IsEmpty());
  EXPECT_THAT(layers_of(sources, "V"), ElementsAre("M: 1"));
  EXPECT_THAT(layers_of(sources, "W"), ElementsAre("M (m): 5", "M: 1", "M (3): 7"));
}

TEST(HoneybeeSource, tells_of_identifiers_that_are_there_twice) {
  const auto sources = read(R"([
    {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "A", "r_value": 1},
    {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "B", "r_value": 2},
    {"type": "EnergyMaterialNoMass", "identifier": "m", "display_name": "A", "r_value": 1},
    {"type": "OpaqueConstructionAbridged", "identifier": "W", "materials": ["m"]}])");
  ASSERT_EQ(sources.reports[0].problems.size(), 1U);
  EXPECT_EQ(sources.reports[0].problems[0].text(),
            "'a.json', line 3: EnergyMaterialNoMass 'B': another material has the identifier 'm'");
  EXPECT_THAT(layers_of(sources, "W"), ElementsAre("A: 1"));
}

TEST(HoneybeeSource, tells_what_it_cannot_take) {
  const auto sources = read(R"([
    {"type": "EnergyMaterial", "identifier": "A", "thickness": -1},
    {"type": "EnergyMaterialNoMass", "identifier": "B", "r_value": 1, "user_data": {"a": 1}},
    {"type": "OpaqueConstructionAbridged", "identifier": "W", "materials": ["C"]}])");
  const auto& report = sources.reports[0];
  ASSERT_EQ(report.problems.size(), 2U);
  EXPECT_EQ(report.problems[0].text(),
            "'a.json', line 2: EnergyMaterial 'A': the thickness -1 is negative");
  EXPECT_THAT(report.problems[1].text(), HasSubstr("there is no material 'C'"));
  ASSERT_EQ(report.not_kept.size(), 1U);
  EXPECT_EQ(report.not_kept[0].field, "user_data");
}

TEST(HoneybeeSource, tells_of_properties_that_say_more_than_their_type) {
  const auto sources = read(R"([
    {"type": "EnergyMaterialNoMass", "identifier": "A", "r_value": 1, "properties": {"x": 5}},
    {"type": "EnergyMaterialNoMass", "identifier": "B", "r_value": 1, "properties":
      {"type": "EnergyMaterialNoMassProperties", "other": {"type": "Other", "list": []}}},
    {"type": "OpaqueConstructionAbridged", "identifier": "W", "materials": ["A"],
     "properties": {"type": "Properties", "other": {"type": "Other", "mark": "x"}}}])");
  std::vector<std::string> told;
  for (const auto& value : sources.reports[0].not_kept) {
    told.push_back(value.object + "." + value.field);
  }
  EXPECT_THAT(told, UnorderedElementsAre("A.properties", "W.properties"));
}

/// Reads an object, and a good one behind it, which comes in whatever the first one is.
kit::SourceReport report_beside_a_good_one(const std::string& object) {
  const auto sources = read(R"([{"type": "EnergyMaterialNoMass", "identifier": "B", "r_value": 1},)"
                            "\n" +
                            object + R"(,
    {"type": "EnergyMaterialNoMass", "identifier": "Good", "r_value": 1}])");
  EXPECT_NE(sources.library->get<Material>(text("Good")), nullptr) << object;
  return sources.reports[0];
}

TEST(HoneybeeSource, that_is_broken_in_one_object_is_read_without_it) {
  const std::string construction =
      R"({"type": "OpaqueConstruction", "identifier": "W", "materials": )";
  const std::pair<std::string, std::string> broken[] = {
      {"5", "an object with 'type' and 'identifier' is expected"},
      {R"({"type": "EnergyMaterial"})", "an object with 'type' and 'identifier' is expected"},
      {construction + "[{}]}", "OpaqueConstruction 'W': a layer has no type or no identifier"},
      {construction + "[[]]}",
       "OpaqueConstruction 'W': 'materials' is neither a number nor a text"},
      {R"({"type": "EnergyMaterial", "identifier": "A", "thickness": []})",
       "EnergyMaterial 'A': 'thickness' is neither a number nor a text"},
      {R"({"type": "EnergyWindowMaterialGasMixture", "identifier": "A",
          "gas_types": ["a", "b", "c", "d", "e"]})",
       "EnergyWindowMaterialGasMixture 'A': a mixture has at most 4 gases"}};
  for (const auto& [object, sentence] : broken) {
    const auto report = report_beside_a_good_one(object);
    ASSERT_EQ(report.problems.size(), 1U) << object;
    EXPECT_EQ(report.problems[0].text(), "'a.json', line 2: " + sentence);
    EXPECT_FALSE(report.problems[0].doubt);
  }
}

TEST(WrittenHoneybee, has_marks_as_identifiers_where_these_are_of_one_object) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  for (const auto& [name, mark] : {std::pair("A", "1"), std::pair("B", "2"), std::pair("C", "2"),
                                   std::pair("D", "A"), std::pair("E", "E")}) {
    const auto material = with_custom(name, "Thermal resistance [m2 K/W]", "1");
    material->mark(text(mark));
    library->save(material);
  }
  const auto written = written_as("honeybee", *library);
  EXPECT_THAT(written.text, HasSubstr(R"("identifier":"1","display_name":"A")"));
  for (const char* name : {"B", "C", "D"}) {
    EXPECT_THAT(written.text,
                HasSubstr("\"identifier\":\"" + std::string(name) + "\",\"r_value\""));
  }
  EXPECT_THAT(written.text, HasSubstr(R"("identifier":"E","display_name":"E")"));
  std::size_t lost = 0;
  for (const auto& field : written.report.not_written)
    lost += field.field == "mark" ? field.count : 0;
  EXPECT_EQ(lost, 3U);
}

const char* const standards = R"({"standard": {"materials": [
  {"name": "Brick", "material_type": "StandardOpaqueMaterial", "roughness": "Rough",
   "thickness": 4.0, "conductivity": 5.0, "resistance": 0.8, "density": 120.0,
   "specific_heat": 0.2, "thermal_absorptance": 0.9, "code_category": null, "notes": "old"},
  {"name": "Wool", "material_type": "MasslessOpaqueMaterial", "thickness": null,
   "resistance": 10.0},
  {"name": "Window", "material_type": "SimpleGlazing", "u_factor": 0.5,
   "solar_heat_gain_coefficient": 0.4},
  {"name": "Odd", "material_type": "Jelly", "thickness": 1, "colour": "red"}],
 "constructions": [
  {"name": "Outer", "intended_surface_type": "ExteriorWall", "materials": ["Brick", "WOOL"]},
  {"name": "Lid", "intended_surface_type": "AtticRoof", "materials": ["Wool"]},
  {"name": "Ground", "intended_surface_type": "GroundContactFloor", "materials": ["Wool"]},
  {"name": "Pane", "intended_surface_type": "ExteriorWindow", "materials": ["Window"]}],
 "schedules": [{"name": "x"}]}})";

double number_of(const Material& material, const char* property) {
  return kit::number_in(material.custom_value(text(property)).get().utf8()).value();
}

TEST(OpenstudioStandards, are_converted_by_exact_factors) {
  const auto library = read(standards).library;
  const auto brick = library->get<Material>(text("Brick"));
  EXPECT_EQ(brick->type()->name(), text("Opaque"));
  EXPECT_DOUBLE_EQ(*brick->thicknesses().begin(), 101.6);
  EXPECT_NEAR(number_of(*brick, "Thermal conductivity [W/(m K)]"), 5 * 0.1442279, 1e-7);
  EXPECT_NEAR(number_of(*brick, "Density [kg/m3]"), 120 * 16.01846, 1e-3);
  EXPECT_DOUBLE_EQ(number_of(*brick, "Specific heat [J/(kg K)]"), 0.2 * 4186.8);
  EXPECT_DOUBLE_EQ(number_of(*brick, "Thermal absorptance [-]"), 0.9);
  EXPECT_EQ(brick->custom_value("Notes").get(), text("old"));
  EXPECT_TRUE(brick->custom_value("Thermal resistance [m2 K/W]").null());
  EXPECT_NEAR(number_of(*library->get<Material>(text("Wool")), "Thermal resistance [m2 K/W]"),
              1.761102, 1e-6);
  EXPECT_NEAR(number_of(*library->get<Material>(text("Window")), "U-factor [W/(m2 K)]"),
              0.5 * 5.678263, 1e-6);
}

TEST(OpenstudioStandards, give_the_types_of_compositions) {
  const auto library = read(standards).library;
  const auto type_of = [&](const char* name) {
    return library->get<Composition>(text(name))->type();
  };
  EXPECT_EQ(type_of("Outer"), Composition::Type::Wall);
  EXPECT_EQ(type_of("Lid"), Composition::Type::Roof);
  EXPECT_EQ(type_of("Ground"), Composition::Type::Floor);
  EXPECT_EQ(type_of("Pane"), Composition::Type::Other);
  EXPECT_EQ(library->get<Composition>(text("Outer"))->layers().size(), 2U);
}

TEST(OpenstudioStandards, tell_of_units_and_of_types_that_are_not_known) {
  const auto report = read(standards).reports[0];
  EXPECT_EQ(report.format, "OpenStudio standards, with units of inch and pound converted");
  ASSERT_EQ(report.problems.size(), 1U);
  EXPECT_EQ(report.problems[0].text(),
            "'a.json', line 9: material 'Odd': its type 'Jelly' is not known; it is taken for a "
            "generic one");
  EXPECT_THAT(report.skipped, UnorderedElementsAre(Pair("schedules", 1U)));
  ASSERT_EQ(report.not_kept.size(), 1U);
  EXPECT_EQ(report.not_kept[0].field, "colour");
}

TEST(OpenstudioStandards, tell_of_values_that_others_contradict_or_that_have_no_place) {
  const auto report = read(R"({"materials": [
    {"name": "A", "material_type": "StandardOpaqueMaterial", "thickness": 0.5,
     "conductivity": 1.11, "resistance": 50, "density": 49.94, "specific_heat": 0.26},
    {"name": "B", "material_type": "MasslessOpaqueMaterial", "resistance": 10, "thickness": 3,
     "conductivity": 7},
    {"name": "C", "material_type": "StandardOpaqueMaterial", "thickness": 0.5,
     "conductivity": 1.11, "resistance": 0.45, "density": 49.94, "specific_heat": 0.26},
    {"name": "D", "material_type": "StandardGlazing", "thickness": 0.5, "resistance": 2}]})")
                          .reports[0];
  std::vector<std::string> told;
  for (const auto& value : report.not_kept) {
    told.push_back(value.object + "." + value.field + "=" + value.value);
  }
  EXPECT_THAT(told, UnorderedElementsAre("A.resistance=50", "B.thickness=3", "B.conductivity=7",
                                         "D.resistance=2"));
}

TEST(OpenstudioStandards, that_are_broken_in_one_object_are_read_without_it) {
  const auto sources = read(R"({"materials": [
    {"name": "A", "material_type": "AirGap", "resistance": [1]},
    {"name": "B", "material_type": "AirGap", "resistance": 1},
    5], "constructions": [{"name": "W", "materials": [{}]}]})");
  EXPECT_EQ(sources.library->count<Material>(), 1U);
  const auto& problems = sources.reports[0].problems;
  ASSERT_EQ(problems.size(), 3U);
  EXPECT_EQ(problems[0].text(), "'a.json', line 4: an object is expected");
  EXPECT_EQ(problems[1].text(),
            "'a.json', line 2: AirGap 'A': 'resistance' is neither a number nor a text");
  EXPECT_EQ(problems[2].text(),
            "'a.json', line 4: Construction 'W': 'materials' is neither a number nor a text");
}

TEST(OpenstudioStandards, can_only_be_read) {
  EXPECT_FALSE(kit::find_format("OpenStudio standards")->writable);
}

}  // namespace
}  // namespace veldra_tests
