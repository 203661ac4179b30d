// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"
#include "support/builders.hpp"
#include "support/library_fixture.hpp"

#include <nlohmann/json.hpp>

namespace veldra_tests {
namespace {

using kit::Decision;
using kit::OnClash;
using kit::PlanFile;
using kit::PlanRules;
using Json = nlohmann::ordered_json;

/// A library with a brick that the source has otherwise, and plans that went through a file.
class KitPlanFile : public LibraryFixture {
 protected:
  void SetUp() override {
    library = create();
    source = create("source.lib");
    library->save(brick("Old"));
    source->save(wall(brick("New")));
  }

  static std::shared_ptr<Material> brick(const std::string& maker) {
    const auto material = Material::create("Brick");
    material->manufacturer(text(maker));
    return material;
  }

  static std::shared_ptr<Composition> wall(const std::shared_ptr<Material>& material) {
    const auto composition = Composition::create("Wall");
    composition->appendLayer({material, Material::Function::Structure, 240});
    return composition;
  }

  std::string written(PlanRules rules = {}) const {
    rules.fingerprints = true;
    std::string content;
    const kit::Plan plan(source, *library, std::move(rules));
    kit::write_plan(plan, *library, "office.lib", [&](std::string_view part) { content += part; });
    return content;
  }

  /// The text of the plan with its JSON changed.
  template <class Edit>
  std::string edited(Edit edit, const PlanRules& rules = {}) const {
    auto json = Json::parse(written(rules));
    edit(json);
    return json.dump(1);
  }

  std::string decided(const std::string& decision, const std::string& new_name = "") const {
    return edited([&](Json& json) {
      json["entries"][0]["decision"] = decision;
      if (!new_name.empty()) json["entries"][0]["new_name"] = new_name;
    });
  }

  void apply(const std::string& content) const { PlanFile("p.json", content).apply(*library); }

  /// The plan is refused with that sentence, and nothing is written.
  void expect_refusal(const std::string& content, const std::string& sentence) const {
    const auto before = rows();
    EXPECT_EQ(error_of([&] { apply(content); }), sentence);
    EXPECT_EQ(rows(), before);
  }

  std::string maker(const std::string& name) const {
    const auto material = library->get<Material>(text(name));
    return material ? material->manufacturer().utf8() : "none";
  }

  std::string material_of_wall() const {
    const auto found = library->get<Composition>("Wall");
    return found ? found->layers()[0].material()->name().utf8() : "none";
  }

