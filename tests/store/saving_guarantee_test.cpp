// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <functional>
#include <limits>
#include <stdexcept>
#include <vector>

namespace veldra_tests {
namespace {

/// A text that cannot be stored.
String broken_text() {
  const unsigned short units[] = {'b', 'a', 'd', 0xD800, ' ', 0};
  return String(units);
}

/// A trigger on a table, such as {"INSERT", "Tag", "NEW.name='x'"}.
struct Refusal {
  std::string event;
  std::string table;
  std::string condition;

  std::string statement() const {
    return "CREATE TRIGGER refuse BEFORE " + event + " ON " + table +
           (condition.empty() ? "" : " WHEN " + condition) +
           " BEGIN SELECT RAISE(ABORT, 'refused'); END";
  }
};

std::ostream& operator<<(std::ostream& out, const Refusal& refusal) {
  return out << refusal.event << " " << refusal.table << " " << refusal.condition;
}

/// After a save that fails, the file and all objects are as they were, and the same save succeeds
/// when its cause is mended.
class SavingGuarantee : public LibraryTest {
 protected:
  /// Tells what was thrown.
  template <class T>
  Thrown expect_that_failing_changes_nothing(const std::shared_ptr<T>& object) {
    const std::string file = rows();
    const std::string state = state_of(object);
    const Thrown thrown = thrown_by([&] { library->save(object); });
    EXPECT_NE(thrown.type, "");
    EXPECT_EQ(rows(), file);
    EXPECT_EQ(state_of(object), state);
    return thrown;
  }

  template <class T>
  void expect_that_saving_succeeds(const std::shared_ptr<T>& object) {
    const std::string values = values_of(object);
    EXPECT_EQ(library->save(object), object);
    EXPECT_EQ(values_of(object), values);
    EXPECT_EQ(state_of(object).find(", dirty"), std::string::npos);
    EXPECT_EQ(state_of(object).find(", id 0,"), std::string::npos);
    EXPECT_EQ(values_of(library->get<T>(object->id())), values);
    EXPECT_EQ(damage(path), "");
  }

  void refuse(const Refusal& refusal) { execute(refusal.statement()); }
  void allow_again() { execute("DROP TRIGGER refuse"); }

