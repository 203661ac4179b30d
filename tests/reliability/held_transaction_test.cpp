// SPDX-License-Identifier: GPL-2.0-or-later
//
// A transaction that a host holds while its disk is full.

#include "reliability/fault_vfs.hpp"
#include "reliability/sweep.hpp"
#include "support/builders.hpp"
#include "support/description.hpp"
#include "support/library_fixture.hpp"
#include "support/recording_reactor.hpp"
#include "support/thrown.hpp"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;
using Transaction = Library::Transaction;

const char* const finalized = "odb::transaction_already_finalized";

// A library with a wall in it, on a disk that is full when a test says so.
class HeldTransaction : public LibraryFixture {
 protected:
  HeldTransaction() {
    library->save(full_composition("Wall"));
    library->locale("fr-CH");
    source->save(full_composition("Roof"));
  }

  // Disks are full from so many writes on.
  static void fill_disk(unsigned after) {
    FaultVfs::arm({FaultVfs::Trouble::DiskFull, after, FaultVfs::Repetition::Persistent});
  }

  void TearDown() override { FaultVfs::disarm(); }

  // What a disk that is full ends is ended: nothing of it can be used, and nothing is written.
  void expect_ended(Transaction& transaction) {
    const std::string before = rows();
    EXPECT_EQ(thrown_by([&] { library->count<Tag>(); }), finalized);
    EXPECT_EQ(thrown_by([&] { library->get<Composition>("Wall"); }), finalized);
    EXPECT_EQ(thrown_by([&] { library->save(named<Tag>("late")); }), finalized);
    EXPECT_EQ(thrown_by([&] { library->save(std::shared_ptr<Tag>()); }), finalized);
    EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), finalized);
    EXPECT_EQ(thrown_by([&] { library->remove<Composition>(1); }), "veldra::UnknownError");
    EXPECT_EQ(thrown_by([&] { library->purge<Tag>(); }), "veldra::UnknownError");
    EXPECT_EQ(thrown_by([&] { library->region("late"); }), "veldra::UnknownError");
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), finalized);
    EXPECT_EQ(rows(), before);
  }

  // Whether the library still reads what was done in the transaction.
  bool goes_on() const {
    return thrown_by([&] { library->count<Tag>(); }) == "";
  }

  void expect_usable() {
    EXPECT_EQ(thrown_by([&] { library->save(named<Tag>("written afterwards")); }), "");
    EXPECT_EQ(thrown_by([&] { library->remove(library->get<Tag>("written afterwards")); }), "");
    Transaction transaction(*library);
    library->locale("it-CH");
    transaction.commit();
    library->locale("fr-CH");
    EXPECT_EQ(damage(path), "");
  }

  std::shared_ptr<Library> library =
      Library::create(FaultVfs::name_of(path).c_str(), Unit::Millimetres, "");
  const std::shared_ptr<Library> source = create("source.lib");
};

TEST_F(HeldTransaction, a_full_disk_within_an_operation_leaves_all_as_it_was) {
  const auto wall = library->get<Composition>("Wall");
  const auto floor = full_composition("Floor");
  const auto removed = library->get<Composition>("Wall");
  // The last one is larger than what SQLite keeps in memory before it writes to the file.
  const std::pair<Kind, std::function<void()>> operations[] = {
      {Kind::Writing, [&] { library->save(floor); }},
      {Kind::Removing, [&] { library->remove(removed); }},
      {Kind::Removing, [&] { library->purge(); }},
      {Kind::Writing, [&] { library->copyAll(source); }},
      {Kind::Setting, [&] { library->locale("de-CH"); }},
      {Kind::Writing, [&] {
         floor->description(String(std::string(1000000, 'x').c_str()));
         for (int i = 0; i != 3; ++i) {
           library->save(named<Layer>(std::string(1000000, 'a' + static_cast<char>(i))));
         }
         library->save(floor);
       }}};
  unsigned ended = 0, failed = 0;
  for (const auto& [kind, operation] : operations) {
    for (unsigned writes = 1;; writes += 1 + writes / 8) {
      SCOPED_TRACE(writes);
      floor->description("Floor description");
      const std::string file = rows();
      const std::string state = state_of(floor) + state_of(removed);
      fill_disk(writes);
      {
        Transaction transaction(*library);
        const Thrown thrown = thrown_by(operation);
        FaultVfs::disarm();
        const bool throws = !thrown.type.empty();
        if (throws) {
          ++failed;
          EXPECT_THAT(documented_exceptions(kind), testing::Contains(thrown.type)) << thrown;
        }
        if (throws && !goes_on()) {
          ++ended;
          expect_ended(transaction);
        }
        floor->description("Floor description");
      }
      ASSERT_EQ(rows(), file);
      EXPECT_EQ(state_of(floor) + state_of(removed), state);
      EXPECT_EQ(library->locale(), String("fr-CH"));
      expect_usable();
      if (!FaultVfs::fired() || HasFailure()) break;
    }
  }
  EXPECT_GT(failed, 0u);
  EXPECT_GT(ended, 0u);
}