  std::shared_ptr<Library> library;
  std::shared_ptr<Library> source;
};

TEST_F(KitPlanFile, says_for_whom_it_is_and_what_becomes_of_each_object) {
  const PlanFile file("p.json", written());
  EXPECT_EQ(file.path(), "office.lib");
  EXPECT_EQ(file.guid(), library->guid());
  ASSERT_EQ(file.entries().size(), 2U);
  EXPECT_EQ(file.entries()[0].name, "Brick");
  EXPECT_EQ(file.entries()[0].decision, Decision::Undecided);
  EXPECT_EQ(file.entries()[0].fingerprint, kit::fingerprint_of(*library->get<Material>("Brick")));
  EXPECT_EQ(file.entries()[1].object.type, ObjectType::Composition);
  EXPECT_EQ(file.entries()[1].decision, Decision::Add);
  EXPECT_EQ(file.entries()[1].fingerprint, "");
}

TEST_F(KitPlanFile, shows_people_what_differs) {
  const auto entry = Json::parse(written())["entries"][0];
  EXPECT_EQ(entry["changes"].dump(), R"([{"field":"manufacturer","old":"Old","new":"New"}])");
  EXPECT_EQ(entry["clashes"].dump(), R"([{"same":"name","name":"Brick"}])");
}

TEST_F(KitPlanFile, that_is_written_or_read_changes_nothing) {
  const auto before = rows();
  const PlanFile file("p.json", written());
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlanFile, with_something_undecided_is_refused) {
  expect_refusal(written(), "nobody has decided what becomes of material 'Brick'");
}

TEST_F(KitPlanFile, is_undecided_where_what_differs_is_called_equal) {
  for (const char* decision : {"equal", "tag"}) {
    expect_refusal(decided(decision), "nobody has decided what becomes of material 'Brick'");
  }
}

TEST_F(KitPlanFile, is_undecided_where_another_decision_makes_an_object_differ) {
  library->save(wall(library->get<Material>("Brick")));
  const auto content = decided("rename");
  EXPECT_EQ(Json::parse(content)["entries"][1]["decision"], "equal");
  expect_refusal(content, "nobody has decided what becomes of composition 'Wall'");
}

TEST_F(KitPlanFile, keeps_what_is_decided_to_be_kept) {
  apply(decided("keep"));
  EXPECT_EQ(maker("Brick"), "Old");
  EXPECT_EQ(material_of_wall(), "Brick");
}

TEST_F(KitPlanFile, changes_what_is_decided_to_be_changed) {
  apply(decided("change"));
  EXPECT_EQ(maker("Brick"), "New");
}

TEST_F(KitPlanFile, renames_to_the_name_that_is_given) {
  apply(decided("rename", "Clinker"));
  EXPECT_EQ(maker("Brick"), "Old");
  EXPECT_EQ(maker("Clinker"), "New");
  EXPECT_EQ(material_of_wall(), "Clinker");
}

TEST_F(KitPlanFile, renames_to_a_free_name_where_none_is_given) {
  apply(decided("rename"));
  EXPECT_EQ(maker("Brick (2)"), "New");
}

TEST_F(KitPlanFile, takes_an_object_in_under_another_name_though_its_own_is_free) {
  apply(edited([](Json& json) {
    json["entries"][0]["decision"] = "keep";
    json["entries"][1]["decision"] = "rename";
    json["entries"][1]["new_name"] = "Thick wall";
  }));
  EXPECT_FALSE(library->get<Composition>("Wall"));
  EXPECT_TRUE(library->get<Composition>("Thick wall"));
}

TEST_F(KitPlanFile, does_not_need_the_source) {
  const auto content = decided("change");
  source->remove<Composition>(source->get<Composition>("Wall")->id());
  source->remove<Material>(source->get<Material>("Brick")->id());
  apply(content);
  EXPECT_EQ(maker("Brick"), "New");
}

TEST_F(KitPlanFile, is_refused_and_names_all_objects_that_have_changed) {
  library->save(wall(library->get<Material>("Brick")));
  const auto content = decided("change");
  auto brick = library->get<Material>("Brick");
  brick->cost("7");
  library->save(brick);
  auto changed = library->get<Composition>("Wall");
  changed->comments("seen");
  library->save(changed);
  expect_refusal(content,
                 "objects have changed since the plan was made: material 'Brick', "
                 "composition 'Wall'");
}

TEST_F(KitPlanFile, is_refused_where_an_object_of_a_name_has_appeared_that_was_free) {
  const auto content = decided("keep");
  library->save(Composition::create("Wall"));
  expect_refusal(content, "an object has changed since the plan was made: composition 'Wall'");
}

TEST_F(KitPlanFile, is_refused_where_an_object_has_gone) {
  const auto content = decided("change");
  library->remove<Material>(library->get<Material>("Brick")->id());
  expect_refusal(content, "an object has changed since the plan was made: material 'Brick'");
}

TEST_F(KitPlanFile, does_not_mind_other_changes) {
  const auto content = decided("change");
  library->save(Material::create("Clinker"));
  library->save(Tag::create("new"));
  apply(content);
  EXPECT_EQ(maker("Brick"), "New");
}

TEST_F(KitPlanFile, is_refused_by_another_library) {
  const auto other = Library::create(":memory:", Unit::Millimetres, "");
  const PlanFile file("p.json", decided("change"));
  EXPECT_EQ(error_of([&] { file.apply(*other); }), "the plan is for another library");
}

TEST_F(KitPlanFile, tags_what_is_equal_and_leaves_it_where_that_is_decided) {
  auto equal = brick("Old");
  equal->addTag(Tag::create("new"));
  const auto other = Library::create(":memory:", Unit::Millimetres, "");
  other->save(equal);
  source = other;
  const auto content = written();
  EXPECT_EQ(Json::parse(content)["entries"][0]["decision"], "tag");
  for (const char* decision : {"equal", "keep"}) {
    const auto before = library->get<Material>("Brick")->tags().size();
    apply(decided(decision));
    EXPECT_EQ(library->get<Material>("Brick")->tags().size(), before) << decision;
  }
  apply(content);
  EXPECT_EQ(library->get<Material>("Brick")->tags().size(), 1U);
}

TEST_F(KitPlanFile, takes_what_was_renamed_before_for_what_is_to_be_renamed) {
  apply(decided("rename"));
  const auto before = rows();
  apply(edited([](Json& json) {
    json["entries"][0]["decision"] = "rename";
    json["entries"][1]["decision"] = "keep";
  }));
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlanFile, remembers_what_was_renamed_before) {
  PlanRules rules;
  rules.on_clash = OnClash::Rename;
  apply(written(rules));
  const auto before = rows();
  const auto content = written(rules);
  EXPECT_EQ(Json::parse(content)["entries"][0]["stored_name"], "Brick (2)");
  apply(content);
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlanFile, remembers_whose_names_ignore_case) {
  auto incoming = brick("Old");
  incoming->name("BRICK");
  const auto other = Library::create(":memory:", Unit::Millimetres, "");
  other->save(incoming);
  source = other;
  PlanRules rules;
  rules.ignores_case = [](const ObjectKey&) { return true; };
  const auto before = rows();
  apply(written(rules));
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlanFile, keeps_lengths_in_the_unit_of_the_source) {
  const auto inches = Library::create(":memory:", Unit::Inches, "");
  auto thick = brick("Old");
  thick->thicknesses(toModify) = {10};
  inches->save(thick);
  source = inches;
  apply(decided("change"));
  EXPECT_EQ(library->get<Material>("Brick")->thicknesses(), std::set<double>{254});
}

TEST_F(KitPlanFile, is_undecided_where_a_code_is_taken_meanwhile) {
  auto coded = brick("New");
  coded->name("Clinker");
  coded->code("B");
  source->save(coded);
  const auto content = edited([](Json& json) { json["entries"][0]["decision"] = "keep"; });
  const auto other = Material::create("Other");
  other->code("B");
  library->save(other);
  expect_refusal(content, "nobody has decided what becomes of material 'Clinker'");
}

TEST_F(KitPlanFile, cannot_be_written_of_what_has_no_fingerprints) {
  const kit::Plan plan(source, *library, {});
  const auto ignore = [](std::string_view) {};
  EXPECT_EQ(error_of([&] { kit::write_plan(plan, *library, "", ignore); }),
            "the plan was made without fingerprints");
}

/// A plan by which the stored brick becomes a clinker.
class KitPlanFileOfStates : public KitPlanFile {
 protected:
  void SetUp() override {
    KitPlanFile::SetUp();
    const auto state = source->get<Material>("Brick");
    state->name("Clinker");
    source->save(state);
    rules.states_of[{ObjectType::Material, state->id()}] = library->get<Material>("Brick")->id();
  }

