// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <cmath>

namespace veldra_tests {
namespace {

/// Rows that another program has written: absent values, gaps, assets.
class RowsAbsent : public LibraryTest {
 protected:
  RowsAbsent() : file(path) {}

  PlainDatabase file;
};

TEST_F(RowsAbsent, a_material_with_every_null_that_the_columns_allow) {
  put_material(file, {{"id", "1"},
                      {"name", "'Oak'"},
                      {"code", "NULL"},
                      {"cut_layer", "NULL"},
                      {"structural_id", "NULL"},
                      {"thermal_id", "NULL"}});
  const auto material = library->get<Material>(1);
  ASSERT_TRUE(material);
  EXPECT_FALSE(material->has_code());
  EXPECT_TRUE(material->code().empty());
  EXPECT_FALSE(material->cut_layer());
  EXPECT_FALSE(material->structuralAsset());
  EXPECT_FALSE(material->thermalAsset());
  EXPECT_FALSE(material->isDirty());
}

TEST_F(RowsAbsent, a_thickness_of_null_is_skipped) {
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}});
  file.execute("INSERT INTO Material_thicknesses VALUES (1, NULL), (1, 12.5), (1, NULL), (1, 10)");
  EXPECT_THAT(library->get<Material>(1)->thicknesses(), ElementsAre(10.0, 12.5));
}

TEST_F(RowsAbsent, a_thickness_that_stands_twice_is_one) {
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}});
  file.execute("INSERT INTO Material_thicknesses VALUES (1, 12.5), (1, 12.5)");
  EXPECT_THAT(library->get<Material>(1)->thicknesses(), ElementsAre(12.5));
}

TEST_F(RowsAbsent, a_custom_value_without_a_property_is_skipped) {
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}});
  put_composition(file, {{"id", "1"}, {"name", "'Wall'"}});
  file.execute(
      "INSERT INTO CustomProperty VALUES (1, 'Price', 4), (2, 'Rating', 5);"
      "INSERT INTO Material_custom_values VALUES (1, NULL, 'lost'), (1, 1, '9.99'), "
      "(1, NULL, 'lost');"
      "INSERT INTO Composition_custom_values VALUES (1, NULL, 'lost'), (1, 2, 'A')");
  const auto material = library->get<Material>(1);
  ASSERT_TRUE(material);
  ASSERT_EQ(material->custom_values().size(), 1u);
  EXPECT_EQ(*material->custom_value("Price"), String("9.99"));
  const auto composition = library->get<Composition>(1);
  ASSERT_TRUE(composition);
  ASSERT_EQ(composition->custom_values().size(), 1u);
  EXPECT_EQ(*composition->custom_value("Rating"), String("A"));
}

TEST_F(RowsAbsent, a_composition_with_every_null_that_the_columns_allow) {
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}});
  put_composition(file, {{"id", "1"},
                         {"name", "'Wall'"},
                         {"entity_layer", "NULL"},
                         {"variable_layer", "NULL"},
                         {"variable_layer_min_thickness", "NULL"},
                         {"variable_layer_max_thickness", "NULL"}});
  file.execute("INSERT INTO Composition_layers VALUES (1, 0, 1, 0, NULL)");
  const auto composition = library->get<Composition>(1);
  ASSERT_TRUE(composition);
  EXPECT_FALSE(composition->entity_layer());
  EXPECT_FALSE(composition->has_variable_layer());
  EXPECT_EQ(composition->variable_layer(), 0u);
  EXPECT_TRUE(std::isnan(composition->variable_layer_min_thickness()));
  EXPECT_FALSE(composition->has_variable_layer_max_thickness());
  EXPECT_EQ(composition->variable_layer_max_thickness(), 0.0);
  EXPECT_TRUE(std::isnan(composition->layer(0).thickness()));
}

TEST_F(RowsAbsent, what_was_null_is_null_after_saving_again) {
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}, {"code", "NULL"}});
  put_composition(file,
                  {{"id", "1"}, {"name", "'Wall'"}, {"variable_layer_min_thickness", "NULL"}});
  file.execute("INSERT INTO Composition_layers VALUES (1, 0, 1, 0, NULL)");
  const std::string before = rows();
  const auto composition = library->get<Composition>(1);
  composition->layer(0, toModify);
  library->save(composition);
  const auto material = library->get<Material>(1);
  material->tags(toModify);
  library->save(material);
  EXPECT_EQ(rows(), before);
}

TEST_F(RowsAbsent, a_list_comes_in_the_order_of_its_indices_with_or_without_gaps) {
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}});
  put_composition(file, {{"id", "1"}, {"name", "'Wall'"}});
  file.execute(
      "INSERT INTO Tag VALUES (1, 'c'), (2, 'a'), (3, 'b');"
      "INSERT INTO Material_tags VALUES (1, 9, 2), (1, 0, 3), (1, 4, 1);"
      "INSERT INTO Composition_tags VALUES (1, 1, 2), (1, 0, 1);"
      "INSERT INTO Composition_layers VALUES (1, 7, 1, 0, 3), (1, 2, 1, 0, 1), (1, 3, 1, 0, 2)");
  const auto material = library->get<Material>(1);
  ASSERT_EQ(material->tags().size(), 3u);
  EXPECT_EQ(material->tags()[0]->name(), String("b"));
  EXPECT_EQ(material->tags()[1]->name(), String("c"));
  EXPECT_EQ(material->tags()[2]->name(), String("a"));
  const auto composition = library->get<Composition>(1);
  EXPECT_EQ(composition->tags()[0]->name(), String("c"));
  ASSERT_EQ(composition->layers().size(), 3u);
  for (unsigned index = 0; index != 3; ++index) {
    EXPECT_EQ(composition->layer(index).thickness(), index + 1.0);
  }
}

