// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/library_test.hpp"

namespace veldra_tests {
namespace {

/// Files of older versions have their newest columns last; objects go in and out all the same.
class RowsMigrated : public LibraryFixture, public WithParamInterface<int> {
 protected:
  RowsMigrated() { make_old_file(path, GetParam()); }
};

TEST_P(RowsMigrated, full_objects_are_written_and_read) {
  const auto wall = full_composition("Wall");
  {
    const auto library = open();
    library->save(wall);
  }
  const auto library = open_read_only();
  const auto again = library->get<Composition>(wall->id());
  ASSERT_TRUE(again);
  EXPECT_EQ(values_of(again), values_of(full_composition("Wall")));
  EXPECT_EQ(damage(path), "");
}

TEST_P(RowsMigrated, full_objects_are_updated) {
  const auto library = open();
  const auto oak = library->save(Material::create("Oak"));
  *oak = *full_material("Oak");
  library->save(oak);
  EXPECT_EQ(values_of(library->get<Material>("Oak")), values_of(full_material("Oak")));
  PlainDatabase file(path);
  EXPECT_EQ(row_of(file, "Material", "1").at("cut_layer"), "1");
  EXPECT_EQ(row_of(file, "Material", "1").at("appearance"), "'Oak appearance'");
}

TEST_P(RowsMigrated, a_layer_that_is_not_in_the_file_makes_no_object) {
  open()->save(full_material("Oak"));
  PlainDatabase(path).execute("UPDATE Material SET cut_layer=99");
  EXPECT_FALSE(open()->get<Material>("Oak"));
}

INSTANTIATE_TEST_SUITE_P(Versions, RowsMigrated, testing::Values(150201, 150301));

}  // namespace
}  // namespace veldra_tests
