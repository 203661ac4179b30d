// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/fault_vfs.hpp"
#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"

#include "support/database.hpp"
#include "support/names.hpp"

namespace veldra_tests {

namespace {

// What is rolled back without a failure stays so, whether the power goes at that or not: a removal
// of what is in use, and the transaction of a host.
bool rolls_back(const Operation& operation) {
  using Kind = Operation::Kind;
  const Kind kind = operation.kind;
  return kind == Kind::RemovingSeveral || kind == Kind::Purging || kind == Kind::Holding;
}

// Runs an operation until the power goes, and ends everything that runs. The operation throws as
// after any other failure, and leaves the objects as they were.
class PowerLoss {
 public:
  PowerLoss(const Operation& operation, unsigned point)
      : scene_(operation.start, FaultVfs::name_of("")) {
    set_up(scene_, operation);
    if (file_exists(scene_.path())) before_ = read_file(scene_.path());
    FaultVfs::arm({FaultVfs::Trouble::PowerLoss, point, FaultVfs::Repetition::Persistent});
    const std::string objects = scene_.objects_state();
    const Thrown thrown = thrown_by([&] { operation.run(scene_); });
    if (thrown == "") {
      EXPECT_TRUE(!happened() || rolls_back(operation));
    } else {
      EXPECT_TRUE(happened()) << thrown;
      EXPECT_THAT(documented_exceptions(operation.kind), Contains(thrown.type)) << thrown;
      EXPECT_EQ(scene_.objects_state(), objects);
    }
    scene_.close();
    FaultVfs::disarm();
  }

  bool happened() const { return FaultVfs::fired(); }
  Scene& scene() { return scene_; }

  void leave_files(unsigned seed) {
    write_file(scene_.path(), before_);
    FaultVfs::leave_what_reached_the_disk(seed);
  }

  // Opens what was left as a new process would.
  void open_again() {
    EXPECT_EQ(thrown_by([&] {
                scene_.library =
                    veldra::Library::create(scene_.path().c_str(), veldra::Unit::Inches, "");
              }),
              "");
    ASSERT_TRUE(scene_.library);
    expect_usable(*scene_.library);
    scene_.close();
  }

