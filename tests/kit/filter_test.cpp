// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"
#include "support/library_fixture.hpp"

namespace veldra_tests {
namespace {

/// Three materials and two build-ups.
class KitFilter : public LibraryFixture {
 protected:
  void SetUp() override {
    library = create();
    library->save(CustomProperty::create("Fire class", ObjectType::Material));
    const auto brick = with_custom("Hochlochziegel", kit::property::conductivity, "0.16");
    brick->manufacturer("Ziegelwerk Süd");
    brick->thicknesses(toModify) = {240, 365};
    brick->addTag(Tag::create("Außenwand"));
    brick->type(library->get<MaterialType>("Masonry"));
    brick->custom_value("Fire class", "A1");
    brick->custom_value("Price", "9.50");
    library->save(brick);
    const auto wool = with_custom("Mineralwolle", kit::property::conductivity, "0.035");
    wool->thicknesses(toModify) = {101.6};
    wool->addTag(Tag::create("Dach"));
    wool->type(library->get<MaterialType>("Insulation"));
    wool->custom_value("Fire class", "B (2)");
    wool->custom_value("Price", "12");
    wool->cut_pattern(Pattern(Pattern::Type::Lines, "Insulation", 1, 0));
    wool->allow_custom_thickness(false);
    library->save(wool);
    library->save(Material::create("Änderbar"));
    add_composition("Außenwand", Composition::Type::Wall, {brick, wool});
    add_composition("Dach", Composition::Type::Roof, {wool});
  }

  void add_composition(const char* name, Composition::Type type,
                       const std::vector<std::shared_ptr<Material>>& materials) {
    const auto composition = Composition::create(name);
    composition->type(type);
    for (const auto& material : materials) {
      composition->appendLayer(
          {material, Material::Function::None, *material->thicknesses().begin()});
    }
    library->save(composition);
  }

  template <class T = Material>
  std::vector<std::string> selected(const std::string& filter) const {
    const kit::Fields<T> fields(*library);
    const kit::Filter<T> selects(filter, fields);
    std::vector<std::string> names;
    library->for_each<T>([&](const std::shared_ptr<T>& each) {
      if (selects(*each)) names.push_back(each->name().utf8());
      return true;
    });
    return names;
  }

  std::string refused(const std::string& filter) const {
    return error_of([&] { selected<Material>(filter); });
  }

