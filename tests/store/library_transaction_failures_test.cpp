// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"
#include "store/transaction_calls.hpp"

#include <stdexcept>

namespace veldra_tests {
namespace {

class NewAsset : public StructuralAsset {
 public:
  NewAsset() : StructuralAsset() {}
};

/// A transaction in which an operation throws: what was done before stays, and it goes on.
class TransactionFailures : public CopyingTest {
 protected:
  TransactionFailures() {
    library->save(named<Material>("taken"));
    const auto coded = named<Material>("coded");
    coded->code("taken");
    library->save(coded);
  }

  /// Does something, fails, does something else; `failure` throws, and `object` is what it is
  /// about. Then all but the failure must be in the file.
  template <class T>
  void expect_that_it_goes_on(const std::shared_ptr<T>& object, const char* thrown,
                              const std::function<void()>& failure) {
    commit(*library, [&] {
      const auto before = full_composition("before");
      library->save(before);
      const Contents contents = contents_of(*library);
      const std::string state = state_of(object) + state_of(before);
      EXPECT_EQ(thrown_by(failure), thrown);
      EXPECT_EQ(state_of(object) + state_of(before), state);
      EXPECT_EQ(contents_of(*library), contents);
      EXPECT_EQ(thrown_by(failure), thrown);
      EXPECT_EQ(contents_of(*library), contents);
      library->save(full_composition("after"));
    });
    for (const char* name : {"before", "after"})
      EXPECT_EQ(values_of(library->get<Composition>(name)), values_of(full_composition(name)));
    EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Composition"), "2");
    EXPECT_EQ(damage(path), "");
  }

  /// The same, and then all is rolled back.
  template <class T>
  void expect_that_all_is_taken_back(const std::shared_ptr<T>& object,
                                     const std::function<void()>& failure) {
    const std::string file = rows();
    const std::string state = state_of(object);
    roll_back(*library, [&] {
      library->save(full_composition("before"));
      EXPECT_NE(thrown_by(failure).type, "");
      library->save(full_composition("after"));
    });
    EXPECT_EQ(rows(), file);
    EXPECT_EQ(state_of(object), state);
    EXPECT_EQ(damage(path), "");
  }

