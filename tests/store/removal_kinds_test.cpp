// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/removal_fixture.hpp"

namespace veldra_tests {
namespace {

template <class T>
class RemovalOfKind : public RemovalTest {};
TYPED_TEST_SUITE(RemovalOfKind, AllKinds, KindNames);

TYPED_TEST(RemovalOfKind, an_object_goes_by_its_handle) {
  const auto object = this->template stored<TypeParam>("one");
  const auto other = this->template stored<TypeParam>("other");
  const unsigned id = object->id();

  EXPECT_TRUE(this->library->remove(object));

  EXPECT_EQ(this->library->template get<TypeParam>(id), nullptr);
  EXPECT_NE(this->library->template get<TypeParam>(other->id()), nullptr);
  EXPECT_EQ(damage(this->path), "");
}

TYPED_TEST(RemovalOfKind, a_removed_object_keeps_its_id_and_loses_its_library) {
  const auto object = this->template stored<TypeParam>("one");
  const unsigned id = object->id();

  this->library->remove(object);

  EXPECT_EQ(object->id(), id);
  EXPECT_EQ(object->library(), nullptr);
  EXPECT_EQ(object->name(), veldra::String("one"));
}

TYPED_TEST(RemovalOfKind, an_object_goes_by_its_id_and_other_handles_keep_their_library) {
  const auto object = this->template stored<TypeParam>("one");

  EXPECT_TRUE(this->library->template remove<TypeParam>(object->id()));

  EXPECT_EQ(this->library->template get<TypeParam>(object->id()), nullptr);
  EXPECT_EQ(object->library(), this->library);
}

TYPED_TEST(RemovalOfKind, a_handle_that_was_read_serves_as_well_as_one_that_was_saved) {
  this->template stored<TypeParam>("one");
  const auto read = this->library->template get<TypeParam>("one");

  EXPECT_TRUE(this->library->remove(read));

  EXPECT_EQ(read->library(), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
}

TYPED_TEST(RemovalOfKind, a_removal_outlives_the_handle_of_the_library) {
  const auto object = this->template stored<TypeParam>("one");
  this->library->remove(object);
  this->reopen();
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
}

TYPED_TEST(RemovalOfKind, an_id_is_not_given_out_again) {
  const auto object = this->template stored<TypeParam>("one");
  this->library->remove(object);
  EXPECT_GT(this->template stored<TypeParam>("two")->id(), object->id());
}

TYPED_TEST(RemovalOfKind, an_object_of_a_closed_handle_goes_by_its_id) {
  const auto object = this->template stored<TypeParam>("one");
  this->reopen();
  ASSERT_EQ(object->library(), nullptr);

  EXPECT_TRUE(this->library->remove(object));

  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
}

TYPED_TEST(RemovalOfKind, an_empty_pointer_removes_nothing) {
  this->template stored<TypeParam>("one");
  this->listen();
  const std::string before = this->rows();

  EXPECT_FALSE(this->library->remove(std::shared_ptr<TypeParam>()));

  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(RemovalOfKind, an_unknown_id_is_not_found) {
  const auto object = this->template stored<TypeParam>("one");
  const std::string before = this->rows();

  EXPECT_EQ(thrown_by([&] { this->library->template remove<TypeParam>(object->id() + 99); }),
            "veldra::ObjectNotFound");
  EXPECT_EQ(thrown_by([&] { this->library->template remove<TypeParam>(0u); }),
            "veldra::ObjectNotFound");

  EXPECT_EQ(this->rows(), before);
  this->expect_usable();
}

TYPED_TEST(RemovalOfKind, an_object_that_was_never_saved_is_not_found) {
  const auto object = named<TypeParam>("new");
  EXPECT_EQ(thrown_by([&] { this->library->remove(object); }), "veldra::ObjectNotFound");
  this->expect_usable();
}

TYPED_TEST(RemovalOfKind, an_object_is_not_found_a_second_time) {
  const auto object = this->template stored<TypeParam>("one");
  const auto again = this->library->template get<TypeParam>("one");
  this->library->remove(object);

  EXPECT_EQ(thrown_by([&] { this->library->remove(object); }), "veldra::ObjectNotFound");
  EXPECT_EQ(thrown_by([&] { this->library->remove(again); }), "veldra::ObjectNotFound");

  EXPECT_EQ(again->library(), this->library);
}

TYPED_TEST(RemovalOfKind, an_object_of_another_library_is_not_found) {
  const auto own = this->template stored<TypeParam>("own");
  const auto elsewhere = this->create("elsewhere.lib");
  const auto foreign = named<TypeParam>("foreign");
  elsewhere->save(foreign);
  ASSERT_EQ(foreign->id(), own->id());
  this->listen();
  const std::string before = this->rows();

  EXPECT_EQ(thrown_by([&] { this->library->remove(foreign); }), "veldra::ObjectNotFound");

  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(foreign->library(), elsewhere);
  EXPECT_NE(elsewhere->template get<TypeParam>("foreign"), nullptr);
  EXPECT_THAT(this->reactor.calls_starting_with("removed"), IsEmpty());
}

TYPED_TEST(RemovalOfKind, a_set_goes_with_one_entry_for_each) {
  const auto one = this->template stored<TypeParam>("one");
  const auto kept = this->template stored<TypeParam>("kept");
  const auto two = this->template stored<TypeParam>("two");
  Removed result;

  this->library->template remove<TypeParam>(std::set<unsigned>{two->id(), one->id()}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true), Pair(key_of(two), true)));
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("two"), nullptr);
  EXPECT_NE(this->library->template get<TypeParam>(kept->id()), nullptr);
}

TYPED_TEST(RemovalOfKind, a_set_goes_without_a_result) {
  const auto one = this->template stored<TypeParam>("one");
  const auto two = this->template stored<TypeParam>("two");

  this->library->template remove<TypeParam>(std::set<unsigned>{one->id(), two->id()});

  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("two"), nullptr);
}