 private:
  Scene scene_;
  std::string before_;
};

void expect_whole(const Operation& operation, const Reference& reference, PowerLoss& loss,
                  unsigned seed) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  const Deadline deadline;
  loss.leave_files(seed);
  const std::string rows = loss.scene().rows();
  EXPECT_THAT(reference.states, Contains(rows));
  expect_sane(loss.scene(), operation.start);
  loss.open_again();
}

// Returns how often the power was lost before the operation was over.
unsigned lose_power_at_each_point(const Operation& operation, unsigned seeds, unsigned stride) {
  const Reference reference(operation);
  unsigned losses = 0;
  for (unsigned point = 1;; point += stride) {
    SCOPED_TRACE(operation.name + (", power lost at " + std::to_string(point)));
    PowerLoss loss(operation, point);
    // The last time, it is lost when the operation is over.
    for (unsigned seed = 0; seed != seeds; ++seed) {
      expect_whole(operation, reference, loss, point * 1000 + seed);
    }
    if (!loss.happened() || testing::Test::HasFailure()) return losses;
    losses += seeds;
  }
}

// The new state is not certain even when the call returned: SQLite commits by deleting the journal,
// and does not wait for the deletion to reach the disk.
TEST(PowerLoss, leaves_the_old_state_or_the_new_one) {
  const unsigned seeds = number_or(2, 16);
  unsigned long all = 0;
  for (const Operation& operation : writing_operations()) {
    const unsigned losses = lose_power_at_each_point(operation, seeds, stride_or(29));
    std::cout << operation.name << ": " << losses << " losses of power" << std::endl;
    EXPECT_GT(losses, 0u);
    all += losses;
  }
  report_figure("losses of power", all);
}

void expect_whole_copy(const Scene& scene, const std::string& rows) {
  EXPECT_EQ(dump(scene.backup_path()), rows);
  EXPECT_EQ(damage(scene.backup_path()), "");
}

// Returns whether the power was lost before the backup was over.
bool lose_power_in_a_backup(unsigned point, unsigned seeds) {
  using Kind = veldra::Library::Recognition::Kind;
  const Deadline deadline;
  Scene scene(Start::Current, FaultVfs::name_of(""));
  scene.open();
  const std::string rows = scene.rows();
  const std::string bytes = read_file(scene.path());
  const std::string copy = FaultVfs::name_of(scene.backup_path());
  FaultVfs::arm({FaultVfs::Trouble::PowerLoss, point, FaultVfs::Repetition::Persistent});
  const Thrown thrown = thrown_by([&] { scene.library->backup(copy.c_str()); });
  scene.close();
  FaultVfs::disarm();
  EXPECT_EQ(thrown, FaultVfs::fired() ? "odb::sqlite::database_exception" : "");
  for (unsigned seed = 0; seed != seeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    FaultVfs::leave_what_reached_the_disk(point * 1000 + seed);
    EXPECT_TRUE(read_file(scene.path()) == bytes);
    const Kind kind = veldra::Library::recognise(scene.backup_path().c_str()).kind;
    EXPECT_THAT(kind, AnyOf(Kind::Missing, Kind::Empty, Kind::Library));
    EXPECT_TRUE(kind == Kind::Library || FaultVfs::fired()) << "a backup that was done is gone";
    if (kind == Kind::Library) expect_whole_copy(scene, rows);
  }
  return FaultVfs::fired();
}

// Unlike what is written to a library, a backup is certain when the call returned.
TEST(PowerLoss, leaves_a_whole_backup_or_none) {
  const unsigned seeds = number_or(8, 64);
  const unsigned stride = stride_or(3);
  unsigned losses = 0;
  for (unsigned point = 1;; point += stride) {
    SCOPED_TRACE("power lost at " + std::to_string(point));
    if (!lose_power_in_a_backup(point, seeds) || testing::Test::HasFailure()) break;
    losses += seeds;
  }
  EXPECT_GT(losses, 0u);
  report_figure("losses of power during a backup", losses);
}

struct Interrupted {
  std::string file;
  std::string journal;
};

// Files as a loss of power leaves them, with a journal to recover from.
std::vector<Interrupted> interrupted_files(const Operation& operation) {
  std::vector<Interrupted> all;
  for (unsigned point = 1;; ++point) {
    PowerLoss loss(operation, point);
    loss.leave_files(point);
    const std::string journal = loss.scene().path() + "-journal";
    if (file_exists(journal)) all.push_back({read_file(loss.scene().path()), read_file(journal)});
    if (!loss.happened()) return all;
  }
}

// Opens an interrupted file while a call fails; returns whether one did.
bool recover_with_fault(const Interrupted& interrupted, const Reference& reference,
                        const FaultVfs::Fault& fault) {
  SCOPED_TRACE("fault at " + std::to_string(fault.at));
  const Deadline deadline;
  Scene scene(Start::Missing, FaultVfs::name_of(""));
  write_file(scene.path(), interrupted.file);
  write_file(scene.path() + "-journal", interrupted.journal);

  FaultVfs::arm(fault);
  const Thrown thrown =
      thrown_by([&] { scene.library = veldra::Library::open(scene.name(), false); });
  FaultVfs::disarm();
  EXPECT_THAT(thrown.type, AnyOf("", "odb::sqlite::database_exception"));
  scene.close();

  EXPECT_EQ(thrown_by([&] { scene.library = veldra::Library::open(scene.name(), false); }), "");
  EXPECT_THAT(reference.states, Contains(scene.rows()));
  expect_sane(scene, Start::Current);
  if (scene.library) expect_usable(*scene.library);
  expect_clean_end(scene);
  return FaultVfs::fired();
}

TEST(PowerLoss, is_recovered_from_in_spite_of_faults) {
  const Operation& operation = operation_named("save a composition with all that it refers to");
  const Reference reference(operation);
  const auto files = interrupted_files(operation);
  ASSERT_FALSE(files.empty());
  unsigned long fired = 0;
  for (std::size_t n = 0; n < files.size(); n += stride_or(5)) {
    for (const auto repetition : {FaultVfs::Repetition::Once, FaultVfs::Repetition::Persistent}) {
      SCOPED_TRACE("file " + std::to_string(n));
      const unsigned stride = stride_or(9);
      unsigned point = 1;
      while (
          recover_with_fault(files[n], reference, {FaultVfs::Trouble::Error, point, repetition})) {
        point += stride;
        ++fired;
      }
    }
  }
  EXPECT_GT(fired, 0u);
  report_figure("faults while recovering", fired);
}

}  // namespace

}  // namespace veldra_tests
