// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/ifc_model.hpp"
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <map>
#include <random>
#include <regex>
#include <set>

namespace veldra_tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const char* guid = "{2C9F0C0B-0E9D-4E4C-9C55-0C8CBE6F4D27}";

class WrittenIfc : public TestWithParam<Unit> {
 protected:
  WrittenIfc() { library_->purge<MaterialType>(); }

  std::shared_ptr<Library> read_back(const Written& written, Unit unit) const {
    const auto sources = kit::read_together({{"a.ifc", written.text}}, rules_for(unit));
    for (const auto& problem : sources.reports[0].problems) ADD_FAILURE() << problem.text();
    return sources.library;
  }

  void expect_identity() const {
    const auto written = written_as("IFC", *library_);
    for (const auto& field : written.report.not_written) ADD_FAILURE() << field.field;
    EXPECT_THAT(written.report.problems, IsEmpty());
    const auto back = read_back(written, library_->unit());
    EXPECT_EQ(fields_of(*back), fields_of(*library_));
    EXPECT_THAT(written_as("IFC", *back).report.not_written, IsEmpty());
  }

  /// Without the tag that names the file.
  static kit::SourceRules rules_for(Unit unit) {
    kit::SourceRules rules;
    rules.unit = unit;
    rules.tags = {"a"};
    return rules;
  }

  std::shared_ptr<Material> material(const std::string& name) {
    auto made = Material::create(text(name));
    made->addTag(tag_);
    return made;
  }

  std::shared_ptr<Composition> composition(const std::string& name,
                                           const std::vector<Composition::Layer>& layers) {
    auto made = Composition::create(text(name));
    made->addTag(tag_);
    for (const auto& layer : layers) made->appendLayer(layer);
    made->last_core_layer(static_cast<unsigned>(layers.size() - 1));
    made->first_core_layer(0);
    made->structural_layer(0);
    return made;
  }

  const std::shared_ptr<Library> library_ = Library::create(":memory:", GetParam(), guid);
  const std::shared_ptr<Tag> tag_ = Tag::create("a");
};

TEST_P(WrittenIfc, reads_back_to_the_same) {
  const auto brick = material("Brick's \\ \"Ziegel\" äß😀\n2");
  brick->type(MaterialType::create("Masonry"));
  brick->description("of clay; (burnt)");
  brick->code("B-1");
  brick->mark("12");
  brick->classification("Pr_20 Bricks");
  brick->thicknesses(toModify) = {11.5, 24};
  brick->function(Material::Function::Structure);
  brick->shading_color({0.5, 0.25, 0.125, 1});
  brick->cut_pattern_color({1, 0, 0, 0.3});
  brick->custom_value("Thermal conductivity [W/(m K)]", "0.81");
  brick->custom_value("Density [kg/m3]", "1800");
  brick->custom_value("code", "another code");
  brick->custom_value("property:all:x", "odd");
  brick->custom_value("Makers", "Müller; Meier");
  const auto wool = material("Wool");
  wool->custom_value("IFC category", "mineral wool");
  library_->save(brick);
  library_->save(wool);
  auto wall = composition("Wall", {{wool, Material::Function::None, 5.5},
                                   {brick, Material::Function::Structure, 1.0 / 3},
                                   {wool, static_cast<Material::Function>(7), 1}});
  wall->type(Composition::Type::Wall);
  wall->description("outer");
  wall->comments("no \\S\\ comment");
  wall->structural_layer(1);
  wall->first_core_layer(1);
  wall->last_core_layer(1);
  wall->variable_layer(2);
  wall->variable_layer_min_thickness(2.5);
  wall->custom_value("layer order", "mine");
  wall->entity_layer(Layer::create("walls"));
  library_->save(wall);
  expect_identity();
}

TEST_P(WrittenIfc, has_the_type_of_elements_for_each_type_of_compositions) {
  const auto brick = material("Brick");
  library_->save(brick);
  const std::pair<Composition::Type, const char*> types[] = {
      {Composition::Type::Wall, "=IFCWALLTYPE("},
      {Composition::Type::Floor, "=IFCSLABTYPE("},
      {Composition::Type::Roof, "=IFCROOFTYPE("},
      {Composition::Type::Other, "=IFCBUILDINGELEMENTPROXYTYPE("}};
  for (const auto& [type, keyword] : types) {
    const auto made = composition(keyword, {{brick, Material::Function::None, 1}});
    made->type(type);
    library_->save(made);
  }
  expect_identity();
  const auto written = written_as("IFC", *library_);
  for (const auto& [type, keyword] : types) EXPECT_THAT(written.text, HasSubstr(keyword));
  EXPECT_THAT(written.report.written,
              UnorderedElementsAre(Pair("IfcMaterial", 1U), Pair("IfcMaterialLayerSet", 4U)));
}