TYPED_TEST(RemovalOfKind, a_set_is_taken_in_ascending_order_of_the_ids) {
  std::set<unsigned> ids;
  for (const char* name : {"c", "a", "b"}) ids.insert(this->template stored<TypeParam>(name)->id());
  const std::string kind = kind_of<TypeParam>();
  std::vector<std::string> expected;
  for (const unsigned id : ids) {
    expected.push_back("may remove " + kind + " " + std::to_string(id));
    expected.push_back("removed " + kind + " " + std::to_string(id));
  }
  expected.push_back("type " + kind);
  expected.push_back("library");
  this->listen();

  this->library->template remove<TypeParam>(ids);

  EXPECT_EQ(this->reactor.calls(), expected);
}

TYPED_TEST(RemovalOfKind, a_set_stops_at_an_unknown_id_and_what_went_before_stays_removed) {
  const auto one = this->template stored<TypeParam>("one");
  const auto missing = this->template stored<TypeParam>("missing");
  const auto two = this->template stored<TypeParam>("two");
  const std::set<unsigned> ids{one->id(), missing->id(), two->id()};
  this->library->remove(missing);
  Removed result;

  EXPECT_EQ(thrown_by([&] { this->library->template remove<TypeParam>(ids, result); }),
            "veldra::ObjectNotFound");

  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true)));
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
  EXPECT_NE(this->library->template get<TypeParam>("two"), nullptr);
  this->expect_usable();
}

TYPED_TEST(RemovalOfKind, keys_go_like_ids) {
  const auto one = this->template stored<TypeParam>("one");
  const auto kept = this->template stored<TypeParam>("kept");
  Removed result;

  this->library->remove(std::set<veldra::ObjectKey>{key_of(one)}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true)));
  EXPECT_EQ(this->library->template get<TypeParam>("one"), nullptr);
  EXPECT_NE(this->library->template get<TypeParam>(kept->id()), nullptr);
}

