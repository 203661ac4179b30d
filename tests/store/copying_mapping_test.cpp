// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"

namespace veldra_tests {
namespace {

class CopyingWithMapping : public CopyingTest {
 protected:
  /// Checks that every object of the kind in the source has its twin of the same values.
  template <class T>
  void expect_twins(const IdMapping& mapping, std::size_t count, IdMapping::Status status) {
    std::size_t twins = 0;
    for (const auto& original : all_of<T>(*source)) {
      if (!mapping.has(source_key(original))) continue;
      ++twins;
      EXPECT_EQ(entry_of(mapping, original).status, status) << title_of(original);
      EXPECT_EQ(values_of(twin_of(mapping, original)), values_of(original));
    }
    EXPECT_EQ(twins, count) << kind_of<T>();
  }
};

TEST_F(CopyingWithMapping, every_dependent_of_a_composition_is_entered) {
  const auto wall = put(full_composition("Wall"));
  IdMapping mapping = fresh_mapping();

  library->copy<Composition>(source, Ids{wall->id()}, mapping);

  expect_twins<Composition>(mapping, 1, IdMapping::Inserted);
  expect_twins<Material>(mapping, 3, IdMapping::Inserted);
  expect_twins<MaterialType>(mapping, 3, IdMapping::Inserted);
  expect_twins<Layer>(mapping, 4, IdMapping::Inserted);
  expect_twins<CustomProperty>(mapping, 8, IdMapping::Inserted);
  expect_twins<Tag>(mapping, 8, IdMapping::Inserted);
  EXPECT_EQ(mapping.size(), 27u);
  EXPECT_EQ(mapping.destination(), library.get());
}

TEST_F(CopyingWithMapping, dependents_that_are_there_are_entered_as_existing) {
  const auto oak = named<Material>("Oak");
  oak->addTag(named<Tag>("tag"));
  oak->cut_layer(named<Layer>("layer"));
  oak->type(source->get<MaterialType>("Wood"));
  oak->custom_value(named<CustomProperty>("property"), "value");
  put(oak);
  library->save(named<Tag>("tag"));
  library->save(named<Layer>("layer"));
  library->save(named<CustomProperty>("property"));
  reactor.forget();
  IdMapping mapping = fresh_mapping();

  library->copy<Material>(source, Ids{oak->id()}, mapping);

  expect_twins<Material>(mapping, 1, IdMapping::Inserted);
  expect_twins<Tag>(mapping, 1, IdMapping::Existing);
  expect_twins<Layer>(mapping, 1, IdMapping::Existing);
  expect_twins<MaterialType>(mapping, 1, IdMapping::Existing);
  expect_twins<CustomProperty>(mapping, 1, IdMapping::Existing);
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Material 101", "type Material", "library"));
}

TEST_F(CopyingWithMapping, dependents_come_in_a_fixed_order) {
  const auto oak = named<Material>("Oak");
  oak->tags(veldra::toModify) = {named<Tag>("first"), named<Tag>("second")};
  oak->type(named<MaterialType>("type"));
  oak->cut_layer(named<Layer>("layer"));
  oak->custom_value(named<CustomProperty>("property"), "value");
  const auto wall = named<Composition>("Wall");
  wall->addTag(named<Tag>("of the wall"));
  wall->entity_layer(named<Layer>("of the wall"));
  wall->custom_value(composition_property("property"), "value");
  wall->appendLayer({oak, Material::Function::None, 1.0});
  put(wall);

  library->copy<Composition>(source, Ids{wall->id()});

  EXPECT_THAT(reactor.calls(),
              ElementsAre("saved CustomProperty 101", "saved Tag 101", "saved Layer 101",
                          "saved Tag 102", "saved Tag 103", "saved MaterialType 101",
                          "saved Layer 102", "saved CustomProperty 102", "saved Material 101",
                          "saved Composition 101", "type Tag", "type MaterialType", "type Material",
                          "type Composition", "type CustomProperty", "type Layer", "library"));
}

TEST_F(CopyingWithMapping, the_kinds_of_keys_come_in_a_fixed_order) {
  const Keys keys{key_of(put(named<Tag>("tag"))),          key_of(put(named<Layer>("layer"))),
                  key_of(put(named<Material>("Oak"))),     key_of(put(named<MaterialType>("type"))),
                  key_of(put(named<Composition>("Wall"))), key_of(put(composition_property("p")))};

  library->copy(source, keys);

  EXPECT_THAT(reactor.calls_starting_with("saved"),
              ElementsAre("saved Composition 101", "saved Material 101", "saved MaterialType 101",
                          "saved Layer 101", "saved CustomProperty 101", "saved Tag 101"));
}

TEST_F(CopyingWithMapping, the_kinds_of_a_whole_library_come_in_a_fixed_order) {
  put(named<Tag>("tag"));
  put(named<Layer>("layer"));
  put(named<Material>("Oak"));
  put(named<MaterialType>("type"));
  put(named<Composition>("Wall"));
  put(composition_property("p"));

  library->copyAll(source);

  EXPECT_THAT(reactor.calls(),
              ElementsAre("saved Composition 101", "saved Material 101", "saved MaterialType 101",
                          "saved Layer 101", "saved CustomProperty 101", "saved Tag 101",
                          "type Tag", "type MaterialType", "type Material", "type Composition",
                          "type CustomProperty", "type Layer", "library"));
}

TEST_F(CopyingWithMapping, a_key_of_no_copied_kind_is_skipped) {
  {
    PlainDatabase database(source_path());
    put_structural_asset(database, "1");
  }
  const auto tag = put(named<Tag>("tag"));
  IdMapping mapping = fresh_mapping();

  library->copy(source, Keys{{ObjectType::Asset, 1}, {static_cast<ObjectType>(99), 1}, key_of(tag)},
                mapping);

  EXPECT_EQ(mapping.size(), 1u);
  EXPECT_NE(twin_of(mapping, tag), nullptr);
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM \"Asset\""), "0");
}

