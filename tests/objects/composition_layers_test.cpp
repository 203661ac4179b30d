// What the operations on layers do to the indices, example by example. Layers are told apart by
// their thicknesses: A is 1, B is 2, and so on; lower-case letters name layers with the function
// of a structure.

#include "objects/stored_objects.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <cctype>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {
namespace {

using Function = Material::Function;

constexpr unsigned one_below_zero = 4294967295u;
constexpr std::uint64_t last_number = 18446744073709551615u;
constexpr std::uint64_t beyond_32_bits = 4294967296u;

Composition::Layer layer_of(char letter) {
  const bool structure = std::islower(letter) != 0;
  return {nullptr, structure ? Function::Structure : Function::None,
          double(std::toupper(letter) - 'A' + 1)};
}

std::string letters_of(const Composition& composition) {
  std::string letters;
  for (const Composition::Layer& layer : composition.layers()) {
    const char letter = static_cast<char>('A' + int(layer.thickness()) - 1);
    const bool structure = layer.function() == Function::Structure;
    letters.push_back(structure ? static_cast<char>(std::tolower(letter)) : letter);
  }
  return letters;
}

std::vector<unsigned> indices_of(const Composition& composition) {
  return {composition.first_core_layer(), composition.last_core_layer(),
          composition.structural_layer()};
}

struct Core {
  unsigned first;
  unsigned last;
  unsigned structural;
};

std::shared_ptr<Composition> build_up(const std::string& letters, const Core& core) {
  const auto composition = Composition::create();
  for (const char letter : letters) composition->appendLayer(layer_of(letter));
  composition->last_core_layer(core.last);
  composition->first_core_layer(core.first);
  composition->structural_layer(core.structural);
  EXPECT_THAT(indices_of(*composition), ElementsAre(core.first, core.last, core.structural));
  return composition;
}

/// Five layers with the core B, C, D, of which C is the structural layer.
std::shared_ptr<Composition> five_layers() { return build_up("ABCDE", {1, 3, 2}); }

#define EXPECT_LAYERS(composition, letters, first, last, structural)                 \
  EXPECT_EQ(letters_of(*(composition)), letters);                                    \
  EXPECT_THAT(indices_of(*(composition)),                                            \
              ElementsAre(static_cast<unsigned>(first), static_cast<unsigned>(last), \
                          static_cast<unsigned>(structural)))

void expect_refused(const std::function<void()>& call) {
  const Thrown thrown = thrown_by(call);
  EXPECT_EQ(thrown, "std::out_of_range");
  EXPECT_EQ(thrown.text, "invalid vector<T> subscript");
}

// The first core layer.

TEST(FirstCoreLayerTest, within_the_core_narrows_it) {
  const auto composition = five_layers();
  composition->first_core_layer(2);
  EXPECT_LAYERS(composition, "ABCDE", 2, 3, 2);
}

TEST(FirstCoreLayerTest, before_the_core_widens_it) {
  const auto composition = five_layers();
  composition->first_core_layer(0);
  EXPECT_LAYERS(composition, "ABCDE", 0, 3, 2);
}

TEST(FirstCoreLayerTest, behind_the_structural_layer_moves_it) {
  const auto composition = five_layers();
  composition->first_core_layer(3);
  EXPECT_LAYERS(composition, "ABCDE", 3, 3, 3);
}

TEST(FirstCoreLayerTest, behind_the_core_raises_the_last_core_layer) {
  const auto composition = five_layers();
  composition->first_core_layer(4);
  EXPECT_LAYERS(composition, "ABCDE", 4, 4, 4);
}

TEST(FirstCoreLayerTest, beyond_the_layers_becomes_the_last_layer) {
  const auto composition = five_layers();
  composition->first_core_layer(9);
  EXPECT_LAYERS(composition, "ABCDE", 4, 4, 4);
}

TEST(FirstCoreLayerTest, the_same_leaves_it_clean) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->first_core_layer(1);
  EXPECT_FALSE(composition->isDirty());
  composition->first_core_layer(2);
  EXPECT_TRUE(composition->isDirty());
}

TEST(FirstCoreLayerTest, without_layers_keeps_what_was_stored_before_the_search_failed) {
  const auto composition = Composition::create();
  expect_refused([&] { composition->first_core_layer(3); });
  EXPECT_LAYERS(composition, "", 3, 3, 0);
  EXPECT_TRUE(composition->isDirty());
}