TYPED_TEST(RemovalOfKind, an_empty_set_removes_nothing) {
  this->template stored<TypeParam>("one");
  this->listen();
  const std::string before = this->rows();
  Removed result;

  this->library->template remove<TypeParam>(std::set<unsigned>(), result);
  this->library->remove(std::set<veldra::ObjectKey>(), result);

  EXPECT_THAT(result, IsEmpty());
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(RemovalOfKind, the_reactor_can_refuse) {
  const auto object = this->template stored<TypeParam>("one");
  this->reactor.refusal = -7;
  this->listen();
  const std::string before = this->rows();
  Removed result;

  EXPECT_FALSE(this->library->remove(object));
  EXPECT_EQ(object->library(), this->library);
  EXPECT_FALSE(this->library->template remove<TypeParam>(object->id()));
  this->library->template remove<TypeParam>(std::set<unsigned>{object->id()}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(object), false)));
  const std::string asked =
      "may remove " + kind_of<TypeParam>() + " " + std::to_string(object->id());
  EXPECT_THAT(this->reactor.calls(), ElementsAre(asked, asked, asked));
  EXPECT_EQ(this->rows(), before);
  this->expect_usable();
}

TYPED_TEST(RemovalOfKind, a_set_goes_on_behind_a_refused_object) {
  const auto one = this->template stored<TypeParam>("one");
  const auto two = this->template stored<TypeParam>("two");
  this->reactor.on_may_remove = [&](Library&, const veldra::ObjectKey& key) {
    return key.id == one->id() ? 1 : 0;
  };
  this->listen();
  Removed result;

  this->library->template remove<TypeParam>(std::set<unsigned>{one->id(), two->id()}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), false), Pair(key_of(two), true)));
}

TYPED_TEST(RemovalOfKind, a_library_for_reading_refuses_every_form) {
  const auto object = this->template stored<TypeParam>("one");
  const unsigned id = object->id();
  this->reopen_for_reading();
  const auto read = this->library->template get<TypeParam>(id);
  const std::string before = this->rows();
  Library& library = *this->library;
  Removed result;

  EXPECT_EQ(thrown_by([&] { library.remove(read); }), "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library.template remove<TypeParam>(id); }), "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library.template remove<TypeParam>(std::set<unsigned>{id}); }),
            "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library.remove({key_of<TypeParam>(id)}, result); }),
            "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library.template purge<TypeParam>(result); }),
            "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library.template purge<TypeParam>(); }), "veldra::LibraryReadOnly");

  EXPECT_EQ(read->library(), this->library);
  EXPECT_THAT(result, IsEmpty());
  EXPECT_EQ(this->rows(), before);
  EXPECT_NE(library.template get<TypeParam>(id), nullptr);
}

TYPED_TEST(RemovalOfKind, a_library_for_reading_asks_the_reactor_first) {
  const unsigned id = this->template stored<TypeParam>("one")->id();
  this->reopen_for_reading();
  this->library->setReactor(&this->reactor);
  this->reactor.refusal = 1;
  EXPECT_FALSE(this->library->template remove<TypeParam>(id));
  EXPECT_NE(this->library->template get<TypeParam>(id), nullptr);
}

TYPED_TEST(RemovalOfKind, a_library_for_reading_refuses_what_is_not_there) {
  this->reopen_for_reading();
  EXPECT_EQ(thrown_by([&] { this->library->template remove<TypeParam>(12345); }),
            "veldra::LibraryReadOnly");
}

TYPED_TEST(RemovalOfKind, a_failure_of_the_database_is_an_unknown_error) {
  const auto object = this->template stored<TypeParam>("one");
  this->on_delete_from(kind_of<TypeParam>(), kOverflow);
  const std::string before = this->rows();
  Removed result;

  EXPECT_EQ(thrown_by([&] { this->library->remove(object); }), "veldra::UnknownError");
  EXPECT_EQ(thrown_by([&] {
              this->library->template remove<TypeParam>(std::set<unsigned>{object->id()}, result);
            }),
            "veldra::UnknownError");
  EXPECT_EQ(thrown_by([&] { this->library->template purge<TypeParam>(result); }),
            "veldra::UnknownError");

  EXPECT_THAT(result, IsEmpty());
  EXPECT_EQ(object->library(), this->library);
  EXPECT_EQ(this->rows(), before);
  this->mend();
  EXPECT_TRUE(this->library->remove(object));
}

