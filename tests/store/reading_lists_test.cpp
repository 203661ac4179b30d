// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <algorithm>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

namespace veldra_tests {
namespace {

/// The addresses of an object and of all that it refers to.
template <class T>
std::set<std::string> addresses_in(const std::shared_ptr<T>& object) {
  std::set<std::string> addresses;
  std::istringstream lines(state_of(object));
  std::string line;
  while (std::getline(lines, line)) {
    const std::size_t start = line.find(" at 0x");
    if (start != std::string::npos) {
      addresses.insert(line.substr(start + 4, line.find(',', start) - start - 4));
    }
  }
  return addresses;
}

/// A library in which everything is shared: three materials with the same tags, type, layer,
/// assets and property, and three compositions of them.
class ReadingLists : public LibraryTest {
 protected:
  ReadingLists() : file(path) {
    file.execute(
        "INSERT INTO Tag VALUES (1, 'warm'), (2, 'dry');"
        "INSERT INTO Layer VALUES (1, 'Section');"
        "INSERT INTO CustomProperty VALUES (1, 'Price', 4), (2, 'Rating', 5)");
    put_structural_asset(file, "1");
    put_thermal_asset(file, "2");
    file.execute("INSERT INTO Asset_tags VALUES (1, 0, 1), (2, 0, 1), (2, 1, 2)");
    for (const char* id : {"1", "2", "3"}) put_shared_material(id);
    for (const char* id : {"1", "2", "3"}) put_shared_composition(id);
  }

  PlainDatabase file;

 private:
  void put_shared_material(const std::string& id) {
    put_material(file, {{"id", id},
                        {"name", quoted("Material " + id)},
                        {"cut_layer", "1"},
                        {"structural_id", "1"},
                        {"thermal_id", "2"}});
    file.execute("INSERT INTO Material_tags VALUES (" + id + ", 0, 1), (" + id + ", 1, 2);" +
                 "INSERT INTO Material_custom_values VALUES (" + id + ", 1, '9.99');" +
                 "INSERT INTO Material_thicknesses VALUES (" + id + ", 12.5)");
  }

