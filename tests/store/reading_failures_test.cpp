// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <vector>

namespace veldra_tests {
namespace {

/// A good and a bad material, a good and a bad composition: "Good" with id 1, "Bad" with id 2.
/// All have tag 1, property 1 or 2, layer 1 and the assets 1 to 4, and the compositions two layers
/// of the material with their name. A statement then spoils what only "Bad" has.
class ReadingFailures : public LibraryTest, public testing::WithParamInterface<std::string> {
 protected:
  ReadingFailures() : file(path) {
    file.execute(
        "INSERT INTO Tag VALUES (1, 'good'), (2, 'bad');"
        "INSERT INTO Layer VALUES (1, 'good'), (2, 'bad');"
        "INSERT INTO CustomProperty VALUES (1, 'good', 4), (2, 'bad', 4), (3, 'good', 5), "
        "(4, 'bad', 5);");
    for (const char* id : {"1", "2"}) put_structural_asset(file, id);
    for (const char* id : {"3", "4"}) put_thermal_asset(file, id);
    put("1", "'Good'", "3", "3");
    put("2", "'Bad'", "4", "4");
  }

  template <class T>
  std::vector<std::string> listed_names() const {
    std::vector<std::shared_ptr<T>> all, by_ids, found;
    library->get(all);
    library->get(by_ids, {1u, 2u});
    library->search(found, "%");
    std::vector<std::string> names;
    for (const auto* list : {&all, &by_ids, &found}) {
      std::string line;
      for (const auto& object : *list) line += object->name().utf8();
      names.push_back(line);
    }
    return names;
  }

  template <class T>
  void expect_only_the_good_one() const {
    EXPECT_FALSE(library->get<T>(2));
    EXPECT_FALSE(library->get<T>("Bad"));
    EXPECT_THAT(listed_names<T>(), Each("Good"));
    const auto good = library->get<T>(1);
    ASSERT_TRUE(good);
    EXPECT_EQ(good->name(), String("Good"));
  }

  PlainDatabase file;

