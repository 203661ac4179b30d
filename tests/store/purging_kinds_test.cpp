// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/removal_fixture.hpp"

namespace veldra_tests {
namespace {

template <class T>
class PurgingOfKind : public RemovalTest {};
TYPED_TEST_SUITE(PurgingOfKind, AllKinds, KindNames);

TYPED_TEST(PurgingOfKind, everything_that_nothing_refers_to_goes) {
  const auto one = this->template stored<TypeParam>("one");
  const auto two = this->template stored<TypeParam>("two");
  Removed result;

  this->library->template purge<TypeParam>(result);

  EXPECT_THAT(result, Contains(Pair(key_of(one), true)));
  EXPECT_THAT(result, Contains(Pair(key_of(two), true)));
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("two"), nullptr);
}

TYPED_TEST(PurgingOfKind, other_kinds_stay) {
  this->library->save(full_composition("Wall"));
  Library& library = *this->library;
  const auto others = [&] {
    return library.count<Tag>() + library.count<MaterialType>() + library.count<Layer>() +
           library.count<CustomProperty>() + library.count<Material>() +
           library.count<Composition>() - library.template count<TypeParam>();
  };
  const auto before = others();

  library.template purge<TypeParam>();

  EXPECT_EQ(others(), before);
}

TYPED_TEST(PurgingOfKind, the_result_has_one_entry_for_each_object_of_the_kind) {
  this->library->save(full_composition("Wall"));
  const auto before = this->library->template count<TypeParam>();
  Removed result;

  this->library->template purge<TypeParam>(result);

  EXPECT_EQ(result.size(), before);
  unsigned long long kept = 0;
  for (const auto& entry : result) {
    EXPECT_EQ(entry.first.type, veldra::ObjectTraits<TypeParam>::type);
    EXPECT_EQ(this->library->template get<TypeParam>(entry.first.id) == nullptr, entry.second);
    kept += entry.second ? 0 : 1;
  }
  EXPECT_EQ(this->library->template count<TypeParam>(), kept);
}

TYPED_TEST(PurgingOfKind, entries_of_a_result_are_never_overwritten) {
  const auto one = this->template stored<TypeParam>("one");
  Removed result{{key_of(one), false}};

  this->library->template purge<TypeParam>(result);

  EXPECT_THAT(result, Contains(Pair(key_of(one), false)));
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
}

TYPED_TEST(PurgingOfKind, a_kind_in_a_set_goes_like_the_kind) {
  const auto one = this->template stored<TypeParam>("one");
  Removed result;

  this->library->purge(std::set<ObjectType>{veldra::ObjectTraits<TypeParam>::type}, result);

  EXPECT_THAT(result, Contains(Pair(key_of(one), true)));
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
}

TYPED_TEST(PurgingOfKind, without_a_result_it_goes_as_well) {
  this->template stored<TypeParam>("one");
  this->library->template purge<TypeParam>();
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);

  this->template stored<TypeParam>("two");
  this->library->purge(std::set<ObjectType>{veldra::ObjectTraits<TypeParam>::type});
  EXPECT_EQ(this->library->template get<TypeParam>("two"), nullptr);
}

TYPED_TEST(PurgingOfKind, what_the_reactor_refuses_stays) {
  const auto one = this->template stored<TypeParam>("one");
  const auto two = this->template stored<TypeParam>("two");
  this->reactor.on_may_remove = [&](Library&, const ObjectKey& key) {
    return key == key_of(one) ? 1 : 0;
  };
  this->listen();
  Removed result;

  this->library->template purge<TypeParam>(result);

  EXPECT_THAT(result, Contains(Pair(key_of(one), false)));
  EXPECT_THAT(result, Contains(Pair(key_of(two), true)));
  EXPECT_NE(this->library->template get<TypeParam>("one"), nullptr);
}

template <class T>
class PurgingOfReferenced : public RemovalTest {};
TYPED_TEST_SUITE(PurgingOfReferenced, ReferencedKinds, KindNames);

