// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <set>
#include <vector>

#include <sqlite3.h>

namespace veldra_tests {
namespace {

int bind_few_parameters(sqlite3* connection, char**, const void*) {
  sqlite3_limit(connection, SQLITE_LIMIT_VARIABLE_NUMBER, 999);
  return SQLITE_OK;
}

/// Connections that are opened meanwhile have SQLite's smallest default of bound parameters.
class FewParameters {
 public:
  FewParameters() { sqlite3_auto_extension(entry()); }
  FewParameters(const FewParameters&) = delete;
  FewParameters& operator=(const FewParameters&) = delete;
  ~FewParameters() { sqlite3_cancel_auto_extension(entry()); }

 private:
  using Entry = void (*)();

  static Entry entry() { return reinterpret_cast<Entry>(bind_few_parameters); }
};

/// A library with 2,000 tags, properties and compositions where SQLite takes 999 parameters.
class ReadingLimits : public LibraryTest {
 protected:
  ReadingLimits() {
    PlainDatabase file(path);
    const std::string numbers =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<2000) ";
    file.execute(numbers + "INSERT INTO Tag SELECT i, 'tag ' || i FROM n");
    file.execute(numbers + "INSERT INTO CustomProperty SELECT i, 'property ' || i, 4 FROM n");
    put_material(file, {{"id", "1"}, {"name", "'Oak'"}});
    file.execute("INSERT INTO Material_tags SELECT 1, id, id FROM Tag");
    put_material(file, {{"id", "2"}, {"name", "'Pine'"}});
    put_composition(file, {{"id", "2000"}, {"name", "'Wall'"}});
    file.execute(numbers + "INSERT INTO Composition SELECT i, 'Wall ' || i, " +
                 "\"description\", \"type\", \"entity_layer\", \"comments\", \"first_core_layer\", "
                 "\"last_core_layer\", \"structural_layer\", \"variable_layer\", "
                 "\"variable_layer_min_thickness\", \"variable_layer_max_thickness\" "
                 "FROM n JOIN Composition ON id=2000 WHERE i<2000");
    file.execute("INSERT INTO Composition_layers SELECT id, 0, 2, 0, 10 FROM Composition");
    for (unsigned id = 1; id <= 2000; ++id) ids.insert(id);
    reopen();
  }

  template <class T>
  std::size_t read_by_ids() const {
    std::vector<std::shared_ptr<T>> objects;
    library->get(objects, ids);
    return objects.size();
  }

  FewParameters few_parameters;
  std::set<unsigned> ids;
};

TEST_F(ReadingLimits, the_limit_of_these_tests_holds) {
  PlainDatabase file(path);
  EXPECT_EQ(sqlite3_limit(file.handle(), SQLITE_LIMIT_VARIABLE_NUMBER, -1), 999);
}

TEST_F(ReadingLimits, an_id_set_can_be_larger) {
  EXPECT_EQ(read_by_ids<Tag>(), 2000u);
  EXPECT_EQ(read_by_ids<CustomProperty>(), 2000u);
  EXPECT_EQ(read_by_ids<Composition>(), 2000u);
}

TEST_F(ReadingLimits, a_list_of_everything_can_be_larger) {
  std::vector<std::shared_ptr<Composition>> compositions;
  library->get(compositions);
  EXPECT_EQ(compositions.size(), 2000u);
}

TEST_F(ReadingLimits, a_tag_set_can_be_larger) {
  MaterialCriteria criteria;
  for (const unsigned id : ids) {
    criteria.tags.insert(String(("tag " + std::to_string(id)).c_str()));
  }
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials, criteria);
  library->search(materials, "Oak", criteria);
  EXPECT_EQ(materials.size(), 2u);
  EXPECT_EQ(library->count<Material>(criteria), 1u);
}

TEST_F(ReadingLimits, a_copy_can_be_larger) {
  const auto destination = create("destination.lib");
  destination->copy<Tag>(library, ids);
  EXPECT_EQ(destination->count<Tag>(), 2000u);
}

}  // namespace
}  // namespace veldra_tests
