// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <gmock/gmock.h>

#include <stdexcept>

namespace veldra_tests {
namespace {

using kit::OnClash;
using kit::Repetition;
using kit::Source;

constexpr const char* brick = "Material, Brick, Rough, 0.24, 0.8, 1800, 900;\n";
constexpr const char* thin_brick = "Material, BRICK, Rough, 0.12, 0.8, 1800, 900;\n";
constexpr const char* wall = "Construction, Wall, brick, Brick;\n";

kit::Sources read(const std::vector<std::string>& contents, const kit::SourceRules& rules = {}) {
  std::vector<Source> sources;
  for (const auto& content : contents) {
    sources.emplace_back("folder/" + std::string(1, static_cast<char>('a' + sources.size())),
                         content);
  }
  return kit::read_together(sources, rules);
}

kit::SourceRules when_they_clash(OnClash decision) {
  kit::SourceRules rules;
  rules.on_clash = decision;
  return rules;
}

std::string own(const std::string& members) { return R"({"format": "veldra", )" + members + "}"; }

std::vector<std::string> tags_of(const kit::Sources& sources, const std::string& name) {
  std::vector<std::string> names;
  const auto material = sources.library->get<Material>(text(name));
  for (const auto& tag : material->tags()) {
    names.push_back(tag->name().utf8());
  }
  return names;
}

const kit::SourceObject& origin_of(const kit::Sources& sources, const std::string& name) {
  const auto material = sources.library->get<Material>(text(name));
  return sources.origins.at({ObjectType::Material, material->id()});
}

std::vector<std::string> problems_in(const kit::SourceReport& report) {
  std::vector<std::string> sentences;
  for (const auto& problem : report.problems) sentences.push_back(problem.text());
  return sentences;
}

TEST(SourcesTogether, are_the_same_where_they_are_given_away) {
  const auto sources = [] {
    std::vector<Source> result;
    result.emplace_back("a.idf", std::string(brick) + thin_brick + wall);
    result.emplace_back("b.json", own(R"("materials": [{"name": "Cork"}], "compositions":
        [{"name": "Floor", "layers": [{"material": "Cork", "thickness": 20}]}])"));
    return result;
  };
  const auto written = [](const kit::Sources& read) {
    std::string text;
    kit::write_json(*read.library, [&](std::string_view part) { text += part; });
    return text;
  };
  const auto kept = sources();
  const auto expected = kit::read_together(kept, {});
  auto given = sources();
  const auto last = kit::read_together(std::move(given), {});
  EXPECT_TRUE(given.empty());
  EXPECT_EQ(written(last), written(expected));
  EXPECT_EQ(last.origins.size(), 4U);
  EXPECT_EQ(last.reports[0].problems.size(), 1U);

  // What somebody else still has stays.
  auto copies = kept;
  kit::read_together(std::move(copies), {});
  EXPECT_EQ(written(kit::read_together(kept, {})), written(expected));
}

TEST(SourcesTogether, are_a_library_in_the_unit_that_was_asked_for) {
  kit::SourceRules rules;
  rules.unit = Unit::Inches;
  const auto sources = read({"Material, Brick, Rough, 0.254, 1, 1, 1;"}, rules);
  EXPECT_EQ(sources.library->unit(), Unit::Inches);
  EXPECT_THAT(sources.library->get<Material>(text("Brick"))->thicknesses(), ElementsAre(10));
}

TEST(SourcesTogether, have_nothing_that_the_sources_do_not_have) {
  const auto sources = read({own(R"("tags": [])")});
  EXPECT_EQ(sources.library->count<MaterialType>(), 0U);
  EXPECT_EQ(sources.library->count<Material>(), 0U);
}

TEST(SourcesTogether, may_refer_to_each_other) {
  const auto sources = read({wall, brick});
  const auto composition = sources.library->get<Composition>(text("Wall"));
  ASSERT_EQ(composition->layers().size(), 2U);
  EXPECT_EQ(composition->layers()[1].material()->name(), text("Brick"));
  EXPECT_EQ(sources.reports[0].layers, 2U);
  EXPECT_EQ(sources.reports[0].references_not_found, 0U);
}

TEST(SourcesTogether, have_no_build_up_that_lacks_a_layer_between_others) {
  for (
      const std::string gap :
      {"Construction, Wall, Brick, , Brick;",
       R"({"Construction": {"Wall": {"outside_layer": "Brick", "layer_3": "Brick"}}})",
       R"({"Construction": {"Wall": {"layer_3": "Brick", "layer_2": "", "outside_layer": "Brick"}}})"}) {
    SCOPED_TRACE(gap);
    const auto sources = read({brick, gap});
    EXPECT_FALSE(sources.library->get<Composition>(text("Wall")));
    EXPECT_THAT(problems_in(sources.reports[1]),
                ElementsAre(EndsWith("Construction 'Wall': layer 2 is missing")));
  }
  const auto sources = read({brick, "Construction, Wall, Brick, Brick, , ;"});
  EXPECT_EQ(sources.library->get<Composition>(text("Wall"))->layers().size(), 2U);
}

TEST(SourcesTogether, know_where_each_object_comes_from) {
  const auto sources = read(
      {"Version, 9.4;\n" + std::string(brick), own("\n\"materials\": [\n{\"name\": \"Wool\"}]")});
  const auto& idf = origin_of(sources, "Brick");
  EXPECT_EQ(idf.source, 0U);
  EXPECT_EQ(idf.line, 2U);
  EXPECT_EQ(idf.name, "Brick");
  EXPECT_TRUE(idf.ignores_case);
  const auto& json = origin_of(sources, "Wool");
  EXPECT_EQ(json.source, 1U);
  EXPECT_EQ(json.line, 3U);
  EXPECT_FALSE(json.ignores_case);
  EXPECT_EQ(sources.origins.size(), 2U);
}

TEST(SourcesTogether, tell_each_step_of_the_writing) {
  kit::SourceRules rules;
  int steps = 0;
  rules.progress = [&] { ++steps; };
  read({brick, wall}, rules);
  EXPECT_EQ(steps, 2);
}

TEST(SourcesTogether, are_not_read_to_the_end_when_a_step_throws) {
  kit::SourceRules rules;
  rules.progress = [] { throw std::runtime_error("enough"); };
  EXPECT_THROW(read({brick}, rules), std::runtime_error);
}

TEST(SourcesTogether, give_simulation_models_the_name_of_their_file_as_a_tag) {
  const auto sources = read({brick, own(R"("materials": [{"name": "Wool", "tags": ["w"]}])")});
  EXPECT_THAT(tags_of(sources, "Brick"), ElementsAre("a"));
  EXPECT_THAT(sources.reports[0].tags, ElementsAre(text("a")));
  EXPECT_THAT(tags_of(sources, "Wool"), ElementsAre("w"));
  EXPECT_THAT(sources.reports[1].tags, IsEmpty());
}

TEST(SourcesTogether, give_every_object_the_tags_that_were_asked_for) {
  kit::SourceRules rules;
  rules.tags = {"new", "w"};
  const auto sources =
      read({brick, own(R"("materials": [{"name": "Wool", "tags": ["w"]}])")}, rules);
  EXPECT_THAT(tags_of(sources, "Brick"), ElementsAre("new", "w"));
  EXPECT_THAT(tags_of(sources, "Wool"), testing::IsSupersetOf({"new", "w"}));
  EXPECT_THAT(sources.reports[1].tags, ElementsAre(text("new"), text("w")));
}

TEST(SourcesTogether, refuse_a_tag_that_is_not_utf8) {
  kit::SourceRules rules;
  rules.tags = {"\xFF"};
  EXPECT_EQ(error_of([&] { read({brick}, rules); }), "a text is not UTF-8");
}

TEST(RepeatedObject, that_is_equal_stands_for_both_whatever_the_case_of_its_name) {
  const auto sources = read({brick, "\nMaterial, BRICK, Rough, 0.24, 0.8, 1800, 900;"});
  EXPECT_EQ(sources.library->count<Material>(), 1U);
  ASSERT_EQ(sources.reports[1].repeated.size(), 1U);
  const auto& repeated = sources.reports[1].repeated[0];
  EXPECT_EQ(repeated.what, Repetition::Equal);
  EXPECT_EQ(repeated.name, "BRICK");
  EXPECT_EQ(repeated.line, 2U);
  EXPECT_EQ(sources.origins.at(repeated.object).name, "Brick");
}

TEST(RepeatedObject, that_differs_is_an_error_between_sources_unless_somebody_has_decided) {
  try {
    read({brick, thin_brick});
    FAIL() << "they went together";
  } catch (const kit::SourceError& error) {
    EXPECT_EQ(error.problem().object, "BRICK");
    EXPECT_STREQ(error.what(),
                 "'folder/b', line 1: another material 'BRICK' stands in 'folder/a' already, which "
                 "differs (thicknesses: 240 there, 120 here)");
  }
}

TEST(RepeatedObject, that_differs_is_told_with_all_others_that_do) {
  const auto first = own(R"("materials": [{"name": "Brick", "cost": "1"}, {"name": "Wool",
      "code": "W"}], "compositions": [{"name": "Wall", "layers": [{"material": "Brick"}]}])");
  const auto second = own(R"("materials": [{"name": "Brick", "cost": "2", "mark": "m"},
      {"name": "Felt", "code": "W"}],
      "compositions": [{"name": "Wall", "comments": "c", "layers": [{"material": "Brick"}]}])");
  try {
    read({first, second});
    FAIL() << "they went together";
  } catch (const kit::SourceClashes& clashes) {
    ASSERT_EQ(clashes.problems().size(), 3U);
    EXPECT_THAT(clashes.problems()[0].sentence,
                EndsWith("(cost: 1 there, 2 here; mark: nothing there, m here)"));
    EXPECT_THAT(clashes.problems()[1].sentence, HasSubstr("material 'Felt' has the code 'W'"));
    EXPECT_EQ(clashes.problems()[2].object, "Wall");
    EXPECT_THAT(clashes.problems()[2].sentence, EndsWith("(comments: nothing there, c here)"));
    EXPECT_EQ(clashes.problem().object, "Brick");
  }
}

