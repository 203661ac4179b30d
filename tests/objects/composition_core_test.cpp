// SPDX-License-Identifier: GPL-2.0-or-later
//
// What setting one of the indices of layers does to the others, example by example.

#include "objects/lettered_layers.hpp"
#include "objects/stored_objects.hpp"

namespace veldra_tests {
namespace {

// The first core layer.

void expect_with_first_core_layer(unsigned index, const Core& core) {
  const auto composition = five_layers();
  composition->first_core_layer(index);
  EXPECT_LAYERS(composition, "ABCDE", core.first, core.last, core.structural);
}

TEST(FirstCoreLayerTest, within_the_core_narrows_it) { expect_with_first_core_layer(2, {2, 3, 2}); }

TEST(FirstCoreLayerTest, before_the_core_widens_it) { expect_with_first_core_layer(0, {0, 3, 2}); }

TEST(FirstCoreLayerTest, behind_the_structural_layer_moves_it) {
  expect_with_first_core_layer(3, {3, 3, 3});
}

TEST(FirstCoreLayerTest, behind_the_core_raises_the_last_core_layer) {
  expect_with_first_core_layer(4, {4, 4, 4});
}

TEST(FirstCoreLayerTest, beyond_the_layers_becomes_the_last_layer) {
  expect_with_first_core_layer(9, {4, 4, 4});
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

void expect_with_last_core_layer(unsigned index, const Core& core) {
  const auto composition = five_layers();
  composition->last_core_layer(index);
  EXPECT_LAYERS(composition, "ABCDE", core.first, core.last, core.structural);
}

TEST(LastCoreLayerTest, within_the_core_narrows_it) { expect_with_last_core_layer(2, {1, 2, 2}); }

TEST(LastCoreLayerTest, before_the_structural_layer_moves_it) {
  expect_with_last_core_layer(1, {1, 1, 1});
}

TEST(LastCoreLayerTest, before_the_core_lowers_the_first_core_layer) {
  expect_with_last_core_layer(0, {0, 0, 0});
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
  composition->layer(2, toModify).function(Material::Function(2));
  composition->layer(3, toModify).function(Material::Function(-1));
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

}  // namespace
}  // namespace veldra_tests
