// SPDX-License-Identifier: GPL-2.0-or-later
//
// Ids in a file are wider than those of objects: 0, negative ones and those beyond 32 bits are no
// object's. Neither a list nor a count has them, and a reference to one leads nowhere.

#include "support/library_test.hpp"

#include <string>
#include <vector>

namespace veldra_tests {
namespace {

template <class T>
class CountingWithImpossibleIds : public LibraryTest {
 protected:
  CountingWithImpossibleIds() : file(path), before(library->count<T>()) {
    for (const char* id :
         {"-9223372036854775808", "-1", "0", "4294967296", "9223372036854775806"}) {
      put_named<T>(file, id, "'Nobody " + std::string(id) + "'");
    }
    put_named<T>(file, "101", "'Somebody'");
    put_named<T>(file, "4294967295", "'Last'");
  }

  PlainDatabase file;
  unsigned long long before;
};
TYPED_TEST_SUITE(CountingWithImpossibleIds, AllKinds, KindNames);

TYPED_TEST(CountingWithImpossibleIds, counts_what_a_list_has) {
  std::vector<std::shared_ptr<TypeParam>> objects;
  this->library->get(objects);
  EXPECT_EQ(objects.size(), this->before + 2);
  EXPECT_EQ(this->library->template count<TypeParam>(), this->before + 2);
  EXPECT_EQ(this->library->template count<TypeParam>({}), this->before + 2);
}

/// A material and a composition of tag, type, walls and property, once more under an impossible id.
class SelectingWithImpossibleIds : public LibraryTest {
 protected:
  SelectingWithImpossibleIds() {
    PlainDatabase file(path);
    file.execute("INSERT INTO Tag VALUES (1, 'dry')");
    for (const std::string id : {"1", "0", "4294967297"}) {
      put_material(file, {{"id", id}, {"name", "'Material " + id + "'"}, {"type", "2"}});
      put_composition(file, {{"id", id}, {"name", "'Wall " + id + "'"}, {"type", "1"}});
      file.execute("INSERT INTO Material_tags VALUES (" + id + ", 0, 1);" +
                   "INSERT INTO Composition_tags VALUES (" + id + ", 0, 1);" +
                   "INSERT INTO CustomProperty VALUES (" + id + ", 'Property " + id + "', 4)");
    }
  }
};

TEST_F(SelectingWithImpossibleIds, counts_by_criteria_leave_them_out) {
  MaterialCriteria materials;
  materials.type = library->get<MaterialType>(2);
  EXPECT_EQ(library->count<Material>(materials), 1u);
  materials.tags = {"dry"};
  EXPECT_EQ(library->count<Material>(materials), 1u);
  CompositionCriteria compositions;
  compositions.types = 3;
  EXPECT_EQ(library->count<Composition>(compositions), 1u);
  compositions.tags = {"dry"};
  EXPECT_EQ(library->count<Composition>(compositions), 1u);
  CustomPropertyCriteria properties;
  properties.object_type = ObjectType::Composition;
  EXPECT_EQ(library->count<CustomProperty>(properties), 0u);
  properties.object_type = ObjectType::Material;
  EXPECT_EQ(library->count<CustomProperty>(properties), 1u);
}

/// As many tags as do not fit into one statement any more count their objects once.
TEST_F(SelectingWithImpossibleIds, counts_by_many_tags_leave_them_out) {
  for (const unsigned others : {160u, 170u, 499u, 501u, 1200u}) {
    CompositionCriteria criteria;
    criteria.tags = {"dry"};
    for (unsigned n = 0; n != others; ++n) {
      criteria.tags.insert(String(std::to_string(n).c_str()));
    }
    EXPECT_EQ(library->count<Composition>(criteria), 1u) << others;
  }
}

/// A composition and its material, with one of each kind that they refer to; and one of each kind
/// that has the largest id.
class ReferencesToImpossibleIds : public LibraryTest,
                                  public testing::WithParamInterface<std::string> {
 protected:
  ReferencesToImpossibleIds() : file(path) {
    for (const std::string id : {"20", "4294967295"}) {
      const std::string name = "'named " + id + "'";
      put_named<Tag>(file, id, name);
      put_named<Layer>(file, id, name);
      put_named<MaterialType>(file, id, name);
      put_named<CustomProperty>(file, id, name);
    }
    put_structural_asset(file, "20");
    put_thermal_asset(file, "21");
    put_structural_asset(file, "4294967294");
    put_thermal_asset(file, "4294967295");
    put_material(file, {{"id", "4294967295"}, {"name", "'Last'"}, {"type", "20"}});
    put_material(file, {{"id", "1"},
                        {"name", "'Oak'"},
                        {"type", "20"},
                        {"cut_layer", "20"},
                        {"structural_id", "20"},
                        {"thermal_id", "21"}});
    put_composition(file, {{"id", "1"}, {"name", "'Wall'"}, {"entity_layer", "20"}});
    file.execute(
        "INSERT INTO Material_tags VALUES (1, 0, 20);"
        "INSERT INTO Material_custom_values VALUES (1, 20, 'x');"
        "INSERT INTO Asset_tags VALUES (20, 0, 20);"
        "INSERT INTO Composition_tags VALUES (1, 0, 20);"
        "INSERT INTO Composition_custom_values VALUES (1, 20, 'x');"
        "INSERT INTO Composition_layers VALUES (1, 0, 1, 0, 1)");
  }

  PlainDatabase file;
};

TEST_P(ReferencesToImpossibleIds, lead_nowhere_though_the_largest_id_is_there) {
  ASSERT_TRUE(library->get<Composition>(1));
  for (const std::string id : {"4294967296", "4294967297", "-1", "9223372036854775807"}) {
    file.execute(GetParam() + id);
    EXPECT_FALSE(library->get<Composition>(1)) << id;
    std::vector<std::shared_ptr<Composition>> compositions;
    library->get(compositions);
    EXPECT_TRUE(compositions.empty()) << id;
  }
}

TEST_P(ReferencesToImpossibleIds, may_be_to_the_largest_id) {
  file.execute(GetParam() +
               (GetParam().find("structural") == std::string::npos ? "4294967295" : "4294967294"));
  EXPECT_TRUE(library->get<Composition>(1));
}

INSTANTIATE_TEST_SUITE_P(
    Each, ReferencesToImpossibleIds,
    testing::Values("UPDATE Material_tags SET tag_id=", "UPDATE Asset_tags SET tag_id=",
                    "UPDATE Material_custom_values SET property_id=", "UPDATE Material SET type=",
                    "UPDATE Material SET cut_layer=", "UPDATE Material SET structural_id=",
                    "UPDATE Material SET thermal_id=", "UPDATE Composition_tags SET tag_id=",
                    "UPDATE Composition_custom_values SET property_id=",
                    "UPDATE Composition SET entity_layer=",
                    "UPDATE Composition_layers SET value_material_id="));

}  // namespace
}  // namespace veldra_tests