  /// The object cannot be saved while the file refuses it, however often it is tried.
  template <class T>
  void expect_to_be_refused(const std::shared_ptr<T>& object, const Refusal& refusal) {
    refuse(refusal);
    EXPECT_THAT(expect_that_failing_changes_nothing(object).type, StartsWith("odb::"));
    EXPECT_THAT(expect_that_failing_changes_nothing(object).type, StartsWith("odb::"));
    allow_again();
  }
};

class SavingNewRefused : public SavingGuarantee, public testing::WithParamInterface<Refusal> {};

TEST_P(SavingNewRefused, leaves_new_objects_as_they_were) {
  const auto wall = full_composition("Wall");
  expect_to_be_refused(wall, GetParam());
  expect_that_saving_succeeds(wall);
}

TEST_P(SavingNewRefused, leaves_copies_of_stored_objects_as_they_were) {
  const auto other = create("other.lib");
  const auto wall = other->save(full_composition("Wall"));
  expect_to_be_refused(wall, GetParam());
  EXPECT_EQ(values_of(library->save(wall)), values_of(wall));
  EXPECT_EQ(damage(path), "");
}

TEST_P(SavingNewRefused, leaves_a_new_object_of_foreign_ones_as_it_was) {
  const auto other = create("other.lib");
  const auto wall = other->save(full_composition("Wall"))->clone();
  expect_to_be_refused(wall, GetParam());
  expect_that_saving_succeeds(wall);
}

INSTANTIATE_TEST_SUITE_P(
    Each, SavingNewRefused,
    testing::Values(Refusal{"INSERT", "Tag", ""}, Refusal{"INSERT", "Tag", "NEW.name='Wall tag 2'"},
                    Refusal{"INSERT", "Tag", "NEW.name='Wall inside tag 2'"},
                    Refusal{"INSERT", "CustomProperty", ""},
                    Refusal{"INSERT", "CustomProperty", "NEW.name='Wall inside property 2'"},
                    Refusal{"INSERT", "Layer", ""},
                    Refusal{"INSERT", "Layer", "NEW.name='Wall inside layer'"},
                    Refusal{"INSERT", "MaterialType", ""},
                    Refusal{"INSERT", "MaterialType", "NEW.name='Wall inside type'"},
                    Refusal{"INSERT", "Material", ""},
                    Refusal{"INSERT", "Material", "NEW.name='Wall inside'"},
                    Refusal{"INSERT", "Material_tags", "NEW.\"index\"=2"},
                    Refusal{"INSERT", "Material_thicknesses", "NEW.value=50"},
                    Refusal{"INSERT", "Material_custom_values", "NEW.value='Wall core value 2'"},
                    Refusal{"INSERT", "Composition", ""},
                    Refusal{"INSERT", "Composition_tags", "NEW.\"index\"=1"},
                    Refusal{"INSERT", "Composition_layers", "NEW.\"index\"=3"},
                    Refusal{"INSERT", "Composition_custom_values", "NEW.value='Wall value 2'"}));

class SavingChangedRefused : public SavingGuarantee, public testing::WithParamInterface<Refusal> {
 protected:
  /// A stored composition in which each object but the old tags is changed.
  std::shared_ptr<Composition> changed_wall() {
    const auto wall = library->get<Composition>(library->save(full_composition("Wall"))->id());
    wall->comments("changed");
    wall->addTag(Tag::create("changed"));
    wall->custom_value("changed", "changed");
    wall->layer(0, toModify).thickness(99.0);
    rename(wall->entity_layer());
    rename_properties(*wall);
    for (const unsigned index : {0u, 3u}) {
      const auto material = material_of(wall, index);
      material->cost("changed");
      material->tags(toModify).erase(material->tags(toModify).begin());
      material->thicknesses(toModify) = {99.0};
      rename(material->type());
      rename(material->cut_layer());
      rename_properties(*material);
    }
    return wall;
  }

 private:
  template <class T>
  static void rename(const std::shared_ptr<const T>& object) {
    std::const_pointer_cast<T>(object)->name(String((object->name().utf8() + " changed").c_str()));
  }

  template <class T>
  static void rename_properties(const T& object) {
    for (const auto& value : object.custom_values()) {
      rename<CustomProperty>(value.first);
    }
  }
};

TEST_P(SavingChangedRefused, leaves_stored_objects_as_they_were) {
  const auto wall = changed_wall();
  expect_to_be_refused(wall, GetParam());
  expect_that_saving_succeeds(wall);
}

INSTANTIATE_TEST_SUITE_P(
    Each, SavingChangedRefused,
    testing::Values(
        Refusal{"UPDATE", "CustomProperty", ""}, Refusal{"UPDATE", "Layer", ""},
        Refusal{"UPDATE", "MaterialType", ""},
        Refusal{"UPDATE", "MaterialType", "NEW.name='Wall inside type changed'"},
        Refusal{"UPDATE", "Material", ""}, Refusal{"UPDATE", "Material", "NEW.name='Wall inside'"},
        Refusal{"UPDATE", "Composition", ""}, Refusal{"DELETE", "Material_tags", ""},
        Refusal{"DELETE", "Material_thicknesses", ""},
        Refusal{"DELETE", "Material_custom_values", ""}, Refusal{"DELETE", "Composition_tags", ""},
        Refusal{"DELETE", "Composition_layers", "OLD.\"index\"=3"},
        Refusal{"DELETE", "Composition_custom_values", ""}, Refusal{"INSERT", "Tag", ""},
        Refusal{"INSERT", "CustomProperty", ""}, Refusal{"INSERT", "Material_tags", ""},
        Refusal{"INSERT", "Composition_tags", "NEW.\"index\"=2"},
        Refusal{"INSERT", "Composition_layers", "NEW.\"index\"=3"},
        Refusal{"INSERT", "Composition_custom_values", "NEW.value='changed'"}));

/// A place for a text that cannot be stored.
struct Place {
  const char* name;
  std::function<void(Composition&)> spoil;
};

std::ostream& operator<<(std::ostream& out, const Place& place) { return out << place.name; }

Material& inside_of(Composition& wall) { return const_cast<Material&>(*wall.layer(3).material()); }

class SavingBrokenText : public SavingGuarantee, public testing::WithParamInterface<Place> {};

TEST_P(SavingBrokenText, leaves_new_objects_as_they_were) {
  const auto wall = full_composition("Wall");
  GetParam().spoil(*wall);
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "utf8::invalid_utf16");
  EXPECT_THAT(reactor.calls(), Not(testing::IsEmpty()));
}

TEST_P(SavingBrokenText, leaves_stored_objects_as_they_were) {
  const auto wall = library->save(full_composition("Wall"));
  GetParam().spoil(*wall);
  inside_of(*wall).cost("new");
  wall->custom_value("new", "new");
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "utf8::invalid_utf16");
}

