// SPDX-License-Identifier: GPL-2.0-or-later
//
// The values of a composition. What all fields have in common is in composition_fields_test.cpp,
// what its operations do to the layer indices in composition_core_test.cpp,
// composition_layers_test.cpp and composition_model_test.cpp.

#include "objects/stored_objects.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace veldra_tests {
namespace {

using Type = Composition::Type;
using Function = Material::Function;

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

static_assert(!std::is_copy_constructible<Composition>::value, "clone() makes another object");
static_assert(!std::is_move_constructible<Composition>::value, "");
static_assert(!std::is_default_constructible<Composition>::value, "");
static_assert(std::is_copy_assignable<Composition>::value, "");
static_assert(!std::is_polymorphic<Composition>::value, "");
static_assert(std::is_base_of<std::enable_shared_from_this<Composition>, Composition>::value, "");
static_assert(std::is_default_constructible<Composition::Layer>::value, "");
static_assert(std::is_copy_constructible<Composition::Layer>::value, "");
static_assert(std::is_copy_assignable<Composition::Layer>::value, "");

// One layer.

TEST(CompositionLayerTest, has_no_material_no_function_and_a_thickness_of_one_by_default) {
  const Composition::Layer layer;
  EXPECT_EQ(layer.material(), nullptr);
  EXPECT_EQ(int(layer.function()), 0);
  EXPECT_EQ(layer.thickness(), 1.0);
  EXPECT_TRUE(layer == Composition::Layer());
}

TEST(CompositionLayerTest, takes_its_values_in_order) {
  const auto material = Material::create("Oak");
  const Composition::Layer layer(material, Function::Structure, 12.5);
  EXPECT_EQ(layer.material(), material);
  EXPECT_EQ(layer.function(), Function::Structure);
  EXPECT_EQ(layer.thickness(), 12.5);
}

TEST(CompositionLayerTest, can_be_changed_copied_and_assigned) {
  const auto material = Material::create("Oak");
  Composition::Layer layer;
  layer.material(material);
  layer.function(Function(7));
  layer.thickness(-2.5);
  const Composition::Layer copy(layer);
  Composition::Layer target;
  target = layer;
  layer = Composition::Layer();
  EXPECT_EQ(copy.material(), material);
  EXPECT_EQ(int(copy.function()), 7);
  EXPECT_EQ(copy.thickness(), -2.5);
  EXPECT_TRUE(target == copy);
  EXPECT_FALSE(target == layer);
}

TEST(CompositionLayerTest, every_value_counts_in_comparisons) {
  const auto oak = Material::create("Oak");
  const Composition::Layer layer(oak, Function::Structure, 12.5);
  const auto expect_unequal = [&layer](const Composition::Layer& other) {
    EXPECT_FALSE(layer == other);
    EXPECT_FALSE(other == layer);
    EXPECT_TRUE(layer != other);
  };
  EXPECT_TRUE(layer == Composition::Layer(oak, Function::Structure, 12.5));
  EXPECT_FALSE(layer != Composition::Layer(oak, Function::Structure, 12.5));
  EXPECT_TRUE(layer == Composition::Layer(Material::create("Oak"), Function::Structure, 12.5));
  expect_unequal({Material::create("Ash"), Function::Structure, 12.5});
  expect_unequal({nullptr, Function::Structure, 12.5});
  expect_unequal({oak, Function::None, 12.5});
  expect_unequal({oak, Function(2), 12.5});
  expect_unequal({oak, Function::Structure, 12.500000000000002});
  expect_unequal({oak, Function::Structure, not_a_number});
}

TEST(CompositionLayerTest, a_thickness_that_is_none_is_unequal_to_itself) {
  const Composition::Layer layer(nullptr, Function::None, not_a_number);
  EXPECT_FALSE(layer == layer);
}

TEST(CompositionLayerTest, the_very_material_is_equal_even_when_it_is_unequal_to_itself) {
  const auto material = Material::create("Oak");
  material->shading_color({not_a_number, 0, 0, 0});
  ASSERT_FALSE(*material == *material);
  const Composition::Layer layer(material, Function::None, 1.0);
  EXPECT_TRUE(layer == Composition::Layer(material, Function::None, 1.0));
  EXPECT_FALSE(layer == Composition::Layer(material->clone(), Function::None, 1.0));
}

// A new composition.

void expect_defaults(const Composition& composition) {
  EXPECT_EQ(composition.id(), 0u);
  EXPECT_EQ(composition.library(), nullptr);
  EXPECT_TRUE(composition.description().empty());
  EXPECT_TRUE(composition.comments().empty());
  EXPECT_THAT(composition.tags(), IsEmpty());
  EXPECT_EQ(unsigned(composition.type()), 128u);
  EXPECT_EQ(composition.entity_layer(), nullptr);
  EXPECT_THAT(composition.layers(), IsEmpty());
  EXPECT_EQ(composition.first_core_layer(), 0u);
  EXPECT_EQ(composition.last_core_layer(), 0u);
  EXPECT_EQ(composition.structural_layer(), 0u);
  EXPECT_FALSE(composition.has_variable_layer());
  EXPECT_EQ(composition.variable_layer(), 0u);
  EXPECT_EQ(composition.variable_layer_min_thickness(), 0.0);
  EXPECT_FALSE(composition.has_variable_layer_max_thickness());
  EXPECT_EQ(composition.variable_layer_max_thickness(), 0.0);
  EXPECT_THAT(composition.custom_values(), IsEmpty());
}

TEST(CompositionTest, a_new_composition_has_defaults_and_is_clean) {
  const auto composition = Composition::create();
  expect_defaults(*composition);
  EXPECT_TRUE(composition->name().empty());
  EXPECT_FALSE(composition->isDirty());
}

TEST(CompositionTest, a_new_composition_with_a_name_is_dirty) {
  const auto composition = Composition::create("Wall 1");
  expect_defaults(*composition);
  EXPECT_EQ(composition->name().utf8(), "Wall 1");
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionTest, naming_a_new_composition_makes_it_dirty) {
  const auto composition = Composition::create();
  composition->name("Wall 1");
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionTest, gives_the_shared_pointer_that_holds_it) {
  const auto composition = Composition::create();
  EXPECT_EQ(composition->shared_from_this(), composition);
}

TEST(CompositionTest, reading_leaves_it_clean) {
  const StoredObjects stored;
  const std::shared_ptr<const Composition> composition = stored.get<Composition>();
  composition->clone();
  composition->layer(0);
  EXPECT_EQ(composition->layers().size(), 5u);
  EXPECT_TRUE(*composition == *composition);
  EXPECT_FALSE(composition->isDirty());
  EXPECT_EQ(composition->library(), stored.library());
}

// The type.

TEST(CompositionTypeTest, stores_the_one_type_that_a_number_stands_for) {
  const auto stored_for = [](unsigned number) {
    const auto composition = Composition::create();
    composition->type(Type(number));
    return composition->type();
  };
  EXPECT_EQ(stored_for(3), Type::Wall);
  EXPECT_EQ(stored_for(6), Type::Roof);
  EXPECT_EQ(stored_for(2), Type::Floor);
  EXPECT_EQ(stored_for(0), Type::Other);
  EXPECT_EQ(stored_for(8), Type::Other);
  EXPECT_EQ(stored_for(128), Type::Other);
  EXPECT_EQ(stored_for(4294967295u), Type::Wall);
  EXPECT_EQ(stored_for(4294967294u), Type::Roof);
  EXPECT_EQ(stored_for(4294967288u), Type::Other);
  for (unsigned number = 0; number != 1024; ++number) {
    const Type expected = number & 1   ? Type::Wall
                          : number & 4 ? Type::Roof
                          : number & 2 ? Type::Floor
                                       : Type::Other;
    EXPECT_EQ(stored_for(number), expected) << number;
  }
}

TEST(CompositionTypeTest, a_number_that_stands_for_its_type_leaves_it_clean) {
  const auto composition = Composition::create();
  for (const unsigned number : {128u, 0u, 8u, 64u}) composition->type(Type(number));
  EXPECT_FALSE(composition->isDirty());
}

TEST(CompositionTypeTest, another_type_makes_it_dirty) {
  for (const Type type : {Type::Wall, Type::Floor, Type::Roof}) {
    const auto composition = Composition::create();
    composition->type(type);
    EXPECT_EQ(composition->type(), type);
    EXPECT_TRUE(composition->isDirty());
  }
}

// The drawing layer.

TEST(CompositionEntityLayerTest, another_layer_of_the_same_name_makes_it_dirty_and_stays_equal) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  const std::shared_ptr<const veldra::Layer> same_name = stored.get<veldra::Layer>();
  ASSERT_NE(same_name, composition->entity_layer());
  composition->entity_layer(same_name);
  EXPECT_TRUE(composition->isDirty());
  EXPECT_EQ(composition->entity_layer(), same_name);
  EXPECT_TRUE(*composition == *stored.get<Composition>());
}