TEST_F(CopyingWithMapping, a_key_of_no_copied_kind_stands_for_itself_in_this_very_library) {
  const ObjectKey asset(ObjectType::Asset, 1);
  IdMapping mapping = fresh_mapping();

  library->copy(library, Keys{asset}, mapping);

  IdMapping::Value value;
  ASSERT_TRUE(mapping.compute({asset, library.get()}, value));
  EXPECT_EQ(value.id, 1u);
  EXPECT_EQ(value.status, IdMapping::Existing);
}

TEST_F(CopyingWithMapping, a_material_that_is_listed_beside_its_composition_is_copied_once) {
  const auto wall = put(full_composition("Wall"));
  const auto core = source->get<Material>("Wall core");
  IdMapping mapping = fresh_mapping();

  library->copy(source, Keys{key_of(wall), key_of(core), key_of(core->tags()[0])}, mapping);

  EXPECT_EQ(entry_of(mapping, core).status, IdMapping::Inserted);
  EXPECT_EQ(library->count<Material>(), 3u);
  EXPECT_EQ(library->count<Tag>(), 8u);
  const auto twin = twin_of(mapping, wall);
  EXPECT_EQ(twin->layer(1).material()->id(), entry_of(mapping, core).id);
  EXPECT_EQ(twin->layer(2).material()->id(), entry_of(mapping, core).id);
}

TEST_F(CopyingWithMapping, objects_that_share_a_dependent_share_it_in_the_copy) {
  const auto tag = named<Tag>("shared");
  const auto oak = named<Material>("Oak"), pine = named<Material>("Pine");
  oak->addTag(tag);
  pine->addTag(tag);
  put(oak);
  put(pine);

  library->copyAll(source);

  EXPECT_EQ(library->count<Tag>(), 1u);
  EXPECT_EQ(library->get<Material>("Oak")->tags()[0]->id(),
            library->get<Material>("Pine")->tags()[0]->id());
}

TEST_F(CopyingWithMapping, a_later_copy_uses_what_an_earlier_one_made) {
  const auto wall = put(full_composition("Wall"));
  const auto core = source->get<Material>("Wall core");
  IdMapping mapping = fresh_mapping();
  library->copy<Material>(source, Ids{core->id()}, mapping);
  const unsigned twin = entry_of(mapping, core).id;

  library->copy<Composition>(source, Ids{wall->id()}, mapping);

  EXPECT_EQ(library->count<Material>(), 3u);
  EXPECT_EQ(twin_of(mapping, wall)->layer(1).material()->id(), twin);
  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingWithMapping, without_the_mapping_a_later_copy_meets_the_names) {
  const auto wall = put(named<Composition>("Wall"));
  library->copy<Composition>(source, Ids{wall->id()});

  EXPECT_EQ(thrown_by([&] { library->copy<Composition>(source, Ids{wall->id()}); }),
            "veldra::ObjectNotUnique");
}

