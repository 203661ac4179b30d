// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

/// A library with two materials and two compositions of them.
class Edit : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material, Brick, Rough, 0.115, 1, 1800, 1000; Material, Wool, Rough, 0.1, 0.04, 1, 100;"
          "Construction, Wall, Brick, Wool; Construction, Roof, Wool;");
    must({"import", "a.lib", "a.idf", "--tag", "draft"});
  }

  nlohmann::json shown(const std::string& kind, const std::string& name) {
    return must({"show", "a.lib", kind, name, "--json"}).json();
  }

  /// The change of one field in a report, as "old -> new".
  static std::string change(const nlohmann::json& report, const std::string& field) {
    for (const auto& entry : report) {
      for (const auto& change : entry.value("changes", nlohmann::json::array())) {
        if (change["field"] != field) continue;
        return change["old"].dump() + " -> " + change["new"].dump();
      }
    }
    return "";
  }

  /// The command refuses, says that and nothing else, and writes nothing.
  void expect_refusal(const std::vector<std::string>& arguments, const std::string& sentence) {
    const auto before = read("a.lib");
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr(sentence)));
    EXPECT_TRUE(read("a.lib") == before);
  }

  void expect_wrong_use(const std::vector<std::string>& arguments, const std::string& sentence) {
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 2) << run.err;
    EXPECT_THAT(run.err, HasSubstr(sentence));
  }
};

class EditSet : public Edit {};

TEST_F(EditSet, changes_a_field_and_tells_the_old_and_the_new_value) {
  const auto run = must({"set", "a.lib", "material:Brick", "manufacturer=Smith"});
  EXPECT_EQ(run.out, "material  Brick  changed\n    manufacturer: nothing -> Smith\n");
  EXPECT_EQ(shown("material", "Brick")["manufacturer"], "Smith");
}

TEST_F(EditSet, leaves_all_else_as_it_was) {
  auto before = shown("material", "Brick");
  must({"set", "a.lib", "material:Brick", "manufacturer=Smith"});
  auto after = shown("material", "Brick");
  after.erase("manufacturer");
  before.erase("manufacturer");
  EXPECT_EQ(after, before);
}

TEST_F(EditSet, and_filters_know_functions_by_their_words) {
  must({"set", "a.lib", "material:Brick", "function=structure"});
  EXPECT_EQ(shown("material", "Brick")["function"].dump(), "1");
  EXPECT_THAT(must({"list", "a.lib", "materials", "--where", "function = structure"}).out,
              HasSubstr("Brick"));
  must({"set", "a.lib", "material:Brick", "function=none"});
  EXPECT_THAT(must({"list", "a.lib", "materials", "--where", "function = Structure"}).out,
              Not(HasSubstr("Brick")));
}

TEST_F(EditSet, of_a_quantity_writes_its_custom_property) {
  must({"set", "a.lib", "material:Brick", "conductivity=0.81"});
  const auto quantity = shown("material", "Brick")["quantities"]["conductivity"];
  EXPECT_EQ(quantity["value"], 0.81);
  EXPECT_EQ(quantity["source"], "custom_property");
}

TEST_F(EditSet, takes_several_objects_of_several_kinds) {
  const auto report =
      must({"set", "a.lib", "material:Brick", "composition:Wall", "comments=seen", "--json"})
          .json();
  EXPECT_THAT(report, SizeIs(2));
  EXPECT_EQ(shown("material", "Brick")["comments"], "seen");
  EXPECT_EQ(shown("composition", "Wall")["comments"], "seen");
}

TEST_F(EditSet, takes_all_that_a_filter_selects) {
  const auto report =
      must({"set", "a.lib", "materials", "--where", "name ~ oo", "comments=soft", "--json"}).json();
  ASSERT_THAT(report, SizeIs(1));
  EXPECT_EQ(report[0]["name"], "Wool");
  EXPECT_EQ(report[0]["outcome"], "changed");
}

TEST_F(EditSet, of_nothing_that_a_filter_selects_does_nothing) {
  const auto before = read("a.lib");
  EXPECT_EQ(must({"set", "a.lib", "material", "--where", "name = Gold", "comments=x"}).out,
            "There was nothing to do.\n");
  EXPECT_TRUE(read("a.lib") == before);
}