TYPED_TEST(PurgingOfReferenced, what_is_in_use_stays) {
  const auto used = this->template referenced<TypeParam>("used");
  const auto free = this->template stored<TypeParam>("free");
  Removed result;

  this->library->template purge<TypeParam>(result);

  EXPECT_THAT(result, Contains(Pair(key_of(used), false)));
  EXPECT_THAT(result, Contains(Pair(key_of(free), true)));
  EXPECT_NE(this->library->template get<TypeParam>("used"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("free"), nullptr);
  this->expect_usable();
}

TYPED_TEST(PurgingOfReferenced, a_kind_that_is_all_in_use_stays_silently) {
  this->library->template purge<veldra::MaterialType>();
  this->template referenced<TypeParam>("used");
  this->template referenced<TypeParam>("used as well");
  const auto before = this->library->template count<TypeParam>();
  ASSERT_GE(before, 2u);

  EXPECT_EQ(thrown_by([&] { this->library->template purge<TypeParam>(); }), "");

  EXPECT_EQ(this->library->template count<TypeParam>(), before);
}

class Purging : public RemovalTest {
 protected:
  unsigned long long objects() const {
    return library->count<Tag>() + library->count<MaterialType>() + library->count<Layer>() +
           library->count<CustomProperty>() + library->count<Material>() +
           library->count<Composition>();
  }
};

TEST_F(Purging, everything_goes_from_compositions_to_tags_in_one_pass) {
  library->save(full_composition("Wall"));
  const auto before = objects();
  Removed result;

  library->purge(result);

  EXPECT_EQ(objects(), 0u);
  EXPECT_EQ(result.size(), before);
  for (const auto& entry : result) EXPECT_TRUE(entry.second) << testing::PrintToString(entry.first);
  EXPECT_EQ(damage(path), "");
}

TEST_F(Purging, a_plain_purge_empties_the_library) {
  library->save(full_composition("Wall"));
  library->purge();
  EXPECT_EQ(objects(), 0u);
}

TEST_F(Purging, the_kinds_come_in_a_fixed_order_and_ids_ascending) {
  library->purge<MaterialType>();
  const auto wall = named<Composition>("Wall");
  const auto oak = named<Material>("Oak");
  const auto pine = named<Material>("Pine");
  for (const auto& material : {oak, pine}) {
    material->addTag(named<Tag>("tag of " + material->name().utf8()));
    material->type(named<MaterialType>("type of " + material->name().utf8()));
    wall->appendLayer({material, Material::Function::None, 1.0});
  }
  oak->cut_layer(named<Layer>("layer"));
  oak->custom_value(named<CustomProperty>("property"), "value");
  library->save(wall);
  listen();

  library->purge();

  EXPECT_THAT(
      reactor.calls(),
      ElementsAre("may remove Composition 1", "removed Composition 1", "may remove Material 1",
                  "removed Material 1", "may remove Material 2", "removed Material 2",
                  "may remove MaterialType 14", "removed MaterialType 14",
                  "may remove MaterialType 15", "removed MaterialType 15", "may remove Layer 1",
                  "removed Layer 1", "may remove CustomProperty 1", "removed CustomProperty 1",
                  "may remove Tag 1", "removed Tag 1", "may remove Tag 2", "removed Tag 2",
                  "type Tag", "type MaterialType", "type Material", "type Composition",
                  "type CustomProperty", "type Layer", "library"));
}

TEST_F(Purging, properties_go_in_the_order_of_their_ids_and_not_of_their_names) {
  for (const char* name : {"b", "c", "a"}) stored<CustomProperty>(name);
  listen();

  library->purge<CustomProperty>();

  EXPECT_THAT(reactor.calls_starting_with("removed"),
              ElementsAre("removed CustomProperty 1", "removed CustomProperty 2",
                          "removed CustomProperty 3"));
}

TEST_F(Purging, chosen_kinds_come_in_the_fixed_order_whatever_their_numbers) {
  stored<Tag>("tag");
  stored<Layer>("layer");
  stored<CustomProperty>("property");
  stored<Material>("Oak");
  listen();

  library->purge({ObjectType::Tag, ObjectType::Layer, ObjectType::CustomProperty});

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Layer 1", "removed Layer 1", "may remove CustomProperty 1",
                          "removed CustomProperty 1", "may remove Tag 1", "removed Tag 1",
                          "type Tag", "type CustomProperty", "type Layer", "library"));
  EXPECT_NE(library->get<Material>("Oak"), nullptr);
}

TEST_F(Purging, a_material_goes_with_the_only_composition_that_used_it) {
  const auto oak = referenced<Material>("Oak");
  Removed result;

  library->purge<Material>(result);
  EXPECT_THAT(result, ElementsAre(Pair(key_of(oak), false)));

  library->purge({ObjectType::Material, ObjectType::Composition});
  EXPECT_EQ(library->count<Material>(), 0u);
  EXPECT_NE(library->get<MaterialType>("Generic"), nullptr);
}

TEST_F(Purging, what_a_kept_composition_uses_stays_down_to_its_tags) {
  library->save(full_composition("Wall"));
  library->save(full_composition("Roof"));
  const ObjectKey wall = key_of(library->get<Composition>("Wall"));
  reactor.on_may_remove = [&](Library&, const ObjectKey& key) { return key == wall ? 1 : 0; };
  listen();

  library->purge();

  EXPECT_EQ(library->count<Composition>(), 1u);
  EXPECT_EQ(library->count<Material>(), 3u);
  EXPECT_EQ(library->count<MaterialType>(), 3u);
  EXPECT_EQ(library->count<Layer>(), 4u);
  EXPECT_EQ(library->count<CustomProperty>(), 8u);
  EXPECT_EQ(library->count<Tag>(), 8u);
  EXPECT_EQ(*library->get<Composition>("Wall"), *full_composition("Wall"));
}

