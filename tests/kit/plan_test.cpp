// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"
#include "support/builders.hpp"
#include "support/library_fixture.hpp"

namespace veldra_tests {
namespace {

using kit::Decision;
using kit::OnClash;
using kit::Plan;
using kit::PlanEntry;
using kit::PlanRules;

PlanRules rules_for(OnClash on_clash) {
  PlanRules rules;
  rules.on_clash = on_clash;
  return rules;
}

/// A library and a source for it.
class KitPlan : public LibraryFixture {
 protected:
  void SetUp() override {
    library = create();
    source = create("source.lib");
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

  Plan plan(const PlanRules& rules = {}) const { return Plan(source, *library, rules); }

  /// The entry of the object of that kind and name.
  template <class T>
  PlanEntry entry(const std::string& name, const PlanRules& rules = {}) const {
    const Plan made = plan(rules);
    for (const auto& each : made.entries()) {
      if (each.source.type == ObjectTraits<T>::type && each.name == name) return each;
    }
    throw std::runtime_error("no entry of " + name);
  }

  void apply(const PlanRules& rules = {}) const {
    Library::Transaction transaction(*library);
    plan(rules).apply(*library);
    transaction.commit();
  }

  /// Which other decisions than "equal" a plan has now.
  std::string left_to_do(const PlanRules& rules = {}) const {
    std::string text;
    const Plan made = plan(rules);
    for (const auto& each : made.entries()) {
      if (each.decision != Decision::Equal) text += each.name + " " + name_of(each.decision) + ";";
    }
    return text;
  }

  std::shared_ptr<Library> library;
  std::shared_ptr<Library> source;
};

TEST_F(KitPlan, adds_what_is_not_there_with_what_it_refers_to) {
  source->save(full_composition("Wall"));
  const Plan made = plan();
  for (const auto& each : made.entries()) {
    if (each.source.type == ObjectType::MaterialType && each.decision == Decision::Equal) continue;
    EXPECT_EQ(each.decision, Decision::Add) << each.name;
    EXPECT_EQ(each.stored, 0U);
    EXPECT_EQ(each.result, each.name);
  }
  apply();
  EXPECT_EQ(left_to_do(), "");
  EXPECT_EQ(library->get<Composition>("Wall")->layers()[1].material()->name(), "Wall core");
}

TEST_F(KitPlan, that_is_made_writes_nothing) {
  source->save(full_composition("Wall"));
  library->save(brick("Old"));
  const auto before = rows();
  plan(rules_for(OnClash::Rename));
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlan, that_changes_nothing_writes_nothing) {
  source->save(full_composition("Wall"));
  apply();
  const auto before = rows();
  EXPECT_FALSE(plan().changes_anything());
  apply();
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlan, tells_each_field_of_an_object_that_differs) {
  library->save(brick("Old"));
  auto incoming = brick("New");
  incoming->cost("3");
  incoming->custom_value("Fire class", "A1");
  source->save(incoming);
  const auto found = entry<Material>("Brick");
  EXPECT_EQ(found.decision, Decision::Undecided);
  ASSERT_EQ(found.clashes.size(), 1U);
  EXPECT_EQ(found.clashes[0].with, kit::Clash::With::Name);
  EXPECT_EQ(found.clashes[0].id, found.stored);
  std::string told;
  for (const auto& change : found.changes) {
    told +=
        change.field + ": " + value_text(change.before) + " -> " + value_text(change.after) + ";";
  }
  EXPECT_EQ(told, "cost:  -> 3;manufacturer: Old -> New;custom_values.Fire class:  -> A1;");
}

TEST_F(KitPlan, tells_custom_values_that_the_source_lacks) {
  library->save(with_custom("Brick", "Fire class", "A1"));
  source->save(Material::create("Brick"));
  const auto found = entry<Material>("Brick", rules_for(OnClash::Overwrite));
  ASSERT_EQ(found.changes.size(), 1U);
  EXPECT_EQ(found.changes[0].field, "custom_values.Fire class");
  apply(rules_for(OnClash::Overwrite));
  EXPECT_TRUE(library->get<Material>("Brick")->custom_values().empty());
}

TEST_F(KitPlan, with_an_undecided_entry_is_refused_and_names_it) {
  library->save(brick("Old"));
  source->save(brick("New"));
  const auto before = rows();
  EXPECT_FALSE(plan().is_decided());
  EXPECT_EQ(error_of([&] { apply(); }), "nobody has decided what becomes of material 'Brick'");
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlan, keeps_the_stored_one_for_use) {
  library->save(brick("Old"));
  source->save(wall(brick("New")));
  EXPECT_EQ(entry<Material>("Brick", rules_for(OnClash::Use)).decision, Decision::Keep);
  apply(rules_for(OnClash::Use));
  EXPECT_EQ(library->get<Material>("Brick")->manufacturer(), "Old");
  EXPECT_EQ(library->get<Composition>("Wall")->layers()[0].material()->manufacturer(), "Old");
}

TEST_F(KitPlan, gives_the_stored_one_the_values_for_overwrite) {
  const auto id = library->save(brick("Old"))->id();
  source->save(wall(brick("New")));
  apply(rules_for(OnClash::Overwrite));
  EXPECT_EQ(library->get<Material>(id)->manufacturer(), "New");
  EXPECT_EQ(left_to_do(), "");
}

TEST_F(KitPlan, renames_with_a_number_that_is_free_on_both_sides) {
  library->save(brick("Old"));
  const auto second = brick("Another");
  second->name("Brick (2)");
  library->save(second);
  const auto third = brick("Third");
  third->name("Brick (3)");
  source->save(third);
  source->save(wall(brick("New")));
  const auto found = entry<Material>("Brick", rules_for(OnClash::Rename));
  EXPECT_EQ(found.decision, Decision::Rename);
  EXPECT_EQ(found.result, "Brick (4)");
  apply(rules_for(OnClash::Rename));
  EXPECT_EQ(library->get<Composition>("Wall")->layers()[0].material()->name(), "Brick (4)");
  EXPECT_EQ(left_to_do(rules_for(OnClash::Rename)), "");
}

TEST_F(KitPlan, gives_a_name_that_was_wished) {
  library->save(brick("Old"));
  const auto id = source->save(brick("New"))->id();
  auto rules = rules_for(OnClash::Rename);
  rules.new_names[{ObjectType::Material, id}] = "Clinker";
  apply(rules);
  EXPECT_EQ(library->get<Material>("Clinker")->manufacturer(), "New");
  rules.new_names[{ObjectType::Material, id}] = "Brick";
  EXPECT_EQ(error_of([&] { plan(rules); }),
            "the material 'Brick' cannot get the name 'Brick', which is taken");
}

TEST_F(KitPlan, takes_the_rule_of_the_object_before_that_of_the_kind_and_that_before_all) {
  library->save(brick("Old"));
  source->save(brick("New"));
  auto rules = rules_for(OnClash::Rename);
  rules.for_kind[ObjectType::Material] = OnClash::Use;
  EXPECT_EQ(entry<Material>("Brick", rules).decision, Decision::Keep);
  rules.for_object[{ObjectType::Material, source->get<Material>("Brick")->id()}] =
      OnClash::Overwrite;
  EXPECT_EQ(entry<Material>("Brick", rules).decision, Decision::Change);
  rules.for_kind.clear();
  rules.for_object.clear();
  EXPECT_EQ(entry<Material>("Brick", rules).decision, Decision::Rename);
}

TEST_F(KitPlan, tags_an_equal_object_and_then_finds_it_equal) {
  const auto stored = brick("Old");
  stored->addTag(Tag::create("mine"));
  library->save(stored);
  const auto incoming = brick("Old");
  incoming->addTag(Tag::create("import"));
  source->save(incoming);
  const auto found = entry<Material>("Brick");
  EXPECT_EQ(found.decision, Decision::Tag);
  EXPECT_THAT(found.tags, ElementsAre("import"));
  EXPECT_THAT(found.clashes, IsEmpty());
  apply();
  EXPECT_EQ(library->get<Material>("Brick")->tags().size(), 2U);
  EXPECT_EQ(left_to_do(), "");
}

TEST_F(KitPlan, leaves_an_overwritten_object_its_tags) {
  const auto stored = brick("Old");
  stored->addTag(Tag::create("mine"));
  library->save(stored);
  const auto incoming = brick("New");
  incoming->addTag(Tag::create("import"));
  source->save(incoming);
  apply(rules_for(OnClash::Overwrite));
  EXPECT_EQ(library->get<Material>("Brick")->tags().size(), 2U);
}

TEST_F(KitPlan, compares_lengths_in_the_unit_of_the_destination) {
  const auto inches = create("inches.lib", Unit::Inches);
  const auto stored = full_without_codes<Composition>("Wall");
  library->save(stored);
  inches->copyAll(library);
  source = inches;
  EXPECT_EQ(left_to_do(), "");
  auto thicker = inches->get<Composition>("Wall");
  thicker->layer(0, toModify).thickness(2);
  inches->save(thicker);
  apply(rules_for(OnClash::Overwrite));
  EXPECT_DOUBLE_EQ(library->get<Composition>("Wall")->layers()[0].thickness(), 50.8);
}

TEST_F(KitPlan, finds_names_whose_source_ignores_case) {
  library->save(brick("Old"));
  const auto incoming = brick("Old");
  incoming->name("BRICK");
  source->save(wall(incoming));
  auto rules = rules_for(OnClash::Fail);
  EXPECT_EQ(entry<Material>("BRICK", rules).decision, Decision::Add);
  rules.ignores_case = [](const ObjectKey&) { return true; };
  EXPECT_EQ(entry<Material>("BRICK", rules).decision, Decision::Equal);
  apply(rules);
  EXPECT_EQ(library->get<Composition>("Wall")->layers()[0].material()->name(), "Brick");
  EXPECT_EQ(library->count<Material>(), 1U);
}

TEST_F(KitPlan, means_the_very_name_before_one_in_another_case) {
  library->save(brick("Old"));
  source->save(brick("New"));
  const auto shouted = brick("Another");
  shouted->name("BRICK");
  source->save(shouted);
  auto rules = rules_for(OnClash::Overwrite);
  rules.ignores_case = [](const ObjectKey&) { return true; };
  EXPECT_EQ(entry<Material>("Brick", rules).decision, Decision::Change);
  EXPECT_EQ(entry<Material>("BRICK", rules).decision, Decision::Add);
  apply(rules);
  EXPECT_EQ(library->get<Material>("Brick")->manufacturer(), "New");
  EXPECT_EQ(library->get<Material>("BRICK")->manufacturer(), "Another");
}

TEST_F(KitPlan, takes_a_stored_object_that_cannot_be_read_as_not_there) {
  library->save(brick("Old"));
  execute("PRAGMA foreign_keys=OFF; UPDATE Material SET type = 999");
  const auto shouted = brick("New");
  shouted->name("BRICK");
  source->save(shouted);
  auto rules = rules_for(OnClash::Fail);
  rules.ignores_case = [](const ObjectKey&) { return true; };
  EXPECT_EQ(entry<Material>("BRICK", rules).decision, Decision::Add);
  source->save(brick("New"));
  EXPECT_EQ(entry<Material>("Brick").decision, Decision::Add);
  EXPECT_EQ(entry<Material>("Brick", rules).decision, Decision::Add);
}

/// A material of another case that differs.
class KitPlanOtherCase : public KitPlan {
 protected:
  void SetUp() override {
    KitPlan::SetUp();
    library->save(brick("Old"));
    const auto incoming = brick("New");
    incoming->name("BRICK");
    source->save(wall(incoming));
    rules.ignores_case = [](const ObjectKey&) { return true; };
  }

