// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/file_state.hpp"
#include "support/library_fixture.hpp"
#include "support/thrown.hpp"

namespace veldra_tests {
namespace {

const int old_versions[] = {150201, 150301};

std::string utf8_names(const std::vector<std::shared_ptr<Tag>>& tags) {
  std::string names;
  for (const auto& tag : tags) names += tag->name().utf8() + ";";
  return names;
}

class FileMigration : public LibraryFixture, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    make_old_file(path, GetParam());
    fill_old_file(path, GetParam());
    before_ = dump(path);
  }

  // What the file holds after whichever way of opening must be the same.
  void expect_the_file_is_migrated() const {
    EXPECT_EQ(catalogue(path), migrated_catalogue(GetParam()));
    EXPECT_EQ(dump(path), migrated_dump(before_));
    EXPECT_EQ(damage(path), "");
  }

  bool has_custom_properties() const { return GetParam() >= 150301; }

  void set_version(int version) const {
    PlainDatabase(path).execute("UPDATE schema_version SET version = " + std::to_string(version));
  }

  std::string last_column(const std::string& table) const {
    return PlainDatabase(path).value("SELECT name FROM pragma_table_info('" + table +
                                     "') ORDER BY cid DESC");
  }

  std::string before_;
};

TEST_P(FileMigration, the_old_file_of_these_tests_is_one) {
  EXPECT_EQ(catalogue(path), old_catalogue(GetParam()));
  EXPECT_EQ(damage(path), "");
}

TEST_P(FileMigration, opening_migrates) {
  open();
  expect_the_file_is_migrated();
}

TEST_P(FileMigration, opening_for_reading_only_migrates) {
  open_read_only();
  expect_the_file_is_migrated();
}

TEST_P(FileMigration, creating_migrates_and_changes_nothing_else) {
  const auto library = create(veldra::Unit::Millimetres, "abc");
  EXPECT_EQ(library->unit(), veldra::Unit::Inches);
  EXPECT_EQ(library->guid().utf8(), "a0ee4c58-3c1d-4c07-9d0e-5f54c1a8f6b2");
  expect_the_file_is_migrated();
}

TEST_P(FileMigration, the_metadata_survive) {
  const auto library = open();
  EXPECT_EQ(library->guid().utf8(), "a0ee4c58-3c1d-4c07-9d0e-5f54c1a8f6b2");
  EXPECT_EQ(library->unit(), veldra::Unit::Inches);
  EXPECT_EQ(library->locale().utf8(), "de-DE");
  EXPECT_EQ(library->region().utf8(), "Ostschweiz");
  EXPECT_EQ(library->version(), 150302u);
}

TEST_P(FileMigration, the_added_columns_are_the_last_ones) {
  open();
  EXPECT_EQ(last_column("Material"), "'cut_layer'");
  EXPECT_EQ(last_column("Composition"), "'entity_layer'");
}

TEST_P(FileMigration, a_library_opened_for_reading_only_refuses_changes_after_the_migration) {
  const auto library = open_read_only();
  EXPECT_TRUE(library->readOnly());
  EXPECT_EQ(library->version(), 150302u);
  EXPECT_EQ(thrown_by([&] { library->locale("fr-FR"); }), "veldra::LibraryReadOnly");
  expect_the_file_is_migrated();
}

TEST_P(FileMigration, a_migrated_file_is_opened_again_without_a_change) {
  open();
  const FileState before(path);
  open();
  open_read_only();
  EXPECT_TRUE(before == FileState(path));
}

TEST_P(FileMigration, the_metadata_of_a_migrated_file_can_be_set) {
  open()->locale("it-IT");
  EXPECT_EQ(open()->locale().utf8(), "it-IT");
}

TEST_P(FileMigration, an_empty_old_library_migrates) {
  const std::string empty = folder / "empty.lib";
  make_old_file(empty, GetParam());
  const std::string before = dump(empty);
  EXPECT_EQ(Library::open(empty.c_str(), false)->count<MaterialType>(), 0u);
  EXPECT_EQ(catalogue(empty), migrated_catalogue(GetParam()));
  EXPECT_EQ(dump(empty), migrated_dump(before));
}