TEST_F(RowsAbsent, a_text_ends_at_its_first_zero) {
  put_material(file, {{"id", "1"},
                      {"name", "'Oak'"},
                      {"comments", "CAST(x'610062' AS TEXT)"},
                      {"code", "CAST(x'00' AS TEXT)"}});
  const auto material = library->get<Material>(1);
  EXPECT_EQ(material->comments(), String("a"));
  EXPECT_TRUE(material->has_code());
  EXPECT_EQ(material->code(), String());
}

TEST_F(RowsAbsent, assets_are_read_with_all_their_values) {
  put_structural_asset(file, "3");
  put_thermal_asset(file, "8");
  file.execute(
      "INSERT INTO Tag VALUES (1, 'warm'), (2, 'dry');"
      "INSERT INTO Asset_tags VALUES (3, 0, 2), (3, 1, 1), (3, 2, 2), (8, 0, 1)");
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}, {"structural_id", "3"}, {"thermal_id", "8"}});
  const auto material = library->get<Material>(1);
  ASSERT_TRUE(material);
  EXPECT_EQ(values_of(material->structuralAsset()),
            "object\n"
            "  name 'StructuralAsset 3'\n"
            "  description 'StructuralAsset 3 description'\n"
            "  subclass 'Wood'\n"
            "  density 1.5\n"
            "  specific_heat 2.5\n"
            "  thermal_conductivity 3.5\n"
            "  tag\n    name 'dry'\n  tag\n    name 'warm'\n  tag\n    name 'dry'\n");
  EXPECT_EQ(values_of(material->thermalAsset()),
            "object\n"
            "  name 'ThermalAsset 8'\n"
            "  description 'ThermalAsset 8 description'\n"
            "  subclass 'Solid'\n"
            "  source 'Tables'\n"
            "  density 1.25\n"
            "  emissivity 2.25\n"
            "  specific_heat 3.25\n"
            "  thermal_conductivity 4.25\n"
            "  tag\n    name 'warm'\n");
  EXPECT_EQ(material->structuralAsset()->id(), 3u);
  EXPECT_EQ(material->thermalAsset()->id(), 8u);
  EXPECT_TRUE(material->structuralAsset()->isKindOf(AssetType::Structural));
  EXPECT_TRUE(material->thermalAsset()->isKindOf(AssetType::Thermal));
}

TEST_F(RowsAbsent, asset_numbers_that_nobody_knows_are_nan) {
  put_structural_asset(file, "3");
  put_thermal_asset(file, "8");
  file.execute(
      "UPDATE StructuralAsset SET density=NULL, specific_heat=NULL, thermal_conductivity=NULL;"
      "UPDATE ThermalAsset SET density=NULL, emissivity=NULL, specific_heat=NULL, "
      "thermal_conductivity=NULL");
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}, {"structural_id", "3"}, {"thermal_id", "8"}});
  const auto material = library->get<Material>(1);
  ASSERT_TRUE(material);
  EXPECT_TRUE(std::isnan(material->structuralAsset()->density()));
  EXPECT_TRUE(std::isnan(material->structuralAsset()->specific_heat()));
  EXPECT_TRUE(std::isnan(material->structuralAsset()->thermal_conductivity()));
  EXPECT_TRUE(std::isnan(material->thermalAsset()->density()));
  EXPECT_TRUE(std::isnan(material->thermalAsset()->emissivity()));
  EXPECT_TRUE(std::isnan(material->thermalAsset()->specific_heat()));
  EXPECT_TRUE(std::isnan(material->thermalAsset()->thermal_conductivity()));
}

TEST_F(RowsAbsent, a_changed_asset_is_never_written) {
  put_structural_asset(file, "3");
  put_thermal_asset(file, "8");
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}, {"structural_id", "3"}, {"thermal_id", "8"}});
  const std::string before = rows();
  const auto material = library->get<Material>(1);
  material->structuralAsset()->density(99.0);
  material->structuralAsset()->name("New");
  material->structuralAsset()->addTag(String("new tag").c_str());
  material->thermalAsset()->source("New");
  material->tags(toModify);
  library->save(material);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(library->get<Material>(1)->structuralAsset()->density(), 1.5);
}

TEST_F(RowsAbsent, a_material_keeps_its_assets_when_it_is_saved) {
  put_structural_asset(file, "3");
  put_structural_asset(file, "4");
  put_thermal_asset(file, "8");
  put_material(file, {{"id", "1"}, {"name", "'Oak'"}, {"structural_id", "3"}, {"thermal_id", "8"}});
  put_material(file, {{"id", "2"}, {"name", "'Pine'"}, {"structural_id", "4"}});
  const auto oak = library->get<Material>("Oak");
  oak->structuralAsset(library->get<Material>("Pine")->structuralAsset());
  oak->thermalAsset(nullptr);
  library->save(oak);
  const Columns row = row_of(file, "Material", "1");
  EXPECT_EQ(row.at("structural_id"), "4");
  EXPECT_EQ(row.at("thermal_id"), "NULL");
}

}  // namespace
}  // namespace veldra_tests
