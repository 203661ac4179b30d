// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/logged_fixture.hpp"

namespace veldra_tests {
namespace {

/// What is asked of the database when a library without objects, but for the default types, is
/// read.
class ReadingStatements : public LoggedTest {
 protected:
  template <class T>
  Statements of_getting(const typename CriteriaOf<T>::type& criteria) {
    std::vector<std::shared_ptr<T>> objects;
    library->get(objects, criteria);
    return log.take();
  }

  template <class T>
  Statements of_searching(const typename CriteriaOf<T>::type& criteria) {
    std::vector<std::shared_ptr<T>> objects;
    library->search(objects, "Oak%", criteria);
    return log.take();
  }

  template <class T>
  Statements of_counting(const typename CriteriaOf<T>::type& criteria) {
    library->count<T>(criteria);
    return log.take();
  }

  static veldra::MaterialCriteria tagged_materials() {
    veldra::MaterialCriteria criteria;
    criteria.tags = {"dry", "warm"};
    return criteria;
  }

  static veldra::CompositionCriteria tagged_walls_and_floors() {
    veldra::CompositionCriteria criteria;
    criteria.types = 3;
    criteria.tags = {"dry"};
    return criteria;
  }
};

const std::string tagged_materials_view =
    R"( FROM "Material" AS "Object")"
    R"( LEFT JOIN "Material_tags" AS "Object_Material_tags" ON)"
    R"( "Object_Material_tags"."object_id"="Object"."id")"
    R"( LEFT JOIN "Tag" ON "Object_Material_tags"."tag_id"="Tag"."id" WHERE )";

const std::string tagged_compositions_view =
    R"( FROM "Composition" AS "Object")"
    R"( LEFT JOIN "Composition_tags" AS "Object_Composition_tags" ON)"
    R"( "Object_Composition_tags"."object_id"="Object"."id")"
    R"( LEFT JOIN "Tag" ON "Object_Composition_tags"."tag_id"="Tag"."id" WHERE )";

// What is known without the file.

TEST_F(ReadingStatements, what_cannot_be_there_is_not_asked_for) {
  log.take_all();
  EXPECT_FALSE(library->get<Material>(0u));
  EXPECT_FALSE(library->get<Composition>(0u));
  EXPECT_FALSE(library->get<Tag>(0u));
  EXPECT_FALSE(library->get<Material>(veldra::String()));
  EXPECT_FALSE(library->get<CustomProperty>(veldra::String()));
  std::vector<std::shared_ptr<Tag>> tags;
  library->search(tags, "");
  EXPECT_THAT(log.take_all(), IsEmpty());
}

TEST_F(ReadingStatements, the_metadata_are_not_asked_for_again) {
  log.take_all();
  library->guid();
  library->unit();
  library->locale();
  library->region();
  library->version();
  library->readOnly();
  library->filename();
  EXPECT_THAT(log.take_all(), IsEmpty());
}

// Transactions.

TEST_F(ReadingStatements, reading_ends_without_a_commit) {
  full_composition("Wall")->save(library);
  log.take_all();
  ASSERT_TRUE(library->get<Composition>(1u));
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials);
  library->search(materials, "%");
  library->count<Tag>();
  const Statements statements = log.take_all();
  EXPECT_THAT(statements, Contains("ROLLBACK").Times(4));
  EXPECT_THAT(statements, Not(Contains("COMMIT")));
}

// The objects of a list.

/// That each table was asked once, with that condition, and never for one object alone.
void expect_read_together(const Statements& statements, const std::string& condition) {
  for (const std::string id :
       {R"("Material"."id")", R"("Material_tags"."object_id")",
        R"("Material_thicknesses"."object_id")", R"("Material_custom_values"."object_id")"}) {
    const auto asks = testing::AllOf(testing::StartsWith("SELECT " + id + ", "),
                                     testing::HasSubstr(id + " " + condition));
    EXPECT_THAT(statements, Contains(asks).Times(1)) << id;
    EXPECT_THAT(statements, Not(Contains(testing::HasSubstr(id + "=?")))) << id;
  }
}

TEST_F(ReadingStatements, a_list_is_read_by_a_statement_for_each_of_its_tables) {
  for (const char* name : {"Ash", "Elm", "Oak"}) full_material(name)->save(library);
  log.take_all();
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials);
  expect_read_together(log.take(), "BETWEEN");
}

