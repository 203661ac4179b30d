// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <sqlite3.h>

#include <set>
#include <string>
#include <vector>

namespace veldra_tests {
namespace {

/// Lists of what other programs have left in a library: with the objects in them as they are when
/// each is read alone, in the same order.
class ReadingOddLists : public LibraryTest {
 protected:
  ReadingOddLists() : file(path) {
    file.execute(
        "PRAGMA foreign_keys=OFF;"
        "INSERT INTO Tag VALUES (1, 'warm'), (2, 'dry');"
        "INSERT INTO CustomProperty VALUES (1, 'Price', 4);"
        "BEGIN");
    for (unsigned id = 5; id != 25; ++id) put_tagged_material(std::to_string(id));
    file.execute("COMMIT");
  }

  /// Has the table lie in the file under the same name without keys, and its ids have a type.
  void declare_anew(const std::string& table, const std::string& id, const std::string& type) {
    file.execute("CREATE TABLE kept AS SELECT * FROM " + table);
    std::string columns;
    for (const Row& column : file.query("SELECT name FROM pragma_table_info('" + table + "')")) {
      const std::string name = column[0].substr(1, column[0].size() - 2);
      columns += (columns.empty() ? "\"" : ", \"") + name + "\"" + (name == id ? " " + type : "");
    }
    file.execute("DROP TABLE " + table + "; CREATE TABLE " + table + " (" + columns + ");" +
                 "INSERT INTO " + table + " SELECT * FROM kept; DROP TABLE kept");
  }

  /// How many objects the list has; each is as it is when it is read alone.
  template <class T>
  std::size_t listed() const {
    const auto objects = all_of<T>(*library);
    expect_as_alone(objects);
    return objects.size();
  }

  template <class T>
  void expect_as_alone(const std::vector<std::shared_ptr<T>>& objects) const {
    for (const auto& object : objects) {
      ASSERT_EQ(values_of(object), values_of(library->get<T>(object->id()))) << object->id();
    }
  }

  /// Gives the materials ids that lie far from one another.
  void spread_ids() {
    file.execute("UPDATE Material SET id=id*100");
    for (const char* table : {"Material_tags", "Material_thicknesses", "Material_custom_values"}) {
      file.execute(std::string("UPDATE ") + table + " SET object_id=object_id*100");
    }
  }

  /// Has a text lead to a page that is not there.
  void break_pages_of(const std::string& material) {
    const std::string text(50000, 'x');
    file.execute("UPDATE Material SET comments=" + quoted(text) + " WHERE id=" + material);
    library.reset();
    const std::size_t page = std::stoul(file.value("PRAGMA page_size"));
    std::string bytes = read_file(path);
    for (std::size_t at = 0; at != bytes.size(); at += page) {
      if (bytes.compare(at + 4, 1000, text, 0, 1000) == 0) bytes.replace(at, 4, 4, '\xf0');
    }
    write_file(path, bytes);
    library = open();
  }

  PlainDatabase file;

