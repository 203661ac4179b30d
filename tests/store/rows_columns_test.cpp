// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

namespace veldra_tests {
namespace {

/// Where each value of an object is in the file: columns and rows as plain SQLite sees them.
class RowsColumns : public LibraryTest {
 protected:
  Columns row(const std::string& table, unsigned id) const {
    PlainDatabase file(path);
    return row_of(file, table, std::to_string(id));
  }

  /// A row that was written over is the same as one that was written at once.
  template <class T>
  void expect_updated_as_inserted() {
    const auto object = library->save(named<T>("Oak"));
    *object = *full<T>("Oak");
    library->save(object);
    create("other.lib")->save(full<T>("Oak"));
    PlainDatabase other_file(folder / "other.lib");
    EXPECT_EQ(row(kind_of<T>(), 1), row_of(other_file, kind_of<T>(), "1"));
    EXPECT_EQ(row(kind_of<T>(), 1)["comments"], "'Oak comments'");
  }
};

TEST_F(RowsColumns, the_simple_kinds_are_a_name) {
  const auto tag = library->save(Tag::create("Warm"));
  const auto type = library->save(MaterialType::create("Timber"));
  const auto layer = library->save(Layer::create("Section"));
  EXPECT_EQ(row("Tag", tag->id()), (Columns{{"id", "1"}, {"name", "'Warm'"}}));
  EXPECT_EQ(row("MaterialType", type->id()), (Columns{{"id", "14"}, {"name", "'Timber'"}}));
  EXPECT_EQ(row("Layer", layer->id()), (Columns{{"id", "1"}, {"name", "'Section'"}}));
}

TEST_F(RowsColumns, a_property_is_a_name_and_the_kind_of_object) {
  library->save(CustomProperty::create("Price", ObjectType::Material));
  library->save(CustomProperty::create("Rating", ObjectType::Composition));
  library->save(CustomProperty::create("Any", ObjectType{}));
  EXPECT_THAT(
      query("SELECT id, name, object_type FROM CustomProperty ORDER BY id"),
      ElementsAre(Row{"1", "'Price'", "4"}, Row{"2", "'Rating'", "5"}, Row{"3", "'Any'", "0"}));
}

TEST_F(RowsColumns, a_material_has_a_column_for_each_value) {
  const auto oak = library->save(full_material("Oak"));
  const Columns expected = {{"id", "1"},
                            {"name", "'Oak'"},
                            {"description", "'Oak description'"},
                            {"type", "14"},
                            {"comments", "'Oak comments'"},
                            {"code", "'Oak code'"},
                            {"cost", "'Oak cost'"},
                            {"keynote", "'Oak keynote'"},
                            {"label", "'Oak label'"},
                            {"manufacturer", "'Oak manufacturer'"},
                            {"mark", "'Oak mark'"},
                            {"model", "'Oak model'"},
                            {"url", "'Oak url'"},
                            {"classification", "'Oak classification'"},
                            {"shading_use_appearance", "1"},
                            {"shading_color_red", real(0.01)},
                            {"shading_color_green", real(0.02)},
                            {"shading_color_blue", real(0.03)},
                            {"shading_color_alpha", real(0.04)},
                            {"surface_pattern_type", "7"},
                            {"surface_pattern_name", "'Oak surface'"},
                            {"surface_pattern_scale", real(1.25)},
                            {"surface_pattern_angle", real(0.5)},
                            {"surface_pattern_cross", "1"},
                            {"surface_pattern_color_red", real(0.11)},
                            {"surface_pattern_color_green", real(0.12)},
                            {"surface_pattern_color_blue", real(0.13)},
                            {"surface_pattern_color_alpha", real(0.14)},
                            {"surface_pattern_alignment_x", real(-3.5)},
                            {"surface_pattern_alignment_y", real(4.75)},
                            {"cut_pattern_type", "0"},
                            {"cut_pattern_name", "'Oak cut'"},
                            {"cut_pattern_scale", real(2.25)},
                            {"cut_pattern_angle", real(-0.75)},
                            {"cut_pattern_cross", "1"},
                            {"cut_pattern_color_red", real(0.21)},
                            {"cut_pattern_color_green", real(0.22)},
                            {"cut_pattern_color_blue", real(0.23)},
                            {"cut_pattern_color_alpha", real(0.24)},
                            {"cut_layer", "1"},
                            {"appearance", "'Oak appearance'"},
                            {"structural_id", "NULL"},
                            {"thermal_id", "NULL"},
                            {"function", "1"},
                            {"allow_custom_thickness", "0"}};
  EXPECT_EQ(row("Material", oak->id()), expected);
  EXPECT_EQ(row("MaterialType", 14)["name"], "'Oak type'");
  EXPECT_EQ(row("Layer", 1)["name"], "'Oak layer'");
}

TEST_F(RowsColumns, a_material_has_side_rows_for_its_lists) {
  library->save(full_material("Oak"));
  EXPECT_THAT(query("SELECT object_id, \"index\", name FROM Material_tags JOIN Tag ON id=tag_id "
                    "ORDER BY \"index\""),
              ElementsAre(Row{"1", "0", "'Oak tag 1'"}, Row{"1", "1", "'Oak tag 2'"},
                          Row{"1", "2", "'Oak tag 1'"}));
  EXPECT_THAT(query("SELECT object_id, value FROM Material_thicknesses"),
              UnorderedElementsAre(Row{"1", real(12.5)}, Row{"1", real(50)}));
  EXPECT_THAT(query("SELECT object_id, name, object_type, value FROM Material_custom_values JOIN "
                    "CustomProperty ON id=property_id"),
              UnorderedElementsAre(Row{"1", "'Oak property 1'", "4", "'Oak value 1'"},
                                   Row{"1", "'Oak property 2'", "4", "'Oak value 2'"}));
}

TEST_F(RowsColumns, a_material_of_defaults_has_nulls_and_empty_texts) {
  const auto material = library->save(Material::create("Plain"));
  Columns columns = row("Material", material->id());
  for (const char* text :
       {"description", "comments", "cost", "keynote", "label", "manufacturer", "mark", "model",
        "url", "classification", "appearance", "surface_pattern_name", "cut_pattern_name"}) {
    EXPECT_EQ(columns[text], "''") << text;
  }
  for (const char* absent : {"code", "cut_layer", "structural_id", "thermal_id"}) {
    EXPECT_EQ(columns[absent], "NULL") << absent;
  }
  EXPECT_EQ(columns["surface_pattern_type"], "-1");
  EXPECT_EQ(columns["cut_pattern_type"], "-1");
  EXPECT_EQ(columns["cut_pattern_scale"], "1");
  EXPECT_EQ(columns["allow_custom_thickness"], "1");
  EXPECT_EQ(columns["function"], "0");
  EXPECT_THAT(query("SELECT * FROM Material_tags"), IsEmpty());
  EXPECT_THAT(query("SELECT * FROM Material_thicknesses"), IsEmpty());
  EXPECT_THAT(query("SELECT * FROM Material_custom_values"), IsEmpty());
}

TEST_F(RowsColumns, an_empty_code_is_a_code) {
  const auto material = Material::create("Plain");
  material->code("");
  library->save(material);
  EXPECT_EQ(row("Material", 1)["code"], "''");
  EXPECT_TRUE(library->get<Material>(1)->has_code());
  material->clear_code();
  library->save(material);
  EXPECT_EQ(row("Material", 1)["code"], "NULL");
  EXPECT_FALSE(library->get<Material>(1)->has_code());
}

TEST_F(RowsColumns, a_composition_has_a_column_for_each_value) {
  library->save(full_composition("Wall"));
  const Columns expected = {{"id", "1"},
                            {"name", "'Wall'"},
                            {"description", "'Wall description'"},
                            {"type", "4"},
                            {"entity_layer", "1"},
                            {"comments", "'Wall comments'"},
                            {"first_core_layer", "1"},
                            {"last_core_layer", "3"},
                            {"structural_layer", "2"},
                            {"variable_layer", "5"},
                            {"variable_layer_min_thickness", real(60.5)},
                            {"variable_layer_max_thickness", real(240.25)}};
  EXPECT_EQ(row("Composition", 1), expected);
  EXPECT_EQ(row("Layer", 1)["name"], "'Wall layer'");
}

TEST_F(RowsColumns, a_composition_has_side_rows_for_its_lists) {
  library->save(full_composition("Wall"));
  EXPECT_THAT(query("SELECT object_id, \"index\", name, value_function, value_thickness FROM "
                    "Composition_layers JOIN Material ON Material.id=value_material_id ORDER BY "
                    "\"index\""),
              ElementsAre(Row{"1", "0", "'Wall outside'", "0", real(15)},
                          Row{"1", "1", "'Wall core'", "1", real(175)},
                          Row{"1", "2", "'Wall core'", "9", real(80)},
                          Row{"1", "3", "'Wall inside'", "0", real(12.5)}));
  EXPECT_THAT(query("SELECT object_id, \"index\", name FROM Composition_tags JOIN Tag ON "
                    "id=tag_id ORDER BY \"index\""),
              ElementsAre(Row{"1", "0", "'Wall tag 1'"}, Row{"1", "1", "'Wall tag 2'"}));
  EXPECT_THAT(query("SELECT object_id, name, object_type, value FROM Composition_custom_values "
                    "JOIN CustomProperty ON id=property_id"),
              UnorderedElementsAre(Row{"1", "'Wall property 1'", "5", "'Wall value 1'"},
                                   Row{"1", "'Wall property 2'", "5", "'Wall value 2'"}));
}

TEST_F(RowsColumns, a_composition_of_defaults_has_nulls) {
  library->save(Composition::create("Plain"));
  const Columns expected = {{"id", "1"},
                            {"name", "'Plain'"},
                            {"description", "''"},
                            {"type", "128"},
                            {"entity_layer", "NULL"},
                            {"comments", "''"},
                            {"first_core_layer", "0"},
                            {"last_core_layer", "0"},
                            {"structural_layer", "0"},
                            {"variable_layer", "NULL"},
                            {"variable_layer_min_thickness", "0"},
                            {"variable_layer_max_thickness", "NULL"}};
  EXPECT_EQ(row("Composition", 1), expected);
}

TEST_F(RowsColumns, an_update_writes_each_column_of_a_material) {
  expect_updated_as_inserted<Material>();
}

TEST_F(RowsColumns, an_update_writes_each_column_of_a_composition) {
  expect_updated_as_inserted<Composition>();
}

TEST_F(RowsColumns, an_update_rewrites_the_lists_of_a_material) {
  const auto oak = library->save(full_material("Oak"));
  oak->tags(toModify).erase(oak->tags(toModify).begin());
  oak->thicknesses(toModify) = {1.5};
  oak->custom_value("Oak property 1", "new");
  oak->clear_custom_value("Oak property 2");
  library->save(oak);
  EXPECT_THAT(query("SELECT \"index\", name FROM Material_tags JOIN Tag ON id=tag_id ORDER BY 1"),
              ElementsAre(Row{"0", "'Oak tag 2'"}, Row{"1", "'Oak tag 1'"}));
  EXPECT_THAT(query("SELECT object_id, value FROM Material_thicknesses"),
              ElementsAre(Row{"1", real(1.5)}));
  EXPECT_THAT(query("SELECT name, value FROM Material_custom_values JOIN CustomProperty ON "
                    "id=property_id"),
              ElementsAre(Row{"'Oak property 1'", "'new'"}));
}

TEST_F(RowsColumns, an_update_to_empty_lists_leaves_no_side_rows) {
  const auto wall = library->save(full_composition("Wall"));
  const auto oak = library->save(full_material("Oak"));
  oak->tags(toModify).clear();
  oak->thicknesses(toModify).clear();
  oak->clear_custom_values();
  library->save(oak);
  const std::string of_oak = " WHERE object_id=" + std::to_string(oak->id());
  EXPECT_THAT(query("SELECT * FROM Material_tags" + of_oak), IsEmpty());
  EXPECT_THAT(query("SELECT * FROM Material_thicknesses" + of_oak), IsEmpty());
  EXPECT_THAT(query("SELECT * FROM Material_custom_values" + of_oak), IsEmpty());
  EXPECT_EQ(query("SELECT * FROM Material_tags").size(), 9u) << "those of others stay";
  wall->tags(toModify).clear();
  wall->clear_custom_values();
  while (!wall->layers().empty()) wall->removeLayer(wall->layers().size() - 1);
  library->save(wall);
  EXPECT_THAT(query("SELECT * FROM Composition_tags"), IsEmpty());
  EXPECT_THAT(query("SELECT * FROM Composition_layers"), IsEmpty());
  EXPECT_THAT(query("SELECT * FROM Composition_custom_values"), IsEmpty());
}

TEST_F(RowsColumns, an_update_of_one_object_leaves_the_others) {
  library->save(full_material("Oak"));
  library->save(full_material("Pine"));
  const Columns oak = row("Material", 1);
  const Rows tags = query("SELECT * FROM Material_tags WHERE object_id=1");
  const auto pine = library->get<Material>("Pine");
  pine->cost("1");
  pine->tags(toModify).clear();
  library->save(pine);
  EXPECT_EQ(row("Material", 1), oak);
  EXPECT_EQ(query("SELECT * FROM Material_tags WHERE object_id=1"), tags);
}

TEST_F(RowsColumns, ids_are_not_used_again) {
  const auto first = library->save(Layer::create("First"));
  PlainDatabase(path).execute("DELETE FROM Layer");
  const auto second = library->save(Layer::create("Second"));
  EXPECT_EQ(first->id(), 1u);
  EXPECT_EQ(second->id(), 2u);
}

}  // namespace
}  // namespace veldra_tests
