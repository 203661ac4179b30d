// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/transaction_calls.hpp"
#include "support/library_test.hpp"

#include <set>
#include <stdexcept>
#include <vector>

namespace veldra_tests {
namespace {

/// What a reactor is told of a transaction, and what it may do then.
class TransactionReactor : public LibraryTest {
 protected:
  static Thrown begin_another(Library& from) {
    return thrown_by([&] { Transaction transaction(from); });
  }

  /// Lets each call within an operation try to begin a transaction.
  void begin_at_each_call() {
    reactor.on_conflict = [this](Library& from, ObjectType, String& name) -> int {
      refusals.push_back(begin_another(from).type);
      name = "Oak 2";
      return Library::Reactor::Rename;
    };
    reactor.on_saved = [this](Library& from, const ObjectKey&) {
      refusals.push_back(begin_another(from).type);
    };
    reactor.on_may_remove = [this](Library& from, const ObjectKey&) {
      refusals.push_back(begin_another(from).type);
      return 0;
    };
    reactor.on_removed = reactor.on_saved;
  }

  /// A removal and a save that meets a conflict: one call of each kind.
  void call_each() {
    library->remove<MaterialType>(1);
    library->save(named<Material>("Oak"));
  }

  void expect_usable() {
    reactor = RecordingReactor();
    EXPECT_EQ(thrown_by([&] { library->save(named<Tag>("written afterwards")); }), "");
    EXPECT_EQ(thrown_by([&] { PlainDatabase(path).execute("BEGIN IMMEDIATE"); }), "");
    EXPECT_THAT(reactor.calls_starting_with("type"), ElementsAre("type Tag"));
    EXPECT_EQ(damage(path), "");
  }