  void put_shared_composition(const std::string& id) {
    put_composition(file, {{"id", id}, {"name", quoted("Wall " + id)}, {"entity_layer", "1"}});
    file.execute("INSERT INTO Composition_tags VALUES (" + id + ", 0, 2), (" + id + ", 1, 1);" +
                 "INSERT INTO Composition_custom_values VALUES (" + id + ", 2, 'A');" +
                 "INSERT INTO Composition_layers VALUES (" + id + ", 0, 1, 0, 10), (" + id +
                 ", 1, 2, 1, 20), (" + id + ", 2, 1, 0, 30)");
  }
};

template <class T>
void expect_nothing_shared(const std::vector<std::shared_ptr<T>>& objects) {
  std::size_t sum = 0;
  std::set<std::string> together;
  for (const auto& object : objects) {
    const std::set<std::string> addresses = addresses_in(object);
    sum += addresses.size();
    together.insert(addresses.begin(), addresses.end());
  }
  EXPECT_EQ(together.size(), sum);
}

/// Every object of the graph is in the library and clean.
template <class T>
void expect_linked(const std::shared_ptr<T>& object,
                   const std::shared_ptr<veldra::Library>& library) {
  std::ostringstream link;
  link << ", library " << library.get() << ", clean";
  std::istringstream lines(state_of(object));
  std::string line;
  while (std::getline(lines, line)) {
    if (line.find(" at 0x") == std::string::npos) continue;
    EXPECT_NE(line.find(link.str()), std::string::npos) << line;
    EXPECT_EQ(line.find(", id 0,"), std::string::npos) << line;
  }
}

TEST_F(ReadingLists, the_objects_of_a_list_share_nothing) {
  const auto materials = all_of<Material>(*library);
  ASSERT_EQ(materials.size(), 3u);
  EXPECT_GE(addresses_in(materials[0]).size(), 10u);
  expect_nothing_shared(materials);
  const auto compositions = all_of<Composition>(*library);
  ASSERT_EQ(compositions.size(), 3u);
  EXPECT_GE(addresses_in(compositions[0]).size(), 20u);
  expect_nothing_shared(compositions);
}

TEST_F(ReadingLists, the_objects_of_two_lists_share_nothing) {
  auto materials = all_of<Material>(*library);
  library->get(materials, {1u, 2u, 3u});
  library->search(materials, "Material _");
  ASSERT_EQ(materials.size(), 9u);
  expect_nothing_shared(materials);
}

TEST_F(ReadingLists, changing_an_object_of_a_list_changes_no_other) {
  const auto materials = all_of<Material>(*library);
  const std::string before = state_of(materials[1]);
  materials[0]->structuralAsset()->name("New");
  materials[0]->thermalAsset()->tags(veldra::toModify).clear();
  materials[0]->tags(veldra::toModify).clear();
  materials[0]->thicknesses(veldra::toModify).insert(99.0);
  materials[0]->custom_value("Price", "0");
  EXPECT_EQ(state_of(materials[1]), before);
}

TEST_F(ReadingLists, renaming_what_an_object_refers_to_renames_it_for_no_other) {
  auto materials = all_of<Material>(*library);
  const std::string before = state_of(materials[1]);
  std::const_pointer_cast<Layer>(materials[0]->cut_layer())->name("New");
  std::const_pointer_cast<MaterialType>(materials[0]->type())->name("New");
  const auto& property = materials[0]->custom_values().begin()->first;
  std::const_pointer_cast<CustomProperty>(property.operator->())->name("New");
  EXPECT_EQ(state_of(materials[1]), before);
  materials.erase(materials.begin(), materials.begin() + 1);
  EXPECT_EQ(state_of(materials[0]), before);
}

TEST_F(ReadingLists, the_objects_of_a_list_may_be_used_and_freed_by_several_threads) {
  std::vector<std::thread> threads;
  for (auto& material : all_of<Material>(*library)) {
    threads.emplace_back([material = std::move(material)]() mutable {
      for (int i = 0; i != 200; ++i) {
        const auto tag = material->tags()[1]->clone();
        const auto layer = material->cut_layer()->clone();
        layer->name((layer->name().utf8() + " 2").c_str());
        EXPECT_EQ(tag->name().utf8(), "dry");
        EXPECT_EQ(layer->name().utf8(), "Section 2");
        EXPECT_EQ(material->cut_layer()->name().utf8(), "Section");
      }
      material.reset();
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST_F(ReadingLists, all_that_is_read_is_linked_to_the_library_and_clean) {
  expect_linked(library->get<Material>(1), library);
  expect_linked(library->get<Composition>(1), library);
  expect_linked(library->get<Composition>("Wall 1"), library);
  for (const auto& material : all_of<Material>(*library)) expect_linked(material, library);
  for (const auto& composition : all_of<Composition>(*library)) expect_linked(composition, library);
}

TEST_F(ReadingLists, an_object_of_a_list_is_the_object_that_is_read_alone) {
  for (const auto& material : all_of<Material>(*library)) {
    EXPECT_EQ(values_of(material), values_of(library->get<Material>(material->id())));
  }
  for (const auto& composition : all_of<Composition>(*library)) {
    EXPECT_EQ(values_of(composition), values_of(library->get<Composition>(composition->id())));
  }
}

/// So many that they are read in several parts, each with other numbers of tags, thicknesses and
/// values, and gaps between the ids.
class ReadingLongLists : public ReadingLists {
 protected:
  ReadingLongLists() {
    file.execute("BEGIN");
    for (unsigned id = 10; id != 710; ++id) {
      if (id % 7 != 0) put_varied_material(id);
    }
    for (unsigned id = 10; id != 310; id += 2) put_varied_composition(id);
    file.execute("COMMIT");
  }

  template <class T>
  void expect_as_alone(const std::vector<std::shared_ptr<T>>& objects) const {
    for (const auto& object : objects) {
      ASSERT_EQ(values_of(object), values_of(library->get<T>(object->id()))) << object->id();
    }
  }

 private:
  void put_varied_material(unsigned number) {
    const std::string id = std::to_string(number);
    put_material(file, {{"id", id}, {"name", quoted("Varied " + id)}});
    for (unsigned n = number % 3; n != 0; --n) {
      // The last comes first in the file.
      const std::string at = std::to_string(n - 1);
      const std::string count = std::to_string(n);
      file.execute("INSERT INTO Material_tags VALUES (" + id + ", " + at + ", " + count + ");" +
                   "INSERT INTO Material_thicknesses VALUES (" + id + ", " + count + ")");
    }
    if (number % 5 == 0) {
      file.execute("INSERT INTO Material_custom_values VALUES (" + id + ", 1, '" +
                   std::string(number, static_cast<char>('a' + number % 26)) + "')");
    }
  }

  void put_varied_composition(unsigned number) {
    const std::string id = std::to_string(number);
    put_composition(file, {{"id", id}, {"name", quoted("Varied " + id)}});
    for (unsigned n = number % 6; n != 0; --n) {
      const std::string material = std::to_string(1 + (number + n) % 3);
      file.execute("INSERT INTO Composition_layers VALUES (" + id + ", " + std::to_string(n - 1) +
                   ", " + material + ", 0, " + std::to_string(n) + ")");
    }
  }
};

TEST_F(ReadingLongLists, their_objects_are_those_that_are_read_alone) {
  const auto materials = all_of<Material>(*library);
  EXPECT_EQ(materials.size(), 603u);
  expect_as_alone(materials);
  const auto compositions = all_of<Composition>(*library);
  EXPECT_EQ(compositions.size(), 153u);
  expect_as_alone(compositions);
}

TEST_F(ReadingLongLists, what_lies_between_the_wanted_objects_is_passed_over) {
  for (const unsigned step : {2u, 3u, 5u, 40u, 300u}) {
    SCOPED_TRACE(step);
    std::set<unsigned> ids;
    for (unsigned id = 1; id < 720; id += step) ids.insert(id);
    std::set<unsigned> expected;
    for (const unsigned id : ids) {
      if (library->get<Material>(id) != nullptr) expected.insert(id);
    }
    std::vector<std::shared_ptr<Material>> found;
    library->get(found, ids);
    std::set<unsigned> read;
    for (const auto& material : found) read.insert(material->id());
    EXPECT_EQ(read, expected);
    expect_as_alone(found);
  }
}

TEST_F(ReadingLongLists, an_object_with_a_reference_that_leads_nowhere_is_left_out_alone) {
  file.execute("PRAGMA foreign_keys=OFF");
  file.execute("UPDATE Material SET type=99 WHERE id=200");
  file.execute("INSERT INTO Material_tags VALUES (300, 9, 99)");
  file.execute("INSERT INTO Material_custom_values VALUES (400, 99, '')");
  file.execute("UPDATE Composition_layers SET value_material_id=9999 WHERE object_id=100");
  const auto materials = all_of<Material>(*library);
  EXPECT_EQ(materials.size(), 600u);
  expect_as_alone(materials);
  EXPECT_EQ(all_of<Composition>(*library).size(), 152u);
}

TEST_F(ReadingLongLists, a_text_that_is_none_is_told_once_the_others_are_read) {
  file.execute("UPDATE Material SET comments=CAST(x'ff' AS TEXT) WHERE id=200");
  std::vector<std::shared_ptr<Material>> materials;
  EXPECT_EQ(thrown_by([&] { library->get(materials); }), "utf8::invalid_utf8");
  EXPECT_TRUE(materials.empty());
  library->get(materials, {198u, 199u, 201u, 202u});
  EXPECT_EQ(materials.size(), 4u);
  EXPECT_THAT(library->unreadable<Material>(), testing::ElementsAre(200u));
}

TEST_F(ReadingLists, objects_live_on_when_their_library_is_closed) {
  const auto composition = library->get<Composition>(1);
  const std::string values = values_of(composition);
  library.reset();
  EXPECT_FALSE(composition->library());
  EXPECT_FALSE(composition->layer(0).material()->library());
  EXPECT_EQ(composition->id(), 1u);
  EXPECT_EQ(values_of(composition), values);
}

TEST_F(ReadingLists, many_properties_come_in_the_order_of_their_names) {
  file.execute(
      "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i<4999) "
      "INSERT INTO CustomProperty(name, object_type) "
      "SELECT 'p' || (i * 7919 % 5000), 4 FROM n");
  std::set<unsigned> ids;
  for (unsigned id = 1; id <= 5002; ++id) ids.insert(id);
  std::vector<std::string> expected;
  for (const Row& row : file.query("SELECT name FROM CustomProperty ORDER BY name")) {
    expected.push_back(row[0].substr(1, row[0].size() - 2));
  }
  const auto names = [](const std::vector<std::shared_ptr<CustomProperty>>& properties) {
    std::vector<std::string> names;
    for (const auto& property : properties) names.push_back(property->name().utf8());
    return names;
  };
  std::vector<std::shared_ptr<CustomProperty>> by_ids;
  library->get(by_ids, ids);
  EXPECT_EQ(names(by_ids), expected);
  EXPECT_TRUE(names(all_of<CustomProperty>(*library)) == expected);
  std::vector<std::shared_ptr<CustomProperty>> by_criteria;
  CustomPropertyCriteria criteria;
  criteria.object_type = ObjectType::Material;
  library->search(by_criteria, "P%", criteria);
  const auto found = names(by_criteria);
  EXPECT_EQ(found.size(), 5001u);
  EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
}

TEST_F(ReadingLists, property_names_are_ordered_byte_by_byte) {
  file.execute(
      "DELETE FROM Material_custom_values; DELETE FROM Composition_custom_values;"
      "DELETE FROM CustomProperty;"
      "INSERT INTO CustomProperty(name, object_type) VALUES "
      "('b', 4), ('B', 5), ('a', 5), ('', 4), ('\xC3\xA4', 4), ('aa', 4), ('Z', 4)");
  std::vector<std::string> names;
  for (const auto& property : all_of<CustomProperty>(*library))
    names.push_back(property->name().utf8());
  EXPECT_THAT(names, testing::ElementsAre("", "B", "Z", "a", "aa", "b", "\xC3\xA4"));
}

}  // namespace
}  // namespace veldra_tests
