// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"
#include "support/builders.hpp"
#include "support/library_fixture.hpp"
#include "support/rows.hpp"

namespace veldra_tests {
namespace {

using kit::Value;

class KitFields : public LibraryFixture {
 protected:
  void SetUp() override { library = create(); }

  template <class T>
  kit::Fields<T> fields() const {
    return kit::Fields<T>(*library);
  }

  /// What saving a value of a material and reading it again gives.
  Value saved(Material& material, const std::string& field) {
    library->save(material.shared_from_this());
    return fields<Material>().at(field).get(*library->get<Material>(material.id()));
  }

  std::shared_ptr<Library> library;
};

TEST_F(KitFields, are_found_by_name_key_and_alias) {
  const auto materials = fields<Material>();
  EXPECT_EQ(materials.at("tag").key, "tags");
  EXPECT_EQ(materials.at("thickness").key, "thicknesses");
  EXPECT_EQ(materials.at("MANUFACTURER").key, "manufacturer");
  EXPECT_EQ(materials.at("thermal_asset.density").name(), "thermal_asset.density");
  EXPECT_EQ(materials.find("nothing like it"), nullptr);
  const auto compositions = fields<Composition>();
  EXPECT_EQ(compositions.at("U").key, "transmittance");
  EXPECT_EQ(compositions.at("u").key, "transmittance");
  EXPECT_EQ(compositions.at("R").key, "total_resistance");
  EXPECT_EQ(compositions.at("thickness").key, "total_thickness");
}

TEST_F(KitFields, have_their_shortest_names_in_lists) {
  const auto names = fields<Material>().names();
  EXPECT_THAT(names, AllOf(Contains("density"), Contains("thermal_asset.density"), Contains("name"),
                           Contains("structural_asset.name")));
  for (const auto& name : names) EXPECT_EQ(fields<Material>().find(name) == nullptr, false) << name;
}

TEST_F(KitFields, that_are_not_there_are_told_with_the_nearest_and_all) {
  EXPECT_EQ(error_of([&] { fields<Tag>().at("nane"); }),
            "tags have no field 'nane'; did you mean 'name'? there are id, name");
  EXPECT_EQ(error_of([&] { fields<Layer>().at("colour"); }),
            "layers have no field 'colour'; there are id, name");
  try {
    fields<Material>().at("thicknes");
    FAIL() << "found";
  } catch (const kit::UnknownField& error) {
    EXPECT_EQ(error.name(), "thicknes");
    EXPECT_THAT(error.what(), HasSubstr("did you mean 'thickness', 'thicknesses' or "));
  }
}

TEST_F(KitFields, have_one_for_each_custom_property_that_objects_can_have) {
  library->save(CustomProperty::create("Fire class", ObjectType::Material));
  library->save(CustomProperty::create("Cost group", ObjectType::Composition));
  library->save(CustomProperty::create("Source", ObjectType{}));
  const auto materials = fields<Material>();
  EXPECT_EQ(materials.at("fire class").name(), "custom_values.Fire class");
  EXPECT_EQ(materials.at("Source").name(), "common_custom_values.Source");
  EXPECT_EQ(materials.find("Cost group"), nullptr);
  EXPECT_EQ(materials.custom_begin()->key, "Fire class");
  EXPECT_EQ(fields<Composition>().find("Fire class"), nullptr);
  EXPECT_EQ(kit::Fields<Material>().find("Fire class"), nullptr);
}

TEST_F(KitFields, of_the_object_go_before_custom_properties_of_the_name) {
  library->save(CustomProperty::create("description", ObjectType::Material));
  const auto materials = fields<Material>();
  EXPECT_EQ(materials.at("description").origin, kit::Origin::Stored);
  EXPECT_EQ(materials.at("custom_values.description").origin, kit::Origin::Custom);
  EXPECT_THAT(materials.names(), Contains("custom_values.description"));
}

TEST_F(KitFields, of_custom_properties_are_set_and_cleared) {
  library->save(CustomProperty::create("Fire class", ObjectType::Material));
  const auto material = Material::create("Oak");
  const auto materials = fields<Material>();
  materials.at("Fire class").set(*material, "D-s2,d0");
  EXPECT_EQ(saved(*material, "Fire class"), Value("D-s2,d0"));
  EXPECT_EQ(library->count<CustomProperty>(), 1U);
  materials.at("Fire class").set(*material, Value());
  EXPECT_EQ(saved(*material, "Fire class"), Value());
}

TEST_F(KitFields, of_one_name_for_one_kind_and_for_all_are_apart) {
  library->save(CustomProperty::create("Source", ObjectType::Material));
  library->save(CustomProperty::create("Source", ObjectType{}));
  const auto material = Material::create("Oak");
  const auto materials = fields<Material>();
  materials.at("common_custom_values.Source").set(*material, "a");
  EXPECT_EQ(materials.at("custom_values.Source").get(*material), Value());
  materials.at("custom_values.Source").set(*material, "b");
  EXPECT_EQ(saved(*material, "custom_values.Source"), Value("b"));
  EXPECT_EQ(saved(*material, "common_custom_values.Source"), Value());
}

TEST_F(KitFields, of_quantities_are_custom_values_of_known_names) {
  const auto material = Material::create("Brick");
  const auto materials = fields<Material>();
  EXPECT_EQ(materials.at("density").get(*material), Value());
  materials.at("density").set(*material, 1800.0);
  EXPECT_EQ(saved(*material, "density"), Value(1800.0));
  EXPECT_EQ(material->custom_value(text(kit::property::density)).get().utf8(), "1800");
  materials.at("density").set(*material, Value());
  EXPECT_EQ(saved(*material, "density"), Value());
  for (const char* key : {"conductivity", "specific_heat", "resistance"}) {
    materials.at(key).set(*material, 0.25);
    EXPECT_EQ(saved(*material, key), Value(0.25)) << key;
  }
}

TEST_F(KitFields, of_quantities_use_the_property_that_is_there) {
  library->save(CustomProperty::create(kit::property::density, ObjectType{}));
  const auto material = Material::create("Brick");
  fields<Material>().at("density").set(*material, 1800.0);
  EXPECT_EQ(saved(*material, "density"), Value(1800.0));
  EXPECT_EQ(library->count<CustomProperty>(), 1U);
}

TEST_F(KitFields, of_a_quantity_that_is_no_number_are_not_known) {
  EXPECT_EQ(
      fields<Material>().at("density").get(*with_custom("Brick", kit::property::density, "heavy")),
      Value());
}

/// A library with the material 1, "Brick", which has an asset of each kind.
class KitAssetFields : public KitFields {
 protected:
  void SetUp() override {
    KitFields::SetUp();
    library.reset();
    PlainDatabase database(path);
    put_structural_asset(database, "1");
    put_thermal_asset(database, "2");
    database.execute("UPDATE ThermalAsset SET specific_heat = NULL");
    put_material(database,
                 {{"id", "1"}, {"name", "'Brick'"}, {"structural_id", "1"}, {"thermal_id", "2"}});
    library = open();
  }