TEST_F(CopyingWithMapping, copying_and_saving_share_a_mapping) {
  const auto wall = put(full_composition("Wall"));
  const auto core = source->get<Material>("Wall core");
  IdMapping mapping = fresh_mapping();
  const auto saved = library->save(core, mapping);

  library->copy<Composition>(source, Ids{wall->id()}, mapping);
  const auto found = library->save(wall, mapping);

  EXPECT_EQ(twin_of(mapping, wall)->layer(1).material()->id(), saved->id());
  EXPECT_EQ(found->id(), entry_of(mapping, wall).id);
  EXPECT_EQ(library->count<Composition>(), 1u);
}

// A host may drop an entry when it is told of something.

class CopyingWithADroppedEntry : public CopyingWithMapping {
 protected:
  CopyingWithADroppedEntry() {
    library->copy<Material>(source, Ids{core->id()}, mapping);
    reactor.forget();
  }

  /// Copies the composition. When its tag is told of, the material's entry is dropped.
  void copy_wall(const std::function<void()>& when_dropped = [] {}) {
    reactor.on_saved = [this, when_dropped](Library&, const ObjectKey& key) {
      if (key.type != ObjectType::Tag) return;
      ASSERT_TRUE(mapping.remove(source_key(core)));
      when_dropped();
    };
    library->copy<Composition>(source, Ids{wall->id()}, mapping);
  }

  static std::shared_ptr<Composition> tagged_wall() {
    const auto composition = Composition::create("Wall");
    composition->addTag(Tag::create("outside"));
    composition->appendLayer({full_material("Core"), Material::Function::None, 5.0});
    return composition;
  }

  const std::shared_ptr<Composition> wall = put(tagged_wall());
  const std::shared_ptr<Material> core = source->get<Material>("Core");
  IdMapping mapping = fresh_mapping();
};

TEST_F(CopyingWithADroppedEntry, a_material_that_was_removed_is_copied_anew) {
  library->purge<Material>();
  copy_wall();
  const auto material = twin_of(mapping, wall)->layer(0).material();
  EXPECT_EQ(values_of(material), values_of(core));
  EXPECT_EQ(entry_of(mapping, core).id, material->id());
  EXPECT_EQ(entry_of(mapping, core).status, IdMapping::Inserted);
}

TEST_F(CopyingWithADroppedEntry, a_material_that_is_still_there_is_a_conflict) {
  reactor.decision = Library::Reactor::UseExisting;
  const auto stored = library->get<Material>("Core");
  stored->code(veldra::String());
  stored->save();
  copy_wall();
  EXPECT_THAT(reactor.calls_starting_with("conflict"), ElementsAre("conflict Material 'Core'"));
  EXPECT_EQ(library->count<Material>(), 1u);
  EXPECT_EQ(twin_of(mapping, wall)->layer(0).material()->id(), stored->id());
}

TEST_F(CopyingWithADroppedEntry, a_material_that_is_gone_from_the_source_too_is_not_found) {
  const std::string before = rows();
  const auto remove_from_source = [this] {
    source->remove(wall);
    source->remove(core);
  };
  EXPECT_EQ(thrown_by([&] { copy_wall(remove_from_source); }), "veldra::ObjectNotFound");
  EXPECT_EQ(rows(), before);
}

/// A material without a name is no stub: it was read, and is not read again.
TEST_F(CopyingWithMapping, a_material_without_a_name_is_copied_as_it_was_read) {
  const auto nameless = full_material("Core");
  nameless->name("");
  const auto wall = Composition::create("Wall");
  wall->addTag(Tag::create("outside"));
  wall->appendLayer({nameless, Material::Function::None, 5.0});
  put(wall);
  IdMapping mapping = fresh_mapping();
  reactor.on_saved = [&](Library&, const ObjectKey& key) {
    if (key.type != ObjectType::Tag || !source->get<Composition>("Wall")) return;
    ASSERT_TRUE(source->remove<Composition>(wall->id()));
    ASSERT_TRUE(source->remove<Material>(wall->layer(0).material()->id()));
  };

  library->copy<Composition>(source, Ids{wall->id()}, mapping);

  EXPECT_EQ(values_of(library->get<Composition>("Wall")->layer(0).material()),
            values_of(std::shared_ptr<const Material>(nameless)));
}