TEST(RepeatedObject, that_is_equal_gets_the_tags_of_all_sources) {
  const auto tagged = [](const std::string& tag) {
    return own(R"("materials": [{"name": "Wool", "tags": [")" + tag + R"("]}])");
  };
  const auto sources = read({tagged("one"), tagged("two"), tagged("one")});
  EXPECT_THAT(tags_of(sources, "Wool"), ElementsAre("one", "two"));
  EXPECT_EQ(sources.reports[1].repeated.at(0).what, Repetition::Equal);
  const auto files = read({brick, brick});
  EXPECT_THAT(tags_of(files, "Brick"), ElementsAre("a", "b"));
}

TEST(RepeatedObject, that_is_overwritten_keeps_its_tags_and_gets_the_others) {
  const auto sources = read({brick, thin_brick}, when_they_clash(OnClash::Overwrite));
  const auto id = sources.reports[1].repeated.at(0).object.id;
  const auto name = sources.library->get<Material>(id)->name().utf8();
  EXPECT_THAT(tags_of(sources, name), UnorderedElementsAre("a", "b"));
}

TEST(RepeatedObject, that_differs_is_left_out_where_the_first_is_used) {
  const auto sources = read({brick, thin_brick}, when_they_clash(OnClash::Use));
  EXPECT_THAT(sources.library->get<Material>(text("Brick"))->thicknesses(), ElementsAre(240));
  EXPECT_EQ(sources.reports[1].repeated.at(0).what, Repetition::Used);
}

