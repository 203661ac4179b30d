// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <vector>

namespace veldra_tests {
namespace {

class SavingDependents : public LibraryTest {
 protected:
  std::vector<std::string> saved() const { return reactor.calls_starting_with("saved"); }
};

TEST_F(SavingDependents, those_of_a_material_come_first_and_in_order) {
  library->save(full_material("Oak"));
  EXPECT_THAT(reactor.calls(),
              ElementsAre("saved Tag 1", "saved Tag 2", "saved MaterialType 14", "saved Layer 1",
                          "saved CustomProperty 1", "saved CustomProperty 2", "saved Material 1",
                          "type Tag", "type MaterialType", "type Material", "type CustomProperty",
                          "type Layer", "library"));
}

TEST_F(SavingDependents, those_of_a_composition_come_first_and_in_order) {
  library->save(full_composition("Wall"));
  EXPECT_THAT(
      reactor.calls(),
      ElementsAre("saved CustomProperty 1", "saved CustomProperty 2", "saved Tag 1", "saved Tag 2",
                  "saved Layer 1",                                                         //
                  "saved Tag 3", "saved Tag 4", "saved MaterialType 14", "saved Layer 2",  //
                  "saved CustomProperty 3", "saved CustomProperty 4", "saved Material 1",  //
                  "saved Tag 5", "saved Tag 6", "saved MaterialType 15", "saved Layer 3",  //
                  "saved CustomProperty 5", "saved CustomProperty 6", "saved Material 2",  //
                  "saved Tag 7", "saved Tag 8", "saved MaterialType 16", "saved Layer 4",  //
                  "saved CustomProperty 7", "saved CustomProperty 8", "saved Material 3",  //
                  "saved Composition 1", "type Tag", "type MaterialType", "type Material",
                  "type Composition", "type CustomProperty", "type Layer", "library"));
}

TEST_F(SavingDependents, tags_are_saved_in_the_order_of_the_list) {
  const auto material = Material::create("Oak");
  for (const char* name : {"c", "a", "b", "a"}) material->addTag(Tag::create(name));
  library->save(material);
  EXPECT_EQ(value("SELECT group_concat(name, '') FROM (SELECT name FROM Tag ORDER BY id)"),
            "'cab'");
  EXPECT_EQ(material->tags()[1]->id(), material->tags()[3]->id());
}

TEST_F(SavingDependents, those_of_a_clean_object_are_not_visited) {
  const auto material = library->save(full_material("Oak"));
  const auto composition = Composition::create();
  composition->appendLayer({material, Material::Function::None, 1.0});
  composition->name("Wall");
  library->save(composition);
  reactor.forget();
  material->name("Changed");
  material->tags(toModify)[0] = Tag::create("Changed");
  const std::string before = rows();
  EXPECT_EQ(library->save(composition), composition);
  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(material->isDirty());
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(SavingDependents, a_new_object_without_a_name_is_clean_and_not_written) {
  IdMapping mapping(library.get());
  const auto material = Material::create();
  const auto composition = Composition::create();
  EXPECT_EQ(library->save(material, mapping), material);
  EXPECT_EQ(library->save(composition, mapping), composition);
  EXPECT_EQ(material->id(), 0u);
  EXPECT_EQ(composition->id(), 0u);
  EXPECT_EQ(library->count<Material>(), 0u);
  IdMapping::Value value(7, IdMapping::Inserted);
  EXPECT_TRUE(mapping.compute({ObjectKey(ObjectType::Material, 0), nullptr}, value));
  EXPECT_EQ(value.id, 0u);
  EXPECT_EQ(value.status, IdMapping::Existing);
}

TEST_F(SavingDependents, changed_ones_are_updated_with_their_owner) {
  const auto wall = library->save(full_composition("Wall"));
  const auto material = material_of(wall, 0);
  const auto type = std::const_pointer_cast<MaterialType>(material->type());
  reactor.forget();
  type->name("Changed type");
  material->cost("Changed cost");
  wall->comments("Changed comments");
  library->save(wall);
  EXPECT_THAT(saved(),
              ElementsAre("saved MaterialType 14", "saved Material 1", "saved Composition 1"));
  EXPECT_EQ(value("SELECT name FROM MaterialType WHERE id=14"), "'Changed type'");
  EXPECT_EQ(value("SELECT cost FROM Material WHERE id=1"), "'Changed cost'");
}

TEST_F(SavingDependents, clean_ones_are_neither_written_nor_told_of) {
  const auto wall = library->save(full_composition("Wall"));
  reactor.forget();
  wall->comments("Changed");
  library->save(wall);
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Composition 1", "type Composition", "library"));
}

TEST_F(SavingDependents, stored_ones_of_the_same_names_take_their_place) {
  library->save(Tag::create("Oak tag 2"));
  library->save(MaterialType::create("Oak type"));
  library->save(Layer::create("Oak layer"));
  library->save(CustomProperty::create("Oak property 1", ObjectType::Material));
  reactor.forget();
  const auto oak = full_material("Oak");
  library->save(oak);
  EXPECT_THAT(saved(), ElementsAre("saved Tag 2", "saved CustomProperty 2", "saved Material 1"));
  EXPECT_EQ(oak->tags()[0]->id(), 2u);
  EXPECT_EQ(oak->tags()[1]->id(), 1u);
  EXPECT_EQ(oak->type()->id(), 14u);
  EXPECT_EQ(oak->cut_layer()->id(), 1u);
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(full_material("Oak")));
}

TEST_F(SavingDependents, a_custom_value_by_name_finds_the_stored_property) {
  const auto property = library->save(CustomProperty::create("Price", ObjectType::Composition));
  const auto wall = Composition::create("Wall");
  wall->custom_value("Price", "9.99");
  const auto oak = Material::create("Oak");
  oak->custom_value("Price", "1.11");
  library->save(wall);
  library->save(oak);
  const std::shared_ptr<const CustomProperty>& of_wall = wall->custom_values().begin()->first;
  const std::shared_ptr<const CustomProperty>& of_oak = oak->custom_values().begin()->first;
  EXPECT_EQ(of_wall->id(), property->id());
  EXPECT_NE(of_oak->id(), property->id());
  EXPECT_EQ(of_oak->object_type(), ObjectType::Material);
}

TEST_F(SavingDependents, the_objects_of_the_owner_are_the_ones_that_are_saved) {
  const auto wall = full_composition("Wall");
  const auto tag = wall->tags()[0];
  const auto core = wall->layer(1).material();
  const auto layer = wall->entity_layer();
  library->save(wall);
  EXPECT_EQ(wall->tags()[0], tag);
  EXPECT_EQ(wall->layer(1).material(), core);
  EXPECT_EQ(wall->layer(2).material(), core);
  EXPECT_EQ(wall->entity_layer(), layer);
  EXPECT_EQ(tag->library(), library);
  EXPECT_NE(tag->id(), 0u);
  EXPECT_FALSE(tag->isDirty());
  EXPECT_EQ(core->library(), library);
  EXPECT_FALSE(core->isDirty());
}

TEST_F(SavingDependents, a_material_of_several_layers_is_saved_once) {
  library->save(full_composition("Wall"));
  EXPECT_EQ(value("SELECT count(*) FROM Material WHERE name='Wall core'"), "1");
  EXPECT_EQ(value("SELECT count(DISTINCT value_material_id) FROM Composition_layers"), "3");
}

TEST_F(SavingDependents, those_of_other_libraries_are_copied_and_replaced) {
  const auto other = create("other.lib");
  const auto source = other->save(full_material("Oak"));
  const std::string source_state = state_of(source);
  const auto material = Material::create("Mine");
  material->tags(toModify) = {source->tags()[0], Tag::create("mine"), source->tags()[0]};
  material->type(source->type());
  material->cut_layer(source->cut_layer());
  const std::shared_ptr<const CustomProperty>& property = source->custom_values().begin()->first;
  material->custom_value(property, "9.99");
  library->save(material);
  EXPECT_EQ(state_of(source), source_state);
  EXPECT_NE(material->tags()[0], source->tags()[0]);
  EXPECT_EQ(material->tags()[0]->library(), library);
  EXPECT_EQ(material->tags()[0]->id(), material->tags()[2]->id());
  EXPECT_EQ(material->type()->library(), library);
  EXPECT_EQ(material->cut_layer()->library(), library);
  const std::shared_ptr<const CustomProperty>& mine = material->custom_values().begin()->first;
  EXPECT_EQ(mine->library(), library);
  EXPECT_EQ(material->custom_values().size(), 1u);
  EXPECT_THAT(saved(), ElementsAre("saved Tag 1", "saved Tag 2", "saved MaterialType 14",
                                   "saved Layer 1", "saved CustomProperty 1", "saved Material 1"));
}

TEST_F(SavingDependents, a_composition_of_another_library_is_copied_with_all) {
  const auto other = create("other.lib");
  other->save(full_material("First"));
  const auto source = other->save(full_composition("Wall"));
  const auto loaded = other->get<Composition>(source->id());
  const std::string loaded_state = state_of(loaded);
  IdMapping mapping(library.get());
  const auto copy = library->save(loaded, mapping);
  EXPECT_EQ(state_of(loaded), loaded_state);
  EXPECT_EQ(values_of(copy), values_of(loaded));
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(loaded));
  EXPECT_EQ(state_of(copy).find(", dirty"), std::string::npos);
  EXPECT_EQ(library->count<Material>(), 3u);
  EXPECT_EQ(library->count<Tag>(), 8u);
  EXPECT_EQ(damage(path), "");
  for (const auto& layer : loaded->layers()) {
    IdMapping::Value value;
    EXPECT_TRUE(mapping.compute(
        {ObjectKey(ObjectType::Material, layer.material()->id()), other.get()}, value));
    EXPECT_EQ(library->get<Material>(value.id)->name(), layer.material()->name());
  }
}

TEST_F(SavingDependents, what_copies_share_is_copied_once_within_a_mapping) {
  const auto other = create("other.lib");
  const auto tag = other->save(Tag::create("shared"));
  for (const char* name : {"Oak", "Pine"}) {
    const auto material = Material::create(name);
    material->addTag(tag);
    other->save(material);
  }
  IdMapping mapping(library.get());
  const auto oak = library->save(other->get<Material>("Oak"), mapping);
  const auto pine = library->save(other->get<Material>("Pine"), mapping);
  EXPECT_EQ(oak->tags()[0]->id(), pine->tags()[0]->id());
  EXPECT_EQ(library->count<Tag>(), 1u);
  EXPECT_EQ(reactor.calls_starting_with("saved Tag").size(), 1u);
}

TEST_F(SavingDependents, a_mapped_one_that_is_gone_is_not_found_even_where_it_could_be_left_out) {
  const auto other = create("other.lib");
  for (const char* name : {"Oak", "Pine"}) {
    const auto material = Material::create(name);
    material->cut_layer(other->save(named<Layer>("Section")));
    other->save(material);
  }
  IdMapping mapping(library.get());
  library->save(other->get<Material>("Oak"), mapping);
  PlainDatabase(path).execute("UPDATE Material SET cut_layer=NULL; DELETE FROM Layer");
  EXPECT_EQ(thrown_by([&] { library->save(other->get<Material>("Pine"), mapping); }),
            "veldra::ObjectNotFound");
  EXPECT_FALSE(library->get<Material>("Pine"));
}

TEST_F(SavingDependents,
       mapped_properties_that_were_renamed_stand_in_the_order_of_their_new_names) {
  const auto other = create("other.lib");
  const auto first = other->save(named<CustomProperty>("first"));
  const auto second = other->save(named<CustomProperty>("second"));
  const auto oak = Material::create("Oak");
  oak->custom_value(first, "1");
  oak->custom_value(second, "2");
  other->save(oak);
  IdMapping mapping(library.get());
  for (const auto& property : {first, second}) library->save(property, mapping);
  const auto renamed = library->get<CustomProperty>("first");
  renamed->name("third");
  library->save(renamed);

  const auto copy = library->save(oak, mapping);

  ASSERT_EQ(copy->custom_values().size(), 2u);
  EXPECT_EQ(copy->custom_values().begin()->first->name(), String("second"));
  copy->custom_value("second", "changed");
  copy->custom_value("third", "changed");
  EXPECT_EQ(copy->custom_values().size(), 2u);
  library->save(copy);
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(copy));
}