TEST(CompositionEntityLayerTest, none_counts_in_comparisons) {
  const auto with = Composition::create("Wall");
  const auto without = Composition::create("Wall");
  with->entity_layer(Layer::create("Other"));
  EXPECT_FALSE(*with == *without);
  EXPECT_FALSE(*without == *with);
}

TEST(CompositionEntityLayerTest, dropping_none_leaves_it_clean) {
  const auto composition = Composition::create();
  composition->entity_layer(nullptr);
  EXPECT_FALSE(composition->isDirty());
  composition->entity_layer(Layer::create("Other"));
  EXPECT_TRUE(composition->isDirty());
  composition->entity_layer(nullptr);
  EXPECT_EQ(composition->entity_layer(), nullptr);
}

TEST(CompositionEntityLayerTest, may_be_of_any_library) {
  const StoredObjects here;
  const StoredObjects there;
  const auto composition = here.get<Composition>();
  const std::shared_ptr<const veldra::Layer> layer = there.get<veldra::Layer>();
  composition->entity_layer(layer);
  EXPECT_EQ(composition->entity_layer(), layer);
}

// The variable layer and its thicknesses.

TEST(CompositionVariableLayerTest, setting_it_to_zero_makes_it_set_and_dirty) {
  const auto composition = Composition::create();
  composition->variable_layer(0);
  EXPECT_TRUE(composition->has_variable_layer());
  EXPECT_EQ(composition->variable_layer(), 0u);
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionVariableLayerTest, is_checked_against_nothing) {
  const auto composition = Composition::create();
  composition->variable_layer(4294967295u);
  EXPECT_EQ(composition->variable_layer(), 4294967295u);
}

