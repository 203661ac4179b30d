// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <cmath>
#include <limits>
#include <regex>

namespace veldra_tests {
namespace {

const std::vector<const char*>& difficult_names() {
  static const std::vector<const char*> names{"it's \"quoted\" `twice` „so“ «and so»",
                                              "back\\slash / slash",
                                              "tab\tline\nreturn\rbell\x07 escape\x1b del\x7f",
                                              "Dämmstoff 木材 🧱 é e\xCC\x81",
                                              " blanks around ",
                                              "; , ! % _ & < > {}",
                                              "right to left \xE2\x80\xAE",
                                              "\xEF\xBF\xBE noncharacter"};
  return names;
}

class Export : public ProgramTest {
 protected:
  /// Every field of every kind has a value of its own.
  void fill(veldra::Library& office) {
    for (const char* name : difficult_names()) office.save(difficult_composition(name));
    office.save(veldra::Tag::create("used by nobody"));
    office.save(veldra::Layer::create("used by nobody"));
    office.save(veldra::MaterialType::create("used by nobody"));
    office.save(veldra::CustomProperty::create("both", veldra::ObjectType::Material));
    office.save(veldra::CustomProperty::create("both", veldra::ObjectType::Composition));
    office.save(veldra::CustomProperty::create("both", veldra::ObjectType{}));
    office.save(veldra::Composition::create("without layers"));
  }

  static std::shared_ptr<veldra::Material> difficult_material(const char* name) {
    const auto material = veldra::Material::create(name);
    material->description("description");
    material->comments(name);
    material->code((std::string("code ") + name).c_str());
    material->cost("12,50 €");
    material->keynote("keynote");
    material->label("label");
    material->manufacturer("manufacturer");
    material->mark("mark");
    material->model("model");
    material->url("https://example.org/?a=b&c");
    material->classification("classification");
    material->appearance("appearance");
    material->type(veldra::MaterialType::create(name));
    material->shading_use_appearance(true);
    material->shading_color({0.1, 0.2, 0.3, 1});
    material->surface_pattern({veldra::Pattern::Type::Lines, name, 0.1, 33.3});
    material->surface_pattern_color({1.0 / 3, 1e-300, 1e300, 0.5});
    material->surface_pattern_alignment({-0.0, 5e-324});
    material->cut_pattern({2.5, 45, true});
    material->cut_pattern_color({0, 0, 0, 1});
    material->cut_layer(veldra::Layer::create(name));
    material->function(static_cast<veldra::Material::Function>(-7));
    material->thicknesses(veldra::toModify) = {0.1, 12.5, 1e-7, -3,
                                               std::numeric_limits<double>::infinity()};
    material->allow_custom_thickness(false);
    material->custom_value(veldra::String(name), name);
    material->custom_value(veldra::CustomProperty::create("any", veldra::ObjectType{}), "value");
    material->addTag(veldra::Tag::create(name));
    material->addTag(veldra::Tag::create("second"));
    material->addTag(veldra::Tag::create(name));
    return material;
  }

  static std::shared_ptr<veldra::Composition> difficult_composition(const char* name) {
    using Function = veldra::Material::Function;
    const auto composition = veldra::Composition::create(name);
    const auto material = difficult_material(name);
    composition->description(name);
    composition->comments("comments");
    composition->type(veldra::Composition::Type::Roof);
    composition->entity_layer(veldra::Layer::create("entity layer"));
    composition->addTag(veldra::Tag::create(name));
    composition->custom_value(veldra::String(name), "value");
    composition->appendLayer({material, Function::None, 0.1 + 0.2});
    composition->appendLayer({material, Function::Structure, std::nan("")});
    composition->appendLayer({material, static_cast<Function>(9), -1});
    composition->last_core_layer(2);
    composition->first_core_layer(1);
    composition->structural_layer(2);
    composition->variable_layer(4000000000U);
    composition->variable_layer_min_thickness(std::nan(""));
    composition->variable_layer_max_thickness(1e10);
    return composition;
  }
};

TEST_F(Export, a_round_trip_gives_the_same_bytes) {
  fill(*library("a.lib"));
  const auto first = exported("a.lib");
  write("a.json", first);
  must({"create", "b.lib"});
  for (const char* library : {"b.lib", "c.lib"}) {
    const auto run = veldra({"import", library, "a.json"});
    EXPECT_EQ(run.status, 3) << "some of the numbers are wrong: " << run.err;
    EXPECT_EQ(exported(library), first);
  }
}

/// Makes a library of two walls of one brick, one of which has a tag.
class ExportOfObjects : public Export {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    const auto brick = veldra::Material::create("Brick");
    for (const char* name : {"Inner", "Outer"}) {
      const auto wall = veldra::Composition::create(name);
      wall->type(veldra::Composition::Type::Wall);
      wall->addTag(veldra::Tag::create(name));
      wall->appendLayer({brick, veldra::Material::Function::None, 100});
      office->save(wall);
    }
    office->save(veldra::Material::create("Wool"));
  }

