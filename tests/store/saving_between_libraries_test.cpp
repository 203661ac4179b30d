// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"
#include "support/units.hpp"

#include <limits>

namespace veldra_tests {
namespace {

/// Lengths of what moves between libraries of different units. `library` is in millimetres.
class SavingUnits : public LibraryTest {
 protected:
  static std::shared_ptr<Material> material() {
    const auto material = full_material("Oak");
    material->thicknesses(toModify) = {0.5, 1.0, 12.5, 0.0, -2.0};
    return material;
  }

  std::shared_ptr<Library> inches = create("inches.lib", Unit::Inches);
};

std::set<double> scaled(const std::set<double>& numbers, double factor) {
  std::set<double> products;
  for (const double number : numbers) products.insert(number * factor);
  return products;
}

void expect_scaled(const Composition& copy, const Composition& source, double factor) {
  ASSERT_EQ(copy.layers().size(), source.layers().size());
  for (std::size_t index = 0; index != source.layers().size(); ++index) {
    EXPECT_EQ(copy.layer(index).thickness(), source.layer(index).thickness() * factor);
    EXPECT_EQ(copy.layer(index).material()->thicknesses(),
              scaled(source.layer(index).material()->thicknesses(), factor));
  }
  EXPECT_EQ(copy.variable_layer_min_thickness(), source.variable_layer_min_thickness() * factor);
  EXPECT_EQ(copy.variable_layer_max_thickness(), source.variable_layer_max_thickness() * factor);
}

void expect_converted(Library& from, Library& to, double factor) {
  const auto source = from.save(full_composition("Wall"));
  const std::string source_state = state_of(source);
  const auto copy = to.save(source);
  expect_scaled(*copy, *source, factor);
  expect_scaled(*to.get<Composition>("Wall"), *source, factor);
  EXPECT_EQ(state_of(source), source_state);
}

TEST_F(SavingUnits, inches_become_millimetres) {
  expect_converted(*inches, *library, kMillimetresPerInch);
}

TEST_F(SavingUnits, millimetres_become_inches) {
  expect_converted(*library, *inches, kInchesPerMillimetre);
}

TEST_F(SavingUnits, the_thicknesses_of_a_material_are_lengths) {
  const auto in_inches = inches->save(material());
  const auto copy = library->save(in_inches);
  EXPECT_EQ(copy->thicknesses(), scaled(in_inches->thicknesses(), kMillimetresPerInch));
  EXPECT_EQ(library->get<Material>("Oak")->thicknesses(), copy->thicknesses());
  const auto more = library->save(full_material("Pine"));
  EXPECT_EQ(inches->save(more)->thicknesses(), scaled(more->thicknesses(), kInchesPerMillimetre));
}

TEST_F(SavingUnits, nothing_else_of_a_material_is_a_length) {
  const auto source = inches->save(material());
  const auto copy = library->save(source);
  EXPECT_EQ(copy->surface_pattern(), source->surface_pattern());
  EXPECT_EQ(copy->cut_pattern(), source->cut_pattern());
  EXPECT_EQ(copy->surface_pattern_alignment(), source->surface_pattern_alignment());
  copy->thicknesses(toModify) = source->thicknesses();
  EXPECT_EQ(values_of(copy), values_of(source));
}

TEST_F(SavingUnits, what_is_unset_stays_unset) {
  const auto source = inches->save(Composition::create("Wall"));
  const auto copy = library->save(source);
  EXPECT_FALSE(copy->has_variable_layer_max_thickness());
  EXPECT_EQ(values_of(copy), values_of(source));
}

TEST_F(SavingUnits, the_same_unit_leaves_numbers_as_they_are) {
  const auto other = create("other.lib");
  const auto source = other->save(full_composition("Wall"));
  EXPECT_EQ(values_of(library->save(source)), values_of(source));
}

TEST_F(SavingUnits, what_belongs_to_no_library_is_taken_as_it_is) {
  const auto wall = inches->save(full_composition("Wall"))->clone();
  library->save(wall);
  EXPECT_EQ(wall->layer(0).thickness(), 15.0);
  EXPECT_EQ(wall->variable_layer_min_thickness(), 60.5);
  EXPECT_EQ(wall->layer(0).material()->library(), library);
  EXPECT_EQ(wall->layer(0).material()->thicknesses(), scaled({12.5, 50.0}, kMillimetresPerInch));
}

TEST_F(SavingUnits, what_a_mapping_already_has_is_not_converted_again) {
  const auto source = inches->save(material());
  IdMapping mapping(library.get());
  const auto first = library->save(source, mapping);
  const auto again = library->save(source, mapping);
  EXPECT_EQ(values_of(first), values_of(again));
}

TEST_F(SavingUnits, an_overwritten_object_gets_converted_values) {
  library->save(Material::create("Oak"));
  reactor.decision = Library::Reactor::Overwrite;
  const auto source = inches->save(material());
  library->save(source);
  EXPECT_EQ(library->get<Material>("Oak")->thicknesses(),
            scaled(source->thicknesses(), kMillimetresPerInch));
}

TEST_F(SavingUnits, infinities_stay_infinities) {
  const double infinity = std::numeric_limits<double>::infinity();
  const auto source = Material::create("Oak");
  source->thicknesses(toModify) = {-infinity, infinity};
  EXPECT_THAT(library->save(inches->save(source))->thicknesses(), ElementsAre(-infinity, infinity));
}

/// Materials with assets, in this library and in another one.
class SavingAssets : public LibraryTest {
 protected:
  SavingAssets() {
    for (const std::string& file : {path, folder / "other.lib"}) {
      PlainDatabase database(file);
      put_structural_asset(database, "1");
      put_thermal_asset(database, "2");
      put_material(
          database,
          {{"id", "1"}, {"name", "'Stored'"}, {"structural_id", "1"}, {"thermal_id", "2"}});
    }
    source = other->get<Material>(1);
    source->name("Foreign");
    other->save(source);
  }