TEST_F(SavingDependents, what_is_met_again_in_its_own_library_counts_as_existing) {
  const auto oak = library->save(Material::create("Oak"));
  oak->mark("changed");
  const auto wall = Composition::create("Wall");
  wall->appendLayer({oak, Material::Function::None, 1.0});
  IdMapping mapping(library.get());
  const IdMapping::Key key({ObjectType::Material, oak->id()}, library.get());
  IdMapping::Value met;

  library->save(oak, mapping);
  ASSERT_TRUE(mapping.compute(key, met));
  EXPECT_EQ(met.status, IdMapping::Updated);

  library->save(wall, mapping);
  ASSERT_TRUE(mapping.compute(key, met));
  EXPECT_EQ(met.id, oak->id());
  EXPECT_EQ(met.status, IdMapping::Existing);
}

TEST_F(SavingDependents, layers_of_the_same_foreign_material_share_one_copy) {
  const auto other = create("other.lib");
  const auto oak = other->save(Material::create("Oak"));
  const auto wall = Composition::create("Wall");
  wall->appendLayer({oak, Material::Function::None, 1.0});
  wall->appendLayer({other->get<Material>("Oak"), Material::Function::None, 2.0});
  wall->appendLayer({other->get<Material>("Oak"), Material::Function::None, 3.0});
  library->save(wall);
  EXPECT_EQ(library->count<Material>(), 1u);
  EXPECT_THAT(reactor.calls_starting_with("conflict"), IsEmpty());
  for (const auto& layer : wall->layers()) EXPECT_EQ(layer.material()->library(), library);
}

