// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <set>
#include <stdexcept>
#include <vector>

namespace veldra_tests {
namespace {

/// What a reactor may do while it is called by a running save.
class ReactorCalls : public LibraryTest {
 protected:
  /// Runs `action` at the first call of `objectSaved` for that kind.
  void on_first_saved(ObjectType kind, std::function<void(Library&, const ObjectKey&)> action) {
    reactor.on_saved = [this, kind, action](Library& from, const ObjectKey& key) {
      if (key.type != kind || ran_) return;
      ran_ = true;
      action(from, key);
    };
  }

  bool ran() const { return ran_; }

  template <class T>
  static std::vector<std::string> names(const std::vector<std::shared_ptr<T>>& objects) {
    std::vector<std::string> names;
    for (const auto& object : objects) names.push_back(object->name().utf8());
    return names;
  }

 private:
  bool ran_ = false;
};

TEST_F(ReactorCalls, each_form_of_reading_sees_the_state_of_the_running_save) {
  on_first_saved(ObjectType::Material, [&](Library& from, const ObjectKey& key) {
    const auto by_id = from.get<Material>(key.id);
    ASSERT_TRUE(by_id);
    EXPECT_EQ(by_id->name(), String("Oak"));
    EXPECT_EQ(by_id->library(), library);
    EXPECT_FALSE(by_id->isDirty());
    EXPECT_EQ(values_of(by_id), values_of(full_material("Oak")));
    ASSERT_TRUE(from.get<Material>("Oak"));
    ASSERT_TRUE(from.get<Tag>("Oak tag 1"));
    std::vector<std::shared_ptr<Material>> materials;
    from.get(materials);
    from.get(materials, {key.id, 99u});
    MaterialCriteria criteria;
    criteria.tags = {"Oak tag 2"};
    from.get(materials, criteria);
    from.search(materials, "o%");
    from.search(materials, "O__", criteria);
    EXPECT_THAT(names(materials), ElementsAre("Oak", "Oak", "Oak", "Oak", "Oak"));
    EXPECT_EQ(from.count<Material>(), 1u);
    EXPECT_EQ(from.count<Material>(criteria), 1u);
    EXPECT_EQ(from.count<Tag>(), 2u);
    EXPECT_EQ(from.count<MaterialType>(), 14u);
    EXPECT_EQ(from.count<Layer>(), 1u);
    std::vector<std::shared_ptr<CustomProperty>> properties;
    from.get(properties);
    EXPECT_THAT(names(properties), ElementsAre("Oak property 1", "Oak property 2"));
  });
  EXPECT_TRUE(library->save(full_material("Oak")));
  EXPECT_TRUE(ran());
  EXPECT_EQ(damage(path), "");
}

TEST_F(ReactorCalls, every_call_can_read_all_there_is) {
  std::vector<unsigned long long> counts;
  reactor.on_saved = [&](Library& from, const ObjectKey&) {
    std::vector<std::shared_ptr<Material>> materials;
    std::vector<std::shared_ptr<Composition>> compositions;
    from.get(materials);
    from.search(compositions, "%");
    counts.push_back(materials.size() + compositions.size());
  };
  const auto wall = full_composition("Wall");
  EXPECT_EQ(library->save(wall), wall);
  EXPECT_EQ(counts.size(), 27u);
  EXPECT_EQ(counts.front(), 0u);
  EXPECT_EQ(counts.back(), 4u);
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(full_composition("Wall")));
}

TEST_F(ReactorCalls, an_update_is_seen_as_well) {
  const auto oak = library->save(full_material("Oak"));
  oak->cost("99");
  oak->tags(toModify).clear();
  on_first_saved(ObjectType::Material, [&](Library& from, const ObjectKey& key) {
    EXPECT_EQ(from.get<Material>(key.id)->cost(), String("99"));
    EXPECT_THAT(from.get<Material>(key.id)->tags(), IsEmpty());
  });
  EXPECT_TRUE(oak->save());
  EXPECT_TRUE(ran());
}

TEST_F(ReactorCalls, others_do_not_see_the_running_save) {
  const auto beside = Library::open(path.c_str(), true);
  on_first_saved(ObjectType::Layer, [&](Library& from, const ObjectKey&) {
    EXPECT_EQ(from.count<Layer>(), 1u);
    EXPECT_EQ(beside->count<Layer>(), 0u);
  });
  library->save(Layer::create("Section"));
  EXPECT_TRUE(ran());
  EXPECT_EQ(beside->count<Layer>(), 1u);
}

TEST_F(ReactorCalls, a_conflict_can_be_decided_by_what_is_stored) {
  const auto cheap = Material::create("Oak");
  cheap->cost("1");
  library->save(cheap);
  reactor.on_conflict = [&](Library& from, ObjectType, String& name) -> int {
    const auto existing = from.get<Material>(name);
    EXPECT_TRUE(existing);
    if (existing->cost() == String("1")) return Library::Reactor::Overwrite;
    return Library::Reactor::UseExisting;
  };
  const auto dear = Material::create("Oak");
  dear->cost("2");
  library->save(dear);
  EXPECT_EQ(library->get<Material>("Oak")->cost(), String("2"));
  const auto dearer = Material::create("Oak");
  dearer->cost("3");
  library->save(dearer);
  EXPECT_EQ(dearer->cost(), String("2"));
  EXPECT_EQ(library->get<Material>("Oak")->cost(), String("2"));
}

TEST_F(ReactorCalls, a_free_name_can_be_looked_for_within_a_conflict) {
  for (const char* name : {"Wall core", "Wall core 2", "Wall core 3"}) {
    library->save(Material::create(name));
  }
  reactor.on_conflict = [](Library& from, ObjectType, String& name) -> int {
    for (int number = 2;; ++number) {
      const String next((name.utf8() + " " + std::to_string(number)).c_str());
      if (from.get<Material>(next)) continue;
      name = next;
      return Library::Reactor::Rename;
    }
  };
  const auto wall = full_composition("Wall");
  library->save(wall);
  EXPECT_EQ(wall->layer(2).material()->name(), String("Wall core 4"));
  EXPECT_EQ(reactor.calls_starting_with("conflict").size(), 1u);
}

TEST_F(ReactorCalls, a_read_that_fails_does_not_end_the_save) {
  PlainDatabase(path).execute("INSERT INTO Layer(id, name) VALUES (50, CAST(x'FF' AS TEXT))");
  on_first_saved(ObjectType::Tag, [&](Library& from, const ObjectKey&) {
    EXPECT_EQ(thrown_by([&] { from.get<Layer>(50); }), "utf8::invalid_utf8");
    EXPECT_FALSE(from.get<Layer>(99));
  });
  EXPECT_TRUE(library->save(full_material("Oak")));
  EXPECT_TRUE(ran());
  EXPECT_EQ(library->count<Material>(), 1u);
}

TEST_F(ReactorCalls, no_write_can_start_within_a_save) {
  const auto old = library->save(Layer::create("Old"));
  const auto source = create("source.lib");
  source->save(Layer::create("Foreign"));
  on_first_saved(ObjectType::Layer, [&](Library& from, const ObjectKey&) {
    std::map<ObjectKey, bool> result;
    IdMapping mapping(&from);
    const auto denied = [](const std::function<void()>& write) {
      EXPECT_EQ(thrown_by(write), "odb::already_in_transaction");
    };
    denied([&] { from.save(Tag::create("New")); });
    denied([&] { from.save(Tag::create("New"), mapping); });
    denied([&] { Layer::create("New")->save(library); });
    denied([&] { from.remove(old); });
    denied([&] { from.remove<Layer>(old->id()); });
    denied([&] { from.remove<Layer>(std::set<unsigned>{old->id()}, result); });
    denied([&] { from.remove(std::set<ObjectKey>{{ObjectType::Layer, old->id()}}, result); });
    denied([&] { from.purge<Layer>(result); });
    denied([&] { from.purge(); });
    denied([&] { from.copy<Layer>(source, {1u}, mapping); });
    denied([&] { from.copy(source, std::set<ObjectKey>{{ObjectType::Layer, 1}}); });
    denied([&] { from.copyAll(source); });
    denied([&] { from.locale("de"); });
    denied([&] { from.region("DE"); });
  });
  const auto oak = full_material("Oak");
  EXPECT_EQ(library->save(oak), oak);
  EXPECT_TRUE(ran());
  EXPECT_EQ(old->library(), library);
  EXPECT_EQ(library->count<Layer>(), 2u);
  EXPECT_EQ(library->count<Tag>(), 2u);
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(full_material("Oak")));
  EXPECT_EQ(reactor.calls_starting_with("library").size(), 2u);
  EXPECT_EQ(damage(path), "");
}