TEST_F(EditSet, to_what_is_there_writes_nothing) {
  must({"set", "a.lib", "material:Brick", "manufacturer=Smith"});
  const auto before = read("a.lib");
  EXPECT_EQ(must({"set", "a.lib", "material:Brick", "manufacturer=Smith"}).out,
            "material  Brick  equal\n");
  EXPECT_TRUE(read("a.lib") == before);
}

TEST_F(EditSet, to_an_empty_value_clears) {
  must({"set", "a.lib", "material:Brick", "manufacturer=Smith", "conductivity=0.81"});
  must({"set", "a.lib", "material:Brick", "manufacturer=", "conductivity="});
  EXPECT_FALSE(shown("material", "Brick").contains("quantities") &&
               shown("material", "Brick")["quantities"].contains("conductivity"));
  EXPECT_FALSE(shown("material", "Brick").contains("manufacturer"));
}

TEST_F(EditSet, of_a_wrong_value_names_field_value_and_what_is_allowed) {
  expect_refusal({"set", "a.lib", "material:Brick", "comments=x", "density=heavy"},
                 "'a.lib': 'heavy' is no value for 'density': it must be a number, in kg/m³");
  expect_refusal({"set", "a.lib", "composition:Wall", "type=Wal"},
                 "'Wal' is no value for 'type': it must be one of wall, floor, roof, other");
  expect_refusal({"set", "a.lib", "composition:Wall", "U=0.2"}, "it can only be read");
}

TEST_F(EditSet, of_a_value_that_nobody_can_compute_with_is_refused_under_every_name) {
  const std::string conductivity = "Thermal conductivity [W/(m K)]";
  for (const char* value : {"abc", "-3", "nan", "0"}) {
    expect_refusal({"set", "a.lib", "material:Brick", conductivity + "=" + value},
                   "'a.lib': material 'Brick': its thermal conductivity is no");
  }
  expect_refusal({"set", "a.lib", "material:Brick", "--property", "Bridge share [-]=7"},
                 "material 'Brick': its 'Bridge share [-]' is greater than 1: '7'");
  expect_refusal({"set", "a.lib", "composition:Wall", "--property", "Boundary=beyond"},
                 "composition 'Wall': 'beyond'");
  expect_refusal({"set", "a.lib", "composition:Wall", "variable_layer=7"}, "layer");
  expect_refusal({"new", "a.lib", "material", "Cork", "--property", conductivity + "=no"},
                 "material 'Cork': its thermal conductivity is no");
}

TEST_F(EditSet, of_several_objects_names_the_one_that_cannot_have_the_value) {
  expect_refusal({"set", "a.lib", "composition:Wall", "composition:Roof", "structural_layer=2"},
                 "'a.lib': composition 'Roof': '2' is no value for 'structural_layer': ");
}

TEST_F(EditSet, of_a_field_that_is_not_there_names_the_nearest) {
  expect_refusal({"set", "a.lib", "material:Brick", "manufactuer=x"},
                 "materials have no field 'manufactuer'; did you mean 'manufacturer'?");
  expect_refusal({"set", "a.lib", "material:Brick", "manufactuer=x"},
                 "; --property makes a custom property of that name");
}

TEST_F(EditSet, makes_a_custom_property_only_where_that_is_asked_for) {
  must({"set", "a.lib", "material:Brick", "--property", "Fire class=A1"});
  EXPECT_EQ(shown("material", "Brick")["custom_values"]["Fire class"], "A1");
  const auto report = must({"set", "a.lib", "material:Brick", "Fire class=A2", "--json"}).json();
  EXPECT_EQ(change(report, "custom_values.Fire class"), "\"A1\" -> \"A2\"");
  must({"set", "a.lib", "material:Brick", "--property", "Fire class="});
  EXPECT_FALSE(shown("material", "Brick")["custom_values"].contains("Fire class"));
}

TEST_F(EditSet, takes_a_name_with_an_equals_sign_in_back_quotes) {
  must({"set", "a.lib", "material:Brick", "--property", "`a=b`=c=d"});
  EXPECT_EQ(shown("material", "Brick")["custom_values"]["a=b"], "c=d");
  must({"set", "a.lib", "material:Brick", "`a=b`=e"});
  EXPECT_EQ(shown("material", "Brick")["custom_values"]["a=b"], "e");
}