TEST_P(FileMigration, materials_load) {
  const auto library = open();
  const auto oak = library->get<Material>("Oak");
  ASSERT_NE(oak, nullptr);
  EXPECT_EQ(oak->id(), 2u);
  EXPECT_FALSE(oak->isDirty());
  EXPECT_EQ(oak->description().utf8(), "a hard wood");
  EXPECT_EQ(oak->type()->name().utf8(), "Wood");
  EXPECT_EQ(oak->comments().utf8(), "oiled");
  EXPECT_EQ(oak->code().utf8(), "W-017");
  EXPECT_EQ(oak->cost().utf8(), "12 a metre");
  EXPECT_EQ(oak->keynote().utf8(), "K1");
  EXPECT_EQ(oak->label().utf8(), "L1");
  EXPECT_EQ(oak->manufacturer().utf8(), "Sawmill");
  EXPECT_EQ(oak->mark().utf8(), "M1");
  EXPECT_EQ(oak->model().utf8(), "Plank");
  EXPECT_EQ(oak->url().utf8(), "file:oak");
  EXPECT_EQ(oak->classification().utf8(), "06 10 00");
  EXPECT_EQ(oak->appearance().utf8(), "oak-appearance");
  EXPECT_EQ(oak->function(), Material::Function::Structure);
  EXPECT_FALSE(oak->allow_custom_thickness());
  EXPECT_EQ(oak->cut_layer(), nullptr);
  EXPECT_EQ(utf8_names(oak->tags()), "facade;Fußboden;facade;");
  EXPECT_THAT(oak->thicknesses(), ElementsAre(16.0, 22.5));
}

TEST_P(FileMigration, appearances_of_materials_load) {
  const auto library = open();
  const auto oak = library->get<Material>("Oak");
  ASSERT_NE(oak, nullptr);
  veldra::Pattern surface(veldra::Pattern::Type::Lines, "grain", 2.0, 0.5);
  surface.cross = true;
  EXPECT_TRUE(oak->shading_use_appearance());
  EXPECT_EQ(oak->shading_color(), veldra::Color(0.5, 0.25, 0.125, 1.0));
  EXPECT_EQ(oak->surface_pattern(), surface);
  EXPECT_EQ(oak->surface_pattern_color(), veldra::Color(0.1, 0.2, 0.3, 0.4));
  EXPECT_EQ(oak->surface_pattern_alignment(), veldra::Point2d(7.5, -3.25));
  EXPECT_EQ(oak->cut_pattern(),
            veldra::Pattern(static_cast<veldra::Pattern::Type>(3), "rings", 1.5, 0.75));
  EXPECT_EQ(oak->cut_pattern_color(), veldra::Color(0.6, 0.7, 0.8, 0.9));
}

TEST_P(FileMigration, assets_load) {
  const auto library = open();
  const auto oak = library->get<Material>("Oak");
  ASSERT_NE(oak, nullptr);
  ASSERT_NE(oak->structuralAsset(), nullptr);
  EXPECT_EQ(oak->structuralAsset()->name().utf8(), "Oak, structural");
  EXPECT_EQ(oak->structuralAsset()->description().utf8(), "across the grain");
  EXPECT_EQ(oak->structuralAsset()->subclass().utf8(), "Wood");
  EXPECT_EQ(oak->structuralAsset()->density(), 710.5);
  EXPECT_EQ(oak->structuralAsset()->specific_heat(), 2.1);
  EXPECT_EQ(oak->structuralAsset()->thermal_conductivity(), 0.17);
  EXPECT_EQ(utf8_names(oak->structuralAsset()->tags()), "Fußboden;facade;");
  ASSERT_NE(oak->thermalAsset(), nullptr);
  EXPECT_EQ(oak->thermalAsset()->source().utf8(), "measured");
  EXPECT_EQ(oak->thermalAsset()->emissivity(), 0.9);
}