TEST_F(ReactorCalls, a_write_within_a_conflict_is_refused_as_well) {
  library->save(Material::create("Oak"));
  const auto inner = Tag::create("New");
  reactor.on_conflict = [&](Library& from, ObjectType, String& name) -> int {
    EXPECT_EQ(thrown_by([&] { from.save(inner); }), "odb::already_in_transaction");
    name = "Oak 2";
    return Library::Reactor::Rename;
  };
  EXPECT_EQ(library->save(Material::create("Oak"))->name(), String("Oak 2"));
  EXPECT_EQ(inner->id(), 0u);
  EXPECT_TRUE(inner->isDirty());
  EXPECT_EQ(library->save(inner), inner);
}

TEST_F(ReactorCalls, a_refused_write_that_is_not_caught_ends_the_save) {
  on_first_saved(ObjectType::Tag,
                 [&](Library& from, const ObjectKey&) { from.save(Layer::create("New")); });
  const auto oak = full_material("Oak");
  const std::string state = state_of(oak);
  const std::string before = rows();
  EXPECT_EQ(thrown_by([&] { library->save(oak); }), "odb::already_in_transaction");
  EXPECT_EQ(state_of(oak), state);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(library->save(oak), oak);
}

TEST_F(ReactorCalls, anything_can_be_done_with_another_library) {
  const auto journal = create("journal.lib", Unit::Inches);
  RecordingReactor journal_reactor;
  journal->setReactor(&journal_reactor);
  reactor.on_saved = [&](Library&, const ObjectKey& key) {
    journal->save(Tag::create((kind_name(key.type) + " " + std::to_string(key.id)).c_str()));
    journal->region("DE");
  };
  library->save(full_material("Oak"));
  EXPECT_EQ(journal->count<Tag>(), 7u);
  EXPECT_EQ(library->count<Tag>(), 2u);
  EXPECT_EQ(journal_reactor.calls_starting_with("library").size(), 7u);
  EXPECT_EQ(damage(path), "");
  EXPECT_EQ(damage(folder / "journal.lib"), "");
}