TEST_F(ReadingStatements, objects_between_the_wanted_ones_are_read_over) {
  for (unsigned n = 0; n != 8; ++n) {
    full_material("Wood " + std::to_string(n))->save(library);
  }
  log.take_all();
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials, {1u, 2u, 5u, 8u});
  EXPECT_EQ(materials.size(), 4u);
  expect_read_together(log.take(), "BETWEEN");
}

TEST_F(ReadingStatements, texts_of_any_length_are_read_together) {
  for (const std::size_t length : {10u, 5000u, 100u, 300000u, 20u}) {
    const auto material = full_material("Wood " + std::to_string(length));
    material->description(std::string(length, 'd').c_str());
    material->custom_value("Price", std::string(length, 'v').c_str());
    material->save(library);
  }
  log.take_all();
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials);
  expect_read_together(log.take(), "BETWEEN");
  for (const auto& material : materials) {
    EXPECT_EQ(values_of(material), values_of(library->get<Material>(material->id())));
  }
}

TEST_F(ReadingStatements, objects_that_lie_apart_are_asked_for_by_a_list_of_their_ids) {
  std::set<unsigned> ids;
  for (unsigned n = 1; n <= 20; ++n) {
    full_material("Wood " + std::to_string(n))->save(library);
    ids.insert(100 * n);
  }
  PlainDatabase(path).execute("PRAGMA foreign_keys=OFF; UPDATE Material SET id=100*id");
  log.take_all();
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials, ids);
  EXPECT_EQ(materials.size(), 20u);
  expect_read_together(log.take(), "IN (");
}

TEST_F(ReadingStatements, a_list_in_another_order_is_read_in_that_of_the_file) {
  PlainDatabase(path).execute("INSERT INTO CustomProperty VALUES (1,'c',4), (2,'b',4), (3,'a',4)");
  log.take_all();
  std::vector<std::shared_ptr<CustomProperty>> properties;
  library->get(properties);
  const Statements statements = log.take();
  EXPECT_THAT(statements, Contains(testing::HasSubstr("ORDER BY \"CustomProperty\".\"name\"")));
  EXPECT_THAT(statements, Contains(testing::HasSubstr("BETWEEN")).Times(1));
  EXPECT_THAT(statements, Not(Contains(testing::HasSubstr("\"id\"=?"))));
}

TEST_F(ReadingStatements, objects_far_from_one_another_are_read_one_by_one) {
  for (const char* name : {"Ash", "Elm", "Oak"}) full_material(name)->save(library);
  PlainDatabase(path).execute("PRAGMA foreign_keys=OFF; UPDATE Material SET id=1000 WHERE id=3");
  log.take_all();
  std::vector<std::shared_ptr<Material>> materials;
  library->get(materials, {1u, 1000u});
  EXPECT_THAT(log.take(), Not(Contains(testing::HasSubstr("BETWEEN"))));
}

// The ids that are asked for. A dollar sign stands for the table.

template <class T>
std::string of_table(std::string statement) {
  const std::string table = "\"" + kind_of<T>() + "\"";
  for (std::size_t at; (at = statement.find('$')) != std::string::npos;) {
    statement.replace(at, 1, table);
  }
  return statement;
}

template <class T>
std::string in_order(const std::string& statement) {
  const bool by_name = std::is_same<T, CustomProperty>::value;
  return of_table<T>(statement) + (by_name ? R"( ORDER BY "CustomProperty"."name")" : "");
}

template <class T>
class ReadingStatementsOf : public ReadingStatements {};
TYPED_TEST_SUITE(ReadingStatementsOf, AllKinds, KindNames);

TYPED_TEST(ReadingStatementsOf, getting_asks_the_table_of_the_kind) {
  EXPECT_THAT(this->template of_getting<TypeParam>({}),
              Contains(in_order<TypeParam>(R"(SELECT $."id" FROM $ WHERE 1)")));
}

TYPED_TEST(ReadingStatementsOf, getting_by_ids_asks_for_these) {
  std::vector<std::shared_ptr<TypeParam>> objects;
  this->library->get(objects, std::set<unsigned>{21, 22});
  EXPECT_THAT(this->log.take(),
              ElementsAre(in_order<TypeParam>(R"(SELECT $."id" FROM $ WHERE $."id" IN (?, ?))")));
}

TYPED_TEST(ReadingStatementsOf, getting_by_name_asks_for_it) {
  this->library->template get<TypeParam>("Oak");
  EXPECT_THAT(this->log.take(),
              ElementsAre(of_table<TypeParam>(R"(SELECT $."id" FROM $ WHERE $."name"= ?)")));
}

