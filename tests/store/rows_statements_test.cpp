// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/logged_fixture.hpp"

#include <algorithm>
#include <set>

namespace veldra_tests {
namespace {

/// The texts of the statements, which are part of the file format.
class RowsStatements : public LoggedTest {
 protected:
  /// Two assets, a material that refers to them and to all else, and a composition of it.
  void put_everything() {
    PlainDatabase file(path);
    put_structural_asset(file, "3");
    put_thermal_asset(file, "8");
    const auto wall = Composition::create("Wall");
    wall->appendLayer({full_material("Oak"), Material::Function::None, 22.0});
    wall->addTag(Tag::create("outside"));
    wall->entity_layer(Layer::create("A-WALL"));
    wall->custom_value("Rating", "A");
    wall->save(library);
    file.execute(
        "UPDATE Material SET structural_id=3, thermal_id=8;"
        "INSERT INTO Asset_tags VALUES (3, 0, 1), (8, 0, 1)");
    log.take();
  }

  Statements sorted_log() {
    const Statements taken = log.take();
    const std::set<std::string> sorted(taken.begin(), taken.end());
    return {sorted.begin(), sorted.end()};
  }
};

Statements sorted(Statements statements) {
  std::sort(statements.begin(), statements.end());
  return statements;
}

std::string joined(const Statements& texts) {
  std::string all;
  for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
  return all;
}

/// A table with its columns after the key, in their order.
struct Table {
  std::string name;
  std::string key;
  Statements columns;

  std::string insert() const {
    Statements names{quote(key)};
    for (const std::string& column : columns) names.push_back(quote(column));
    return "INSERT INTO " + quote(name) + " (" + joined(names) + ") VALUES (" +
           joined(Statements(names.size(), "?")) + ")";
  }

  std::string update() const {
    Statements settings;
    for (const std::string& column : columns) settings.push_back(quote(column) + "=?");
    return "UPDATE " + quote(name) + " SET " + joined(settings) + " WHERE " + quote(key) + "=?";
  }

  std::string remove() const {
    return "DELETE FROM " + quote(name) + " WHERE " + quote(key) + "=?";
  }

  /// An object by its id.
  std::string find() const {
    return "SELECT " + joined({full(key), full_columns()}) + " FROM " + quote(name) + condition();
  }

  /// The rows of a list by their owner.
  std::string rows() const {
    const std::string order = columns[0] == "index" ? " ORDER BY " + full("index") : "";
    return "SELECT " + full_columns() + " FROM " + quote(name) + condition() + order;
  }

  std::string full_columns() const {
    Statements names;
    for (const std::string& column : columns) names.push_back(full(column));
    return joined(names);
  }

