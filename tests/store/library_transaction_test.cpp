// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"
#include "store/transaction_calls.hpp"
#include "support/host_transaction.hpp"
#include "support/processes.hpp"

#include <sys/stat.h>

#include <stdexcept>
#include <thread>

namespace veldra_tests {
namespace {

/// What a host does between the beginning and the end of a transaction.
class LibraryTransaction : public CopyingTest {
 protected:
  bool in_the_file(const char* tag) const {
    return PlainDatabase(path).value("SELECT count(*) FROM Tag WHERE name=" + quoted(tag)) == "1";
  }

  /// Whether another connection could begin to write at once.
  bool can_be_written_by_others() const {
    try {
      PlainDatabase(path).execute("BEGIN IMMEDIATE");
      return true;
    } catch (const std::runtime_error&) {
      return false;
    }
  }

  void expect_usable() {
    EXPECT_TRUE(can_be_written_by_others());
    EXPECT_EQ(thrown_by([&] { library->save(named<Tag>("written afterwards")); }), "");
    EXPECT_TRUE(in_the_file("written afterwards"));
    EXPECT_EQ(damage(path), "");
  }

  /// A transaction in which the tag was saved, and which alone holds the library.
  std::unique_ptr<Transaction> save_and_let_go(const std::shared_ptr<Tag>& tag) {
    library->setReactor(nullptr);
    auto transaction = std::make_unique<Transaction>(*library);
    library->save(tag);
    library.reset();
    return transaction;
  }

  /// A bit of everything that writes.
  void do_much() {
    library->save(full_composition("Floor"));
    library->remove(library->get<Composition>("Wall"));
    library->purge<Material>();
    library->copyAll(source);
    library->locale("de-CH");
    library->region("Ostschweiz");
  }