TEST_F(SavingDependents, a_conflict_of_a_layer_s_material_is_put_to_the_reactor) {
  const auto stored = library->save(Material::create("Wall core"));
  reactor.forget();
  reactor.decision = Library::Reactor::UseExisting;
  const auto wall = full_composition("Wall");
  library->save(wall);
  EXPECT_THAT(reactor.calls_starting_with("conflict"),
              ElementsAre("conflict Material 'Wall core'"));
  EXPECT_EQ(wall->layer(1).material()->id(), stored->id());
  EXPECT_EQ(wall->layer(2).material()->id(), stored->id());
  EXPECT_EQ(value("SELECT count(*) FROM Composition_layers WHERE value_material_id=" +
                  std::to_string(stored->id())),
            "2");
}

TEST_F(SavingDependents, a_foreign_material_of_several_layers_is_decided_about_once) {
  library->save(Material::create("Wall core"));
  const auto other = create("other.lib");
  const unsigned id = other->save(full_composition("Wall"))->id();
  reactor.decision = Library::Reactor::Overwrite;
  const auto copy = library->save(other->get<Composition>(id));
  EXPECT_THAT(reactor.calls_starting_with("conflict"),
              ElementsAre("conflict Material 'Wall core'"));
  EXPECT_EQ(copy->layer(1).material()->id(), 1u);
  EXPECT_EQ(copy->layer(2).material()->id(), 1u);
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(other->get<Composition>(id)));
}

