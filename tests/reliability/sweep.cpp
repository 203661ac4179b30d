// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/sweep.hpp"

#include "reliability/soak.hpp"
#include "support/builders.hpp"
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/names.hpp"
#include "support/processes.hpp"
#include "support/recording_reactor.hpp"
#include "support/valgrind.hpp"

#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <limits>

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;

const unsigned never = std::numeric_limits<unsigned>::max();

std::string expected_catalogue(Start start) {
  switch (start) {
    case Start::Version150201:
      return migrated_catalogue(150201);
    case Start::Version150301:
      return migrated_catalogue(150301);
    default:
      return current_catalogue();
  }
}

bool is_in_parts(Kind kind) { return kind == Kind::RemovingSeveral || kind == Kind::Purging; }

void expect_one_version_and_identity(PlainDatabase& database) {
  EXPECT_EQ(database.value("SELECT count(*) FROM schema_version"), "1");
  EXPECT_EQ(database.value("SELECT count(*) FROM Meta"), "1");
}

std::vector<std::string> files_in(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Removes what an operation could not remove itself: a backup, which is called like the library
/// with a number behind it, and its journal.
void remove_unfinished(const Scene& scene) {
  for (const std::string& name : files_in(scene.folder().path())) {
    const std::string begin = "walls.lib";
    const bool is_backup = name.compare(0, begin.size(), begin) == 0 && name != begin &&
                           std::isdigit(static_cast<unsigned char>(name[begin.size()])) != 0;
    if (is_backup) std::filesystem::remove(scene.folder() / name);
  }
}

int failed_expectations() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

}  // namespace

std::vector<std::string> documented_exceptions(Kind kind) {
  const std::string translated = "veldra::UnknownError";
  const std::string as_it_is = "odb::sqlite::database_exception";
  switch (kind) {
    case Kind::Removing:
    case Kind::RemovingSeveral:
    case Kind::Purging:
    case Kind::Setting:
      return {translated};
    case Kind::Holding:
      return {translated, as_it_is};
    default:
      return {as_it_is};
  }
}

// The time of the processor finds what never ends, also on a busy machine; the other one finds what
// waits for ever.
Deadline::Deadline() {
  const itimerval ten_seconds = {{0, 0}, {seconds_with_valgrind(10), 0}};
  ::setitimer(ITIMER_PROF, &ten_seconds, nullptr);
  ::alarm(seconds_with_valgrind(120));
}

Deadline::~Deadline() {
  const itimerval none = {{0, 0}, {0, 0}};
  ::setitimer(ITIMER_PROF, &none, nullptr);
  ::alarm(0);
}

bool opens(const Operation& operation) {
  return operation.kind == Kind::Opening || operation.kind == Kind::Making;
}

void set_up(Scene& scene, const Operation& operation) {
  if (!opens(operation)) scene.open();
  operation.prepare(scene);
}

Reference::Reference(const Operation& operation) {
  Scene scene(operation.start, "");
  set_up(scene, operation);
  states.push_back(scene.rows());
  scene.reactor.watch_removals([&] { states.push_back(scene.rows()); });
  operation.run(scene);
  states.push_back(scene.rows());
  found = scene.found_text();
  identities = scene.identities();
}

void expect_sane(const Scene& scene, Start start) {
  const bool may_be_empty = start == Start::Missing || start == Start::Empty;
  if (may_be_empty && !scene.has_file()) return;
  PlainDatabase database(scene.path());
  EXPECT_EQ(damage(database), "");
  // What an interrupted operation has left of it is undone by now.
  if (may_be_empty && database.query("SELECT 1 FROM sqlite_master").empty()) return;
  expect_one_version_and_identity(database);
  const std::string version = database.value("SELECT version FROM schema_version");
  EXPECT_EQ(catalogue(database),
            version == "150302" ? expected_catalogue(start) : old_catalogue(std::stoi(version)));
}

void expect_unlocked(const Scene& scene) {
  for (const std::string& path : {scene.path(), scene.source_path()}) {
    if (!file_exists(path)) continue;
    EXPECT_NO_THROW(PlainDatabase(path).execute("BEGIN EXCLUSIVE; ROLLBACK")) << path;
  }
}

void expect_usable(veldra::Library& library) {
  if (library.readOnly()) {
    EXPECT_EQ(thrown_by([&] { library.count<veldra::Tag>(); }), "");
    return;
  }
  const auto material = named<veldra::Material>("probe");
  const auto layer = named<veldra::Layer>("probe layer");
  material->cut_layer(layer);
  EXPECT_EQ(thrown_by([&] { library.save(material); }), "");
  EXPECT_EQ(thrown_by([&] { library.remove<veldra::Layer>(layer->id()); }), "veldra::ObjectInUse");
  EXPECT_EQ(thrown_by([&] { library.remove(material); }), "");
}

void expect_clean_end(Scene& scene) {
  expect_unlocked(scene);
  scene.close();
  EXPECT_THAT(open_files(scene.folder().path()), IsEmpty());
  std::filesystem::remove(scene.backup_path());
  EXPECT_THAT(files_in(scene.folder().path()), testing::ElementsAre("supplier.lib", "walls.lib"));
}

Sweep::Sweep(const Operation& operation, Faults& faults)
    : operation_(operation), faults_(faults), reference_(operation) {}

unsigned Sweep::run(unsigned sample) {
  const int failed = failed_expectations();
  run_at(never);
  const unsigned stride = stride_or(std::max(1u, faults_.points() / sample));
  unsigned fired = 0;
  for (unsigned point = 1; run_at(point); point += stride) {
    ++fired;
    if (failed_expectations() != failed) break;
  }
  return fired;
}

