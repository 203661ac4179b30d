// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/written.hpp"

#include "support/builders.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace veldra_tests {
namespace {

using testing::AnyOf;
using testing::Contains;

/// How many values of a field came back from a format, and how many did not.
struct Fate {
  std::size_t kept = 0;
  std::size_t lost = 0;
};

/// Of each field, by the kind of objects and the name of the field.
using FieldName = std::pair<std::string, std::string>;
using Fates = std::map<FieldName, Fate>;

constexpr const char* file_tag = "from a file";

/// Properties as the table has them.
std::string group_of(const std::string& property) {
  static const std::map<std::string, std::string> groups{
      {"Thermal conductivity [W/(m K)]", "conductivity, density, specific heat"},
      {"Density [kg/m3]", "conductivity, density, specific heat"},
      {"Specific heat [J/(kg K)]", "conductivity, density, specific heat"},
      {"Thermal resistance [m2 K/W]", "thermal resistance"},
      {"Roughness", "roughness, absorptances"},
      {"Thermal absorptance [-]", "roughness, absorptances"},
      {"Solar absorptance [-]", "roughness, absorptances"},
      {"Solar transmittance [-]", "optical values, gases"},
      {"Front infrared emissivity [-]", "optical values, gases"},
      {"Gas type", "optical values, gases"},
      {"Optical data type", "optical values, gases"},
      {"U-factor [W/(m2 K)]", "U-factor"}};
  const auto found = groups.find(property);
  return found != groups.end() ? found->second : "other custom properties";
}

/// Makes libraries as people have them, and with whatever else a library takes.
class RandomLibrary {
 public:
  explicit RandomLibrary(unsigned seed)
      : random_(seed),
        library_(
            Library::create(":memory:", seed % 2 == 0 ? Unit::Millimetres : Unit::Inches, "")) {
    library_->purge<MaterialType>();
    for (unsigned i = 0; i < 12; ++i) add_material(i);
    for (unsigned i = 0; i < 6; ++i) add_composition(i);
  }

  const Library& library() const { return *library_; }

 private:
  unsigned number(unsigned below) { return static_cast<unsigned>(random_() % below); }
  bool maybe() { return number(2) == 0; }
  double share() { return number(11) / 10.0; }
  double length() { return (1 + number(400)) / (library_->unit() == Unit::Inches ? 16.0 : 1.0); }
  String word() { return text("word " + std::to_string(number(1000))); }

  void set(Material& material, const char* property, const std::string& value) {
    if (number(4) != 0) material.custom_value(text(property), text(value));
  }

  void set(Material& material, const char* property) {
    set(material, property, std::to_string(1 + number(3000)));
  }

  void add_solid(Material& material) {
    set(material, "Thermal conductivity [W/(m K)]");
    set(material, "Density [kg/m3]");
    set(material, "Specific heat [J/(kg K)]");
    set(material, "Roughness", "Rough");
    set(material, "Thermal absorptance [-]", "0.9");
    set(material, "Solar absorptance [-]", "0.7");
    if (number(4) == 0) set(material, "Thermal resistance [m2 K/W]");
    material.thicknesses(toModify) = {length()};
    if (number(4) == 0) material.thicknesses(toModify).insert(length());
  }

  /// Sorts of materials that formats have classes for, and others.
  void add_sort(Material& material) {
    switch (number(6)) {
      case 0:
        material.type(MaterialType::create("No mass"));
        return set(material, "Thermal resistance [m2 K/W]");
      case 1:
        material.type(MaterialType::create("Air gap"));
        return set(material, "Thermal resistance [m2 K/W]");
      case 2:
        material.type(MaterialType::create("Glazing"));
        material.thicknesses(toModify) = {length()};
        set(material, "Thermal conductivity [W/(m K)]");
        set(material, "Solar transmittance [-]", "0.6");
        set(material, "Optical data type", "SpectralAverage");
        return set(material, "Front infrared emissivity [-]", "0.84");
      case 3:
        material.type(MaterialType::create("Gas"));
        material.thicknesses(toModify) = {length()};
        return material.custom_value(text("Gas type"), text("Argon"));
      case 4:
        material.type(MaterialType::create("Opaque"));
        return add_solid(material);
      default:
        if (maybe()) material.type(MaterialType::create(word()));
        return add_solid(material);
    }
  }