TEST(RepeatedObject, that_differs_gives_its_values_where_the_first_is_overwritten) {
  const auto sources = read({brick, thin_brick}, when_they_clash(OnClash::Overwrite));
  EXPECT_EQ(sources.library->count<Material>(), 1U);
  const auto& repeated = sources.reports[1].repeated.at(0);
  EXPECT_EQ(repeated.what, Repetition::Overwrote);
  EXPECT_THAT(sources.library->get<Material>(repeated.object.id)->thicknesses(), ElementsAre(120));
}

TEST(RepeatedObject, of_a_composition_is_found_among_compositions) {
  const std::string two_materials = "Material:AirGap, Gap, 0.1;" + std::string(brick);
  const auto sources = read({two_materials + wall, wall});
  const auto& repeated = sources.reports[1].repeated.at(0);
  EXPECT_EQ(repeated.object.type, ObjectType::Composition);
  EXPECT_EQ(sources.library->get<Composition>(repeated.object.id)->name(), text("Wall"));
}

TEST(RenamedObject, has_a_number_and_its_own_source_means_it_by_its_name) {
  const auto sources =
      read({brick, thin_brick + std::string(wall)}, when_they_clash(OnClash::Rename));
  const auto& origin = origin_of(sources, "BRICK (2)");
  EXPECT_TRUE(origin.renamed);
  EXPECT_EQ(origin.name, "BRICK");
  EXPECT_FALSE(origin_of(sources, "Brick").renamed);
  const auto composition = sources.library->get<Composition>(text("Wall"));
  EXPECT_EQ(composition->layers()[0].material()->name(), text("BRICK (2)"));
}

