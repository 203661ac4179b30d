// SPDX-License-Identifier: GPL-2.0-or-later
//
// Two handles of one file in one process, under the same name and under another spelling of it. For
// each pair of operations the second handle does what the first one would have done next.

#include "reliability/scene.hpp"
#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"
#include "support/builders.hpp"
#include "support/contents.hpp"
#include "support/database.hpp"
#include "support/names.hpp"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace veldra_tests {

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

namespace {

using Kind = Operation::Kind;

enum class Handles { One, Two, TwoUnderDifferentNames };

std::string other_spelling(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return path.substr(0, slash) + "/./" + path.substr(slash + 1);
}

// What becomes of two operations, one after the other, both of which were prepared before.
struct Outcome {
  Thrown first;
  Thrown second;
  std::string rows;
  std::string found;  // by the second
};

class PairOfHandles {
 public:
  PairOfHandles(const Operation& first, const Operation& second, Handles handles)
      : first_(first), second_(second), handles_(handles), one_(first.start, "") {
    set_up(one_, first);
    if (!opens(second)) open_other();
    second.prepare(other_);
    if (opens(second)) other_.text = name();
  }

  Outcome run() {
    Outcome outcome;
    outcome.first = thrown_by([&] { first_.run(one_); });
    if (handles_ == Handles::One && opens(second_)) one_.library.reset();
    if (other_.library) other_.library->setReactor(&other_.reactor);
    outcome.second = thrown_by([&] { second_.run(other_); });
    outcome.rows = one_.rows();
    outcome.found = other_.found_text();
    return outcome;
  }

  void expect_same_sight() const {
    const Contents seen = contents_of(*Library::open(one_.name(), true));
    for (const auto& library : {one_.library, other_.library}) {
      if (!library) continue;
      EXPECT_EQ(contents_of(*library), seen);
    }
  }

  void expect_both_usable() {
    if (one_.library) expect_usable(*one_.library);
    if (other_.library) expect_usable(*other_.library);
    EXPECT_THAT(other_.findings, testing::IsEmpty());
    expect_sane(one_, first_.start);
  }

 private:
  void open_other() {
    const bool shared = handles_ == Handles::One && one_.library != nullptr;
    other_.library = shared ? one_.library : Library::open(name(), false);
    other_.source = Library::open(other_.source_path().c_str(), true);
  }

  veldra::String name() const {
    if (handles_ != Handles::TwoUnderDifferentNames) return one_.name();
    return other_spelling(one_.path()).c_str();
  }