// Two properties of the source may stand for one: the first was renamed, and a second one took its
// former name.
TEST_F(CopyingWithMapping, values_of_two_properties_that_stand_for_one_are_one_value) {
  const auto first = put(CustomProperty::create("Rating", ObjectType::Material));
  IdMapping mapping = fresh_mapping();
  library->copyAll(source, mapping);
  first->name("Former rating");
  first->save();
  put(CustomProperty::create("Rating", ObjectType::Material));
  const auto oak = Material::create("Oak");
  oak->custom_value("Former rating", "A");
  oak->custom_value("Rating", "B");
  put(oak);

  library->copyAll(source, mapping);

  EXPECT_THAT(PlainDatabase(path).query("SELECT value FROM Material_custom_values"),
              ElementsAre(ElementsAre("'A'")));
  EXPECT_EQ(twin_of(mapping, oak)->custom_value("Rating").get(), veldra::String("A"));
}

TEST_F(CopyingWithMapping, later_changes_of_the_source_are_not_copied_with_the_same_mapping) {
  const auto oak = put(named<Material>("Oak"));
  IdMapping mapping = fresh_mapping();
  library->copyAll(source, mapping);
  oak->description("changed");
  oak->save();

  library->copyAll(source, mapping);

  EXPECT_EQ(twin_of(mapping, oak)->description(), veldra::String());
}

TEST_F(CopyingWithMapping, changes_that_were_not_saved_in_the_source_are_not_copied) {
  const auto oak = put(named<Material>("Oak"));
  oak->description("not saved");

  library->copyAll(source);

  EXPECT_EQ(library->get<Material>("Oak")->description(), veldra::String());
  EXPECT_TRUE(oak->isDirty());
}

TEST_F(CopyingWithMapping, an_unchanged_object_saved_where_it_is_counts_as_existing) {
  const auto oak = named<Material>("Oak");
  library->save(oak);
  IdMapping mapping = fresh_mapping();

  library->save(oak, mapping);

  IdMapping::Value value;
  ASSERT_TRUE(mapping.compute({key_of(oak), library.get()}, value));
  EXPECT_EQ(value.id, oak->id());
  EXPECT_EQ(value.status, IdMapping::Existing);
}

TEST_F(CopyingWithMapping, an_entry_by_hand_is_believed) {
  const auto oak = named<Material>("Oak");
  oak->addTag(named<Tag>("red"));
  put(oak);
  const auto blue = named<Tag>("blue");
  library->save(blue);
  IdMapping mapping = fresh_mapping();
  mapping.assign(source_key(oak->tags()[0]), {blue->id(), IdMapping::Existing});

  library->copyAll(source, mapping);

  EXPECT_EQ(twin_of(mapping, oak)->tags()[0]->id(), blue->id());
  EXPECT_EQ(library->get<Tag>("red"), nullptr);
}

TEST_F(CopyingWithMapping, one_mapping_serves_several_sources) {
  const auto second = create("second.lib");
  const auto oak = put(named<Material>("Oak"));
  const auto pine = named<Material>("Pine");
  second->save(pine);
  ASSERT_EQ(oak->id(), pine->id());
  IdMapping mapping = fresh_mapping();

  library->copyAll(source, mapping);
  library->copyAll(second, mapping);

  EXPECT_EQ(mapping.size(), 28u);
  IdMapping::Value of_pine;
  ASSERT_TRUE(mapping.compute({key_of(pine), second.get()}, of_pine));
  EXPECT_EQ(library->get<Material>(of_pine.id)->name(), veldra::String("Pine"));
  EXPECT_EQ(twin_of(mapping, oak)->name(), veldra::String("Oak"));
}

TEST_F(CopyingWithMapping, a_handle_opened_anew_is_another_source) {
  const auto oak = put(named<Material>("Oak"));
  IdMapping mapping = fresh_mapping();
  library->copy<Material>(source, Ids{oak->id()}, mapping);
  const auto again = Library::open(source_path().c_str(), false);

  EXPECT_EQ(thrown_by([&] { library->copy<Material>(again, Ids{oak->id()}, mapping); }),
            "veldra::ObjectNotUnique");
}