TEST(SourceReport, counts_what_was_read_and_what_was_passed_over) {
  const auto sources = read({"Version, 9.4;" + std::string(brick) + wall});
  const auto& report = sources.reports[0];
  EXPECT_EQ(report.file, "folder/a");
  EXPECT_EQ(report.format, "IDF");
  EXPECT_THAT(report.read, ElementsAre(std::pair("Construction", 1U), std::pair("Material", 1U)));
  EXPECT_THAT(report.skipped, ElementsAre(std::pair("Version", 1U)));
  EXPECT_THAT(problems_in(report), IsEmpty());
}

TEST(SourceReport, has_the_problems_of_single_objects) {
  const auto sources =
      read({"Material, Brick, Rough, thick, 1, 1, 1;\n"
            "Construction, Wall, Brick;\n"});
  EXPECT_THAT(problems_in(sources.reports[0]),
              ElementsAre("'folder/a', line 1: Material 'Brick': 'thick' is not a number for "
                          "'thickness'",
                          "'folder/a', line 2: Construction 'Wall': there is no material 'Brick'"));
  EXPECT_EQ(sources.reports[0].problems[0].object, "Brick");
  EXPECT_EQ(sources.library->count<Material>(), 0U);
}

TEST(SourceReport, has_what_a_format_demands_and_an_object_lacks) {
  const auto expect_told = [](const std::string& content, const std::string& sentence) {
    const auto sources = read({content});
    ASSERT_THAT(problems_in(sources.reports[0]), ElementsAre("'folder/a', line 1: " + sentence));
    EXPECT_TRUE(sources.reports[0].problems[0].doubt);
    EXPECT_EQ(sources.library->count<Material>(), 1U);
  };
  expect_told("Material, A, Rough, 0.1, , 1000, 900;", "Material 'A': 'conductivity' is missing");
  expect_told("Material, A, Rough, 0.1, 1;",
              "Material 'A': 'density', 'specific_heat' are missing");
  expect_told("Material:NoMass, A, Rough;", "Material:NoMass 'A': 'thermal_resistance' is missing");
  expect_told(R"({"Material:AirGap": {"A": {}}})",
              "Material:AirGap 'A': 'thermal_resistance' is missing");
  expect_told(R"({"type": "EnergyMaterialNoMass", "identifier": "A"})",
              "EnergyMaterialNoMass 'A': 'r_value' is missing");
  expect_told(R"({"type": "EnergyWindowFrame", "identifier": "A", "width": 0.1})",
              "EnergyWindowFrame 'A': 'conductance' is missing");
  expect_told(R"({"materials": [{"name": "A", "material_type": "SimpleGlazing"}]})",
              "SimpleGlazing 'A': 'u_factor' is missing");
}

TEST(SourceReport, has_values_of_objects_that_are_neither_numbers_nor_texts) {
  const auto sources = read({R"({"Material:AirGap": {"A": {"thermal_resistance": [1]},
    "B": {"thermal_resistance": 1}}, "Construction": {"W": {"outside_layer": {}}}})"});
  EXPECT_THAT(
      problems_in(sources.reports[0]),
      ElementsAre("'folder/a', line 1: Material:AirGap 'A': 'thermal_resistance' is neither a "
                  "number nor a text",
                  "'folder/a', line 2: Construction 'W': 'outside_layer' is neither a number nor a "
                  "text"));
  EXPECT_EQ(sources.library->count<Material>(), 1U);
}

TEST(SourceReport, says_that_a_source_has_nothing) {
  EXPECT_THAT(problems_in(read({"Version, 9.4;"}).reports[0]),
              ElementsAre("'folder/a': this IDF source has no materials and no constructions"));
}