TEST_F(ReactorCalls, what_another_library_has_done_stays_when_the_save_fails) {
  const auto journal = create("journal.lib");
  reactor.on_saved = [&](Library&, const ObjectKey& key) {
    if (key.type == ObjectType::Material) throw std::runtime_error("cancelled");
    journal->save(Tag::create(std::to_string(journal->count<Tag>()).c_str()));
  };
  EXPECT_EQ(thrown_by([&] { library->save(full_material("Oak")); }), "std::runtime_error");
  EXPECT_EQ(journal->count<Tag>(), 6u);
  EXPECT_EQ(library->count<Material>(), 0u);
}

TEST_F(ReactorCalls, a_failure_of_another_library_can_be_caught) {
  const auto journal = create("journal.lib");
  PlainDatabase(folder / "journal.lib")
      .execute("CREATE TRIGGER refuse BEFORE INSERT ON Tag BEGIN SELECT RAISE(ABORT, 'no'); END");
  reactor.on_saved = [&](Library& from, const ObjectKey&) {
    EXPECT_EQ(thrown_by([&] { journal->save(Tag::create("x")); }),
              "odb::sqlite::database_exception");
    EXPECT_GT(from.count<Tag>(), 0u);
  };
  EXPECT_TRUE(library->save(full_material("Oak")));
  EXPECT_EQ(library->count<Material>(), 1u);
}