 private:
  void put(const std::string& id, const std::string& name, const std::string& property,
           const std::string& thermal) {
    put_material(file, {{"id", id},
                        {"name", name},
                        {"type", id},
                        {"cut_layer", id},
                        {"structural_id", id},
                        {"thermal_id", thermal}});
    put_composition(file, {{"id", id}, {"name", name}, {"entity_layer", id}});
    file.execute("INSERT INTO Material_tags VALUES (" + id + ", 0, " + id + ");" +
                 "INSERT INTO Asset_tags VALUES (" + id + ", 0, " + id + ");" +
                 "INSERT INTO Material_custom_values VALUES (" + id + ", " + id + ", 'x');" +
                 "INSERT INTO Composition_tags VALUES (" + id + ", 0, " + id + ");" +
                 "INSERT INTO Composition_custom_values VALUES (" + id + ", " + property +
                 ", 'x');" + "INSERT INTO Composition_layers VALUES (" + id + ", 0, " + id +
                 ", 0, 1), (" + id + ", 1, " + id + ", 0, 1)");
  }
};

class DanglingReferenceOfAMaterial : public ReadingFailures {};

TEST_P(DanglingReferenceOfAMaterial, makes_it_count_as_not_there) {
  file.execute(GetParam());
  expect_only_the_good_one<Material>();
}

TEST_P(DanglingReferenceOfAMaterial, makes_a_composition_of_it_count_as_not_there) {
  file.execute(GetParam());
  expect_only_the_good_one<Composition>();
  const auto good = library->get<Composition>(1);
  ASSERT_TRUE(good);
  EXPECT_EQ(good->layers().size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    Each, DanglingReferenceOfAMaterial,
    testing::Values("DELETE FROM MaterialType WHERE id=2", "DELETE FROM Layer WHERE id=2",
                    "DELETE FROM Tag WHERE id=2", "DELETE FROM CustomProperty WHERE id=2",
                    "DELETE FROM Asset WHERE id=2; DELETE FROM StructuralAsset WHERE id=2",
                    "DELETE FROM Asset WHERE id=4; DELETE FROM ThermalAsset WHERE id=4",
                    "DELETE FROM StructuralAsset WHERE id=2", "DELETE FROM ThermalAsset WHERE id=4",
                    "DELETE FROM Asset WHERE id=2", "DELETE FROM Asset WHERE id=4",
                    "UPDATE Asset_tags SET tag_id=99 WHERE object_id=2",
                    "UPDATE Material SET type=0 WHERE id=2",
                    "UPDATE Material SET type=-1 WHERE id=2",
                    "UPDATE Material SET cut_layer=99 WHERE id=2",
                    "UPDATE Material SET structural_id=99 WHERE id=2",
                    "UPDATE Material_tags SET tag_id=99 WHERE object_id=2",
                    "UPDATE Material_custom_values SET property_id=99 WHERE object_id=2",
                    // ids that agree with those of other objects in their lower 32 bits
                    "UPDATE Material SET type=4294967300 WHERE id=2",
                    "UPDATE Material SET cut_layer=4294967297 WHERE id=2",
                    "UPDATE Material SET cut_layer=-4294967295 WHERE id=2",
                    "UPDATE Material SET structural_id=4294967297 WHERE id=2",
                    "UPDATE Material SET thermal_id=4294967299 WHERE id=2",
                    "UPDATE Material_tags SET tag_id=4294967297 WHERE object_id=2",
                    "UPDATE Asset_tags SET tag_id=4294967297 WHERE object_id=2",
                    "UPDATE Material_custom_values SET property_id=4294967297 WHERE object_id=2"));

class DanglingReferenceOfAComposition : public ReadingFailures {};

TEST_P(DanglingReferenceOfAComposition, makes_it_count_as_not_there) {
  file.execute(GetParam());
  expect_only_the_good_one<Composition>();
}

INSTANTIATE_TEST_SUITE_P(
    Each, DanglingReferenceOfAComposition,
    testing::Values("DELETE FROM Material WHERE id=2", "DELETE FROM CustomProperty WHERE id=4",
                    "UPDATE Composition SET entity_layer=99 WHERE id=2",
                    "UPDATE Composition_tags SET tag_id=99 WHERE object_id=2",
                    "UPDATE Composition_custom_values SET property_id=99 WHERE object_id=2",
                    "UPDATE Composition_layers SET value_material_id=99 WHERE object_id=2 AND "
                    "\"index\"=1",
                    "UPDATE Composition_layers SET value_material_id=0 WHERE object_id=2",
                    "UPDATE Composition_layers SET value_material_id=4294967297 WHERE object_id=2",
                    "UPDATE Composition SET entity_layer=4294967297 WHERE id=2",
                    "UPDATE Composition_tags SET tag_id=-4294967295 WHERE object_id=2",
                    "UPDATE Composition_custom_values SET property_id=4294967299 WHERE "
                    "object_id=2"));

class WrongKindOfAsset : public ReadingFailures {};

TEST_P(WrongKindOfAsset, raises_and_leaves_lists_as_they_were) {
  file.execute(GetParam());
  std::vector<std::shared_ptr<Material>> materials = {nullptr};
  std::vector<std::shared_ptr<Composition>> compositions = {nullptr};
  EXPECT_EQ(thrown_by([&] { library->get<Material>(2); }), "odb::no_type_info");
  EXPECT_EQ(thrown_by([&] { library->get<Material>("Bad"); }), "odb::no_type_info");
  EXPECT_EQ(thrown_by([&] { library->get(materials); }), "odb::no_type_info");
  EXPECT_EQ(thrown_by([&] { library->get(materials, {1u, 2u}); }), "odb::no_type_info");
  EXPECT_EQ(thrown_by([&] { library->search(materials, "%"); }), "odb::no_type_info");
  EXPECT_EQ(thrown_by([&] { library->get<Composition>(2); }), "odb::no_type_info");
  EXPECT_EQ(thrown_by([&] { library->get(compositions); }), "odb::no_type_info");
  EXPECT_EQ(materials.size(), 1u);
  EXPECT_EQ(compositions.size(), 1u);
}

TEST_P(WrongKindOfAsset, does_not_disturb_the_next_read) {
  file.execute(GetParam());
  EXPECT_EQ(thrown_by([&] { library->get<Material>(2); }), "odb::no_type_info");
  EXPECT_EQ(library->get<Material>(1)->name(), String("Good"));
  EXPECT_EQ(library->get<Composition>(1)->name(), String("Good"));
  EXPECT_EQ(library->count<Material>(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    Each, WrongKindOfAsset,
    testing::Values("UPDATE Asset SET typeid='veldra::Other' WHERE id=2",
                    "UPDATE Asset SET typeid='veldra::Asset' WHERE id=2",
                    "UPDATE Asset SET typeid='' WHERE id=4",
                    "UPDATE Asset SET typeid='veldra::ThermalAsset' WHERE id=2",
                    "UPDATE Asset SET typeid='veldra::StructuralAsset' WHERE id=4",
                    "UPDATE Asset SET typeid='veldra::thermalasset' WHERE id=4"));

class TextThatIsNotUtf8 : public ReadingFailures {};

TEST_P(TextThatIsNotUtf8, raises_and_harms_nothing_else) {
  file.execute("UPDATE " + GetParam());
  std::vector<std::shared_ptr<Material>> materials = {nullptr};
  std::vector<std::shared_ptr<Composition>> compositions = {nullptr};
  EXPECT_EQ(thrown_by([&] { library->get<Composition>(2); }), "utf8::invalid_utf8");
  EXPECT_EQ(thrown_by([&] { library->get(compositions); }), "utf8::invalid_utf8");
  EXPECT_EQ(thrown_by([&] { library->get(compositions, {1u, 2u}); }), "utf8::invalid_utf8");
  EXPECT_EQ(compositions.size(), 1u);
  EXPECT_EQ(library->get<Composition>(1)->name(), String("Good"));
  EXPECT_EQ(library->get<Material>(1)->name(), String("Good"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, TextThatIsNotUtf8,
    testing::Values("Composition SET comments=CAST(x'80' AS TEXT) WHERE id=2",
                    "Composition_custom_values SET value=CAST(x'EDA080' AS TEXT) WHERE object_id=2",
                    "CustomProperty SET name=CAST(x'C0AF' AS TEXT) WHERE id=4",
                    "Layer SET name=CAST(x'F4908080' AS TEXT) WHERE id=2",
                    "Material SET code=CAST(x'C3' AS TEXT) WHERE id=2",
                    "Material SET appearance=CAST(x'FE' AS TEXT) WHERE id=2",
                    "Material SET cut_pattern_name=CAST(x'61FF' AS TEXT) WHERE id=2",
                    "MaterialType SET name=CAST(x'E282' AS TEXT) WHERE id=2",
                    "Material_custom_values SET value=CAST(x'FF' AS TEXT) WHERE object_id=2",
                    "StructuralAsset SET subclass=CAST(x'FF' AS TEXT) WHERE id=2",
                    "ThermalAsset SET source=CAST(x'FF' AS TEXT) WHERE id=4",
                    "Asset SET description=CAST(x'FF' AS TEXT) WHERE id=4",
                    "Tag SET name=CAST(x'FF' AS TEXT) WHERE id=2"));

}  // namespace
}  // namespace veldra_tests