  std::vector<std::string> refusals;
};

// The calls within an operation.

TEST_F(TransactionReactor, single_objects_are_told_at_once) {
  roll_back(*library, [&] {
    library->save(named<Tag>("facade"));
    EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 1"));
    library->remove<Tag>(1);
    EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 1", "may remove Tag 1", "removed Tag 1"));
  });
}

TEST_F(TransactionReactor, conflicts_are_decided_and_removals_refused_within) {
  reactor.decision = Library::Reactor::UseExisting;
  reactor.refusal = 1;
  commit(*library, [&] {
    const auto oak = library->save(named<Material>("Oak"));
    EXPECT_EQ(library->save(named<Material>("Oak"))->id(), oak->id());
    EXPECT_FALSE(library->remove(oak));
    EXPECT_EQ(oak->library(), library);
  });
  EXPECT_EQ(library->count<Material>(), 1u);
}

TEST_F(TransactionReactor, none_can_begin_within_an_operation) {
  library->save(named<Material>("Oak"));
  begin_at_each_call();
  call_each();
  EXPECT_THAT(refusals, SizeIs(4));
  EXPECT_THAT(refusals, testing::Each("odb::already_in_transaction"));
  EXPECT_TRUE(library->get<Material>("Oak 2"));
}

TEST_F(TransactionReactor, none_can_begin_within_an_operation_of_a_transaction) {
  library->save(named<Material>("Oak"));
  begin_at_each_call();
  commit(*library, [&] { call_each(); });
  EXPECT_THAT(refusals, SizeIs(4));
  EXPECT_THAT(refusals, testing::Each("odb::already_in_transaction"));
  EXPECT_TRUE(library->get<Material>("Oak 2"));
}

TEST_F(TransactionReactor, no_write_can_start_within_an_operation_of_a_transaction) {
  const auto written = [&](Library& from) {
    refusals.push_back(thrown_by([&] { from.save(named<Layer>("Section")); }).type);
    refusals.push_back(thrown_by([&] { from.remove<MaterialType>(1); }).type);
    refusals.push_back(thrown_by([&] { from.purge<MaterialType>(); }).type);
    refusals.push_back(thrown_by([&] { from.locale("de"); }).type);
    refusals.push_back(thrown_by([&] { from.region("DE"); }).type);
  };
  reactor.on_saved = [&](Library& from, const ObjectKey&) { written(from); };
  reactor.on_removed = reactor.on_saved;
  commit(*library, [&] {
    library->save(named<Tag>("facade"));
    library->remove<Tag>(1);
  });
  EXPECT_THAT(refusals, SizeIs(10));
  EXPECT_EQ(std::set<std::string>(refusals.begin(), refusals.end()),
            std::set<std::string>{"odb::already_in_transaction"});
  EXPECT_EQ(library->count<Layer>(), 0u);
  EXPECT_EQ(library->count<MaterialType>(), 13u);
}

TEST_F(TransactionReactor, it_cannot_be_committed_within_an_operation) {
  const auto oak = full_material("Oak");
  Transaction transaction(*library);
  reactor.on_saved = [&](Library&, const ObjectKey&) {
    refusals.push_back(thrown_by([&] { transaction.commit(); }).type);
  };
  library->save(oak);
  reactor.on_may_remove = [&](Library&, const ObjectKey&) {
    refusals.push_back(thrown_by([&] { transaction.commit(); }).type);
    return 0;
  };
  library->remove<MaterialType>(1);
  EXPECT_THAT(refusals, SizeIs(8));
  EXPECT_THAT(refusals, testing::Each("odb::already_in_transaction"));
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Tag"), "0");
  transaction.commit();
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(oak));
  expect_usable();
}

TEST_F(TransactionReactor, one_of_another_library_can_begin_within_an_operation) {
  const auto journal = create("journal.lib");
  reactor.on_saved = [&](Library& from, const ObjectKey& key) {
    commit(*journal, [&] { journal->save(from.get<Tag>(key.id)); });
    roll_back(*journal, [&] { journal->purge(); });
    EXPECT_EQ(from.count<Tag>(), journal->count<Tag>());
  };
  roll_back(*library, [&] {
    library->save(named<Tag>("one"));
    library->save(named<Tag>("two"));
  });
  EXPECT_EQ(journal->count<Tag>(), 2u);
  EXPECT_EQ(library->count<Tag>(), 0u);
}

// The calls at the end.

TEST_F(TransactionReactor, kinds_are_told_once_at_the_commit_in_ascending_order) {
  Transaction transaction(*library);
  library->save(named<Layer>("Section"));
  library->save(named<Material>("Oak"));
  library->save(named<Tag>("one"));
  library->save(named<Layer>("Plan"));
  library->remove<Tag>(1);
  library->remove<MaterialType>(1);
  EXPECT_THAT(reactor.calls_starting_with("type"), IsEmpty());
  EXPECT_THAT(reactor.calls_starting_with("library"), IsEmpty());
  reactor.forget();
  transaction.commit();
  EXPECT_THAT(reactor.calls(), ElementsAre("type Tag", "type MaterialType", "type Material",
                                           "type Layer", "library"));
}

TEST_F(TransactionReactor, kinds_are_told_when_it_is_rolled_back) {
  roll_back(*library, [&] {
    library->save(named<Layer>("Section"));
    library->save(named<Tag>("one"));
    library->purge<Layer>();
    reactor.forget();
  });
  EXPECT_THAT(reactor.calls(), ElementsAre("type Tag", "type Layer", "library"));
}

TEST_F(TransactionReactor, an_end_is_told_once) {
  {
    Transaction transaction(*library);
    library->save(named<Tag>("one"));
    transaction.commit();
    reactor.forget();
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), "odb::transaction_already_finalized");
  }
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(TransactionReactor, the_next_operation_tells_of_itself_alone) {
  commit(*library, [&] { library->save(named<Tag>("one")); });
  roll_back(*library, [&] { library->save(named<Material>("Oak")); });
  reactor.forget();
  library->save(named<Layer>("Section"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Layer 1", "type Layer", "library"));
}

TEST_F(TransactionReactor, nothing_is_told_of_one_that_changes_nothing) {
  library->save(named<Tag>("one"));
  reactor.forget();
  commit(*library, [&] {
    library->save(named<Tag>("one"));
    library->count<Tag>();
    library->locale("de-CH");
  });
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(TransactionReactor, what_a_failed_operation_collected_is_told_at_the_end) {
  library->save(named<Material>("Oak"));
  commit(*library, [&] {
    const auto oak = full_material("Pine");
    oak->name("Oak");
    EXPECT_EQ(thrown_by([&] { library->save(oak); }), "veldra::ObjectNotUnique");
    EXPECT_EQ(reactor.calls_starting_with("type").size(), 1u);
    reactor.forget();
  });
  EXPECT_THAT(reactor.calls(), ElementsAre("type Tag", "type MaterialType", "type CustomProperty",
                                           "type Layer", "library"));
}

TEST_F(TransactionReactor, at_the_end_all_is_in_the_file) {
  std::string counted;
  reactor.on_type_changed = [&](Library& from, ObjectType) {
    counted += PlainDatabase(path).value("SELECT count(*) FROM Tag");
    counted += " " + std::to_string(from.count<Tag>()) + ";";
  };
  commit(*library, [&] { library->save(named<Tag>("one")); });
  roll_back(*library, [&] { library->save(named<Tag>("two")); });
  EXPECT_EQ(counted, "1 1;1 1;");
}

TEST_F(TransactionReactor, at_the_end_of_a_rollback_objects_are_as_they_were) {
  const auto tag = named<Tag>("one");
  std::string seen;
  roll_back(*library, [&] {
    library->save(tag);
    reactor.on_type_changed = [&](Library&, ObjectType) { seen = state_of(tag); };
  });
  EXPECT_EQ(seen, state_of(tag));
  EXPECT_EQ(tag->id(), 0u);
}

TEST_F(TransactionReactor, at_the_end_of_a_commit_everything_is_allowed) {
  bool ran = false;
  reactor.on_type_changed = [&](Library& from, ObjectType) {
    if (ran) return;
    ran = true;
    from.save(named<Layer>("Section"));
    commit(from, [&] { from.save(named<Layer>("Plan")); });
    roll_back(from, [&] { from.purge(); });
  };
  commit(*library, [&] { library->save(named<Tag>("one")); });
  EXPECT_TRUE(ran);
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Layer"), "2");
  EXPECT_EQ(library->count<Tag>(), 1u);
  expect_usable();
}

TEST_F(TransactionReactor, at_the_end_of_a_rollback_everything_is_allowed) {
  bool ran = false;
  const auto one = named<Tag>("one");
  reactor.on_library_changed = [&](Library& from) {
    if (ran) return;
    ran = true;
    commit(from, [&] { from.save(one); });
    roll_back(from, [&] { from.purge(); });
  };
  roll_back(*library, [&] { library->save(one); });
  EXPECT_TRUE(ran);
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Tag"), "1");
  EXPECT_EQ(one->library(), library);
  EXPECT_FALSE(one->isDirty());
  expect_usable();
}

TEST_F(TransactionReactor, one_that_throws_at_the_end_of_a_commit_leaves_all_committed) {
  const auto tag = named<Tag>("one");
  {
    Transaction transaction(*library);
    library->save(tag);
    library->locale("de-CH");
    reactor.on_type_changed = [](Library&, ObjectType) { throw std::runtime_error("full"); };
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), "std::runtime_error");
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), "odb::transaction_already_finalized");
  }
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM Tag"), "1");
  EXPECT_EQ(tag->id(), 1u);
  EXPECT_EQ(tag->library(), library);
  EXPECT_FALSE(tag->isDirty());
  EXPECT_EQ(library->locale(), String("de-CH"));
  expect_usable();
}