INSTANTIATE_TEST_SUITE_P(
    Each, SavingBrokenText,
    testing::Values(
        Place{"composition_comments", [](Composition& wall) { wall.comments(broken_text()); }},
        Place{"composition_custom_value",
              [](Composition& wall) { wall.custom_value("Wall property 2", broken_text()); }},
        Place{"composition_tag",
              [](Composition& wall) { wall.addTag(Tag::create(broken_text())); }},
        Place{"composition_layer",
              [](Composition& wall) { wall.entity_layer(Layer::create(broken_text())); }},
        Place{"material_name", [](Composition& wall) { inside_of(wall).name(broken_text()); }},
        Place{"material_code", [](Composition& wall) { inside_of(wall).code(broken_text()); }},
        Place{"material_appearance",
              [](Composition& wall) { inside_of(wall).appearance(broken_text()); }},
        Place{"material_pattern",
              [](Composition& wall) {
                inside_of(wall).cut_pattern(Pattern(Pattern::Type::Lines, broken_text(), 1, 0));
              }},
        Place{"material_tag",
              [](Composition& wall) { inside_of(wall).addTag(Tag::create(broken_text())); }},
        Place{"material_type",
              [](Composition& wall) { inside_of(wall).type(MaterialType::create(broken_text())); }},
        Place{"material_layer",
              [](Composition& wall) { inside_of(wall).cut_layer(Layer::create(broken_text())); }},
        Place{"material_custom_value",
              [](Composition& wall) {
                inside_of(wall).custom_value("Wall inside property 2", broken_text());
              }},
        Place{"material_property",
              [](Composition& wall) { inside_of(wall).custom_value(broken_text(), "x"); }}),
    [](const testing::TestParamInfo<Place>& info) { return std::string(info.param.name); });

TEST_F(SavingGuarantee, a_text_can_be_mended_and_saved) {
  const auto wall = full_composition("Wall");
  material_of(wall, 3)->url(broken_text());
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "utf8::invalid_utf16");
  material_of(wall, 3)->url("good");
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_reactor_that_throws_at_any_call_changes_nothing) {
  const auto wall = full_composition("Wall");
  library->save(Material::create("Wall core"));
  library->save(Tag::create("Wall core tag 1"));
  int remaining = 0;
  reactor.rename_with(" 2");
  reactor.throw_at_the_end_of(remaining);
  int failures = 0;
  for (; failures != 100; ++failures) {
    remaining = failures;
    const std::string file = rows();
    const std::string state = state_of(wall);
    const Thrown thrown = thrown_by([&] { library->save(wall); });
    if (thrown == "") break;
    ASSERT_EQ(thrown, "std::runtime_error");
    ASSERT_EQ(rows(), file) << "call " << failures;
    ASSERT_EQ(state_of(wall), state) << "call " << failures;
  }
  EXPECT_EQ(failures, 27);  // one conflict, and 27 objects of which one tag is there already
  EXPECT_EQ(wall->layer(1).material()->name(), String("Wall core 2"));
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(wall));
  EXPECT_EQ(damage(path), "");
}

class NewAsset : public StructuralAsset {
 public:
  NewAsset() : StructuralAsset() {}
};