TEST_F(SavingDependents, two_handles_on_one_file_are_two_libraries) {
  const auto beside = Library::open(path.c_str(), false);
  const auto tag = library->save(Tag::create("warm"));
  const auto same_tag = beside->save(tag);
  EXPECT_NE(same_tag, tag);
  EXPECT_EQ(same_tag->id(), tag->id());
  EXPECT_EQ(same_tag->library(), beside);
  const auto oak = library->save(Material::create("Oak"));
  EXPECT_EQ(thrown_by([&] { beside->save(oak); }), "veldra::ObjectNotUnique");
  EXPECT_EQ(oak->library(), library);
  EXPECT_EQ(library->count<Tag>(), 1u);
}

TEST_F(SavingDependents, what_was_saved_before_a_merge_stays) {
  library->save(Material::create("Oak"));
  reactor.forget();
  reactor.decision = Library::Reactor::UseExisting;
  const auto oak = Material::create("Oak");
  oak->addTag(Tag::create("new"));
  library->save(oak);
  EXPECT_TRUE(library->get<Tag>("new"));
  EXPECT_THAT(oak->tags(), IsEmpty());
  EXPECT_THAT(reactor.calls(),
              ElementsAre("saved Tag 1", "conflict Material 'Oak'", "type Tag", "library"));
}