// The last core layer.

TEST(LastCoreLayerTest, within_the_core_narrows_it) {
  const auto composition = five_layers();
  composition->last_core_layer(2);
  EXPECT_LAYERS(composition, "ABCDE", 1, 2, 2);
}

TEST(LastCoreLayerTest, before_the_structural_layer_moves_it) {
  const auto composition = five_layers();
  composition->last_core_layer(1);
  EXPECT_LAYERS(composition, "ABCDE", 1, 1, 1);
}

TEST(LastCoreLayerTest, before_the_core_lowers_the_first_core_layer) {
  const auto composition = five_layers();
  composition->last_core_layer(0);
  EXPECT_LAYERS(composition, "ABCDE", 0, 0, 0);
}

TEST(LastCoreLayerTest, beyond_the_layers_becomes_the_last_layer) {
  for (const unsigned index : {4u, 5u, 99u, one_below_zero}) {
    const auto composition = five_layers();
    composition->last_core_layer(index);
    EXPECT_LAYERS(composition, "ABCDE", 1, 4, 2);
  }
}

TEST(LastCoreLayerTest, the_same_leaves_it_clean) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->last_core_layer(3);
  EXPECT_FALSE(composition->isDirty());
  composition->last_core_layer(99);
  EXPECT_EQ(composition->last_core_layer(), 4u);
  EXPECT_TRUE(composition->isDirty());
}

TEST(LastCoreLayerTest, without_layers_any_value_is_stored) {
  for (const unsigned index : {5u, 1u, one_below_zero}) {
    const auto composition = Composition::create();
    composition->last_core_layer(index);
    EXPECT_LAYERS(composition, "", 0, index, 0);
    EXPECT_TRUE(composition->isDirty());
  }
}

// The structural layer.

TEST(StructuralLayerTest, within_the_core_is_stored_whatever_the_layer_does) {
  for (const unsigned index : {1u, 2u, 3u}) {
    const auto composition = build_up("aBCde", {1, 3, 1});
    composition->structural_layer(index);
    EXPECT_LAYERS(composition, "aBCde", 1, 3, index);
  }
}

TEST(StructuralLayerTest, before_the_core_becomes_its_first_layer_that_carries) {
  const auto carried = build_up("aBcde", {1, 3, 1});
  carried->structural_layer(0);
  EXPECT_LAYERS(carried, "aBcde", 1, 3, 2);
  const auto uncarried = build_up("aBCDe", {1, 3, 2});
  uncarried->structural_layer(0);
  EXPECT_LAYERS(uncarried, "aBCDe", 1, 3, 1);
}

TEST(StructuralLayerTest, before_the_core_may_become_either_end_of_it) {
  const auto first = build_up("AbCDE", {1, 3, 3});
  first->structural_layer(0);
  EXPECT_EQ(first->structural_layer(), 1u);
  const auto last = build_up("ABCdE", {1, 3, 1});
  last->structural_layer(0);
  EXPECT_EQ(last->structural_layer(), 3u);
}

TEST(StructuralLayerTest, behind_the_core_becomes_its_last_layer_that_carries) {
  for (const unsigned index : {4u, 9u, one_below_zero}) {
    const auto carried = build_up("abcDe", {1, 3, 1});
    carried->structural_layer(index);
    EXPECT_LAYERS(carried, "abcDe", 1, 3, 2);
    const auto uncarried = build_up("aBCDe", {1, 3, 1});
    uncarried->structural_layer(index);
    EXPECT_LAYERS(uncarried, "aBCDe", 1, 3, 3);
  }
}

TEST(StructuralLayerTest, behind_the_core_may_become_its_first_layer) {
  const auto composition = build_up("AbCDE", {1, 3, 2});
  composition->structural_layer(9);
  EXPECT_EQ(composition->structural_layer(), 1u);
}

TEST(StructuralLayerTest, other_functions_do_not_carry) {
  const auto composition = build_up("ABCDE", {1, 3, 3});
  composition->layer(2, toModify).function(Function(2));
  composition->layer(3, toModify).function(Function(-1));
  composition->structural_layer(0);
  EXPECT_EQ(composition->structural_layer(), 1u);
}