TEST_F(ReactorCalls, reactors_can_read_each_other_s_libraries) {
  const auto other = create("other.lib");
  RecordingReactor other_reactor;
  other->setReactor(&other_reactor);
  unsigned long long seen = 0;
  other_reactor.on_saved = [&](Library&, const ObjectKey&) {
    seen = library->count<Layer>();
    EXPECT_EQ(thrown_by([&] { library->save(Tag::create("x")); }), "odb::already_in_transaction");
  };
  on_first_saved(ObjectType::Layer,
                 [&](Library&, const ObjectKey&) { other->save(Layer::create("Inner")); });
  library->save(Layer::create("Outer"));
  EXPECT_EQ(seen, 1u);
  EXPECT_EQ(library->count<Layer>(), 1u);
  EXPECT_EQ(other->count<Layer>(), 1u);
}

TEST_F(ReactorCalls, objects_of_the_running_library_can_be_saved_into_another) {
  const auto mirror = create("mirror.lib");
  reactor.on_saved = [&](Library& from, const ObjectKey& key) {
    if (key.type == ObjectType::Material) mirror->save(from.get<Material>(key.id));
  };
  library->save(full_composition("Wall"));
  EXPECT_EQ(mirror->count<Material>(), 3u);
  EXPECT_EQ(values_of(mirror->get<Material>("Wall core")),
            values_of(library->get<Material>("Wall core")));
}

TEST_F(ReactorCalls, an_exception_of_any_type_reaches_the_caller) {
  struct Cancelled {};
  reactor.on_saved = [](Library&, const ObjectKey&) { throw Cancelled(); };
  const auto layer = Layer::create("Section");
  EXPECT_THROW(library->save(layer), Cancelled);
  EXPECT_EQ(layer->id(), 0u);
  EXPECT_TRUE(layer->isDirty());
  EXPECT_FALSE(layer->library());
  EXPECT_EQ(library->count<Layer>(), 0u);
  reactor.on_saved = nullptr;
  EXPECT_EQ(library->save(layer), layer);
}

TEST_F(ReactorCalls, the_reactor_gets_the_library_that_is_saved_into) {
  std::set<Library*> seen;
  reactor.on_saved = [&](Library& from, const ObjectKey&) { seen.insert(&from); };
  reactor.on_type_changed = [&](Library& from, ObjectType) { seen.insert(&from); };
  reactor.on_library_changed = [&](Library& from) { seen.insert(&from); };
  library->save(create("other.lib")->save(full_material("Oak")));
  EXPECT_EQ(seen, std::set<Library*>{library.get()});
}

/// What is told at the end of an operation.
using ReactorNotifications = ReactorCalls;

TEST_F(ReactorNotifications, kinds_are_told_once_in_ascending_order_and_then_the_library) {
  library->save(full_composition("Wall"));
  const std::vector<std::string> calls = reactor.calls();
  const std::vector<std::string> tail(calls.end() - 7, calls.end());
  EXPECT_THAT(tail,
              ElementsAre("type Tag", "type MaterialType", "type Material", "type Composition",
                          "type CustomProperty", "type Layer", "library"));
  EXPECT_EQ(reactor.calls_starting_with("type").size(), 6u);
}