  void prepare_much() {
    library->save(full_composition("Wall"));
    put(full_composition("Roof"));
    library->locale("fr-CH");
    library->region("Romandie");
  }
};

// Committed.

TEST_F(LibraryTransaction, committed_all_is_there) {
  prepare_much();
  commit(*library, [&] { do_much(); });
  PlainDatabase database(path);
  EXPECT_THAT(database.query("SELECT name FROM Composition ORDER BY name"),
              ElementsAre(ElementsAre("'Floor'"), ElementsAre("'Roof'")));
  EXPECT_EQ(database.value("SELECT count(*) FROM Material"), "6");
  EXPECT_EQ(database.value("SELECT count(*) FROM Material WHERE name LIKE 'Wall %'"), "0");
  EXPECT_EQ(database.value("SELECT locale FROM Meta"), "'de-CH'");
  EXPECT_EQ(database.value("SELECT region FROM Meta"), "'Ostschweiz'");
  EXPECT_EQ(library->locale(), String("de-CH"));
  EXPECT_EQ(damage(path), "");
}

TEST_F(LibraryTransaction, committed_the_same_is_there_as_without_it) {
  prepare_much();
  const std::string copy = folder / "copy.lib";
  write_file(copy, read_file(path));
  commit(*library, [&] { do_much(); });
  const std::string within = rows();
  library = Library::open(copy.c_str(), false);
  do_much();
  EXPECT_EQ(dump(copy), within);
}

TEST_F(LibraryTransaction, committed_it_is_there_for_a_handle_that_is_opened_later) {
  commit(*library, [&] { library->save(full_composition("Wall")); });
  reopen();
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(full_composition("Wall")));
}

TEST_F(LibraryTransaction, nothing_within_is_in_the_file_before_the_commit) {
  prepare_much();
  const std::string before = rows();
  Transaction transaction(*library);
  do_much();
  EXPECT_EQ(rows(), before);
  transaction.commit();
  EXPECT_NE(rows(), before);
}

TEST_F(LibraryTransaction, one_in_which_nothing_is_done_writes_nothing) {
  const FileState before(path);
  commit(*library, [] {});
  roll_back(*library, [] {});
  EXPECT_TRUE(before == FileState(path));
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(LibraryTransaction, one_commit_is_all_there_is) {
  Transaction transaction(*library);
  library->save(named<Tag>("facade"));
  transaction.commit();
  EXPECT_EQ(thrown_by([&] { transaction.commit(); }), "odb::transaction_already_finalized");
  EXPECT_TRUE(in_the_file("facade"));
  expect_usable();
}

TEST_F(LibraryTransaction, destroying_it_after_the_commit_takes_nothing_back) {
  const auto tag = named<Tag>("facade");
  {
    Transaction transaction(*library);
    library->save(tag);
    transaction.commit();
  }
  EXPECT_TRUE(in_the_file("facade"));
  EXPECT_EQ(tag->library(), library);
  EXPECT_FALSE(tag->isDirty());
  expect_usable();
}

TEST_F(LibraryTransaction, after_the_commit_operations_stand_on_their_own) {
  const auto late = named<Tag>("late");
  {
    Transaction transaction(*library);
    transaction.commit();
    library->save(late);
    EXPECT_TRUE(in_the_file("late"));
  }
  EXPECT_TRUE(in_the_file("late"));
  EXPECT_NE(late->id(), 0u);
}

// Rolled back.

TEST_F(LibraryTransaction, destroyed_without_a_commit_nothing_has_happened) {
  prepare_much();
  const std::string before = rows();
  const Contents contents = contents_of(*library);
  roll_back(*library, [&] {
    do_much();
    EXPECT_NE(contents_of(*library), contents);
  });
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(contents_of(*library), contents);
  expect_usable();
}

TEST_F(LibraryTransaction, nothing_has_happened_when_something_throws_before_the_commit) {
  prepare_much();
  const std::string before = rows();
  const auto cancelled = [&] {
    commit(*library, [&] {
      do_much();
      throw std::runtime_error("cancelled");
    });
  };
  EXPECT_EQ(thrown_by(cancelled), "std::runtime_error");
  EXPECT_EQ(rows(), before);
  expect_usable();
}

TEST_F(LibraryTransaction, an_operation_that_throws_takes_all_back_when_nobody_catches_it) {
  library->save(named<Material>("Oak"));
  const std::string before = rows();
  const auto refused = [&] {
    commit(*library, [&] {
      library->save(named<Tag>("facade"));
      library->save(named<Material>("Oak"));
    });
  };
  EXPECT_EQ(thrown_by(refused), "veldra::ObjectNotUnique");
  EXPECT_EQ(rows(), before);
  expect_usable();
}

TEST_F(LibraryTransaction, locale_and_region_are_taken_back) {
  library->locale("fr-CH");
  library->region("Romandie");
  roll_back(*library, [&] {
    library->locale("de-CH");
    library->locale("it-CH");
    library->region("Ticino");
    EXPECT_EQ(library->locale(), String("it-CH"));
    EXPECT_EQ(library->region(), String("Ticino"));
  });
  EXPECT_EQ(library->locale(), String("fr-CH"));
  EXPECT_EQ(library->region(), String("Romandie"));
  EXPECT_EQ(PlainDatabase(path).value("SELECT locale FROM Meta"), "'fr-CH'");
  EXPECT_EQ(PlainDatabase(path).value("SELECT region FROM Meta"), "'Romandie'");
}

TEST_F(LibraryTransaction, only_the_one_that_was_set_is_written_after_a_rollback) {
  library->region("Romandie");
  roll_back(*library, [&] { library->region("Ticino"); });
  library->locale("fr-CH");
  reopen();
  EXPECT_EQ(library->region(), String("Romandie"));
  EXPECT_EQ(library->locale(), String("fr-CH"));
}

TEST_F(LibraryTransaction, a_setter_that_fails_keeps_its_value_no_longer_than_the_transaction) {
  library->locale("fr-CH");
  PlainDatabase(path).execute(
      "CREATE TRIGGER refuse BEFORE UPDATE ON Meta BEGIN SELECT RAISE(ABORT, 'refused'); END");
  roll_back(*library, [&] {
    EXPECT_EQ(thrown_by([&] { library->locale("de-CH"); }), "veldra::ObjectInUse");
    EXPECT_EQ(library->locale(), String("de-CH"));
  });
  EXPECT_EQ(library->locale(), String("fr-CH"));
}

// Within.

TEST_F(LibraryTransaction, reading_sees_what_was_done) {
  commit(*library, [&] {
    library->save(full_material("Oak"));
    const auto oak = library->get<Material>("Oak");
    ASSERT_TRUE(oak);
    EXPECT_EQ(values_of(oak), values_of(full_material("Oak")));
    EXPECT_FALSE(oak->isDirty());
    EXPECT_EQ(oak->library(), library);
    EXPECT_TRUE(library->get<Material>(oak->id()));
    std::vector<std::shared_ptr<Material>> found;
    MaterialCriteria criteria;
    criteria.tags = {"Oak tag 2"};
    library->get(found);
    library->get(found, {oak->id()});
    library->get(found, criteria);
    library->search(found, "o%");
    library->search(found, "o%", criteria);
    EXPECT_THAT(found, SizeIs(5));
    EXPECT_EQ(library->count<Material>(), 1u);
    EXPECT_EQ(library->count<Material>(criteria), 1u);
  });
}

TEST_F(LibraryTransaction, reading_sees_what_was_changed_and_removed) {
  library->save(full_material("Oak"));
  commit(*library, [&] {
    const auto oak = library->get<Material>("Oak");
    oak->cost("99");
    library->save(oak);
    EXPECT_EQ(library->get<Material>("Oak")->cost(), String("99"));
    EXPECT_EQ(all_of<Material>(*library)[0]->cost(), String("99"));
    library->remove(oak);
    EXPECT_FALSE(library->get<Material>("Oak"));
    EXPECT_EQ(library->count<Material>(), 0u);
  });
}

TEST_F(LibraryTransaction, the_check_sees_what_was_done) {
  const auto oak = library->save(named<Material>("Oak"));
  PlainDatabase(path).execute("PRAGMA foreign_keys=OFF; UPDATE Material SET type=99");
  const auto findings = [&] {
    std::vector<String> found;
    library->check(found);
    return found;
  };
  EXPECT_THAT(findings(), SizeIs(1));
  roll_back(*library, [&] {
    EXPECT_THAT(findings(), SizeIs(1));
    library->remove<Material>(oak->id());
    EXPECT_THAT(findings(), IsEmpty());
  });
  EXPECT_THAT(findings(), SizeIs(1));
}

// A library may go from thread to thread.
TEST_F(LibraryTransaction, it_may_go_on_in_another_thread) {
  Transaction transaction(*library);
  library->save(named<Tag>("first"));
  std::thread([&] {
    library->save(named<Tag>("second"));
    EXPECT_EQ(library->count<Tag>(), 2u);
    transaction.commit();
  }).join();
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Tag"), "2");
  expect_usable();
}

TEST_F(LibraryTransaction, it_may_be_rolled_back_in_another_thread) {
  auto transaction = std::make_unique<Transaction>(*library);
  library->save(named<Tag>("first"));
  std::thread([&] { transaction.reset(); }).join();
  EXPECT_EQ(library->count<Tag>(), 0u);
  expect_usable();
}

// Beginning.

TEST_F(LibraryTransaction, a_second_one_on_the_same_handle_is_refused) {
  commit(*library, [&] {
    library->save(named<Tag>("before"));
    for (int i = 0; i != 2; ++i)
      EXPECT_EQ(thrown_by([&] { Transaction second(*library); }), "odb::already_in_transaction");
    library->save(named<Tag>("after"));
    EXPECT_FALSE(in_the_file("before"));
  });
  EXPECT_TRUE(in_the_file("before"));
  EXPECT_TRUE(in_the_file("after"));
}

TEST_F(LibraryTransaction, a_second_one_that_is_refused_leaves_the_first_to_be_rolled_back) {
  roll_back(*library, [&] {
    library->save(named<Tag>("before"));
    EXPECT_EQ(thrown_by([&] { Transaction second(*library); }), "odb::already_in_transaction");
  });
  EXPECT_FALSE(in_the_file("before"));
  expect_usable();
}

TEST_F(LibraryTransaction, another_one_can_begin_after_the_end) {
  Transaction first(*library);
  library->save(named<Tag>("first"));
  first.commit();
  roll_back(*library, [&] { library->save(named<Tag>("second")); });
  commit(*library, [&] { library->save(named<Tag>("third")); });
  EXPECT_TRUE(in_the_file("first"));
  EXPECT_FALSE(in_the_file("second"));
  EXPECT_TRUE(in_the_file("third"));
}

TEST_F(LibraryTransaction, a_library_for_reading_only_has_none) {
  library.reset();
  library = Library::open(path.c_str(), true);
  EXPECT_EQ(thrown_by([&] { Transaction transaction(*library); }), "veldra::LibraryReadOnly");
  EXPECT_EQ(library->count<MaterialType>(), 13u);
  EXPECT_TRUE(can_be_written_by_others());
}

TEST_F(LibraryTransaction, a_file_that_can_only_be_read_has_none) {
  library.reset();
  ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  EXPECT_EQ(run_without_privileges([&] {
              const auto protected_library = Library::open(path.c_str(), false);
              return thrown_by([&] { Transaction transaction(*protected_library); }).type;
            }),
            "veldra::LibraryReadOnly");
}

// Others.

TEST_F(LibraryTransaction, another_handle_sees_the_file_as_it_was) {
  prepare_much();
  const auto beside = Library::open(path.c_str(), false);
  const Contents before = contents_of(*beside);
  Transaction transaction(*library);
  do_much();
  EXPECT_EQ(contents_of(*beside), before);
  EXPECT_EQ(Library::open(path.c_str(), true)->locale(), String("fr-CH"));
  transaction.commit();
  EXPECT_EQ(contents_of(*beside), contents_of(*library));
}

TEST_F(LibraryTransaction, another_handle_waits_when_it_wants_to_write) {
  const auto beside = Library::open(path.c_str(), false);
  commit(*library, [&] {
    EXPECT_FALSE(can_be_written_by_others());
    EXPECT_EQ(thrown_by([&] { Transaction transaction(*beside); }), "odb::timeout");
    library->save(named<Tag>("facade"));
  });
  roll_back(*beside, [&] {
    EXPECT_EQ(beside->count<Tag>(), 1u);
    beside->save(named<Tag>("inside"));
    EXPECT_FALSE(in_the_file("inside"));
  });
  expect_usable();
}

TEST_F(LibraryTransaction, it_waits_for_a_file_that_is_held) {
  const LockingProcess other(path, "BEGIN IMMEDIATE; INSERT INTO Tag (name) VALUES ('x')", 300);
  commit(*library, [&] { EXPECT_EQ(library->count<Tag>(), 1u); });
}

TEST_F(LibraryTransaction, a_commit_that_waits_for_readers_in_vain_takes_all_back) {
  const auto wall = full_composition("Wall");
  const std::string state = state_of(wall);
  const std::string before = rows();
  library->locale("fr-CH");
  {
    PlainDatabase reader(path);
    Transaction transaction(*library);
    library->save(wall);
    library->locale("de-CH");
    reader.execute("BEGIN");
    reader.query("SELECT * FROM Tag");
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), "odb::timeout");
    EXPECT_EQ(state_of(wall), state);
    EXPECT_EQ(library->locale(), String("fr-CH"));
    EXPECT_FALSE(library->get<Composition>("Wall"));
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), "odb::transaction_already_finalized");
  }
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Composition"), "0");
  EXPECT_THAT(reactor.calls_starting_with("library"), SizeIs(1));
  commit(*library, [&] { library->save(wall); });
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(wall));
  expect_usable();
}

