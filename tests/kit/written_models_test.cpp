// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/random_values.hpp"
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <set>
#include <sstream>

namespace veldra_tests {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::WithParamInterface;

const char* const all_objects = R"(
Version, 9.4;
Material, Brick, MediumRough, 0.115, 0.81, 1800, 1000, 0.9, 0.65, 0.65;
Material, Dünne Platte, Smooth, 9.5e-3, .16, 950, 840;
Material:NoMass, Insulation, Rough, 3.5, 0.9;
Material:AirGap, Gap, 0.18;
Material:InfraredTransparent, Nothing;
Material:RoofVegetation, Green, 0.2, 1, 0.22, 0.95, 180, Soil, MediumRough, 0.12, 0.4, 641, 1100,
  0.95, 0.8, 0.7, 0.4, 0.01, 0.45, Advanced;
WindowMaterial:Glazing, Clear, SpectralAverage, , 0.003, 0.837, 0.075, 0.075, 0.898, 0.081, 0.081,
  0, 0.84, 0.84, 0.9, 1, No;
WindowMaterial:Glazing:RefractionExtinctionMethod, Refracting, 0.006, 1.5, 12, 1.52, 3, 0, 0.84, 1;
WindowMaterial:Gas, Argon gap, Argon, 0.0127;
WindowMaterial:Gas, Own gas, Custom, 0.01, 0.02, 1e-5, 0, 1e-6, 1e-8, 0, 1000, 0.1, 0, 40, 1.6;
WindowMaterial:GasMixture, Mixture, 0.012, 2, Air, 0.1, Krypton, 0.9;
WindowMaterial:Gap:EquivalentLayer, Vented, Air, 0.02, VentedIndoor;
WindowMaterial:SimpleGlazingSystem, Window as a whole, 1.3, 0.6, 0.7;
WindowMaterial:Shade, Blind of cloth, 0.1, 0.5, 0.1, 0.5, 0.9, 0, 0.002, 0.1, 0.05, 1, 1, 1, 1, 0.3;
WindowMaterial:Blind, Slats, Horizontal, 0.025, 0.018, 0.001, 45;
WindowMaterial:Screen, Mesh, ModelAsDiffuse, 0.6;
WindowMaterial:Drape:EquivalentLayer, Drape;
Construction, Wall, Brick, Insulation, Gap, Brick;
Construction, wall 2, BRICK, Dünne Platte;
Construction:InternalSource, Heated, 1, 2, 1, 0.15, , Brick, Dünne Platte;
Construction, Window, Clear, Argon gap, Clear;
)";

struct Case {
  const char* format;
  bool keep_unknown;
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << each.format << (each.keep_unknown ? " with all" : "");
}

class WrittenModel : public TestWithParam<Case> {
 protected:
  std::shared_ptr<Library> read(const std::vector<kit::Source>& sources, Unit unit) const {
    kit::SourceRules rules;
    rules.unit = unit;
    rules.tags = {"from a file"};
    rules.keep_unknown = GetParam().keep_unknown;
    const auto result = kit::read_together(sources, rules);
    return result.library;
  }

  /// A library as it is after it went through a file.
  std::shared_ptr<Library> read_back(const Library& library) const {
    const auto written = written_as(GetParam().format, library);
    return read({{"a", written.text}}, library.unit());
  }

  void expect_identity(const Library& library) const {
    const auto written = written_as(GetParam().format, library);
    for (const auto& field : written.report.not_written) {
      EXPECT_EQ(field.field, "tags") << field.object_class;
    }
    EXPECT_THAT(written.report.problems, IsEmpty());
    const auto back = read({{"a", written.text}}, library.unit());
    EXPECT_EQ(fields_of(*back), fields_of(library));
    EXPECT_EQ(written_as(GetParam().format, *back).text, written.text);
  }
};

TEST_P(WrittenModel, reads_back_to_what_came_in) {
  for (const auto unit : {Unit::Millimetres, Unit::Inches}) {
    SCOPED_TRACE(kit::name_of(unit));
    const auto library = read({{"a.idf", all_objects}}, unit);
    EXPECT_EQ(library->count<Material>(), 17U);
    EXPECT_EQ(library->count<Composition>(), 4U);
    expect_identity(*library);
  }
}

/// Writes random objects of the format, as a person might write them.
class RandomIdf : private RandomValues {
 public:
  using RandomValues::RandomValues;

  std::string text() {
    std::string text;
    const unsigned materials = 1 + number(12);
    for (unsigned i = 0; i < materials; ++i) text += material(i);
    const unsigned constructions = number(6);
    for (unsigned i = 0; i < constructions; ++i) {
      text += "Construction, c" + std::to_string(i);
      for (unsigned layers = 1 + number(10); layers > 0; --layers) {
        text += ", m" + std::to_string(number(materials));
      }
      text += ";\n";
    }
    return text;
  }

 private:
  std::string maybe() { return number(3) == 0 ? "" : value(); }

  std::string maybe_values(unsigned count) {
    std::string text;
    for (; count > 0; --count) text += "," + maybe();
    return text;
  }

