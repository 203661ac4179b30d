// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/removal_fixture.hpp"
#include "store/transaction_calls.hpp"
#include "support/catalogues.hpp"

#include <functional>
#include <stdexcept>

namespace veldra_tests {
namespace {

using Ids = std::set<unsigned>;
using Keys = std::set<ObjectKey>;

template <class T>
class TransactionRemovalOfKind : public RemovalTest {};
TYPED_TEST_SUITE(TransactionRemovalOfKind, AllKinds, KindNames);

TYPED_TEST(TransactionRemovalOfKind, each_form_is_taken_back) {
  using T = TypeParam;
  const auto one = this->template stored<T>("one");
  const ObjectKey key = key_of(one);
  Library& library = *this->library;
  Removed result;
  const std::vector<std::function<void()>> forms = {
      [&] { library.template remove<T>(one->id()); },
      [&] { library.remove(library.template get<T>(one->id())); },
      [&] { library.template remove<T>(Ids{one->id()}); },
      [&] { library.template remove<T>(Ids{one->id()}, result); },
      [&] { library.remove(Keys{key}); },
      [&] { library.remove(Keys{key}, result); },
      [&] { library.template purge<T>(); },
      [&] { library.template purge<T>(result); },
      [&] { library.purge(std::set<ObjectType>{key.type}); },
      [&] { library.purge(std::set<ObjectType>{key.type}, result); },
      [&] { library.purge(); },
      [&] { library.purge(result); }};
  const std::string before = this->rows();
  for (std::size_t form = 0; form != forms.size(); ++form) {
    SCOPED_TRACE(form);
    result.clear();
    roll_back(library, [&] {
      forms[form]();
      EXPECT_FALSE(library.template get<T>("one"));
      EXPECT_EQ(this->rows(), before);
    });
    EXPECT_EQ(this->rows(), before);
    EXPECT_TRUE(library.template get<T>("one"));
    if (!result.empty()) {
      EXPECT_THAT(result, Contains(Pair(key, true)));
    }
  }
  EXPECT_EQ(one->library(), this->library);
  commit(library, [&] { EXPECT_TRUE(library.remove(one)); });
  EXPECT_EQ(this->rows_in(kind_of<T>()), key.type == ObjectType::MaterialType ? "13" : "0");
}

template <class T>
class TransactionRemovalInUse : public RemovalTest {};
TYPED_TEST_SUITE(TransactionRemovalInUse, ReferencedKinds, KindNames);

TYPED_TEST(TransactionRemovalInUse, by_id_and_by_object_it_throws_and_the_rest_goes_on) {
  const auto used = this->template referenced<TypeParam>("used");
  const std::string state = state_of(used);
  Library& library = *this->library;
  commit(library, [&] {
    this->template stored<Tag>("before");
    for (int i = 0; i != 2; ++i) {
      EXPECT_EQ(thrown_by([&] { library.remove(used); }), "veldra::ObjectInUse");
      EXPECT_EQ(thrown_by([&] { library.template remove<TypeParam>(used->id()); }),
                "veldra::ObjectInUse");
    }
    EXPECT_EQ(state_of(used), state);
    EXPECT_TRUE(library.template get<TypeParam>("used"));
    this->template stored<Tag>("after");
  });
  EXPECT_TRUE(library.template get<TypeParam>("used"));
  EXPECT_TRUE(library.template get<Tag>("before"));
  EXPECT_TRUE(library.template get<Tag>("after"));
  this->expect_usable();
}

TYPED_TEST(TransactionRemovalInUse, in_sets_it_stays_and_the_others_go) {
  const auto used = this->template referenced<TypeParam>("used");
  const auto unused = this->template stored<TypeParam>("unused");
  Library& library = *this->library;
  const Ids ids{used->id(), unused->id()};
  const Keys keys{key_of(used), key_of(unused)};
  const std::vector<std::function<void(Removed&)>> forms = {
      [&](Removed& result) { library.template remove<TypeParam>(ids, result); },
      [&](Removed& result) { library.remove(keys, result); },
      [&](Removed& result) { library.template purge<TypeParam>(result); },
      [&](Removed& result) {
        library.purge(std::set<ObjectType>{veldra::ObjectTraits<TypeParam>::type}, result);
      }};
  const std::string before = this->rows();
  for (const auto& form : forms) {
    Removed result;
    roll_back(library, [&] {
      form(result);
      EXPECT_TRUE(library.template get<TypeParam>("used"));
      EXPECT_FALSE(library.template get<TypeParam>("unused"));
    });
    EXPECT_THAT(result, Contains(Pair(key_of(used), false)));
    EXPECT_THAT(result, Contains(Pair(key_of(unused), true)));
    EXPECT_EQ(this->rows(), before);
  }
  Removed result;
  commit(library, [&] { forms[1](result); });
  EXPECT_TRUE(library.template get<TypeParam>("used"));
  EXPECT_FALSE(library.template get<TypeParam>("unused"));
  this->expect_usable();
}

TYPED_TEST(TransactionRemovalInUse, what_refers_may_be_removed_before_it) {
  const auto used = this->template referenced<TypeParam>("used");
  commit(*this->library, [&] {
    EXPECT_EQ(thrown_by([&] { this->library->remove(used); }), "veldra::ObjectInUse");
    this->library->template purge<Composition>();
    if (veldra::ObjectTraits<TypeParam>::type != ObjectType::Material)
      this->library->template purge<Material>();
    EXPECT_TRUE(this->library->remove(used));
  });
  EXPECT_FALSE(this->library->template get<TypeParam>("used"));
  this->expect_usable();
}

TYPED_TEST(TransactionRemovalInUse, what_refers_may_be_saved_within) {
  roll_back(*this->library, [&] {
    const auto used = this->template referenced<TypeParam>("used");
    EXPECT_EQ(thrown_by([&] { this->library->remove(used); }), "veldra::ObjectInUse");
  });
  commit(*this->library, [&] {
    const auto used = this->template referenced<TypeParam>("used");
    EXPECT_EQ(thrown_by([&] { this->library->remove(used); }), "veldra::ObjectInUse");
  });
  EXPECT_TRUE(this->library->template get<TypeParam>("used"));
  this->expect_usable();
}

class TransactionRemoval : public RemovalTest {};

TEST_F(TransactionRemoval, a_purge_of_all_keeps_what_is_in_use) {
  library->save(full_material("Oak"));
  stored<Tag>("unused");
  const auto kinds = std::set<ObjectType>{ObjectType::Tag, ObjectType::Layer,
                                          ObjectType::CustomProperty, ObjectType::MaterialType};
  commit(*library, [&] { library->purge(kinds); });
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(full_material("Oak")));
  EXPECT_EQ(rows_in("Tag"), "2");
  EXPECT_EQ(rows_in("MaterialType"), "1");
  commit(*library, [&] { library->purge(); });
  EXPECT_EQ(rows_in("Material"), "0");
  EXPECT_EQ(rows_in("Tag"), "0");
  EXPECT_EQ(damage(path), "");
}

TEST_F(TransactionRemoval, an_object_that_is_not_there_is_not_found_and_the_rest_goes_on) {
  const auto other = create("other.lib");
  const auto foreign = other->save(named<Tag>("foreign"));
  commit(*library, [&] {
    stored<Tag>("before");
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(99u); }), "veldra::ObjectNotFound");
    EXPECT_EQ(thrown_by([&] { library->remove(foreign); }), "veldra::ObjectNotFound");
    stored<Tag>("after");
  });
  EXPECT_EQ(rows_in("Tag"), "2");
}