TEST_F(ReactorNotifications, the_set_of_kinds_starts_anew_with_each_call) {
  library->save(full_material("Oak"));
  reactor.forget();
  library->save(Tag::create("warm"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 3", "type Tag", "library"));
}

TEST_F(ReactorNotifications, they_come_when_the_transaction_has_ended) {
  const auto beside = Library::open(path.c_str(), true);
  unsigned long long seen = 0;
  reactor.on_type_changed = [&](Library&, ObjectType) { seen = beside->count<Layer>(); };
  library->save(Layer::create("Section"));
  EXPECT_EQ(seen, 1u);
}

TEST_F(ReactorNotifications, the_saved_object_is_already_in_its_new_state) {
  const auto layer = Layer::create("Section");
  reactor.on_library_changed = [&](Library&) {
    EXPECT_NE(layer->id(), 0u);
    EXPECT_FALSE(layer->isDirty());
    EXPECT_EQ(layer->library(), library);
  };
  library->save(layer);
  EXPECT_EQ(reactor.calls().back(), "library");
}

TEST_F(ReactorNotifications, after_a_failure_they_find_the_former_state) {
  const auto oak = full_material("Oak");
  const std::string state = state_of(oak);
  const std::string before = rows();
  PlainDatabase(path).execute(
      "CREATE TRIGGER refuse BEFORE INSERT ON Material BEGIN SELECT RAISE(ABORT, 'no'); END");
  unsigned long long tags = 99;
  reactor.on_library_changed = [&](Library& from) {
    tags = from.count<Tag>();
    EXPECT_EQ(state_of(oak), state);
  };
  EXPECT_EQ(thrown_by([&] { library->save(oak); }), "odb::sqlite::database_exception");
  EXPECT_EQ(tags, 0u);
  EXPECT_EQ(rows(), before);
  EXPECT_THAT(reactor.calls_starting_with("type"),
              ElementsAre("type Tag", "type MaterialType", "type CustomProperty", "type Layer"));
}

TEST_F(ReactorNotifications, they_can_save_and_are_told_of_that_as_well) {
  bool nested = false;
  reactor.on_type_changed = [&](Library& from, ObjectType type) {
    if (type != ObjectType::Layer || nested) return;
    nested = true;
    from.save(Tag::create("of typeChanged"));
  };
  library->save(Layer::create("Section"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Layer 1", "type Layer", "saved Tag 1", "type Tag",
                                           "library", "library"));
  EXPECT_EQ(library->count<Tag>(), 1u);
}

TEST_F(ReactorNotifications, the_last_of_them_can_save_too) {
  bool nested = false;
  reactor.on_library_changed = [&](Library& from) {
    if (nested) return;
    nested = true;
    from.save(full_material("Nested"));
  };
  library->save(Layer::create("Section"));
  const std::vector<std::string> calls = reactor.calls();
  EXPECT_THAT(std::vector<std::string>(calls.begin(), calls.begin() + 3),
              ElementsAre("saved Layer 1", "type Layer", "library"));
  EXPECT_EQ(reactor.calls_starting_with("library").size(), 2u);
  EXPECT_EQ(reactor.calls_starting_with("type Layer").size(), 2u);
  EXPECT_EQ(library->count<Material>(), 1u);
}

TEST_F(ReactorNotifications, kinds_that_are_still_to_be_told_survive_a_nested_save) {
  bool nested = false;
  reactor.on_type_changed = [&](Library& from, ObjectType) {
    if (nested) return;
    nested = true;
    from.save(MaterialType::create("nested"));
  };
  library->save(full_material("Oak"));
  const std::vector<std::string> calls = reactor.calls();
  const std::vector<std::string> tail(calls.begin() + 7, calls.end());
  EXPECT_THAT(tail, ElementsAre("type Tag", "saved MaterialType 15", "type MaterialType", "library",
                                "type MaterialType", "type Material", "type CustomProperty",
                                "type Layer", "library"));
}

TEST_F(ReactorNotifications, one_that_throws_comes_too_late_to_take_anything_back) {
  reactor.on_type_changed = [](Library&, ObjectType) { throw std::runtime_error("full"); };
  const auto layer = Layer::create("Section");
  EXPECT_EQ(thrown_by([&] { library->save(layer); }), "std::runtime_error");
  EXPECT_EQ(library->count<Layer>(), 1u);
  EXPECT_NE(layer->id(), 0u);
  EXPECT_FALSE(layer->isDirty());
  EXPECT_EQ(layer->library(), library);
}

TEST_F(ReactorNotifications, one_that_throws_is_not_told_again_with_the_next_operation) {
  reactor.on_type_changed = [](Library&, ObjectType) { throw std::runtime_error("full"); };
  EXPECT_EQ(thrown_by([&] { library->save(full_material("Oak")); }), "std::runtime_error");
  reactor.on_type_changed = nullptr;
  reactor.forget();
  library->save(Tag::create("warm"));
  EXPECT_THAT(reactor.calls_starting_with("type"), ElementsAre("type Tag"));
  EXPECT_EQ(reactor.calls().back(), "library");
}

TEST_F(ReactorNotifications, one_that_throws_after_a_failure_does_not_end_the_program) {
  PlainDatabase(path).execute(
      "CREATE TRIGGER refuse BEFORE INSERT ON Material BEGIN SELECT RAISE(ABORT, 'no'); END");
  reactor.on_type_changed = [](Library&, ObjectType) { throw std::runtime_error("full"); };
  reactor.on_library_changed = [](Library&) { throw std::runtime_error("full"); };
  const auto oak = full_material("Oak");
  const std::string state = state_of(oak);
  const std::string before = rows();
  EXPECT_THAT(thrown_by([&] { library->save(oak); }).type,
              testing::AnyOf("odb::sqlite::database_exception", "std::runtime_error"));
  EXPECT_EQ(state_of(oak), state);
  EXPECT_EQ(rows(), before);
}

TEST_F(ReactorCalls,
       values_that_are_added_to_the_object_of_the_running_save_are_not_saved_with_it) {
  const auto supplier = create("supplier.lib");
  const auto material = Material::create("Oak");
  material->custom_value(supplier->save(named<CustomProperty>("Origin")), "here");
  on_first_saved(ObjectType::CustomProperty, [&](Library&, const ObjectKey&) {
    for (const char* name : {"Checked by", "Grade", "Zone"}) material->custom_value(name, "later");
  });
  library->save(material);
  ASSERT_TRUE(ran());
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(material));
  EXPECT_EQ(material->custom_values().size(), 1u);
  EXPECT_EQ(material->custom_value("Origin").get(), String("here"));
}

TEST_F(ReactorCalls, the_library_is_there_until_the_operation_ends) {
  const auto let_go = [this] { library.reset(); };
  reactor.on_saved = [&](Library&, const ObjectKey&) { let_go(); };
  const auto layer = Layer::create("Section");
  layer->save(library);
  EXPECT_FALSE(library);
  EXPECT_FALSE(layer->isDirty());

  library = Library::open(path.c_str(), false);
  library->setReactor(&reactor);
  reactor.on_removed = reactor.on_saved;
  library->remove<Layer>(std::set<unsigned>{layer->id()});
  EXPECT_FALSE(library);

  library = Library::open(path.c_str(), false);
  library->setReactor(&reactor);
  reactor.on_may_remove = [&](Library&, const ObjectKey&) {
    let_go();
    return 0;
  };
  library->purge();
  EXPECT_FALSE(library);
  EXPECT_EQ(Library::open(path.c_str(), true)->count<MaterialType>(), 0u);
}

TEST_F(ReactorNotifications, the_library_is_there_until_the_last_of_them) {
  const std::weak_ptr<Library> watched = library;
  reactor.on_type_changed = [this](Library&, ObjectType) { library.reset(); };
  reactor.on_library_changed = [&watched](Library&) { EXPECT_FALSE(watched.expired()); };
  library->save(Layer::create("Section"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Layer 1", "type Layer", "library"));
  EXPECT_TRUE(watched.expired());
}

TEST_F(ReactorNotifications, a_save_that_changes_nothing_tells_nothing) {
  library->save(Tag::create("warm"));
  reactor.forget();
  library->save(Tag::create("warm"));
  library->save(std::shared_ptr<Tag>());
  library->save(library->get<Tag>("warm"));
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(ReactorNotifications, without_a_reactor_saving_works_all_the_same) {
  library->setReactor(nullptr);
  EXPECT_TRUE(library->save(full_composition("Wall")));
  EXPECT_EQ(library->count<Composition>(), 1u);
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

}  // namespace
}  // namespace veldra_tests
