// SPDX-License-Identifier: GPL-2.0-or-later
//
// Compares the layers and indices of compositions with those of a plain model after every step.
//
// Small compositions are tried in every state with every operation. The rest are random steps from
// random states; the seeds are fixed. To run the steps of another seed:
//
//     VELDRA_TEST_SEED=123 objects_composition_model_test

#include "objects/composition_model.hpp"
#include "support/database.hpp"
#include "support/names.hpp"
#include "support/rows.hpp"
#include "support/temporary.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace veldra_tests {
namespace {

using CompositionPointer = std::shared_ptr<Composition>;

BuildUp seen(const Composition& composition) {
  BuildUp build_up;
  for (const Composition::Layer& layer : composition.layers()) {
    build_up.layers.push_back({layer.thickness(), static_cast<int>(layer.function())});
  }
  build_up.first = composition.first_core_layer();
  build_up.last = composition.last_core_layer();
  build_up.structural = composition.structural_layer();
  build_up.has_variable = composition.has_variable_layer();
  build_up.variable = composition.variable_layer();
  build_up.dirty = composition.isDirty();
  return build_up;
}

enum class Step {
  First,
  Last,
  Structural,
  Variable,
  ClearVariable,
  Append,
  Insert,
  Remove,
  Move,
  SetFunction
};

constexpr int number_of_steps = 10;

struct Operation {
  Step step;
  std::uint64_t index = 0;
  std::uint64_t to = 0;
  BuildUp::Layer layer = {0, 0};
};

std::ostream& operator<<(std::ostream& out, const Operation& operation) {
  switch (operation.step) {
    case Step::First:
      return out << "first_core_layer(" << operation.index << ")";
    case Step::Last:
      return out << "last_core_layer(" << operation.index << ")";
    case Step::Structural:
      return out << "structural_layer(" << operation.index << ")";
    case Step::Variable:
      return out << "variable_layer(" << operation.index << ")";
    case Step::ClearVariable:
      return out << "clear_variable_layer()";
    case Step::Append:
      return out << "appendLayer(" << operation.layer.thickness << ")";
    case Step::Insert:
      return out << "insertLayer(" << operation.index << ", " << operation.layer.thickness << ")";
    case Step::Remove:
      return out << "removeLayer(" << operation.index << ")";
    case Step::Move:
      return out << "moveLayer(" << operation.index << ", " << operation.to << ")";
    case Step::SetFunction:
      return out << "layer(" << operation.index << ").function(" << operation.layer.function << ")";
  }
  return out;
}

void run(Composition& composition, const Operation& operation) {
  const auto index = static_cast<unsigned>(operation.index);
  const auto function = static_cast<Material::Function>(operation.layer.function);
  const Composition::Layer layer(nullptr, function, operation.layer.thickness);
  switch (operation.step) {
    case Step::First:
      return composition.first_core_layer(index);
    case Step::Last:
      return composition.last_core_layer(index);
    case Step::Structural:
      return composition.structural_layer(index);
    case Step::Variable:
      return composition.variable_layer(index);
    case Step::ClearVariable:
      return composition.clear_variable_layer();
    case Step::Append:
      return composition.appendLayer(layer);
    case Step::Insert:
      return composition.insertLayer(operation.index, layer);
    case Step::Remove:
      return composition.removeLayer(operation.index);
    case Step::Move:
      return composition.moveLayer(operation.index, operation.to);
    case Step::SetFunction:
      return composition.layer(operation.index, toModify).function(function);
  }
}

void run(CompositionModel& model, const Operation& operation) {
  const auto index = static_cast<std::uint32_t>(operation.index);
  switch (operation.step) {
    case Step::First:
      return model.first_core_layer(index);
    case Step::Last:
      return model.last_core_layer(index);
    case Step::Structural:
      return model.structural_layer(index);
    case Step::Variable:
      return model.variable_layer(index);
    case Step::ClearVariable:
      return model.clear_variable_layer();
    case Step::Append:
      return model.append_layer(operation.layer);
    case Step::Insert:
      return model.insert_layer(operation.index, operation.layer);
    case Step::Remove:
      return model.remove_layer(operation.index);
    case Step::Move:
      return model.move_layer(operation.index, operation.to);
    case Step::SetFunction:
      return model.set_function(operation.index, operation.layer.function);
  }
}

template <class Target>
std::string thrown_when_running(Target& target, const Operation& operation) {
  try {
    run(target, operation);
    return {};
  } catch (const std::out_of_range& error) {
    return std::string("std::out_of_range: ") + error.what();
  }
}

struct Outcome {
  BuildUp before;
  BuildUp expected;
  BuildUp got;