TEST(SourceReport, has_the_values_that_were_not_kept) {
  const auto sources = read({"\nWindowMaterial:Blind, Blind, Horizontal;"});
  ASSERT_EQ(sources.reports[0].not_kept.size(), 1U);
  const auto& value = sources.reports[0].not_kept[0];
  EXPECT_EQ(value.object_class, "WindowMaterial:Blind");
  EXPECT_EQ(value.object, "Blind");
  EXPECT_EQ(value.line, 2U);
  EXPECT_EQ(value.field, "slat_orientation");
  EXPECT_EQ(value.value, "Horizontal");
}

TEST(SourceReport, counts_what_was_not_kept_by_class_and_field) {
  const auto sources = read({"WindowMaterial:Blind, A, , 1, 2; WindowMaterial:Blind, B, , 3;"});
  const auto fields = kit::fields_not_kept(sources.reports[0]);
  ASSERT_EQ(fields.size(), 2U);
  EXPECT_EQ(fields[0].object_class, "WindowMaterial:Blind");
  EXPECT_EQ(fields[0].field, "slat_separation");
  EXPECT_EQ(fields[0].count, 1U);
  EXPECT_EQ(fields[1].field, "slat_width");
  EXPECT_EQ(fields[1].count, 2U);
}

TEST(SourceReport, names_a_field_alike_in_both_formats_of_simulations) {
  for (const auto* content : {"WindowMaterial:Gas, G, Custom, 0.01, 2;",
                              R"({"WindowMaterial:Gas": {"G": {"gas_type": "Custom",
                                 "thickness": 0.01, "conductivity_coefficient_a": 2}}})"}) {
    const auto fields = kit::fields_not_kept(read({content}).reports[0]);
    ASSERT_EQ(fields.size(), 1U) << content;
    EXPECT_EQ(fields[0].field, "conductivity_coefficient_a");
  }
}

TEST(SourceReport, has_words_that_the_format_does_not_know) {
  const auto expect_told = [](const std::string& content, const std::string& told) {
    const auto sources = read({content});
    std::string fields;
    for (const auto& field : sources.reports[0].not_kept) {
      fields += field.object_class + "." + field.field + "=" + field.value + ";";
    }
    EXPECT_EQ(fields, told) << content;
    const auto material = sources.library->get<Material>(text("A"));
    ASSERT_TRUE(material) << content;
    for (const auto& [property, value] : material->custom_values()) {
      EXPECT_THAT(value.utf8(), testing::Not(HasSubstr("Odd"))) << property->name().utf8();
    }
  };
  expect_told("Material, A, Odd, 0.1, 1, 2, 3;", "Material.roughness=Odd;");
  expect_told("Material, A, mediumROUGH, 0.1, 1, 2, 3;", "");
  expect_told("WindowMaterial:Gas, A, Odd, 0.1;", "WindowMaterial:Gas.gas_type=Odd;");
  expect_told("WindowMaterial:GasMixture, A, 0.1, 2, Air, 0.5, Odd, 0.5;",
              "WindowMaterial:GasMixture.gas_2_type=Odd;");
  expect_told("WindowMaterial:Glazing, A, Odd, , 0.1;",
              "WindowMaterial:Glazing.optical_data_type=Odd;");
  expect_told(R"({"WindowMaterial:Gap:EquivalentLayer": {"A": {"gas_type": "Air",
                  "thickness": 0.1, "gap_vent_type": "Odd"}}})",
              "WindowMaterial:Gap:EquivalentLayer.gap_vent_type=Odd;");
  expect_told(R"({"Material": {"A": {"thickness": 0.1, "conductivity": 1, "density": 2,
                  "specific_heat": 3, "roughness": "Odd"}}})",
              "Material.roughness=Odd;");
  expect_told(R"({"type": "EnergyWindowMaterialGas", "identifier": "A", "gas_type": "Odd"})",
              "EnergyWindowMaterialGas.gas_type=Odd;");
  expect_told(R"({"type": "EnergyWindowMaterialGasMixture", "identifier": "A",
                  "gas_types": ["Argon", "Odd"], "gas_fractions": [0.5, 0.5]})",
              "EnergyWindowMaterialGasMixture.gas_2_type=Odd;");
  expect_told(R"({"materials": [{"name": "A", "material_type": "StandardGlazing",
                  "thickness": 0.1, "solar_diffusing": "Odd"}]})",
              "StandardGlazing.solar_diffusing=Odd;");
  expect_told(R"({"materials": [{"name": "A", "material_type": "Gas", "gas_type": "Odd",
                  "thickness": 0.1}]})",
              "Gas.gas_type=Odd;");
  expect_told(R"(<gbXML lengthUnit="Meters"><Material id="a"><Name>A</Name><Roughness value="Odd"/>
                  <R-value unit="SquareMeterKPerW">1</R-value></Material></gbXML>)",
              "Material.Roughness@value=Odd;");
}

