// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <random>
#include <set>
#include <string>

namespace veldra_tests {
namespace {

using Keys = std::set<ObjectKey>;

/// What refers to what, as the objects in memory say: the plain way.
class ReferencesInMemory {
 public:
  explicit ReferencesInMemory(const Library& library) {
    for (const auto& material : all_of<Material>(library)) add(*material);
    for (const auto& composition : all_of<Composition>(library)) add(*composition);
  }

  Keys to(const ObjectKey& key) const {
    const auto found = referrers_.find(key);
    return found == referrers_.end() ? Keys() : found->second;
  }

 private:
  void add(const Material& material) {
    const ObjectKey from{ObjectType::Material, material.id()};
    add_lists(from, material);
    add(from, material.type());
    add(from, material.cut_layer());
    add_asset(from, material.structuralAsset());
    add_asset(from, material.thermalAsset());
  }

  void add(const Composition& composition) {
    const ObjectKey from{ObjectType::Composition, composition.id()};
    add_lists(from, composition);
    add(from, composition.entity_layer());
    for (const auto& layer : composition.layers()) add(from, layer.material());
  }

  template <class T>
  void add_lists(const ObjectKey& from, const T& object) {
    for (const auto& tag : object.tags()) add(from, tag);
    for (const auto& value : object.custom_values()) add(from, value.first.operator->());
  }

  template <class T>
  void add(const ObjectKey& from, const std::shared_ptr<T>& to) {
    if (to != nullptr) referrers_[key_of<std::remove_const_t<T>>(to->id())].insert(from);
  }

  template <class T>
  void add_asset(const ObjectKey& from, const std::shared_ptr<T>& asset) {
    if (asset == nullptr) return;
    const ObjectKey key{ObjectType::Asset, asset->id()};
    referrers_[key].insert(from);
    for (const auto& tag : asset->tags()) add(key, tag);
  }

  std::map<ObjectKey, Keys> referrers_;
};

class Referring : public LibraryTest {
 protected:
  template <class T>
  void expect_those_in_memory() {
    const ReferencesInMemory references(*library);
    std::set<unsigned> unreferenced;
    for (const unsigned id : library->ids<T>()) {
      const Keys expected = references.to(key_of<T>(id));
      EXPECT_EQ(library->referrers(key_of<T>(id)), expected) << title_of(library->get<T>(id));
      if (expected.empty()) unreferenced.insert(id);
    }
    EXPECT_EQ(library->unreferenced<T>(), unreferenced) << kind_of<T>();
  }

  void expect_those_in_memory_of_all_kinds() {
    expect_those_in_memory<Tag>();
    expect_those_in_memory<MaterialType>();
    expect_those_in_memory<veldra::Layer>();
    expect_those_in_memory<CustomProperty>();
    expect_those_in_memory<Material>();
    expect_those_in_memory<Composition>();
  }

