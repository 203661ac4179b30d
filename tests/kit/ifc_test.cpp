// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/ifc_model.hpp"
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

namespace veldra_tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

kit::Sources read(const std::string& content, Unit unit = Unit::Millimetres,
                  bool keep_unknown = false) {
  kit::SourceRules rules;
  rules.unit = unit;
  rules.keep_unknown = keep_unknown;
  return kit::read_together({{"house.ifc", content}}, rules);
}

std::shared_ptr<Material> material_in(const kit::Sources& sources, const std::string& name) {
  auto material = sources.library->get<Material>(text(name));
  if (material == nullptr) throw std::runtime_error("there is no material " + name);
  return material;
}

std::shared_ptr<Composition> composition_in(const kit::Sources& sources, const std::string& name) {
  auto composition = sources.library->get<Composition>(text(name));
  if (composition == nullptr) throw std::runtime_error("there is no composition " + name);
  return composition;
}

std::string custom(const kit::Sources& sources, const std::string& material,
                   const std::string& property) {
  const auto value = material_in(sources, material)->custom_value(text(property));
  return value.null() ? "nothing" : value.get().utf8();
}

/// Each layer as its material, its thickness and whether it carries.
std::vector<std::string> layers_of(const kit::Sources& sources, const std::string& name) {
  std::vector<std::string> layers;
  const auto composition = composition_in(sources, name);
  for (const auto& layer : composition->layers()) {
    layers.push_back(layer.material()->name().utf8() + " " + kit::exact_number(layer.thickness()) +
                     (layer.function() == Material::Function::Structure ? " structure" : ""));
  }
  return layers;
}

std::vector<std::string> problems_of(const kit::Sources& sources) {
  std::vector<std::string> sentences;
  for (const auto& problem : sources.reports[0].problems) sentences.push_back(problem.sentence);
  return sentences;
}

const std::string wall = std::string(ifc_millimetres) + R"(
#1=IFCMATERIAL('Plaster','of lime','plaster');
#2=IFCMATERIAL('Brick',$,'masonry');
#3=IFCMATERIALLAYER(#1,15.,$,$,$,$,$);
#4=IFCMATERIALLAYER(#2,240.,.F.,'Brick',$,'LoadBearing',$);
#5=IFCMATERIALLAYERSET((#3,#4),'Outer wall','as built');
#6=IFCWALLTYPE('1xS3BCk291UvhgP2a6eflM',$,'Type of a wall',$,$,$,$,$,$,.STANDARD.);
#7=IFCRELASSOCIATESMATERIAL('1xS3BCk291UvhgP2a6eflN',$,$,$,(#6),#5);
)";

TEST(IfcSource, has_layer_sets_as_compositions) {
  const auto sources = read(ifc_model(wall));
  EXPECT_EQ(sources.reports[0].format, "IFC, IFC4");
  EXPECT_THAT(sources.reports[0].read,
              UnorderedElementsAre(Pair("IfcMaterial", 2U), Pair("IfcMaterialLayerSet", 1U)));
  EXPECT_THAT(layers_of(sources, "Outer wall"), ElementsAre("Plaster 15", "Brick 240 structure"));
  const auto composition = composition_in(sources, "Outer wall");
  EXPECT_EQ(composition->type(), Composition::Type::Wall);
  EXPECT_EQ(composition->description(), text("as built"));
  EXPECT_EQ(composition->first_core_layer(), 0U);
  EXPECT_EQ(composition->last_core_layer(), 1U);
  EXPECT_EQ(composition->structural_layer(), 1U);
  EXPECT_THAT(composition->tags(), SizeIs(1));
  EXPECT_EQ(composition->tags()[0]->name(), text("house.ifc"));
  EXPECT_EQ(material_in(sources, "Plaster")->description(), text("of lime"));
}

TEST(IfcSource, has_categories_as_types_where_there_are_such_types) {
  const auto sources = read(ifc_model(wall));
  EXPECT_EQ(material_in(sources, "Brick")->type()->name(), text("Masonry"));
  EXPECT_EQ(custom(sources, "Plaster", "IFC category"), "plaster");
}