  Columns row(const std::string& id) const {
    PlainDatabase file(path);
    return row_of(file, "Material", id);
  }

  void expect_no_assets(const std::shared_ptr<Material>& material) {
    EXPECT_FALSE(material->structuralAsset());
    EXPECT_FALSE(material->thermalAsset());
    const Columns columns = row(std::to_string(material->id()));
    EXPECT_EQ(columns.at("structural_id"), "NULL");
    EXPECT_EQ(columns.at("thermal_id"), "NULL");
  }

  /// An asset that is in no file.
  class NewAsset : public StructuralAsset {
   public:
    NewAsset() : StructuralAsset() {}
  };

  std::shared_ptr<Library> other = create("other.lib");
  std::shared_ptr<Material> source;
};

TEST_F(SavingAssets, of_a_foreign_material_are_dropped) {
  const std::string source_state = state_of(source);
  expect_no_assets(library->save(source));
  EXPECT_EQ(state_of(source), source_state);
  EXPECT_TRUE(source->structuralAsset());
}

TEST_F(SavingAssets, of_a_clone_of_a_foreign_material_are_dropped) {
  const auto clone = source->clone();
  library->save(clone);
  expect_no_assets(clone);
  EXPECT_TRUE(source->structuralAsset());
}

TEST_F(SavingAssets, of_another_library_are_dropped_from_a_material_of_this_one) {
  const auto stored = library->get<Material>("Stored");
  stored->structuralAsset(source->structuralAsset());
  stored->thermalAsset(source->thermalAsset());
  library->save(stored);
  expect_no_assets(stored);
}

TEST_F(SavingAssets, of_a_foreign_layer_are_dropped) {
  const auto wall = Composition::create("Wall");
  wall->appendLayer({source, Material::Function::None, 1.0});
  library->save(wall);
  EXPECT_FALSE(wall->layer(0).material()->structuralAsset());
  EXPECT_FALSE(library->get<Composition>("Wall")->layer(0).material()->thermalAsset());
  EXPECT_EQ(damage(path), "");
}

TEST_F(SavingAssets, of_this_library_are_kept_by_a_clone) {
  const auto clone = library->get<Material>("Stored")->clone();
  clone->name("Clone");
  const auto saved = library->save(clone);
  EXPECT_EQ(row(std::to_string(saved->id())).at("structural_id"), "1");
  EXPECT_EQ(row(std::to_string(saved->id())).at("thermal_id"), "2");
  EXPECT_EQ(saved->structuralAsset()->library(), library);
}

TEST_F(SavingAssets, no_asset_is_ever_written) {
  const auto assets = [&] {
    PlainDatabase file(path);
    return std::vector<Rows>{
        file.query("SELECT * FROM Asset"), file.query("SELECT * FROM StructuralAsset"),
        file.query("SELECT * FROM ThermalAsset"), file.query("SELECT * FROM Asset_tags")};
  };
  const auto before = assets();
  source->structuralAsset()->density(99.0);
  source->structuralAsset()->addTag(String("tag").c_str());
  library->save(source);
  const auto stored = library->get<Material>("Stored");
  stored->thermalAsset()->name("Changed");
  stored->cost("1");
  library->save(stored);
  EXPECT_EQ(assets(), before);
  EXPECT_TRUE(stored->thermalAsset()->isDirty());
  EXPECT_THAT(reactor.calls_starting_with("saved Asset"), IsEmpty());
}

TEST_F(SavingAssets, that_are_in_no_file_fail_at_the_end_of_the_transaction) {
  const auto material = full_material("Oak");
  material->structuralAsset(std::make_shared<NewAsset>());
  const std::string state = state_of(material);
  const std::string before = rows();
  const Thrown thrown = thrown_by([&] { library->save(material); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 19);
  EXPECT_EQ(thrown.extended, 787);
  EXPECT_EQ(state_of(material), state);
  EXPECT_EQ(rows(), before);
  EXPECT_THAT(reactor.calls_starting_with("saved Material "), ElementsAre("saved Material 2"))
      << "the failure comes when all is written";
  material->structuralAsset(nullptr);
  EXPECT_EQ(library->save(material), material);
}

}  // namespace
}  // namespace veldra_tests