TEST_F(LibraryTransaction, it_keeps_the_library_open) {
  const std::weak_ptr<Library> watched = library;
  const auto tag = named<Tag>("facade");
  auto transaction = save_and_let_go(tag);
  ASSERT_FALSE(watched.expired());
  EXPECT_EQ(tag->library(), watched.lock());
  watched.lock()->save(named<Tag>("inside"));
  transaction->commit();
  transaction.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(in_the_file("facade"));
  EXPECT_TRUE(in_the_file("inside"));
}

TEST_F(LibraryTransaction, the_last_to_hold_a_library_may_roll_it_back) {
  const std::weak_ptr<Library> watched = library;
  const auto tag = named<Tag>("facade");
  auto transaction = save_and_let_go(tag);
  transaction.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_THAT(open_files(folder.path()), Not(testing::Contains("walls.lib")));
  EXPECT_FALSE(in_the_file("facade"));
  EXPECT_EQ(tag->id(), 0u);
  EXPECT_TRUE(tag->isDirty());
}

TEST_F(LibraryTransaction, a_library_in_memory_has_them_as_well) {
  const auto memory = Library::create(":memory:", Unit::Millimetres, "");
  commit(*memory, [&] { memory->save(full_composition("Wall")); });
  const Contents contents = contents_of(*memory);
  roll_back(*memory, [&] {
    memory->purge();
    memory->save(full_composition("Roof"));
    EXPECT_NE(contents_of(*memory), contents);
  });
  EXPECT_EQ(contents_of(*memory), contents);
}