  bool agrees() const { return expected == got; }
};

/// Runs one operation on a composition and on a model of it.
Outcome outcome_of(Composition& composition, const Operation& operation) {
  Outcome outcome;
  outcome.before = seen(composition);
  CompositionModel model(outcome.before);
  const std::string expected = thrown_when_running(model, operation);
  outcome.expected = model.now();
  outcome.expected.thrown = expected;
  const std::string got = thrown_when_running(composition, operation);
  outcome.got = seen(composition);
  outcome.got.thrown = got;
  return outcome;
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << "\n  before:   " << outcome.before << "\n  expected: " << outcome.expected
             << "\n  got:      " << outcome.got;
}

/// A library of compositions in given states. What is read from it is clean.
class StoredBuildUps {
 public:
  explicit StoredBuildUps(const std::vector<BuildUp>& build_ups) {
    const std::string path = folder_ / "build-ups.lib";
    Library::create(path.c_str(), veldra::Unit::Millimetres, "");
    PlainDatabase database(path);
    put_material(database, {{"id", "1"}, {"name", "'Layer'"}});
    database.execute(statements(build_ups));
    library_ = Library::open(path.c_str(), false);
  }

  std::vector<CompositionPointer> read() const {
    std::vector<CompositionPointer> compositions;
    library_->get(compositions);
    return compositions;
  }

 private:
  static std::string statements(const std::vector<BuildUp>& build_ups) {
    std::ostringstream sql;
    sql << "BEGIN;";
    for (std::size_t place = 0; place != build_ups.size(); ++place) {
      insert(sql, place + 1, build_ups[place]);
    }
    sql << "COMMIT;";
    return sql.str();
  }

  static void insert(std::ostream& sql, std::size_t id, const BuildUp& build_up) {
    sql << "INSERT INTO \"Composition\" VALUES (" << id << ", '" << id << "', '', 128, NULL, '', "
        << build_up.first << ", " << build_up.last << ", " << build_up.structural << ", ";
    if (build_up.has_variable) {
      sql << build_up.variable;
    } else {
      sql << "NULL";
    }
    sql << ", 0, NULL);";
    for (std::size_t index = 0; index != build_up.layers.size(); ++index) {
      sql << "INSERT INTO \"Composition_layers\" VALUES (" << id << ", " << index << ", 1, "
          << build_up.layers[index].function << ", " << build_up.layers[index].thickness << ");";
    }
  }