TEST(IfcSource, of_a_wall_does_not_tell_which_side_is_outside) {
  EXPECT_THAT(problems_of(read(ifc_model(wall))),
              ElementsAre("the model does not say which side of 'Outer wall' is outside; the "
                          "layers stand in the order of the file"));
}

TEST(IfcSource, has_no_order_where_both_sides_are_the_same) {
  auto same = wall;
  same.replace(same.find("(#3,#4)"), 7, "(#3,#4,#3)");
  EXPECT_THAT(problems_of(read(ifc_model(same))), IsEmpty());
}

struct Slab {
  const char* user;
  const char* sense;
  std::vector<std::string> layers;
  Composition::Type type;
};

void PrintTo(const Slab& slab, std::ostream* out) { *out << slab.user << slab.sense; }

class IfcSlab : public TestWithParam<Slab> {};

TEST_P(IfcSlab, stacks_its_layers_upward_or_downward) {
  const auto& slab = GetParam();
  const auto sources = read(
      ifc_model(std::string(ifc_millimetres) +
                "#1=IFCMATERIAL('Lower',$,$);\n#2=IFCMATERIAL('Upper',$,$);\n"
                "#3=IFCMATERIALLAYER(#1,1.,$,$,$,$,$);\n#4=IFCMATERIALLAYER(#2,2.,$,$,$,$,$);\n"
                "#5=IFCMATERIALLAYERSET((#3,#4),'Slab',$);\n"
                "#6=IFCMATERIALLAYERSETUSAGE(#5,.AXIS3.," +
                slab.sense + ",0.,$);\n#7=" + slab.user +
                "#8=IFCRELASSOCIATESMATERIAL('1xS3BCk291UvhgP2a6eflN',$,$,$,(#7),#6);\n"));
  EXPECT_THAT(problems_of(sources), IsEmpty());
  EXPECT_EQ(layers_of(sources, "Slab"), slab.layers);
  EXPECT_EQ(composition_in(sources, "Slab")->type(), slab.type);
}

constexpr const char* floor_slab = "IFCSLAB('g',$,'S',$,$,$,$,$,.FLOOR.);\n";
constexpr const char* roof_slab = "IFCSLAB('g',$,'S',$,$,$,$,$,.ROOF.);\n";
constexpr const char* roof = "IFCROOF('g',$,'R',$,$,$,$,$,$);\n";
const std::vector<std::string> as_written{"Lower 1", "Upper 2"};
const std::vector<std::string> turned{"Upper 2", "Lower 1"};

INSTANTIATE_TEST_SUITE_P(Each, IfcSlab,
                         Values(Slab{floor_slab, ".POSITIVE.", as_written,
                                     Composition::Type::Floor},
                                Slab{floor_slab, ".NEGATIVE.", turned, Composition::Type::Floor},
                                Slab{roof_slab, ".POSITIVE.", turned, Composition::Type::Roof},
                                Slab{roof_slab, ".NEGATIVE.", as_written, Composition::Type::Roof},
                                Slab{roof, ".POSITIVE.", turned, Composition::Type::Roof}));

TEST(IfcSource, has_nameless_sets_by_the_names_of_who_uses_them) {
  const auto model = [](const std::string& users) {
    return ifc_model(std::string(ifc_millimetres) +
                     "#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALLAYER(#1,1.,$,$,$,$,$);\n"
                     "#3=IFCMATERIALLAYERSET((#2),$,$);\n"
                     "#4=IFCWALL('g',$,'Wall 17',$,$,$,$,$,$);\n" +
                     users);
  };
  const std::string of_element = "#5=IFCRELASSOCIATESMATERIAL('h',$,$,$,(#4),#3);\n";
  const std::string of_type =
      "#6=IFCWALLTYPE('i',$,'Thin walls',$,$,$,$,$,$,.STANDARD.);\n"
      "#7=IFCRELDEFINESBYTYPE('j',$,$,$,(#4),#6);\n";
  EXPECT_NE(composition_in(read(model("")), "Layer set #3"), nullptr);
  EXPECT_NE(composition_in(read(model(of_element)), "Wall 17"), nullptr);
  EXPECT_NE(composition_in(read(model(of_element + of_type)), "Thin walls"), nullptr);
}