TEST(SourceReport, has_values_of_any_kind_that_were_not_kept) {
  const auto sources = read({R"({"Material": {"Brick": {"thickness": 0.1,
    "list": [1, "a", null, true], "object": {"b": 0.5}, "text": "plain", "yes": true}}})"});
  std::vector<std::string> values;
  for (const auto& value : sources.reports[0].not_kept) values.push_back(value.value);
  EXPECT_THAT(values, ElementsAre(R"([1.0,"a",null,true])", R"({"b":0.5})", "plain", "true"));
}

TEST(UnknownFields, become_custom_values_where_they_are_wanted) {
  kit::SourceRules rules;
  rules.keep_unknown = true;
  const auto sources = read({"WindowMaterial:Blind, Blind, , 0.025;"
                             "Construction:InternalSource, Warm, 1, , , , Blind;",
                             own(R"("materials": [{"name": "Oak", "thermal_asset": {"a": 1}}])")},
                            rules);
  for (const auto& report : sources.reports) EXPECT_THAT(report.not_kept, IsEmpty());
  const auto value = [](const auto& object, const char* property) {
    return object->custom_value(text(property)).get().utf8();
  };
  EXPECT_EQ(value(sources.library->get<Material>(text("Blind")), "WindowMaterial:Blind.slat_width"),
            "0.025");
  EXPECT_EQ(value(sources.library->get<Material>(text("Oak")), "material.thermal_asset.a"), "1");
  EXPECT_EQ(value(sources.library->get<Composition>(text("Warm")),
                  "Construction:InternalSource.source_present_after_layer_number"),
            "1");
}

TEST(UnknownFields, that_no_library_can_have_are_told_and_the_others_kept) {
  kit::SourceRules rules;
  rules.keep_unknown = true;
  const auto sources = read({R"({"Material": {"Brick": {"thickness": 0.1,
    "a\u0000b": 1, "value": "a\u0000b", "other": 2}}})"},
                            rules);
  std::vector<std::string> fields;
  for (const auto& value : sources.reports[0].not_kept) fields.push_back(value.field);
  EXPECT_THAT(fields, ElementsAre(std::string("a\0b", 3), "value"));
  const auto brick = sources.library->get<Material>(text("Brick"));
  EXPECT_EQ(brick->custom_value(text("Material.other")).get(), text("2"));
}

TEST(SourceReport, has_the_assets_that_were_not_kept) {
  const auto sources = read({own(R"("materials": [{"name": "Steel", "thermal_asset": {}}])")});
  ASSERT_EQ(sources.reports[0].not_kept.size(), 1U);
  EXPECT_EQ(sources.reports[0].not_kept[0].field, "thermal_asset");
  EXPECT_EQ(sources.reports[0].not_kept[0].object, "Steel");
}

TEST(Settings, are_those_of_the_first_source_that_has_them) {
  const auto sources = read({brick, own(R"("library": {"region": "CH"})"),
                             own(R"("library": {"locale": "de", "region": "AT"})")});
  EXPECT_EQ(sources.locale, text("de"));
  EXPECT_EQ(sources.region, text("CH"));
  EXPECT_FALSE(sources.types);
}

TEST(Settings, have_the_types_of_all_sources_that_list_theirs) {
  const auto sources = read({own(R"("material_types": ["A"])"), own(R"("material_types": ["B"])")});
  ASSERT_TRUE(sources.types);
  EXPECT_THAT(*sources.types, ElementsAre(text("A"), text("B")));
}

TEST(MaterialCode, of_two_sources_must_not_be_the_same) {
  const auto one = own(R"("materials": [{"name": "A", "code": "1"}])");
  const auto other = own("\n\"materials\": [{\"name\": \"B\", \"code\": \"1\"}]");
  EXPECT_EQ(error_of([&] {
              read({one, other});
            }),
            "'folder/b', line 2: material 'B' has the code '1', which 'A' of the sources has "
            "already");
}

}  // namespace
}  // namespace veldra_tests