  void add_texts(Material& material) {
    using M = Material;
    using Setter = void (M::*)(const String&);
    for (const Setter setter :
         {static_cast<Setter>(&M::description), static_cast<Setter>(&M::comments),
          static_cast<Setter>(&M::cost), static_cast<Setter>(&M::keynote),
          static_cast<Setter>(&M::label), static_cast<Setter>(&M::manufacturer),
          static_cast<Setter>(&M::mark), static_cast<Setter>(&M::model),
          static_cast<Setter>(&M::url), static_cast<Setter>(&M::classification),
          static_cast<Setter>(&M::appearance)}) {
      if (maybe()) (material.*setter)(word());
    }
  }

  Pattern pattern() {
    Pattern pattern(Pattern::Type::Lines, word(), length(), 45);
    pattern.cross = maybe();
    return pattern;
  }

  void add_looks(Material& material) {
    if (maybe()) material.shading_use_appearance(true);
    if (maybe()) material.shading_color({share(), share(), share(), share()});
    if (maybe()) material.surface_pattern(pattern());
    if (maybe()) material.surface_pattern_color({share(), share(), share(), share()});
    if (maybe()) material.surface_pattern_alignment({share(), length()});
    if (maybe()) material.cut_pattern(pattern());
    if (maybe()) material.cut_pattern_color({share(), share(), share(), share()});
    if (maybe()) material.cut_layer(Layer::create(word()));
  }

  void add_material(unsigned index) {
    auto material = Material::create(text("m" + std::to_string(index)));
    add_sort(*material);
    add_texts(*material);
    add_looks(*material);
    if (maybe()) material->code(text("code " + std::to_string(index)));
    if (maybe()) material->addTag(Tag::create(word()));
    if (maybe()) material->function(static_cast<Material::Function>(number(10)));
    if (maybe()) material->allow_custom_thickness(false);
    if (maybe()) material->custom_value(word(), word());
    if (maybe()) material->custom_value(CustomProperty::create("Any", ObjectType{}), word());
    library_->save(material);
    materials_.push_back(material);
  }

  void add_layers(Composition& composition) {
    for (auto count = 1 + number(6); count > 0; --count) {
      const auto& material = materials_[number(static_cast<unsigned>(materials_.size()))];
      const auto& own = material->thicknesses();
      const bool other = number(5) == 0;
      const double thickness = !other && !own.empty() ? *own.begin() : other ? length() : 0;
      composition.appendLayer({material, static_cast<Material::Function>(number(3)), thickness});
    }
    const auto last = static_cast<unsigned>(composition.layers().size() - 1);
    const auto first = number(last + 1);
    const auto within = [&] { return first + number(last + 1 - first); };
    composition.last_core_layer(last);
    composition.first_core_layer(first);
    composition.structural_layer(within());
    composition.last_core_layer(std::max(composition.structural_layer(), within()));
  }

  void add_composition(unsigned index) {
    auto composition = Composition::create(text("c" + std::to_string(index)));
    add_layers(*composition);
    if (maybe()) composition->type(static_cast<Composition::Type>(number(4)));
    if (maybe()) composition->description(word());
    if (maybe()) composition->comments(word());
    if (maybe()) composition->addTag(Tag::create(word()));
    if (maybe()) composition->entity_layer(Layer::create(word()));
    if (maybe()) composition->variable_layer(number(9));
    if (maybe()) composition->variable_layer_min_thickness(length());
    if (maybe()) composition->variable_layer_max_thickness(length());
    if (maybe()) composition->custom_value(composition_property("Own"), word());
    if (maybe()) composition->custom_value(composition_property("U-factor [W/(m2 K)]"), "0.25");
    library_->save(composition);
  }

  std::mt19937 random_;
  std::shared_ptr<Library> library_;
  std::vector<std::shared_ptr<Material>> materials_;
};

/// A library as it is after it went through a format, and what writing it told.
struct ThereAndBack {
  std::shared_ptr<Library> library;
  std::vector<std::string> problems;
  std::map<FieldName, std::size_t> not_written;
  std::size_t objects = 0;  ///< that were written