  std::string condition() const { return " WHERE " + full(key) + "=?"; }
  std::string full(const std::string& column) const { return quote(name) + "." + quote(column); }
  static std::string quote(const std::string& identifier) { return "\"" + identifier + "\""; }
};

const Table tag{"Tag", "id", {"name"}};
const Table custom_property{"CustomProperty", "id", {"name", "object_type"}};
const Table layer{"Layer", "id", {"name"}};
const Table material_type{"MaterialType", "id", {"name"}};
const Table meta{"Meta", "id", {"guid", "unit", "locale", "region"}};
const Table asset{"Asset", "id", {"typeid", "name", "description"}};
const Table structural_asset{
    "StructuralAsset", "id", {"subclass", "density", "specific_heat", "thermal_conductivity"}};
const Table thermal_asset{
    "ThermalAsset",
    "id",
    {"subclass", "source", "density", "emissivity", "specific_heat", "thermal_conductivity"}};
const Table material{"Material",
                     "id",
                     {"name",
                      "description",
                      "type",
                      "comments",
                      "code",
                      "cost",
                      "keynote",
                      "label",
                      "manufacturer",
                      "mark",
                      "model",
                      "url",
                      "classification",
                      "shading_use_appearance",
                      "shading_color_red",
                      "shading_color_green",
                      "shading_color_blue",
                      "shading_color_alpha",
                      "surface_pattern_type",
                      "surface_pattern_name",
                      "surface_pattern_scale",
                      "surface_pattern_angle",
                      "surface_pattern_cross",
                      "surface_pattern_color_red",
                      "surface_pattern_color_green",
                      "surface_pattern_color_blue",
                      "surface_pattern_color_alpha",
                      "surface_pattern_alignment_x",
                      "surface_pattern_alignment_y",
                      "cut_pattern_type",
                      "cut_pattern_name",
                      "cut_pattern_scale",
                      "cut_pattern_angle",
                      "cut_pattern_cross",
                      "cut_pattern_color_red",
                      "cut_pattern_color_green",
                      "cut_pattern_color_blue",
                      "cut_pattern_color_alpha",
                      "cut_layer",
                      "appearance",
                      "structural_id",
                      "thermal_id",
                      "function",
                      "allow_custom_thickness"}};
const Table composition{
    "Composition",
    "id",
    {"name", "description", "type", "entity_layer", "comments", "first_core_layer",
     "last_core_layer", "structural_layer", "variable_layer", "variable_layer_min_thickness",
     "variable_layer_max_thickness"}};
const Table asset_tags{"Asset_tags", "object_id", {"index", "tag_id"}};
const Table material_tags{"Material_tags", "object_id", {"index", "tag_id"}};
const Table material_thicknesses{"Material_thicknesses", "object_id", {"value"}};
const Table material_values{"Material_custom_values", "object_id", {"property_id", "value"}};
const Table composition_tags{"Composition_tags", "object_id", {"index", "tag_id"}};
const Table composition_layers{"Composition_layers",
                               "object_id",
                               {"index", "value_material_id", "value_function", "value_thickness"}};
const Table composition_values{"Composition_custom_values", "object_id", {"property_id", "value"}};

/// An asset by its id, with the row of the root.
std::string find_asset(const Table& table) {
  return "SELECT " + joined({table.full_columns(), asset.full("id"), asset.full_columns()}) +
         " FROM " + Table::quote(table.name) + " LEFT JOIN \"Asset\" ON " + asset.full("id") + "=" +
         table.full("id") + table.condition();
}

Statements without_reads(Statements statements) {
  const auto reads = [](const std::string& text) { return text.compare(0, 6, "SELECT") == 0; };
  statements.erase(std::remove_if(statements.begin(), statements.end(), reads), statements.end());
  return statements;
}

TEST_F(RowsStatements, metadata_are_inserted_read_and_updated) {
  const auto other = create("other.lib");
  other->locale("de-CH");
  Statements statements = log.take();
  const auto of_types = [](const std::string& text) { return text == material_type.insert(); };
  statements.erase(std::remove_if(statements.begin(), statements.end(), of_types),
                   statements.end());
  // Read once more before it is written: another handle may have restored another library.
  EXPECT_THAT(statements, ElementsAre(meta.insert(), meta.find(), meta.find(), meta.update()));
}

TEST_F(RowsStatements, new_objects_are_inserted) {
  const auto wall = full_composition("Wall");
  wall->save(library);
  EXPECT_THAT(without_reads(sorted_log()),
              ElementsAreArray(sorted(
                  {tag.insert(), custom_property.insert(), layer.insert(), material_type.insert(),
                   material.insert(), material_tags.insert(), material_thicknesses.insert(),
                   material_values.insert(), composition.insert(), composition_tags.insert(),
                   composition_layers.insert(), composition_values.insert()})));
}

TEST_F(RowsStatements, objects_are_read_with_what_they_refer_to) {
  put_everything();
  ASSERT_TRUE(library->get<Composition>(1));
  EXPECT_THAT(sorted_log(),
              ElementsAreArray(sorted(
                  {tag.find(), custom_property.find(), layer.find(), material_type.find(),
                   material.find(), material_tags.rows(), material_thicknesses.rows(),
                   material_values.rows(), composition.find(), composition_tags.rows(),
                   composition_layers.rows(), composition_values.rows(),
                   find_asset(structural_asset), find_asset(thermal_asset), asset_tags.rows(),
                   "SELECT \"Asset\".\"typeid\" FROM \"Asset\" WHERE \"Asset\".\"id\"=?"})));
}

template <class T>
void rename_and_save(const veldra::Library& library) {
  const auto object = library.get<T>(1);
  object->name("renamed");
  object->save();
}

TEST_F(RowsStatements, simple_objects_are_updated_in_their_row) {
  put_everything();
  rename_and_save<Layer>(*library);
  EXPECT_THAT(without_reads(log.take()), ElementsAre(layer.update()));
  rename_and_save<MaterialType>(*library);
  EXPECT_THAT(without_reads(log.take()), ElementsAre(material_type.update()));
  rename_and_save<CustomProperty>(*library);
  EXPECT_THAT(without_reads(log.take()), ElementsAre(custom_property.update()));
}

// Each list is written anew: its rows are deleted, then those that it has are inserted. Assets are
// left alone, whatever has changed in them.
TEST_F(RowsStatements, a_material_is_updated_with_its_lists) {
  put_everything();
  const auto oak = library->get<Material>(1);
  oak->tags(toModify).resize(2);
  oak->structuralAsset()->density(99.0);
  oak->structuralAsset()->addTag(oak->tags()[0]);
  oak->thermalAsset()->name("renamed");
  oak->save();
  EXPECT_THAT(
      without_reads(log.take()),
      ElementsAre(material.update(), material_tags.remove(), material_tags.insert(),
                  material_tags.insert(), material_thicknesses.remove(),
                  material_thicknesses.insert(), material_thicknesses.insert(),
                  material_values.remove(), material_values.insert(), material_values.insert()));
}

TEST_F(RowsStatements, a_composition_is_updated_with_its_lists) {
  put_everything();
  rename_and_save<Composition>(*library);
  EXPECT_THAT(
      without_reads(log.take()),
      ElementsAre(composition.update(), composition_tags.remove(), composition_tags.insert(),
                  composition_layers.remove(), composition_layers.insert(),
                  composition_values.remove(), composition_values.insert()));
}

TEST_F(RowsStatements, a_tag_is_never_updated) {
  put_everything();
  const auto wall = library->get<Composition>(1);
  wall->tags(toModify);
  wall->save();
  library->save(library->get<Tag>(1));
  library->save(Tag::create("outside"));
  for (const std::string& statement : log.take()) {
    EXPECT_THAT(statement, testing::Not(testing::StartsWith("UPDATE \"Tag\"")));
  }
}

// The rows of the lists go before the object.
TEST_F(RowsStatements, objects_are_deleted_with_their_lists) {
  put_everything();
  library->remove<Composition>(1);
  EXPECT_THAT(log.take(), ElementsAre(composition_tags.remove(), composition_layers.remove(),
                                      composition_values.remove(), composition.remove()));
  library->remove<Material>(1);
  EXPECT_THAT(log.take(), ElementsAre(material_tags.remove(), material_thicknesses.remove(),
                                      material_values.remove(), material.remove()));
}

TEST_F(RowsStatements, simple_objects_are_deleted_in_their_row) {
  put_everything();
  library->remove<Composition>(1);
  library->remove<Material>(1);
  log.take();
  library->remove<Tag>(2);
  library->remove<Layer>(1);
  library->remove<MaterialType>(1);
  library->remove<CustomProperty>(1);
  EXPECT_THAT(log.take(), ElementsAre(tag.remove(), layer.remove(), material_type.remove(),
                                      custom_property.remove()));
}

}  // namespace
}  // namespace veldra_tests
