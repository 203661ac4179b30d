// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/effort.hpp"
#include "support/library_test.hpp"
#include "support/processes.hpp"

#include <signal.h>
#include <sys/time.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace veldra_tests {
namespace {

constexpr const char* interrupted = "veldra::Interrupted";

using Milliseconds = std::chrono::milliseconds;

/// Interrupts a library again and again from another thread, as somebody does who wants it to stop,
/// after a while.
class Impatience {
 public:
  explicit Impatience(Library& library, Milliseconds patience = Milliseconds(0))
      : thread_([this, &library, patience] {
          std::this_thread::sleep_for(patience);
          while (!over_) {
            library.interrupt();
            std::this_thread::sleep_for(Milliseconds(1));
          }
        }) {}
  Impatience(const Impatience&) = delete;
  Impatience& operator=(const Impatience&) = delete;
  ~Impatience() {
    over_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> over_{false};
  std::thread thread_;
};

class LibraryInterruption : public LibraryTest {
 protected:
  /// Has the operation interrupt itself when the reactor is told of the n-th object.
  void interrupt_at(unsigned n) {
    reactor.on_saved = [this, n](Library&, const ObjectKey&) { count_up_to(n); };
    reactor.on_removed = [this, n](Library&, const ObjectKey&) { count_up_to(n); };
  }

  void put_many_tags(Library& into, unsigned number) const {
    PlainDatabase(into.filename().utf8())
        .execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT " +
                 std::to_string(number) + ") INSERT INTO Tag (name) SELECT 'tag ' || i FROM n");
  }

  /// Has SQLite compute for a long time when it checks the file: for each of many rows anew.
  static void have_checks_take_long(const std::string& file) {
    PlainDatabase(file).execute(
        "PRAGMA ignore_check_constraints = ON;"
        "CREATE TABLE slow (size CHECK (replace(hex(zeroblob(size)), '0', 'ab') <> ''));"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 1000)"
        " INSERT INTO slow SELECT 1000000 FROM n");
  }

  /// Expects that the call is interrupted in far less than it would take.
  void expect_interrupted(const std::function<void()>& call,
                          Milliseconds patience = Milliseconds(0)) {
    const Impatience impatience(*library, patience);
    const Effort effort;
    EXPECT_EQ(thrown_by(call), interrupted);
    EXPECT_TRUE(effort.is_below(1));
  }

  unsigned told = 0;
  const std::string other_file = folder / "other.lib";

 private:
  void count_up_to(unsigned n) {
    if (++told == n) library->interrupt();
  }
};

TEST_F(LibraryInterruption, without_an_operation_it_does_nothing) {
  library->interrupt();
  EXPECT_TRUE(library->save(Tag::create("facade")));
  library->interrupt();
  EXPECT_EQ(library->count<Tag>(), 1U);
}

TEST_F(LibraryInterruption, a_save_is_taken_back) {
  interrupt_at(1);
  const std::string before = rows();
  const auto wall = full_composition("wall");
  EXPECT_EQ(thrown_by([&] { library->save(wall); }), interrupted);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(wall->id(), 0U);
  EXPECT_TRUE(wall->isDirty());
  EXPECT_TRUE(library->save(wall));
}

TEST_F(LibraryInterruption, a_copy_is_taken_back) {
  const auto source = create("source.lib");
  source->save(full_composition("wall"));
  interrupt_at(3);
  const std::string before = rows();
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), interrupted);
  EXPECT_EQ(rows(), before);
  library->copyAll(source);
  EXPECT_TRUE(library->get<veldra::Composition>("wall"));
}

TEST_F(LibraryInterruption, a_copy_can_be_ended_through_its_source) {
  const auto source = create("source.lib");
  put_many_tags(*source, 1000);
  const std::string before = rows();
  reactor.on_saved = [&](Library&, const ObjectKey&) { source->interrupt(); };
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), interrupted);
  EXPECT_EQ(rows(), before);
}

TEST_F(LibraryInterruption, of_removed_objects_those_before_stay_removed) {
  put_many_tags(*library, 10);
  interrupt_at(3);
  std::map<ObjectKey, bool> result;
  EXPECT_EQ(thrown_by([&] { library->purge<Tag>(result); }), interrupted);
  EXPECT_EQ(library->count<Tag>(), 7U);
  EXPECT_THAT(result, SizeIs(3));
  EXPECT_THAT(reactor.calls(), Contains("type Tag"));
  library->purge<Tag>();
  EXPECT_EQ(library->count<Tag>(), 0U);
}

TEST_F(LibraryInterruption, within_a_transaction_the_other_operations_stay) {
  put_many_tags(*library, 10);
  Library::Transaction transaction(*library);
  library->save(veldra::Layer::create("kept"));
  const auto source = create("source.lib");
  source->save(full_composition("wall"));
  interrupt_at(3);
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), interrupted);
  EXPECT_EQ(library->count<Material>(), 0U);
  library->save(veldra::Layer::create("kept too"));
  transaction.commit();
  EXPECT_EQ(library->count<veldra::Layer>(), 2U);
  EXPECT_EQ(damage(path), "");
}

TEST_F(LibraryInterruption, a_list_is_ended_from_another_thread) {
  put_many_tags(*library, 200000);
  std::vector<std::shared_ptr<Tag>> tags;
  expect_interrupted([&] { library->get(tags); });
  EXPECT_THAT(tags, IsEmpty());
  EXPECT_EQ(library->count<Tag>(), 200000U);
}