  std::string material(unsigned index) {
    const std::string name = "m" + std::to_string(index);
    switch (number(8)) {
      case 0:
        return "Material:NoMass," + name + ",Rough" + maybe_values(4) + ";\n";
      case 1:
        return "Material:AirGap," + name + maybe_values(1) + ";\n";
      case 2:
        return "WindowMaterial:Gas," + name + ",Air," + value() + maybe_values(11) + ";\n";
      case 3:
        return "WindowMaterial:GasMixture," + name + "," + value() + ",2,Air,0.3,Argon,0.7;\n";
      case 4:
        return "WindowMaterial:Glazing," + name + ",SpectralAverage,," + value() +
               maybe_values(11) + ",No" + maybe_values(2) + ";\n";
      case 5:
        return "WindowMaterial:SimpleGlazingSystem," + name + maybe_values(3) + ";\n";
      case 6:
        return "WindowMaterial:Blind," + name + ",Horizontal" + maybe_values(27) + ";\n";
      default:
        return "Material," + name + "," + (number(2) == 0 ? "" : "VeryRough") + "," + value() +
               maybe_values(6) + ";\n";
    }
  }
};

TEST_P(WrittenModel, of_any_such_objects_reads_back_to_the_same) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    const auto text = RandomIdf(seed).text();
    SCOPED_TRACE(text);
    expect_identity(*read({{"a.idf", text}}, seed % 2 == 0 ? Unit::Millimetres : Unit::Inches));
    if (HasFailure()) return;
  }
}

TEST_P(WrittenModel, of_real_files_reads_back_to_the_same) {
  const char* folder = std::getenv("VELDRA_SHARED_DATA");
  if (folder == nullptr) GTEST_SKIP() << "VELDRA_SHARED_DATA names no folder";
  unsigned files = 0;
  for (const char* kind : {"idf", "epjson"}) {
    const auto place = std::filesystem::path(folder) / kind;
    if (!std::filesystem::exists(place)) GTEST_SKIP() << "there is no data";
    for (const auto& file : std::filesystem::directory_iterator(place)) {
      SCOPED_TRACE(file.path().filename());
      ++files;
      std::ostringstream content;
      content << std::ifstream(file.path(), std::ios::binary).rdbuf();
      expect_identity(*read({{"a", content.str()}}, Unit::Millimetres));
    }
  }
  EXPECT_GE(files, 8U);
}

TEST_P(WrittenModel, of_an_empty_library_is_of_the_format) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto written = written_as(GetParam().format, *library);
  EXPECT_TRUE(written.report.is_whole());
  EXPECT_EQ(kit::Source("a", written.text).format().name, GetParam().format);
}

TEST_P(WrittenModel, tells_what_a_library_holds_and_the_format_cannot) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  library->save(full_material("Oak"));
  library->save(full_composition("Wall"));
  const auto report = written_as(GetParam().format, *library).report;
  EXPECT_FALSE(report.is_whole());
  std::map<std::pair<std::string, std::string>, std::size_t> counts;
  for (const auto& each : report.not_written) counts[{each.object_class, each.field}] = each.count;
  const auto count = [&](const char* kind, const char* field) {
    return counts[std::make_pair(std::string(kind), std::string(field))];
  };
  for (const char* field : {"tags", "code", "type", "manufacturer", "shading_color", "cut_pattern",
                            "thicknesses", "cut_layer", "function"}) {
    EXPECT_EQ(count("material", field), 4U) << field;
  }
  EXPECT_EQ(count("material", "name"), 0U);
  EXPECT_EQ(count("material", "property:Oak property 1"), 1U);
  for (const char* field : {"tags", "type", "description", "entity_layer", "structural_layer",
                            "property:Wall property 2"}) {
    EXPECT_EQ(count("composition", field), 1U) << field;
  }
  EXPECT_EQ(count("composition", "layers.thickness"), 0U);
}

TEST_P(WrittenModel, tells_of_values_that_the_format_demands) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto brick = with_custom("Brick", "Density [kg/m3]", "1800");
  brick->thicknesses(toModify) = {115};
  library->save(brick);
  std::vector<std::string> missing;
  for (const auto& field : written_as(GetParam().format, *library).report.missing) {
    missing.push_back(field.object_class + "." + field.field);
  }
  EXPECT_THAT(missing,
              ElementsAre("Material.conductivity", "Material.roughness", "Material.specific_heat"));
}

TEST_P(WrittenModel, has_a_material_for_each_thickness_of_its_layers) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto brick = with_custom("Brick", "Density [kg/m3]", "1800");
  brick->thicknesses(toModify) = {115, 240};
  const auto wall = Composition::create(text("Wall"));
  for (const double thickness : {115.0, 240.0, 300.0}) {
    wall->appendLayer({brick, Material::Function::None, thickness});
  }
  library->save(wall);
  const auto back = read_back(*library);
  const auto layers = back->get<Composition>(text("Wall"))->layers();
  ASSERT_EQ(layers.size(), 3U);
  const std::vector<std::string> names{"Brick", "Brick (240 mm)", "Brick (300 mm)"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(layers[i].material()->name().utf8(), names[i]);
    EXPECT_EQ(layers[i].thickness(), (std::vector<double>{115, 240, 300})[i]);
  }
  EXPECT_EQ(back->get<Material>(text("Brick (300 mm)"))->custom_value("Density [kg/m3]").get(),
            text("1800"));
  EXPECT_THAT(written_as(GetParam().format, *library).report.problems,
              Contains("material 'Brick': in layers of 240 mm it is written as 'Brick (240 mm)'"));
}