TEST_P(WrittenIfc, has_the_properties_that_other_programs_know) {
  const auto brick = material("Brick");
  brick->custom_value("Thermal conductivity [W/(m K)]", "0.81");
  brick->custom_value("Density [kg/m3]", "1800");
  brick->custom_value("Specific heat [J/(kg K)]", "1000");
  library_->save(brick);
  const auto written = written_as("IFC", *library_);
  for (const char* instance :
       {"=IFCPROPERTYSINGLEVALUE('MassDensity',$,IFCMASSDENSITYMEASURE(1800.),$);",
        "=IFCPROPERTYSINGLEVALUE('ThermalConductivity',$,IFCTHERMALCONDUCTIVITYMEASURE(0.81),$);",
        "=IFCPROPERTYSINGLEVALUE('SpecificHeatCapacity',$,"
        "IFCSPECIFICHEATCAPACITYMEASURE(1000.),$);",
        "=IFCMATERIALPROPERTIES('Pset_MaterialCommon',$,(", "('Pset_MaterialThermal',$,("}) {
    EXPECT_THAT(written.text, HasSubstr(instance));
  }
}

TEST_P(WrittenIfc, is_the_same_when_it_is_written_again) {
  const auto brick = material("Brick");
  library_->save(brick);
  library_->save(composition("Wall", {{brick, Material::Function::None, 1}}));
  EXPECT_EQ(written_as("IFC", *library_).text, written_as("IFC", *library_).text);
  const auto other = Library::create(":memory:", GetParam(), "");
  other->purge<MaterialType>();
  EXPECT_NE(written_as("IFC", *other).text.substr(0, 2000),
            written_as("IFC", *library_).text.substr(0, 2000))
      << "another library has other GlobalIds";
}

/// The GlobalIds of what has one, by the names of classes and objects.
std::map<std::string, std::string> global_ids(const std::string& model) {
  const std::regex rooted("=(IFC[A-Z]*)\\('([^']{22})',\\$,(\\$|'[^']*')");
  std::map<std::string, std::string> ids;
  for (std::sregex_iterator each(model.begin(), model.end(), rooted), end; each != end; ++each) {
    ids[(*each)[1].str() + (*each)[3].str()] = (*each)[2];
  }
  return ids;
}

TEST_P(WrittenIfc, has_the_same_global_ids_for_an_object_whatever_is_written_beside_it) {
  const auto brick = material("Brick");
  library_->save(brick);
  for (const char* name : {"A", "B", "C"}) {
    library_->save(composition(name, {{brick, Material::Function::None, 1}}));
  }
  const auto all = global_ids(written_as("IFC", *library_).text);
  ASSERT_EQ(all.count("IFCBUILDINGELEMENTPROXYTYPE'C'"), 1U);
  for (const std::set<ObjectKey>& keys :
       {std::set<ObjectKey>{key_of<Composition>(*library_, "C")},
        std::set<ObjectKey>{key_of<Composition>(*library_, "B"),
                            key_of<Composition>(*library_, "C")}}) {
    const auto part = part_written_as("IFC", *library_, keys).text;
    const auto ids = global_ids(part);
    for (const char* name :
         {"IFCPROJECT'veldra'", "IFCPROJECTLIBRARY'veldra'", "IFCBUILDINGELEMENTPROXYTYPE'C'"}) {
      EXPECT_EQ(ids.at(name), all.at(name)) << name;
    }
    EXPECT_EQ(ids.count("IFCBUILDINGELEMENTPROXYTYPE'A'"), 0U);
    EXPECT_EQ(part_written_as("IFC", *library_, keys).text, part);
  }
}

TEST_P(WrittenIfc, has_global_ids_of_22_characters_each_once) {
  const auto brick = material("Brick");
  library_->save(brick);
  for (const char* name : {"A", "B", "C"}) {
    library_->save(composition(name, {{brick, Material::Function::None, 1}}));
  }
  const std::regex rooted(
      "=IFC(?:PROJECT|PROJECTLIBRARY|RELDECLARES|[A-Z]*TYPE|PROPERTYSET|RELASSOCIATESMATERIAL)"
      "\\('([^']*)',\\$");
  const auto written = written_as("IFC", *library_).text;
  std::set<std::string> ids;
  std::size_t count = 0;
  for (std::sregex_iterator each(written.begin(), written.end(), rooted), end; each != end;
       ++each) {
    ids.insert((*each)[1]);
    ++count;
  }
  EXPECT_EQ(count, 4U + 3 * 3) << "project, library, two declarations; three for each composition";
  EXPECT_EQ(ids.size(), count);
  for (const auto& id : ids) {
    EXPECT_EQ(
        id.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$"),
        std::string::npos);
    EXPECT_EQ(id.size(), 22U);
    EXPECT_LE(id[0], '3') << "the first stands for two bits";
  }
}

TEST_P(WrittenIfc, has_names_of_any_length) {
  const auto long_name = std::string(300, 'x') + "ä";
  const auto brick = material(long_name);
  brick->classification(text(long_name));
  library_->save(brick);
  library_->save(composition(long_name, {{brick, Material::Function::None, 1}}));
  expect_identity();
  EXPECT_THAT(written_as("IFC", *library_).text,
              HasSubstr("=IFCMATERIAL('" + std::string(255, 'x') + "',"));
}