TEST(StructuralLayerTest, the_one_that_it_is_leaves_it_clean) {
  // The stored core is from 1 to 3; layers 1 and 3 carry, and layer 2 is the structural one.
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->structural_layer(2);
  EXPECT_FALSE(composition->isDirty());
  composition->structural_layer(0);
  EXPECT_EQ(composition->structural_layer(), 1u);
  EXPECT_TRUE(composition->isDirty());
}

TEST(StructuralLayerTest, without_layers_a_search_fails_and_changes_nothing) {
  const auto composition = Composition::create();
  expect_refused([&] { composition->structural_layer(1); });
  EXPECT_LAYERS(composition, "", 0, 0, 0);
  EXPECT_FALSE(composition->isDirty());
}

TEST(StructuralLayerTest, without_layers_a_value_within_the_core_is_stored) {
  const auto composition = Composition::create();
  composition->last_core_layer(5);
  composition->structural_layer(5);
  EXPECT_LAYERS(composition, "", 0, 5, 5);
}

TEST(StructuralLayerTest, a_search_that_leaves_the_layers_fails) {
  const auto composition = Composition::create();
  composition->last_core_layer(5);
  composition->appendLayer(layer_of('A'));
  composition->appendLayer(layer_of('B'));
  expect_refused([&] { composition->structural_layer(6); });
  EXPECT_LAYERS(composition, "AB", 0, 5, 0);
}

TEST(StructuralLayerTest, a_search_may_end_before_it_leaves_the_layers) {
  const auto composition = Composition::create();
  composition->last_core_layer(5);
  composition->structural_layer(3);
  for (const char letter : std::string("Ab")) composition->appendLayer(layer_of(letter));
  composition->first_core_layer(1);
  composition->structural_layer(0);
  EXPECT_LAYERS(composition, "Ab", 1, 5, 1);
}

// Appending.

TEST(AppendLayerTest, moves_no_index) {
  const auto composition = five_layers();
  composition->variable_layer(4);
  composition->appendLayer(layer_of('f'));
  EXPECT_LAYERS(composition, "ABCDEf", 1, 3, 2);
  EXPECT_EQ(composition->variable_layer(), 4u);
}

TEST(AppendLayerTest, makes_it_dirty) {
  const auto composition = Composition::create();
  composition->appendLayer(layer_of('a'));
  EXPECT_LAYERS(composition, "a", 0, 0, 0);
  EXPECT_TRUE(composition->isDirty());
}

TEST(AppendLayerTest, takes_one_of_its_own_layers) {
  const auto composition = build_up("aB", {0, 0, 0});
  for (int round = 0; round != 10; ++round) composition->appendLayer(composition->layers()[0]);
  EXPECT_EQ(letters_of(*composition), "aBaaaaaaaaaa");
}

// Inserting.

TEST(InsertLayerTest, before_a_core_of_one_layer_makes_it_two_layers_deep) {
  const auto composition = build_up("ABC", {1, 1, 1});
  composition->insertLayer(0, layer_of('X'));
  EXPECT_LAYERS(composition, "XABC", 2, 3, 3);
}

TEST(InsertLayerTest, at_a_core_of_one_layer_makes_it_two_layers_deep) {
  const auto composition = build_up("ABC", {1, 1, 1});
  composition->insertLayer(1, layer_of('X'));
  EXPECT_LAYERS(composition, "AXBC", 2, 3, 3);
}

TEST(InsertLayerTest, before_a_core_of_one_layer_at_the_end_is_limited_to_the_layers) {
  const auto composition = build_up("ABC", {2, 2, 2});
  composition->insertLayer(0, layer_of('X'));
  EXPECT_LAYERS(composition, "XABC", 3, 3, 3);
}

TEST(InsertLayerTest, before_the_core_moves_it) {
  const auto composition = five_layers();
  composition->insertLayer(0, layer_of('X'));
  EXPECT_LAYERS(composition, "XABCDE", 2, 4, 3);
}

TEST(InsertLayerTest, at_the_first_core_layer_moves_the_core) {
  const auto composition = five_layers();
  composition->insertLayer(1, layer_of('X'));
  EXPECT_LAYERS(composition, "AXBCDE", 2, 4, 3);
}