TEST_P(FileMigration, absent_values_load_as_absent) {
  const auto library = open();
  const auto granite = library->get<Material>("Granite");
  ASSERT_NE(granite, nullptr);
  EXPECT_FALSE(granite->has_code());
  EXPECT_EQ(granite->structuralAsset(), nullptr);
  EXPECT_EQ(granite->thermalAsset(), nullptr);
  EXPECT_EQ(granite->type()->name().utf8(), "石");
  EXPECT_TRUE(granite->thicknesses().empty());
  const auto bare = library->get<Composition>("Bare");
  ASSERT_NE(bare, nullptr);
  EXPECT_FALSE(bare->has_variable_layer());
  EXPECT_FALSE(bare->has_variable_layer_max_thickness());
}

TEST_P(FileMigration, compositions_load) {
  const auto library = open();
  const auto parquet = library->get<Composition>("Parquet");
  ASSERT_NE(parquet, nullptr);
  EXPECT_EQ(parquet->description().utf8(), "on screed");
  EXPECT_EQ(parquet->type(), Composition::Type::Floor);
  EXPECT_EQ(parquet->comments().utf8(), "glued");
  EXPECT_EQ(parquet->entity_layer(), nullptr);
  EXPECT_EQ(parquet->first_core_layer(), 0u);
  EXPECT_EQ(parquet->last_core_layer(), 1u);
  EXPECT_EQ(parquet->structural_layer(), 1u);
  EXPECT_EQ(parquet->variable_layer(), 1u);
  EXPECT_EQ(parquet->variable_layer_min_thickness(), 5.5);
  EXPECT_EQ(parquet->variable_layer_max_thickness(), 9.25);
  EXPECT_EQ(utf8_names(parquet->tags()), "Fußboden;facade;");
  ASSERT_EQ(parquet->layers().size(), 2u);
  EXPECT_EQ(parquet->layer(0).material()->name().utf8(), "Oak");
  EXPECT_EQ(parquet->layer(0).function(), Material::Function::None);
  EXPECT_EQ(parquet->layer(0).thickness(), 22.5);
  EXPECT_EQ(parquet->layer(1).material()->name().utf8(), "Granite");
  EXPECT_EQ(parquet->layer(1).function(), Material::Function::Structure);
}

TEST_P(FileMigration, custom_values_load_where_the_old_version_had_them) {
  const auto library = open();
  EXPECT_EQ(library->count<CustomProperty>(), has_custom_properties() ? 3u : 0u);
  const auto oak = library->get<Material>("Oak");
  ASSERT_NE(oak, nullptr);
  if (!has_custom_properties()) {
    EXPECT_TRUE(oak->custom_values().empty());
    return;
  }
  ASSERT_EQ(oak->custom_values().size(), 2u);
  EXPECT_EQ(oak->custom_value("Fire class").get().utf8(), "D-s2");
  EXPECT_EQ(oak->custom_value("Größe").get().utf8(), "groß");
  EXPECT_EQ(library->get<Composition>("Parquet")->custom_value("Fire class").get().utf8(), "F 30");
}

TEST_P(FileMigration, the_kinds_that_the_old_version_lacked_are_empty_and_usable) {
  const auto library = open();
  EXPECT_EQ(library->count<Layer>(), 0u);
  PlainDatabase(path).execute(
      "PRAGMA foreign_keys=ON; INSERT INTO Layer VALUES (1, 'S-WOOD'); UPDATE Material SET "
      "cut_layer = 1 WHERE id = 2; UPDATE Composition SET entity_layer = 1 WHERE id = 1");
  EXPECT_EQ(library->get<Material>("Oak")->cut_layer()->name().utf8(), "S-WOOD");
  EXPECT_EQ(library->get<Composition>("Parquet")->entity_layer()->name().utf8(), "S-WOOD");
}

// Working with a library that was migrated.

TEST_P(FileMigration, foreign_keys_are_enforced_afterwards) {
  const auto library = open();
  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(3); }).type, "veldra::ObjectInUse");
  EXPECT_EQ(thrown_by([&] { library->remove<MaterialType>(1); }).type, "veldra::ObjectInUse");
  EXPECT_EQ(thrown_by([&] { library->remove<Material>(2); }).type, "veldra::ObjectInUse");
  expect_the_file_is_migrated();
}