TEST_P(WrittenModel, leaves_out_what_it_cannot_hold_at_all_and_says_so) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  library->save(Material::create(text("Loose")));
  library->save(Composition::create(text("Empty")));
  const auto brick = Material::create(text("Odd"));
  brick->thicknesses(toModify) = {std::numeric_limits<double>::infinity()};
  const auto wall = Composition::create(text("Wall"));
  wall->appendLayer({brick, Material::Function::None, -1});
  library->save(wall);
  const auto high = Composition::create(text("High"));
  const auto board = with_custom("Board", "Thermal resistance [m2 K/W]", "1");
  for (int i = 0; i < 11; ++i) high->appendLayer({board, Material::Function::None, 0});
  library->save(high);
  const auto written = written_as(GetParam().format, *library);
  EXPECT_THAT(written.report.problems,
              testing::UnorderedElementsAre(
                  "material 'Loose' is not written: it has no thickness",
                  "material 'Odd' is not written: it has no thickness",
                  "composition 'Empty' is not written: it has no layers",
                  "composition 'Wall' is not written: its material 'Odd' is not",
                  "composition 'High' is not written: it has 11 layers, of which the format "
                  "takes 10"));
  const auto back = read({{"a", written.text}}, Unit::Millimetres);
  EXPECT_EQ(back->count<Material>(), 1U);
  EXPECT_EQ(back->count<Composition>(), 0U);
}

TEST_P(WrittenModel, never_breaks_by_names_and_values) {
  const std::vector<std::string> names{
      "a, b",     "a; b", "a! b",  "a\nb",     "a\r\nb", " a ", "A", "a",    ";",
      "Material", "a\tb", "\"a\"", "a\\u0041", "{}",     "Ä",   "ä", "a_ b", "Construction"};
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  const auto wall = Composition::create(text("Wall, of all; of these!"));
  for (const auto& name : names) {
    const auto material = with_custom(name, "Roughness", name);
    material->custom_value(text("Density [kg/m3]"), text(name + ",1;"));
    material->thicknesses(toModify) = {1};
    library->save(material);
    if (wall->layers().size() < 10) wall->appendLayer({material, Material::Function::None, 1});
  }
  library->save(wall);
  const auto written = written_as(GetParam().format, *library);
  const auto back = read({{"a", written.text}}, Unit::Millimetres);
  EXPECT_EQ(back->count<Material>(), names.size());
  std::vector<std::shared_ptr<Composition>> walls;
  back->get(walls);
  ASSERT_EQ(walls.size(), 1U);
  EXPECT_EQ(walls[0]->layers().size(), 10U);
  std::set<std::string> folded;
  back->for_each<Material>([&](const std::shared_ptr<Material>& material) {
    EXPECT_TRUE(folded.insert(kit::lower_case(material->name().utf8())).second);
    return true;
  });
  EXPECT_THAT(written.report.problems, Contains(HasSubstr("material ' a ' is written as 'a")));
}

INSTANTIATE_TEST_SUITE_P(Formats, WrittenModel,
                         Values(Case{"IDF", false}, Case{"IDF", true}, Case{"epJSON", false},
                                Case{"epJSON", true}));

TEST(WrittenIdf, is_as_people_know_it) {
  kit::SourceRules rules;
  const auto sources = kit::read_together(
      {{"a", "Material:AirGap, Gap, 0.18; Construction, Cavity, GAP, gap;"}}, rules);
  EXPECT_EQ(written_as("IDF", *sources.library).text, R"(Version,9.4;

Material:AirGap,
  Gap,  !- name
  0.18;  !- thermal_resistance

Construction,
  Cavity,  !- name
  Gap,  !- outside_layer
  Gap;  !- layer_2
)");
}

TEST(WrittenEpjson, is_as_people_know_it) {
  kit::SourceRules rules;
  const auto sources = kit::read_together(
      {{"a", "Material:AirGap, Gap, 0.18; Construction, Cavity, GAP, gap;"}}, rules);
  EXPECT_EQ(written_as("epJSON", *sources.library).text, R"({
  "Version": {"Version 1": {"version_identifier": "9.4"}},
  "Material:AirGap": {
    "Gap": {"thermal_resistance":0.18}
  },
  "Construction": {
    "Cavity": {"outside_layer":"Gap","layer_2":"Gap"}
  }
}
)");
}

TEST(WrittenModels, of_a_library_without_objects_are_of_their_format) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  for (const auto& format : kit::formats()) {
    if (!format.writable) continue;
    const auto written = written_as(format.name, *library).text;
    EXPECT_EQ(kit::Source("a", written).format().name, format.name) << written;
  }
}

}  // namespace
}  // namespace veldra_tests