TEST(InsertLayerTest, within_the_core_widens_it) {
  const auto before = five_layers();
  before->insertLayer(2, layer_of('X'));
  EXPECT_LAYERS(before, "ABXCDE", 1, 4, 3);
  const auto behind = five_layers();
  behind->insertLayer(3, layer_of('X'));
  EXPECT_LAYERS(behind, "ABCXDE", 1, 4, 2);
}

TEST(InsertLayerTest, behind_the_core_moves_no_index) {
  for (const unsigned index : {4u, 5u}) {
    const auto composition = five_layers();
    composition->insertLayer(index, layer_of('X'));
    EXPECT_THAT(indices_of(*composition), ElementsAre(1, 3, 2));
  }
}

TEST(InsertLayerTest, into_no_layers_leaves_the_indices_at_zero) {
  for (const char letter : {'x', 'X'}) {
    const auto composition = Composition::create();
    composition->insertLayer(0, layer_of(letter));
    EXPECT_THAT(indices_of(*composition), ElementsAre(0, 0, 0));
    EXPECT_TRUE(composition->isDirty());
  }
}

TEST(InsertLayerTest, moves_the_variable_layer_that_is_at_or_behind_it) {
  const auto variable_after_inserting_at = [](unsigned index) {
    const auto composition = five_layers();
    composition->variable_layer(2);
    composition->insertLayer(index, layer_of('X'));
    return composition->variable_layer();
  };
  EXPECT_EQ(variable_after_inserting_at(0), 3u);
  EXPECT_EQ(variable_after_inserting_at(2), 3u);
  EXPECT_EQ(variable_after_inserting_at(3), 2u);
}

TEST(InsertLayerTest, sets_no_variable_layer) {
  const auto composition = five_layers();
  composition->insertLayer(0, layer_of('X'));
  EXPECT_FALSE(composition->has_variable_layer());
  EXPECT_EQ(composition->variable_layer(), 0u);
}

TEST(InsertLayerTest, makes_it_dirty_even_behind_all_indices) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->insertLayer(5, layer_of('X'));
  EXPECT_TRUE(composition->isDirty());
}

TEST(InsertLayerTest, beyond_the_end_is_refused_before_anything_changes) {
  const StoredObjects stored;
  for (const std::uint64_t index :
       {std::uint64_t(6), std::uint64_t(one_below_zero), beyond_32_bits, last_number}) {
    const auto composition = stored.get<Composition>();
    expect_refused([&] { composition->insertLayer(index, layer_of('X')); });
    EXPECT_TRUE(*composition == *stored.get<Composition>());
    EXPECT_EQ(composition->variable_layer(), 1u);
    EXPECT_FALSE(composition->isDirty());
  }
}

TEST(InsertLayerTest, takes_one_of_its_own_layers) {
  const auto composition = build_up("aB", {0, 0, 0});
  for (int round = 0; round != 4; ++round) {
    composition->insertLayer(0, composition->layers()[1]);
  }
  EXPECT_EQ(letters_of(*composition), "aBaBaB");
}

// Removing.

TEST(RemoveLayerTest, the_first_of_a_core_of_one_layer_widens_the_core_to_the_end) {
  const auto composition = build_up("ABC", {0, 0, 0});
  composition->removeLayer(0);
  EXPECT_LAYERS(composition, "BC", 0, 1, 1);
}

TEST(RemoveLayerTest, the_only_layer_leaves_indices_below_zero) {
  const auto composition = build_up("A", {0, 0, 0});
  composition->removeLayer(0);
  EXPECT_LAYERS(composition, "", 0, one_below_zero, one_below_zero);
}

TEST(RemoveLayerTest, before_the_core_moves_it) {
  const auto composition = build_up("ABCDE", {2, 3, 2});
  composition->removeLayer(0);
  EXPECT_LAYERS(composition, "BCDE", 1, 2, 1);
}

TEST(RemoveLayerTest, before_a_core_with_its_last_layer_structural_moves_that_twice) {
  const auto composition = build_up("ABCD", {2, 3, 3});
  composition->removeLayer(0);
  EXPECT_LAYERS(composition, "BCD", 1, 2, 1);
}