 private:
  void put_tagged_material(const std::string& id) {
    put_material(file, {{"id", id}, {"name", quoted("Material " + id)}});
    file.execute("INSERT INTO Material_tags VALUES (" + id + ", 1, 1), (" + id + ", 0, 2);" +
                 "INSERT INTO Material_thicknesses VALUES (" + id + ", " + id + ");" +
                 "INSERT INTO Material_custom_values VALUES (" + id + ", 1, '" + id + "')");
  }
};

TEST_F(ReadingOddLists, ids_of_owners_may_be_kept_as_texts) {
  for (const char* table : {"Material_tags", "Material_thicknesses", "Material_custom_values"}) {
    declare_anew(table, "object_id", "TEXT");
  }
  EXPECT_EQ(library->get<Material>(5)->tags().size(), 2u);
  EXPECT_EQ(listed<Material>(), 20u);
  spread_ids();
  EXPECT_EQ(library->get<Material>(500)->tags().size(), 2u);
  EXPECT_EQ(listed<Material>(), 20u);
}

TEST_F(ReadingOddLists, ids_of_owners_may_be_kept_as_real_numbers) {
  for (const char* table : {"Material_tags", "Material_thicknesses", "Material_custom_values"}) {
    declare_anew(table, "object_id", "REAL");
  }
  file.execute("INSERT INTO Material_tags VALUES (5.5, 2, 1)");
  EXPECT_EQ(library->get<Material>(5)->tags().size(), 2u);
  EXPECT_EQ(listed<Material>(), 20u);
}

TEST_F(ReadingOddLists, ids_of_objects_may_be_kept_as_texts_or_real_numbers) {
  for (const char* type : {"TEXT", "REAL"}) {
    SCOPED_TRACE(type);
    declare_anew("Material", "id", type);
    EXPECT_EQ(listed<Material>(), 20u);
  }
}

TEST_F(ReadingOddLists, an_id_that_is_no_whole_number_is_that_of_no_object) {
  declare_anew("Material", "id", "");
  file.execute("UPDATE Material SET id=6.5 WHERE id=6");
  EXPECT_FALSE(library->get<Material>(6u));
  EXPECT_EQ(listed<Material>(), 19u);
  file.execute("UPDATE Material SET id='7' WHERE id=7");
  EXPECT_FALSE(library->get<Material>(7u));
  EXPECT_EQ(listed<Material>(), 18u);
}

TEST_F(ReadingOddLists, an_id_that_two_rows_have_is_read_as_it_is_alone) {
  declare_anew("Material", "id", "INTEGER");
  file.execute("UPDATE Material SET id=6 WHERE id=7");
  EXPECT_EQ(listed<Material>(), 20u);
}

TEST_F(ReadingOddLists, values_of_the_same_place_keep_their_order) {
  file.execute(
      "UPDATE Material_tags SET \"index\"=0;"
      "INSERT INTO Material_custom_values SELECT id, 1, 'another' FROM Material");
  EXPECT_EQ(listed<Material>(), 20u);
  file.execute(
      "DROP INDEX Material_tags_object_id_i; DROP INDEX Material_custom_values_object_id_i");
  EXPECT_EQ(listed<Material>(), 20u);
}

TEST_F(ReadingOddLists, a_damaged_row_between_the_wanted_ones_is_no_obstacle) {
  break_pages_of("15");
  std::set<unsigned> others = library->ids<Material>();
  others.erase(15);
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials, others);
  EXPECT_EQ(materials.size(), 19u);
  expect_as_alone(materials);
  EXPECT_EQ(thrown_by([&] { library->get(materials); }).code, SQLITE_CORRUPT);
}

TEST_F(ReadingOddLists, what_others_change_between_two_lists_is_met) {
  EXPECT_EQ(listed<Material>(), 20u);
  file.execute(
      "ALTER TABLE Material ADD COLUMN extra TEXT;"
      "DROP INDEX Material_thicknesses_object_id_i;"
      "UPDATE Material_tags SET \"index\"=1-\"index\"");
  declare_anew("Material_custom_values", "object_id", "TEXT");
  EXPECT_EQ(library->get<Material>(5)->tags()[0]->name(), "warm");
  EXPECT_EQ(listed<Material>(), 20u);
}

TEST_F(ReadingOddLists, a_list_that_failed_leaves_the_transaction_of_the_host_as_it_was) {
  Library::Transaction transaction(*library);
  library->save(Tag::create("new"));
  file.execute("PRAGMA busy_timeout=0");
  EXPECT_EQ(listed<Material>(), 20u);
  transaction.commit();
  file.execute("UPDATE Material SET comments=CAST(x'ff' AS TEXT) WHERE id=15");
  Library::Transaction next(*library);
  library->save(Tag::create("newer"));
  EXPECT_EQ(thrown_by([&] { all_of<Material>(*library); }), "utf8::invalid_utf8");
  next.commit();
  file.execute("UPDATE Material SET comments='' WHERE id=15");
  EXPECT_EQ(listed<Material>(), 20u);
  EXPECT_EQ(library->count<Tag>(), 4u);
}

/// Compositions 1 to 9 of material 5.
class ReadingOddCompositions : public ReadingOddLists {
 protected:
  ReadingOddCompositions() {
    for (unsigned number = 1; number != 10; ++number) {
      const std::string id = std::to_string(number);
      put_composition(file, {{"id", id}, {"name", quoted("Wall " + id)}});
      file.execute("INSERT INTO Composition_layers VALUES (" + id + ", 0, 5, 0, 10)");
    }
  }

  void use(const std::string& material, const std::string& composition) {
    file.execute("UPDATE Composition_layers SET value_material_id=" + material +
                 " WHERE object_id=" + composition);
  }

  void break_text(const std::string& material) {
    file.execute("UPDATE Material SET comments=CAST(x'ff' AS TEXT) WHERE id=" + material);
  }
};

TEST_F(ReadingOddCompositions,
       a_material_that_cannot_be_read_is_not_told_of_if_no_object_needs_it) {
  use("6", "3");
  break_text("6");
  file.execute("UPDATE Composition SET entity_layer=99 WHERE id=3");
  EXPECT_FALSE(library->get<Composition>(3u));
  EXPECT_EQ(listed<Composition>(), 8u);
}

TEST_F(ReadingOddCompositions, the_first_composition_that_cannot_be_read_is_told_of) {
  use("7", "3");
  break_text("7");
  use("6", "4");
  put_structural_asset(file, "1");
  file.execute("UPDATE Asset SET typeid='none'; UPDATE Material SET structural_id=1 WHERE id=6");
  const Thrown first = thrown_by([&] { library->get<Composition>(3u); });
  EXPECT_NE(first.type, thrown_by([&] { library->get<Composition>(4u); }).type);
  EXPECT_EQ(thrown_by([&] { listed<Composition>(); }).type, first.type);
}

}  // namespace
}  // namespace veldra_tests