TEST_F(TransactionReactor, one_that_throws_at_the_end_of_a_rollback_does_not_end_the_program) {
  const auto tag = named<Tag>("one");
  reactor.on_type_changed = [](Library&, ObjectType) { throw std::runtime_error("full"); };
  reactor.on_library_changed = [](Library&) { throw std::runtime_error("full"); };
  EXPECT_EQ(thrown_by([&] { roll_back(*library, [&] { library->save(tag); }); }), "");
  EXPECT_EQ(tag->id(), 0u);
  expect_usable();
}

TEST_F(TransactionReactor, what_throws_within_passes_one_that_throws_at_the_end) {
  reactor.on_type_changed = [](Library&, ObjectType) { throw std::logic_error("full"); };
  const auto cancelled = [&] {
    roll_back(*library, [&] {
      library->save(named<Tag>("one"));
      throw std::runtime_error("cancelled");
    });
  };
  EXPECT_EQ(thrown_by(cancelled), "std::runtime_error");
  expect_usable();
}

TEST_F(TransactionReactor, the_library_is_there_until_the_last_of_the_calls_at_the_end) {
  for (const bool committed : {true, false}) {
    reactor.forget();
    const std::weak_ptr<Library> watched = library;
    auto transaction = std::make_unique<Transaction>(*library);
    library->save(named<Layer>(committed ? "kept" : "lost"));
    library.reset();
    reactor.on_library_changed = [&](Library& from) {
      EXPECT_FALSE(watched.expired());
      from.count<Layer>();
    };
    if (committed) transaction->commit();
    transaction.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_THAT(reactor.calls_starting_with("library"), SizeIs(1));
    reactor.on_library_changed = nullptr;
    reopen();
    EXPECT_EQ(library->count<Layer>(), 1u);
  }
}

TEST_F(TransactionReactor, the_one_that_is_installed_at_the_end_is_told) {
  RecordingReactor late;
  {
    Transaction transaction(*library);
    library->save(named<Tag>("one"));
    library->setReactor(&late);
    transaction.commit();
  }
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 1"));
  EXPECT_THAT(late.calls(), ElementsAre("type Tag", "library"));
  library->setReactor(&reactor);
}

}  // namespace
}  // namespace veldra_tests
