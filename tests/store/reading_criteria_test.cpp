// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <set>
#include <vector>

namespace veldra_tests {
namespace {

class ReadingCriteria : public LibraryTest {
 protected:
  template <class T>
  using CriteriaFor = typename veldra::CriteriaOf<T>::type;

  ReadingCriteria() : file(path) {
    for (const char* tag : {"(1, 'warm')", "(2, 'dry')", "(3, 'O''Neil')", "(4, '')"}) {
      file.execute("INSERT INTO Tag VALUES " + std::string(tag));
    }
  }

  /// A material of the type with that id, with tags by their ids.
  void put(const std::string& name, const std::string& type, const std::vector<int>& tags) {
    put_material(file, {{"name", quoted(name)}, {"type", type}});
    put_tags("Material", name, tags);
  }

  /// A composition of the type with that number, with tags by their ids.
  void put_build_up(const std::string& name, const std::string& type,
                    const std::vector<int>& tags = {}) {
    put_composition(file, {{"name", quoted(name)}, {"type", type}});
    put_tags("Composition", name, tags);
  }

  template <class T>
  std::vector<std::string> listed(const CriteriaFor<T>& criteria) const {
    std::vector<std::shared_ptr<T>> objects;
    library->get(objects, criteria);
    return names(objects);
  }

  template <class T>
  std::vector<std::string> found(const char* text, const CriteriaFor<T>& criteria) const {
    std::vector<std::shared_ptr<T>> objects;
    library->search(objects, text, criteria);
    return names(objects);
  }

  template <class T>
  static std::vector<std::string> names(const std::vector<std::shared_ptr<T>>& objects) {
    std::vector<std::string> names;
    for (const auto& object : objects) names.push_back(object->name().utf8());
    return names;
  }

  PlainDatabase file;

