// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/stored_objects.hpp"

#include "support/database.hpp"

namespace veldra_tests {

namespace {

const char* const rows = R"(
  BEGIN;
  INSERT INTO "Tag" ("id", "name") VALUES (101, 'Stored'), (102, 'Second');
  INSERT INTO "Layer" ("id", "name") VALUES (101, 'Stored');
  INSERT INTO "MaterialType" ("id", "name") VALUES (101, 'Stored');
  INSERT INTO "CustomProperty" ("id", "name", "object_type") VALUES
    (101, 'Stored', 4), (102, 'Stored', 5);

  INSERT INTO "Asset" ("id", "typeid", "name", "description") VALUES
    (101, 'veldra::StructuralAsset', 'Stored', 'Described'),
    (102, 'veldra::ThermalAsset', 'Stored', 'Described'),
    (103, 'veldra::StructuralAsset', 'Twin', 'Otherwise'),
    (104, 'veldra::ThermalAsset', 'Twin', 'Otherwise'),
    (105, 'veldra::StructuralAsset', 'Third', ''),
    (106, 'veldra::ThermalAsset', 'Third', '');
  INSERT INTO "StructuralAsset"
    ("id", "subclass", "density", "specific_heat", "thermal_conductivity") VALUES
    (101, 'Wood', 700.5, 1600.25, 0.18), (103, 'Wood', 700.5, 1600.25, 0.18),
    (105, 'Wood', NULL, NULL, NULL);
  INSERT INTO "ThermalAsset" ("id", "subclass", "source", "density", "emissivity",
    "specific_heat", "thermal_conductivity") VALUES
    (102, 'Wood', 'Tables', 700.5, 0.9, 1600.25, 0.18),
    (104, 'Wood', 'Tables', 700.5, 0.9, 1600.25, 0.18),
    (106, 'Wood', 'Tables', NULL, NULL, NULL, NULL);
  INSERT INTO "Asset_tags" ("object_id", "index", "tag_id") VALUES (101, 0, 101), (102, 0, 101);

  INSERT INTO "Material" ("id", "name", "description", "type", "comments", "code", "cost",
    "keynote", "label", "manufacturer", "mark", "model", "url", "classification",
    "shading_use_appearance",
    "shading_color_red", "shading_color_green", "shading_color_blue", "shading_color_alpha",
    "surface_pattern_type", "surface_pattern_name", "surface_pattern_scale",
    "surface_pattern_angle", "surface_pattern_cross",
    "surface_pattern_color_red", "surface_pattern_color_green", "surface_pattern_color_blue",
    "surface_pattern_color_alpha",
    "surface_pattern_alignment_x", "surface_pattern_alignment_y",
    "cut_pattern_type", "cut_pattern_name", "cut_pattern_scale", "cut_pattern_angle",
    "cut_pattern_cross",
    "cut_pattern_color_red", "cut_pattern_color_green", "cut_pattern_color_blue",
    "cut_pattern_color_alpha",
    "cut_layer", "appearance", "structural_id", "thermal_id", "function",
    "allow_custom_thickness")
  VALUES (101, 'Stored', 'Described', 101, 'Commented', 'Coded', 'Costs', 'Keynoted', 'Labelled',
    'Manufactured', 'Marked', 'Modelled', 'Linked', 'Classified', 1,
    0.1, 0.2, 0.3, 0.4,  0, 'Surface', 2.5, 45.0, 1,  0.5, 0.6, 0.7, 0.8,  1.5, 2.5,
    0, 'Cut', 3.5, 30.0, 1,  0.15, 0.25, 0.35, 0.45,
    101, 'Appears', 101, 102, 1, 0);
  INSERT INTO "Material_tags" ("object_id", "index", "tag_id") VALUES (101, 0, 101);
  INSERT INTO "Material_thicknesses" ("object_id", "value") VALUES (101, 12.5), (101, 22.0);
  INSERT INTO "Material_custom_values" ("object_id", "property_id", "value") VALUES
    (101, 101, 'Valued');

  CREATE TEMP TABLE "twin" AS SELECT * FROM "Material" WHERE "id" = 101;
  UPDATE "twin" SET "id" = 102, "name" = 'Twin', "code" = NULL,
    "structural_id" = 103, "thermal_id" = 104;
  INSERT INTO "Material" SELECT * FROM "twin";
  UPDATE "twin" SET "id" = 103, "name" = 'Third', "structural_id" = 105, "thermal_id" = 106;
  INSERT INTO "Material" SELECT * FROM "twin";

  INSERT INTO "Composition" ("id", "name", "description", "type", "entity_layer", "comments",
    "first_core_layer", "last_core_layer", "structural_layer", "variable_layer",
    "variable_layer_min_thickness", "variable_layer_max_thickness") VALUES
    (101, 'Stored', 'Described', 1, 101, 'Commented', 1, 3, 2, 1, 40.5, 80.5);
  INSERT INTO "Composition_tags" ("object_id", "index", "tag_id") VALUES (101, 0, 101);
  INSERT INTO "Composition_layers"
    ("object_id", "index", "value_material_id", "value_function", "value_thickness") VALUES
    (101, 0, 101, 0, 10.0), (101, 1, 101, 1, 20.0), (101, 2, 101, 0, 30.0),
    (101, 3, 101, 1, 40.0), (101, 4, 101, 0, 50.0);
  INSERT INTO "Composition_custom_values" ("object_id", "property_id", "value") VALUES
    (101, 102, 'Valued');
  COMMIT;
)";

}  // namespace

StoredObjects::StoredObjects() {
  const std::string path = folder_ / "stored.lib";
  veldra::Library::create(path.c_str(), veldra::Unit::Millimetres, "");
  PlainDatabase(path).execute(rows);
  library_ = veldra::Library::open(path.c_str(), false);
}

template <>
std::shared_ptr<veldra::StructuralAsset> StoredObjects::get<veldra::StructuralAsset>() const {
  return get<veldra::Material>()->structuralAsset();
}

template <>
std::shared_ptr<veldra::ThermalAsset> StoredObjects::get<veldra::ThermalAsset>() const {
  return get<veldra::Material>()->thermalAsset();
}

template <>
std::shared_ptr<veldra::StructuralAsset>
StoredObjects::get_without_numbers<veldra::StructuralAsset>() const {
  return library_->get<veldra::Material>(third_id)->structuralAsset();
}

template <>
std::shared_ptr<veldra::ThermalAsset> StoredObjects::get_without_numbers<veldra::ThermalAsset>()
    const {
  return library_->get<veldra::Material>(third_id)->thermalAsset();
}

}  // namespace veldra_tests
