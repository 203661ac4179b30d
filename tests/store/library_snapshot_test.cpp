// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/host_transaction.hpp"
#include "support/library_test.hpp"
#include "support/processes.hpp"

namespace veldra_tests {
namespace {

using Snapshot = Library::Snapshot;

constexpr const char* in_transaction = "odb::already_in_transaction";

/// A library whose log lets others commit while it is read.
class LibrarySnapshot : public LibraryTest {
 protected:
  LibrarySnapshot() {
    PlainDatabase(path).execute("PRAGMA journal_mode = WAL");
    library->save(Tag::create("first"));
  }

  void write_beside(const std::string& name) const {
    PlainDatabase(path).execute("INSERT INTO Tag (name) VALUES ('" + name + "')");
  }

  std::size_t tags_in_a_list() const {
    std::vector<std::shared_ptr<Tag>> tags;
    library->get(tags);
    return tags.size();
  }
};

TEST_F(LibrarySnapshot, all_reads_see_the_state_at_its_beginning) {
  {
    const Snapshot snapshot(*library);
    write_beside("second");
    EXPECT_EQ(library->count<Tag>(), 1U);
    EXPECT_EQ(tags_in_a_list(), 1U);
    EXPECT_FALSE(library->get<Tag>("second"));
    EXPECT_FALSE(library->get<Tag>(2));
    std::vector<std::shared_ptr<Tag>> found;
    library->search(found, "%");
    EXPECT_THAT(found, SizeIs(1));
    std::vector<veldra::String> findings;
    library->check(findings);
    EXPECT_THAT(findings, IsEmpty());
    EXPECT_EQ(library->count<Tag>(), 1U);
  }
  EXPECT_EQ(library->count<Tag>(), 2U);
}

TEST_F(LibrarySnapshot, without_it_each_read_sees_the_newest_state) {
  EXPECT_EQ(library->count<Tag>(), 1U);
  write_beside("second");
  EXPECT_EQ(tags_in_a_list(), 2U);
}

TEST_F(LibrarySnapshot, a_copy_from_it_is_of_one_state) {
  const auto other = create("other.lib");
  const Snapshot snapshot(*library);
  write_beside("second");
  other->copyAll(library);
  EXPECT_EQ(other->count<Tag>(), 1U);
}

TEST_F(LibrarySnapshot, writes_and_a_second_one_are_refused_and_leave_it_alone) {
  const auto first = library->get<Tag>("first");
  const auto changed = veldra::Layer::create("changed");
  const std::string before = rows();
  {
    const Snapshot snapshot(*library);
    EXPECT_EQ(thrown_by([&] { library->save(changed); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(1); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->remove(first); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(std::set<unsigned>{1}); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->purge(); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->copyAll(create("other.lib")); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->locale("de"); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { Library::Transaction transaction(*library); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { const Snapshot second(*library); }), in_transaction);
    write_beside("second");
    EXPECT_EQ(library->count<Tag>(), 1U);
  }
  EXPECT_THAT(reactor.calls(), testing::Not(testing::Contains(testing::StartsWith("saved Layer"))));
  EXPECT_NE(rows(), before);
  EXPECT_TRUE(library->save(changed));
}

TEST_F(LibrarySnapshot, after_a_refused_second_one_the_first_goes_on) {
  const Snapshot snapshot(*library);
  EXPECT_EQ(thrown_by([&] { const Snapshot second(*library); }), in_transaction);
  write_beside("second");
  EXPECT_EQ(library->count<Tag>(), 1U);
}

TEST_F(LibrarySnapshot, within_a_transaction_it_is_a_part_of_that) {
  Library::Transaction transaction(*library);
  library->save(Tag::create("second"));
  {
    const Snapshot snapshot(*library);
    const Snapshot another(*library);
    EXPECT_EQ(library->count<Tag>(), 2U);
    library->save(Tag::create("third"));
    EXPECT_EQ(library->count<Tag>(), 3U);
  }
  library->save(Tag::create("fourth"));
  transaction.commit();
  EXPECT_EQ(library->count<Tag>(), 4U);
}

TEST_F(LibrarySnapshot, that_outlives_its_transaction_is_nothing_any_more) {
  std::unique_ptr<Snapshot> snapshot;
  {
    Library::Transaction transaction(*library);
    snapshot.reset(new Snapshot(*library));
    transaction.commit();
  }
  write_beside("second");
  EXPECT_EQ(library->count<Tag>(), 2U);
  library->save(Tag::create("third"));
  const Snapshot next(*library);
  snapshot.reset();
  write_beside("fourth");
  EXPECT_EQ(library->count<Tag>(), 3U) << "the end of a former one has ended the next";
}

TEST_F(LibrarySnapshot, within_a_call_of_the_reactor_it_sees_what_the_operation_has_done) {
  unsigned long long seen = 0;
  reactor.on_saved = [&](Library& saving, const veldra::ObjectKey&) {
    const Snapshot snapshot(saving);
    seen = saving.count<Tag>();
  };
  library->save(Tag::create("second"));
  EXPECT_EQ(seen, 2U);
}

TEST_F(LibrarySnapshot, keeps_the_library_open) {
  const Snapshot snapshot(*library);
  const std::weak_ptr<Library> watched = library;
  library.reset();
  EXPECT_TRUE(watched.lock());
}

TEST_F(LibrarySnapshot, leaves_the_transaction_of_the_host_the_current_one) {
  const HostTransaction host;
  {
    const Snapshot snapshot(*library);
    EXPECT_TRUE(host.is_current());
    library->count<Tag>();
    EXPECT_TRUE(host.is_current());
  }
  EXPECT_TRUE(host.is_current());
}

TEST_F(LibrarySnapshot, works_on_a_library_that_can_only_be_read_and_on_one_in_memory) {
  library = Library::open(path.c_str(), true);
  {
    const Snapshot snapshot(*library);
    write_beside("second");
    EXPECT_EQ(library->count<Tag>(), 1U);
  }
  const auto memory = Library::create(":memory:", veldra::Unit::Inches, "");
  const Snapshot snapshot(*memory);
  EXPECT_EQ(memory->count<Tag>(), 0U);
}

/// Without a log, as libraries are made.
class SnapshotOfAUsualLibrary : public LibraryTest {};

TEST_F(SnapshotOfAUsualLibrary, holds_others_up_until_it_ends) {
  std::unique_ptr<Snapshot> snapshot(new Snapshot(*library));
  const auto other = Library::open(path.c_str(), false);
  EXPECT_EQ(thrown_by([&] { other->save(Tag::create("facade")); }), "odb::timeout");
  snapshot.reset();
  EXPECT_TRUE(other->save(Tag::create("facade")));
}

TEST_F(SnapshotOfAUsualLibrary, leaves_no_lock) {
  { const Snapshot snapshot(*library); }
  PlainDatabase(path).execute("BEGIN EXCLUSIVE; COMMIT");
}

TEST_F(SnapshotOfAUsualLibrary, cannot_begin_while_the_file_is_held) {
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 60000);
  EXPECT_EQ(thrown_by([&] { const Snapshot snapshot(*library); }), "odb::timeout");
}

}  // namespace
}  // namespace veldra_tests
