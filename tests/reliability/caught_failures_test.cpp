// SPDX-License-Identifier: GPL-2.0-or-later
//
// A host does several things in one transaction, catches what each of them throws, goes on with the
// others and commits. What failed has left nothing behind, and what worked is there.

#include "reliability/fault_vfs.hpp"
#include "reliability/files_that_fail.hpp"
#include "reliability/no_memory.hpp"
#include "reliability/soak.hpp"
#include "support/builders.hpp"
#include "support/description.hpp"
#include "support/names.hpp"

#include <array>
#include <bitset>
#include <iostream>
#include <limits>

namespace veldra_tests {

namespace {

constexpr std::size_t number_of_steps = 5;
using Steps = std::bitset<number_of_steps>;

void prepare(Scene& scene) {
  scene.open();
  scene.objects.material = scene.library->get<Material>("Wall core");
  scene.objects.material->comments("changed");
  scene.objects.material->cut_layer(Layer::create("new layer"));
  scene.objects.composition = full_composition("New");
  scene.objects.tag = scene.library->get<Tag>("spare tag");
  scene.ids = {scene.source->get<Composition>("Roof")->id()};
}

constexpr Operation::Kind kinds[number_of_steps] = {
    Operation::Kind::Writing, Operation::Kind::Writing, Operation::Kind::Removing,
    Operation::Kind::Writing, Operation::Kind::Setting};

// None of them needs what another one does.
void do_step(Scene& scene, std::size_t number) {
  Library& library = *scene.library;
  switch (number) {
    case 0:
      library.save(scene.objects.material);
      return;
    case 1:
      library.save(scene.objects.composition);
      return;
    case 2:
      library.remove(scene.objects.tag);
      return;
    case 3:
      library.copy<Composition>(scene.source, scene.ids);
      return;
    default:
      library.region("Ostschweiz");
  }
}

/// The rows when exactly these steps were done.
const std::string& rows_after(Steps steps) {
  static std::map<unsigned long, std::string> known;
  std::string& rows = known[steps.to_ulong()];
  if (!rows.empty()) return rows;
  Scene scene(Start::Current, "");
  prepare(scene);
  for (std::size_t n = 0; n < number_of_steps; ++n) {
    if (steps[n]) do_step(scene, n);
  }
  return rows = scene.rows();
}

class CaughtFailures {
 public:
  explicit CaughtFailures(Faults& faults) : faults_(faults) {}

  /// Lets each of the points fail, `stride` apart, until none is left. Returns how often the rest
  /// was committed.
  unsigned long run(unsigned stride, const std::string& what) {
    unsigned long fired = 0;
    for (unsigned point = 1; run_at(point) && !testing::Test::HasFailure(); point += stride) {
      ++fired;
    }
    EXPECT_GT(fired, 0U);
    report_figure(what + ", caught within a transaction", fired);
    report_figure("of which the rest was committed", committed_in_part_);
    return committed_in_part_;
  }

 private:
  bool run_at(unsigned point) {
    SCOPED_TRACE("fault at " + std::to_string(point));
    const Deadline deadline;
    Scene scene(Start::Current, faults_.vfs());
    prepare(scene);
    const auto before = states(scene);
    Steps done;
    const Thrown thrown = thrown_by([&] {
      const Armed armed(faults_, point);
      Library::Transaction transaction(*scene.library);
      for (std::size_t n = 0; n < number_of_steps; ++n) done[n] = works(scene, n);
      transaction.commit();
    });
    const bool committed = thrown.type.empty();
    if (!committed) expect_documented(Operation::Kind::Writing, thrown);
    if (committed && !done.all()) ++committed_in_part_;
    expect_done(scene, committed ? done : Steps(), before);
    // A setter that fails keeps its value in the handle, unless all is rolled back.
    EXPECT_TRUE(committed || states(scene)[setting] == before[setting]);
    expect_sane(scene, Start::Current);
    expect_usable(*scene.library);
    expect_clean_end(scene);
    return faults_.fired();
  }

  /// A fault that lasts ends with the step that it makes fail.
  bool works(Scene& scene, std::size_t step) {
    const Thrown thrown = thrown_by([&] { do_step(scene, step); });
    if (thrown == "") return true;
    faults_.disarm();
    expect_documented(kinds[step], thrown);
    return false;
  }

  /// A step that ended the transaction makes the following ones say so.
  void expect_documented(Operation::Kind kind, const Thrown& thrown) const {
    auto types = documented_exceptions(kind);
    if (kind == Operation::Kind::Writing) types.push_back("odb::transaction_already_finalized");
    if (faults_.of_memory()) types.push_back("std::bad_alloc");
    EXPECT_THAT(types, testing::Contains(thrown.type)) << thrown;
  }

  using States = std::array<std::string, number_of_steps>;

  /// What each step may change in memory.
  static States states(const Scene& scene) {
    return {state_of(scene.objects.material), state_of(scene.objects.composition),
            state_of(scene.objects.tag), "", scene.settings()};
  }

  static void expect_done(const Scene& scene, Steps done, const States& before) {
    EXPECT_EQ(scene.rows(), rows_after(done)) << "after the steps " << done;
    const States after = states(scene);
    for (std::size_t n = 0; n < number_of_steps; ++n) {
      if (done[n] && n != copying) {
        EXPECT_NE(after[n], before[n]) << "step " << n;
      } else if (n != setting) {
        EXPECT_EQ(after[n], before[n]) << "step " << n;
      }
    }
  }

  static constexpr std::size_t copying = 3;
  static constexpr std::size_t setting = 4;

  Faults& faults_;
  unsigned long committed_in_part_ = 0;
};

TEST(CaughtFailures, of_files_leave_the_rest) {
  FilesThatFail faults(FaultVfs::Trouble::Error, FaultVfs::Repetition::Once);
  EXPECT_GT(CaughtFailures(faults).run(stride_or(5), "errors of one call"), 0U);
}

TEST(CaughtFailures, of_allocations_leave_the_rest) {
  NoMemory faults(failing_new, NoMemory::Lack::Once);
  EXPECT_GT(CaughtFailures(faults).run(stride_or(23), "failed allocations of C++"), 0U);
}

TEST(CaughtFailures, of_allocations_of_sqlite_leave_the_rest) {
  ASSERT_TRUE(allocator_of_sqlite_is_replaced());
  NoMemory faults(failing_sqlite, NoMemory::Lack::Once);
  EXPECT_GT(CaughtFailures(faults).run(stride_or(199), "failed allocations of SQLite"), 0U);
}

// What a step has done can hardly be taken back alone then, so all is; a step that could not even
// begin leaves the rest.
TEST(CaughtFailures, of_all_allocations_of_sqlite_within_a_step_leave_the_rest_or_nothing) {
  ASSERT_TRUE(allocator_of_sqlite_is_replaced());
  NoMemory faults(failing_sqlite, NoMemory::Lack::Persistent);
  CaughtFailures(faults).run(stride_or(29), "lasting lacks of memory of SQLite");
}

}  // namespace

}  // namespace veldra_tests