TEST_F(CopyingWithMapping, an_entry_whose_object_is_gone_still_counts_as_copied) {
  const auto oak = put(named<Material>("Oak"));
  IdMapping mapping = fresh_mapping();
  library->copyAll(source, mapping);
  library->remove(library->get<Material>("Oak"));
  const std::string before = rows();
  reactor.forget();

  EXPECT_EQ(thrown_by([&] { library->copy<Material>(source, Ids{oak->id()}, mapping); }), "");

  EXPECT_EQ(rows(), before);
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(CopyingWithMapping, a_type_that_is_gone_fails_the_copy_that_needs_it) {
  const auto oak = named<Material>("Oak");
  oak->type(named<MaterialType>("type"));
  put(oak);
  IdMapping mapping = fresh_mapping();
  library->copy<MaterialType>(source, Ids{oak->type()->id()}, mapping);
  library->remove(library->get<MaterialType>("type"));
  const std::string before = rows();

  EXPECT_EQ(thrown_by([&] { library->copy<Material>(source, Ids{oak->id()}, mapping); }),
            "veldra::ObjectNotFound");

  EXPECT_EQ(rows(), before);
  mapping.remove(source_key(source->get<MaterialType>("type")));
  mapping.remove(source_key(oak));
  EXPECT_EQ(thrown_by([&] { library->copy<Material>(source, Ids{oak->id()}, mapping); }), "");
  EXPECT_EQ(library->get<Material>("Oak")->type()->name(), veldra::String("type"));
}

TEST_F(CopyingWithMapping, a_whole_library_equals_its_copy) {
  put(full_composition("Wall"));
  put(full_composition("Roof"));
  put(full_material("Oak"));
  put(named<Tag>("unused"));

  library->copyAll(source);

  EXPECT_EQ(contents_of(*library), contents_of(*source));
  EXPECT_EQ(damage(path), "");
}

TEST_F(CopyingWithMapping, a_copy_of_a_copy_equals_a_copy) {
  put(full_composition("Wall"));
  put(full_material("Oak"));
  const auto third = create("third.lib");

  library->copyAll(source);
  third->copyAll(library);

  EXPECT_EQ(contents_of(*third), contents_of(*source));
}

TEST_F(CopyingWithMapping, a_copy_in_pieces_equals_a_copy_at_once) {
  put(full_composition("Wall"));
  put(full_composition("Roof"));
  put(full_material("Oak"));
  IdMapping mapping = fresh_mapping();
  for (const auto& material : all_of<Material>(*source))
    library->copy<Material>(source, Ids{material->id()}, mapping);
  library->copy(source, Keys{{ObjectType::Composition, 2}}, mapping);
  for (const auto& property : all_of<CustomProperty>(*source))
    library->copy<CustomProperty>(source, Ids{property->id()}, mapping);
  library->copyAll(source, mapping);

  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingWithMapping, a_copy_back_brings_nothing_but_names_that_are_taken) {
  put(full_composition("Wall"));
  library->copyAll(source);
  RecordingReactor of_source;
  of_source.decision = Library::Reactor::UseExisting;
  source->setReactor(&of_source);
  for (const auto& material : all_of<Material>(*source)) {
    material->clear_code();
    material->save();
  }
  for (const auto& material : all_of<Material>(*library)) {
    material->clear_code();
    material->save();
  }
  const std::string before = dump(source_path());

  source->copyAll(library);

  EXPECT_EQ(dump(source_path()), before);
}

TEST_F(CopyingWithMapping, more_ids_than_a_statement_can_bind_are_copied) {
  constexpr unsigned kTags = 40000;
  PlainDatabase(source_path())
      .execute(
          "WITH RECURSIVE \"n\"(\"i\") AS (SELECT 1 UNION ALL SELECT \"i\"+1 FROM \"n\" WHERE "
          "\"i\"<" +
          std::to_string(kTags) + ") INSERT INTO \"Tag\" SELECT \"i\", 'tag ' || \"i\" FROM \"n\"");
  Ids ids;
  for (unsigned id = 1; id <= kTags; ++id) ids.insert(id);
  IdMapping mapping = fresh_mapping();

  library->copy<Tag>(source, ids, mapping);

  EXPECT_EQ(library->count<Tag>(), kTags);
  EXPECT_EQ(mapping.size(), kTags);
}

}  // namespace
}  // namespace veldra_tests
