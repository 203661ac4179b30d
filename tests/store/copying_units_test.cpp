// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"
#include "support/units.hpp"

#include <cmath>

namespace veldra_tests {
namespace {

class CopyingBetweenUnits : public CopyingTest {
 protected:
  CopyingBetweenUnits() : inches(create("inches.lib", Unit::Inches)) {}

  static std::shared_ptr<Composition> wall_of(const std::vector<double>& thicknesses) {
    const auto wall = named<Composition>("Wall");
    for (std::size_t i = 0; i != thicknesses.size(); ++i) {
      wall->appendLayer({named<Material>("material " + std::to_string(i)), Material::Function::None,
                         thicknesses[i]});
    }
    return wall;
  }

  static std::vector<double> thicknesses_of(const Composition& composition) {
    std::vector<double> thicknesses;
    for (const auto& layer : composition.layers()) thicknesses.push_back(layer.thickness());
    return thicknesses;
  }

  /// Of a wall that is there when one of 2 inches is copied, and it is decided so.
  double thickness_after(Library::Reactor::Decision decision) {
    library->save(wall_of({999.0}));
    inches->save(wall_of({2.0}));
    reactor.decision = decision;
    library->copyAll(inches);
    return library->get<Composition>("Wall")->layer(0).thickness();
  }

