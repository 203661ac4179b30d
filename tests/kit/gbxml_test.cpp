// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/random_values.hpp"
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <random>
#include <sstream>

namespace veldra_tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

std::string document(const std::string& content) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<gbXML xmlns="http://www.gbxml.org/schema" lengthUnit="Meters" version="6.01">
)" + content +
         "</gbXML>\n";
}

const std::string all_objects = document(R"(  <Campus id="c"><Surface id="s"/></Campus>
  <Material id="m1">
    <Name>Ziegel, rot &amp; hart</Name>
    <R-value unit="SquareMeterKPerW">0.142</R-value>
    <Thickness unit="Meters">0.115</Thickness>
    <Conductivity unit="WPerMeterK">0.81</Conductivity>
    <Density unit="KgPerCubicM">1800</Density>
    <SpecificHeat unit="JPerKgK">1000</SpecificHeat>
    <Description>from a quarry</Description>
    <Absorptance unit="Fraction" type="ExtIR">0.9</Absorptance>
    <Absorptance unit="Fraction" type="ExtSolar">0.6</Absorptance>
  </Material>
  <Material id="m2"><Name>Wool</Name><R-value unit="SquareMeterKPerW">3.5</R-value></Material>
  <Material id="m3"><Name>Gap</Name><Thickness unit="Meters">0.04</Thickness>
    <R-value unit="SquareMeterKPerW">0.18</R-value></Material>
  <Layer id="l1"><MaterialId materialIdRef="m1"/></Layer>
  <Layer id="l2"><Name>inner</Name>
    <MaterialId materialIdRef="m2"/><MaterialId materialIdRef="m3"/></Layer>
  <Construction id="c1">
    <Name>Wall</Name>
    <U-value unit="WPerSquareMeterK">0.5</U-value>
    <LayerId layerIdRef="l1"/><LayerId layerIdRef="l2"/><LayerId layerIdRef="l1"/>
  </Construction>
)");

kit::Sources read(const std::string& content, bool keep_unknown = false,
                  Unit unit = Unit::Millimetres) {
  kit::SourceRules rules;
  rules.tags = {"t"};
  rules.keep_unknown = keep_unknown;
  rules.unit = unit;
  return kit::read_together({{"a.xml", content}}, rules);
}

std::string custom(const Material& material, const char* property) {
  const auto value = material.custom_value(text(property));
  return value.null() ? "none" : value.get().utf8();
}

std::vector<std::string> sentences_of(const kit::SourceReport& report) {
  std::vector<std::string> sentences;
  for (const auto& problem : report.problems) sentences.push_back(problem.text());
  return sentences;
}

void expect_identity(const Library& library, bool keep_unknown) {
  const auto written = written_as("gbXML", library);
  for (const auto& field : written.report.not_written) EXPECT_EQ(field.field, "tags");
  EXPECT_THAT(written.report.problems, IsEmpty());
  const auto back = read(written.text, keep_unknown, library.unit());
  EXPECT_EQ(fields_of(*back.library), fields_of(library)) << written.text;
  EXPECT_EQ(written_as("gbXML", *back.library).text, written.text);
}

TEST(Gbxml, has_the_properties_that_the_same_material_has_of_other_formats) {
  const auto sources = read(all_objects);
  EXPECT_EQ(sources.reports[0].format, "gbXML");
  EXPECT_THAT(sentences_of(sources.reports[0]), IsEmpty());
  const auto brick = sources.library->get<Material>(text("Ziegel, rot & hart"));
  ASSERT_NE(brick, nullptr);
  EXPECT_EQ(brick->type()->name(), text("Opaque"));
  EXPECT_EQ(brick->thicknesses(), (std::set<double>{115}));
  EXPECT_EQ(custom(*brick, "Thermal conductivity [W/(m K)]"), "0.81");
  EXPECT_EQ(custom(*brick, "Density [kg/m3]"), "1800");
  EXPECT_EQ(custom(*brick, "Specific heat [J/(kg K)]"), "1000");
  const auto wool = sources.library->get<Material>(text("Wool"));
  EXPECT_EQ(wool->type()->name(), text("No mass"));
  EXPECT_THAT(wool->thicknesses(), IsEmpty());
  EXPECT_EQ(custom(*wool, "Thermal resistance [m2 K/W]"), "3.5");
  const auto gap = sources.library->get<Material>(text("Gap"));
  EXPECT_EQ(gap->type()->name(), text("No mass"));
  EXPECT_EQ(gap->thicknesses(), (std::set<double>{40}));
}