// SQLite is not interrupted then.
TEST_F(LibraryInterruption, a_list_that_is_read_within_a_save_is_ended) {
  for (unsigned n = 0; n != 100; ++n) {
    library->save(named<Material>(("slow " + std::to_string(n)).c_str()));
  }
  PlainDatabase(path).execute(
      "DROP TABLE Material_thicknesses;"
      "CREATE VIEW Material_thicknesses (object_id, value) AS"
      " SELECT id, length(replace(hex(zeroblob(8000000 + id)), '0', 'ab')) FROM Material");
  std::vector<std::shared_ptr<Material>> materials;
  reactor.on_saved = [&](Library&, const ObjectKey&) { library->get(materials); };
  expect_interrupted([&] { library->save(Tag::create("facade")); }, Milliseconds(200));
}

TEST_F(LibraryInterruption, a_statement_that_takes_long_is_ended) {
  put_many_tags(*library, 200000);
  const std::string pattern = "%" + std::string(20, '%') + "a%b%c%d%e%f%";
  std::vector<std::shared_ptr<Tag>> tags;
  expect_interrupted([&] { library->search(tags, pattern.c_str()); });
}

TEST_F(LibraryInterruption, an_examination_is_ended) {
  put_many_tags(*library, 200000);
  std::vector<veldra::String> findings{"an earlier one"};
  expect_interrupted([&] { library->check(findings); });
  EXPECT_THAT(findings, SizeIs(1));
}

TEST_F(LibraryInterruption, waiting_for_others_is_ended) {
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 60000);
  const auto tag = Tag::create("facade");
  expect_interrupted([&] { library->count<Tag>(); });
  expect_interrupted([&] { library->save(tag); });
  expect_interrupted([&] { library->remove<Tag>(1); });
  expect_interrupted([&] { library->locale("de"); });
  expect_interrupted([&] { const Library::Snapshot snapshot(*library); });
  expect_interrupted([&] { const Library::Transaction transaction(*library); });
}

TEST_F(LibraryInterruption, waiting_for_readers_at_the_end_of_a_transaction_is_ended) {
  const std::string before = rows();
  Library::Transaction transaction(*library);
  library->save(Tag::create("facade"));
  {
    // Not a process of its own: one that is forked now would take our lock for its own.
    PlainDatabase other(path);
    other.execute("BEGIN; SELECT count(*) FROM Tag");
    expect_interrupted([&] { transaction.commit(); });
  }
  EXPECT_EQ(rows(), before);
}

TEST_F(LibraryInterruption, waiting_for_a_file_that_is_restored_from_is_ended) {
  library->backup(other_file.c_str());
  const LockingProcess other(other_file, "BEGIN EXCLUSIVE", 60000);
  expect_interrupted([&] { library->restoreFrom(other_file.c_str()); });
}

TEST_F(LibraryInterruption, the_check_of_a_file_that_is_restored_from_is_ended) {
  library->backup(other_file.c_str());
  have_checks_take_long(other_file);
  library->save(Tag::create("facade"));
  const std::string before = rows();
  expect_interrupted([&] { library->restoreFrom(other_file.c_str()); }, Milliseconds(200));
  EXPECT_EQ(rows(), before);
}

TEST_F(LibraryInterruption, the_check_of_a_migrated_file_that_is_restored_from_is_ended) {
  make_old_file(other_file, 150201);
  have_checks_take_long(other_file);
  const std::string before = rows();
  expect_interrupted([&] { library->restoreFrom(other_file.c_str(), true); }, Milliseconds(200));
  EXPECT_EQ(rows(), before);
}

TEST_F(LibraryInterruption, a_signal_handler_may_ask_for_it) {
  static Library* asked;
  asked = library.get();
  put_many_tags(*library, 200000);
  struct sigaction action {};
  action.sa_handler = [](int) { asked->interrupt(); };
  ::sigaction(SIGALRM, &action, nullptr);
  const itimerval soon{{0, 1000}, {0, 20000}};
  const itimerval never{};
  ::setitimer(ITIMER_REAL, &soon, nullptr);
  std::vector<std::shared_ptr<Tag>> tags;
  EXPECT_EQ(thrown_by([&] { library->get(tags); }), interrupted);
  ::setitimer(ITIMER_REAL, &never, nullptr);
  // One more may be on its way, which would end the program by default.
  action.sa_handler = SIG_IGN;
  ::sigaction(SIGALRM, &action, nullptr);
}

TEST_F(LibraryInterruption, the_notifications_of_what_was_ended_may_use_the_library) {
  put_many_tags(*library, 5);
  unsigned long long left = 0;
  reactor.on_type_changed = [&](Library& changed, ObjectType) { left = changed.count<Tag>(); };
  interrupt_at(2);
  EXPECT_EQ(thrown_by([&] { library->purge<Tag>(); }), interrupted);
  EXPECT_EQ(left, 3U);
}

TEST_F(LibraryInterruption, other_libraries_are_not_concerned) {
  const auto other = create("other.lib");
  reactor.on_saved = [&](Library&, const ObjectKey&) { other->interrupt(); };
  EXPECT_TRUE(library->save(Tag::create("facade")));
  EXPECT_TRUE(other->save(Tag::create("facade")));
}

}  // namespace
}  // namespace veldra_tests