unsigned Sweep::run_last(unsigned number) {
  run_at(never);
  unsigned fired = 0;
  for (unsigned point = faults_.points() - number + 1; run_at(point); ++point) ++fired;
  return fired;
}

bool Sweep::run_at(unsigned point) {
  SCOPED_TRACE(operation_.name + (", fault at " + std::to_string(point)));
  const long long before = faults_.memory_taken();
  const bool fired = fail_at(point);
  const long long between = faults_.memory_taken();
  if (between == before) return fired;
  // What is made once and kept, such as a static variable, is no leak.
  fail_at(point);
  EXPECT_EQ(faults_.memory_taken(), between) << "memory leaks";
  return fired;
}

bool Sweep::fail_at(unsigned point) {
  const Deadline deadline;
  Scene scene(operation_.start, faults_.vfs());
  set_up(scene, operation_);
  const std::string objects = scene.objects_state();
  const std::string settings = scene.settings();
  const std::string read = scene.read_text();
  const std::string source_bytes = read_file(scene.source_path());

  const Thrown thrown = thrown_by([&] {
    const Armed armed(faults_, point);
    operation_.run(scene);
  });
  EXPECT_TRUE(faults_.fired() || thrown == "") << thrown << " without a fault";
  if (thrown.type != "" && faults_.keep_files()) remove_unfinished(scene);
  expect_told_in_order(scene);
  expect_sane(scene, operation_.start);
  expect_unlocked(scene);
  expect_true_results(scene);
  if (thrown == "") {
    expect_new_state(scene);
    // SQLite tells of a page that cannot be read as of a damaged one.
    EXPECT_TRUE(faults_.fired() || scene.findings.empty());
  } else {
    expect_documented(thrown);
    expect_old_state(scene);
    EXPECT_EQ(scene.objects_state(), objects);
    // One that failed after others may have read in these.
    EXPECT_TRUE(scene.read_text() == read || operation_.kind == Kind::Holding);
    EXPECT_THAT(scene.findings, IsEmpty());
    if (operation_.kind != Kind::Setting) {
      EXPECT_EQ(scene.settings(), settings);
    } else if (!faults_.of_memory()) {
      EXPECT_NE(scene.settings(), settings) << "a setter that fails keeps its value in the handle";
    }
    repeat(scene);
  }
  EXPECT_EQ(read_file(scene.source_path()), source_bytes);
  if (scene.library) expect_usable(*scene.library);
  expect_clean_end(scene);
  return faults_.fired();
}

void Sweep::expect_documented(const Thrown& thrown) const {
  if (faults_.of_memory() && thrown == "std::bad_alloc") return;
  EXPECT_THAT(documented_exceptions(operation_.kind), testing::Contains(thrown.type)) << thrown;
}

// Opening makes the file in one transaction and then reads from it, and several removals are
// transactions of their own: what was committed before something failed stays.
void Sweep::expect_old_state(const Scene& scene) const {
  if (is_in_parts(operation_.kind) || operation_.kind == Kind::Making) {
    EXPECT_THAT(reference_.states, testing::Contains(scene.rows()));
  } else {
    EXPECT_EQ(scene.rows(), reference_.before());
  }
}

void Sweep::expect_new_state(const Scene& scene) const {
  EXPECT_EQ(scene.rows(), reference_.after());
  EXPECT_EQ(scene.found_text(), reference_.found);
  EXPECT_EQ(scene.identities(), reference_.identities);
}

void Sweep::expect_true_results(const Scene& scene) const {
  if (scene.removed.empty()) return;
  PlainDatabase database(scene.path());
  for (const auto& [key, removed] : scene.removed) {
    EXPECT_EQ(database.value("SELECT count(*) FROM " + kind_name(key.type) +
                             " WHERE id=" + std::to_string(key.id)),
              removed ? "0" : "1")
        << kind_name(key.type) << " " << key.id;
  }
}

void Sweep::expect_told_in_order(const Scene& scene) const {
  const std::string told = scene.reactor.changes();
  if (told.empty()) return;
  EXPECT_EQ(told.back(), '0') << told;
  EXPECT_EQ(std::adjacent_find(told.begin(), told.end() - 1, std::greater_equal<char>()),
            told.end() - 1)
      << told;
}

void Sweep::repeat(Scene& scene) const {
  const std::string rows = scene.rows();
  const bool is_done_in_part = is_in_parts(operation_.kind) && rows != reference_.before();
  scene.forget_found();
  const Thrown thrown = thrown_by([&] { operation_.run(scene); });
  if (is_done_in_part && operation_.kind == Kind::RemovingSeveral) {
    // What went already is not there to be removed again, and ends the rest.
    EXPECT_EQ(thrown, "veldra::ObjectNotFound");
    EXPECT_EQ(scene.rows(), rows);
    return;
  }
  EXPECT_EQ(thrown, "") << "when the operation is repeated";
  if (is_done_in_part) {
    EXPECT_EQ(scene.rows(), reference_.after());
  } else {
    expect_new_state(scene);
  }
  expect_true_results(scene);
}

void sweep(const std::vector<Operation>& operations, Faults& faults, unsigned sample,
           const std::string& what) {
  unsigned long all = 0;
  for (const Operation& operation : operations) {
    std::cout << operation.name << ": " << std::flush;
    const unsigned fired = Sweep(operation, faults).run(sample);
    std::cout << fired << " faults" << std::endl;
    EXPECT_GT(fired, 0u) << operation.name;
    all += fired;
  }
  report_figure(what, all);
}

}  // namespace veldra_tests