TEST_F(TransactionRemoval, one_that_was_removed_is_not_there_any_more) {
  const auto tag = stored<Tag>("one");
  const auto same = library->get<Tag>("one");
  roll_back(*library, [&] {
    library->remove(tag);
    EXPECT_EQ(thrown_by([&] { library->remove(tag); }), "veldra::ObjectNotFound");
    EXPECT_EQ(thrown_by([&] { library->remove(same); }), "veldra::ObjectNotFound");
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(tag->id()); }), "veldra::ObjectNotFound");
  });
  EXPECT_EQ(tag->library(), library);
  EXPECT_TRUE(library->remove(tag));
}

TEST_F(TransactionRemoval, a_set_that_fails_keeps_what_went_before) {
  const auto one = stored<Tag>("one");
  stored<Tag>("two");
  PlainDatabase(path).execute(
      "CREATE TRIGGER \"broken\" BEFORE DELETE ON \"Tag\" WHEN OLD.\"name\"='two' BEGIN " +
      std::string(kOverflow) + "; END");
  const std::string before = rows();
  Removed result;
  const auto remove = [&] {
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(Ids{1, 2}, result); }), "veldra::UnknownError");
    EXPECT_EQ(library->count<Tag>(), 1u);
  };
  roll_back(*library, remove);
  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true)));
  EXPECT_EQ(rows(), before);
  commit(*library, remove);
  EXPECT_EQ(rows_in("Tag"), "1");
  mend();
  expect_usable();
}