TYPED_TEST(ReadingStatementsOf, searching_compares_the_name_with_the_pattern) {
  EXPECT_THAT(this->template of_searching<TypeParam>({}),
              ElementsAre(in_order<TypeParam>(R"(SELECT $."id" FROM $ WHERE $."name" LIKE ?)")));
}

std::string counting(const std::string& table, const std::string& condition) {
  return "SELECT count(*) FROM \"" + table + "\" WHERE (\"" + table +
         "\".\"id\" BETWEEN 1 AND 4294967295) AND (" + condition + ")";
}

std::string is_tagged(const std::string& table, const std::string& condition) {
  return "\"" + table + R"("."id" IN (SELECT "object_id" FROM ")" + table + R"(_tags" WHERE )" +
         condition + ")";
}

std::string tags_named(const std::string& names) {
  return R"(SELECT "Tag"."id" FROM "Tag" WHERE "Tag"."name" IN ()" + names + ")";
}

TYPED_TEST(ReadingStatementsOf, counting_counts_the_rows_of_the_table) {
  const auto expected =
      ElementsAre(of_table<TypeParam>(R"(SELECT (SELECT count(*) FROM $)-)"
                                      R"((SELECT count(*) FROM $ WHERE $."id"<1)-)"
                                      R"((SELECT count(*) FROM $ WHERE $."id">4294967295))"));
  EXPECT_THAT(this->template of_counting<TypeParam>({}), expected);
  this->library->template count<TypeParam>();
  EXPECT_THAT(this->log.take(), expected);
}

TEST_F(ReadingStatements, tags_of_materials_are_joined_and_each_id_comes_once) {
  EXPECT_THAT(of_getting<Material>(tagged_materials()),
              ElementsAre(R"(SELECT DISTINCT "Object"."id")" + tagged_materials_view +
                          R"("Tag"."name" IN (?, ?))"));
  EXPECT_THAT(of_searching<Material>(tagged_materials()),
              ElementsAre(R"(SELECT DISTINCT "Object"."id")" + tagged_materials_view +
                          R"(("Object"."name" LIKE ?) AND ("Tag"."name" IN (?, ?)))"));
}

TEST_F(ReadingStatements, tags_are_looked_up_before_objects_are_counted) {
  EXPECT_THAT(of_counting<Material>(tagged_materials()), ElementsAre(tags_named("?, ?")));
  for (const char* name : {"warm", "dry"}) library->save(Tag::create(name));
  log.take();
  EXPECT_THAT(of_counting<Material>(tagged_materials()),
              ElementsAre(tags_named("?, ?"),
                          counting("Material",
                                   is_tagged("Material", R"(("tag_id"= ?) OR ("tag_id"= ?))"))));
  EXPECT_THAT(of_counting<Composition>(tagged_walls_and_floors()),
              ElementsAre(tags_named("?"),
                          counting("Composition",
                                   R"((("Composition"."type"= ?) OR ("Composition"."type"= ?)))"
                                   " AND (" +
                                       is_tagged("Composition", R"("tag_id"= ?)") + ")")));
}

TEST_F(ReadingStatements, many_tags_are_looked_for_in_a_list) {
  veldra::MaterialCriteria criteria;
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i"}) {
    criteria.tags.insert(name);
    library->save(Tag::create(name));
  }
  log.take();
  EXPECT_THAT(
      of_counting<Material>(criteria),
      Contains(counting("Material",
                        is_tagged("Material", R"("tag_id" IN (?, ?, ?, ?, ?, ?, ?, ?, ?))"))));
}

TEST_F(ReadingStatements, types_and_tags_of_compositions_are_joined) {
  const std::string types = R"((("Object"."type"= ?) OR ("Object"."type"= ?)))";
  const std::string tags = R"(("Tag"."name" IN (?)))";
  EXPECT_THAT(of_getting<Composition>(tagged_walls_and_floors()),
              ElementsAre(R"(SELECT DISTINCT "Object"."id")" + tagged_compositions_view + types +
                          " AND " + tags));
  EXPECT_THAT(of_searching<Composition>(tagged_walls_and_floors()),
              ElementsAre(R"(SELECT DISTINCT "Object"."id")" + tagged_compositions_view + "(" +
                          types + R"( AND ("Object"."name" LIKE ?)) AND )" + tags));
}

}  // namespace
}  // namespace veldra_tests