TEST(CompositionVariableLayerTest, clearing_it_makes_it_dirty_even_when_unset) {
  const auto composition = Composition::create();
  composition->clear_variable_layer();
  EXPECT_TRUE(composition->isDirty());
  EXPECT_FALSE(composition->has_variable_layer());
}

TEST(CompositionVariableLayerTest, clearing_it_leaves_zero) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->clear_variable_layer();
  EXPECT_FALSE(composition->has_variable_layer());
  EXPECT_EQ(composition->variable_layer(), 0u);
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionVariableLayerTest, setting_the_maximum_to_zero_makes_it_set_and_dirty) {
  const auto composition = Composition::create();
  composition->variable_layer_max_thickness(0.0);
  EXPECT_TRUE(composition->has_variable_layer_max_thickness());
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionVariableLayerTest, clearing_the_maximum_makes_it_dirty_even_when_unset) {
  const auto composition = Composition::create();
  composition->clear_variable_layer_max_thickness();
  EXPECT_TRUE(composition->isDirty());
  EXPECT_FALSE(composition->has_variable_layer_max_thickness());
}

TEST(CompositionVariableLayerTest, clearing_the_maximum_leaves_zero) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->clear_variable_layer_max_thickness();
  EXPECT_FALSE(composition->has_variable_layer_max_thickness());
  EXPECT_EQ(composition->variable_layer_max_thickness(), 0.0);
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionVariableLayerTest, the_thicknesses_are_not_compared_with_each_other) {
  const auto composition = Composition::create();
  composition->variable_layer_min_thickness(100.0);
  composition->variable_layer_max_thickness(-5.0);
  EXPECT_EQ(composition->variable_layer_min_thickness(), 100.0);
  EXPECT_EQ(composition->variable_layer_max_thickness(), -5.0);
  EXPECT_FALSE(composition->has_variable_layer());
}

TEST(CompositionVariableLayerTest, a_minimum_of_zero_leaves_a_new_composition_clean) {
  const auto composition = Composition::create();
  composition->variable_layer_min_thickness(0.0);
  composition->variable_layer_min_thickness(-0.0);
  EXPECT_FALSE(composition->isDirty());
}