TEST(IfcSource, has_layers_without_material_as_air) {
  const auto sources = read(ifc_model(std::string(ifc_millimetres) +
                                      "#1=IFCMATERIALLAYER($,40.,.T.,$,$,$,$);\n"
                                      "#2=IFCMATERIALLAYER($,20.,.F.,$,$,$,$);\n"
                                      "#3=IFCMATERIALLAYERSET((#1,#2,#1),'Air',$);\n"));
  EXPECT_THAT(layers_of(sources, "Air"),
              ElementsAre("Air layer, ventilated 40", "Air layer 20", "Air layer, ventilated 40"));
  EXPECT_EQ(material_in(sources, "Air layer")->type()->name(), text("Air gap"));
  EXPECT_THAT(problems_of(sources), ElementsAre("3 layers without material are taken for air"));
}

TEST(IfcSource, tells_what_a_library_has_no_place_for) {
  const auto sources = read(ifc_model(
      std::string(ifc_millimetres) +
      "#1=IFCMATERIAL('A',$,$);\n"
      "#2=IFCMATERIALLAYERWITHOFFSETS(#1,40.,.T.,'Shell','d','Finish',7,.AXIS1.,(1.,2.));\n"
      "#3=IFCMATERIALLAYERSET((#2),'Wall',$);\n"
      "#4=IFCMATERIALLIST((#1));\n#5=IFCMATERIALPROFILESET($,$,(#9),$);\n"
      "#6=IFCMATERIALCONSTITUENTSET($,$,$);\n#7=IFCMATERIALCONSTITUENTSET($,$,$);\n"));
  const auto& report = sources.reports[0];
  EXPECT_THAT(report.skipped,
              UnorderedElementsAre(Pair("IfcMaterialList", 1U), Pair("IfcMaterialProfileSet", 1U),
                                   Pair("IfcMaterialConstituentSet", 2U)));
  std::vector<std::string> fields;
  for (const auto& value : report.not_kept) fields.push_back(value.field + " = " + value.value);
  EXPECT_THAT(
      fields,
      ElementsAre("MaterialLayers.1.Name = Shell", "MaterialLayers.1.IsVentilated = T",
                  "MaterialLayers.1.Description = d", "MaterialLayers.1.Category = Finish",
                  "MaterialLayers.1.Priority = 7", "MaterialLayers.1.OffsetDirection = .AXIS1.",
                  "MaterialLayers.1.OffsetValues = (1.,2.)"));
}

TEST(IfcSource, keeps_what_a_library_has_no_place_for_when_that_is_wanted) {
  const auto sources =
      read(ifc_model(std::string(ifc_millimetres) +
                     "#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALLAYER(#1,40.,$,'Shell',$,$,$);\n"
                     "#3=IFCMATERIALLAYERSET((#2),'Wall',$);\n"),
           Unit::Millimetres, true);
  EXPECT_THAT(sources.reports[0].not_kept, IsEmpty());
  EXPECT_EQ(composition_in(sources, "Wall")
                ->custom_value("IfcMaterialLayerSet.MaterialLayers.1.Name")
                .get(),
            text("Shell"));
}

/// Of a brick, from whatever instances they come.
void expect_common_properties(const kit::Sources& sources) {
  EXPECT_EQ(custom(sources, "Brick", "Thermal conductivity [W/(m K)]"), "0.81");
  EXPECT_EQ(custom(sources, "Brick", "Specific heat [J/(kg K)]"), "1000");
  EXPECT_EQ(custom(sources, "Brick", "Density [kg/m3]"), "1800");
  EXPECT_EQ(custom(sources, "Brick", "Pset_MaterialCommon.Porosity [-]"), "0.25");
}