TEST(Gbxml, has_layers_from_the_outside_to_the_inside) {
  const auto sources = read(all_objects);
  const auto wall = sources.library->get<Composition>(text("Wall"));
  std::vector<std::string> names;
  for (const auto& layer : wall->layers()) names.push_back(layer.material()->name().utf8());
  EXPECT_THAT(names, ElementsAre("Ziegel, rot & hart", "Wool", "Gap", "Ziegel, rot & hart"))
      << "a layer of several materials is as many layers";
  EXPECT_EQ(wall->custom_value("U-factor [W/(m2 K)]").get(), text("0.5"));
}

TEST(Gbxml, tells_what_a_library_has_no_place_for) {
  const auto report = read(all_objects).reports[0];
  EXPECT_THAT(report.skipped, UnorderedElementsAre(Pair("Campus", 1U)));
  std::map<std::string, std::string> values;
  for (const auto& each : report.not_kept) {
    values[each.object_class + "." + each.field] = each.value;
  }
  EXPECT_THAT(values, UnorderedElementsAre(Pair("Material.Absorptance", "0.9"),
                                           Pair("Material.Absorptance@unit", "Fraction"),
                                           Pair("Material.Absorptance@type", "ExtIR"),
                                           Pair("Material.Absorptance 2", "0.6"),
                                           Pair("Material.Absorptance 2@unit", "Fraction"),
                                           Pair("Material.Absorptance 2@type", "ExtSolar"),
                                           Pair("Construction.Layer 3/Name", "inner")));
}

TEST(Gbxml, reads_back_to_what_came_in) {
  for (const auto unit : {Unit::Millimetres, Unit::Inches}) {
    expect_identity(*read(all_objects, false, unit).library, false);
  }
}