// Several libraries.

TEST_F(LibraryTransaction, two_libraries_have_theirs_side_by_side) {
  Transaction here(*library);
  library->save(named<Tag>("here 1"));
  Transaction there(*source);
  source->save(named<Tag>("there 1"));
  library->save(named<Tag>("here 2"));
  source->save(named<Tag>("there 2"));
  source->save(named<Tag>("there 3"));
  EXPECT_EQ(library->count<Tag>(), 2u);
  EXPECT_EQ(source->count<Tag>(), 3u);
  here.commit();
  EXPECT_EQ(dump(source_path()).find("there"), std::string::npos);
  there.commit();
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Tag"), "2");
  EXPECT_EQ(PlainDatabase(source_path()).value("SELECT count(*) FROM Tag"), "3");
}

TEST_F(LibraryTransaction, one_of_two_can_be_rolled_back) {
  auto here = std::make_unique<Transaction>(*library);
  auto there = std::make_unique<Transaction>(*source);
  library->save(named<Tag>("here"));
  source->save(named<Tag>("there"));
  here.reset();
  source->save(named<Tag>("there 2"));
  there->commit();
  EXPECT_EQ(library->count<Tag>(), 0u);
  EXPECT_EQ(source->count<Tag>(), 2u);
}

TEST_F(LibraryTransaction, two_end_in_either_order) {
  for (const bool first_in_first_out : {true, false}) {
    const std::string before = rows() + dump(source_path());
    auto here = std::make_unique<Transaction>(*library);
    auto there = std::make_unique<Transaction>(*source);
    const auto wall = library->save(full_composition("Wall"));
    source->save(full_composition("Roof"));
    (first_in_first_out ? here : there).reset();
    (first_in_first_out ? there : here).reset();
    EXPECT_EQ(rows() + dump(source_path()), before);
    EXPECT_FALSE(wall->library());
    expect_usable();
    library->remove(library->get<Tag>("written afterwards"));
    PlainDatabase(path).execute("DELETE FROM sqlite_sequence");
    PlainDatabase(source_path()).execute("DELETE FROM sqlite_sequence");
  }
}