TEST_F(EditSet, of_one_name_for_several_objects_is_refused) {
  expect_refusal({"set", "a.lib", "material:Brick", "material:Wool", "name=x"},
                 "'name' can be 'x' for one object only, and these are 2");
  expect_refusal({"set", "a.lib", "material:Brick", "material:Wool", "code=x"},
                 "'code' can be 'x' for one object only, and these are 2");
}

TEST_F(EditSet, of_a_name_or_code_that_another_one_has_is_refused) {
  expect_refusal({"set", "a.lib", "material:Brick", "name=Wool"},
                 "'a.lib': material 'Wool': the library has another one of that name\n");
  must({"set", "a.lib", "material:Wool", "code=7"});
  expect_refusal({"set", "a.lib", "material:Brick", "code=7"},
                 "'Brick' has the code '7', which 'Wool' of the library has already");
}

TEST_F(EditSet, counts_layers_from_1_as_all_else_does) {
  const auto run = must({"set", "a.lib", "composition:Wall", "structural_layer=2"});
  EXPECT_EQ(run.out, "composition  Wall  changed\n    structural_layer: 1 -> 2\n");
  EXPECT_EQ(shown("composition", "Wall")["structural_layer"], 1);  // as in the JSON format
  EXPECT_THAT(must({"show", "a.lib", "composition:Wall"}).out,
              HasSubstr("structural layer      2"));
  EXPECT_EQ(must({"list", "a.lib", "compositions", "--columns", "structural_layer", "--where",
                  "structural_layer > 1"})
                .out,
            "structural layer\n────────────────\n               2\n");
  expect_refusal({"set", "a.lib", "composition:Wall", "structural_layer=0"},
                 "'0' is no value for 'structural_layer': it must be a position, counted from 1");
  expect_refusal({"set", "a.lib", "composition:Wall", "structural_layer=3"},
                 "'3' is no value for 'structural_layer': it must be a layer of the core, 1 to 2, "
                 "counted from 1");
  expect_refusal({"set", "a.lib", "composition:Wall", "last_core_layer=3"},
                 "'3' is no value for 'last_core_layer': it must be one of the 2 layers, counted "
                 "from 1");
}

TEST_F(EditSet, says_functions_in_words) {
  EXPECT_EQ(must({"set", "a.lib", "material:Brick", "function=structure"}).out,
            "material  Brick  changed\n    function: none -> structure\n");
  EXPECT_THAT(
      must({"layers", "a.lib", "Wall", "set", "1", "--function", "7", "--dry-run"}).out,
      StartsWith(
          "composition  Wall  changed\n    layers: Brick | 115 | structure; Wool | 100 | none -> "
          "Brick | 115 | 7; Wool | 100 | none\n"));
}

TEST_F(EditSet, of_positions_takes_them_in_any_order_if_they_go_together) {
  must({"set", "a.lib", "composition:Wall", "structural_layer=2", "first_core_layer=2",
        "last_core_layer=2"});
  const auto wall = shown("composition", "Wall");
  EXPECT_EQ(wall["structural_layer"], 1);
  EXPECT_EQ(wall["first_core_layer"], 1);
  expect_refusal({"set", "a.lib", "composition:Wall", "first_core_layer=2", "last_core_layer=1"},
                 "'1' is no value for 'last_core_layer': it does not go with the other values");
}

TEST_F(EditSet, of_layers_takes_materials_of_the_library) {
  must({"set", "a.lib", "composition:Roof", "layers=Brick | 115 mm; Wool | 20 cm"});
  const auto layers = shown("composition", "Roof")["layers"];
  ASSERT_THAT(layers, SizeIs(2));
  EXPECT_EQ(layers[1]["material"], "Wool");
  EXPECT_EQ(layers[1]["thickness"], 200.0);
  expect_refusal({"set", "a.lib", "composition:Roof", "layers=Bric | 115"}, "'Brick'");
}

TEST_F(EditSet, tried_shows_the_change_and_writes_nothing) {
  const auto before = read("a.lib");
  const auto run = must({"set", "a.lib", "material:Brick", "comments=x", "--dry-run"});
  EXPECT_EQ(run.out,
            "material  Brick  changed\n    comments: nothing -> x\n"
            "Nothing was written, because this was a dry run.\n");
  EXPECT_TRUE(read("a.lib") == before);
}