/// What the library calls the type of materials that have none.
class SavingGeneric : public SavingDependents {
 protected:
  class Words : public veldra::Translations {
   public:
    Words() { Translations::set(this); }
    ~Words() override { Translations::set(nullptr); }

    bool translate(String& translation, const String& source, const char* context,
                   int count) override {
      asked.push_back(source.utf8());
      EXPECT_TRUE(translation.empty());
      EXPECT_EQ(context, nullptr);
      EXPECT_EQ(count, 0);
      translation = answer;
      return known;
    }

    String answer;
    bool known = true;
    std::vector<std::string> asked;
  };
};

TEST_F(SavingGeneric, a_material_without_a_type_becomes_generic) {
  const auto oak = library->save(Material::create("Oak"));
  ASSERT_TRUE(oak->type());
  EXPECT_EQ(oak->type()->name(), String("Generic"));
  EXPECT_EQ(oak->type()->id(), 4u);
  EXPECT_EQ(oak->type()->library(), library);
  EXPECT_FALSE(oak->type()->isDirty());
  EXPECT_EQ(value("SELECT type FROM Material"), "4");
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Material 1", "type Material", "library"));
  EXPECT_EQ(library->count<MaterialType>(), 13u);
}

TEST_F(SavingGeneric, the_type_is_made_where_there_is_none) {
  PlainDatabase(path).execute("DELETE FROM MaterialType WHERE name='Generic'");
  library->save(Material::create("Oak"));
  library->save(Material::create("Pine"));
  EXPECT_THAT(saved(),
              ElementsAre("saved MaterialType 14", "saved Material 1", "saved Material 2"));
  EXPECT_EQ(value("SELECT name FROM MaterialType WHERE id=14"), "'Generic'");
}

TEST_F(SavingGeneric, the_host_translates_its_name) {
  Words words;
  words.answer = "Allgemein";
  const auto oak = library->save(Material::create("Oak"));
  EXPECT_EQ(oak->type()->name(), String("Allgemein"));
  EXPECT_EQ(oak->type()->id(), 14u);
  EXPECT_THAT(words.asked, ElementsAre("Generic"));
  EXPECT_EQ(library->save(Material::create("Pine"))->type()->id(), 14u);
}

TEST_F(SavingGeneric, a_host_without_a_translation_leaves_the_name) {
  Words words;
  words.answer = "discarded";
  words.known = false;
  EXPECT_EQ(library->save(Material::create("Oak"))->type()->name(), String("Generic"));
  EXPECT_THAT(words.asked, ElementsAre("Generic"));
}

TEST_F(SavingGeneric, a_material_with_a_type_needs_no_name) {
  Words words;
  words.answer = "Allgemein";
  const auto oak = Material::create("Oak");
  oak->type(library->get<MaterialType>("Wood"));
  library->save(oak);
  EXPECT_THAT(words.asked, IsEmpty());
  EXPECT_EQ(value("SELECT type FROM Material"), "13");
}

TEST_F(SavingGeneric, a_type_that_was_taken_away_becomes_generic) {
  const auto oak = library->save(full_material("Oak"));
  oak->type(nullptr);
  library->save(oak);
  EXPECT_EQ(oak->type()->name(), String("Generic"));
  EXPECT_EQ(value("SELECT type FROM Material"), "4");
}

}  // namespace
}  // namespace veldra_tests