TEST(RemoveLayerTest, the_first_core_layer_leaves_the_first_index) {
  const auto composition = build_up("ABCD", {1, 2, 2});
  composition->removeLayer(1);
  EXPECT_LAYERS(composition, "ACD", 1, 1, 1);
}

TEST(RemoveLayerTest, the_last_core_layer_lowers_the_last_index) {
  const auto composition = five_layers();
  composition->removeLayer(3);
  EXPECT_LAYERS(composition, "ABCE", 1, 2, 2);
}

TEST(RemoveLayerTest, behind_the_core_moves_no_index) {
  const auto composition = five_layers();
  composition->removeLayer(4);
  EXPECT_LAYERS(composition, "ABCD", 1, 3, 2);
}

TEST(RemoveLayerTest, the_variable_layer_clears_it) {
  const auto composition = five_layers();
  composition->variable_layer(2);
  composition->removeLayer(2);
  EXPECT_FALSE(composition->has_variable_layer());
  EXPECT_EQ(composition->variable_layer(), 0u);
}

TEST(RemoveLayerTest, moves_the_variable_layer_that_is_behind_it) {
  const auto before = five_layers();
  before->variable_layer(2);
  before->removeLayer(0);
  EXPECT_EQ(before->variable_layer(), 1u);
  const auto behind = five_layers();
  behind->variable_layer(2);
  behind->removeLayer(3);
  EXPECT_EQ(behind->variable_layer(), 2u);
}

TEST(RemoveLayerTest, makes_it_dirty_even_behind_all_indices) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->removeLayer(4);
  EXPECT_THAT(indices_of(*composition), ElementsAre(1, 3, 2));
  EXPECT_TRUE(composition->isDirty());
}

TEST(RemoveLayerTest, beyond_the_layers_is_refused_before_anything_changes) {
  const StoredObjects stored;
  for (const std::uint64_t index :
       {std::uint64_t(5), std::uint64_t(one_below_zero), beyond_32_bits, last_number}) {
    const auto composition = stored.get<Composition>();
    expect_refused([&] { composition->removeLayer(index); });
    EXPECT_TRUE(*composition == *stored.get<Composition>());
    EXPECT_EQ(composition->variable_layer(), 1u);
    EXPECT_FALSE(composition->isDirty());
  }
  expect_refused([] { Composition::create()->removeLayer(0); });
}

// Moving.

TEST(MoveLayerTest, beyond_the_end_moves_to_the_end) {
  for (const std::uint64_t to : {std::uint64_t(2), std::uint64_t(3), std::uint64_t(99)}) {
    const auto composition = build_up("ABC", {0, 0, 0});
    composition->moveLayer(0, to);
    EXPECT_LAYERS(composition, "BCA", 2, 2, 2);
  }
}

TEST(MoveLayerTest, to_where_it_is_changes_nothing_but_makes_it_dirty) {
  const StoredObjects stored;
  for (std::uint64_t index = 0; index != 5; ++index) {
    const auto composition = stored.get<Composition>();
    composition->moveLayer(index, index);
    EXPECT_TRUE(*composition == *stored.get<Composition>()) << index;
    EXPECT_TRUE(composition->isDirty());
  }
}

TEST(MoveLayerTest, a_core_of_one_layer_goes_with_it) {
  const auto composition = build_up("ABC", {1, 1, 1});
  composition->moveLayer(1, 0);
  EXPECT_LAYERS(composition, "BAC", 0, 0, 0);
}

/// A layer of five that is moved, and what the build-up is then.
struct Move {
  const char* name;
  std::uint64_t from;
  std::uint64_t to;
  const char* letters;
  Core core;
};

void PrintTo(const Move& move, std::ostream* out) { *out << move.name; }

class MovedLayer : public testing::TestWithParam<Move> {};

TEST_P(MovedLayer, takes_its_place_and_the_core_adapts) {
  const Move& move = GetParam();
  const auto composition = five_layers();
  composition->moveLayer(move.from, move.to);
  EXPECT_LAYERS(composition, move.letters, move.core.first, move.core.last, move.core.structural);
}