  std::string decided(const char* decision) const {
    return edited([&](Json& json) { json["entries"][0]["decision"] = decision; }, rules);
  }

  PlanRules rules;
};

TEST_F(KitPlanFileOfStates, changes_the_stored_objects) {
  const auto id = library->get<Material>("Brick")->id();
  apply(written(rules));
  EXPECT_EQ(library->get<Material>("Clinker")->id(), id);
  EXPECT_EQ(library->count<Material>(), 1U);
  EXPECT_EQ(maker("Clinker"), "New");
  EXPECT_EQ(material_of_wall(), "Clinker");
}

TEST_F(KitPlanFileOfStates, is_equal_when_it_was_applied_before) {
  apply(written(rules));
  const auto content = written(rules);
  const auto before = rows();
  apply(content);
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlanFileOfStates, leaves_a_stored_object_that_is_to_be_kept) {
  apply(decided("keep"));
  EXPECT_EQ(maker("Brick"), "Old");
  EXPECT_EQ(library->count<Material>(), 1U);
  EXPECT_EQ(material_of_wall(), "Brick");
}

TEST_F(KitPlanFileOfStates, is_refused_where_the_stored_object_has_changed_or_gone) {
  const auto content = written(rules);
  const auto stored = library->get<Material>("Brick");
  stored->url("https://example.org");
  library->save(stored);
  const char* sentence = "an object has changed since the plan was made: material 'Clinker'";
  expect_refusal(content, sentence);
  library->remove(stored);
  expect_refusal(content, sentence);
}

TEST_F(KitPlanFileOfStates, takes_no_other_decision_for_them) {
  for (const char* decision : {"rename", "equal"}) {
    EXPECT_THAT(error_of([&] { apply(decided(decision)); }),
                HasSubstr("makes no sense, as the library has one that differs"));
  }
}

/// What an edit makes of the plan, and the sentence with which that is refused.
struct Wrong {
  const char* what;
  std::function<void(Json&)> edit;
  const char* sentence;
};

class KitPlanFileWrong : public KitPlanFile, public testing::WithParamInterface<Wrong> {};

TEST_P(KitPlanFileWrong, is_refused_with_a_sentence) {
  const auto before = rows();
  const auto told = error_of([&] { apply(edited(GetParam().edit)); });
  EXPECT_THAT(told, StartsWith("'p.json'"));
  EXPECT_THAT(told, HasSubstr(GetParam().sentence)) << GetParam().what;
  EXPECT_EQ(rows(), before);
}

Json& first(Json& json) { return json["entries"][0]; }
Json& second(Json& json) { return json["entries"][1]; }

const Wrong wrong_plans[] = {
    {"format", [](Json& json) { json["format"] = "veldra"; }, "this is no plan"},
    {"format_kind", [](Json& json) { json["format"] = 5; }, "this is no plan"},
    {"version", [](Json& json) { json["version"] = 2; }, "its version is not known here"},
    {"no_version", [](Json& json) { json.erase("version"); }, "its version is not known here"},
    {"member", [](Json& json) { json["more"] = 1; }, "the plan: 'more' is not known"},
    {"no_library", [](Json& json) { json.erase("library"); }, "'library' is missing"},
    {"library_kind", [](Json& json) { json["library"] = "a.lib"; }, "it must be a JSON object"},
    {"no_path", [](Json& json) { json["library"].erase("path"); },
     "the library: 'path' is missing"},
    {"zero_in_path", [](Json& json) { json["library"]["path"] = std::string("a\0b", 3); },
     "the library: a text has the character U+0000"},
    {"zero_in_name", [](Json& json) { first(json)["name"] = std::string("a\0b", 3); },
     "material 'a\\x00b': a text has the character U+0000"},
    {"no_guid", [](Json& json) { json["library"].erase("guid"); },
     "the library: 'guid' is missing"},
    {"no_entries", [](Json& json) { json.erase("entries"); }, "'entries' is missing"},
    {"entries_kind", [](Json& json) { json["entries"] = 1; }, "'entries' must be a list"},
    {"no_objects", [](Json& json) { json.erase("objects"); }, "'objects' is missing"},
    {"objects_kind", [](Json& json) { json["objects"] = {1}; },
     "'objects' must be the contents of a library as JSON"},
    {"entry_kind", [](Json& json) { first(json) = 5; }, "it must be a JSON object"},
    {"no_kind", [](Json& json) { first(json).erase("kind"); }, "entry 'Brick': 'kind' is missing"},
    {"kind", [](Json& json) { first(json)["kind"] = "tag"; },
     "entry 'Brick': 'kind' must be \"material\" or \"composition\""},
    {"no_name", [](Json& json) { first(json).erase("name"); }, "a material: 'name' is missing"},
    {"name_kind", [](Json& json) { first(json)["name"] = {1}; }, "a material: a text is expected"},
    {"decision", [](Json& json) { first(json)["decision"] = "drop"; },
     "material 'Brick': 'decision' must be one of add, equal, tag, keep, change, rename, "
     "undecided, and not 'drop'"},
    {"decision_kind", [](Json& json) { first(json)["decision"] = true; },
     "material 'Brick': a text is expected"},
    {"no_decision", [](Json& json) { first(json).erase("decision"); },
     "material 'Brick': 'decision' is missing"},
    {"add_what_is_stored", [](Json& json) { first(json)["decision"] = "add"; },
     "material 'Brick': 'add' makes no sense, as the library has one of that name already"},
    {"keep_what_is_not_stored", [](Json& json) { second(json)["decision"] = "keep"; },
     "composition 'Wall': 'keep' makes no sense, as the library has none of that name"},
    {"change_what_is_not_stored", [](Json& json) { second(json)["decision"] = "change"; },
     "composition 'Wall': 'change' makes no sense"},
    {"rename_without_name", [](Json& json) { second(json)["decision"] = "rename"; },
     "composition 'Wall': 'new_name' is missing"},
    {"no_fingerprint", [](Json& json) { first(json).erase("fingerprint"); },
     "material 'Brick': 'fingerprint' is missing"},
    {"fingerprint", [](Json& json) { first(json)["fingerprint"] = "ABC"; },
     "'fingerprint' must be \"absent\" or 64 hexadecimal digits"},
    {"new_name_kind", [](Json& json) { first(json)["new_name"] = 7; }, "a text is expected"},
    {"empty_new_name", [](Json& json) { first(json)["new_name"] = ""; }, "'new_name' is empty"},
    {"changes_kind", [](Json& json) { first(json)["changes"] = 7; }, "'changes' must be a list"},
    {"case_kind", [](Json& json) { first(json)["ignores_case"] = 7; },
     "'ignores_case' must be true or false"},
    {"entry_member", [](Json& json) { first(json)["decide"] = 7; }, "'decide' is not known"},
    {"two_entries", [](Json& json) { json["entries"].push_back(first(json)); },
     "material 'Brick': there are two entries for it"},
    {"unknown_object", [](Json& json) { first(json)["name"] = "Stone"; },
     "material 'Stone': there is no such object in 'objects'"},
    {"missing_entry", [](Json& json) { json["entries"].erase(0); },
     "there is no entry for the material 'Brick'"},
    {"object_twice",
     [](Json& json) { json["objects"]["materials"].push_back(json["objects"]["materials"][0]); },
     "the material 'Brick' is there twice"},
    {"object_twice_and_other",
     [](Json& json) {
       json["objects"]["materials"].push_back(json["objects"]["materials"][0]);
       json["objects"]["materials"][1]["cost"] = "5";
     },
     "another material 'Brick' stands in this file already"},
    {"layer_of_nothing",
     [](Json& json) { json["objects"]["compositions"][0]["layers"][0]["material"] = "x"; },
     "there is no material 'x'"},
};

INSTANTIATE_TEST_SUITE_P(Edits, KitPlanFileWrong, testing::ValuesIn(wrong_plans),
                         [](const auto& info) { return info.param.what; });

class KitPlanFileText : public KitPlanFile {};

TEST_F(KitPlanFileText, that_is_no_plan_is_refused) {
  expect_refusal("", "'p.json': this is empty");
  expect_refusal("Material, Brick;", "'p.json': this is no plan");
  expect_refusal("[]", "'p.json': this is no plan");
  expect_refusal("{}", "'p.json': this is no plan");
}

TEST_F(KitPlanFileText, that_ends_too_early_is_refused_wherever_it_does) {
  const auto content = written();
  for (std::size_t size = 0; size + 3 < content.size(); size += 7) {
    const auto told = error_of([&] { PlanFile("p.json", content.substr(0, size)); });
    EXPECT_THAT(told, StartsWith("'p.json'")) << size;
  }
}

TEST_F(KitPlanFileText, that_is_nested_deep_is_refused) {
  const auto deep = std::string(100000, '[') + std::string(100000, ']');
  const auto told = error_of(
      [&] { apply("{\"format\": \"veldra plan\", \"version\": 1, \"entries\": " + deep + "}"); });
  EXPECT_EQ(told, "'p.json', line 1: the values are nested too deep");
}

TEST_F(KitPlanFileText, with_a_zero_byte_is_refused) {
  auto content = written();
  content.insert(content.find("Brick"), 1, '\0');
  EXPECT_THAT(error_of([&] { apply(content); }), HasSubstr("this is no proper JSON"));
}

TEST_F(KitPlanFileText, with_a_member_twice_is_refused) {
  auto content = decided("keep");
  content.insert(content.find("\"decision\": \"keep\""), "\"decision\": \"change\", ");
  EXPECT_THAT(error_of([&] { apply(content); }), HasSubstr("'decision' is there twice"));
}

}  // namespace
}  // namespace veldra_tests