  const Operation& first_;
  const Operation& second_;
  const Handles handles_;
  Scene one_;
  Scene other_{Start::Missing, ""};  // only its library is that of the other one
};

Outcome outcome_of(const Operation& first, const Operation& second) {
  return PairOfHandles(first, second, Handles::One).run();
}

void expect_as_with_one_handle(const Operation& first, const Operation& second, Handles handles) {
  SCOPED_TRACE(std::string(first.name) + ", then " + second.name);
  const Deadline deadline;
  const Outcome expected = outcome_of(first, second);
  PairOfHandles pair(first, second, handles);
  const Outcome outcome = pair.run();
  EXPECT_EQ(outcome.first, expected.first.type.c_str()) << outcome.first;
  EXPECT_EQ(outcome.second, expected.second.type.c_str()) << outcome.second;
  EXPECT_EQ(outcome.rows, expected.rows);
  EXPECT_EQ(outcome.found, expected.found);
  pair.expect_same_sight();
  pair.expect_both_usable();
}

// Deliberate: the last of two handles that set the locale and the region decides about both, and a
// handle keeps the unit that it has read when it was opened.
bool is_for_one_handle(const Operation& first, const Operation& second) {
  if (first.name == "restore another library") return !opens(second);
  const auto sets = [](Kind kind) { return kind == Kind::Setting || kind == Kind::Holding; };
  return sets(first.kind) && sets(second.kind);
}

bool can_follow(const Operation& first, const Operation& second) {
  if (is_for_one_handle(first, second)) return false;
  return second.start == first.start || (opens(first) && opens(second));
}

std::string name_of(const testing::TestParamInfo<Operation>& info) {
  std::string name = info.param.name;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

std::vector<Operation> operations_of(std::initializer_list<Kind> kinds) {
  std::vector<Operation> result;
  std::copy_if(operations().begin(), operations().end(), std::back_inserter(result),
               [&](const Operation& operation) {
                 return std::find(kinds.begin(), kinds.end(), operation.kind) != kinds.end();
               });
  return result;
}

// Those that read leave nothing to the second handle; one of them stands for all, and one that
// copies the file.
std::vector<Operation> first_operations() {
  auto result = operations_of({Kind::Opening, Kind::Making, Kind::Writing, Kind::Merging,
                               Kind::Holding, Kind::Removing, Kind::RemovingSeveral, Kind::Purging,
                               Kind::Replacing, Kind::Setting});
  result.push_back(operation_named("get every composition"));
  result.push_back(operation_named("back up"));
  return result;
}

class TwoHandles : public testing::TestWithParam<Operation> {
 public:
  static void TearDownTestSuite() {
    if (pairs != 0) report_figure("pairs of operations on two handles", pairs);
    pairs = 0;
  }

 protected:
  // Another one for most operations.
  static std::size_t number_of_parameter() {
    const std::string& name = GetParam().name;
    return std::accumulate(name.begin(), name.end(), std::size_t{0});
  }

  // Every operation in a long run, and others for each first operation in a sample.
  static std::vector<Operation> sample_of(const std::vector<Operation>& all) {
    const std::size_t stride = std::min<std::size_t>(stride_or(97), all.size());
    std::vector<Operation> sample;
    for (std::size_t n = number_of_parameter() % stride; n < all.size(); n += stride) {
      sample.push_back(all[n]);
    }
    return sample;
  }

  static unsigned long pairs;
};

unsigned long TwoHandles::pairs = 0;

TEST_P(TwoHandles, do_one_after_the_other_what_one_handle_does) {
  for (const Operation& second : sample_of(operations())) {
    if (!can_follow(GetParam(), second)) continue;
    expect_as_with_one_handle(GetParam(), second, Handles::Two);
    expect_as_with_one_handle(GetParam(), second, Handles::TwoUnderDifferentNames);
    pairs += 2;
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, TwoHandles, testing::ValuesIn(first_operations()), name_of);

// Those that have a reactor to be interrupted by.
std::vector<Operation> interrupted_operations() {
  return operations_of(
      {Kind::Writing, Kind::Holding, Kind::Removing, Kind::RemovingSeveral, Kind::Purging});
}

// Runs an operation, and within its transaction another one on a second handle. What the second one
// has thrown.
Thrown run_beside(const Operation& first, const Operation& second, Scene& other) {
  Scene scene(first.start, "");
  set_up(scene, first);
  other.library = Library::open(scene.name(), false);
  other.source = Library::open(other.source_path().c_str(), true);
  second.prepare(other);
  Thrown thrown;
  bool happened = false;
  const auto interrupt = [&] {
    if (!happened) thrown = thrown_by([&] { second.run(other); });
    happened = true;
  };
  scene.reactor.on_saved = [&](Library&, const ObjectKey&) { interrupt(); };
  scene.reactor.watch_removals(interrupt);
  first.run(scene);
  EXPECT_TRUE(happened);
  EXPECT_EQ(scene.rows(), Reference(first).after());
  expect_usable(*other.library);
  return thrown;
}

class ReaderBesideAWriter : public TwoHandles {};

TEST_P(ReaderBesideAWriter, reads_what_was_there_before) {
  for (const Operation& second : sample_of(operations_of({Kind::Reading}))) {
    SCOPED_TRACE(second.name);
    Scene other(Start::Missing, "");
    EXPECT_EQ(run_beside(GetParam(), second, other), "");
    EXPECT_EQ(other.found_text(), Reference(second).found);
    EXPECT_THAT(other.findings, testing::IsEmpty());
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, ReaderBesideAWriter,
                         testing::ValuesIn(interrupted_operations()), name_of);

// Each waits for the usual 5 seconds.
TEST(WriterBesideAWriter, writes_nothing) {
  const auto first = interrupted_operations();
  const auto second = operations_of({Kind::Writing, Kind::Holding, Kind::Replacing, Kind::Setting});
  for (std::size_t n = 0; n < first.size(); n += stride_or(static_cast<unsigned>(first.size()))) {
    const Operation& late = second[(n + 7) % second.size()];
    SCOPED_TRACE(first[n].name + (", and within it " + std::string(late.name)));
    Scene other(Start::Missing, "");
    EXPECT_EQ(run_beside(first[n], late, other),
              late.kind == Kind::Setting ? "veldra::UnknownError" : "odb::timeout");
  }
}

// Copying from a handle of the same file.

class CopyBetweenHandles : public testing::TestWithParam<int> {
 protected:
  // Without codes, about which nobody is asked.
  CopyBetweenHandles() { PlainDatabase(scene.path()).execute("UPDATE Material SET code=NULL"); }

  // The rows after everything was copied from the file of that name.
  static std::string rows_after_copy(Scene& scene, const std::string& source) {
    scene.open();
    scene.reactor.decision = GetParam();
    scene.library->copyAll(Library::open(source.c_str(), false));
    expect_usable(*scene.library);
    return scene.rows();
  }

  Scene scene{Start::Current, ""};
};

TEST_P(CopyBetweenHandles, is_like_copying_from_a_copy_of_the_file) {
  Scene expected(Start::Missing, "");
  const std::string copy = expected.folder() / "copy.lib";
  for (const auto& path : {copy, expected.path()}) write_file(path, read_file(scene.path()));
  EXPECT_EQ(rows_after_copy(scene, scene.path()), rows_after_copy(expected, copy));
  expect_sane(scene, Start::Current);
}

TEST_P(CopyBetweenHandles, is_the_same_under_another_spelling) {
  Scene expected(Start::Missing, "");
  write_file(expected.path(), read_file(scene.path()));
  EXPECT_EQ(rows_after_copy(scene, other_spelling(scene.path())),
            rows_after_copy(expected, expected.path()));
  expect_sane(scene, Start::Current);
}

INSTANTIATE_TEST_SUITE_P(Decisions, CopyBetweenHandles,
                         testing::Values(Library::Reactor::UseExisting,
                                         Library::Reactor::Overwrite));

// What SQLite's cache does not hold is written to the file, which nobody may be reading then; the
// handle that is copied from waits the usual 5 seconds.
TEST(LargeCopyBetweenHandles, waits_for_itself_and_changes_nothing) {
  Scene scene(Start::Current, "");
  PlainDatabase(scene.path()).execute("UPDATE Material SET code=NULL");
  scene.open();
  {
    Library::Transaction transaction(*scene.library);
    for (int number = 0; number < 10000; ++number) {
      const auto material = named<veldra::Material>("Brick " + std::to_string(number));
      material->comments(veldra::String(std::string(1000, 'x').c_str()));
      scene.library->save(material);
    }
    transaction.commit();
  }
  const auto before = scene.rows();
  scene.reactor.decision = Library::Reactor::Rename;
  EXPECT_EQ(thrown_by([&] { scene.library->copyAll(Library::open(scene.name(), false)); }),
            "odb::timeout");
  EXPECT_EQ(scene.rows(), before);
  scene.library->setReactor(nullptr);
  expect_usable(*scene.library);
}

}  // namespace

}  // namespace veldra_tests