INSTANTIATE_TEST_SUITE_P(
    Each, MovedLayer,
    testing::Values(
        Move{"within_the_core_takes_the_structural_layer_along", 2, 3, "ABDCE", {1, 3, 3}},
        Move{"from_before_the_core_to_behind_it", 0, 4, "BCDEA", {0, 2, 1}},
        Move{"from_behind_the_core_to_before_it", 4, 0, "EABCD", {2, 4, 3}},
        Move{"from_before_the_core_to_its_first_layer_joins_it", 0, 1, "BACDE", {0, 3, 2}},
        Move{"from_before_the_core_to_its_last_layer_stays_out_of_it", 0, 3, "BCDAE", {0, 2, 1}},
        Move{"from_behind_the_core_to_its_last_layer_joins_it", 4, 3, "ABCED", {1, 4, 2}},
        Move{"from_behind_the_core_to_its_first_layer_stays_out_of_it", 4, 1, "AEBCD", {2, 4, 3}}),
    [](const auto& tested) { return tested.param.name; });

TEST(MoveLayerTest, from_the_core_to_before_it) {
  const auto uncarried = five_layers();
  uncarried->moveLayer(2, 0);
  EXPECT_LAYERS(uncarried, "CABDE", 2, 3, 2);
  const auto carried = build_up("ABcdE", {1, 3, 2});
  carried->moveLayer(2, 0);
  EXPECT_LAYERS(carried, "cABdE", 2, 3, 3);
}

TEST(MoveLayerTest, from_the_core_to_behind_it) {
  const auto uncarried = five_layers();
  uncarried->moveLayer(2, 4);
  EXPECT_LAYERS(uncarried, "ABDEC", 1, 2, 2);
  const auto carried = build_up("AbcDE", {1, 3, 2});
  carried->moveLayer(2, 4);
  EXPECT_LAYERS(carried, "AbDEc", 1, 2, 1);
}

// Moving the core alone would pull the structural layer to "b".
TEST(MoveLayerTest, the_structural_layer_moves_from_where_it_was_before_the_core_moved) {
  const auto composition = build_up("AbC", {0, 2, 2});
  composition->moveLayer(0, 3);
  EXPECT_LAYERS(composition, "bCA", 0, 1, 1);
}

TEST(MoveLayerTest, takes_the_variable_layer_along) {
  const auto variable_after_moving = [](std::uint64_t from, std::uint64_t to) {
    const auto composition = five_layers();
    composition->variable_layer(2);
    composition->moveLayer(from, to);
    EXPECT_TRUE(composition->has_variable_layer());
    return composition->variable_layer();
  };
  EXPECT_EQ(variable_after_moving(2, 0), 0u);
  EXPECT_EQ(variable_after_moving(2, 4), 4u);
  EXPECT_EQ(variable_after_moving(2, 99), 99u);
  EXPECT_EQ(variable_after_moving(0, 4), 1u);
  EXPECT_EQ(variable_after_moving(0, 2), 1u);
  EXPECT_EQ(variable_after_moving(0, 1), 2u);
  EXPECT_EQ(variable_after_moving(4, 0), 3u);
  EXPECT_EQ(variable_after_moving(4, 2), 3u);
  EXPECT_EQ(variable_after_moving(4, 3), 2u);
}

TEST(MoveLayerTest, a_target_beyond_32_bits_counts_in_32_bits_for_what_goes_with_the_layer) {
  const auto composition = five_layers();
  composition->variable_layer(2);
  composition->moveLayer(2, beyond_32_bits + 1);
  EXPECT_EQ(letters_of(*composition), "ABDEC");
  EXPECT_EQ(composition->variable_layer(), 1u);
  EXPECT_THAT(indices_of(*composition), ElementsAre(1, 2, 1));
}

TEST(MoveLayerTest, from_beyond_the_layers_is_refused_and_makes_it_dirty_only) {
  const StoredObjects stored;
  for (const std::uint64_t from :
       {std::uint64_t(5), std::uint64_t(one_below_zero), beyond_32_bits, last_number}) {
    const auto composition = stored.get<Composition>();
    expect_refused([&] { composition->moveLayer(from, 0); });
    EXPECT_TRUE(*composition == *stored.get<Composition>());
    EXPECT_EQ(composition->variable_layer(), 1u);
    EXPECT_TRUE(composition->isDirty());
  }
  expect_refused([] { Composition::create()->moveLayer(0, 0); });
}

}  // namespace
}  // namespace veldra_tests