  String name_in_wall() const {
    return library->get<Composition>("Wall")->layers()[0].material()->name();
  }

  PlanRules rules;
};

TEST_F(KitPlanOtherCase, is_a_clash) {
  const auto found = entry<Material>("BRICK", rules);
  EXPECT_EQ(found.decision, Decision::Undecided);
  ASSERT_EQ(found.clashes.size(), 1U);
  EXPECT_EQ(found.clashes[0].with, kit::Clash::With::OtherCase);
  EXPECT_EQ(found.clashes[0].name, "Brick");
}

TEST_F(KitPlanOtherCase, is_the_stored_one_for_use) {
  rules.on_clash = OnClash::Use;
  apply(rules);
  EXPECT_EQ(name_in_wall(), "Brick");
  EXPECT_EQ(library->get<Material>("Brick")->manufacturer(), "Old");
}

TEST_F(KitPlanOtherCase, is_overwritten_under_the_stored_spelling) {
  rules.on_clash = OnClash::Overwrite;
  apply(rules);
  EXPECT_EQ(name_in_wall(), "Brick");
  EXPECT_EQ(library->get<Material>("Brick")->manufacturer(), "New");
}

TEST_F(KitPlanOtherCase, gets_a_new_name_for_rename) {
  rules.on_clash = OnClash::Rename;
  apply(rules);
  EXPECT_EQ(name_in_wall(), "BRICK (2)");
  EXPECT_EQ(left_to_do(rules), "");
}

/// Materials with codes, about which the library asks nobody.
class KitPlanCodes : public KitPlan {
 protected:
  static std::shared_ptr<Material> coded(const std::string& name, const std::string& code) {
    const auto material = Material::create(text(name));
    material->code(text(code));
    return material;
  }
};

TEST_F(KitPlanCodes, that_another_object_has_are_a_clash_under_every_rule) {
  library->save(coded("Oak", "1"));
  source->save(coded("Ash", "1"));
  for (const auto rule : {OnClash::Fail, OnClash::Use, OnClash::Overwrite, OnClash::Rename}) {
    const auto found = entry<Material>("Ash", rules_for(rule));
    EXPECT_EQ(found.decision, Decision::Undecided);
    ASSERT_EQ(found.clashes.size(), 1U);
    EXPECT_EQ(found.clashes[0].with, kit::Clash::With::Code);
    EXPECT_EQ(found.clashes[0].name, "Oak");
  }
}

TEST_F(KitPlanCodes, are_exchanged) {
  library->save(coded("Oak", "1"));
  library->save(coded("Ash", "2"));
  source->save(coded("Oak", "2"));
  source->save(coded("Ash", "1"));
  apply(rules_for(OnClash::Overwrite));
  EXPECT_EQ(library->get<Material>("Oak")->code(), "2");
  EXPECT_EQ(library->get<Material>("Ash")->code(), "1");
}

TEST_F(KitPlanCodes, that_are_given_up_are_free_for_what_comes_in) {
  library->save(coded("Oak", "1"));
  source->save(Material::create("Oak"));
  source->save(coded("Ash", "1"));
  apply(rules_for(OnClash::Overwrite));
  EXPECT_EQ(library->get<Material>("Ash")->code(), "1");
  EXPECT_FALSE(library->get<Material>("Oak")->has_code());
}

TEST_F(KitPlanCodes, of_a_renamed_object_clash_with_those_of_the_stored_one) {
  library->save(coded("Oak", "1"));
  const auto other = coded("Oak", "1");
  other->cost("3");
  source->save(other);
  const auto found = entry<Material>("Oak", rules_for(OnClash::Rename));
  EXPECT_EQ(found.decision, Decision::Undecided);
  ASSERT_EQ(found.clashes.size(), 1U);
  EXPECT_EQ(found.clashes[0].with, kit::Clash::With::Code);
  EXPECT_EQ(found.clashes[0].code, "1");
}

/// Other states of stored objects.
class KitPlanStates : public KitPlan {
 protected:
  void SetUp() override {
    KitPlan::SetUp();
    const auto built = full_without_codes<Composition>("Wall");
    library->save(built);
    source->copyAll(library);
  }