TEST_F(LibraryTransaction, objects_go_from_one_to_the_other_while_both_have_one) {
  const auto wall = full_composition("Wall");
  Transaction here(*library);
  {
    Transaction there(*source);
    source->save(wall);
    library->save(wall);
    EXPECT_EQ(source->save(library->get<Composition>("Wall")->tags()[0])->library(), source);
  }
  EXPECT_FALSE(wall->library());
  here.commit();
  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(full_composition("Wall")));
  EXPECT_EQ(source->count<Composition>(), 0u);
  EXPECT_EQ(damage(path), "");
}

TEST_F(LibraryTransaction, a_copy_from_a_library_that_has_one_brings_what_was_done) {
  put(full_composition("Wall"));
  roll_back(*source, [&] {
    source->remove(source->get<Composition>("Wall"));
    source->save(full_composition("Roof"));
    library->copyAll(source);
  });
  EXPECT_FALSE(library->get<Composition>("Wall"));
  EXPECT_EQ(values_of(library->get<Composition>("Roof")), values_of(full_composition("Roof")));
  EXPECT_FALSE(source->get<Composition>("Roof"));
  expect_usable();
}

TEST_F(LibraryTransaction, the_source_of_a_copy_can_be_written_while_the_destination_has_one) {
  Transaction transaction(*library);
  veldra::IdMapping mapping = fresh_mapping();
  put(full_composition("Wall"));
  library->copyAll(source, mapping);
  put(full_composition("Roof"));
  library->copyAll(source, mapping);
  transaction.commit();
  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

// The runtime works on the connection of the transaction that is current.
TEST_F(LibraryTransaction, a_transaction_of_the_host_stays_the_current_one) {
  HostTransaction host;
  {
    Transaction transaction(*library);
    EXPECT_TRUE(host.is_current());
    library->save(full_composition("Wall"));
    EXPECT_EQ(library->count<Composition>(), 1u);
    EXPECT_TRUE(host.is_current());
    transaction.commit();
    EXPECT_TRUE(host.is_current());
  }
  EXPECT_TRUE(host.is_current());
  roll_back(*library, [&] { library->purge(); });
  EXPECT_TRUE(host.is_current());
  EXPECT_EQ(thrown_by([&] { host.commit(); }), "");
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Composition"), "1");
}

TEST_F(LibraryTransaction, a_transaction_of_the_host_can_begin_and_end_within) {
  Transaction transaction(*library);
  library->save(named<Tag>("before"));
  {
    HostTransaction host;
    library->save(named<Tag>("inside"));
    EXPECT_TRUE(host.is_current());
    host.commit();
  }
  {
    HostTransaction host;
    EXPECT_EQ(library->count<Tag>(), 2u);
  }
  EXPECT_FALSE(in_the_file("before"));
  transaction.commit();
  EXPECT_TRUE(in_the_file("before"));
  EXPECT_TRUE(in_the_file("inside"));
}

TEST_F(LibraryTransaction, a_transaction_of_the_host_that_begins_within_may_outlast_it) {
  auto transaction = std::make_unique<Transaction>(*library);
  HostTransaction host;
  library->save(named<Tag>("inside"));
  transaction.reset();
  EXPECT_TRUE(host.is_current());
  EXPECT_EQ(thrown_by([&] { host.commit(); }), "");
  EXPECT_FALSE(in_the_file("inside"));
}

}  // namespace
}  // namespace veldra_tests