  template <class T>
  void expect_that_a_failed_save_is_alone(const std::shared_ptr<T>& object, const char* thrown) {
    const auto save = [&] { library->save(object); };
    expect_that_all_is_taken_back(object, save);
    expect_that_it_goes_on(object, thrown, save);
  }
};

TEST_F(TransactionFailures, a_name_that_is_taken) {
  const auto oak = full_material("Oak");
  oak->name("taken");
  expect_that_a_failed_save_is_alone(oak, "veldra::ObjectNotUnique");
}

TEST_F(TransactionFailures, a_code_that_is_taken) {
  const auto wall = full_composition("Wall");
  material_of(wall, 3)->code("taken");
  expect_that_a_failed_save_is_alone(wall, "veldra::ObjectNotUnique");
}

TEST_F(TransactionFailures, a_text_that_cannot_be_stored) {
  const unsigned short units[] = {'b', 0xD800, 0};
  const auto wall = full_composition("Wall");
  wall->comments(String(units));
  expect_that_a_failed_save_is_alone(wall, "utf8::invalid_utf16");
}

TEST_F(TransactionFailures, a_stored_object_that_is_gone) {
  const auto oak = library->save(full_material("Oak"));
  library->remove<Material>(oak->id());
  oak->cost("changed");
  expect_that_a_failed_save_is_alone(oak, "veldra::ObjectNotFound");
}

TEST_F(TransactionFailures, a_foreign_object_whose_code_is_taken) {
  const auto wall = put(full_composition("Wall"));
  PlainDatabase(source_path()).execute("UPDATE Material SET code='taken' WHERE name='Wall inside'");
  expect_that_a_failed_save_is_alone(source->get<Composition>(wall->id()),
                                     "veldra::ObjectNotUnique");
}

// Otherwise only the commit would find it.
TEST_F(TransactionFailures, an_asset_that_is_not_in_the_file_is_found_at_once) {
  const auto wall = full_composition("Wall");
  material_of(wall, 3)->structuralAsset(std::make_shared<NewAsset>());
  const auto save = [&] { library->save(wall); };
  roll_back(*library, [&] { EXPECT_EQ(thrown_by(save).extended, 787); });
  expect_that_a_failed_save_is_alone(wall, "odb::sqlite::database_exception");
}

TEST_F(TransactionFailures, an_asset_of_a_changed_material_that_is_not_in_the_file) {
  const auto oak = library->save(full_material("Oak"));
  oak->structuralAsset(std::make_shared<NewAsset>());
  expect_that_a_failed_save_is_alone(oak, "odb::sqlite::database_exception");
}

TEST_F(TransactionFailures, a_copy_that_fails_leaves_nothing_of_itself) {
  put(full_composition("Wall"));
  PlainDatabase(source_path()).execute("UPDATE Material SET code='taken' WHERE name='Wall inside'");
  const auto wall = source->get<Composition>("Wall");
  expect_that_it_goes_on(wall, "veldra::ObjectNotUnique", [&] { library->copyAll(source); });
}

// More than are fetched at a time.
TEST_F(TransactionFailures, a_copy_that_fails_late_leaves_nothing_of_itself) {
  commit(*source, [&] {
    for (int i = 0; i != 300; ++i) put(named<Tag>("tag " + std::to_string(i)));
    put(named<Material>("taken"));
  });
  const auto oak = source->get<Material>("taken");
  expect_that_it_goes_on(oak, "veldra::ObjectNotUnique", [&] { library->copyAll(source); });
  EXPECT_EQ(library->count<Tag>(), 16u);
}

TEST_F(TransactionFailures, a_save_in_which_a_reactor_throws_at_any_call) {
  library->save(named<Material>("Wall core"));
  const auto wall = full_composition("Wall");
  int remaining = 0;
  reactor.rename_with(" 2");
  reactor.throw_at_the_end_of(remaining);
  int failures = 0;
  commit(*library, [&] {
    remaining = -1;
    library->save(named<Tag>("before"));
    const Contents contents = contents_of(*library);
    const std::string state = state_of(wall);
    for (; failures != 100; ++failures) {
      remaining = failures;
      const Thrown thrown = thrown_by([&] { library->save(wall); });
      if (thrown == "") break;
      ASSERT_EQ(thrown, "std::runtime_error");
      ASSERT_EQ(contents_of(*library), contents) << "call " << failures;
      ASSERT_EQ(state_of(wall), state) << "call " << failures;
    }
  });
  EXPECT_EQ(failures, 28);
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(wall));
  EXPECT_TRUE(library->get<Tag>("before"));
  EXPECT_EQ(damage(path), "");
}

TEST_F(TransactionFailures, a_setter_that_fails) {
  PlainDatabase(path).execute(
      "CREATE TRIGGER refuse BEFORE UPDATE ON Meta BEGIN SELECT RAISE(ABORT, 'refused'); END");
  expect_that_it_goes_on(named<Tag>("none"), "veldra::ObjectInUse",
                         [&] { library->locale("de-CH"); });
}

// Reading is no part of it that could fail for all.
TEST_F(TransactionFailures, a_list_that_cannot_be_read) {
  PlainDatabase(path).execute("INSERT INTO Tag (name) VALUES (CAST(x'ff' AS TEXT))");
  commit(*library, [&] {
    library->save(named<Layer>("before"));
    std::vector<std::shared_ptr<Tag>> tags;
    EXPECT_EQ(thrown_by([&] { library->get(tags); }), "utf8::invalid_utf8");
    EXPECT_THAT(tags, IsEmpty());
    library->save(named<Layer>("after"));
  });
  EXPECT_EQ(library->count<Layer>(), 2u);
}

// An object that a former operation has saved.

TEST_F(TransactionFailures, a_failed_save_leaves_an_object_as_the_former_one_left_it) {
  const auto wall = full_composition("Wall");
  const std::string state = state_of(wall);
  roll_back(*library, [&] {
    library->save(wall);
    const unsigned id = wall->id();
    wall->addTag(Tag::create("new"));
    material_of(wall, 3)->code("taken");
    EXPECT_EQ(thrown_by([&] { library->save(wall); }), "veldra::ObjectNotUnique");
    EXPECT_EQ(wall->id(), id);
    EXPECT_EQ(wall->library(), library);
    EXPECT_TRUE(wall->isDirty());
    EXPECT_EQ(wall->tags().back()->id(), 0u);
    material_of(wall, 3)->code("free");
    library->save(wall);
    EXPECT_NE(wall->tags().back()->id(), 0u);
    wall->tags(toModify).pop_back();
    material_of(wall, 3)->code("Wall inside code");
  });
  EXPECT_EQ(state_of(wall), state);
}

// The file has a reference that leads nowhere; nothing here makes or mends it.
class TransactionInAFileWithABrokenReference : public TransactionFailures {
 protected:
  TransactionInAFileWithABrokenReference() {
    PlainDatabase(path).execute(
        "PRAGMA foreign_keys=OFF; UPDATE Material SET type=99 WHERE name='coded'");
  }
};

TEST_F(TransactionInAFileWithABrokenReference, operations_go_on) {
  commit(*library, [&] {
    const auto wall = library->save(full_composition("Wall"));
    EXPECT_TRUE(library->remove(wall));
    library->purge<Material>();
    library->copyAll(source);
    library->locale("de-CH");
  });
  EXPECT_EQ(library->locale(), String("de-CH"));
  EXPECT_EQ(library->count<Tag>(), 8u);
}

TEST_F(TransactionInAFileWithABrokenReference, what_refers_to_nothing_can_be_removed) {
  const std::string id = PlainDatabase(path).value("SELECT id FROM Material WHERE name='coded'");
  commit(*library, [&] {
    EXPECT_TRUE(library->remove<Material>(static_cast<unsigned>(std::stoul(id))));
    library->save(named<Tag>("after"));
  });
  EXPECT_EQ(damage(path), "");
}

TEST_F(TransactionInAFileWithABrokenReference, what_is_in_use_is_still_found) {
  const auto oak = library->save(full_material("Oak"));
  commit(*library, [&] {
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(oak->tags()[0]->id()); }),
              "veldra::ObjectInUse");
    library->save(named<Tag>("after"));
  });
  EXPECT_TRUE(library->get<Tag>("after"));
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(oak));
}

}  // namespace
}  // namespace veldra_tests