TEST_F(EditSet, keeps_a_backup_of_what_was) {
  const auto before = dump(path("a.lib"));
  must({"set", "a.lib", "material:Brick", "comments=x", "--backup", "b.lib"});
  EXPECT_EQ(dump(path("b.lib")), before);
  EXPECT_NE(dump(path("a.lib")), before);
}

TEST_F(EditSet, without_an_object_or_something_to_set_is_wrong_use) {
  expect_wrong_use({"set", "a.lib", "comments=x"},
                   "say which objects, as KIND:OBJECT or by --where");
  expect_wrong_use({"set", "a.lib", "material:Brick"}, "say what to set");
  expect_wrong_use({"set", "a.lib", "material:Brick", "comments"},
                   "'comments' is not FIELD=VALUE, such as manufacturer=Smith");
  expect_wrong_use({"set", "a.lib", "Brick", "comments=x"},
                   "'Brick' is not KIND:OBJECT, such as composition:Roof");
  expect_wrong_use({"set", "a.lib", "bricks", "--where", "name = x", "comments=x"},
                   "'bricks' is none of ");
}

TEST_F(EditSet, of_an_object_or_a_library_that_is_not_there_is_refused) {
  expect_refusal({"set", "a.lib", "material:Brik", "comments=x"},
                 "there is no material 'Brik' in the library; did you mean 'Brick'?");
  expect_refusal({"set", "b.lib", "material:Brick", "comments=x"},
                 "'b.lib': there is no such file");
  EXPECT_FALSE(exists("b.lib"));
}

TEST_F(EditSet, of_a_property_for_what_has_none_is_refused) {
  expect_refusal({"set", "a.lib", "tag:draft", "--property", "x=y"},
                 "only materials and compositions have custom properties");
}

class EditRename : public Edit {};

/// What the sentence says that is to be done in place of it.
TEST_F(EditRename, of_a_tag_is_done_by_other_commands) {
  must({"tag", "a.lib", "materials", "--where", "tag = draft", "--tag", "final"});
  must({"tag", "a.lib", "compositions", "--where", "tag = draft", "--tag", "final"});
  must({"untag", "a.lib", "materials", "--where", "tag = draft", "--tag", "draft"});
  must({"untag", "a.lib", "compositions", "--where", "tag = draft", "--tag", "draft"});
  must({"remove", "a.lib", "tag:draft"});
  EXPECT_EQ(shown("material", "Brick")["tags"], nlohmann::json::array({"final"}));
  EXPECT_EQ(count("a.lib", "tags"), 1U);
}

TEST_F(EditRename, gives_any_kind_but_tags_another_name) {
  must({"rename", "a.lib", "material:Brick", "Stone"});
  EXPECT_EQ(shown("composition", "Wall")["layers"][0]["material"], "Stone");
  must({"rename", "a.lib", "composition:Wall", "Old wall"});
  EXPECT_EQ(count("a.lib", "compositions"), 2U);
  const auto type = must({"list", "a.lib", "types", "--json"}).json()[0]["name"];
  EXPECT_EQ(must({"rename", "a.lib", "type:" + type.get<std::string>(), "Sort"}).out,
            "type  " + type.get<std::string>() +
                "  changed, as 'Sort'\n    name: " + type.get<std::string>() + " -> Sort\n");
  shown("type", "Sort");
  expect_refusal(
      {"rename", "a.lib", "tag:draft", "final"},
      "'a.lib': a tag keeps its name; 'veldra tag' gives 'final' to the objects that have "
      "'draft'");
  expect_refusal({"rename", "a.lib", "tag:drafts", "final"}, "there is no tag 'drafts'");
  expect_refusal({"set", "a.lib", "tag:draft", "name=final"},
                 "'final' is no value for 'name': it is given once and for all");
}

TEST_F(EditRename, to_a_name_that_is_taken_or_empty_is_refused) {
  expect_refusal({"rename", "a.lib", "material:Brick", "Wool"},
                 "the library has another one of that name");
  expect_refusal({"rename", "a.lib", "material:Brick", ""}, "it cannot be empty");
  const auto types = must({"list", "a.lib", "types", "--json"}).json();
  const auto one = types[0]["name"].get<std::string>();
  const auto other = types[1]["name"].get<std::string>();
  expect_refusal({"rename", "a.lib", "type:" + one, other},
                 "the library has a type '" + other + "' already");
}