TEST(IfcSource, has_the_properties_of_ifc_4) {
  const auto sources = read(ifc_model(std::string(ifc_millimetres) + R"(
#1=IFCMATERIAL('Brick',$,$);
#2=IFCMATERIALPROPERTIES('Pset_MaterialThermal',$,(#3,#4,#9),#1);
#3=IFCPROPERTYSINGLEVALUE('ThermalConductivity',$,IFCTHERMALCONDUCTIVITYMEASURE(0.81),$);
#4=IFCPROPERTYSINGLEVALUE('SpecificHeatCapacity',$,IFCSPECIFICHEATCAPACITYMEASURE(1000.),$);
#5=IFCMATERIALPROPERTIES('Pset_MaterialCommon',$,(#6,#7),#1);
#6=IFCPROPERTYSINGLEVALUE('MassDensity',$,IFCMASSDENSITYMEASURE(1.8E3),$);
#7=IFCPROPERTYSINGLEVALUE('Porosity',$,IFCNORMALISEDRATIOMEASURE(.25),$);
#8=IFCMATERIALPROPERTIES('Own',$,(#10,#11,#12,#13),#1);
#9=IFCPROPERTYSINGLEVALUE('BoilingPoint',$,$,$);
#10=IFCPROPERTYSINGLEVALUE('Maker',$,IFCLABEL('M\X2\00FC\X0\ller'),$);
#11=IFCPROPERTYSINGLEVALUE('Recycled',$,IFCBOOLEAN(.T.),$);
#12=IFCPROPERTYLISTVALUE('Sizes',$,(IFCREAL(1.),IFCREAL(2.)),$);
#13=IFCPROPERTYSINGLEVALUE('Joint',$,IFCPOSITIVELENGTHMEASURE(12.),$);
)"));
  expect_common_properties(sources);
  EXPECT_EQ(custom(sources, "Brick", "Own.Maker"), "Müller");
  EXPECT_EQ(custom(sources, "Brick", "Own.Recycled"), "Yes");
  EXPECT_EQ(custom(sources, "Brick", "Own.Joint [m]"), "0.012");
  ASSERT_THAT(sources.reports[0].not_kept, SizeIs(1));
  EXPECT_EQ(sources.reports[0].not_kept[0].field, "Own.Sizes");
}

TEST(IfcSource, has_the_properties_of_ifc_2x3_by_the_same_names) {
  const auto sources = read(ifc_model(std::string(ifc_millimetres) + R"(
#1=IFCMATERIAL('Brick');
#2=IFCTHERMALMATERIALPROPERTIES(#1,1000.,373.15,$,0.81);
#3=IFCGENERALMATERIALPROPERTIES(#1,$,0.25,1800.);
#4=IFCMECHANICALMATERIALPROPERTIES(#1,$,5.E9,$,0.2,$);
#5=IFCMECHANICALCONCRETEMATERIALPROPERTIES(#1,$,$,$,$,$,2.5E7,16.,'none',$,$,$);
#6=IFCEXTENDEDMATERIALPROPERTIES(#1,(#7),$,'Own');
#7=IFCPROPERTYSINGLEVALUE('Maker',$,IFCLABEL('M'),$);
#8=IFCMATERIALLAYER(#1,240.,$);
#9=IFCMATERIALLAYERSET((#8),'Wall');
#10=IFCFUELPROPERTIES(#1,$,$,$,$);
)",
                                      "IFC2X3"));
  EXPECT_EQ(sources.reports[0].format, "IFC, IFC2X3");
  EXPECT_THAT(problems_of(sources), IsEmpty());
  expect_common_properties(sources);
  EXPECT_EQ(custom(sources, "Brick", "Pset_MaterialThermal.BoilingPoint [K]"), "373.15");
  EXPECT_EQ(custom(sources, "Brick", "Pset_MaterialMechanical.YoungModulus [Pa]"), "5000000000");
  EXPECT_EQ(custom(sources, "Brick", "Pset_MaterialConcrete.MaxAggregateSize [m]"), "0.016");
  EXPECT_EQ(custom(sources, "Brick", "Pset_MaterialConcrete.AdmixturesDescription"), "none");
  EXPECT_EQ(custom(sources, "Brick", "Own.Maker"), "M");
  EXPECT_THAT(layers_of(sources, "Wall"), ElementsAre("Brick 240"));
  EXPECT_THAT(sources.reports[0].skipped, ElementsAre(Pair("IfcFuelProperties", 1U)));
}