TEST_F(SavingGuarantee, a_failure_of_the_commit_changes_nothing) {
  const auto wall = full_composition("Wall");
  material_of(wall, 3)->structuralAsset(std::make_shared<NewAsset>());
  const Thrown thrown = expect_that_failing_changes_nothing(wall);
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.extended, 787);
  EXPECT_THAT(reactor.calls_starting_with("saved Composition"), ElementsAre("saved Composition 1"));
  material_of(wall, 3)->structuralAsset(nullptr);
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_failure_of_the_commit_leaves_changed_objects_changed) {
  const auto wall = library->save(full_composition("Wall"));
  wall->comments("changed");
  material_of(wall, 0)->cost("changed");
  material_of(wall, 0)->structuralAsset(std::make_shared<NewAsset>());
  EXPECT_EQ(expect_that_failing_changes_nothing(wall).extended, 787);
  EXPECT_TRUE(wall->isDirty());
  EXPECT_TRUE(material_of(wall, 0)->isDirty());
  material_of(wall, 0)->structuralAsset(nullptr);
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_number_that_must_be_there_passes_unchanged) {
  const auto wall = full_composition("Wall");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  material_of(wall, 3)->shading_color(Color(nan, 0, 0, 0));
  const Thrown thrown = expect_that_failing_changes_nothing(wall);
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 19);
  EXPECT_EQ(thrown.extended, 1299);
  EXPECT_EQ(reactor.calls_starting_with("conflict").size(), 0u);
  material_of(wall, 3)->shading_color(Color());
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, stored_objects_that_were_met_by_name_are_let_go) {
  for (const char* name : {"Wall tag 2", "Wall inside tag 1", "Wall core tag 2"}) {
    library->save(Tag::create(name));
  }
  library->save(MaterialType::create("Wall core type"));
  library->save(Layer::create("Wall layer"));
  library->save(CustomProperty::create("Wall property 2", ObjectType::Composition));
  const auto wall = full_composition("Wall");
  refuse(Refusal{"INSERT", "Composition", ""});
  expect_that_failing_changes_nothing(wall);
  EXPECT_EQ(wall->tags()[1]->id(), 0u);
  EXPECT_TRUE(wall->tags()[1]->isDirty());
  EXPECT_FALSE(wall->tags()[1]->library());
  allow_again();
  expect_that_saving_succeeds(wall);
  EXPECT_EQ(wall->tags()[1]->id(), 1u);
}

TEST_F(SavingGuarantee, a_decision_to_use_the_existing_is_taken_back) {
  library->save(Material::create("Wall core"));
  reactor.decision = Library::Reactor::UseExisting;
  const auto wall = full_composition("Wall");
  refuse(Refusal{"INSERT", "Composition", ""});
  expect_that_failing_changes_nothing(wall);
  EXPECT_EQ(wall->layer(1).material()->description(), String("Wall core description"));
  allow_again();
  library->save(wall);
  EXPECT_EQ(wall->layer(1).material()->id(), 1u);
  EXPECT_EQ(wall->layer(1).material()->description(), String());
}

TEST_F(SavingGuarantee, a_decision_to_overwrite_is_taken_back) {
  library->save(Material::create("Wall core"));
  reactor.decision = Library::Reactor::Overwrite;
  const auto wall = full_composition("Wall");
  refuse(Refusal{"INSERT", "Composition", ""});
  expect_that_failing_changes_nothing(wall);
  allow_again();
  expect_that_saving_succeeds(wall);
  EXPECT_EQ(wall->layer(1).material()->id(), 1u);
}

TEST_F(SavingGuarantee, a_decision_to_rename_is_taken_back) {
  library->save(Composition::create("Wall"));
  library->save(Material::create("Wall core"));
  reactor.rename_with(" 2");
  const auto wall = full_composition("Wall");
  refuse(Refusal{"INSERT", "Composition_layers", "NEW.\"index\"=3"});
  expect_that_failing_changes_nothing(wall);
  EXPECT_EQ(wall->name(), String("Wall"));
  EXPECT_EQ(wall->layer(1).material()->name(), String("Wall core"));
  allow_again();
  library->save(wall);
  EXPECT_EQ(wall->name(), String("Wall 2"));
  EXPECT_EQ(wall->layer(1).material()->name(), String("Wall core 2"));
}

