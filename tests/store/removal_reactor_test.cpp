// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/removal_fixture.hpp"

namespace veldra_tests {
namespace {

/// An exception that only a host knows.
struct HostIsTired {};

/// Whether the call lets the host's exception through as it is.
bool tires(const std::function<void()>& call) {
  try {
    call();
  } catch (const HostIsTired&) {
    return true;
  }
  return false;
}

class RemovalReactor : public RemovalTest {
 protected:
  RemovalReactor() { elsewhere_->save(named<Tag>("there")); }

  /// What each way of writing to the library throws.
  std::vector<Thrown> thrown_by_writing() {
    veldra::IdMapping mapping(library.get());
    return {
        thrown_by([&] { library->save(named<Layer>("nested")); }),
        thrown_by([&] { library->remove<Layer>(1u); }),
        thrown_by([&] { library->remove<Layer>(std::set<unsigned>{1}); }),
        thrown_by([&] { library->remove({key_of<Layer>(1)}); }),
        thrown_by([&] { library->purge<Layer>(); }),
        thrown_by([&] { library->copy<Tag>(elsewhere_, std::set<unsigned>{1}); }),
        thrown_by([&] { library->copy(elsewhere_, {key_of<Tag>(1)}); }),
        thrown_by([&] { library->copyAll(elsewhere_, mapping); }),
    };
  }

  const std::shared_ptr<Library> elsewhere_ = create("elsewhere.lib");
};

void expect_all_refused(const std::vector<Thrown>& thrown) {
  for (std::size_t i = 0; i != thrown.size(); ++i)
    EXPECT_EQ(thrown[i], "odb::already_in_transaction") << "way " << i;
}

TEST_F(RemovalReactor, a_removal_is_asked_for_and_told_and_then_the_kind_and_the_library) {
  const auto tag = stored<Tag>("tag");
  listen();

  library->remove(tag);

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag", "library"));
}

TEST_F(RemovalReactor, each_single_removal_delivers_its_own_notifications) {
  stored<Tag>("one");
  stored<Layer>("two");
  listen();

  library->remove<Tag>(1u);
  library->remove<Layer>(1u);

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag", "library",
                          "may remove Layer 1", "removed Layer 1", "type Layer", "library"));
}

TEST_F(RemovalReactor, the_kinds_of_one_call_are_told_once_in_ascending_order) {
  const std::set<ObjectKey> keys{
      key_of(stored<Layer>("a")),        key_of(stored<CustomProperty>("b")),
      key_of(stored<Composition>("c")),  key_of(stored<Material>("d")),
      key_of(stored<MaterialType>("e")), key_of(stored<Tag>("f")),
      key_of(stored<Tag>("g"))};
  listen();

  library->remove(keys);

  const std::vector<std::string> calls = reactor.calls();
  ASSERT_EQ(calls.size(), 2 * keys.size() + 7);
  EXPECT_THAT(std::vector<std::string>(calls.end() - 7, calls.end()),
              ElementsAre("type Tag", "type MaterialType", "type Material", "type Composition",
                          "type CustomProperty", "type Layer", "library"));
}

TEST_F(RemovalReactor, a_kind_of_which_nothing_went_is_not_told) {
  const std::set<ObjectKey> keys{key_of(stored<Layer>("a")), key_of(stored<Tag>("b"))};
  reactor.on_may_remove = [](Library&, const ObjectKey& key) {
    return key.type == ObjectType::Layer ? 1 : 0;
  };
  listen();

  library->remove(keys);

  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Layer 1", "may remove Tag 1",
                                           "removed Tag 1", "type Tag", "library"));
}

TEST_F(RemovalReactor, an_unknown_id_is_asked_for_but_nothing_is_told) {
  listen();
  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(99u); }), "veldra::ObjectNotFound");
  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 99"));
}

TEST_F(RemovalReactor, a_failing_statement_tells_nothing) {
  stored<Tag>("one");
  on_delete_from("Tag", kOverflow);
  listen();
  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(1u); }), "veldra::UnknownError");
  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 1"));
}

// A reference is found at the commit, when the removal was told already: the kind counts as
// changed.
TEST_F(RemovalReactor, a_removal_that_the_commit_refuses_was_told) {
  const auto used = referenced<Tag>("used");
  listen();

  EXPECT_EQ(thrown_by([&] { library->remove(used); }), "veldra::ObjectInUse");

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag", "library"));
}

