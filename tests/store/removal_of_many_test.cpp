// SPDX-License-Identifier: GPL-2.0-or-later
//
// Within a transaction of the host, what is referred to is found out once for many objects. The
// same go and stay as where the database looks for each, which it does in a file with a trigger.

#include "store/removal_fixture.hpp"
#include "store/transaction_calls.hpp"
#include "support/catalogues.hpp"
#include "support/statement_log.hpp"

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace veldra_tests {
namespace {

using Ids = std::set<unsigned>;

class RemovalOfMany : public RemovalTest {
 protected:
  RemovalOfMany() { library->save(full_composition("Wall")); }

  /// Has the database look for each object itself. The trigger is for nothing that happens.
  void have_the_database_look() const {
    execute("CREATE TRIGGER other AFTER DELETE ON \"Meta\" BEGIN SELECT 1; END");
  }

  Ids save_materials(unsigned number, const std::string& name) {
    Ids ids;
    for (unsigned n = 0; n != number; ++n) {
      ids.insert(library->save(full_material(name + std::to_string(n)))->id());
    }
    return ids;
  }

  /// Whether the database looks for references: a type that is in use cannot go.
  void expect_enforcement() const {
    const auto type = library->get<MaterialType>("Wall core type");
    EXPECT_EQ(thrown_by([&] { library->remove(type); }), "veldra::ObjectInUse");
  }
};

TEST_F(RemovalOfMany, those_in_use_stay_and_are_not_told_as_removed) {
  const Ids spare = save_materials(5, "spare ");
  const Ids all = library->ids<Material>();
  Removed result;
  listen();
  commit(*library, [&] { library->remove<Material>(all, result); });
  for (const unsigned id : all) {
    EXPECT_EQ(result.at(key_of<Material>(id)), spare.count(id) != 0) << id;
  }
  EXPECT_THAT(reactor.calls_starting_with("may remove"), SizeIs(all.size()));
  EXPECT_THAT(reactor.calls_starting_with("removed"), SizeIs(spare.size()));
  EXPECT_THAT(library->ids<Material>(), SizeIs(all.size() - spare.size()));
  EXPECT_EQ(damage(path), "");
  expect_enforcement();
}

TEST_F(RemovalOfMany, that_removes_nothing_is_no_change) {
  for (int n = 0; n != 3; ++n) library->save(full_composition("Wall " + std::to_string(n)));
  const Ids all = library->ids<Material>();
  ASSERT_GE(all.size(), 4U);
  listen();
  commit(*library, [&] { library->remove<Material>(all); });
  EXPECT_EQ(reactor.changes(), "");
  EXPECT_EQ(library->ids<Material>(), all);
}

TEST_F(RemovalOfMany, one_that_is_not_there_ends_it_and_those_before_stay_removed) {
  Ids ids = save_materials(5, "spare ");
  const unsigned missing = *ids.rbegin() + 10;
  ids.insert(missing);
  ids.insert(library->save(named<Material>("never asked"))->id() + 20);
  Removed result;
  commit(*library, [&] {
    EXPECT_EQ(thrown_by([&] { library->remove<Material>(ids, result); }), "veldra::ObjectNotFound");
    expect_enforcement();
  });
  EXPECT_THAT(result, SizeIs(5));
  EXPECT_TRUE(library->get<Material>("never asked"));
  EXPECT_FALSE(library->get<Material>("spare 4"));
}

TEST_F(RemovalOfMany, one_that_is_only_referred_to_is_not_there) {
  execute("PRAGMA foreign_keys=OFF; DELETE FROM MaterialType WHERE name = 'Wall core type'");
  const std::string type =
      value("SELECT type FROM Material WHERE type NOT IN (SELECT id FROM MaterialType)");
  const Ids ids{static_cast<unsigned>(std::stoul(type)), 1, 2, 3, 5};
  Removed result;
  commit(*library, [&] {
    EXPECT_EQ(thrown_by([&] { library->remove<MaterialType>(ids, result); }),
              "veldra::ObjectNotFound");
  });
  EXPECT_THAT(result, SizeIs(4));
}

TEST_F(RemovalOfMany, refused_ones_stay) {
  const Ids ids = save_materials(6, "spare ");
  reactor.on_may_remove = [&](Library&, const ObjectKey& key) { return key.id == *ids.begin(); };
  Removed result;
  commit(*library, [&] { library->remove<Material>(ids, result); });
  EXPECT_TRUE(library->get<Material>(*ids.begin()));
  EXPECT_FALSE(result.at(key_of<Material>(*ids.begin())));
  EXPECT_TRUE(library->ids<Material>().count(*ids.rbegin()) == 0);
}

TEST_F(RemovalOfMany, what_the_reactor_throws_passes_and_the_database_looks_again) {
  const Ids ids = save_materials(6, "spare ");
  unsigned told = 0;
  const auto fail_at_the_third = [&](Library&, const ObjectKey&) {
    if (++told == 3) throw std::runtime_error("no more");
  };
  reactor.on_removed = fail_at_the_third;
  Removed result;
  commit(*library, [&] {
    EXPECT_EQ(thrown_by([&] { library->remove<Material>(ids, result); }), "std::runtime_error");
    expect_enforcement();
  });
  EXPECT_THAT(result, SizeIs(2));
  EXPECT_EQ(library->count<Material>(), 3U + 4U);
  EXPECT_EQ(damage(path), "");
}

TEST_F(RemovalOfMany, interrupted_the_database_looks_again) {
  const Ids ids = save_materials(6, "spare ");
  unsigned told = 0;
  reactor.on_removed = [&](Library& self, const ObjectKey&) {
    if (++told == 3) self.interrupt();
  };
  commit(*library, [&] {
    EXPECT_EQ(thrown_by([&] { library->remove<Material>(ids); }), "veldra::Interrupted");
    expect_enforcement();
  });
  EXPECT_EQ(library->count<Material>(), 3U + 3U);
}

TEST_F(RemovalOfMany, sees_what_the_transaction_has_done_before) {
  const Ids ids = save_materials(6, "spare ");
  commit(*library, [&] {
    const auto wall = named<Composition>("new");
    refer(*wall, library->get<Material>(*ids.begin()));
    library->save(wall);
    Removed result;
    library->remove<Material>(ids, result);
    EXPECT_FALSE(result.at(key_of<Material>(*ids.begin())));
    library->remove(wall);
    library->purge<Material>(result);
    EXPECT_FALSE(library->get<Material>(*ids.begin()));
  });
  EXPECT_EQ(damage(path), "");
}

TEST_F(RemovalOfMany, taken_back_leaves_the_file_as_it_was) {
  save_materials(6, "spare ");
  const std::string before = read_file(path);
  roll_back(*library, [&] { library->purge(); });
  EXPECT_TRUE(read_file(path) == before);
  expect_enforcement();
}

TEST_F(RemovalOfMany, leaves_the_schema_alone) {
  save_materials(6, "spare ");
  const std::string before = catalogue(path);
  const std::string version = value("PRAGMA schema_version");
  commit(*library, [&] { library->purge(); });
  EXPECT_EQ(catalogue(path), before);
  EXPECT_EQ(value("PRAGMA schema_version"), version);
  EXPECT_EQ(value("SELECT count(*) FROM Composition_layers"), "0");
}

TEST_F(RemovalOfMany, a_table_of_another_program_is_heeded) {
  const Ids ids = save_materials(6, "spare ");
  const std::string first = std::to_string(*ids.begin());
  execute(
      "CREATE TABLE notes (material INTEGER REFERENCES Material (id)); "
      "INSERT INTO notes VALUES (" +
      first + ")");
  Removed result;
  commit(*library, [&] { library->remove<Material>(ids, result); });
  EXPECT_FALSE(result.at(key_of<Material>(*ids.begin())));
  EXPECT_TRUE(library->get<Material>(*ids.begin()));
}

TEST_F(RemovalOfMany, what_another_program_has_taken_from_the_schema_is_heeded) {
  save_materials(6, "spare ");
  execute(
      "CREATE TABLE copy AS SELECT * FROM Composition_layers; DROP TABLE Composition_layers;"
      "ALTER TABLE copy RENAME TO Composition_layers");
  Removed result;
  commit(*library, [&] { library->purge<Material>(result); });
  EXPECT_EQ(library->count<Material>(), 0U) << "nothing forbids it any more";
}

/// What purging a random library gives, and what the reactor is asked and told.
struct Purged {
  Removed result;
  std::string rows;
  std::vector<std::string> asked;
};

class RemovalOfManyAtRandom : public RemovalOfMany {
 protected:
  template <class T>
  std::shared_ptr<T> any(std::mt19937& random) const {
    const auto objects = all_of<T>(*library);
    return objects[random() % objects.size()];
  }

  void fill(std::mt19937& random) {
    for (int n = 0; n != 8; ++n) {
      const std::string name = std::to_string(n);
      for (const char* letter : {"a", "b"}) library->save(named<Tag>(letter + name));
      library->save(named<veldra::Layer>(name));
      library->save(named<CustomProperty>(name));
    }
    for (int n = 0; n != 12; ++n) {
      const auto material = named<Material>("material " + std::to_string(n));
      refer(*material, any<MaterialType>(random));
      refer(*material, any<Tag>(random));
      if (random() % 2 == 0) refer(*material, any<veldra::Layer>(random));
      if (random() % 2 == 0) refer(*material, library->get<CustomProperty>("3"));
      library->save(material);
    }
    for (int n = 0; n != 4; ++n) {
      const auto composition = named<Composition>("composition " + std::to_string(n));
      refer(*composition, any<Material>(random));
      refer(*composition, any<Material>(random));
      library->save(composition);
    }
  }

  Purged purge(const std::set<ObjectType>& kinds) {
    Purged purged;
    listen();
    Transaction transaction(*library);
    library->purge(kinds, purged.result);
    transaction.commit();
    purged.rows = rows();
    purged.asked = reactor.calls_starting_with("may remove");
    return purged;
  }
};

TEST_F(RemovalOfManyAtRandom, the_same_go_as_where_the_database_looks) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto kinds = {ObjectType::Material, ObjectType::MaterialType, ObjectType::Layer,
                      ObjectType::CustomProperty, ObjectType::Tag};
  for (int round = 0; round != 5; ++round) {
    library.reset();
    std::remove(path.c_str());
    library = create();
    library->setReactor(&reactor);
    fill(random);
    std::set<ObjectType> chosen;
    for (const ObjectType kind : kinds) {
      if (random() % 3 != 0) chosen.insert(kind);
    }
    const std::string before = folder / "before.lib";
    std::remove(before.c_str());
    library->backup(before.c_str());
    const Purged once = purge(chosen);
    EXPECT_EQ(damage(path), "");

    library->restoreFrom(before.c_str());
    have_the_database_look();
    const Purged each = purge(chosen);
    EXPECT_EQ(once.result, each.result);
    EXPECT_EQ(once.rows, each.rows);
    EXPECT_EQ(once.asked, each.asked);
  }
}

/// Removes all objects of a kind within a transaction.
struct Together {
  template <class T>
  static Removed remove(Library& library) {
    Removed result;
    commit(library, [&] { library.remove<T>(library.ids<T>(), result); });
    return result;
  }
};

/// Removes them in a transaction each.
struct OneByOne {
  template <class T>
  static Removed remove(Library& library) {
    Removed result;
    for (const unsigned id : library.ids<T>()) library.remove<T>(Ids{id}, result);
    return result;
  }
};

/// Files of older versions have keys to layers that SQLite looks at after each statement, and not
/// at the end of the transaction.
class RemovalOfManyMigrated : public LibraryFixture, public WithParamInterface<int> {
 protected:
  RemovalOfManyMigrated() {
    make_old_file(path, GetParam());
    fill_old_file(path, GetParam());
    const auto library = open();
    library->save(full_composition("Wall"));
    for (const std::string n : {"1", "2", "3", "4"}) {
      library->save(full_material("spare " + n));
      library->save(named<veldra::Layer>("spare layer " + n));
      library->save(named<Tag>("spare tag " + n));
      library->save(named<MaterialType>("spare type " + n));
      library->save(named<CustomProperty>("spare property " + n));
    }
  }

  /// What removing everything gives for kind after kind: first what is referred to.
  template <class How>
  static std::vector<Removed> remove_everything(Library& library) {
    return {How::template remove<veldra::Layer>(library),
            How::template remove<Tag>(library),
            How::template remove<MaterialType>(library),
            How::template remove<CustomProperty>(library),
            How::template remove<Material>(library),
            How::template remove<veldra::Layer>(library),
            How::template remove<Tag>(library),
            How::template remove<MaterialType>(library),
            How::template remove<CustomProperty>(library),
            How::template remove<Composition>(library),
            How::template remove<Material>(library),
            How::template remove<veldra::Layer>(library)};
  }

  /// The same with the library in a file; writes down what the reactor is asked.
  template <class How>
  static std::vector<Removed> remove_everything_in(const std::string& file,
                                                   RecordingReactor& reactor) {
    const auto library = Library::open(file.c_str(), false);
    library->setReactor(&reactor);
    return remove_everything<How>(*library);
  }
};

TEST_P(RemovalOfManyMigrated, the_same_go_as_one_by_one) {
  const std::string other = folder / "other.lib";
  write_file(other, read_file(path));
  RecordingReactor together;
  RecordingReactor one_by_one;
  const auto result = remove_everything_in<Together>(path, together);
  EXPECT_EQ(result, remove_everything_in<OneByOne>(other, one_by_one));
  EXPECT_EQ(rows(), dump(other));
  EXPECT_EQ(together.calls_starting_with("may remove"),
            one_by_one.calls_starting_with("may remove"));
  EXPECT_EQ(damage(path), "");
  EXPECT_EQ(value("SELECT count(*) FROM Layer"), "0");
}

TEST_P(RemovalOfManyMigrated, layers_in_use_stay_and_the_database_looks_again) {
  StatementLog log;
  const auto library = open();
  const auto used = library->get<veldra::Layer>("Wall layer");
  Removed result;
  commit(*library, [&] {
    library->remove<veldra::Layer>(library->ids<veldra::Layer>(), result);
    EXPECT_EQ(thrown_by([&] { library->remove(used); }), "veldra::ObjectInUse");
  });
  EXPECT_THAT(log.take_all(), Contains("SAVEPOINT removal")) << "what is referred to is not known";
  EXPECT_FALSE(result.at(key_of<veldra::Layer>(used->id())));
  EXPECT_TRUE(library->get<Composition>("Wall")->entity_layer());
  EXPECT_FALSE(library->get<veldra::Layer>("spare layer 1"));
  EXPECT_EQ(damage(path), "");
}

INSTANTIATE_TEST_SUITE_P(Versions, RemovalOfManyMigrated, testing::Values(150201, 150301),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace veldra_tests
