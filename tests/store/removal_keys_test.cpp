// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/removal_fixture.hpp"

namespace veldra_tests {
namespace {

class RemovalOfKeys : public RemovalTest {
 protected:
  /// Two stored objects of the kind, whose keys join the set.
  template <class T>
  void choose_two() {
    keys_.insert(key_of(stored<T>(kind_name(veldra::ObjectTraits<T>::type) + " 1")));
    keys_.insert(key_of(stored<T>(kind_name(veldra::ObjectTraits<T>::type) + " 2")));
  }

  std::vector<std::string> removed_in_order() const {
    return reactor.calls_starting_with("removed");
  }

  std::set<ObjectKey> keys_;
  Removed result_;
};

TEST_F(RemovalOfKeys, kinds_go_in_a_fixed_order_and_ids_ascending) {
  choose_two<Tag>();
  choose_two<MaterialType>();
  choose_two<Material>();
  choose_two<Composition>();
  choose_two<CustomProperty>();
  choose_two<Layer>();
  listen();

  library->remove(keys_, result_);

  // A new library has material types with the ids 1 to 13.
  EXPECT_THAT(
      removed_in_order(),
      ElementsAre("removed Composition 1", "removed Composition 2", "removed Material 1",
                  "removed Material 2", "removed MaterialType 14", "removed MaterialType 15",
                  "removed Layer 1", "removed Layer 2", "removed CustomProperty 1",
                  "removed CustomProperty 2", "removed Tag 1", "removed Tag 2"));
  EXPECT_EQ(result_.size(), keys_.size());
  for (const auto& entry : result_)
    EXPECT_TRUE(entry.second) << testing::PrintToString(entry.first);
}

TEST_F(RemovalOfKeys, each_object_is_asked_for_right_before_it_goes) {
  choose_two<Layer>();
  choose_two<Composition>();
  listen();

  library->remove(keys_);

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Composition 1", "removed Composition 1",
                          "may remove Composition 2", "removed Composition 2", "may remove Layer 1",
                          "removed Layer 1", "may remove Layer 2", "removed Layer 2",
                          "type Composition", "type Layer", "library"));
}

TEST_F(RemovalOfKeys, what_refers_goes_before_what_it_refers_to) {
  const auto wall = full_composition("Wall");
  library->save(wall);
  std::set<ObjectKey> keys{key_of(wall),
                           key_of(library->get<Material>("Wall core")),
                           key_of(library->get<MaterialType>("Wall core type")),
                           key_of(library->get<Layer>("Wall core layer")),
                           key_of(library->get<CustomProperty>("Wall core property 1")),
                           key_of(library->get<Tag>("Wall core tag 1"))};

  library->remove(keys, result_);

  EXPECT_EQ(result_.size(), keys.size());
  for (const auto& entry : result_)
    EXPECT_TRUE(entry.second) << testing::PrintToString(entry.first);
  EXPECT_NE(library->get<Material>("Wall inside"), nullptr);
  EXPECT_EQ(damage(path), "");
}

TEST_F(RemovalOfKeys, what_is_still_in_use_stays_and_the_rest_goes) {
  const auto wall = full_composition("Wall");
  library->save(wall);
  const ObjectKey core = key_of(library->get<Material>("Wall core"));
  const ObjectKey type = key_of(library->get<MaterialType>("Wall core type"));
  const ObjectKey wood = key_of(library->get<MaterialType>("Wood"));

  library->remove({core, type, wood}, result_);

  EXPECT_THAT(result_, testing::UnorderedElementsAre(Pair(core, false), Pair(type, false),
                                                     Pair(wood, true)));
  EXPECT_NE(library->get<Material>("Wall core"), nullptr);
  EXPECT_EQ(library->get<MaterialType>("Wood"), nullptr);
  expect_usable();
}

TEST_F(RemovalOfKeys, a_key_of_no_removable_kind_is_skipped) {
  const auto tag = stored<Tag>("one");
  PlainDatabase(path).execute(
      "INSERT INTO \"Asset\" VALUES (1, 'veldra::StructuralAsset', 'Steel', '')");

  library->remove({{ObjectType::Asset, 1}, {static_cast<ObjectType>(99), 1}, key_of(tag)}, result_);

  EXPECT_THAT(result_, ElementsAre(Pair(key_of(tag), true)));
  EXPECT_EQ(rows_in("Asset"), "1");
}

