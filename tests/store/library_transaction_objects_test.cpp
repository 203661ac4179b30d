// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/transaction_objects.hpp"

namespace veldra_tests {
namespace {

// What saving replaces in an object.

TEST_F(TransactionObjects, foreign_objects_that_it_refers_to) {
  const auto wall = put(full_composition("Wall"))->clone();
  const auto inside = material_of(wall, 3)->clone();
  wall->layer(3, toModify).material(inside);
  expect_to_be_taken_back(wall, [&] { library->save(wall); });
  expect_stored(wall);
  EXPECT_EQ(wall->layer(3).material(), inside);
}

TEST_F(TransactionObjects, stored_objects_that_stand_for_what_it_refers_to) {
  library->save(full_composition("Wall"));
  const auto wall = full_without_codes<Composition>("Wall");
  wall->name("Wall 2");
  reactor.decision = Library::Reactor::UseExisting;
  expect_to_be_taken_back(wall, [&] { library->save(wall); });
  expect_stored(wall);
}

TEST_F(TransactionObjects, the_type_of_a_material_without_one) {
  const auto oak = Material::create("Oak");
  expect_to_be_taken_back(oak, [&] {
    library->save(oak);
    EXPECT_EQ(oak->type()->name(), String("Generic"));
  });
  expect_stored(oak);
}

TEST_F(TransactionObjects, the_values_of_one_for_which_the_stored_one_is_used) {
  library->save(Material::create("Oak"));
  const auto oak = full_material("Oak");
  const std::string state = state_of(oak);
  reactor.decision = Library::Reactor::UseExisting;
  roll_back(*library, [&] {
    library->save(oak);
    EXPECT_EQ(oak->description(), String());
  });
  EXPECT_EQ(state_of(oak), state);
}

TEST_F(TransactionObjects, the_id_of_one_that_overwrites_the_stored_one) {
  const auto stored = library->save(Composition::create("Wall"));
  const auto wall = full_composition("Wall");
  reactor.decision = Library::Reactor::Overwrite;
  expect_to_be_taken_back(wall, [&] {
    library->save(wall);
    EXPECT_EQ(wall->id(), stored->id());
  });
  expect_stored(wall);
}

TEST_F(TransactionObjects, the_name_of_one_that_is_renamed) {
  library->save(Composition::create("Wall"));
  library->save(Material::create("Wall core"));
  reactor.rename_with(" 2");
  const auto wall = full_composition("Wall");
  expect_to_be_taken_back(wall, [&] { library->save(wall); });
  expect_stored(wall);
  EXPECT_EQ(wall->name(), String("Wall 2"));
}

TEST_F(TransactionObjects, an_asset_of_another_library) {
  const auto oak = full_material("Oak");
  put(oak);
  {
    PlainDatabase database(source_path());
    put_structural_asset(database, "7");
    database.execute("UPDATE Material SET structural_id=7");
  }
  const auto clone = source->get<Material>("Oak")->clone();
  ASSERT_TRUE(clone->structuralAsset());
  expect_to_be_taken_back(clone, [&] {
    library->save(clone);
    EXPECT_FALSE(clone->structuralAsset());
  });
  expect_stored(clone);
}

// Several operations on the same objects.

TEST_F(TransactionObjects, what_several_refer_to) {
  const auto oak = full_material("Oak");
  const auto wall = Composition::create("Wall");
  const auto roof = Composition::create("Roof");
  wall->appendLayer({oak, Material::Function::None, 1.0});
  roof->appendLayer({oak, Material::Function::None, 2.0});
  const std::string state = state_of(wall) + state_of(roof);
  roll_back(*library, [&] {
    library->save(oak);
    library->save(wall);
    library->save(roof);
    library->remove(roof);
  });
  EXPECT_EQ(state_of(wall) + state_of(roof), state);
  library->save(roof);
  library->save(wall);
  expect_stored(wall);
  expect_stored(roof);
}

TEST_F(TransactionObjects, a_wall_whose_parts_are_saved_before_and_changed_within) {
  const auto wall = full_composition("Wall");
  const std::string state = state_of(wall);
  roll_back(*library, [&] {
    material_of(wall, 0)->save(library);
    wall->tags()[1]->save(library);
    library->save(wall);
    material_of(wall, 1)->type(nullptr);
    wall->comments("changed");
    library->save(wall);
    material_of(wall, 1)->cost("changed");
    material_of(wall, 1)->save();
    wall->comments("Wall comments");
    material_of(wall, 1)->cost("Wall core cost");
  });
  EXPECT_EQ(material_of(wall, 1)->type(), nullptr);
  EXPECT_EQ(material_of(wall, 1)->id(), 0u);
  EXPECT_TRUE(material_of(wall, 1)->isDirty());
  EXPECT_EQ(state_of(wall).find(", clean"), std::string::npos);
  library->save(wall);
  expect_stored(wall);
}

TEST_F(TransactionObjects, what_the_host_changed_within_stays_changed) {
  const auto oak = full_material("Oak");
  roll_back(*library, [&] {
    library->save(oak);
    oak->comments("changed once");
    library->save(oak);
    oak->cost("changed twice");
  });
  EXPECT_EQ(oak->comments(), String("changed once"));
  EXPECT_EQ(oak->cost(), String("changed twice"));
  EXPECT_TRUE(oak->isDirty());
  library->save(oak);
  expect_stored(oak);
}

TEST_F(TransactionObjects, what_the_host_made_it_refer_to_within_stays) {
  const auto oak = full_material("Oak");
  const auto wall = full_composition("Wall");
  roll_back(*library, [&] {
    library->save(oak);
    library->save(wall);
    oak->addTag(Tag::create("late"));
    oak->type(MaterialType::create("late"));
    oak->cut_layer(Layer::create("late"));
    oak->custom_value("late", "value");
    wall->appendLayer({full_material("late"), Material::Function::None, 1.0});
  });
  EXPECT_THAT(oak->tags(), SizeIs(4));
  EXPECT_EQ(oak->type()->name(), String("late"));
  EXPECT_EQ(oak->cut_layer()->name(), String("late"));
  EXPECT_EQ(oak->custom_value("late").get(), String("value"));
  EXPECT_THAT(wall->layers(), SizeIs(5));
  library->save(oak);
  library->save(wall);
  expect_stored(oak);
  expect_stored(wall);
}

TEST_F(TransactionObjects, what_the_host_set_in_place_of_what_saving_did_stays) {
  library->save(Composition::create("Wall"));
  put(full_composition("Roof"));
  const auto oak = Material::create("Oak");
  const auto wall = source->get<Composition>("Roof")->clone();
  wall->name("Wall");
  reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "Wall 2";
    return Library::Reactor::Rename;
  };
  roll_back(*library, [&] {
    library->save(oak);
    library->save(wall);
    oak->type(library->get<MaterialType>("Wood"));
    wall->name("Wall 3");
    wall->entity_layer(nullptr);
    library->save(oak);
    library->save(wall);
  });
  ASSERT_TRUE(oak->type());
  EXPECT_EQ(oak->type()->name(), String("Wood"));
  EXPECT_EQ(wall->name(), String("Wall 3"));
  EXPECT_FALSE(wall->entity_layer());
  library->save(oak);
  library->save(wall);
  expect_stored(oak);
  expect_stored(wall);
}

// The material that two layers have was read to stand in the second one, with an id that is lost.
TEST_F(TransactionObjects, lists_in_which_foreign_objects_were_replaced_go_back_as_a_whole) {
  put(full_composition("Roof"));
  const auto wall = source->get<Composition>("Roof")->clone();
  const auto tags = wall->tags();
  const auto layers = wall->layers();
  roll_back(*library, [&] {
    library->save(wall);
    wall->addTag(Tag::create("late"));
    wall->removeLayer(0);
    wall->clear_custom_values();
  });
  EXPECT_EQ(wall->tags(), tags);
  EXPECT_EQ(wall->layers(), layers);
  EXPECT_THAT(wall->custom_values(), SizeIs(2));
  library->save(full_material("in between"));
  library->save(wall);
  expect_stored(wall);
  EXPECT_EQ(values_of(wall->layer(1).material()), values_of(wall->layer(2).material()));
}

TEST_F(TransactionObjects, a_stored_one_that_is_changed_within_is_dirty_afterwards) {
  const auto oak = library->save(full_material("Oak"));
  roll_back(*library, [&] {
    oak->cost("changed");
    library->save(oak);
    EXPECT_FALSE(oak->isDirty());
  });
  EXPECT_TRUE(oak->isDirty());
  EXPECT_EQ(oak->library(), library);
  library->save(oak);
  expect_stored(oak);
  EXPECT_EQ(library->get<Material>("Oak")->cost(), String("changed"));
}

TEST_F(TransactionObjects, one_that_moves_to_another_library_after_a_rollback) {
  const auto wall = full_composition("Wall");
  roll_back(*library, [&] { library->save(wall); });
  EXPECT_EQ(source->save(wall), wall);
  EXPECT_EQ(wall->library(), source);
  EXPECT_EQ(values_of(source->get<Composition>("Wall")), values_of(wall));
}

// Copying, and mappings.

TEST_F(TransactionObjects, each_form_of_copying_is_taken_back) {
  const auto wall = put(full_without_codes<Composition>("Wall"));
  const Keys keys{key_of(wall)};
  const std::vector<std::function<void(IdMapping&)>> forms = {
      [&](IdMapping& mapping) { library->copyAll(source, mapping); },
      [&](IdMapping&) { library->copyAll(source); },
      [&](IdMapping& mapping) { library->copy(source, keys, mapping); },
      [&](IdMapping&) { library->copy(source, keys); },
      [&](IdMapping& mapping) { library->copy<Composition>(source, {wall->id()}, mapping); },
      [&](IdMapping&) { library->copy<Composition>(source, {wall->id()}); },
      [&](IdMapping& mapping) { library->save(wall, mapping); }};
  const std::string file = rows();
  for (const auto& form : forms) {
    IdMapping mapping = fresh_mapping();
    roll_back(*library, [&] {
      form(mapping);
      EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(wall));
    });
    EXPECT_EQ(rows(), file);
    EXPECT_FALSE(library->get<Composition>("Wall"));
  }
  for (const auto& form : forms) {
    IdMapping mapping = fresh_mapping();
    reactor.decision = Library::Reactor::UseExisting;
    commit(*library, [&] { form(mapping); });
    EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Composition"), "1");
  }
  EXPECT_EQ(damage(path), "");
}

TEST_F(TransactionObjects, entries_of_mappings_stay) {
  const auto wall = put(full_composition("Wall"));
  IdMapping mapping = fresh_mapping();
  roll_back(*library, [&] { library->copyAll(source, mapping); });
  EXPECT_NE(entry_of(mapping, wall).id, 0u);
  EXPECT_FALSE(twin_of(mapping, wall));
  EXPECT_TRUE(mapping.has(source_key(std::const_pointer_cast<Tag>(wall->tags()[0]))));
}

TEST_F(TransactionObjects, a_mapping_serves_several_copies_within_one) {
  const auto oak = put(full_material("Oak"));
  const auto pine = put(full_material("Pine"));
  commit(*library, [&] {
    IdMapping mapping = fresh_mapping();
    library->copy<Material>(source, {oak->id()}, mapping);
    library->copy<Material>(source, {oak->id(), pine->id()}, mapping);
    EXPECT_EQ(values_of(twin_of(mapping, oak)), values_of(oak));
  });
  EXPECT_EQ(library->count<Material>(), 2u);
}

}  // namespace
}  // namespace veldra_tests