TEST_F(Purging, nothing_is_repeated_after_the_pass) {
  const auto used = referenced<Tag>("used");
  const ObjectKey owner = key_of(library->get<Material>("owner of used"));
  listen();
  Removed result;

  library->purge({ObjectType::Tag}, result);
  library->purge({ObjectType::Material}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(used), false), Pair(owner, true)));
  EXPECT_NE(library->get<Tag>("used"), nullptr);
}

TEST_F(Purging, no_kinds_purge_nothing) {
  library->save(full_composition("Wall"));
  listen();
  const std::string before = rows();
  Removed result;

  library->purge(std::set<ObjectType>(), result);
  library->purge({ObjectType::Asset, static_cast<ObjectType>(99)}, result);

  EXPECT_EQ(rows(), before);
  EXPECT_THAT(result, IsEmpty());
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(Purging, an_empty_kind_purges_nothing_and_tells_nothing) {
  listen();
  library->purge<Tag>();
  library->purge({ObjectType::Layer, ObjectType::Composition});
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(Purging, twice_is_as_good_as_once) {
  library->save(full_composition("Wall"));
  stored<Tag>("free");
  reactor.on_may_remove = [&](Library&, const ObjectKey& key) {
    return key.type == ObjectType::Composition ? 1 : 0;
  };
  listen();
  library->purge();
  const std::string once = rows();
  Removed result;

  library->purge(result);

  EXPECT_EQ(rows(), once);
  for (const auto& entry : result)
    EXPECT_FALSE(entry.second) << testing::PrintToString(entry.first);
}

TEST_F(Purging, tags_of_assets_stay_and_so_do_the_assets) {
  stored<Tag>("free");
  const auto tag = stored<Tag>("of an asset");
  const auto oak = stored<Material>("Oak");
  PlainDatabase(path).execute(
      "INSERT INTO \"Asset\" VALUES (1, 'veldra::StructuralAsset', 'Steel', '');"
      "INSERT INTO \"StructuralAsset\" VALUES (1, 'metal', 7850.0, 500.0, 50.0);"
      "INSERT INTO \"Asset_tags\" VALUES (1, 0, 2);"
      "UPDATE \"Material\" SET \"structural_id\"=1");
  Removed result;

  library->purge(result);

  EXPECT_EQ(objects(), 1u);
  EXPECT_THAT(result, Contains(Pair(key_of(tag), false)));
  EXPECT_THAT(result, Contains(Pair(key_of(oak), true)));
  EXPECT_EQ(thrown_by([&] { library->remove(tag); }), "veldra::ObjectInUse");
  EXPECT_EQ(rows_in("Asset"), "1");
  EXPECT_EQ(rows_in("StructuralAsset"), "1");
  EXPECT_EQ(rows_in("Asset_tags"), "1");
}

TEST_F(Purging, a_failure_ends_it_and_what_went_before_stays_removed_and_is_told) {
  stored<Composition>("Wall");
  stored<Layer>("layer");
  stored<Tag>("tag");
  library->purge<MaterialType>();
  on_delete_from("Layer", kOverflow);
  listen();
  Removed result;

  EXPECT_EQ(thrown_by([&] { library->purge(result); }), "veldra::UnknownError");

  EXPECT_THAT(result, ElementsAre(Pair(key_of<Composition>(1), true)));
  EXPECT_EQ(library->count<Composition>(), 0u);
  EXPECT_EQ(library->count<Layer>(), 1u);
  EXPECT_EQ(library->count<Tag>(), 1u);
  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Composition 1", "removed Composition 1",
                                           "may remove Layer 1", "type Composition", "library"));
}

TEST_F(Purging, a_library_for_reading_refuses_every_form) {
  library->save(full_composition("Wall"));
  reopen_for_reading();
  const std::string before = rows();
  Removed result;

  EXPECT_EQ(thrown_by([&] { library->purge(); }), "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library->purge(result); }), "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library->purge({ObjectType::Composition}); }),
            "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library->purge({ObjectType::Tag}, result); }),
            "veldra::LibraryReadOnly");

  EXPECT_THAT(result, IsEmpty());
  EXPECT_EQ(rows(), before);
}

TEST_F(Purging, writing_within_is_refused_untranslated_and_the_purge_goes_on) {
  library->save(full_composition("Wall"));
  int refused = 0;
  int asked = 0;
  reactor.on_may_remove = [&](Library& library, const ObjectKey&) {
    ++asked;
    refused += thrown_by([&] { library.purge(); }) == "odb::already_in_transaction" ? 1 : 0;
    return 0;
  };
  listen();

  library->purge();

  EXPECT_GT(asked, 0);
  EXPECT_EQ(refused, asked);
  EXPECT_EQ(objects(), 0u);
}

}  // namespace
}  // namespace veldra_tests