TEST_F(RemovalReactor, a_set_that_an_unknown_id_ends_tells_what_went_before) {
  stored<Tag>("one");
  listen();

  EXPECT_EQ(thrown_by([&] {
              library->remove<Tag>(std::set<unsigned>{1, 99});
            }),
            "veldra::ObjectNotFound");

  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 1", "removed Tag 1", "may remove Tag 99",
                                           "type Tag", "library"));
}

TEST_F(RemovalReactor, keys_that_an_unknown_key_ends_tell_what_went_before) {
  stored<Composition>("Wall");
  stored<Material>("Oak");
  listen();

  EXPECT_EQ(thrown_by([&] {
              library->remove({key_of<Composition>(1), key_of<Material>(1), key_of<Layer>(99)});
            }),
            "veldra::ObjectNotFound");

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Composition 1", "removed Composition 1",
                          "may remove Material 1", "removed Material 1", "may remove Layer 99",
                          "type Material", "type Composition", "library"));
}

TEST_F(RemovalReactor, the_library_of_each_call_is_the_one_that_removes) {
  stored<Tag>("one");
  std::set<Library*> seen;
  reactor.on_may_remove = [&](Library& library, const ObjectKey&) {
    seen.insert(&library);
    return 0;
  };
  reactor.on_removed = [&](Library& library, const ObjectKey&) { seen.insert(&library); };
  reactor.on_type_changed = [&](Library& library, ObjectType) { seen.insert(&library); };
  reactor.on_library_changed = [&](Library& library) { seen.insert(&library); };
  listen();

  library->remove<Tag>(1u);

  EXPECT_THAT(seen, ElementsAre(library.get()));
  EXPECT_EQ(reactor.calls().size(), 4u);
}

TEST_F(RemovalReactor, without_a_reactor_everything_may_go) {
  stored<Tag>("one");
  reactor.refusal = 1;
  listen();
  ASSERT_FALSE(library->remove<Tag>(1u));

  library->setReactor(nullptr);

  EXPECT_TRUE(library->remove<Tag>(1u));
}

TEST_F(RemovalReactor, an_exception_of_the_question_reaches_the_caller) {
  const auto tag = stored<Tag>("one");
  reactor.on_may_remove = [](Library&, const ObjectKey&) -> int { throw HostIsTired(); };
  listen();
  const std::string before = rows();

  EXPECT_TRUE(tires([&] { library->remove(tag); }));

  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 1"));
  EXPECT_EQ(tag->library(), library);
  EXPECT_EQ(rows(), before);
  expect_usable();
}

TEST_F(RemovalReactor, an_exception_of_the_report_takes_the_removal_back) {
  const auto tag = stored<Tag>("one");
  reactor.on_removed = [](Library&, const ObjectKey&) { throw HostIsTired(); };
  listen();
  const std::string before = rows();

  EXPECT_TRUE(tires([&] { library->remove(tag); }));

  EXPECT_EQ(tag->library(), library);
  EXPECT_EQ(rows(), before);
  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 1", "removed Tag 1"));
  reactor.on_removed = nullptr;
  EXPECT_TRUE(library->remove(tag));
}

TEST_F(RemovalReactor, an_exception_amid_a_set_leaves_and_what_went_before_is_told) {
  stored<Tag>("one");
  stored<Tag>("two");
  stored<Tag>("three");
  reactor.on_may_remove = [](Library&, const ObjectKey& key) -> int {
    if (key.id == 2) throw HostIsTired();
    return 0;
  };
  listen();
  Removed result;

  EXPECT_TRUE(tires([&] { library->remove<Tag>(std::set<unsigned>{1, 2, 3}, result); }));

  EXPECT_THAT(result, ElementsAre(Pair(key_of<Tag>(1), true)));
  EXPECT_EQ(library->get<Tag>("one"), nullptr);
  EXPECT_NE(library->get<Tag>("two"), nullptr);
  EXPECT_NE(library->get<Tag>("three"), nullptr);
  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 1", "removed Tag 1", "may remove Tag 2",
                                           "type Tag", "library"));
}

TEST_F(RemovalReactor, an_exception_of_the_library_family_is_not_taken_for_a_refusal) {
  const auto one = stored<Tag>("one");
  reactor.on_may_remove = [](Library&, const ObjectKey&) -> int { throw veldra::ObjectInUse(); };
  listen();
  Removed result;

  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(std::set<unsigned>{one->id()}, result); }),
            "veldra::ObjectInUse");

  EXPECT_THAT(result, IsEmpty());
}