TEST_P(WrittenIfc, tells_what_it_cannot_have) {
  const auto brick = material("Brick");
  library_->save(brick);
  library_->save(Composition::create("Empty"));
  library_->save(composition(
      "Unknown", {{brick, Material::Function::None, std::numeric_limits<double>::quiet_NaN()}}));
  const auto written = written_as("IFC", *library_);
  EXPECT_THAT(written.report.problems,
              ElementsAre("composition 'Empty' is not written: it has no layers"));
  ASSERT_EQ(written.report.not_written.size(), 1U);
  EXPECT_EQ(written.report.not_written[0].field, "layers.thickness");
}

TEST_P(WrittenIfc, of_an_empty_library_has_no_objects) {
  const auto written = written_as("IFC", *library_);
  EXPECT_TRUE(written.report.is_whole());
  const auto sources = kit::read_together({{"a.ifc", written.text}}, rules_for(GetParam()));
  EXPECT_EQ(sources.library->count<Material>(), 0U);
}

/// Makes objects of whatever values a library can have.
class RandomObjects {
 public:
  explicit RandomObjects(unsigned seed) : random_(seed) {}

  std::string name() {
    static const std::vector<std::string> parts{"a",   "'",  "\\", "\\X2\\", "ä",  "😀",  " ",
                                                "\n",  "#1", ";",  "(",      "/*", ",",  "$",
                                                "1e5", "7",  "\"", "Ω",      "x",  "*/", "."};
    std::string name;
    for (auto count = 1 + pick(6); count > 0; --count) name += parts[pick(parts.size())];
    return name;
  }

  double number() {
    return std::ldexp(static_cast<double>(random_()), static_cast<int>(pick(40)) - 50);
  }

  std::size_t pick(std::size_t count) { return random_() % count; }
  double share() { return static_cast<double>(pick(11)) / 10; }

 private:
  std::mt19937 random_;
};

TEST_P(WrittenIfc, reads_back_to_the_same_whatever_a_library_holds) {
  RandomObjects random(static_cast<unsigned>(GetParam()) + 17);
  std::vector<std::shared_ptr<Material>> materials;
  for (int i = 0; i < 60; ++i) {
    const auto made = material(random.name() + std::to_string(i));
    if (random.pick(2) == 0) made->description(text(random.name()));
    if (random.pick(2) == 0) made->classification(text(random.name()));
    if (random.pick(3) == 0) made->mark(text(random.name()));
    if (random.pick(3) == 0) made->thicknesses(toModify) = {random.number(), random.number()};
    if (random.pick(2) == 0) {
      made->shading_color({random.share(), random.share(), random.share(), random.share()});
    }
    if (random.pick(2) == 0) made->cut_pattern_color({random.share(), 1, 0, random.share()});
    if (random.pick(2) == 0) {
      Pattern pattern;
      pattern.name = text(random.name());
      pattern.scale = random.number();
      made->cut_pattern(pattern);
    }
    for (auto count = random.pick(4); count > 0; --count) {
      made->custom_value(text(random.name()), text(random.name()));
    }
    if (random.pick(2) == 0) {
      made->custom_value("Density [kg/m3]", text(kit::exact_number(random.number())));
    }
    library_->save(made);
    materials.push_back(made);
  }
  for (int i = 0; i < 60; ++i) {
    std::vector<Composition::Layer> layers;
    for (auto count = 1 + random.pick(5); count > 0; --count) {
      layers.emplace_back(materials[random.pick(materials.size())],
                          static_cast<Material::Function>(random.pick(3)), random.number());
    }
    const auto made = composition(random.name() + std::to_string(i), layers);
    made->structural_layer(static_cast<unsigned>(random.pick(layers.size())));
    if (random.pick(2) == 0) made->comments(text(random.name()));
    if (random.pick(2) == 0) made->custom_value(text(random.name()), text(random.name()));
    library_->save(made);
  }
  expect_identity();
}

TEST_P(WrittenIfc, reads_into_a_library_of_the_other_unit) {
  const auto brick = material("Brick");
  brick->thicknesses(toModify) = {254};
  library_->save(brick);
  library_->save(composition("Wall", {{brick, Material::Function::None, 127}}));
  const bool metric = GetParam() == Unit::Millimetres;
  const auto back =
      read_back(written_as("IFC", *library_), metric ? Unit::Inches : Unit::Millimetres);
  EXPECT_DOUBLE_EQ(back->get<Composition>(text("Wall"))->layers()[0].thickness(),
                   metric ? 5 : 127 * 25.4);
  EXPECT_DOUBLE_EQ(*back->get<Material>(text("Brick"))->thicknesses().begin(),
                   metric ? 10 : 254 * 25.4);
}

INSTANTIATE_TEST_SUITE_P(In, WrittenIfc, Values(Unit::Millimetres, Unit::Inches));

}  // namespace
}  // namespace veldra_tests