TEST_F(SavingGuarantee, every_rename_of_an_object_is_taken_back) {
  library->save(Material::create("Oak"));
  library->save(Material::create("Oak 2"));
  reactor.rename_with(" 2");
  const auto oak = Material::create("Oak");
  refuse(Refusal{"INSERT", "Material", "NEW.name='Oak 2 2'"});
  expect_that_failing_changes_nothing(oak);
  EXPECT_EQ(oak->name(), String("Oak"));
}

TEST_F(SavingGuarantee, an_object_that_is_saved_twice_is_as_it_was_before_the_first_time) {
  const auto oak = Material::create("Oak");
  const auto wall = Composition::create("Wall");
  wall->appendLayer({oak, Material::Function::None, 1.0});
  wall->appendLayer({oak, Material::Function::None, 2.0});
  reactor.on_saved = [&oak](Library&, const ObjectKey& key) {
    if (key.type == ObjectType::Material) oak->cost("changed while the wall is being saved");
  };
  refuse(Refusal{"INSERT", "Composition", ""});
  EXPECT_EQ(thrown_by([&] { library->save(wall); }), "odb::sqlite::database_exception");
  EXPECT_THAT(reactor.calls_starting_with("saved Material"),
              ElementsAre("saved Material 1", "saved Material 1"));
  EXPECT_EQ(oak->id(), 0u);
  EXPECT_FALSE(oak->library());
  EXPECT_TRUE(oak->isDirty());
}

TEST_F(SavingGuarantee, an_object_that_was_taken_for_a_stored_one_is_itself_again) {
  const auto stored = library->save(full_material("Oak"));
  const auto pine = full_material("Pine");
  pine->name("Oak");
  reactor.on_conflict = [&](Library&, ObjectType, String&) {
    return static_cast<int>(Library::Reactor::Overwrite);
  };
  refuse(Refusal{"UPDATE", "Material", ""});
  expect_that_failing_changes_nothing(pine);
  allow_again();
  expect_that_saving_succeeds(pine);
  EXPECT_EQ(pine->id(), stored->id());
}

TEST_F(SavingGuarantee, a_rolled_back_tag_never_keeps_the_id_of_another) {
  const auto oak = Material::create("Oak");
  const auto lost = Tag::create("lost");
  oak->addTag(lost);
  oak->structuralAsset(std::make_shared<NewAsset>());
  EXPECT_EQ(thrown_by([&] { library->save(oak); }).extended, 787);
  EXPECT_EQ(lost->id(), 0u);
  const auto next = library->save(Tag::create("next"));
  oak->structuralAsset(nullptr);
  library->save(oak);
  EXPECT_NE(lost->id(), next->id());
  ASSERT_EQ(library->get<Material>("Oak")->tags().size(), 1u);
  EXPECT_EQ(library->get<Material>("Oak")->tags()[0]->name(), String("lost"));
}

TEST_F(SavingGuarantee, a_tag_of_a_failed_object_can_be_saved_with_another) {
  const auto tag = Tag::create("shared");
  const auto oak = Material::create("Oak");
  const auto pine = Material::create("Pine");
  oak->addTag(tag);
  oak->type(library->get<MaterialType>("Wood"));
  pine->addTag(tag);
  oak->comments(broken_text());
  EXPECT_EQ(thrown_by([&] { library->save(oak); }), "utf8::invalid_utf16");
  EXPECT_EQ(library->save(pine), pine);
  EXPECT_NE(tag->id(), 0u);
  oak->comments("");
  expect_that_saving_succeeds(oak);
  EXPECT_EQ(library->count<Tag>(), 1u);
}