 private:
  void put_tags(const std::string& table, const std::string& name, const std::vector<int>& tags) {
    int index = 0;
    for (const int tag : tags) {
      file.execute("INSERT INTO " + table + "_tags SELECT id, " + std::to_string(index++) + ", " +
                   std::to_string(tag) + " FROM " + table + " WHERE name=" + quoted(name));
    }
  }
};

std::set<String> names_of_many_tags(int count) {
  std::set<String> names;
  for (int number = 0; number != count; ++number) {
    names.insert(String(("tag " + std::to_string(number)).c_str()));
  }
  return names;
}

TEST_F(ReadingCriteria, materials_are_selected_by_their_type) {
  put("Oak", "13", {});
  put("Pine", "13", {});
  put("Brick", "7", {});
  MaterialCriteria criteria;
  criteria.type = library->get<MaterialType>(13);
  EXPECT_THAT(listed<Material>(criteria), UnorderedElementsAre("Oak", "Pine"));
  EXPECT_EQ(library->count<Material>(criteria), 2u);
  EXPECT_THAT(found<Material>("%i%", criteria), ElementsAre("Pine"));
}

TEST_F(ReadingCriteria, a_type_is_told_by_its_id_and_not_by_its_name) {
  put("Oak", "13", {});
  MaterialCriteria criteria;
  criteria.type = MaterialType::create("Wood");
  EXPECT_THAT(listed<Material>(criteria), IsEmpty());
  EXPECT_EQ(library->count<Material>(criteria), 0u);
  const auto renamed = library->get<MaterialType>(13);
  renamed->name("Timber");
  criteria.type = renamed;
  EXPECT_THAT(listed<Material>(criteria), ElementsAre("Oak"));
}

TEST_F(ReadingCriteria, materials_are_selected_by_any_of_the_tags) {
  put("Oak", "13", {1});
  put("Pine", "13", {2});
  put("Brick", "7", {3});
  put("Glass", "5", {});
  MaterialCriteria criteria;
  criteria.tags = {"warm", "dry", "no such tag"};
  EXPECT_THAT(listed<Material>(criteria), UnorderedElementsAre("Oak", "Pine"));
  EXPECT_EQ(library->count<Material>(criteria), 2u);
  criteria.tags = {"no such tag"};
  EXPECT_THAT(listed<Material>(criteria), IsEmpty());
  EXPECT_EQ(library->count<Material>(criteria), 0u);
}

TEST_F(ReadingCriteria, tag_names_are_compared_exactly_and_bound) {
  put("Oak", "13", {1});
  put("Pine", "13", {3});
  put("Glass", "5", {4});
  MaterialCriteria criteria;
  criteria.tags = {"O'Neil"};
  EXPECT_THAT(listed<Material>(criteria), ElementsAre("Pine"));
  criteria.tags = {"WARM", "war%"};
  EXPECT_THAT(listed<Material>(criteria), IsEmpty());
  criteria.tags = {""};
  EXPECT_THAT(listed<Material>(criteria), ElementsAre("Glass"));
  criteria.tags = {"') OR 1=1 --"};
  EXPECT_THAT(listed<Material>(criteria), IsEmpty());
}

TEST_F(ReadingCriteria, an_object_with_several_of_the_tags_is_listed_and_counted_once) {
  put("Oak", "13", {1, 2, 1});
  put("Pine", "13", {2, 2});
  put_build_up("Wall", "1", {1, 2, 2});
  MaterialCriteria materials;
  materials.tags = {"warm", "dry"};
  EXPECT_THAT(listed<Material>(materials), UnorderedElementsAre("Oak", "Pine"));
  EXPECT_THAT(found<Material>("%", materials), UnorderedElementsAre("Oak", "Pine"));
  EXPECT_EQ(library->count<Material>(materials), 2u);
  CompositionCriteria compositions;
  compositions.tags = {"warm", "dry"};
  EXPECT_THAT(listed<Composition>(compositions), ElementsAre("Wall"));
  EXPECT_THAT(found<Composition>("%", compositions), ElementsAre("Wall"));
  EXPECT_EQ(library->count<Composition>(compositions), 1u);
}

TEST_F(ReadingCriteria, type_tags_and_name_must_all_hold) {
  put("Oak", "13", {1});
  put("Pine", "13", {2});
  put("Ochre", "9", {1});
  put("Olive", "13", {1, 2});
  MaterialCriteria criteria;
  criteria.type = library->get<MaterialType>(13);
  criteria.tags = {"warm"};
  EXPECT_THAT(listed<Material>(criteria), UnorderedElementsAre("Oak", "Olive"));
  EXPECT_EQ(library->count<Material>(criteria), 2u);
  EXPECT_THAT(found<Material>("o%k", criteria), ElementsAre("Oak"));
  EXPECT_THAT(found<Material>("P%", criteria), IsEmpty());
  EXPECT_THAT(found<Material>("", criteria), IsEmpty());
}

TEST_F(ReadingCriteria, a_tag_set_can_be_of_any_size) {
  for (int number = 0; number < 40000; number += 10000) {
    file.execute("INSERT INTO Tag(id, name) VALUES (" + std::to_string(1000 + number) + ", 'tag " +
                 std::to_string(number) + "')");
  }
  put("Oak", "13", {1000, 11000, 21000, 31000});
  put("Pine", "13", {31000});
  put("Brick", "7", {1});
  put_build_up("Wall", "1", {1000, 31000});
  MaterialCriteria materials;
  materials.tags = names_of_many_tags(40000);
  EXPECT_THAT(listed<Material>(materials), UnorderedElementsAre("Oak", "Pine"));
  EXPECT_EQ(library->count<Material>(materials), 2u);
  EXPECT_THAT(found<Material>("o%", materials), ElementsAre("Oak"));
  materials.type = library->get<MaterialType>(7);
  EXPECT_THAT(listed<Material>(materials), IsEmpty());
  EXPECT_EQ(library->count<Material>(materials), 0u);
  CompositionCriteria compositions;
  compositions.tags = materials.tags;
  EXPECT_THAT(listed<Composition>(compositions), ElementsAre("Wall"));
  EXPECT_EQ(library->count<Composition>(compositions), 1u);
}

TEST_F(ReadingCriteria, compositions_are_selected_by_a_mask_of_types) {
  put_build_up("Wall", "1");
  put_build_up("Floor", "2");
  put_build_up("Roof", "4");
  put_build_up("Other", "128");
  CompositionCriteria criteria;
  EXPECT_EQ(listed<Composition>(criteria).size(), 4u);
  criteria.types = 1;
  EXPECT_THAT(listed<Composition>(criteria), ElementsAre("Wall"));
  criteria.types = 2 | 128;
  EXPECT_THAT(listed<Composition>(criteria), UnorderedElementsAre("Floor", "Other"));
  EXPECT_EQ(library->count<Composition>(criteria), 2u);
  EXPECT_THAT(found<Composition>("%l%", criteria), ElementsAre("Floor"));
  criteria.types = 1 | 2 | 4 | 128;
  EXPECT_EQ(listed<Composition>(criteria).size(), 4u);
  EXPECT_EQ(library->count<Composition>(criteria), 4u);
}

/// The statement of a count is kept, and asked for other types the next time.
TEST_F(ReadingCriteria, counts_by_type_one_after_another_are_of_their_own_types) {
  put_build_up("Wall", "1");
  put_build_up("Floor", "2");
  put_build_up("Second floor", "2");
  put("Oak", "13", {});
  put("Brick", "7", {});
  put("Block", "7", {});
  const auto build_ups = [this](unsigned types) {
    CompositionCriteria criteria;
    criteria.types = types;
    return library->count<Composition>(criteria);
  };
  const auto materials = [this](unsigned type) {
    MaterialCriteria criteria;
    criteria.type = library->get<MaterialType>(type);
    return library->count<Material>(criteria);
  };
  EXPECT_EQ(build_ups(1), 1u);
  EXPECT_EQ(materials(13), 1u);
  EXPECT_EQ(build_ups(2), 2u);
  EXPECT_EQ(materials(7), 2u);
  EXPECT_EQ(build_ups(1 | 4), 1u);
  EXPECT_EQ(build_ups(2 | 4), 2u);
  EXPECT_EQ(build_ups(1), 1u);
  EXPECT_EQ(materials(13), 1u);
}

TEST_F(ReadingCriteria, a_type_must_equal_one_of_the_bits) {
  put_build_up("Wall", "1");
  put_build_up("Both", "3");
  put_build_up("Eight", "8");
  CompositionCriteria criteria;
  criteria.types = 1 | 2;
  EXPECT_THAT(listed<Composition>(criteria), ElementsAre("Wall"));
  EXPECT_EQ(library->count<Composition>(criteria), 1u);
  criteria.types = 8;
  EXPECT_THAT(listed<Composition>(criteria), ElementsAre("Eight"));
  criteria.types = 64;
  EXPECT_THAT(listed<Composition>(criteria), IsEmpty());
  EXPECT_EQ(library->count<Composition>(criteria), 0u);
}

TEST_F(ReadingCriteria, a_mask_of_unknown_types_selects_no_other) {
  put_build_up("Wall", "1");
  CompositionCriteria criteria;
  criteria.types = 1u << 31;
  EXPECT_THAT(listed<Composition>(criteria), IsEmpty());
  EXPECT_THAT(found<Composition>("Wall", criteria), IsEmpty());
  EXPECT_EQ(library->count<Composition>(criteria), 0u);
}

TEST_F(ReadingCriteria, mask_tags_and_name_must_all_hold) {
  put_build_up("Wall", "1", {1});
  put_build_up("Floor", "2", {1});
  put_build_up("Warm roof", "4", {2});
  put_build_up("Cold roof", "4", {2});
  CompositionCriteria criteria;
  criteria.types = 1 | 4;
  criteria.tags = {"warm"};
  EXPECT_THAT(listed<Composition>(criteria), ElementsAre("Wall"));
  EXPECT_EQ(library->count<Composition>(criteria), 1u);
  criteria.tags = {"warm", "dry"};
  EXPECT_THAT(listed<Composition>(criteria),
              UnorderedElementsAre("Wall", "Warm roof", "Cold roof"));
  EXPECT_THAT(found<Composition>("w%", criteria), UnorderedElementsAre("Wall", "Warm roof"));
}

TEST_F(ReadingCriteria, tags_of_other_kinds_do_not_count) {
  put("Oak", "13", {1});
  put_build_up("Wall", "1", {2});
  MaterialCriteria materials;
  materials.tags = {"dry"};
  EXPECT_EQ(library->count<Material>(materials), 0u);
  CompositionCriteria compositions;
  compositions.tags = {"warm"};
  EXPECT_EQ(library->count<Composition>(compositions), 0u);
}

TEST_F(ReadingCriteria, the_order_with_tags_is_that_of_the_database) {
  put("Pine", "13", {2, 1});
  put("Oak", "13", {1});
  put("Ash", "13", {3, 1, 2});
  std::vector<std::string> expected;
  for (const Row& row :
       file.query("SELECT DISTINCT \"Object\".\"id\" FROM \"Material\" AS \"Object\" LEFT JOIN "
                  "\"Material_tags\" AS \"Object_Material_tags\" ON "
                  "\"Object_Material_tags\".\"object_id\"=\"Object\".\"id\" LEFT JOIN \"Tag\" ON "
                  "\"Object_Material_tags\".\"tag_id\"=\"Tag\".\"id\" WHERE \"Tag\".\"name\" IN "
                  "('dry', 'warm')")) {
    expected.push_back(library->get<Material>(std::stoul(row[0]))->name().utf8());
  }
  MaterialCriteria criteria;
  criteria.tags = {"dry", "warm"};
  EXPECT_EQ(listed<Material>(criteria), expected);
}

TEST_F(ReadingCriteria, properties_are_selected_by_the_kind_of_object_they_are_for) {
  file.execute(
      "INSERT INTO CustomProperty(name, object_type) VALUES "
      "('Price', 4), ('Colour', 4), ('Colour', 5), ('Anything', 0)");
  CustomPropertyCriteria criteria;
  EXPECT_THAT(listed<CustomProperty>(criteria),
              ElementsAre("Anything", "Colour", "Colour", "Price"));
  EXPECT_EQ(library->count<CustomProperty>(criteria), 4u);
  criteria.object_type = ObjectType::Material;
  EXPECT_THAT(listed<CustomProperty>(criteria), ElementsAre("Colour", "Price"));
  EXPECT_EQ(library->count<CustomProperty>(criteria), 2u);
  EXPECT_THAT(found<CustomProperty>("c%", criteria), ElementsAre("Colour"));
  criteria.object_type = ObjectType::Composition;
  EXPECT_THAT(listed<CustomProperty>(criteria), ElementsAre("Colour"));
  EXPECT_EQ(library->get<CustomProperty>(String("Price"))->object_type(), ObjectType::Material);
  criteria.object_type = ObjectType::Tag;
  EXPECT_THAT(listed<CustomProperty>(criteria), IsEmpty());
  EXPECT_EQ(library->count<CustomProperty>(criteria), 0u);
}

TEST_F(ReadingCriteria, a_property_name_of_two_kinds_gives_one_of_them) {
  file.execute("INSERT INTO CustomProperty(name, object_type) VALUES ('Colour', 4), ('Colour', 5)");
  const auto property = library->get<CustomProperty>("Colour");
  ASSERT_TRUE(property);
  EXPECT_EQ(property->name(), String("Colour"));
}

TEST_F(ReadingCriteria, a_tag_name_that_is_not_utf16_raises_and_changes_nothing) {
  put("Oak", "13", {1});
  const unsigned short broken[] = {'a', 0xD800, 0};
  MaterialCriteria criteria;
  criteria.tags = {String(broken)};
  std::vector<std::shared_ptr<Material>> objects = {nullptr};
  EXPECT_EQ(thrown_by([&] { library->get(objects, criteria); }), "utf8::invalid_utf16");
  EXPECT_EQ(thrown_by([&] { library->search(objects, String(broken)); }), "utf8::invalid_utf16");
  EXPECT_EQ(thrown_by([&] { library->get<Material>(String(broken)); }), "utf8::invalid_utf16");
  EXPECT_EQ(thrown_by([&] { library->count<Material>(criteria); }), "utf8::invalid_utf16");
  EXPECT_EQ(objects.size(), 1u);
  EXPECT_EQ(library->count<Material>(), 1u);
}

}  // namespace
}  // namespace veldra_tests