TEST_F(HeldTransaction, a_full_disk_at_the_commit_takes_all_back) {
  const auto floor = full_composition("Floor");
  const std::string state = state_of(floor);
  unsigned failures = 0;
  for (unsigned writes = 1;; ++writes) {
    SCOPED_TRACE(writes);
    const std::string file = rows();
    Transaction transaction(*library);
    library->save(floor);
    library->locale("de-CH");
    fill_disk(writes);
    const Thrown thrown = thrown_by([&] { transaction.commit(); });
    FaultVfs::disarm();
    if (thrown == "") break;
    ++failures;
    EXPECT_EQ(thrown, "odb::sqlite::database_exception");
    EXPECT_EQ(rows(), file);
    EXPECT_EQ(state_of(floor), state);
    EXPECT_EQ(library->locale(), String("fr-CH"));
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), finalized);
    expect_usable();
    if (HasFailure()) return;
  }
  EXPECT_GT(failures, 0u);
  EXPECT_EQ(values_of(library->get<Composition>("Floor")), values_of(floor));
  EXPECT_EQ(damage(path), "");
}

// A reactor that reads meets an error of the disk, whereupon SQLite ends the transaction, and the
// reactor says nothing of it. What the operation did from then on would be in the file at once.
class ReactorThatReadsInVain : public HeldTransaction {
 protected:
  ReactorThatReadsInVain() {
    Transaction transaction(*library);
    for (int i = 0; i != 300; ++i) {
      library->save(named<Tag>(std::string(1000, 'x') + std::to_string(i)));
    }
    transaction.commit();
    library.reset();
    library = Library::open(FaultVfs::name_of(path).c_str(), false);  // has read nothing yet
    library->setReactor(&reactor);
    reactor.on_saved = [this](Library&, const ObjectKey&) { read_in_vain(); };
    reactor.on_removed = reactor.on_saved;
    reactor.on_may_remove = [this](Library&, const ObjectKey&) {
      read_in_vain();
      return 0;
    };
    reactor.on_conflict = [this](Library&, ObjectType, String& name) -> int {
      read_in_vain();
      name = "Roof 2";
      return Library::Reactor::Rename;
    };
  }

  void read_in_vain() {
    if (failed_) return;
    FaultVfs::arm({FaultVfs::Trouble::Error, 1, FaultVfs::Repetition::Persistent});
    failed_ = !thrown_by([&] { library->count<Tag>(); }).type.empty();
    FaultVfs::disarm();
  }

  // Throws `thrown` and writes nothing, on its own and within a transaction.
  void expect_to_fail(const char* thrown, const std::function<void()>& operation) {
    const std::string before = rows();
    for (const bool held : {false, true}) {
      library.reset();
      library = Library::open(FaultVfs::name_of(path).c_str(), false);
      library->setReactor(&reactor);
      failed_ = false;
      {
        const auto transaction = held ? std::make_unique<Transaction>(*library) : nullptr;
        EXPECT_EQ(thrown_by(operation), thrown);
        EXPECT_TRUE(failed_);
        if (held) {
          expect_ended(*transaction);
        }
      }
      EXPECT_TRUE(rows() == before);
    }
    expect_usable();
  }

  RecordingReactor reactor;

 private:
  bool failed_ = false;
};

TEST_F(ReactorThatReadsInVain, ends_a_save) {
  const auto floor = full_composition("Floor");
  const std::string state = state_of(floor);
  expect_to_fail(finalized, [&] { library->save(floor); });
  EXPECT_EQ(state_of(floor), state);
}

TEST_F(ReactorThatReadsInVain, ends_a_save_that_asks_it) {
  const auto wall = Composition::create("Wall");
  const std::string state = state_of(wall);
  expect_to_fail(finalized, [&] { library->save(wall); });
  EXPECT_EQ(state_of(wall), state);
}

TEST_F(ReactorThatReadsInVain, ends_a_copy) {
  expect_to_fail(finalized, [&] { library->copyAll(source); });
}

TEST_F(ReactorThatReadsInVain, ends_a_removal) {
  expect_to_fail("veldra::UnknownError", [&] { library->remove<Composition>(1); });
}

TEST_F(ReactorThatReadsInVain, ends_a_removal_of_which_it_is_told) {
  reactor.on_may_remove = nullptr;
  expect_to_fail("veldra::UnknownError", [&] { library->remove<Composition>(1); });
}

// The same between two operations.
TEST_F(ReactorThatReadsInVain, is_no_different_from_a_host_that_does) {
  const std::string before = rows();
  const auto late = named<Tag>("later");
  {
    Transaction transaction(*library);
    library->locale("de-CH");
    read_in_vain();
    expect_ended(transaction);
    EXPECT_TRUE(rows() == before);
    EXPECT_EQ(library->locale(), String("fr-CH"));
    library->save(late);
  }
  EXPECT_TRUE(library->get<Tag>("later"));
  expect_usable();
}

}  // namespace

}  // namespace veldra_tests