TEST_P(FileMigration, removing_takes_the_lists_along) {
  const auto library = open();
  EXPECT_TRUE(library->remove<Composition>(1));
  EXPECT_TRUE(library->remove<Material>(2));
  PlainDatabase database(path);
  EXPECT_EQ(database.value("SELECT count(*) FROM Composition_layers"), "0");
  EXPECT_EQ(database.value("SELECT count(*) FROM Material_tags WHERE object_id = 2"), "0");
  EXPECT_EQ(database.value("SELECT count(*) FROM Material_custom_values"), "0");
  EXPECT_EQ(damage(path), "");
}

TEST_P(FileMigration, objects_save_with_what_the_old_version_lacked) {
  {
    const auto library = open();
    const auto oak = library->get<Material>("Oak");
    oak->cut_layer(Layer::create("S-WOOD"));
    oak->custom_value("Supplier", "Sawmill");
    oak->save();
    const auto parquet = library->get<Composition>("Parquet");
    parquet->entity_layer(Layer::create("A-FLOR"));
    parquet->custom_value("Acoustic class", "B");
    parquet->save();
  }
  const auto library = open();
  const auto oak = library->get<Material>("Oak");
  const auto parquet = library->get<Composition>("Parquet");
  EXPECT_EQ(oak->cut_layer()->name().utf8(), "S-WOOD");
  EXPECT_EQ(oak->custom_value("Supplier").get().utf8(), "Sawmill");
  EXPECT_EQ(oak->appearance().utf8(), "oak-appearance");
  EXPECT_EQ(parquet->entity_layer()->name().utf8(), "A-FLOR");
  EXPECT_EQ(parquet->custom_value("Acoustic class").get().utf8(), "B");
  EXPECT_EQ(parquet->comments().utf8(), "glued");
  EXPECT_EQ(damage(path), "");
}

TEST_P(FileMigration, a_layer_in_use_cannot_be_removed) {
  const auto library = open();
  const auto oak = library->get<Material>("Oak");
  oak->cut_layer(Layer::create("S-WOOD"));
  oak->save();
  EXPECT_EQ(thrown_by([&] { library->remove<Layer>(1); }).type, "veldra::ObjectInUse");
  EXPECT_EQ(library->get<Material>("Oak")->cut_layer()->name().utf8(), "S-WOOD");
}

TEST_P(FileMigration, new_objects_save) {
  const auto library = open();
  const auto ash = Material::create("Ash");
  ash->type(library->get<MaterialType>("Wood"));
  ash->save(library);
  EXPECT_EQ(ash->id(), 10u);
  EXPECT_EQ(*library->get<Material>("Ash"), *ash);
}

TEST_P(FileMigration, a_failure_leaves_the_file_at_its_version) {
  PlainDatabase(path).execute("CREATE TABLE Layer (word)");
  const FileState before(path);
  EXPECT_EQ(thrown_by([&] { open(); }), "odb::sqlite::database_exception");
  EXPECT_TRUE(before == FileState(path));
  EXPECT_FALSE(file_exists(path + "-journal"));
  PlainDatabase(path).execute("DROP TABLE Layer");
  open();
  expect_the_file_is_migrated();
}

INSTANTIATE_TEST_SUITE_P(Versions, FileMigration, testing::ValuesIn(old_versions),
                         testing::PrintToStringParamName());

// A version between the base and the first step: the first step applies.
class FileMigrationBetween : public FileMigration {
 protected:
  void SetUp() override {
    make_old_file(path, 150201);
    fill_old_file(path, 150201);
    before_ = dump(path);
    set_version(GetParam());
  }
};

TEST_P(FileMigrationBetween, starts_at_the_step_above) {
  EXPECT_EQ(open()->version(), 150302u);
  EXPECT_EQ(catalogue(path), migrated_catalogue(150201));
  EXPECT_EQ(dump(path), migrated_dump(before_));
}

INSTANTIATE_TEST_SUITE_P(Versions, FileMigrationBetween, testing::Values(150202, 150250, 150300),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace veldra_tests