struct Length {
  const char* unit;  ///< the instance 902 and those that it needs
  Unit library;
  const char* number;
  double thickness;
};

void PrintTo(const Length& length, std::ostream* out) { *out << length.unit; }

class IfcLength : public TestWithParam<Length> {};

TEST_P(IfcLength, is_that_of_the_model) {
  const auto sources = read(
      ifc_model("#900=IFCPROJECT('g',$,'House',$,$,$,$,$,#901);\n"
                "#901=IFCUNITASSIGNMENT((#902));\n" +
                std::string(GetParam().unit) + "#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALLAYER(#1," +
                GetParam().number + ",$,$,$,$,$);\n#3=IFCMATERIALLAYERSET((#2),'Wall',$);\n"),
      GetParam().library);
  EXPECT_THAT(problems_of(sources), IsEmpty());
  EXPECT_EQ(composition_in(sources, "Wall")->layers()[0].thickness(), GetParam().thickness);
}

constexpr const char* metre = "#902=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n";
constexpr const char* centimetre = "#902=IFCSIUNIT(*,.LENGTHUNIT.,.CENTI.,.METRE.);\n";
constexpr const char* millimetre = "#902=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n";
constexpr const char* foot =
    "#902=IFCCONVERSIONBASEDUNIT(#903,.LENGTHUNIT.,'FOOT',#904);\n"
    "#903=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"
    "#904=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(0.3048),#905);\n"
    "#905=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n";
constexpr const char* inch =
    "#902=IFCCONVERSIONBASEDUNIT(#903,.LENGTHUNIT.,'INCH',#904);\n"
    "#903=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"
    "#904=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(25.4),#905);\n"
    "#905=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n";

INSTANTIATE_TEST_SUITE_P(
    Each, IfcLength,
    Values(Length{metre, Unit::Millimetres, "0.24", 240},
           Length{metre, Unit::Inches, "0.1", kit::from_metres(0.1, Unit::Inches)},
           Length{centimetre, Unit::Millimetres, "1.5", 15},
           Length{millimetre, Unit::Millimetres, "12.7", 12.7},
           Length{millimetre, Unit::Inches, "25.4", 1},
           Length{foot, Unit::Millimetres, "0.5", 152.4}, Length{foot, Unit::Inches, "0.5", 6},
           Length{inch, Unit::Millimetres, "5.5", 139.7}, Length{inch, Unit::Inches, "5.5", 5.5}));

TEST(IfcSource, without_unit_of_lengths_is_in_metres) {
  const auto sources =
      read(ifc_model("#1=IFCMATERIAL('A',$,$);\n#2=IFCMATERIALLAYER(#1,0.1,$,$,$,$,$);\n"
                     "#3=IFCMATERIALLAYERSET((#2),'Wall',$);\n"));
  EXPECT_THAT(layers_of(sources, "Wall"), ElementsAre("A 100"));
  EXPECT_THAT(problems_of(sources),
              ElementsAre("the model does not say the unit of its lengths; they are taken for "
                          "metres"));
}