  const std::shared_ptr<Library> inches;
};

TEST_F(CopyingBetweenUnits, inches_become_millimetres) {
  const auto wall = wall_of({2.0, 0.375, 1e-3});
  wall->variable_layer_min_thickness(3.3);
  wall->variable_layer_max_thickness(7.7);
  inches->save(wall);

  library->copyAll(inches);

  const auto twin = library->get<Composition>("Wall");
  EXPECT_EQ(twin->layer(0).thickness(), 50.8);
  EXPECT_THAT(thicknesses_of(*twin),
              ElementsAre(2.0 * kMillimetresPerInch, 0.375 * kMillimetresPerInch,
                          1e-3 * kMillimetresPerInch));
  EXPECT_EQ(twin->variable_layer_min_thickness(), 3.3 * kMillimetresPerInch);
  EXPECT_EQ(twin->variable_layer_max_thickness(), 7.7 * kMillimetresPerInch);
}

TEST_F(CopyingBetweenUnits, millimetres_become_inches) {
  const auto wall = wall_of({175.0, 12.5});
  wall->variable_layer_min_thickness(80.0);
  wall->variable_layer_max_thickness(240.0);
  library->save(wall);

  inches->copyAll(library);

  const auto twin = inches->get<Composition>("Wall");
  EXPECT_THAT(thicknesses_of(*twin),
              ElementsAre(175.0 * kInchesPerMillimetre, 12.5 * kInchesPerMillimetre));
  EXPECT_EQ(twin->variable_layer_min_thickness(), 80.0 * kInchesPerMillimetre);
  EXPECT_EQ(twin->variable_layer_max_thickness(), 240.0 * kInchesPerMillimetre);
}

TEST_F(CopyingBetweenUnits, an_unset_maximum_stays_unset_and_the_index_stays) {
  const auto wall = wall_of({2.0});
  wall->variable_layer(25);
  inches->save(wall);

  library->copyAll(inches);

  const auto twin = library->get<Composition>("Wall");
  EXPECT_FALSE(twin->has_variable_layer_max_thickness());
  EXPECT_TRUE(twin->has_variable_layer());
  EXPECT_EQ(twin->variable_layer(), 25u);
  EXPECT_EQ(twin->variable_layer_min_thickness(), 0.0);
}

TEST_F(CopyingBetweenUnits, a_maximum_without_a_variable_layer_is_converted) {
  const auto wall = wall_of({});
  wall->variable_layer_max_thickness(1.0);
  inches->save(wall);

  library->copyAll(inches);

  const auto twin = library->get<Composition>("Wall");
  EXPECT_FALSE(twin->has_variable_layer());
  EXPECT_EQ(twin->variable_layer_max_thickness(), kMillimetresPerInch);
}

TEST_F(CopyingBetweenUnits, the_thicknesses_of_materials_are_converted) {
  const auto oak = named<Material>("Oak");
  oak->thicknesses(veldra::toModify) = {0.5, 2.0, 4.0};
  inches->save(oak);

  library->copy<Material>(inches, Ids{oak->id()});

  EXPECT_THAT(library->get<Material>("Oak")->thicknesses(),
              ElementsAre(0.5 * kMillimetresPerInch, 50.8, 4.0 * kMillimetresPerInch));
  EXPECT_THAT(oak->thicknesses(), ElementsAre(0.5, 2.0, 4.0));
}

TEST_F(CopyingBetweenUnits, the_materials_of_a_composition_are_converted_once) {
  const auto wall = named<Composition>("Wall");
  const auto oak = named<Material>("Oak");
  oak->thicknesses(veldra::toModify) = {2.0};
  wall->appendLayer({oak, Material::Function::None, 1.0});
  wall->appendLayer({oak, Material::Function::None, 1.0});
  inches->save(wall);

  library->copyAll(inches);

  EXPECT_THAT(library->get<Material>("Oak")->thicknesses(), ElementsAre(50.8));
  EXPECT_THAT(library->get<Composition>("Wall")->layer(1).material()->thicknesses(),
              ElementsAre(50.8));
}

TEST_F(CopyingBetweenUnits, a_single_save_converts_as_well) {
  const auto wall = wall_of({2.0});
  inches->save(wall);

  const auto twin = library->save(wall);

  EXPECT_EQ(twin->layer(0).thickness(), 50.8);
  EXPECT_EQ(wall->layer(0).thickness(), 2.0);
  EXPECT_FALSE(twin->isDirty());
}

TEST_F(CopyingBetweenUnits, what_is_no_length_stays) {
  const auto wall = full_composition("Wall");
  library->save(wall);
  auto expected = full_composition("Wall");
  for (auto layer = expected->layers_begin(veldra::toModify);
       layer != expected->layers_end(veldra::toModify); ++layer) {
    layer->thickness(layer->thickness() * kInchesPerMillimetre);
    const auto material = full_material(layer->material()->name().utf8());
    material->thicknesses(veldra::toModify) = {12.5 * kInchesPerMillimetre,
                                               50.0 * kInchesPerMillimetre};
    layer->material(material);
  }
  expected->variable_layer_min_thickness(60.5 * kInchesPerMillimetre);
  expected->variable_layer_max_thickness(240.25 * kInchesPerMillimetre);

  inches->copyAll(library);

  EXPECT_EQ(values_of(inches->get<Composition>("Wall")), values_of(expected));
}

TEST_F(CopyingBetweenUnits, the_same_unit_leaves_every_bit) {
  const auto wall = wall_of({0.1, 1.0 / 3.0, 1e-300});
  wall->variable_layer_max_thickness(0.7);
  put(wall);

  library->copyAll(source);

  EXPECT_EQ(values_of(library->get<Composition>("Wall")), values_of(wall));
}

TEST_F(CopyingBetweenUnits, a_unit_that_nobody_knows_converts_nothing) {
  const auto unknown = create("unknown.lib", static_cast<Unit>(7));
  unknown->save(wall_of({2.0}));

  library->copyAll(unknown);
  inches->copyAll(unknown);

  EXPECT_EQ(library->get<Composition>("Wall")->layer(0).thickness(), 2.0);
  EXPECT_EQ(inches->get<Composition>("Wall")->layer(0).thickness(), 2.0);
}

TEST_F(CopyingBetweenUnits, an_overwritten_object_gets_converted_values) {
  EXPECT_EQ(thickness_after(Library::Reactor::Overwrite), 50.8);
}

TEST_F(CopyingBetweenUnits, an_object_that_is_taken_as_it_is_is_not_converted) {
  EXPECT_EQ(thickness_after(Library::Reactor::UseExisting), 999.0);
}

TEST_F(CopyingBetweenUnits, there_and_back_again_is_nearly_the_same) {
  std::vector<double> lengths;
  for (double length = 1e-6; length < 1e9; length *= 1.37) lengths.push_back(length);
  const auto wall = named<Composition>("Wall");
  const auto oak = named<Material>("Oak");
  for (const double length : lengths) wall->appendLayer({oak, Material::Function::None, length});
  put(wall);

  inches->copyAll(source);
  library->copyAll(inches);

  const auto twin = library->get<Composition>("Wall");
  ASSERT_EQ(twin->layers().size(), lengths.size());
  for (std::size_t i = 0; i != lengths.size(); ++i) {
    const double relative = std::fabs(twin->layer(i).thickness() / lengths[i] - 1.0);
    EXPECT_LE(relative, 1e-12) << lengths[i];
  }
}

TEST_F(CopyingBetweenUnits, a_way_by_a_library_of_the_same_unit_changes_nothing) {
  inches->save(full_composition("Wall"));
  const auto between = create("between.lib", Unit::Inches);

  between->copyAll(inches);
  library->copyAll(between);
  source->copyAll(inches);

  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingBetweenUnits, both_sources_of_one_mapping_are_converted_by_their_own_unit) {
  source->save(wall_of({2.0}));
  const auto roof = named<Composition>("Roof");
  roof->appendLayer({named<Material>("Slate"), Material::Function::None, 2.0});
  inches->save(roof);
  IdMapping mapping = fresh_mapping();

  library->copyAll(source, mapping);
  library->copyAll(inches, mapping);

  EXPECT_EQ(library->get<Composition>("Wall")->layer(0).thickness(), 2.0);
  EXPECT_EQ(library->get<Composition>("Roof")->layer(0).thickness(), 50.8);
}

}  // namespace
}  // namespace veldra_tests