TEST_F(TransactionRemoval, a_failing_side_table_takes_one_removal_back) {
  library->save(full_material("Oak"));
  const auto oak = library->get<Material>("Oak");
  on_delete_from("Material_thicknesses", kOverflow);
  commit(*library, [&] {
    stored<Tag>("before");
    EXPECT_EQ(thrown_by([&] { library->remove(oak); }), "veldra::UnknownError");
    EXPECT_EQ(oak->library(), library);
    EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(oak));
  });
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(full_material("Oak")));
  EXPECT_TRUE(library->get<Tag>("before"));
  mend();
  expect_usable();
}

TEST_F(TransactionRemoval, a_reactor_that_refuses_or_throws_leaves_the_object_alone) {
  const auto refused = stored<Tag>("refused");
  const auto throwing = stored<Tag>("throwing");
  const auto late = stored<Tag>("late");
  reactor.on_may_remove = [&](Library&, const ObjectKey& key) {
    if (key == key_of(throwing)) throw std::runtime_error("cancelled");
    return key == key_of(refused) ? 1 : 0;
  };
  reactor.on_removed = [&](Library&, const ObjectKey& key) {
    if (key == key_of(late)) throw std::runtime_error("cancelled");
  };
  commit(*library, [&] {
    stored<Layer>("before");
    EXPECT_FALSE(library->remove(refused));
    EXPECT_EQ(thrown_by([&] { library->remove(throwing); }), "std::runtime_error");
    EXPECT_EQ(thrown_by([&] { library->remove(late); }), "std::runtime_error");
    EXPECT_EQ(library->count<Tag>(), 3u);
    for (const auto& tag : {refused, throwing, late}) {
      EXPECT_EQ(tag->library(), library);
    }
    stored<Layer>("after");
  });
  EXPECT_EQ(rows_in("Tag"), "3");
  EXPECT_EQ(rows_in("Layer"), "2");
  reactor.on_may_remove = nullptr;
  reactor.on_removed = nullptr;
  expect_usable();
}

TEST_F(TransactionRemoval, the_example_of_codes_that_change_hands) {
  const auto other = create("other.lib");
  const auto oak = named<Material>("Oak");
  oak->code("W-1");
  other->save(oak);
  const auto pine = named<Material>("Pine");
  pine->code("W-1");
  library->save(pine);
  EXPECT_EQ(thrown_by([&] { library->copyAll(other); }), "veldra::ObjectNotUnique");
  commit(*library, [&] {
    library->remove(pine);
    library->copyAll(other);
  });
  EXPECT_TRUE(library->get<Material>("Oak"));
  EXPECT_FALSE(library->get<Material>("Pine"));
}

// A removed object that is saved under its id is not in the file any more.
TEST_F(TransactionRemoval, what_was_removed_cannot_be_saved_within) {
  const auto oak = library->save(full_material("Oak"));
  roll_back(*library, [&] {
    library->remove(oak);
    oak->cost("changed");
    EXPECT_EQ(thrown_by([&] { library->save(oak); }), "veldra::ObjectNotFound");
  });
  EXPECT_EQ(oak->library(), library);
  EXPECT_TRUE(oak->isDirty());
  EXPECT_TRUE(oak->save());
  EXPECT_EQ(library->get<Material>("Oak")->cost(), veldra::String("changed"));
}

/// Its keys to layers are checked at once and not at the end.
class TransactionRemovalInOldFile : public RemovalTest {
 protected:
  TransactionRemovalInOldFile() {
    make_old_file(old_path, 150301);
    library = Library::open(old_path.c_str(), false);
  }

  const std::string old_path = folder / "old.lib";
};

TEST_F(TransactionRemovalInOldFile, a_layer_in_use_stays_and_the_rest_goes_on) {
  const auto oak = named<Material>("Oak");
  oak->cut_layer(named<Layer>("used"));
  library->save(oak);
  const unsigned id = oak->cut_layer()->id();
  commit(*library, [&] {
    library->save(named<Tag>("before"));
    EXPECT_EQ(thrown_by([&] { library->remove<Layer>(id); }), "veldra::ObjectInUse");
    Removed result;
    library->purge<Layer>(result);
    EXPECT_THAT(result, ElementsAre(Pair(key_of<Layer>(id), false)));
    library->save(named<Tag>("after"));
  });
  EXPECT_EQ(PlainDatabase(old_path).value("SELECT count(*) FROM Tag"), "2");
  EXPECT_EQ(PlainDatabase(old_path).value("SELECT count(*) FROM Layer"), "1");
  EXPECT_EQ(damage(old_path), "");
}

}  // namespace
}  // namespace veldra_tests