  void add(const kit::WriteReport& report) {
    for (const auto& written : report.written) objects += written.second;
    problems.insert(problems.end(), report.problems.begin(), report.problems.end());
    for (const auto& field : report.not_written) {
      not_written[{field.object_class, field.field}] += field.count;
    }
  }
};

std::shared_ptr<Library> empty_library(Unit unit) {
  const auto library = Library::create(":memory:", unit, "");
  library->purge<MaterialType>();
  return library;
}

std::shared_ptr<Library> from_tables(const std::vector<kit::Source>& tables, Unit unit) {
  const auto library = empty_library(unit);
  const auto sources = kit::read_tables(tables, library, {});
  for (const auto& report : sources.reports) {
    for (const auto& problem : report.problems) EXPECT_TRUE(problem.doubt) << problem.text();
  }
  kit::PlanRules rules;
  rules.states_of = sources.states_of;
  kit::Plan(sources.library, *library, rules).apply(*library);
  return library;
}

ThereAndBack there_and_back(const std::string& format, const Library& library) {
  ThereAndBack result;
  std::vector<std::string> texts;
  const std::vector<std::string> tables =
      format == "CSV" ? std::vector<std::string>{"materials", "compositions", "layers"}
                      : std::vector<std::string>{"materials"};
  for (const auto& table : tables) {
    kit::WriteRules rules;
    rules.table = table;
    const auto written = written_as(format, library, rules);
    result.add(written.report);
    texts.push_back(written.text);
  }
  if (result.objects == 0) {
    result.library = empty_library(library.unit());  // nothing tells the format
    return result;
  }
  std::vector<kit::Source> sources;
  for (const auto& text : texts) sources.emplace_back("a", text);
  if (sources.front().is_table()) {
    result.library = from_tables(sources, library.unit());
    return result;
  }
  kit::SourceRules rules;
  rules.unit = library.unit();
  rules.tags = {file_tag};
  result.library = kit::read_together(sources, rules).library;
  return result;
}

bool say_the_same(const std::string& left, const std::string& right) {
  return left == right || (kit::number_in(left) && kit::number_in(left) == kit::number_in(right));
}

/// Compares the objects of two libraries, value by value.
class Comparing {
 public:
  Comparing(const Library& before, const ThereAndBack& after) : before_(before), after_(after) {
    compare_all<Material>();
    compare_all<Composition>();
  }

  Fates fates;               ///< of the fields as the report calls them
  std::size_t left_out = 0;  ///< objects that did not come back
  std::size_t came_back = 0;

 private:
  template <class T>
  void compare_all() {
    before_.for_each<T>([this](const std::shared_ptr<T>& object) {
      const auto back = after_.library->get<T>(text(name_after(*object)));
      if (!back) {
        ++left_out;
        EXPECT_THAT(after_.problems, Contains(AllOf(HasSubstr("'" + object->name().utf8() + "'"),
                                                    HasSubstr("is not written"))));
        return true;
      }
      ++came_back;
      without_tag_of_file(*back);
      back->name(object->name());  // where it has another one, that is told
      compare_fields(*object, *back, *blank(*object));
      compare_custom_values(*object, *back);
      compare_layers(*object, *back);
      return true;
    });
  }

  /// The name that an object has after it was written, as the report tells it.
  template <class T>
  std::string name_after(const T& object) const {
    const auto name = object.name().utf8();
    const auto kind = std::string(kit::singular_of(ObjectTraits<T>::type));
    const auto told = kind + " '" + name + "' is written as '";
    for (const auto& problem : after_.problems) {
      if (problem.compare(0, told.size(), told) != 0) continue;
      return problem.substr(told.size(), problem.find("', as ") - told.size());
    }
    return name;
  }

  template <class T>
  static void without_tag_of_file(T& object) {
    auto tags = object.tags();
    tags.erase(std::remove_if(tags.begin(), tags.end(),
                              [](const auto& tag) { return tag->name() == text(file_tag); }),
               tags.end());
    object.tags(toModify) = tags;
  }

  /// An object of which nothing is known; a composition has as many layers.
  static std::shared_ptr<Material> blank(const Material&) { return Material::create("blank"); }
  static std::shared_ptr<Composition> blank(const Composition& composition) {
    auto blank = Composition::create("blank");
    for (const auto& layer : composition.layers()) blank->appendLayer(layer);
    return blank;
  }

  template <class T>
  Fate& fate(const T&, const std::string& field) {
    return fates[{kit::singular_of(ObjectTraits<T>::type), field}];
  }

  template <class T>
  void compare_fields(const T& before, const T& after, const T& blank) {
    for (const auto& field : kit::built_in_fields<T>()) {
      if (field.origin != kit::Origin::Stored || field.kind == kit::Value::Kind::Layers) continue;
      const auto value = field.get(before);
      auto& count = fate(before, field.name());
      if (value != field.get(after)) ++count.lost;
      if (value == field.get(after) && value != field.get(blank)) ++count.kept;
    }
  }

  template <class T>
  void compare_custom_values(const T& before, const T& after) {
    for (const auto& [property, value] : before.custom_values()) {
      const auto found = after.custom_value(property->name());
      const bool kept = !found.null() && say_the_same(value.utf8(), found.get().utf8());
      auto& count = fate(before, "property:" + property->name().utf8());
      ++(kept ? count.kept : count.lost);
    }
  }

