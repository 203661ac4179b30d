// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include "support/builders.hpp"

#include <limits>
#include <stdexcept>

namespace veldra_tests {
namespace {

std::string written(const Library& library) {
  std::string whole;
  kit::write_json(library, [&](std::string_view part) { whole += part; });
  return whole;
}

/// The same library after it went through a file.
std::shared_ptr<Library> read_back(const Library& library) {
  kit::SourceRules rules;
  rules.unit = library.unit();
  const auto sources = kit::read_together({{"a.json", written(library)}}, rules);
  sources.library->locale(sources.locale);
  sources.library->region(sources.region);
  return sources.library;
}

class WrittenJson : public Test {
 protected:
  void add_materials(unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
      library_->save(Material::create(text("Brick " + std::to_string(count - i))));
    }
  }

  const std::shared_ptr<Library> library_ = Library::create(":memory:", Unit::Inches, "");
};

TEST_F(WrittenJson, of_all_that_a_library_can_hold_reads_back_to_the_same) {
  library_->locale(text("de_CH"));
  library_->region(text("Ostschweiz"));
  library_->save(full_material("Oak"));
  library_->save(full_composition("Wall"));
  const auto common = library_->save(CustomProperty::create(text("Common"), ObjectType{}));
  const auto oak = library_->get<Material>(text("Oak"));
  oak->custom_value(common, text("a"));
  oak->save();
  library_->save(Tag::create(text("unused \x1b[1m \" \\ \n ü")));
  library_->save(Layer::create(text("unused")));
  const auto text_of_library = written(*library_);
  EXPECT_EQ(written(*read_back(*library_)), text_of_library);
  for (const char* name : {"Oak tag 1", "Oak property 2", "Ostschweiz", "unused"}) {
    EXPECT_THAT(text_of_library, HasSubstr(name));
  }
}

TEST_F(WrittenJson, keeps_numbers_that_json_has_none_for) {
  const auto brick = library_->save(Material::create(text("Brick")));
  const auto wall = Composition::create(text("Wall"));
  wall->appendLayer({brick, Material::Function::None, std::numeric_limits<double>::quiet_NaN()});
  wall->appendLayer({brick, Material::Function::None, std::numeric_limits<double>::infinity()});
  library_->save(wall);
  EXPECT_THAT(written(*library_),
              AllOf(HasSubstr("\"thickness\": null"), HasSubstr("\"thickness\": \"Infinity\"")));
}

TEST_F(WrittenJson, of_an_empty_library_has_all_lists) {
  library_->purge<MaterialType>();
  EXPECT_EQ(written(*library_), R"({
  "format": "veldra",
  "version": 1,
  "library": {
    "unit": "in",
    "locale": "",
    "region": ""
  },
  "tags": [],
  "layers": [],
  "material_types": [],
  "custom_properties": [],
  "materials": [],
  "compositions": []
}
)");
}

TEST_F(WrittenJson, has_the_objects_by_name_across_all_parts) {
  add_materials(700);
  const auto text_of_library = written(*library_);
  std::vector<std::string> names;
  library_->for_each<Material>([&](const std::shared_ptr<Material>& material) {
    names.push_back("\"" + material->name().utf8() + "\"");
    return true;
  });
  std::sort(names.begin(), names.end(), [](const auto& left, const auto& right) {
    return left.substr(0, left.size() - 1) < right.substr(0, right.size() - 1);
  });
  std::size_t position = 0;
  for (const auto& name : names) {
    position = text_of_library.find(name, position);
    ASSERT_NE(position, std::string::npos) << name;
  }
}

TEST_F(WrittenJson, comes_in_parts_of_an_object_at_most) {
  add_materials(1000);
  std::size_t longest = 0;
  std::size_t whole = 0;
  kit::write_json(*library_, [&](std::string_view part) {
    longest = std::max(longest, part.size());
    whole += part.size();
  });
  EXPECT_LT(longest, 2000U);
  EXPECT_GT(whole, 20000U);
}

TEST_F(WrittenJson, has_escapes_for_what_can_steer_a_terminal) {
  library_->save(Tag::create(text("a\x1b[1m\u202e")));
  EXPECT_THAT(written(*library_), HasSubstr("a\\u001b[1m\\u202e"));
}

TEST_F(WrittenJson, tells_each_object_that_was_written) {
  add_materials(3);
  int steps = 0;
  kit::write_json(
      *library_, [](std::string_view) {}, [&] { ++steps; });
  EXPECT_EQ(steps, 3);
}

TEST_F(WrittenJson, ends_with_what_takes_it) {
  const auto full_disk = [](std::string_view) { throw std::runtime_error("full"); };
  EXPECT_THROW(kit::write_json(*library_, full_disk), std::runtime_error);
}

TEST(JsonOfAValue, is_one_line) {
  EXPECT_EQ(kit::json_of(kit::Value()), "null");
  EXPECT_EQ(kit::json_of(kit::Value(true)), "true");
  EXPECT_EQ(kit::json_of(kit::Value(0.5)), "0.5");
  EXPECT_EQ(kit::json_of(kit::Value(-std::numeric_limits<double>::infinity())), "\"-Infinity\"");
  EXPECT_EQ(kit::json_of(kit::Value(kit::Value::Texts{"a", "b"})), R"(["a","b"])");
  EXPECT_EQ(kit::json_of(kit::Value(Point2d(1, 2))), "[1.0,2.0]");
}

TEST(JsonOfAnObject, has_what_is_not_as_in_a_new_one) {
  EXPECT_EQ(kit::json_of(*with_custom("Brick", "p", "v")),
            R"({"name":"Brick","custom_values":{"p":"v"}})");
  const auto brick = Material::create(text("Brick"));
  brick->custom_value(CustomProperty::create(text("p"), ObjectType{}), text("v"));
  EXPECT_EQ(kit::json_of(*brick), R"({"name":"Brick","common_custom_values":{"p":"v"}})");
  EXPECT_EQ(kit::json_of(*CustomProperty::create(text("p"), ObjectType::Material)),
            R"({"name":"p","object_type":"material"})");
  EXPECT_THAT(kit::json_of(*Composition::create(text("Wall"))), StartsWith(R"({"name":"Wall")"));
}

}  // namespace
}  // namespace veldra_tests