  TemporaryFolder folder_;
  std::shared_ptr<Library> library_;
};

// Every small state.

void add_indices(std::vector<BuildUp>& states, BuildUp state) {
  const auto count = static_cast<std::uint32_t>(state.layers.size());
  for (state.first = 0; state.first < std::max(count, 1u); ++state.first) {
    for (state.last = state.first; state.last < std::max(count, 1u); ++state.last) {
      for (state.structural = state.first; state.structural <= state.last; ++state.structural) {
        state.has_variable = false;
        state.variable = 0;
        states.push_back(state);
        state.has_variable = true;
        for (state.variable = 0; state.variable <= count; ++state.variable) {
          states.push_back(state);
        }
      }
    }
  }
}

/// All states of so many layers whose indices are in order.
std::vector<BuildUp> every_state(std::size_t count) {
  std::vector<BuildUp> states;
  for (unsigned functions = 0; functions != 1u << count; ++functions) {
    BuildUp state;
    for (std::size_t index = 0; index != count; ++index) {
      state.layers.push_back({double(index + 1), int(functions >> index & 1)});
    }
    add_indices(states, state);
  }
  return states;
}

std::vector<Operation> every_operation(std::size_t count) {
  std::vector<std::uint64_t> indices = {4294967294u, 4294967295u, 4294967296u, 4294967297u,
                                        18446744073709551615u};
  for (std::uint64_t index = 0; index <= count + 2; ++index) indices.push_back(index);
  std::vector<Operation> operations = {
      {Step::ClearVariable}, {Step::Append, 0, 0, {100, 0}}, {Step::Append, 0, 0, {100, 1}}};
  for (const std::uint64_t index : indices) {
    for (const Step step : {Step::First, Step::Last, Step::Structural, Step::Variable}) {
      if (index <= 4294967295u) operations.push_back({step, index});
    }
    operations.push_back({Step::Insert, index, 0, {100, 0}});
    operations.push_back({Step::Insert, index, 0, {100, 1}});
    operations.push_back({Step::Remove, index});
    operations.push_back({Step::SetFunction, index, 0, {0, 1}});
    for (const std::uint64_t to : indices) operations.push_back({Step::Move, index, to});
  }
  return operations;
}

class CompositionModelSizeTest : public testing::TestWithParam<std::size_t> {};

TEST_P(CompositionModelSizeTest, every_operation_agrees_with_the_model_in_every_state) {
  const std::vector<BuildUp> states = every_state(GetParam());
  const StoredBuildUps stored(states);
  for (const Operation& operation : every_operation(GetParam())) {
    const std::vector<CompositionPointer> compositions = stored.read();
    ASSERT_EQ(compositions.size(), states.size());
    std::set<BuildUp> tried;
    for (const CompositionPointer& composition : compositions) {
      const Outcome outcome = outcome_of(*composition, operation);
      EXPECT_TRUE(outcome.agrees()) << operation << outcome;
      EXPECT_FALSE(outcome.before.dirty);
      tried.insert(outcome.before);
    }
    ASSERT_EQ(tried.size(), states.size()) << "the states must come from the file as they are";
  }
}

TEST_P(CompositionModelSizeTest, every_two_moves_agree_with_the_model) {
  const StoredBuildUps stored(every_state(GetParam()));
  const std::vector<CompositionPointer> compositions = stored.read();
  for (std::uint64_t from = 0; from < GetParam(); ++from) {
    for (std::uint64_t to = 0; to <= GetParam() + 1; ++to) {
      for (const CompositionPointer& composition : compositions) {
        const CompositionPointer moved = composition->clone();
        const Outcome first = outcome_of(*moved, {Step::Move, from, to});
        EXPECT_TRUE(first.agrees()) << "moveLayer(" << from << ", " << to << ")" << first;
        const Outcome second = outcome_of(*moved, {Step::Move, to, from});
        EXPECT_TRUE(second.agrees()) << "moveLayer(" << to << ", " << from << ")" << second;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Layers, CompositionModelSizeTest,
                         testing::Values<std::size_t>(0, 1, 2, 3, 4));

// Random steps.

constexpr int most_layers = 6;
constexpr int episodes_per_reading = 250;
constexpr int steps_of_an_episode = 20;
constexpr int readings_per_seed = 10;

class RandomSteps {
 public:
  explicit RandomSteps(std::uint64_t seed) : random_(seed) {}

  /// A number from 0 to `most`.
  std::uint64_t up_to(std::uint64_t most) { return random_() % (most + 1); }

  bool one_in(int chances) { return up_to(static_cast<std::uint64_t>(chances - 1)) == 0; }

  /// A state whose indices are in order.
  BuildUp state() {
    BuildUp state;
    const std::uint64_t count = up_to(most_layers);
    for (std::uint64_t index = 0; index != count; ++index) state.layers.push_back(layer());
    const std::uint64_t end = count == 0 ? 0 : count - 1;
    state.last = static_cast<std::uint32_t>(up_to(end));
    state.first = static_cast<std::uint32_t>(up_to(state.last));
    state.structural = static_cast<std::uint32_t>(state.first + up_to(state.last - state.first));
    state.has_variable = one_in(2);
    if (state.has_variable) state.variable = static_cast<std::uint32_t>(up_to(count + 1));
    return state;
  }

  Operation operation(std::size_t count) {
    Operation operation{static_cast<Step>(up_to(number_of_steps - 1))};
    const bool grows = operation.step == Step::Append || operation.step == Step::Insert;
    if (grows && count >= most_layers) operation.step = Step::Remove;
    operation.index = index(count, operation.step);
    operation.to = wide_index(count);
    operation.layer = layer();
    return operation;
  }

 private:
  BuildUp::Layer layer() { return {double(++layers_), function()}; }

  int function() {
    if (one_in(8)) return 2;
    return one_in(2) ? 1 : 0;
  }

  /// An index of one of `count` layers, or just beyond, or far beyond.
  std::uint64_t index(std::size_t count, Step step) {
    const bool narrow = step == Step::First || step == Step::Last || step == Step::Structural ||
                        step == Step::Variable;
    const std::uint64_t index = wide_index(count);
    return narrow ? std::min<std::uint64_t>(index, 4294967295u) : index;
  }

  std::uint64_t wide_index(std::size_t count) {
    if (!one_in(12)) return up_to(count == 0 || one_in(5) ? count + 1 : count - 1);
    static const std::uint64_t far[] = {
        99,          2147483647u, 2147483648u, 4294967294u,           4294967295u,
        4294967296u, 4294967297u, 4294967298u, 18446744073709551614u, 18446744073709551615u};
    return far[up_to(sizeof far / sizeof *far - 1)];
  }

  std::mt19937_64 random_;
  int layers_ = 0;
};

void run_episode(Composition& composition, RandomSteps& random, std::uint64_t seed) {
  for (int step = 0; step != steps_of_an_episode; ++step) {
    const Operation operation = random.operation(composition.layers().size());
    const Outcome outcome = outcome_of(composition, operation);
    ASSERT_TRUE(outcome.agrees()) << "VELDRA_TEST_SEED=" << seed << ", step " << step << ": "
                                  << operation << outcome;
  }
}

/// An empty composition, to which the file adds nothing.
void run_empty_episode(RandomSteps& random, std::uint64_t seed) {
  run_episode(*Composition::create(), random, seed);
}

void run_seed(std::uint64_t seed) {
  RandomSteps random(seed);
  std::vector<BuildUp> states;
  for (int place = 0; place != episodes_per_reading; ++place) states.push_back(random.state());
  const StoredBuildUps stored(states);
  for (int reading = 0; reading != readings_per_seed; ++reading) {
    for (const CompositionPointer& composition : stored.read()) {
      ASSERT_NO_FATAL_FAILURE(run_episode(*composition, random, seed));
      ASSERT_NO_FATAL_FAILURE(run_empty_episode(random, seed));
    }
  }
}

std::vector<std::uint64_t> seeds() {
  if (const char* const seed = std::getenv("VELDRA_TEST_SEED")) {
    return {std::strtoull(seed, nullptr, 10)};
  }
  return {1, 2, 3, 5, 8, 13};
}

class CompositionModelSeedTest : public testing::TestWithParam<std::uint64_t> {};

TEST_P(CompositionModelSeedTest, random_steps_agree_with_the_model) { run_seed(GetParam()); }

INSTANTIATE_TEST_SUITE_P(, CompositionModelSeedTest, testing::ValuesIn(seeds()),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace veldra_tests