  Value value(const char* field) const {
    return fields<Material>().at(field).get(*library->get<Material>(1));
  }
};

TEST_F(KitAssetFields, are_read) {
  EXPECT_EQ(value("structural_asset.density"), Value(1.5));
  EXPECT_EQ(value("thermal_asset.density"), Value(1.25));
  EXPECT_EQ(value("thermal_asset.thermal_conductivity"), Value(4.25));
  EXPECT_EQ(value("thermal_asset.source"), Value("Tables"));
  EXPECT_TRUE(value("thermal_asset.specific_heat").is_empty());
  EXPECT_EQ(kit::Fields<Material>().at("thermal_asset.name").get(*Material::create("Bare")),
            Value());
}

TEST_F(KitAssetFields, give_quantities_the_thermal_one_first) {
  EXPECT_EQ(value("density"), Value(1.25));
  EXPECT_EQ(value("specific_heat"), Value(2.5));
  EXPECT_EQ(value("conductivity"), Value(4.25));
  EXPECT_EQ(value("resistance"), Value());
}

TEST_F(KitAssetFields, say_what_holds_a_quantity) {
  const auto brick = library->get<Material>(1);
  const auto materials = fields<Material>();
  const auto source = [&](const char* key) {
    return kit::quantity_source(materials.at(key), *brick);
  };
  EXPECT_EQ(source("density"), kit::QuantitySource::ThermalAsset);
  EXPECT_EQ(source("specific_heat"), kit::QuantitySource::StructuralAsset);
  EXPECT_EQ(source("conductivity"), kit::QuantitySource::ThermalAsset);
  EXPECT_EQ(source("resistance"), kit::QuantitySource::None);
  EXPECT_EQ(source("name"), kit::QuantitySource::None);
  EXPECT_EQ(source("thermal_asset.density"), kit::QuantitySource::None);
  materials.at("density").set(*brick, 7.0);
  EXPECT_EQ(source("density"), kit::QuantitySource::CustomProperty);
}

TEST_F(KitAssetFields, stand_behind_custom_values) {
  const auto brick = library->get<Material>(1);
  const auto materials = fields<Material>();
  for (const char* key : {"density", "specific_heat", "conductivity"}) {
    materials.at(key).set(*brick, 7.0);
    EXPECT_EQ(saved(*brick, key), Value(7.0)) << key;
  }
  EXPECT_EQ(value("thermal_asset.density"), Value(1.25));
}

TEST_F(KitFields, of_layers_are_names_of_materials) {
  library->save(Material::create("Brick"));
  const auto wall = Composition::create("Wall");
  const auto compositions = fields<Composition>();
  const Value layers = Value::Layers{{"Brick", 240, 1}, {"Brick", 115, 0}};
  compositions.at("layers").set(*wall, layers);
  EXPECT_EQ(compositions.at("layers").get(*wall), layers);
  EXPECT_EQ(compositions.at("layer_count").get(*wall), Value(2));
  EXPECT_EQ(compositions.at("total_thickness").get(*wall), Value(355.0));
  EXPECT_EQ(error_of([&] {
              compositions.at("layers").set(*wall, Value::Layers{{"Brik", 1, 0}});
            }),
            "'Brik | 1 | 0' is no value for 'layers': there is no material 'Brik'; did you mean "
            "'Brick'?");
  EXPECT_EQ(compositions.at("layers").get(*wall), layers);
}

TEST_F(KitFields, of_layers_become_fewer_and_none) {
  const auto wall = full_composition("Wall");
  const kit::Fields<Composition> fields;
  fields.at("layers").set(*wall, Value::Layers{{"a", 1, 0}, {"b", 2, 1}, {"c", 3, 0}});
  EXPECT_EQ(wall->first_core_layer(), 1U);
  EXPECT_EQ(wall->last_core_layer(), 2U);
  EXPECT_EQ(wall->structural_layer(), 2U);
  fields.at("layers").set(*wall, Value::Layers{{"a", 1, 0}});
  EXPECT_EQ(wall->last_core_layer(), 0U);
  EXPECT_EQ(wall->structural_layer(), 0U);
  fields.at("layers").set(*wall, Value::Layers{});
  EXPECT_EQ(fields.at("layers").get(*wall), Value(Value::Layers{}));
  EXPECT_EQ(wall->last_core_layer(), 0U);
}

TEST_F(KitFields, of_indices_refuse_what_the_library_would_move) {
  const auto wall = full_composition("Wall");  // four layers, a core of 1 to 3
  const auto before = wall->clone();
  const kit::Fields<Composition> fields;
  const auto refused = [&](const char* key, const Value& value) {
    const auto error = error_of([&] { fields.at(key).set(*wall, value); });
    EXPECT_EQ(*wall, *before) << key;
    return error;
  };
  EXPECT_EQ(
      refused("last_core_layer", 4),
      "'5' is no value for 'last_core_layer': it must be one of the 4 layers, counted from 1");
  EXPECT_EQ(
      refused("structural_layer", 0),
      "'1' is no value for 'structural_layer': it must be a layer of the core, 2 to 4, counted "
      "from 1");
  EXPECT_EQ(refused("first_core_layer", -1),
            "'0' is no value for 'first_core_layer': it must be a position, counted from 1");
  fields.at("first_core_layer").set(*wall, 3);
  EXPECT_EQ(wall->structural_layer(), 3U);
}

TEST_F(KitFields, of_variable_layers_are_cleared_by_nothing) {
  const auto wall = full_composition("Wall");
  const kit::Fields<Composition> fields;
  fields.at("variable_layer").set(*wall, Value());
  fields.at("variable_layer_max_thickness").set(*wall, Value());
  fields.at("variable_layer_min_thickness").set(*wall, Value());
  EXPECT_FALSE(wall->has_variable_layer());
  EXPECT_FALSE(wall->has_variable_layer_max_thickness());
  EXPECT_EQ(wall->variable_layer_min_thickness(), 0);
}

TEST_F(KitFields, of_types_name_one_of_the_library) {
  const auto material = Material::create("Oak");
  const auto materials = fields<Material>();
  materials.at("type").set(*material, "Wood");
  EXPECT_EQ(saved(*material, "type"), Value("Wood"));
  EXPECT_THAT(error_of([&] { materials.at("type").set(*material, "Wod"); }),
              AllOf(StartsWith("'Wod' is no value for 'type': there is no type 'Wod'; did you mean "
                               "'Wood'? there are "),
                    HasSubstr("Masonry")));
  kit::Fields<Material>().at("type").set(*material, "Cheese");
  EXPECT_EQ(saved(*material, "type"), Value("Cheese"));
}

TEST_F(KitFields, refuse_values_that_they_cannot_have) {
  const auto material = Material::create("Oak");
  const auto materials = fields<Material>();
  const auto refused = [&](const char* key, const Value& value) {
    return error_of([&] { materials.at(key).set(*material, value); });
  };
  EXPECT_EQ(refused("id", 7), "'7' is no value for 'id': it can only be read");
  EXPECT_EQ(refused("thermal_asset.density", 7.0),
            "'7' is no value for 'thermal_asset.density': it can only be read");
  EXPECT_EQ(refused("name", Value()), "'' is no value for 'name': it cannot be empty");
  EXPECT_EQ(refused("name", ""), "'' is no value for 'name': it cannot be empty");
  EXPECT_EQ(refused("function", "one"),
            "'one' is no value for 'function': it must be a whole number");
  EXPECT_EQ(refused("function", 9999999999LL),
            "'9999999999' is no value for 'function': the number is out of range");
  const auto composition = Composition::create("Wall");
  EXPECT_EQ(error_of([&] { fields<Composition>().at("type").set(*composition, "cheese"); }),
            "'cheese' is no value for 'type': it must be one of wall, floor, roof, other");
  EXPECT_EQ(error_of([&] { fields<Tag>().at("name").set(*Tag::create("a"), "b"); }),
            "'b' is no value for 'name': it is given once and for all");
}

TEST_F(KitFields, say_which_are_unique_and_can_be_written) {
  std::vector<std::string> unique;
  std::vector<std::string> read_only;
  for (const auto& field : kit::Fields<Material>()) {
    if (field.unique) unique.push_back(field.key);
    const bool is_asset = field.origin == kit::Origin::Asset;
    if (!field.writable() && !is_asset) read_only.push_back(field.key);
    EXPECT_FALSE(field.writable() && is_asset) << field.name();
  }
  EXPECT_THAT(unique, ElementsAre("name", "code"));
  EXPECT_THAT(read_only, ElementsAre("id"));
}

TEST_F(KitFields, know_the_names_that_they_can_refer_to) {
  library->save(Tag::create("Außenwand"));
  const auto materials = fields<Material>();
  EXPECT_THAT(materials.at("tags").names(), ElementsAre("Außenwand"));
  EXPECT_EQ(materials.at("type").names().size(), 13U);
  EXPECT_EQ(materials.at("cost").names, nullptr);
  EXPECT_EQ(kit::Fields<Material>().at("tags").names, nullptr);
}

TEST_F(KitFields, of_properties_say_for_what_they_are) {
  const auto owner = [](ObjectType kind) {
    return kit::Fields<CustomProperty>().at("object_type").get(*CustomProperty::create("a", kind));
  };
  EXPECT_EQ(owner(ObjectType::Material), Value("material"));
  EXPECT_EQ(owner(ObjectType::Composition), Value("composition"));
  EXPECT_EQ(owner(ObjectType{}), Value(0));
}

}  // namespace
}  // namespace veldra_tests
