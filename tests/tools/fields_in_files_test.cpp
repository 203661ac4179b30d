// SPDX-License-Identifier: GPL-2.0-or-later
// What the program writes into files and what the kit knows as fields are the same.
#include "support/builders.hpp"
#include "support/database.hpp"
#include "support/rows.hpp"
#include "tools/program.hpp"

#include <veldra/kit/kit.hpp>

namespace veldra_tests {
namespace {

class FieldsInFiles : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    office->save(full_material("Oak"));
    office->save(full_composition("Wall"));
    const auto common = veldra::CustomProperty::create("Common", veldra::ObjectType{});
    const auto oak = office->get<veldra::Material>(text("Oak"));
    oak->custom_value(office->save(common), "a");
    oak->save();
    const auto wall = office->get<veldra::Composition>(text("Wall"));
    wall->custom_value(office->get<veldra::CustomProperty>(text("Common")), "b");
    wall->save();
  }

  void add_assets() {
    PlainDatabase database(path("a.lib"));
    put_structural_asset(database, "1");
    put_thermal_asset(database, "2");
    database.execute("UPDATE Material SET structural_id = 1, thermal_id = 2 WHERE name = 'Oak'");
    database.execute("INSERT INTO Asset_tags VALUES (1, 0, 1), (2, 0, 1)");
  }

  static veldra::String text(const char* utf8) { return veldra::String(utf8); }

  nlohmann::json exported_object(const char* list, const char* name) const {
    const auto file = nlohmann::json::parse(exported("a.lib"));
    for (const auto& object : file[list]) {
      if (object["name"] == name) return object;
    }
    return {};
  }

  /// The members of an object, those of groups behind the name of the group.
  static std::set<std::string> members(const nlohmann::json& object) {
    std::set<std::string> names;
    for (const auto& [key, value] : object.items()) {
      if (!value.is_object() || key.find("pattern") != std::string::npos) {
        names.insert(key);
        continue;
      }
      for (const auto& part : value.items()) names.insert(key + "." + part.key());
    }
    return names;
  }

  /// Of the fields of a class those that an object in a file has, and that `object` has.
  template <class T>
  std::set<std::string> fields_of(const char* name) const {
    const auto office = library("a.lib");
    const auto object = office->get<T>(text(name));
    std::set<std::string> names;
    for (const auto& field : veldra::kit::Fields<T>(*office)) {
      const bool is_written =
          field.origin == veldra::kit::Origin::Stored || field.origin == veldra::kit::Origin::Asset;
      const bool has_value = !field.get(*object).is_nothing();
      EXPECT_TRUE(has_value || !is_written) << "no value to look for: " << field.name();
      if (is_written || (field.origin == veldra::kit::Origin::Custom && has_value)) {
        names.insert(field.name());
      }
    }
    return names;
  }
};

TEST_F(FieldsInFiles, of_materials_are_all_that_are_exported_and_no_other) {
  add_assets();
  const auto exported = members(exported_object("materials", "Oak"));
  EXPECT_EQ(exported, fields_of<veldra::Material>("Oak"));
  EXPECT_THAT(exported, AllOf(Contains("thermal_asset.emissivity"), Contains("manufacturer"),
                              Contains("common_custom_values.Common")));
}

TEST_F(FieldsInFiles, of_compositions_are_all_that_are_exported_and_no_other) {
  EXPECT_EQ(members(exported_object("compositions", "Wall")),
            fields_of<veldra::Composition>("Wall"));
}

TEST_F(FieldsInFiles, of_properties_are_all_that_are_exported_and_no_other) {
  EXPECT_EQ(members(exported_object("custom_properties", "Common")),
            fields_of<veldra::CustomProperty>("Common"));
}

TEST_F(FieldsInFiles, come_back_from_a_file) {
  write("a.json", exported("a.lib"));
  // The variable layer of a full composition is none of its layers, which is told.
  ASSERT_EQ(veldra({"import", "b.lib", "a.json"}).status, 3);
  EXPECT_EQ(nlohmann::json::parse(exported("b.lib"))["materials"],
            nlohmann::json::parse(exported("a.lib"))["materials"]);
  EXPECT_EQ(nlohmann::json::parse(exported("b.lib"))["compositions"],
            nlohmann::json::parse(exported("a.lib"))["compositions"]);
}

TEST_F(FieldsInFiles, that_are_as_in_a_new_object_are_left_out) {
  library("a.lib")->save(veldra::Material::create("Bare"));
  EXPECT_THAT(members(exported_object("materials", "Bare")), UnorderedElementsAre("name", "type"));
}

}  // namespace
}  // namespace veldra_tests