  void compare_layers(const Material&, const Material&) {}
  void compare_layers(const Composition& before, const Composition& after) {
    ASSERT_EQ(before.layers().size(), after.layers().size()) << before.name().utf8();
    for (std::size_t i = 0; i < before.layers().size(); ++i) {
      const auto& one = before.layers()[i];
      const auto& other = after.layers()[i];
      const auto count = [&](const char* field, bool kept) {
        auto& each = fate(before, field);
        ++(kept ? each.kept : each.lost);
      };
      const auto name = name_after(*one.material());
      EXPECT_EQ(other.material()->name().utf8().compare(0, name.size(), name), 0)
          << "a layer has another material";
      count("layers.thickness", one.thickness() == other.thickness());
      count("layers.function", one.function() == other.function());
    }
  }

  const Library& before_;
  const ThereAndBack& after_;
};

/// What is written of a library is lost exactly where the report says so; gives the fates of its
/// fields.
Fates fates_of(const std::string& format, const Library& library) {
  const auto after = there_and_back(format, library);
  const Comparing comparing(library, after);
  std::map<FieldName, std::size_t> lost;
  for (const auto& [field, fate] : comparing.fates) {
    if (fate.lost > 0) lost[field] = fate.lost;
  }
  EXPECT_EQ(after.not_written, lost);
  return comparing.fates;
}

/// The row of the table for a field.
std::string row_of(const FieldName& field) {
  const bool custom = field.second.compare(0, 9, "property:") == 0;
  return field.first + ": " + (custom ? group_of(field.second.substr(9)) : field.second);
}

const char* word_for(const Fate& fate) {
  if (fate.lost == 0) return "yes";
  return fate.kept == 0 ? "no" : "part";
}

const std::vector<std::string>& written_formats() {
  static const std::vector<std::string> formats{"IDF", "epJSON", "honeybee", "gbXML",
                                                "IFC", "CSV",    "XLSX",     "veldra"};
  return formats;
}

TEST(WhatIsKept, is_what_the_page_says) {
  std::map<std::string, std::map<std::string, Fate>> fates;  // by row and format
  for (const auto& format : written_formats()) {
    SCOPED_TRACE(format);
    for (unsigned seed = 0; seed < 12; ++seed) {
      SCOPED_TRACE(seed);
      for (const auto& [field, fate] : fates_of(format, RandomLibrary(seed).library())) {
        auto& sum = fates[row_of(field)][format];
        sum.kept += fate.kept;
        sum.lost += fate.lost;
      }
      if (HasFailure()) return;
    }
  }
  std::string table;
  for (const auto& [row, by_format] : fates) {
    table += "| " + row + " |";
    for (const auto& format : written_formats()) {
      table += std::string(" ") + word_for(by_format.at(format)) + " |";
    }
    table += "\n";
  }
  std::ostringstream page;
  page << std::ifstream(VELDRA_FORMATS_PAGE).rdbuf();
  EXPECT_THAT(page.str(), HasSubstr(table));
}

/// What is written of a library tells what is lost of it, whatever the format.
void expect_true_reports(const Library& library) {
  for (const auto& format : written_formats()) {
    SCOPED_TRACE(format);
    fates_of(format, library);
  }
}

TEST(WhatIsKept, is_told_of_full_objects) {
  const auto library = empty_library(Unit::Millimetres);
  library->save(full_material("Oak"));
  library->save(full_composition("Wall"));
  expect_true_reports(*library);
}

/// The sources in a folder.
std::vector<kit::Source> sources_in(const std::filesystem::path& folder) {
  std::vector<kit::Source> sources;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    const auto ending = file.path().extension();
    if (ending != ".idf" && ending != ".epJSON" && ending != ".json") continue;
    std::ostringstream content;
    content << std::ifstream(file.path(), std::ios::binary).rdbuf();
    sources.emplace_back(file.path().filename(), content.str());
  }
  EXPECT_GE(sources.size(), 2U) << folder;
  return sources;
}

TEST(WhatIsKept, is_told_of_a_catalogue) {
  expect_true_reports(*kit::read_together(sources_in(VELDRA_CATALOGUE), {}).library);
}

TEST(WhatIsKept, is_told_of_real_files) {
  const char* folder = std::getenv("VELDRA_SHARED_DATA");
  if (folder == nullptr) GTEST_SKIP() << "VELDRA_SHARED_DATA names no folder";
  for (const char* kind : {"idf", "epjson"}) {
    for (const auto& source : sources_in(std::filesystem::path(folder) / kind)) {
      SCOPED_TRACE(source.file());
      expect_true_reports(*kit::read_together({source}, {}).library);
    }
  }
}

}  // namespace
}  // namespace veldra_tests