TEST_F(RemovalOfKeys, one_result_collects_several_calls) {
  const auto used = referenced<Tag>("used");
  const auto free = stored<Tag>("free");
  const auto layer = stored<Layer>("layer");

  library->remove({key_of(used)}, result_);
  library->remove({key_of(free)}, result_);
  library->remove<Layer>(std::set<unsigned>{layer->id()}, result_);

  EXPECT_THAT(result_, ElementsAre(Pair(key_of(used), false), Pair(key_of(free), true),
                                   Pair(key_of(layer), true)));
}

TEST_F(RemovalOfKeys, an_unknown_key_ends_the_call_and_the_kinds_before_stay_removed) {
  const auto wall = stored<Composition>("Wall");
  const auto tag = stored<Tag>("tag");
  listen();

  EXPECT_EQ(thrown_by([&] {
              library->remove({key_of(wall), key_of<Layer>(77), key_of(tag)}, result_);
            }),
            "veldra::ObjectNotFound");

  EXPECT_THAT(result_, ElementsAre(Pair(key_of(wall), true)));
  EXPECT_EQ(library->get<Composition>("Wall"), nullptr);
  EXPECT_NE(library->get<Tag>("tag"), nullptr);
  expect_usable();
}

TEST_F(RemovalOfKeys, a_removed_object_takes_its_side_rows_along) {
  library->save(full_composition("Wall"));
  library->save(full_composition("Roof"));
  const auto wall = library->get<Composition>("Wall");
  ASSERT_EQ(rows_in("Composition_layers"), "8");

  library->remove(wall);

  EXPECT_EQ(rows_in("Composition"), "1");
  EXPECT_EQ(rows_in("Composition_layers"), "4");
  EXPECT_EQ(rows_in("Composition_tags"), "2");
  EXPECT_EQ(rows_in("Composition_custom_values"), "2");
  library->remove(library->get<Material>("Wall core"));
  EXPECT_EQ(rows_in("Material"), "5");
  EXPECT_EQ(rows_in("Material_tags"), "15");
  EXPECT_EQ(rows_in("Material_thicknesses"), "10");
  EXPECT_EQ(rows_in("Material_custom_values"), "10");
  EXPECT_EQ(damage(path), "");
}

TEST_F(RemovalOfKeys, hundreds_of_objects_go_in_one_call) {
  std::set<unsigned> ids;
  for (int i = 0; i != 300; ++i) ids.insert(stored<Tag>("tag " + std::to_string(i))->id());

  library->remove<Tag>(ids);

  EXPECT_EQ(library->count<Tag>(), 0u);
}

TEST_F(RemovalOfKeys, those_at_the_call_count_whatever_the_reactor_does_to_the_set) {
  choose_two<Layer>();
  choose_two<Composition>();
  const auto tag = stored<Tag>("added while it runs");
  const auto wanted = keys_;
  listen();
  reactor.on_removed = [&](veldra::Library&, const ObjectKey&) { keys_ = {key_of(tag)}; };

  library->remove(keys_, result_);

  EXPECT_EQ(result_.size(), wanted.size());
  for (const auto& key : wanted) EXPECT_TRUE(result_[key]) << testing::PrintToString(key);
  EXPECT_TRUE(library->get<Tag>(tag->id()));
}

TEST_F(RemovalOfKeys, the_kinds_of_a_purge_are_those_at_the_call) {
  stored<Composition>("wall");
  stored<Layer>("layer");
  const auto tag = stored<Tag>("tag");
  std::set<ObjectType> kinds{ObjectType::Composition, ObjectType::Layer};
  listen();
  reactor.on_removed = [&](veldra::Library&, const ObjectKey&) { kinds = {ObjectType::Tag}; };

  library->purge(kinds, result_);

  EXPECT_EQ(library->count<Layer>(), 0U);
  EXPECT_TRUE(library->get<Tag>(tag->id()));
}

}  // namespace
}  // namespace veldra_tests