  std::shared_ptr<Library> library;
};

TEST_F(KitFilter, compares_texts_without_case_and_accents) {
  EXPECT_THAT(selected("name = HOCHLOCHZIEGEL"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("name = anderbar"), ElementsAre("Änderbar"));
  EXPECT_THAT(selected("name ~ ÄNDER"), ElementsAre("Änderbar"));
  EXPECT_THAT(selected("manufacturer ~ SUD"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("name != anderbar"), ElementsAre("Hochlochziegel", "Mineralwolle"));
}

TEST_F(KitFilter, compares_texts_exactly) {
  EXPECT_THAT(selected("name == Änderbar"), ElementsAre("Änderbar"));
  EXPECT_THAT(selected("name == änderbar"), IsEmpty());
  EXPECT_THAT(selected("name ~~ ziegel"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("name ~~ ZIEGEL"), IsEmpty());
}

TEST_F(KitFilter, orders_texts) {
  EXPECT_THAT(selected("name < i"), ElementsAre("Hochlochziegel", "Änderbar"));
  EXPECT_THAT(selected("name >= mineralwolle"), ElementsAre("Mineralwolle"));
}

TEST_F(KitFilter, compares_numbers_in_the_unit_of_the_field) {
  EXPECT_THAT(selected("conductivity < 0.1"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("conductivity >= 0.16"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("conductivity = 0.160 W/(m K)"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("conductivity != 0.16"), ElementsAre("Mineralwolle"));
}

TEST_F(KitFilter, converts_units) {
  EXPECT_THAT(selected("thickness = 4 in"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("thickness >= 0.3 m"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("thickness >= 30cm and name ~ ziegel"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("(thickness < 150 mm)"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("thickness == '4 in'"), ElementsAre("Mineralwolle"));
}

TEST_F(KitFilter, needs_one_entry_of_a_list_and_none_that_is_unequal) {
  EXPECT_THAT(selected("thickness = 365"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("thickness != 365"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("tag = AUSSENWAND"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("tag != Dach"), ElementsAre("Hochlochziegel"));
}

TEST_F(KitFilter, is_false_for_what_is_not_there) {
  EXPECT_THAT(selected("manufacturer != x"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("not manufacturer = x"),
              ElementsAre("Hochlochziegel", "Mineralwolle", "Änderbar"));
  EXPECT_THAT(selected("conductivity < 1 or conductivity >= 1"),
              ElementsAre("Hochlochziegel", "Mineralwolle"));
}

TEST_F(KitFilter, asks_for_what_is_empty) {
  EXPECT_THAT(selected("manufacturer is empty"), ElementsAre("Mineralwolle", "Änderbar"));
  EXPECT_THAT(selected("thicknesses IS NOT EMPTY"), ElementsAre("Hochlochziegel", "Mineralwolle"));
  EXPECT_THAT(selected("cut_pattern is not empty"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("shading_color is empty").size(), 3U);
  EXPECT_THAT(selected("conductivity is empty"), ElementsAre("Änderbar"));
}

TEST_F(KitFilter, knows_yes_and_no) {
  EXPECT_THAT(selected("allow_custom_thickness = no"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("allow_custom_thickness != yes"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("allow_custom_thickness == TRUE"),
              ElementsAre("Hochlochziegel", "Änderbar"));
}

TEST_F(KitFilter, binds_not_before_and_before_or) {
  EXPECT_THAT(selected("name ~ ziegel or name ~ wolle and thickness > 200"),
              ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("(name ~ ziegel or name ~ wolle) and thickness < 200"),
              ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("not name ~ ziegel and not name ~ wolle"), ElementsAre("Änderbar"));
  EXPECT_THAT(selected("not (name ~ ziegel or name ~ wolle)"), ElementsAre("Änderbar"));
  EXPECT_THAT(selected("not not name ~ ziegel"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("name ~ ziegel AND name ~ hoch"), ElementsAre("Hochlochziegel"));
}

TEST_F(KitFilter, takes_quotes_as_nothing_but_delimiters) {
  EXPECT_THAT(selected("`Fire class` = 'A1'"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("`Fire class` = \"B (2)\""), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("manufacturer = 'Ziegelwerk Süd'"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("conductivity < '0.1'"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("name='and'"), IsEmpty());
}

TEST_F(KitFilter, orders_custom_values_that_are_numbers_as_numbers) {
  EXPECT_THAT(selected("Price > 9.6"), ElementsAre("Mineralwolle"));
  EXPECT_THAT(selected("Price < 10"), ElementsAre("Hochlochziegel"));
  EXPECT_THAT(selected("`Fire class` < 10"), IsEmpty());
  EXPECT_THAT(selected("Price < a"), ElementsAre("Hochlochziegel", "Mineralwolle"));
}

TEST_F(KitFilter, looks_into_layers_and_figures) {
  EXPECT_THAT(selected<Composition>("layers ~ ziegel"), ElementsAre("Außenwand"));
  EXPECT_THAT(selected<Composition>("type = Roof"), ElementsAre("Dach"));
  EXPECT_THAT(selected<Composition>("U < 0.25"), ElementsAre("Außenwand"));
  EXPECT_THAT(selected<Composition>("U < 0.25 W/(m²K) and thickness > 30 cm"),
              ElementsAre("Außenwand"));
  EXPECT_THAT(selected<Composition>("layer_count = 1"), ElementsAre("Dach"));
  EXPECT_THAT(selected<Composition>("R > 2.5 m2 K/W"), ElementsAre("Außenwand", "Dach"));
}

TEST_F(KitFilter, selects_objects_of_every_kind) {
  EXPECT_THAT(selected<Tag>("name ~ dach"), ElementsAre("Dach"));
  EXPECT_THAT(selected<MaterialType>("name = wood"), ElementsAre("Wood"));
  EXPECT_THAT(selected<CustomProperty>("for = material and name = Price"), ElementsAre("Price"));
  EXPECT_THAT(selected<Layer>("id > 0"), IsEmpty());
}

TEST_F(KitFilter, tells_where_it_is_wrong_and_what_was_expected) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", "1: expected the name of a field, found the end"},
      {"name", "5: expected =, ==, !=, ~, ~~, <, <=, >, >= or 'is empty', found the end"},
      {"name =", "7: expected a value, found the end"},
      {"name = and", "8: expected a value, found 'and'"},
      {"name = a b",
       "10: expected 'and', 'or' or the end (a value with blanks stands in quotes), found 'b'"},
      {"(name = a",
       "10: expected 'and', 'or' or ')' (a value with blanks stands in quotes), found "
       "the end"},
      {"name = a)",
       "9: expected 'and', 'or' or the end (a value with blanks stands in quotes), found ')'"},
      {"name = a and", "13: expected the name of a field, found the end"},
      {"not", "4: expected the name of a field, found the end"},
      {"or name = a", "1: expected the name of a field, found 'or'"},
      {"name is full", "9: expected 'empty', found 'full'"},
      {"name = 'a", "8: the quote of the value has no end"},
      {"`name = a", "1: the quote of the name has no end"},
      {"name = ''", "8: a value is empty; say 'is empty'"},
      {"thickness > 3 km",
       "15: expected a unit (mm, cm, m, in, ft), 'and', 'or' or the end (a value with blanks "
       "stands "
       "in quotes), found 'km'"},
      {"thickness > much",
       "13: 'much' is no value for 'thicknesses': it must be a number, in mm or "
       "with a unit"},
      {"thickness ~ 3", "11: 'thicknesses' is compared by =, ==, !=, <, <=, >, >= or 'is empty'"},
      {"allow_custom_thickness < yes",
       "24: 'allow_custom_thickness' is compared by =, ==, != or 'is empty'"},
      {"allow_custom_thickness = maybe",
       "26: 'maybe' is no value for 'allow_custom_thickness': it must be yes or no"},
      {"shading_color = red", "15: 'shading_color' is compared by 'is empty' or 'is not empty'"},
      {"name ~ ä and (", "15: expected the name of a field, found the end"}};
  for (const auto& [filter, sentence] : cases) {
    EXPECT_EQ(refused(filter), "in the filter, at character " + sentence) << filter;
  }
}

TEST_F(KitFilter, is_refused_where_it_is_not_utf8) {
  EXPECT_EQ(error_of([&] { selected("name = \xff"); }),
            "in the filter, at character 1: it is not UTF-8");
}

TEST_F(KitFilter, keeps_the_parts_of_its_error) {
  try {
    selected("name ~ ä and (");
    FAIL() << "read";
  } catch (const kit::FilterError& error) {
    EXPECT_EQ(error.position(), 15U);
    EXPECT_EQ(error.sentence(), "expected the name of a field, found the end");
  }
}

TEST_F(KitFilter, lists_the_nearest_of_a_name_that_is_not_there) {
  EXPECT_THAT(refused("manufacturr = a"),
              StartsWith("materials have no field 'manufacturr'; did you mean 'manufacturer'?"));
  EXPECT_EQ(refused("tag = Dacj"),
            "in the filter, at character 7: there is no tag 'Dacj'; did you mean 'Dach'? there are "
            "Außenwand, Dach");
  EXPECT_EQ(refused("tag == dach"),
            "in the filter, at character 8: there is no tag 'dach'; did you mean 'Dach'? there are "
            "Außenwand, Dach");
  EXPECT_THAT(refused("type != Woood"),
              HasSubstr("there is no type 'Woood'; did you mean 'Wood'?"));
  EXPECT_EQ(refused("cut_layer = x"),
            "in the filter, at character 13: there is no drawing layer 'x'");
  EXPECT_EQ(
      error_of([&] { selected<Composition>("type = cheese"); }),
      "in the filter, at character 8: 'cheese' is no value for 'type': it must be one of wall, "
      "floor, roof, other");
  EXPECT_THAT(selected("tag ~ nothing"), IsEmpty());
}

TEST_F(KitFilter, is_not_nested_without_end) {
  const std::string deep(100000, '(');
  EXPECT_EQ(refused(deep), "in the filter, at character 102: it is nested too deeply");
  EXPECT_THAT(selected(std::string(100, '(') + "name ~ ziegel" + std::string(100, ')')),
              ElementsAre("Hochlochziegel"));
}

}  // namespace
}  // namespace veldra_tests