TEST_F(RemovalReactor, reading_sees_the_running_removal) {
  const auto tag = stored<Tag>("one");
  stored<Tag>("two");
  std::vector<unsigned long long> counts;
  std::vector<bool> found;
  const auto look = [&](Library& library) {
    counts.push_back(library.count<Tag>());
    found.push_back(library.get<Tag>(tag->id()) != nullptr);
  };
  reactor.on_may_remove = [&](Library& library, const ObjectKey&) {
    look(library);
    return 0;
  };
  reactor.on_removed = [&](Library& library, const ObjectKey&) { look(library); };
  reactor.on_library_changed = look;
  listen();

  EXPECT_TRUE(library->remove(tag));

  EXPECT_THAT(counts, ElementsAre(2u, 1u, 1u));
  EXPECT_THAT(found, ElementsAre(true, false, false));
}

TEST_F(RemovalReactor, the_host_may_let_go_what_is_being_removed) {
  auto selected = stored<Tag>("selected");
  const std::weak_ptr<Tag> watched = selected;
  reactor.on_removed = [&](Library&, const ObjectKey&) { selected.reset(); };

  EXPECT_TRUE(library->remove(selected));

  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(rows_in("Tag"), "0");
}

TEST_F(RemovalReactor, the_host_may_change_the_ids_and_keys_of_what_is_being_removed) {
  const auto id = [this](const char* name) { return stored<Tag>(name)->id(); };
  std::set<unsigned> ids = {id("one"), id("two"), id("three")};
  std::set<ObjectKey> keys = {key_of<Tag>(id("four")), key_of<Tag>(id("five"))};
  reactor.on_removed = [&](Library&, const ObjectKey& key) {
    ids.erase(key.id);
    keys.erase(key);
  };

  library->remove<Tag>(ids);
  library->remove(keys);

  EXPECT_THAT(ids, IsEmpty());
  EXPECT_THAT(keys, IsEmpty());
  EXPECT_EQ(rows_in("Tag"), "0");
}

TEST_F(RemovalReactor, all_ways_of_reading_work_within) {
  library->save(full_composition("Wall"));
  const auto tag = stored<Tag>("one");
  std::size_t read = 0;
  reactor.on_may_remove = [&](Library& library, const ObjectKey&) {
    std::vector<std::shared_ptr<Composition>> compositions;
    std::vector<std::shared_ptr<Material>> materials;
    library.get(compositions);
    library.search(materials, "wall%");
    read = compositions.size() + materials.size();
    return 0;
  };
  listen();

  EXPECT_TRUE(library->remove(tag));

  EXPECT_EQ(read, 4u);
}

TEST_F(RemovalReactor, writing_within_the_question_is_refused_and_the_removal_goes_on) {
  const auto tag = stored<Tag>("one");
  stored<Layer>("layer");
  std::vector<Thrown> thrown;
  reactor.on_may_remove = [&](Library&, const ObjectKey&) {
    thrown = thrown_by_writing();
    return 0;
  };
  listen();

  EXPECT_TRUE(library->remove(tag));

  ASSERT_EQ(thrown.size(), 8u);
  expect_all_refused(thrown);
  EXPECT_EQ(library->get<Tag>("one"), nullptr);
  EXPECT_NE(library->get<Layer>("layer"), nullptr);
  EXPECT_EQ(library->get<Layer>("nested"), nullptr);
  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag", "library"));
}

TEST_F(RemovalReactor, writing_within_the_report_is_refused_and_the_set_goes_on) {
  const auto one = stored<Tag>("one");
  const auto two = stored<Tag>("two");
  stored<Layer>("layer");
  std::vector<Thrown> thrown;
  reactor.on_removed = [&](Library&, const ObjectKey&) { thrown = thrown_by_writing(); };
  listen();
  Removed result;

  library->remove<Tag>(std::set<unsigned>{one->id(), two->id()}, result);

  ASSERT_EQ(thrown.size(), 8u);
  expect_all_refused(thrown);
  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true), Pair(key_of(two), true)));
  EXPECT_NE(library->get<Layer>("layer"), nullptr);
  EXPECT_EQ(damage(path), "");
}