  /// Each object of the source is a state of the one that it was copied from.
  PlanRules rules() const {
    PlanRules rules;
    enter<Material>(rules);
    enter<Composition>(rules);
    return rules;
  }

  template <class T>
  void enter(PlanRules& rules) const {
    for (const unsigned id : source->ids<T>()) {
      const auto stored = library->get<T>(original_names.at(source->get<T>(id)->name()));
      rules.states_of[{ObjectTraits<T>::type, id}] = stored->id();
    }
  }

  std::map<String, String> original_names{{"Wall", "Wall"},
                                          {"Wall outside", "Wall outside"},
                                          {"Wall core", "Wall core"},
                                          {"Wall inside", "Wall inside"}};
};

TEST_F(KitPlanStates, that_are_the_same_are_equal) { EXPECT_EQ(left_to_do(rules()), ""); }

TEST_F(KitPlanStates, give_new_names_and_exchange_them) {
  const auto core = source->get<Material>("Wall core");
  const auto inside = source->get<Material>("Wall inside");
  const auto id = library->get<Material>("Wall core")->id();
  core->name("between");
  source->save(core);
  inside->name("Wall core");
  source->save(inside);
  core->name("Wall inside");
  source->save(core);
  original_names["Wall core"] = "Wall inside";
  original_names["Wall inside"] = "Wall core";
  const auto wanted = rules();
  EXPECT_EQ(left_to_do(wanted), "Wall inside changed;Wall core changed;");
  apply(wanted);
  EXPECT_EQ(library->get<Material>(id)->name(), "Wall inside");
  EXPECT_EQ(left_to_do(wanted), "");
}

TEST_F(KitPlanStates, with_a_name_that_is_taken_are_a_clash) {
  library->save(Material::create("Taken"));
  const auto core = source->get<Material>("Wall core");
  core->name("Taken");
  source->save(core);
  original_names["Taken"] = "Wall core";
  const auto found = entry<Material>("Taken", rules());
  EXPECT_EQ(found.decision, Decision::Undecided);
}

TEST_F(KitPlanStates, take_tags_away) {
  const auto core = source->get<Material>("Wall core");
  core->tags(toModify).clear();
  source->save(core);
  apply(rules());
  EXPECT_TRUE(library->get<Material>("Wall core")->tags().empty());
}

TEST_F(KitPlanStates, may_have_any_core) {
  const auto count = library->get<Composition>("Wall")->layers().size();
  ASSERT_EQ(count, 4U);
  for (unsigned first = 0; first < count; ++first) {
    for (unsigned last = first; last < count; ++last) {
      for (unsigned structural = first; structural <= last; ++structural) {
        const auto wall = source->get<Composition>("Wall");
        wall->first_core_layer(0);
        wall->last_core_layer(last);
        wall->first_core_layer(first);
        wall->structural_layer(structural);
        source->save(wall);
        apply(rules());
        EXPECT_EQ(left_to_do(rules()), "") << first << ' ' << last << ' ' << structural;
      }
    }
  }
}

TEST_F(KitPlanStates, may_have_fewer_layers) {
  const auto wall = source->get<Composition>("Wall");
  wall->removeLayer(0);
  wall->removeLayer(0);
  source->save(wall);
  apply(rules());
  EXPECT_EQ(left_to_do(rules()), "");
  EXPECT_EQ(library->get<Composition>("Wall")->layers().size(), 2U);
}

TEST_F(KitPlanStates, of_an_object_that_is_not_there_are_an_error) {
  auto wanted = rules();
  wanted.states_of.begin()->second = 1000;
  EXPECT_EQ(error_of([&] { plan(wanted); }),
            "there is no material with the id 1000 in the library any more");
}

/// A plan that is applied some time after it was made.
class KitPlanLater : public KitPlan {
 protected:
  void SetUp() override {
    KitPlan::SetUp();
    library->save(brick("Old"));
    source->save(wall(brick("New")));
    rules = rules_for(OnClash::Overwrite);
    rules.fingerprints = true;
  }

