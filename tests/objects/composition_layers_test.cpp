// SPDX-License-Identifier: GPL-2.0-or-later
//
// What adding, removing and moving layers does to their indices, example by example.

#include "objects/lettered_layers.hpp"
#include "objects/stored_objects.hpp"

namespace veldra_tests {
namespace {

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

void expect_inserted(const Lettered& before, std::uint64_t index, const Lettered& after) {
  const auto composition = build_up(before.letters, before.core);
  composition->insertLayer(index, layer_of('X'));
  EXPECT_LAYERS(composition, after.letters, after.core.first, after.core.last,
                after.core.structural);
}

TEST(InsertLayerTest, before_a_core_of_one_layer_makes_it_two_layers_deep) {
  expect_inserted({"ABC", {1, 1, 1}}, 0, {"XABC", {2, 3, 3}});
}

TEST(InsertLayerTest, at_a_core_of_one_layer_makes_it_two_layers_deep) {
  expect_inserted({"ABC", {1, 1, 1}}, 1, {"AXBC", {2, 3, 3}});
}

TEST(InsertLayerTest, before_a_core_of_one_layer_at_the_end_is_limited_to_the_layers) {
  expect_inserted({"ABC", {2, 2, 2}}, 0, {"XABC", {3, 3, 3}});
}

TEST(InsertLayerTest, before_the_core_moves_it) { expect_inserted(five, 0, {"XABCDE", {2, 4, 3}}); }

TEST(InsertLayerTest, at_the_first_core_layer_moves_the_core) {
  expect_inserted(five, 1, {"AXBCDE", {2, 4, 3}});
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

void expect_removed(const Lettered& before, std::uint64_t index, const Lettered& after) {
  const auto composition = build_up(before.letters, before.core);
  composition->removeLayer(index);
  EXPECT_LAYERS(composition, after.letters, after.core.first, after.core.last,
                after.core.structural);
}

TEST(RemoveLayerTest, the_first_of_a_core_of_one_layer_widens_the_core_to_the_end) {
  expect_removed({"ABC", {0, 0, 0}}, 0, {"BC", {0, 1, 1}});
}

TEST(RemoveLayerTest, the_only_layer_leaves_indices_below_zero) {
  expect_removed({"A", {0, 0, 0}}, 0, {"", {0, one_below_zero, one_below_zero}});
}

TEST(RemoveLayerTest, before_the_core_moves_it) {
  expect_removed({"ABCDE", {2, 3, 2}}, 0, {"BCDE", {1, 2, 1}});
}

TEST(RemoveLayerTest, before_a_core_with_its_last_layer_structural_moves_that_twice) {
  expect_removed({"ABCD", {2, 3, 3}}, 0, {"BCD", {1, 2, 1}});
}

TEST(RemoveLayerTest, the_first_core_layer_leaves_the_first_index) {
  expect_removed({"ABCD", {1, 2, 2}}, 1, {"ACD", {1, 1, 1}});
}

TEST(RemoveLayerTest, the_last_core_layer_lowers_the_last_index) {
  expect_removed(five, 3, {"ABCE", {1, 2, 2}});
}

TEST(RemoveLayerTest, behind_the_core_moves_no_index) {
  expect_removed(five, 4, {"ABCD", {1, 3, 2}});
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