TEST_F(EditRename, tells_the_old_and_the_new_name) {
  EXPECT_EQ(must({"rename", "a.lib", "material:Brick", "Stone"}).out,
            "material  Brick  changed, as 'Stone'\n    name: Brick -> Stone\n");
  const auto report = must({"rename", "a.lib", "composition:Wall", "Old wall", "--json"}).json();
  EXPECT_EQ(report[0]["name"], "Wall");
  EXPECT_EQ(report[0]["name_in_destination"], "Old wall");
}

TEST_F(EditRename, tried_keeps_the_name) {
  const auto before = read("a.lib");
  const auto type = must({"list", "a.lib", "types", "--json"}).json()[0]["name"];
  must({"rename", "a.lib", "type:" + type.get<std::string>(), "Sort", "--dry-run"});
  must({"rename", "a.lib", "material:Brick", "Stone", "--dry-run"});
  EXPECT_TRUE(read("a.lib") == before);
}

TEST_F(EditRename, of_a_property_minds_those_for_the_same_kind_only) {
  must({"new", "a.lib", "property", "A", "for=material"});
  must({"new", "a.lib", "property", "B", "for=composition"});
  must({"new", "a.lib", "property", "C", "for=material"});
  expect_refusal({"rename", "a.lib", "property:A", "C"}, "the library has a property 'C' already");
  must({"rename", "a.lib", "property:A", "B"});
}

class EditTags : public Edit {};

TEST_F(EditTags, are_given_and_taken) {
  const auto report =
      must({"tag", "a.lib", "material:Brick", "composition:Wall", "--tag", "good", "--json"})
          .json();
  EXPECT_EQ(change(report, "tags"), "[\"draft\"] -> [\"draft\",\"good\"]");
  EXPECT_EQ(shown("composition", "Wall")["tags"], nlohmann::json({"draft", "good"}));
  must({"untag", "a.lib", "material:Brick", "--tag", "good", "--tag", "draft"});
  EXPECT_FALSE(shown("material", "Brick").contains("tags") &&
               !shown("material", "Brick")["tags"].empty());
}

TEST_F(EditTags, that_are_there_are_not_given_again) {
  const auto before = read("a.lib");
  EXPECT_EQ(must({"tag", "a.lib", "material:Brick", "--tag", "draft"}).out,
            "material  Brick  equal\n");
  EXPECT_TRUE(read("a.lib") == before);
}

TEST_F(EditTags, go_to_all_that_a_filter_selects) {
  must({"tag", "a.lib", "compositions", "--where", "name ~ oo", "--tag", "top"});
  EXPECT_EQ(shown("composition", "Roof")["tags"], nlohmann::json({"draft", "top"}));
  EXPECT_EQ(shown("composition", "Wall")["tags"], nlohmann::json({"draft"}));
}

TEST_F(EditTags, that_are_not_there_cannot_be_taken) {
  expect_refusal({"untag", "a.lib", "material:Brick", "--tag", "draf"},
                 "there is no tag 'draf' in the library; did you mean 'draft'?");
}

TEST_F(EditTags, are_for_materials_and_compositions) {
  expect_refusal({"tag", "a.lib", "tag:draft", "--tag", "x"},
                 "only materials and compositions have tags");
  expect_wrong_use({"tag", "a.lib", "material:Brick"}, "--tag is required");
  expect_wrong_use({"tag", "a.lib", "material:Brick", "x=y", "--tag", "x"},
                   "'x=y' is not KIND:OBJECT");
}

class EditDuplicate : public Edit {};

TEST_F(EditDuplicate, has_all_values_but_the_code) {
  must({"set", "a.lib", "material:Brick", "code=7", "comments=x"});
  EXPECT_EQ(must({"duplicate", "a.lib", "material:Brick", "Brick 2"}).out,
            "material  Brick 2  added\n");
  auto original = shown("material", "Brick");
  auto duplicate = shown("material", "Brick 2");
  EXPECT_FALSE(duplicate.contains("code") && !duplicate["code"].is_null());
  for (auto* each : {&original, &duplicate}) {
    for (const char* key : {"id", "name", "code"}) each->erase(key);
  }
  EXPECT_EQ(duplicate, original);
}