TEST(IfcSource, has_its_quantities_converted) {
  const auto sources = read(ifc_model(R"(
#900=IFCPROJECT('g',$,'House',$,$,$,$,$,#901);
#901=IFCUNITASSIGNMENT((#902,#904,#905,#914));
#902=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);
#903=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);
#904=IFCDERIVEDUNIT((#906,#907),.MASSDENSITYUNIT.,$);
#905=IFCSIUNIT(*,.THERMODYNAMICTEMPERATUREUNIT.,$,.DEGREE_CELSIUS.);
#906=IFCDERIVEDUNITELEMENT(#903,1);
#907=IFCDERIVEDUNITELEMENT(#908,-3);
#908=IFCSIUNIT(*,.LENGTHUNIT.,.CENTI.,.METRE.);
#910=IFCSIUNIT(*,.POWERUNIT.,.KILO.,.WATT.);
#911=IFCDERIVEDUNITELEMENT(#910,1);
#912=IFCDERIVEDUNITELEMENT(#916,-1);
#913=IFCDERIVEDUNITELEMENT(#915,-1);
#914=IFCDERIVEDUNIT((#911,#912,#913),.THERMALCONDUCTANCEUNIT.,$);
#915=IFCSIUNIT(*,.THERMODYNAMICTEMPERATUREUNIT.,$,.KELVIN.);
#916=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);
#917=IFCDERIVEDUNIT((#918,#912,#913),.THERMALCONDUCTANCEUNIT.,$);
#918=IFCDERIVEDUNITELEMENT(#919,1);
#919=IFCSIUNIT(*,.POWERUNIT.,.MILLI.,.WATT.);
#1=IFCMATERIAL('A',$,$);
#2=IFCMATERIALPROPERTIES('Pset',$,(#3,#4,#5),#1);
#3=IFCPROPERTYSINGLEVALUE('MassDensity',$,IFCMASSDENSITYMEASURE(1.8),$);
#4=IFCPROPERTYSINGLEVALUE('Melts',$,IFCTHERMODYNAMICTEMPERATUREMEASURE(80.),$);
#5=IFCPROPERTYSINGLEVALUE('ThermalConductivity',$,IFCTHERMALCONDUCTIVITYMEASURE(0.0008),$);
#6=IFCMATERIAL('B',$,$);
#7=IFCMATERIALPROPERTIES('Pset',$,(#8),#6);
#8=IFCPROPERTYSINGLEVALUE('ThermalConductivity',$,IFCTHERMALCONDUCTIVITYMEASURE(35.),#917);
)"));
  EXPECT_EQ(custom(sources, "A", "Density [kg/m3]"), "1800");
  EXPECT_EQ(custom(sources, "A", "Pset.Melts [K]"), "353.15");
  EXPECT_EQ(custom(sources, "A", "Thermal conductivity [W/(m K)]"), "0.8");
  EXPECT_EQ(custom(sources, "B", "Thermal conductivity [W/(m K)]"), "0.035")
      << "the unit of the property itself counts";
}

TEST(IfcSource, has_classifications) {
  const auto sources = read(ifc_model(R"(
#1=IFCMATERIAL('A',$,$);
#2=IFCCLASSIFICATION('u','2',$,'Uniclass',$,$,$);
#3=IFCCLASSIFICATIONREFERENCE($,'Pr_20','Bricks',#2,$,$);
#4=IFCEXTERNALREFERENCERELATIONSHIP($,$,#3,(#1));
#5=IFCMATERIAL('B',$,$);
#6=IFCRELASSOCIATESCLASSIFICATION('g',$,$,$,(#5),#2);
#7=IFCMATERIAL('C');
#8=IFCMATERIALCLASSIFICATIONRELATIONSHIP((#9,#10),#7);
#9=IFCCLASSIFICATIONREFERENCE($,'21',$,$);
#10=IFCCLASSIFICATIONNOTATION((#11,#12));
#11=IFCCLASSIFICATIONNOTATIONFACET('L6');
#12=IFCCLASSIFICATIONNOTATIONFACET('1');
)"));
  EXPECT_EQ(material_in(sources, "A")->classification(), text("Pr_20 Bricks"));
  EXPECT_EQ(material_in(sources, "B")->classification(), text("Uniclass"));
  EXPECT_EQ(material_in(sources, "C")->classification(), text("21; L61"));
}

TEST(IfcSource, has_styles_as_colours) {
  const auto sources = read(ifc_model(R"(
#1=IFCMATERIAL('A',$,$);
#2=IFCMATERIALDEFINITIONREPRESENTATION($,$,(#3),#1);
#3=IFCSTYLEDREPRESENTATION(#99,'Style','Material',(#4,#5));
#4=IFCSTYLEDITEM($,(#6),$);
#5=IFCSTYLEDITEM($,(#10),$);
#6=IFCPRESENTATIONSTYLEASSIGNMENT((#7));
#7=IFCSURFACESTYLE('s',.BOTH.,(#8));
#8=IFCSURFACESTYLERENDERING(#9,0.25,$,$,$,$,$,$,.NOTDEFINED.);
#9=IFCCOLOURRGB($,0.5,0.25,1.);
#10=IFCFILLAREASTYLE('f',(#9,#11),$);
#11=IFCFILLAREASTYLEHATCHING(#12,#98,$,$,45.);
#12=IFCCURVESTYLE($,$,$,#13);
#13=IFCDRAUGHTINGPREDEFINEDCOLOUR('red');
)"));
  const auto material = material_in(sources, "A");
  EXPECT_EQ(material->shading_color(), Color(0.5, 0.25, 1, 0.75));
  EXPECT_EQ(material->cut_pattern_color(), Color(1, 0, 0, 1));
}

TEST(IfcSource, tells_layer_sets_that_cannot_be_read_and_reads_the_others) {
  const auto sources = read(ifc_model(std::string(ifc_millimetres) + R"(
#1=IFCMATERIAL('A',$,$);
#2=IFCMATERIALLAYER(#1,-5.,$,$,$,$,$);
#3=IFCMATERIALLAYER(#1,1E999,$,$,$,$,$);
#4=IFCMATERIALLAYER(#77,5.,$,$,$,$,$);
#5=IFCMATERIALLAYER(#1,5.,$,$,$,$,$);
#10=IFCMATERIALLAYERSET((#2),'a',$);
#11=IFCMATERIALLAYERSET((#3),'b',$);
#12=IFCMATERIALLAYERSET((#4),'c',$);
#13=IFCMATERIALLAYERSET((),'d',$);
#14=IFCMATERIALLAYERSET((#1),'e',$);
#15=IFCMATERIALLAYERSET((#5),'f',$);
#16=IFCMATERIALLAYERSET((#88),'g',$);
)"));
  EXPECT_THAT(problems_of(sources),
              ElementsAre("layer set 'a': the thickness -5 of layer #2 is negative",
                          "layer set 'b': the thickness of layer #3 is not a number",
                          "layer set 'c': the material of layer #4 is not in the model",
                          "layer set 'd': it has no layers and is not imported",
                          "layer set 'e': '#1' is no layer", "layer set 'g': '#88' is no layer"));
  EXPECT_EQ(sources.library->count<Composition>(), 1U);
  EXPECT_EQ(sources.reports[0].problems[0].line, 18U);
}

TEST(IfcSource, may_have_its_statements_written_in_any_way) {
  const auto sources = read(
      "/* a note; with 'marks */ISO-10303-21;HEADER;FILE_SCHEMA(/*(*/('IFC4X3_ADD2'));ENDSEC;DATA;"
      "#3 = IFCMATERIAL ( 'It''s; (here)' /* ' */ , $ ,\r\n $ ) ; #2=(IFCA()IFCB('x'));"
      "#7=IFCMATERIAL('a\\\\b\\S\\d\\X\\E4\\X4\\0001F600\\X0\\\\X2\\D83DDE00\\X0\\\\X2\\00',$,$);"
      "ENDSEC;END-ISO-10303-21;");
  EXPECT_NE(material_in(sources, "It's; (here)"), nullptr);
  EXPECT_NE(material_in(sources, "a\\bää😀😀\\X2\\00"), nullptr);
}

TEST(IfcSource, has_names_of_their_own_for_materials_that_differ) {
  const auto sources = read(ifc_model(std::string(ifc_millimetres) +
                                      "#20=IFCMATERIAL('Brick','red',$);\n"
                                      "#21=IFCMATERIAL('Brick','red',$);\n"
                                      "#22=IFCMATERIAL('Brick','yellow',$);\n"
                                      "#30=IFCMATERIALLAYER(#20,100.,$,$,$,$,$);\n"
                                      "#31=IFCMATERIALLAYER(#22,200.,$,$,$,$,$);\n"
                                      "#32=IFCMATERIALLAYER(#21,300.,$,$,$,$,$);\n"
                                      "#40=IFCMATERIALLAYERSET((#30,#31,#32),'W',$);\n"));
  EXPECT_EQ(sources.library->count<Material>(), 2U);
  const auto wall = sources.library->get<Composition>(text("W"));
  ASSERT_NE(wall, nullptr);
  std::vector<std::string> names;
  for (const auto& layer : wall->layers()) {
    names.push_back(layer.material()->description().utf8());
  }
  EXPECT_THAT(names, ElementsAre("red", "yellow", "red"));
  EXPECT_EQ(wall->layer(1).material()->name(), text("Brick (2)"));
}

TEST(IfcSource, has_names_for_materials_without_any) {
  EXPECT_NE(material_in(read(ifc_model("#12=IFCMATERIAL('',$,$);\n")), "Material #12"), nullptr);
}

std::string error_in(const std::string& content) {
  return error_of([&] { read(content); });
}

TEST(IfcSource, of_another_schema_is_refused) {
  EXPECT_EQ(error_in(ifc_model("", "IFC5")),
            "'house.ifc': this is an IFC model of the schema 'IFC5'; those of IFC2X3 and IFC4 can "
            "be read");
}

struct Malformed {
  std::string instances;
  const char* sentence;
};

void PrintTo(const Malformed& each, std::ostream* out) { *out << each.sentence; }

class MalformedIfc : public TestWithParam<Malformed> {};

TEST_P(MalformedIfc, is_refused_with_its_line) {
  EXPECT_THAT(error_in(ifc_model("#1=IFCMATERIAL('A',$,$);\n" + GetParam().instances)),
              AllOf(HasSubstr("'house.ifc', line 9: "), HasSubstr(GetParam().sentence)));
}

INSTANTIATE_TEST_SUITE_P(
    Each, MalformedIfc,
    Values(Malformed{"#2=IFCMATERIAL('A,$,$);\n", "a string does not end"},
           Malformed{"#2=IFCMATERIAL(/*'A',$,$);\n", "a comment does not end"},
           Malformed{"#2=IFCMATERIAL(('A',$,$);\n", "a parenthesis is not closed"},
           Malformed{"#2=IFCMATERIAL('A',$,$));\n", "a parenthesis is closed that is not open"},
           Malformed{"#2=IFCMATERIAL" + std::string(1000000, '(') + ";\n",
                     "lists stand too deeply within lists"},
           Malformed{"#2=IFCMATERIAL;\n", "no values in parentheses"},
           Malformed{"IFCMATERIAL('A');\n", "an instance such as '#1=...;' is expected"},
           Malformed{"#2 IFCMATERIAL('A');\n", "'=' is expected"},
           Malformed{"#99999999999999999999=IFCMATERIAL('A');\n", "too large"},
           Malformed{"#1=IFCMATERIAL('B',$,$);\n", "there is another instance #1"}));

TEST(IfcSource, that_is_cut_off_anywhere_is_refused) {
  const auto whole = ifc_model(wall);
  for (std::size_t size = whole.find("DATA"); size + 2 < whole.size(); ++size) {
    EXPECT_THAT(error_in(whole.substr(0, size)), HasSubstr("'house.ifc', line ")) << size;
  }
}

}  // namespace
}  // namespace veldra_tests