/// Sets the thickness once, and again after it was saved, which leaves it in the object.
void expect_nan_to_make_it_dirty_each_time(Composition& composition,
                                           void (Composition::*set)(double)) {
  for (int times = 0; times != 2; ++times) {
    ASSERT_FALSE(composition.isDirty());
    (composition.*set)(not_a_number);
    EXPECT_TRUE(composition.isDirty());
    composition.save();
  }
}

TEST(CompositionVariableLayerTest, a_minimum_of_nan_makes_it_dirty_each_time_and_unequal) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  expect_nan_to_make_it_dirty_each_time(*composition, &Composition::variable_layer_min_thickness);
  EXPECT_FALSE(*composition == *composition);
  EXPECT_TRUE(*composition != *composition);
}

TEST(CompositionVariableLayerTest, a_maximum_of_nan_makes_it_dirty_each_time) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  expect_nan_to_make_it_dirty_each_time(*composition, &Composition::variable_layer_max_thickness);
  EXPECT_TRUE(*composition == *composition) << "only its presence counts";
}

TEST(CompositionVariableLayerTest, only_presence_counts_in_comparisons) {
  const auto with = [](unsigned index, double maximum) {
    const auto composition = Composition::create("Wall");
    composition->variable_layer(index);
    composition->variable_layer_max_thickness(maximum);
    return composition;
  };
  EXPECT_TRUE(*with(1, 2.0) == *with(2, 2.0));
  EXPECT_TRUE(*with(1, 2.0) == *with(1, 3.0));
  EXPECT_FALSE(*with(0, 0.0) == *Composition::create("Wall"));
  const auto without_index = with(1, 2.0);
  without_index->clear_variable_layer();
  EXPECT_FALSE(*without_index == *with(1, 2.0));
  const auto without_maximum = with(1, 2.0);
  without_maximum->clear_variable_layer_max_thickness();
  EXPECT_FALSE(*without_maximum == *with(1, 2.0));
}

// Texts.

TEST(CompositionTest, an_empty_text_equals_a_missing_one_and_leaves_it_clean) {
  const auto composition = Composition::create();
  composition->name("");
  composition->description("");
  composition->comments("");
  EXPECT_FALSE(composition->isDirty());
}

// Layers as a list.

TEST(CompositionLayersTest, are_compared_in_order) {
  const auto with = [](std::vector<double> thicknesses) {
    const auto composition = Composition::create("Wall");
    for (const double thickness : thicknesses) {
      composition->appendLayer({nullptr, Function::None, thickness});
    }
    return composition;
  };
  EXPECT_TRUE(*with({1, 2}) == *with({1, 2}));
  EXPECT_FALSE(*with({1, 2}) == *with({2, 1}));
  EXPECT_FALSE(*with({1, 2}) == *with({1, 2, 3}));
  EXPECT_FALSE(*with({1, 2, 3}) == *with({1, 2}));
  EXPECT_FALSE(*with({1}) == *with({}));
}

TEST(CompositionLayersTest, are_equal_with_materials_of_equal_values) {
  const auto of = [](const std::shared_ptr<const Material>& material) {
    const auto composition = Composition::create("Wall");
    composition->appendLayer({material, Function::None, 1.0});
    return composition;
  };
  EXPECT_TRUE(*of(Material::create("Oak")) == *of(Material::create("Oak")));
  EXPECT_FALSE(*of(Material::create("Oak")) == *of(Material::create("Ash")));
  EXPECT_FALSE(*of(Material::create("Oak")) == *of(nullptr));
  EXPECT_TRUE(*of(nullptr) == *of(nullptr));
}

TEST(CompositionLayersTest, each_access_for_changing_makes_it_dirty) {
  const StoredObjects stored;
  const auto by_index = stored.get<Composition>();
  by_index->layer(0, toModify);
  EXPECT_TRUE(by_index->isDirty());
  const auto by_begin = stored.get<Composition>();
  by_begin->layers_begin(toModify);
  EXPECT_TRUE(by_begin->isDirty());
  const auto by_end = stored.get<Composition>();
  by_end->layers_end(toModify);
  EXPECT_TRUE(by_end->isDirty());
}

TEST(CompositionLayersTest, access_for_changing_reaches_the_layers) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  composition->layer(4, toModify).thickness(5.0);
  EXPECT_EQ(composition->layer(4).thickness(), 5.0);
  EXPECT_EQ(&composition->layer(4, toModify), &composition->layers()[4]);
  EXPECT_EQ(composition->layers_end(toModify) - composition->layers_begin(toModify), 5);
  for (auto layer = composition->layers_begin(toModify); layer != composition->layers_end(toModify);
       ++layer) {
    layer->function(Function::Structure);
  }
  for (const Composition::Layer& layer : composition->layers()) {
    EXPECT_EQ(layer.function(), Function::Structure);
  }
}