TEST_F(EditDuplicate, of_a_composition_has_the_same_materials) {
  must({"duplicate", "a.lib", "composition:Wall", "Wall 2", "--dry-run"});
  EXPECT_EQ(count("a.lib", "compositions"), 2U);
  must({"duplicate", "a.lib", "composition:Wall", "Wall 2"});
  EXPECT_EQ(shown("composition", "Wall 2")["layers"], shown("composition", "Wall")["layers"]);
  EXPECT_EQ(count("a.lib", "materials"), 2U);
}

TEST_F(EditDuplicate, needs_a_name_of_its_own_and_values_to_share) {
  expect_refusal({"duplicate", "a.lib", "material:Brick", "Wool"},
                 "the library has a material 'Wool' already");
  expect_refusal({"duplicate", "a.lib", "material:Brick", ""}, "it cannot be empty");
  expect_refusal({"duplicate", "a.lib", "tag:draft", "x"},
                 "only materials and compositions can be duplicated");
}

class EditNew : public Edit {};

TEST_F(EditNew, makes_objects_of_all_kinds) {
  EXPECT_EQ(must({"new", "a.lib", "material", "Cork", "conductivity=0.04", "density=120"}).out,
            "material  Cork  added\n");
  must({"new", "a.lib", "composition", "Floor", "type=floor", "layers=Cork | 20; Brick | 115"});
  must({"new", "a.lib", "tag", "good"});
  must({"new", "a.lib", "layer", "WALLS"});
  must({"new", "a.lib", "type", "Sort"});
  must({"new", "a.lib", "property", "Fire class", "for=material"});
  EXPECT_EQ(shown("composition", "Floor")["layers"][0]["material"], "Cork");
  EXPECT_EQ(shown("composition", "Floor")["type"], "floor");
  shown("tag", "good");
  shown("layer", "WALLS");
  shown("type", "Sort");
  must({"set", "a.lib", "material:Cork", "Fire class=B"});
}

TEST_F(EditNew, has_a_name_that_no_other_has) {
  expect_refusal({"new", "a.lib", "material", "Brick"},
                 "the library has a material 'Brick' already");
  expect_refusal({"new", "a.lib", "tag", "draft"}, "the library has a tag 'draft' already");
  expect_refusal({"new", "a.lib", "material", ""}, "'' is no value for 'name'");
}

TEST_F(EditNew, with_a_wrong_value_is_not_made) {
  expect_refusal({"new", "a.lib", "material", "Cork", "density=-1"}, "it must be 0 or greater");
  expect_refusal({"new", "a.lib", "property", "Fire class"},
                 "a new property needs for=material or for=composition");
  expect_refusal({"new", "a.lib", "tag", "x", "comments=y"}, "tags have no field 'comments'");
}

TEST_F(EditNew, takes_custom_properties_that_are_not_there_yet) {
  must({"new", "a.lib", "material", "Cork", "--property", "Fire class=B"});
  EXPECT_EQ(shown("material", "Cork")["custom_values"]["Fire class"], "B");
}

class EditLayers : public Edit {
 protected:
  void SetUp() override {
    Edit::SetUp();
    must({"new", "a.lib", "material", "Cork"});
    must({"set", "a.lib", "composition:Wall", "layers=Brick | 115; Wool | 100; Cork | 20",
          "first_core_layer=1", "last_core_layer=2", "structural_layer=1"});
  }

  /// The layers of the wall, and behind them its core and its structural layer, counted from 1.
  std::string wall() {
    const auto wall = shown("composition", "Wall");
    std::string text;
    for (const auto& layer : wall["layers"]) text += layer["material"].get<std::string>() + " ";
    const auto number = [&](const char* key) { return std::to_string(wall.value(key, 0) + 1); };
    return text + number("first_core_layer") + "-" + number("last_core_layer") + " " +
           number("structural_layer");
  }

  std::string after(const std::vector<std::string>& action) {
    std::vector<std::string> arguments{"layers", "a.lib", "Wall"};
    arguments.insert(arguments.end(), action.begin(), action.end());
    must(arguments);
    return wall();
  }
};