  /// The names of the objects of a kind in what is written.
  static std::vector<std::string> names(const nlohmann::json& written, const char* kind) {
    std::vector<std::string> names;
    for (const auto& each : written.at(kind)) names.push_back(each.at("name"));
    return names;
  }
};

TEST_F(ExportOfObjects, writes_them_and_what_they_refer_to) {
  for (const std::vector<std::string>& objects :
       {std::vector<std::string>{"composition:Outer"},
        std::vector<std::string>{"compositions", "--where", "name = Outer"}}) {
    std::vector<std::string> command{"export", "a.lib"};
    command.insert(command.end(), objects.begin(), objects.end());
    const auto written = must(command).json();
    EXPECT_EQ(names(written, "compositions"), std::vector<std::string>{"Outer"});
    EXPECT_EQ(names(written, "materials"), std::vector<std::string>{"Brick"});
    EXPECT_EQ(written.at("tags"), nlohmann::json::array({"Outer"}));
  }
}

TEST_F(ExportOfObjects, gives_an_object_the_same_global_ids_as_the_library) {
  must({"export", "a.lib", "-o", "all.ifc"});
  must({"export", "a.lib", "composition:Outer", "-o", "one.ifc"});
  const std::regex wall("IFCWALLTYPE\\('([^']*)',\\$,'Outer'");
  const auto all = read("all.ifc");
  const auto one = read("one.ifc");
  std::smatch in_all;
  std::smatch in_one;
  ASSERT_TRUE(std::regex_search(all, in_all, wall));
  ASSERT_TRUE(std::regex_search(one, in_one, wall));
  EXPECT_EQ(in_all[1], in_one[1]);
  EXPECT_EQ(one.find("Inner"), std::string::npos);
}

TEST_F(ExportOfObjects, of_a_table_changes_the_library_again) {
  must({"export", "a.lib", "materials", "--where", "name = Wool", "-o", "a.csv"});
  write("b.csv", std::regex_replace(read("a.csv"), std::regex("Wool"), "Mineral wool"));
  must({"import", "a.lib", "b.csv"});
  EXPECT_EQ(count("a.lib", "materials"), 2U);
}

TEST_F(ExportOfObjects, tells_objects_that_are_not_there) {
  EXPECT_EQ(veldra({"export", "a.lib", "composition:Roof"}).status, 1);
  EXPECT_EQ(veldra({"export", "a.lib", "Roof"}).status, 2);
  EXPECT_EQ(veldra({"export", "a.lib", "--where", "name = x"}).status, 2);
  EXPECT_EQ(veldra({"export", "a.lib", "composition:Outer", "x=y"}).status, 2);
}

TEST_F(Export, a_second_import_changes_nothing) {
  fill(*library("a.lib"));
  write("a.json", exported("a.lib"));
  const auto report = veldra({"import", "a.lib", "a.json", "--json"}).json()[0];
  EXPECT_EQ(report["materials"]["equal"], difficult_names().size());
  EXPECT_EQ(report["compositions"]["equal"], difficult_names().size() + 1);
  EXPECT_EQ(exported("a.lib"), read("a.json"));
}

TEST_F(Export, settings_and_purged_types_come_along) {
  must({"create", "a.lib", "--unit", "in", "--locale", "de_AT", "--region", "AT"});
  must({"purge", "a.lib", "types"});
  write("a.json", exported("a.lib"));
  must({"import", "b.lib", "a.json"});
  EXPECT_EQ(exported("b.lib"), read("a.json"));
  EXPECT_EQ(count("b.lib", "types"), 0U);
}

TEST_F(Export, properties_for_unknown_kinds_of_objects_come_along) {
  for (const int kind : {-1, 99}) {
    library("a.lib")->save(
        veldra::CustomProperty::create("odd", static_cast<veldra::ObjectType>(kind)));
  }
  write("a.json", exported("a.lib"));
  must({"import", "b.lib", "a.json"});
  EXPECT_EQ(exported("b.lib"), read("a.json"));
}

TEST_F(Export, a_new_library_gives_a_round_trip) {
  must({"create", "a.lib"});
  write("a.json", exported("a.lib"));
  must({"import", "b.lib", "a.json"});
  EXPECT_EQ(exported("b.lib"), read("a.json"));
}

TEST_F(Export, objects_come_in_the_order_of_their_names_and_not_of_their_making) {
  library("a.lib")->save(veldra::Tag::create("b"));
  library("a.lib")->save(veldra::Tag::create("a"));
  library("b.lib")->save(veldra::Tag::create("a"));
  library("b.lib")->save(veldra::Tag::create("b"));
  EXPECT_EQ(exported("a.lib"), exported("b.lib"));
}

TEST_F(Export, a_file_gets_the_same_bytes_as_standard_output) {
  fill(*library("a.lib"));
  must({"export", "a.lib", "-o", "out.json"});
  EXPECT_EQ(read("out.json"), exported("a.lib"));
}

TEST_F(Export, json_tells_of_the_file_that_was_written) {
  fill(*library("a.lib"));
  for (const char* format : {"json", "csv"}) {
    const auto told =
        veldra({"export", "a.lib", "--format", format, "-o", "out", "--json", "--force"}).json();
    EXPECT_EQ(told["file"], "out");
    EXPECT_EQ(told["format"], format);
    EXPECT_EQ(told["bytes"], read("out").size());
    EXPECT_EQ(told["counts"], must({"info", "a.lib", "--json"}).json()["counts"]);
  }
}

TEST_F(Export, json_on_standard_output_is_the_library_itself) {
  fill(*library("a.lib"));
  EXPECT_EQ(must({"export", "a.lib", "--json"}).out, exported("a.lib"));
}

TEST_F(Export, a_file_that_cannot_be_written_gives_a_sentence) {
  must({"create", "a.lib"});
  const auto run = veldra({"export", "a.lib", "-o", "nowhere/out.json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
}

TEST_F(Export, standard_output_that_is_full_is_a_failure) {
  must({"create", "a.lib"});
  const auto run = veldra({"export", "a.lib", "-o", "/dev/full"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
}

TEST_F(Export, csv_has_a_table_for_each_kind) {
  const auto office = library("a.lib");
  const auto wall = veldra::Composition::create("Wall, \"outer\"");
  wall->appendLayer({difficult_material("Brick"), veldra::Material::Function::None, 115});
  office->save(wall);
  const auto table = [&](const char* name) {
    return veldra({"export", "a.lib", "--format", "csv", "--table", name}).out;
  };
  EXPECT_THAT(table("materials"), HasSubstr("\r\nmaterial,1,Brick,"));
  EXPECT_THAT(table("materials"), HasSubstr(",-3; 1e-07; 0.1; 12.5; inf,"));
  EXPECT_THAT(table("compositions"), HasSubstr("\r\ncomposition,1,\"Wall, \"\"outer\"\"\","));
  EXPECT_THAT(table("layers"), HasSubstr("\r\nlayer,\"Wall, \"\"outer\"\"\",1,Brick,115,0\r\n"));
  const auto run = veldra({"export", "a.lib", "-o", "a.csv"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(read("a.csv"), table("materials"));
  EXPECT_EQ(run.err,
            "veldra: a table holds the materials; --table compositions and --table layers "
            "write the others\n");
  EXPECT_EQ(veldra({"export", "a.lib", "--table", "walls", "--format", "csv"}).status, 2);
  EXPECT_EQ(veldra({"export", "a.lib", "--table", "layers"}).status, 2);
}

class ExportedFormat : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf", "Material, Brick, Rough, 0.115, 0.81, 1800, 1000; Construction, Wall, Brick;");
    must({"import", "a.lib", "a.idf"});
  }
};

TEST_F(ExportedFormat, is_that_of_the_ending_or_the_one_that_is_given) {
  const std::string idf = "Material,\n  Brick,  !- name\n";
  EXPECT_EQ(veldra({"export", "a.lib", "-o", "x.idf"}).status, 3) << "tags have no place in it";
  EXPECT_THAT(read("x.idf"), HasSubstr(idf));
  EXPECT_EQ(veldra({"export", "a.lib", "-o", "-", "--format", "IDF"}).out, read("x.idf"));
  EXPECT_THAT(veldra({"export", "a.lib", "--format", "epjson"}).out,
              HasSubstr("\"Material\": {\n    \"Brick\": {"));
  veldra({"export", "a.lib", "-o", "y.json", "--format", "epJSON"});
  EXPECT_EQ(read("y.json"), veldra({"export", "a.lib", "--format", "epjson"}).out);
  EXPECT_THAT(veldra({"export", "a.lib", "--format", "honeybee"}).out,
              HasSubstr("\"type\":\"EnergyMaterial\""));
  const auto ifc = must({"export", "a.lib", "-o", "x.ifc"});
  EXPECT_EQ(ifc.err, "") << "IFC has a place for everything";
  EXPECT_THAT(read("x.ifc"), HasSubstr("=IFCMATERIAL('Brick',"));
  must({"import", "b.lib", "x.ifc", "--tag", "a.idf"});
  EXPECT_EQ(veldra({"export", "b.lib"}).out, veldra({"export", "a.lib"}).out);
}

TEST_F(ExportedFormat, tells_what_it_has_no_place_for) {
  const auto run = veldra({"export", "a.lib", "-o", "x.idf"});
  EXPECT_EQ(run.err,
            "veldra: IDF has no place for 'tags' of composition, 1 value is left out\n"
            "veldra: IDF has no place for 'tags' of material, 1 value is left out\n");
  must({"untag", "a.lib", "material:Brick", "composition:Wall", "--tag", "a.idf"});
  EXPECT_EQ(must({"export", "a.lib", "-o", "x.idf", "--force"}).err, "");
}

TEST_F(ExportedFormat, tells_of_20_objects_that_are_written_otherwise_and_of_all_if_wanted) {
  std::string materials;
  for (int i = 0; i < 25; ++i) {
    materials +=
        (i > 0 ? "," : "") + std::string(R"({"name": "Brick, )") + std::to_string(i) +
        R"(", "thicknesses": [100], "custom_values": {"Thermal conductivity [W/(m K)]": "1"}})";
  }
  write("b.json", R"({"format": "veldra", "version": 1, "materials": [)" + materials + "]}");
  must({"import", "b.lib", "b.json"});
  const auto lines_told = [](const std::string& text) {
    const std::regex line("is written as");
    return std::distance(std::sregex_iterator(text.begin(), text.end(), line), {});
  };
  const auto folded = veldra({"export", "b.lib", "-o", "b.idf"}).err;
  EXPECT_EQ(lines_told(folded), 20);
  EXPECT_THAT(folded, HasSubstr("5 more are written otherwise than they are; --verbose"));
  EXPECT_EQ(lines_told(veldra({"export", "b.lib", "-o", "c.idf", "--verbose"}).err), 25);
}

TEST_F(ExportedFormat, that_can_only_be_read_is_wrong_use) {
  const auto run = veldra({"export", "a.lib", "--format", "OpenStudio standards"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("OpenStudio standards can only be read; there are writers for "
                                 "json, hbjson, epjson, gbxml, xlsx, idf, ifc, csv"));
  EXPECT_EQ(veldra({"export", "a.lib", "-o", "x.idf", "--format", "csv"}).status, 2);
}

TEST_F(ExportedFormat, goes_through_pipes) {
  const auto written = veldra({"export", "a.lib", "--format", "idf", "-o", "-"}).out;
  write("b.idf", written);
  const auto run = shell("veldra import b.lib - < b.idf");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(count("b.lib", "materials"), 1U);
}

TEST_F(ExportedFormat, comes_back_as_a_table_that_a_person_changed) {
  write("t.csv", "name;manufacturer;property:Density [kg/m3]\nBrick;Works;1800,5\n");
  const auto run = must({"import", "a.lib", "t.csv", "--locale", "de"});
  EXPECT_THAT(run.out, HasSubstr("manufacturer"));
  const auto brick = must({"show", "a.lib", "material", "Brick", "--json"}).json();
  EXPECT_EQ(brick["manufacturer"], "Works");
  EXPECT_EQ(brick["custom_values"]["Density [kg/m3]"], "1800.5");
  const auto german = must({"export", "a.lib", "--format", "csv", "--locale", "de"}).out;
  EXPECT_THAT(german, HasSubstr(";1800,5;"));
  write("t.csv", german);
  const auto again = must({"import", "a.lib", "t.csv", "--json"}).json()[0];
  EXPECT_EQ(again["materials"]["equal"], 1U);
  EXPECT_EQ(again["format"], "CSV");
}

TEST_F(ExportedFormat, of_a_region_may_have_any_sign_between_its_cells) {
  write("tabs.csv", "name\tproperty:Density [kg/m3]\tmark\nBrick\t1901,5\tt\n");
  write("commas.csv", "name,property:Density [kg/m3],mark\nBrick,\"1902,5\",c\n");
  write("semicolons.csv", "name;property:Density [kg/m3];mark\nBrick;1903,5;s\n");
  for (const auto& [table, density] :
       {std::pair("tabs.csv", "1901.5"), std::pair("commas.csv", "1902.5"),
        std::pair("semicolons.csv", "1903.5")}) {
    must({"import", "a.lib", table, "--locale", "de", "--on-conflict", "overwrite"});
    const auto brick = must({"show", "a.lib", "material", "Brick", "--json"}).json();
    EXPECT_EQ(brick["custom_values"]["Density [kg/m3]"], density) << table;
  }
  write("t.csv", "name;manufacturer, or trade\nBrick;Works\n");
  EXPECT_THAT(veldra({"import", "a.lib", "t.csv", "--locale", "de"}).err,
              HasSubstr("'manufacturer, or trade'"));
}

TEST_F(ExportedFormat, is_marked_as_utf8_for_spreadsheets_of_a_region) {
  const std::string mark = "\xEF\xBB\xBFkind";
  must({"export", "a.lib", "-o", "german.csv", "--locale", "de"});
  EXPECT_EQ(read("german.csv").substr(0, mark.size()), mark);
  must({"export", "a.lib", "-o", "plain.csv"});
  EXPECT_EQ(read("plain.csv").substr(0, 4), "kind");
}

TEST_F(ExportedFormat, has_tabs_between_cells_where_the_ending_says_so) {
  must({"export", "a.lib", "-o", "a.tsv"});
  EXPECT_THAT(read("a.tsv"), HasSubstr("kind\tid ["));
  must({"export", "a.lib", "-o", "german.tsv", "--locale", "de"});
  EXPECT_THAT(read("german.tsv"), HasSubstr("kind\tid ["));
  for (const char* table : {"a.tsv", "german.tsv"}) {
    EXPECT_EQ(must({"import", "a.lib", table, "--json"}).json()[0]["materials"]["equal"], 1U);
  }
}

TEST_F(ExportedFormat, of_tables_is_imported_by_itself_and_strictly_if_wanted) {
  write("t.csv", "name;function\nBrick;1\nStone;x\n");
  auto run = veldra({"import", "a.lib", "t.csv", "a.idf"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("'t.csv' is a table and 'a.idf' is none"));
  run = veldra({"import", "a.lib", "t.csv", "--tag", "x"});
  EXPECT_EQ(run.status, 1);
  run = veldra({"import", "a.lib", "t.csv", "--strict"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("'t.csv', line 3: material 'Stone'"));
  EXPECT_EQ(must({"show", "a.lib", "material", "Brick", "--json"}).json().count("function"), 0U);
  EXPECT_EQ(veldra({"import", "a.lib", "t.csv"}).status, 3);
  EXPECT_EQ(must({"show", "a.lib", "material", "Brick", "--json"}).json()["function"], 1);
}

TEST_F(ExportedFormat, is_read_up_to_a_size_that_can_be_given) {
  const auto run = veldra({"import", "b.lib", "a.idf", "--max-source", "20"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "veldra: 'a.idf': it is larger than 20 bytes\n");
  must({"import", "b.lib", "a.idf", "--max-source", "1KB"});
  const auto negative = veldra({"import", "c.lib", "a.idf", "--max-source", "-5"});
  EXPECT_EQ(negative.status, 2);
  EXPECT_THAT(negative.err, HasSubstr("--max-source: '-5' is less than 0"));
}

}  // namespace
}  // namespace veldra_tests