TEST_F(RemovalReactor, a_refused_write_that_nobody_catches_ends_the_removal_as_it_is) {
  const auto tag = stored<Tag>("one");
  stored<Layer>("layer");
  reactor.on_may_remove = [](Library& library, const ObjectKey&) {
    library.remove<Layer>(1u);
    return 0;
  };
  listen();
  Removed result;

  EXPECT_EQ(thrown_by([&] { library->remove(tag); }), "odb::already_in_transaction");
  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(std::set<unsigned>{tag->id()}, result); }),
            "odb::already_in_transaction");

  EXPECT_THAT(result, IsEmpty());
  EXPECT_EQ(tag->library(), library);
  reactor.on_may_remove = nullptr;
  EXPECT_TRUE(library->remove(tag));
}

TEST_F(RemovalReactor, another_library_may_be_written_to_within) {
  const auto tag = stored<Tag>("one");
  bool removed_there = false;
  reactor.on_may_remove = [&](Library&, const ObjectKey&) {
    elsewhere_->save(named<Layer>("nested"));
    removed_there = elsewhere_->remove<Tag>(1u);
    return 0;
  };
  reactor.on_removed = [&](Library&, const ObjectKey&) { elsewhere_->purge<MaterialType>(); };
  listen();

  EXPECT_TRUE(library->remove(tag));

  EXPECT_TRUE(removed_there);
  EXPECT_EQ(elsewhere_->count<Tag>(), 0u);
  EXPECT_EQ(elsewhere_->count<MaterialType>(), 0u);
  EXPECT_NE(elsewhere_->get<Layer>("nested"), nullptr);
  EXPECT_EQ(library->count<Tag>(), 0u);
}

TEST_F(RemovalReactor, another_library_may_be_made_and_opened_within) {
  const auto tag = stored<Tag>("one");
  const std::string third = folder / "third.lib";
  reactor.on_may_remove = [&](Library&, const ObjectKey&) {
    Library::create(third.c_str(), Unit::Inches, "");
    return 0;
  };
  std::vector<Unit> units;
  reactor.on_removed = [&](Library&, const ObjectKey&) {
    units.push_back(Library::open(third.c_str(), true)->unit());
  };
  listen();

  EXPECT_TRUE(library->remove(tag));

  EXPECT_THAT(units, ElementsAre(Unit::Inches));
  EXPECT_EQ(library->count<Tag>(), 0u);
}

TEST_F(RemovalReactor, notifications_may_write_and_their_writes_notify_at_their_own_end) {
  stored<Tag>("one");
  stored<Layer>("two");
  bool nested = false;
  reactor.on_type_changed = [&](Library& library, ObjectType) {
    if (nested) return;
    nested = true;
    library.remove<Layer>(1u);
  };
  listen();

  library->remove<Tag>(1u);

  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag", "may remove Layer 1",
                          "removed Layer 1", "type Layer", "library", "library"));
  EXPECT_EQ(library->count<Layer>(), 0u);
}

TEST_F(RemovalReactor, the_last_notification_may_write) {
  stored<Tag>("one");
  bool nested = false;
  reactor.on_library_changed = [&](Library& library) {
    if (nested) return;
    nested = true;
    library.save(named<Layer>("after"));
  };
  listen();

  library->remove<Tag>(1u);

  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag",
                                           "library", "saved Layer 1", "type Layer", "library"));
}

TEST_F(RemovalReactor, an_exception_of_a_notification_reaches_the_caller_of_every_form) {
  const auto one = stored<Tag>("one");
  for (const char* name : {"two", "three", "four", "five", "six"}) stored<Tag>(name);
  reactor.on_type_changed = [](Library&, ObjectType) { throw HostIsTired(); };

  EXPECT_TRUE(tires([&] { library->remove(one); }));
  EXPECT_TRUE(tires([&] { library->remove<Tag>(2u); }));
  EXPECT_TRUE(tires([&] { library->remove<Tag>(std::set<unsigned>{3}); }));
  EXPECT_TRUE(tires([&] { library->remove({key_of<Tag>(4)}); }));
  EXPECT_EQ(rows_in("Tag"), "2");
  EXPECT_TRUE(tires([&] { library->purge<Tag>(); }));

  EXPECT_EQ(rows_in("Tag"), "0");
  EXPECT_FALSE(one->library());
}

}  // namespace
}  // namespace veldra_tests