TYPED_TEST(RemovalOfKind, any_violated_constraint_counts_as_in_use) {
  const auto object = this->template stored<TypeParam>("one");
  this->on_delete_from(kind_of<TypeParam>(), "SELECT RAISE(ABORT, 'the house keeps it')");
  Removed result;

  EXPECT_EQ(thrown_by([&] { this->library->remove(object); }), "veldra::ObjectInUse");
  this->library->template remove<TypeParam>(std::set<unsigned>{object->id()}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(object), false)));
  EXPECT_EQ(object->library(), this->library);
  this->mend();
  EXPECT_TRUE(this->library->remove(object));
}

template <class T>
class RemovalOfReferenced : public RemovalTest {};
TYPED_TEST_SUITE(RemovalOfReferenced, ReferencedKinds, KindNames);

TYPED_TEST(RemovalOfReferenced, an_object_in_use_stays_with_its_handle) {
  const auto object = this->template referenced<TypeParam>("used");
  const std::string before = this->rows();

  EXPECT_EQ(thrown_by([&] { this->library->remove(object); }), "veldra::ObjectInUse");
  EXPECT_EQ(thrown_by([&] { this->library->template remove<TypeParam>(object->id()); }),
            "veldra::ObjectInUse");

  EXPECT_EQ(object->library(), this->library);
  EXPECT_FALSE(object->isDirty());
  EXPECT_EQ(this->rows(), before);
  this->expect_usable();
}

TYPED_TEST(RemovalOfReferenced, a_set_tells_what_is_in_use_and_goes_on) {
  const auto first = this->template stored<TypeParam>("first");
  const auto used = this->template referenced<TypeParam>("used");
  const auto last = this->template stored<TypeParam>("last");
  Removed result;

  this->library->template remove<TypeParam>(std::set<unsigned>{first->id(), used->id(), last->id()},
                                            result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(first), true), Pair(key_of(used), false),
                                  Pair(key_of(last), true)));
  EXPECT_NE(this->library->template get<TypeParam>("used"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("first"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("last"), nullptr);
  this->expect_usable();
}

TYPED_TEST(RemovalOfReferenced, a_set_without_a_result_skips_what_is_in_use) {
  const auto used = this->template referenced<TypeParam>("used");
  const auto free = this->template stored<TypeParam>("free");

  this->library->template remove<TypeParam>(std::set<unsigned>{used->id(), free->id()});
  this->library->remove(std::set<veldra::ObjectKey>{key_of(used)});

  EXPECT_NE(this->library->template get<TypeParam>("used"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("free"), nullptr);
}

TYPED_TEST(RemovalOfReferenced, entries_of_a_result_are_never_overwritten) {
  const auto used = this->template referenced<TypeParam>("used");
  const auto free = this->template stored<TypeParam>("free");
  Removed result{{key_of(used), true}, {key_of(free), false}, {key_of<TypeParam>(12345), true}};
  const Removed before = result;

  this->library->template remove<TypeParam>(std::set<unsigned>{used->id(), free->id()}, result);

  EXPECT_EQ(result, before);
  EXPECT_NE(this->library->template get<TypeParam>("used"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("free"), nullptr);
}

TYPED_TEST(RemovalOfReferenced, an_object_goes_once_its_owners_are_gone) {
  const auto object = this->template referenced<TypeParam>("used");
  ASSERT_EQ(thrown_by([&] { this->library->remove(object); }), "veldra::ObjectInUse");

  this->library->template purge<veldra::Composition>();
  if (kind_of<TypeParam>() != "Material") this->library->template purge<veldra::Material>();

  EXPECT_TRUE(this->library->remove(object));
  EXPECT_EQ(object->library(), nullptr);
}

}  // namespace
}  // namespace veldra_tests