  PlanRules rules;
};

TEST_F(KitPlanLater, is_applied_where_other_objects_have_changed) {
  const Plan made = plan(rules);
  library->save(Material::create("Another"));
  made.apply_later(*library);
  EXPECT_EQ(library->get<Material>("Brick")->manufacturer(), "New");
}

TEST_F(KitPlanLater, is_refused_where_one_of_its_objects_has_changed) {
  const Plan made = plan(rules);
  const auto stored = library->get<Material>("Brick");
  stored->cost("3");
  library->save(stored);
  const auto before = rows();
  EXPECT_EQ(error_of([&] { made.apply_later(*library); }),
            "an object has changed since the plan was made: material 'Brick'");
  EXPECT_EQ(rows(), before);
}

TEST_F(KitPlanLater, is_refused_where_one_of_its_objects_is_there_now) {
  const Plan made = plan(rules);
  library->save(wall(library->get<Material>("Brick")));
  EXPECT_EQ(error_of([&] { made.apply_later(*library); }),
            "an object has changed since the plan was made: composition 'Wall'");
}

TEST_F(KitPlanLater, is_refused_where_one_of_its_objects_is_gone) {
  const Plan made = plan(rules);
  library->remove(library->get<Material>("Brick"));
  EXPECT_EQ(error_of([&] { made.apply_later(*library); }),
            "an object has changed since the plan was made: material 'Brick'");
}

TEST_F(KitPlanLater, needs_fingerprints) {
  rules.fingerprints = false;
  EXPECT_EQ(error_of([&] { plan(rules).apply_later(*library); }),
            "the plan was made without fingerprints");
}

TEST_F(KitPlan, fingerprints_tell_values_and_custom_values_apart) {
  const auto first = with_custom("Brick", "Fire class", "A1");
  const auto other = with_custom("Brick", "Fire class", "A2");
  const auto third = with_custom("Brick", "Fire", "classA1");
  const auto same = with_custom("Brick", "Fire class", "A1");
  const auto digits = [](const std::shared_ptr<Material>& material) {
    return kit::fingerprint_of(*material);
  };
  EXPECT_EQ(digits(first).size(), 64U);
  EXPECT_EQ(digits(first), digits(same));
  EXPECT_NE(digits(first), digits(other));
  EXPECT_NE(digits(first), digits(third));
  same->cost("1");
  EXPECT_NE(digits(first), digits(same));
}

TEST_F(KitPlan, whose_progress_throws_changes_nothing) {
  for (int i = 0; i < 20; ++i) source->save(named<Material>("m" + std::to_string(i)));
  const auto before = rows();
  for (int most = 0; most < 60; ++most) {
    int left = most;
    const kit::Progress stop = [&] {
      if (left-- == 0) throw std::runtime_error("stop");
    };
    try {
      Library::Transaction transaction(*library);
      Plan(source, *library, {}, stop).apply(*library, stop);
      transaction.commit();
      EXPECT_GE(most, 20);
      return;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "stop");
      EXPECT_EQ(rows(), before);
    }
  }
  FAIL() << "it never ends";
}

}  // namespace
}  // namespace veldra_tests