TEST_F(SavingGuarantee, a_dependent_whose_row_is_gone_changes_nothing) {
  const auto wall = library->save(full_composition("Wall"));
  const auto gone = material_of(wall, 3);
  for (const char* table : {"Material_tags", "Material_thicknesses", "Material_custom_values"}) {
    execute("DELETE FROM " + std::string(table) + " WHERE object_id=" + std::to_string(gone->id()));
  }
  execute("DELETE FROM Material WHERE id=" + std::to_string(gone->id()));
  gone->cost("changed");
  material_of(wall, 0)->cost("changed");
  wall->comments("changed");
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "veldra::ObjectNotFound");
  wall->removeLayer(3);
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_clash_of_names_after_new_dependents_changes_nothing) {
  library->save(Composition::create("Wall"));
  const auto wall = full_composition("Wall");
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "veldra::ObjectNotUnique");
  wall->name("Wall 2");
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_missing_tag_or_material_changes_nothing) {
  const auto wall = full_composition("Wall");
  wall->addTag(std::shared_ptr<Tag>());
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "odb::null_pointer");
  wall->tags(toModify).pop_back();
  wall->appendLayer(Composition::Layer());
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "odb::null_pointer");
  wall->removeLayer(4);
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_library_for_reading_only_changes_nothing) {
  const auto wall = library->save(full_composition("Wall"));
  library.reset();
  library = Library::open(path.c_str(), true);
  const auto loaded = library->get<Composition>(wall->id());
  loaded->comments("changed");
  material_of(loaded, 2)->cost("changed");
  const Thrown thrown = expect_that_failing_changes_nothing(loaded);
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 8);
  EXPECT_EQ(expect_that_failing_changes_nothing(full_composition("New")).code, 8);
}

TEST_F(SavingGuarantee, a_file_that_another_connection_holds_changes_nothing) {
  PlainDatabase holder(path);
  holder.execute("BEGIN IMMEDIATE");
  const auto wall = full_composition("Wall");
  EXPECT_EQ(expect_that_failing_changes_nothing(wall), "odb::timeout");
  holder.execute("ROLLBACK");
  expect_that_saving_succeeds(wall);
}

TEST_F(SavingGuarantee, a_translation_that_throws_changes_nothing) {
  class Cancelled : public veldra::Translations {
   public:
    bool translate(String&, const String&, const char*, int) override {
      throw std::runtime_error("no words");
    }
  } translations;
  const auto oak = full_material("Oak");
  oak->type(nullptr);
  veldra::Translations::set(&translations);
  EXPECT_EQ(expect_that_failing_changes_nothing(oak), "std::runtime_error");
  veldra::Translations::set(nullptr);
  library->save(oak);
  EXPECT_EQ(oak->type()->name(), String("Generic"));
}

TEST_F(SavingGuarantee, what_was_collected_is_told_after_a_failure) {
  refuse(Refusal{"INSERT", "Material", ""});
  EXPECT_EQ(thrown_by([&] { library->save(full_material("Oak")); }),
            "odb::sqlite::database_exception");
  EXPECT_THAT(reactor.calls(),
              ElementsAre("saved Tag 1", "saved Tag 2", "saved MaterialType 14", "saved Layer 1",
                          "saved CustomProperty 1", "saved CustomProperty 2", "type Tag",
                          "type MaterialType", "type CustomProperty", "type Layer", "library"));
  reactor.forget();
  library->save(Layer::create("Section"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Layer 1", "type Layer", "library"));
}

TEST_F(SavingGuarantee, a_kind_whose_report_fails_does_not_count_as_changed) {
  reactor.on_saved = [](Library&, const ObjectKey&) { throw std::runtime_error("full"); };
  IdMapping mapping(library.get());
  EXPECT_EQ(thrown_by([&] { library->save(Layer::create("Section"), mapping); }),
            "std::runtime_error");
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Layer 1"));
  EXPECT_TRUE(mapping.has({ObjectKey(ObjectType::Layer, 0), nullptr}));
}

TEST_F(SavingGuarantee, entries_of_a_mapping_stay_after_a_failure) {
  const auto other = create("other.lib");
  const auto oak = other->save(full_material("Oak"));
  refuse(Refusal{"INSERT", "Material", ""});
  IdMapping mapping(library.get());
  EXPECT_EQ(thrown_by([&] { library->save(oak, mapping); }), "odb::sqlite::database_exception");
  EXPECT_TRUE(mapping.has({ObjectKey(ObjectType::Tag, oak->tags()[0]->id()), other.get()}));
  EXPECT_FALSE(mapping.has({ObjectKey(ObjectType::Material, oak->id()), other.get()}));
}

}  // namespace
}  // namespace veldra_tests
