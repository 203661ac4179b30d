// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/builders.hpp"
#include "support/library_test.hpp"

namespace veldra_tests {
namespace {

class LastId : public LibraryTest {};

/// The layers of a composition are rows of another table, which go by its id.
TEST_F(LastId, is_told_as_such_by_what_has_rows_in_other_tables) {
  library->save(full_composition("Wall"));
  PlainDatabase(path).execute(
      "UPDATE sqlite_sequence SET seq = 4294967295 WHERE name = 'Composition'");
  const Thrown thrown = thrown_by([&] { library->save(full_composition("Roof")); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 13);
  EXPECT_THAT(thrown.text, HasSubstr("no id is left"));
  EXPECT_EQ(library->count<Composition>(), 1u);
}

}  // namespace
}  // namespace veldra_tests