TEST(CompositionLayersTest, an_index_beyond_the_layers_is_refused) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  const Composition& read_only = *composition;
  for (const std::uint64_t index :
       {std::uint64_t(5), std::uint64_t(6), std::uint64_t(4294967295), std::uint64_t(4294967296),
        std::uint64_t(4294967297), std::uint64_t(18446744073709551615u)}) {
    const Thrown reading = thrown_by([&] { read_only.layer(index); });
    EXPECT_EQ(reading, "std::out_of_range");
    EXPECT_EQ(reading.text, "invalid vector<T> subscript");
    EXPECT_FALSE(composition->isDirty());
  }
  const Thrown changing = thrown_by([&] { composition->layer(5, toModify); });
  EXPECT_EQ(changing, "std::out_of_range");
  EXPECT_EQ(changing.text, "invalid vector<T> subscript");
  EXPECT_FALSE(composition->isDirty());
  EXPECT_EQ(thrown_by([] { Composition::create()->layer(0); }), "std::out_of_range");
}

// Cloning and assigning.

TEST(CompositionCopyTest, a_clone_of_a_new_composition_is_dirty) {
  const auto clone = Composition::create()->clone();
  expect_defaults(*clone);
  EXPECT_TRUE(clone->isDirty());
}

TEST(CompositionCopyTest, a_clone_shares_what_it_refers_to) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  const auto clone = composition->clone();
  EXPECT_EQ(clone->entity_layer(), composition->entity_layer());
  EXPECT_EQ(clone->tags()[0], composition->tags()[0]);
  EXPECT_EQ(clone->layer(0).material(), composition->layer(0).material());
}

TEST(CompositionCopyTest, copies_keep_what_comparisons_do_not_see) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  const auto assigned = Composition::create();
  *assigned = *composition;
  for (const auto& copy : {composition->clone(), assigned}) {
    EXPECT_EQ(copy->variable_layer(), 1u);
    EXPECT_EQ(copy->variable_layer_max_thickness(), 80.5);
  }
}

TEST(CompositionCopyTest, indices_are_copied_as_they_are) {
  const auto composition = Composition::create("Wall");
  composition->last_core_layer(7);
  composition->structural_layer(5);
  ASSERT_EQ(composition->last_core_layer(), 7u);
  const auto assigned = Composition::create();
  *assigned = *composition;
  for (const auto& copy : {composition->clone(), assigned}) {
    EXPECT_EQ(copy->first_core_layer(), 0u);
    EXPECT_EQ(copy->last_core_layer(), 7u);
    EXPECT_EQ(copy->structural_layer(), 5u);
  }
}

TEST(CompositionCopyTest, an_assignment_of_a_new_composition_clears_all) {
  const StoredObjects stored;
  const auto target = stored.get<Composition>();
  *target = *Composition::create();
  EXPECT_EQ(target->id(), StoredObjects::id);
  EXPECT_EQ(target->library(), stored.library());
  EXPECT_TRUE(target->isDirty());
  const auto clone = target->clone();
  expect_defaults(*clone);
}

TEST(CompositionCopyTest, an_assignment_makes_it_dirty_even_without_a_difference) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  *composition = *stored.get<Composition>();
  EXPECT_TRUE(composition->isDirty());
}

TEST(CompositionCopyTest, an_assignment_leaves_its_source_clean) {
  const StoredObjects stored;
  const auto source = stored.get<Composition>();
  const auto target = Composition::create();
  *target = *source;
  EXPECT_FALSE(source->isDirty());
  EXPECT_EQ(target->id(), 0u);
  EXPECT_EQ(target->library(), nullptr);
}

TEST(CompositionCopyTest, an_assignment_to_itself_keeps_its_values_and_makes_it_dirty) {
  const StoredObjects stored;
  const auto composition = stored.get<Composition>();
  const Composition& itself = *composition;
  *composition = itself;
  EXPECT_TRUE(*composition == *stored.get<Composition>());
  EXPECT_TRUE(composition->isDirty());
}

}  // namespace
}  // namespace veldra_tests