TEST(Gbxml, has_descriptions) {
  const auto sources = read(document(R"(<Material id="m"><Name>A</Name>
    <Description>of clay</Description><Description>burnt</Description>
    <R-value unit="SquareMeterKPerW">0.2</R-value></Material>
    <Layer id="l"><Description>outside</Description><MaterialId materialIdRef="m"/></Layer>
    <Construction id="c"><Name>W</Name><Description>a wall</Description>
    <LayerId layerIdRef="l"/></Construction>)"));
  EXPECT_EQ(sources.library->get<Material>(text("A"))->description(), text("of clay"));
  EXPECT_EQ(sources.library->get<Composition>(text("W"))->description(), text("a wall"));
  std::vector<std::string> told;
  for (const auto& value : sources.reports[0].not_kept) told.push_back(value.value);
  EXPECT_THAT(told, UnorderedElementsAre("burnt", "outside")) << "layers have no descriptions";
  expect_identity(*sources.library, false);
}

TEST(Gbxml, tells_a_description_that_is_more_than_a_text) {
  const auto sources = read(document(R"(<Material id="m"><Name>A</Name>
    <Description lang="de">Ton</Description>
    <R-value unit="SquareMeterKPerW">0.2</R-value></Material>)"));
  EXPECT_EQ(sources.library->get<Material>(text("A"))->description(), text(""));
  EXPECT_EQ(sources.reports[0].not_kept.size(), 2U);
}

TEST(Gbxml, tells_attributes_that_have_no_place) {
  const auto sources = read(document(R"(<Material id="m" imageId="i" xml:lang="de"><Name>A</Name>
    <R-value unit="SquareMeterKPerW">0.2</R-value></Material>
    <Layer id="l" foo="bar"><MaterialId materialIdRef="m"/></Layer>
    <Construction id="c" DOELibIdRef="d" xmlns:x="urn:x"><Name>W</Name>
    <LayerId layerIdRef="l"/></Construction>)"));
  std::vector<std::string> told;
  for (const auto& value : sources.reports[0].not_kept) {
    told.push_back(value.object + "." + value.field + "=" + value.value);
  }
  EXPECT_THAT(told, UnorderedElementsAre("A.@imageId=i", "W.Layer 1/@foo=bar", "W.@DOELibIdRef=d"));
}

TEST(Gbxml, reads_back_with_what_a_library_has_no_place_for) {
  const auto library = read(all_objects, true).library;
  const auto written = written_as("gbXML", *library);
  EXPECT_THAT(written.text,
              HasSubstr(R"(<Absorptance type="ExtSolar" unit="Fraction">0.6</Absorptance>)"));
  const auto back = read(written.text, true).library;
  const auto brick = back->get<Material>(text("Ziegel, rot & hart"));
  EXPECT_EQ(brick->description(), text("from a quarry"));
  EXPECT_EQ(brick->custom_value("Material.Absorptance 2@type").get(), text("ExtSolar"));
  std::vector<std::string> lost;
  for (const auto& field : written.report.not_written) lost.push_back(field.field);
  EXPECT_THAT(lost, ElementsAre("property:Construction.Layer 3/Name", "tags", "tags"))
      << "names of layers have no place in what is written";
}

TEST(Gbxml, drops_a_resistance_that_thickness_and_conductivity_say_as_well) {
  const auto library = read(all_objects).library;
  const auto brick = library->get<Material>(text("Ziegel, rot & hart"));
  EXPECT_EQ(custom(*brick, "Thermal resistance [m2 K/W]"), "none") << "0.115 / 0.81 is 0.142";
  const auto other = read(document(R"(<Material id="m"><Name>A</Name>
    <R-value unit="SquareMeterKPerW">0.2</R-value><Thickness unit="Meters">0.115</Thickness>
    <Conductivity unit="WPerMeterK">0.81</Conductivity></Material>)"));
  EXPECT_EQ(custom(*other.library->get<Material>(text("A")), "Thermal resistance [m2 K/W]"), "0.2")
      << "it says something else";
}

double number_of(const Material& material, const char* property) {
  return kit::number_in(custom(material, property)).value();
}

TEST(Gbxml, converts_units_by_exact_factors) {
  const auto sources = read(document(R"(
  <Material id="m1"><Name>Brick</Name><Thickness unit="Inches">4</Thickness>
    <Conductivity unit="BtuPerHourFtF">0.5</Conductivity><Density unit="LbsPerCubicFt">120</Density>
    <SpecificHeat unit="BTUPerLbF">0.2</SpecificHeat></Material>
  <Material id="m2"><Name>Wool</Name><R-value unit="HrSquareFtFPerBTU">10</R-value></Material>
  <Material id="m3"><Name>Foot</Name><Thickness unit="feet">2</Thickness>
    <Conductivity unit="WPerCmC">0.02</Conductivity><Density unit="LbsPerCubicIn">0.1</Density>
  </Material>
  <Material id="m4"><Name>Thin</Name><Thickness unit="Millimeters">9.5</Thickness>
    <Conductivity unit="WPerMeterK">1</Conductivity><Density unit="GramsPerCubicCm">1.8</Density>
  </Material>
  <Layer id="l"><MaterialId materialIdRef="m2"/></Layer>
  <Construction id="c"><Name>Lid</Name><U-value unit="BtuPerHourSquareFtF">0.5</U-value>
    <LayerId layerIdRef="l"/></Construction>)"));
  EXPECT_EQ(sources.reports[0].format, "gbXML, with units of inch and pound converted");
  const auto& library = *sources.library;
  const auto brick = library.get<Material>(text("Brick"));
  EXPECT_DOUBLE_EQ(*brick->thicknesses().begin(), 101.6);
  EXPECT_NEAR(number_of(*brick, "Thermal conductivity [W/(m K)]"), 0.5 * 1.7307347, 1e-7);
  EXPECT_NEAR(number_of(*brick, "Density [kg/m3]"), 120 * 16.01846337, 1e-5);
  EXPECT_DOUBLE_EQ(number_of(*brick, "Specific heat [J/(kg K)]"), 0.2 * 4186.8);
  EXPECT_NEAR(number_of(*library.get<Material>(text("Wool")), "Thermal resistance [m2 K/W]"),
              1.76110184, 1e-8);
  const auto foot = library.get<Material>(text("Foot"));
  EXPECT_DOUBLE_EQ(*foot->thicknesses().begin(), 609.6);
  EXPECT_DOUBLE_EQ(number_of(*foot, "Thermal conductivity [W/(m K)]"), 2);
  EXPECT_NEAR(number_of(*foot, "Density [kg/m3]"), 2767.990471, 1e-6);
  const auto thin = library.get<Material>(text("Thin"));
  EXPECT_EQ(*thin->thicknesses().begin(), 9.5);
  EXPECT_EQ(custom(*thin, "Density [kg/m3]"), "1800");
  const auto u_factor = library.get<Composition>(text("Lid"))->custom_value("U-factor [W/(m2 K)]");
  EXPECT_NEAR(kit::number_in(u_factor.get().utf8()).value(), 0.5 * 5.67826334, 1e-8);
}

TEST(Gbxml, takes_the_unit_of_lengths_from_the_root) {
  const auto library = read(R"(<gbXML lengthUnit="Feet"><Material id="m"><Name>A</Name>
    <Thickness>1</Thickness><R-value unit="SquareMeterKPerW">1</R-value></Material></gbXML>)")
                           .library;
  EXPECT_EQ(library->get<Material>(text("A"))->thicknesses(), (std::set<double>{304.8}));
}

TEST(Gbxml, drops_a_transmittance_that_the_layers_say_as_well) {
  const auto with = [](const char* transmittance) {
    const auto sources = read(document(
        R"(<Material id="m"><Name>A</Name><R-value unit="SquareMeterKPerW">1.83</R-value></Material>
        <Layer id="l"><MaterialId materialIdRef="m"/></Layer>
        <Construction id="c"><Name>C</Name><U-value unit="WPerSquareMeterK">)" +
        std::string(transmittance) + R"(</U-value><LayerId layerIdRef="l"/></Construction>)"));
    return !sources.library->get<Composition>(text("C"))
                ->custom_value("U-factor [W/(m2 K)]")
                .null();
  };
  EXPECT_FALSE(with("0.5")) << "1 / (0.04 + 1.83 + 0.13)";
  EXPECT_FALSE(with("0.498"));
  EXPECT_TRUE(with("0.45"));
}

TEST(Gbxml, is_written_with_the_transmittance_that_physics_gives) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto wall = Composition::create(text("Wall"));
  const auto wool = with_custom("Wool", "Thermal resistance [m2 K/W]", "1.83");
  wall->appendLayer({wool, Material::Function::None, 0});
  library->save(wall);
  const auto unknown = Composition::create(text("Unknown"));
  const auto brick = Material::create(text("Brick"));
  brick->thicknesses(toModify) = {100};
  unknown->appendLayer({brick, Material::Function::None, 100});
  library->save(unknown);
  const auto written = written_as("gbXML", *library).text;
  EXPECT_EQ(std::string(kit::find_format("gbxml")->name), "gbXML");
  EXPECT_THAT(written, HasSubstr(R"(  <Construction id="construction-2">
    <Name>Wall</Name>
    <U-value unit="WPerSquareMeterK">0.5</U-value>
    <LayerId layerIdRef="layer-2"/>
  </Construction>
)"));
  EXPECT_THAT(written, HasSubstr(R"(  <Construction id="construction-1">
    <Name>Unknown</Name>
    <LayerId layerIdRef="layer-1"/>
  </Construction>
)"));
}

TEST(Gbxml, tells_what_is_wrong_with_each_object) {
  const auto report = read(R"(<gbXML><Material id="m1"><Name>A</Name>
    <Thickness unit="Meters">-1</Thickness><Conductivity unit="WPerMeterK">1</Conductivity></Material>
<Material id="m2"><Name>B</Name><Thickness unit="Ells">1</Thickness></Material>
<Material id="m3"><Name>C</Name><Thickness unit="Meters">1</Thickness></Material>
<Material id="m4"><Name>D</Name></Material>
<Material id="m5"><Name>E</Name><Thickness unit="Meters">1</Thickness>
  <Conductivity unit="WPerMeterK">-2</Conductivity></Material>
<Material id="m6"><Name>F</Name><R-value>1,5</R-value></Material>
<Material id="m7"><Name>G</Name><R-value unit="SquareMeterKPerW">1</R-value>
  <R-value unit="SquareMeterKPerW">2</R-value></Material>
<Material><R-value unit="SquareMeterKPerW">1</R-value></Material>
<Material id="m6"><Name>H</Name><R-value unit="SquareMeterKPerW">1</R-value></Material>
<Layer id="l1"><MaterialId materialIdRef="m0"/></Layer>
<Layer id="l2"/>
<Layer id="l2"/>
<Construction id="c1"><Name>W</Name><LayerId layerIdRef="l0"/><LayerId layerIdRef="l1"/>
  <LayerId layerIdRef="l2"/></Construction>
<Construction id="c2"><Name>X</Name><U-value unit="WPerSquareMeterK">x</U-value>
  <LayerId layerIdRef="l1"/></Construction>
<Construction id="c3"><Name>Y</Name></Construction></gbXML>)")
                          .reports[0];
  EXPECT_THAT(
      sentences_of(report),
      UnorderedElementsAre(
          "'a.xml', line 1: Material 'A': the thickness -1 is negative",
          "'a.xml', line 3: Material 'B': 'Ells' is no unit of 'Thickness'",
          "'a.xml', line 4: Material 'C': neither the conductivity nor the R-value is there",
          "'a.xml', line 5: Material 'D': neither the thickness nor the R-value is there",
          "'a.xml', line 6: material 'E': its thermal conductivity is not greater than 0: '-2'",
          "'a.xml', line 8: Material 'F': 'R-value' has no unit and is taken for "
          "SquareMeterKPerW",
          "'a.xml', line 8: Material 'F': '1,5' is not a number for 'R-value'",
          "'a.xml', line 9: Material 'G': 'R-value' is there twice",
          "'a.xml', line 11: Material '': the name is missing",
          "'a.xml', line 12: Material 'H': another material has the id 'm6'",
          "'a.xml', line 15: Layer 'l2': another layer has this id",
          "'a.xml', line 16: Construction 'W': there is no layer 'l0'",
          "'a.xml', line 16: Construction 'W': there is no material 'm0', of which the layer "
          "'l1' is",
          "'a.xml', line 16: Construction 'W': the layer 'l2' has no material",
          "'a.xml', line 18: Construction 'X': 'x' is not a number for 'U-value'",
          "'a.xml', line 20: Construction 'Y': it has no layers and is not imported"));
  EXPECT_EQ(report.references_not_found, 3U);
}

TEST(Gbxml, has_the_identifiers_in_names_that_differ_in_nothing_else) {
  const auto sources = read(document(R"(
  <Material id="m1"><Name>A</Name><R-value unit="SquareMeterKPerW">1</R-value></Material>
  <Material id="m2"><Name>A</Name><R-value unit="SquareMeterKPerW">2</R-value></Material>
  <Material id="m3"><Name>A</Name><R-value unit="SquareMeterKPerW">1</R-value></Material>
  <Layer id="l"><MaterialId materialIdRef="m1"/><MaterialId materialIdRef="m2"/>
    <MaterialId materialIdRef="m3"/></Layer>
  <Construction id="c1"><Name>W</Name><LayerId layerIdRef="l"/></Construction>
  <Construction id="c2"><Name>W</Name><LayerId layerIdRef="l"/><LayerId layerIdRef="l"/>
  </Construction>)"));
  EXPECT_THAT(sentences_of(sources.reports[0]), IsEmpty());
  EXPECT_EQ(sources.library->count<Material>(), 2U);
  std::vector<std::string> names;
  const auto wall = sources.library->get<Composition>(text("W"));
  for (const auto& layer : wall->layers()) {
    names.push_back(layer.material()->name().utf8());
  }
  EXPECT_THAT(names, ElementsAre("A", "A (m2)", "A"));
  EXPECT_EQ(sources.library->get<Composition>(text("W (c2)"))->layers().size(), 6U);
}

TEST(Gbxml, has_names_of_their_own_for_objects_that_differ) {
  const auto sources = read(document(R"(
  <Material id="m1"><Name>M (m3)</Name><R-value unit="SquareMeterKPerW">1</R-value></Material>
  <Material id="m2"><Name>M</Name><R-value unit="SquareMeterKPerW">2</R-value></Material>
  <Material id="m3"><Name>M</Name><R-value unit="SquareMeterKPerW">3</R-value></Material>
  <Layer id="l"><MaterialId materialIdRef="m3"/></Layer>
  <Construction id="c1"><Name>W</Name><LayerId layerIdRef="l"/></Construction>
  <Construction id="c2"><Name>W</Name><Description>other</Description><LayerId layerIdRef="l"/>
  </Construction>)"));
  EXPECT_THAT(sentences_of(sources.reports[0]), IsEmpty());
  const auto material = sources.library->get<Composition>(text("W"))->layer(0).material();
  EXPECT_EQ(material->name(), text("M (2)"));
  EXPECT_EQ(material->custom_value(text("Thermal resistance [m2 K/W]")).get(), text("3"));
  EXPECT_EQ(sources.library->get<Composition>(text("W (c2)"))->description(), text("other"));
}

TEST(Gbxml, tells_of_types_that_it_cannot_hold) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto add = [&](const char* name, const char* type, const char* property) {
    const auto material = with_custom(name, property, "1");
    material->thicknesses(toModify) = {10};
    material->type(library->get<MaterialType>(text(type)));
    if (!material->type()) material->type(MaterialType::create(text(type)));
    library->save(material);
  };
  add("Glass", "Glazing", "Thermal conductivity [W/(m K)]");
  add("Resisting", "Opaque", "Thermal resistance [m2 K/W]");
  add("Conducting", "No mass", "Thermal conductivity [W/(m K)]");
  const auto written = written_as("gbXML", *library);
  std::map<std::string, std::size_t> lost;
  for (const auto& field : written.report.not_written) lost[field.field] = field.count;
  EXPECT_EQ(lost["type"], 3U) << "the reader tells a type by the values";
  EXPECT_EQ(lost["property:Thermal conductivity [W/(m K)]"], 1U);
}

/// Writes random objects of the format, as a person might write them.
class RandomDocument : private RandomValues {
 public:
  using RandomValues::RandomValues;

  std::string text() {
    std::string text;
    const unsigned materials = 1 + number(12);
    for (unsigned i = 0; i < materials; ++i) text += material(i);
    const unsigned constructions = number(6);
    for (unsigned i = 0; i < constructions; ++i) {
      text += "<Construction id='c" + std::to_string(i) + "'><Name>c" + std::to_string(i % 4) +
              "</Name>" + maybe("U-value", "WPerSquareMeterK", "BtuPerHourSquareFtF");
      for (unsigned layers = 1 + number(14); layers > 0; --layers) {
        text += "<LayerId layerIdRef='l" + std::to_string(number(materials)) + "'/>";
      }
      text += "</Construction>\n";
    }
    return document(text);
  }

 private:
  std::string maybe(const std::string& name, const char* unit, const char* other) {
    if (number(3) == 0) return "";
    return "<" + name + " unit='" + (number(2) == 0 ? unit : other) + "'>" + value() + "</" + name +
           ">";
  }

  std::string material(unsigned index) {
    const auto id = std::to_string(index);
    return "<Material id='m" + id + "'><Name>m" + std::to_string(index % 9) + "</Name>" +
           maybe("Thickness", "Millimeters", "Inches") +
           maybe("Conductivity", "WPerMeterK", "BtuPerHourFtF") +
           maybe("Density", "KgPerCubicM", "LbsPerCubicFt") +
           maybe("SpecificHeat", "JPerKgK", "BTUPerLbF") +
           maybe("R-value", "SquareMeterKPerW", "HrSquareFtFPerBTU") + "</Material><Layer id='l" +
           id + "'><MaterialId materialIdRef='m" + id + "'/></Layer>\n";
  }
};

TEST(Gbxml, of_any_objects_reads_back_to_the_same) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    const auto text = RandomDocument(seed).text();
    SCOPED_TRACE(text);
    expect_identity(*read(text, false, seed % 2 == 0 ? Unit::Millimetres : Unit::Inches).library,
                    false);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(Gbxml, never_breaks_by_names_and_values) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto wall = Composition::create(text("<Wall> & \"all\" of 'these' ]]>"));
  const std::vector<std::string> names{"<a>",
                                       "a & b",
                                       "&amp;",
                                       "a\nb",
                                       "a\tb",
                                       " a ",
                                       "a\x01"
                                       "b",
                                       "]]>",
                                       "<!-- a -->",
                                       "A",
                                       "a",
                                       "\"",
                                       "Ä\xEF\xBF\xBE",
                                       "&#65;",
                                       "a\rb"};
  for (const auto& name : names) {
    const auto material = with_custom(name, "Thermal resistance [m2 K/W]", "1");
    material->description(text(name + "<&>"));
    library->save(material);
    wall->appendLayer({material, Material::Function::None, 0});
  }
  library->save(wall);
  const auto written = written_as("gbXML", *library);
  const auto back = read(written.text, true);
  EXPECT_THAT(sentences_of(back.reports[0]), IsEmpty());
  EXPECT_EQ(back.library->count<Material>(), names.size());
  const auto same = back.library->get<Composition>(text("<Wall> & \"all\" of 'these' ]]>"));
  ASSERT_NE(same, nullptr);
  EXPECT_EQ(same->layers().size(), names.size());
  for (const char* name : {"<a>", "a & b", "&amp;", "a\nb", "a\tb", "]]>", "&#65;"}) {
    const auto material = back.library->get<Material>(text(name));
    ASSERT_NE(material, nullptr) << name;
    EXPECT_EQ(material->description(), text(name + std::string("<&>")));
  }
  EXPECT_THAT(written.report.problems, testing::Contains(HasSubstr("material 'a\x01"
                                                                   "b' is written as 'a_b'")));
}

TEST(Gbxml, of_an_empty_library_is_of_the_format) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto written = written_as("gbXML", *library);
  EXPECT_TRUE(written.report.is_whole());
  EXPECT_EQ(kit::Source("a", written.text).format().name, "gbXML");
}

std::string in_utf16(const std::string& text, bool little) {
  std::string bytes = little ? "\xff\xfe" : "\xfe\xff";
  for (const char c : text) {
    bytes += little ? std::string{c, '\0'} : std::string{'\0', c};
  }
  return bytes;
}

const std::string one_material =
    R"(<Material id="m"><Name>A</Name><R-value unit="SquareMeterKPerW">1</R-value></Material>)";

TEST(GbxmlSource, may_be_in_several_encodings) {
  const auto expect_name = [](const std::string& bytes, const char* name) {
    const auto library = read(bytes).library;
    EXPECT_NE(library->get<Material>(text(name)), nullptr) << bytes;
  };
  expect_name("\xEF\xBB\xBF" + document(one_material), "A");
  for (const bool little : {true, false}) {
    expect_name(in_utf16(document(one_material), little), "A");
    expect_name(
        in_utf16("<?xml version='1.0' encoding='utf-16'?><gbXML>" + one_material + "</gbXML>",
                 little),
        "A");
  }
  expect_name(
      "<?xml version='1.0' encoding='ISO-8859-1'?><gbXML><Material id='m'><Name>D\xfcnn"
      "</Name></Material></gbXML>",
      "Dünn");
  expect_name("<gbXML><Material id='m'><Name>D\xc3\xbcnn</Name></Material></gbXML>", "Dünn");
  expect_name("<?xml version='1.0' encoding='windows-1252'?><gbXML>" + one_material + "</gbXML>",
              "A");
  expect_name("<g:gbXML xmlns:g='x'><g:Material id='m'><g:Name>A</g:Name></g:Material></g:gbXML>",
              "A");
}

TEST(GbxmlSource, in_an_encoding_that_it_does_not_say_gives_a_sentence) {
  const std::string rest = "<Material id='m'><Name>D\xfcnn</Name></Material></gbXML>";
  for (const char* head : {"<gbXML>", "<?xml version='1.0' encoding='UTF-8'?><gbXML>"}) {
    EXPECT_EQ(error_of([&] { read(head + rest); }),
              "'a.xml', line 1: the document says that it is UTF-8, or nothing, and its bytes are "
              "no UTF-8");
  }
  EXPECT_EQ(error_of([&] { read("<?xml version='1.0' encoding='Shift_JIS'?><gbXML>" + rest); }),
            "'a.xml', line 1: the document is in the encoding 'shift_jis'; UTF-8, UTF-16 and "
            "ISO-8859-1 are read");
}

TEST(GbxmlSource, with_a_document_type_is_refused) {
  const std::string entities = R"(<?xml version="1.0"?>
<!DOCTYPE gbXML [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;">
  <!ENTITY c SYSTEM "file:///etc/passwd">]>
<gbXML><Material id="m"><Name>&b;&c;</Name></Material></gbXML>)";
  EXPECT_THAT(error_of([&] { read(entities); }),
              HasSubstr("'a.xml': this has a document type (<!DOCTYPE>)"));
}

TEST(GbxmlSource, that_is_broken_gives_a_sentence_with_the_line) {
  const auto whole = document("\n" + one_material);
  for (const auto cut : {whole.size() - 3, whole.size() - 20, whole.size() - 60}) {
    EXPECT_THAT(error_of([&] { read(whole.substr(0, cut)); }),
                testing::MatchesRegex("'a.xml', line [45]: this is no well-formed XML: .*"))
        << whole.substr(0, cut);
  }
  EXPECT_THAT(error_of([&] { read("<gbXML><Name></Material></gbXML>"); }),
              HasSubstr("line 1: this is no well-formed XML: start-end tags mismatch"));
  EXPECT_THAT(error_of([&] { read("<a><gbXML/></a>"); }),
              HasSubstr("line 1: the root of the document is not <gbXML>"));
  EXPECT_THAT(error_of([&] { read("<gbXML><Material><Name>&#xD800;</Name></Material></gbXML>"); }),
              HasSubstr("line 1: a text of <Name> has characters that there are not"));
}

TEST(GbxmlSource, of_another_kind_of_xml_has_no_reader) {
  EXPECT_THAT(error_of([&] { read("<?xml version='1.0'?><catalogue/>"); }),
              HasSubstr("this seems to be XML, for which there is no reader"));
}

TEST(GbxmlSource, that_is_nested_a_million_times_is_read) {
  constexpr std::size_t depth = 1'000'000;
  const auto deep = repeated("<a>", depth) + repeated("</a>", depth);
  EXPECT_EQ(read(document(deep + one_material)).library->count<Material>(), 1U);
  const auto report =
      read(document("<Material id='m'><Name>A</Name>" + deep + "</Material>")).reports[0];
  EXPECT_THAT(report.not_kept, IsEmpty());
}

TEST(GbxmlSource, may_have_more_elements_the_larger_it_is) {
  const auto padding = "<!--" + std::string(85'000'000, 'x') + "-->";
  const auto elements = repeated("<a/>", 5'000'001);
  EXPECT_EQ(read(document(padding + elements + one_material)).library->count<Material>(), 1U);
}

TEST(GbxmlSource, that_takes_too_much_gives_a_sentence) {
  const auto refused = [](const std::string& content) {
    return error_of([&] { read(document(content)); });
  };
  const std::string material = "<Material id='m'><Name>A</Name>";
  EXPECT_EQ(refused(material + repeated("<B>1</B>", 1'000'000) + "</Material>"),
            "'a.xml', line 3: the <Material> has more than 1000 fields");
  EXPECT_EQ(refused(material + "<B>" + std::string(2 << 20, 'x') + "</B></Material>"),
            "'a.xml', line 3: a text of <B> is longer than 1 MiB");
  EXPECT_EQ(refused(repeated("<a/>", 5'000'001)),
            "'a.xml': this has more than 5000000 elements, attributes and texts");
  EXPECT_EQ(refused("<a" + repeated(" b=''", 5'000'001) + "/>"),
            "'a.xml': this has more than 5000000 elements, attributes and texts");
  EXPECT_EQ(refused(repeated("<Layer/>", 500'001)),
            "'a.xml': this has more than 500000 materials, layers and constructions");
  const auto layers = "<Layer id='l'>" + repeated("<MaterialId materialIdRef='m'/>", 1000) +
                      "</Layer><Construction id='c'>";
  EXPECT_EQ(refused("<Material id='m'><Name>" + std::string(1 << 20, 'x') + "</Name></Material>" +
                    layers + "<LayerId layerIdRef='l'/></Construction>"),
            "'a.xml', line 3: the layers of the constructions take more than 128 MiB");
}

}  // namespace
}  // namespace veldra_tests
