// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <limits>

namespace veldra_tests {
namespace {

class KitOrder : public Test {
 protected:
  void add(const char* name, const char* manufacturer, const std::set<double>& thicknesses) {
    const auto material = Material::create(text(name));
    material->manufacturer(text(manufacturer));
    material->thicknesses(toModify) = thicknesses;
    objects.push_back(material);
  }

  std::vector<std::string> sorted(const std::string& order) {
    auto list = objects;
    kit::Order<Material>(order, fields).sort(list);
    std::vector<std::string> names;
    for (const auto& object : list) names.push_back(object->name().utf8());
    return names;
  }

  const kit::Fields<Material> fields;
  std::vector<std::shared_ptr<Material>> objects;
};

TEST_F(KitOrder, is_by_folded_texts_and_then_as_written) {
  for (const char* name : {"zinc", "Äther", "Brick", "brick", "ahorn"}) add(name, "", {});
  EXPECT_THAT(sorted("name"), ElementsAre("ahorn", "Äther", "Brick", "brick", "zinc"));
  EXPECT_THAT(sorted("-name"), ElementsAre("zinc", "brick", "Brick", "Äther", "ahorn"));
}

TEST_F(KitOrder, is_by_numbers_the_first_of_a_list) {
  add("a", "", {100});
  add("b", "", {20, 500});
  add("c", "", {3});
  EXPECT_THAT(sorted("thickness"), ElementsAre("c", "b", "a"));
  EXPECT_THAT(sorted("-thickness"), ElementsAre("a", "b", "c"));
}

TEST_F(KitOrder, has_what_is_not_there_last_either_way) {
  add("a", "", {});
  add("b", "y", {});
  add("c", "x", {});
  EXPECT_THAT(sorted("manufacturer"), ElementsAre("c", "b", "a"));
  EXPECT_THAT(sorted("-manufacturer"), ElementsAre("b", "c", "a"));
}

TEST_F(KitOrder, goes_through_its_fields_and_keeps_what_is_equal_in_place) {
  add("c", "y", {1});
  add("b", "x", {1});
  add("a", "y", {2});
  add("d", "y", {1});
  EXPECT_THAT(sorted("manufacturer, -thickness"), ElementsAre("b", "a", "c", "d"));
}

TEST_F(KitOrder, tells_what_it_does_not_know) {
  EXPECT_THAT(error_of([&] { sorted("nam"); }),
              StartsWith("materials have no field 'nam'; did you mean 'name'"));
  EXPECT_THAT(error_of([&] { sorted("-nam"); }), StartsWith("materials have no field 'nam'"));
  EXPECT_EQ(error_of([&] { sorted("name,,code"); }), "the name of a field is missing");
}

TEST(NamesInList, stand_between_commas_and_in_back_quotes) {
  EXPECT_THAT(kit::names_in("name, U ,`a, b`"), ElementsAre("name", "U", "a, b"));
  EXPECT_THAT(kit::names_in("-`Fire class`"), ElementsAre("-Fire class"));
  EXPECT_EQ(error_of([] { kit::names_in(""); }), "the name of a field is missing");
  EXPECT_EQ(error_of([] { kit::names_in("a,"); }), "the name of a field is missing");
  EXPECT_EQ(error_of([] { kit::names_in("`a"); }), "the back-quote of a name has no end");
}

}  // namespace
}  // namespace veldra_tests