  /// An asset with the tag that has that id, and a material that points to it.
  void put_tagged_asset(unsigned tag) {
    PlainDatabase file(path);
    put_thermal_asset(file, "7");
    file.execute("INSERT INTO Asset_tags VALUES (7, 0, " + std::to_string(tag) + ")");
    put_material(file, {{"id", "70"}, {"name", "'Glass'"}, {"thermal_id", "7"}});
  }
};

TEST_F(Referring, nothing_refers_to_what_was_just_saved) {
  const auto tag = library->save(Tag::create("dry"));
  EXPECT_THAT(library->referrers(key_of<Tag>(tag)), IsEmpty());
  EXPECT_EQ(library->unreferenced<Tag>(), std::set<unsigned>{tag->id()});
}

TEST_F(Referring, each_way_of_referring_is_found) {
  library->save(full_composition("Wall"));
  library->save(full_material("Oak"));
  library->save(Tag::create("spare"));
  expect_those_in_memory_of_all_kinds();
}

TEST_F(Referring, objects_that_refer_several_times_are_told_once) {
  const auto wall = full_composition("Wall");  // two layers of the core
  library->save(wall);
  const ObjectKey core = key_of<Material>(library->get<Material>("Wall core"));
  EXPECT_THAT(library->referrers(core), ElementsAre(key_of<Composition>(wall)));
}

TEST_F(Referring, assets_refer_and_are_referred_to) {
  const auto tag = library->save(Tag::create("dry"));
  put_tagged_asset(tag->id());
  const ObjectKey asset{ObjectType::Asset, 7};
  EXPECT_THAT(library->referrers(key_of<Tag>(tag)), ElementsAre(asset));
  EXPECT_THAT(library->referrers(asset), ElementsAre(key_of<Material>(70)));
  EXPECT_THAT(library->unreferenced<Tag>(), IsEmpty());
  expect_those_in_memory_of_all_kinds();
}

TEST_F(Referring, an_object_that_is_not_there_may_be_referred_to) {
  const auto oak = library->save(full_material("Oak"));
  execute("PRAGMA foreign_keys=OFF; DELETE FROM MaterialType WHERE name='Oak type'");
  std::string type = value("SELECT type FROM Material");
  EXPECT_THAT(library->referrers(key_of<MaterialType>(std::stoul(type))),
              ElementsAre(key_of<Material>(oak)));
  EXPECT_THAT(library->referrers(key_of<MaterialType>(999)), IsEmpty());
  EXPECT_THAT(library->referrers(ObjectKey()), IsEmpty());
  EXPECT_THAT(library->referrers({static_cast<ObjectType>(99), 1}), IsEmpty());
}

TEST_F(Referring, rows_of_nobody_count_only_for_purging) {
  const auto tag = library->save(Tag::create("dry"));
  execute("PRAGMA foreign_keys=OFF; INSERT INTO Material_tags VALUES (99, 0, 1)");
  EXPECT_THAT(library->referrers(key_of<Tag>(tag)), IsEmpty());
  EXPECT_THAT(library->unreferenced<Tag>(), IsEmpty());
  library->purge<Tag>();
  EXPECT_EQ(library->count<Tag>(), 1U);
}

TEST_F(Referring, what_is_unreferenced_is_what_purging_removes) {
  library->save(full_composition("Wall"));
  library->save(full_composition("Floor"));
  library->remove<Composition>(library->get<Composition>("Floor")->id());
  const auto unreferenced = library->unreferenced<Material>();
  EXPECT_THAT(unreferenced, SizeIs(3));
  std::map<ObjectKey, bool> result;
  library->purge<Material>(result);
  std::set<unsigned> removed;
  for (const auto& entry : result) {
    if (entry.second) removed.insert(entry.first.id);
  }
  EXPECT_EQ(removed, unreferenced);
}

TEST_F(Referring, sees_what_a_transaction_has_done) {
  const Library::Transaction transaction(*library);
  const auto oak = library->save(full_material("Oak"));
  const auto tag = library->get<Tag>("Oak tag 1");
  EXPECT_THAT(library->referrers(key_of<Tag>(tag)), ElementsAre(key_of<Material>(oak)));
}

TEST_F(Referring, is_the_same_in_random_libraries) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto any_of = [&random](auto objects) { return objects[random() % objects.size()]; };
  for (const char* name : {"a", "b", "c", "d"}) {
    library->save(Tag::create(name));
    library->save(veldra::Layer::create(name));
    library->save(MaterialType::create(name));
    library->save(CustomProperty::create(name, ObjectType::Material));
    library->save(CustomProperty::create(name, ObjectType::Composition));
  }
  for (int step = 0; step != 60; ++step) {
    const std::string name = std::to_string(step);
    if (step % 3 != 2) {
      const auto material = Material::create(name.c_str());
      material->type(any_of(all_of<MaterialType>(*library)));
      if (random() % 2 == 0) material->cut_layer(any_of(all_of<veldra::Layer>(*library)));
      if (random() % 2 == 0) material->tags(toModify) = {any_of(all_of<Tag>(*library))};
      if (random() % 2 == 0) material->custom_value(any_of(std::vector<String>{"a", "b"}), "x");
      library->save(material);
    } else {
      const auto composition = Composition::create(name.c_str());
      if (random() % 2 == 0) composition->entity_layer(any_of(all_of<veldra::Layer>(*library)));
      if (random() % 2 == 0) composition->custom_value(any_of(std::vector<String>{"c", "a"}), "x");
      for (auto n = random() % 3; n != 0; --n) {
        composition->appendLayer(
            {any_of(all_of<Material>(*library)), Material::Function::None, 1.0});
      }
      library->save(composition);
    }
  }
  put_tagged_asset(library->get<Tag>("d")->id());
  expect_those_in_memory_of_all_kinds();
}

TEST_F(Referring, a_missing_table_is_an_error) {
  execute("DROP TABLE Material_tags");
  EXPECT_EQ(thrown_by([&] { library->referrers(key_of<Tag>(1)); }),
            "odb::sqlite::database_exception");
  EXPECT_EQ(thrown_by([&] { library->unreferenced<Tag>(); }), "odb::sqlite::database_exception");
}

}  // namespace
}  // namespace veldra_tests