TEST_F(EditLayers, are_added_at_the_inside_and_shown_as_show_does) {
  const auto run = must({"layers", "a.lib", "Wall", "add", "Wool", "4 cm"});
  const auto show = must({"show", "a.lib", "composition", "Wall"}).out;
  const auto table = run.out.substr(run.out.find("Layers from outside to inside"));
  EXPECT_THAT(show, HasSubstr(table));
  EXPECT_EQ(wall(), "Brick Wool Cork Wool 1-2 1");
  EXPECT_EQ(shown("composition", "Wall")["layers"][3]["thickness"], 40.0);
}

TEST_F(EditLayers, are_inserted_and_the_structural_one_stays_the_same) {
  EXPECT_EQ(after({"insert", "1", "Cork", "20"}), "Cork Brick Wool Cork 2-3 2");
  EXPECT_EQ(after({"insert", "3", "Cork", "20"}), "Cork Brick Cork Wool Cork 2-4 2");
}

TEST_F(EditLayers, are_moved_with_the_roles_that_they_have) {
  EXPECT_EQ(after({"move", "1", "2"}), "Wool Brick Cork 1-2 2");
}

TEST_F(EditLayers, are_removed_and_another_one_of_the_core_carries_the_loads) {
  EXPECT_EQ(after({"remove", "1"}), "Wool Cork 1-1 1");
  EXPECT_EQ(after({"remove", "1"}), "Cork 1-1 1");
  EXPECT_EQ(after({"remove", "1"}), "1-1 1");
  EXPECT_EQ(after({"add", "Brick", "115"}), "Brick 1-1 1");
}

TEST_F(EditLayers, are_set_in_part_or_as_a_whole) {
  after({"set", "2", "--function", "structure"});
  auto layer = shown("composition", "Wall")["layers"][1];
  EXPECT_EQ(layer["material"], "Wool");
  EXPECT_EQ(layer["function"], 1);
  EXPECT_EQ(after({"set", "2", "Cork", "30"}), "Brick Cork Cork 1-2 1");
  layer = shown("composition", "Wall")["layers"][1];
  EXPECT_EQ(layer["thickness"], 30.0);
  EXPECT_EQ(layer["function"], 1);
}

TEST_F(EditLayers, that_are_not_there_are_refused) {
  expect_refusal({"layers", "a.lib", "Wall", "remove", "4"},
                 "'4' is no layer of composition 'Wall', which has the layers 1 to 3");
  expect_refusal({"layers", "a.lib", "Wall", "move", "1", "0"}, "'0' is no layer");
  expect_refusal({"layers", "a.lib", "Wall", "insert", "x", "Cork", "20"}, "'x' is no layer");
}

TEST_F(EditLayers, of_a_wrong_material_thickness_or_function_are_refused) {
  expect_refusal({"layers", "a.lib", "Wall", "add", "Corc", "20"},
                 "there is no material 'Corc' in the library; did you mean 'Cork'?");
  expect_refusal({"layers", "a.lib", "Wall", "add", "Cork", "thick"},
                 "'thick' is no value for 'thickness': it must be a number, in mm or with a unit");
  expect_refusal({"layers", "a.lib", "Wall", "add", "Cork", ""}, "it cannot be empty");
  expect_refusal(
      {"layers", "a.lib", "Wall", "add", "Cork", "20", "--function", "roof"},
      "'roof' is no value for 'function': it must be none, structure, or a whole number");
}

TEST_F(EditLayers, by_an_action_that_is_none_or_lacks_something_is_wrong_use) {
  expect_wrong_use({"layers", "a.lib", "Wall", "grow"},
                   "'grow' is none of add, insert, move, remove, set");
  expect_wrong_use({"layers", "a.lib", "Wall", "move", "1"}, "it is 'move N M'");
  expect_wrong_use({"layers", "a.lib", "Wall", "set", "1"}, "say what to set");
  expect_wrong_use({"layers", "a.lib", "Wall", "remove", "1", "--function", "none"},
                   "'remove' does not take it");
}

TEST_F(EditLayers, tried_are_shown_and_not_written) {
  const auto before = read("a.lib");
  const auto run = must({"layers", "a.lib", "Wall", "remove", "1", "--dry-run"});
  EXPECT_THAT(run.out, AllOf(HasSubstr("Layers from outside"), HasSubstr("dry run"),
                             Not(HasSubstr("Brick  "))));
  EXPECT_TRUE(read("a.lib") == before);
}

}  // namespace
}  // namespace veldra_tests
